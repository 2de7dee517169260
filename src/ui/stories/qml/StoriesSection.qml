// The "reels" section: the stories hub, or the story the navigator has open, and the toast.
//
// Screens made elsewhere come in from outside: `trimModel` with `trimSheet`, `renderSheet` and
// `historySection` are described in ReelDetailContent;
// `videoSheet` plays a story's latest video and `shareSheet` shares it: each is given
// storyId, videoId, url and client, and closes on its `done()`.
import QtQuick
import QtQuick.Controls
import Aeroloom.Services

Item {
    id: section
    required property QtObject hub
    required property QtObject navigator
    property Component thumbnail: null
    property QtObject trimModel: null
    property Component trimSheet: null
    property Component renderSheet: null
    property Component historySection: null
    property Component videoSheet: null
    property Component shareSheet: null

    property var videoTarget: null
    property var shareTarget: null

    ReelsListView {
        objectName: "reelsHub"
        anchors.fill: parent
        visible: section.navigator.openedStoryId === ""
        hub: section.hub
        thumbnail: section.thumbnail
        canPlay: section.videoSheet !== null
        canShare: section.shareSheet !== null
        onPlayRequested: (storyId, videoId, url) => section.videoTarget = { storyId: storyId, videoId: videoId, url: url }
        onShareRequested: (storyId, videoId) => section.shareTarget = { storyId: storyId, videoId: videoId, url: "" }
    }

    Loader {
        anchors.fill: parent
        active: section.navigator.openedStoryId !== ""
        sourceComponent: ReelDetailView {
            objectName: "reelDetail"
            store: section.hub.store
            storyId: section.navigator.openedStoryId
            hooks: section.hub.hooks
            thumbnail: section.thumbnail
            trimModel: section.trimModel
            trimSheet: section.trimSheet
            renderSheet: section.renderSheet
            historySection: section.historySection
            onBackRequested: section.navigator.closeStory()
            onRenderSheetClosed: section.hub.videoSheetClosed()
        }
    }

    component HookSheet: StorySheet {
        id: host
        property Component body: null
        property var target: null
        signal finished()
        header: null
        width: Math.min(section.width - 80, 900)
        visible: target !== null && body !== null
        onClosed: { finished(); section.hub.videoSheetClosed() }
        contentItem: Loader {
            id: bodyLoader
            active: host.visible
            sourceComponent: host.body
            onLoaded: {
                const given = Object.assign({ client: section.hub.store.client }, host.target)
                for (const key in given)
                    if (key in item) item[key] = given[key]
            }
            Connections {
                target: bodyLoader.item
                ignoreUnknownSignals: true
                function onDone() { host.close() }
            }
        }
    }

    HookSheet { body: section.videoSheet; target: section.videoTarget; onFinished: section.videoTarget = null }
    HookSheet { body: section.shareSheet; target: section.shareTarget; onFinished: section.shareTarget = null }

    StoryToast { text: section.hub.store.toast }
}
