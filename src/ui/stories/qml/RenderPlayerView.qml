// One made video playing in its own shape, with its tags. Shown in a sheet by the hub (given
// storyId and videoId) or by a story's list of videos (given the entry itself).
import QtQuick
import QtQuick.Layouts
import Aeroloom.Services
import Aeroloom.Review
import Aeroloom.Stories

Item {
    id: view
    property string storyId: ""
    property string videoId: ""
    property var entry: null
    property string storyTitle: ""
    property QtObject store: null
    readonly property QtObject model: playerModel
    signal done()

    implicitWidth: 820
    implicitHeight: 560

    RenderPlayerModel {
        id: playerModel
        objectName: "renderPlayerModel"
        store: view.store
        storyId: view.storyId
        renderId: view.videoId
        entry: view.entry
        storyTitle: view.storyTitle
    }
    // The opener hands over the video right after making this view.
    Component.onCompleted: Qt.callLater(playerModel.appear)

    ColumnLayout {
        anchors.fill: parent
        spacing: 10

        RowLayout {
            Layout.fillWidth: true
            spacing: 10
            ColumnLayout {
                Layout.fillWidth: true
                spacing: 2
                Text {
                    Layout.fillWidth: true
                    text: playerModel.storyTitle
                    color: Theme.text
                    font.pixelSize: 17
                    font.weight: Font.Bold
                    elide: Text.ElideRight
                }
                Text {
                    text: playerModel.dateText
                    color: Theme.textMuted
                    font.pixelSize: 12
                }
            }
            StoryButton { objectName: "playerDone"; text: "Done"; onClicked: view.done() }
        }

        Rectangle {
            id: stage
            Layout.fillWidth: true
            Layout.fillHeight: true
            radius: 10
            color: Theme.letterbox
            clip: true
            MpvVideoItem {
                objectName: "playerVideo"
                readonly property real aspect: playerModel.vertical ? 9 / 16 : 16 / 9
                anchors.centerIn: parent
                height: Math.min(stage.height, stage.width / aspect)
                width: height * aspect
                player: playerModel.playback ? playerModel.playback.player : null
            }
            Text {
                anchors.centerIn: parent
                visible: playerModel.missing
                text: "This video is no longer on the server."
                color: Qt.rgba(1, 1, 1, 0.7)
                font.pixelSize: 14
            }
        }

        VideoControls { Layout.fillWidth: true; playback: playerModel.playback }
        VideoTags {
            objectName: "playerTags"
            Layout.fillWidth: true
            tags: playerModel.tags
            music: playerModel.musicText
        }
    }
}
