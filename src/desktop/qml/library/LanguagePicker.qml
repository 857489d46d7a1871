import QtQuick
import QtQuick.Controls
import Orvel

// A language picker that starts at "Pick one": `choices` are {code, label} with "" first.
ComboBox {
    id: picker

    property var choices: []
    property string code: ""
    property string label: ""

    signal picked(string code)

    model: choices
    textRole: "label"
    valueRole: "code"
    currentIndex: Math.max(0, indexOfValue(code))
    implicitHeight: Theme.controlHeight
    font.family: Theme.uiFamily
    font.pixelSize: Theme.body
    Accessible.name: label
    onActivated: (index) => picker.picked(picker.valueAt(index))
}
