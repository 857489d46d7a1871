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

    bool help = false;
    QString error; // one-line reason when the command line is unusable

    static ServerOptions parse(const QStringList &arguments);
    static QString usage();
};

} // namespace cardserver
