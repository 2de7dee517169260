// The hub's title, its counts, the filter and the hub's buttons.
import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Aeroloom.Services

ColumnLayout {
    id: header
    required property QtObject hub
    signal newStoryRequested()
    signal autoStoryRequested()
    spacing: 10

    RowLayout {
        Layout.fillWidth: true
        spacing: 10
        ColumnLayout {
            spacing: 2
            Text { text: "Stories"; color: Theme.text; font.pixelSize: 26; font.weight: Font.Bold }
            Text {
                objectName: "hubHeader"
                text: header.hub.headerText
                color: Theme.textMuted
                font.pixelSize: 13
            }
        }
        Item { Layout.fillWidth: true }
        StoryButton {
            objectName: "autoStoryButton"
            text: header.hub.drafting ? "✨ Drafting…" : "✨ Auto-story"
            enabled: !header.hub.drafting
            onClicked: header.autoStoryRequested()
        }
        StoryButton { objectName: "newStoryButton"; text: "＋ New story"; prominent: true; onClicked: header.newStoryRequested() }
        StoryButton {
            text: "↻"
            onClicked: header.hub.refresh()
            Accessible.name: "Refresh"
            ToolTip.text: "Refresh"
            ToolTip.visible: hovered
        }
    }

    Row {
        spacing: 6
        Repeater {
            model: header.hub.filterChoices
            delegate: StoryButton {
                required property var modelData
                objectName: "filter-" + modelData.value
                text: modelData.label
                checked: header.hub.filter === modelData.value
                implicitHeight: 26
                onClicked: header.hub.filter = modelData.value
            }
        }
    }
}
