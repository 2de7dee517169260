// The flight player as the main window shows it: the review session's open flight, on the
// library's base map, until the pilot goes back.
import QtQuick
import Aeroloom.Services
import Aeroloom.Browse
import Aeroloom.Review
import "qrc:/aeroloom/review"

Item {
    id: screen
    property QtObject current: null

    // Imperative, not a binding: the view goes before its model does, never after.
    function follow() {
        if (Review.player === null) {
            loader.active = false
            current = null
            return
        }
        loader.active = false
        current = Review.player
        loader.active = true
    }
    Connections {
        target: Review
        function onPlayerChanged() { screen.follow() }
    }
    Component.onCompleted: follow()

    Loader {
        id: loader
        objectName: "playerLoader"
        anchors.fill: parent
        active: false
        sourceComponent: FlightPlayerView {
            model: screen.current
            tileHost: Gallery.tileHost
            mapAttribution: Gallery.mapAttribution
            onCloseRequested: {
                Review.close()
                Gallery.closeOpened()
            }
        }
        onLoaded: item.forceActiveFocus()
    }
}
