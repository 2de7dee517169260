// A modal sheet of the stories screens: a title, then whatever it holds.
import QtQuick
import QtQuick.Controls
import Aeroloom.Services

Dialog {
    id: sheet
    anchors.centerIn: parent
    modal: true
    closePolicy: Popup.CloseOnEscape
    width: 420
    padding: 18
    background: Rectangle { radius: 12; color: Theme.surface; border.color: Theme.border }
    Overlay.modal: Rectangle { color: Qt.rgba(0, 0, 0, 0.45) }
    header: Text {
        text: sheet.title
        color: Theme.text
        font.pixelSize: 16
        font.weight: Font.Bold
        padding: 18
        bottomPadding: 0
        elide: Text.ElideRight
    }
}
