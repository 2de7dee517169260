// The welcome panel of the sign-in screen: a drawn dusk over a coastal lagoon with a flight
// path across it, the brand, and the line that says what the program is for.
import QtQuick
import QtQuick.Shapes
import Aeroloom.Services

Item {
    id: welcome
    property string headline
    readonly property real w: width
    readonly property real h: height
    clip: true
    Accessible.role: Accessible.Graphic
    Accessible.name: "Aerial drone footage over a coastal lagoon"

    // Sky.
    Rectangle {
        anchors.fill: parent
        gradient: Gradient {
            GradientStop { position: 0.0; color: Theme.heroTop }
            GradientStop { position: 0.55; color: Theme.heroMiddle }
            GradientStop { position: 0.78; color: Theme.heroBottom }
        }
    }

    // Stars, only where the sky is dark.
    Repeater {
        model: Theme.dark ? 36 : 0
        delegate: Rectangle {
            required property int index
            x: ((index * 73 + 11) % 97) / 97 * welcome.w
            y: ((index * 41 + 7) % 53) / 100 * welcome.h
            width: index % 5 === 0 ? 3 : 2
            height: width
            radius: width / 2
            color: "white"
            opacity: 0.25 + (index % 4) * 0.15
        }
    }

    // Low sun over the ridge, with a soft glow of stacked discs.
    Repeater {
        model: 9
        delegate: Rectangle {
            required property int index
            readonly property real size: welcome.w * (0.13 + index * 0.035)
            x: welcome.w * 0.66 - size / 2
            y: welcome.h * 0.64 - size / 2
            width: size
            height: size
            radius: size / 2
            color: index === 0 ? Qt.lighter(Theme.warm, 1.35) : Theme.warm
            opacity: index === 0 ? 0.95 : 0.075 - index * 0.006
        }
    }

    // Far ridge.
    Shape {
        anchors.fill: parent
        ShapePath {
            strokeColor: "transparent"
            fillColor: Theme.dark ? Qt.rgba(0.13, 0.17, 0.34, 0.92) : Qt.rgba(0.29, 0.42, 0.62, 0.85)
            startX: 0; startY: welcome.h * 0.70
            PathQuad { x: welcome.w * 0.28; y: welcome.h * 0.62; controlX: welcome.w * 0.14; controlY: welcome.h * 0.58 }
            PathQuad { x: welcome.w * 0.55; y: welcome.h * 0.71; controlX: welcome.w * 0.42; controlY: welcome.h * 0.68 }
            PathQuad { x: welcome.w * 0.82; y: welcome.h * 0.64; controlX: welcome.w * 0.70; controlY: welcome.h * 0.60 }
            PathQuad { x: welcome.w; y: welcome.h * 0.69; controlX: welcome.w * 0.93; controlY: welcome.h * 0.64 }
            PathLine { x: welcome.w; y: welcome.h }
            PathLine { x: 0; y: welcome.h }
        }
    }
    // Near headland.
    Shape {
        anchors.fill: parent
        ShapePath {
            strokeColor: "transparent"
            fillColor: Theme.dark ? "#0A1228" : "#24406A"
            startX: 0; startY: welcome.h * 0.74
            PathCubic {
                x: welcome.w * 0.46; y: welcome.h * 0.80
                control1X: welcome.w * 0.16; control1Y: welcome.h * 0.66
                control2X: welcome.w * 0.30; control2Y: welcome.h * 0.78
            }
            PathLine { x: welcome.w * 0.46; y: welcome.h }
            PathLine { x: 0; y: welcome.h }
        }
    }

    // The lagoon: calm water reflecting the sky, with a few strokes of light.
    Rectangle {
        x: 0
        y: welcome.h * 0.79
        width: welcome.w
        height: welcome.h * 0.21
        gradient: Gradient {
            GradientStop { position: 0.0; color: Theme.dark ? "#1C2750" : "#6F93C2" }
            GradientStop { position: 1.0; color: Theme.dark ? "#070D1C" : "#2B4C7A" }
        }
    }
    Repeater {
        model: 9
        delegate: Rectangle {
            required property int index
            x: welcome.w * (0.66 + (((index * 37) % 9) - 4) / 100) - width / 2
            y: welcome.h * (0.81 + index * 0.018)
            width: welcome.w * (0.20 - index * 0.016)
            height: 2
            radius: 1
            color: Theme.warm
            opacity: 0.7 - index * 0.07
        }
    }

    // A dashed flight path rising from the shore, and the drone at its head.
    Shape {
        anchors.fill: parent
        ShapePath {
            strokeColor: Qt.rgba(1, 1, 1, 0.75)
            strokeWidth: 2
            strokeStyle: ShapePath.DashLine
            dashPattern: [4, 4]
            fillColor: "transparent"
            capStyle: ShapePath.RoundCap
            startX: welcome.w * 0.16; startY: welcome.h * 0.745
            PathCubic {
                x: welcome.w * 0.78; y: welcome.h * 0.26
                control1X: welcome.w * 0.46; control1Y: welcome.h * 0.80
                control2X: welcome.w * 0.36; control2Y: welcome.h * 0.26
            }
        }
    }
    Rectangle {
        x: welcome.w * 0.16 - width / 2
        y: welcome.h * 0.745 - height / 2
        width: 10; height: 10; radius: 5
        color: "transparent"
        border.color: "white"
        border.width: 2
    }
    Item {
        x: welcome.w * 0.78
        y: welcome.h * 0.26
        Rectangle { anchors.centerIn: parent; width: 44; height: 44; radius: 22; color: "white"; opacity: 0.12 }
        Rectangle { anchors.centerIn: parent; width: 24; height: 24; radius: 12; color: "white"; opacity: 0.25 }
        Rectangle { anchors.centerIn: parent; width: 12; height: 12; radius: 6; color: "white" }
    }

    // Shade under the words so they read on any sky.
    Rectangle {
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.bottom: parent.bottom
        height: parent.height * 0.42
        gradient: Gradient {
            GradientStop { position: 0.0; color: "transparent" }
            GradientStop { position: 1.0; color: Qt.rgba(0.02, 0.04, 0.10, 0.78) }
        }
    }

    // Brand.
    Row {
        x: 36
        y: 32
        spacing: 10
        Rectangle {
            width: 30; height: 30; radius: 9
            gradient: Gradient {
                GradientStop { position: 0; color: "#46B8FF" }
                GradientStop { position: 1; color: "#2A6BE0" }
            }
            Shape {
                anchors.fill: parent
                ShapePath {
                    strokeColor: "white"
                    strokeWidth: 2.5
                    fillColor: "transparent"
                    capStyle: ShapePath.RoundCap
                    joinStyle: ShapePath.RoundJoin
                    startX: 8; startY: 19
                    PathLine { x: 15; y: 11 }
                    PathLine { x: 22; y: 19 }
                }
            }
        }
        Text {
            anchors.verticalCenter: parent.verticalCenter
            text: "Ornivale"
            color: "white"
            font.pixelSize: 19
            font.weight: Font.Bold
            font.letterSpacing: 0.4
        }
    }

    Text {
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.bottom: parent.bottom
        anchors.margins: 40
        anchors.bottomMargin: 48
        text: welcome.headline
        color: "white"
        font.pixelSize: Math.max(30, Math.min(46, welcome.w / 11))
        font.weight: Font.Bold
        wrapMode: Text.WordWrap
        style: Text.Raised
        styleColor: Qt.rgba(0, 0, 0, 0.25)
    }
}
