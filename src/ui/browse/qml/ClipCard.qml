// One clip: its first frame, label, length, place and date; a suggestion shows why.
import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Aeroloom.Services

Rectangle {
    id: cardView
    required property var card
    required property QtObject browser
    property Component thumbnail: null
    objectName: "clip-" + card.key
    implicitHeight: column.implicitHeight + 12
    radius: 12
    color: hover.hovered ? Theme.surfaceRaised : Theme.surface
    border.width: card.picked ? 2 : 1
    border.color: card.picked ? Theme.accent : Theme.border

    function press() { browser.press(card.key) }

    HoverHandler { id: hover }
    TapHandler { onTapped: cardView.press() }

    ColumnLayout {
        id: column
        anchors { left: parent.left; right: parent.right; top: parent.top; margins: 6 }
        spacing: 5

        Rectangle {
            Layout.fillWidth: true
            Layout.preferredHeight: width * 9 / 16
            radius: 8
            clip: true
            color: Theme.letterbox
            Text {
                anchors.centerIn: parent
                visible: cardView.thumbnail === null
                text: "▶"
                color: Qt.rgba(1, 1, 1, 0.25)
                font.pixelSize: 30
            }
            Loader {
                anchors.fill: parent
                sourceComponent: cardView.thumbnail
                onLoaded: {
                    item.source = Qt.binding(() => cardView.card.thumbUrl)
                    item.letterbox = Qt.binding(() => cardView.card.vertical)
                }
            }
            Rectangle {
                anchors { right: parent.right; bottom: parent.bottom; margins: 6 }
                height: 20
                width: length.implicitWidth + 12
                radius: 10
                color: Qt.rgba(0, 0, 0, 0.6)
                Text { id: length; anchors.centerIn: parent; text: cardView.card.lengthText; color: "white"; font.pixelSize: 11; font.bold: true }
            }
            Rectangle {
                visible: cardView.card.suggested
                anchors { right: parent.right; top: parent.top; margins: 6 }
                height: 20
                width: mark.implicitWidth + 12
                radius: 10
                color: Qt.rgba(0, 0, 0, 0.6)
                Text { id: mark; anchors.centerIn: parent; text: "✦ suggested"; color: "#FFD45C"; font.pixelSize: 11; font.bold: true }
            }
            Rectangle {
                visible: cardView.browser.selecting
                anchors { left: parent.left; top: parent.top; margins: 6 }
                width: 20; height: 20; radius: 10
                color: cardView.card.picked ? Theme.accent : Qt.rgba(0, 0, 0, 0.45)
                border.color: "white"
                Text { anchors.centerIn: parent; visible: cardView.card.picked; text: "✓"; color: Theme.accentText; font.pixelSize: 12; font.bold: true }
            }
        }
        Text {
            Layout.fillWidth: true
            Layout.leftMargin: 4
            text: cardView.card.title
            color: Theme.text
            font.pixelSize: 14
            font.weight: Font.DemiBold
            elide: Text.ElideRight
        }
        Text {
            Layout.fillWidth: true
            Layout.leftMargin: 4
            text: cardView.card.dateText !== "" ? cardView.card.placeText + " · " + cardView.card.dateText
                                                : cardView.card.placeText
            color: Theme.textMuted
            font.pixelSize: 12
            elide: Text.ElideRight
        }
        Text {
            Layout.fillWidth: true
            Layout.leftMargin: 4
            Layout.rightMargin: 4
            // Laid out on every card, so the cards of a row stand equally tall.
            text: cardView.card.why !== "" ? cardView.card.why : " "
            color: Theme.warm
            font.pixelSize: 11
            elide: Text.ElideRight
        }
    }
}
