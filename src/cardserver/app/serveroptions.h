#pragma once
#include <QString>
#include <QStringList>

namespace cardserver {

// The command line of orvel-server.
struct ServerOptions {
    QString host = QStringLiteral("127.0.0.1");
    int port = 8470;
    QString dataDir;
    bool local = false;
    QString writer = QStringLiteral("dictionary");
    QString llmUrl;
    QString llmModel;
    QString database; // empty: SQLite under dataDir
    bool testProviders = false;
    QString dictionaryDir = QStringLiteral("/usr/share/dictd");
    // Outgoing requests (picture import, picture search, the language model) may reach
    // loopback and private addresses: for a model on the same machine or network.
    bool allowPrivateFetch = false;
    int fetchTimeoutSeconds = 20; // the whole of one outgoing picture fetch
    // Tests only: loopback "host:port" pairs treated as public addresses (--test-public-host).
    QStringList testPublicHosts;
    // Bring the store's schema up to date, say its version, and exit (--migrate-only).
    bool migrateOnly = false;
    // Say whether the store is reachable and its schema current, and exit 0 or 1 (--check).
    bool check = false;
    // Tests only: --migrate-only stops at this schema version (--test-schema), so that a test
    // can make a store as an earlier release left it. -1: the latest.
    int testSchema = -1;

    bool help = false;
    QString error; // one-line reason when the command line is unusable

    static ServerOptions parse(const QStringList &arguments);
    static QString usage();
};

} // namespace cardserver
