import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Orvel
import Orvel.Core

// The writing view as a sheet over the window. Closing it leaves the card being written; a
// finished (or failed) writing is forgotten when it is closed.
OSheet {
    id: dialog

    property Composer composer: null
    property bool reduceMotion: false

    // The progress shows the word as its heading, so the sheet has no title of its own.
    accessibleName: composer && composer.progress ? composer.progress.heading + " " + composer.progress.input : ""
    shadow: !(composer && composer.progress.flattened)
    width: Math.min(520 * Theme.scale, (parent ? parent.width : 600) - 2 * Theme.xl)
    padding: Theme.xxl
    spacing: Theme.l
    closePolicy: Popup.CloseOnEscape | Popup.CloseOnPressOutside
    visible: composer !== null && composer.showsWriting

    onClosed: if (composer) composer.dismissWriting()

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
