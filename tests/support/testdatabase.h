#pragma once

#include <QSqlDatabase>
#include <QString>

// The store of one test server. By default the server keeps its SQLite file under its data
// folder; with ORVEL_TEST_ENGINE=postgresql (set by CTest for the *_pg tests) it is a fresh
// database in the private test cluster that scripts/postgres-cluster started (ORVEL_TEST_PGHOST,
// ORVEL_TEST_PGPORT, ORVEL_TEST_PGUSER), dropped again when this object goes away.
class TestDatabase {
public:
    TestDatabase() = default;
    ~TestDatabase();
    TestDatabase(const TestDatabase &) = delete;
    TestDatabase &operator=(const TestDatabase &) = delete;

    static bool postgresWanted();
    // Why the test cluster cannot be used, or empty when it can.
    static QString clusterMissing();
    // Exit status that CTest counts as a skip (SKIP_RETURN_CODE of the *_pg tests).
    static constexpr int SkipStatus = 77;

    // Makes the database (PostgreSQL only; a no-op for SQLite). False, with the reason in
    // `error`, when it could not be made. Without a test cluster, outside CI, the test program
    // says so and exits with SkipStatus.
    bool create(QString *error);
    // The --database value for the server: empty for SQLite under the data folder.
    QString url() const { return m_url; }
    // A connection of the test's own to the same store, for looking at or changing rows
    // behind the server's back; `sqlitePath` is where the SQLite store is.
    QSqlDatabase connect(const QString &sqlitePath);

private:
    static QSqlDatabase admin(const QString &connectionName, const QString &database);

    QString m_name;
    QString m_url;
    QString m_connection;
};
