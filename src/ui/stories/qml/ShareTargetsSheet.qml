// Where a video or its link can go on this desktop, which has no share sheet of its own:
// the e-mail client, the browser or player, the file manager, the videos folder.
import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Aeroloom.Services

StorySheet {
    id: sheet
    /// A downloaded video, or empty…
    property string file: ""
    /// …or a public link.
    property string link: ""
    property string subject: ""
    property QtObject desktop: null
    readonly property bool forFile: file !== ""

    objectName: "shareTargets"
    parent: Overlay.overlay
    title: forFile ? "Share video" : "Share link"
    width: 360

    function hand(action) {
        if (desktop)
            action()
        close()
    }

    contentItem: ColumnLayout {
        spacing: 8
        Text {
            Layout.fillWidth: true
            text: sheet.forFile ? sheet.file.substring(sheet.file.lastIndexOf("/") + 1) : sheet.link
            color: Theme.textMuted
            font.pixelSize: 12
            elide: Text.ElideMiddle
        }
        StoryButton {
            objectName: "emailTarget"
            Layout.fillWidth: true
            text: "✉ E-mail…"
            onClicked: sheet.hand(() => sheet.forFile ? sheet.desktop.emailFile(sheet.file, sheet.subject)
                                                      : sheet.desktop.emailLink(sheet.link, sheet.subject))
        }
        StoryButton {
            objectName: "openTarget"
            Layout.fillWidth: true
            text: sheet.forFile ? "▶ Open" : "↗ Open in Browser"
            onClicked: sheet.hand(() => sheet.forFile ? sheet.desktop.openFile(sheet.file) : sheet.desktop.openLink(sheet.link))
        }
        StoryButton {
            objectName: "showTarget"
            Layout.fillWidth: true
            visible: sheet.forFile
            text: "📁 Show in Files"
            onClicked: sheet.hand(() => sheet.desktop.showFile(sheet.file))
        }
        StoryButton {
            objectName: "keepTarget"
            Layout.fillWidth: true
            visible: sheet.forFile
            text: "⤓ Save to Videos"
            onClicked: sheet.hand(() => sheet.desktop.keepInVideos(sheet.file))
        }
        RowLayout {
            Layout.topMargin: 6
            Item { Layout.fillWidth: true }
            StoryButton { text: "Cancel"; onClicked: sheet.close() }
        }
    }
}
