import QtQuick
import QtQuick.Layouts
import Orvel
import Orvel.Core

// The rename sheet: one name field and "Save".
OSheet {
    id: dialog

    property HomeView home: null
    property int deckId: 0

    title: "Rename deck"

    onAboutToShow: {
        logic.deckId = dialog.deckId
        nameField.text = logic.name
        nameField.selectAll()
        nameField.forceActiveFocus()
    }

    RenameDeckSheet {
        id: logic
        home: dialog.home
        onSaved: dialog.close()
    }

    OField {
        id: nameField
        Layout.fillWidth: true
        label: "Name"
        onTextEdited: logic.name = text
        onAccepted: if (logic.canSave) logic.requestSave()
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
            text: "Save"
            enabled: logic.canSave
            onClicked: logic.requestSave()
        }
    }
}
