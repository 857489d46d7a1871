// Card writing over HTTP with the dictionary writer: the three event streams event by event,
// rewriting, reviews and deletion.
#include "api.h"

#include <QTest>

class TestCards : public QObject {
    Q_OBJECT

    ServerProcess server{{"--local"}};
    std::unique_ptr<Api> api;
    qint64 deck = 0;

    QString deckPath(const char *rest = "") const
    {
        return QStringLiteral("/api/decks/%1%2").arg(deck).arg(rest);
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
        QVERIFY(s.events.size() >= 3);

        // Progress first, one event per field, then the card as the very last event.
        QStringList fields;
        for (qsizetype i = 0; i + 1 < s.events.size(); ++i) {
            const QJsonObject e = s.events.at(i);
            QCOMPARE(e.value("type").toString(), QStringLiteral("progress"));
            fields.append(e.value("field").toString());
            if (e.value("field") == "translation")
                QVERIFY(e.value("value").toString().contains("dog"));
            if (e.value("field") == "gender")
                QCOMPARE(e.value("value").toString(), QStringLiteral("der"));
            if (e.value("field") == "examples") {
                QVERIFY(e.contains("count"));
                QVERIFY(!e.contains("value"));
            }
        }
        for (const char *f : {"translation", "gender", "examples"})
            QVERIFY2(fields.contains(f), f);

        const QJsonObject last = s.events.last();
        QCOMPARE(last.value("type").toString(), QStringLiteral("card"));
        const QJsonObject card = last.value("card").toObject();
        QCOMPARE(card.value("term").toString(), QStringLiteral("Hund"));
        QCOMPARE(card.value("gender").toString(), QStringLiteral("der"));
        QVERIFY(card.value("translation").toString().contains("dog"));
        QVERIFY(!card.value("reading").toString().isEmpty());
        QVERIFY(!card.value("examples").toArray().isEmpty());
        const QJsonObject example = card.value("examples").toArray().first().toObject();
        QVERIFY(example.contains("sentence") && example.contains("translation") &&
                example.contains("note"));
        QCOMPARE(card.value("deck_id").toInteger(), deck);
        QCOMPARE(card.value("seen").toInt(), 0);
        QVERIFY(card.value("last_reviewed").isNull());
        for (const char *key : {"id", "reading", "part_of_speech", "definition", "usage_notes",
                                "related", "conjugations", "known", "streak", "created_at"})
            QVERIFY2(card.contains(key), key);

        const QJsonArray cards = api->get(deckPath()).object().value("cards").toArray();
        QCOMPARE(cards.first().toObject().value("id"), card.value("id"));
    }

    void refusalsBeforeTheStreamAreJsonErrors()
    {
        const Api::Stream empty = api->stream(deckPath("/cards"), QJsonObject{{"input", "  \t"}});
        QCOMPARE(empty.status, 422);
        QVERIFY(empty.events.isEmpty());
        QVERIFY(empty.raw.contains("\"error\""));
        QCOMPARE(api->stream("/api/decks/99999/cards", QJsonObject{{"input", "Hund"}}).status, 404);
        Api stranger(server.baseUrl());
        QCOMPARE(stranger.stream(deckPath("/cards"), QJsonObject{{"input", "Hund"}}).status, 401);
    }

    void aWordTheDictionaryLacksFailsInsideTheStream()
    {
        const Api::Stream s = api->stream(deckPath("/cards"), QJsonObject{{"input", "Xqzzvvk"}});
        QCOMPARE(s.status, 200);
        QCOMPARE(s.events.last().value("type").toString(), QStringLiteral("error"));
        QVERIFY(!s.events.last().value("error").toString().isEmpty());
    }

    void batchSkipsWhatTheDeckHolds()
    {
        const QJsonArray words{QJsonObject{{"term", "HUND"}, {"source", "text"}},
                               QJsonObject{{"term", "Katze"}, {"source", "text"}},
                               QJsonObject{{"term", "Xqzzvvk"}, {"source", "text"}},
                               QJsonObject{{"term", "katze"}, {"source", "text"}}};
        const Api::Stream s = api->stream(deckPath("/cards/batch"), QJsonObject{{"words", words}});
        QCOMPARE(s.status, 200);
        QCOMPARE(s.types(), (QStringList{"start", "word", "skipped", "word", "card", "word",
                                         "failed", "word", "skipped", "done"}));
        QCOMPARE(s.events.at(0).value("total").toInt(), 4);
        QCOMPARE(s.events.at(2).value("index").toInt(), 0);
        QCOMPARE(s.events.at(2).value("term").toString(), QStringLiteral("HUND"));
        QVERIFY(!s.events.at(2).value("reason").toString().isEmpty());
        QCOMPARE(s.events.at(4).value("index").toInt(), 1);
        QCOMPARE(s.events.at(4).value("card").toObject().value("term").toString(),
                 QStringLiteral("Katze"));
        QCOMPARE(s.events.at(6).value("index").toInt(), 2);
        QCOMPARE(s.events.at(8).value("index").toInt(), 3);

        QCOMPARE(api->stream(deckPath("/cards/batch"), QJsonObject{{"words", "Hund"}}).status, 400);
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
        auto terms = [this] {
            QStringList out;
            for (const QJsonValue &c : api->get(deckPath()).object().value("cards").toArray())
                out.append(c.toObject().value("term").toString());
            return out;
        };
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
        QCOMPARE(s.events.first().value("characters").toInt(), 20'000);
        QCOMPARE(s.types().last(), QStringLiteral("done"));
        const QJsonObject done = s.events.last();
        QCOMPARE(done.value("unread").toInt(), int(text.size()) - 20'000);
        QVERIFY(done.value("skipped").toInt() >= 2); // Hund and Katze are cards already
        const QJsonArray words = done.value("words").toArray();
        QCOMPARE(s.types().count("word"), int(words.size()));
        QStringList terms;
        for (const QJsonValue &w : words) {
            const QJsonObject c = w.toObject();
            for (const char *key : {"term", "seen_as", "gloss", "sentence", "level"})
                QVERIFY2(c.contains(key), key);
            terms.append(c.value("term").toString());
        }
        QVERIFY(terms.contains("Garten"));
        QVERIFY(!terms.contains("Hund"));
        QVERIFY(!done.value("summary").toString().isEmpty());
        QCOMPARE(api->stream(deckPath("/extract"), QJsonObject{{"text", " "}}).status, 422);
    }

    void reviewsKeepTheCounts()
    {
        const QJsonObject card = api->stream(deckPath("/cards"), QJsonObject{{"input", "Haus"}})
                                     .events.last()
                                     .value("card")
                                     .toObject();
        const QString path =
            QStringLiteral("/api/cards/%1/review").arg(card.value("id").toInteger());
        QJsonObject after = api->post(path, QJsonObject{{"known", true}}).object();
        after = api->post(path, QJsonObject{{"known", true}}).object();
        QCOMPARE(after.value("seen").toInt(), 2);
        QCOMPARE(after.value("known").toInt(), 2);
        QCOMPARE(after.value("streak").toInt(), 2);
        QVERIFY(after.value("last_reviewed").isString());
        after = api->post(path, QJsonObject{{"known", false}}).object();
        QCOMPARE(after.value("seen").toInt(), 3);
        QCOMPARE(after.value("known").toInt(), 2);
        QCOMPARE(after.value("streak").toInt(), 0);
        QCOMPARE(api->post(path, QJsonObject{{"known", "yes"}}).status, 400);
        QCOMPARE(api->post(path, QJsonObject{}).status, 400);
    }

    void rewritingKeepsIdentityAndCounts()
    {
        const QJsonObject card = api->stream(deckPath("/cards"), QJsonObject{{"input", "Baum"}})
                                     .events.last()
                                     .value("card")
                                     .toObject();
        const qint64 id = card.value("id").toInteger();
        api->post(QStringLiteral("/api/cards/%1/review").arg(id), QJsonObject{{"known", true}});
        const Api::Reply rewritten = api->post(QStringLiteral("/api/cards/%1/regenerate").arg(id));
        QCOMPARE(rewritten.status, 200);
        QCOMPARE(rewritten.object().value("id").toInteger(), id);
        QCOMPARE(rewritten.object().value("term").toString(), QStringLiteral("Baum"));
        QCOMPARE(rewritten.object().value("seen").toInt(), 1);
        QVERIFY(rewritten.object().value("translation").toString().contains("tree"));
    }

    void deletingACard()
    {
        const qint64 id = api->stream(deckPath("/cards"), QJsonObject{{"input", "Tisch"}})
                              .events.last()
                              .value("card")
                              .toObject()
                              .value("id")
                              .toInteger();
        QCOMPARE(api->del(QStringLiteral("/api/cards/%1").arg(id)).status, 204);
        QCOMPARE(api->del(QStringLiteral("/api/cards/%1").arg(id)).status, 404);
        for (const QJsonValue &c : api->get(deckPath()).object().value("cards").toArray())
            QVERIFY(c.toObject().value("id").toInteger() != id);
    }
};

QTEST_GUILESS_MAIN(TestCards)
#include "tst_cards.moc"
