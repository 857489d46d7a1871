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

    // The HTTP layer's bounds (see HttpLimits).
    int maxConnections = 10000;  // beyond it a connection is answered 503 and closed
    int idleTimeoutSeconds = 30; // a kept-alive connection with no request is closed
    int readTimeoutSeconds = 10; // to send a request's headers once begun
    int requestThreads = 0;      // threads answering requests (0: four per core, at least 8)
    int streamThreads = 64;      // threads running event streams' writer jobs

    bool help = false;
    QString error; // one-line reason when the command line is unusable

    static ServerOptions parse(const QStringList &arguments);
    static QString usage();
};

} // namespace cardserver
