import QtQuick
import QtQuick.Controls
import QtQuick.Controls.impl
import Orvel

// The app's push button. Screen readers can press it, Return presses it when it has the focus,
// and `primary` draws it in the skin's accent.
Button {
    id: button

    property bool primary: false
    property bool destructive: false

    implicitHeight: Theme.controlHeight
    leftPadding: Theme.l
    rightPadding: Theme.l
    font.family: Theme.uiFamily
    font.pixelSize: Theme.body
    font.weight: primary ? Font.DemiBold : Font.Normal
    focusPolicy: Qt.StrongFocus
    icon.width: Math.round(16 * Theme.scale)
    icon.height: Math.round(16 * Theme.scale)
    icon.color: contentColour

    readonly property color contentColour: !enabled ? Theme.secondaryText
                                           : primary ? Theme.accentText
                                           : destructive ? Theme.danger : Theme.text

    Accessible.role: Accessible.Button
    Accessible.name: text
    Accessible.onPressAction: button.clicked()
    Keys.onReturnPressed: button.clicked()
    Keys.onEnterPressed: button.clicked()

    contentItem: IconLabel {
        spacing: Theme.s
        display: button.display
        icon: button.icon
        text: button.text
        font: button.font
        color: button.contentColour
    }

    background: Rectangle {
        radius: Theme.controlRadius
        color: button.primary ? (button.down ? Qt.darker(Theme.accent, 1.15) : Theme.accent)
                              : (button.down ? Theme.accentWash
                                             : button.hovered ? Theme.sidebar : Theme.surface)
        opacity: button.enabled ? 1 : 0.6
        border.width: button.visualFocus ? 2 : 1
        border.color: button.visualFocus ? Theme.accent
                                         : button.primary ? Theme.accent : Theme.line
    }
}
