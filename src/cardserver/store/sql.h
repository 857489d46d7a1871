#pragma once
#include <QSqlQuery>
#include <QString>
#include <QVariant>

namespace cardserver {

class Database;

// One use of a prepared statement: bind by position, run, read rows. Failures throw
// std::runtime_error (the router answers 500 and logs it). The statement is reset when
// the Sql goes out of scope so that it holds no read snapshot.
class Sql {
public:
    // On PostgreSQL a failure that another run of the transaction may avoid throws
    // WriteConflict, which Database::write catches to run it again.
    Sql(Database &db, const QString &sql);
    ~Sql();
    Sql(const Sql &) = delete;
    Sql &operator=(const Sql &) = delete;

    Sql &bind(const QVariant &value);
    Sql &exec();
    bool next();
    QVariant value(int column) const;
    QString text(int column) const;
    qint64 integer(int column) const;
    bool isNull(int column) const;
    // Runs an INSERT … RETURNING id and gives the new row's id (both engines know RETURNING).
    qint64 insertedId();
    int rowsAffected() const;

    // Runs the statement and returns the first column of the first row, or `fallback`.
    qint64 scalar(qint64 fallback = 0);

private:
    Database &m_db;
    QSqlQuery *m_query;
    int m_next = 0;
};

} // namespace cardserver
