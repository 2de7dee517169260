// The clip lightbox: one clip at a time over the clips section, with its telemetry, the filmstrip
// to trim it on, and keep, toss or save. Everything comes from a ClipLightboxModel.
import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Aeroloom.Services
import Aeroloom.Review
import "qrc:/aeroloom/browse"

Rectangle {
    id: lightbox
    required property QtObject model
    color: Theme.background
    focus: true
    Component.onCompleted: forceActiveFocus()

    Keys.onEscapePressed: model.close()
    Keys.onLeftPressed: model.previous()
    Keys.onRightPressed: model.next()
    // Presses that miss the controls stay here instead of reaching the section underneath.
    MouseArea { anchors.fill: parent; acceptedButtons: Qt.AllButtons }

    component Chip: Rectangle {
        property string caption
        property string value
        implicitWidth: chipRow.implicitWidth + 20
        implicitHeight: 30
        radius: 8
        color: Theme.surface
        border.color: Theme.border
        Row {
            id: chipRow
            anchors.centerIn: parent
            spacing: 6
            Text { text: caption; color: Theme.textMuted; font.pixelSize: 11; font.weight: Font.DemiBold; anchors.verticalCenter: parent.verticalCenter }
            Text { text: value !== "" ? value : "—"; color: Theme.text; font.pixelSize: 13; font.family: "monospace"; anchors.verticalCenter: parent.verticalCenter }
        }
    }

    BusyIndicator {
        anchors.centerIn: parent
        visible: !lightbox.model.hasClip
        running: visible
    }

    ColumnLayout {
        anchors.fill: parent
        anchors.margins: 20
        spacing: 12
        visible: lightbox.model.hasClip

        RowLayout {
            Layout.fillWidth: true
            spacing: 10
            Text {
                objectName: "lightboxPlace"
                text: lightbox.model.placeText
                color: Theme.text
                font.pixelSize: 20
                font.weight: Font.Bold
            }
            Text { text: lightbox.model.lengthText; color: Theme.textMuted; font.pixelSize: 14 }
            Text {
                visible: lightbox.model.positionText !== ""
                text: "· " + lightbox.model.positionText
                color: Theme.textMuted
                font.pixelSize: 14
            }
            Rectangle {
                visible: lightbox.model.suggested
                implicitWidth: suggestedText.implicitWidth + 16
                implicitHeight: 22
                radius: 11
                color: Theme.accentSoft
                Text { id: suggestedText; anchors.centerIn: parent; text: "suggested"; color: Theme.accent; font.pixelSize: 11; font.weight: Font.DemiBold }
            }
            Text {
                visible: lightbox.model.playAll
                text: "▶ Playing all"
                color: Theme.textMuted
                font.pixelSize: 12
            }
            Item { Layout.fillWidth: true }
            GalleryButton { objectName: "lightboxClose"; text: "✕"; onClicked: lightbox.model.close() }
        }

        // The video, with the steps to the neighbours on either side.
        RowLayout {
            Layout.fillWidth: true
            Layout.fillHeight: true
            spacing: 12
            GalleryButton { text: "‹"; onClicked: lightbox.model.previous() }
            Rectangle {
                Layout.fillWidth: true
                Layout.fillHeight: true
                radius: 10
                clip: true
                color: "black"
                MpvVideoItem {
                    objectName: "lightboxVideo"
                    anchors.fill: parent
                    player: lightbox.model.engine.player
                }
            }
            GalleryButton { text: "›"; onClicked: lightbox.model.next() }
        }

        RowLayout {
            Layout.fillWidth: true
            spacing: 8
            Chip { caption: "ALT"; value: lightbox.model.altitudeText }
            Chip { caption: "SPD"; value: lightbox.model.speedText }
            Chip { caption: "HDG"; value: lightbox.model.headingText }
            Text {
                Layout.fillWidth: true
                Layout.leftMargin: 8
                visible: lightbox.model.why !== ""
                text: lightbox.model.why
                color: Theme.warm
                font.pixelSize: 13
                elide: Text.ElideRight
            }
            Item { Layout.fillWidth: true; visible: lightbox.model.why === "" }
        }

        ClipFilmstripView {
            objectName: "lightboxStrip"
            Layout.fillWidth: true
            Layout.preferredHeight: 64
            strip: lightbox.model.strip
            accent: Theme.accent
            backing: Theme.letterbox
        }

        RowLayout {
            Layout.fillWidth: true
            spacing: 10
            Text {
                text: lightbox.model.label
                color: Theme.text
                font.pixelSize: 14
                elide: Text.ElideRight
                Layout.fillWidth: true
            }
            GalleryButton {
                visible: lightbox.model.dirty
                enabled: !lightbox.model.busy
                text: "Cancel trim"
                onClicked: lightbox.model.cancelTrim()
            }
            GalleryButton {
                visible: lightbox.model.dirty
                enabled: !lightbox.model.busy
                text: "Save trim & keep"
                prominent: true
                onClicked: lightbox.model.saveTrim()
            }
            GalleryButton {
                visible: !lightbox.model.dirty && lightbox.model.suggested
                enabled: !lightbox.model.busy
                text: "Toss"
                destructive: true
                onClicked: lightbox.model.toss()
            }
            GalleryButton {
                visible: !lightbox.model.dirty && lightbox.model.suggested
                enabled: !lightbox.model.busy
                text: "Keep"
                prominent: true
                onClicked: lightbox.model.keep()
            }
        }
    }
}
