#include "providersignin.h"

#include "app/browser.h"
#include "server/resumer.h"

#include <QDebug>
#include <QPointer>
#include <QUrlQuery>

namespace orvel {

namespace {

// The one session that waits for a callback (there is at most one sign-in at a time).
QPointer<ProviderSignIn> &waitingSession()
{
    static QPointer<ProviderSignIn> session;
    return session;
}

const QString cameBackEmpty = QStringLiteral("The sign-in came back empty.");
const QString didNotComplete = QStringLiteral("The sign-in did not complete.");
const QString couldNotOpen = QStringLiteral("Could not open the sign-in window.");

} // namespace

ProviderSignIn::ProviderSignIn(QObject *parent) : QObject(parent) {}

ProviderSignIn::~ProviderSignIn() = default;

QCoro::Task<ProviderSignIn::Outcome> ProviderSignIn::run(QUrl start)
{
    if (m_waiting)
        cancel(); // a session that was never finished gives way to the new one
    m_outcome.reset();
    const quint64 session = ++m_session;
    // Each run waits on its own resumer, so a run that a newer one cancelled is still woken.
    const auto resumer = std::make_shared<Resumer>();
    m_resumer = resumer;
    m_waiting = true;
    waitingSession() = this;
    emit waitingChanged();

    if (!Browser::open(start))
        settle(Outcome::failed(couldNotOpen));
    if (!m_outcome)
        co_await resumer->wait();

    // A newer run cancelled this one; its outcome is not this run's.
    if (session != m_session || !m_outcome)
        co_return Outcome::cancelled();
    co_return *m_outcome;
}

void ProviderSignIn::cancel()
{
    if (m_waiting)
        settle(Outcome::cancelled());
}

bool ProviderSignIn::deliver(const QUrl &callback)
{
    ProviderSignIn *session = waitingSession();
    if (!session || !session->m_waiting)
        return false;
    session->settle(readCallback(callback));
    return true;
}

ProviderSignIn::Outcome ProviderSignIn::readCallback(const QUrl &callback)
{
    if (callback.isEmpty() || !callback.isValid() || !callback.hasQuery())
        return Outcome::failed(cameBackEmpty);
    const auto items = QUrlQuery(callback).queryItems(QUrl::FullyDecoded);
    if (items.isEmpty())
        return Outcome::failed(cameBackEmpty);
    for (const auto &[name, value] : items)
        if (name == QLatin1String("code") && !value.isEmpty())
            return Outcome::code(value);
    for (const auto &[name, value] : items)
        if (name == QLatin1String("error") && !value.isEmpty())
            return Outcome::failed(value);
    return Outcome::failed(didNotComplete);
}

void ProviderSignIn::settle(Outcome outcome)
{
    if (!m_waiting)
        return;
    m_outcome = std::move(outcome);
    m_waiting = false;
    if (waitingSession() == this)
        waitingSession() = nullptr;
    emit waitingChanged();
    emit settled();
    if (m_resumer)
        m_resumer->wake();
}

} // namespace orvel
