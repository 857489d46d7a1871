import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Orvel
import Orvel.Core

// The pane's texts and languages (maps) are read here by key; qmllint in Qt 6.4 cannot see into
// them, nor into the delegates' view.
// qmllint disable type unqualified

// The sound pane: the account's settings kept on the server, read each time the pane is shown.
// Until they arrive no control is shown; the voices follow once the server has listed them.
ScrollView {
    id: page

    contentWidth: availableWidth

    onVisibleChanged: if (visible) sound.reload()
    Component.onCompleted: if (visible) sound.reload()

    SoundPane {
        id: sound
    }

    ColumnLayout {
        width: page.availableWidth
        spacing: Theme.m

        OTitle {
            Layout.topMargin: Theme.xl
            Layout.leftMargin: Theme.xl
            text: sound.texts.title
        }
        BusyIndicator {
            Layout.leftMargin: Theme.xl
            running: !sound.loaded && sound.saving
            visible: running
        }

        OSwitch {
            Layout.leftMargin: Theme.xl
            visible: sound.loaded
            text: sound.texts.hearOnFlip
            value: sound.hearOnFlip
            onChangeRequested: on => sound.hearOnFlip = on
        }

        RowLayout {
            Layout.leftMargin: Theme.xl
            visible: sound.loaded
            spacing: Theme.m
            OLabel {
                text: sound.texts.speed
            }
            OChoice {
                label: sound.texts.speed
                options: [{ text: sound.texts.normal, value: false },
                          { text: sound.texts.slow, value: true }]
                current: sound.slow
                onChosen: value => sound.slow = value
            }
        }

        // The voices.
        OLabel {
            Layout.fillWidth: true
            Layout.leftMargin: Theme.xl
            Layout.rightMargin: Theme.xl
            visible: sound.offerLoaded && !sound.speaks
            wrapMode: Text.Wrap
            text: sound.texts.noSpeech
            color: Theme.secondaryText
        }
        Repeater {
            model: sound.speaks ? sound.languages : []

            delegate: ColumnLayout {
                id: language

                required property var modelData

                Layout.fillWidth: true
                Layout.leftMargin: Theme.xl
                Layout.rightMargin: Theme.xl
                Layout.topMargin: Theme.s
                spacing: Theme.xs
                Accessible.role: Accessible.Grouping
                Accessible.name: modelData.heading

                OSectionHeading {
                    text: language.modelData.heading
                }
                OLabel {
                    Layout.fillWidth: true
                    visible: text !== ""
                    wrapMode: Text.Wrap
                    text: language.modelData.error
                    color: Theme.danger
                    font.pixelSize: Theme.secondary
                }
                Repeater {
                    model: language.modelData.voices

                    delegate: SoundVoiceRow {
                        required property var modelData

                        Layout.fillWidth: true
                        voice: modelData
                        previewing: sound.previewing === modelData.id
                        chooseText: modelData.name
                        hearText: sound.texts.hearThisVoice
                        stopText: sound.texts.stop
                        onPicked: sound.chooseVoice(language.modelData.code, modelData.id)
                        onPreviewed: sound.preview(language.modelData.code, modelData.id)
                    }
                }
            }
        }

        OSwitch {
            Layout.leftMargin: Theme.xl
            Layout.topMargin: Theme.m
            visible: sound.loaded
            text: sound.texts.marginAsYouGo
            value: sound.marginAsYouGo
            onChangeRequested: on => sound.marginAsYouGo = on
        }
        OLabel {
            Layout.fillWidth: true
            Layout.leftMargin: Theme.xl
            Layout.rightMargin: Theme.xl
            visible: sound.loaded
            wrapMode: Text.Wrap
            text: sound.texts.marginAsYouGoNote
            color: Theme.secondaryText
            font.pixelSize: Theme.secondary
        }
        OLabel {
            Layout.fillWidth: true
            Layout.leftMargin: Theme.xl
            Layout.rightMargin: Theme.xl
            Layout.bottomMargin: Theme.xl
            visible: sound.trouble !== ""
            wrapMode: Text.Wrap
            text: sound.trouble
            color: Theme.danger
            font.pixelSize: Theme.secondary
        }
    }
}
