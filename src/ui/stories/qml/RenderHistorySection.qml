// The videos a story has on the server, newest first: each plays, gets a public link, is
// saved or deleted. Reloads whenever `refreshKey` changes (the video sheet closed).
import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Aeroloom.Services
import Aeroloom.Stories

ColumnLayout {
    id: section
    property string storyId: ""
    property string storyTitle: ""
    property int refreshKey: 0
    property QtObject store: null
    property QtObject desktop: null
    property Component thumbnail: null
    readonly property QtObject model: history

    /// What the player and share sheets show: { row, renderId }.
    property var watching: null
    property var sharing: null
    property int deleting: -1

    /// Whether there is anything to list; the story screen leaves the section out otherwise.
    readonly property bool hasVideos: history.count > 0
    spacing: 8

    RenderHistoryModel {
        id: history
        objectName: "renderHistory"
        store: section.store
        storyId: section.storyId
        refreshKey: section.refreshKey
    }
    Component.onCompleted: Qt.callLater(history.load)

    RowLayout {
        spacing: 8
        Text { text: "Videos"; color: Theme.text; font.pixelSize: 16; font.weight: Font.DemiBold }
        Text { objectName: "videosCount"; text: history.countText; color: Theme.textMuted; font.pixelSize: 13 }
    }

    ListView {
        id: list
        objectName: "videoList"
        Layout.fillWidth: true
        Layout.preferredHeight: 206
        orientation: ListView.Horizontal
        spacing: 12
        clip: true
        model: history
        ScrollBar.horizontal: ScrollBar {}
        delegate: Rectangle {
            id: card
            required property int index
            required property string renderId
            required property string dateText
            required property var tags
            required property string musicText
            required property bool vertical
            required property bool shared
            required property url posterUrl
            objectName: "video-" + index
            function play() { section.watching = { row: index, renderId: renderId } }
            width: 250
            height: list.height - 12
            radius: 10
            color: Theme.surface
            border.color: Theme.border

            ColumnLayout {
                anchors.fill: parent
                anchors.margins: 8
                spacing: 5

                StoryThumb {
                    objectName: "poster"
                    Layout.fillWidth: true
                    Layout.preferredHeight: width * 9 / 16
                    source: card.posterUrl
                    thumbnail: section.thumbnail
                    Rectangle {
                        anchors.centerIn: parent
                        width: 40
                        height: 40
                        radius: 20
                        color: Qt.rgba(0, 0, 0, 0.45)
                        border.color: Qt.rgba(1, 1, 1, 0.8)
                        Text { anchors.centerIn: parent; anchors.horizontalCenterOffset: 2; text: "▶"; color: "white"; font.pixelSize: 16 }
                    }
                    MouseArea {
                        objectName: "playVideo"
                        anchors.fill: parent
                        cursorShape: Qt.PointingHandCursor
                        Accessible.name: "Play"
                        onClicked: card.play()
                    }
                }
                RowLayout {
                    Layout.fillWidth: true
                    spacing: 4
                    Text {
                        Layout.fillWidth: true
                        text: card.dateText
                        color: Theme.text
                        font.pixelSize: 12
                        font.weight: Font.Medium
                        elide: Text.ElideRight
                    }
                    StoryButton {
                        objectName: "linkVideo"
                        plain: true
                        implicitHeight: 24
                        text: "🔗"
                        checked: card.shared
                        Accessible.name: "Link"
                        onClicked: section.sharing = { row: card.index, renderId: card.renderId }
                    }
                    StoryButton {
                        objectName: "saveVideo"
                        plain: true
                        implicitHeight: 24
                        text: "⤓"
                        Accessible.name: "Save"
                        onClicked: history.download(card.index)
                    }
                    StoryButton {
                        objectName: "deleteVideo"
                        plain: true
                        implicitHeight: 24
                        text: "🗑"
                        destructive: true
                        Accessible.name: "Delete"
                        onClicked: section.deleting = card.index
                    }
                }
                VideoTags {
                    Layout.fillWidth: true
                    tags: card.tags
                    music: card.musicText
                }
                Item { Layout.fillHeight: true }
            }
        }
    }

    StorySheet {
        id: playerSheet
        objectName: "videoPlayerSheet"
        parent: Overlay.overlay
        header: null
        width: Math.min(parent ? parent.width - 80 : 860, 860)
        visible: section.watching !== null
        onClosed: section.watching = null
        contentItem: Loader {
            active: playerSheet.visible
            sourceComponent: RenderPlayerView {
                store: section.store
                storyId: section.storyId
                storyTitle: section.storyTitle
                videoId: section.watching ? section.watching.renderId : ""
                entry: section.watching ? history.entryAt(section.watching.row) : null
                onDone: playerSheet.close()
            }
        }
    }

    StorySheet {
        id: shareSheet
        objectName: "videoShareSheet"
        parent: Overlay.overlay
        header: null
        width: 600
        visible: section.sharing !== null
        onClosed: section.sharing = null
        contentItem: Loader {
            active: shareSheet.visible
            sourceComponent: ShareReelSheet {
                store: section.store
                desktop: section.desktop
                storyId: section.storyId
                storyTitle: section.storyTitle
                videoId: section.sharing ? section.sharing.renderId : ""
                existing: section.sharing ? history.shareFor(section.sharing.renderId) : null
                onLinkChanged: (share) => history.setShare(videoId, share)
                onDone: shareSheet.close()
            }
        }
    }

    StorySheet {
        objectName: "deleteVideoSheet"
        parent: Overlay.overlay
        title: "Delete this video?"
        visible: section.deleting >= 0
        onClosed: section.deleting = -1
        contentItem: ColumnLayout {
            spacing: 16
            Text {
                Layout.fillWidth: true
                text: "Removes it from the server — the story and its clips stay."
                color: Theme.text
                font.pixelSize: 13
                wrapMode: Text.WordWrap
            }
            RowLayout {
                Item { Layout.fillWidth: true }
                StoryButton { text: "Cancel"; onClicked: section.deleting = -1 }
                StoryButton {
                    objectName: "confirmDeleteVideo"
                    text: "Delete"
                    destructive: true
                    onClicked: { history.remove(section.deleting); section.deleting = -1 }
                }
            }
        }
    }

    ShareTargetsSheet {
        file: history.sharedFile
        subject: section.storyTitle
        desktop: section.desktop
        visible: history.sharedFile !== ""
        onClosed: history.shareDismissed()
    }
}
