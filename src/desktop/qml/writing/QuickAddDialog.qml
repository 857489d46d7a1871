import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Orvel
import Orvel.Core

// "Add to a deck": a word and the deck it goes to. It stays open with its text when the card
// cannot be written, and closes when the card is there.
OSheet {
    id: dialog

    // Called with the deck and the card once it is written.
    signal added(var deck, var card)

    title: quick.title

    // Opens the sheet, filled in with the word when one is given.
    function openWith(word) {
        quick.text = word || ""
        quick.reload()
        open()
        field.forceActiveFocus()
    }

    QuickAddSheet {
        id: quick
        onAdded: (deck, card) => dialog.added(deck, card)
        onClosed: dialog.close()
    }

    OField {
        id: field
        Layout.fillWidth: true
        text: quick.text
        placeholderText: "word or phrase"
        onTextEdited: quick.text = text
        onAccepted: quick.add()
    }

    RowLayout {
        Layout.fillWidth: true
        spacing: Theme.m

        OLabel {
            text: quick.deckLabel
        }
        ComboBox {
            id: deckChooser
            Layout.fillWidth: true
            model: quick.deckChoices
            textRole: "name"
            currentIndex: quick.chosenIndex
            font.family: Theme.uiFamily
            font.pixelSize: Theme.body
            Accessible.name: quick.deckLabel
            onActivated: index => quick.deckId = quick.deckChoices[index].id

            delegate: ItemDelegate {
                id: choice
                required property var modelData
                required property int index
                width: ListView.view ? ListView.view.width : implicitWidth
                enabled: !choice.modelData.section
                leftPadding: choice.modelData.indent ? Theme.xl : Theme.m
                highlighted: deckChooser.highlightedIndex === choice.index // qmllint disable unqualified
                contentItem: OLabel {
                    text: choice.modelData.name
                    color: choice.modelData.section ? Theme.secondaryText : Theme.text
                    font.pixelSize: choice.modelData.section ? Theme.sectionHeading : Theme.body
                    font.weight: choice.modelData.section ? Font.DemiBold : Font.Normal
                    font.capitalization: choice.modelData.section ? Font.AllUppercase : Font.MixedCase
                }
            }
        }
    }

    OLabel {
        Layout.fillWidth: true
        visible: quick.working
        elide: Text.ElideRight
        text: quick.narration
        color: Theme.secondaryText
        font.pixelSize: Theme.secondary
        Accessible.name: quick.narration
    }
    OLabel {
        Layout.fillWidth: true
        visible: quick.trouble !== ""
        wrapMode: Text.Wrap
        text: quick.trouble
        color: Theme.danger
        font.pixelSize: Theme.secondary
    }

    RowLayout {
        Layout.fillWidth: true
        Layout.topMargin: Theme.s
        spacing: Theme.s

        Item { Layout.fillWidth: true }
        BusyIndicator {
            running: quick.working
            visible: running
            implicitWidth: Math.round(20 * Theme.scale)
            implicitHeight: implicitWidth
        }
        OButton {
            text: quick.cancelLabel
            onClicked: quick.cancel()
        }
        OButton {
            primary: true
            enabled: quick.canWrite
            text: quick.writeLabel
            onClicked: quick.add()
        }
    }
}
