// A switch of the cut window, drawn in the window's palette.
import QtQuick
import QtQuick.Controls
import Aeroloom.Services

Switch {
    id: control
    font.pixelSize: 13
    font.family: "DejaVu Sans"
    indicator: Rectangle {
        implicitWidth: 36
        implicitHeight: 20
        x: control.leftPadding
        y: parent.height / 2 - height / 2
        radius: height / 2
        opacity: control.enabled ? 1 : 0.5
        color: control.checked ? Theme.accent : Theme.surfaceRaised
        border.color: control.checked ? Theme.accent : Theme.border
        Rectangle {
            x: control.checked ? parent.width - width - 3 : 3
            anchors.verticalCenter: parent.verticalCenter
            width: 14
            height: 14
            radius: 7
            color: control.checked ? Theme.accentText : Theme.textMuted
        }
    }
    contentItem: Text {
        text: control.text
        font: control.font
        color: control.enabled ? Theme.text : Theme.textMuted
        verticalAlignment: Text.AlignVCenter
        leftPadding: control.indicator.width + control.spacing
    }
}
