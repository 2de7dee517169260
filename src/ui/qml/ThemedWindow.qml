// Every window of the program: the palette of the chosen theme, applied to the window itself
// and to the stock controls inside it.
import QtQuick
import QtQuick.Controls
import Aeroloom.Services

ApplicationWindow {
    id: window
    color: Theme.background
    font.family: "DejaVu Sans"

    palette.window: Theme.background
    palette.windowText: Theme.text
    palette.base: Theme.field
    palette.alternateBase: Theme.surfaceRaised
    palette.text: Theme.text
    palette.button: Theme.surfaceRaised
    palette.buttonText: Theme.text
    palette.brightText: Theme.text
    palette.highlight: Theme.accent
    palette.highlightedText: Theme.accentText
    palette.placeholderText: Theme.textMuted
    palette.light: Theme.surface
    palette.midlight: Theme.surfaceRaised
    palette.mid: Theme.border
    palette.dark: Theme.border
    palette.shadow: "#000000"
    palette.toolTipBase: Theme.surfaceRaised
    palette.toolTipText: Theme.text
    palette.link: Theme.accent

    /// Brings a work window forward, showing it first if it was closed.
    function open() {
        window.show()
        window.raise()
        window.requestActivate()
    }
}
