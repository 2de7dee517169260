// One story in the hub: cover, title, clips, videos, and its actions.
import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Aeroloom.Services

Rectangle {
    id: row
    required property string storyId
    required property string title
    required property string countText
    required property bool empty
    required property int videoCount
    required property string videosText
    required property bool shared
    required property string latestVideoId
    required property string latestVideoUrl
    required property url coverUrl
    property Component thumbnail: null
    /// Whether the program can play and share videos here (their sheets are given).
    property bool canPlay: false
    property bool canShare: false
    signal openRequested()
    signal playRequested()
    signal shareRequested()
    signal renameRequested()
    signal deleteRequested()

    objectName: "story-" + storyId
    implicitHeight: 76
    radius: 12
    color: hover.hovered ? Theme.surfaceRaised : Theme.surface
    border.color: Theme.border

    HoverHandler { id: hover }
    TapHandler { onTapped: row.openRequested() }
    TapHandler { acceptedButtons: Qt.RightButton; onTapped: menu.popup() }

    RowLayout {
        anchors.fill: parent
        anchors.margins: 10
        spacing: 14
        StoryThumb {
            Layout.preferredHeight: parent.height
            Layout.preferredWidth: height * 16 / 9
            source: row.coverUrl
            thumbnail: row.thumbnail
        }
        ColumnLayout {
            Layout.fillWidth: true
            spacing: 4
            Text {
                Layout.fillWidth: true
                text: row.title
                color: Theme.text
                font.pixelSize: 15
                font.weight: Font.DemiBold
                elide: Text.ElideRight
            }
            RowLayout {
                spacing: 10
                Text { text: row.countText; color: Theme.textMuted; font.pixelSize: 12 }
                Text { visible: row.empty; text: "empty — add clips"; color: Theme.warm; font.pixelSize: 12 }
                Text { visible: row.videoCount > 0; text: "▶ " + row.videosText; color: Theme.textMuted; font.pixelSize: 12 }
                Rectangle {
                    visible: row.shared
                    implicitWidth: sharedWord.implicitWidth + 14
                    implicitHeight: 18
                    radius: 9
                    color: Theme.accentSoft
                    Text { id: sharedWord; anchors.centerIn: parent; text: "shared"; color: Theme.accent; font.pixelSize: 11; font.weight: Font.DemiBold }
                }
            }
        }
        StoryButton {
            objectName: "rowMenu"
            text: "•••"
            plain: true
            Accessible.name: "Story actions"
            onClicked: menu.popup(this, 0, height)
        }
    }

    Menu {
        id: menu
        MenuItem {
            text: "Play the latest video"
            visible: row.canPlay
            height: visible ? implicitHeight : 0
            enabled: row.videoCount > 0
            onTriggered: row.playRequested()
        }
        MenuItem {
            text: "Share the latest video"
            visible: row.canShare
            height: visible ? implicitHeight : 0
            enabled: row.videoCount > 0
            onTriggered: row.shareRequested()
        }
        MenuItem { text: "Rename"; onTriggered: row.renameRequested() }
        MenuItem { text: "Delete"; onTriggered: row.deleteRequested() }
    }
}
