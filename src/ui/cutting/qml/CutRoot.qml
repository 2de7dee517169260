// The root of the cut window's content: makes the window's model when it opens (a new one for
// each session), and answers the screens' folder requests and the model's errors with dialogs.
import QtQuick
import QtQuick.Controls
import QtQuick.Dialogs
import QtQuick.Layouts
import Aeroloom.Services
import Aeroloom.Cutting

Item {
    id: root
    property CutFlowModel model: null

    function begin() {
        const old = root.model
        root.model = CutFlows.create(root)
        root.model.reload()
        if (old)
            CutFlows.dispose(old)
    }
    Component.onCompleted: begin()
    Connections {
        target: App
        function onClientChanged() { root.begin() }
    }

    Loader {
        anchors.fill: parent
        active: root.model !== null
        sourceComponent: CutWindowView {
            model: root.model
            onOriginalsWanted: additional => {
                originalsDialog.additional = additional
                originalsDialog.open()
            }
            onOutputWanted: outputDialog.open()
        }
    }

    FolderDialog {
        id: originalsDialog
        property bool additional: false
        title: additional ? "Pick another folder to search for the missing originals"
                          : "Pick the drive or folder holding the full-res DJI originals"
        onAccepted: root.model.pickOriginals(selectedFolder, additional)
    }
    FolderDialog {
        id: outputDialog
        title: "Pick the folder where the cut clips (and story video) should be saved"
        onAccepted: root.model.pickOutputRoot(selectedFolder)
    }

    Connections {
        target: root.model
        function onErrorChanged() {
            if (root.model.error !== "")
                errorDialog.open()
        }
    }
    Dialog {
        id: errorDialog
        anchors.centerIn: parent
        width: Math.min(root.width - 80, 420)
        modal: true
        closePolicy: Popup.CloseOnEscape
        onClosed: if (root.model) root.model.dismissError()
        background: Rectangle { radius: 12; color: Theme.surface; border.color: Theme.border }
        contentItem: ColumnLayout {
            spacing: 16
            Text {
                Layout.fillWidth: true
                text: root.model ? root.model.error : ""
                color: Theme.text
                font.pixelSize: 14
                wrapMode: Text.WordWrap
            }
            CutButton {
                Layout.alignment: Qt.AlignRight
                primary: true
                text: "OK"
                onClicked: errorDialog.close()
            }
        }
    }
}
