import QtQuick
import QtQuick.Controls
import Orvel

// A link-like button in the accent colour ("Forgot password?", "Make an account").
AbstractButton {
    id: link

    property int pixelSize: Theme.body

    focusPolicy: Qt.StrongFocus
    implicitWidth: implicitContentWidth + 2 * Theme.xs
    implicitHeight: Math.max(implicitContentHeight + Theme.xs, Math.round(24 * Theme.scale))
    padding: 0

    Accessible.role: Accessible.Button
    Accessible.name: text
    Accessible.onPressAction: link.clicked()
    Keys.onReturnPressed: link.clicked()
    Keys.onEnterPressed: link.clicked()

    contentItem: Text {
        text: link.text
        color: link.enabled ? Theme.accent : Theme.secondaryText
        font.family: Theme.uiFamily
        font.pixelSize: link.pixelSize
        font.underline: link.hovered || link.visualFocus
        horizontalAlignment: Text.AlignHCenter
        verticalAlignment: Text.AlignVCenter
    }

    background: Rectangle {
        radius: Theme.controlRadius
        color: "transparent"
        border.width: link.visualFocus ? 2 : 0
        border.color: Theme.accent
    }
}
