// The story as one film from the flights' proxies, widescreen or in the vertical look.
import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Aeroloom.Services
import Aeroloom.Review

StorySheet {
    id: sheet
    required property QtObject reel
    property bool storyVertical: false
    property bool verticalLook: false
    property QtObject sp: null
    // The look springs between its shapes once the sheet is up; it opens in its shape at once.
    property bool lookAnimates: false

    title: "Preview"
    width: Math.min(parent ? parent.width - 80 : 900, 900)
    height: Math.min(parent ? parent.height - 40 : 720, 720)

    onOpened: {
        verticalLook = storyVertical
        lookAnimates = true
        sp = reel.startPreview()
    }
    onClosed: {
        lookAnimates = false
        if (sp)
            sp.close()
        sp = null
    }

    contentItem: ColumnLayout {
        spacing: 12

        Item {
            id: stage
            Layout.fillWidth: true
            Layout.fillHeight: true

            // The preview frame: 16:9, or 9:16 in the vertical look, as large as the stage allows.
            Rectangle {
                id: frame
                objectName: "previewFrame"
                // The shape animates, not the size: the layout sets the size, and a size that
                // animates would grow from nothing each time the sheet is laid out.
                property real aspect: sheet.verticalLook ? 0.5625 : 16 / 9
                Behavior on aspect {
                    enabled: sheet.lookAnimates
                    SpringAnimation { spring: 6; damping: 0.55; epsilon: 0.002 }
                }
                anchors.centerIn: parent
                height: Math.min(stage.height, stage.width / aspect)
                width: height * aspect
                color: "black"
                radius: 8
                clip: true

                // The video keeps its 16:9 shape; in the vertical look the frame crops its sides.
                MpvVideoItem {
                    objectName: "previewVideo"
                    anchors.centerIn: parent
                    height: parent.height
                    width: sheet.verticalLook ? height * 16 / 9 : parent.width
                    player: sheet.sp ? sheet.sp.player : null
                }

                Rectangle {
                    anchors.left: parent.left
                    anchors.right: parent.right
                    anchors.bottom: parent.bottom
                    height: overlay.implicitHeight + 20
                    gradient: Gradient {
                        GradientStop { position: 0; color: "transparent" }
                        GradientStop { position: 1; color: Qt.rgba(0, 0, 0, 0.7) }
                    }
                    ColumnLayout {
                        id: overlay
                        anchors.left: parent.left
                        anchors.right: parent.right
                        anchors.bottom: parent.bottom
                        anchors.margins: 12
                        spacing: 2
                        Text {
                            objectName: "previewPosition"
                            text: sheet.sp ? sheet.sp.positionText : ""
                            color: Qt.rgba(1, 1, 1, 0.75)
                            font.pixelSize: 12
                            font.family: "monospace"
                        }
                        Text {
                            objectName: "previewLabel"
                            Layout.fillWidth: true
                            text: sheet.sp ? sheet.sp.label : ""
                            color: "white"
                            font.pixelSize: 16
                            font.weight: Font.DemiBold
                            elide: Text.ElideRight
                        }
                        Text {
                            Layout.fillWidth: true
                            visible: text !== ""
                            text: sheet.sp ? sheet.sp.subtitle : ""
                            color: Qt.rgba(1, 1, 1, 0.75)
                            font.pixelSize: 12
                            elide: Text.ElideRight
                        }
                    }
                }
            }
        }

        Text {
            Layout.alignment: Qt.AlignHCenter
            visible: sheet.verticalLook
            text: "The vertical cut — the middle of every shot."
            color: Theme.textMuted
            font.pixelSize: 12
        }

        RowLayout {
            Layout.alignment: Qt.AlignHCenter
            spacing: 10
            StoryButton {
                text: "⏮"
                Accessible.name: "Previous clip"
                enabled: sheet.sp !== null && sheet.sp.canGoBack
                onClicked: sheet.sp.previous()
            }
            StoryButton {
                text: "⏭"
                Accessible.name: "Next clip"
                enabled: sheet.sp !== null && sheet.sp.canGoForward
                onClicked: sheet.sp.next()
            }
            StoryButton {
                objectName: "verticalButton"
                text: "▯ Vertical"
                checked: sheet.verticalLook
                onClicked: sheet.verticalLook = !sheet.verticalLook
            }
            StoryButton { text: "Done"; prominent: true; onClicked: sheet.close() }
        }
    }
}
