import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Orvel

// A row of mutually exclusive choices drawn as one segmented control ("System", "Light", "Dark").
// Each segment is a radio button for screen readers and the keyboard.
RowLayout {
    id: choice

    // [{ text, value }]
    property var options: []
    property var current
    property string label: ""

    signal chosen(var value)

    spacing: 0
    Accessible.role: Accessible.Grouping
    Accessible.name: label

    Repeater {
        // The options themselves, not a list remade whenever `current` changes: remaking it would
        // destroy the segments while the enclosing layout still measures them.
        model: choice.options
        onItemAdded: (index, item) => item.picked.connect(value => choice.chosen(value))

        // Radio buttons drawn as segments, so that screen readers hear radio buttons.
        delegate: RadioButton {
            id: segment

            required property var modelData

            signal picked(var value)

            text: modelData.text
            checked: modelData.value === choice.current
            // The checked state follows `current` alone; a click asks for the choice instead of
            // checking the segment itself, so the binding is never broken.
            checkable: false
            autoExclusive: false
            indicator: null
            focusPolicy: Qt.StrongFocus
            implicitHeight: Theme.controlHeight
            leftPadding: Theme.l
            rightPadding: Theme.l
            font.family: Theme.uiFamily
            font.pixelSize: Theme.body

            Accessible.name: text
            onClicked: picked(modelData.value)
            Accessible.checkable: true
            Accessible.checked: checked
            Accessible.onPressAction: picked(modelData.value)
            Accessible.onToggleAction: picked(modelData.value)
            Keys.onReturnPressed: picked(modelData.value)
            Keys.onSpacePressed: picked(modelData.value)

            contentItem: Text {
                text: segment.text
                font: segment.font
                color: segment.checked ? Theme.accentText : Theme.text
                horizontalAlignment: Text.AlignHCenter
                verticalAlignment: Text.AlignVCenter
            }
            background: Rectangle {
                color: segment.checked ? Theme.accent
                                       : segment.hovered ? Theme.sidebar : Theme.surface
                border.width: segment.visualFocus ? 2 : 1
                border.color: segment.visualFocus || segment.checked ? Theme.accent : Theme.line
                radius: Theme.controlRadius
            }
        }
    }
}
