#include "accountpane.h"

#include "app/appstate.h"
#include "app/passwordrule.h"
#include "server/apiclient.h"

namespace orvel {

namespace {

const QString fillAllThree = QStringLiteral("Enter your current password and the new one twice.");
const QString noMatch = QStringLiteral("The new passwords do not match.");

} // namespace

AccountPane::AccountPane(QObject *parent) : QObject(parent), m_state(AppState::instance()) {}

AccountPane::AccountPane(AppState &state, QObject *parent) : QObject(parent), m_state(&state) {}

void AccountPane::setCurrent(const QString &text)
{
    if (m_current == text)
        return;
    m_current = text;
    setChanged(false);
    emit currentChanged();
}

void AccountPane::setReplacement(const QString &text)
{
    if (m_replacement == text)
        return;
    m_replacement = text;
    setChanged(false);
    emit replacementChanged();
}

void AccountPane::setConfirmation(const QString &text)
{
    if (m_confirmation == text)
        return;
    m_confirmation = text;
    setChanged(false);
    emit confirmationChanged();
}

QCoro::Task<> AccountPane::changingPassword()
{
    if (m_working || !m_state)
        co_return;
    if (m_current.isEmpty() || m_replacement.isEmpty() || m_confirmation.isEmpty()) {
        setTrouble(fillAllThree);
        co_return;
    }
    if (m_replacement != m_confirmation) {
        setTrouble(noMatch);
        co_return;
    }
    if (PasswordRule::tooShort(m_replacement)) {
        setTrouble(PasswordRule::tooShortMessage());
        co_return;
    }
    setWorking(true);
    setTrouble({});
    QPointer self(this);
    QString failure;
    try {
        co_await m_state->api().changePassword(m_current, m_replacement);
    } catch (const ServerError &error) {
        failure = error.message();
    }
    if (!self)
        co_return;
    // Whatever happened, no password stays in the fields longer than needed.
    setCurrent({});
    if (failure.isEmpty()) {
        setReplacement({});
        setConfirmation({});
        setChanged(true);
    } else {
        setTrouble(failure);
    }
    setWorking(false);
}

void AccountPane::changePassword()
{
    changingPassword();
}

void AccountPane::signOut()
{
    if (m_state)
        m_state->requestSignOut();
}

void AccountPane::setTrouble(const QString &trouble)
{
    if (m_trouble == trouble)
        return;
    m_trouble = trouble;
    emit troubleChanged();
}

void AccountPane::setChanged(bool changed)
{
    if (m_changed == changed)
        return;
    m_changed = changed;
    emit changedChanged();
}

void AccountPane::setWorking(bool working)
{
    if (m_working == working)
        return;
    m_working = working;
    emit workingChanged();
}

} // namespace orvel
