#pragma once

#include "testdatabase.h"

#include <QByteArray>
#include <QProcess>
#include <QStringList>
#include <QTemporaryDir>
#include <QUrl>

// A real orvel-server on a free loopback port with a data folder of its own, for tests that
// talk to the server over HTTP. The server is stopped when this object goes away. Its store is
// a TestDatabase: SQLite, or a fresh PostgreSQL database for the *_pg tests. Without a test
// cluster those exit with TestDatabase::SkipStatus outside CI, and fail to start in CI.
class ServerProcess {
public:
    explicit ServerProcess(const QStringList &extraArguments = {});
    ~ServerProcess();

    // Starts the server and waits for its "listening on" line; false (with the reason in
    // errorText()) if it did not come up in time.
    bool start(int timeoutMs = 15000);
    void stop();

    QUrl baseUrl() const { return m_baseUrl; }
    QString dataDir() const { return m_data.path(); }
    // The store this server uses (made by start()).
    TestDatabase &database() { return m_database; }
    QString errorText() const { return m_error; }
    // What the server wrote to its standard error so far (its log).
    QByteArray log();

    static QString executable();

    // Runs orvel-server to the end (for commands that exit, such as --check): its exit status
    // (-1 when it did not end within ten seconds) and what it printed.
    struct Outcome {
        int code;
        QString out;
        QString err;
    };
    static Outcome run(const QStringList &arguments);

private:
    QStringList m_arguments;
    QTemporaryDir m_data;
    TestDatabase m_database;
    QProcess m_process;
    QUrl m_baseUrl;
    QString m_error;
    QByteArray m_log;
};
