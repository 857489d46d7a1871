import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Orvel
import Orvel.Core

// The tiles reach the sheet and its strip by id, which Qt 6.4's qmllint cannot follow into a
// Repeater's delegate.
// qmllint disable unqualified

// The picture picker of a line: what to search for, the results as one row of tiles that the
// arrows walk (held at either end), Return to place the highlighted one, Escape to stop.
OSheet {
    id: sheet

    property NotePictures pictures: null
    readonly property ImagePicker picker: pictures ? pictures.picker : null

    accessibleName: picker ? picker.footer : ""
    visible: picker !== null
    width: Math.min(620 * Theme.scale, (parent ? parent.width : 700) - 2 * Theme.xl)
    closePolicy: Popup.CloseOnEscape | Popup.CloseOnPressOutside
    onOpened: query.forceActiveFocus()
    onClosed: if (pictures) pictures.closePicker()

    OField {
        id: query
        Layout.fillWidth: true
        text: sheet.picker ? sheet.picker.query : ""
        label: sheet.picker ? sheet.picker.footer : ""
        onTextEdited: sheet.picker.query = text
        Keys.onPressed: event => {
            if (!sheet.picker)
                return
            const atEnd = cursorPosition === length
            const atStart = cursorPosition === 0
            if (event.key === Qt.Key_Down || (event.key === Qt.Key_Right && atEnd)) {
                sheet.picker.move(1)
            } else if (event.key === Qt.Key_Up || (event.key === Qt.Key_Left && atStart)) {
                sheet.picker.move(-1)
            } else if (event.key === Qt.Key_Return || event.key === Qt.Key_Enter) {
                sheet.picker.choose()
            } else {
                return
            }
            event.accepted = true
        }
    }
    OLabel {
        Layout.fillWidth: true
        visible: text !== ""
        wrapMode: Text.Wrap
        text: sheet.picker ? sheet.picker.notice : ""
        color: Theme.secondaryText
    }
    Flickable {
        id: strip
        Layout.fillWidth: true
        Layout.preferredHeight: Math.round(150 * Theme.scale)
        visible: sheet.picker !== null && sheet.picker.results.length > 0
        contentWidth: tiles.implicitWidth
        clip: true
        flickableDirection: Flickable.HorizontalFlick
        ScrollBar.horizontal: ScrollBar {}

        Row {
            id: tiles
            spacing: Theme.s
            height: strip.height
            Accessible.role: Accessible.List
            Accessible.name: query.text

            Repeater {
                model: sheet.picker ? sheet.picker.results : []
                delegate: Rectangle {
                    id: tile

                    required property var modelData
                    required property int index
                    readonly property bool current: sheet.picker !== null && index === sheet.picker.at

                    width: Math.round(140 * Theme.scale)
                    height: tiles.height - Theme.s
                    radius: Theme.controlRadius
                    color: Theme.sidebar
                    border.width: current ? 3 : 1
                    border.color: current ? Theme.accent : Theme.line
                    Accessible.role: Accessible.ListItem
                    Accessible.name: modelData.title || modelData.credit // qmllint disable type
                    Accessible.selected: current
                    Accessible.onPressAction: sheet.picker.choose(index)
                    onCurrentChanged: if (current) strip.contentX = Math.max(0, Math.min(
                                          x + width / 2 - strip.width / 2, strip.contentWidth - strip.width))

                    PictureFile {
                        id: thumb
                        url: tile.modelData.thumb // qmllint disable type
                    }
                    Image {
                        anchors.fill: parent
                        anchors.margins: 4
                        source: thumb.source
                        sourceSize.width: width
                        fillMode: Image.PreserveAspectFit
                        asynchronous: true
                    }
                    MouseArea {
                        anchors.fill: parent
                        onClicked: sheet.picker.choose(tile.index)
                    }
                }
            }
        }
    }
    OLabel {
        Layout.fillWidth: true
        visible: text !== ""
        elide: Text.ElideRight
        text: sheet.picker && sheet.picker.results.length > 0
              ? sheet.picker.results[sheet.picker.at].credit : "" // qmllint disable type
        color: Theme.secondaryText
        font.pixelSize: Theme.sectionHeading
    }
    OLabel {
        Layout.fillWidth: true
        visible: text !== ""
        wrapMode: Text.Wrap
        text: sheet.picker && sheet.picker.trouble !== "" ? sheet.picker.trouble
              : sheet.pictures ? sheet.pictures.trouble : ""
        color: Theme.danger
        font.pixelSize: Theme.secondary
    }
    RowLayout {
        Layout.fillWidth: true
        spacing: Theme.s
        BusyIndicator {
            running: sheet.picker !== null && (sheet.picker.looking || sheet.pictures.placing)
            visible: running
            implicitWidth: Math.round(18 * Theme.scale)
            implicitHeight: implicitWidth
        }
        OLabel {
            Layout.fillWidth: true
            text: sheet.picker ? sheet.picker.footer : ""
            color: Theme.secondaryText
            font.pixelSize: Theme.sectionHeading
        }
    }
}
