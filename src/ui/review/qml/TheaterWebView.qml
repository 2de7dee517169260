// The web view of the theater: its own private profile holding the session cookie, a clear
// background so nothing white flashes before the page paints, the page's video free to start by
// itself, and no context menu. A link the pilot follows is turned into `exit`; a page that
// can't be reached into `failed`.
import QtQuick
import QtWebEngine
import Aeroloom.Review

Item {
    id: root
    property url url
    property var cookie
    property alias loadTimeout: session.loadTimeout
    signal exit()
    signal failed()

    WebEngineProfile {
        id: profile
        offTheRecord: true
    }

    TheaterWebSession {
        id: session
        profile: profile
        cookie: root.cookie
        onExitRequested: root.exit()
        onFailed: root.failed()
    }

    WebEngineView {
        id: view
        objectName: "theaterPage"
        anchors.fill: parent
        profile: profile
        backgroundColor: "transparent"
        settings.playbackRequiresUserGesture: false
        url: session.primed ? root.url : ""
        onNavigationRequested: request => session.decide(request)
        onLoadingChanged: info => session.loadingChanged(info.status, info.errorDomain)
        onContextMenuRequested: request => request.accepted = true
    }
}
