import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Orvel
import Orvel.Core

// Delegates here read the enclosing view by its id (Qt 6.4 has no bound component scope).
// qmllint disable unqualified

// The open deck's cards: its title and counts, the composer's slot, the kind, word and learned
// filters, the list, the undo bar of a deleted card and the study button. Without a deck it
// says why ("No decks yet", "No deck selected").
Rectangle {
    id: column

    property HomeView home: null
    // The deck's composer stands here, at the head of the list (filled by the composer's view).
    property Component header: null

    readonly property CardList cards: home ? home.cards : null

    color: Theme.surface

    Shortcut {
        id: studyKey
        sequence: "Ctrl+R"
        enabled: column.home !== null && column.home.hasSelectedDeck
        onActivated: column.home.deckActions.study(column.home.selectedDeckId)
    }

    // Without a deck.
    ColumnLayout {
        anchors.centerIn: parent
        width: parent.width - 2 * Theme.xl
        visible: column.home !== null && !column.home.hasSelectedDeck && column.home.shelf.loaded
        spacing: Theme.s

        OLabel {
            Layout.alignment: Qt.AlignHCenter
            text: column.home && !column.home.shelf.hasDecks ? "No decks yet" : "No deck selected"
            color: Theme.secondaryText
            font.family: Theme.displayFamily
            font.pixelSize: Theme.sheetTitle
        }
        OLabel {
            Layout.fillWidth: true
            visible: column.home !== null && !column.home.shelf.hasDecks
            horizontalAlignment: Text.AlignHCenter
            wrapMode: Text.Wrap
            text: "A deck holds one language. " + newDeckKey.nativeText + " starts one."
            color: Theme.secondaryText
            font.pixelSize: Theme.secondary
        }
        Shortcut {
            id: newDeckKey
            sequence: "Ctrl+N"
            enabled: false
        }
    }

    ColumnLayout {
        anchors.fill: parent
        anchors.topMargin: Theme.xl
        visible: column.home !== null && column.home.hasSelectedDeck
        spacing: Theme.s

        ColumnLayout {
            Layout.fillWidth: true
            Layout.leftMargin: Theme.l
            Layout.rightMargin: Theme.l
            spacing: Theme.xs

            OLabel {
                Layout.fillWidth: true
                elide: Text.ElideRight
                text: column.home ? column.home.selectedDeckName : ""
                font.family: Theme.displayFamily
                font.pixelSize: Theme.deckTitle
                Accessible.role: Accessible.Heading
            }
            OLabel {
                visible: column.cards !== null && column.cards.hasDeck
                text: column.cards ? column.cards.summary : ""
                color: Theme.secondaryText
                font.pixelSize: Theme.secondary
            }
            DeckPageSwitch {
                home: column.home
            }
        }

        // The composer's slot.
        Loader {
            Layout.fillWidth: true
            Layout.leftMargin: Theme.l
            Layout.rightMargin: Theme.l
            active: column.header !== null
            visible: active
            sourceComponent: column.header
        }

        RowLayout {
            Layout.fillWidth: true
            Layout.leftMargin: Theme.l
            Layout.rightMargin: Theme.l
            spacing: Theme.s
            visible: column.cards !== null && column.cards.total > 0

            OButton {
                id: kindButton
                text: (column.cards ? column.cards.kindLabel : "All kinds") + "  ▾"
                Accessible.name: "Kind: " + (column.cards ? column.cards.kindLabel : "")
                onClicked: kindMenu.popup(kindButton, 0, kindButton.height)

                Menu {
                    id: kindMenu
                    Instantiator {
                        model: column.cards ? column.cards.kindOptions : []
                        delegate: MenuItem {
                            id: kindItem
                            required property var modelData
                            text: kindItem.modelData.label
                            checkable: true
                            checked: column.cards !== null && column.cards.kind === kindItem.modelData.value
                            onTriggered: column.cards.kind = kindItem.modelData.value
                        }
                        onObjectAdded: (index, object) => kindMenu.insertItem(index, object)
                        onObjectRemoved: (index, object) => kindMenu.removeItem(object)
                    }
                }
            }
            OField {
                id: findField
                Layout.fillWidth: true
                placeholderText: "Find a word"
                text: column.cards ? column.cards.query : ""
                onTextEdited: if (column.cards) column.cards.query = text
            }
            OButton {
                id: learnedButton
                readonly property var labels: ["All", "Learned", "Not learned yet"]
                text: (column.cards ? labels[column.cards.learned] : "All") + "  ▾"
                Accessible.name: "Learned: " + (column.cards ? labels[column.cards.learned] : "")
                onClicked: learnedMenu.popup(learnedButton, 0, learnedButton.height)

                Menu {
                    id: learnedMenu
                    MenuItem {
                        text: "All cards"
                        checkable: true
                        checked: column.cards !== null && column.cards.learned === CardList.Any
                        onTriggered: column.cards.learned = CardList.Any
                    }
                    MenuItem {
                        text: "Learned"
                        checkable: true
                        checked: column.cards !== null && column.cards.learned === CardList.Learned
                        onTriggered: column.cards.learned = CardList.Learned
                    }
                    MenuItem {
                        text: "Not learned yet"
                        checkable: true
                        checked: column.cards !== null && column.cards.learned === CardList.NotLearned
                        onTriggered: column.cards.learned = CardList.NotLearned
                    }
                }
            }
        }

        Item {
            Layout.fillWidth: true
            Layout.fillHeight: true

            // Loading, failed, empty.
            ColumnLayout {
                anchors.centerIn: parent
                width: parent.width - 2 * Theme.xl
                spacing: Theme.s
                visible: column.cards !== null && !column.cards.hasDeck || list.count === 0

                BusyIndicator {
                    Layout.alignment: Qt.AlignHCenter
                    running: column.cards !== null && column.cards.loading
                    visible: running
                }
                OLabel {
                    Layout.alignment: Qt.AlignHCenter
                    visible: column.cards !== null && column.cards.trouble !== ""
                    text: "Couldn't load the deck"
                    font.family: Theme.displayFamily
                    font.pixelSize: Math.round(18 * Theme.scale)
                }
                OLabel {
                    Layout.fillWidth: true
                    visible: column.cards !== null && column.cards.trouble !== ""
                    horizontalAlignment: Text.AlignHCenter
                    wrapMode: Text.Wrap
                    text: column.cards ? column.cards.trouble : ""
                    color: Theme.danger
                    font.pixelSize: Theme.secondary
                }
                OLabel {
                    Layout.alignment: Qt.AlignHCenter
                    visible: column.cards !== null && column.cards.hasDeck && column.cards.total === 0
                    text: "No cards yet"
                    font.family: Theme.displayFamily
                    font.pixelSize: Math.round(18 * Theme.scale)
                }
                OLabel {
                    Layout.fillWidth: true
                    visible: column.cards !== null && column.cards.hasDeck && column.cards.total === 0
                    horizontalAlignment: Text.AlignHCenter
                    wrapMode: Text.Wrap
                    text: column.home ? column.home.deckActions.emptyDeckGuidance(lessonKey.nativeText) : ""
                    color: Theme.secondaryText
                    font.pixelSize: Theme.secondary
                }
                Shortcut {
                    id: lessonKey
                    sequence: "Ctrl+Return"
                    enabled: false
                }
            }

            ListView {
                id: list
                anchors.fill: parent
                anchors.leftMargin: Theme.l
                anchors.rightMargin: Theme.l
                clip: true
                spacing: 2
                model: column.cards
                boundsBehavior: Flickable.StopAtBounds
                keyNavigationEnabled: false
                currentIndex: column.cards ? column.cards.rowOf(column.cards.selectedCardId) : -1
                Accessible.role: Accessible.List
                Accessible.name: "Cards"
                ScrollBar.vertical: ScrollBar {}

                Keys.onUpPressed: pick(currentIndex - 1)
                Keys.onDownPressed: pick(currentIndex + 1)
                Keys.onDeletePressed: if (column.home) column.home.detail.remove()

                function pick(row) {
                    if (column.cards && row >= 0 && row < count)
                        column.cards.selectedCardId = column.cards.cardIdAt(row)
                }

                delegate: CardRow {
                    width: list.width
                    cards: column.cards
                    onPicked: list.forceActiveFocus()
                }
            }
        }

        CardUndoBar {
            Layout.fillWidth: true
            Layout.leftMargin: Theme.l
            Layout.rightMargin: Theme.l
            bin: column.home ? column.home.bin : null
        }

        Rectangle {
            Layout.fillWidth: true
            implicitHeight: 1
            color: Theme.line
        }
        OButton {
            Layout.fillWidth: true
            Layout.leftMargin: Theme.l
            Layout.rightMargin: Theme.l
            Layout.bottomMargin: Theme.s
            primary: true
            enabled: column.home !== null && column.home.hasSelectedDeck
            text: column.home ? column.home.deckActions.studyButtonText(studyKey.nativeText) : ""
            onClicked: column.home.deckActions.study(column.home.selectedDeckId)
        }
    }
}
