#include "accounts/expirypurge.h"

#include "accounts/accountstore.h"
#include "accounts/loginthrottle.h"

#include <QDebug>
#include <stdexcept>

namespace cardserver {

ExpiryPurge::ExpiryPurge(AccountStore &accounts, LoginThrottle &throttle,
                         std::chrono::seconds interval)
    : m_accounts(accounts), m_throttle(throttle), m_interval(interval)
{
    runOnce();
    m_thread = std::thread([this] {
        std::unique_lock lock(m_lock);
        while (!m_wake.wait_for(lock, m_interval, [this] { return m_stopping; })) {
            lock.unlock();
            runOnce();
            lock.lock();
        }
    });
}

ExpiryPurge::~ExpiryPurge()
{
    {
        std::lock_guard guard(m_lock);
        m_stopping = true;
    }
    m_wake.notify_all();
    m_thread.join();
}

void ExpiryPurge::runOnce()
{
    try {
        m_accounts.purgeExpired();
        m_throttle.purge();
    } catch (const std::exception &e) {
        qWarning().noquote() << "purging expired sessions failed:" << e.what();
    }
}

} // namespace cardserver
