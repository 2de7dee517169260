// The flight over time: the statistics row, the altitude profile with its bands and playhead
// (press or drag to seek), and the shuttle bar beside it.
import QtQuick
import QtQuick.Layouts
import Aeroloom.Services
import Aeroloom.Review

Rectangle {
    id: timeline
    required property QtObject model
    property bool showStats: true
    property bool showJogBar: true
    color: Theme.surface
    radius: 10
    border.color: Theme.border

    component Stat: Row {
        property string label
        property string value
        spacing: 6
        Text { text: parent.label; color: Theme.textMuted; font.pixelSize: 10; font.weight: Font.Bold; anchors.verticalCenter: parent.verticalCenter }
        Text { text: parent.value; color: Theme.text; font.pixelSize: 13; font.weight: Font.DemiBold; font.family: "monospace" }
    }

    ColumnLayout {
        anchors.fill: parent
        anchors.margins: 10
        spacing: 4

        RowLayout {
            objectName: "statsRow"
            visible: timeline.showStats
            Layout.fillWidth: true
            Layout.leftMargin: 6
            spacing: 18
            Stat { label: "PEAK"; value: timeline.model.peakText }
            Stat { label: "DIST"; value: timeline.model.distanceText }
            Stat { label: "SPEED"; value: timeline.model.speedText }
            Stat { label: "TIME"; value: timeline.model.clockText }
            Stat {
                visible: timeline.model.markIn !== undefined
                label: "CLIP"
                value: timeline.model.pendingText
            }
            Item { Layout.fillWidth: true }
            Row {
                spacing: 10
                Repeater {
                    model: [
                        { label: "Clip", color: Theme.accent },
                        { label: "Suggested", color: Theme.warm },
                        { label: "Moment", color: Theme.success }
                    ]
                    delegate: Row {
                        required property var modelData
                        spacing: 4
                        Rectangle { width: 9; height: 9; radius: 2; color: modelData.color; anchors.verticalCenter: parent.verticalCenter }
                        Text { text: modelData.label; color: Theme.textMuted; font.pixelSize: 11 }
                    }
                }
            }
        }

        RowLayout {
            Layout.fillWidth: true
            Layout.fillHeight: true
            spacing: 8

            TimelinePlot {
                id: plot
                objectName: "timelinePlot"
                Layout.fillWidth: true
                Layout.fillHeight: true
                points: timeline.model.altPoints
                duration: timeline.model.duration
                current: timeline.model.current
                markIn: timeline.model.markIn
                markOut: timeline.model.markOut
                clipBands: timeline.model.clipRanges
                suggestedBands: timeline.model.suggestedRanges
                momentBands: timeline.model.momentRanges
                unit: timeline.model.curveUnit
                curveColor: Theme.accent
                accentColor: Theme.accent
                suggestedColor: Theme.warm
                momentColor: Theme.success
                markColor: Theme.dark ? "#FFFFFF" : "#121A2B"
                gridColor: Theme.border
                textColor: Theme.text
                labelColor: Theme.textMuted
                onSeekRequested: (time) => timeline.model.seek(time)
            }

            ColumnLayout {
                visible: timeline.showJogBar
                Layout.fillWidth: false
                Layout.preferredWidth: 52
                Layout.fillHeight: true
                spacing: 2
                JogBarView {
                    id: jog
                    objectName: "jogBar"
                    Layout.fillWidth: true
                    Layout.fillHeight: true
                    barColor: Theme.surfaceRaised
                    knobColor: timeline.model.isJogging ? Theme.warm : Theme.accent
                    textColor: Theme.text
                    labelColor: Theme.textMuted
                    onJogBegan: timeline.model.beginJog()
                    onJogged: (d) => timeline.model.jogTo(d)
                    onJogEnded: timeline.model.endJog()
                }
                Text {
                    Layout.alignment: Qt.AlignHCenter
                    text: jog.hint
                    color: jog.dragging ? Theme.warm : Theme.textMuted
                    font.pixelSize: 10
                }
            }
        }
    }
}
