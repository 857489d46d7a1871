import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Orvel

// One voice a language can be spoken by: a radio button that chooses it, its name and manner,
// and a button that plays its sample ("Stop" while the sample sounds).
RowLayout {
    id: row

    // {id, name, manner, chosen}
    property var voice: ({})
    property bool previewing: false
    property string chooseText: ""
    property string hearText: ""
    property string stopText: ""

    signal picked()
    signal previewed()

    spacing: Theme.s

    RadioButton {
        id: choose

        Layout.fillWidth: true
        text: row.chooseText
        // The choice follows the pane alone; a click asks for it instead of checking itself.
        checked: row.voice.chosen === true
        checkable: false
        autoExclusive: false
        focusPolicy: Qt.StrongFocus
        font.family: Theme.uiFamily
        font.pixelSize: Theme.body
        Accessible.name: row.voice.manner ? row.voice.name + ", " + row.voice.manner
                                          : (row.voice.name || "")
        Accessible.checkable: true
        Accessible.checked: checked
        Accessible.onPressAction: row.picked()
        Accessible.onToggleAction: row.picked()
        onClicked: row.picked()
        Keys.onReturnPressed: row.picked()
        Keys.onSpacePressed: row.picked()

        leftPadding: Theme.xs + Math.round(18 * Theme.scale) + Theme.s
        indicator: Image {
            x: Theme.xs
            y: (choose.height - height) / 2
            width: Math.round(18 * Theme.scale)
            height: width
            sourceSize.width: width
            sourceSize.height: height
            source: choose.checked ? "qrc:/Orvel/resources/icons/radio-button-fill.svg"
                                   : "qrc:/Orvel/resources/icons/circle.svg"
            Accessible.ignored: true
        }
        contentItem: RowLayout {
            spacing: Theme.s
            Text {
                text: row.voice.name || ""
                font: choose.font
                color: Theme.text
                Accessible.ignored: true
            }
            Text {
                Layout.fillWidth: true
                visible: text !== ""
                elide: Text.ElideRight
                text: row.voice.manner || ""
                font.family: Theme.uiFamily
                font.pixelSize: Theme.secondary
                color: Theme.secondaryText
                Accessible.ignored: true
            }
        }
        background: Rectangle {
            radius: Theme.controlRadius
            color: choose.hovered ? Theme.sidebar : "transparent"
            border.width: choose.visualFocus ? 2 : 0
            border.color: Theme.accent
        }
    }
    OButton {
        text: row.previewing ? row.stopText : row.hearText
        display: AbstractButton.IconOnly
        icon.source: row.previewing ? "qrc:/Orvel/resources/icons/stop-circle-fill.svg"
                                    : "qrc:/Orvel/resources/icons/play-circle.svg"
        Accessible.description: row.voice.name || ""
        ToolTip.visible: hovered
        ToolTip.delay: 600
        ToolTip.text: text
        onClicked: row.previewed()
    }
}
