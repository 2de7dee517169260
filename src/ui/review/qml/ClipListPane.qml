// The flight's clips: the pilot's own, then the server's suggestions, each with its menu.
import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Aeroloom.Services

Rectangle {
    id: pane
    required property QtObject model
    color: Theme.surface
    radius: 10
    border.color: Theme.border

    component SectionTitle: Text {
        color: Theme.textMuted
        font.pixelSize: 11
        font.weight: Font.Bold
        font.letterSpacing: 0.6
        leftPadding: 10
        topPadding: 8
        bottomPadding: 2
    }

    ScrollView {
        anchors.fill: parent
        anchors.margins: 6
        contentWidth: availableWidth
        clip: true

        Column {
            width: parent.width
            spacing: 2

            SectionTitle { text: "MY CLIPS · " + pane.model.myClips.count }
            Text {
                visible: pane.model.myClips.count === 0
                width: parent.width
                leftPadding: 10
                text: "No clips yet — mark in and out to make one"
                color: Theme.textMuted
                font.pixelSize: 12
                wrapMode: Text.WordWrap
            }
            Repeater {
                model: pane.model.myClips
                delegate: ClipRow {
                    width: parent ? parent.width : 0
                    onPlayRequested: pane.model.playClip(clipId)
                    onMenuRequested: (anchor) => pane.openMenu(clipId, anchor)
                }
            }

            SectionTitle {
                visible: pane.model.suggestedClips.count > 0
                text: "SUGGESTED · " + pane.model.suggestedClips.count
            }
            Repeater {
                model: pane.model.suggestedClips
                delegate: ClipRow {
                    width: parent ? parent.width : 0
                    onPlayRequested: pane.model.playClip(clipId)
                    onMenuRequested: (anchor) => pane.openMenu(clipId, anchor)
                }
            }
        }
    }

    component ThemedMenu: Menu {
        background: Rectangle {
            implicitWidth: 220
            radius: 8
            color: Theme.surfaceRaised
            border.color: Theme.border
        }
        delegate: Component { ThemedItem {} }
    }
    component ThemedItem: MenuItem {
        id: line
        implicitHeight: 30
        contentItem: Text {
            leftPadding: 4
            text: line.text
            color: line.enabled ? Theme.text : Theme.textMuted
            font.pixelSize: 13
            verticalAlignment: Text.AlignVCenter
        }
        arrow: Text {
            x: line.width - width - 10
            anchors.verticalCenter: parent.verticalCenter
            visible: line.subMenu !== null
            text: "›"
            color: Theme.textMuted
            font.pixelSize: 15
        }
        background: Rectangle {
            radius: 5
            color: line.highlighted ? Theme.accentSoft : "transparent"
        }
    }

    // The menu is built from the model's lines each time it opens, stories included.
    ThemedMenu {
        id: menu
        objectName: "clipMenu"
        property string clipId: ""
        onClosed: {
            // A submenu goes with the line that holds it; the other lines are ours to destroy.
            while (submenus.length > 0)
                removeMenu(submenus.pop())
            while (count > 0)
                takeItem(0).destroy()
        }
        property var submenus: []
    }
    Component { id: itemComponent; ThemedItem {} }
    Component { id: submenuComponent; ThemedMenu { title: "Add to story" } }

    function act(clipId, line) {
        switch (line.action) {
        case "play": pane.model.playClip(clipId); break
        case "keep": pane.model.keepClip(clipId); break
        case "toss": dialogs.ask("toss", clipId); break
        case "delete": dialogs.ask("delete", clipId); break
        case "addToStory": pane.model.addToStory(clipId, line.reelId); break
        }
    }

    function openMenu(clipId, anchor) {
        menu.clipId = clipId
        let story = null
        for (const line of pane.model.clipMenu(clipId)) {
            const item = itemComponent.createObject(null, { text: line.text, enabled: line.action !== "noStories" })
            item.triggered.connect(() => pane.act(clipId, line))
            if (!line.submenu) {
                menu.addItem(item)
                continue
            }
            if (!story) {
                story = submenuComponent.createObject(null)
                menu.submenus.push(story)
                menu.addMenu(story)
            }
            story.addItem(item)
        }
        menu.popup(anchor, 0, anchor.height)
    }

    ClipDialogs { id: dialogs; model: pane.model }
}
