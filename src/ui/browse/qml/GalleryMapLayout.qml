// What passes the filters as pins on the base map of the current palette.
import QtQuick
import Aeroloom.Services
import Aeroloom.Map

Rectangle {
    id: frame
    required property QtObject store
    property alias cacheDir: map.cacheDir
    property alias map: map
    radius: 12
    clip: true
    color: Theme.surface
    border.color: Theme.border

    TileMapItem {
        id: map
        objectName: "tileMap"
        anchors.fill: parent
        anchors.margins: 1
        urlTemplate: frame.store.baseMapTemplate(Theme.dark)
        attribution: frame.store.mapAttribution
        pins: frame.store.mapPins
        tint: Theme.accent
        background: Theme.dark ? "#1B1F27" : "#E8ECEF"
        textColor: Theme.text
        fitTopPadding: 60
        fitPadding: 40
        onPinTapped: (id) => frame.store.openPin(id)
    }
}
