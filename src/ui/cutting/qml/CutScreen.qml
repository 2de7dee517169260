// One story's cut screen: where the originals are and where clips go, the rows of the cut list,
// the story video, and the button that runs it all.
import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Aeroloom.Services

Item {
    id: screen
    required property QtObject model
    signal originalsWanted(bool additional)
    signal outputWanted()

    ColumnLayout {
        anchors.fill: parent
        anchors.margins: 20
        spacing: 12

        RowLayout {
            Layout.fillWidth: true
            spacing: 12
            CutButton {
                text: "Back"
                symbol: "‹"
                enabled: !screen.model.running
                onClicked: screen.model.back()
            }
            Text {
                text: "Cut Story Clips"
                color: Theme.text
                font.pixelSize: 22
                font.weight: Font.Bold
            }
            Text {
                Layout.fillWidth: true
                text: screen.model.edlTitle
                color: Theme.textMuted
                font.pixelSize: 15
                elide: Text.ElideRight
            }
        }

        // Until a save folder is chosen there is nowhere to plan the clips.
        Rectangle {
            Layout.fillWidth: true
            visible: screen.model.outputRoot === ""
            implicitHeight: 64
            radius: 10
            color: Theme.accentSoft
            RowLayout {
                anchors.fill: parent
                anchors.leftMargin: 16
                anchors.rightMargin: 12
                Text {
                    Layout.fillWidth: true
                    text: "Choose where to save the cut clips — the folder is remembered for next time."
                    color: Theme.text
                    font.pixelSize: 13
                    wrapMode: Text.WordWrap
                }
                CutButton {
                    primary: true
                    text: "Choose Save Folder…"
                    onClicked: screen.outputWanted()
                }
            }
        }

        CutSettings {
            Layout.fillWidth: true
            model: screen.model
            onOriginalsWanted: screen.originalsWanted(false)
            onOutputWanted: screen.outputWanted()
        }

        RowLayout {
            Layout.fillWidth: true
            visible: screen.model.missingCount > 0
            spacing: 12
            Text {
                Layout.fillWidth: true
                text: screen.model.missingText
                color: Theme.warm
                font.pixelSize: 12
                wrapMode: Text.WordWrap
            }
            CutButton {
                text: "Search Another Folder…"
                enabled: !screen.model.running
                onClicked: screen.originalsWanted(true)
            }
        }

        CutRowTable {
            Layout.fillWidth: true
            Layout.fillHeight: true
            rows: screen.model.rows
        }

        CutStoryBlock {
            Layout.fillWidth: true
            model: screen.model
        }

        RowLayout {
            Layout.fillWidth: true
            spacing: 12
            // After a batch: what it did, and where.
            Text {
                visible: screen.model.batchRan && !screen.model.running
                text: screen.model.doneText
                color: Theme.success
                font.pixelSize: 13
                font.weight: Font.DemiBold
            }
            CutButton {
                visible: screen.model.batchRan && !screen.model.running && screen.model.reelFolder !== ""
                text: "Reveal in File Manager"
                onClicked: screen.model.revealFolder()
            }
            Item { Layout.fillWidth: true }
            CutButton {
                objectName: "cutAction"
                primary: true
                visible: !screen.model.running
                symbol: screen.model.actionIsStory ? "▶" : "✂"
                text: screen.model.actionText
                enabled: screen.model.canStart
                onClicked: screen.model.start()
            }
            CutButton {
                objectName: "cutStop"
                primary: true
                visible: screen.model.running
                symbol: "■"
                text: "Stop"
                onClicked: screen.model.stop()
            }
        }
    }
}
