import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Orvel

// A sheet over the window: a surface card over a 30 % scrim, its title in the display face.
// Escape cancels. Put the content in the sheet's column; the buttons go last, right-aligned.
Popup {
    id: sheet

    property string title: ""
    default property alias content: column.data

    parent: Overlay.overlay
    anchors.centerIn: parent
    width: Math.min(560 * Theme.scale, (parent ? parent.width : 600) - 2 * Theme.xl)
    modal: true
    focus: true
    padding: Theme.xl
    closePolicy: Popup.CloseOnEscape

    Overlay.modal: Rectangle {
        color: Theme.scrim
    }

    enter: Transition {
        NumberAnimation { property: "opacity"; from: 0; to: 1; duration: Theme.sheetMotion; easing.type: Easing.OutCubic }
    }
    exit: Transition {
        NumberAnimation { property: "opacity"; from: 1; to: 0; duration: Theme.sheetMotion; easing.type: Easing.OutCubic }
    }

    background: Item {
        Rectangle {
            anchors.fill: parent
            anchors.topMargin: 6
            radius: Theme.cardRadius
            color: Qt.rgba(0, 0, 0, 0.12)
        }
        Rectangle {
            anchors.fill: parent
            radius: Theme.cardRadius
            color: Theme.surface
            border.color: Theme.line
        }
    }

    ColumnLayout {
        id: column
        anchors.fill: parent
        spacing: Theme.m
        // A Popup is not an Item, so the dialog's role and name sit on its content.
        Accessible.role: Accessible.Dialog
        Accessible.name: sheet.title

        OTitle {
            Layout.fillWidth: true
            wrapMode: Text.Wrap
            text: sheet.title
        }
    }
}
