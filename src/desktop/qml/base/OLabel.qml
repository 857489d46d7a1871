import QtQuick
import QtQuick.Controls
import Orvel

// Text a screen reader can read: every visible text of the app is an OLabel (or made from one).
Label {
    color: Theme.text
    font.family: Theme.uiFamily
    font.pixelSize: Theme.body
    Accessible.role: Accessible.StaticText
    Accessible.name: text
}
