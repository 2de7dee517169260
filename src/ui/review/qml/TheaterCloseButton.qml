// The round close button that stands over the theater's page.
import QtQuick
import QtQuick.Controls
import QtQuick.Shapes

AbstractButton {
    id: button
    objectName: "theaterClose"
    implicitWidth: 36
    implicitHeight: 36
    hoverEnabled: true
    Accessible.name: "Close"

    background: Rectangle {
        radius: width / 2
        color: button.down ? "#E9EEF8" : button.hovered ? "#D5DCE7" : "#B8C2D6"
        opacity: button.hovered ? 0.95 : 0.8
    }
    contentItem: Shape {
        // A cross in the middle of the disc, drawn in the page's own dark.
        ShapePath {
            strokeColor: "#0B1224"
            strokeWidth: 2.5
            capStyle: ShapePath.RoundCap
            fillColor: "transparent"
            startX: button.width * 0.34; startY: button.height * 0.34
            PathLine { x: button.width * 0.66; y: button.height * 0.66 }
            PathMove { x: button.width * 0.66; y: button.height * 0.34 }
            PathLine { x: button.width * 0.34; y: button.height * 0.66 }
        }
    }
}
