import QtQuick
import QtQuick.Controls
import Orvel

// An answer under the turned card: its key cap and its words ("1  Didn’t know it").
AbstractButton {
    id: button

    property string key
    property bool primary: false

    focusPolicy: Qt.NoFocus
    implicitWidth: Math.round(220 * Theme.scale)
    implicitHeight: Math.round(52 * Theme.scale)

    Accessible.role: Accessible.Button
    Accessible.name: text
    Accessible.onPressAction: button.clicked()

    contentItem: Row {
        spacing: Theme.m
        leftPadding: (button.width - implicitWidth) / 2

        StudyKeyCap {
            anchors.verticalCenter: parent.verticalCenter
            text: button.key
        }
        OLabel {
            anchors.verticalCenter: parent.verticalCenter
            text: button.text
            font.pixelSize: Math.round(16 * Theme.scale)
        }
    }

    background: Rectangle {
        radius: Theme.cardRadius
        color: button.primary ? Theme.accentWash
                              : (button.down || button.hovered ? Theme.surface : Theme.window)
        border.width: 1
        border.color: button.primary ? Theme.accent : Theme.line
    }
}
