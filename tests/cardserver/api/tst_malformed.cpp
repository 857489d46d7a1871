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
        deck = api->deck().value("id").toInteger();
    }

    void badJson()
    {
        expectError(api->postRaw("/api/decks", "{\"name\": ", "application/json"), 400);
        expectError(api->postRaw("/api/decks", "[1, 2]", "application/json"), 400);
        expectError(api->postRaw("/api/auth/login", "\"text\"", "application/json"), 400);
        expectError(api->postRaw(QStringLiteral("/api/decks/%1/cards").arg(deck).toUtf8(), "{{{",
                                 "application/json"),
                    400);
        expectError(api->postRaw("/api/auth/signup", QByteArray("{\"email\":\"\xff\xfe\"}"),
                                 "application/json"),
                    400);
    }

    void wrongTypes()
    {
        expectError(
            api->post("/api/decks",
                      QJsonObject{{"name", 5}, {"language", "de"}, {"native_language", "en"}}),
            400);
        expectError(api->post("/api/decks", QJsonObject{{"name", "x"},
                                                        {"language", QJsonArray()},
                                                        {"native_language", "en"}}),
                    400);
        expectError(api->post("/api/decks", QJsonObject{{"name", "x"},
                                                        {"language", "de"},
                                                        {"native_language", "en"},
                                                        {"folder_id", "1"}}),
                    400);
        expectError(api->post("/api/decks", QJsonObject{{"name", "x"},
                                                        {"language", "de"},
                                                        {"native_language", "en"},
                                                        {"folder_id", 1.5}}),
                    400);
        expectError(
            api->patch(QStringLiteral("/api/decks/%1").arg(deck), QJsonObject{{"folder_id", true}}),
            400);
        expectError(api->post(QStringLiteral("/api/decks/%1/cards/batch").arg(deck),
                              QJsonObject{{"words", QJsonArray{QJsonObject{{"term", 3}}}}}),
                    400);
        expectError(api->post(QStringLiteral("/api/decks/%1/cards/batch").arg(deck),
                              QJsonObject{{"words", QJsonArray{7}}}),
                    400);
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
        expectError(api->post(QStringLiteral("/api/decks/%1/cards").arg(deck).toUtf8(),
                              QJsonObject{{"input", QString(2000, 'a')}}),
                    422);
        QJsonArray words;
        for (int i = 0; i < 201; ++i)
            words.append(QJsonObject{{"term", QStringLiteral("w%1").arg(i)}, {"source", ""}});
        expectError(api->post(QStringLiteral("/api/decks/%1/cards/batch").arg(deck),
                              QJsonObject{{"words", words}}),
                    422);
    }

    void unknownIdsAndPaths()
    {
        expectError(api->get("/api/decks/424242"), 404);
        expectError(api->get("/api/decks/99999999999999999999999"), 404);
        expectError(api->get("/api/decks/0"), 404);
        expectError(api->get("/api/decks/abc"), 404);
        expectError(api->get("/api/notes/424242"), 404);
        expectError(api->post("/api/cards/424242/review", QJsonObject{{"known", true}}), 404);
        expectError(api->del("/api/cards/424242"), 404);
        expectError(api->get("/api/nothing-here"), 404);
        expectError(api->get("/media/1/../../orvel.sqlite"), 404);
        expectError(api->get("/media/1/orvel.sqlite"), 404);
    }

    void theServerIsStillUp()
    {
        QCOMPARE(api->get("/api/languages").status, 200);
        const Api::Stream s = api->stream(QStringLiteral("/api/decks/%1/cards").arg(deck),
                                          QJsonObject{{"input", "Hund"}});
        QCOMPARE(s.types().last(), QStringLiteral("card"));
        QCOMPARE(api->get(QStringLiteral("/api/decks/%1").arg(deck))
                     .object()
                     .value("cards")
                     .toArray()
                     .size(),
                 1);
    }
};

QTEST_GUILESS_MAIN(TestMalformed)
#include "tst_malformed.moc"
