// The flight's map with its recentre button and scale, and the coordinate under it.
import QtQuick
import QtQuick.Layouts
import Aeroloom.Services
import Aeroloom.Review

ColumnLayout {
    id: pane
    required property QtObject model
    property string tileHost: ""
    property string attribution: ""
    property string tileCacheDir: ""
    spacing: 6

    Rectangle {
        Layout.fillWidth: true
        Layout.fillHeight: true
        radius: 10
        color: Theme.surface
        border.color: Theme.border
        clip: true

        FlightMapView {
            id: map
            objectName: "flightMap"
            anchors.fill: parent
            anchors.margins: 1
            property int recenterRequests: 0
            tileHost: pane.tileHost
            cacheDir: pane.tileCacheDir
            attribution: pane.attribution
            background: Theme.dark ? "#1B1F27" : "#E8ECEF"
            textColor: Theme.text
            darkBasemap: Theme.dark
            path: pane.model.pathCoords
            highlight: pane.model.markedPath
            highlightColor: Theme.dark ? "#FFFFFF" : "#121A2B"
            coord: pane.model.coordNow
            heading: pane.model.headingNow
            trackColor: Theme.accent
            puckColor: Theme.warm
            recenterToken: recenterRequests
            onPathPressed: (index) => pane.model.seekToSample(index)
        }

        Rectangle {
            objectName: "recenterButton"
            anchors.top: parent.top
            anchors.right: parent.right
            anchors.margins: 10
            width: 30; height: 30; radius: 8
            color: Theme.surface
            border.color: Theme.border
            Text { anchors.centerIn: parent; text: "◎"; color: Theme.text; font.pixelSize: 17 }
            TapHandler { onTapped: map.recenterRequests += 1 }
        }

        // The scale is a fixed drawing, not measured from the map.
        Column {
            anchors.left: parent.left
            anchors.bottom: parent.bottom
            anchors.margins: 10
            spacing: 2
            Text {
                text: pane.model.mapScaleText
                color: Theme.text
                font.pixelSize: 10
                font.weight: Font.DemiBold
                style: Text.Outline
                styleColor: Theme.background
            }
            Rectangle {
                width: 60; height: 5
                color: "transparent"
                border.color: Theme.text
                border.width: 1.5
            }
        }
    }

    Text {
        objectName: "coordinateText"
        Layout.fillWidth: true
        text: pane.model.coordinateText !== "" ? pane.model.coordinateText : "No position for this flight"
        color: Theme.textMuted
        font.pixelSize: 12
        font.family: "monospace"
        horizontalAlignment: Text.AlignHCenter
    }
}
