import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Orvel
import Orvel.Core

// The sheet's texts (a map) and the passed words (maps) are read here by key; qmllint in Qt 6.4
// cannot see into either, nor into the delegates' view.
// qmllint disable type unqualified

// Adding from a pasted text: paste, choose the words, watch them written. Closing it while cards
// are being written leaves the server writing them; they still reach the deck's list.
OSheet {
    id: dialog

    property ImportSheet sheet: null
    readonly property int stage: sheet ? sheet.stage : ImportSheet.Paste

    title: sheet ? sheet.title : ""
    visible: sheet !== null
    width: Math.min(620 * Theme.scale, (parent ? parent.width : 700) - 2 * Theme.xl)
    height: Math.min(620 * Theme.scale, (parent ? parent.height : 800) - 2 * Theme.xl)
    onClosed: if (sheet) sheet.close()
    onOpened: if (stage === ImportSheet.Paste) pasted.forceActiveFocus()

    OLabel {
        Layout.fillWidth: true
        wrapMode: Text.Wrap
        text: dialog.sheet ? dialog.sheet.subtitle : ""
        color: Theme.secondaryText
    }

    // Paste.
    ScrollView {
        id: pasteScroll
        Layout.fillWidth: true
        Layout.fillHeight: true
        visible: dialog.stage === ImportSheet.Paste
        clip: true

        TextArea {
            id: pasted
            text: dialog.sheet ? dialog.sheet.text : ""
            placeholderText: dialog.sheet ? dialog.sheet.placeholder : ""
            wrapMode: TextEdit.Wrap
            readOnly: dialog.sheet !== null && dialog.sheet.busy
            color: Theme.text
            placeholderTextColor: Theme.secondaryText
            selectionColor: Theme.accentWash
            selectedTextColor: Theme.text
            font.family: Theme.uiFamily
            font.pixelSize: Theme.body
            selectByMouse: true
            Accessible.role: Accessible.EditableText
            Accessible.name: dialog.sheet ? dialog.sheet.title : ""
            Accessible.description: placeholderText
            onTextChanged: if (dialog.sheet && dialog.sheet.text !== text) dialog.sheet.text = text
            // Ctrl+Return finds the words from inside the text.
            Keys.onPressed: event => {
                if ((event.key === Qt.Key_Return || event.key === Qt.Key_Enter)
                        && (event.modifiers & Qt.ControlModifier)) {
                    dialog.sheet.find()
                    event.accepted = true
                }
            }
            background: Rectangle {
                radius: Theme.controlRadius
                color: Theme.surface
                border.width: pasted.activeFocus ? 2 : 1
                border.color: pasted.activeFocus ? Theme.accent : Theme.line
            }
        }
    }

    // Choose.
    ColumnLayout {
        Layout.fillWidth: true
        visible: dialog.stage === ImportSheet.Choose && (unread.text !== "" || skipped.text !== "")
        spacing: Theme.xs
        OLabel {
            id: unread
            Layout.fillWidth: true
            visible: text !== ""
            wrapMode: Text.Wrap
            text: dialog.sheet ? dialog.sheet.unreadNotice : ""
            color: Theme.secondaryText
            font.pixelSize: Theme.secondary
        }
        OLabel {
            id: skipped
            Layout.fillWidth: true
            visible: text !== ""
            text: dialog.sheet ? dialog.sheet.skippedNotice : ""
            color: Theme.secondaryText
            font.pixelSize: Theme.secondary
        }
    }
    ListView {
        id: words
        Layout.fillWidth: true
        Layout.fillHeight: true
        visible: dialog.stage === ImportSheet.Choose
        clip: true
        model: dialog.sheet ? dialog.sheet.candidates : null
        spacing: Theme.xs
        keyNavigationEnabled: true
        activeFocusOnTab: true
        ScrollBar.vertical: ScrollBar {}
        Accessible.role: Accessible.List
        Accessible.name: dialog.sheet ? dialog.sheet.writeLabel : ""

        delegate: ImportWordRow {
            width: ListView.view.width
            candidates: dialog.sheet ? dialog.sheet.candidates : null
            focused: ListView.isCurrentItem && words.activeFocus
        }
        Keys.onSpacePressed: if (dialog.sheet) dialog.sheet.candidates.toggle(currentIndex)
    }

    // Writing.
    ScrollView {
        id: writingScroll
        Layout.fillWidth: true
        Layout.fillHeight: true
        visible: dialog.stage === ImportSheet.Writing
        contentWidth: availableWidth
        clip: true

        ColumnLayout {
            width: writingScroll.availableWidth
            spacing: Theme.s

            ProgressBar {
                id: bar
                Layout.fillWidth: true
                from: 0
                to: dialog.sheet ? Math.max(1, dialog.sheet.total) : 1
                value: dialog.sheet ? dialog.sheet.done : 0
                Accessible.name: dialog.sheet ? dialog.sheet.subtitle : ""
                background: Rectangle {
                    implicitHeight: Math.round(6 * Theme.scale)
                    radius: height / 2
                    color: Theme.line
                }
                contentItem: Item {
                    implicitHeight: Math.round(6 * Theme.scale)
                    Rectangle {
                        width: bar.visualPosition * parent.width
                        height: parent.height
                        radius: height / 2
                        color: Theme.accent
                    }
                }
            }
            OLabel {
                Layout.fillWidth: true
                visible: text !== ""
                elide: Text.ElideRight
                text: dialog.sheet ? dialog.sheet.writingTerm : ""
                font.weight: Font.DemiBold
            }
            OSectionHeading {
                Layout.topMargin: Theme.s
                visible: dialog.sheet !== null && dialog.sheet.writtenCards.length > 0
                text: dialog.sheet ? dialog.sheet.texts.written : ""
            }
            Repeater {
                model: dialog.sheet ? dialog.sheet.writtenCards : []
                delegate: RowLayout {
                    required property var modelData
                    Layout.fillWidth: true
                    spacing: Theme.s
                    OLabel {
                        text: modelData.term
                        font.weight: Font.DemiBold
                    }
                    OLabel {
                        Layout.fillWidth: true
                        elide: Text.ElideRight
                        text: modelData.translation
                        color: Theme.secondaryText
                    }
                }
            }
            OSectionHeading {
                Layout.topMargin: Theme.s
                visible: dialog.sheet !== null && dialog.sheet.failures.length > 0
                text: dialog.sheet ? dialog.sheet.texts.failed : ""
            }
            Repeater {
                model: dialog.sheet ? dialog.sheet.failures : []
                delegate: OLabel {
                    required property var modelData
                    Layout.fillWidth: true
                    wrapMode: Text.Wrap
                    text: modelData.term + " — " + modelData.why
                    color: Theme.danger
                    font.pixelSize: Theme.secondary
                }
            }
            OSectionHeading {
                Layout.topMargin: Theme.s
                visible: dialog.sheet !== null && dialog.sheet.skips.length > 0
                text: dialog.sheet ? dialog.sheet.texts.skipped : ""
            }
            Repeater {
                model: dialog.sheet ? dialog.sheet.skips : []
                delegate: OLabel {
                    required property var modelData
                    Layout.fillWidth: true
                    wrapMode: Text.Wrap
                    text: modelData.term + " — " + modelData.why
                    color: Theme.secondaryText
                    font.pixelSize: Theme.secondary
                }
            }
        }
    }

    OLabel {
        Layout.fillWidth: true
        visible: dialog.sheet !== null && dialog.sheet.trouble !== ""
        wrapMode: Text.Wrap
        text: dialog.sheet ? dialog.sheet.trouble : ""
        color: Theme.danger
        font.pixelSize: Theme.secondary
    }

    RowLayout {
        Layout.fillWidth: true
        spacing: Theme.s

        OLabel {
            Layout.fillWidth: true
            visible: dialog.stage === ImportSheet.Paste
            text: dialog.sheet ? dialog.sheet.characterCount : ""
            color: Theme.secondaryText
            font.pixelSize: Theme.secondary
        }
        BusyIndicator {
            visible: running
            running: dialog.sheet !== null && dialog.sheet.busy
            implicitWidth: Math.round(20 * Theme.scale)
            implicitHeight: implicitWidth
        }
        OButton {
            visible: dialog.stage === ImportSheet.Choose
            text: dialog.sheet ? dialog.sheet.texts.none : ""
            enabled: dialog.sheet !== null && dialog.sheet.candidates.chosenCount > 0
            onClicked: dialog.sheet.candidates.chooseNone()
        }
        Item {
            Layout.fillWidth: true
            visible: dialog.stage !== ImportSheet.Paste
        }
        OButton {
            visible: dialog.stage === ImportSheet.Choose
            text: dialog.sheet ? dialog.sheet.texts.back : ""
            onClicked: dialog.sheet.back()
        }
        OButton {
            visible: dialog.stage !== ImportSheet.Writing
            text: dialog.sheet ? dialog.sheet.texts.cancel : ""
            onClicked: dialog.close()
        }
        OButton {
            visible: dialog.stage === ImportSheet.Paste
            primary: true
            enabled: dialog.sheet !== null && dialog.sheet.canFind
            text: dialog.sheet ? dialog.sheet.texts.find : ""
            onClicked: dialog.sheet.find()
        }
        OButton {
            visible: dialog.stage === ImportSheet.Choose
            primary: true
            enabled: dialog.sheet !== null && dialog.sheet.candidates.chosenCount > 0
                     && !dialog.sheet.busy
            text: dialog.sheet ? dialog.sheet.writeLabel : ""
            onClicked: dialog.sheet.write()
        }
        OButton {
            visible: dialog.stage === ImportSheet.Writing
            primary: true
            text: dialog.sheet ? dialog.sheet.texts.done : ""
            onClicked: dialog.close()
        }
    }

    // The list takes the keys once the words are there.
    Connections {
        target: dialog.sheet
        function onStageChanged() {
            if (dialog.stage === ImportSheet.Choose)
                words.forceActiveFocus()
            else if (dialog.stage === ImportSheet.Paste)
                pasted.forceActiveFocus()
        }
    }
}
