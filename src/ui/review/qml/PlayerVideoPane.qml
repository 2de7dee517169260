// The video, with the live readouts over its corner and the toast over its top.
import QtQuick
import QtQuick.Layouts
import Aeroloom.Services
import Aeroloom.Review

Rectangle {
    id: pane
    required property QtObject model
    color: Theme.letterbox
    radius: 10
    clip: true

    MpvVideoItem {
        objectName: "video"
        anchors.fill: parent
        player: pane.model.player
    }

    Row {
        anchors.left: parent.left
        anchors.bottom: parent.bottom
        anchors.margins: 12
        spacing: 8
        Repeater {
            model: [
                { label: "ALT", value: pane.model.altitudeText },
                { label: "SPD", value: pane.model.speedText },
                { label: "T", value: pane.model.clockText }
            ]
            delegate: Rectangle {
                required property var modelData
                width: chip.implicitWidth + 18
                height: 26
                radius: 7
                color: Qt.rgba(0.03, 0.06, 0.12, 0.72)
                Row {
                    id: chip
                    anchors.centerIn: parent
                    spacing: 6
                    Text { text: modelData.label; color: "#8E9BB8"; font.pixelSize: 10; font.weight: Font.Bold; anchors.verticalCenter: parent.verticalCenter }
                    Text { text: modelData.value; color: "white"; font.pixelSize: 13; font.weight: Font.DemiBold; font.family: "monospace" }
                }
            }
        }
    }

    // Paused: two bars in the corner, on a backing that reads over a white frame too.
    Rectangle {
        anchors.right: parent.right
        anchors.bottom: parent.bottom
        anchors.margins: 12
        width: pauseBars.implicitWidth + 16
        height: pauseBars.implicitHeight + 12
        radius: 6
        color: Qt.rgba(0.03, 0.06, 0.12, 0.6)
        visible: !pane.model.playing && !pane.model.isJogging
        Row {
            id: pauseBars
            anchors.centerIn: parent
            spacing: 4
            Repeater {
                model: 2
                Rectangle { width: 5; height: 18; radius: 1.5; color: "white" }
            }
        }
    }

    Rectangle {
        objectName: "toast"
        anchors.horizontalCenter: parent.horizontalCenter
        anchors.top: parent.top
        anchors.topMargin: 14
        visible: pane.model.toast !== ""
        width: toastText.implicitWidth + 32
        height: 36
        radius: 18
        color: Qt.rgba(0.03, 0.06, 0.12, 0.85)
        border.color: Qt.rgba(1, 1, 1, 0.18)
        Text {
            id: toastText
            anchors.centerIn: parent
            text: pane.model.toast
            color: "white"
            font.pixelSize: 14
            font.weight: Font.DemiBold
        }
    }
}
