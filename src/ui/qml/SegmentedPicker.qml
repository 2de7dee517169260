// A row of mutually exclusive choices, such as the ways to sign in.
import QtQuick
import QtQuick.Layouts
import Aeroloom.Services

Rectangle {
    id: picker
    property var model: []
    property int currentIndex: 0
    signal activated(int index)

    implicitHeight: 38
    radius: 10
    color: Theme.surfaceRaised
    border.color: Theme.border

    RowLayout {
        anchors.fill: parent
        anchors.margins: 3
        spacing: 3
        Repeater {
            model: picker.model
            delegate: Rectangle {
                required property int index
                required property string modelData
                readonly property bool current: index === picker.currentIndex
                Layout.fillWidth: true
                Layout.fillHeight: true
                radius: 8
                color: current ? Theme.accent : (area.containsMouse ? Theme.accentSoft : "transparent")
                Accessible.role: Accessible.RadioButton
                Accessible.name: modelData
                Text {
                    anchors.centerIn: parent
                    text: parent.modelData
                    color: parent.current ? Theme.accentText : Theme.text
                    font.pixelSize: 13
                    font.weight: Font.DemiBold
                }
                MouseArea {
                    id: area
                    anchors.fill: parent
                    hoverEnabled: true
                    cursorShape: Qt.PointingHandCursor
                    onClicked: picker.activated(parent.index)
                }
            }
        }
    }
}
