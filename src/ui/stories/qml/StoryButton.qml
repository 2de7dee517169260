// A small rounded button of the stories screens.
import QtQuick
import QtQuick.Controls
import Aeroloom.Services

AbstractButton {
    id: button
    property bool prominent: false
    property bool destructive: false
    /// Drawn without a frame (the buttons on a row).
    property bool plain: false
    implicitHeight: 30
    implicitWidth: label.implicitWidth + (plain ? 14 : 24)
    hoverEnabled: true
    opacity: enabled ? 1 : 0.45
    Accessible.name: text

    background: Rectangle {
        radius: 8
        color: button.prominent ? Theme.accent
             : button.hovered || button.checked ? Theme.surfaceRaised
             : button.plain ? "transparent" : Theme.surface
        border.color: button.prominent ? Theme.accent : button.checked ? Theme.accent : button.plain ? "transparent" : Theme.border
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
