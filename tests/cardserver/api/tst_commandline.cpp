// The command line of orvel-server: --help, refusals with a one-line reason, and the
// "listening on" line (a usable address, IPv6 included).
#include "api.h"
#include "serverprocess.h"

#include <QProcess>
#include <QTcpServer>
#include <QTemporaryDir>
#include <QTest>

class TestCommandLine : public QObject {
    Q_OBJECT

    using Run = ServerProcess::Outcome;
    static Run run(const QStringList &arguments) { return ServerProcess::run(arguments); }

private slots:
    void helpDocumentsEveryFlag()
    {
        const Run r = run({"--help"});
        QCOMPARE(r.code, 0);
        for (const char *flag : {"--listen",
                                 "--data",
                                 "--local",
                                 "--writer",
                                 "--llm-url",
                                 "--llm-model",
                                 "--database",
                                 "--test-providers",
                                 "--help",
                                 "--no-signup",
                                 "--hash-workers",
                                 "--speech-workers",
                                 "--queue-wait",
                                 "--login-delay-ms",
                                 "--trusted-proxy",
                                 "--streams-per-account",
                                 "--llm-calls-per-minute",
                                 "--clip-cache-mb",
                                 "--purge-interval",
                                 "--migrate-only",
                                 "--check"})
            QVERIFY2(r.out.contains(flag), flag);
    }

    void refusalsAreOneLine_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTemporaryDir dir;
        QTest::newRow("unknown flag") << QStringList{"--bogus"};
        QTest::newRow("bad listen") << QStringList{"--listen", "localhost"};
        QTest::newRow("bad port") << QStringList{"--listen", "127.0.0.1:70000"};
        QTest::newRow("bad writer") << QStringList{"--writer", "poet"};
        QTest::newRow("no hash workers") << QStringList{"--hash-workers", "0"};
        QTest::newRow("clip cache not a number") << QStringList{"--clip-cache-mb", "lots"};
        QTest::newRow("proxy not an address") << QStringList{"--trusted-proxy", "proxy.lan"};
        QTest::newRow("missing value") << QStringList{"--data"};
        QTest::newRow("data is a file")
            << QStringList{"--listen", "127.0.0.1:0", "--data", "/etc/hostname"};
        const QStringList cl = {"--listen", "127.0.0.1:0", "--data",
                                QDir::tempPath() + "/orvel-cl-test", "--database"};
        QTest::newRow("postgres without a user") << cl + QStringList{"postgresql://db/orvel"};
        QTest::newRow("postgres with a password")
            << cl + QStringList{"postgresql://orvel:secret@db/orvel"};
        QTest::newRow("postgres with an unknown parameter")
            << cl + QStringList{"postgresql://orvel@db/orvel?pool=3"};
        QTest::newRow("postgres unreachable")
            << cl + QStringList{"postgresql://orvel@:1/orvel?host=/nonexistent"};
        QTest::newRow("unknown store") << cl + QStringList{"mysql://orvel@db/orvel"};
        QTest::newRow("llm without url")
            << QStringList{"--listen", "127.0.0.1:0", "--data", QDir::tempPath() + "/orvel-cl-test",
                           "--writer", "llm"};
    }

    void refusalsAreOneLine()
    {
        QFETCH(QStringList, arguments);
        const Run r = run(arguments);
        QVERIFY(r.code > 0);
        QVERIFY(r.out.isEmpty());
        QCOMPARE(r.err.trimmed().count('\n'), 0);
        QVERIFY(r.err.startsWith("orvel-server: "));
        QVERIFY2(!r.err.contains("secret"), "a password given on the command line is not echoed");
    }

    void listeningLineAndAFreePort()
    {
        ServerProcess server({"--local"});
        QVERIFY2(server.start(), qPrintable(server.errorText()));
        QCOMPARE(server.baseUrl().scheme(), QStringLiteral("http"));
        QCOMPARE(server.baseUrl().host(), QStringLiteral("127.0.0.1"));
        QVERIFY(server.baseUrl().port() > 0);
        // The store is where the engine under test keeps it.
        QCOMPARE(QFile::exists(server.dataDir() + "/orvel.sqlite"),
                 !TestDatabase::postgresWanted());
    }

    void anIPv6ListeningLineIsAUsableAddress()
    {
        // The later --listen wins over the test's own loopback default.
        if (QTcpServer probe; !probe.listen(QHostAddress::LocalHostIPv6))
            QSKIP("no IPv6 loopback on this machine");
        ServerProcess server({"--local", "--listen", "[::1]:0"});
        QVERIFY2(server.start(), qPrintable(server.errorText()));
        QCOMPARE(server.baseUrl().host(), QStringLiteral("::1"));
        QVERIFY(server.baseUrl().port() > 0);
        QCOMPARE(Api(server.baseUrl()).get("/healthz").status, 200);
    }

    void stopsCleanlyOnTerminate()
    {
        // Even a signal that comes the moment the server says it is listening ends it cleanly.
        for (int i = 0; i < 3; ++i) {
            QTemporaryDir data;
            QProcess p;
            p.start(ServerProcess::executable(),
                    {"--listen", "127.0.0.1:0", "--data", data.path()});
            QVERIFY(p.waitForReadyRead(15000));
            QVERIFY(p.readAllStandardOutput().startsWith("listening on http://127.0.0.1:"));
            p.terminate();
            QVERIFY(p.waitForFinished(10000));
            QCOMPARE(p.exitStatus(), QProcess::NormalExit);
            QCOMPARE(p.exitCode(), 0);
        }
    }
};

QTEST_GUILESS_MAIN(TestCommandLine)
#include "tst_commandline.moc"
