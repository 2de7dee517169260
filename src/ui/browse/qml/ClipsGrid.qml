// The sections as rows of clip cards; only the rows on screen are made.
import QtQuick
import QtQuick.Controls
import Aeroloom.Services

ListView {
    id: grid
    required property QtObject browser
    property Component thumbnail: null
    readonly property int spacingX: 14
    readonly property int columns: Math.max(1, Math.floor((width + spacingX) / (220 + spacingX)))
    readonly property real cardWidth: (width - (columns - 1) * spacingX) / columns

    clip: true
    spacing: 14
    model: grid.browser.rows
    onColumnsChanged: grid.browser.rows.columns = columns
    Component.onCompleted: grid.browser.rows.columns = columns
    ScrollBar.vertical: ScrollBar {}
    footer: Item { height: 24 }

    delegate: Item {
        id: row
        required property string kind
        required property string label
        required property int count
        required property var cards
        width: grid.width
        height: kind === "header" ? 26 : cardRow.height

        Row {
            visible: row.kind === "header"
            anchors.bottom: parent.bottom
            spacing: 8
            Text { id: heading; text: row.label; color: Theme.text; font.pixelSize: 16; font.weight: Font.DemiBold }
            Text { text: row.count; color: Theme.textMuted; font.pixelSize: 13; anchors.baseline: heading.baseline }
        }
        Row {
            id: cardRow
            visible: row.kind === "cards"
            spacing: grid.spacingX
            Repeater {
                model: row.kind === "cards" ? row.cards : []
                delegate: ClipCard {
                    required property var modelData
                    width: grid.cardWidth
                    card: modelData
                    browser: grid.browser
                    thumbnail: grid.thumbnail
                }
            }
        }
    }
}
