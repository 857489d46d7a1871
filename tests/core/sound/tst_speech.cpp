// Speech against a scripted server, with an output that records what it was asked to play.
#include "scriptedserver.h"
#include "server/apiclient.h"
#include "settledreplies.h"
#include "sound/audiooutput.h"
#include "sound/speech.h"

#include <QFile>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

using namespace orvel;

namespace {

class RecordingOutput : public AudioOutput {
public:
    struct Played {
        QString path;
        double gainDb;
        std::function<void()> done;
    };
    QList<Played> played;
    int stops = 0;

    void play(const QString &path, double gainDb, std::function<void()> done) override
    {
        played.append({path, gainDb, std::move(done)});
    }
    void stop() override { ++stops; }
};

const QByteArray clip = QByteArray("ID3") + QByteArray(64, '\x55');

using Query = QList<std::pair<QString, QString>>;

} // namespace

class TestSpeech : public QObject {
    Q_OBJECT
    QTemporaryDir m_dir;
    std::unique_ptr<ScriptedServer> m_server;
    std::unique_ptr<APIClient> m_api;
    std::unique_ptr<RecordingOutput> m_output;
    std::unique_ptr<QTemporaryDir> m_cache;
    std::unique_ptr<Speech> m_speech;

    void serveClips()
    {
        m_server->reply("GET", "/api/audio", 200, clip, "audio/mpeg");
        m_server->reply("GET", "/api/audio/preview", 200, clip, "audio/mpeg");
    }
    // Says a word no one asked for yet and waits until it plays: every request made before it
    // has reached the server by then.
    void sayAnotherWord(int playsBefore)
    {
        m_speech->say(QStringLiteral("Vogel"), QStringLiteral("de"));
        QVERIFY(waitForPlays(playsBefore + 1));
        QCOMPARE(m_server->lastRequest().queryValue("text"), QStringLiteral("Vogel"));
    }
    bool waitForPlays(int n)
    {
        return QTest::qWaitFor([&] { return m_output->played.size() >= n; });
    }

private slots:
    void init()
    {
        m_server = std::make_unique<ScriptedServer>();
        m_api = std::make_unique<APIClient>(m_server->baseUrl(), m_dir.filePath("jar"), QString());
        m_output = std::make_unique<RecordingOutput>();
        m_cache = std::make_unique<QTemporaryDir>();
        m_speech = std::make_unique<Speech>(*m_api, *m_output, m_cache->path());
    }
    void cleanup()
    {
        m_speech.reset();
        m_api.reset();
        m_server.reset();
    }

    void clipAddressesCarryTheirQueryInOrder()
    {
        serveClips();
        m_speech->say(QStringLiteral("  der Hund \n"), QStringLiteral("de"));
        QCOMPARE(m_speech->saying(), QStringLiteral("der Hund"));
        QVERIFY(waitForPlays(1));
        auto request = m_server->lastRequest();
        QCOMPARE(request.path, QStringLiteral("/api/audio"));
        QCOMPARE(request.query, (Query{{"text", "der Hund"}, {"lang", "de"}, {"rate", "1"}}));

        // Slow, with a voice: the slowed rate, and the voice last.
        m_speech->stop();
        m_speech->setSlow(true);
        m_speech->say(QStringLiteral("Katze"), QStringLiteral("de"), QStringLiteral("de-x1"));
        QVERIFY(waitForPlays(2));
        request = m_server->lastRequest();
        QCOMPARE(request.query,
                 (Query{{"text", "Katze"}, {"lang", "de"}, {"rate", "0.75"}, {"voice", "de-x1"}}));

        // A voice sample: language, then voice.
        m_speech->preview(QStringLiteral("fr-x2"), QStringLiteral("fr"));
        QCOMPARE(m_speech->saying(), QStringLiteral("preview:fr-x2"));
        QVERIFY(waitForPlays(3));
        request = m_server->lastRequest();
        QCOMPARE(request.path, QStringLiteral("/api/audio/preview"));
        QCOMPARE(request.query, (Query{{"lang", "fr"}, {"voice", "fr-x2"}}));
        // What was played is the fetched clip, kept in the cache.
        QFile played(m_output->played.last().path);
        QVERIFY(played.open(QIODevice::ReadOnly));
        QCOMPARE(played.readAll(), clip);

        // The learner's voice for the language goes along when the caller names none; a voice
        // the caller names still wins, and other languages go without.
        m_speech->setVoices({{QStringLiteral("de"), QStringLiteral("gmw/de")}});
        m_speech->say(QStringLiteral("Maus"), QStringLiteral("de"));
        QVERIFY(waitForPlays(4));
        QCOMPARE(m_server->lastRequest().queryValue("voice"), QStringLiteral("gmw/de"));
        m_speech->say(QStringLiteral("Maus!"), QStringLiteral("de"), QStringLiteral("de-x1"));
        QVERIFY(waitForPlays(5));
        QCOMPARE(m_server->lastRequest().queryValue("voice"), QStringLiteral("de-x1"));
        m_speech->say(QStringLiteral("chat"), QStringLiteral("fr"));
        QVERIFY(waitForPlays(6));
        QCOMPARE(m_server->lastRequest().queryValue("voice"), QString());
    }

    void sameTextTogglesOffAndCachedClipsAreReused()
    {
        serveClips();
        QSignalSpy saying(m_speech.get(), &Speech::sayingChanged);
        m_speech->say(QStringLiteral("Hund"), QStringLiteral("de"));
        QVERIFY(waitForPlays(1));
        const int stops = m_output->stops;
        m_speech->say(QStringLiteral("Hund "), QStringLiteral("de"));
        QVERIFY(m_speech->saying().isEmpty());
        QCOMPARE(m_output->stops, stops + 1);
        QCOMPARE(saying.count(), 2);

        // Said again, the clip comes from the cache: played without asking the server.
        m_speech->say(QStringLiteral("Hund"), QStringLiteral("de"));
        QVERIFY(waitForPlays(2));
        QCOMPARE(m_output->played[1].path, m_output->played[0].path);
        sayAnotherWord(2);
        QCOMPARE(m_server->requestCount(), 2); // Hund once, then Vogel

        // A voice sample toggles the same way.
        m_speech->preview(QStringLiteral("v1"), QStringLiteral("de"));
        m_speech->preview(QStringLiteral("v1"), QStringLiteral("de"));
        QVERIFY(m_speech->saying().isEmpty());
    }

    void onlyTheLatestRequestIsHeard()
    {
        serveClips();
        SettledReplies replies(m_api->network());
        const QUrl second = m_speech->clipUrl(QStringLiteral("Katze"), QStringLiteral("de"), {});
        m_speech->say(QStringLiteral("Hund"), QStringLiteral("de"));
        m_speech->say(QStringLiteral("Katze"), QStringLiteral("de"));
        QCOMPARE(m_speech->saying(), QStringLiteral("Katze"));
        // Both clips have come back; the first was fetched for nothing.
        QVERIFY(replies.waitFor(2));
        QCOMPARE(m_output->played.size(), 1);
        QCOMPARE(m_output->played[0].path, m_speech->cacheFile(second));
        QCOMPARE(m_speech->saying(), QStringLiteral("Katze"));
    }

    void aStoppedClipsCompletionLeavesTheNewerAlone()
    {
        serveClips();
        m_speech->say(QStringLiteral("Hund"), QStringLiteral("de"));
        QVERIFY(waitForPlays(1));
        m_speech->say(QStringLiteral("Katze"), QStringLiteral("de"));
        m_output->played[0].done(); // the stopped clip reports its end late
        QCOMPARE(m_speech->saying(), QStringLiteral("Katze"));
        QVERIFY(waitForPlays(2));
        m_output->played[0].done();
        QCOMPARE(m_speech->saying(), QStringLiteral("Katze"));
        // The newer clip ending normally brings silence.
        m_output->played[1].done();
        QVERIFY(m_speech->saying().isEmpty());

        // A completion after an explicit stop and a new request does nothing either.
        m_speech->say(QStringLiteral("Maus"), QStringLiteral("de"));
        QVERIFY(waitForPlays(3));
        m_speech->stop();
        m_speech->say(QStringLiteral("Vogel"), QStringLiteral("de"));
        m_output->played[2].done();
        QCOMPARE(m_speech->saying(), QStringLiteral("Vogel"));
    }

    void gainBecomesDecibelsHeldToTheRange_data()
    {
        QTest::addColumn<double>("gain");
        QTest::addColumn<double>("db");
        QTest::newRow("unity") << 1.0 << 0.0;
        QTest::newRow("double") << 2.0 << 6.0206;
        QTest::newRow("zero is quiet, not silent") << 0.0 << -40.0;
        QTest::newRow("negative") << -3.0 << -40.0;
        QTest::newRow("held to +24") << 100.0 << 24.0;
    }
    void gainBecomesDecibelsHeldToTheRange()
    {
        QFETCH(double, gain);
        QFETCH(double, db);
        serveClips();
        m_speech->setGain(gain);
        m_speech->say(QStringLiteral("Hund"), QStringLiteral("de"));
        QVERIFY(waitForPlays(1));
        QVERIFY2(qAbs(m_output->played[0].gainDb - db) < 1e-3,
                 qPrintable(QString::number(m_output->played[0].gainDb)));
    }

    void blankRequestsChangeNothing()
    {
        serveClips();
        m_speech->say(QStringLiteral("Hund"), QStringLiteral("de"));
        QVERIFY(waitForPlays(1));
        const int stops = m_output->stops;
        m_speech->say(QStringLiteral(" \t\n "), QStringLiteral("de"));
        m_speech->say(QStringLiteral("Katze"), QString());
        QCOMPARE(m_speech->saying(), QStringLiteral("Hund"));
        QCOMPARE(m_output->stops, stops);
        sayAnotherWord(1);
        QCOMPARE(m_server->requestCount(), 2);
    }

    void failuresEndInSilence_data()
    {
        QTest::addColumn<int>("status");
        QTest::addColumn<QByteArray>("body");
        QTest::newRow("server error") << 500 << QByteArray(R"({"error":"no voice"})");
        QTest::newRow("not found") << 404 << QByteArray("{}");
        QTest::newRow("empty clip") << 200 << QByteArray();
    }
    void failuresEndInSilence()
    {
        QFETCH(int, status);
        QFETCH(QByteArray, body);
        m_server->reply("GET", "/api/audio", status, body, "audio/mpeg");
        QSignalSpy saying(m_speech.get(), &Speech::sayingChanged);
        m_speech->say(QStringLiteral("Hund"), QStringLiteral("de"));
        QVERIFY(QTest::qWaitFor([&] { return m_speech->saying().isEmpty(); }));
        QCOMPARE(m_output->played.size(), 0);
        // Nothing bad was cached: the next request asks the server again.
        m_speech->say(QStringLiteral("Hund"), QStringLiteral("de"));
        QVERIFY(QTest::qWaitFor([&] { return m_server->requestCount() == 2; }));
    }

    void aFailedFetchOverTakenByANewerOneIsIgnored()
    {
        // The first fetch fails after a newer clip is already playing.
        m_server->reply("GET", "/api/audio", 500, R"({"error":"no voice"})");
        SettledReplies replies(m_api->network());
        m_speech->say(QStringLiteral("Hund"), QStringLiteral("de"));
        // The newer clip is in the cache already, so it plays at once.
        const QUrl cached = m_speech->clipUrl(QStringLiteral("Katze"), QStringLiteral("de"), {});
        QFile file(m_speech->cacheFile(cached));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(clip);
        file.close();
        m_speech->say(QStringLiteral("Katze"), QStringLiteral("de"));
        QVERIFY(waitForPlays(1));
        QVERIFY(replies.waitFor(1));
        QCOMPARE(m_speech->saying(), QStringLiteral("Katze"));
    }
};

QTEST_GUILESS_MAIN(TestSpeech)
#include "tst_speech.moc"
