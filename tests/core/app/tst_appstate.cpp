#include "app/appstate.h"
#include "awaittask.h"
#include "fakesound.h"
#include "scriptedserver.h"
#include "server/apiclient.h"
#include "server/localsettings.h"
#include "settledreplies.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

using namespace orvel;
using testsupport::await;

namespace {

const QByteArray ana = R"({"id":7,"email":"ana@example.org","display_name":"Ana"})";

QByteArray preferences(double rate, double gain, const char *skin)
{
    return QJsonDocument(QJsonObject{{"voices", QJsonObject{{"pt_BR", "v1"}}},
                                     {"rate", rate},
                                     {"gain", gain},
                                     {"hear_on_flip", true},
                                     {"skin", skin}})
        .toJson(QJsonDocument::Compact);
}

QJsonObject bodyOf(const ScriptedServer::Request &request)
{
    return QJsonDocument::fromJson(request.body).object();
}

} // namespace

class TestAppState : public QObject {
    Q_OBJECT
    QTemporaryDir m_dir;
    int m_run = 0;
    std::unique_ptr<ScriptedServer> m_server;
    std::unique_ptr<APIClient> m_api;

private slots:
    void init()
    {
        LocalSettings::useFile(m_dir.filePath(QStringLiteral("orvel-%1.conf").arg(++m_run)));
        m_server = std::make_unique<ScriptedServer>();
        m_api =
            std::make_unique<APIClient>(m_server->baseUrl(), m_dir.filePath("cookies"), QString());
    }
    void cleanup()
    {
        m_api.reset();
        m_server.reset();
    }

    void startupAppearance_data()
    {
        QTest::addColumn<QVariant>("storedAppearance");
        QTest::addColumn<QVariant>("storedSkin");
        QTest::addColumn<AppState::Appearance>("expected");
        const QVariant none;
        QTest::newRow("nothing stored") << none << none << AppState::Appearance::System;
        QTest::newRow("unknown text, dark skin")
            << QVariant("sepia") << QVariant("night") << AppState::Appearance::Dark;
        QTest::newRow("unknown text, no skin")
            << QVariant("sepia") << none << AppState::Appearance::System;
        QTest::newRow("no text, light skin")
            << none << QVariant("sage") << AppState::Appearance::Light;
        QTest::newRow("no text, unknown skin")
            << none << QVariant("chartreuse") << AppState::Appearance::System;
        QTest::newRow("light wins over a dark skin")
            << QVariant("light") << QVariant("ink") << AppState::Appearance::Light;
    }

    void startupAppearance()
    {
        QFETCH(QVariant, storedAppearance);
        QFETCH(QVariant, storedSkin);
        QFETCH(AppState::Appearance, expected);
        if (storedAppearance.isValid())
            LocalSettings::store().setValue("zelon.appearance", storedAppearance);
        if (storedSkin.isValid())
            LocalSettings::store().setValue("zelon.skin", storedSkin);
        AppState state(*m_api);
        QCOMPARE(state.appearance(), expected);
        QCOMPARE(state.auth(), AppState::Auth::Unknown);
        QVERIFY(!state.hasPreferences());
        QCOMPARE(m_server->requestCount(), 0);
    }

    void restoreSignsInAndLoadsPreferences()
    {
        m_server->reply("GET", "/api/auth/me", 200, ana);
        m_server->reply("GET", "/api/settings", 200, preferences(0.75, 2.0, "paper"));
        AppState state(*m_api);
        FakeSound sound;
        state.setSound(&sound);
        await(state.restore());

        QCOMPARE(state.auth(), AppState::Auth::SignedIn);
        QCOMPARE(state.user().displayName, QStringLiteral("Ana"));
        QVERIFY(state.hasPreferences());
        QCOMPARE(sound.gain(), 2.0);
        QVERIFY(sound.slow());
    }

    void restoreFailureMeansSignedOut_data()
    {
        QTest::addColumn<int>("status");
        QTest::newRow("no session") << 401;
        QTest::newRow("server error") << 500;
        QTest::newRow("unreadable reply") << 200;
        QTest::newRow("no server at all") << 0;
    }

    void restoreFailureMeansSignedOut()
    {
        QFETCH(int, status);
        m_server->reply("GET", "/api/auth/me", status, status == 200 ? "{\"id\":1}" : "{}");
        if (status == 0) // a port nobody listens on: the transport fails
            m_api = std::make_unique<APIClient>(QUrl("http://127.0.0.1:9"),
                                                m_dir.filePath("cookies"), QString());
        AppState state(*m_api);
        QSignalSpy changes(&state, &AppState::authChanged);
        await(state.restore());
        QCOMPARE(state.auth(), AppState::Auth::SignedOut);
        QCOMPARE(changes.size(), 1);
        QCOMPARE(m_server->requestCount(), status == 0 ? 0 : 1); // no preferences asked for
    }

    void adoptingPreferencesAppliesSoundOnlyWhenItDiffers()
    {
        m_server->reply("GET", "/api/settings", 200, preferences(1.0, 1.0, "paper"));
        AppState state(*m_api);
        FakeSound sound;
        sound.setSlow(true);
        sound.slowWrites = 0;
        state.setSound(&sound);
        QSignalSpy changes(&state, &AppState::preferencesChanged);

        await(state.adoptPreferences());
        QCOMPARE(sound.gainWrites, 0); // already 1.0
        QCOMPARE(sound.slowWrites, 1); // a rate of exactly 1.0 clears the slow flag
        QVERIFY(!sound.slow());
        QCOMPARE(changes.size(), 1);

        // The same preferences again: nothing changes, nobody is told.
        await(state.adoptPreferences());
        QCOMPARE(changes.size(), 1);
        QCOMPARE(sound.slowWrites, 1);

        // 0.75 sets the slow flag.
        m_server->reply("GET", "/api/settings", 200, preferences(0.75, 1.0, "paper"));
        await(state.adoptPreferences());
        QVERIFY(sound.slow());
        QCOMPARE(changes.size(), 2);

        // A failed load keeps what was there.
        m_server->reply("GET", "/api/settings", 503, "{}");
        await(state.adoptPreferences());
        QVERIFY(state.hasPreferences());
        QCOMPARE(state.preferences()->rate, 0.75);
        QCOMPARE(changes.size(), 2);

        // A settings reply (the sound pane's save) reaches the player at once, voices too.
        Preferences saved = *state.preferences();
        saved.rate = 1.0;
        saved.gain = 2.0;
        saved.voices = {{QStringLiteral("de"), QStringLiteral("gmw/de")}};
        state.storePreferences(saved);
        QVERIFY(!sound.slow());
        QCOMPARE(sound.gain(), 2.0);
        QCOMPARE(sound.voices(), saved.voices);
        QCOMPARE(changes.size(), 3);
    }

    void serverSkinSetsAnExplicitAppearanceOnly()
    {
        m_server->reply("GET", "/api/settings", 200, preferences(1, 1, "dark"));

        AppState system(*m_api);
        QCOMPARE(system.appearance(), AppState::Appearance::System);
        await(system.adoptPreferences());
        QCOMPARE(system.appearance(), AppState::Appearance::System);

        LocalSettings::store().setValue("zelon.appearance", "light");
        AppState light(*m_api);
        await(light.adoptPreferences());
        QCOMPARE(light.appearance(), AppState::Appearance::Dark);
        QCOMPARE(LocalSettings::store().value("zelon.appearance").toString(),
                 QStringLiteral("dark"));

        // A skin the app does not know leaves the appearance alone.
        m_server->reply("GET", "/api/settings", 200, preferences(1, 1, "chartreuse"));
        await(light.adoptPreferences());
        QCOMPARE(light.appearance(), AppState::Appearance::Dark);
    }

    void choosingAnAppearanceStoresItAndTellsTheServer()
    {
        m_server->reply("PATCH", "/api/settings", 200, preferences(1, 1, "dark"));
        SettledReplies replies(m_api->network());
        AppState state(*m_api);

        state.choose(AppState::Appearance::Dark);
        QCOMPARE(state.appearance(), AppState::Appearance::Dark); // at once
        QCOMPARE(LocalSettings::store().value("zelon.appearance").toString(),
                 QStringLiteral("dark"));
        QVERIFY(state.dark());
        QTRY_VERIFY(state.hasPreferences());
        QCOMPARE(m_server->requestCount(), 1);
        QCOMPARE(bodyOf(m_server->lastRequest()), QJsonObject({{"skin", "dark"}}));

        // System tells the server nothing.
        state.choose(AppState::Appearance::System);
        QCOMPARE(LocalSettings::store().value("zelon.appearance").toString(),
                 QStringLiteral("system"));

        // A chosen skin of the matching family is what the server keeps. (Its request is the
        // second: System sent none.)
        LocalSettings::store().setValue("zelon.skin", "sage");
        AppState withSkin(*m_api);
        withSkin.choose(AppState::Appearance::Light);
        QVERIFY(replies.waitFor(2));
        QCOMPARE(m_server->requestCount(), 2);
        QCOMPARE(bodyOf(m_server->lastRequest()), QJsonObject({{"skin", "sage"}}));

        // A refused update keeps the chosen appearance and the old preferences.
        m_server->reply("PATCH", "/api/settings", 500, "{}");
        state.choose(AppState::Appearance::Light);
        QVERIFY(replies.waitFor(3));
        QCOMPARE(state.appearance(), AppState::Appearance::Light);
        QCOMPARE(state.preferences()->skin, QStringLiteral("dark"));
    }

    void choosingASkinShowsIt()
    {
        m_server->reply("PATCH", "/api/settings", 200, preferences(1, 1, "night"));
        AppState state(*m_api);
        QCOMPARE(state.effectiveSkin(), QStringLiteral("paper"));

        state.chooseSkin("night");
        QCOMPARE(state.skin(), QStringLiteral("night"));
        QCOMPARE(state.effectiveSkin(), QStringLiteral("night"));
        QCOMPARE(state.appearance(), AppState::Appearance::Dark);
        QCOMPARE(LocalSettings::store().value("zelon.skin").toString(), QStringLiteral("night"));
        QTRY_COMPARE(m_server->requestCount(), 1);
        QCOMPARE(bodyOf(m_server->lastRequest()), QJsonObject({{"skin", "night"}}));

        // Under System, a skin of the desktop's family keeps System; the other family shows
        // its default until the desktop turns dark.
        state.setAppearance(AppState::Appearance::System);
        QCOMPARE(state.effectiveSkin(), QStringLiteral("paper"));
        state.setSystemIsDark(true);
        QCOMPARE(state.effectiveSkin(), QStringLiteral("night"));
        state.chooseSkin("ink");
        QCOMPARE(state.appearance(), AppState::Appearance::System);
        QCOMPARE(state.effectiveSkin(), QStringLiteral("ink"));

        state.chooseSkin("no-such-skin");
        QCOMPARE(state.skin(), QStringLiteral("ink"));
    }

    void signingOutEndsTheSessionEvenWhenTheServerFails_data()
    {
        QTest::addColumn<int>("status");
        QTest::newRow("answered") << 204;
        QTest::newRow("failed") << 500;
    }

    void signingOutEndsTheSessionEvenWhenTheServerFails()
    {
        QFETCH(int, status);
        m_server->reply("GET", "/api/auth/me", 200, ana);
        m_server->reply("GET", "/api/settings", 200, preferences(1, 1, "paper"));
        m_server->reply("POST", "/api/auth/logout", status, "");
        AppState state(*m_api);
        await(state.restore());
        QVERIFY(state.signedIn());
        await(state.signOut());
        QCOMPARE(state.auth(), AppState::Auth::SignedOut);
        QCOMPARE(m_server->lastRequest().method, QByteArray("POST"));
        QCOMPARE(m_server->lastRequest().path, QStringLiteral("/api/auth/logout"));
        QVERIFY(state.hasPreferences()); // kept after signing out
    }
};

QTEST_GUILESS_MAIN(TestAppState)
#include "tst_appstate.moc"
