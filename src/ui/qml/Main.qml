// The main window "Ornivale": sign-in while signed out, else the main view; it also owns the
// two work windows and the settings window, which follow the session by themselves.
import QtQuick
import QtQuick.Controls
import Aeroloom.Services
import Aeroloom.Review
import "qrc:/aeroloom/review"

ThemedWindow {
    id: main
    objectName: "main"
    width: 1200
    height: 780
    minimumWidth: 900
    minimumHeight: 600
    visible: true
    title: "Ornivale"

    menuBar: MenuBar {
        background: Rectangle {
            color: Theme.sidebar
            Rectangle { anchors.bottom: parent.bottom; width: parent.width; height: 1; color: Theme.border }
        }
        delegate: MenuBarItem {
            id: barItem
            contentItem: Text {
                text: barItem.text.replace("&", "")
                color: Theme.text
                font.pixelSize: 13
                verticalAlignment: Text.AlignVCenter
            }
            background: Rectangle { color: barItem.highlighted ? Theme.accentSoft : "transparent"; radius: 4 }
        }
        Menu {
            title: "&File"
            Action {
                text: "Import Flights from SD Card…"
                shortcut: "Ctrl+Shift+I"
                onTriggered: importWindow.open()
            }
            Action {
                text: "Cut Story Clips…"
                shortcut: "Ctrl+Shift+E"
                onTriggered: cutWindow.open()
            }
            MenuSeparator {}
            Action {
                text: "Settings…"
                shortcut: "Ctrl+,"
                onTriggered: settingsWindow.open()
            }
            MenuSeparator {}
            Action {
                text: "Quit"
                shortcut: StandardKey.Quit
                onTriggered: Qt.quit()
            }
        }
    }

    Loader {
        anchors.fill: parent
        sourceComponent: !App.loggedIn ? loginScreen
                       : Review.debugFlightId !== "" ? debugPlayer
                       : App.screenOverride === "reels" ? storiesOnly : mainView
    }

    Component { id: loginScreen; MacLoginView {} }
    Component {
        id: mainView
        MacMainView { onSettingsRequested: settingsWindow.open() }
    }
    // The development entry: one flight's player alone, nothing until the flight is found.
    Component {
        id: debugPlayer
        Rectangle { color: Theme.background; PlayerScreen { anchors.fill: parent } }
    }
    Component {
        id: storiesOnly
        SectionView { section: "reels" }
    }

    // The 3D theater of a flight, over everything else in the main window.
    Loader {
        anchors.fill: parent
        z: 10
        active: Theater.active
        sourceComponent: MacTheaterView { controller: Theater }
    }

    ImportWindow { id: importWindow; onShowMainRequested: main.open() }
    CutWindow { id: cutWindow }
    SettingsWindow { id: settingsWindow }

    // Files handed to the program open the import window once somebody is signed in.
    Connections {
        target: FileRouter
        function onImportWanted() { importWindow.open() }
    }
    Component.onCompleted: FileRouter.check()
}
