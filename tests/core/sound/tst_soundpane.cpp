// The sound pane: nothing shows before the settings arrive; each change is sent at once with
// only its key and shown at once, the reply becomes what the whole app goes by, a refusal puts
// the control back; the voice lists and their shortlists; the sample being played.
#include "app/appstate.h"
#include "awaittask.h"
#include "scriptedserver.h"
#include "server/apiclient.h"
#include "server/localsettings.h"
#include "sound/soundpane.h"
#include "sound/speech.h"
#include "sound/voicename.h"
#include "testservices.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

using namespace orvel;
using testsupport::await;

namespace {
QByteArray settings(bool margin, const QByteArray &voices = "{}", double rate = 1.0,
                    bool hear = false)
{
    return QStringLiteral(R"({"voices":%2,"rate":%3,"gain":1.0,"hear_on_flip":%4,)"
                          R"("skin":"paper","margin_as_you_go":%1})")
        .arg(margin ? "true" : "false", QString::fromUtf8(voices), QString::number(rate),
             hear ? "true" : "false")
        .toUtf8();
}

// A language with `count` voices v1…v<count>, the server's default being `selected`.
QByteArray language(const QByteArray &code, const QByteArray &name, int count,
                    const QByteArray &selected, const QByteArray &error = {})
{
    QByteArray voices = "[";
    for (int n = 1; n <= count; ++n)
        voices += QByteArray(n > 1 ? "," : "") + R"({"id":"v)" + QByteArray::number(n) +
                  R"(","name":"Voice )" + QByteArray::number(n) +
                  " (calm)\",\"gender\":null,\"preview_url\":null}";
    voices += "]";
    return R"({"code":")" + code + R"(","name":")" + name + R"(","locale":")" + code +
           R"(","selected":")" + selected + R"(","voices":)" + voices +
           (error.isEmpty() ? QByteArray() : R"(,"error":")" + error + QByteArray("\"")) + "}";
}

QStringList ids(const QList<Voice> &voices)
{
    QStringList list;
    for (const Voice &voice : voices)
        list.append(voice.id);
    return list;
}

QJsonObject sent(const ScriptedServer &server)
{
    return QJsonDocument::fromJson(server.lastRequest().body).object();
}
} // namespace

class TestSoundPane : public QObject {
    Q_OBJECT
    QTemporaryDir m_dir;
    std::unique_ptr<ScriptedServer> m_server;
    std::unique_ptr<APIClient> m_api;
    std::unique_ptr<testsupport::TestServices> m_services;

private slots:
    void init()
    {
        LocalSettings::useFile(m_dir.filePath("orvel.conf"));
        m_server = std::make_unique<ScriptedServer>();
        m_api =
            std::make_unique<APIClient>(m_server->baseUrl(), m_dir.filePath("cookies"), QString());
        m_services = std::make_unique<testsupport::TestServices>(*m_api);
    }
    void cleanup()
    {
        m_services.reset();
        m_api.reset();
        m_server.reset();
    }
    void theMarginSwitch()
    {
        m_server->reply("GET", "/api/settings", 200, settings(false));
        m_server->reply("PATCH", "/api/settings", 200, settings(true));

        SoundPane pane;
        QVERIFY(!pane.loaded());
        pane.setMarginAsYouGo(true); // nothing to change before the settings are known
        QCOMPARE(m_server->requestCount(), 0);
        await(pane.load());
        QVERIFY(pane.loaded());
        QVERIFY(!pane.marginAsYouGo());

        pane.setMarginAsYouGo(true);
        QVERIFY(pane.marginAsYouGo()); // shown at once
        QTRY_VERIFY(!pane.saving());
        QVERIFY(pane.marginAsYouGo());
        const auto sent = QJsonDocument::fromJson(m_server->lastRequest().body).object();
        QCOMPARE(sent.size(), 1); // only the switch that changed
        QCOMPARE(sent.constBegin().value(), QJsonValue(true));
        // The editor reads the app's copy of the preferences.
        QCOMPARE(m_services->state().preferences()->marginAsYouGo, std::optional(true));

        m_server->reply("PATCH", "/api/settings", 503, R"({"error":"Try again in a minute."})");
        QSignalSpy changed(&pane, &SoundPane::preferencesChanged);
        pane.setMarginAsYouGo(false);
        QVERIFY(!pane.marginAsYouGo()); // shown at once, while the change is on its way
        QTRY_COMPARE(pane.trouble(), "Try again in a minute.");
        QVERIFY(pane.marginAsYouGo());
        QVERIFY(!changed.isEmpty()); // the switch is told to show the kept value again
        QVERIFY(!pane.saving());
    }

    void hearingOnFlipAndSpeedAreSentAloneAndShownAtOnce()
    {
        m_server->reply("GET", "/api/settings", 200, settings(false));
        m_server->reply("GET", "/api/settings/voices", 200, R"({"audio":true,"languages":[]})");
        SoundPane pane;
        await(pane.load());
        QVERIFY(!pane.hearOnFlip());
        QVERIFY(!pane.slow());

        // What shows while the change is on its way is the change itself.
        m_server->reply("PATCH", "/api/settings", 200, settings(false, "{}", 1.0, true));
        pane.setHearOnFlip(true);
        QVERIFY(pane.hearOnFlip());
        QTRY_VERIFY(!pane.saving());
        QCOMPARE(sent(*m_server), (QJsonObject{{"hearOnFlip", true}}));
        m_server->reply("PATCH", "/api/settings", 200, settings(false, "{}", 0.75, true));
        pane.setSlow(true);
        QVERIFY(pane.slow());
        QTRY_VERIFY(!pane.saving());
        QCOMPARE(sent(*m_server), (QJsonObject{{"rate", 0.75}}));
        QVERIFY(pane.slow());
        QCOMPARE(m_services->state().preferences()->rate, 0.75);
        QCOMPARE(m_services->state().preferences()->hearOnFlip, true);

        // Two changes on their way at once: both show until both are answered, and a refusal
        // of either leaves what the server last said.
        m_server->reply("PATCH", "/api/settings", 500, R"({"error":"Disk full."})");
        pane.setSlow(false);
        pane.setHearOnFlip(false);
        QVERIFY(!pane.slow());
        QVERIFY(!pane.hearOnFlip());
        QTRY_VERIFY(!pane.saving());
        QCOMPARE(pane.trouble(), QStringLiteral("Disk full."));
        QVERIFY(pane.slow());
        QVERIFY(pane.hearOnFlip());
    }

    void theVoicesOfEachLanguage()
    {
        m_server->reply("GET", "/api/settings", 200, settings(false, R"({"de":"v9","fr":"gone"})"));
        m_server->reply("GET", "/api/settings/voices", 200,
                        R"({"audio":true,"languages":[)" + language("de", "German", 10, "v1") +
                            "," + language("fr", "French", 8, "v2") + "," +
                            language("it", "Italian", 3, "v3") + "," +
                            language("ja", "Japanese", 0, "", "No voice for Japanese.") + "]}");
        SoundPane pane;
        QSignalSpy offered(&pane, &SoundPane::offerChanged);
        await(pane.load());
        QCOMPARE(offered.size(), 1);
        QVERIFY(pane.speaks());
        const QList<VoiceOfferLanguage> &langs = pane.offer()->languages;

        // Ten voices show six: the chosen ninth first, then the first five of the others.
        QCOMPARE(pane.chosenVoice(langs[0]), QStringLiteral("v9"));
        QCOMPARE(ids(pane.shortlist(langs[0])), (QStringList{"v9", "v1", "v2", "v3", "v4", "v5"}));
        // A chosen voice the offer no longer lists is not shown: the first six are.
        QCOMPARE(ids(pane.shortlist(langs[1])), (QStringList{"v1", "v2", "v3", "v4", "v5", "v6"}));
        // No choice of the learner's: the server's default comes first.
        QCOMPARE(pane.chosenVoice(langs[2]), QStringLiteral("v3"));
        QCOMPARE(ids(pane.shortlist(langs[2])), (QStringList{"v3", "v1", "v2"}));

        const QVariantList shown = pane.languages();
        QCOMPARE(shown.size(), 4);
        const QVariantMap german = shown[0].toMap();
        QCOMPARE(german["heading"].toString(), QStringLiteral("Spoken by German"));
        const QVariantMap first = german["voices"].toList()[0].toMap();
        QCOMPARE(first["name"].toString(), QStringLiteral("Voice 9"));
        QCOMPARE(first["manner"].toString(), QStringLiteral("calm"));
        QCOMPARE(first["chosen"].toBool(), true);
        QCOMPARE(german["voices"].toList()[1].toMap()["chosen"].toBool(), false);
        const QVariantMap japanese = shown[3].toMap();
        QCOMPARE(japanese["error"].toString(), QStringLiteral("No voice for Japanese."));
        QVERIFY(japanese["voices"].toList().isEmpty());

        // Choosing sends that language's voice alone and shows it first at once.
        m_server->reply("PATCH", "/api/settings", 200, settings(false, R"({"de":"v9","it":"v2"})"));
        pane.chooseVoice(QStringLiteral("it"), QStringLiteral("v2"));
        QCOMPARE(ids(pane.shortlist(langs[2])), (QStringList{"v2", "v1", "v3"}));
        QTRY_VERIFY(!pane.saving());
        QCOMPARE(sent(*m_server), (QJsonObject{{"voices", QJsonObject{{"it", "v2"}}}}));
        QCOMPARE(m_services->state().preferences()->voices.value("it"), QStringLiteral("v2"));
        // The voice already in force, or a language not offered, sends nothing.
        const int requests = m_server->requestCount();
        pane.chooseVoice(QStringLiteral("it"), QStringLiteral("v2"));
        pane.chooseVoice(QStringLiteral("xx"), QStringLiteral("v1"));
        QCOMPARE(m_server->requestCount(), requests);
    }

    void aServerThatCannotSpeakAndTheSampleBeingPlayed()
    {
        m_server->reply("GET", "/api/settings", 200, settings(false));
        m_server->reply("GET", "/api/settings/voices", 200, R"({"audio":false,"languages":[]})");
        SoundPane pane;
        await(pane.load());
        QVERIFY(pane.offerLoaded());
        QVERIFY(!pane.speaks());
        QCOMPARE(pane.texts()["noSpeech"].toString(),
                 QStringLiteral("The server has no speech provider configured, so nothing will "
                                "be spoken."));

        // A second press on the sample playing stops it.
        QSignalSpy previewing(&pane, &SoundPane::previewingChanged);
        pane.preview(QStringLiteral("de"), QStringLiteral("v1"));
        QCOMPARE(pane.previewing(), QStringLiteral("v1"));
        pane.preview(QStringLiteral("de"), QStringLiteral("v1"));
        QCOMPARE(pane.previewing(), QString());
        QCOMPARE(previewing.size(), 2);
        // Another text sounding is no sample.
        m_services->speech().say(QStringLiteral("Hund"), QStringLiteral("de"));
        QCOMPARE(pane.previewing(), QString());
    }

    void voiceNamesSplitIntoNameAndManner_data()
    {
        QTest::addColumn<QString>("full");
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("manner");
        QTest::newRow("brackets") << "English (Great Britain)"
                                  << "English"
                                  << "Great Britain";
        QTest::newRow("em dash") << "Anna — warm, slow"
                                 << "Anna"
                                 << "warm, slow";
        QTest::newRow("spaced hyphen") << "Marek - news"
                                       << "Marek"
                                       << "news";
        QTest::newRow("one part") << "German"
                                  << "German"
                                  << "";
        QTest::newRow("hyphenated name") << "german-mbrola-1"
                                         << "german-mbrola-1"
                                         << "";
        QTest::newRow("only brackets") << "(calm)"
                                       << "(calm)"
                                       << "";
        QTest::newRow("empty brackets") << "Eva ()"
                                        << "Eva ()"
                                        << "";
    }

    void voiceNamesSplitIntoNameAndManner()
    {
        QFETCH(QString, full);
        QFETCH(QString, name);
        QFETCH(QString, manner);
        const VoiceName split = VoiceName::split(full);
        QCOMPARE(split.name, name);
        QCOMPARE(split.manner, manner);
    }
};

QTEST_GUILESS_MAIN(TestSoundPane)
#include "tst_soundpane.moc"
