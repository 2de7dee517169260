// The 3D theater of a flight: the library's 3D page over the whole window. Dark until the web
// session is ready, then the page with a close button over it; a page that can't be loaded
// gives way to the failure words and their "Close". Esc closes it too.
import QtQuick
import Aeroloom.Review

Rectangle {
    id: theater
    objectName: "theater"
    required property TheaterController controller
    color: "#0B1224"

    // The view underneath must not take clicks or wheel turns through the theater.
    MouseArea { anchors.fill: parent; acceptedButtons: Qt.AllButtons; onWheel: wheel => wheel.accepted = true }

    Shortcut {
        sequence: "Esc"
        onActivated: theater.controller.close()
    }

    Loader {
        anchors.fill: parent
        active: theater.controller.ready && !theater.controller.failed
        sourceComponent: TheaterWebView {
            url: theater.controller.url
            cookie: theater.controller.sessionCookie
            onExit: theater.controller.close()
            onFailed: theater.controller.fail()
        }
    }

    TheaterFailure {
        anchors.fill: parent
        visible: theater.controller.failed
        text: theater.controller.failureText
        onClosed: theater.controller.close()
    }

    TheaterCloseButton {
        anchors.top: parent.top
        anchors.right: parent.right
        anchors.margins: 16
        visible: !theater.controller.failed
        onClicked: theater.controller.close()
    }
}
