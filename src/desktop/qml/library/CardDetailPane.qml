import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Orvel
import Orvel.Core

// Delegates here read the enclosing view by its id (Qt 6.4 has no bound component scope).
// qmllint disable unqualified

// The chosen card: its kind line, the term with its article, the reading, what it means, how it
// is used, words nearby and its forms; at the foot (when the pane is wide enough) the counts and
// the actions "hear", "rewrite", "Didn't know it", "Knew it" and "Delete card".
Rectangle {
    id: pane

    property HomeView home: null

    readonly property CardDetail detail: home ? home.detail : null
    readonly property bool showing: detail !== null && detail.hasCard

    color: Theme.window

    OLabel {
        anchors.centerIn: parent
        visible: pane.home !== null && !pane.showing
        text: pane.home && pane.home.hasSelectedDeck ? "No card selected" : "No deck selected"
        color: Theme.secondaryText
        font.family: Theme.displayFamily
        font.pixelSize: Theme.sheetTitle
    }

    ScrollView {
        id: scroll
        anchors.top: parent.top
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.bottom: foot.visible ? foot.top : parent.bottom
        visible: pane.showing
        contentWidth: availableWidth
        clip: true

        ColumnLayout {
            width: scroll.availableWidth
            spacing: Theme.s

            Item { implicitHeight: Theme.xl }

            OLabel {
                Layout.fillWidth: true
                Layout.leftMargin: Theme.xxl
                Layout.rightMargin: Theme.xxl
                visible: text !== ""
                text: pane.detail ? pane.detail.kindLine : ""
                color: Theme.secondaryText
                font.pixelSize: Theme.secondary
            }
            OLabel {
                Layout.fillWidth: true
                Layout.leftMargin: Theme.xxl
                Layout.rightMargin: Theme.xxl
                wrapMode: Text.Wrap
                text: pane.detail ? pane.detail.heading : ""
                font.family: Theme.displayFamily
                font.pixelSize: Theme.detailTerm
                Accessible.role: Accessible.Heading
            }
            RowLayout {
                Layout.leftMargin: Theme.xxl
                spacing: Theme.m
                OLabel {
                    visible: text !== ""
                    text: pane.detail && pane.detail.reading !== ""
                          ? "/" + pane.detail.reading + "/" : ""
                    color: Theme.secondaryText
                }
            }

            CardSection {
                title: "Means"
                visible: pane.detail !== null
                         && (pane.detail.translation !== "" || pane.detail.definition !== "")
                OLabel {
                    Layout.fillWidth: true
                    wrapMode: Text.Wrap
                    visible: text !== ""
                    text: pane.detail ? pane.detail.translation : ""
                    font.pixelSize: Math.round(20 * Theme.scale)
                }
                OLabel {
                    Layout.fillWidth: true
                    wrapMode: Text.Wrap
                    visible: text !== ""
                    text: pane.detail ? pane.detail.definition : ""
                }
            }

            CardSection {
                title: "In use"
                visible: pane.detail !== null
                         && (pane.detail.usageNotes !== "" || pane.detail.examples.length > 0)
                OLabel {
                    Layout.fillWidth: true
                    wrapMode: Text.Wrap
                    visible: text !== ""
                    text: pane.detail ? pane.detail.usageNotes : ""
                }
                Repeater {
                    model: pane.detail ? pane.detail.examples : []
                    delegate: ColumnLayout {
                        id: example
                        required property var modelData
                        Layout.fillWidth: true
                        spacing: 0
                        OLabel {
                            Layout.fillWidth: true
                            wrapMode: Text.Wrap
                            text: example.modelData.sentence
                            font.family: Theme.displayFamily
                            font.pixelSize: Math.round(17 * Theme.scale)
                        }
                        OLabel {
                            Layout.fillWidth: true
                            wrapMode: Text.Wrap
                            visible: text !== ""
                            text: example.modelData.translation
                            color: Theme.secondaryText
                            font.pixelSize: Theme.secondary
                        }
                        OLabel {
                            Layout.fillWidth: true
                            wrapMode: Text.Wrap
                            visible: text !== ""
                            text: example.modelData.note
                            color: Theme.secondaryText
                            font.pixelSize: Theme.secondary
                            font.italic: true
                        }
                    }
                }
            }

            CardSection {
                title: "Nearby"
                visible: pane.detail !== null && pane.detail.nearby.length > 0
                Flow {
                    Layout.fillWidth: true
                    spacing: Theme.s
                    Repeater {
                        model: pane.detail ? pane.detail.nearby : []
                        delegate: Rectangle {
                            id: near
                            required property var modelData
                            width: chip.implicitWidth + 2 * Theme.m
                            height: chip.implicitHeight + Theme.s * 1.5
                            radius: height / 2
                            color: Theme.sidebar
                            OLabel {
                                id: chip
                                anchors.centerIn: parent
                                text: near.modelData.text
                                ToolTip.visible: chipHover.hovered && near.modelData.relation !== ""
                                ToolTip.text: near.modelData.relation
                            }
                            HoverHandler {
                                id: chipHover
                            }
                        }
                    }
                }
            }

            CardSection {
                title: "Forms"
                visible: pane.detail !== null && pane.detail.forms.length > 0
                Repeater {
                    model: pane.detail ? pane.detail.forms : []
                    delegate: ColumnLayout {
                        id: table
                        required property var modelData
                        Layout.fillWidth: true
                        spacing: 2
                        OLabel {
                            text: table.modelData.tense
                            font.weight: Font.DemiBold
                        }
                        OLabel {
                            Layout.fillWidth: true
                            wrapMode: Text.Wrap
                            visible: text !== ""
                            text: table.modelData.note
                            color: Theme.secondaryText
                            font.pixelSize: Theme.secondary
                        }
                        GridLayout {
                            columns: 2
                            columnSpacing: Theme.l
                            rowSpacing: 0
                            Repeater {
                                model: table.modelData.forms.length * 2
                                delegate: OLabel {
                                    id: cell
                                    required property int index
                                    readonly property var form: table.modelData.forms[Math.floor(cell.index / 2)]
                                    text: cell.index % 2 === 0 ? cell.form.label : cell.form.form
                                    color: cell.index % 2 === 0 ? Theme.secondaryText : Theme.text
                                }
                            }
                        }
                    }
                }
            }

            OLabel {
                Layout.fillWidth: true
                Layout.leftMargin: Theme.xxl
                Layout.rightMargin: Theme.xxl
                visible: text !== ""
                wrapMode: Text.Wrap
                text: pane.detail ? pane.detail.trouble : ""
                color: Theme.danger
            }

            Item { implicitHeight: Theme.xl }
        }
    }

    // The foot: counts and actions, only when the pane is wide enough for them.
    Rectangle {
        id: foot
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.bottom: parent.bottom
        visible: pane.showing && pane.width >= (pane.detail ? pane.detail.footMinimumWidth : 480)
        implicitHeight: footRow.implicitHeight + 2 * Theme.m
        color: Theme.window

        Rectangle {
            anchors.top: parent.top
            width: parent.width
            height: 1
            color: Theme.line
        }
        // The counts above the actions; the actions wrap onto a second row when the pane is narrow.
        ColumnLayout {
            id: footRow
            anchors.fill: parent
            anchors.leftMargin: Theme.xxl
            anchors.rightMargin: Theme.l
            anchors.topMargin: Theme.s
            anchors.bottomMargin: Theme.s
            spacing: Theme.xs

            OLabel {
                Layout.fillWidth: true
                elide: Text.ElideRight
                text: pane.detail ? pane.detail.foot : ""
                color: Theme.secondaryText
                font.pixelSize: Theme.secondary
            }
            Flow {
                Layout.fillWidth: true
                spacing: Theme.s

                OButton {
                    // Toggles: pressed again while the word sounds, it stops.
                    text: "hear"
                    enabled: pane.detail !== null && pane.detail.hasCard && pane.home !== null
                    ToolTip.visible: hovered
                    ToolTip.text: "Say the word aloud"
                    onClicked: Speech.say(pane.detail.card.term, pane.home.selectedDeck.language) // qmllint disable type
                }
                OButton {
                    text: "rewrite"
                    enabled: pane.detail !== null && !pane.detail.working
                    ToolTip.visible: hovered
                    ToolTip.text: "Rewrite the card"
                    onClicked: pane.detail.requestRewrite()
                }
                OButton {
                    text: "Didn't know it"
                    enabled: pane.detail !== null && !pane.detail.working
                    onClicked: pane.detail.requestAnswer(false)
                }
                OButton {
                    text: "Knew it"
                    enabled: pane.detail !== null && !pane.detail.working
                    contentItem: OLabel {
                        text: "Knew it"
                        color: Theme.good
                        horizontalAlignment: Text.AlignHCenter
                        verticalAlignment: Text.AlignVCenter
                    }
                    onClicked: pane.detail.requestAnswer(true)
                }
                OButton {
                    text: "Delete card"
                    destructive: true
                    onClicked: pane.detail.remove()
                }
            }
        }
    }
}
