#include "accounts/loginthrottle.h"

#include "store/database.h"
#include "store/sql.h"
#include "text/randomtoken.h"

#include <algorithm>
#include <QDateTime>

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

qint64 nowMs()
{
    return QDateTime::currentMSecsSinceEpoch();
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

std::chrono::milliseconds LoginThrottle::waitBefore(const QString &email, const QString &client)
{
    static constexpr Rule pair{5, 64};
    static constexpr Rule byClient{20, 64};
    static constexpr Rule byAddress{10, 4};
    const QString keys[] = {pairKey(email, client), clientKey(client), addressKey(email)};
    const Rule *rules[] = {&pair, &byClient, &byAddress};
    const qint64 now = nowMs();
    qint64 wait = 0;
    for (int i = 0; i < 3; ++i) {
        Sql q(m_db, "SELECT failures, last_failure FROM login_failures WHERE subject = ?");
        q.bind(keys[i]).exec();
        if (q.next())
            wait = std::max(wait, waitFor(*rules[i], q.integer(0), q.integer(1), now));
    }
    return std::chrono::milliseconds(wait);
}

void LoginThrottle::failed(const QString &email, const QString &client)
{
    const qint64 now = nowMs();
    m_db.write([&] {
        for (const QString &key : {pairKey(email, client), clientKey(client), addressKey(email)}) {
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
            .bind(nowMs() - forgetAfterMs())
            .exec();
    });
}

} // namespace cardserver
