#include "accountpane.h"

#include "app/appstate.h"
#include "app/passwordrule.h"
#include "app/services.h"
#include "server/apiclient.h"

namespace orvel {

namespace {

const QString fillAllThree = QStringLiteral("Enter your current password and the new one twice.");
const QString noMatch = QStringLiteral("The new passwords do not match.");

} // namespace

AccountPane::AccountPane(QObject *parent) : QObject(parent), m_state(Services::current().state()) {}

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
    if (working())
        co_return;
    if (m_current.isEmpty() || m_replacement.isEmpty() || m_confirmation.isEmpty()) {
        m_calls.setTrouble(fillAllThree);
        co_return;
    }
    if (m_replacement != m_confirmation) {
        m_calls.setTrouble(noMatch);
        co_return;
    }
    if (PasswordRule::tooShort(m_replacement)) {
        m_calls.setTrouble(PasswordRule::tooShortMessage());
        co_return;
    }
    const auto changed =
        co_await m_calls.run(m_state.api().changePassword(m_current, m_replacement));
    if (changed.gone())
        co_return;
    // Whatever happened, no password stays in the fields longer than needed.
    setCurrent({});
    if (changed) {
        setReplacement({});
        setConfirmation({});
        setChanged(true);
    }
}

void AccountPane::changePassword()
{
    changingPassword();
}

void AccountPane::signOut()
{
    m_state.requestSignOut();
}

void AccountPane::setChanged(bool changed)
{
    if (m_changed == changed)
        return;
    m_changed = changed;
    emit changedChanged();
}

} // namespace orvel
