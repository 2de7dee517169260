// The stories of the library, each opening its cut screen.
import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Aeroloom.Services

Item {
    id: list
    required property QtObject model

    ColumnLayout {
        anchors.fill: parent
        anchors.margins: 24
        spacing: 6

        Text {
            text: "Cut Story Clips"
            color: Theme.text
            font.pixelSize: 24
            font.weight: Font.Bold
        }
        Text {
            Layout.fillWidth: true
            Layout.bottomMargin: 10
            text: "Pick a story to cut into full-resolution clips from the originals on your drive."
            color: Theme.textMuted
            font.pixelSize: 13
            wrapMode: Text.WordWrap
        }

        Rectangle {
            Layout.fillWidth: true
            Layout.fillHeight: true
            radius: 12
            color: Theme.surface
            border.color: Theme.border

            BusyIndicator {
                anchors.centerIn: parent
                running: list.model.loading && stories.count === 0
                visible: running
            }

            ColumnLayout {
                anchors.centerIn: parent
                width: Math.min(parent.width - 48, 420)
                visible: !list.model.loading && stories.count === 0
                spacing: 8
                Text {
                    Layout.alignment: Qt.AlignHCenter
                    text: "No reels yet"
                    color: Theme.text
                    font.pixelSize: 18
                    font.weight: Font.DemiBold
                }
                Text {
                    Layout.fillWidth: true
                    horizontalAlignment: Text.AlignHCenter
                    wrapMode: Text.WordWrap
                    text: "Build a reel on the web, iPad, or in Reels first."
                    color: Theme.textMuted
                    font.pixelSize: 13
                }
            }

            ListView {
                id: stories
                objectName: "cutStories"
                anchors.fill: parent
                anchors.margins: 6
                clip: true
                spacing: 4
                model: list.model.reels
                delegate: Rectangle {
                    id: story
                    required property var modelData
                    required property int index
                    objectName: "story-" + modelData.id
                    width: ListView.view.width
                    height: 58
                    radius: 8
                    color: area.containsMouse ? Theme.accentSoft
                         : list.model.selectedReelId === modelData.id ? Theme.surfaceRaised : "transparent"
                    RowLayout {
                        anchors.fill: parent
                        anchors.leftMargin: 14
                        anchors.rightMargin: 14
                        spacing: 12
                        ColumnLayout {
                            Layout.fillWidth: true
                            spacing: 2
                            Text {
                                Layout.fillWidth: true
                                text: story.modelData.title
                                color: Theme.text
                                font.pixelSize: 15
                                font.weight: Font.DemiBold
                                elide: Text.ElideRight
                            }
                            Text {
                                text: story.modelData.countText
                                color: Theme.textMuted
                                font.pixelSize: 12
                            }
                        }
                        Text { text: "›"; color: Theme.textMuted; font.pixelSize: 22 }
                    }
                    MouseArea {
                        id: area
                        anchors.fill: parent
                        hoverEnabled: true
                        cursorShape: Qt.PointingHandCursor
                        onClicked: list.model.openReel(story.index)
                    }
                }
            }
        }
    }
}
