// For people who have no account yet.
import QtQuick
import QtQuick.Layouts
import Aeroloom.Services

Rectangle {
    id: panel
    property LoginViewModel model
    implicitHeight: column.implicitHeight + 32
    radius: 12
    color: Theme.surface
    border.color: Theme.border

    ColumnLayout {
        id: column
        anchors.fill: parent
        anchors.margins: 16
        spacing: 6
        Text {
            text: panel.model.learnMoreHead
            color: Theme.text
            font.pixelSize: 14
            font.weight: Font.DemiBold
        }
        Text {
            Layout.fillWidth: true
            text: panel.model.learnMoreText
            color: Theme.textMuted
            font.pixelSize: 13
            lineHeight: 1.2
            wrapMode: Text.WordWrap
        }
        Text {
            objectName: "learnMoreLink"
            visible: panel.model.learnMoreUrl !== ""
            text: panel.model.learnMoreLink
            color: Theme.accent
            font.pixelSize: 13
            font.weight: Font.DemiBold
            MouseArea {
                anchors.fill: parent
                cursorShape: Qt.PointingHandCursor
                onClicked: Qt.openUrlExternally(panel.model.learnMoreUrl)
            }
        }
    }
}
