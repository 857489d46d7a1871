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
            if (v["id"].toInteger() == id)
                return v.toObject();
        return {};
    }
    QJsonObject summary(qint64 deck) { return byId(api->get("/api/decks").array(), deck); }

private slots:
    void initTestCase()
    {
        QVERIFY(startServer(server));
        api = std::make_unique<Api>(server.baseUrl());
        api->join("lib@example.org");
    }

    void makingADeck()
    {
        bool german = false;
        for (const QJsonValue &l : api->get("/api/languages").array())
            german = german || (l["code"] == "de" && l["endonym"] == "Deutsch");
        QVERIFY(german);

        const QJsonObject deck = api->deck("Deutsch A1");
        QCOMPARE(deck["card_count"].toInt(), 0);
        QVERIFY(deck["folder_id"].isNull());
        QVERIFY(deck["last_studied"].isNull());
        const Api::Reply full = api->get(path("/api/decks/%1", deck["id"].toInteger()));
        QCOMPARE(full.status, 200);
        QCOMPARE(full["cards"].toArray().size(), 0);

        const auto make = [&](const QJsonObject &extra) {
            QJsonObject body{{"name", "X"}, {"language", "de"}, {"native_language", "en"}};
            for (auto it = extra.begin(); it != extra.end(); ++it)
                body.insert(it.key(), it.value());
            return api->post("/api/decks", body).status;
        };
        QCOMPARE(make({{"name", "  "}}), 422);
        QCOMPARE(make({{"language", "xx"}}), 422);
        QCOMPARE(make({{"folder_id", 999}}), 404);
    }

    void renamingAndFiling()
    {
        const QString deck = path("/api/decks/%1", api->deck("Spanish", "es")["id"].toInteger());
        const QJsonObject folder =
            api->post("/api/folders", QJsonObject{{"name", "Travel"}}).object();
        const qint64 folderId = folder["id"].toInteger();
        QCOMPARE(folder["deck_count"].toInt(), 0);

        const Api::Reply renamed =
            api->patch(deck, QJsonObject{{"name", "Español — día"}, {"description", "Tuesdays"}});
        QCOMPARE(renamed["name"].toString(), QStringLiteral("Español — día"));
        QCOMPARE(renamed["description"].toString(), QStringLiteral("Tuesdays"));

        QCOMPARE(api->patch(deck, QJsonObject{{"folder_id", folderId}})["folder_id"].toInteger(),
                 folderId);
        // An absent key leaves the folder; a rename does not unfile.
        QCOMPARE(api->patch(deck, QJsonObject{{"name", "Spanish"}})["folder_id"].toInteger(),
                 folderId);
        QCOMPARE(byId(api->get("/api/folders").array(), folderId)["deck_count"].toInt(), 1);
        QCOMPARE(api->patch(deck, QJsonObject{{"folder_id", 424242}}).status, 404);
        QVERIFY(
            api->patch(deck, QJsonObject{{"folder_id", QJsonValue::Null}})["folder_id"].isNull());
        QCOMPARE(
            api->patch(path("/api/folders/%1", folderId), QJsonObject{{"name", "Trips"}})["name"]
                .toString(),
            QStringLiteral("Trips"));
        QCOMPARE(api->patch(deck, QJsonObject{{"name", ""}}).status, 422);

        // Text of every kind comes back as it went.
        const QString tricky =
            QStringLiteral("Quote \" back\\slash\nnew line\ttab \u0001 ünï 日本 🐕");
        QCOMPARE(api->patch(deck, QJsonObject{{"name", tricky}, {"description", tricky}}).status,
                 200);
        QCOMPARE(summary(api->get(deck).id())["description"].toString(), tricky);
        QCOMPARE(api->get(deck)["name"].toString(), tricky);
    }

    void deletingAFolderLeavesItsDecksLoose()
    {
        const qint64 folder = api->post("/api/folders", QJsonObject{{"name", "Box"}}).id();
        const qint64 a = api->deck("A", "fr")["id"].toInteger();
        const qint64 b = api->deck("B", "it")["id"].toInteger();
        for (qint64 d : {a, b})
            api->patch(path("/api/decks/%1", d), QJsonObject{{"folder_id", folder}});
        QCOMPARE(api->del(path("/api/folders/%1", folder)).status, 204);
        QVERIFY(summary(a)["folder_id"].isNull());
        QVERIFY(summary(b)["folder_id"].isNull());
        QVERIFY(byId(api->get("/api/folders").array(), folder).isEmpty());
        QCOMPARE(api->del(path("/api/folders/%1", folder)).status, 404);
    }

    void countsFollowCardsNotesAndStudy()
    {
        const qint64 deck = api->deck("Counting")["id"].toInteger();
        const qint64 card = api->card(deck, "Hund")["id"].toInteger();
        api->note(deck, "N", "a\nb");
        QJsonObject counts = summary(deck);
        QCOMPARE(counts["card_count"].toInt(), 1);
        QCOMPARE(counts["known_count"].toInt(), 0);
        QCOMPARE(counts["note_count"].toInt(), 1);
        QVERIFY(counts["last_studied"].isNull());

        api->post(path("/api/cards/%1/review", card), QJsonObject{{"known", true}});
        counts = summary(deck);
        QCOMPARE(counts["known_count"].toInt(), 1);
        QVERIFY(counts["last_studied"].isString());
    }

    void deletingADeckTakesEverythingInIt()
    {
        const qint64 deck = api->deck("Doomed")["id"].toInteger();
        const qint64 card = api->card(deck, "Katze")["id"].toInteger();
        const qint64 note = api->note(deck, "gone", "eine Zeile")["id"].toInteger();
        QCOMPARE(api->del(path("/api/decks/%1", deck)).status, 204);
        QCOMPARE(api->get(path("/api/decks/%1", deck)).status, 404);
        QCOMPARE(api->post(path("/api/cards/%1/review", card), QJsonObject{{"known", true}}).status,
                 404);
        QCOMPARE(api->get(path("/api/notes/%1", note)).status, 404);
        QVERIFY(summary(deck).isEmpty());
        QVERIFY(api->get("/api/search?q=Katze")["cards"].toArray().isEmpty());
    }

    void searchIgnoresCaseAndAccents()
    {
        const qint64 deck = api->deck("Search", "fr")["id"].toInteger();
        api->card(deck, "café");
        const QJsonObject note = api->note(deck, "Crème brûlée", "Un CAFÉ, s'il vous plaît");
        const Api::Reply found = api->get("/api/search?q=CAFE");
        QCOMPARE(found["cards"].toArray().size(), 1);
        QCOMPARE(found["cards"][0]["term"].toString(), QStringLiteral("café"));
        const QJsonArray lines = found["lines"].toArray();
        QCOMPARE(lines.size(), 1);
        QCOMPARE(lines[0]["note_id"], note["id"]);
        QCOMPARE(lines[0]["note_title"].toString(), QStringLiteral("Crème brûlée"));
        QCOMPARE(lines[0]["deck_id"].toInteger(), deck);

        const Api::Reply byTitle = api->get("/api/search?q=creme%20brulee");
        QCOMPARE(byTitle["notes"].toArray().size(), 1);
        QCOMPARE(byTitle["notes"][0]["title"].toString(), QStringLiteral("Crème brûlée"));

        const Api::Reply none = api->get("/api/search?q=");
        QVERIFY(none["cards"].isArray() && none["cards"].toArray().isEmpty());
        QVERIFY(none["notes"].isArray() && none["lines"].isArray());
    }
};

QTEST_GUILESS_MAIN(TestLibrary)
#include "tst_library.moc"
