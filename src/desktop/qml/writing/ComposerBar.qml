import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Orvel
import Orvel.Core

// The deck's composer at the head of the card list: Return writes a card from the word typed,
// Ctrl+Return asks for a short lesson on it. While a card is written the writing view shows its
// parts; the narration line below the field tells a screen reader what has arrived.
ColumnLayout {
    id: bar

    property HomeView home: null
    property bool reduceMotion: MotionPreference.reduced
    readonly property Composer composer: composer

    spacing: Theme.xs

    Composer {
        id: composer
        deckId: bar.home ? bar.home.selectedDeckId : 0
        language: bar.home ? bar.home.selectedDeck.language : "" // qmllint disable type
        cards: bar.home ? bar.home.cards : null
        onInputChanged: if (field.text !== input) field.text = input
        onCardWritten: card => { if (bar.home) bar.home.countNewCards(card.deckId, 1) }
        onCardsLanded: cards => {
            if (bar.home && cards.length > 0)
                bar.home.countNewCards(cards[0].deckId, cards.length)
        }
    }

    OField {
        id: field
        Layout.fillWidth: true
        placeholderText: composer.placeholder
        label: composer.placeholder
        Accessible.description: composer.addHelp + ". " + composer.teachHelp
        onTextEdited: composer.input = text
        Keys.onReturnPressed: event => bar.submit(event)
        Keys.onEnterPressed: event => bar.submit(event)

        ToolTip.visible: hovered && !activeFocus
        ToolTip.delay: 600
        ToolTip.text: composer.addHelp + "\n" + composer.teachHelp
    }

    OLinkButton {
        id: fromText
        visible: composer.deckId > 0
        text: composer.fromText
        pixelSize: Theme.secondary
        Accessible.description: composer.fromTextHelp
        ToolTip.visible: hovered
        ToolTip.delay: 600
        ToolTip.text: composer.fromTextHelp
        onClicked: composer.addFromText()
    }

    // Asking for a lesson.
    RowLayout {
        Layout.fillWidth: true
        visible: composer.asking
        spacing: Theme.s

        BusyIndicator {
            running: composer.asking
            implicitWidth: Math.round(18 * Theme.scale)
            implicitHeight: implicitWidth
        }
        OLabel {
            Layout.fillWidth: true
            elide: Text.ElideRight
            text: composer.askingText
            color: Theme.secondaryText
            font.pixelSize: Theme.secondary
        }
    }

    // The last progress line, announced by screen readers as it changes.
    OLabel {
        id: narration
        Layout.fillWidth: true
        visible: composer.adding && !composer.showsWriting
        elide: Text.ElideRight
        text: composer.narration
        color: Theme.secondaryText
        font.pixelSize: Theme.secondary
        Accessible.name: composer.narration
    }

    OLabel {
        Layout.fillWidth: true
        visible: composer.refused !== ""
        wrapMode: Text.Wrap
        text: composer.refused
        color: Theme.danger
        font.pixelSize: Theme.secondary
    }

    WritingDialog {
        composer: composer
        reduceMotion: bar.reduceMotion
    }

    ByteDialog {
        sheet: composer.offer
    }

    ImportDialog {
        sheet: composer.importing
    }

    // "Add from Text…" asked for elsewhere (the manual's buttons): the open deck's sheet, on the
    // cards page where the written cards arrive.
    Connections {
        target: AppCommands
        function onPosted(command, text) {
            if (command !== AppCommands.AddFromText || composer.deckId <= 0)
                return
            if (bar.home)
                bar.home.notesShown = false
            composer.addFromText(text)
        }
    }

    // Text dropped on a deck in the sidebar opens the import sheet once that deck is open; the
    // palette asks for the import sheet and for cards the same way.
    Connections {
        target: bar.home
        function onImportAsked(text) {
            composer.addFromText(text)
        }
        // The palette's "Write a card for …" writes the term here.
        function onWriteAsked(term) {
            composer.input = term
            composer.add()
        }
    }

    function submit(event) {
        if (event.modifiers & Qt.ControlModifier)
            composer.askForByte()
        else
            composer.add()
        event.accepted = true
    }
}
