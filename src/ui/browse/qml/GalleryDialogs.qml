// The confirmation of a delete, the auto-story lengths, and the two alerts.
import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Aeroloom.Services

Item {
    id: dialogs
    required property QtObject store

    component Sheet: Dialog {
        anchors.centerIn: parent
        modal: true
        closePolicy: Popup.CloseOnEscape
        width: 400
        padding: 18
        background: Rectangle { radius: 12; color: Theme.surface; border.color: Theme.border }
        header: Text {
            text: parent ? parent.title : ""
            color: Theme.text
            font.pixelSize: 16
            font.weight: Font.Bold
            padding: 18
            bottomPadding: 0
        }
    }
    component Words: Text {
        Layout.fillWidth: true
        color: Theme.text
        font.pixelSize: 13
        wrapMode: Text.WordWrap
    }

    Sheet {
        objectName: "deleteDialog"
        title: "Delete Flight"
        visible: dialogs.store.deletingId !== ""
        onRejected: dialogs.store.cancelDelete()
        contentItem: ColumnLayout {
            spacing: 16
            Words { text: dialogs.store.deleteMessage }
            RowLayout {
                Item { Layout.fillWidth: true }
                GalleryButton { text: "Cancel"; onClicked: dialogs.store.cancelDelete() }
                GalleryButton { text: "Delete Flight"; destructive: true; onClicked: dialogs.store.confirmDelete() }
            }
        }
    }

    Sheet {
        title: "Auto-Director"
        visible: dialogs.store.askReelLength
        onRejected: dialogs.store.cancelReelLength()
        contentItem: ColumnLayout {
            spacing: 10
            Words { text: dialogs.store.reelLengthNote; color: Theme.textMuted }
            Repeater {
                model: [
                    { label: "Short · about 30 seconds", seconds: 30 },
                    { label: "Medium · about 1 minute", seconds: 60 },
                    { label: "Long · about 2 minutes", seconds: 120 }
                ]
                delegate: GalleryButton {
                    required property var modelData
                    Layout.fillWidth: true
                    text: modelData.label
                    onClicked: dialogs.store.chooseReelLength(modelData.seconds)
                }
            }
            GalleryButton { Layout.fillWidth: true; text: "Cancel"; onClicked: dialogs.store.cancelReelLength() }
        }
    }

    Sheet {
        title: "Couldn't delete"
        visible: dialogs.store.deleteError !== ""
        onRejected: dialogs.store.dismissDeleteError()
        contentItem: ColumnLayout {
            spacing: 16
            Words { text: dialogs.store.deleteError }
            GalleryButton { Layout.alignment: Qt.AlignRight; text: "OK"; prominent: true; onClicked: dialogs.store.dismissDeleteError() }
        }
    }

    Sheet {
        title: "Auto-Director"
        visible: dialogs.store.directError !== ""
        onRejected: dialogs.store.dismissDirectError()
        contentItem: ColumnLayout {
            spacing: 16
            Words { text: dialogs.store.directError }
            GalleryButton { Layout.alignment: Qt.AlignRight; text: "OK"; prominent: true; onClicked: dialogs.store.dismissDirectError() }
        }
    }
}
