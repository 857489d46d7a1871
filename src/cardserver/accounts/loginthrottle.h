#pragma once
#include <mutex>
#include <QHash>
#include <QList>
#include <QString>

namespace cardserver {

// Counts failed sign-ins per address over a sliding minute. After `limit` failures within
// the window, further attempts for that address are refused until the oldest failure ages
// out, whatever the password.
class LoginThrottle {
public:
    explicit LoginThrottle(int limit = 10, qint64 windowMs = 60'000)
        : m_limit(limit), m_windowMs(windowMs)
    {}

    bool blocked(const QString &email);
    void failed(const QString &email);
    void succeeded(const QString &email);

private:
    void prune(QList<qint64> &times, qint64 now) const;

    int m_limit;
    qint64 m_windowMs;
    std::mutex m_lock;
    QHash<QString, QList<qint64>> m_failures;
};

} // namespace cardserver
