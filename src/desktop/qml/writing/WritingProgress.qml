import QtQuick
import QtQuick.Layouts
import Orvel
import Orvel.Core

// The parts of a card as they are written: "WRITING" over the word typed (or "NOT WRITTEN" with
// the server's message), then TERM, MEANS, DEFINITION, USAGE, EXAMPLES and PARADIGM, each drawn
// as pending until its value arrives. Rows rise into place as they fill, unless the desktop asks
// for reduced motion (then they simply appear).
ColumnLayout {
    id: progress

    property WritingSheet sheet: null
    property bool reduceMotion: false

    spacing: Theme.s

    OSectionHeading {
        text: progress.sheet ? progress.sheet.heading : ""
        color: progress.sheet && progress.sheet.failed ? Theme.danger : Theme.accent
    }
    OTitle {
        Layout.fillWidth: true
        wrapMode: Text.Wrap
        text: progress.sheet ? progress.sheet.input : ""
        font.pixelSize: Math.round(28 * Theme.scale)
    }
    OLabel {
        Layout.fillWidth: true
        visible: progress.sheet !== null && progress.sheet.failed
        wrapMode: Text.Wrap
        text: progress.sheet ? progress.sheet.trouble : ""
        color: Theme.danger
    }
    Rectangle {
        Layout.fillWidth: true
        Layout.topMargin: Theme.s
        Layout.bottomMargin: Theme.s
        implicitHeight: 1
        color: Theme.line
    }

    Repeater {
        model: progress.sheet

        delegate: RowLayout {
            id: row

            required property int index
            required property string label
            required property string value
            required property bool filled
            required property bool dropped

            visible: !dropped
            Layout.fillWidth: true
            Layout.minimumHeight: Math.round(26 * Theme.scale)
            spacing: Theme.l
            Accessible.role: Accessible.StaticText
            // A writing that is over fills no more rows: those still empty say so instead of
            // waiting ("not written" after a failure, "none" once the card is in).
            readonly property bool missing: !filled && progress.sheet !== null && progress.sheet.over // qmllint disable unqualified
            Accessible.name: label + ": " + (filled ? value
                                             : !missing ? "pending"
                                             : progress.sheet.failed ? "not written" : "none") // qmllint disable unqualified

            OSectionHeading {
                Layout.preferredWidth: Math.round(100 * Theme.scale)
                Layout.alignment: Qt.AlignTop
                Layout.topMargin: Math.round(3 * Theme.scale)
                text: row.label
            }
            Item {
                Layout.fillWidth: true
                implicitHeight: Math.max(valueLabel.implicitHeight, pending.implicitHeight,
                                         missingLabel.implicitHeight)

                OLabel {
                    id: valueLabel
                    width: parent.width
                    visible: row.filled
                    wrapMode: Text.Wrap
                    text: row.value
                    font.family: row.index === 0 ? Theme.displayFamily : Theme.uiFamily
                    font.pixelSize: row.index === 0 ? Math.round(16 * Theme.scale) : Theme.body
                    opacity: 1

                    // Fade and rise when the value arrives.
                    transform: Translate { id: rise; y: 0 }
                    onVisibleChanged: if (visible && !progress.reduceMotion) arrival.restart() // qmllint disable unqualified
                    ParallelAnimation {
                        id: arrival
                        NumberAnimation { target: valueLabel; property: "opacity"; from: 0; to: 1; duration: Theme.rowArrival; easing.type: Easing.OutCubic }
                        NumberAnimation { target: rise; property: "y"; from: 8; to: 0; duration: Theme.rowArrival; easing.type: Easing.OutCubic }
                    }
                }
                OLabel {
                    id: missingLabel
                    visible: row.missing
                    text: "—"
                    color: Theme.secondaryText
                    Accessible.ignored: true
                }
                Row {
                    id: pending
                    visible: !row.filled && !row.missing
                    anchors.verticalCenter: parent.verticalCenter
                    spacing: Math.round(5 * Theme.scale)
                    Repeater {
                        model: 3
                        Rectangle {
                            width: Math.round(5 * Theme.scale)
                            height: width
                            radius: width / 2
                            color: Theme.accentWash
                        }
                    }
                }
            }
        }
    }
}
