#include "accounts/loginthrottle.h"

#include "store/database.h"
#include "store/sql.h"
#include "text/clock.h"
#include "text/randomtoken.h"

#include <algorithm>

namespace cardserver {

namespace {

// The keys are digests, so the store holds neither addresses nor IPs for this.
QString pairKey(const QString &email, const QString &client)
{
    return RandomToken::digest(QStringLiteral("pair\n") + client + u'\n' + email.toCaseFolded());
}

QString addressKey(const QString &email)
{
    return RandomToken::digest(QStringLiteral("address\n") + email.toCaseFolded());
}

QString clientKey(const QString &client)
{
    return RandomToken::digest(QStringLiteral("client\n") + client);
}

QString mailKey(const char *kind, const QString &subject)
{
    return RandomToken::digest(QStringLiteral("mail %1\n").arg(QLatin1String(kind)) +
                               subject.toCaseFolded());
}

} // namespace

LoginThrottle::LoginThrottle(Database &db, std::chrono::milliseconds firstDelay)
    : m_db(db), m_firstDelayMs(std::max<qint64>(1, firstDelay.count()))
{}

qint64 LoginThrottle::forgetAfterMs() const
{
    return 900 * m_firstDelayMs; // a quarter of an hour with the default one-second delay
}

qint64 LoginThrottle::waitFor(const Rule &rule, qint64 failures, qint64 lastFailureMs,
                              qint64 now) const
{
    if (failures < rule.free || now - lastFailureMs > forgetAfterMs())
        return 0;
    const qint64 doublings = std::min<qint64>(failures - rule.free, 30);
    const qint64 steps = std::min(qint64(1) << doublings, rule.capSteps);
    return std::max<qint64>(0, lastFailureMs + steps * m_firstDelayMs - now);
}

std::chrono::milliseconds LoginThrottle::longestWait(std::initializer_list<Counter> counters)
{
    const qint64 now = Clock::nowMs();
    qint64 wait = 0;
    for (const Counter &c : counters) {
        Sql q(m_db, "SELECT failures, last_failure FROM login_failures WHERE subject = ?");
        q.bind(c.key).exec();
        if (q.next())
            wait = std::max(wait, waitFor(c.rule, q.integer(0), q.integer(1), now));
    }
    return std::chrono::milliseconds(wait);
}

void LoginThrottle::count(std::initializer_list<QString> keys)
{
    const qint64 now = Clock::nowMs();
    m_db.write([&] {
        for (const QString &key : keys) {
            // A counter quiet for longer than it is remembered starts again at one.
            Sql(m_db,
                "INSERT INTO login_failures (subject, failures, last_failure) VALUES (?, 1, ?) "
                "ON CONFLICT (subject) DO UPDATE SET failures = CASE WHEN "
                "login_failures.last_failure < ? THEN 1 ELSE login_failures.failures + 1 "
                "END, last_failure = excluded.last_failure")
                .bind(key)
                .bind(now)
                .bind(now - forgetAfterMs())
                .exec();
        }
    });
}

std::chrono::milliseconds LoginThrottle::waitBefore(const QString &email, const QString &client)
{
    return longestWait({{pairKey(email, client), {5, 64}},
                        {clientKey(client), {20, 64}},
                        {addressKey(email), {10, 4}}});
}

void LoginThrottle::failed(const QString &email, const QString &client)
{
    count({pairKey(email, client), clientKey(client), addressKey(email)});
}

std::chrono::milliseconds LoginThrottle::mailWaitBefore(const QString &email, const QString &client)
{
    // A few links to one address, a few more from one client; then each next one waits twice
    // as long, up to a few minutes (with the default one-second first delay).
    return longestWait(
        {{mailKey("address", email), {3, 256}}, {mailKey("client", client), {10, 512}}});
}

void LoginThrottle::mailAsked(const QString &email, const QString &client)
{
    count({mailKey("address", email), mailKey("client", client)});
}

void LoginThrottle::succeeded(const QString &email, const QString &client)
{
    m_db.write([&] {
        for (const QString &key : {pairKey(email, client), addressKey(email)})
            Sql(m_db, "DELETE FROM login_failures WHERE subject = ?").bind(key).exec();
    });
}

void LoginThrottle::purge()
{
    m_db.write([&] {
        Sql(m_db, "DELETE FROM login_failures WHERE last_failure < ?")
            .bind(Clock::nowMs() - forgetAfterMs())
            .exec();
    });
}

} // namespace cardserver
