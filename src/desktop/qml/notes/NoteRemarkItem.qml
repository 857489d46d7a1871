import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Orvel
import Orvel.Core

// qmllint disable unqualified

// One remark of a line's margin: its kind (a menu changes it), its text (edited in place;
// cleared, it goes), the deeper levels unfolded so far, and the offers to go deeper or fold the
// last level away.
ColumnLayout {
    id: remark

    required property int index
    required property var modelData
    property NoteEditor editor: null
    property int line: -1

    spacing: 2

    RowLayout {
        spacing: Theme.xs
        OLinkButton {
            id: kindButton
            text: remark.modelData.kindLabel
            pixelSize: Theme.sectionHeading
            Accessible.name: "Kind: " + remark.modelData.kindLabel
            onClicked: kindMenu.popup(kindButton, 0, kindButton.height)

            Menu {
                id: kindMenu
                Repeater {
                    model: [{ value: "translation", label: "Translation" },
                            { value: "gloss", label: "Gloss" },
                            { value: "note", label: "Note" },
                            { value: "caution", label: "Caution" }]
                    delegate: MenuItem {
                        required property var modelData
                        text: modelData.label
                        checkable: true
                        checked: remark.modelData.kind === modelData.value
                        onTriggered: remark.editor.setRemarkKind(remark.line, remark.index,
                                                                 modelData.value)
                    }
                }
            }
        }
        OLabel {
            visible: remark.modelData.edited
            text: "edited"
            color: Theme.secondaryText
            font.pixelSize: Theme.sectionHeading
        }
    }

    TextArea {
        id: body
        Layout.fillWidth: true
        text: remark.modelData.body
        wrapMode: TextEdit.Wrap
        placeholderText: "Clear it to remove this remark"
        color: Theme.text
        placeholderTextColor: Theme.secondaryText
        selectionColor: Theme.accentWash
        selectedTextColor: Theme.text
        font.family: Theme.uiFamily
        font.pixelSize: Theme.secondary
        selectByMouse: true
        padding: 0
        background: null
        Accessible.role: Accessible.EditableText
        Accessible.name: remark.modelData.kindLabel + " remark"
        Accessible.description: "Clear it to remove this remark"
        // The change goes to the note when the learner leaves the remark, or with Ctrl+Return.
        onActiveFocusChanged: if (!activeFocus) remark.commit()
        Keys.onPressed: event => {
            if ((event.key === Qt.Key_Return || event.key === Qt.Key_Enter)
                    && (event.modifiers & Qt.ControlModifier)) {
                remark.commit()
                event.accepted = true
            } else if (event.key === Qt.Key_Escape) {
                body.text = remark.modelData.body
                event.accepted = true
            }
        }
    }

    Column {
        id: levels
        Layout.fillWidth: true
        Layout.leftMargin: Theme.m
        Repeater {
        model: remark.modelData.levels
        delegate: OLabel {
            required property var modelData
            width: levels.width
            text: modelData
            wrapMode: Text.Wrap
            color: Theme.secondaryText
            font.pixelSize: Theme.secondary
        }
        }
    }

    RowLayout {
        spacing: Theme.s
        BusyIndicator {
            visible: remark.modelData.deepening
            running: visible
            implicitWidth: Theme.l
            implicitHeight: Theme.l
        }
        OLinkButton {
            visible: remark.modelData.deeperText !== "" && !remark.modelData.deepening
            text: remark.modelData.deeperText.split(".")[0]
            pixelSize: Theme.secondary
            Accessible.name: remark.modelData.deeperText
            ToolTip.visible: hovered
            ToolTip.text: remark.modelData.deeperText
            onClicked: remark.editor.deeper(remark.line, remark.index)
        }
        OLinkButton {
            visible: remark.modelData.canFold
            text: "Less deep"
            pixelSize: Theme.secondary
            Accessible.name: "Less deep. Fold the last answer away — it is kept, not thrown out"
            ToolTip.visible: hovered
            ToolTip.text: Accessible.name
            onClicked: remark.editor.lessDeep(remark.line, remark.index)
        }
    }

    function commit() {
        if (body.text !== remark.modelData.body)
            remark.editor.editRemark(remark.line, remark.index, body.text)
    }
}
