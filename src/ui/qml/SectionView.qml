// One section of the main view: the flights gallery, the clips of the library, or the stories.
import QtQuick
import QtQuick.Layouts
import Aeroloom.Services
import Aeroloom.Browse
import Aeroloom.Review
import Aeroloom.Stories
import "qrc:/aeroloom/browse"
import "qrc:/aeroloom/review"
import "qrc:/aeroloom/stories"

Rectangle {
    id: sectionView
    /// "flights", "clips" or "reels".
    property string section: "flights"
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

    Loader {
        anchors.fill: parent
        active: sectionView.section === "reels"
        sourceComponent: StoriesSection {
            hub: Reels
            navigator: Navigator
            trimModel: TrimSheet
            trimSheet: Component { TrimSheetView { model: TrimSheet } }
            thumbnail: Component { AuthedAsyncImage {} }
            renderSheet: Component { RenderPreviewView { store: Reels.store; hooks: Reels.hooks; desktop: Desktop } }
            historySection: Component {
                RenderHistorySection { store: Reels.store; desktop: Desktop; thumbnail: Component { AuthedAsyncImage {} } }
            }
            videoSheet: Component { RenderPlayerView { store: Reels.store } }
            shareSheet: Component { ShareReelSheet { store: Reels.store; desktop: Desktop } }
        }
    }
}
