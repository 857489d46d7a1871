import QtQuick
import QtQuick.Controls.impl
import Orvel

// A palette row's glyph: the symbol names and kind words the rows carry, mapped in this one
// table to the bundled Phosphor icons, tinted like text.
IconImage {
    id: glyph

    property string symbol

    readonly property var icons: ({
        "pencil": "pencil-simple",
        "doc.badge.plus": "file-plus",
        "doc.on.clipboard": "clipboard-text",
        "doc.text": "file-text",
        "text.alignleft": "text-align-left",
        "play.fill": "play-fill",
        "plus.rectangle.on.rectangle": "stack-plus",
        "folder.badge.plus": "folder-plus",
        "rectangle.portrait.and.arrow.right": "sign-out",
        "moon": "moon",
        "sun.max": "sun",
        "circle.lefthalf.filled": "circle-half",
        "gearshape": "gear",
        "book.closed": "book",
        "questionmark.circle": "question",
        "speaker.wave.2": "speaker-high",
        "arrow.up.forward.square": "arrow-square-out",
        "arrow.triangle.2.circlepath": "arrows-clockwise",
        "trash": "trash",
        "sidebar.left": "sidebar-simple",
        "keyboard": "keyboard",
        "deck": "cards",
        "folder": "folder",
        "card": "diamond-fill"
    })
    readonly property int size: Math.round(16 * Theme.scale)

    sourceSize.width: size
    sourceSize.height: size
    source: icons[symbol] !== undefined ? "qrc:/Orvel/resources/icons/" + icons[symbol] + ".svg" : ""
    color: Theme.secondaryText
}
