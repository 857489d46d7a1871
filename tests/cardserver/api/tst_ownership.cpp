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

        const qint64 deck = ann.deck("Ann’s German").value("id").toInteger();
        const qint64 folder =
            ann.post("/api/folders", QJsonObject{{"name", "Ann"}}).object().value("id").toInteger();
        const qint64 card = ann.stream(QStringLiteral("/api/decks/%1/cards").arg(deck),
                                       QJsonObject{{"input", "Hund"}})
                                .events.last()
                                .value("card")
                                .toObject()
                                .value("id")
                                .toInteger();
        const QJsonObject note =
            ann.post(QStringLiteral("/api/decks/%1/notes").arg(deck),
                     QJsonObject{{"title", "Geheim"}, {"text", "Der Hund schläft."}})
                .object();
        const qint64 noteId = note.value("id").toInteger();
        const qint64 lineId =
            note.value("lines").toArray().first().toObject().value("id").toInteger();
        const QJsonObject picture =
            ann.postRaw("/api/media", QByteArray("GIF89a\x04\x00\x04\x00\x00\x00\x00\x3b", 14),
                        "image/gif")
                .object();

        const QString d = QStringLiteral("/api/decks/%1").arg(deck);
        const QString n = QStringLiteral("/api/notes/%1").arg(noteId);
        const QString l = QStringLiteral("%1/lines/%2").arg(n).arg(lineId);
        const QString c = QStringLiteral("/api/cards/%1").arg(card);

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
        QCOMPARE(
            bob.patch(QStringLiteral("/api/folders/%1").arg(folder), QJsonObject{{"name", "x"}})
                .status,
            404);
        QCOMPARE(bob.get(QStringLiteral("/api/media/search?q=&deck=%1").arg(deck)).status, 404);

        // Bob's own note cannot take Ann's picture, and Ann's picture address is not his to import.
        const qint64 bobDeck = bob.deck().value("id").toInteger();
        const qint64 bobNote = bob.post(QStringLiteral("/api/decks/%1/notes").arg(bobDeck),
                                        QJsonObject{{"title", ""}, {"text", ""}})
                                   .object()
                                   .value("id")
                                   .toInteger();
        QCOMPARE(bob.patch(QStringLiteral("/api/notes/%1").arg(bobNote),
                           QJsonObject{
                               {"lines", QJsonArray{QJsonObject{
                                             {"text", "x"}, {"media_id", picture.value("id")}}}}})
                     .status,
                 404);
        QCOMPARE(bob.post("/api/media/import", QJsonObject{{"url", picture.value("url")}}).status,
                 404);
        // A line id of Ann's in Bob's save is a new line of Bob's, and Ann's line is untouched.
        const QJsonObject bobSaved =
            bob.patch(QStringLiteral("/api/notes/%1").arg(bobNote),
                      QJsonObject{
                          {"lines", QJsonArray{QJsonObject{{"id", lineId}, {"text", "mine"}}}}})
                .object();
        QVERIFY(bobSaved.value("lines").toArray().first().toObject().value("id").toInteger() !=
                lineId);

        QCOMPARE(bob.get("/api/decks").array().size(), 1);
        QVERIFY(bob.get("/api/folders").array().isEmpty());
        const QJsonObject found = bob.get("/api/search?q=hund").object();
        QVERIFY(found.value("cards").toArray().isEmpty());
        QVERIFY(found.value("lines").toArray().isEmpty());
        QVERIFY(bob.get("/api/search?q=geheim").object().value("notes").toArray().isEmpty());
        QVERIFY(bob.get("/api/media/search?q=").object().value("results").toArray().isEmpty());

        QCOMPARE(bob.del(c).status, 404);
        QCOMPARE(bob.del(n).status, 404);
        QCOMPARE(bob.del(d).status, 404);
        QCOMPARE(bob.del(QStringLiteral("/api/folders/%1").arg(folder)).status, 404);

        // Everything of Ann's is still there and unchanged.
        const QJsonObject annDeck = ann.get(d).object();
        QCOMPARE(annDeck.value("name").toString(), QStringLiteral("Ann’s German"));
        QCOMPARE(annDeck.value("cards").toArray().size(), 1);
        QCOMPARE(annDeck.value("cards").toArray().first().toObject().value("seen").toInt(), 0);
        QCOMPARE(ann.get(n).object(), note);
        QCOMPARE(ann.get("/api/folders").array().size(), 1);
    }
};

QTEST_GUILESS_MAIN(TestOwnership)
#include "tst_ownership.moc"
