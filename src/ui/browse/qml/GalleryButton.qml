// A small rounded button of the gallery's bars.
import QtQuick
import QtQuick.Controls
import Aeroloom.Services

AbstractButton {
    id: button
    property bool prominent: false
    property bool destructive: false
    property int badge: 0
    implicitHeight: 30
    implicitWidth: label.implicitWidth + 24
    hoverEnabled: true
    opacity: enabled ? 1 : 0.45

    background: Rectangle {
        radius: 8
        color: button.prominent ? Theme.accent
             : button.hovered ? Theme.surfaceRaised : Theme.surface
        border.color: button.prominent ? Theme.accent : Theme.border
    }
    contentItem: Text {
        id: label
        text: button.text
        color: button.prominent ? Theme.accentText : button.destructive ? Theme.danger : Theme.text
        font.pixelSize: 13
        font.weight: Font.Medium
        horizontalAlignment: Text.AlignHCenter
        verticalAlignment: Text.AlignVCenter
    }
    Rectangle {
        visible: button.badge > 0
        anchors.right: parent.right
        anchors.top: parent.top
        anchors.margins: -5
        width: 18; height: 18; radius: 9
        color: Theme.accent
        Text { anchors.centerIn: parent; text: button.badge; color: Theme.accentText; font.pixelSize: 11; font.bold: true }
    }
}
