import QtQuick
import QtQuick.Layouts
import Orvel

// The components below reach the block through the loader's id, which Qt 6.4's qmllint cannot
// follow into a Component.
// qmllint disable unqualified

// One block of a manual page, drawn by its kind: a title, a lead, a heading, a numbered step, a
// bullet, a paragraph, key caps with what they do, a command row, a button that tries an action,
// or a link to another page.
Loader {
    id: holder

    // {kind, text, number, keys, first, second, third}
    property var block: ({ kind: "paragraph", text: "", number: 0, keys: [], first: "", second: "", third: "" })
    // The title of the page a link names, for links without a label of their own.
    property string linkTitle: ""

    signal tried(string action)
    signal followed(string page)

    sourceComponent: {
        switch (block.kind) {
        case "title": return titleBlock
        case "lead": return leadBlock
        case "heading": return headingBlock
        case "step": return stepBlock
        case "bullet": return bulletBlock
        case "keys": return keysBlock
        case "command": return commandBlock
        case "try": return tryBlock
        case "see": return seeBlock
        default: return paragraphBlock
        }
    }

    Component {
        id: titleBlock
        OTitle {
            wrapMode: Text.Wrap
            text: holder.block.text
            font.pixelSize: Theme.deckTitle
        }
    }
    Component {
        id: leadBlock
        OLabel {
            wrapMode: Text.Wrap
            text: holder.block.text
            font.pixelSize: Math.round(Theme.body * 1.2)
            color: Theme.secondaryText
        }
    }
    Component {
        id: headingBlock
        OLabel {
            topPadding: Theme.m
            wrapMode: Text.Wrap
            text: holder.block.text
            font.pixelSize: Math.round(Theme.body * 1.1)
            font.weight: Font.DemiBold
            Accessible.role: Accessible.Heading
        }
    }
    Component {
        id: stepBlock
        RowLayout {
            spacing: Theme.s
            Accessible.role: Accessible.StaticText
            Accessible.name: holder.block.number + ". " + holder.block.text
            Rectangle {
                Layout.alignment: Qt.AlignTop
                implicitWidth: Math.round(22 * Theme.scale)
                implicitHeight: implicitWidth
                radius: width / 2
                color: Theme.accentWash
                OLabel {
                    anchors.centerIn: parent
                    text: holder.block.number
                    color: Theme.accent
                    font.pixelSize: Theme.secondary
                    font.weight: Font.DemiBold
                    Accessible.ignored: true
                }
            }
            OLabel {
                Layout.fillWidth: true
                wrapMode: Text.Wrap
                text: holder.block.text
                Accessible.ignored: true
            }
        }
    }
    Component {
        id: bulletBlock
        RowLayout {
            spacing: Theme.s
            Accessible.role: Accessible.StaticText
            Accessible.name: holder.block.text
            OLabel {
                Layout.alignment: Qt.AlignTop
                text: "•"
                color: Theme.secondaryText
                Accessible.ignored: true
            }
            OLabel {
                Layout.fillWidth: true
                wrapMode: Text.Wrap
                text: holder.block.text
                Accessible.ignored: true
            }
        }
    }
    Component {
        id: paragraphBlock
        OLabel {
            wrapMode: Text.Wrap
            text: holder.block.text
        }
    }
    Component {
        id: keysBlock
        RowLayout {
            spacing: Theme.m
            Accessible.role: Accessible.StaticText
            Accessible.name: holder.block.keys.join("+") + ": " + holder.block.text
            Row {
                Layout.alignment: Qt.AlignTop
                Layout.minimumWidth: Math.round(150 * Theme.scale)
                spacing: Theme.xs
                Repeater {
                    model: holder.block.keys
                    delegate: StudyKeyCap {
                        required property string modelData
                        text: modelData
                        Accessible.ignored: true
                    }
                }
            }
            OLabel {
                Layout.fillWidth: true
                wrapMode: Text.Wrap
                text: holder.block.text
                Accessible.ignored: true
            }
        }
    }
    Component {
        id: commandBlock
        RowLayout {
            spacing: Theme.m
            Accessible.role: Accessible.StaticText
            Accessible.name: [holder.block.first, holder.block.second, holder.block.third]
                             .filter(part => part !== "").join(" — ")
            OLabel {
                Layout.alignment: Qt.AlignTop
                Layout.minimumWidth: Math.round(110 * Theme.scale)
                text: holder.block.first
                font.family: "monospace"
                color: Theme.accent
                Accessible.ignored: true
            }
            OLabel {
                Layout.alignment: Qt.AlignTop
                Layout.minimumWidth: Math.round(90 * Theme.scale)
                text: holder.block.second
                color: Theme.secondaryText
                font.italic: true
                Accessible.ignored: true
            }
            OLabel {
                Layout.fillWidth: true
                wrapMode: Text.Wrap
                text: holder.block.third
                Accessible.ignored: true
            }
        }
    }
    Component {
        id: tryBlock
        RowLayout {
            spacing: Theme.s
            OButton {
                text: holder.block.second
                Accessible.description: holder.block.third
                onClicked: holder.tried(holder.block.first)
            }
            Row {
                spacing: Theme.xs
                visible: holder.block.third !== ""
                Repeater {
                    model: holder.block.third.split("+")
                    delegate: StudyKeyCap {
                        required property string modelData
                        text: modelData
                        Accessible.ignored: true
                    }
                }
            }
            Item {
                Layout.fillWidth: true
            }
        }
    }
    Component {
        id: seeBlock
        RowLayout {
            spacing: Theme.xs
            OLabel {
                text: "→"
                color: Theme.accent
                Accessible.ignored: true
            }
            OLinkButton {
                text: holder.block.second !== "" ? holder.block.second : holder.linkTitle
                onClicked: holder.followed(holder.block.first)
            }
            Item {
                Layout.fillWidth: true
            }
        }
    }
}
