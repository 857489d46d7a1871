import QtQuick
import QtQuick.Layouts
import Orvel

// One headed section of the card detail ("Means", "In use", "Nearby", "Forms").
ColumnLayout {
    id: section

    property string title: ""
    default property alias content: body.data

    Layout.fillWidth: true
    Layout.leftMargin: Theme.xxl
    Layout.rightMargin: Theme.xxl
    Layout.topMargin: Theme.l
    spacing: Theme.s

    OSectionHeading {
        text: section.title
        Accessible.role: Accessible.Heading
    }
    ColumnLayout {
        id: body
        Layout.fillWidth: true
        spacing: Theme.s
    }
}
