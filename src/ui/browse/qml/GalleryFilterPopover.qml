// Sort, grouping, time of day, model, clips only and hidden only, with "Reset".
import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Aeroloom.Services

Popup {
    id: popover
    required property QtObject store
    objectName: "filterPopover"
    width: 320
    padding: 16
    background: Rectangle { radius: 12; color: Theme.surface; border.color: Theme.border }

    component Caption: Text { color: Theme.textMuted; font.pixelSize: 11; font.weight: Font.DemiBold }
    component Choice: ComboBox {
        id: choice
        property string current
        signal chosen(string value)
        Layout.fillWidth: true
        textRole: "label"
        valueRole: "value"
        currentIndex: Math.max(0, indexOfValue(current))
        onActivated: chosen(currentValue)
        implicitHeight: 30
        background: Rectangle { radius: 7; color: Theme.field; border.color: Theme.border }
        contentItem: Text {
            leftPadding: 10
            text: choice.displayText
            color: Theme.text
            font.pixelSize: 13
            verticalAlignment: Text.AlignVCenter
            elide: Text.ElideRight
        }
    }
    component Toggle: Switch {
        id: toggle
        contentItem: Text {
            leftPadding: toggle.indicator.width + toggle.spacing
            text: toggle.text
            color: Theme.text
            font.pixelSize: 13
            verticalAlignment: Text.AlignVCenter
        }
    }

    contentItem: ColumnLayout {
        spacing: 10
        RowLayout {
            Text { text: "Filters"; color: Theme.text; font.pixelSize: 16; font.weight: Font.Bold }
            Item { Layout.fillWidth: true }
            Text { text: popover.store.activeNote; color: Theme.textMuted; font.pixelSize: 12 }
        }
        Caption { text: "Sort" }
        Choice {
            model: popover.store.sortChoices
            current: popover.store.sort
            onChosen: (value) => popover.store.sort = value
        }
        Caption { text: "Group" }
        Choice {
            model: popover.store.groupChoices
            current: popover.store.group
            onChosen: (value) => popover.store.group = value
        }
        Caption { text: "Time of day" }
        Row {
            spacing: 0
            Repeater {
                model: popover.store.todChoices
                delegate: GalleryButton {
                    required property var modelData
                    text: modelData.label
                    prominent: popover.store.tod === modelData.value
                    onClicked: popover.store.tod = modelData.value
                }
            }
        }
        Caption { text: "Drone" }
        Choice {
            objectName: "modelChoice"
            model: [{ value: "all", label: "All models" }].concat(
                       popover.store.models.map(m => ({ value: m, label: m })))
            current: popover.store.modelFilter
            onChosen: (value) => popover.store.modelFilter = value
        }
        Toggle {
            text: "★ Clips only"
            checked: popover.store.clipsOnly
            onToggled: popover.store.clipsOnly = checked
        }
        Toggle {
            text: popover.store.hiddenSwitchText
            checked: popover.store.showHidden
            onToggled: popover.store.showHidden = checked
        }
        RowLayout {
            Text { text: popover.store.footerText; color: Theme.textMuted; font.pixelSize: 12 }
            Item { Layout.fillWidth: true }
            GalleryButton { text: "Reset"; onClicked: popover.store.clearAllFilters() }
        }
    }
}
