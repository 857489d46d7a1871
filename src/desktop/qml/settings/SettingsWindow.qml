import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import QtQuick.Window
import Orvel

// The settings window: one pane per subject, chosen in the list on the left.
ApplicationWindow {
    id: window

    title: "Orvel Settings"
    width: 680 * Theme.scale
    height: 520 * Theme.scale
    minimumWidth: 560 * Theme.scale
    minimumHeight: 420 * Theme.scale
    color: Theme.window

    property int pane: 0

    Shortcut {
        sequences: [StandardKey.Close] // qmllint disable unqualified
        onActivated: window.close()
    }
    Shortcut {
        sequence: "Escape"
        onActivated: window.close()
    }

    RowLayout {
        anchors.fill: parent
        spacing: 0

        Rectangle {
            Layout.fillHeight: true
            Layout.preferredWidth: 180 * Theme.scale
            color: Theme.sidebar

            ColumnLayout {
                anchors.fill: parent
                anchors.margins: Theme.m
                spacing: Theme.xs

                Repeater {
                    model: ["Look", "Sound", "Reminder", "Account"].map((name, index) => ({ name: name, index: index, // qmllint disable type
                                                                       current: index === window.pane }))
                    onItemAdded: (index, item) => item.picked.connect(() => window.pane = index)

                    delegate: ItemDelegate {
                        id: entry

                        required property var modelData

                        signal picked()

                        Layout.fillWidth: true
                        implicitHeight: Theme.rowHeight
                        text: modelData.name
                        highlighted: modelData.current
                        font.family: Theme.uiFamily
                        font.pixelSize: Theme.body
                        focusPolicy: Qt.StrongFocus
                        Accessible.role: Accessible.PageTab
                        Accessible.name: text
                        Accessible.onPressAction: picked()
                        onClicked: picked()
                        Keys.onReturnPressed: picked()

                        contentItem: Text {
                            text: entry.text
                            font: entry.font
                            color: entry.highlighted ? Theme.accent : Theme.text
                            verticalAlignment: Text.AlignVCenter
                        }
                        background: Rectangle {
                            radius: Theme.controlRadius
                            color: entry.highlighted ? Theme.accentWash : "transparent"
                            border.width: entry.visualFocus ? 2 : 0
                            border.color: Theme.accent
                        }
                    }
                }
                Item {
                    Layout.fillHeight: true
                }
            }
        }
        Rectangle {
            Layout.fillHeight: true
            implicitWidth: 1
            color: Theme.line
        }

        StackLayout {
            Layout.fillWidth: true
            Layout.fillHeight: true
            currentIndex: window.pane

            LookPage {}
            SoundPage {}
            ReminderPage {}
            AccountPage {}
        }
    }
}
