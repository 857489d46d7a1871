// Preferences, voices and spoken clips over HTTP.
#include "api.h"
#include "skipunlessci.h"

#include <QTest>

class TestSettings : public QObject {
    Q_OBJECT

    ServerProcess server{{"--local"}};
    std::unique_ptr<Api> api;

private slots:
    void initTestCase()
    {
        QVERIFY(startServer(server));
        api = std::make_unique<Api>(server.baseUrl());
        api->join("prefs@example.org");
    }

    void defaultsThenLiteralKeyedChanges()
    {
        const QJsonObject first = api->get("/api/settings").object();
        QCOMPARE(first.value("rate").toDouble(), 1.0);
        QCOMPARE(first.value("gain").toDouble(), 1.0);
        QCOMPARE(first.value("hear_on_flip").toBool(true), false);
        QVERIFY(first.value("skin").isString());
        QVERIFY(first.value("voices").isObject());

        const Api::Reply skin = api->patch("/api/settings", QJsonObject{{"skin", "paper"}});
        QCOMPARE(skin.status, 200);
        QCOMPARE(skin.object().value("skin").toString(), QStringLiteral("paper"));
        QCOMPARE(skin.object().value("rate").toDouble(), 1.0);

        const QJsonObject changed =
            api->patch("/api/settings",
                       QJsonObject{{"rate", 0.75},
                                   {"hearOnFlip", true},
                                   {"marginAsYouGo", true},
                                   {"voices", QJsonObject{{"de", "de-voice"}, {"pt-BR", "br"}}}})
                .object();
        QCOMPARE(changed.value("rate").toDouble(), 0.75);
        QCOMPARE(changed.value("hear_on_flip").toBool(), true);
        QCOMPARE(changed.value("margin_as_you_go").toBool(), true);
        QCOMPARE(changed.value("skin").toString(), QStringLiteral("paper"));
        // Language codes are keys and stay exactly as sent.
        QCOMPARE(changed.value("voices").toObject().value("pt-BR").toString(),
                 QStringLiteral("br"));
        QVERIFY(!changed.contains("hearOnFlip"));

        const QJsonObject merged =
            api->patch("/api/settings", QJsonObject{{"voices", QJsonObject{{"fr", "fr-voice"}}}})
                .object();
        QCOMPARE(merged.value("voices").toObject().size(), 3);
        QCOMPARE(api->get("/api/settings").object(), merged);

        QCOMPARE(api->patch("/api/settings", QJsonObject{{"rate", "fast"}}).status, 400);
        QCOMPARE(api->patch("/api/settings", QJsonObject{{"hearOnFlip", 1}}).status, 400);
        QCOMPARE(api->patch("/api/settings", QJsonObject{{"rate", -3}}).status, 422);
        QCOMPARE(api->get("/api/settings").object(), merged); // refused changes leave all as it was
    }

    void voicesAndClips()
    {
        api->deck("German", "de");
        const Api::Reply offer = api->get("/api/settings/voices");
        QJsonObject german;
        for (const QJsonValue &v : offer["languages"].toArray())
            if (v["code"] == "de")
                german = v.toObject();
        for (const char *key : {"name", "locale", "selected", "voices"})
            QVERIFY2(german.contains(key), key);
        if (!offer["audio"].toBool())
            ORVEL_SKIP_UNLESS_CI("espeak-ng or lame is not installed here");
        const QJsonArray voices = german["voices"].toArray();
        QVERIFY(!voices.isEmpty());

        // The clips themselves are the speech renderer's (tst_speechrenderer); here, that the
        // rate reaches it, and how the addresses are checked.
        const Api::Reply clip = api->get("/api/audio?text=Hund&lang=de&rate=1");
        QCOMPARE(clip.status, 200);
        QCOMPARE(clip.header("Content-Type"), QStringLiteral("audio/mpeg"));
        QVERIFY(api->get("/api/audio?text=Hund&lang=de&rate=0.75").body != clip.body);
        const QString voice = voices.last()["id"].toString();
        const Api::Reply preview = api->get("/api/audio/preview?voice=" + voice + "&lang=de");
        QCOMPARE(preview.status, 200);
        QCOMPARE(preview.header("Content-Type"), QStringLiteral("audio/mpeg"));

        QCOMPARE(api->get("/api/audio?text=&lang=de").status, 422);
        QCOMPARE(api->get("/api/audio?text=Hund&lang=de&rate=fast").status, 422);
        Api stranger(server.baseUrl());
        QCOMPARE(stranger.get("/api/audio?text=Hund&lang=de").status, 401);
    }
};

QTEST_GUILESS_MAIN(TestSettings)
#include "tst_settings.moc"
