// The stories hub: every story through the pilot's filter, or the state that stands instead.
// Everything it shows comes from a ReelsHubModel; it decides nothing itself.
import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Aeroloom.Services

Rectangle {
    id: hubView
    required property QtObject hub
    property Component thumbnail: null
    property bool canPlay: false
    property bool canShare: false
    /// The story's first video: (storyId, videoId, url).
    signal playRequested(string storyId, string videoId, string url)
    signal shareRequested(string storyId, string videoId)
    color: Theme.background

    Component.onCompleted: hub.appear()

    ColumnLayout {
        anchors.fill: parent
        anchors.margins: 24
        anchors.bottomMargin: 0
        spacing: 16

        ReelsHubHeader {
            Layout.fillWidth: true
            hub: hubView.hub
            onNewStoryRequested: dialogs.askNew()
            onAutoStoryRequested: dialogs.askAutoStory()
        }

        Item {
            Layout.fillWidth: true
            Layout.fillHeight: true

            BusyIndicator {
                anchors.centerIn: parent
                visible: hubView.hub.state === "loading"
                running: visible
            }

            ColumnLayout {
                objectName: "hubFailed"
                anchors.centerIn: parent
                visible: hubView.hub.state === "failed"
                spacing: 14
                Text { Layout.alignment: Qt.AlignHCenter; text: "Couldn’t load stories."; color: Theme.text; font.pixelSize: 15 }
                StoryButton { Layout.alignment: Qt.AlignHCenter; text: "Retry"; prominent: true; onClicked: hubView.hub.refresh() }
            }

            ColumnLayout {
                objectName: "hubEmpty"
                anchors.centerIn: parent
                width: Math.min(parent.width - 40, 600)
                visible: hubView.hub.state === "empty"
                spacing: 10
                Text { Layout.alignment: Qt.AlignHCenter; text: "❏"; color: Theme.textMuted; font.pixelSize: 40 }
                Text { Layout.alignment: Qt.AlignHCenter; text: "No stories yet"; color: Theme.text; font.pixelSize: 18; font.weight: Font.DemiBold }
                Text {
                    Layout.fillWidth: true
                    text: "Hit ＋ New story, then add clips from your flights — or let ✨ Auto-story draft one."
                    color: Theme.textMuted
                    font.pixelSize: 13
                    wrapMode: Text.WordWrap
                    horizontalAlignment: Text.AlignHCenter
                }
            }

            Text {
                objectName: "hubFiltered"
                anchors.centerIn: parent
                visible: hubView.hub.state === "filtered"
                text: "Nothing here — try another filter."
                color: Theme.textMuted
                font.pixelSize: 14
            }

            ListView {
                id: list
                objectName: "hubList"
                anchors.fill: parent
                visible: hubView.hub.state === "list"
                clip: true
                spacing: 10
                model: hubView.hub.rows
                ScrollBar.vertical: ScrollBar {}
                footer: Item { height: 24 }
                // Pulled past the top and let go: a refresh.
                onDragEnded: if (contentY < -70) hubView.hub.refresh()
                delegate: ReelsHubRow {
                    width: list.width
                    thumbnail: hubView.thumbnail
                    canPlay: hubView.canPlay
                    canShare: hubView.canShare
                    onOpenRequested: hubView.hub.open(storyId)
                    onPlayRequested: hubView.playRequested(storyId, latestVideoId, latestVideoUrl)
                    onShareRequested: hubView.shareRequested(storyId, latestVideoId)
                    onRenameRequested: dialogs.askRename(storyId, title)
                    onDeleteRequested: dialogs.askDelete(storyId, title)
                }
            }
        }
    }

    ReelsHubDialogs { id: dialogs; anchors.fill: parent; hub: hubView.hub }
}
