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
        const QJsonObject offer = api->get("/api/settings/voices").object();
        QVERIFY(offer.contains("audio"));
        const QJsonArray languages = offer.value("languages").toArray();
        QJsonObject german;
        for (const QJsonValue &v : languages)
            if (v.toObject().value("code") == "de")
                german = v.toObject();
        QVERIFY(!german.isEmpty());
        for (const char *key : {"name", "locale", "selected", "voices"})
            QVERIFY2(german.contains(key), key);
        if (!offer.value("audio").toBool())
            ORVEL_SKIP_UNLESS_CI("espeak-ng or lame is not installed here");
        const QJsonArray voices = german.value("voices").toArray();
        QVERIFY(!voices.isEmpty());
        QVERIFY(voices.first().toObject().contains("id"));

        const Api::Reply clip = api->get("/api/audio?text=Hund&lang=de&rate=1");
        QCOMPARE(clip.status, 200);
        QCOMPARE(clip.header("Content-Type"), QStringLiteral("audio/mpeg"));
        QVERIFY(clip.body.size() > 500);
        QVERIFY(clip.body.startsWith("ID3") || (quint8(clip.body.at(0)) == 0xFF));
        const Api::Reply slow = api->get("/api/audio?text=Hund&lang=de&rate=0.75");
        QCOMPARE(slow.status, 200);
        QVERIFY(slow.body != clip.body);

        const QString voice = voices.last().toObject().value("id").toString();
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
