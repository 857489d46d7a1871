import QtQuick
import Orvel

// One key drawn as a small rounded cap with the key's name.
Rectangle {
    id: cap

    property alias text: label.text

    implicitWidth: Math.max(implicitHeight, label.implicitWidth + 2 * Theme.s - 2)
    implicitHeight: Math.round(22 * Theme.scale)
    radius: 4
    color: Theme.surface
    border.width: 1
    border.color: Theme.line

    OLabel {
        id: label
        anchors.centerIn: parent
        font.pixelSize: Theme.keyCap
        color: Theme.text
    }
}
