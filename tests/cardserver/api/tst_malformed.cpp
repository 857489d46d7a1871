// Malformed and hostile input over HTTP: bad JSON, wrong types, huge bodies, unknown ids and
// paths. Each gets a JSON error a learner can read, and the server keeps serving.
#include "api.h"

#include <QTest>

class TestMalformed : public QObject {
    Q_OBJECT

    ServerProcess server{{"--local"}};
    std::unique_ptr<Api> api;
    qint64 deck = 0;

    void expectError(const Api::Reply &r, int status)
    {
        QCOMPARE(r.status, status);
        QVERIFY2(!r.error().isEmpty(), r.body.constData());
    }

private slots:
    void initTestCase()
    {
        QVERIFY(startServer(server));
        api = std::make_unique<Api>(server.baseUrl());
        api->join("bad@example.org");
        deck = api->deck()["id"].toInteger();
    }

    void badJson()
    {
        for (const char *body : {"{\"name\": ", "[1, 2]", "\"text\"", "{{{"})
            expectError(api->postRaw("/api/decks", body, "application/json"), 400);
        expectError(api->postRaw(path("/api/decks/%1/cards", deck), "{{{", "application/json"),
                    400);
        expectError(api->postRaw("/api/auth/signup", QByteArray("{\"email\":\"\xff\xfe\"}"),
                                 "application/json"),
                    400);
    }

    void wrongTypes()
    {
        const QJsonObject good{{"name", "x"}, {"language", "de"}, {"native_language", "en"}};
        for (const auto &[key, value] : std::initializer_list<std::pair<const char *, QJsonValue>>{
                 {"name", 5}, {"language", QJsonArray()}, {"folder_id", "1"}, {"folder_id", 1.5}}) {
            QJsonObject bad = good;
            bad.insert(key, value);
            expectError(api->post("/api/decks", bad), 400);
        }
        expectError(api->patch(path("/api/decks/%1", deck), QJsonObject{{"folder_id", true}}), 400);
        const QString batch = path("/api/decks/%1/cards/batch", deck);
        expectError(api->post(batch, QJsonObject{{"words", QJsonArray{QJsonObject{{"term", 3}}}}}),
                    400);
        expectError(api->post(batch, QJsonObject{{"words", QJsonArray{7}}}), 400);
        expectError(api->post("/api/auth/login",
                              QJsonObject{{"email", QJsonValue::Null}, {"password", "x"}}),
                    400);
        expectError(api->post("/api/settings/password", QJsonObject{{"current", 1}, {"next", 2}}),
                    400);
        expectError(api->patch("/api/settings", QJsonObject{{"voices", "de"}}), 400);
    }

    void hugeBodies()
    {
        const QByteArray huge = "{\"name\":\"" + QByteArray(11 * 1024 * 1024, 'a') + "\"}";
        expectError(api->postRaw("/api/folders", huge, "application/json"), 413);
        expectError(api->post("/api/folders", QJsonObject{{"name", QString(5000, 'a')}}), 422);
        expectError(api->post(path("/api/decks/%1/cards", deck),
                              QJsonObject{{"input", QString(2000, 'a')}}),
                    422);
        QJsonArray words;
        for (int i = 0; i < 201; ++i)
            words.append(QJsonObject{{"term", QStringLiteral("w%1").arg(i)}, {"source", ""}});
        expectError(
            api->post(path("/api/decks/%1/cards/batch", deck), QJsonObject{{"words", words}}), 422);
    }

    void unknownIdsAndPaths()
    {
        for (const char *unknown :
             {"/api/decks/424242", "/api/decks/99999999999999999999999", "/api/decks/0",
              "/api/decks/abc", "/api/notes/424242", "/api/nothing-here",
              "/media/1/../../orvel.sqlite", "/media/1/orvel.sqlite"})
            expectError(api->get(unknown), 404);
        expectError(api->post("/api/cards/424242/review", QJsonObject{{"known", true}}), 404);
        expectError(api->del("/api/cards/424242"), 404);
    }

    void theServerIsStillUp()
    {
        QCOMPARE(api->get("/api/languages").status, 200);
        QCOMPARE(api->card(deck, "Hund")["term"].toString(), QStringLiteral("Hund"));
        QCOMPARE(api->get(path("/api/decks/%1", deck))["cards"].toArray().size(), 1);
    }
};

QTEST_GUILESS_MAIN(TestMalformed)
#include "tst_malformed.moc"
