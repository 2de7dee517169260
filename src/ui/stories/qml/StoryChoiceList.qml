// One choice out of a few, as a column of rows: each choice is { value, label }.
import QtQuick
import QtQuick.Layouts
import Aeroloom.Services

ColumnLayout {
    id: list
    property var choices: []
    property string value: ""
    signal picked(string value)
    spacing: 3
    opacity: enabled ? 1 : 0.5

    Repeater {
        model: list.choices
        delegate: Rectangle {
            required property var modelData
            readonly property bool current: modelData.value === list.value
            objectName: "choice-" + modelData.value
            Layout.fillWidth: true
            implicitHeight: 28
            radius: 7
            color: current ? Theme.accentSoft : area.containsMouse ? Theme.surfaceRaised : "transparent"
            border.color: current ? Theme.accent : "transparent"
            Accessible.role: Accessible.RadioButton
            Accessible.name: modelData.label
            Accessible.checked: current
            Rectangle {
                anchors.left: parent.left
                anchors.leftMargin: 9
                anchors.verticalCenter: parent.verticalCenter
                width: 12
                height: 12
                radius: 6
                color: "transparent"
                border.color: parent.current ? Theme.accent : Theme.textMuted
                border.width: parent.current ? 4 : 1.5
            }
            Text {
                anchors.left: parent.left
                anchors.leftMargin: 30
                anchors.right: parent.right
                anchors.verticalCenter: parent.verticalCenter
                text: parent.modelData.label
                color: Theme.text
                font.pixelSize: 13
                elide: Text.ElideRight
            }
            MouseArea {
                id: area
                anchors.fill: parent
                hoverEnabled: true
                cursorShape: Qt.PointingHandCursor
                onClicked: list.picked(parent.modelData.value)
            }
        }
    }
}
