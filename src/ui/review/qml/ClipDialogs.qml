// The questions asked before a clip is deleted or a suggestion tossed; their words come from the model.
import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Aeroloom.Services

Item {
    id: dialogs
    required property QtObject model
    property string kind: ""
    property string clipId: ""
    property var words: ({})

    function ask(what, id) {
        kind = what
        clipId = id
        words = what === "delete" ? model.deleteConfirmation(id) : model.tossConfirmation(id)
        sheet.open()
    }

    Dialog {
        id: sheet
        objectName: "clipConfirmation"
        parent: Overlay.overlay
        anchors.centerIn: parent
        modal: true
        closePolicy: Popup.CloseOnEscape
        width: 380
        padding: 18
        title: dialogs.words.title || ""
        background: Rectangle { radius: 12; color: Theme.surface; border.color: Theme.border }
        header: Text {
            text: sheet.title
            color: Theme.text
            font.pixelSize: 16
            font.weight: Font.Bold
            padding: 18
            bottomPadding: 0
        }
        contentItem: ColumnLayout {
            spacing: 16
            Text {
                Layout.fillWidth: true
                text: dialogs.words.message || ""
                color: Theme.text
                font.pixelSize: 13
                wrapMode: Text.WordWrap
            }
            RowLayout {
                Item { Layout.fillWidth: true }
                PlayerButton { text: dialogs.words.cancel || ""; onClicked: sheet.close() }
                PlayerButton {
                    objectName: "confirmButton"
                    text: dialogs.words.confirm || ""
                    destructive: true
                    onClicked: {
                        if (dialogs.kind === "delete")
                            dialogs.model.deleteClip(dialogs.clipId)
                        else
                            dialogs.model.tossClip(dialogs.clipId)
                        sheet.close()
                    }
                }
            }
        }
    }
}
