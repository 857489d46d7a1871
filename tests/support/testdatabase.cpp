#include "testdatabase.h"

#include <cstdio>
#include <cstdlib>
#include <QAtomicInt>
#include <QCoreApplication>
#include <QSqlError>
#include <QSqlQuery>

namespace {
QAtomicInt s_count;
}

bool TestDatabase::postgresWanted()
{
    return qEnvironmentVariable("ORVEL_TEST_ENGINE") == QLatin1String("postgresql");
}

QString TestDatabase::clusterMissing()
{
    if (qEnvironmentVariable("ORVEL_TEST_PGHOST").isEmpty() ||
        qEnvironmentVariable("ORVEL_TEST_PGPORT").isEmpty())
        return QStringLiteral("no PostgreSQL test cluster: start one with "
                              "eval \"$(bash scripts/postgres-cluster start)\" before ctest");
    if (!QSqlDatabase::isDriverAvailable(QStringLiteral("QPSQL")))
        return QStringLiteral("Qt's PostgreSQL driver is missing (libqt6sql6-psql)");
    return QString();
}

QSqlDatabase TestDatabase::admin(const QString &connectionName, const QString &database)
{
    QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QPSQL"), connectionName);
    db.setHostName(qEnvironmentVariable("ORVEL_TEST_PGHOST"));
    db.setPort(qEnvironmentVariable("ORVEL_TEST_PGPORT").toInt());
    db.setUserName(qEnvironmentVariable("ORVEL_TEST_PGUSER", QStringLiteral("postgres")));
    db.setDatabaseName(database);
    db.open();
    return db;
}

bool TestDatabase::create(QString *error)
{
    if (!postgresWanted() || !m_name.isEmpty())
        return true;
    if (const QString why = clusterMissing(); !why.isEmpty()) {
        if (qEnvironmentVariable("CI") != QLatin1String("true")) {
            std::fprintf(stderr, "SKIP: %s\n", qPrintable(why));
            std::exit(SkipStatus);
        }
        *error = why;
        return false;
    }
    const QString name = QStringLiteral("orvel_test_%1_%2")
                             .arg(QCoreApplication::applicationPid())
                             .arg(s_count.fetchAndAddRelaxed(1));
    bool made = false;
    {
        QSqlDatabase db = admin(name + "_admin", QStringLiteral("postgres"));
        QSqlQuery q(db);
        made = db.isOpen() && q.exec("CREATE DATABASE " + name);
        if (!made)
            *error = QStringLiteral("cannot make a test database: ") +
                     (db.isOpen() ? q.lastError().text() : db.lastError().text());
    }
    QSqlDatabase::removeDatabase(name + "_admin");
    if (!made)
        return false;
    m_name = name;
    m_url = QStringLiteral("postgresql://%1@:%2/%3?host=%4")
                .arg(qEnvironmentVariable("ORVEL_TEST_PGUSER", QStringLiteral("postgres")),
                     qEnvironmentVariable("ORVEL_TEST_PGPORT"), name,
                     qEnvironmentVariable("ORVEL_TEST_PGHOST"));
    return true;
}

QSqlDatabase TestDatabase::connect(const QString &sqlitePath)
{
    if (m_connection.isEmpty())
        m_connection = QStringLiteral("test-store-%1").arg(s_count.fetchAndAddRelaxed(1));
    if (QSqlDatabase::contains(m_connection))
        return QSqlDatabase::database(m_connection);
    if (!m_name.isEmpty())
        return admin(m_connection, m_name);
    QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), m_connection);
    db.setDatabaseName(sqlitePath);
    db.open();
    return db;
}

TestDatabase::~TestDatabase()
{
    if (!m_connection.isEmpty()) {
        QSqlDatabase::database(m_connection, false).close();
        QSqlDatabase::removeDatabase(m_connection);
    }
    if (m_name.isEmpty())
        return;
    {
        QSqlDatabase db = admin(m_name + "_drop", QStringLiteral("postgres"));
        QSqlQuery q(db);
        q.exec("DROP DATABASE IF EXISTS " + m_name + " WITH (FORCE)");
    }
    QSqlDatabase::removeDatabase(m_name + "_drop");
}
