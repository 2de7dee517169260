#pragma once

/// Makes the map items known to QML under the import "Aeroloom.Map" (TileMapItem).
void registerMapTypes();
