import QtQuick
import QtQuick.Layouts
import Orvel
import Orvel.Core

// The one-time welcome: three steps to get going.
OSheet {
    id: dialog

    required property WelcomeSheet sheet

    title: "Welcome to orvel"

    onOpened: {
        sheet.markShown()
        startButton.forceActiveFocus(Qt.OtherFocusReason)
    }

    OLabel {
        Layout.fillWidth: true
        Layout.bottomMargin: Theme.s
        wrapMode: Text.Wrap
        text: "A word you type becomes a card that explains itself. Three things get you going."
    }

    Repeater {
        model: [
            { title: "Start a deck", line: "Pick the language you are learning and the one you already speak." },
            { title: "Type a word, or a topic", line: "↩ writes the card — meaning, examples, how to say it. Ctrl+↩ writes a short lesson on a topic instead." },
            { title: "Study", line: "Press Ctrl+R. Space turns a card over; 1 and 2 say whether you knew it." }
        ]

        delegate: RowLayout {
            id: step

            required property var modelData
            required property int index

            Layout.fillWidth: true
            spacing: Theme.m

            Rectangle {
                Layout.alignment: Qt.AlignTop
                implicitWidth: Math.round(26 * Theme.scale)
                implicitHeight: implicitWidth
                radius: width / 2
                color: Theme.accentWash

                OLabel {
                    anchors.centerIn: parent
                    text: step.index + 1
                    color: Theme.accent
                    font.weight: Font.DemiBold
                }
            }
            ColumnLayout {
                Layout.fillWidth: true
                spacing: 2

                OLabel {
                    Layout.fillWidth: true
                    text: step.modelData.title
                    font.weight: Font.DemiBold
                }
                OLabel {
                    Layout.fillWidth: true
                    wrapMode: Text.Wrap
                    color: Theme.secondaryText
                    font.pixelSize: Theme.secondary
                    text: step.modelData.line
                }
            }
        }
    }

    RowLayout {
        Layout.fillWidth: true
        Layout.topMargin: Theme.m
        spacing: Theme.s

        OButton {
            text: "Open the Orvel Manual"
            onClicked: {
                dialog.close()
                dialog.sheet.openManual()
            }
        }
        Item {
            Layout.fillWidth: true
        }
        OButton {
            text: "Later"
            onClicked: {
                dialog.close()
                dialog.sheet.later()
            }
        }
        OButton {
            id: startButton
            primary: true
            text: "Start a Deck"
            onClicked: {
                dialog.close()
                dialog.sheet.startDeck()
            }
        }
    }
}
