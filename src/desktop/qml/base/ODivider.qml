import QtQuick
import QtQuick.Layouts
import Orvel

// A thin rule, with an optional text in its middle ("or with email").
RowLayout {
    property string text: ""

    spacing: Theme.m

    Rectangle {
        Layout.fillWidth: true
        implicitHeight: 1
        color: Theme.line
    }
    OLabel {
        visible: text !== ""
        text: parent.text
        color: Theme.secondaryText
        font.pixelSize: Theme.secondary
    }
    Rectangle {
        Layout.fillWidth: true
        implicitHeight: 1
        color: Theme.line
        visible: parent.text !== ""
    }
}
