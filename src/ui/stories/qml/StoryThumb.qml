// A thumbnail slot: the section's thumbnail component over a dark backing, or a glyph alone.
import QtQuick
import Aeroloom.Services

Rectangle {
    id: thumb
    property url source
    property Component thumbnail: null
    radius: 6
    clip: true
    color: Theme.letterbox
    Text {
        anchors.centerIn: parent
        visible: thumb.thumbnail === null || thumb.source.toString() === ""
        text: "✈"
        color: Qt.rgba(1, 1, 1, 0.25)
        font.pixelSize: Math.max(12, thumb.height * 0.35)
    }
    Loader {
        anchors.fill: parent
        active: thumb.source.toString() !== ""
        sourceComponent: thumb.thumbnail
        onLoaded: item.source = Qt.binding(() => thumb.source)
    }
}
