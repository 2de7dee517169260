// The store's short message, floating near the bottom of the section while it stands. A popup
// of its own, so it shows above the sheets too (an add from the picker says so at once).
import QtQuick
import QtQuick.Controls
import Aeroloom.Services

Popup {
    id: toast
    property string text: ""
    property string shown: ""
    onTextChanged: if (text !== "") shown = text

    objectName: "storyToast"
    visible: text !== ""
    modal: false
    focus: false
    closePolicy: Popup.NoAutoClose
    z: 1000
    x: parent ? (parent.width - width) / 2 : 0
    y: parent ? parent.height - height - 28 : 0
    padding: 0
    enter: Transition { NumberAnimation { property: "opacity"; from: 0; to: 1; duration: 140 } }
    exit: Transition { NumberAnimation { property: "opacity"; from: 1; to: 0; duration: 160 } }

    background: Rectangle {
        radius: height / 2
        color: Theme.dark ? "#E9EEF8" : "#121A2B"
    }
    contentItem: Text {
        leftPadding: 16
        rightPadding: 16
        topPadding: 9
        bottomPadding: 9
        width: Math.min(implicitWidth, 560)
        text: toast.shown
        color: Theme.dark ? "#0B1224" : "#F3F5F9"
        font.pixelSize: 13
        font.weight: Font.Medium
        wrapMode: Text.WordWrap
        horizontalAlignment: Text.AlignHCenter
    }
}
