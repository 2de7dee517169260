import QtQuick
import QtQuick.Controls

ApplicationWindow {
    width: 1200
    height: 780
    visible: true
    title: "Ornivale"
}
