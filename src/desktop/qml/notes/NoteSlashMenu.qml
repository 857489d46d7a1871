import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Orvel
import Orvel.Core

// The rows reach the menu by id, which Qt 6.4's qmllint cannot follow into a Repeater's delegate.
// qmllint disable unqualified type

// The menu of slash commands under a command line: each command's "/name" and what it does, the
// highlighted one marked; "No command by that name." when nothing fits. The line keeps the keys
// (Up, Down, Return, Escape); a click picks a command.
Popup {
    id: menu

    property NoteCommands commands: null

    padding: Theme.s
    closePolicy: Popup.NoAutoClose
    focus: false
    width: Math.round(320 * Theme.scale)

    background: Rectangle {
        radius: Theme.controlRadius
        color: Theme.surface
        border.color: Theme.line
    }

    ColumnLayout {
        anchors.fill: parent
        spacing: 2
        Accessible.role: Accessible.List
        Accessible.name: menu.commands ? menu.commands.footer : ""

        Repeater {
            model: menu.commands ? menu.commands.offered : []
            delegate: Rectangle {
                id: entry

                required property var modelData
                required property int index
                readonly property bool current: menu.commands !== null && index === menu.commands.at

                Layout.fillWidth: true
                implicitHeight: Math.round(28 * Theme.scale)
                radius: Theme.controlRadius
                color: current ? Theme.accentWash : "transparent"
                Accessible.role: Accessible.ListItem
                Accessible.name: modelData.name + ", " + modelData.hint
                Accessible.selected: current
                Accessible.onPressAction: menu.commands.pick(index)

                RowLayout {
                    anchors.fill: parent
                    anchors.leftMargin: Theme.s
                    anchors.rightMargin: Theme.s
                    spacing: Theme.m
                    OLabel {
                        text: entry.modelData.name
                        font.family: "monospace"
                        color: entry.current ? Theme.accent : Theme.text
                        Accessible.ignored: true
                    }
                    OLabel {
                        Layout.fillWidth: true
                        elide: Text.ElideRight
                        text: entry.modelData.hint
                        color: Theme.secondaryText
                        Accessible.ignored: true
                    }
                }
                MouseArea {
                    anchors.fill: parent
                    onClicked: menu.commands.pick(entry.index)
                }
            }
        }
        OLabel {
            Layout.fillWidth: true
            Layout.margins: Theme.xs
            visible: menu.commands !== null && menu.commands.unknown
            text: menu.commands ? menu.commands.noSuchCommand : ""
            color: Theme.secondaryText
        }
        OLabel {
            Layout.fillWidth: true
            Layout.topMargin: Theme.xs
            Layout.leftMargin: Theme.xs
            text: menu.commands ? menu.commands.footer : ""
            color: Theme.secondaryText
            font.pixelSize: Theme.sectionHeading
        }
    }
}
