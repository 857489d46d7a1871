import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Orvel
import Orvel.Core

// qmllint disable unqualified

// The open note: its title, the margin's controls, the lines with their margin, and what the
// editor has to say (saving, lines only on this computer, the last run's outcome, a failure).
Rectangle {
    id: page

    property HomeView home: null
    readonly property NotesPanel panel: home ? home.notes : null
    readonly property NoteEditor editor: panel ? panel.editor : null

    color: Theme.window

    // Without an open note.
    OLabel {
        anchors.centerIn: parent
        visible: page.editor !== null && !page.editor.loaded
        text: page.panel && page.panel.opening ? "Opening…"
              : page.panel && page.panel.count > 0 ? "No note open" : ""
        color: Theme.secondaryText
        font.family: Theme.displayFamily
        font.pixelSize: Theme.sheetTitle
    }

    ColumnLayout {
        anchors.fill: parent
        anchors.topMargin: Theme.xl
        spacing: Theme.s
        visible: page.editor !== null && page.editor.loaded

        // The header: the title, then the margin's button and the note's own actions.
        RowLayout {
            Layout.fillWidth: true
            Layout.leftMargin: Theme.xl
            Layout.rightMargin: Theme.l
            spacing: Theme.s

            TextField {
                id: titleField
                Layout.fillWidth: true
                placeholderText: page.editor ? page.editor.titlePlaceholder : ""
                text: page.editor ? page.editor.title : ""
                onTextEdited: page.editor.title = text
                // A long title shows its beginning whenever the field is not being edited.
                onTextChanged: if (!activeFocus) cursorPosition = 0
                onActiveFocusChanged: if (!activeFocus) cursorPosition = 0
                color: Theme.text
                placeholderTextColor: Theme.secondaryText
                selectionColor: Theme.accentWash
                selectedTextColor: Theme.text
                font.family: Theme.displayFamily
                font.pixelSize: Theme.deckTitle
                selectByMouse: true
                background: null
                Accessible.role: Accessible.EditableText
                Accessible.name: "Note title"
                Keys.onReturnPressed: page.focusLine(0)
                Keys.onDownPressed: page.focusLine(0)
            }
            OButton {
                primary: true
                visible: page.editor !== null && page.editor.pendingCount > 0
                enabled: page.editor !== null && !page.editor.annotating
                text: page.editor ? page.editor.askText : ""
                ToolTip.visible: hovered
                ToolTip.text: page.editor ? page.editor.askTitle : ""
                Accessible.description: page.editor ? page.editor.askTitle : ""
                onClicked: page.editor.askForMargin()
            }
            OButton {
                id: moreButton
                text: "More for this note"
                display: AbstractButton.TextOnly
                contentItem: Text {
                    text: "⋯"
                    color: Theme.text
                    font.pixelSize: Theme.deckTitle
                    horizontalAlignment: Text.AlignHCenter
                    verticalAlignment: Text.AlignVCenter
                }
                implicitWidth: implicitHeight
                leftPadding: 0
                rightPadding: 0
                ToolTip.visible: hovered
                ToolTip.text: text
                onClicked: moreMenu.popup(moreButton, 0, moreButton.height)

                Menu {
                    id: moreMenu
                    MenuItem {
                        text: "Annotate everything again"
                        enabled: page.editor !== null && !page.editor.annotating
                        onTriggered: page.editor.annotateAll()
                    }
                    MenuSeparator {}
                    MenuItem {
                        text: page.panel ? page.panel.railToggleText : ""
                        onTriggered: page.panel.toggleRail()
                    }
                    MenuSeparator {}
                    MenuItem {
                        text: "Delete note"
                        onTriggered: page.editor.requestDelete()
                    }
                }
            }
        }

        // While the list of notes is hidden, the deck's page switch and the way back to the list.
        RowLayout {
            Layout.fillWidth: true
            Layout.leftMargin: Theme.xl
            Layout.rightMargin: Theme.l
            visible: page.panel !== null && !page.panel.rail
            spacing: Theme.s
            DeckPageSwitch {
                home: page.home
            }
            OLinkButton {
                text: page.panel ? page.panel.railToggleText : ""
                onClicked: page.panel.toggleRail()
            }
            Item { Layout.fillWidth: true }
        }

        // What went wrong, and below it what the editor has to say: a failed save shows both
        // its reason and that the lines are only on this computer.
        OLabel {
            Layout.fillWidth: true
            Layout.leftMargin: Theme.xl
            Layout.rightMargin: Theme.l
            wrapMode: Text.Wrap
            font.pixelSize: Theme.secondary
            color: Theme.danger
            // The note's own trouble first; then what a slash command or a pasted picture met.
            text: !page.editor ? ""
                  : page.editor.trouble !== "" ? page.editor.trouble
                  : page.editor.commands.message !== "" ? page.editor.commands.message
                  : page.editor.pictures.picker === null ? page.editor.pictures.trouble : ""
            visible: text !== ""
            Accessible.role: Accessible.StaticText
        }
        OLabel {
            Layout.fillWidth: true
            Layout.leftMargin: Theme.xl
            Layout.rightMargin: Theme.l
            wrapMode: Text.Wrap
            font.pixelSize: Theme.secondary
            color: Theme.secondaryText
            text: !page.editor ? ""
                  : page.editor.annotating ? page.editor.progressText
                  : page.editor.recoveredText !== "" ? page.editor.recoveredText
                  : page.editor.localOnly ? page.editor.localOnlyText
                  : page.editor.cardMade !== "" ? page.editor.cardMade
                  : page.editor.outcome !== "" ? page.editor.outcome
                  : page.editor.pendingCount === 0 ? page.editor.allAnnotatedText : ""
            visible: text !== ""
            Accessible.role: Accessible.StaticText
        }

        ODivider {
            Layout.fillWidth: true
        }

        ScrollView {
            id: scroller
            Layout.fillWidth: true
            Layout.fillHeight: true
            contentWidth: availableWidth
            clip: true

            Column {
                width: scroller.availableWidth
                spacing: 0

                Repeater {
                    id: lines
                    model: page.editor ? page.editor.lines : null
                    delegate: NoteLineRow {
                        width: scroller.availableWidth
                        editor: page.editor
                    }
                }

                OLabel {
                    x: Theme.xl
                    width: parent.width - 2 * Theme.xl
                    topPadding: Theme.m
                    bottomPadding: Theme.xl
                    visible: text !== ""
                    text: page.editor ? page.editor.hint : ""
                    color: Theme.secondaryText
                    font.pixelSize: Theme.secondary
                }
            }
        }
    }

    // The editor moved the caret (a line added, removed, moved, undone): the field follows.
    Connections {
        target: page.editor
        function onCaretMovesChanged() {
            page.focusLine(page.editor.caret, page.editor.caretPlace)
        }
        function onNoteIdChanged() {
            page.enterIfOpen()
        }
        function onConfirmingDeleteChanged() {
            if (page.editor.confirmingDelete)
                confirmDelete.open()
        }
    }

    Connections {
        target: page.panel
        function onOpeningChanged() {
            page.enterIfOpen()
        }
    }

    // A note picked from the list takes the caret into its last line once it is open, so the
    // learner can go on writing (or ask for the margin) without reaching for the mouse.
    property bool entering: false

    function enterWhenOpen() {
        entering = true
        enterIfOpen()
    }

    function enterIfOpen() {
        if (!entering || !editor || !panel || !editor.loaded || panel.opening
                || editor.noteId !== panel.openedId)
            return
        entering = false
        Qt.callLater(() => page.focusLine(lines.count - 1, NoteEditor.End)) // qmllint disable type
    }

    function focusLine(index, place) {
        const row = lines.itemAt(index)
        if (row)
            row.takeCaret(place === undefined ? NoteEditor.End : place) // qmllint disable type
    }

    NotePicturePicker {
        pictures: page.editor ? page.editor.pictures : null
    }
    // The caret goes back to the line the picker was for.
    Connections {
        id: pickerWatch
        target: page.editor ? page.editor.pictures : null
        property int lastRow: -1
        function onPickerChanged() {
            const row = page.editor.pictures.pickingRow
            if (row >= 0)
                lastRow = row
            else if (lastRow >= 0)
                refocus.restart()
        }
    }
    Timer {
        id: refocus
        interval: 0
        onTriggered: page.focusLine(pickerWatch.lastRow)
    }

    ConfirmDeleteDialog {
        id: confirmDelete
        title: "Delete note"
        detail: page.editor ? page.editor.deleteQuestion : ""
        confirmText: "Delete note"
        onConfirmed: page.editor.confirmDelete()
        onClosed: if (page.editor && page.editor.confirmingDelete) page.editor.cancelDelete()
    }
}
