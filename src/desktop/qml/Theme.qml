pragma Singleton
import QtQuick
import Orvel
import Orvel.Core

// Every colour, size and duration the views use. A skin is a table of colours (Skins, in the
// core); the sizes follow the desktop's font size.
QtObject {
    id: theme

    readonly property var colours: Skins.palette(AppState.effectiveSkin)
    readonly property bool dark: AppState.dark

    readonly property color window: colours.window
    readonly property color surface: colours.surface
    readonly property color sidebar: colours.sidebar
    readonly property color text: colours.text
    readonly property color secondaryText: colours.secondaryText
    readonly property color accent: colours.accent
    readonly property color accentText: colours.accentText
    readonly property color accentWash: colours.accentWash
    readonly property color line: colours.line
    readonly property color good: colours.good
    readonly property color danger: colours.danger
    readonly property color scrim: Qt.rgba(0, 0, 0, 0.3)

    // Type: the display face for titles and terms, the desktop's own face for the rest.
    readonly property string displayFamily: Brand.family
    // The desktop's own font (FontMetrics starts from the application font).
    readonly property FontMetrics desktopFont: FontMetrics {}
    readonly property string uiFamily: desktopFont.font.family
    readonly property real desktopPixels: desktopFont.font.pixelSize > 0
                                          ? desktopFont.font.pixelSize
                                          : desktopFont.font.pointSize * 4 / 3
    readonly property real scale: Math.max(1, desktopPixels / 14)
    readonly property int body: Math.round(14 * scale)
    readonly property int secondary: Math.round(13 * scale)
    readonly property int sectionHeading: Math.round(11 * scale)
    readonly property int keyCap: Math.round(12 * scale)
    readonly property int sheetTitle: Math.round(22 * scale)
    readonly property int deckTitle: Math.round(24 * scale)
    readonly property int wordmark: Math.round(30 * scale)
    readonly property int detailTerm: Math.round(32 * scale)

    // Space on a 4-px grid, radii, heights.
    readonly property int xs: 4
    readonly property int s: 8
    readonly property int m: 12
    readonly property int l: 16
    readonly property int xl: 24
    readonly property int xxl: 32
    readonly property int xxxl: 48
    readonly property int controlRadius: 6
    readonly property int cardRadius: 10
    readonly property int controlHeight: Math.round(32 * scale)
    readonly property int rowHeight: Math.round(36 * scale)
    // How far an arrow key moves a scrolled text: about two lines of body text.
    readonly property int scrollStep: Math.round(40 * scale)

    // Motion (milliseconds).
    readonly property int rowArrival: 150
    readonly property int sheetMotion: 150
}
