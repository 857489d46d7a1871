import QtQuick
import QtQuick.Layouts
import Orvel
import Orvel.Core

// A line's picture, no wider than the line's column (scaled down, never cropped) and decoded at
// the size it is drawn. A moving picture plays while the window shows and the desktop does not
// ask for less motion. Under it: "Yours" for a picture the learner brought, the credit, and
// "Remove".
ColumnLayout {
    id: shown

    // {url, width, height, credit, title, yours, moving}
    property var picture: ({})
    property NotePictures pictures: null
    // The width of the line's column: a picture is never wider.
    property real columnWidth: 480 * Theme.scale

    signal removeRequested()

    spacing: Theme.xs

    readonly property real natural: picture.width > 0 ? picture.width : 320
    readonly property real shownWidth: Math.min(columnWidth, natural, 480 * Theme.scale)
    readonly property real shownHeight: picture.width > 0 && picture.height > 0
                                        ? shownWidth * picture.height / picture.width
                                        : Math.round(160 * Theme.scale)

    PictureFile {
        id: file
        url: shown.picture.url || ""
    }

    Item {
        Layout.preferredWidth: shown.shownWidth
        Layout.preferredHeight: file.failed ? failure.implicitHeight : shown.shownHeight
        Accessible.role: Accessible.Graphic
        Accessible.name: shown.picture.title || (shown.pictures ? shown.pictures.yoursText : "")

        Image {
            anchors.fill: parent
            visible: !shown.picture.moving && !file.failed
            source: shown.picture.moving ? "" : file.source
            sourceSize.width: Math.ceil(shown.shownWidth * Screen.devicePixelRatio)
            fillMode: Image.PreserveAspectFit
            asynchronous: true
            onStatusChanged: if (status === Image.Error) file.markBroken()
        }
        AnimatedImage {
            anchors.fill: parent
            visible: shown.picture.moving === true && !file.failed
            source: shown.picture.moving ? file.source : ""
            fillMode: Image.PreserveAspectFit
            playing: !MotionPreference.reduced && shown.Window.visibility !== Window.Hidden
                     && shown.Window.visibility !== Window.Minimized
            onStatusChanged: if (status === Image.Error) file.markBroken()
        }
        Rectangle {
            anchors.fill: parent
            visible: file.loading
            color: Theme.sidebar
            radius: Theme.controlRadius
        }
        OLabel {
            id: failure
            visible: file.failed
            width: parent.width
            wrapMode: Text.Wrap
            text: shown.pictures ? shown.pictures.failedText : ""
            color: Theme.secondaryText
            font.pixelSize: Theme.secondary
        }
    }
    RowLayout {
        spacing: Theme.s
        OLabel {
            visible: shown.picture.yours === true
            text: shown.pictures ? shown.pictures.yoursText : ""
            color: Theme.accent
            font.pixelSize: Theme.sectionHeading
            font.weight: Font.DemiBold
        }
        OLabel {
            Layout.maximumWidth: shown.columnWidth * 0.7
            visible: shown.picture.yours !== true && text !== ""
            elide: Text.ElideRight
            text: shown.picture.credit || ""
            color: Theme.secondaryText
            font.pixelSize: Theme.sectionHeading
        }
        OLinkButton {
            text: shown.pictures ? shown.pictures.removeText : ""
            pixelSize: Theme.secondary
            onClicked: shown.removeRequested()
        }
    }
}
