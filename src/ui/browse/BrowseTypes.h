#pragma once

/// Makes the library browsing types known to QML under "Aeroloom.Browse" (GalleryStore,
/// GalleryRowsModel, ClipsBrowserModel, ClipsBrowserStore, ClipRowsModel, all made in C++ only)
/// and the map items under "Aeroloom.Map". The screens are in the resource folder
/// "qrc:/aeroloom/browse/" (import it as a directory): GalleryView for the flights section,
/// ClipsBrowserView for the clips section.
void registerBrowseTypes();
