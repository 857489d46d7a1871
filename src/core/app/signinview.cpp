#include "signinview.h"

#include "app/appstate.h"
#include "app/browser.h"
#include "app/passwordrule.h"
#include "app/services.h"
#include "server/apiclient.h"

#include <QUrlQuery>

namespace orvel {

namespace {

const QString enterEmailAndPassword = QStringLiteral("Enter your email and password.");
const QString enterEmailFirst = QStringLiteral("Enter your email first.");

// Signs in (or up) by email; a sign-in also takes the learner's preferences. The state outlives
// every screen, so this runs on even when the screen has gone. Gives whether an account was
// signed in (false after a sign-up, which waits for the confirmation link).
QCoro::Task<bool> byEmail(AppState &state, SignInView::Mode mode, QString email, QString password,
                          QString name)
{
    if (mode == SignInView::Mode::SignUp) {
        co_await state.api().signUp(email, password, name);
        co_return false;
    }
    state.setSignedIn(co_await state.api().signIn(email, password));
    co_await state.adoptPreferences();
    co_return true;
}

// Signs in through a provider's web page: a code is exchanged for the session, a failure reads
// as the provider's message, a cancel is simply nothing.
QCoro::Task<> byProvider(AppState &state, ProviderSignIn &signIn, QString provider)
{
    const QUrl start = state.api().url(QStringLiteral("auth/oauth/") + provider,
                                       {{QStringLiteral("client"), "mac"}});
    const ProviderSignIn::Outcome outcome = co_await signIn.run(start);
    switch (outcome.kind) {
    case ProviderSignIn::Outcome::Kind::code:
        state.setSignedIn(co_await state.api().exchange(outcome.text));
        co_await state.adoptPreferences();
        break;
    case ProviderSignIn::Outcome::Kind::failed:
        throw ServerError(outcome.text);
    case ProviderSignIn::Outcome::Kind::cancelled:
        break;
    }
}

} // namespace

SignInView::SignInView(QObject *parent)
    : QObject(parent), m_state(Services::current().state()), m_provider(new ProviderSignIn(this))
{
    connect(this, &SignInView::workingChanged, this, &SignInView::actionTitleChanged);
}

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
        return working() ? QStringLiteral("Making your account…")
                         : QStringLiteral("Make my account");
    return working() ? QStringLiteral("Signing in…") : QStringLiteral("Sign in");
}

QString SignInView::inboxText() const
{
    return QStringLiteral("We sent a link to ") + m_email +
           QStringLiteral(". Open it to confirm the address, then come back and sign in here.");
}

QCoro::Task<> SignInView::submitting()
{
    if (working() || m_mode == Mode::CheckInbox)
        co_return;
    if (m_email.isEmpty() || m_password.isEmpty()) {
        m_calls.setTrouble(enterEmailAndPassword);
        moveFocus(m_email.isEmpty() ? Field::Email : Field::Password);
        co_return;
    }
    if (m_mode == Mode::SignUp && PasswordRule::tooShort(m_password)) {
        m_calls.setTrouble(PasswordRule::tooShortMessage());
        moveFocus(Field::Password);
        co_return;
    }
    setUnconfirmed(false);
    setResent(false);
    const Mode mode = m_mode;
    // Learner input goes out trimmed of spaces and tabs; the password exactly as typed.
    const auto signedIn = co_await m_calls.run(
        byEmail(m_state, mode, m_email.trimmed(), m_password, m_name.trimmed()));
    if (signedIn.gone())
        co_return;
    if (signedIn.failed()) {
        if (mode == Mode::SignIn) {
            setUnconfirmed(signedIn.status() == 403);
            setPassword(QString());
            moveFocus(Field::Password);
        }
    } else if (mode == Mode::SignUp) {
        setPassword(QString());
        setMode(Mode::CheckInbox);
    }
}

QCoro::Task<> SignInView::resending()
{
    if (working())
        co_return;
    if (m_email.isEmpty()) {
        m_calls.setTrouble(enterEmailFirst);
        moveFocus(Field::Email);
        co_return;
    }
    const auto sent = co_await m_calls.run(m_state.api().resendVerification(m_email.trimmed()),
                                           CallOptions().keepingTrouble());
    if (sent)
        setResent(true);
}

QCoro::Task<> SignInView::continuingWith(QString provider)
{
    if (working())
        co_return;
    co_await m_calls.run(byProvider(m_state, *m_provider, provider));
}

QCoro::Task<> SignInView::loadingOptions()
{
    // Without the options the screen offers the email form only.
    auto options = co_await m_calls.run(m_state.api().authOptions(), CallOptions().background());
    if (!options)
        co_return;
    m_options = std::move(options.value());
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
    QUrl url = m_state.api().baseUrl();
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
    m_calls.setTrouble({});
    setUnconfirmed(false);
    setResent(false);
    setMode(Mode::SignUp);
    moveFocus(Field::Name);
}

void SignInView::showSignIn()
{
    m_calls.setTrouble({});
    setResent(false);
    setMode(Mode::SignIn);
    moveFocus(m_email.isEmpty() ? Field::Email : Field::Password);
}

void SignInView::noteFocus(Field field)
{
    m_focus = field;
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
