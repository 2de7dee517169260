// One item of the open story: drag handle, thumbnail, label and length, trim and remove.
import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Aeroloom.Services

Item {
    id: row
    required property int index
    required property string uid
    required property string label
    required property url thumbUrl
    required property string lengthText
    required property bool inLibrary
    property Component thumbnail: null
    property bool canTrim: false
    /// The row was dragged from `from` and let go over row `to`.
    signal dropped(int from, int to)
    signal trimRequested()
    signal removeRequested()

    objectName: "item-" + index
    implicitHeight: 64
    z: handleArea.drag.active ? 2 : 1

    Rectangle {
        id: card
        width: row.width
        height: row.height - 6
        radius: 10
        color: handleArea.drag.active ? Theme.surfaceRaised : Theme.surface
        border.color: handleArea.drag.active ? Theme.accent : Theme.border

        RowLayout {
            anchors.fill: parent
            anchors.leftMargin: 4
            anchors.rightMargin: 8
            spacing: 10

            Text {
                text: "⠿"
                color: Theme.textMuted
                font.pixelSize: 18
                Layout.preferredWidth: 22
                horizontalAlignment: Text.AlignHCenter
                Accessible.name: "Drag to reorder"
                MouseArea {
                    id: handleArea
                    anchors.fill: parent
                    anchors.margins: -8
                    cursorShape: Qt.OpenHandCursor
                    drag.target: card
                    drag.axis: Drag.YAxis
                    onReleased: {
                        const steps = Math.round(card.y / row.height)
                        card.y = 0
                        if (steps !== 0)
                            row.dropped(row.index, row.index + steps)
                    }
                }
            }
            Text {
                text: row.index + 1
                color: Theme.textMuted
                font.pixelSize: 12
                Layout.preferredWidth: 18
            }
            StoryThumb {
                Layout.preferredHeight: card.height - 12
                Layout.preferredWidth: height * 16 / 9
                source: row.thumbUrl
                thumbnail: row.thumbnail
            }
            ColumnLayout {
                Layout.fillWidth: true
                spacing: 2
                Text {
                    Layout.fillWidth: true
                    text: row.label
                    color: Theme.text
                    font.pixelSize: 14
                    font.weight: Font.Medium
                    elide: Text.ElideRight
                }
                Text {
                    text: row.lengthText
                    color: Theme.textMuted
                    font.pixelSize: 12
                    font.family: "monospace"
                }
            }
            StoryButton {
                objectName: "trimButton"
                visible: row.canTrim
                text: "✂"
                plain: true
                Accessible.name: "Trim"
                onClicked: row.trimRequested()
            }
            StoryButton {
                objectName: "removeButton"
                text: "✕"
                plain: true
                Accessible.name: "Remove from story"
                ToolTip.text: "Remove"
                ToolTip.visible: hovered
                onClicked: row.removeRequested()
            }
        }
    }
}
