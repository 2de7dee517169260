// A small rounded button of the player's bars; `hint` shows as its tooltip.
import QtQuick
import QtQuick.Controls
import Aeroloom.Services

AbstractButton {
    id: button
    property bool prominent: false
    property bool destructive: false
    property string hint: ""
    implicitHeight: 30
    implicitWidth: label.implicitWidth + 24
    hoverEnabled: true
    focusPolicy: Qt.NoFocus
    opacity: enabled ? 1 : 0.45

    ToolTip.visible: hint !== "" && hovered
    ToolTip.text: hint
    ToolTip.delay: 500

    background: Rectangle {
        radius: 8
        color: button.prominent ? (button.down ? Qt.darker(Theme.accent, 1.15) : Theme.accent)
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
}
