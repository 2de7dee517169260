// The flight player: the video and its marks, the path map, the clip list and the timeline of
// one flight. Everything comes from its PlayerModel; the keys go to the model too.
import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Aeroloom.Services

FocusScope {
    id: player
    required property QtObject model
    property string tileHost: ""
    property string mapAttribution: ""
    property string tileCacheDir: ""
    /// The pilot leaves the player (the back button or Esc).
    signal closeRequested()
    focus: true

    Component.onDestruction: if (model) model.stop()

    Rectangle { anchors.fill: parent; color: Theme.background }

    // Holds the keyboard whenever no field does; Keys of the view see what it doesn't take.
    Item { id: keyCatcher; focus: true }

    function keyPressed(event) {
        const shift = event.modifiers & Qt.ShiftModifier
        switch (event.key) {
        case Qt.Key_Space: model.togglePlay(); break
        case Qt.Key_I: model.setMarkIn(); break
        case Qt.Key_O:
            model.setMarkOut()
            if (model.hasRange)
                marks.nameField.forceActiveFocus()
            break
        case Qt.Key_J: model.shuttle(-1); break
        case Qt.Key_K: model.shuttleStop(); break
        case Qt.Key_L: model.shuttle(1); break
        case Qt.Key_Left: model.stepFrame(-1); break
        case Qt.Key_Right: model.stepFrame(1); break
        case Qt.Key_Return:
        case Qt.Key_Enter: model.saveClip(model.clipName); break
        case Qt.Key_Escape: player.closeRequested(); break
        case Qt.Key_Question: shortcuts.open(); break
        case Qt.Key_Slash: if (shift) shortcuts.open(); else return; break
        default: return
        }
        event.accepted = true
    }
    Keys.onPressed: (event) => keyPressed(event)

    Connections {
        target: player.model
        // The clip is saved: the name field lets go of the keyboard.
        function onClipSaved() { keyCatcher.forceActiveFocus() }
    }

    ColumnLayout {
        anchors.fill: parent
        spacing: 0

        PlayerHeader {
            Layout.fillWidth: true
            model: player.model
            onBackRequested: player.closeRequested()
            onShortcutsRequested: shortcuts.open()
        }

        RowLayout {
            Layout.fillWidth: true
            Layout.fillHeight: true
            Layout.margins: 16
            Layout.bottomMargin: 10
            spacing: 14

            ColumnLayout {
                Layout.fillWidth: true
                Layout.fillHeight: true
                spacing: 10
                PlayerVideoPane {
                    objectName: "videoPane"
                    Layout.fillWidth: true
                    Layout.fillHeight: true
                    model: player.model
                    TapHandler { onTapped: { keyCatcher.forceActiveFocus(); player.model.togglePlay() } }
                }
                MarkBar {
                    id: marks
                    Layout.fillWidth: true
                    model: player.model
                    onNameDone: keyCatcher.forceActiveFocus()
                }
            }

            ColumnLayout {
                Layout.preferredWidth: 340
                Layout.maximumWidth: 340
                Layout.fillHeight: true
                spacing: 10
                PlayerMapPane {
                    Layout.fillWidth: true
                    Layout.fillHeight: false
                    Layout.preferredHeight: 260
                    model: player.model
                    tileHost: player.tileHost
                    attribution: player.mapAttribution
                    tileCacheDir: player.tileCacheDir
                }
                ClipListPane {
                    Layout.fillWidth: true
                    Layout.fillHeight: true
                    model: player.model
                }
            }
        }

        FlightTimelineView {
            Layout.fillWidth: true
            Layout.preferredHeight: 196
            Layout.leftMargin: 16
            Layout.rightMargin: 16
            Layout.bottomMargin: 16
            model: player.model
        }
    }

    ShortcutsSheet { id: shortcuts }
}
