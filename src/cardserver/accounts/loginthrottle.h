#pragma once
#include <chrono>
#include <initializer_list>
#include <QString>

namespace cardserver {

class Database;

// Failed sign-ins, counted in the store (so every server process on it sees them) under three
// keys: the address with the client's IP, the client's IP alone, and the address alone. Each
// key lets a few failures through, then makes every further attempt wait twice as long as the
// last (firstDelay, 2×, 4×, … up to a cap). An attempt made before its wait is over is refused
// without being checked or counted. The address alone lets the most failures through and caps
// its wait lowest: someone else's failures from elsewhere delay the owner of an address a
// little, never lock them out. Counters quiet for a while are forgotten.
//
// Mailed links (confirmation on sign-up or on request, and forgotten passwords) are rationed
// the same way under keys of their own, per address and per client IP, so that nobody can fill
// the server's outbox or someone else's mailbox. Every request for a mail counts, whether or
// not the address has an account, so the limit tells nothing about which addresses do.
class LoginThrottle {
public:
    LoginThrottle(Database &db, std::chrono::milliseconds firstDelay);

    // How long this attempt must still wait; zero when it may go ahead.
    std::chrono::milliseconds waitBefore(const QString &email, const QString &client);
    void failed(const QString &email, const QString &client);
    // A correct password: the address's counters start again (the client's own IP keeps its
    // count, so one's own account cannot launder guesses at others).
    void succeeded(const QString &email, const QString &client);
    // How long a request for a mailed link must still wait; zero when it may go ahead.
    std::chrono::milliseconds mailWaitBefore(const QString &email, const QString &client);
    void mailAsked(const QString &email, const QString &client);
    // Drops counters quiet for longer than they are remembered.
    void purge();

private:
    struct Rule {
        int free;        // failures with no wait after them
        qint64 capSteps; // the longest wait, in units of firstDelay
    };
    struct Counter {
        QString key;
        Rule rule;
    };
    qint64 waitFor(const Rule &rule, qint64 failures, qint64 lastFailureMs, qint64 nowMs) const;
    std::chrono::milliseconds longestWait(std::initializer_list<Counter> counters);
    void count(std::initializer_list<QString> keys);
    qint64 forgetAfterMs() const;

    Database &m_db;
    qint64 m_firstDelayMs;
};

} // namespace cardserver
