// The cut list as a table: Label, Output and Status of every entry.
import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Aeroloom.Services

Rectangle {
    id: table
    required property var rows

    radius: 10
    color: Theme.surface
    border.color: Theme.border
    clip: true

    readonly property real labelWidth: width * 0.42
    readonly property real outputWidth: width * 0.28

    component HeaderCell: Text {
        color: Theme.textMuted
        font.pixelSize: 11
        font.weight: Font.DemiBold
        font.capitalization: Font.AllUppercase
        font.letterSpacing: 0.6
    }

    Rectangle {
        id: header
        width: parent.width
        height: 32
        color: Theme.surfaceRaised
        radius: 10
        Rectangle { anchors.bottom: parent.bottom; width: parent.width; height: 10; color: parent.color }
        Rectangle { anchors.bottom: parent.bottom; width: parent.width; height: 1; color: Theme.border }
        HeaderCell { x: 14; anchors.verticalCenter: parent.verticalCenter; text: "Label" }
        HeaderCell { x: table.labelWidth + 14; anchors.verticalCenter: parent.verticalCenter; text: "Output" }
        HeaderCell { x: table.labelWidth + table.outputWidth + 14; anchors.verticalCenter: parent.verticalCenter; text: "Status" }
    }

    ListView {
        id: list
        objectName: "cutRows"
        anchors.top: header.bottom
        anchors.bottom: parent.bottom
        width: parent.width
        clip: true
        model: table.rows
        ScrollBar.vertical: ScrollBar {}
        delegate: Rectangle {
            id: row
            required property int index
            required property string label
            required property string output
            required property string statusText
            required property string status
            required property double progress
            width: ListView.view.width
            height: Math.max(36, statusCell.implicitHeight + 16)
            color: index % 2 === 1 ? Qt.rgba(Theme.surfaceRaised.r, Theme.surfaceRaised.g, Theme.surfaceRaised.b, 0.6)
                                   : "transparent"

            Text {
                x: 14
                width: table.labelWidth - 24
                anchors.verticalCenter: parent.verticalCenter
                text: row.label
                color: Theme.text
                font.pixelSize: 13
                elide: Text.ElideRight
            }
            Text {
                x: table.labelWidth + 14
                width: table.outputWidth - 24
                anchors.verticalCenter: parent.verticalCenter
                text: row.output
                color: Theme.textMuted
                font.pixelSize: 12
                font.family: "DejaVu Sans Mono"
                elide: Text.ElideMiddle
            }
            RowLayout {
                id: statusCell
                x: table.labelWidth + table.outputWidth + 14
                width: table.width - x - 14
                anchors.verticalCenter: parent.verticalCenter
                spacing: 8

                // A folder with a question mark: the original wasn't found.
                Rectangle {
                    visible: row.status === "missingSource"
                    implicitWidth: 18
                    implicitHeight: 14
                    radius: 3
                    color: Theme.warm
                    Rectangle { x: 1; y: -3; width: 8; height: 4; radius: 1.5; color: Theme.warm }
                    Text { anchors.centerIn: parent; text: "?"; color: Theme.background; font.pixelSize: 10; font.weight: Font.Bold }
                }
                ProgressBar {
                    visible: row.status === "cutting"
                    Layout.preferredWidth: 80
                    value: row.progress
                    background: Rectangle { implicitHeight: 6; radius: 3; color: Theme.surfaceRaised; border.color: Theme.border }
                    contentItem: Item {
                        implicitHeight: 6
                        Rectangle {
                            width: parent.width * Math.min(1, row.progress)
                            height: parent.height
                            radius: 3
                            color: Theme.accent
                        }
                    }
                }
                Text {
                    Layout.fillWidth: true
                    text: row.statusText
                    wrapMode: Text.Wrap
                    maximumLineCount: 5
                    elide: Text.ElideRight
                    font.pixelSize: 12
                    font.weight: row.status === "done" ? Font.DemiBold : Font.Normal
                    color: row.status === "failed" ? Theme.danger
                         : row.status === "done" ? Theme.success
                         : row.status === "missingSource" || row.status === "zeroDuration" ? Theme.warm
                         : row.status === "pending" ? Theme.text : Theme.textMuted
                }
            }
        }
    }
}
