// The picker of clips for the open story: filter, "Hide added", and a row per clip with a
// silent looping preview. It stays open after an add, so several clips go in a row.
import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Aeroloom.Services
import Aeroloom.Review
import Aeroloom.Stories

StorySheet {
    id: sheet
    required property QtObject reel
    property Component thumbnail: null
    /// The row being previewed, and its player while it plays.
    property int previewRow: -1
    property QtObject segment: null

    title: "Add clips"
    width: Math.min(parent ? parent.width - 80 : 760, 760)
    height: Math.min(parent ? parent.height - 60 : 640, 640)

    function stopPreview() {
        if (segment)
            segment.close()
        segment = null
        previewRow = -1
    }
    function preview(row) {
        const again = row === previewRow
        stopPreview()
        if (again)
            return
        segment = clips.startPreview(row)
        previewRow = segment ? row : -1
    }
    onClosed: stopPreview()

    AddClipsModel {
        id: clips
        objectName: "addClipsModel"
        reel: sheet.reel
        onModelReset: sheet.stopPreview()
    }

    contentItem: ColumnLayout {
        spacing: 12

        RowLayout {
            Layout.fillWidth: true
            spacing: 12
            StoryTextField {
                objectName: "addClipsSearch"
                Layout.fillWidth: true
                placeholderText: "Filter by label / place / date…"
                text: clips.search
                onTextEdited: clips.search = text
            }
            CheckBox {
                id: hide
                objectName: "hideAdded"
                text: "Hide added"
                checked: clips.hideAdded
                onToggled: clips.hideAdded = checked
                contentItem: Text {
                    leftPadding: hide.indicator.width + 6
                    text: hide.text
                    color: Theme.text
                    font.pixelSize: 13
                    verticalAlignment: Text.AlignVCenter
                }
            }
            StoryButton { text: "Done"; prominent: true; onClicked: sheet.close() }
        }

        Rectangle {
            objectName: "segmentPreview"
            Layout.fillWidth: true
            Layout.preferredHeight: sheet.segment ? Math.min(220, width * 9 / 16) : 0
            visible: sheet.segment !== null
            color: "black"
            radius: 8
            clip: true
            MpvVideoItem {
                anchors.centerIn: parent
                height: parent.height
                width: height * 16 / 9
                player: sheet.segment ? sheet.segment.player : null
            }
        }

        Item {
            Layout.fillWidth: true
            Layout.fillHeight: true

            Text {
                objectName: "poolEmpty"
                anchors.centerIn: parent
                width: Math.min(parent.width - 40, 420)
                visible: clips.poolEmpty
                text: "No clips marked yet. Open a flight and mark in/out points."
                color: Theme.textMuted
                font.pixelSize: 14
                wrapMode: Text.WordWrap
                horizontalAlignment: Text.AlignHCenter
            }

            ListView {
                id: list
                objectName: "addClipsList"
                anchors.fill: parent
                visible: !clips.poolEmpty
                clip: true
                spacing: 6
                model: clips
                ScrollBar.vertical: ScrollBar {}
                delegate: Rectangle {
                    id: clipRow
                    required property int index
                    required property string label
                    required property string subtitle
                    required property url thumbUrl
                    required property int inStory
                    required property string inStoryText
                    objectName: "clip-" + index
                    width: list.width
                    implicitHeight: 58
                    radius: 10
                    color: sheet.previewRow === index ? Theme.accentSoft : Theme.surfaceRaised
                    border.color: Theme.border

                    RowLayout {
                        anchors.fill: parent
                        anchors.margins: 6
                        anchors.rightMargin: 10
                        spacing: 12
                        StoryThumb {
                            Layout.preferredHeight: parent.height
                            Layout.preferredWidth: height * 16 / 9
                            source: clipRow.thumbUrl
                            thumbnail: sheet.thumbnail
                        }
                        ColumnLayout {
                            Layout.fillWidth: true
                            spacing: 2
                            Text {
                                Layout.fillWidth: true
                                text: clipRow.label
                                color: Theme.text
                                font.pixelSize: 14
                                font.weight: Font.Medium
                                elide: Text.ElideRight
                            }
                            Text {
                                Layout.fillWidth: true
                                text: clipRow.subtitle
                                color: Theme.textMuted
                                font.pixelSize: 12
                                elide: Text.ElideRight
                            }
                        }
                        Text { text: clipRow.inStoryText; color: Theme.accent; font.pixelSize: 12; font.weight: Font.DemiBold }
                        StoryButton {
                            objectName: "previewClip"
                            text: sheet.previewRow === clipRow.index ? "■" : "▶"
                            plain: true
                            Accessible.name: "Preview"
                            onClicked: sheet.preview(clipRow.index)
                        }
                        StoryButton {
                            objectName: "addButton"
                            text: "Add"
                            prominent: true
                            onClicked: clips.add(clipRow.index)
                        }
                    }
                }
            }
        }
    }
}
