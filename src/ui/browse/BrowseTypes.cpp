#include "BrowseTypes.h"

#include "GalleryRowsModel.h"
#include "GalleryStore.h"
#include "MapTypes.h"

#include <QQmlEngine>

void registerBrowseTypes()
{
    const char *uri = "Aeroloom.Browse";
    qmlRegisterUncreatableType<GalleryStore>(uri, 1, 0, "GalleryStore", QStringLiteral("made by the program"));
    qmlRegisterUncreatableType<GalleryRowsModel>(uri, 1, 0, "GalleryRowsModel", QStringLiteral("made by the program"));
    registerMapTypes();
}
