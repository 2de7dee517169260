import QtQuick
import QtQuick.Controls
import Aeroloom.Services

Rectangle {
    implicitWidth: label.implicitWidth + 12
    implicitHeight: 18
    radius: 5
    gradient: Gradient {
        orientation: Gradient.Horizontal
        GradientStop { position: 0; color: Theme.warm }
        GradientStop { position: 1; color: Qt.lighter(Theme.warm, 1.25) }
    }
    ToolTip.text: "Pro plan"
    ToolTip.visible: hover.hovered
    HoverHandler { id: hover }
    Text {
        id: label
        anchors.centerIn: parent
        text: "PRO"
        color: "#1A1006"
        font.pixelSize: 10
        font.weight: Font.Black
        font.letterSpacing: 0.8
    }
}
