// The flights section: filter bar, statistics, groups of cards or the map, and the dialogs.
// Everything it shows comes from a GalleryStore; it decides nothing itself.
import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Aeroloom.Services

Rectangle {
    id: gallery
    required property QtObject store
    /// Draws a card's thumbnail; it receives `source` (the image's URL). A plain frame when unset.
    property Component thumbnail: null
    /// Where the base map's tiles are cached on disk ("" for the program's cache folder).
    property string tileCacheDir: ""
    color: Theme.background

    Component.onCompleted: store.load()

    // Load failed with nothing to show.
    ColumnLayout {
        anchors.centerIn: parent
        visible: gallery.store.screen === "error"
        spacing: 14
        Text { Layout.alignment: Qt.AlignHCenter; text: "⚠"; color: Theme.textMuted; font.pixelSize: 44 }
        Text {
            Layout.alignment: Qt.AlignHCenter
            Layout.maximumWidth: 420
            text: gallery.store.error
            color: Theme.text
            font.pixelSize: 14
            wrapMode: Text.WordWrap
            horizontalAlignment: Text.AlignHCenter
        }
        RowLayout {
            Layout.alignment: Qt.AlignHCenter
            spacing: 10
            GalleryButton { text: "Retry"; prominent: true; onClicked: gallery.store.load() }
            GalleryButton { text: "Log out"; onClicked: gallery.store.logOut() }
        }
    }

    BusyIndicator {
        anchors.centerIn: parent
        visible: gallery.store.screen === "loading"
        running: visible
    }

    ColumnLayout {
        anchors.fill: parent
        anchors.margins: 24
        anchors.bottomMargin: 0
        spacing: 12
        visible: gallery.store.screen === "content"

        GalleryHeader {
            Layout.fillWidth: true
            store: gallery.store
            onFiltersRequested: filters.open()
        }
        GalleryChips { Layout.fillWidth: true; store: gallery.store }
        GalleryStatsRow { Layout.fillWidth: true; store: gallery.store }
        GallerySelectionBar { Layout.fillWidth: true; store: gallery.store; visible: gallery.store.selecting }

        GalleryGrid {
            objectName: "galleryGrid"
            Layout.fillWidth: true
            Layout.fillHeight: true
            visible: gallery.store.layout === "grid"
            store: gallery.store
            thumbnail: gallery.thumbnail
        }
        GalleryMapLayout {
            objectName: "galleryMap"
            Layout.fillWidth: true
            Layout.fillHeight: true
            Layout.bottomMargin: 24
            visible: gallery.store.layout === "map"
            store: gallery.store
            cacheDir: gallery.tileCacheDir
        }
    }

    GalleryFilterPopover {
        id: filters
        store: gallery.store
        x: gallery.width - width - 24
        y: 70
        Component.onCompleted: if (gallery.store.openFiltersOnStart) open()
    }
    GalleryDialogs { anchors.fill: parent; store: gallery.store }
}
