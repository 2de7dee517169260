import QtQuick
import QtQuick.Controls
import Aeroloom.Services

Button {
    id: button
    property bool primary: true
    implicitHeight: 46
    font.pixelSize: 15
    font.weight: Font.DemiBold
    hoverEnabled: true

    contentItem: Text {
        text: button.text
        font: button.font
        color: button.primary ? (button.enabled ? Theme.accentText : Theme.textMuted) : Theme.text
        horizontalAlignment: Text.AlignHCenter
        verticalAlignment: Text.AlignVCenter
    }
    background: Rectangle {
        radius: 10
        color: !button.primary ? (button.hovered ? Theme.surfaceRaised : "transparent")
             : !button.enabled ? Theme.accentSoft
             : button.down ? Qt.darker(Theme.accent, 1.15)
             : button.hovered ? Qt.lighter(Theme.accent, 1.08) : Theme.accent
        border.width: button.primary ? 0 : 1
        border.color: Theme.border
    }
}
