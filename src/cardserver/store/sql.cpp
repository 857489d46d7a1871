#include "store/sql.h"

#include "store/database.h"

#include <QSqlError>
#include <stdexcept>

namespace cardserver {

Sql::Sql(Database &db, const QString &sql) : m_query(db.prepared(sql)) {}

Sql::~Sql()
{
    m_query.finish();
}

Sql &Sql::bind(const QVariant &value)
{
    // A null QString would be stored as SQL NULL; text columns hold "" instead.
    if (value.typeId() == QMetaType::QString && value.toString().isNull())
        m_query.bindValue(m_next++, QString(QLatin1String("")));
    else
        m_query.bindValue(m_next++, value);
    return *this;
}

Sql &Sql::exec()
{
    if (!m_query.exec())
        throw std::runtime_error(
            ("SQL failed: " + m_query.lastError().text() + " in " + m_query.lastQuery())
                .toStdString());
    return *this;
}

bool Sql::next()
{
    return m_query.next();
}

QVariant Sql::value(int column) const
{
    return m_query.value(column);
}

QString Sql::text(int column) const
{
    return m_query.value(column).toString();
}

qint64 Sql::integer(int column) const
{
    return m_query.value(column).toLongLong();
}

bool Sql::isNull(int column) const
{
    return m_query.isNull(column);
}

qint64 Sql::lastInsertId() const
{
    return m_query.lastInsertId().toLongLong();
}

int Sql::rowsAffected() const
{
    return m_query.numRowsAffected();
}

qint64 Sql::scalar(qint64 fallback)
{
    exec();
    return next() ? integer(0) : fallback;
}

} // namespace cardserver
