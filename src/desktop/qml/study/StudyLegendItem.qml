import QtQuick
import Orvel

// One entry of the key legend: its key caps, then what they do.
Row {
    id: item

    property var keys: []
    property string label

    spacing: Theme.xs

    Repeater {
        model: item.keys
        StudyKeyCap {
            required property string modelData
            text: modelData
        }
    }
    OLabel {
        anchors.verticalCenter: parent.verticalCenter
        leftPadding: Theme.xs
        text: item.label
        color: Theme.secondaryText
        font.pixelSize: Theme.secondary
    }
}
