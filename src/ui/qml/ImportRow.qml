// One flight of the import queue: its still, its name, its phase in words and a bar.
import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Aeroloom.Services

Rectangle {
    id: row
    required property string flightId
    required property string fileName
    required property string phaseText
    required property var progress
    required property url thumb
    required property bool terminal
    required property int phase
    property bool running: false
    signal removeRequested(string id)

    readonly property bool done: phase === 5     // IngestPhase kind Done
    readonly property bool failed: phase === 6
    implicitHeight: 64
    radius: 8
    color: hover.hovered ? Theme.surfaceRaised : "transparent"
    HoverHandler { id: hover }

    RowLayout {
        anchors.fill: parent
        anchors.leftMargin: 10
        anchors.rightMargin: 10
        spacing: 12

        Rectangle {
            implicitWidth: 80
            implicitHeight: 45
            radius: 6
            // Until processing makes a still, the kind of file stands in for it.
            color: still.status === Image.Ready ? Theme.letterbox : Theme.surfaceRaised
            border.width: still.status === Image.Ready ? 0 : 1
            border.color: Theme.border
            clip: true
            Text {
                anchors.centerIn: parent
                visible: still.status !== Image.Ready
                text: row.fileName.lastIndexOf(".") > 0 ? row.fileName.slice(row.fileName.lastIndexOf(".") + 1).toUpperCase() : ""
                color: Theme.textMuted
                font.pixelSize: 11
                font.weight: Font.DemiBold
                font.letterSpacing: 1
            }
            Image {
                id: still
                anchors.fill: parent
                source: row.thumb
                fillMode: Image.PreserveAspectCrop
                asynchronous: true
                visible: status === Image.Ready
            }
        }
        ColumnLayout {
            Layout.fillWidth: true
            spacing: 4
            Text {
                text: row.fileName + (row.done ? " added to your library" : "")
                color: Theme.text
                font.pixelSize: 14
                font.weight: Font.DemiBold
                elide: Text.ElideMiddle
                Layout.fillWidth: true
            }
            Text {
                text: row.phaseText
                color: row.failed ? Theme.danger : row.done ? Theme.success : Theme.textMuted
                font.pixelSize: 12
                elide: Text.ElideRight
                Layout.fillWidth: true
            }
            ProgressBar {
                Layout.fillWidth: true
                visible: row.progress !== undefined && !row.terminal
                value: row.progress === undefined ? 0 : row.progress
                implicitHeight: 4
                background: Rectangle { radius: 2; color: Theme.border }
                contentItem: Item {
                    Rectangle {
                        width: parent.width * (row.progress === undefined ? 0 : row.progress)
                        height: parent.height
                        radius: 2
                        color: Theme.accent
                    }
                }
            }
        }
        AeroButton {
            primary: false
            implicitHeight: 30
            font.pixelSize: 12
            leftPadding: 12; rightPadding: 12
            text: row.terminal ? "Clear" : "Remove"
            ToolTip.visible: hovered
            ToolTip.text: row.terminal ? "Clear from the list" : "Remove this flight — the rest keep going"
            onClicked: row.removeRequested(row.flightId)
        }
    }
}
