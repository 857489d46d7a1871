import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Orvel
import Orvel.Core

// The lesson (a gadget) and the sheet's texts (a map) are read here field by field; qmllint in
// Qt 6.4 cannot see into either, nor into the delegates' view.
// qmllint disable type unqualified

// A short lesson, offered: the idea, its phrases with a fate each (leave it, a line of a note, a
// card), the pattern, the common mistake and its correction, and a line to remember. Nothing is
// kept until the keep button; a failure keeps the choices.
OSheet {
    id: dialog

    property ByteSheet sheet: null

    title: sheet ? sheet.byte.title : ""
    visible: sheet !== null
    width: Math.min(620 * Theme.scale, (parent ? parent.width : 700) - 2 * Theme.xl)
    height: Math.min(implicitHeight, (parent ? parent.height : 800) - 2 * Theme.xl)
    onClosed: if (sheet) sheet.dismiss()

    readonly property var fates: [
        { text: sheet ? sheet.texts.bin : "", value: ByteSheet.Bin },
        { text: sheet ? sheet.texts.note : "", value: ByteSheet.Note },
        { text: sheet ? sheet.texts.card : "", value: ByteSheet.Card }
    ]

    ScrollView {
        id: scroll
        Layout.fillWidth: true
        Layout.fillHeight: true
        Layout.preferredHeight: body.implicitHeight
        contentWidth: availableWidth
        clip: true

        ColumnLayout {
            id: body
            width: scroll.availableWidth
            spacing: Theme.m

            OSectionHeading { text: dialog.sheet ? dialog.sheet.texts.byte : "" }
            OLabel {
                Layout.fillWidth: true
                visible: text !== ""
                wrapMode: Text.Wrap
                text: dialog.sheet ? dialog.sheet.byte.gist : ""
                font.weight: Font.DemiBold
            }
            OLabel {
                Layout.fillWidth: true
                visible: text !== ""
                wrapMode: Text.Wrap
                text: dialog.sheet ? dialog.sheet.byte.explain : ""
                color: Theme.secondaryText
            }

            Repeater {
                model: dialog.sheet ? dialog.sheet.phrases : []

                delegate: Rectangle {
                    id: phraseRow

                    required property var modelData
                    required property int index

                    Layout.fillWidth: true
                    implicitHeight: phraseColumn.implicitHeight + 2 * Theme.m
                    radius: Theme.controlRadius
                    color: modelData.fate === ByteSheet.Bin ? "transparent" : Theme.accentWash
                    border.color: Theme.line

                    ColumnLayout {
                        id: phraseColumn
                        anchors.fill: parent
                        anchors.margins: Theme.m
                        spacing: Theme.xs

                        RowLayout {
                            Layout.fillWidth: true
                            spacing: Theme.s
                            OLabel {
                                Layout.fillWidth: true
                                wrapMode: Text.Wrap
                                text: phraseRow.modelData.phrase
                                font.family: Theme.displayFamily
                                font.pixelSize: Math.round(18 * Theme.scale)
                            }
                            OButton {
                                text: dialog.sheet ? dialog.sheet.texts.hearIt : ""
                                onClicked: Speech.say(phraseRow.modelData.phrase, dialog.sheet.language)
                            }
                        }
                        OLabel {
                            Layout.fillWidth: true
                            visible: text !== ""
                            wrapMode: Text.Wrap
                            text: phraseRow.modelData.reading
                            color: Theme.secondaryText
                            font.pixelSize: Theme.secondary
                        }
                        OLabel {
                            Layout.fillWidth: true
                            visible: text !== ""
                            wrapMode: Text.Wrap
                            text: phraseRow.modelData.meaning
                        }
                        OLabel {
                            Layout.fillWidth: true
                            visible: text !== ""
                            wrapMode: Text.Wrap
                            text: phraseRow.modelData.when
                            color: Theme.secondaryText
                            font.pixelSize: Theme.secondary
                            font.italic: true
                        }
                        OChoice {
                            Layout.topMargin: Theme.xs
                            label: phraseRow.modelData.phrase
                            options: dialog.fates
                            current: phraseRow.modelData.fate
                            onChosen: value => dialog.sheet.setFate(phraseRow.index, value)
                        }
                    }
                }
            }

            OSectionHeading {
                visible: patternText.text !== ""
                text: dialog.sheet ? dialog.sheet.texts.pattern : ""
            }
            OLabel {
                id: patternText
                Layout.fillWidth: true
                visible: text !== ""
                wrapMode: Text.Wrap
                text: dialog.sheet ? dialog.sheet.byte.pattern : ""
            }
            ColumnLayout {
                Layout.fillWidth: true
                visible: dialog.sheet !== null && dialog.sheet.byte.correction.wrong !== ""
                spacing: Theme.xs
                OLabel {
                    Layout.fillWidth: true
                    wrapMode: Text.Wrap
                    text: dialog.sheet ? "✗ " + dialog.sheet.byte.correction.wrong : ""
                    color: Theme.danger
                    font.strikeout: true
                }
                OLabel {
                    Layout.fillWidth: true
                    wrapMode: Text.Wrap
                    text: dialog.sheet ? "✓ " + dialog.sheet.byte.correction.right : ""
                    color: Theme.good
                }
            }
            RowLayout {
                visible: rememberText.text !== ""
                spacing: Theme.s
                OSectionHeading { text: dialog.sheet ? dialog.sheet.texts.remember : "" }
                OLabel {
                    text: dialog.sheet ? dialog.sheet.texts.whatToRemember : ""
                    color: Theme.secondaryText
                    font.pixelSize: Theme.secondary
                }
            }
            OLabel {
                id: rememberText
                Layout.fillWidth: true
                visible: text !== ""
                wrapMode: Text.Wrap
                text: dialog.sheet ? dialog.sheet.byte.remember : ""
                font.family: Theme.displayFamily
                font.pixelSize: Math.round(17 * Theme.scale)
            }
        }
    }

    ODivider { Layout.fillWidth: true }

    RowLayout {
        Layout.fillWidth: true
        spacing: Theme.m
        OLabel { text: dialog.sheet ? dialog.sheet.texts.into : "" }
        ComboBox {
            id: intoChooser
            Layout.fillWidth: true
            model: dialog.sheet ? dialog.sheet.intoChoices : []
            textRole: "title"
            valueRole: "id"
            font.family: Theme.uiFamily
            font.pixelSize: Theme.body
            Accessible.name: dialog.sheet ? dialog.sheet.texts.into : ""
            currentIndex: dialog.sheet ? indexOfValue(dialog.sheet.into) : -1
            onActivated: dialog.sheet.into = currentValue
        }
    }
    CheckBox {
        visible: dialog.sheet !== null && dialog.sheet.offersContext
        text: dialog.sheet ? dialog.sheet.contextLabel : ""
        checked: dialog.sheet !== null && dialog.sheet.context
        font.family: Theme.uiFamily
        font.pixelSize: Theme.body
        Accessible.name: text
        onToggled: dialog.sheet.context = checked
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
            text: dialog.sheet ? dialog.sheet.keepHint : ""
            color: Theme.secondaryText
            font.pixelSize: Theme.secondary
        }
        OButton {
            text: dialog.sheet ? dialog.sheet.texts.cancel : ""
            onClicked: dialog.close()
        }
        OButton {
            primary: true
            enabled: dialog.sheet !== null && dialog.sheet.kept > 0 && !dialog.sheet.working
            text: dialog.sheet ? dialog.sheet.keepLabel : "Keep"
            onClicked: dialog.sheet.keep()
        }
    }
}
