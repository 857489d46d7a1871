import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Orvel
import Orvel.Core

// The sign-in screen: email and password, making an account, the check-your-inbox step, and
// Google or Apple through the browser. All behaviour is SignInView's; this file lays it out.
Rectangle {
    id: screen

    color: Theme.window

    SignInView {
        id: view
        onFocusChanged: screen.applyFocus()
    }

    readonly property bool signingUp: view.mode === SignInView.SignUp
    readonly property bool checkingInbox: view.mode === SignInView.CheckInbox
    readonly property bool waitingForBrowser: view.provider.waiting

    function applyFocus() {
        switch (view.focus) {
        case SignInView.Name:
            nameField.forceActiveFocus(Qt.OtherFocusReason)
            break
        case SignInView.Email:
            emailField.forceActiveFocus(Qt.OtherFocusReason)
            break
        case SignInView.Password:
            passwordField.forceActiveFocus(Qt.OtherFocusReason)
            break
        default:
            break
        }
    }

    Component.onCompleted: {
        view.loadOptions()
        emailField.forceActiveFocus(Qt.OtherFocusReason)
    }

    Flickable {
        id: scroller
        anchors.fill: parent
        contentWidth: width
        contentHeight: Math.max(height, column.implicitHeight + 2 * Theme.xxl)
        boundsBehavior: Flickable.StopAtBounds
        ScrollBar.vertical: ScrollBar {}

        Item {
            width: scroller.contentWidth
            height: scroller.contentHeight

            ColumnLayout {
                id: column
                width: Math.min(360 * Theme.scale, parent.width - 2 * Theme.xl)
                anchors.centerIn: parent
                spacing: Theme.m

                OLabel {
                    Layout.alignment: Qt.AlignHCenter
                    Layout.bottomMargin: Theme.l
                    text: "orvel"
                    font.family: Theme.displayFamily
                    font.pixelSize: Theme.wordmark
                }

                // Waiting for the browser to come back.
                ColumnLayout {
                    visible: screen.waitingForBrowser
                    Layout.fillWidth: true
                    spacing: Theme.m

                    OTitle {
                        Layout.alignment: Qt.AlignHCenter
                        text: "Continue in your browser"
                    }
                    OLabel {
                        Layout.fillWidth: true
                        horizontalAlignment: Text.AlignHCenter
                        wrapMode: Text.Wrap
                        color: Theme.secondaryText
                        text: "Finish signing in on the page that opened, and orvel will take it from there."
                    }
                    OButton {
                        Layout.alignment: Qt.AlignHCenter
                        text: "Cancel"
                        onClicked: view.provider.cancel()
                    }
                }

                // Check your inbox.
                ColumnLayout {
                    visible: screen.checkingInbox && !screen.waitingForBrowser
                    Layout.fillWidth: true
                    spacing: Theme.m

                    OTitle {
                        text: "Check your inbox"
                    }
                    OLabel {
                        Layout.fillWidth: true
                        wrapMode: Text.Wrap
                        text: view.inboxText
                    }
                    OLabel {
                        visible: view.trouble !== ""
                        Layout.fillWidth: true
                        wrapMode: Text.Wrap
                        color: Theme.danger
                        text: view.trouble
                    }
                    OButton {
                        Layout.fillWidth: true
                        text: view.resent ? "Sent again." : "Send the link again"
                        enabled: !view.working && !view.resent
                        onClicked: view.resend()
                    }
                    OButton {
                        Layout.fillWidth: true
                        primary: true
                        text: "I've confirmed — sign in"
                        onClicked: view.showSignIn()
                    }
                }

                // Sign in or make an account.
                ColumnLayout {
                    visible: !screen.checkingInbox && !screen.waitingForBrowser
                    Layout.fillWidth: true
                    spacing: Theme.m

                    OButton {
                        visible: view.offersGoogle
                        Layout.fillWidth: true
                        text: "Continue with Google"
                        icon.source: "qrc:/Orvel/resources/icons/google-logo.svg"
                        enabled: !view.working
                        onClicked: view.continueWith("google")
                    }
                    OButton {
                        visible: view.offersApple
                        Layout.fillWidth: true
                        text: "Continue with Apple"
                        icon.source: "qrc:/Orvel/resources/icons/apple-logo.svg"
                        enabled: !view.working
                        onClicked: view.continueWith("apple")
                    }
                    ODivider {
                        visible: view.offersGoogle || view.offersApple
                        Layout.fillWidth: true
                        Layout.topMargin: Theme.xs
                        Layout.bottomMargin: Theme.xs
                        text: "or with email"
                    }

                    OField {
                        id: nameField
                        visible: screen.signingUp
                        Layout.fillWidth: true
                        placeholderText: "Name"
                        text: view.name
                        onTextEdited: view.name = text
                        onAccepted: view.submit()
                        onActiveFocusChanged: if (activeFocus) view.noteFocus(SignInView.Name)
                    }
                    OField {
                        id: emailField
                        Layout.fillWidth: true
                        placeholderText: "Email"
                        inputMethodHints: Qt.ImhEmailCharactersOnly | Qt.ImhNoAutoUppercase
                        text: view.email
                        onTextEdited: view.email = text
                        onAccepted: view.submit()
                        onActiveFocusChanged: if (activeFocus) view.noteFocus(SignInView.Email)
                    }
                    OField {
                        id: passwordField
                        Layout.fillWidth: true
                        placeholderText: screen.signingUp ? "Password — at least 8 characters"
                                                          : "Password"
                        echoMode: TextInput.Password
                        text: view.password
                        onTextEdited: view.password = text
                        onAccepted: view.submit()
                        onActiveFocusChanged: if (activeFocus) view.noteFocus(SignInView.Password)
                    }
                    OLinkButton {
                        visible: !screen.signingUp
                        Layout.alignment: Qt.AlignRight
                        text: "Forgot password?"
                        pixelSize: Theme.secondary
                        onClicked: view.forgot()
                    }

                    OLabel {
                        visible: view.trouble !== ""
                        Layout.fillWidth: true
                        wrapMode: Text.Wrap
                        color: Theme.danger
                        text: view.trouble
                    }
                    OLinkButton {
                        visible: view.unconfirmed && !screen.signingUp && !view.resent
                        Layout.alignment: Qt.AlignLeft
                        text: "Send the confirmation link again"
                        enabled: !view.working
                        onClicked: view.resend()
                    }
                    OLabel {
                        visible: view.unconfirmed && !screen.signingUp && view.resent
                        color: Theme.good
                        text: "Sent — check your inbox."
                    }

                    OButton {
                        Layout.fillWidth: true
                        Layout.topMargin: Theme.xs
                        primary: true
                        text: view.actionTitle
                        enabled: !view.working
                        onClicked: view.submit()
                    }

                    RowLayout {
                        visible: screen.signingUp || view.offersSignUp
                        Layout.alignment: Qt.AlignHCenter
                        Layout.topMargin: Theme.s
                        spacing: Theme.xs

                        OLabel {
                            color: Theme.secondaryText
                            font.pixelSize: Theme.secondary
                            text: screen.signingUp ? "Already have an account?" : "New to orvel?"
                        }
                        OLinkButton {
                            pixelSize: Theme.secondary
                            text: screen.signingUp ? "Sign in" : "Make an account"
                            onClicked: screen.signingUp ? view.showSignIn() : view.showSignUp()
                        }
                    }
                }

                ODivider {
                    Layout.fillWidth: true
                    Layout.topMargin: Theme.xl
                }
                RowLayout {
                    Layout.alignment: Qt.AlignHCenter
                    spacing: Theme.m

                    OLabel {
                        text: "Appearance"
                        color: Theme.secondaryText
                        font.pixelSize: Theme.secondary
                    }
                    OChoice {
                        label: "Appearance"
                        options: [
                            { text: "System", value: AppState.System },
                            { text: "Light", value: AppState.Light },
                            { text: "Dark", value: AppState.Dark }
                        ]
                        current: AppState.appearance
                        // This screen keeps the choice on this machine only.
                        onChosen: value => AppState.appearance = value
                    }
                }
            }
        }
    }
}
