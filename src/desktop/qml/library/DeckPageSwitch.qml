import QtQuick
import Orvel
import Orvel.Core

// Switches the open deck between its cards and its notes (Alt+1 and Alt+2 from anywhere).
OChoice {
    id: pageSwitch

    property HomeView home: null

    label: "Show the deck's"
    options: [{ text: "Cards", value: false }, { text: "Notes", value: true }]
    current: home ? home.notesShown : false
    onChosen: value => { if (pageSwitch.home) pageSwitch.home.notesShown = value }
}
