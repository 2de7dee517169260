import QtQuick
import QtQuick.Controls
import Aeroloom.Services

TextField {
    id: field
    implicitHeight: 46
    leftPadding: 14
    rightPadding: 14
    color: Theme.text
    placeholderTextColor: Theme.textMuted
    selectionColor: Theme.accent
    selectedTextColor: Theme.accentText
    font.pixelSize: 15
    background: Rectangle {
        radius: 10
        color: Theme.field
        border.width: field.activeFocus ? 2 : 1
        border.color: field.activeFocus ? Theme.accent : Theme.border
    }
}
