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

    // Bounds on costly work. Durations are all here, so tests can shorten them.
    bool noSignup = false;
    int hashWorkers = defaultWorkers();   // password hashes at once (64 MiB each)
    int speechWorkers = defaultWorkers(); // espeak-ng and lame processes at once
    int queueWaitSeconds = 10;            // how long a hash or a clip queues before "busy"
    int loginDelayMs = 1000;              // the first wait after repeated failed sign-ins
    QStringList trustedProxies;           // peers whose X-Forwarded-For is believed
    int streamsPerAccount = 4;            // event streams one account runs at once
    int llmCallsPerMinute = 60;           // language-model calls one account makes a minute
    int clipCacheMb = 512;                // spoken clips kept on disk
    int purgeIntervalSeconds = 3600;      // how often expired sessions and tokens are dropped

    static int defaultWorkers();

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
