#include "store/sql.h"

#include "store/database.h"

#include <QSqlError>
#include <stdexcept>

namespace cardserver {

Sql::Sql(Database &db, const QString &sql) : m_db(db), m_query(&db.prepared(sql)) {}

Sql::~Sql()
{
    m_db.finished(*m_query);
}

Sql &Sql::bind(const QVariant &value)
{
    // A null QString would be stored as SQL NULL; text columns hold "" instead.
    if (value.typeId() == QMetaType::QString && value.toString().isNull())
        m_query->bindValue(m_next++, QString(QLatin1String("")));
    else
        m_query->bindValue(m_next++, value);
    return *this;
}

Sql &Sql::exec()
{
    if (m_query->exec())
        return *this;
    // A statement on its own whose connection was lost (the database server restarted) runs
    // once more on a new connection.
    if (QSqlQuery *again = m_db.preparedAfresh(*m_query); again && again->exec()) {
        m_query = again;
        return *this;
    } else if (again) {
        m_query = again;
    }
    m_db.fail(m_query->lastError(), QStringLiteral("SQL failed in ") + m_query->lastQuery());
    return *this;
}

bool Sql::next()
{
    return m_query->next();
}

QVariant Sql::value(int column) const
{
    return m_query->value(column);
}

QString Sql::text(int column) const
{
    return m_query->value(column).toString();
}

qint64 Sql::integer(int column) const
{
    return m_query->value(column).toLongLong();
}

bool Sql::isNull(int column) const
{
    return m_query->isNull(column);
}

qint64 Sql::insertedId()
{
    exec();
    if (!next())
        throw std::runtime_error(("no id came back from " + m_query->lastQuery()).toStdString());
    return integer(0);
}

int Sql::rowsAffected() const
{
    return m_query->numRowsAffected();
}

qint64 Sql::scalar(qint64 fallback)
{
    exec();
    return next() ? integer(0) : fallback;
}

} // namespace cardserver
