// Shown while picking clips for a new story.
import QtQuick
import QtQuick.Layouts
import Aeroloom.Services

Rectangle {
    id: bar
    required property QtObject browser
    implicitHeight: 44
    radius: 10
    color: Theme.accentSoft

    RowLayout {
        anchors.fill: parent
        anchors.leftMargin: 14
        anchors.rightMargin: 8
        spacing: 8
        Text { text: bar.browser.selectedText; color: Theme.text; font.pixelSize: 13; font.weight: Font.DemiBold }
        Text {
            objectName: "mixedAspectWarning"
            visible: bar.browser.mixedAspect
            text: "can't mix wide + tall in one story"
            color: Theme.warm
            font.pixelSize: 12
        }
        Item { Layout.fillWidth: true }
        GalleryButton { text: "Cancel"; onClicked: bar.browser.cancelSelecting() }
        GalleryButton {
            text: "Make a story"
            prominent: true
            enabled: bar.browser.canMakeStory
            onClicked: bar.browser.makeStory()
        }
    }
}
