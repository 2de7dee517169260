// The signed-in main window: the three sections and the account menu.
import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import QtQuick.Shapes
import Aeroloom.Services
import Aeroloom.Stories

Item {
    id: mainView
    readonly property string section: Navigator.section
    signal settingsRequested()

    RowLayout {
        anchors.fill: parent
        spacing: 0

        Rectangle {
            Layout.fillHeight: true
            Layout.preferredWidth: 232
            color: Theme.sidebar

            Rectangle { anchors.right: parent.right; width: 1; height: parent.height; color: Theme.border }

            ColumnLayout {
                anchors.fill: parent
                anchors.margins: 14
                spacing: 4

                Row {
                    Layout.leftMargin: 6
                    Layout.topMargin: 6
                    Layout.bottomMargin: 18
                    spacing: 10
                    Rectangle {
                        width: 26; height: 26; radius: 8
                        gradient: Gradient {
                            GradientStop { position: 0; color: "#46B8FF" }
                            GradientStop { position: 1; color: "#2A6BE0" }
                        }
                        Shape {
                            anchors.fill: parent
                            ShapePath {
                                strokeColor: "white"
                                strokeWidth: 2.2
                                fillColor: "transparent"
                                capStyle: ShapePath.RoundCap
                                joinStyle: ShapePath.RoundJoin
                                startX: 7; startY: 16
                                PathLine { x: 13; y: 9.5 }
                                PathLine { x: 19; y: 16 }
                            }
                        }
                    }
                    Text {
                        anchors.verticalCenter: parent.verticalCenter
                        text: "Ornivale"
                        color: Theme.text
                        font.pixelSize: 17
                        font.weight: Font.Bold
                    }
                }

                Repeater {
                    model: [
                        { id: "flights", label: "Flights", glyph: "▦" },
                        { id: "clips", label: "Clips", glyph: "▶" },
                        { id: "reels", label: "Stories", glyph: "❏" }
                    ]
                    delegate: Rectangle {
                        required property var modelData
                        readonly property bool current: mainView.section === modelData.id
                        Layout.fillWidth: true
                        implicitHeight: 38
                        radius: 9
                        color: current ? Theme.accentSoft : (rowHover.hovered ? Theme.surfaceRaised : "transparent")
                        Accessible.role: Accessible.PageTab
                        Accessible.name: modelData.label
                        HoverHandler { id: rowHover }
                        Row {
                            anchors.verticalCenter: parent.verticalCenter
                            x: 12
                            spacing: 12
                            Text {
                                text: modelData.glyph
                                color: current ? Theme.accent : Theme.textMuted
                                font.pixelSize: 14
                                width: 16
                            }
                            Text {
                                text: modelData.label
                                color: current ? Theme.text : Theme.textMuted
                                font.pixelSize: 14
                                font.weight: current ? Font.DemiBold : Font.Normal
                            }
                        }
                        TapHandler { onTapped: Navigator.section = modelData.id }
                    }
                }

                Item { Layout.fillHeight: true }

                // The account menu.
                Rectangle {
                    id: account
                    Layout.fillWidth: true
                    implicitHeight: 52
                    radius: 10
                    color: accountHover.hovered || accountMenu.visible ? Theme.surfaceRaised : "transparent"
                    border.color: Theme.border
                    HoverHandler { id: accountHover }
                    TapHandler { onTapped: accountMenu.popup(account, 0, -accountMenu.implicitHeight - 6) }

                    RowLayout {
                        anchors.fill: parent
                        anchors.margins: 10
                        spacing: 10
                        Rectangle {
                            implicitWidth: 30; implicitHeight: 30; radius: 15
                            color: Theme.accentSoft
                            Text {
                                anchors.centerIn: parent
                                text: App.email !== "" ? App.email.charAt(0).toUpperCase() : "?"
                                color: Theme.accent
                                font.pixelSize: 14
                                font.weight: Font.Bold
                            }
                        }
                        Text {
                            Layout.fillWidth: true
                            text: App.email !== "" ? App.email : App.baseString
                            color: Theme.text
                            font.pixelSize: 13
                            elide: Text.ElideRight
                        }
                        ProBadge { visible: App.pro }
                    }

                    Menu {
                        id: accountMenu
                        MenuItem { text: App.email !== "" ? App.email : "—"; enabled: false }
                        MenuSeparator {}
                        MenuItem { text: "Settings…"; onTriggered: mainView.settingsRequested() }
                        MenuItem { text: "Sign Out"; onTriggered: App.signOut() }
                    }
                }
            }
        }

        SectionView {
            Layout.fillWidth: true
            Layout.fillHeight: true
            section: mainView.section
        }
    }

    // An opened flight covers the whole view until the pilot goes back.
    PlayerScreen { anchors.fill: parent }
}
