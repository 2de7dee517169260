// The player's top bar: the way back, the flight's title and date, the 3D view and the keys.
import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Aeroloom.Services

Rectangle {
    id: header
    required property QtObject model
    signal backRequested()
    signal shortcutsRequested()
    implicitHeight: 52
    color: Theme.sidebar

    Rectangle { anchors.bottom: parent.bottom; width: parent.width; height: 1; color: Theme.border }

    RowLayout {
        anchors.fill: parent
        anchors.leftMargin: 14
        anchors.rightMargin: 14
        spacing: 12

        PlayerButton {
            objectName: "backButton"
            text: "‹  Flights"
            hint: "Back to the flights (Esc)"
            onClicked: header.backRequested()
        }
        ColumnLayout {
            Layout.fillWidth: true
            spacing: 1
            Text {
                Layout.fillWidth: true
                text: header.model.title
                color: Theme.text
                font.pixelSize: 16
                font.weight: Font.Bold
                elide: Text.ElideRight
            }
            Text {
                Layout.fillWidth: true
                text: header.model.subtitle
                color: Theme.textMuted
                font.pixelSize: 12
                elide: Text.ElideRight
            }
        }
        BusyIndicator {
            Layout.preferredWidth: 22
            Layout.preferredHeight: 22
            visible: header.model.saving
            running: visible
        }
        PlayerButton {
            objectName: "theaterButton"
            text: "3D"
            hint: "Watch this flight in 3D"
            onClicked: header.model.requestTheater()
        }
        PlayerButton {
            objectName: "shortcutsButton"
            text: "⌨  Keys"
            hint: "Space play/pause · I/O marks · J/K/L shuttle · ←/→ frame · Enter save · Esc back"
            onClicked: header.shortcutsRequested()
        }
    }
}
