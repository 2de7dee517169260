// The settings window. Account rows that need the library's own calls arrive with those calls.
import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Aeroloom.Services

ThemedWindow {
    objectName: "settings"
    title: "Settings"
    width: 640
    height: 520
    minimumWidth: 520
    minimumHeight: 420

    SignedOutWindowNotice {
        anchors.fill: parent
        visible: !App.loggedIn
        message: "Your account settings live in your Ornivale library. Sign in from the main window, then come back here."
    }

    ColumnLayout {
        anchors.fill: parent
        visible: App.loggedIn
        spacing: 0

        TabBar {
            id: tabs
            Layout.fillWidth: true
            background: Rectangle { color: Theme.sidebar }
            Repeater {
                model: ["Account", "Import", "Export", "Appearance"]
                TabButton {
                    required property string modelData
                    text: modelData
                    contentItem: Text {
                        text: parent.text
                        color: parent.checked ? Theme.accent : Theme.textMuted
                        font.pixelSize: 13
                        font.weight: Font.DemiBold
                        horizontalAlignment: Text.AlignHCenter
                        verticalAlignment: Text.AlignVCenter
                    }
                    background: Rectangle {
                        color: "transparent"
                        Rectangle {
                            anchors.bottom: parent.bottom
                            width: parent.width; height: 2
                            color: parent.parent.checked ? Theme.accent : "transparent"
                        }
                    }
                }
            }
        }

        StackLayout {
            Layout.fillWidth: true
            Layout.fillHeight: true
            Layout.margins: 24
            currentIndex: tabs.currentIndex

            // Account
            GridLayout {
                columns: 2
                columnSpacing: 18
                rowSpacing: 12
                Layout.alignment: Qt.AlignTop
                Text { text: "Server"; color: Theme.textMuted; font.pixelSize: 13 }
                Text { text: App.baseString; color: Theme.text; font.pixelSize: 13; elide: Text.ElideMiddle; Layout.fillWidth: true }
                Text { text: "Signed in as"; color: Theme.textMuted; font.pixelSize: 13 }
                Text { text: App.email !== "" ? App.email : "—"; color: Theme.text; font.pixelSize: 13 }
                Text { visible: App.plan !== ""; text: "Plan"; color: Theme.textMuted; font.pixelSize: 13 }
                Row {
                    visible: App.plan !== ""
                    spacing: 8
                    Text { text: App.pro ? "Pro" : "Free"; color: Theme.text; font.pixelSize: 13 }
                    ProBadge { visible: App.pro }
                }
                Text { text: "Manage tokens"; color: Theme.textMuted; font.pixelSize: 13 }
                AeroButton {
                    primary: false
                    implicitHeight: 34
                    font.pixelSize: 13
                    leftPadding: 16
                    rightPadding: 16
                    text: "Open Account on the Web…"
                    onClicked: Qt.openUrlExternally(App.baseString + "/settings.html")
                }
                Item { Layout.columnSpan: 2; Layout.fillHeight: true }
                AeroButton {
                    Layout.columnSpan: 2
                    primary: false
                    implicitHeight: 34
                    font.pixelSize: 13
                    leftPadding: 16
                    rightPadding: 16
                    text: "Sign Out"
                    onClicked: App.signOut()
                }
            }

            // Import
            ColumnLayout {
                Layout.alignment: Qt.AlignTop
                spacing: 6
                AeroSwitch {
                    text: "Look up place names (OpenStreetMap)"
                    checked: Prefs.boolValue("ingest.geocode")
                    onToggled: Prefs.setValue("ingest.geocode", checked)
                }
                Text {
                    text: "Named after the takeoff point; the server fills this in when off."
                    color: Theme.textMuted
                    font.pixelSize: 12
                    Layout.leftMargin: 48
                }
                AeroSwitch {
                    Layout.topMargin: 10
                    text: "Keep processed files after upload"
                    checked: Prefs.boolValue("ingest.keepProcessed")
                    onToggled: Prefs.setValue("ingest.keepProcessed", checked)
                }
                Item { Layout.fillHeight: true }
            }

            // Export
            Item {}

            // Appearance
            ColumnLayout {
                Layout.alignment: Qt.AlignTop
                spacing: 8
                Text { text: "Theme"; color: Theme.textMuted; font.pixelSize: 12; font.weight: Font.DemiBold }
                SegmentedPicker {
                    Layout.preferredWidth: 300
                    model: Themes.labels
                    currentIndex: Themes.pref
                    onActivated: index => Themes.pref = index
                }
                AeroSwitch {
                    Layout.topMargin: 12
                    text: "HQ playback"
                    checked: Playback.hq
                    onToggled: Playback.hq = checked
                }
                Text {
                    Layout.fillWidth: true
                    text: "Flights play a lighter, smoother quality by default. Turn this on to always play full-resolution video. Applies to newly opened players."
                    color: Theme.textMuted
                    font.pixelSize: 12
                    wrapMode: Text.WordWrap
                    Layout.leftMargin: 48
                }
                AeroSwitch {
                    Layout.topMargin: 8
                    text: "Metric units"
                    checked: Units.metric
                    onToggled: Units.metric = checked
                }
                Text {
                    Layout.fillWidth: true
                    text: "Show altitude, speed, and distance in meters, km/h, and km instead of feet and miles."
                    color: Theme.textMuted
                    font.pixelSize: 12
                    wrapMode: Text.WordWrap
                    Layout.leftMargin: 48
                }
                Item { Layout.fillHeight: true }
            }
        }
    }
}
