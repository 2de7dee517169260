// Play, pause, the way through and the sound of a made video's player (a RenderPlayback).
import QtQuick
import QtQuick.Layouts
import Aeroloom.Services

RowLayout {
    id: controls
    property QtObject playback: null
    spacing: 10
    enabled: playback !== null && playback.source.toString() !== ""
    opacity: enabled ? 1 : 0.45

    StoryButton {
        objectName: "playPause"
        text: controls.playback && controls.playback.playing ? "⏸" : "▶"
        Accessible.name: controls.playback && controls.playback.playing ? "Pause" : "Play"
        plain: true
        onClicked: controls.playback.togglePlay()
    }

    // The way through the video; a click jumps there.
    Rectangle {
        Layout.fillWidth: true
        implicitHeight: 6
        radius: 3
        color: Theme.surfaceRaised
        border.color: Theme.border
        Rectangle {
            width: parent.width * (controls.playback ? controls.playback.fraction : 0)
            height: parent.height
            radius: 3
            color: Theme.accent
        }
        MouseArea {
            anchors.fill: parent
            anchors.margins: -8
            cursorShape: Qt.PointingHandCursor
            onClicked: (mouse) => controls.playback.seekTo((mouse.x - 8) / (width - 16))
        }
    }

    Text {
        objectName: "videoTime"
        text: controls.playback ? controls.playback.timeText : ""
        color: Theme.textMuted
        font.pixelSize: 12
        font.family: "monospace"
    }

    StoryButton {
        objectName: "muteButton"
        text: controls.playback && controls.playback.muted ? "🔇" : "🔊"
        Accessible.name: controls.playback && controls.playback.muted ? "Sound on" : "Mute"
        plain: true
        onClicked: controls.playback.toggleMute()
    }
}
