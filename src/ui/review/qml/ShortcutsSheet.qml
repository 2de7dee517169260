// The player's keys, for pilots who come from video editors.
import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Aeroloom.Services

Dialog {
    id: sheet
    objectName: "shortcutsSheet"
    modal: true
    anchors.centerIn: parent
    width: 420
    padding: 20
    title: "Keys of the player"
    closePolicy: Popup.CloseOnEscape | Popup.CloseOnPressOutside
    background: Rectangle { radius: 12; color: Theme.surface; border.color: Theme.border }
    header: Text {
        text: sheet.title
        color: Theme.text
        font.pixelSize: 16
        font.weight: Font.Bold
        padding: 20
        bottomPadding: 0
    }
    contentItem: GridLayout {
        columns: 2
        columnSpacing: 18
        rowSpacing: 8
        Repeater {
            model: [
                ["Space", "Play or pause"],
                ["I", "Mark the clip's start"],
                ["O", "Mark the clip's end"],
                ["Enter", "Save the named clip"],
                ["J", "Shuttle backwards; again for faster"],
                ["K", "Stop the shuttle"],
                ["L", "Shuttle forwards; again for faster"],
                ["← / →", "One frame back or on, while paused"],
                ["Esc", "Back to the flights"]
            ]
            delegate: Item {
                required property var modelData
                required property int index
                Layout.columnSpan: 2
                Layout.fillWidth: true
                implicitHeight: 24
                Rectangle {
                    id: key
                    width: 64
                    height: 24
                    radius: 6
                    color: Theme.surfaceRaised
                    border.color: Theme.border
                    Text { id: keyText; anchors.centerIn: parent; text: modelData[0]; color: Theme.text; font.pixelSize: 12; font.weight: Font.Bold }
                }
                Text {
                    x: 80
                    anchors.verticalCenter: key.verticalCenter
                    text: modelData[1]
                    color: Theme.text
                    font.pixelSize: 13
                }
            }
        }
    }
}
