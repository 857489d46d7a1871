import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Orvel

// A sheet over the window: a surface card over a 30 % scrim, its title in the display face.
// Escape cancels. Put the content in the sheet's column; the buttons go last, right-aligned.
// A sheet without a title shows none; its column is spaced by the popup's spacing.
Popup {
    id: sheet

    property string title: ""
    // What a screen reader calls the sheet: its title unless the sheet says otherwise.
    property string accessibleName: title
    // The soft shadow under the card; a sheet drawn flat leaves it out.
    property bool shadow: true
    default property alias content: column.data

    parent: Overlay.overlay
    anchors.centerIn: parent
    width: Math.min(560 * Theme.scale, (parent ? parent.width : 600) - 2 * Theme.xl)
    modal: true
    focus: true
    padding: Theme.xl
    spacing: Theme.m
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
            visible: sheet.shadow
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
        spacing: sheet.spacing
        // A Popup is not an Item, so the dialog's role and name sit on its content.
        Accessible.role: Accessible.Dialog
        Accessible.name: sheet.accessibleName

        OTitle {
            Layout.fillWidth: true
            visible: sheet.title !== ""
            wrapMode: Text.Wrap
            text: sheet.title
        }
    }
}
