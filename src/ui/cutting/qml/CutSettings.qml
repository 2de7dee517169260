// Where the originals are, where the clips go, and how they are cut.
import QtQuick
import QtQuick.Layouts
import Aeroloom.Services

Rectangle {
    id: settings
    required property QtObject model
    signal originalsWanted()
    signal outputWanted()

    implicitHeight: grid.implicitHeight + 24
    radius: 10
    color: Theme.surface
    border.color: Theme.border

    component Caption: Text {
        color: Theme.textMuted
        font.pixelSize: 12
        font.weight: Font.DemiBold
        Layout.preferredWidth: 80
    }
    component PathText: Text {
        Layout.fillWidth: true
        color: Theme.text
        font.pixelSize: 13
        elide: Text.ElideMiddle
    }

    GridLayout {
        id: grid
        anchors.fill: parent
        anchors.margins: 12
        columns: 4
        columnSpacing: 12
        rowSpacing: 8

        Caption { text: "Originals" }
        PathText { text: settings.model.originalsFolder !== "" ? settings.model.originalsFolder : "Not chosen" }
        Text { text: settings.model.indexText; color: Theme.textMuted; font.pixelSize: 12 }
        CutButton {
            text: "Choose…"
            enabled: !settings.model.running
            onClicked: settings.originalsWanted()
        }

        Caption { text: "Save to" }
        PathText { text: settings.model.outputRoot !== "" ? settings.model.reelFolder : "Not chosen" }
        Item { implicitWidth: 1 }
        CutButton {
            text: "Choose…"
            enabled: !settings.model.running
            onClicked: settings.outputWanted()
        }

        Caption { text: "Mode" }
        RowLayout {
            Layout.columnSpan: 3
            spacing: 16
            Rectangle {
                implicitWidth: modes.implicitWidth + 6
                implicitHeight: 30
                radius: 8
                color: Theme.surfaceRaised
                border.color: Theme.border
                opacity: settings.model.running ? 0.6 : 1
                Row {
                    id: modes
                    anchors.centerIn: parent
                    spacing: 3
                    Repeater {
                        model: [{ text: "Fast (±1–2 s)", fast: true }, { text: "Frame-accurate", fast: false }]
                        delegate: Rectangle {
                            required property var modelData
                            readonly property bool current: settings.model.fast === modelData.fast
                            width: label.implicitWidth + 24
                            height: 24
                            radius: 6
                            color: current ? Theme.accent : "transparent"
                            Text {
                                id: label
                                anchors.centerIn: parent
                                text: parent.modelData.text
                                color: parent.current ? Theme.accentText : Theme.text
                                font.pixelSize: 12
                                font.weight: Font.DemiBold
                            }
                            MouseArea {
                                anchors.fill: parent
                                enabled: !settings.model.running
                                cursorShape: Qt.PointingHandCursor
                                onClicked: settings.model.fast = parent.modelData.fast
                            }
                        }
                    }
                }
            }
            CutToggle {
                text: "Re-cut existing"
                checked: settings.model.force
                enabled: !settings.model.running
                onToggled: settings.model.force = checked
            }
        }
    }
}
