// The hub's questions: name a new story, rename one, confirm a delete, pick an auto-story's length.
import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Aeroloom.Services

Item {
    id: dialogs
    required property QtObject hub
    property string storyId: ""
    property string storyTitle: ""

    function askNew() { newName.text = ""; newSheet.open() }
    function askRename(id, title) { storyId = id; storyTitle = title; renameField.text = title; renameSheet.open() }
    function askDelete(id, title) { storyId = id; storyTitle = title; deleteSheet.open() }
    function askAutoStory() { autoSheet.open() }

    component Words: Text {
        Layout.fillWidth: true
        color: Theme.text
        font.pixelSize: 13
        wrapMode: Text.WordWrap
    }

    StorySheet {
        id: newSheet
        objectName: "newStorySheet"
        title: "Name this story"
        onOpened: newName.forceActiveFocus()
        contentItem: ColumnLayout {
            spacing: 16
            StoryTextField {
                id: newName
                objectName: "newStoryName"
                Layout.fillWidth: true
                placeholderText: "Untitled story"
                onAccepted: createButton.clicked()
            }
            RowLayout {
                Item { Layout.fillWidth: true }
                StoryButton { text: "Cancel"; onClicked: newSheet.close() }
                StoryButton {
                    id: createButton
                    text: "Create"
                    prominent: true
                    onClicked: { dialogs.hub.create(newName.text); newSheet.close() }
                }
            }
        }
    }

    StorySheet {
        id: renameSheet
        objectName: "renameStorySheet"
        title: "Rename story"
        onOpened: renameField.forceActiveFocus()
        contentItem: ColumnLayout {
            spacing: 16
            StoryTextField {
                id: renameField
                Layout.fillWidth: true
                placeholderText: "Story name"
                onAccepted: saveButton.clicked()
            }
            RowLayout {
                Item { Layout.fillWidth: true }
                StoryButton { text: "Cancel"; onClicked: renameSheet.close() }
                StoryButton {
                    id: saveButton
                    text: "Save"
                    prominent: true
                    onClicked: { dialogs.hub.rename(dialogs.storyId, renameField.text); renameSheet.close() }
                }
            }
        }
    }

    StorySheet {
        id: deleteSheet
        objectName: "deleteStorySheet"
        title: dialogs.hub.deleteQuestion(dialogs.storyTitle)
        contentItem: ColumnLayout {
            spacing: 16
            Words { text: "Its videos are deleted too. This can’t be undone." }
            RowLayout {
                Item { Layout.fillWidth: true }
                StoryButton { text: "Cancel"; onClicked: deleteSheet.close() }
                StoryButton {
                    objectName: "confirmDelete"
                    text: "Delete"
                    destructive: true
                    onClicked: { dialogs.hub.remove(dialogs.storyId); deleteSheet.close() }
                }
            }
        }
    }

    StorySheet {
        id: autoSheet
        objectName: "autoStorySheet"
        title: "✨ Auto-story"
        contentItem: ColumnLayout {
            spacing: 10
            Words {
                text: "Drafted from the best moments across your flights — one place, one aspect, cinematic mix."
                color: Theme.textMuted
            }
            Repeater {
                model: [
                    { label: "Short · about 30 seconds", seconds: 30 },
                    { label: "Medium · about 1 minute", seconds: 60 },
                    { label: "Long · about 2 minutes", seconds: 120 }
                ]
                delegate: StoryButton {
                    required property var modelData
                    Layout.fillWidth: true
                    text: modelData.label
                    onClicked: { dialogs.hub.autoStory(modelData.seconds); autoSheet.close() }
                }
            }
            StoryButton { Layout.fillWidth: true; text: "Cancel"; onClicked: autoSheet.close() }
        }
    }
}
