// Two accounts on one server: neither can read, change or delete what the other owns, and
// the answer is the same 404 as for what does not exist.
#include "api.h"

#include <QTest>

class TestOwnership : public QObject {
    Q_OBJECT

private slots:
    void accountsAreWalledOff()
    {
        ServerProcess server({"--local"});
        QVERIFY(startServer(server));
        Api ann(server.baseUrl());
        Api bob(server.baseUrl());
        ann.join("ann@example.org");
        bob.join("bob@example.org");

        const qint64 deck = ann.deck("Ann’s German")["id"].toInteger();
        const qint64 folder = ann.post("/api/folders", QJsonObject{{"name", "Ann"}}).id();
        const qint64 card = ann.card(deck, "Hund")["id"].toInteger();
        const QJsonObject note = ann.note(deck, "Geheim", "Der Hund schläft.");
        const qint64 lineId = note["lines"][0]["id"].toInteger();
        const Api::Reply picture = ann.postRaw(
            "/api/media", QByteArray("GIF89a\x04\x00\x04\x00\x00\x00\x00\x3b", 14), "image/gif");

        const QString d = path("/api/decks/%1", deck);
        const QString n = path("/api/notes/%1", note["id"].toInteger());
        const QString l = path("%1/lines/%2", n, lineId);
        const QString c = path("/api/cards/%1", card);
        const QString f = path("/api/folders/%1", folder);

        QCOMPARE(bob.get(d).status, 404);
        QCOMPARE(bob.patch(d, QJsonObject{{"name", "mine"}}).status, 404);
        QCOMPARE(bob.stream(d + "/cards", QJsonObject{{"input", "Katze"}}).status, 404);
        QCOMPARE(bob.stream(d + "/cards/batch", QJsonObject{{"words", QJsonArray()}}).status, 404);
        QCOMPARE(bob.stream(d + "/extract", QJsonObject{{"text", "Hund"}}).status, 404);
        QCOMPARE(bob.get(d + "/notes").status, 404);
        QCOMPARE(bob.post(d + "/notes", QJsonObject{{"title", "x"}, {"text", ""}}).status, 404);
        QCOMPARE(
            bob.post(d + "/byte/keep", QJsonObject{{"byte", QJsonObject()}, {"keep", QJsonArray()}})
                .status,
            404);
        QCOMPARE(bob.post(c + "/review", QJsonObject{{"known", true}}).status, 404);
        QCOMPARE(bob.post(c + "/regenerate").status, 404);
        QCOMPARE(bob.get(n).status, 404);
        QCOMPARE(bob.patch(n, QJsonObject{{"title", "x"}, {"lines", QJsonArray()}}).status, 404);
        QCOMPARE(bob.stream(n + "/annotate", QJsonObject{{"all", true}}).status, 404);
        QCOMPARE(bob.post(n + "/annotate", QJsonObject{{"line_id", lineId}}).status, 404);
        QCOMPARE(bob.post(l + "/deepen", QJsonObject{{"at", 0}}).status, 404);
        QCOMPARE(bob.post(l + "/card", QJsonObject{{"term", "Hund"}}).status, 404);
        QCOMPARE(bob.post(n + "/compose", QJsonObject{{"kind", "conj"}, {"term", "gehen"}}).status,
                 404);
        QCOMPARE(bob.patch(f, QJsonObject{{"name", "x"}}).status, 404);
        QCOMPARE(bob.get(path("/api/media/search?q=&deck=%1", deck)).status, 404);

        // Bob's own note cannot take Ann's picture, and Ann's picture address is not his to import.
        const QString bobNote =
            path("/api/notes/%1", bob.note(bob.deck()["id"].toInteger(), "", "")["id"].toInteger());
        const auto saveLine = [&](const QJsonObject &line) {
            return bob.patch(bobNote, QJsonObject{{"lines", QJsonArray{line}}});
        };
        QCOMPARE(saveLine({{"text", "x"}, {"media_id", picture.id()}}).status, 404);
        QCOMPARE(bob.post("/api/media/import", QJsonObject{{"url", picture["url"]}}).status, 404);
        // A line id of Ann's in Bob's save is a new line of Bob's, and Ann's line is untouched.
        QVERIFY(saveLine({{"id", lineId}, {"text", "mine"}})["lines"][0]["id"].toInteger() !=
                lineId);

        QCOMPARE(bob.get("/api/decks").array().size(), 1);
        QVERIFY(bob.get("/api/folders").array().isEmpty());
        const Api::Reply found = bob.get("/api/search?q=hund");
        QVERIFY(found["cards"].toArray().isEmpty());
        QVERIFY(found["lines"].toArray().isEmpty());
        QVERIFY(bob.get("/api/search?q=geheim")["notes"].toArray().isEmpty());
        QVERIFY(bob.get("/api/media/search?q=")["results"].toArray().isEmpty());
        for (const QString &gone : {c, n, d, f})
            QCOMPARE(bob.del(gone).status, 404);

        // Everything of Ann's is still there and unchanged.
        const Api::Reply annDeck = ann.get(d);
        QCOMPARE(annDeck["name"].toString(), QStringLiteral("Ann’s German"));
        QCOMPARE(annDeck["cards"].toArray().size(), 1);
        QCOMPARE(annDeck["cards"][0]["seen"].toInt(), 0);
        QCOMPARE(ann.get(n).object(), note);
        QCOMPARE(ann.get("/api/folders").array().size(), 1);
    }
};

QTEST_GUILESS_MAIN(TestOwnership)
#include "tst_ownership.moc"
