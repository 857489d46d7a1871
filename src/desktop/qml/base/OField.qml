import QtQuick
import QtQuick.Controls
import Orvel

// A one-line text field. Its name for screen readers is `label`, or the placeholder.
TextField {
    id: field

    property string label: placeholderText

    implicitHeight: Math.round(36 * Theme.scale)
    leftPadding: Theme.m
    rightPadding: Theme.m
    color: Theme.text
    placeholderTextColor: Theme.secondaryText
    selectionColor: Theme.accentWash
    selectedTextColor: Theme.text
    font.family: Theme.uiFamily
    font.pixelSize: Theme.body
    selectByMouse: true

    Accessible.role: Accessible.EditableText
    Accessible.name: label
    // Qt withholds the name of a password field from AT-SPI; screen readers fall back to the
    // description, so the label goes there as well.
    Accessible.description: echoMode === TextInput.Normal ? "" : label


    background: Rectangle {
        radius: Theme.controlRadius
        color: Theme.surface
        border.width: field.activeFocus ? 2 : 1
        border.color: field.activeFocus ? Theme.accent : Theme.line
    }
}
