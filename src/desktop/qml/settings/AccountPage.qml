import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Orvel
import Orvel.Core

// The account pane: who is signed in, a new password, and signing out.
ScrollView {
    id: pane

    contentWidth: availableWidth

    AccountPane {
        id: account
    }

    ColumnLayout {
        width: pane.availableWidth
        spacing: Theme.m

        OTitle {
            Layout.topMargin: Theme.xl
            Layout.leftMargin: Theme.xl
            text: "Account"
        }

        ColumnLayout {
            Layout.leftMargin: Theme.xl
            Layout.rightMargin: Theme.xl
            Layout.fillWidth: true
            spacing: 2

            OLabel {
                text: AppState.userDisplayName
                font.weight: Font.DemiBold
            }
            OLabel {
                text: AppState.userEmail
                color: Theme.secondaryText
            }
        }

        OSectionHeading {
            Layout.topMargin: Theme.l
            Layout.leftMargin: Theme.xl
            text: "Change password"
        }
        ColumnLayout {
            Layout.leftMargin: Theme.xl
            Layout.rightMargin: Theme.xl
            Layout.maximumWidth: 360 * Theme.scale + 2 * Theme.xl
            Layout.fillWidth: true
            spacing: Theme.s

            OField {
                Layout.fillWidth: true
                placeholderText: "Current password"
                echoMode: TextInput.Password
                text: account.current
                onTextEdited: account.current = text
                onAccepted: account.changePassword()
            }
            OField {
                Layout.fillWidth: true
                placeholderText: "New password — at least 8 characters"
                echoMode: TextInput.Password
                text: account.replacement
                onTextEdited: account.replacement = text
                onAccepted: account.changePassword()
            }
            OField {
                Layout.fillWidth: true
                placeholderText: "New password again"
                echoMode: TextInput.Password
                text: account.confirmation
                onTextEdited: account.confirmation = text
                onAccepted: account.changePassword()
            }
            OLabel {
                visible: account.trouble !== ""
                Layout.fillWidth: true
                wrapMode: Text.Wrap
                color: Theme.danger
                text: account.trouble
            }
            OLabel {
                visible: account.changed
                color: Theme.good
                text: "Your password is changed."
            }
            OButton {
                Layout.alignment: Qt.AlignRight
                primary: true
                text: account.working ? "Changing…" : "Change Password"
                enabled: !account.working
                onClicked: account.changePassword()
            }
        }

        ODivider {
            Layout.topMargin: Theme.l
            Layout.leftMargin: Theme.xl
            Layout.rightMargin: Theme.xl
            Layout.fillWidth: true
        }
        OButton {
            Layout.leftMargin: Theme.xl
            destructive: true
            text: "Sign Out"
            icon.source: "qrc:/Orvel/resources/icons/sign-out.svg"
            onClicked: account.signOut()
        }
        Item {
            Layout.fillHeight: true
        }
    }
}
