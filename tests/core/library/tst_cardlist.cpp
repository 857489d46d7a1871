// The open deck's cards against a scripted server: loading and its failure, the filters
// combined, the kind menu, the model's consistency, the detail's rewrite and answers, and the
// undoable deletion with a shortened undo time.
#include "app/timings.h"
#include "awaittask.h"
#include "library/cardchanges.h"
#include "library/homeview.h"
#include "libraryreplies.h"
#include "scriptedserver.h"
#include "server/apiclient.h"
#include "server/localsettings.h"
#include "testservices.h"

#include <QAbstractItemModelTester>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

using namespace orvel;
using testsupport::await;
using namespace replies;

namespace {

QList<int> shownIds(const CardList &list)
{
    QList<int> ids;
    for (int row = 0; row < list.rowCount(); ++row)
        ids.append(list.index(row).data(CardList::IdRole).toInt());
    return ids;
}

int deletions(const ScriptedServer &server)
{
    int count = 0;
    for (const auto &request : server.requests())
        if (request.method == "DELETE")
            ++count;
    return count;
}

} // namespace

class TestCardList : public QObject {
    Q_OBJECT
    QTemporaryDir m_dir;
    std::unique_ptr<ScriptedServer> m_server;
    std::unique_ptr<APIClient> m_api;
    std::unique_ptr<testsupport::TestServices> m_services;
    std::unique_ptr<HomeView> m_home;
    std::unique_ptr<QAbstractItemModelTester> m_tester;

    CardList &list() { return *m_home->cards(); }

    // Deck 1 with six cards, deck 2 with one.
    void scriptDecks()
    {
        m_server->reply(
            "GET", "/api/decks", 200,
            bytes(QJsonArray{summary(1, "Deutsch", {}, 6), summary(2, "Español", {}, 1)}));
        m_server->reply("GET", "/api/folders", 200, "[]");
        m_server->reply(
            "GET", "/api/decks/1", 200,
            bytes(deck(1, "Deutsch",
                       QJsonArray{card(11, 1, "der Hund", "noun", 3, "dog"),
                                  card(12, 1, "laufen", "verb", 0, "to run"),
                                  card(13, 1, "schnell", "adjective", 2, "fast"),
                                  card(14, 1, "Hündin", "noun", 0, "female dog"),
                                  card(15, 1, "zwischen", "preposition", 0, "between"),
                                  card(16, 1, "Guten Appetit", "phrase", 5, "enjoy")})));
        m_server->reply("GET", "/api/decks/2", 200,
                        bytes(deck(2, "Español", QJsonArray{card(21, 2, "perro", "noun")})));
    }

    void openDeck(int id)
    {
        m_home->selectDeck(id);
        QTRY_VERIFY(list().hasDeck() && list().deckId() == id);
    }

private slots:
    void initTestCase() { QVERIFY(m_dir.isValid()); }

    void init()
    {
        LocalSettings::useFile(m_dir.filePath("settings.conf"));
        Timings::shared() = Timings{}.scaled(0.02); // the card undo: 140 ms
        m_server = std::make_unique<ScriptedServer>();
        m_api = std::make_unique<APIClient>(m_server->baseUrl(), m_dir.filePath("jar"), QString());
        m_services = std::make_unique<testsupport::TestServices>(*m_api);
        m_home = std::make_unique<HomeView>();
        m_tester = std::make_unique<QAbstractItemModelTester>(
            m_home->cards(), QAbstractItemModelTester::FailureReportingMode::QtTest);
        scriptDecks();
        await(m_home->shelf()->load());
    }

    void cleanup()
    {
        m_tester.reset();
        m_home.reset();
        m_services.reset();
        m_api.reset();
        m_server.reset();
        Timings::shared() = Timings{};
    }

    void loadsAndFilters()
    {
        openDeck(1);
        QCOMPARE(shownIds(list()), (QList<int>{11, 12, 13, 14, 15, 16}));
        QCOMPARE(list().summary(), QStringLiteral("6 cards · 3 learned"));
        QCOMPARE(list().index(2).data(CardList::BadgeRole).toString(), QStringLiteral("adj."));
        QCOMPARE(list().index(4).data(CardList::BadgeRole).toString(), QStringLiteral("gram."));
        QCOMPARE(list().index(0).data(CardList::BadgeRole).toString(), QString());

        QStringList labels;
        for (const QVariant &option : list().kindOptions())
            labels.append(option.toMap()["label"].toString());
        QCOMPARE(labels,
                 (QStringList{"All kinds", "nouns", "verbs", "adjectives", "phrases", "grammar"}));

        list().setQuery("HUND");
        QCOMPARE(shownIds(list()), QList<int>{11});
        list().setQuery("HÜND"); // the accented Hündin only
        QCOMPARE(shownIds(list()), QList<int>{14});
        list().setQuery("DOG");
        QCOMPARE(shownIds(list()), (QList<int>{11, 14}));
        list().setLearned(CardList::LearnedFilter::NotLearned);
        QCOMPARE(shownIds(list()), QList<int>{14});
        list().setLearned(CardList::LearnedFilter::Learned);
        QCOMPARE(shownIds(list()), QList<int>{11});
        list().setQuery({});
        QCOMPARE(shownIds(list()), (QList<int>{11, 13, 16}));
        list().setKind("adjective");
        QCOMPARE(shownIds(list()), QList<int>{13});
        QCOMPARE(list().kindLabel(), QStringLiteral("adjectives"));
        list().setKind({});
        list().setLearned(CardList::LearnedFilter::Any);
        QCOMPARE(list().count(), 6);

        // Another deck starts unfiltered.
        list().setQuery("x");
        openDeck(2);
        QVERIFY(list().query().isEmpty());
        QCOMPARE(shownIds(list()), QList<int>{21});
        QCOMPARE(list().kindOptions().size(), 2); // "All kinds" and "nouns"
    }

    void aFailedLoadSaysWhy()
    {
        m_server->reply("GET", "/api/decks/2", 404, R"({"error":"No such deck."})");
        m_home->selectDeck(2);
        QTRY_VERIFY(!list().loading());
        QVERIFY(!list().hasDeck());
        QCOMPARE(list().trouble(), QStringLiteral("No such deck."));
        QCOMPARE(list().count(), 0);
    }

    void detailActionsReplaceTheCard()
    {
        openDeck(1);
        list().select(12);
        CardDetail &detail = *m_home->detail();
        QVERIFY(detail.hasCard());
        QCOMPARE(detail.heading(), QStringLiteral("laufen"));
        QCOMPARE(detail.foot(), QStringLiteral("seen 0 · 0 right · streak 0"));

        m_server->reply("POST", "/api/cards/12/review", 200,
                        bytes(card(12, 1, "laufen", "verb", 2, "to run")));
        list().setLearned(CardList::LearnedFilter::NotLearned);
        QVERIFY(list().rowOf(12) >= 0);
        await(detail.answer(true));
        QCOMPARE(body(m_server->lastRequest().body), (QJsonObject{{"known", true}}));
        QCOMPARE(detail.foot(), QStringLiteral("seen 2 · 2 right · streak 2"));
        // Now learned, so it leaves the "Not learned yet" list but stays chosen.
        QCOMPARE(list().rowOf(12), -1);
        QCOMPARE(list().selectedCardId(), 12);
        QCOMPARE(list().learnedCount(), 4);

        m_server->reply("POST", "/api/cards/12/regenerate", 200,
                        bytes(card(12, 1, "laufen", "verb", 2, "to walk, to run")));
        await(detail.rewrite());
        QCOMPARE(detail.card().translation, QStringLiteral("to walk, to run"));

        m_server->reply("POST", "/api/cards/12/review", 500, R"({"error":"Try again."})");
        await(detail.answer(false));
        QCOMPARE(detail.trouble(), QStringLiteral("Try again."));
        list().select(11);
        QVERIFY(detail.trouble().isEmpty());
    }

    void aCardMadeElsewhereJoinsItsDeck()
    {
        openDeck(1);
        const auto made = [](int id, int deck, const char *term) {
            return json::fromValue<Card>(card(id, deck, QString::fromUtf8(term)));
        };
        CardChanges::shared().announceAdded(made(17, 1, "die Katze"));
        QCOMPARE(shownIds(list()), (QList<int>{17, 11, 12, 13, 14, 15, 16}));
        // Another deck's card, or one the list holds already, changes nothing.
        CardChanges::shared().announceAdded(made(22, 2, "gato"));
        CardChanges::shared().announceAdded(made(17, 1, "die Katze"));
        QCOMPARE(list().total(), 7);
    }

    void deletingACardCanBeUndoneAtItsIndex()
    {
        openDeck(1);
        list().select(13);
        CardBin &bin = *m_home->bin();
        // A long undo time: nothing goes out until the test decides.
        Timings::shared().cardUndo = std::chrono::minutes(1);
        QVERIFY(bin.bin(13));
        QCOMPARE(bin.text(), QStringLiteral("Deleted schnell"));
        QCOMPARE(shownIds(list()), (QList<int>{11, 12, 14, 15, 16}));
        QVERIFY(!list().hasSelection());
        QCOMPARE(m_home->shelf()->deckById(1)->cardCount, 5);

        // Undo after the list got a filter: the card comes back at its deck index.
        bin.unbin();
        QVERIFY(!bin.pending());
        QCOMPARE(shownIds(list()), (QList<int>{11, 12, 13, 14, 15, 16}));
        QCOMPARE(m_home->shelf()->deckById(1)->cardCount, 6);
        QCOMPARE(deletions(*m_server), 0);

        // When the list has become shorter, the card goes at the end.
        QVERIFY(bin.bin(15));
        QVERIFY(list().takeCard(16));
        QVERIFY(list().takeCard(14));
        bin.unbin();
        QCOMPARE(shownIds(list()), (QList<int>{11, 12, 13, 15}));
        QCOMPARE(deletions(*m_server), 0);
    }

    void theUndoTimeSendsTheDeletion()
    {
        openDeck(1);
        m_server->reply("DELETE", "/api/cards/12", 204, "");
        CardBin &bin = *m_home->bin();
        QSignalSpy committed(&bin, &CardBin::committed);
        QVERIFY(bin.bin(12));
        QVERIFY(bin.pending());
        QTRY_COMPARE(committed.count(), 1);
        QVERIFY(!bin.pending());
        QTRY_COMPARE(deletions(*m_server), 1);
        QCOMPARE(m_server->lastRequest().path, QStringLiteral("/api/cards/12"));
        // Undo after the commit does nothing.
        bin.unbin();
        QCOMPARE(list().rowOf(12), -1);
    }

    void quittingSendsAPendingDeletionAndWaitsForIt()
    {
        openDeck(1);
        Timings::shared().cardUndo = std::chrono::minutes(1);
        m_server->reply("DELETE", "/api/cards/13", 204, "");
        CardBin &bin = *m_home->bin();
        QVERIFY(bin.bin(13));
        bin.commitAndWait(5000);
        // Answered before it returned: nothing is left for an event loop that is ending.
        QCOMPARE(deletions(*m_server), 1);
        QCOMPARE(m_server->lastRequest().path, QStringLiteral("/api/cards/13"));
        QVERIFY(!bin.pending());
        // With nothing pending it returns at once and sends nothing.
        bin.commitAndWait(5000);
        QCOMPARE(deletions(*m_server), 1);
    }

    void aSecondDeletionSendsTheFirstAtOnce()
    {
        openDeck(1);
        Timings::shared().cardUndo = std::chrono::minutes(1);
        m_server->reply("DELETE", "/api/cards/11", 204, "");
        m_server->reply("DELETE", "/api/cards/14", 204, "");
        CardBin &bin = *m_home->bin();
        QVERIFY(bin.bin(11));
        QVERIFY(bin.bin(14));
        QTRY_COMPARE(deletions(*m_server), 1);
        QCOMPARE(m_server->lastRequest().path, QStringLiteral("/api/cards/11"));
        QCOMPARE(bin.text(), QStringLiteral("Deleted Hündin"));
        // The second waits afresh; undo brings back only it.
        bin.unbin();
        QCOMPARE(shownIds(list()), (QList<int>{12, 13, 14, 15, 16}));
        QCOMPARE(deletions(*m_server), 1);
    }

    void aPendingDeletionSurvivesAnotherDeck()
    {
        openDeck(1);
        Timings::shared().cardUndo = std::chrono::minutes(1);
        CardBin &bin = *m_home->bin();
        QVERIFY(bin.bin(16));
        openDeck(2);
        QVERIFY(bin.pending());
        // Back to the first deck: the server still has the card, the list does not show it.
        openDeck(1);
        QCOMPARE(shownIds(list()), (QList<int>{11, 12, 13, 14, 15}));
        openDeck(2);
        bin.unbin();
        QCOMPARE(shownIds(list()), QList<int>{21});
        openDeck(1);
        QCOMPARE(list().rowOf(16), 5);
        QCOMPARE(deletions(*m_server), 0);
    }
};

QTEST_GUILESS_MAIN(TestCardList)
#include "tst_cardlist.moc"
