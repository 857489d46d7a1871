#include "store/database.h"

#include "store/schema.h"

#include <memory>
#include <QHash>
#include <QSqlError>
#include <QThread>
#include <stdexcept>
#include <unordered_map>

namespace cardserver {

std::atomic<quint64> Database::s_instances{0};

namespace {

// What one thread holds for one Database: its statements and its write nesting depth.
struct ThreadState {
    QHash<QString, QSqlQuery *> statements;
    int writeDepth = 0;
    ~ThreadState() { qDeleteAll(statements); }
};

ThreadState &threadState(quint64 instance)
{
    thread_local std::unordered_map<quint64, std::unique_ptr<ThreadState>> states;
    auto &slot = states[instance];
    if (!slot)
        slot = std::make_unique<ThreadState>();
    return *slot;
}

// Fixed statements (pragmas, transaction control) go through prepare() like every other.
void run(QSqlDatabase &db, const QString &sql)
{
    QSqlQuery q(db);
    if (!q.prepare(sql) || !q.exec())
        throw std::runtime_error((sql + ": " + q.lastError().text()).toStdString());
}

} // namespace

Database::Database(QString path) : m_path(std::move(path)), m_instance(++s_instances) {}

Database::~Database() = default;

QString Database::connectionName() const
{
    return QStringLiteral("orvel-%1-%2")
        .arg(m_instance)
        .arg(reinterpret_cast<quintptr>(QThread::currentThreadId()));
}

QSqlDatabase Database::connection()
{
    const QString name = connectionName();
    if (QSqlDatabase::contains(name))
        return QSqlDatabase::database(name, false);
    QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), name);
    db.setDatabaseName(m_path);
    db.setConnectOptions(QStringLiteral("QSQLITE_BUSY_TIMEOUT=10000"));
    if (!db.open())
        throw std::runtime_error(
            ("cannot open the store " + m_path + ": " + db.lastError().text()).toStdString());
    run(db, QStringLiteral("PRAGMA foreign_keys = ON"));
    run(db, QStringLiteral("PRAGMA synchronous = NORMAL"));
    return db;
}

void Database::open()
{
    QSqlDatabase db = connection();
    QSqlQuery q(db);
    if (!q.prepare(QStringLiteral("PRAGMA journal_mode = WAL")) || !q.exec() || !q.next())
        throw std::runtime_error(
            ("cannot use the store " + m_path + ": " + q.lastError().text()).toStdString());
    q.finish();
    write([&] { Schema::migrate(*this); });
}

QSqlQuery &Database::prepared(const QString &sql)
{
    ThreadState &state = threadState(m_instance);
    auto it = state.statements.find(sql);
    if (it != state.statements.end())
        return **it;
    auto *q = new QSqlQuery(connection());
    q->setForwardOnly(true); // rows are read once, in order: no need to cache them
    if (!q->prepare(sql)) {
        const QString why = q->lastError().text();
        delete q;
        throw std::runtime_error(("cannot prepare " + sql + ": " + why).toStdString());
    }
    state.statements.insert(sql, q);
    return *q;
}

void Database::write(const std::function<void()> &work)
{
    ThreadState &state = threadState(m_instance);
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
    std::lock_guard lock(m_writeLock);
    QSqlDatabase db = connection();
    run(db, QStringLiteral("BEGIN IMMEDIATE"));
    state.writeDepth = 1;
    try {
        work();
        state.writeDepth = 0;
        run(db, QStringLiteral("COMMIT"));
        m_generation.fetch_add(1, std::memory_order_acq_rel);
    } catch (...) {
        state.writeDepth = 0;
        QSqlQuery rollback(db);
        if (rollback.prepare(QStringLiteral("ROLLBACK")))
            rollback.exec();
        throw;
    }
}

} // namespace cardserver
