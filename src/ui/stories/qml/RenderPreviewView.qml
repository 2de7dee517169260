// Making a story's video: the settings, "Create", the job's progress, and the finished video
// with its tags and "Save". The story screen shows it in a sheet and gives it the story.
import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Aeroloom.Services
import Aeroloom.Review
import Aeroloom.Stories

Item {
    id: view
    // Given by the story screen once made.
    property string storyId: ""
    property string storyTitle: ""
    property bool storyVertical: false
    // Given where the screen is made.
    property QtObject store: null
    property QtObject hooks: null
    property QtObject desktop: null
    readonly property QtObject model: renderModel
    signal done()

    implicitWidth: 860
    implicitHeight: 600

    RenderPreviewModel {
        id: renderModel
        objectName: "renderPreviewModel"
        store: view.store
        storyId: view.storyId
        storyTitle: view.storyTitle
        storyVertical: view.storyVertical
        assumeRendering: view.hooks ? view.hooks.renderDone : false
    }
    // The story screen hands over the story right after making this view.
    Component.onCompleted: Qt.callLater(renderModel.appear)
    Component.onDestruction: renderModel.stop()

    component Heading: Text {
        color: Theme.text
        font.pixelSize: 12
        font.weight: Font.DemiBold
        font.capitalization: Font.AllUppercase
        font.letterSpacing: 0.6
    }
    component Words: Text {
        Layout.fillWidth: true
        // An empty line stays in its column at no height instead of being hidden: a wrapped text
        // that first shows inside a layout keeps the one-line height it had before the layout
        // narrowed it, and overlaps what follows.
        Layout.preferredHeight: text !== "" ? implicitHeight : 0
        color: Theme.textMuted
        font.pixelSize: 12
        wrapMode: Text.WordWrap
    }

    RowLayout {
        anchors.fill: parent
        spacing: 22

        // The settings, "Create" and the job.
        ColumnLayout {
            Layout.preferredWidth: 320
            Layout.maximumWidth: 320
            Layout.fillHeight: true
            spacing: 8

            Text {
                Layout.fillWidth: true
                text: view.storyTitle
                color: Theme.text
                font.pixelSize: 19
                font.weight: Font.Bold
                elide: Text.ElideRight
            }
            Words { text: "Weaves your story's clips into one video with music — ready to watch and share." }

            Heading { Layout.topMargin: 6; text: "Music" }
            ComboBox {
                id: music
                objectName: "musicPicker"
                Layout.fillWidth: true
                implicitHeight: 30
                model: renderModel.trackChoices
                textRole: "label"
                valueRole: "value"
                currentIndex: Math.max(0, indexOfValue(renderModel.track))
                onActivated: renderModel.track = currentValue
                font.pixelSize: 13
                background: Rectangle { radius: 8; color: Theme.field; border.color: music.activeFocus ? Theme.accent : Theme.border }
                contentItem: Text {
                    leftPadding: 10
                    text: music.displayText
                    color: Theme.text
                    font: music.font
                    verticalAlignment: Text.AlignVCenter
                    elide: Text.ElideRight
                }
            }

            Heading { Layout.topMargin: 4; text: "Sync" }
            StoryChoiceList {
                objectName: "syncPicker"
                Layout.fillWidth: true
                choices: renderModel.syncChoices
                value: renderModel.sync
                onPicked: (value) => renderModel.sync = value
            }

            Heading { Layout.topMargin: 4; text: "Format" }
            StoryChoiceList {
                objectName: "aspectPicker"
                Layout.fillWidth: true
                enabled: !view.storyVertical
                choices: renderModel.aspectChoices
                value: renderModel.shownAspect
                onPicked: (value) => renderModel.aspect = value
            }
            Words {
                objectName: "verticalNote"
                text: renderModel.verticalNote ? "Vertical keeps the middle of every shot — the edges leave the frame, and it costs a little sharpness. For the sharpest vertical, make it in the desktop app from your originals." : ""
            }

            RowLayout {
                Layout.topMargin: 4
                Layout.fillWidth: true
                spacing: 10
                Heading { text: "HUD" }
                Switch {
                    id: hud
                    objectName: "hudSwitch"
                    checked: renderModel.hud
                    onToggled: renderModel.hud = checked
                    indicator: Rectangle {
                        implicitWidth: 36
                        implicitHeight: 20
                        radius: 10
                        color: hud.checked ? Theme.accent : Theme.surfaceRaised
                        border.color: hud.checked ? Theme.accent : Theme.border
                        Rectangle {
                            x: hud.checked ? parent.width - width - 3 : 3
                            anchors.verticalCenter: parent.verticalCenter
                            width: 14
                            height: 14
                            radius: 7
                            color: hud.checked ? Theme.accentText : Theme.textMuted
                            Behavior on x { NumberAnimation { duration: 120 } }
                        }
                    }
                }
                Text {
                    objectName: "hudCaption"
                    Layout.fillWidth: true
                    text: renderModel.hudCaption
                    color: Theme.textMuted
                    font.pixelSize: 12
                    wrapMode: Text.WordWrap
                }
            }

            Item { Layout.fillHeight: true }

            StoryButton {
                objectName: "createButton"
                Layout.fillWidth: true
                implicitHeight: 36
                prominent: true
                text: (renderModel.rendering ? "⌛ " : "🎞 ") + renderModel.buttonText
                enabled: !renderModel.rendering && !renderModel.starting
                onClicked: renderModel.create()
            }

            // The job's bar: its progress while it runs, full with "Created." once it finished here.
            Rectangle {
                objectName: "progressBar"
                Layout.fillWidth: true
                implicitHeight: 22
                visible: renderModel.barText !== ""
                radius: 6
                color: Theme.surfaceRaised
                border.color: Theme.border
                clip: true
                Rectangle {
                    objectName: "progressFill"
                    height: parent.height
                    radius: 6
                    // The share springs as the job moves on; the bar's own width (set by the
                    // layout, late) applies at once.
                    property real share: renderModel.progressDone && !renderModel.rendering ? 1 : renderModel.progress
                    width: parent.width * share
                    color: renderModel.progressDone && !renderModel.rendering ? Theme.success : Theme.accent
                    opacity: 0.35
                    Behavior on share { SpringAnimation { spring: 4; damping: 0.85; epsilon: 0.005 } }
                }
                Text {
                    objectName: "progressText"
                    anchors.centerIn: parent
                    text: renderModel.barText
                    color: Theme.text
                    font.pixelSize: 12
                    font.weight: Font.DemiBold
                }
            }

            Words {
                objectName: "renderNote"
                text: renderModel.note
                color: Theme.danger
            }
        }

        // The video.
        ColumnLayout {
            Layout.fillWidth: true
            Layout.fillHeight: true
            spacing: 10

            Rectangle {
                id: stage
                Layout.fillWidth: true
                Layout.fillHeight: true
                radius: 10
                color: Theme.letterbox
                clip: true

                Text {
                    anchors.centerIn: parent
                    visible: renderModel.playback === null
                    text: "🎞"
                    color: Qt.rgba(1, 1, 1, 0.22)
                    font.pixelSize: 56
                }
                MpvVideoItem {
                    objectName: "renderVideo"
                    readonly property real aspect: renderModel.videoVertical ? 9 / 16 : 16 / 9
                    anchors.centerIn: parent
                    height: Math.min(stage.height, stage.width / aspect)
                    width: height * aspect
                    visible: renderModel.playback !== null
                    player: renderModel.playback ? renderModel.playback.player : null
                }
            }

            VideoControls { Layout.fillWidth: true; playback: renderModel.playback }

            Words {
                objectName: "staleLine"
                text: renderModel.staleLine
                color: Theme.warm
            }
            Words {
                objectName: "errorLine"
                text: renderModel.errorLine
                color: Theme.danger
            }
            VideoTags {
                objectName: "renderTags"
                Layout.fillWidth: true
                tags: renderModel.tags
                music: renderModel.musicText
            }

            RowLayout {
                Layout.fillWidth: true
                spacing: 10
                StoryButton {
                    objectName: "saveButton"
                    text: renderModel.downloading ? "Saving…" : "⤓ Save"
                    enabled: renderModel.canDownload && !renderModel.downloading
                    onClicked: renderModel.download()
                }
                Item { Layout.fillWidth: true }
                StoryButton { objectName: "renderDone"; text: "Done"; onClicked: view.done() }
            }
        }
    }

    ShareTargetsSheet {
        file: renderModel.sharedFile
        subject: view.storyTitle
        desktop: view.desktop
        visible: renderModel.sharedFile !== ""
        onClosed: renderModel.shareDismissed()
    }
}
