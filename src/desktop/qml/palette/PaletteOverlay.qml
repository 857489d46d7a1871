import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Orvel
import Orvel.Core

// Delegates here read the enclosing view by its id (Qt 6.4 has no bound component scope).
// qmllint disable unqualified

// "Find or Do" over the window: the field, the palette's sections and the footer's key hints,
// 640 px wide with its top at 18 % of the window's height. The keys go to the palette (↑ ↓ ↩ ⇥
// ⌫ Esc); a key it leaves alone is the field's.
Popup {
    id: overlay

    property CommandPalette palette: null

    parent: Overlay.overlay
    x: Math.round(((parent ? parent.width : 0) - width) / 2)
    y: Math.round((parent ? parent.height : 0) * 0.18)
    width: Math.min(Math.round(640 * Theme.scale), (parent ? parent.width : 640) - 2 * Theme.xl)
    modal: true
    focus: true
    padding: 0
    // Esc reaches the field first and closes through the palette.
    closePolicy: Popup.CloseOnPressOutside

    Overlay.modal: Rectangle {
        color: Theme.scrim
    }

    enter: Transition {
        NumberAnimation { property: "opacity"; from: 0; to: 1; duration: Theme.sheetMotion; easing.type: Easing.OutCubic }
    }
    exit: Transition {
        NumberAnimation { property: "opacity"; from: 1; to: 0; duration: Theme.sheetMotion; easing.type: Easing.OutCubic }
    }

    background: Item {
        Rectangle {
            anchors.fill: parent
            anchors.topMargin: 6
            radius: Theme.cardRadius
            color: Qt.rgba(0, 0, 0, 0.16)
        }
        Rectangle {
            anchors.fill: parent
            radius: Theme.cardRadius
            color: Theme.surface
            border.color: Theme.line
        }
    }

    onOpened: field.forceActiveFocus()
    // A click outside closes the popup: the palette closes with it.
    onClosed: if (palette && palette.opened) palette.close()

    Connections {
        target: overlay.palette
        function onOpenedChanged() {
            if (overlay.palette.opened)
                overlay.open()
            else
                overlay.close()
        }
        function onQueryChanged() {
            if (field.text !== overlay.palette.query)
                field.text = overlay.palette.query
        }
        function onSelectionChanged() {
            overlay.revealSelection()
        }
        function onListChanged() {
            overlay.revealSelection()
        }
        function onFocusWanted() {
            field.forceActiveFocus()
        }
    }

    // Scrolls the selected row into view; the first item brings its heading along.
    function revealSelection() {
        if (!palette || palette.selectedIndex <= 0)
            list.positionViewAtBeginning()
        else
            list.positionViewAtIndex(palette.selectedRow, ListView.Contain)
    }

    // The palette's reading of a key in the field; what it does not handle stays the field's.
    function key(event) {
        if (!palette)
            return
        switch (event.key) {
        case Qt.Key_Up:
            event.accepted = palette.move(-1)
            break
        case Qt.Key_Down:
            event.accepted = palette.move(1)
            break
        case Qt.Key_Return:
        case Qt.Key_Enter:
            event.accepted = palette.perform()
            break
        case Qt.Key_Tab:
            event.accepted = palette.deeper()
            break
        case Qt.Key_Backspace:
            event.accepted = palette.back()
            break
        case Qt.Key_Escape:
            event.accepted = palette.escape()
            break
        }
    }

    ColumnLayout {
        anchors.fill: parent
        spacing: 0
        // A Popup is not an Item, so the dialog's role and name sit on its content.
        Accessible.role: Accessible.Dialog
        Accessible.name: overlay.palette ? overlay.palette.name : ""

        RowLayout {
            Layout.fillWidth: true
            Layout.leftMargin: Theme.m
            Layout.rightMargin: Theme.m
            Layout.topMargin: Theme.s
            Layout.bottomMargin: Theme.s
            spacing: Theme.s

            // The stage stepped into, before the field.
            Rectangle {
                visible: overlay.palette !== null && overlay.palette.inStage
                implicitWidth: stage.implicitWidth + 2 * Theme.s
                implicitHeight: stage.implicitHeight + Theme.xs * 2
                radius: Theme.controlRadius
                color: Theme.accentWash

                OLabel {
                    id: stage
                    anchors.centerIn: parent
                    text: overlay.palette ? overlay.palette.stageTitle : ""
                    font.pixelSize: Theme.secondary
                }
            }
            OField {
                id: field
                Layout.fillWidth: true
                implicitHeight: Math.round(44 * Theme.scale)
                leftPadding: overlay.palette && overlay.palette.inStage ? Theme.xs : Theme.s
                font.pixelSize: Math.round(18 * Theme.scale)
                placeholderText: overlay.palette ? overlay.palette.placeholder : ""
                background: Item {}
                onTextEdited: if (overlay.palette) overlay.palette.query = text
                Keys.onPressed: event => overlay.key(event)
            }
            BusyIndicator {
                running: overlay.palette !== null && overlay.palette.searching
                visible: running
                implicitWidth: Math.round(16 * Theme.scale)
                implicitHeight: implicitWidth
            }
        }
        Rectangle {
            Layout.fillWidth: true
            implicitHeight: 1
            color: Theme.line
        }

        ListView {
            id: list
            Layout.fillWidth: true
            Layout.preferredHeight: Math.min(contentHeight + 2 * Theme.s,
                                             (overlay.parent ? overlay.parent.height : 600) * 0.6)
            visible: count > 0
            clip: true
            topMargin: Theme.s
            bottomMargin: Theme.s
            leftMargin: Theme.s
            rightMargin: Theme.s
            boundsBehavior: Flickable.StopAtBounds
            // Rows are made as they come into view: the list is made anew at each keystroke,
            // and rows made ahead of time would be thrown away half-made.
            cacheBuffer: 0
            model: overlay.palette ? overlay.palette.list : null
            Accessible.role: Accessible.List
            Accessible.name: overlay.palette ? overlay.palette.name : ""

            ScrollBar.vertical: ScrollBar {
                policy: list.contentHeight > list.height ? ScrollBar.AsNeeded : ScrollBar.AlwaysOff
            }

            delegate: PaletteRow {
                width: list.width - list.leftMargin - list.rightMargin
                onChosen: {
                    // The keys stay with the field after a click.
                    field.forceActiveFocus()
                    overlay.palette.choose(index)
                }
            }
        }

        OLabel {
            Layout.fillWidth: true
            Layout.margins: Theme.l
            visible: overlay.palette !== null && overlay.palette.emptyText !== ""
            text: overlay.palette ? overlay.palette.emptyText : ""
            color: Theme.secondaryText
        }

        Rectangle {
            Layout.fillWidth: true
            implicitHeight: 1
            color: Theme.line
        }
        Row {
            Layout.alignment: Qt.AlignRight
            Layout.margins: Theme.s
            Layout.rightMargin: Theme.l
            spacing: Theme.l

            Repeater {
                model: overlay.palette ? overlay.palette.hints : []
                StudyLegendItem {
                    required property var modelData
                    keys: modelData.keys
                    label: modelData.label
                }
            }
        }
    }
}
