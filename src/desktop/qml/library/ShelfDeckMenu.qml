import QtQuick
import QtQuick.Controls
import Orvel
import Orvel.Core

// Delegates here read the enclosing view by its id (Qt 6.4 has no bound component scope).
// qmllint disable unqualified

// A deck's menu: study it, rename it, file it ("Move to": "No Folder", each folder, "New Folder
// with “…”"), delete it.
Menu {
    id: menu

    property HomeView home: null
    property int deckId: 0

    signal renameRequested(int deckId)
    signal deleteRequested(int deckId)

    DeckFiling {
        id: filing
        home: menu.home
        deckId: menu.deckId
    }

    MenuItem {
        text: "Study"
        onTriggered: if (menu.home) menu.home.deckActions.study(menu.deckId)
    }
    MenuItem {
        text: "Rename…"
        onTriggered: menu.renameRequested(menu.deckId)
    }
    Menu {
        id: moveTo
        title: "Move to"

        MenuItem {
            text: "No Folder"
            checkable: true
            checked: !filing.hasCurrent
            onTriggered: filing.move(0)
        }
        MenuSeparator {}
        Instantiator {
            model: filing.folders
            delegate: MenuItem {
                id: folderItem
                required property var modelData
                text: folderItem.modelData.name
                checkable: true
                checked: filing.current === folderItem.modelData.id
                onTriggered: filing.move(folderItem.modelData.id)
            }
            onObjectAdded: (index, object) => moveTo.insertItem(index + 2, object)
            onObjectRemoved: (index, object) => moveTo.removeItem(object)
        }
        MenuSeparator {}
        MenuItem {
            text: filing.newFolderText
            onTriggered: filing.newFolder()
        }
    }
    MenuSeparator {}
    MenuItem {
        text: "Delete Deck…"
        onTriggered: menu.deleteRequested(menu.deckId)
    }
}
