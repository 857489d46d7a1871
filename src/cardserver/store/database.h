#pragma once
#include <atomic>
#include <functional>
#include <mutex>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QString>

namespace cardserver {

// The SQLite store. Requests are served on many threads and a QSqlDatabase connection
// belongs to the thread that opened it, so every thread gets its own named connection,
// opened on first use, with its own cache of prepared statements. Writes are serialised
// by one process-wide lock (SQLite has one writer at a time anyway), which spares the
// workers SQLITE_BUSY retries; reads run in parallel thanks to WAL mode.
class Database {
public:
    explicit Database(QString path);
    ~Database();
    Database(const Database &) = delete;
    Database &operator=(const Database &) = delete;

    // Opens the file, switches on WAL and brings the schema up to date.
    // Throws std::runtime_error with a one-line reason when the store cannot be used.
    void open();

    // This thread's connection.
    QSqlDatabase connection();

    // A prepared statement for `sql` on this thread's connection, prepared once per thread.
    // Callers bind by position, execute, read, and let `Sql` finish it.
    QSqlQuery &prepared(const QString &sql);

    // Runs `work` inside one write transaction (BEGIN IMMEDIATE … COMMIT); any exception
    // rolls the transaction back and propagates. Nested calls join the outer transaction.
    void write(const std::function<void()> &work);

    // Counts committed write transactions: a reply computed while this number stayed the same
    // is still current.
    quint64 generation() const { return m_generation.load(std::memory_order_acquire); }

private:
    QString connectionName() const;

    QString m_path;
    quint64 m_instance;
    std::mutex m_writeLock;
    std::atomic<quint64> m_generation{0};
    static std::atomic<quint64> s_instances;
};

} // namespace cardserver
