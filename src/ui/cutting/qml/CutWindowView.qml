// The cut window's two screens: the story list until a story's cut list is in, then the cut
// screen. Everything it shows and does goes through the CutFlowModel it is given.
import QtQuick
import Aeroloom.Services

Rectangle {
    id: view
    required property QtObject model
    /// The window answers these with folder dialogs.
    signal originalsWanted(bool additional)
    signal outputWanted()

    color: Theme.background

    CutStoryList {
        anchors.fill: parent
        visible: !view.model.hasEdl
        model: view.model
    }
    CutScreen {
        anchors.fill: parent
        visible: view.model.hasEdl
        model: view.model
        onOriginalsWanted: additional => view.originalsWanted(additional)
        onOutputWanted: view.outputWanted()
    }
}
