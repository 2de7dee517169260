// Shown while picking flights for an auto-story.
import QtQuick
import QtQuick.Layouts
import Aeroloom.Services

Rectangle {
    id: bar
    required property QtObject store
    implicitHeight: 44
    radius: 10
    color: Theme.accentSoft

    RowLayout {
        anchors.fill: parent
        anchors.leftMargin: 14
        anchors.rightMargin: 8
        spacing: 8
        Text { text: bar.store.selectedText; color: Theme.text; font.pixelSize: 13; font.weight: Font.DemiBold }
        Item { Layout.fillWidth: true }
        GalleryButton { text: "Clear"; onClicked: bar.store.clearSelection() }
        GalleryButton { text: "Done"; onClicked: bar.store.finishSelecting() }
        GalleryButton {
            text: bar.store.directing ? "Making…" : "Create auto-story"
            prominent: true
            enabled: bar.store.canCreateAutoStory
            onClicked: bar.store.askAutoStory()
        }
    }
}
