import QtQuick
import QtQuick.Layouts
import Orvel
import Orvel.Core

// The open deck's notes page: the list of notes (unless hidden) and the open note.
RowLayout {
    id: area

    property HomeView home: null

    spacing: 0

    NotesPanelRail {
        Layout.fillHeight: true
        Layout.preferredWidth: 280 * Theme.scale
        visible: area.home !== null && area.home.notes.rail
        home: area.home
        onPicked: editorColumn.enterWhenOpen()
    }
    Rectangle {
        Layout.fillHeight: true
        implicitWidth: 1
        color: Theme.line
        visible: area.home !== null && area.home.notes.rail
    }
    NoteEditorColumn {
        id: editorColumn
        Layout.fillHeight: true
        Layout.fillWidth: true
        home: area.home
    }
}
