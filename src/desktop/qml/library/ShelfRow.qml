import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Orvel
import Orvel.Core

// One row of the shelf: a section heading, a folder (opens and shuts, takes dropped decks, is
// named in place) or a deck (opens on a click, can be dragged).
Item {
    id: row

    required property string kind
    required property int rowId
    required property string name
    required property int count
    required property int depth
    required property bool open
    required property int shortcut

    property HomeView home: null
    // The shelf's drag type; the sidebar hands it in.
    property string dragType: ""

    signal menuRequested(Item item)

    readonly property bool isHeading: kind === "decksHeading" || kind === "foldersHeading"
    readonly property bool isDeck: kind === "deck"
    readonly property bool isFolder: kind === "folder"
    readonly property bool selected: isDeck && home !== null && home.selectedDeckId === rowId
    readonly property bool editing: isFolder && home !== null && home.folderActions.editingFolderId === rowId
    readonly property bool acceptsDrop: kind === "decksHeading" || isFolder

    implicitHeight: isHeading ? Math.round((kind === "foldersHeading" ? 44 : 32) * Theme.scale)
                              : Theme.rowHeight
    z: dragHandler.active ? 10 : 0

    Accessible.role: isHeading ? Accessible.Heading : Accessible.ListItem
    Accessible.name: isDeck ? name + ", " + count + (count === 1 ? " card" : " cards") : name
    Accessible.selected: selected

    // The drop target: the "Decks" heading unfiles, a folder files.
    DropArea {
        id: drop
        anchors.fill: parent
        enabled: row.acceptsDrop
        keys: [row.dragType]
        onDropped: (event) => {
            const deckId = event.source ? event.source.deckId : 0
            if (row.home && deckId && row.home.folderActions.file([deckId], row.isFolder ? row.rowId : 0))
                event.accept(Qt.MoveAction)
        }
    }

    // Text dropped on a deck (from a browser, an editor) opens that deck's import sheet with it.
    DropArea {
        id: textDrop
        anchors.fill: parent
        enabled: row.isDeck
        keys: ["text/plain"]
        onDropped: (event) => {
            if (event.hasText && row.home && row.home.importInto(row.rowId, event.text))
                event.accept(Qt.CopyAction)
        }
    }

    Rectangle {
        anchors.fill: parent
        anchors.topMargin: 2
        anchors.bottomMargin: 2
        radius: Theme.controlRadius
        color: drop.containsDrag || textDrop.containsDrag ? Theme.accentWash
             : row.selected ? Theme.accentWash
             : hover.hovered && !row.isHeading ? Qt.rgba(0, 0, 0, Theme.dark ? 0.18 : 0.04)
             : "transparent"
        border.width: drop.containsDrag ? 1 : 0
        border.color: Theme.accent
    }

    // Headings.
    RowLayout {
        anchors.fill: parent
        anchors.leftMargin: Theme.s
        anchors.rightMargin: Theme.xs
        visible: row.isHeading

        OSectionHeading {
            Layout.alignment: Qt.AlignBottom
            Layout.bottomMargin: Theme.xs
            Layout.fillWidth: true
            text: row.name
        }
        OButton {
            visible: row.kind === "foldersHeading"
            Layout.alignment: Qt.AlignBottom
            text: "New Folder"
            display: AbstractButton.TextOnly
            implicitHeight: Math.round(24 * Theme.scale)
            leftPadding: Theme.s
            rightPadding: Theme.s
            font.pixelSize: Theme.secondary
            ToolTip.visible: hovered
            ToolTip.text: "New Folder (Ctrl+Alt+N)"
            onClicked: if (row.home) row.home.folderActions.requestNewFolder(0)
        }
    }

    // Folders and decks.
    RowLayout {
        id: line
        anchors.fill: parent
        anchors.leftMargin: Theme.s + row.depth * Theme.xl
        anchors.rightMargin: Theme.s
        spacing: Theme.s
        visible: !row.isHeading

        OLabel {
            visible: row.isFolder
            text: row.open ? "▾" : "▸"
            color: Theme.secondaryText
            Accessible.ignored: true
        }
        OLabel {
            Layout.fillWidth: true
            visible: !row.editing
            elide: Text.ElideRight
            text: row.name
            color: row.selected ? Theme.accent : Theme.text
            font.weight: row.selected ? Font.DemiBold : Font.Normal
        }
        OField {
            id: nameField
            Layout.fillWidth: true
            visible: row.editing
            implicitHeight: Math.round(28 * Theme.scale)
            placeholderText: "Folder name"
            onVisibleChanged: if (visible) { text = row.name; selectAll(); forceActiveFocus() }
            onAccepted: if (row.home) row.home.folderActions.finishNaming(row.rowId, text)
            Keys.onEscapePressed: if (row.home) row.home.folderActions.editingFolderId = 0
            onActiveFocusChanged: if (!activeFocus && row.editing && row.home)
                                      row.home.folderActions.finishNaming(row.rowId, text)
        }
        OLabel {
            visible: row.isDeck || (row.isFolder && !row.open)
            text: row.count
            color: Theme.secondaryText
            font.pixelSize: Theme.secondary
        }
    }

    HoverHandler {
        id: hover
    }

    TapHandler {
        enabled: !row.isHeading && !row.editing
        acceptedButtons: Qt.LeftButton
        onTapped: {
            if (!row.home)
                return
            if (row.isDeck)
                row.home.selectedDeckId = row.rowId
            else if (row.isFolder)
                row.home.shelf.setOpen(row.rowId, !row.open)
        }
        onDoubleTapped: if (row.isFolder && row.home) row.home.folderActions.editingFolderId = row.rowId
    }
    TapHandler {
        enabled: !row.isHeading
        acceptedButtons: Qt.RightButton
        onTapped: row.menuRequested(row)
    }

    // What a dragged deck row carries: the deck's id, under the deck type.
    Item {
        id: dragged

        readonly property int deckId: row.rowId

        width: row.width
        height: row.height
        visible: dragHandler.active
        Drag.active: dragHandler.active
        Drag.keys: [row.dragType]
        Drag.mimeData: ({ [row.dragType]: String(row.rowId) })
        Drag.supportedActions: Qt.MoveAction
        Drag.hotSpot.x: width / 2
        Drag.hotSpot.y: height / 2

        Rectangle {
            anchors.fill: parent
            radius: Theme.controlRadius
            color: Theme.surface
            border.color: Theme.accent
            opacity: 0.92

            OLabel {
                anchors.verticalCenter: parent.verticalCenter
                x: Theme.m
                text: row.name
            }
        }
    }

    DragHandler {
        id: dragHandler
        enabled: row.isDeck
        target: dragged
        onActiveChanged: {
            if (!active) {
                dragged.Drag.drop()
                dragged.x = 0
                dragged.y = 0
            }
        }
    }
}
