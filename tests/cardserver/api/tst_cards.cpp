// Card writing over HTTP with the dictionary writer: the three event streams event by event,
// rewriting, reviews and deletion.
#include "api.h"

#include <QTest>

class TestCards : public QObject {
    Q_OBJECT

    ServerProcess server{{"--local"}};
    std::unique_ptr<Api> api;
    qint64 deck = 0;

    QString deckPath(const char *rest = "") const { return path("/api/decks/%1%2", deck, rest); }
    QStringList terms()
    {
        QStringList out;
        for (const QJsonValue &c : api->get(deckPath())["cards"].toArray())
            out.append(c["term"].toString());
        return out;
    }

private slots:
    void initTestCase()
    {
        QVERIFY(startServer(server));
        api = std::make_unique<Api>(server.baseUrl());
        api->join("cards@example.org");
        deck = api->deck("German").value("id").toInteger();
    }

    void writingHundStreamsItsFields()
    {
        const Api::Stream s = api->stream(deckPath("/cards"), QJsonObject{{"input", " Hund "}});
        QCOMPARE(s.status, 200);
        QVERIFY(s.contentType.startsWith("text/event-stream"));
        QVERIFY(s.raw.startsWith("data: {"));
        QVERIFY(s.raw.contains("}\n\ndata: {"));

        // Progress first, one event per field (a text or a count), then the card, last.
        QStringList fields;
        for (qsizetype i = 0; i + 1 < s.events.size(); ++i) {
            const QJsonObject e = s.events.at(i);
            QCOMPARE(e["type"].toString(), QStringLiteral("progress"));
            fields.append(e["field"].toString());
            if (e["field"] == "gender")
                QCOMPARE(e["value"].toString(), QStringLiteral("der"));
            if (e["field"] == "examples")
                QVERIFY(e.contains("count") && !e.contains("value"));
        }
        for (const char *f : {"translation", "gender", "examples"})
            QVERIFY2(fields.contains(f), f);
        QCOMPARE(s.types().last(), QStringLiteral("card"));
        const QJsonObject card = s.events.last()["card"].toObject();
        QCOMPARE(card["term"].toString(), QStringLiteral("Hund"));
        QCOMPARE(card["deck_id"].toInteger(), deck);
        QVERIFY(card["last_reviewed"].isNull());
        QCOMPARE(api->get(deckPath())["cards"][0]["id"], card["id"]);
    }

    void refusals()
    {
        const Api::Stream empty = api->stream(deckPath("/cards"), QJsonObject{{"input", "  \t"}});
        QCOMPARE(empty.status, 422);
        QVERIFY(empty.events.isEmpty());
        QVERIFY(empty.raw.contains("\"error\""));
        QCOMPARE(api->stream("/api/decks/99999/cards", QJsonObject{{"input", "Hund"}}).status, 404);
        Api stranger(server.baseUrl());
        QCOMPARE(stranger.stream(deckPath("/cards"), QJsonObject{{"input", "Hund"}}).status, 401);
        QCOMPARE(api->stream(deckPath("/cards/batch"), QJsonObject{{"words", "Hund"}}).status, 400);
        QCOMPARE(api->stream(deckPath("/extract"), QJsonObject{{"text", " "}}).status, 422);

        // A word the dictionary lacks fails inside the stream.
        const Api::Stream s = api->stream(deckPath("/cards"), QJsonObject{{"input", "Xqzzvvk"}});
        QCOMPARE(s.status, 200);
        QCOMPARE(s.types().last(), QStringLiteral("error"));
        QVERIFY(!s.events.last()["error"].toString().isEmpty());
    }

    void batchSkipsWhatTheDeckHolds()
    {
        QJsonArray words;
        for (const char *term : {"HUND", "Katze", "Xqzzvvk", "katze"})
            words.append(QJsonObject{{"term", term}, {"source", "text"}});
        const Api::Stream s = api->stream(deckPath("/cards/batch"), QJsonObject{{"words", words}});
        QCOMPARE(s.status, 200);
        QCOMPARE(s.types(), (QStringList{"start", "word", "skipped", "word", "card", "word",
                                         "failed", "word", "skipped", "done"}));
        QCOMPARE(s.events.at(0)["total"].toInt(), 4);
        QCOMPARE(s.events.at(2)["term"].toString(), QStringLiteral("HUND"));
        QVERIFY(!s.events.at(2)["reason"].toString().isEmpty());
        QCOMPARE(s.events.at(4)["card"]["term"].toString(), QStringLiteral("Katze"));
        for (int at : {2, 4, 6, 8})
            QCOMPARE(s.events.at(at)["index"].toInt(), at / 2 - 1);
    }

    void aBatchGoesOnWhenTheClientLeaves()
    {
        auto client = std::make_unique<httplib::Client>(server.baseUrl().host().toStdString(),
                                                        server.baseUrl().port());
        httplib::Request req;
        req.method = "POST";
        req.path = deckPath("/cards/batch").toStdString();
        req.headers = {{"Cookie", ("orvel_session=" + api->cookie()).toStdString()},
                       {"Content-Type", "application/json"}};
        req.body = R"({"words":[{"term":"Apfel","source":""},{"term":"Brot","source":""},)"
                   R"({"term":"Milch","source":""}]})";
        req.content_receiver = [](const char *, size_t, uint64_t, uint64_t) {
            return false; // hang up at the first event
        };
        client->send(req);
        client.reset();
        QTRY_VERIFY_WITH_TIMEOUT(terms().contains("Milch"), 20000);
        QVERIFY(terms().contains("Apfel") && terms().contains("Brot"));
    }

    void extractReadsTheFirstTwentyThousandCharacters()
    {
        QString text =
            QStringLiteral("Der Hund und die Katze spielen im Garten. Das Wetter ist schön. ");
        while (text.size() < 25'000)
            text += QStringLiteral("Der Garten ist groß. ");
        const Api::Stream s = api->stream(deckPath("/extract"), QJsonObject{{"text", text}});
        QCOMPARE(s.status, 200);
        QCOMPARE(s.types().first(), QStringLiteral("reading"));
        QCOMPARE(s.events.first()["characters"].toInt(), 20'000);
        QCOMPARE(s.types().last(), QStringLiteral("done"));
        const QJsonObject done = s.events.last();
        QCOMPARE(done["unread"].toInt(), int(text.size()) - 20'000);
        QVERIFY(done["skipped"].toInt() >= 2); // Hund and Katze are cards already
        const QJsonArray words = done["words"].toArray();
        QCOMPARE(s.types().count("word"), int(words.size()));
        QStringList found;
        for (const QJsonValue &w : words)
            found.append(w["term"].toString());
        QVERIFY(found.contains("Garten"));
        QVERIFY(!found.contains("Hund"));
        QVERIFY(!done["summary"].toString().isEmpty());
    }

    void reviewsRewritingAndDeleting()
    {
        const qint64 id = api->card(deck, "Baum")["id"].toInteger();
        const QString review = path("/api/cards/%1/review", id);
        QJsonObject after = api->post(review, QJsonObject{{"known", true}}).object();
        after = api->post(review, QJsonObject{{"known", true}}).object();
        QCOMPARE(after["seen"].toInt(), 2);
        QCOMPARE(after["known"].toInt(), 2);
        QCOMPARE(after["streak"].toInt(), 2);
        QVERIFY(after["last_reviewed"].isString());
        after = api->post(review, QJsonObject{{"known", false}}).object();
        QCOMPARE(after["seen"].toInt(), 3);
        QCOMPARE(after["known"].toInt(), 2);
        QCOMPARE(after["streak"].toInt(), 0);
        QCOMPARE(api->post(review, QJsonObject{{"known", "yes"}}).status, 400);
        QCOMPARE(api->post(review, QJsonObject{}).status, 400);

        // Rewritten, the card keeps its identity and its counts.
        const Api::Reply rewritten = api->post(path("/api/cards/%1/regenerate", id));
        QCOMPARE(rewritten.status, 200);
        QCOMPARE(rewritten.id(), id);
        QCOMPARE(rewritten["seen"].toInt(), 3);
        QVERIFY(rewritten["translation"].toString().contains("tree"));

        QCOMPARE(api->del(path("/api/cards/%1", id)).status, 204);
        QCOMPARE(api->del(path("/api/cards/%1", id)).status, 404);
        QVERIFY(!terms().contains("Baum"));
    }
};

QTEST_GUILESS_MAIN(TestCards)
#include "tst_cards.moc"
