#include "signinview.h"

#include "app/appstate.h"
#include "app/browser.h"
#include "app/passwordrule.h"
#include "server/apiclient.h"

#include <QUrlQuery>

namespace orvel {

namespace {

const QString enterEmailAndPassword = QStringLiteral("Enter your email and password.");
const QString enterEmailFirst = QStringLiteral("Enter your email first.");

} // namespace

SignInView::SignInView(QObject *parent)
    : QObject(parent), m_state(AppState::instance()), m_provider(new ProviderSignIn(this))
{}

SignInView::SignInView(AppState &state, QObject *parent)
    : QObject(parent), m_state(&state), m_provider(new ProviderSignIn(this))
{}

void SignInView::setEmail(const QString &email)
{
    if (m_email == email)
        return;
    m_email = email;
    emit emailChanged();
}

void SignInView::setPassword(const QString &password)
{
    if (m_password == password)
        return;
    m_password = password;
    emit passwordChanged();
}

void SignInView::setName(const QString &name)
{
    if (m_name == name)
        return;
    m_name = name;
    emit nameChanged();
}

QString SignInView::actionTitle() const
{
    if (m_mode == Mode::SignUp)
        return m_working ? QStringLiteral("Making your account…")
                         : QStringLiteral("Make my account");
    return m_working ? QStringLiteral("Signing in…") : QStringLiteral("Sign in");
}

QString SignInView::inboxText() const
{
    return QStringLiteral("We sent a link to ") + m_email +
           QStringLiteral(". Open it to confirm the address, then come back and sign in here.");
}

QCoro::Task<> SignInView::submitting()
{
    if (m_working || m_mode == Mode::CheckInbox || !m_state)
        co_return;
    if (m_email.isEmpty() || m_password.isEmpty()) {
        setTrouble(enterEmailAndPassword);
        moveFocus(m_email.isEmpty() ? Field::Email : Field::Password);
        co_return;
    }
    if (m_mode == Mode::SignUp && PasswordRule::tooShort(m_password)) {
        setTrouble(PasswordRule::tooShortMessage());
        moveFocus(Field::Password);
        co_return;
    }
    setWorking(true);
    setTrouble(std::nullopt);
    setUnconfirmed(false);
    setResent(false);

    QPointer self(this);
    QPointer state = m_state;
    APIClient &api = m_state->api();
    const Mode mode = m_mode;
    // Learner input goes out trimmed of spaces and tabs; the password exactly as typed.
    const QString email = m_email.trimmed();
    std::optional<QString> failure;
    bool refusedUnconfirmed = false;
    std::optional<User> user;
    try {
        if (mode == Mode::SignUp) {
            co_await api.signUp(email, m_password, m_name.trimmed());
        } else {
            user = co_await api.signIn(email, m_password);
        }
    } catch (const APIError &error) {
        failure = error.message();
        refusedUnconfirmed = error.status() == 403;
    } catch (const ServerError &error) {
        failure = error.message();
    }
    if (!self)
        co_return;

    if (failure) {
        setTrouble(failure);
        if (mode == Mode::SignIn) {
            setUnconfirmed(refusedUnconfirmed);
            setPassword(QString());
            moveFocus(Field::Password);
        }
    } else if (mode == Mode::SignUp) {
        setPassword(QString());
        setMode(Mode::CheckInbox);
    } else if (state && user) {
        state->setSignedIn(*user);
        co_await state->adoptPreferences();
        if (!self)
            co_return;
    }
    setWorking(false);
}

QCoro::Task<> SignInView::resending()
{
    if (m_working || !m_state)
        co_return;
    if (m_email.isEmpty()) {
        setTrouble(enterEmailFirst);
        moveFocus(Field::Email);
        co_return;
    }
    setWorking(true);
    QPointer self(this);
    std::optional<QString> failure;
    try {
        co_await m_state->api().resendVerification(m_email.trimmed());
    } catch (const ServerError &error) {
        failure = error.message();
    }
    if (!self)
        co_return;
    if (failure)
        setTrouble(failure);
    else
        setResent(true);
    setWorking(false);
}

QCoro::Task<> SignInView::continuingWith(QString provider)
{
    if (m_working || !m_state)
        co_return;
    setWorking(true);
    setTrouble(std::nullopt);

    QPointer self(this);
    QPointer state = m_state;
    APIClient &api = m_state->api();
    const QUrl start =
        api.url(QStringLiteral("auth/oauth/") + provider, {{QStringLiteral("client"), "mac"}});
    const ProviderSignIn::Outcome outcome = co_await m_provider->run(start);
    if (!self)
        co_return;

    switch (outcome.kind) {
    case ProviderSignIn::Outcome::Kind::code: {
        std::optional<User> user;
        std::optional<QString> failure;
        try {
            user = co_await api.exchange(outcome.text);
        } catch (const ServerError &error) {
            failure = error.message();
        }
        if (!self)
            co_return;
        if (failure) {
            setTrouble(failure);
        } else if (state && user) {
            state->setSignedIn(*user);
            co_await state->adoptPreferences();
            if (!self)
                co_return;
        }
        break;
    }
    case ProviderSignIn::Outcome::Kind::failed:
        setTrouble(outcome.text);
        break;
    case ProviderSignIn::Outcome::Kind::cancelled:
        break;
    }
    setWorking(false);
}

QCoro::Task<> SignInView::loadingOptions()
{
    if (!m_state)
        co_return;
    QPointer self(this);
    std::optional<AuthOptions> options;
    try {
        options = co_await m_state->api().authOptions();
    } catch (const ServerError &) {
        // Without the options the screen offers the email form only.
    }
    if (!self || !options)
        co_return;
    m_options = options;
    emit optionsChanged();
}

void SignInView::submit()
{
    submitting();
}

void SignInView::resend()
{
    resending();
}

void SignInView::continueWith(const QString &provider)
{
    continuingWith(provider);
}

void SignInView::loadOptions()
{
    loadingOptions();
}

QUrl SignInView::forgotUrl() const
{
    if (!m_state)
        return {};
    QUrl url = m_state->api().baseUrl();
    QString path = url.path();
    if (!path.endsWith(QLatin1Char('/')))
        path += QLatin1Char('/');
    url.setPath(path + QStringLiteral("app"));
    QUrlQuery query;
    query.addQueryItem(QStringLiteral("forgot"), QStringLiteral("1"));
    if (!m_email.isEmpty())
        query.addQueryItem(QStringLiteral("email"),
                           QString::fromUtf8(QUrl::toPercentEncoding(m_email.trimmed())));
    url.setQuery(query);
    return url;
}

void SignInView::forgot()
{
    Browser::open(forgotUrl());
}

void SignInView::showSignUp()
{
    setTrouble(std::nullopt);
    setUnconfirmed(false);
    setResent(false);
    setMode(Mode::SignUp);
    moveFocus(Field::Name);
}

void SignInView::showSignIn()
{
    setTrouble(std::nullopt);
    setResent(false);
    setMode(Mode::SignIn);
    moveFocus(m_email.isEmpty() ? Field::Email : Field::Password);
}

void SignInView::noteFocus(Field field)
{
    m_focus = field;
}

void SignInView::setTrouble(std::optional<QString> trouble)
{
    if (m_trouble == trouble)
        return;
    m_trouble = std::move(trouble);
    emit troubleChanged();
}

void SignInView::setWorking(bool working)
{
    if (m_working == working)
        return;
    m_working = working;
    emit workingChanged();
    emit actionTitleChanged();
}

void SignInView::setMode(Mode mode)
{
    if (m_mode == mode)
        return;
    m_mode = mode;
    emit modeChanged();
    emit actionTitleChanged();
}

void SignInView::setUnconfirmed(bool unconfirmed)
{
    if (m_unconfirmed == unconfirmed)
        return;
    m_unconfirmed = unconfirmed;
    emit unconfirmedChanged();
}

void SignInView::setResent(bool resent)
{
    if (m_resent == resent)
        return;
    m_resent = resent;
    emit resentChanged();
}

void SignInView::moveFocus(Field field)
{
    m_focus = field;
    emit focusChanged();
}

} // namespace orvel
