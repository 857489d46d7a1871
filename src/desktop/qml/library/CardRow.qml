import QtQuick
import QtQuick.Layouts
import Orvel
import Orvel.Core

// One row of the card list: the term in the display face over its translation, and the card's
// badge at the right. A click selects the card.
Rectangle {
    id: row

    required property int cardId
    required property string term
    required property string translation
    required property string badge

    // The list the row belongs to; the card column hands it in.
    property CardList cards: null

    // After a click has selected the card: the list takes the keys.
    signal picked()

    readonly property bool selected: cards !== null && cards.selectedCardId === cardId

    implicitHeight: Math.round(52 * Theme.scale)
    radius: Theme.controlRadius
    color: selected ? Theme.accentWash
         : hover.hovered ? Qt.rgba(0, 0, 0, Theme.dark ? 0.18 : 0.04)
         : "transparent"
    Accessible.role: Accessible.ListItem
    Accessible.name: term + ", " + translation
    Accessible.selected: selected

    ColumnLayout {
        anchors.left: parent.left
        anchors.right: badgeChip.left
        anchors.verticalCenter: parent.verticalCenter
        anchors.leftMargin: Theme.m
        anchors.rightMargin: Theme.s
        spacing: 0

        OLabel {
            Layout.fillWidth: true
            elide: Text.ElideRight
            text: row.term
            font.family: Theme.displayFamily
            font.pixelSize: Math.round(17 * Theme.scale)
        }
        OLabel {
            Layout.fillWidth: true
            elide: Text.ElideRight
            text: row.translation
            color: Theme.secondaryText
            font.pixelSize: Theme.secondary
        }
    }
    Rectangle {
        id: badgeChip
        anchors.right: parent.right
        anchors.rightMargin: Theme.m
        anchors.verticalCenter: parent.verticalCenter
        visible: row.badge !== ""
        width: visible ? badgeText.implicitWidth + Theme.m : 0
        height: badgeText.implicitHeight + Theme.xs
        radius: height / 2
        color: Theme.sidebar

        OLabel {
            id: badgeText
            anchors.centerIn: parent
            text: row.badge
            color: Theme.secondaryText
            font.pixelSize: Math.round(11 * Theme.scale)
        }
    }
    HoverHandler {
        id: hover
    }
    TapHandler {
        onTapped: {
            if (row.cards)
                row.cards.selectedCardId = row.cardId
            row.picked()
        }
    }
}
