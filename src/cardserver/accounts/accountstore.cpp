#include "accounts/accountstore.h"

#include "accounts/passwordhasher.h"
#include "http/apierror.h"
#include "store/database.h"
#include "store/sql.h"
#include "text/clock.h"
#include "text/randomtoken.h"

namespace cardserver {

namespace {
const QString AccountColumns =
    QStringLiteral("SELECT id, email, display_name, password_hash, confirmed FROM users ");

// Addresses match without regard to ASCII case, as they always have in this store; other
// letters are compared as written.
QString emailKey(const QString &email)
{
    QString key = email;
    for (QChar &c : key)
        if (c.unicode() >= 'A' && c.unicode() <= 'Z')
            c = QChar(c.unicode() + ('a' - 'A'));
    return key;
}
} // namespace

std::optional<Account> AccountStore::one(const QString &where, const QVariant &key)
{
    Sql q(m_db, AccountColumns + where);
    q.bind(key).exec();
    if (!q.next())
        return std::nullopt;
    Account a;
    a.id = q.integer(0);
    a.email = q.text(1);
    a.displayName = q.text(2);
    a.passwordHash = q.text(3);
    a.confirmed = q.integer(4) != 0;
    return a;
}

Account AccountStore::create(const QString &email, const QString &password,
                             const QString &displayName, bool confirmed)
{
    const QString hash = PasswordHasher::hash(password); // slow: outside the write lock
    Account a;
    m_db.write([&] {
        if (byEmail(email))
            throw ApiError(409, QStringLiteral("An account with this email already exists. "
                                               "Sign in instead."));
        a.id = Sql(m_db, "INSERT INTO users (email, email_fold, password_hash, display_name, "
                         "confirmed, created_at) VALUES (?, ?, ?, ?, ?, ?) RETURNING id")
                   .bind(email)
                   .bind(emailKey(email))
                   .bind(hash)
                   .bind(displayName)
                   .bind(confirmed ? 1 : 0)
                   .bind(Clock::nowText())
                   .insertedId();
    });
    a.email = email;
    a.displayName = displayName;
    a.passwordHash = hash;
    a.confirmed = confirmed;
    return a;
}

std::optional<Account> AccountStore::byEmail(const QString &email)
{
    return one(QStringLiteral("WHERE email_fold = ?"), emailKey(email));
}

std::optional<Account> AccountStore::byId(qint64 id)
{
    return one(QStringLiteral("WHERE id = ?"), id);
}

void AccountStore::confirm(qint64 userId)
{
    m_db.write(
        [&] { Sql(m_db, "UPDATE users SET confirmed = 1 WHERE id = ?").bind(userId).exec(); });
}

void AccountStore::setPassword(qint64 userId, const QString &password)
{
    const QString hash = PasswordHasher::hash(password);
    m_db.write([&] {
        Sql(m_db, "UPDATE users SET password_hash = ? WHERE id = ?").bind(hash).bind(userId).exec();
    });
}

QString AccountStore::issueToken(qint64 userId, const QString &kind, qint64 ttlSeconds)
{
    const QString token = RandomToken::hex(24);
    m_db.write([&] {
        Sql(m_db, "DELETE FROM tokens WHERE expires_at < ?").bind(Clock::nowSeconds()).exec();
        Sql(m_db, "INSERT INTO tokens (token, user_id, kind, expires_at) VALUES (?, ?, ?, ?)")
            .bind(RandomToken::digest(token))
            .bind(userId)
            .bind(kind)
            .bind(Clock::nowSeconds() + ttlSeconds)
            .exec();
    });
    return token;
}

qint64 AccountStore::takeToken(const QString &token, const QString &kind)
{
    qint64 userId = 0;
    m_db.write([&] {
        const QString key = RandomToken::digest(token);
        Sql q(m_db, "SELECT user_id FROM tokens WHERE token = ? AND kind = ? AND expires_at >= ?");
        userId = q.bind(key).bind(kind).bind(Clock::nowSeconds()).scalar(0);
        if (userId)
            Sql(m_db, "DELETE FROM tokens WHERE token = ?").bind(key).exec();
    });
    return userId;
}

QString AccountStore::startSession(qint64 userId)
{
    const QString token = RandomToken::hex(32);
    m_db.write([&] {
        Sql(m_db, "INSERT INTO sessions (id, user_id, expires_at, created_at) VALUES (?, ?, ?, ?)")
            .bind(RandomToken::digest(token))
            .bind(userId)
            .bind(Clock::nowSeconds() + SessionSeconds)
            .bind(Clock::nowText())
            .exec();
    });
    return token;
}

qint64 AccountStore::sessionUser(const QString &token, bool *refreshed)
{
    if (refreshed)
        *refreshed = false;
    if (token.size() != 64)
        return 0;
    const QString key = RandomToken::digest(token);
    const qint64 now = Clock::nowSeconds();
    qint64 userId = 0;
    qint64 expires = 0;
    {
        Sql q(m_db, "SELECT user_id, expires_at FROM sessions WHERE id = ?");
        q.bind(key).exec();
        if (!q.next())
            return 0;
        userId = q.integer(0);
        expires = q.integer(1);
    }
    if (expires < now)
        return 0;
    if (expires < now + SessionSeconds - 3600) {
        m_db.write([&] {
            Sql(m_db, "UPDATE sessions SET expires_at = ? WHERE id = ?")
                .bind(now + SessionSeconds)
                .bind(key)
                .exec();
        });
        if (refreshed)
            *refreshed = true;
    }
    return userId;
}

void AccountStore::endSession(const QString &token)
{
    m_db.write([&] {
        Sql(m_db, "DELETE FROM sessions WHERE id = ?").bind(RandomToken::digest(token)).exec();
    });
}

void AccountStore::endSessionsExcept(qint64 userId, const QString &keepToken)
{
    m_db.write([&] {
        Sql(m_db, "DELETE FROM sessions WHERE user_id = ? AND id <> ?")
            .bind(userId)
            .bind(RandomToken::digest(keepToken))
            .exec();
    });
}

QString AccountStore::issueSignInCode(qint64 userId)
{
    const QString code = RandomToken::hex(24);
    m_db.write([&] {
        Sql(m_db, "DELETE FROM sign_in_codes WHERE expires_at < ?")
            .bind(Clock::nowSeconds())
            .exec();
        Sql(m_db, "INSERT INTO sign_in_codes (code, user_id, expires_at) VALUES (?, ?, ?)")
            .bind(RandomToken::digest(code))
            .bind(userId)
            .bind(Clock::nowSeconds() + 300)
            .exec();
    });
    return code;
}

qint64 AccountStore::takeSignInCode(const QString &code)
{
    qint64 userId = 0;
    m_db.write([&] {
        const QString key = RandomToken::digest(code);
        userId = Sql(m_db, "SELECT user_id FROM sign_in_codes WHERE code = ? AND expires_at >= ?")
                     .bind(key)
                     .bind(Clock::nowSeconds())
                     .scalar(0);
        Sql(m_db, "DELETE FROM sign_in_codes WHERE code = ?").bind(key).exec();
    });
    return userId;
}

Account AccountStore::providerAccount(const QString &provider)
{
    const QString email = provider + QStringLiteral(".tester@orvel.test");
    if (auto existing = byEmail(email))
        return *existing;
    const QString name = provider.left(1).toUpper() + provider.mid(1) + QStringLiteral(" tester");
    try {
        return create(email, RandomToken::hex(16), name, true);
    } catch (const ApiError &) {
        return *byEmail(email); // made by a concurrent sign-in
    }
}

} // namespace cardserver
