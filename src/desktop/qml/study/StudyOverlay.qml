import QtQuick
import Orvel
import Orvel.Core

// The study session over the whole window. The study command (Ctrl+R, a deck's study button,
// "Study All Decks") carries the ids of the decks to study; this opens a session over them and
// closes again on "Close" or Escape. Answers reach the card lists from C++, also after the
// session closed.
StudyScreen {
    id: overlay

    visible: false
    z: 10

    onCloseRequested: {
        Speech.stop()
        overlay.visible = false
    }

    Connections {
        target: AppCommands
        function onPosted(command, text) {
            if (command !== AppCommands.Study || !AppState.signedIn)
                return
            if (overlay.study.studyDecks(text))
                overlay.visible = true
        }
    }
    Connections {
        target: AppState
        function onAuthChanged() {
            if (!AppState.signedIn)
                overlay.closeRequested()
        }
    }
}
