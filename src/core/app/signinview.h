#pragma once

#include "app/providersignin.h"
#include "app/servercalls.h"
#include "records/authoptions.h"

#include <optional>
#include <qcoro/qcorotask.h>
#include <QObject>
#include <QPointer>
#include <QString>
#include <QtQml/qqml.h>

namespace orvel {

class AppState;

// The sign-in screen's logic: sign in with email and password, make an account and wait for its
// confirmation, send the confirmation link again, open the password-reset page, and sign in
// through Google or Apple. The QML screen binds to these properties and calls these actions.
class SignInView : public QObject {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QString email READ email WRITE setEmail NOTIFY emailChanged)
    Q_PROPERTY(QString password READ password WRITE setPassword NOTIFY passwordChanged)
    Q_PROPERTY(QString name READ name WRITE setName NOTIFY nameChanged)
    Q_PROPERTY(QString trouble READ trouble NOTIFY troubleChanged)
    Q_PROPERTY(bool working READ working NOTIFY workingChanged)
    Q_PROPERTY(Mode mode READ mode NOTIFY modeChanged)
    Q_PROPERTY(bool unconfirmed READ unconfirmed NOTIFY unconfirmedChanged)
    Q_PROPERTY(bool resent READ resent NOTIFY resentChanged)
    Q_PROPERTY(bool offersGoogle READ offersGoogle NOTIFY optionsChanged)
    Q_PROPERTY(bool offersApple READ offersApple NOTIFY optionsChanged)
    Q_PROPERTY(bool offersSignUp READ offersSignUp NOTIFY optionsChanged)
    Q_PROPERTY(Field focus READ focus NOTIFY focusChanged)
    Q_PROPERTY(QString actionTitle READ actionTitle NOTIFY actionTitleChanged)
    Q_PROPERTY(QString inboxText READ inboxText NOTIFY emailChanged)
    Q_PROPERTY(orvel::ProviderSignIn *provider READ provider CONSTANT)

public:
    enum class Mode { SignIn, SignUp, CheckInbox };
    Q_ENUM(Mode)
    enum class Field { None, Name, Email, Password };
    Q_ENUM(Field)

    // Works on the installed services' app state and its server client.
    explicit SignInView(QObject *parent = nullptr);

    QString email() const { return m_email; }
    void setEmail(const QString &email);
    QString password() const { return m_password; }
    void setPassword(const QString &password);
    QString name() const { return m_name; }
    void setName(const QString &name);
    QString trouble() const { return m_calls.trouble(); }
    bool working() const { return m_calls.working(); }
    Mode mode() const { return m_mode; }
    bool unconfirmed() const { return m_unconfirmed; }
    bool resent() const { return m_resent; }
    const std::optional<AuthOptions> &options() const { return m_options; }
    bool offersGoogle() const { return m_options && m_options->google; }
    bool offersApple() const { return m_options && m_options->apple; }
    bool offersSignUp() const { return m_options && m_options->signup; }
    Field focus() const { return m_focus; }
    QString actionTitle() const;
    QString inboxText() const;
    ProviderSignIn *provider() const { return m_provider; }

    // Actions. The QCoro forms let callers (and tests) await the whole request; the QML forms
    // start it in the background.
    QCoro::Task<> submitting();
    QCoro::Task<> resending();
    QCoro::Task<> continuingWith(QString provider);
    QCoro::Task<> loadingOptions();
    Q_INVOKABLE void submit();
    Q_INVOKABLE void resend();
    Q_INVOKABLE void continueWith(const QString &provider);
    Q_INVOKABLE void loadOptions();
    // Opens <base>/app?forgot=1[&email=…] in the browser.
    Q_INVOKABLE void forgot();
    // The address forgot() opens.
    QUrl forgotUrl() const;

    // The links between the modes ("Make an account", "Sign in", "I've confirmed — sign in").
    Q_INVOKABLE void showSignUp();
    Q_INVOKABLE void showSignIn();
    // The screen reports where the keyboard focus went (Tab, a click).
    Q_INVOKABLE void noteFocus(orvel::SignInView::Field field);

signals:
    void emailChanged();
    void passwordChanged();
    void nameChanged();
    void troubleChanged();
    void workingChanged();
    void modeChanged();
    void unconfirmedChanged();
    void resentChanged();
    void optionsChanged();
    // Emitted on every focus request, also when the field already had it.
    void focusChanged();
    void actionTitleChanged();

private:
    void setMode(Mode mode);
    void setUnconfirmed(bool unconfirmed);
    void setResent(bool resent);
    void moveFocus(Field field);

    AppState &m_state;
    ProviderSignIn *m_provider;
    QString m_email;
    QString m_password;
    QString m_name;
    ServerCalls m_calls{this, &SignInView::workingChanged, &SignInView::troubleChanged};
    Mode m_mode = Mode::SignIn;
    bool m_unconfirmed = false;
    bool m_resent = false;
    std::optional<AuthOptions> m_options;
    Field m_focus = Field::None;
};

} // namespace orvel
