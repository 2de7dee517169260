// Title, search, filters, layout, selection and refresh.
import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Aeroloom.Services

RowLayout {
    id: header
    required property QtObject store
    signal filtersRequested()
    spacing: 10

    Text {
        text: header.store.title
        color: Theme.text
        font.pixelSize: 26
        font.weight: Font.Bold
    }
    Item { Layout.fillWidth: true }
    TextField {
        objectName: "gallerySearch"
        Layout.preferredWidth: 260
        implicitHeight: 30
        placeholderText: "Search date, place or model…"
        placeholderTextColor: Theme.textMuted
        color: Theme.text
        font.pixelSize: 13
        text: header.store.search
        onTextEdited: header.store.search = text
        background: Rectangle { radius: 8; color: Theme.field; border.color: Theme.border }
    }
    GalleryButton {
        objectName: "filtersButton"
        text: "Filters"
        badge: header.store.activeFilterCount
        onClicked: header.filtersRequested()
    }
    Row {
        spacing: 0
        Repeater {
            model: [{ value: "grid", label: "▦ Grid" }, { value: "map", label: "◎ Map" }]
            delegate: GalleryButton {
                required property var modelData
                text: modelData.label
                prominent: header.store.layout === modelData.value
                onClicked: header.store.layout = modelData.value
            }
        }
    }
    GalleryButton {
        text: "✦ Select"
        prominent: header.store.selecting
        onClicked: header.store.toggleSelecting()
    }
    GalleryButton { text: "↻"; onClicked: header.store.load(); ToolTip.text: "Refresh"; ToolTip.visible: hovered }
}
