// The story video made from the cut clips: whether to make it, its shape, its music, and how
// the making goes.
import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Aeroloom.Services

Rectangle {
    id: block
    required property QtObject model

    implicitHeight: content.implicitHeight + 24
    radius: 10
    color: Theme.surface
    border.color: Theme.border

    ColumnLayout {
        id: content
        anchors.fill: parent
        anchors.margins: 12
        spacing: 8

        RowLayout {
            Layout.fillWidth: true
            spacing: 20
            CutToggle {
                text: "Make a story video"
                checked: block.model.makeStory
                enabled: !block.model.running
                onToggled: block.model.makeStory = checked
            }
            CutToggle {
                text: "Vertical"
                checked: block.model.storyVertical
                enabled: !block.model.running && block.model.makeStory
                onToggled: block.model.storyVertical = checked
            }
            Item { Layout.fillWidth: true }
            Text { text: "Music"; color: Theme.textMuted; font.pixelSize: 12; font.weight: Font.DemiBold }
            ComboBox {
                id: music
                objectName: "cutMusic"
                Layout.preferredWidth: 220
                implicitHeight: 30
                enabled: !block.model.running && block.model.makeStory
                model: block.model.musicChoices
                textRole: "text"
                valueRole: "tag"
                font.pixelSize: 13
                currentIndex: Math.max(0, indexOfValue(block.model.track))
                onActivated: block.model.track = currentValue
                background: Rectangle {
                    radius: 8
                    color: Theme.surfaceRaised
                    border.color: Theme.border
                    opacity: music.enabled ? 1 : 0.6
                }
                contentItem: Text {
                    leftPadding: 10
                    text: music.displayText
                    color: music.enabled ? Theme.text : Theme.textMuted
                    font: music.font
                    verticalAlignment: Text.AlignVCenter
                    elide: Text.ElideRight
                }
                delegate: ItemDelegate {
                    required property var modelData
                    required property int index
                    width: music.width
                    highlighted: music.highlightedIndex === index
                    contentItem: Text { text: modelData.text; color: Theme.text; font.pixelSize: 13; elide: Text.ElideRight }
                    background: Rectangle { color: highlighted ? Theme.accentSoft : Theme.surface }
                }
                popup.background: Rectangle { color: Theme.surface; border.color: Theme.border; radius: 6 }
            }
        }
        Text {
            Layout.fillWidth: true
            text: "A 9:16 story for phones and social feeds, cut from the middle of every shot — whatever sits near the left or right edges leaves the frame. Made from your originals, so it stays sharp."
            color: Theme.textMuted
            font.pixelSize: 12
            wrapMode: Text.WordWrap
            opacity: block.model.makeStory ? 1 : 0.6
        }

        // How the stitch goes: its progress, its failure, or the finished file.
        RowLayout {
            Layout.fillWidth: true
            visible: block.model.stitchState !== "idle"
            spacing: 12
            ProgressBar {
                visible: block.model.stitchState === "running"
                Layout.preferredWidth: 160
                value: block.model.stitchProgress
                background: Rectangle { implicitHeight: 6; radius: 3; color: Theme.surfaceRaised; border.color: Theme.border }
                contentItem: Item {
                    implicitHeight: 6
                    Rectangle {
                        width: parent.width * Math.min(1, block.model.stitchProgress)
                        height: parent.height
                        radius: 3
                        color: Theme.accent
                    }
                }
            }
            Text {
                Layout.fillWidth: true
                visible: block.model.stitchState !== "done"
                text: block.model.stitchText
                color: block.model.stitchState === "failed" ? Theme.danger : Theme.text
                font.pixelSize: 12
                wrapMode: Text.Wrap
                maximumLineCount: 5
                elide: Text.ElideRight
            }
            Text {
                Layout.fillWidth: true
                visible: block.model.stitchState === "done"
                text: "✓  " + block.model.stitchFileName
                color: Theme.success
                font.pixelSize: 13
                font.weight: Font.DemiBold
                elide: Text.ElideMiddle
            }
            CutButton {
                objectName: "cutRevealStory"
                visible: block.model.stitchState === "done"
                text: "Reveal"
                onClicked: block.model.revealStory()
            }
        }
    }
}
