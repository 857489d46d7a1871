import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Orvel
import Orvel.Core

// The reminder pane: a daily notification at a chosen hour, kept on this computer. What the
// computer can do is asked each time the pane is shown; until it answers no control is shown.
// (The pane's texts are a map read by key, which qmllint in Qt 6.4 cannot see into.)
ScrollView {
    id: page

    contentWidth: availableWidth

    onVisibleChanged: if (visible) reminder.reload()
    Component.onCompleted: if (visible) reminder.reload()

    ReminderPane {
        id: reminder
    }

    ColumnLayout {
        width: page.availableWidth
        spacing: Theme.m

        OTitle {
            Layout.topMargin: Theme.xl
            Layout.leftMargin: Theme.xl
            text: reminder.texts.title // qmllint disable type
        }
        OSwitch {
            Layout.leftMargin: Theme.xl
            visible: reminder.ready
            text: reminder.texts.remindDaily // qmllint disable type
            // Without a timer to keep it the reminder cannot be on, whatever was chosen before.
            value: reminder.on && reminder.available
            enabled: reminder.available
            // Qt 6.4 does not tell screen readers that a control is disabled: they hear why.
            Accessible.description: reminder.available ? "" : reminder.note
            onChangeRequested: on => reminder.on = on
        }
        RowLayout {
            Layout.leftMargin: Theme.xl
            visible: reminder.ready
            spacing: Theme.m

            OLabel {
                text: reminder.texts.at // qmllint disable type
                Accessible.ignored: true
            }
            ComboBox {
                id: hourPicker
                model: reminder.hours
                // A stored hour outside the day shows no entry rather than a wrong one.
                currentIndex: reminder.hour >= 0 && reminder.hour < 24 ? reminder.hour : -1
                enabled: reminder.available
                implicitHeight: Theme.controlHeight
                font.family: Theme.uiFamily
                font.pixelSize: Theme.body
                focusPolicy: Qt.StrongFocus
                Accessible.name: reminder.texts.hour // qmllint disable type
                Accessible.description: reminder.available ? "" : reminder.note
                onActivated: index => reminder.hour = index
            }
        }
        OLabel {
            Layout.fillWidth: true
            Layout.leftMargin: Theme.xl
            Layout.rightMargin: Theme.xl
            visible: reminder.ready
            wrapMode: Text.Wrap
            text: reminder.note
            color: reminder.available && !reminder.refused ? Theme.secondaryText : Theme.danger
            font.pixelSize: Theme.secondary
        }
    }

    // A choice in the picker sets its index itself; the pane's hour is what it shows after.
    Connections {
        target: reminder
        function onStateChanged() {
            hourPicker.currentIndex = Qt.binding(
                        () => reminder.hour >= 0 && reminder.hour < 24 ? reminder.hour : -1)
        }
    }
}
