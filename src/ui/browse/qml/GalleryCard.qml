// One flight: thumbnail, place and date, duration, height, speed and its kept clips.
import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Aeroloom.Services

Rectangle {
    id: cardView
    required property var card
    required property QtObject store
    property Component thumbnail: null
    objectName: "card-" + card.id
    implicitHeight: column.implicitHeight + 12
    radius: 12
    color: hover.hovered ? Theme.surfaceRaised : Theme.surface
    border.width: card.selected ? 2 : 1
    border.color: card.selected ? Theme.accent : Theme.border

    function hide() { store.hideFlight(card.id) }
    function unhide() { store.unhideFlight(card.id) }
    function requestDelete() { store.askDelete(card.id) }

    HoverHandler { id: hover }
    TapHandler { onTapped: cardView.store.press(cardView.card.id) }
    TapHandler {
        acceptedButtons: Qt.RightButton
        onTapped: menu.popup()
    }
    Menu {
        id: menu
        MenuItem {
            text: cardView.card.hidden ? "Unhide Flight" : "Hide Flight"
            onTriggered: cardView.card.hidden ? cardView.unhide() : cardView.hide()
        }
        MenuItem { text: "Delete Flight…"; onTriggered: cardView.requestDelete() }
    }

    ColumnLayout {
        id: column
        anchors { left: parent.left; right: parent.right; top: parent.top; margins: 6 }
        spacing: 6

        Rectangle {
            Layout.fillWidth: true
            Layout.preferredHeight: width * 9 / 16
            radius: 8
            clip: true
            color: Theme.letterbox
            Text {
                anchors.centerIn: parent
                visible: cardView.thumbnail === null
                text: "✈"
                color: Qt.rgba(1, 1, 1, 0.25)
                font.pixelSize: 34
            }
            Loader {
                anchors.fill: parent
                sourceComponent: cardView.thumbnail
                onLoaded: item.source = Qt.binding(() => cardView.card.thumbUrl)
            }
            Rectangle {
                visible: cardView.card.clipCount > 0
                anchors { right: parent.right; top: parent.top; margins: 6 }
                height: 20
                width: star.implicitWidth + 12
                radius: 10
                color: Qt.rgba(0, 0, 0, 0.6)
                Text { id: star; anchors.centerIn: parent; text: "★ " + cardView.card.clipCount; color: "#FFD45C"; font.pixelSize: 11; font.bold: true }
            }
            Rectangle {
                visible: cardView.store.selecting
                anchors { left: parent.left; top: parent.top; margins: 6 }
                width: 20; height: 20; radius: 10
                color: cardView.card.selected ? Theme.accent : Qt.rgba(0, 0, 0, 0.45)
                border.color: "white"
                Text { anchors.centerIn: parent; visible: cardView.card.selected; text: "✓"; color: Theme.accentText; font.pixelSize: 12; font.bold: true }
            }
        }
        Text {
            Layout.fillWidth: true
            Layout.leftMargin: 4
            text: cardView.card.title !== "" ? cardView.card.title : cardView.card.dateText
            color: Theme.text
            font.pixelSize: 14
            font.weight: Font.DemiBold
            elide: Text.ElideRight
        }
        Text {
            Layout.fillWidth: true
            Layout.leftMargin: 4
            text: cardView.card.title !== "" ? cardView.card.dateText : cardView.card.model
            color: Theme.textMuted
            font.pixelSize: 12
            elide: Text.ElideRight
        }
        RowLayout {
            Layout.leftMargin: 4
            Layout.rightMargin: 4
            spacing: 12
            Repeater {
                model: [
                    { glyph: "◷", value: cardView.card.durationText },
                    { glyph: "↑", value: cardView.card.altitudeText },
                    { glyph: "➶", value: cardView.card.speedText }
                ]
                delegate: Text {
                    required property var modelData
                    text: modelData.glyph + " " + modelData.value
                    color: Theme.textMuted
                    font.pixelSize: 11
                }
            }
        }
    }
}
