// One story being edited: its cut list, and the sheets that add, preview, trim and make videos.
//
// Sheets made by other screens come in from outside:
// - trimming: `trimModel` opens with `open(key, flightId, p480, label, subtitle, originalIn,
//   originalOut)` (the key is the item's uid), reports each let-go handle with `changed(key,
//   start, end)`, which saves the item, and tells `isOpen`; `trimSheet` is the popup that shows it,
//   made once with this screen as its parent. Without them items have no trim button.
// - `renderSheet`: given storyId, storyTitle, storyVertical and client; `done()` closes it, and
//   `renderRefresh` counts the closings so a history of videos can reload.
// - `historySection`: the story's videos under the cut list, given storyId, storyTitle and
//   refreshKey (`renderRefresh`); left out while its `hasVideos` is false.
import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Aeroloom.Services

Rectangle {
    id: content
    required property QtObject reel
    property QtObject hooks: null
    property Component thumbnail: null
    property QtObject trimModel: null
    property Component trimSheet: null
    property Component renderSheet: null
    property Component historySection: null
    signal backRequested()
    signal renderSheetClosed()
    color: Theme.background

    property bool showAdd: false
    property bool showPreview: false
    property bool showRender: false
    property int renderRefresh: 0
    property string trimming: ""
    property bool showRename: false
    property string renameTitle: ""
    property string sharingRender: ""

    function trim(uid) {
        const target = reel.trimTarget(uid)
        if (!trimModel || target.uid === undefined)
            return
        trimming = uid
        trimModel.open(uid, target.flightId, target.p480, target.label, target.subtitle,
                       target.originalIn, target.originalOut)
    }

    Component.onCompleted: {
        if (trimSheet && trimModel)
            trimSheet.createObject(content)
        if (!hooks)
            return
        if (hooks.take("add")) showAdd = true
        if (hooks.take("preview") && reel.itemCount > 0) showPreview = true
        if (hooks.take("trim") && reel.itemCount > 0) trim(reel.uidAt(0))
        if (hooks.take("render")) showRender = true
    }

    ColumnLayout {
        anchors.fill: parent
        anchors.margins: 24
        anchors.bottomMargin: 0
        spacing: 12

        RowLayout {
            Layout.fillWidth: true
            spacing: 10
            StoryButton { text: "‹ Stories"; plain: true; onClicked: content.backRequested() }
            ColumnLayout {
                Layout.fillWidth: true
                spacing: 2
                Text {
                    objectName: "storyTitle"
                    Layout.fillWidth: true
                    text: content.reel.title
                    color: Theme.text
                    font.pixelSize: 24
                    font.weight: Font.Bold
                    elide: Text.ElideRight
                }
                Text {
                    text: content.reel.totalText + (content.reel.storyVertical ? "  ·  ▯ vertical" : "")
                          + (content.reel.saving ? "  ·  Saving…" : "")
                    color: Theme.textMuted
                    font.pixelSize: 12
                }
            }
            StoryButton {
                objectName: "previewButton"
                text: "▶ Preview"
                enabled: content.reel.itemCount > 0
                onClicked: content.showPreview = true
            }
            StoryButton {
                objectName: "createVideoButton"
                text: "Create"
                visible: content.renderSheet !== null
                enabled: content.reel.itemCount > 0
                onClicked: content.showRender = true
            }
            StoryButton { objectName: "addClipsButton"; text: "＋ Add clips"; prominent: true; onClicked: content.showAdd = true }
            StoryButton {
                text: "Rename story"
                onClicked: { content.renameTitle = content.reel.title; content.showRename = true }
            }
        }

        RowLayout {
            spacing: 8
            Text { text: "Clips"; color: Theme.text; font.pixelSize: 16; font.weight: Font.DemiBold }
            Text { text: content.reel.itemCount; color: Theme.textMuted; font.pixelSize: 13 }
            Text {
                Layout.leftMargin: 8
                text: "Ordered cut list. Drag to reorder, ✕ to remove."
                color: Theme.textMuted
                font.pixelSize: 12
            }
        }

        Item {
            Layout.fillWidth: true
            Layout.fillHeight: true

            ColumnLayout {
                objectName: "storyEmpty"
                anchors.centerIn: parent
                visible: content.reel.itemCount === 0
                spacing: 6
                Text { Layout.alignment: Qt.AlignHCenter; text: "No clips yet"; color: Theme.text; font.pixelSize: 17; font.weight: Font.DemiBold }
                Text { Layout.alignment: Qt.AlignHCenter; text: "Add some from the library."; color: Theme.textMuted; font.pixelSize: 13 }
            }

            ListView {
                id: list
                objectName: "storyItems"
                anchors.fill: parent
                visible: content.reel.itemCount > 0
                clip: true
                model: content.reel.items
                ScrollBar.vertical: ScrollBar {}
                footer: Item { height: 24 }
                moveDisplaced: Transition { NumberAnimation { properties: "y"; duration: 140 } }
                delegate: ReelItemRow {
                    width: list.width
                    thumbnail: content.thumbnail
                    canTrim: content.trimModel !== null
                    onDropped: (from, to) => content.reel.moveRow(from, to)
                    onTrimRequested: content.trim(uid)
                    onRemoveRequested: content.reel.removeRow(index)
                }
            }
        }

        Loader {
            Layout.fillWidth: true
            Layout.bottomMargin: 16
            visible: item !== null && item.hasVideos !== false
            active: content.historySection !== null
            sourceComponent: content.historySection
            onLoaded: {
                item.storyId = content.reel.storyId
                item.storyTitle = Qt.binding(() => content.reel.title)
                item.refreshKey = Qt.binding(() => content.renderRefresh)
            }
        }
    }

    AddClipsView {
        objectName: "addClipsSheet"
        reel: content.reel
        thumbnail: content.thumbnail
        visible: content.showAdd
        onClosed: content.showAdd = false
    }

    StoryPreviewView {
        objectName: "previewSheet"
        reel: content.reel
        storyVertical: content.reel.storyVertical
        visible: content.showPreview
        onClosed: content.showPreview = false
    }

    StorySheet {
        objectName: "renameSheet"
        title: "Rename story"
        visible: content.showRename
        onClosed: content.showRename = false
        contentItem: ColumnLayout {
            spacing: 16
            StoryTextField {
                id: renameField
                Layout.fillWidth: true
                placeholderText: "Story name"
                text: content.renameTitle
                onTextEdited: content.renameTitle = text
                onAccepted: renameSave.clicked()
            }
            RowLayout {
                Item { Layout.fillWidth: true }
                StoryButton { text: "Cancel"; onClicked: content.showRename = false }
                StoryButton {
                    id: renameSave
                    text: "Save"
                    prominent: true
                    onClicked: { content.reel.renameTo(content.renameTitle); content.showRename = false }
                }
            }
        }
    }

    Connections {
        target: content.trimModel
        ignoreUnknownSignals: true
        function onChanged(key, start, end) { content.reel.trimItem(key, start, end) }
        function onIsOpenChanged() { if (!content.trimModel.isOpen) content.trimming = "" }
    }

    // Making a video of the story, in the sheet given by the video screens.
    StorySheet {
        id: renderHost
        objectName: "renderSheet"
        title: ""
        header: null
        width: Math.min(content.width - 80, 900)
        visible: content.showRender && content.renderSheet !== null
        onClosed: {
            content.showRender = false
            content.renderRefresh += 1
            content.renderSheetClosed()
        }
        contentItem: Loader {
            id: renderLoader
            active: renderHost.visible
            sourceComponent: content.renderSheet
            onLoaded: {
                const given = { storyId: content.reel.storyId, storyTitle: content.reel.title,
                                storyVertical: content.reel.storyVertical, client: content.reel.store.client }
                for (const key in given)
                    if (key in item) item[key] = given[key]
            }
            Connections {
                target: renderLoader.item
                ignoreUnknownSignals: true
                function onDone() { content.showRender = false }
            }
        }
    }
}
