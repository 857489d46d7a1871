import QtQuick
import Orvel

// A title in the display face.
OLabel {
    font.family: Theme.displayFamily
    font.pixelSize: Theme.sheetTitle
    font.weight: Font.Medium
    Accessible.role: Accessible.Heading
}
