// A button of the cut window: filled for the main action, outlined otherwise, with an optional
// symbol before its words.
import QtQuick
import QtQuick.Controls
import Aeroloom.Services

Button {
    id: button
    property bool primary: false
    property string symbol: ""
    implicitHeight: primary ? 40 : 32
    leftPadding: primary ? 18 : 12
    rightPadding: primary ? 18 : 12
    font.pixelSize: primary ? 14 : 13
    font.weight: Font.DemiBold
    font.family: "DejaVu Sans"
    hoverEnabled: true

    contentItem: Text {
        text: (button.symbol !== "" ? button.symbol + "  " : "") + button.text
        font: button.font
        color: button.primary ? (button.enabled ? Theme.accentText : Theme.textMuted)
             : (button.enabled ? Theme.text : Theme.textMuted)
        horizontalAlignment: Text.AlignHCenter
        verticalAlignment: Text.AlignVCenter
        elide: Text.ElideRight
    }
    background: Rectangle {
        radius: 8
        color: !button.primary ? (button.hovered && button.enabled ? Theme.surfaceRaised : "transparent")
             : !button.enabled ? Theme.accentSoft
             : button.down ? Qt.darker(Theme.accent, 1.15)
             : button.hovered ? Qt.lighter(Theme.accent, 1.08) : Theme.accent
        border.width: button.primary ? 0 : 1
        border.color: Theme.border
    }
}
