import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Orvel
import Orvel.Core

// The sound pane: the account's settings kept on the server, read each time the pane is shown.
// Until they arrive no control is shown.
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
            text: "Sound"
        }
        BusyIndicator {
            Layout.leftMargin: Theme.xl
            running: !sound.loaded && sound.saving
            visible: running
        }
        Switch {
            id: marginSwitch
            Layout.leftMargin: Theme.xl
            visible: sound.loaded
            text: "Write the margin as I go"
            checked: sound.marginAsYouGo
            enabled: !sound.saving
            font.family: Theme.uiFamily
            font.pixelSize: Theme.body
            focusPolicy: Qt.StrongFocus
            Accessible.role: Accessible.CheckBox
            Accessible.name: text
            Accessible.checked: checked
            // The pane holds the value: a click hands it over and takes the binding back, so
            // the switch shows what the pane says (the server's, or the change on its way).
            Accessible.onPressAction: sound.marginAsYouGo = !sound.marginAsYouGo
            Accessible.onToggleAction: sound.marginAsYouGo = !sound.marginAsYouGo
            onToggled: {
                sound.marginAsYouGo = checked
                checked = Qt.binding(() => sound.marginAsYouGo)
            }
        }
        OLabel {
            Layout.fillWidth: true
            Layout.leftMargin: Theme.xl
            Layout.rightMargin: Theme.xl
            visible: sound.loaded
            wrapMode: Text.Wrap
            text: "Read a line and write about it once it has been sitting still, instead of waiting to be asked. One line at a time, and each one costs a request."
            color: Theme.secondaryText
            font.pixelSize: Theme.secondary
        }
        OLabel {
            Layout.fillWidth: true
            Layout.leftMargin: Theme.xl
            Layout.rightMargin: Theme.xl
            visible: sound.trouble !== ""
            wrapMode: Text.Wrap
            text: sound.trouble
            color: Theme.danger
            font.pixelSize: Theme.secondary
        }
    }

    // A refused change puts the switch back where the server has it.
    Connections {
        target: sound
        function onPreferencesChanged() {
            marginSwitch.checked = Qt.binding(() => sound.marginAsYouGo)
        }
    }
}
