// Count, airtime, distance and the span of dates of what passes the filters.
import QtQuick
import QtQuick.Layouts
import Aeroloom.Services

RowLayout {
    id: row
    required property QtObject store
    spacing: 10

    Repeater {
        model: [
            { value: row.store.stats.count, caption: "flights" },
            { value: row.store.stats.airtime, caption: "airtime" },
            { value: row.store.stats.distance, caption: row.store.stats.distanceCaption },
            { value: row.store.stats.dateSpan, caption: "" }
        ]
        delegate: Rectangle {
            required property var modelData
            visible: modelData.value !== ""
            Layout.preferredHeight: 54
            Layout.preferredWidth: Math.max(110, tile.implicitWidth + 28)
            radius: 10
            color: Theme.surface
            border.color: Theme.border
            Column {
                id: tile
                anchors.centerIn: parent
                Text {
                    anchors.horizontalCenter: parent.horizontalCenter
                    text: modelData.value
                    color: Theme.text
                    font.pixelSize: 17
                    font.weight: Font.DemiBold
                }
                Text {
                    anchors.horizontalCenter: parent.horizontalCenter
                    visible: modelData.caption !== ""
                    text: modelData.caption
                    color: Theme.textMuted
                    font.pixelSize: 11
                }
            }
        }
    }
    Item { Layout.fillWidth: true }
}
