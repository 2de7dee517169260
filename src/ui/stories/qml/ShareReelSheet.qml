// The public link of one made video: made as the sheet opens, copied or handed to the desktop,
// what viewers see edited (with the library's suggestions), revoked after a question.
import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Aeroloom.Services
import Aeroloom.Stories

Item {
    id: view
    property string storyId: ""
    property string videoId: ""
    property string storyTitle: ""
    /// A link the opener knows of; null when none.
    property var existing: null
    property QtObject store: null
    property QtObject desktop: null
    readonly property QtObject model: shareModel
    signal done()
    /// A new or changed link, or null once revoked.
    signal linkChanged(var share)

    implicitWidth: 560
    implicitHeight: content.implicitHeight

    ShareSheetModel {
        id: shareModel
        objectName: "shareSheetModel"
        store: view.store
        desktop: view.desktop
        projectId: view.storyId
        renderId: view.videoId
        storyTitle: view.storyTitle
        existing: view.existing
        onLinkChanged: (share) => view.linkChanged(share)
        onCloseRequested: view.done()
    }
    // The opener hands over the video right after making this view.
    Component.onCompleted: Qt.callLater(shareModel.appear)

    component Words: Text {
        Layout.fillWidth: true
        color: Theme.textMuted
        font.pixelSize: 12
        wrapMode: Text.WordWrap
    }

    ColumnLayout {
        id: content
        width: parent.width
        spacing: 12

        Text {
            Layout.fillWidth: true
            text: "Share “" + shareModel.storyTitle + "”"
            color: Theme.text
            font.pixelSize: 18
            font.weight: Font.Bold
            elide: Text.ElideRight
        }

        RowLayout {
            objectName: "shareCreating"
            visible: shareModel.state === "creating"
            spacing: 10
            BusyIndicator { implicitWidth: 22; implicitHeight: 22; running: parent.visible }
            Text { text: "Creating link…"; color: Theme.text; font.pixelSize: 13 }
        }

        ColumnLayout {
            objectName: "shareFailed"
            Layout.fillWidth: true
            visible: shareModel.state === "failed"
            spacing: 8
            Text { text: "Couldn’t create the link"; color: Theme.text; font.pixelSize: 15; font.weight: Font.DemiBold }
            Words { text: "This server doesn’t support public share links — check your connection, or try again in a moment." }
            StoryButton { objectName: "shareRetry"; text: "Retry"; prominent: true; onClicked: shareModel.retry() }
        }

        ColumnLayout {
            objectName: "shareShown"
            Layout.fillWidth: true
            visible: shareModel.state === "shown"
            spacing: 10

            RowLayout {
                Layout.fillWidth: true
                spacing: 8
                StoryTextField {
                    objectName: "shareUrl"
                    Layout.fillWidth: true
                    readOnly: true
                    text: shareModel.url
                }
                StoryButton { objectName: "copyLink"; text: "⧉ Copy"; onClicked: shareModel.copy() }
                StoryButton {
                    objectName: "shareLink"
                    text: "↗"
                    Accessible.name: "Share"
                    onClicked: targets.open()
                }
            }
            RowLayout {
                spacing: 14
                Text { objectName: "shareViews"; text: shareModel.viewsText; color: Theme.text; font.pixelSize: 12; font.weight: Font.Medium }
                Text { visible: shareModel.hearts > 0; text: "♥ " + shareModel.hearts; color: Theme.danger; font.pixelSize: 12 }
                Text { visible: text !== ""; text: shareModel.createdText; color: Theme.textMuted; font.pixelSize: 12 }
            }
            Words { text: "Anyone with the link can watch — no sign-in needed. It unfurls with a poster in iMessage and social apps." }

            Text {
                Layout.topMargin: 6
                text: "What viewers see"
                color: Theme.text
                font.pixelSize: 14
                font.weight: Font.DemiBold
            }
            StoryTextField {
                objectName: "shareTitle"
                Layout.fillWidth: true
                placeholderText: "Title on the shared page"
                text: shareModel.editTitle
                onTextEdited: shareModel.editTitle = text
            }
            TextArea {
                id: desc
                objectName: "shareDescription"
                Layout.fillWidth: true
                Layout.preferredHeight: 58
                placeholderText: "Description — a line or two under the video (optional)"
                placeholderTextColor: Theme.textMuted
                text: shareModel.editDesc
                onTextChanged: if (text !== shareModel.editDesc) shareModel.editDesc = text
                wrapMode: TextArea.Wrap
                color: Theme.text
                font.pixelSize: 13
                leftPadding: 10
                rightPadding: 10
                background: Rectangle { radius: 8; color: Theme.field; border.color: desc.activeFocus ? Theme.accent : Theme.border }
            }
            RowLayout {
                Layout.fillWidth: true
                spacing: 8
                StoryButton {
                    objectName: "suggestButton"
                    visible: shareModel.aiAvailable
                    enabled: !shareModel.suggesting
                    text: "✨ " + shareModel.suggestText
                    onClicked: shareModel.suggest()
                }
                Item { Layout.fillWidth: true }
                StoryButton {
                    objectName: "saveShare"
                    text: "Save"
                    prominent: true
                    enabled: !shareModel.savingEdit
                    onClicked: shareModel.save()
                }
            }
        }

        Text {
            objectName: "shareNote"
            Layout.fillWidth: true
            Layout.preferredHeight: 16
            text: shareModel.note
            color: Theme.accent
            font.pixelSize: 12
            horizontalAlignment: Text.AlignHCenter
        }

        RowLayout {
            Layout.fillWidth: true
            StoryButton {
                objectName: "revokeButton"
                visible: shareModel.state === "shown"
                text: "Revoke"
                destructive: true
                onClicked: shareModel.askRevoke()
            }
            Item { Layout.fillWidth: true }
            StoryButton { objectName: "shareDone"; text: "Done"; onClicked: view.done() }
        }
    }

    ShareTargetsSheet {
        id: targets
        link: shareModel.url
        subject: shareModel.storyTitle
        desktop: view.desktop
    }

    StorySheet {
        objectName: "revokeQuestion"
        parent: Overlay.overlay
        title: "Revoke"
        visible: shareModel.confirmRevoke
        onClosed: shareModel.cancelRevoke()
        contentItem: ColumnLayout {
            spacing: 16
            Text {
                Layout.fillWidth: true
                text: "Anyone who has it loses access. Sharing again makes a new link."
                color: Theme.text
                font.pixelSize: 13
                wrapMode: Text.WordWrap
            }
            RowLayout {
                Item { Layout.fillWidth: true }
                StoryButton { text: "Cancel"; onClicked: shareModel.cancelRevoke() }
                StoryButton { objectName: "confirmRevoke"; text: "Revoke"; destructive: true; onClicked: shareModel.revoke() }
            }
        }
    }
}
