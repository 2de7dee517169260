#pragma once

/// Makes the gallery's types known to QML under "Aeroloom.Browse" (GalleryStore, GalleryRowsModel,
/// both made in C++ only) and the map items under "Aeroloom.Map". The gallery's screens are in
/// the resource folder "qrc:/aeroloom/browse/" (import it as a directory; GalleryView is the root).
void registerBrowseTypes();
