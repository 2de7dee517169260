// "Cut Story Clips": the window around the cut screens. Its content, and the model behind it,
// exist only while the window is open and somebody is signed in.
import QtQuick
import QtQuick.Controls
import QtQuick.Window
import Aeroloom.Services

ThemedWindow {
    id: window
    objectName: "cut"
    title: "Cut Story Clips"
    width: 880
    height: 700
    minimumWidth: 640
    minimumHeight: 520

    SignedOutWindowNotice {
        anchors.fill: parent
        visible: !App.loggedIn
        message: "Cutting story clips needs your Ornivale library. Sign in from the main window, then come back here."
    }

    // Latched on the window's appearance as the signal tells it: a window shown from C++ (the
    // screenshot harness) leaves the `visible` and `visibility` properties as they were.
    property bool opened: false
    onVisibilityChanged: shown => { if (shown !== Window.Hidden) window.opened = true }
    onClosing: window.opened = false

    Loader {
        anchors.fill: parent
        active: App.loggedIn && window.opened
        source: "qrc:/aeroloom/cutting/CutRoot.qml"
    }
}
