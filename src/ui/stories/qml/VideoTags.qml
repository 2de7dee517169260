// The tags of a made video as small chips, then its music.
import QtQuick
import QtQuick.Layouts
import Aeroloom.Services

Flow {
    id: tagsRow
    property var tags: []
    property string music: ""
    spacing: 6

    Repeater {
        model: tagsRow.tags
        delegate: Rectangle {
            required property string modelData
            width: label.implicitWidth + 14
            height: 20
            radius: 10
            color: modelData.startsWith("⚠") ? Qt.rgba(Theme.warm.r, Theme.warm.g, Theme.warm.b, 0.18) : Theme.surfaceRaised
            border.color: Theme.border
            Text {
                id: label
                anchors.centerIn: parent
                text: parent.modelData
                color: parent.modelData.startsWith("⚠") ? Theme.warm : Theme.text
                font.pixelSize: 11
                font.weight: Font.Medium
            }
        }
    }
    Text {
        visible: tagsRow.music !== ""
        height: 20
        verticalAlignment: Text.AlignVCenter
        text: "♪ " + tagsRow.music
        color: Theme.textMuted
        font.pixelSize: 11
    }
}
