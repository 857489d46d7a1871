import QtQuick
import QtQuick.Controls
import Orvel
import Orvel.Core

// A folder's menu: study all its decks, name it in place, delete it.
Menu {
    id: menu

    property HomeView home: null
    property int folderId: 0

    signal deleteRequested(int folderId)

    MenuItem {
        text: "Study All Decks"
        enabled: menu.home !== null
        onTriggered: if (menu.home) menu.home.folderActions.studyAll(menu.folderId)
    }
    MenuItem {
        text: "Rename Folder"
        onTriggered: if (menu.home) menu.home.folderActions.editingFolderId = menu.folderId
    }
    MenuSeparator {}
    MenuItem {
        text: "Delete Folder…"
        onTriggered: menu.deleteRequested(menu.folderId)
    }
}
