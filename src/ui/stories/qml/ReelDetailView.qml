// A story opened from the hub: fetched from the library, then edited in ReelDetailContent.
import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Aeroloom.Services
import Aeroloom.Stories

Rectangle {
    id: detailView
    required property QtObject store
    required property string storyId
    property QtObject hooks: null
    property Component thumbnail: null
    property QtObject trimModel: null
    property Component trimSheet: null
    property Component renderSheet: null
    property Component historySection: null
    signal backRequested()
    signal renderSheetClosed()
    color: Theme.background

    ReelDetailModel {
        id: detail
        property bool ready: false
        store: detailView.store
        storyId: detailView.storyId
        // Another story opened in the same screen is fetched afresh.
        onStoryIdChanged: if (ready) load()
        Component.onCompleted: { ready = true; load() }
    }

    BusyIndicator {
        anchors.centerIn: parent
        visible: detail.loading
        running: visible
    }

    ColumnLayout {
        objectName: "storyFailed"
        anchors.centerIn: parent
        visible: detail.failed
        spacing: 14
        Text { Layout.alignment: Qt.AlignHCenter; text: "Couldn’t load this story."; color: Theme.text; font.pixelSize: 15 }
        StoryButton { Layout.alignment: Qt.AlignHCenter; text: "‹ Stories"; onClicked: detailView.backRequested() }
    }

    Loader {
        anchors.fill: parent
        active: detail.reel !== null
        sourceComponent: ReelDetailContent {
            reel: detail.reel
            hooks: detailView.hooks
            thumbnail: detailView.thumbnail
            trimModel: detailView.trimModel
            trimSheet: detailView.trimSheet
            renderSheet: detailView.renderSheet
            historySection: detailView.historySection
            onBackRequested: detailView.backRequested()
            onRenderSheetClosed: detailView.renderSheetClosed()
        }
    }
}
