import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Orvel
import Orvel.Core

// The look pane: the appearance (system, light, dark) and the skin, which follows the learner
// to other machines.
ScrollView {
    id: pane

    contentWidth: availableWidth

    ColumnLayout {
        width: pane.availableWidth
        spacing: Theme.m

        OTitle {
            Layout.topMargin: Theme.xl
            Layout.leftMargin: Theme.xl
            text: "Look"
        }

        OSectionHeading {
            Layout.topMargin: Theme.m
            Layout.leftMargin: Theme.xl
            text: "Appearance"
        }
        OChoice {
            Layout.leftMargin: Theme.xl
            label: "Appearance"
            options: [
                { text: "System", value: AppState.System },
                { text: "Light", value: AppState.Light },
                { text: "Dark", value: AppState.Dark }
            ]
            current: AppState.appearance
            onChosen: value => AppState.choose(value)
        }
        OLabel {
            Layout.leftMargin: Theme.xl
            Layout.rightMargin: Theme.xl
            Layout.fillWidth: true
            wrapMode: Text.Wrap
            color: Theme.secondaryText
            font.pixelSize: Theme.secondary
            text: "System follows the desktop’s light or dark style."
        }

        OSectionHeading {
            Layout.topMargin: Theme.l
            Layout.leftMargin: Theme.xl
            text: "Skin"
        }
        Flow {
            Layout.leftMargin: Theme.xl
            Layout.rightMargin: Theme.xl
            Layout.fillWidth: true
            spacing: Theme.m

            Repeater {
                model: Skins.all

                delegate: AbstractButton {
                    id: swatch

                    required property var modelData

                    readonly property bool chosen: AppState.effectiveSkin === modelData.id

                    width: 140 * Theme.scale
                    height: 104 * Theme.scale
                    focusPolicy: Qt.StrongFocus
                    text: modelData.name
                    Accessible.role: Accessible.RadioButton
                    Accessible.name: text + (modelData.dark ? ", dark" : ", light")
                    Accessible.checkable: true
                    Accessible.checked: chosen
                    Accessible.onPressAction: AppState.chooseSkin(modelData.id)
                    onClicked: AppState.chooseSkin(modelData.id)
                    Keys.onReturnPressed: AppState.chooseSkin(modelData.id)

                    background: Rectangle {
                        radius: Theme.cardRadius
                        color: swatch.modelData.window
                        border.width: swatch.chosen || swatch.visualFocus ? 2 : 1
                        border.color: swatch.chosen || swatch.visualFocus ? Theme.accent : Theme.line
                    }
                    contentItem: ColumnLayout {
                        spacing: Theme.xs

                        Rectangle {
                            Layout.fillWidth: true
                            Layout.fillHeight: true
                            Layout.margins: Theme.s
                            radius: Theme.controlRadius
                            color: swatch.modelData.surface

                            Text {
                                anchors.left: parent.left
                                anchors.leftMargin: Theme.s
                                anchors.verticalCenter: parent.verticalCenter
                                text: "Hund"
                                font.family: Theme.displayFamily
                                font.pixelSize: Theme.sheetTitle
                                color: swatch.modelData.text
                            }
                            Rectangle {
                                anchors.right: parent.right
                                anchors.rightMargin: Theme.s
                                anchors.verticalCenter: parent.verticalCenter
                                width: 14
                                height: 14
                                radius: 7
                                color: swatch.modelData.accent
                            }
                        }
                        Text {
                            Layout.leftMargin: Theme.s
                            Layout.bottomMargin: Theme.s
                            text: swatch.modelData.name
                            color: swatch.modelData.text
                            font.family: Theme.uiFamily
                            font.pixelSize: Theme.secondary
                        }
                    }
                }
            }
        }
        Item {
            Layout.fillHeight: true
        }
    }
}
