import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Aeroloom.Services

ThemedWindow {
    objectName: "import"
    title: "Import Flights"
    width: 760
    height: 560
    minimumWidth: 520
    minimumHeight: 400

    SignedOutWindowNotice {
        anchors.fill: parent
        visible: !App.loggedIn
        message: "Importing flights needs your Ornivale library. Sign in from the main window, then come back here."
    }

    ColumnLayout {
        anchors.fill: parent
        anchors.margins: 28
        visible: App.loggedIn
        spacing: 6
        Text {
            text: "Import Flights"
            color: Theme.text
            font.pixelSize: 26
            font.weight: Font.Bold
        }
        Text {
            visible: FileRouter.hasPending
            text: FileRouter.pending.length + (FileRouter.pending.length === 1 ? " file waiting" : " files waiting")
            color: Theme.textMuted
            font.pixelSize: 14
        }
        Item { Layout.fillHeight: true }
    }
}
