#include "store/database.h"

#include "store/connection.h"
#include "store/connectionpool.h"
#include "store/schema.h"
#include "store/sql.h"
#include "store/writeconflict.h"

#include <chrono>
#include <QProcessEnvironment>
#include <QRandomGenerator>
#include <QSqlError>
#include <stdexcept>
#include <thread>
#include <unordered_map>

namespace cardserver {

std::atomic<quint64> Database::s_instances{0};

// What one thread holds of one Database: the connection it uses now (SQLite: its own, for
// good), how many holds are open on it, and its write nesting depth.
struct Database::ThreadState {
    std::unique_ptr<Connection> own;
    Connection *connection = nullptr;
    int holds = 0;
    int writeDepth = 0;
    // What PRAGMA data_version said last on `own`; -1 before the first look.
    qint64 dataVersion = -1;
};

namespace {

// SQLSTATEs after which running the transaction again may succeed: serialization failure and
// deadlock.
bool retryable(const QString &state)
{
    return state == QLatin1String("40001") || state == QLatin1String("40P01");
}

// SQLSTATEs that leave the connection unusable: connection exceptions (class 08) and the
// server shutting down or ending the session (57P01 to 57P03).
bool connectionLost(const QSqlError &error)
{
    const QString state = error.nativeErrorCode();
    return error.type() == QSqlError::ConnectionError || state.startsWith(QLatin1String("08")) ||
           state.startsWith(QLatin1String("57P"));
}

} // namespace

Database::Database(StoreAddress address) : m_address(std::move(address)), m_instance(++s_instances)
{
    if (engine() == Engine::Postgres)
        m_pool = std::make_unique<ConnectionPool>([this] { return openConnection(); },
                                                  PostgresConnections);
}

Database::~Database() = default;

Database::ThreadState &Database::threadState()
{
    thread_local std::unordered_map<quint64, std::unique_ptr<ThreadState>> states;
    auto &slot = states[m_instance];
    if (!slot)
        slot = std::make_unique<ThreadState>();
    return *slot;
}

std::unique_ptr<Connection> Database::openConnection()
{
    const QString name = QStringLiteral("orvel-%1-%2").arg(m_instance).arg(++m_connections);
    if (engine() == Engine::Sqlite) {
        // The Connection holds the only handle, so that closing it can remove the connection.
        auto c = std::make_unique<Connection>(
            QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), name), true);
        c->database().setDatabaseName(m_address.sqlitePath);
        c->database().setConnectOptions(QStringLiteral("QSQLITE_BUSY_TIMEOUT=10000"));
        if (!c->database().open())
            throw std::runtime_error(("cannot open the store " + m_address.sqlitePath + ": " +
                                      c->database().lastError().text())
                                         .toStdString());
        for (const char *pragma : {"PRAGMA foreign_keys = ON", "PRAGMA synchronous = NORMAL"}) {
            QSqlQuery q(c->database());
            if (!q.exec(QString::fromLatin1(pragma)))
                throw std::runtime_error(
                    (QString::fromLatin1(pragma) + ": " + q.lastError().text()).toStdString());
        }
        return c;
    }
    if (!QSqlDatabase::isDriverAvailable(QStringLiteral("QPSQL")))
        throw std::runtime_error("Qt's PostgreSQL driver (QPSQL, Debian's libqt6sql6-psql) is "
                                 "not installed");
    auto c = std::make_unique<Connection>(QSqlDatabase::addDatabase(QStringLiteral("QPSQL"), name),
                                          // Results are read whole: QPSQL's row-by-row mode would
                                          // lose the rest of a result as soon as another statement
                                          // runs on the connection.
                                          false);
    QSqlDatabase &db = c->database();
    if (!m_address.host.isEmpty())
        db.setHostName(m_address.host);
    db.setPort(m_address.port);
    db.setUserName(m_address.user);
    db.setDatabaseName(m_address.name);
    const QString password =
        QProcessEnvironment::systemEnvironment().value(QStringLiteral("ORVEL_DATABASE_PASSWORD"));
    if (!password.isEmpty())
        db.setPassword(password);
    QString options = QStringLiteral("connect_timeout=10;application_name=orvel-server");
    if (!m_address.sslMode.isEmpty())
        options += QStringLiteral(";sslmode=") + m_address.sslMode;
    db.setConnectOptions(options);
    if (!db.open())
        throw std::runtime_error(("cannot reach the " + m_address.describe() + ": " +
                                  db.lastError().databaseText().simplified())
                                     .toStdString());
    // libpq prints the server's notices on standard error ("relation already exists,
    // skipping"): only warnings and worse belong in the log.
    QSqlQuery quiet(db);
    if (!quiet.exec(QStringLiteral("SET client_min_messages TO warning")))
        throw std::runtime_error(("cannot set up a connection to the " + m_address.describe() +
                                  ": " + quiet.lastError().databaseText().simplified())
                                     .toStdString());
    return c;
}

Connection &Database::hold()
{
    ThreadState &state = threadState();
    if (state.holds == 0) {
        if (engine() == Engine::Sqlite) {
            if (!state.own)
                state.own = openConnection();
            state.connection = state.own.get();
        } else {
            state.connection = m_pool->take();
        }
    }
    ++state.holds;
    return *state.connection;
}

void Database::letGo()
{
    ThreadState &state = threadState();
    if (--state.holds > 0)
        return;
    if (engine() == Engine::Postgres) {
        m_pool->give(state.connection);
        state.connection = nullptr;
    } else if (state.connection->broken()) {
        state.own.reset();
        state.connection = nullptr;
        state.dataVersion = -1;
    }
}

void Database::connect()
{
    hold();
    try {
        if (engine() == Engine::Sqlite) {
            QSqlQuery q(threadState().connection->database());
            if (!q.exec(QStringLiteral("PRAGMA journal_mode = WAL")) || !q.next())
                throw std::runtime_error(
                    ("cannot use the store " + m_address.sqlitePath + ": " + q.lastError().text())
                        .toStdString());
        } else {
            execute(QStringLiteral("SELECT 1"));
        }
    } catch (...) {
        letGo();
        throw;
    }
    letGo();
}

void Database::open()
{
    connect();
    write([&] { Schema::migrate(*this); });
}

bool Database::reachable()
{
    // A second try runs on a new connection when the first found its connection lost (the
    // database server restarted since it was opened).
    for (int attempt = 0; attempt < 2; ++attempt) {
        try {
            execute(QStringLiteral("SELECT 1"));
            return true;
        } catch (const std::exception &) {
        }
    }
    return false;
}

QSqlQuery &Database::prepared(const QString &sql)
{
    Connection &c = hold();
    try {
        return c.prepared(sql);
    } catch (...) {
        letGo();
        throw;
    }
}

void Database::finished(QSqlQuery &query)
{
    query.finish();
    letGo();
}

QSqlQuery *Database::preparedAfresh(QSqlQuery &failed)
{
    ThreadState &state = threadState();
    if (engine() != Engine::Postgres || state.holds != 1 || state.writeDepth > 0 ||
        !connectionLost(failed.lastError()))
        return nullptr;
    const QString sql = failed.lastQuery();
    const QVariantList values = failed.boundValues();
    state.connection->markBroken();
    failed.finish();
    letGo();
    QSqlQuery &again = prepared(sql);
    for (int i = 0; i < values.size(); ++i)
        again.bindValue(i, values.at(i));
    return &again;
}

void Database::execute(const QString &sql)
{
    Connection &c = hold();
    QSqlQuery q(c.database());
    if (!q.exec(sql)) {
        const QSqlError error = q.lastError();
        q = QSqlQuery();
        try {
            fail(error, sql);
        } catch (...) {
            letGo();
            throw;
        }
    }
    q = QSqlQuery();
    letGo();
}

void Database::fail(const QSqlError &error, const QString &what)
{
    const std::string text = (what + ": " + error.text()).toStdString();
    if (retryable(error.nativeErrorCode()))
        throw WriteConflict(text);
    ThreadState &state = threadState();
    if (state.connection && connectionLost(error))
        state.connection->markBroken();
    throw std::runtime_error(text);
}

void Database::write(const std::function<void()> &work)
{
    ThreadState &state = threadState();
    if (state.writeDepth > 0) {
        ++state.writeDepth;
        try {
            work();
        } catch (...) {
            --state.writeDepth;
            throw;
        }
        --state.writeDepth;
        return;
    }
    if (engine() == Engine::Sqlite)
        writeSqlite(state, work);
    else
        writePostgres(state, work);
}

void Database::rollbackQuietly()
{
    try {
        execute(QStringLiteral("ROLLBACK"));
    } catch (const std::exception &) {
        // The transaction is gone with the connection, or was never begun.
    }
}

std::optional<quint64> Database::changeStamp()
{
    if (engine() != Engine::Sqlite)
        return std::nullopt;
    // data_version changes on a connection when any other connection has committed; a thread
    // that finds it changed (or looks for the first time, on a new connection) cannot tell
    // since when, so it moves the number for every thread.
    const qint64 version = Sql(*this, QStringLiteral("PRAGMA data_version")).scalar(-1);
    ThreadState &state = threadState();
    if (version < 0 || version != state.dataVersion) {
        state.dataVersion = version;
        m_generation.fetch_add(1, std::memory_order_acq_rel);
    }
    return m_generation.load(std::memory_order_acquire);
}

void Database::writeSqlite(ThreadState &state, const std::function<void()> &work)
{
    std::lock_guard lock(m_writeLock);
    hold();
    try {
        execute(QStringLiteral("BEGIN IMMEDIATE"));
        state.writeDepth = 1;
        work();
        state.writeDepth = 0;
        execute(QStringLiteral("COMMIT"));
        m_generation.fetch_add(1, std::memory_order_acq_rel);
    } catch (...) {
        state.writeDepth = 0;
        rollbackQuietly();
        letGo();
        throw;
    }
    letGo();
}

void Database::writePostgres(ThreadState &state, const std::function<void()> &work)
{
    for (int attempt = 1;; ++attempt) {
        hold();
        // A COMMIT that fails has ended the transaction already: no ROLLBACK after it.
        bool committing = false;
        try {
            execute(QStringLiteral("BEGIN ISOLATION LEVEL SERIALIZABLE"));
            state.writeDepth = 1;
            work();
            state.writeDepth = 0;
            committing = true;
            execute(QStringLiteral("COMMIT"));
            m_generation.fetch_add(1, std::memory_order_acq_rel);
            letGo();
            return;
        } catch (const WriteConflict &conflict) {
            state.writeDepth = 0;
            if (!committing)
                rollbackQuietly();
            letGo();
            if (attempt >= WriteAttempts)
                throw std::runtime_error(std::string("a write kept conflicting with others: ") +
                                         conflict.what());
        } catch (...) {
            state.writeDepth = 0;
            // A transaction whose connection was lost before COMMIT left nothing behind, so it
            // runs again on a new connection (once). Lost during COMMIT, it may have landed:
            // that is reported, never guessed.
            const bool lost = state.connection->broken();
            if (!committing && !lost)
                rollbackQuietly();
            letGo();
            if (!lost || committing || attempt > 1)
                throw;
        }
        // Conflicting transactions back off for a random while, growing with each attempt, so
        // that they do not meet again at once.
        const int ceiling = std::min(1 << attempt, 200);
        std::this_thread::sleep_for(
            std::chrono::milliseconds(1 + QRandomGenerator::global()->bounded(ceiling)));
    }
}

} // namespace cardserver
