// The clips section: every clip of the library in groups, the filter and grouping, picking clips
// into a new story, and the lightbox over it all. Everything it shows comes from a
// ClipsBrowserModel (and its store); it decides nothing itself.
import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Aeroloom.Services
import "qrc:/aeroloom/review"

Rectangle {
    id: clipsView
    required property QtObject browser
    /// The lightbox's model (ClipLightboxModel); the lightbox shows over the section while open.
    required property QtObject lightbox
    /// Draws a card's thumbnail; it receives `source` (the image's URL). A plain frame when unset.
    property Component thumbnail: null
    color: Theme.background

    Component.onCompleted: browser.store.load()
    // A lightbox left open would go on playing unseen.
    Component.onDestruction: browser.closeLightbox()

    BusyIndicator {
        anchors.centerIn: parent
        visible: clipsView.browser.screen === "loading"
        running: visible
    }

    // The load failed.
    ColumnLayout {
        anchors.centerIn: parent
        visible: clipsView.browser.screen === "error"
        spacing: 14
        Text { Layout.alignment: Qt.AlignHCenter; text: "⚠"; color: Theme.textMuted; font.pixelSize: 44 }
        Text {
            Layout.alignment: Qt.AlignHCenter
            text: "Couldn't load your clips."
            color: Theme.text
            font.pixelSize: 15
        }
        GalleryButton { Layout.alignment: Qt.AlignHCenter; text: "Retry"; prominent: true; onClicked: clipsView.browser.store.load() }
    }

    ColumnLayout {
        anchors.fill: parent
        anchors.margins: 24
        anchors.bottomMargin: 0
        spacing: 12
        visible: clipsView.browser.screen === "content" || clipsView.browser.screen === "empty"

        ClipsHeader { Layout.fillWidth: true; browser: clipsView.browser }
        ClipsSelectionBar {
            objectName: "selectionBar"
            Layout.fillWidth: true
            // Folds away with a soft spring when selection ends (a story made, or "Done").
            Layout.preferredHeight: clipsView.browser.selecting ? implicitHeight : 0
            Behavior on Layout.preferredHeight { SpringAnimation { spring: 4; damping: 0.45 } }
            visible: Layout.preferredHeight > 0.5
            clip: true
            browser: clipsView.browser
        }

        ClipsGrid {
            objectName: "clipsGrid"
            Layout.fillWidth: true
            Layout.fillHeight: true
            visible: clipsView.browser.screen === "content"
            browser: clipsView.browser
            thumbnail: clipsView.thumbnail
        }

        // Nothing passes the filter.
        ColumnLayout {
            Layout.fillWidth: true
            Layout.fillHeight: true
            visible: clipsView.browser.screen === "empty"
            Item { Layout.fillHeight: true }
            Text {
                Layout.alignment: Qt.AlignHCenter
                text: "No clips yet."
                color: Theme.text
                font.pixelSize: 17
                font.weight: Font.DemiBold
            }
            Text {
                Layout.alignment: Qt.AlignHCenter
                horizontalAlignment: Text.AlignHCenter
                text: "Mark some in a flight, or let Ornivale suggest them —\nnew flights get suggestions automatically."
                color: Theme.textMuted
                font.pixelSize: 13
                lineHeight: 1.2
            }
            Item { Layout.fillHeight: true; Layout.preferredHeight: 2 }
        }
    }

    Loader {
        objectName: "lightboxLoader"
        anchors.fill: parent
        active: clipsView.lightbox !== null && clipsView.lightbox.open
        sourceComponent: ClipLightboxView { model: clipsView.lightbox }
    }

    // Short messages of the section and its lightbox.
    Rectangle {
        objectName: "clipsToast"
        anchors.horizontalCenter: parent.horizontalCenter
        anchors.bottom: parent.bottom
        anchors.bottomMargin: 28
        visible: clipsView.browser.store.toast !== ""
        width: toastText.implicitWidth + 36
        height: 38
        radius: 19
        color: Theme.dark ? "#E9EEF8" : "#121A2B"
        Text {
            id: toastText
            anchors.centerIn: parent
            text: clipsView.browser.store.toast
            color: Theme.dark ? "#0B1224" : "#FFFFFF"
            font.pixelSize: 13
            font.weight: Font.Medium
        }
    }
}
