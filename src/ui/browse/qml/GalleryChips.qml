// The removable chips of the active filters, with "Clear all".
import QtQuick
import QtQuick.Layouts
import Aeroloom.Services

Flow {
    id: chips
    required property QtObject store
    spacing: 8
    visible: store.chips.length > 0

    Repeater {
        model: chips.store.chips
        delegate: Rectangle {
            required property var modelData
            height: 26
            width: chipRow.implicitWidth + 20
            radius: 13
            color: Theme.accentSoft
            Row {
                id: chipRow
                anchors.centerIn: parent
                spacing: 6
                Text { text: modelData.label; color: Theme.text; font.pixelSize: 12 }
                Text {
                    text: "✕"
                    color: Theme.textMuted
                    font.pixelSize: 11
                    TapHandler { onTapped: chips.store.removeChip(modelData.key) }
                }
            }
        }
    }
    Text {
        height: 26
        verticalAlignment: Text.AlignVCenter
        text: "Clear all"
        color: Theme.accent
        font.pixelSize: 12
        TapHandler { onTapped: chips.store.clearAllFilters() }
    }
}
