#pragma once
#include "accounts/account.h"

#include <optional>

namespace cardserver {

class Database;
class PasswordHasher;

// Accounts, their one-time tokens (address confirmation, password reset), sessions and
// provider sign-in codes. Sessions are 256-bit random ids; only their digest is stored.
// A session lives 30 days from its last use (the expiry slides at most once an hour, so
// that reading does not write on every request).
class AccountStore {
public:
    static constexpr qint64 SessionSeconds = 30LL * 24 * 3600;

    AccountStore(Database &db, PasswordHasher &hasher) : m_db(db), m_hasher(hasher) {}

    // Throws ApiError 409 when the address is taken.
    Account create(const QString &email, const QString &password, const QString &displayName,
                   bool confirmed);
    std::optional<Account> byEmail(const QString &email);
    std::optional<Account> byId(qint64 id);
    void confirm(qint64 userId);
    // Also ends every password-reset link of the account: one sent before the change must
    // not undo it.
    void setPassword(qint64 userId, const QString &password);

    // Tokens of a kind ("confirm", "reset"); taking one consumes it.
    QString issueToken(qint64 userId, const QString &kind, qint64 ttlSeconds);
    qint64 takeToken(const QString &token, const QString &kind);

    QString startSession(qint64 userId);
    // The account of a live session, or 0; `refreshed` tells whether its expiry slid.
    qint64 sessionUser(const QString &token, bool *refreshed);
    void endSession(const QString &token);
    void endSessionsExcept(qint64 userId, const QString &keepToken);

    // Drops expired sessions, tokens and sign-in codes.
    void purgeExpired();

    QString issueSignInCode(qint64 userId);
    qint64 takeSignInCode(const QString &code);
    // The confirmed account that a test provider signs in as.
    Account providerAccount(const QString &provider);

private:
    std::optional<Account> one(const QString &sql, const QVariant &key);

    Database &m_db;
    PasswordHasher &m_hasher;
};

} // namespace cardserver
