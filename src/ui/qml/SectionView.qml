// One section of the main view. Its content arrives with the screens that fill it; until then
// it shows its name.
import QtQuick
import QtQuick.Layouts
import Aeroloom.Services
import Aeroloom.Browse
import Aeroloom.Review
import "qrc:/aeroloom/browse"

Rectangle {
    id: sectionView
    /// "flights", "clips" or "reels".
    property string section: "flights"
    readonly property string title: section === "clips" ? "Clips" : section === "reels" ? "Stories" : "Flights"
    color: Theme.background

    Loader {
        anchors.fill: parent
        active: sectionView.section === "flights"
        sourceComponent: GalleryView {
            store: Gallery
            thumbnail: Component { AuthedAsyncImage {} }
        }
    }

    Loader {
        anchors.fill: parent
        active: sectionView.section === "clips"
        sourceComponent: ClipsBrowserView {
            browser: Clips
            lightbox: ClipLightbox
            thumbnail: Component { AuthedAsyncImage {} }
        }
    }

    Text {
        visible: sectionView.section === "reels"
        x: 32
        y: 28
        text: sectionView.title
        color: Theme.text
        font.pixelSize: 28
        font.weight: Font.Bold
    }
}
