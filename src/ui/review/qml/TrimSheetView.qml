// Trims one story item on its own: the stretch loops above its filmstrip, and every handle let
// go is saved at once. Everything comes from a TrimSheetModel; open it with model.open(…).
import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Aeroloom.Services
import Aeroloom.Review
import "qrc:/aeroloom/browse"

Popup {
    id: sheet
    required property QtObject model
    modal: true
    visible: model.isOpen
    closePolicy: Popup.CloseOnEscape
    anchors.centerIn: parent
    width: Math.min(parent ? parent.width - 80 : 760, 760)
    padding: 20
    onClosed: model.close()
    background: Rectangle { radius: 14; color: Theme.surface; border.color: Theme.border }

    contentItem: ColumnLayout {
        spacing: 12
        RowLayout {
            Layout.fillWidth: true
            ColumnLayout {
                spacing: 2
                Layout.fillWidth: true
                Text {
                    text: sheet.model.label
                    color: Theme.text
                    font.pixelSize: 17
                    font.weight: Font.Bold
                    elide: Text.ElideRight
                    Layout.fillWidth: true
                }
                Text {
                    text: sheet.model.subtitle
                    visible: text !== ""
                    color: Theme.textMuted
                    font.pixelSize: 12
                }
            }
            GalleryButton { objectName: "trimClose"; text: "✕"; onClicked: sheet.model.close() }
        }
        Rectangle {
            Layout.fillWidth: true
            Layout.preferredHeight: width * 9 / 16
            radius: 10
            clip: true
            color: "black"
            MpvVideoItem {
                objectName: "trimVideo"
                anchors.fill: parent
                player: sheet.model.engine.player
            }
        }
        ClipFilmstripView {
            objectName: "trimStrip"
            Layout.fillWidth: true
            Layout.preferredHeight: 56
            strip: sheet.model.strip
            accent: Theme.accent
            backing: Theme.letterbox
        }
        RowLayout {
            Layout.fillWidth: true
            Text {
                Layout.fillWidth: true
                text: "Drag the handles to trim, press anywhere else to scrub. Saves automatically."
                color: Theme.textMuted
                font.pixelSize: 12
                wrapMode: Text.WordWrap
            }
            Text {
                objectName: "trimLength"
                text: sheet.model.lengthText
                color: Theme.text
                font.pixelSize: 13
                font.family: "monospace"
            }
        }
    }
}
