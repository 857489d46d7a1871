import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Orvel
import Orvel.Core

// "Deleted <term>" with "Undo" while a card's deletion can still be taken back (Ctrl+Z).
Rectangle {
    id: bar

    property CardBin bin: null

    visible: bin !== null && bin.pending
    implicitHeight: visible ? row.implicitHeight + 2 * Theme.s : 0
    radius: Theme.controlRadius
    color: Theme.text
    Accessible.role: Accessible.AlertMessage
    Accessible.name: bin ? bin.text : ""

    RowLayout {
        id: row
        anchors.fill: parent
        anchors.leftMargin: Theme.m
        anchors.rightMargin: Theme.s
        spacing: Theme.s

        OLabel {
            Layout.fillWidth: true
            elide: Text.ElideRight
            text: bar.bin ? bar.bin.text : ""
            color: Theme.window
        }
        OButton {
            text: "Undo"
            implicitHeight: Math.round(26 * Theme.scale)
            ToolTip.visible: hovered
            ToolTip.text: undoKey.nativeText
            onClicked: bar.bin.unbin()
        }
    }

    Shortcut {
        id: undoKey
        sequence: "Ctrl+Z"
        enabled: bar.visible
        onActivated: bar.bin.unbin()
    }
}
