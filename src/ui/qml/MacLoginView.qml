// The sign-in screen: welcome panel on one side, the form on the other. All state and rules
// are in LoginViewModel; this file lays them out.
import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Aeroloom.Services

Item {
    id: view

    LoginViewModel {
        id: vm
        app: App
    }

    RowLayout {
        anchors.fill: parent
        spacing: 0

        LoginWelcome {
            Layout.fillHeight: true
            Layout.preferredWidth: view.width * 0.47
            headline: vm.welcome
        }

        Rectangle {
            Layout.fillWidth: true
            Layout.fillHeight: true
            color: Theme.background

            Flickable {
                anchors.fill: parent
                contentHeight: Math.max(height, form.implicitHeight + 96)
                clip: true
                boundsBehavior: Flickable.StopAtBounds

                ColumnLayout {
                    id: form
                    width: Math.min(parent.width - 80, 400)
                    anchors.horizontalCenter: parent.horizontalCenter
                    y: Math.max(48, (parent.height - implicitHeight) / 2)
                    spacing: 14

                    Text {
                        text: vm.waiting ? vm.waitingHead : "Sign in"
                        color: Theme.text
                        font.pixelSize: 28
                        font.weight: Font.Bold
                    }

                    // --- The form ---
                    ColumnLayout {
                        Layout.fillWidth: true
                        visible: !vm.waiting
                        spacing: 14

                        ColumnLayout {
                            Layout.fillWidth: true
                            visible: vm.advanced
                            spacing: 6
                            Text {
                                text: vm.pickerLabel
                                color: Theme.textMuted
                                font.pixelSize: 12
                                font.weight: Font.DemiBold
                            }
                            SegmentedPicker {
                                Layout.fillWidth: true
                                model: vm.modeLabels
                                currentIndex: vm.mode
                                onActivated: index => vm.mode = index
                            }
                        }

                        Text {
                            Layout.fillWidth: true
                            text: vm.explanation
                            color: Theme.textMuted
                            font.pixelSize: 14
                            lineHeight: 1.25
                            wrapMode: Text.WordWrap
                        }

                        AeroTextField {
                            Layout.fillWidth: true
                            visible: vm.mode === 0
                            placeholderText: vm.emailPlaceholder
                            inputMethodHints: Qt.ImhEmailCharactersOnly
                            text: vm.email
                            onTextEdited: vm.email = text
                            onAccepted: vm.submit()
                        }
                        AeroTextField {
                            Layout.fillWidth: true
                            visible: vm.mode === 1
                            placeholderText: vm.tokenPlaceholder
                            text: vm.token
                            onTextEdited: vm.token = text
                            onAccepted: vm.submit()
                        }
                        AeroTextField {
                            Layout.fillWidth: true
                            visible: vm.mode === 2
                            placeholderText: vm.userPlaceholder
                            text: vm.user
                            onTextEdited: vm.user = text
                            onAccepted: vm.submit()
                        }
                        AeroTextField {
                            Layout.fillWidth: true
                            visible: vm.mode === 2
                            placeholderText: vm.passPlaceholder
                            echoMode: TextInput.Password
                            text: vm.pass
                            onTextEdited: vm.pass = text
                            onAccepted: vm.submit()
                        }

                        ColumnLayout {
                            Layout.fillWidth: true
                            visible: vm.advanced
                            spacing: 6
                            Text {
                                text: vm.serverLabel
                                color: Theme.textMuted
                                font.pixelSize: 12
                                font.weight: Font.DemiBold
                            }
                            AeroTextField {
                                Layout.fillWidth: true
                                text: vm.base
                                inputMethodHints: Qt.ImhUrlCharactersOnly
                                onTextEdited: vm.base = text
                                onAccepted: vm.submit()
                            }
                            Text {
                                Layout.fillWidth: true
                                text: vm.serverNote
                                color: Theme.textMuted
                                font.pixelSize: 12
                                wrapMode: Text.WordWrap
                            }
                        }

                        AeroButton {
                            Layout.fillWidth: true
                            Layout.topMargin: 4
                            text: vm.submitText
                            enabled: vm.canSubmit
                            onClicked: vm.submit()
                        }

                        AeroSwitch {
                            text: vm.advancedLabel
                            checked: vm.advanced
                            onToggled: vm.advanced = checked
                        }
                    }

                    // --- Waiting for the mailed link ---
                    ColumnLayout {
                        Layout.fillWidth: true
                        visible: vm.waiting
                        spacing: 16

                        RowLayout {
                            Layout.fillWidth: true
                            spacing: 14
                            BusyIndicator {
                                running: vm.waiting
                                implicitWidth: 36
                                implicitHeight: 36
                                palette.dark: Theme.accent
                            }
                            Text {
                                Layout.fillWidth: true
                                text: vm.waitingLine
                                color: Theme.text
                                font.pixelSize: 15
                                lineHeight: 1.25
                                wrapMode: Text.WordWrap
                            }
                        }
                        Text {
                            Layout.fillWidth: true
                            text: vm.hintText
                            color: Theme.textMuted
                            font.pixelSize: 13
                            lineHeight: 1.2
                            wrapMode: Text.WordWrap
                            opacity: vm.hintVisible ? 1 : 0
                            visible: opacity > 0
                            Behavior on opacity { NumberAnimation { duration: 400; easing.type: Easing.OutCubic } }
                        }
                        AeroButton {
                            Layout.fillWidth: true
                            primary: false
                            text: vm.cancelText
                            onClicked: vm.cancel()
                        }
                    }

                    Text {
                        Layout.fillWidth: true
                        visible: vm.error !== ""
                        text: vm.error
                        color: Theme.danger
                        font.pixelSize: 13
                        wrapMode: Text.WordWrap
                    }

                    LoginLearnMore {
                        Layout.fillWidth: true
                        Layout.topMargin: 18
                        model: vm
                    }
                }
            }
        }
    }
}
