import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Orvel
import Orvel.Core

// Delegates here read the enclosing view by its id (Qt 6.4 has no bound component scope).
// qmllint disable unqualified

// The shelf: the heading "Decks" with the loose decks, then "Folders" with each folder and, unless
// it is shut, its decks. Deck rows can be dragged onto a folder (files the deck) or onto the
// "Decks" heading (files it out of its folder); right-click opens the deck's or folder's menu.
Item {
    id: shelf

    property HomeView home: null

    signal newDeckRequested()

    readonly property string dragType: home ? home.shelf.dragType() : ""

    ColumnLayout {
        anchors.fill: parent
        spacing: Theme.s

        // The empty shelf.
        ColumnLayout {
            Layout.fillWidth: true
            Layout.topMargin: Theme.xl
            visible: shelf.home !== null && shelf.home.shelf.empty
            spacing: Theme.s

            OLabel {
                Layout.fillWidth: true
                wrapMode: Text.Wrap
                text: "Nothing on the shelf yet"
                font.family: Theme.displayFamily
                font.pixelSize: Math.round(18 * Theme.scale)
            }
            OLabel {
                Layout.fillWidth: true
                wrapMode: Text.Wrap
                text: "Start a deck by picking a language."
                color: Theme.secondaryText
                font.pixelSize: Theme.secondary
            }
            OButton {
                Layout.topMargin: Theme.s
                primary: true
                text: "Start a deck"
                onClicked: shelf.newDeckRequested()
            }
        }

        OLabel {
            Layout.fillWidth: true
            visible: shelf.home !== null && shelf.home.shelf.trouble !== ""
            wrapMode: Text.Wrap
            text: shelf.home ? shelf.home.shelf.trouble : ""
            color: Theme.danger
            font.pixelSize: Theme.secondary
        }

        ListView {
            id: rows

            Layout.fillWidth: true
            Layout.fillHeight: true
            visible: shelf.home !== null && !shelf.home.shelf.empty
            clip: true
            // Dragging a row files a deck, so the list scrolls by wheel and scroll bar only.
            interactive: false
            boundsBehavior: Flickable.StopAtBounds
            model: shelf.home ? shelf.home.shelf.sidebar : null
            Accessible.role: Accessible.List
            Accessible.name: "Decks and folders"

            ScrollBar.vertical: ScrollBar {
                policy: rows.contentHeight > rows.height ? ScrollBar.AsNeeded : ScrollBar.AlwaysOff
            }
            WheelHandler {
                onWheel: (event) => {
                    const top = Math.max(0, rows.contentHeight - rows.height)
                    rows.contentY = Math.min(top, Math.max(0, rows.contentY - event.angleDelta.y))
                }
            }

            delegate: ShelfRow {
                width: rows.width
                home: shelf.home
                dragType: shelf.dragType
                onMenuRequested: (item) => {
                    if (kind === "deck") {
                        deckMenu.deckId = rowId
                        deckMenu.popup(item)
                    } else if (kind === "folder") {
                        folderMenu.folderId = rowId
                        folderMenu.popup(item)
                    }
                }
            }
        }
    }

    ShelfDeckMenu {
        id: deckMenu
        home: shelf.home
        onRenameRequested: (deckId) => {
            renameDialog.deckId = deckId
            renameDialog.open()
        }
        onDeleteRequested: (deckId) => {
            if (!shelf.home)
                return
            deleteDeckDialog.deckId = deckId
            deleteDeckDialog.title = shelf.home.deckActions.deleteQuestion(deckId)
            deleteDeckDialog.detail = shelf.home.deckActions.deleteDetail(deckId)
            deleteDeckDialog.open()
        }
    }

    ShelfFolderMenu {
        id: folderMenu
        home: shelf.home
        onDeleteRequested: (folderId) => {
            if (!shelf.home)
                return
            deleteFolderDialog.folderId = folderId
            deleteFolderDialog.title = shelf.home.folderActions.deleteQuestion(folderId)
            deleteFolderDialog.detail = shelf.home.folderActions.deleteDetail(folderId)
            deleteFolderDialog.open()
        }
    }

    NewDeckDialog {
        id: newDeckDialog
        home: shelf.home
    }
    RenameDeckDialog {
        id: renameDialog
        home: shelf.home
    }
    ConfirmDeleteDialog {
        id: deleteDeckDialog
        property int deckId: 0
        onConfirmed: if (shelf.home) shelf.home.deckActions.requestRemove(deckId)
    }
    ConfirmDeleteDialog {
        id: deleteFolderDialog
        property int folderId: 0
        onConfirmed: if (shelf.home) shelf.home.folderActions.requestRemove(folderId)
    }

    onNewDeckRequested: newDeckDialog.open()

    // The menu's "New Deck" and "New Folder".
    Connections {
        target: AppCommands
        function onPosted(command, text) {
            if (command === AppCommands.NewDeck)
                newDeckDialog.open()
            else if (command === AppCommands.NewFolder && shelf.home)
                shelf.home.folderActions.requestNewFolder(0)
        }
    }

    // A folder the palette shows in the sidebar scrolls into view.
    Connections {
        target: shelf.home
        function onFolderRevealed(folderId) {
            const row = shelf.home.shelf.sidebar.folderRow(folderId)
            if (row >= 0)
                rows.positionViewAtIndex(row, ListView.Contain)
        }
    }

    // Ctrl+1 … Ctrl+9 open the first nine decks of the shelf.
    Repeater {
        model: 9
        delegate: Item {
            id: digit
            required property int index
            Shortcut {
                sequence: "Ctrl+" + (digit.index + 1)
                enabled: shelf.home !== null
                onActivated: shelf.home.openShortcut(digit.index + 1)
            }
        }
    }
}
