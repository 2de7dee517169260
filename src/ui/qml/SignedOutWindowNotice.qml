// What a work window shows while nobody is signed in.
import QtQuick
import QtQuick.Layouts
import Aeroloom.Services

Rectangle {
    id: notice
    property string message
    color: Theme.background

    ColumnLayout {
        anchors.centerIn: parent
        width: Math.min(parent.width - 64, 440)
        spacing: 14

        // A padlock drawn from two shapes, in the accent colour.
        Item {
            Layout.alignment: Qt.AlignHCenter
            implicitWidth: 72
            implicitHeight: 72
            Rectangle {
                anchors.fill: parent
                radius: width / 2
                color: Theme.accentSoft
            }
            Rectangle {
                x: 25; y: 16; width: 22; height: 24
                radius: 11
                color: "transparent"
                border.width: 4
                border.color: Theme.accent
            }
            Rectangle {
                x: 20; y: 31; width: 32; height: 24
                radius: 6
                color: Theme.accent
                Rectangle { anchors.centerIn: parent; width: 5; height: 9; radius: 2; color: Theme.accentSoft }
            }
        }
        Text {
            Layout.fillWidth: true
            text: "Sign in first"
            color: Theme.text
            font.pixelSize: 22
            font.weight: Font.Bold
            horizontalAlignment: Text.AlignHCenter
        }
        Text {
            Layout.fillWidth: true
            text: notice.message
            color: Theme.textMuted
            font.pixelSize: 14
            lineHeight: 1.25
            wrapMode: Text.WordWrap
            horizontalAlignment: Text.AlignHCenter
        }
    }
}
