// Under the video: play, the in and out marks, the new clip's name and its save.
import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Aeroloom.Services

RowLayout {
    id: bar
    required property QtObject model
    /// The name field, so the screen can give it the keyboard and take it back.
    readonly property alias nameField: name
    signal nameDone()
    spacing: 8

    PlayerButton {
        objectName: "playButton"
        text: bar.model.playing ? "❚❚" : "▶"
        hint: "Play or pause (Space)"
        implicitWidth: 40
        onClicked: bar.model.togglePlay()
    }
    PlayerButton {
        objectName: "markInButton"
        text: "In"
        hint: "Mark the clip's start here (I)"
        onClicked: bar.model.setMarkIn()
    }
    PlayerButton {
        objectName: "markOutButton"
        text: "Out"
        hint: "Mark the clip's end here (O)"
        enabled: bar.model.markIn !== undefined
        onClicked: bar.model.setMarkOut()
    }
    PlayerButton {
        text: "Clear"
        hint: "Drop both marks and play on"
        visible: bar.model.markIn !== undefined
        onClicked: bar.model.clearMarks()
    }
    Text {
        visible: bar.model.markIn !== undefined
        text: "CLIP " + bar.model.pendingText
        color: Theme.accent
        font.pixelSize: 12
        font.weight: Font.Bold
        font.family: "monospace"
    }
    TextField {
        id: name
        objectName: "clipNameField"
        Layout.fillWidth: true
        implicitHeight: 30
        enabled: bar.model.hasRange
        placeholderText: bar.model.hasRange ? "Name this clip, then Enter" : "Mark in and out to make a clip"
        text: bar.model.clipName
        onTextEdited: bar.model.clipName = text
        onAccepted: bar.model.saveClip(text)
        Keys.onEscapePressed: bar.nameDone()
        color: Theme.text
        placeholderTextColor: Theme.textMuted
        selectionColor: Theme.accent
        selectedTextColor: Theme.accentText
        font.pixelSize: 13
        leftPadding: 10
        background: Rectangle {
            radius: 8
            color: Theme.field
            border.width: name.activeFocus ? 2 : 1
            border.color: name.activeFocus ? Theme.accent : Theme.border
        }
    }
    PlayerButton {
        objectName: "saveClipButton"
        text: "Save clip"
        prominent: true
        hint: "Save the marked clip (Enter)"
        enabled: bar.model.hasRange
        onClicked: bar.model.saveClip(name.text)
    }
}
