import QtQuick
import Orvel

// A section heading: small capitals in the secondary colour.
OLabel {
    color: Theme.secondaryText
    font.pixelSize: Theme.sectionHeading
    font.weight: Font.DemiBold
    font.capitalization: Font.AllUppercase
    font.letterSpacing: Theme.sectionHeading * 0.06
}
