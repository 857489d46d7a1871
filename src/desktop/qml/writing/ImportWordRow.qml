import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Orvel
import Orvel.Core

// One word found in the pasted text: a tick, the word, what it means and the form the text used.
// Space, a click or a screen reader's press ticks or unticks it.
Rectangle {
    id: row

    required property int index
    required property string term
    required property string gloss
    required property string seenAsText
    required property bool chosen
    property ImportCandidates candidates: null
    property bool focused: false

    implicitHeight: content.implicitHeight + 2 * Theme.s
    radius: Theme.controlRadius
    color: chosen ? Theme.accentWash : "transparent"
    border.width: focused ? 2 : 0
    border.color: Theme.accent

    Accessible.role: Accessible.CheckBox
    Accessible.name: term + (gloss !== "" ? ", " + gloss : "")
    Accessible.description: seenAsText
    Accessible.checkable: true
    Accessible.checked: chosen
    Accessible.onPressAction: toggle()
    Accessible.onToggleAction: toggle()

    function toggle() {
        if (candidates)
            candidates.toggle(index)
    }

    MouseArea {
        anchors.fill: parent
        onClicked: row.toggle()
    }

    RowLayout {
        id: content
        anchors.fill: parent
        anchors.leftMargin: Theme.s
        anchors.rightMargin: Theme.s
        spacing: Theme.s

        CheckBox {
            checked: row.chosen
            focusPolicy: Qt.NoFocus
            Accessible.ignored: true
            // The list holds the tick: a click hands it over and takes the binding back.
            onToggled: {
                row.toggle()
                checked = Qt.binding(() => row.chosen)
            }
        }
        ColumnLayout {
            Layout.fillWidth: true
            spacing: 0
            RowLayout {
                Layout.fillWidth: true
                spacing: Theme.s
                OLabel {
                    text: row.term
                    font.weight: Font.DemiBold
                    Accessible.ignored: true
                }
                OLabel {
                    Layout.fillWidth: true
                    elide: Text.ElideRight
                    text: row.gloss
                    color: Theme.secondaryText
                    Accessible.ignored: true
                }
            }
            OLabel {
                Layout.fillWidth: true
                visible: text !== ""
                elide: Text.ElideRight
                text: row.seenAsText
                color: Theme.secondaryText
                font.pixelSize: Theme.secondary
                font.italic: true
                Accessible.ignored: true
            }
        }
    }
}
