#pragma once

/// Makes the lightbox's and the trim sheet's types known to QML under "Aeroloom.Review":
/// ClipFilmstripView (a view item), and ClipLightboxModel, TrimSheetModel, LightboxEngine and
/// ClipFilmstrip (made in C++ only). Their screens are in the resource folder
/// "qrc:/aeroloom/review/" (import it as a directory): ClipLightboxView { model: … } over the
/// clips section, TrimSheetView { model: … } over a story.
void registerLightboxTypes();
