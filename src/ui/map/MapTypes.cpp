#include "MapTypes.h"

#include "TileMapItem.h"

#include <QQmlEngine>

void registerMapTypes()
{
    qmlRegisterType<TileMapItem>("Aeroloom.Map", 1, 0, "TileMapItem");
}
