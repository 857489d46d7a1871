#include "store/connection.h"

#include <QSqlError>
#include <stdexcept>

namespace cardserver {

Connection::Connection(QSqlDatabase db, bool forwardOnly)
    : m_db(std::move(db)), m_forwardOnly(forwardOnly)
{}

Connection::~Connection()
{
    qDeleteAll(m_statements);
    m_statements.clear();
    const QString name = m_db.connectionName();
    m_db.close();
    m_db = QSqlDatabase();
    QSqlDatabase::removeDatabase(name);
}

QSqlQuery &Connection::prepared(const QString &sql)
{
    auto it = m_statements.find(sql);
    if (it != m_statements.end())
        return **it;
    auto *q = new QSqlQuery(m_db);
    q->setForwardOnly(m_forwardOnly);
    if (!q->prepare(sql)) {
        const QSqlError error = q->lastError();
        delete q;
        if (error.type() == QSqlError::ConnectionError || !m_db.isOpen())
            m_broken = true;
        throw std::runtime_error(("cannot prepare " + sql + ": " + error.text()).toStdString());
    }
    m_statements.insert(sql, q);
    return *q;
}

} // namespace cardserver
