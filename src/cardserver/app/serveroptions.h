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

    bool help = false;
    QString error; // one-line reason when the command line is unusable

    static ServerOptions parse(const QStringList &arguments);
    static QString usage();
};

} // namespace cardserver
