import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Orvel
import Orvel.Core

// The signed-in window: the shelf of decks on the left, the open deck's cards in the middle and
// the chosen card on the right. Until a deck is open the right side says so.
Rectangle {
    id: home

    // The library behind the screen, for the window's study session to hand answers back to.
    readonly property HomeView view: homeView

    signal settingsRequested()

    color: Theme.window

    RowLayout {
        anchors.fill: parent
        spacing: 0

        // The shelf.
        Rectangle {
            Layout.fillHeight: true
            Layout.preferredWidth: 240 * Theme.scale
            color: Theme.sidebar

            ColumnLayout {
                anchors.fill: parent
                anchors.margins: Theme.l
                spacing: Theme.m

                OLabel {
                    text: "orvel"
                    font.family: Theme.displayFamily
                    font.pixelSize: Theme.deckTitle
                }
                ShelfSidebar {
                    Layout.fillWidth: true
                    Layout.fillHeight: true
                    home: homeView
                }
                RowLayout {
                    Layout.fillWidth: true
                    spacing: Theme.s

                    OLabel {
                        Layout.fillWidth: true
                        elide: Text.ElideRight
                        color: Theme.secondaryText
                        font.pixelSize: Theme.secondary
                        text: AppState.userDisplayName
                    }
                    OButton {
                        // Quick add, while no deck is open to type into.
                        visible: !homeView.hasSelectedDeck && homeView.shelf.hasDecks
                        text: "Add to a deck"
                        display: AbstractButton.IconOnly
                        icon.source: "qrc:/Orvel/resources/icons/plus.svg"
                        implicitWidth: implicitHeight
                        leftPadding: 0
                        rightPadding: 0
                        ToolTip.visible: hovered
                        ToolTip.text: text
                        onClicked: quickAdd.openWith("")
                    }
                    OButton {
                        text: "Settings"
                        display: AbstractButton.IconOnly
                        icon.source: "qrc:/Orvel/resources/icons/gear.svg"
                        implicitWidth: implicitHeight
                        leftPadding: 0
                        rightPadding: 0
                        ToolTip.visible: hovered
                        ToolTip.text: text
                        onClicked: home.settingsRequested()
                    }
                }
            }
        }
        Rectangle {
            Layout.fillHeight: true
            implicitWidth: 1
            color: Theme.line
        }

        RowLayout {
            Layout.fillHeight: true
            Layout.fillWidth: true
            spacing: 0
            visible: !(homeView.hasSelectedDeck && homeView.notesShown)

            // The cards of the open deck.
            CardColumn {
                Layout.fillHeight: true
                Layout.preferredWidth: 360 * Theme.scale
                home: homeView
                header: Component {
                    ComposerBar {
                        home: homeView // qmllint disable unqualified
                    }
                }
            }
            Rectangle {
                Layout.fillHeight: true
                implicitWidth: 1
                color: Theme.line
            }

            // The chosen card.
            CardDetailPane {
                Layout.fillHeight: true
                Layout.fillWidth: true
                home: homeView
            }
        }
        // The open deck's notes.
        NotesPanelArea {
            Layout.fillHeight: true
            Layout.fillWidth: true
            visible: homeView.hasSelectedDeck && homeView.notesShown
            home: homeView
        }
    }

    // The shelf's and the open deck's logic.
    HomeView {
        id: homeView
        Component.onCompleted: shelf.reload()
    }

    // Quick add: from the sidebar, and from the quickAdd command (orvel --add "word").
    QuickAddDialog {
        id: quickAdd
        onAdded: (deck, card) => {
            homeView.shelf.reload()
            if (homeView.selectedDeckId === deck.id)
                homeView.cards.open(deck.id)
        }
    }
    Connections {
        target: AppCommands
        function onPosted(command, text) {
            if (command === AppCommands.QuickAdd) {
                quickAdd.openWith(text)
            } else if (command === AppCommands.Study && text === "" && homeView.hasSelectedDeck) {
                // Study with no decks named: the open one.
                homeView.deckActions.study(homeView.selectedDeckId)
            } else if (command === AppCommands.NewNote && homeView.hasSelectedDeck) {
                homeView.notesShown = true
                homeView.notes.newNote()
            } else if (command === AppCommands.Palette) {
                homeView.palette.open()
            }
        }
    }

    // "Find or Do" (Ctrl+K).
    PaletteOverlay {
        palette: homeView.palette
    }
    Shortcut {
        sequence: "Alt+1"
        enabled: homeView.hasSelectedDeck
        onActivated: homeView.notesShown = false
    }
    Shortcut {
        sequence: "Alt+2"
        enabled: homeView.hasSelectedDeck
        onActivated: homeView.notesShown = true
    }

    WelcomeSheet {
        id: welcome
    }

    WelcomeDialog {
        id: welcomeDialog
        sheet: welcome
    }

    Component.onCompleted: if (welcome.due) welcomeDialog.open()
}
