#pragma once
#include <QHash>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QString>

namespace cardserver {

// One open connection to the store and the statements prepared on it. A connection is used
// by one thread at a time: SQLite gives every thread its own for good, PostgreSQL lends one from
// a pool for the length of a statement or a transaction.
class Connection {
public:
    Connection(QSqlDatabase db, bool forwardOnly);
    ~Connection();
    Connection(const Connection &) = delete;
    Connection &operator=(const Connection &) = delete;

    QSqlDatabase &database() { return m_db; }
    // A statement for `sql`, prepared on first use. Throws std::runtime_error when the
    // statement cannot be prepared.
    QSqlQuery &prepared(const QString &sql);

    // The connection failed in a way that may have left it unusable (lost, server shut down):
    // the pool closes it instead of lending it again.
    void markBroken() { m_broken = true; }
    bool broken() const { return m_broken; }

private:
    QSqlDatabase m_db;
    bool m_forwardOnly;
    bool m_broken = false;
    QHash<QString, QSqlQuery *> m_statements;
};

} // namespace cardserver
