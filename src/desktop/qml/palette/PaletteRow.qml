import QtQuick
import QtQuick.Layouts
import Orvel

// One row of the palette's list: a section heading (small capitals, with its note), or an item
// with its glyph, title, subtitle, right-aligned meta and key caps. The selected row is washed in
// the accent; a click chooses it.
Rectangle {
    id: row

    required property int index
    required property string kind
    required property string itemId
    required property string glyph
    required property string title
    required property string note
    required property string subtitle
    required property string meta
    required property var keys
    required property bool serif
    required property bool destructive
    required property bool armed
    required property bool selected
    required property string spoken

    readonly property bool heading: kind === "section"

    signal chosen()

    implicitHeight: heading ? Math.round(30 * Theme.scale)
                            : serif ? Math.round(40 * Theme.scale) : Theme.rowHeight
    radius: Theme.controlRadius
    color: !heading && selected ? Theme.accentWash : "transparent"

    Accessible.role: heading ? Accessible.Heading : Accessible.ListItem
    Accessible.name: spoken
    Accessible.selectable: !heading
    Accessible.selected: selected
    Accessible.onPressAction: row.chosen()

    RowLayout {
        anchors.fill: parent
        anchors.leftMargin: Theme.m
        anchors.rightMargin: Theme.m
        visible: row.heading
        spacing: Theme.s

        OSectionHeading {
            Layout.alignment: Qt.AlignBottom
            Layout.bottomMargin: Theme.xs
            text: row.title
        }
        OLabel {
            Layout.alignment: Qt.AlignBottom
            Layout.bottomMargin: Theme.xs
            Layout.fillWidth: true
            visible: row.note !== ""
            text: row.note
            color: Theme.secondaryText
            font.pixelSize: Theme.sectionHeading
        }
    }

    RowLayout {
        anchors.fill: parent
        anchors.leftMargin: Theme.m
        anchors.rightMargin: Theme.m
        visible: !row.heading
        spacing: Theme.m

        PaletteGlyph {
            Layout.alignment: Qt.AlignVCenter
            // Rows without a glyph keep its place, so titles line up.
            Layout.preferredWidth: size
            Layout.preferredHeight: size
            symbol: row.glyph
            color: row.destructive ? Theme.danger
                 : row.glyph === "card" ? Theme.accent : Theme.secondaryText
            opacity: symbol !== "" ? 1 : 0
        }
        OLabel {
            Layout.maximumWidth: Math.round(row.width * 0.6)
            elide: Text.ElideRight
            text: row.title
            color: row.destructive ? Theme.danger : Theme.text
            font.family: row.serif ? Theme.displayFamily : Theme.uiFamily
            font.pixelSize: row.serif ? Math.round(16 * Theme.scale) : Theme.body
        }
        OLabel {
            Layout.fillWidth: true
            elide: Text.ElideRight
            visible: row.subtitle !== ""
            text: row.subtitle
            color: row.armed ? Theme.danger : Theme.secondaryText
            font.pixelSize: Theme.secondary
        }
        Item {
            Layout.fillWidth: true
            visible: row.subtitle === ""
        }
        OLabel {
            visible: row.meta !== ""
            elide: Text.ElideLeft
            Layout.maximumWidth: Math.round(row.width * 0.35)
            text: row.meta
            color: Theme.secondaryText
            font.pixelSize: Theme.secondary
        }
        Repeater {
            model: row.keys
            StudyKeyCap {
                required property string modelData
                text: modelData
            }
        }
    }

    // A MouseArea, not a TapHandler: it takes the click for itself, so the rows of the screen
    // under the palette never see it.
    MouseArea {
        anchors.fill: parent
        enabled: !row.heading
        onClicked: row.chosen()
    }
}
