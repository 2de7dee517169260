// One clip of the list: its name, span and length; a press plays it, the ⋯ opens its menu.
import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Aeroloom.Services

Rectangle {
    id: row
    required property string clipId
    required property string title
    required property string rangeText
    required property string lengthText
    required property string why
    required property bool suggestion
    signal playRequested()
    signal menuRequested(Item anchor)
    implicitHeight: suggestion && why !== "" ? 52 : 40
    radius: 8
    color: hover.hovered ? Theme.surfaceRaised : "transparent"

    HoverHandler { id: hover }
    TapHandler { onTapped: row.playRequested() }

    RowLayout {
        anchors.fill: parent
        anchors.leftMargin: 10
        anchors.rightMargin: 4
        spacing: 8
        Rectangle {
            Layout.preferredWidth: 4
            Layout.fillHeight: true
            Layout.topMargin: 8
            Layout.bottomMargin: 8
            radius: 2
            color: row.suggestion ? Theme.warm : Theme.accent
        }
        ColumnLayout {
            Layout.fillWidth: true
            spacing: 2
            Text {
                Layout.fillWidth: true
                text: row.title
                color: Theme.text
                font.pixelSize: 13
                font.weight: Font.Medium
                elide: Text.ElideRight
            }
            Text {
                Layout.fillWidth: true
                text: row.rangeText + "  ·  " + row.lengthText
                color: Theme.textMuted
                font.pixelSize: 11
                font.family: "monospace"
            }
            Text {
                Layout.fillWidth: true
                visible: row.suggestion && row.why !== ""
                text: row.why
                color: Theme.warm
                font.pixelSize: 11
                elide: Text.ElideRight
            }
        }
        PlayerButton {
            id: more
            objectName: "clipMenuButton-" + row.clipId
            text: "⋯"
            implicitWidth: 32
            onClicked: row.menuRequested(more)
        }
    }
}
