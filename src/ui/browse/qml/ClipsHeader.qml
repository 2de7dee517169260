// Title and count line, the filter and grouping, "Play all" and "Select".
import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Aeroloom.Services

RowLayout {
    id: header
    required property QtObject browser
    spacing: 10

    ColumnLayout {
        spacing: 2
        Text {
            text: "Clips"
            color: Theme.text
            font.pixelSize: 26
            font.weight: Font.Bold
        }
        Text {
            objectName: "clipsCountLine"
            text: header.browser.placeLine !== "" ? header.browser.countLine + " · " + header.browser.placeLine
                                                : header.browser.countLine
            color: Theme.textMuted
            font.pixelSize: 13
        }
    }
    Item { Layout.fillWidth: true }

    component Choices: Row {
        id: choices
        property var options: []
        property string current: ""
        signal chosen(string value)
        spacing: 0
        Repeater {
            model: choices.options
            delegate: GalleryButton {
                required property var modelData
                text: modelData.label
                prominent: choices.current === modelData.value
                onClicked: choices.chosen(modelData.value)
            }
        }
    }

    Choices {
        options: header.browser.filterChoices
        current: header.browser.filter
        onChosen: value => header.browser.filter = value
    }
    Text { text: "Group"; color: Theme.textMuted; font.pixelSize: 12; Layout.leftMargin: 6 }
    Choices {
        options: header.browser.groupChoices
        current: header.browser.group
        onChosen: value => header.browser.group = value
    }
    GalleryButton {
        objectName: "playAllButton"
        text: "▶ Play all"
        visible: header.browser.visibleCount > 0
        onClicked: header.browser.playAllClips()
    }
    GalleryButton {
        text: header.browser.selecting ? "Done" : "Select"
        prominent: header.browser.selecting
        onClicked: header.browser.toggleSelecting()
    }
}
