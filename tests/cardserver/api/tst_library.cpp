// Decks and folders over HTTP: making, listing, renaming, filing in and out of folders,
// counts, deleting with everything inside, languages and search.
#include "api.h"

#include <QTest>

class TestLibrary : public QObject {
    Q_OBJECT

    ServerProcess server{{"--local"}};
    std::unique_ptr<Api> api;

    static QJsonObject byId(const QJsonArray &list, qint64 id)
    {
        for (const QJsonValue &v : list)
            if (v.toObject().value("id").toInteger() == id)
                return v.toObject();
        return {};
    }

private slots:
    void initTestCase()
    {
        QVERIFY(startServer(server));
        api = std::make_unique<Api>(server.baseUrl());
        api->join("lib@example.org");
    }

    void languagesOnOffer()
    {
        const QJsonArray languages = api->get("/api/languages").array();
        QVERIFY(languages.size() >= 6);
        bool german = false;
        for (const QJsonValue &v : languages) {
            const QJsonObject l = v.toObject();
            QVERIFY(l.contains("code") && l.contains("name") && l.contains("endonym"));
            if (l.value("code") == "de")
                german = l.value("endonym") == "Deutsch";
        }
        QVERIFY(german);
    }

    void makingADeck()
    {
        const QJsonObject deck = api->deck("Deutsch A1");
        for (const char *key : {"id", "name", "description", "language", "native_language",
                                "created_at", "card_count", "known_count", "note_count"})
            QVERIFY2(deck.contains(key), key);
        QCOMPARE(deck.value("card_count").toInt(), 0);
        QVERIFY(deck.value("folder_id").isNull());
        QVERIFY(deck.value("last_studied").isNull());

        const Api::Reply full =
            api->get(QStringLiteral("/api/decks/%1").arg(deck.value("id").toInteger()));
        QCOMPARE(full.status, 200);
        QCOMPARE(full.object().value("cards").toArray().size(), 0);
        QCOMPARE(full.object().value("native_language").toString(), QStringLiteral("en"));

        QCOMPARE(
            api->post("/api/decks",
                      QJsonObject{{"name", "  "}, {"language", "de"}, {"native_language", "en"}})
                .status,
            422);
        QCOMPARE(
            api->post("/api/decks",
                      QJsonObject{{"name", "X"}, {"language", "xx"}, {"native_language", "en"}})
                .status,
            422);
        QCOMPARE(api->post("/api/decks", QJsonObject{{"name", "X"},
                                                     {"language", "de"},
                                                     {"native_language", "en"},
                                                     {"folder_id", 999}})
                     .status,
                 404);
    }

    void renamingAndFiling()
    {
        const qint64 deck = api->deck("Spanish", "es").value("id").toInteger();
        const QString path = QStringLiteral("/api/decks/%1").arg(deck);
        const QJsonObject folder =
            api->post("/api/folders", QJsonObject{{"name", "Travel"}}).object();
        const qint64 folderId = folder.value("id").toInteger();
        QCOMPARE(folder.value("deck_count").toInt(), 0);

        const Api::Reply renamed =
            api->patch(path, QJsonObject{{"name", "Español — día"}, {"description", "Tuesdays"}});
        QCOMPARE(renamed.status, 200);
        QCOMPARE(renamed.object().value("name").toString(), QStringLiteral("Español — día"));
        QCOMPARE(renamed.object().value("description").toString(), QStringLiteral("Tuesdays"));

        QCOMPARE(api->patch(path, QJsonObject{{"folder_id", folderId}})
                     .object()
                     .value("folder_id")
                     .toInteger(),
                 folderId);
        // An absent key leaves the folder; a rename does not unfile.
        QCOMPARE(api->patch(path, QJsonObject{{"name", "Spanish"}})
                     .object()
                     .value("folder_id")
                     .toInteger(),
                 folderId);
        QCOMPARE(byId(api->get("/api/folders").array(), folderId).value("deck_count").toInt(), 1);
        QCOMPARE(api->patch(path, QJsonObject{{"folder_id", 424242}}).status, 404);
        QVERIFY(api->patch(path, QJsonObject{{"folder_id", QJsonValue::Null}})
                    .object()
                    .value("folder_id")
                    .isNull());

        QCOMPARE(api->patch(QStringLiteral("/api/folders/%1").arg(folderId),
                            QJsonObject{{"name", "Trips"}})
                     .object()
                     .value("name")
                     .toString(),
                 QStringLiteral("Trips"));
        QCOMPARE(api->patch(path, QJsonObject{{"name", ""}}).status, 422);
    }

    void textSurvivesTheRoundTrip()
    {
        const QString tricky =
            QStringLiteral("Quote \" back\\slash\nnew line\ttab \u0001 ünï 日本 🐕");
        const qint64 deck = api->deck("plain").value("id").toInteger();
        const QString path = QStringLiteral("/api/decks/%1").arg(deck);
        QCOMPARE(api->patch(path, QJsonObject{{"name", tricky}, {"description", tricky}}).status,
                 200);
        const QJsonObject listed = byId(api->get("/api/decks").array(), deck);
        QCOMPARE(listed.value("name").toString(), tricky);
        QCOMPARE(listed.value("description").toString(), tricky);
        QCOMPARE(api->get(path).object().value("name").toString(), tricky);
    }

    void deletingAFolderLeavesItsDecksLoose()
    {
        const qint64 folder = api->post("/api/folders", QJsonObject{{"name", "Box"}})
                                  .object()
                                  .value("id")
                                  .toInteger();
        const qint64 a = api->deck("A", "fr").value("id").toInteger();
        const qint64 b = api->deck("B", "it").value("id").toInteger();
        for (qint64 d : {a, b})
            api->patch(QStringLiteral("/api/decks/%1").arg(d), QJsonObject{{"folder_id", folder}});
        QCOMPARE(api->del(QStringLiteral("/api/folders/%1").arg(folder)).status, 204);
        const QJsonArray decks = api->get("/api/decks").array();
        QVERIFY(byId(decks, a).value("folder_id").isNull());
        QVERIFY(byId(decks, b).value("folder_id").isNull());
        QVERIFY(byId(api->get("/api/folders").array(), folder).isEmpty());
        QCOMPARE(api->del(QStringLiteral("/api/folders/%1").arg(folder)).status, 404);
    }

    void countsFollowCardsNotesAndStudy()
    {
        const qint64 deck = api->deck("Counting").value("id").toInteger();
        const Api::Stream s = api->stream(QStringLiteral("/api/decks/%1/cards").arg(deck),
                                          QJsonObject{{"input", "Hund"}});
        QCOMPARE(s.types().last(), QStringLiteral("card"));
        const qint64 card = s.events.last().value("card").toObject().value("id").toInteger();
        api->post(QStringLiteral("/api/decks/%1/notes").arg(deck),
                  QJsonObject{{"title", "N"}, {"text", "a\nb"}});

        QJsonObject summary = byId(api->get("/api/decks").array(), deck);
        QCOMPARE(summary.value("card_count").toInt(), 1);
        QCOMPARE(summary.value("known_count").toInt(), 0);
        QCOMPARE(summary.value("note_count").toInt(), 1);
        QVERIFY(summary.value("last_studied").isNull());

        api->post(QStringLiteral("/api/cards/%1/review").arg(card), QJsonObject{{"known", true}});
        summary = byId(api->get("/api/decks").array(), deck);
        QCOMPARE(summary.value("known_count").toInt(), 1);
        QVERIFY(summary.value("last_studied").isString());
    }

    void deletingADeckTakesEverythingInIt()
    {
        const qint64 deck = api->deck("Doomed").value("id").toInteger();
        const qint64 card = api->stream(QStringLiteral("/api/decks/%1/cards").arg(deck),
                                        QJsonObject{{"input", "Katze"}})
                                .events.last()
                                .value("card")
                                .toObject()
                                .value("id")
                                .toInteger();
        const qint64 note = api->post(QStringLiteral("/api/decks/%1/notes").arg(deck),
                                      QJsonObject{{"title", "gone"}, {"text", "eine Zeile"}})
                                .object()
                                .value("id")
                                .toInteger();
        QCOMPARE(api->del(QStringLiteral("/api/decks/%1").arg(deck)).status, 204);
        QCOMPARE(api->get(QStringLiteral("/api/decks/%1").arg(deck)).status, 404);
        QCOMPARE(api->post(QStringLiteral("/api/cards/%1/review").arg(card),
                           QJsonObject{{"known", true}})
                     .status,
                 404);
        QCOMPARE(api->get(QStringLiteral("/api/notes/%1").arg(note)).status, 404);
        QVERIFY(byId(api->get("/api/decks").array(), deck).isEmpty());
        QVERIFY(api->get("/api/search?q=Katze").object().value("cards").toArray().isEmpty());
    }

    void searchIgnoresCaseAndAccents()
    {
        const qint64 deck = api->deck("Search", "fr").value("id").toInteger();
        api->stream(QStringLiteral("/api/decks/%1/cards").arg(deck),
                    QJsonObject{{"input", "café"}});
        const QJsonObject note =
            api->post(QStringLiteral("/api/decks/%1/notes").arg(deck),
                      QJsonObject{{"title", "Crème brûlée"}, {"text", "Un CAFÉ, s'il vous plaît"}})
                .object();
        const QJsonObject found = api->get("/api/search?q=CAFE").object();
        QCOMPARE(found.value("cards").toArray().size(), 1);
        QCOMPARE(found.value("cards").toArray().first().toObject().value("term").toString(),
                 QStringLiteral("café"));
        const QJsonArray lines = found.value("lines").toArray();
        QCOMPARE(lines.size(), 1);
        QCOMPARE(lines.first().toObject().value("note_id"), note.value("id"));
        QCOMPARE(lines.first().toObject().value("note_title").toString(),
                 QStringLiteral("Crème brûlée"));
        QCOMPARE(lines.first().toObject().value("deck_id").toInteger(), deck);

        const QJsonObject byTitle = api->get("/api/search?q=creme%20brulee").object();
        QCOMPARE(byTitle.value("notes").toArray().size(), 1);
        QCOMPARE(byTitle.value("notes").toArray().first().toObject().value("title").toString(),
                 QStringLiteral("Crème brûlée"));

        const QJsonObject none = api->get("/api/search?q=").object();
        QVERIFY(none.value("cards").isArray() && none.value("cards").toArray().isEmpty());
        QVERIFY(none.value("notes").isArray() && none.value("lines").isArray());
    }
};

QTEST_GUILESS_MAIN(TestLibrary)
#include "tst_library.moc"
