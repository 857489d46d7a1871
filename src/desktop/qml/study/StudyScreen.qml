import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Orvel
import Orvel.Core

// The study session over the whole window: the title and "3 of 20" at the top, the card in the
// middle, the answers under a turned card and the key legend at the foot. Space turns the card,
// 1 and 2 answer, ← and → step, E opens the rest, ↑ ↓, Page Up, Page Down, Home and End scroll
// a card too long for its place, Escape closes.
Rectangle {
    id: screen

    // The session; the opener starts it with study.studyDeck(deck) or study.studyFolder(...).
    readonly property alias study: session

    signal closeRequested()

    color: Theme.window

    StudyView {
        id: session
        onWantsKeys: keys.forceActiveFocus()
    }

    // Nothing under the session takes the mouse while it is shown.
    MouseArea {
        anchors.fill: parent
        acceptedButtons: Qt.AllButtons
        hoverEnabled: true
        onWheel: (wheel) => wheel.accepted = true
    }

    Item {
        id: keys

        anchors.fill: parent
        focus: true
        Keys.onPressed: (event) => {
            switch (event.key) {
            case Qt.Key_Space:
                session.flip()
                break
            case Qt.Key_1:
                session.answer(false)
                break
            case Qt.Key_2:
                session.answer(true)
                break
            case Qt.Key_Left:
                session.step(-1)
                break
            case Qt.Key_Right:
                session.step(1)
                break
            case Qt.Key_E:
                session.toggleExpanded()
                break
            case Qt.Key_Up:
                back.scroll(-Theme.scrollStep)
                break
            case Qt.Key_Down:
                back.scroll(Theme.scrollStep)
                break
            case Qt.Key_PageUp:
                back.scroll(-back.page)
                break
            case Qt.Key_PageDown:
                back.scroll(back.page)
                break
            case Qt.Key_Home:
                back.scroll(-back.contentHeight)
                break
            case Qt.Key_End:
                back.scroll(back.contentHeight)
                break
            case Qt.Key_Escape:
                screen.closeRequested()
                break
            case Qt.Key_Return:
            case Qt.Key_Enter:
                if (session.state !== StudyView.Front && session.state !== StudyView.Back)
                    screen.closeRequested()
                break
            default:
                return
            }
            event.accepted = true
        }
        onActiveFocusChanged: session.listening = activeFocus
    }

    // The top line: what is studied, where we are, and the way out.
    OLabel {
        anchors.left: parent.left
        anchors.top: parent.top
        anchors.leftMargin: Theme.xl + Theme.xs
        anchors.topMargin: Theme.xl
        text: session.title
        color: Theme.secondaryText
        font.family: Theme.displayFamily
        font.pixelSize: Math.round(18 * Theme.scale)
    }
    OLabel {
        anchors.horizontalCenter: parent.horizontalCenter
        anchors.top: parent.top
        anchors.topMargin: Theme.xl
        text: session.progress
        color: Theme.secondaryText
        font.pixelSize: Theme.secondary
    }
    Row {
        anchors.right: parent.right
        anchors.top: parent.top
        anchors.rightMargin: Theme.xl + Theme.xs
        anchors.topMargin: Theme.xl - Theme.xs
        spacing: Theme.s

        OLinkButton {
            text: session.closeLabel
            focusPolicy: Qt.NoFocus
            onClicked: screen.closeRequested()
        }
        StudyKeyCap {
            anchors.verticalCenter: parent.verticalCenter
            text: "Esc"
        }
    }

    // The card.
    Rectangle {
        id: card

        readonly property bool turned: session.state === StudyView.Back

        visible: session.hasCard
        anchors.horizontalCenter: parent.horizontalCenter
        y: Math.round(parent.height * 0.15)
        width: Math.min(Math.round(680 * Theme.scale), parent.width - 2 * Theme.xxxl)
        height: session.expanded ? answers.y - y - Theme.xl
                                 : Math.min(Math.round(420 * Theme.scale), answers.y - y - Theme.xl)
        radius: 16
        color: Theme.surface
        border.width: 1
        border.color: Theme.line

        Accessible.role: Accessible.Button
        Accessible.name: session.word
        Accessible.onPressAction: session.click()

        MouseArea {
            anchors.fill: parent
            cursorShape: Qt.PointingHandCursor
            onClicked: session.click()
        }

        // Front: the word alone.
        OLabel {
            visible: !card.turned
            anchors.centerIn: parent
            width: parent.width - 2 * Theme.xxl
            horizontalAlignment: Text.AlignHCenter
            wrapMode: Text.Wrap
            text: session.word
            font.family: Theme.displayFamily
            font.pixelSize: Math.round(56 * Theme.scale)
            font.weight: Font.Medium
        }

        // Back: the answer side, and the rest of the card below it when opened, scrolled by the
        // wheel, the scroll bar or the keys when it is longer than the card.
        Flickable {
            id: back

            // A page, less a step so that the line at the edge shows again.
            readonly property real page: Math.max(Theme.scrollStep, height - Theme.scrollStep)
            // Each card, side and opening starts at the top.
            readonly property string showing: session.index + (card.turned ? " back" : " face")
                                              + (session.expanded ? " open" : "")

            function scroll(by) {
                contentY = Math.max(0, Math.min(contentHeight - height, contentY + by))
            }

            visible: card.turned
            anchors.fill: parent
            anchors.margins: Theme.xxl
            anchors.bottomMargin: hint.visible ? Theme.xxl + hint.height : Theme.xl
            clip: true
            contentWidth: width
            contentHeight: backColumn.height
            interactive: contentHeight > height
            boundsBehavior: Flickable.StopAtBounds
            onShowingChanged: contentY = 0

            ScrollBar.vertical: backBar

            Column {
                id: backColumn

                width: back.width
                y: Math.max(0, (back.height - height) / 2)
                spacing: Theme.s

                OLabel {
                    width: parent.width
                    horizontalAlignment: Text.AlignHCenter
                    visible: text !== ""
                    text: session.kindLine
                    color: Theme.secondaryText
                    font.pixelSize: Theme.secondary
                }
                OLabel {
                    width: parent.width
                    horizontalAlignment: Text.AlignHCenter
                    wrapMode: Text.Wrap
                    text: session.word
                    font.family: Theme.displayFamily
                    font.pixelSize: Math.round(40 * Theme.scale)
                    font.weight: Font.Medium
                }
                OLabel {
                    width: parent.width
                    horizontalAlignment: Text.AlignHCenter
                    visible: text !== ""
                    text: session.card.reading // qmllint disable type
                    color: Theme.secondaryText
                    font.pixelSize: Math.round(16 * Theme.scale)
                }
                Rectangle {
                    anchors.horizontalCenter: parent.horizontalCenter
                    width: Math.round(60 * Theme.scale)
                    height: 1
                    color: Theme.line
                }
                OLabel {
                    width: parent.width
                    horizontalAlignment: Text.AlignHCenter
                    wrapMode: Text.Wrap
                    text: session.card.translation // qmllint disable type
                    color: Theme.accent
                    font.family: Theme.displayFamily
                    font.pixelSize: Math.round(32 * Theme.scale)
                    font.weight: Font.Medium
                }
                OLabel {
                    width: parent.width
                    horizontalAlignment: Text.AlignHCenter
                    wrapMode: Text.Wrap
                    visible: text !== "" && !session.expanded
                    text: session.example
                    color: Theme.secondaryText
                    font.pixelSize: Math.round(16 * Theme.scale)
                }

                // The rest of the card: headed sections, as in the card detail.
                Column {
                    visible: session.expanded
                    width: parent.width
                    topPadding: Theme.l
                    spacing: Theme.l

                    Repeater {
                        model: session.expanded ? session.rest : []

                        Column {
                            id: part
                            required property var modelData

                            width: parent.width
                            spacing: Theme.xs

                            OSectionHeading {
                                text: part.modelData.heading
                            }
                            Repeater {
                                model: part.modelData.lines
                                OLabel {
                                    id: restLine
                                    required property string modelData
                                    width: parent.width
                                    wrapMode: Text.Wrap
                                    text: restLine.modelData
                                    font.pixelSize: Theme.body
                                }
                            }
                        }
                    }
                }
            }
        }

        // In the card's margin, beside the text it scrolls.
        ScrollBar {
            id: backBar

            visible: back.visible
            anchors.top: back.top
            anchors.bottom: back.bottom
            anchors.right: parent.right
            anchors.rightMargin: Theme.xs
            policy: back.interactive ? ScrollBar.AlwaysOn : ScrollBar.AlwaysOff
        }

        OLabel {
            id: hint

            anchors.horizontalCenter: parent.horizontalCenter
            anchors.bottom: parent.bottom
            anchors.bottomMargin: Theme.xl
            visible: text !== ""
            text: session.hint
            color: Theme.secondaryText
            font.pixelSize: Theme.secondary
        }
    }

    // The answers, under a turned card.
    Row {
        id: answers

        anchors.horizontalCenter: parent.horizontalCenter
        y: parent.height - legend.height - Theme.xxxl - height - Theme.xxxl
        spacing: Theme.l
        opacity: card.turned ? 1 : 0
        enabled: card.turned

        StudyAnswerButton {
            key: "1"
            text: session.didntKnowLabel
            onClicked: session.answer(false)
        }
        StudyAnswerButton {
            key: "2"
            text: session.knewLabel
            primary: true
            onClicked: session.answer(true)
        }
    }

    // The end, an empty deck, or a deck that could not be loaded.
    ColumnLayout {
        anchors.centerIn: parent
        visible: !session.hasCard && session.state !== StudyView.Loading
        spacing: Theme.l

        OTitle {
            Layout.alignment: Qt.AlignHCenter
            text: session.state === StudyView.Done ? session.tally
                : session.state === StudyView.Empty ? session.emptyTitle
                : ""
            visible: text !== ""
            font.pixelSize: Math.round(32 * Theme.scale)
        }
        OLabel {
            Layout.alignment: Qt.AlignHCenter
            Layout.maximumWidth: Math.round(480 * Theme.scale)
            horizontalAlignment: Text.AlignHCenter
            wrapMode: Text.Wrap
            text: session.state === StudyView.Empty ? session.emptyLine
                : session.state === StudyView.Failed ? session.trouble
                : ""
            visible: text !== ""
            color: Theme.secondaryText
        }
        OButton {
            Layout.alignment: Qt.AlignHCenter
            Layout.topMargin: Theme.s
            primary: true
            focusPolicy: Qt.NoFocus
            text: session.closeLabel
            onClicked: screen.closeRequested()
        }
    }

    // The key legend.
    Row {
        id: legend

        anchors.horizontalCenter: parent.horizontalCenter
        anchors.bottom: parent.bottom
        anchors.bottomMargin: Theme.xl
        spacing: Theme.xl
        visible: session.hasCard

        StudyLegendItem {
            keys: ["Space"]
            label: "turn"
        }
        StudyLegendItem {
            keys: ["E"]
            label: session.moreLabel
        }
        StudyLegendItem {
            keys: ["←", "→"]
            label: "back · on"
        }
        StudyLegendItem {
            keys: ["1", "2"]
            label: "didn’t · knew"
        }
    }
}
