import QtQuick
import QtQuick.Layouts
import Orvel

// Asks before a folder or deck is deleted: the question as the title, what goes with it below.
OSheet {
    id: dialog

    property string detail: ""
    property string confirmText: "Delete"

    signal confirmed()

    OLabel {
        Layout.fillWidth: true
        wrapMode: Text.Wrap
        text: dialog.detail
        color: Theme.secondaryText
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
            destructive: true
            text: dialog.confirmText
            onClicked: {
                dialog.close()
                dialog.confirmed()
            }
        }
    }
}
