import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Aeroloom.Services

ThemedWindow {
    objectName: "cut"
    title: "Cut Story Clips"
    width: 760
    height: 560
    minimumWidth: 520
    minimumHeight: 400

    SignedOutWindowNotice {
        anchors.fill: parent
        visible: !App.loggedIn
        message: "Cutting story clips needs your Ornivale library. Sign in from the main window, then come back here."
    }

    ColumnLayout {
        anchors.fill: parent
        anchors.margins: 28
        visible: App.loggedIn
        Text {
            text: "Cut Story Clips"
            color: Theme.text
            font.pixelSize: 26
            font.weight: Font.Bold
        }
        Item { Layout.fillHeight: true }
    }
}
