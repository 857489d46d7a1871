#include "accounts/loginthrottle.h"

#include <QDateTime>

namespace cardserver {

void LoginThrottle::prune(QList<qint64> &times, qint64 now) const
{
    while (!times.isEmpty() && now - times.first() >= m_windowMs)
        times.removeFirst();
}

bool LoginThrottle::blocked(const QString &email)
{
    std::lock_guard lock(m_lock);
    auto it = m_failures.find(email.toCaseFolded());
    if (it == m_failures.end())
        return false;
    prune(*it, QDateTime::currentMSecsSinceEpoch());
    return it->size() >= m_limit;
}

void LoginThrottle::failed(const QString &email)
{
    std::lock_guard lock(m_lock);
    const qint64 now = QDateTime::currentMSecsSinceEpoch();
    auto &times = m_failures[email.toCaseFolded()];
    prune(times, now);
    times.append(now);
    // Keep the table small: forget addresses whose failures have all aged out.
    if (m_failures.size() > 10'000) {
        for (auto i = m_failures.begin(); i != m_failures.end();) {
            prune(*i, now);
            i = i->isEmpty() ? m_failures.erase(i) : std::next(i);
        }
    }
}

void LoginThrottle::succeeded(const QString &email)
{
    std::lock_guard lock(m_lock);
    m_failures.remove(email.toCaseFolded());
}

} // namespace cardserver
