import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import QtQuick.Window
import Orvel
import Orvel.Core

// The view's lists and texts (maps) are read here by key; qmllint in Qt 6.4 cannot see into
// them, nor into the delegates' view.
// qmllint disable type unqualified

// The manual window: the chapters and pages (or the search's results) on the left, the page on
// the right, with back and forward like a browser. A "try" button runs its command in the main
// window and brings that window forward.
ApplicationWindow {
    id: window

    // The window that "try" buttons act in.
    property Window mainWindow: null

    title: manual.texts.window
    width: 900 * Theme.scale
    height: 640 * Theme.scale
    minimumWidth: 640 * Theme.scale
    minimumHeight: 420 * Theme.scale
    color: Theme.window

    function showPage(id) {
        if (id !== "")
            manual.open(id)
        show()
        raise()
        requestActivate()
    }

    ManualView {
        id: manual
    }

    Shortcut {
        sequences: [StandardKey.Close]
        onActivated: window.close()
    }
    Shortcut {
        sequences: [StandardKey.Find]
        onActivated: search.forceActiveFocus()
    }
    Shortcut {
        sequences: [StandardKey.Back, "Alt+Left"]
        onActivated: ManualNavigator.goBack()
    }
    Shortcut {
        sequences: [StandardKey.Forward, "Alt+Right"]
        onActivated: ManualNavigator.goForward()
    }

    RowLayout {
        anchors.fill: parent
        spacing: 0

        Rectangle {
            Layout.fillHeight: true
            Layout.preferredWidth: 250 * Theme.scale
            color: Theme.sidebar

            ColumnLayout {
                anchors.fill: parent
                anchors.margins: Theme.m
                spacing: Theme.s

                OField {
                    id: search
                    Layout.fillWidth: true
                    placeholderText: manual.texts.search
                    onTextEdited: manual.query = text
                    Keys.onDownPressed: list.forceActiveFocus()
                    Keys.onReturnPressed: if (manual.results.length > 0) manual.open(manual.results[0].id)
                    Keys.onEscapePressed: {
                        text = ""
                        manual.query = ""
                    }
                }
                OLabel {
                    Layout.fillWidth: true
                    visible: manual.searching && manual.results.length === 0
                    wrapMode: Text.Wrap
                    text: manual.texts.nothing
                    color: Theme.secondaryText
                    font.pixelSize: Theme.secondary
                }

                ListView {
                    id: list
                    Layout.fillWidth: true
                    Layout.fillHeight: true
                    clip: true
                    spacing: 2
                    keyNavigationEnabled: true
                    activeFocusOnTab: true
                    Accessible.role: Accessible.List
                    Accessible.name: manual.searching ? manual.texts.search : manual.texts.contents
                    // Searching lists the results; otherwise each chapter's title and its pages.
                    model: manual.searching
                           ? manual.results.map(r => ({ id: r.id, title: r.question, detail: r.chapter,
                                                        heading: false, current: r.id === manual.pageId }))
                           : manual.chapters.reduce((rows, chapter) => rows.concat(
                                 [{ id: "", title: chapter.title, detail: "", heading: true, current: false }],
                                 chapter.pages.map(p => ({ id: p.id, title: p.title, detail: "",
                                                           heading: false, current: p.current }))), [])

                    delegate: ItemDelegate {
                        id: entry

                        required property var modelData
                        required property int index

                        width: ListView.view.width
                        enabled: !modelData.heading
                        highlighted: modelData.current
                        focusPolicy: Qt.StrongFocus
                        topPadding: modelData.heading ? Theme.m : Theme.xs
                        bottomPadding: Theme.xs
                        Accessible.role: modelData.heading ? Accessible.Heading : Accessible.ListItem
                        Accessible.name: modelData.title
                        Accessible.description: modelData.detail
                        Accessible.onPressAction: manual.open(modelData.id)
                        onClicked: manual.open(modelData.id)
                        Keys.onReturnPressed: manual.open(modelData.id)

                        contentItem: ColumnLayout {
                            spacing: 0
                            Text {
                                Layout.fillWidth: true
                                text: entry.modelData.title
                                elide: Text.ElideRight
                                wrapMode: entry.modelData.heading ? Text.NoWrap : Text.Wrap
                                maximumLineCount: 2
                                font.family: Theme.uiFamily
                                font.pixelSize: entry.modelData.heading ? Theme.sectionHeading : Theme.body
                                font.weight: entry.modelData.heading ? Font.DemiBold : Font.Normal
                                font.capitalization: entry.modelData.heading ? Font.AllUppercase : Font.MixedCase
                                color: entry.modelData.heading ? Theme.secondaryText
                                     : entry.highlighted ? Theme.accent : Theme.text
                            }
                            Text {
                                Layout.fillWidth: true
                                visible: text !== ""
                                text: entry.modelData.detail
                                elide: Text.ElideRight
                                font.family: Theme.uiFamily
                                font.pixelSize: Theme.sectionHeading
                                color: Theme.secondaryText
                            }
                        }
                        background: Rectangle {
                            radius: Theme.controlRadius
                            color: entry.highlighted ? Theme.accentWash : "transparent"
                            border.width: entry.visualFocus || (entry.ListView.isCurrentItem && list.activeFocus) ? 2 : 0
                            border.color: Theme.accent
                        }
                    }
                }
            }
        }

        ColumnLayout {
            Layout.fillWidth: true
            Layout.fillHeight: true
            spacing: 0

            RowLayout {
                Layout.fillWidth: true
                Layout.margins: Theme.m
                spacing: Theme.s
                OButton {
                    text: manual.texts.back
                    enabled: ManualNavigator.canGoBack
                    onClicked: ManualNavigator.goBack()
                }
                OButton {
                    text: manual.texts.forward
                    enabled: ManualNavigator.canGoForward
                    onClicked: ManualNavigator.goForward()
                }
                OSectionHeading {
                    Layout.fillWidth: true
                    Layout.leftMargin: Theme.s
                    elide: Text.ElideRight
                    text: manual.chapterTitle
                }
            }
            ODivider {
                Layout.fillWidth: true
            }
            ScrollView {
                id: page
                Layout.fillWidth: true
                Layout.fillHeight: true
                contentWidth: availableWidth
                clip: true

                ColumnLayout {
                    width: Math.min(page.availableWidth, 680 * Theme.scale)
                    x: Theme.xxl
                    spacing: Theme.m

                    Item {
                        implicitHeight: Theme.l
                    }
                    Repeater {
                        model: manual.blocks
                        delegate: ManualBlockItem {
                            required property var modelData
                            Layout.fillWidth: true
                            Layout.rightMargin: Theme.xxl * 2
                            block: modelData
                            linkTitle: modelData.kind === "see" ? manual.titleOf(modelData.first) : ""
                            onFollowed: id => manual.open(id)
                            onTried: action => {
                                if (manual.tryIt(action) && window.mainWindow) {
                                    window.mainWindow.raise()
                                    window.mainWindow.requestActivate()
                                }
                            }
                        }
                    }
                    Item {
                        implicitHeight: Theme.xxl
                    }
                }
            }
        }
    }

    // A new page starts at its top.
    Connections {
        target: manual
        function onPageChanged() {
            page.ScrollBar.vertical.position = 0
        }
    }
}
