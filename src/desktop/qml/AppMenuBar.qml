import QtQuick
import QtQuick.Controls
import Orvel
import Orvel.Core

// The main menu. "New" commands are posted to whichever screen can act on them. A command
// appears here only once a screen acts on it. The Help menu searches the manual as you type.
MenuBar {
    id: bar

    property bool signedIn: false
    // While a study session has the window, the "New" commands wait (their shortcuts too).
    property bool studying: false
    // Whether a deck is open, for the commands that act in it ("New Note").
    property bool deckOpen: false

    signal settingsRequested()
    signal manualRequested()
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

    Menu {
        id: help
        title: "&Help"
        width: helpField.width + 2 * Theme.s

        onOpened: helpField.forceActiveFocus()
        onClosed: {
            helpField.text = ""
            helpSearch.query = ""
        }

        ManualHelpSearch {
            id: helpSearch
        }

        // The search field: matching pages are listed under it as you type.
        OField {
            id: helpField
            width: Math.round(280 * Theme.scale)
            x: Theme.s
            placeholderText: "Search the Manual"
            onTextEdited: helpSearch.query = text
            Keys.onReturnPressed: {
                if (helpSearch.results.length > 0) {
                    helpSearch.open(helpSearch.results[0].id) // qmllint disable type
                    help.close()
                }
            }
            Keys.onDownPressed: help.currentIndex = 1
        }
        Instantiator {
            model: helpSearch.results
            delegate: MenuItem {
                required property var modelData
                text: modelData.question // qmllint disable type
                onTriggered: helpSearch.open(modelData.id) // qmllint disable type unqualified
            }
            onObjectAdded: (index, object) => help.insertItem(index + 1, object)
            onObjectRemoved: (index, object) => help.removeItem(object)
        }
        MenuSeparator {}
        Action {
            text: "Orvel Manual"
            shortcut: "F1"
            onTriggered: bar.manualRequested()
        }
    }
}
