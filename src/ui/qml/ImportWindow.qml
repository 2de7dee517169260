// "Import Flights": cards, drops and folders in, the queue and its upload out. Every decision
// is the import window model's; this file only lays it out.
import QtQuick
import QtQuick.Controls
import QtQuick.Dialogs
import QtQuick.Layouts
import Aeroloom.Services

ThemedWindow {
    id: window
    objectName: "import"
    title: "Import Flights"
    width: 780
    height: 600
    minimumWidth: 560
    minimumHeight: 420

    readonly property var queue: Import.queue
    signal showMainRequested()

    onVisibleChanged: if (visible) Import.refresh()

    SignedOutWindowNotice {
        anchors.fill: parent
        visible: !App.loggedIn
        message: "Importing flights needs your Ornivale library. Sign in from the main window, then come back here."
    }

    FolderDialog {
        id: volumeDialog
        property string volumeName
        title: Import.scanPermissionMessage(volumeName)
        acceptLabel: "Scan"
        onAccepted: Import.addUrls([selectedFolder])
    }
    FileDialog {
        id: filesDialog
        title: "Pick videos, or a DCIM folder holding .LRF / .MP4+.SRT flights"
        fileMode: FileDialog.OpenFiles
        nameFilters: ["Videos (*.mp4 *.MP4 *.mov *.MOV *.lrf *.LRF)", "All files (*)"]
        onAccepted: Import.addUrls(selectedFiles)
    }
    FolderDialog {
        id: folderDialog
        title: "Pick videos, or a DCIM folder holding .LRF / .MP4+.SRT flights"
        onAccepted: Import.addUrls([selectedFolder])
    }

    DropArea {
        id: drop
        anchors.fill: parent
        enabled: App.loggedIn
        keys: ["text/uri-list"]
        onDropped: event => {
            if (event.hasUrls && event.urls.length > 0) {
                Import.addUrls(event.urls)
                event.accept(Qt.CopyAction)
            }
        }
    }

    ColumnLayout {
        anchors.fill: parent
        anchors.margins: 24
        visible: App.loggedIn
        spacing: 14

        RowLayout {
            Layout.fillWidth: true
            Text {
                text: "Import Flights"
                color: Theme.text
                font.pixelSize: 24
                font.weight: Font.Bold
                Layout.fillWidth: true
            }
            BusyIndicator { running: Import.scanning; visible: running; implicitWidth: 28; implicitHeight: 28 }
            AeroButton {
                primary: false
                implicitHeight: 34
                font.pixelSize: 13
                leftPadding: 14; rightPadding: 14
                text: "Add Videos…"
                ToolTip.visible: hovered
                ToolTip.text: "Add a card folder, or videos from your file manager"
                onClicked: filesDialog.open()
            }
            AeroButton {
                primary: false
                implicitHeight: 34
                font.pixelSize: 13
                leftPadding: 14; rightPadding: 14
                text: "Add Folder…"
                ToolTip.visible: hovered
                ToolTip.text: "Add a card folder, or videos from your file manager"
                onClicked: folderDialog.open()
            }
        }

        // The tools the program needs; the window stays usable either way.
        Rectangle {
            Layout.fillWidth: true
            visible: Import.toolProblems.length > 0
            implicitHeight: problems.implicitHeight + 24
            radius: 10
            color: Qt.rgba(Theme.warm.r, Theme.warm.g, Theme.warm.b, 0.14)
            border.color: Theme.warm
            ColumnLayout {
                id: problems
                anchors.fill: parent
                anchors.margins: 12
                spacing: 4
                Text { text: "Ornivale can't process flights on this computer yet:"; color: Theme.text; font.pixelSize: 13; font.weight: Font.DemiBold }
                Repeater {
                    model: Import.toolProblems
                    Text { required property string modelData; text: modelData; color: Theme.text; font.pixelSize: 12; wrapMode: Text.WordWrap; Layout.fillWidth: true }
                }
            }
        }

        // One banner per card: offered, never imported until asked.
        Repeater {
            model: Import.cardVolumes
            Rectangle {
                required property var modelData
                Layout.fillWidth: true
                implicitHeight: 56
                radius: 10
                color: Theme.accentSoft
                RowLayout {
                    anchors.fill: parent
                    anchors.leftMargin: 16
                    anchors.rightMargin: 10
                    Text {
                        textFormat: Text.StyledText
                        text: "SD card detected: <b>" + modelData.name + "</b>"
                        color: Theme.text
                        font.pixelSize: 14
                        Layout.fillWidth: true
                    }
                    AeroButton {
                        implicitHeight: 36
                        font.pixelSize: 13
                        leftPadding: 16; rightPadding: 16
                        text: "Scan for Flights"
                        onClicked: {
                            if (!Import.scanVolume(modelData.root)) {
                                volumeDialog.volumeName = modelData.name
                                volumeDialog.currentFolder = "file://" + modelData.root
                                volumeDialog.open()
                            }
                        }
                    }
                }
            }
        }

        // The queue, or what to do when it is empty.
        Rectangle {
            Layout.fillWidth: true
            Layout.fillHeight: true
            radius: 12
            color: Theme.surface
            border.color: drop.containsDrag ? Theme.accent : Theme.border
            border.width: drop.containsDrag ? 2 : 1

            ColumnLayout {
                anchors.centerIn: parent
                width: Math.min(parent.width - 48, 460)
                visible: Import.state === ImportWindowModel.Idle
                spacing: 10
                Text { text: "No flights queued"; color: Theme.text; font.pixelSize: 18; font.weight: Font.DemiBold; Layout.alignment: Qt.AlignHCenter }
                Text {
                    Layout.fillWidth: true
                    horizontalAlignment: Text.AlignHCenter
                    wrapMode: Text.WordWrap
                    color: Theme.textMuted
                    font.pixelSize: 13
                    text: "Insert a DJI SD card, drag videos here straight from Photos, or add a folder of .LRF files (or .MP4+.SRT for LRF-less models like the Neo 2)."
                }
            }

            ListView {
                id: list
                anchors.fill: parent
                anchors.margins: 6
                clip: true
                visible: count > 0
                model: window.queue
                spacing: 2
                delegate: ImportRow {
                    width: ListView.view.width
                    running: Import.state === ImportWindowModel.Running
                    onRemoveRequested: id => window.queue.remove(id)
                }
            }
        }

        // Footer: ready, running, or the finished banner.
        RowLayout {
            Layout.fillWidth: true
            visible: Import.state === ImportWindowModel.Ready
            Text { text: Import.readyFooter; color: Theme.textMuted; font.pixelSize: 13; Layout.fillWidth: true; wrapMode: Text.WordWrap }
            Text { visible: window.queue.lastError !== ""; text: window.queue.lastError; color: Theme.danger; font.pixelSize: 12 }
            AeroButton {
                text: "Start Upload"
                leftPadding: 22; rightPadding: 22
                ToolTip.visible: hovered
                ToolTip.text: "Start uploading these flights to your Ornivale library"
                onClicked: window.queue.start()
            }
        }
        RowLayout {
            Layout.fillWidth: true
            visible: Import.state === ImportWindowModel.Running
            Text {
                text: window.queue.summary
                color: Theme.textMuted
                font.pixelSize: 13
                Layout.fillWidth: true
            }
            AeroButton {
                primary: false
                text: "Stop"
                leftPadding: 22; rightPadding: 22
                ToolTip.visible: hovered
                ToolTip.text: "Stop after the current flight — nothing already added is lost"
                onClicked: window.queue.stop()
            }
        }
        Rectangle {
            Layout.fillWidth: true
            visible: Import.state === ImportWindowModel.Finished
            implicitHeight: 64
            radius: 10
            readonly property color tint: Import.finishedWithFailures ? Theme.warm : Theme.success
            color: Qt.rgba(tint.r, tint.g, tint.b, 0.16)
            border.color: tint
            RowLayout {
                anchors.fill: parent
                anchors.leftMargin: 16
                anchors.rightMargin: 10
                spacing: 10
                Text { text: Import.finishedSummary; color: Theme.text; font.pixelSize: 14; wrapMode: Text.WordWrap; Layout.fillWidth: true }
                AeroButton {
                    implicitHeight: 36
                    font.pixelSize: 13
                    leftPadding: 16; rightPadding: 16
                    text: "Show My Flights"
                    onClicked: { window.showMainRequested(); window.close() }
                }
                AeroButton {
                    primary: false
                    implicitHeight: 36
                    font.pixelSize: 13
                    leftPadding: 16; rightPadding: 16
                    text: "Close"
                    onClicked: window.close()
                }
            }
        }
    }
}
