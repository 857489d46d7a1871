import QtQuick
import QtQuick.Controls
import Orvel
import Orvel.Core

// The main window: the menu, and the sign-in or home screen depending on who is signed in. Its
// size here is the intended one; the app fits it to the screen, or restores the last place, and
// shows it.
ApplicationWindow {
    id: window

    title: "Orvel"
    width: 1100
    height: 720
    minimumWidth: 760
    minimumHeight: 520
    color: Theme.window

    palette.window: Theme.window
    palette.windowText: Theme.text
    palette.base: Theme.surface
    palette.text: Theme.text
    palette.button: Theme.surface
    palette.buttonText: Theme.text
    palette.highlight: Theme.accent
    palette.highlightedText: Theme.accentText
    palette.placeholderText: Theme.secondaryText
    palette.mid: Theme.line
    palette.light: Theme.surface
    palette.dark: Theme.line
    palette.toolTipBase: Theme.surface
    palette.toolTipText: Theme.text

    menuBar: AppMenuBar {
        signedIn: AppState.signedIn
        studying: study.visible
        deckOpen: screen.item !== null && screen.item.view !== undefined // qmllint disable type
                  && screen.item.view.hasSelectedDeck
        onSettingsRequested: settings.showAndRaise()
        onManualRequested: manual.showPage("")
        onQuitRequested: Qt.quit()
    }

    Loader {
        id: screen
        anchors.fill: parent
        // Hidden under a study session, so that neither its shortcuts nor a screen reader reach it.
        visible: !study.visible
        sourceComponent: AppState.auth === AppState.SignedIn ? homeScreen
                       : AppState.auth === AppState.SignedOut ? signInScreen
                       : null
    }

    Component {
        id: signInScreen
        SignInScreen {}
    }
    Component {
        id: homeScreen
        HomeScreen {}
    }

    // The study session covers the window when the study command names decks to study.
    StudyOverlay {
        id: study
        anchors.fill: parent
    }

    ManualWindow {
        id: manual
        mainWindow: window
    }

    // Ctrl+? opens the manual wherever the focus is (F1 is the Help menu's own shortcut).
    Shortcut {
        sequences: ["Ctrl+?", "Ctrl+Shift+/"]
        context: Qt.ApplicationShortcut
        onActivated: manual.showPage("")
    }

    SettingsWindow {
        id: settings

        function showAndRaise() {
            show()
            raise()
            requestActivate()
        }
    }

    Connections {
        target: screen.item
        ignoreUnknownSignals: true
        function onSettingsRequested() {
            settings.showAndRaise()
        }
    }

    // The manual (on a page, when one is named) and the settings, wherever they are asked for.
    Connections {
        target: AppCommands
        function onPosted(command, text) {
            if (command === AppCommands.Manual)
                manual.showPage(text)
            else if (command === AppCommands.Settings && AppState.signedIn)
                settings.showAndRaise()
        }
    }

    // Signing out closes the settings window with the account in it.
    Connections {
        target: AppState
        function onAuthChanged() {
            if (!AppState.signedIn)
                settings.close()
        }
    }
}
