// The settings window: Account, Import, Export and Appearance. What each row shows and does is
// decided by the settings models; this file lays them out. The tabs are there while signed out
// too: only the rows that need a session stand aside.
import QtQuick
import QtQuick.Controls
import QtQuick.Dialogs
import QtQuick.Layouts
import Aeroloom.Services

ThemedWindow {
    objectName: "settings"
    title: "Settings"
    width: 640
    height: 520
    minimumWidth: 520
    minimumHeight: 420

    // What the rows show is fetched each time the window is shown, never at start-up. The
    // signal's own argument says whether it is: the `visible` property lags behind a window
    // shown from C++ (the screenshot harness does that).
    onVisibleChanged: function(nowVisible) {
        AccountSettings.setShown(nowVisible)
        if (nowVisible)
            StorageSettings.refreshPending()
    }

    component RowLabel: Text { color: Theme.textMuted; font.pixelSize: 13 }
    component RowValue: Text { color: Theme.text; font.pixelSize: 13 }
    component SmallButton: AeroButton {
        primary: false
        implicitHeight: 32
        font.pixelSize: 13
        leftPadding: 14
        rightPadding: 14
    }

    Dialog {
        id: confirmRemoveSamples
        anchors.centerIn: parent
        modal: true
        title: AccountSettings.removeSamplesTitle
        standardButtons: Dialog.Cancel
        Text {
            width: 360
            wrapMode: Text.WordWrap
            color: Theme.text
            font.pixelSize: 13
            text: "The demo flights from Ornivale — and any clips on them — are removed. Stories keep their finished videos. You can restore the samples from here anytime."
        }
        footer: DialogButtonBox {
            Button { text: "Cancel"; DialogButtonBox.buttonRole: DialogButtonBox.RejectRole }
            Button { text: AccountSettings.removeSamplesTitle; DialogButtonBox.buttonRole: DialogButtonBox.AcceptRole }
        }
        onAccepted: AccountSettings.removeSamples()
    }
    FolderDialog {
        id: outputDialog
        title: "Save cut clips to"
        onAccepted: StorageSettings.setOutputFolder(selectedFolder)
    }

    ColumnLayout {
        anchors.fill: parent
        spacing: 0

        TabBar {
            id: tabs
            objectName: "settingsTabs"
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
                Text { objectName: "signedInAs"; text: AccountSettings.email; color: Theme.text; font.pixelSize: 13 }
                Text { visible: App.plan !== ""; text: "Plan"; color: Theme.textMuted; font.pixelSize: 13 }
                Row {
                    visible: App.plan !== ""
                    spacing: 8
                    Text { text: App.pro ? "Pro" : "Free"; color: Theme.text; font.pixelSize: 13 }
                    ProBadge { visible: App.pro }
                }
                RowLabel { visible: AccountSettings.hasLibrary; text: "Library" }
                RowValue { visible: AccountSettings.hasLibrary; text: AccountSettings.libraryText }
                RowLabel { visible: AccountSettings.showStorage; text: "Storage" }
                RowLayout {
                    visible: AccountSettings.showStorage
                    spacing: 10
                    ProgressBar {
                        Layout.preferredWidth: 200
                        value: AccountSettings.storageFraction
                        background: Rectangle { implicitHeight: 6; radius: 3; color: Theme.border }
                        contentItem: Item {
                            implicitHeight: 6
                            Rectangle { width: parent.width * AccountSettings.storageFraction; height: parent.height; radius: 3; color: Theme.accent }
                        }
                    }
                    RowValue { text: AccountSettings.storageText }
                }
                RowLabel { visible: AccountSettings.samplesCount >= 1 || AccountSettings.samplesRestorable >= 1; text: "Sample flights" }
                RowLayout {
                    visible: AccountSettings.samplesCount >= 1
                    spacing: 10
                    RowValue { text: AccountSettings.samplesText }
                    SmallButton { text: "Remove…"; enabled: !AccountSettings.samplesBusy; onClicked: confirmRemoveSamples.open() }
                }
                RowLayout {
                    visible: AccountSettings.samplesCount < 1 && AccountSettings.samplesRestorable >= 1
                    spacing: 10
                    RowValue { text: "Removed" }
                    SmallButton { text: "Restore"; enabled: !AccountSettings.samplesBusy; onClicked: AccountSettings.restoreSamples() }
                }
                Text { visible: App.loggedIn; text: "Manage tokens"; color: Theme.textMuted; font.pixelSize: 13 }
                AeroButton {
                    objectName: "openAccountOnWeb"
                    visible: App.loggedIn
                    primary: false
                    implicitHeight: 34
                    font.pixelSize: 13
                    leftPadding: 16
                    rightPadding: 16
                    text: "Open Account on the Web…"
                    onClicked: Qt.openUrlExternally(App.baseString + "/settings.html")
                }
                RowLayout {
                    visible: App.loggedIn
                    Layout.columnSpan: 2
                    Layout.topMargin: 8
                    spacing: 12
                    SmallButton {
                        objectName: "testConnection"
                        text: AccountSettings.checking ? "Checking…" : "Test Connection"
                        enabled: !AccountSettings.checking
                        onClicked: AccountSettings.testConnection()
                    }
                    RowValue { text: AccountSettings.checkResult; Layout.fillWidth: true; elide: Text.ElideRight }
                }
                Item { Layout.columnSpan: 2; Layout.fillHeight: true }
                AeroButton {
                    objectName: "signOut"
                    visible: App.loggedIn
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
                RowLayout {
                    Layout.leftMargin: 48
                    Layout.topMargin: 6
                    spacing: 10
                    RowLabel { text: "Contact address" }
                    AeroTextField {
                        objectName: "geocodeContact"
                        Layout.preferredWidth: 260
                        implicitHeight: 34
                        font.pixelSize: 13
                        placeholderText: "you@example.com"
                        text: Prefs.stringValue("ingest.geocodeContact")
                        onEditingFinished: Prefs.setValue("ingest.geocodeContact", text.trim())
                    }
                }
                Text {
                    Layout.leftMargin: 48
                    Layout.fillWidth: true
                    wrapMode: Text.WordWrap
                    text: "OpenStreetMap asks every program that looks up places for a way to reach its user. No place is looked up until an address is given."
                    color: Theme.textMuted
                    font.pixelSize: 12
                }
                AeroSwitch {
                    Layout.topMargin: 10
                    text: "Keep processed files after upload"
                    checked: Prefs.boolValue("ingest.keepProcessed")
                    onToggled: Prefs.setValue("ingest.keepProcessed", checked)
                }
                RowLayout {
                    Layout.topMargin: 16
                    spacing: 12
                    RowLabel { text: "Pending uploads" }
                    RowValue { text: StorageSettings.pendingText }
                    SmallButton { text: "Clear"; onClicked: StorageSettings.clearPending() }
                }
                Item { Layout.fillHeight: true }
            }

            // Export
            ColumnLayout {
                Layout.alignment: Qt.AlignTop
                spacing: 8
                RowLayout {
                    spacing: 12
                    RowLabel { text: "Save cut clips to" }
                    SmallButton { text: StorageSettings.outputName; onClicked: outputDialog.open() }
                }
                Text { Layout.topMargin: 12; text: "Default cut mode"; color: Theme.textMuted; font.pixelSize: 12; font.weight: Font.DemiBold }
                SegmentedPicker {
                    Layout.preferredWidth: 440
                    model: ["Frame-accurate (re-encode)", "Fast (keyframe, ±1–2 s)"]
                    currentIndex: Prefs.boolValue("cut.fast") ? 1 : 0
                    onActivated: index => Prefs.setValue("cut.fast", index === 1)
                }
                Text {
                    Layout.fillWidth: true
                    wrapMode: Text.WordWrap
                    color: Theme.textMuted
                    font.pixelSize: 12
                    text: "Frame-accurate uses this computer's hardware encoder at the original's bitrate. Fast copies the stream untouched — instant, but cuts land on keyframes."
                }
                Item { Layout.fillHeight: true }
            }

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
