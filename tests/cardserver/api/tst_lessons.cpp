// Short lessons over HTTP: the dictionary writer's plain refusal, and with a scripted
// chat-completions endpoint standing in for a language model, a lesson offered and kept as
// note lines and cards.
#include "api.h"
#include "scriptedserver.h"

#include <QJsonDocument>
#include <QTest>

namespace {

const QJsonObject Lesson{
    {"title", "Asking for the bill"},
    {"gist", "Ask for the bill with „die Rechnung“."},
    {"explain", "In a café you ask, you do not wait."},
    {"phrases", QJsonArray{QJsonObject{{"phrase", "Die Rechnung, bitte."},
                                       {"reading", ""},
                                       {"meaning", "The bill, please."},
                                       {"when", "to a waiter"}},
                           QJsonObject{{"phrase", "Zahlen, bitte!"},
                                       {"reading", ""},
                                       {"meaning", "Paying, please!"},
                                       {"when", "casual"}}}},
    {"pattern", "Noun + bitte"},
    {"correction", QJsonObject{{"wrong", "Die Bill, bitte."}, {"right", "Die Rechnung, bitte."}}},
    {"remember", "Rechnung is the bill."}};

// A chat-completions endpoint that answers every request with the lesson above, in one body.
void answerWithTheLesson(ScriptedServer &model)
{
    const QJsonObject message{
        {"role", "assistant"},
        {"content", QString::fromUtf8(QJsonDocument(Lesson).toJson(QJsonDocument::Compact))}};
    model.reply(
        "POST", "/v1/chat/completions", 200,
        QJsonDocument(QJsonObject{{"choices", QJsonArray{QJsonObject{{"message", message}}}}})
            .toJson());
}

} // namespace

class TestLessons : public QObject {
    Q_OBJECT

private slots:
    void theDictionaryWriterSaysWhatItNeeds()
    {
        ServerProcess server({"--local"});
        QVERIFY(startServer(server));
        Api api(server.baseUrl());
        api.join("dict@example.org");
        const QString byte = path("/api/decks/%1/byte", api.deck()["id"].toInteger());
        const Api::Reply refused = api.post(byte, QJsonObject{{"topic", "the bill"}});
        QCOMPARE(refused.status, 503);
        QVERIFY(refused.error().contains("language model"));
        QVERIFY(refused.error().contains("--writer llm"));
        QCOMPARE(api.post(byte, QJsonObject{{"topic", " "}}).status, 422);
    }

    void aLessonOfferedAndKept()
    {
        ScriptedServer model;
        answerWithTheLesson(model);
        ServerProcess server({"--local", "--allow-private-fetch", "--writer", "llm", "--llm-url",
                              model.baseUrl().toString() + "/v1", "--llm-model", "scripted"});
        QVERIFY(startServer(server));
        Api api(server.baseUrl());
        api.join("byte@example.org");
        const qint64 deck = api.deck()["id"].toInteger();
        const QString base = path("/api/decks/%1/byte", deck);

        const Api::Reply offered = api.post(base, QJsonObject{{"topic", "asking for the bill"}});
        QCOMPARE(offered.status, 200);
        const QJsonObject byte = offered["byte"].toObject();
        QCOMPARE(byte["title"].toString(), QStringLiteral("Asking for the bill"));
        QCOMPARE(byte["phrases"].toArray().size(), 2);
        QCOMPARE(byte["correction"]["right"].toString(), QStringLiteral("Die Rechnung, bitte."));

        const QJsonArray keep{QJsonObject{{"at", 0}, {"card", false}},
                              QJsonObject{{"at", 1}, {"card", true}}};
        const Api::Reply landed = api.post(
            base + "/keep", QJsonObject{{"byte", byte}, {"keep", keep}, {"context", true}});
        QCOMPARE(landed.status, 200);
        const QJsonValue stub = landed["note"];
        QCOMPARE(stub["title"].toString(), QStringLiteral("Asking for the bill"));
        const QJsonArray cards = landed["cards"].toArray();
        QCOMPARE(cards.size(), 1);
        QCOMPARE(cards[0]["term"].toString(), QStringLiteral("Zahlen, bitte!"));
        QCOMPARE(cards[0]["translation"].toString(), QStringLiteral("Paying, please!"));

        const QString note = path("/api/notes/%1", stub["id"].toInteger());
        const QJsonArray lines = api.get(note)["lines"].toArray();
        QStringList texts;
        for (const QJsonValue &l : lines)
            texts.append(l["text"].toString());
        QCOMPARE(texts.size(), 3); // the idea, the kept phrase, the correction
        QCOMPARE(texts.at(0), byte["gist"].toString());
        QCOMPARE(texts.at(1), QStringLiteral("Die Rechnung, bitte."));
        QVERIFY(texts.at(2).contains("Die Bill, bitte."));
        QCOMPARE(lines[1]["state"].toString(), QStringLiteral("annotated"));
        QCOMPARE(lines[1]["annotations"][0]["body"].toString(),
                 QStringLiteral("The bill, please."));

        // Into the same note again, without the context: one more line, the card not doubled.
        const Api::Reply more = api.post(base + "/keep", QJsonObject{{"byte", byte},
                                                                     {"keep", keep},
                                                                     {"context", false},
                                                                     {"note_id", stub["id"]}});
        QCOMPARE(more.status, 200);
        QCOMPARE(more["note"]["id"], stub["id"]);
        QCOMPARE(more["cards"][0]["id"], cards[0]["id"]);
        QCOMPARE(api.get(path("/api/decks/%1", deck))["cards"].toArray().size(), 1);
        QCOMPARE(api.get(note)["lines"].toArray().size(), 4);

        const QJsonArray beyond{QJsonObject{{"at", 5}, {"card", true}}};
        QCOMPARE(api.post(base + "/keep", QJsonObject{{"byte", byte}, {"keep", beyond}}).status,
                 422);
        QCOMPARE(api.post(path("/api/decks/%1/byte/keep", api.deck("Other")["id"].toInteger()),
                          QJsonObject{{"byte", byte}, {"keep", keep}, {"note_id", stub["id"]}})
                     .status,
                 404);
    }
};

QTEST_GUILESS_MAIN(TestLessons)
#include "tst_lessons.moc"
