import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Orvel
import Orvel.Core

// qmllint disable unqualified

// One line of the open note: its field on the left, its margin on the right. The field reports
// the editor's keys (Return, Ctrl+Return, Backspace, the arrows, Alt+arrows, undo and redo, Tab,
// Escape, paste) and does what a text field does with the keys the editor leaves alone.
Item {
    id: row

    required property int index
    required property string key
    required property int lineId
    required property string text
    required property bool pending
    required property bool stale
    required property string staleText
    required property var remarks
    required property var picture

    property NoteEditor editor: null

    implicitHeight: Math.max(lineColumn.implicitHeight, margin.implicitHeight) + Theme.s

    // Puts the caret into this line: at its start, its end, or where it was.
    function takeCaret(place) {
        field.forceActiveFocus()
        if (place === NoteEditor.Start)
            field.cursorPosition = 0
        else if (place === NoteEditor.End)
            field.cursorPosition = field.length
    }

    // The editor's reading of a key press in the field, or -1 when the key is the field's own.
    function lineKey(event) {
        const ctrl = (event.modifiers & Qt.ControlModifier) !== 0
        const shift = (event.modifiers & Qt.ShiftModifier) !== 0
        const alt = (event.modifiers & Qt.AltModifier) !== 0
        const nothingSelected = field.selectionStart === field.selectionEnd
        switch (event.key) {
        case Qt.Key_Return:
        case Qt.Key_Enter:
            return shift ? -1 : ctrl ? NoteEditor.CommandReturn : NoteEditor.Newline
        case Qt.Key_Backspace:
            return ctrl ? NoteEditor.DeleteLine : field.length === 0 ? NoteEditor.DeleteEmpty : -1
        case Qt.Key_Up:
            return alt ? NoteEditor.MoveUp : NoteEditor.Up
        case Qt.Key_Down:
            return alt ? NoteEditor.MoveDown : NoteEditor.Down
        case Qt.Key_Left:
            return field.cursorPosition === 0 && nothingSelected && !shift ? NoteEditor.CrossUp : -1
        case Qt.Key_Right:
            return field.cursorPosition === field.length && nothingSelected && !shift
                   ? NoteEditor.CrossDown : -1
        case Qt.Key_Z:
            return ctrl ? (shift ? NoteEditor.Redo : NoteEditor.Undo) : -1
        case Qt.Key_Tab:
            return NoteEditor.Tab
        case Qt.Key_Backtab:
            return NoteEditor.BackTab
        case Qt.Key_Escape:
            return NoteEditor.Escape
        }
        return -1
    }

    ColumnLayout {
        id: lineColumn
        x: Theme.xl
        width: Math.round(row.width * 0.55) - Theme.xl
        spacing: 0

        TextField {
            id: field
            Layout.fillWidth: true
            text: row.text
            placeholderText: row.editor && row.index === row.editor.caret
                             ? row.editor.placeholder : ""
            color: Theme.text
            placeholderTextColor: Theme.secondaryText
            selectionColor: Theme.accentWash
            selectedTextColor: Theme.text
            font.family: Theme.uiFamily
            font.pixelSize: Theme.body
            selectByMouse: true
            leftPadding: 0
            background: Rectangle {
                color: "transparent"
                Rectangle {
                    anchors.bottom: parent.bottom
                    width: parent.width
                    height: 1
                    color: field.activeFocus ? Theme.accent : "transparent"
                }
            }
            Accessible.role: Accessible.EditableText
            Accessible.name: "Line " + (row.index + 1)
            Accessible.description: row.stale ? row.staleText : ""

            onTextEdited: row.editor.edit(row.index, text)
            onActiveFocusChanged: if (activeFocus && row.editor) row.editor.placeCaret(row.index)

            Keys.onPressed: event => {
                if (!row.editor)
                    return
                if (event.matches(StandardKey.Paste)) {
                    if (ImageTransfer.clipboardHasPicture())
                        event.accepted = ImageTransfer.pasteInto(row.editor.pictures, row.index)
                    else
                        event.accepted = row.editor.pasteText(row.index, Clipboard.text())
                    return
                }
                const key = row.lineKey(event)
                if (key >= 0 && row.editor.key(row.index, key))
                    event.accepted = true
            }
        }
        NoteImage {
            Layout.fillWidth: true
            Layout.topMargin: Theme.xs
            visible: row.picture !== undefined && row.picture.url !== undefined
            picture: row.picture || ({})
            columnWidth: lineColumn.width
            pictures: row.editor ? row.editor.pictures : null
            onRemoveRequested: row.editor.pictures.remove(row.index)
        }
        OLabel {
            Layout.fillWidth: true
            visible: row.stale
            text: row.staleText
            wrapMode: Text.Wrap
            color: Theme.secondaryText
            font.pixelSize: Theme.secondary
            font.italic: true
        }
        OLinkButton {
            visible: row.lineId > 0 && row.text.trim() !== ""
                     && (rowHover.hovered || field.activeFocus || activeFocus)
            text: "Make a card from this line"
            pixelSize: Theme.secondary
            onClicked: row.editor.makeCard(row.index)
        }
    }

    // The margin.
    Column {
        id: margin
        x: Math.round(row.width * 0.55) + Theme.l
        width: row.width - x - Theme.l
        spacing: Theme.xs

        Repeater {
            model: row.remarks
            delegate: NoteRemarkItem {
                width: margin.width
                editor: row.editor
                line: row.index
            }
        }
    }

    HoverHandler {
        id: rowHover
    }

    // The slash menu, under the line while it reads as a command.
    NoteSlashMenu {
        x: lineColumn.x
        y: lineColumn.y + field.height + 2
        commands: row.editor ? row.editor.commands : null
        visible: row.editor !== null && row.editor.commands.row === row.index && field.activeFocus
    }

    // A picture file dropped on the line goes onto it.
    DropArea {
        anchors.fill: parent
        keys: ["text/uri-list"]
        onEntered: drag => drag.accepted = ImageTransfer.holdsPicture(drag.urls)
        onDropped: drop => {
            if (row.editor && ImageTransfer.dropInto(row.editor.pictures, row.index, drop.urls))
                drop.accept(Qt.CopyAction)
        }
    }
}
