// What the theater shows when its page can't be loaded: a signal with a warning, the words,
// and "Close", the only way on. There is no retry.
import QtQuick
import QtQuick.Controls
import QtQuick.Shapes
import Aeroloom.Services

Rectangle {
    id: failure
    objectName: "theaterFailure"
    property alias text: words.text
    signal closed()
    color: "#0B1224"

    Column {
        anchors.centerIn: parent
        spacing: 18

        // Radio waves with an exclamation mark beside them.
        Item {
            anchors.horizontalCenter: parent.horizontalCenter
            width: 76
            height: 52
            Shape {
                anchors.fill: parent
                ShapePath {
                    strokeColor: "#8E9BB8"
                    strokeWidth: 5
                    capStyle: ShapePath.RoundCap
                    fillColor: "transparent"
                    startX: 4; startY: 18
                    PathArc { x: 56; y: 18; radiusX: 36; radiusY: 36 }
                    PathMove { x: 13; y: 29 }
                    PathArc { x: 47; y: 29; radiusX: 24; radiusY: 24 }
                    PathMove { x: 22; y: 40 }
                    PathArc { x: 38; y: 40; radiusX: 11; radiusY: 11 }
                }
                ShapePath {
                    strokeColor: Theme.warm
                    strokeWidth: 5
                    capStyle: ShapePath.RoundCap
                    fillColor: "transparent"
                    startX: 70; startY: 8
                    PathLine { x: 70; y: 34 }
                }
            }
            Rectangle { x: 27; y: 45; width: 7; height: 7; radius: 3.5; color: "#8E9BB8" }
            Rectangle { x: 67; y: 44; width: 6; height: 6; radius: 3; color: Theme.warm }
        }

        Text {
            id: words
            anchors.horizontalCenter: parent.horizontalCenter
            color: "#E9EEF8"
            font.pixelSize: 17
            font.weight: Font.DemiBold
        }

        Button {
            id: close
            objectName: "theaterFailureClose"
            anchors.horizontalCenter: parent.horizontalCenter
            text: "Close"
            implicitWidth: 120
            implicitHeight: 38
            hoverEnabled: true
            onClicked: failure.closed()
            contentItem: Text {
                text: close.text
                color: Theme.accentText
                font.pixelSize: 14
                font.weight: Font.DemiBold
                horizontalAlignment: Text.AlignHCenter
                verticalAlignment: Text.AlignVCenter
            }
            background: Rectangle {
                radius: 10
                color: close.down ? Qt.darker(Theme.accent, 1.15) : close.hovered ? Qt.lighter(Theme.accent, 1.08) : Theme.accent
            }
        }
    }
}
