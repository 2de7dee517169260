// A server image loaded with the session's credentials, in a 16:9 frame: letterboxed on dark
// blue, or filling the frame on black. A small white spinner stands in until it arrives.
import QtQuick
import QtQuick.Controls
import Aeroloom.Services

Item {
    id: frame
    property url source
    property bool letterbox: false
    property QtObject client: App.client
    implicitWidth: 320
    implicitHeight: width * 9 / 16

    AuthedImageItem {
        id: item
        anchors.fill: parent
        source: frame.source
        letterbox: frame.letterbox
        client: frame.client
        cache: Images
    }
    BusyIndicator {
        anchors.centerIn: parent
        visible: !item.loaded
        running: visible
        implicitWidth: 22
        implicitHeight: 22
        palette.dark: "white"
    }
}
