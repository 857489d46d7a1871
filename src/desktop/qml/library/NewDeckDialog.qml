import QtQuick
import QtQuick.Layouts
import Orvel
import Orvel.Core

// The new-deck sheet: name, description, the language being learned and the one already spoken.
OSheet {
    id: dialog

    property HomeView home: null

    title: "New deck"

    onAboutToShow: {
        logic.prepare()
        nameField.text = ""
        descriptionField.text = ""
        nameField.forceActiveFocus()
    }

    NewDeckSheet {
        id: logic
        home: dialog.home
        onStarted: dialog.close()
    }

    OLabel { text: "Name" }
    OField {
        id: nameField
        Layout.fillWidth: true
        label: "Name"
        placeholderText: "Portuguese, Tuesday class…"
        onTextEdited: logic.name = text
        onAccepted: if (logic.canStart) logic.requestStart()
    }
    OLabel { text: "Description" }
    OField {
        id: descriptionField
        Layout.fillWidth: true
        label: "Description"
        placeholderText: "Optional"
        onTextEdited: logic.description = text
    }
    GridLayout {
        Layout.fillWidth: true
        columns: 2
        columnSpacing: Theme.l
        rowSpacing: Theme.xs

        OLabel { text: "Language" }
        OLabel { text: "You already speak" }
        LanguagePicker {
            Layout.fillWidth: true
            label: "Language"
            choices: logic.languageChoices
            code: logic.language
            onPicked: (code) => logic.language = code
        }
        LanguagePicker {
            Layout.fillWidth: true
            label: "You already speak"
            choices: logic.languageChoices
            code: logic.nativeLanguage
            onPicked: (code) => logic.nativeLanguage = code
        }
    }
    OLabel {
        Layout.fillWidth: true
        visible: logic.trouble !== ""
        wrapMode: Text.Wrap
        text: logic.trouble
        color: Theme.danger
    }
    RowLayout {
        Layout.fillWidth: true
        Layout.topMargin: Theme.s
        spacing: Theme.s
        Item { Layout.fillWidth: true }
        OButton {
            text: "Cancel"
            onClicked: dialog.close()
        }
        OButton {
            primary: true
            text: logic.startText
            enabled: logic.canStart
            onClicked: logic.requestStart()
        }
    }
}
