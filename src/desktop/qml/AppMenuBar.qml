import QtQuick
import QtQuick.Controls
import Orvel
import Orvel.Core

// The main menu. "New" commands are posted to whichever screen can act on them. A command
// appears here only once a screen acts on it (the manual is still to come).
MenuBar {
    id: bar

    property bool signedIn: false
    // While a study session has the window, the "New" commands wait (their shortcuts too).
    property bool studying: false
    // Whether a deck is open, for the commands that act in it ("New Note").
    property bool deckOpen: false

    signal settingsRequested()
    signal quitRequested()

    font.family: Theme.uiFamily
    font.pixelSize: Theme.secondary

    background: Rectangle {
        implicitHeight: Math.round(28 * Theme.scale)
        color: Theme.sidebar
        Rectangle {
            anchors.bottom: parent.bottom
            width: parent.width
            height: 1
            color: Theme.line
        }
    }

    Menu {
        title: "&File"

        Action {
            text: "New Deck"
            shortcut: "Ctrl+N"
            enabled: bar.signedIn && !bar.studying
            onTriggered: AppCommands.post(AppCommands.NewDeck)
        }
        Action {
            text: "New Note"
            shortcut: "Ctrl+Shift+N"
            enabled: bar.signedIn && !bar.studying && bar.deckOpen
            onTriggered: AppCommands.post(AppCommands.NewNote)
        }
        Action {
            text: "New Folder"
            shortcut: "Ctrl+Alt+N"
            enabled: bar.signedIn && !bar.studying
            onTriggered: AppCommands.post(AppCommands.NewFolder)
        }
        MenuSeparator {}
        Action {
            text: "Settings…"
            shortcut: "Ctrl+,"
            enabled: bar.signedIn
            onTriggered: bar.settingsRequested()
        }
        MenuSeparator {}
        Action {
            text: "Quit"
            shortcut: "Ctrl+Q"
            onTriggered: bar.quitRequested()
        }
    }

    Menu {
        title: "&Go"

        Action {
            text: "Find or Do…"
            shortcut: "Ctrl+K"
            enabled: bar.signedIn && !bar.studying
            onTriggered: AppCommands.post(AppCommands.Palette)
        }
    }
}
