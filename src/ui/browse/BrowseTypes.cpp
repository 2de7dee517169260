#include "BrowseTypes.h"

#include "ClipRowsModel.h"
#include "ClipsBrowserModel.h"
#include "ClipsBrowserStore.h"
#include "GalleryRowsModel.h"
#include "GalleryStore.h"
#include "MapTypes.h"

#include <QQmlEngine>

void registerBrowseTypes()
{
    const char *uri = "Aeroloom.Browse";
    qmlRegisterUncreatableType<GalleryStore>(uri, 1, 0, "GalleryStore", QStringLiteral("made by the program"));
    qmlRegisterUncreatableType<GalleryRowsModel>(uri, 1, 0, "GalleryRowsModel", QStringLiteral("made by the program"));
    qmlRegisterUncreatableType<ClipsBrowserModel>(uri, 1, 0, "ClipsBrowserModel", QStringLiteral("made by the program"));
    qmlRegisterUncreatableType<ClipsBrowserStore>(uri, 1, 0, "ClipsBrowserStore", QStringLiteral("made by the program"));
    qmlRegisterUncreatableType<ClipRowsModel>(uri, 1, 0, "ClipRowsModel", QStringLiteral("made by the program"));
    registerMapTypes();
}
