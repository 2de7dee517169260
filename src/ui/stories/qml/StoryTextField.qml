// A text field of the stories screens.
import QtQuick
import QtQuick.Controls
import Aeroloom.Services

TextField {
    implicitHeight: 32
    leftPadding: 10
    rightPadding: 10
    placeholderTextColor: Theme.textMuted
    color: Theme.text
    font.pixelSize: 13
    selectByMouse: true
    background: Rectangle { radius: 8; color: Theme.field; border.color: parent.activeFocus ? Theme.accent : Theme.border }
}
