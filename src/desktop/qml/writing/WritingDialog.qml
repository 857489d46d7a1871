import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Orvel
import Orvel.Core

// The writing view as a sheet over the window. Closing it leaves the card being written; a
// finished (or failed) writing is forgotten when it is closed.
Popup {
    id: dialog

    property Composer composer: null
    property bool reduceMotion: false

    parent: Overlay.overlay
    anchors.centerIn: parent
    width: Math.min(520 * Theme.scale, (parent ? parent.width : 600) - 2 * Theme.xl)
    modal: true
    focus: true
    padding: Theme.xxl
    closePolicy: Popup.CloseOnEscape | Popup.CloseOnPressOutside
    visible: composer !== null && composer.showsWriting

    onClosed: if (composer) composer.dismissWriting()

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
            visible: !(dialog.composer && dialog.composer.progress.flattened)
        }
        Rectangle {
            anchors.fill: parent
            radius: Theme.cardRadius
            color: Theme.surface
            border.color: Theme.line
        }
    }

    ColumnLayout {
        anchors.fill: parent
        spacing: Theme.l
        // A Popup is not an Item, so the dialog's role and name sit on its content.
        Accessible.role: Accessible.Dialog
        Accessible.name: dialog.composer && dialog.composer.progress ? dialog.composer.progress.heading + " " + dialog.composer.progress.input : ""

        WritingProgress {
            Layout.fillWidth: true
            sheet: dialog.composer ? dialog.composer.progress : null
            reduceMotion: dialog.reduceMotion
        }
        RowLayout {
            Layout.fillWidth: true
            Layout.topMargin: Theme.xl
            spacing: Theme.m

            OLabel {
                Layout.fillWidth: true
                wrapMode: Text.Wrap
                text: dialog.composer ? dialog.composer.progress.footer : ""
                color: Theme.secondaryText
                font.pixelSize: Theme.secondary
            }
            OButton {
                text: "Close"
                onClicked: dialog.close()
            }
        }
    }
}
