#pragma once
#include "store/storeaddress.h"

#include <atomic>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <QSqlQuery>
#include <QString>

class QSqlError;

namespace cardserver {

class Connection;
class ConnectionPool;

// The store, on SQLite or PostgreSQL. Requests are served on many threads and a connection is
// used by one thread at a time. On SQLite every thread opens a connection of its own on first
// use and keeps it; writes are serialised by one process-wide lock (SQLite has one writer at a
// time anyway), which spares the workers SQLITE_BUSY retries, and reads run in parallel thanks
// to WAL mode. On PostgreSQL threads borrow connections from a pool, and every write is a
// SERIALIZABLE transaction, run again when the server reports a conflict with another
// transaction (of this process or of another one).
class Database {
public:
    using Engine = StoreAddress::Engine;
    // PostgreSQL connections one process keeps open at most.
    static constexpr int PostgresConnections = 16;
    // How often a write is tried before a conflict is reported as a failure.
    static constexpr int WriteAttempts = 12;

    explicit Database(StoreAddress address);
    ~Database();
    Database(const Database &) = delete;
    Database &operator=(const Database &) = delete;

    Engine engine() const { return m_address.engine; }
    const StoreAddress &address() const { return m_address; }

    // Connects (and on SQLite switches on WAL) and brings the schema up to date. Throws
    // std::runtime_error with a one-line reason when the store cannot be used.
    void open();
    // Only connects: throws std::runtime_error with a one-line reason when that fails.
    void connect();
    // Whether the database answers a trivial query now; never throws.
    bool reachable();

    // A prepared statement for `sql` on the connection this thread holds, which it holds from
    // here until finished() (holds nest). Callers bind by position, execute, read, and let
    // `Sql` finish it.
    QSqlQuery &prepared(const QString &sql);
    void finished(QSqlQuery &query);
    // After `failed` lost its connection: when it was this thread's only statement (no
    // transaction, nothing else open), the same statement with the same values on a new
    // connection, which the thread then holds instead; else null.
    QSqlQuery *preparedAfresh(QSqlQuery &failed);

    // Runs one statement that is not prepared: schema changes and transaction control.
    void execute(const QString &sql);

    // Throws for a failed statement: WriteConflict for a conflict that a retry may resolve,
    // std::runtime_error otherwise (naming `what`).
    [[noreturn]] void fail(const QSqlError &error, const QString &what);

    // Runs `work` inside one write transaction; any exception rolls it back and propagates.
    // Nested calls join the outer transaction. On PostgreSQL `work` may run more than once
    // (after a conflict), so it must only change the store and variables it sets afresh.
    void write(const std::function<void()> &work);

    // A number that moves whenever the store may have changed, read before computing a reply
    // that is kept: while it stays the same, the kept reply is still current. It counts the
    // write transactions this process committed and, on SQLite, the commits of every other
    // connection (another process's too) that this thread's connection has seen since it last
    // looked (PRAGMA data_version). Empty on PostgreSQL, which has no such cheap question:
    // nothing may be kept there.
    std::optional<quint64> changeStamp();

private:
    struct ThreadState;
    ThreadState &threadState();
    Connection &hold();
    void letGo();
    std::unique_ptr<Connection> openConnection();
    void writeSqlite(ThreadState &state, const std::function<void()> &work);
    void writePostgres(ThreadState &state, const std::function<void()> &work);
    void rollbackQuietly();

    StoreAddress m_address;
    quint64 m_instance;
    std::unique_ptr<ConnectionPool> m_pool;
    std::mutex m_writeLock;
    std::atomic<quint64> m_generation{0};
    std::atomic<quint64> m_connections{0};
    static std::atomic<quint64> s_instances;
};

} // namespace cardserver
