import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Orvel
import Orvel.Core

// Delegates here read the enclosing view by its id (Qt 6.4 has no bound component scope).
// qmllint disable unqualified

// The list of the open deck's notes beside the editor: the deck's title and page switch, "New
// note", and a row per note. A deck without notes explains what they are for.
Rectangle {
    id: rail

    property HomeView home: null
    readonly property NotesPanel panel: home ? home.notes : null

    // A note was picked from the list (click, Return or a screen reader's press).
    signal picked(int noteId)

    function pick(noteId) {
        panel.open(noteId)
        picked(noteId)
    }

    color: Theme.surface

    ColumnLayout {
        anchors.fill: parent
        anchors.topMargin: Theme.xl
        spacing: Theme.s

        ColumnLayout {
            Layout.fillWidth: true
            Layout.leftMargin: Theme.l
            Layout.rightMargin: Theme.l
            spacing: Theme.s

            OLabel {
                Layout.fillWidth: true
                elide: Text.ElideRight
                text: rail.home ? rail.home.selectedDeckName : ""
                font.family: Theme.displayFamily
                font.pixelSize: Theme.deckTitle
                Accessible.role: Accessible.Heading
            }
            RowLayout {
                Layout.fillWidth: true
                spacing: Theme.s
                DeckPageSwitch {
                    home: rail.home
                }
                Item { Layout.fillWidth: true }
                OButton {
                    text: rail.panel && rail.panel.starting ? "Starting…" : "New note"
                    enabled: rail.panel !== null && !rail.panel.starting
                    onClicked: rail.panel.newNote()
                }
            }
        }

        Item {
            Layout.fillWidth: true
            Layout.fillHeight: true

            ColumnLayout {
                anchors.centerIn: parent
                width: parent.width - 2 * Theme.xl
                spacing: Theme.s
                visible: rail.panel !== null && (rail.panel.empty || rail.panel.trouble !== ""
                                                 || (!rail.panel.loaded && rail.panel.working))

                BusyIndicator {
                    Layout.alignment: Qt.AlignHCenter
                    running: rail.panel !== null && rail.panel.working && !rail.panel.loaded
                    visible: running
                }
                OLabel {
                    Layout.alignment: Qt.AlignHCenter
                    visible: rail.panel !== null && rail.panel.empty
                    text: rail.panel ? rail.panel.emptyTitle : ""
                    color: Theme.secondaryText
                    font.family: Theme.displayFamily
                    font.pixelSize: Math.round(18 * Theme.scale)
                }
                OLabel {
                    Layout.fillWidth: true
                    visible: rail.panel !== null && rail.panel.empty
                    horizontalAlignment: Text.AlignHCenter
                    wrapMode: Text.Wrap
                    text: rail.panel ? rail.panel.emptyText : ""
                    color: Theme.secondaryText
                    font.pixelSize: Theme.secondary
                }
                OLabel {
                    Layout.fillWidth: true
                    visible: rail.panel !== null && rail.panel.trouble !== ""
                    horizontalAlignment: Text.AlignHCenter
                    wrapMode: Text.Wrap
                    text: rail.panel ? rail.panel.trouble : ""
                    color: Theme.danger
                    font.pixelSize: Theme.secondary
                }
            }

            ListView {
                id: list
                anchors.fill: parent
                clip: true
                model: rail.panel
                currentIndex: rail.panel ? rail.panel.openedRow : -1
                keyNavigationEnabled: true
                activeFocusOnTab: true
                boundsBehavior: Flickable.StopAtBounds
                Accessible.role: Accessible.List
                Accessible.name: "Notes"
                Keys.onReturnPressed: if (currentItem) rail.pick(currentItem.noteId) // qmllint disable type
                ScrollBar.vertical: ScrollBar {}

                delegate: ItemDelegate {
                    id: row

                    required property int index
                    required property int noteId
                    required property string shownTitle
                    required property int lineCount
                    required property int pendingCount

                    width: ListView.view.width
                    implicitHeight: Math.round(44 * Theme.scale)
                    leftPadding: Theme.l
                    rightPadding: Theme.l
                    highlighted: ListView.isCurrentItem
                    focusPolicy: Qt.NoFocus
                    Accessible.role: Accessible.ListItem
                    Accessible.name: shownTitle + ", " + lineSummary
                    Accessible.onPressAction: rail.pick(noteId)

                    readonly property string lineSummary: (lineCount === 1 ? "1 line" : lineCount + " lines")
                        + (pendingCount > 0 ? " · " + pendingCount + " without a margin" : "")

                    onClicked: rail.pick(noteId)

                    contentItem: ColumnLayout {
                        spacing: 2
                        OLabel {
                            Layout.fillWidth: true
                            elide: Text.ElideRight
                            text: row.shownTitle
                        }
                        OLabel {
                            Layout.fillWidth: true
                            elide: Text.ElideRight
                            text: row.lineSummary
                            color: Theme.secondaryText
                            font.pixelSize: Theme.secondary
                        }
                    }
                    background: Rectangle {
                        color: row.highlighted ? Theme.accentWash
                                               : row.hovered ? Theme.sidebar : "transparent"
                    }
                }
            }
        }
    }
}
