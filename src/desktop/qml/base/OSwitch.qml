import QtQuick
import QtQuick.Controls
import Orvel

// An on/off switch whose owner holds the value: the switch shows `value`, and a click, Space or
// a screen reader's press asks for the other one through `changeRequested`. (A Switch's own
// toggle() — what a screen reader's press calls — never emits `toggled`, so a switch that saved
// on `toggled` alone would change its look and save nothing.)
Switch {
    id: control

    property bool value: false

    signal changeRequested(bool value)

    checked: value
    focusPolicy: Qt.StrongFocus
    font.family: Theme.uiFamily
    font.pixelSize: Theme.body
    // The track of a switch that is on takes the skin's accent.
    palette.dark: Theme.accent

    Accessible.role: Accessible.CheckBox
    Accessible.name: text
    Accessible.checkable: true
    Accessible.checked: value
    Accessible.onPressAction: control.changeRequested(!control.value)
    Accessible.onToggleAction: control.changeRequested(!control.value)
    onToggled: {
        const wanted = checked
        // The binding comes back first, so a refused change shows the owner's value again.
        checked = Qt.binding(() => control.value)
        control.changeRequested(wanted)
    }
}
