// The shelf and the cards against a real orvel-server: making folders and decks, filing and
// unfiling, a new folder for a deck, deleting a folder, then cards: filters, an answer, and a
// deletion that is undone and one that is sent.
#include "app/timings.h"
#include "awaittask.h"
#include "library/homeview.h"
#include "library/newdecksheet.h"
#include "server/apiclient.h"
#include "server/localsettings.h"
#include "serverprocess.h"
#include "testservices.h"

#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

using namespace orvel;
using testsupport::await;

namespace {

QCoro::Task<std::optional<Card>> addCard(APIClient &api, int deck, QString word)
{
    auto stream = api.addCardStreaming(deck, word);
    std::optional<Card> card;
    while (auto event = co_await stream.next())
        if (event->kind == CardEvent::Kind::Card)
            card = event->card;
    co_return card;
}

QStringList sidebarKeys(const HomeView &home)
{
    QStringList keys;
    for (const SidebarRow &row : home.shelf()->sidebar()->rows())
        keys.append(row.key);
    return keys;
}

} // namespace

class TestLibraryEndToEnd : public QObject {
    Q_OBJECT
    QTemporaryDir m_dir;
    ServerProcess m_server{{QStringLiteral("--local")}};
    std::unique_ptr<APIClient> m_api;
    std::unique_ptr<testsupport::TestServices> m_services;

private slots:
    void initTestCase()
    {
        QVERIFY(m_dir.isValid());
        LocalSettings::useFile(m_dir.filePath("orvel.conf"));
        QVERIFY2(m_server.start(), qPrintable(m_server.errorText()));
        m_api = std::make_unique<APIClient>(m_server.baseUrl(), m_dir.filePath("jar"), QString());
        m_services = std::make_unique<testsupport::TestServices>(*m_api);
        await(m_api->signUp("ana@example.org", "correct horse", "Ana"));
        await(m_api->signIn("ana@example.org", "correct horse"));
    }

    void cleanupTestCase()
    {
        m_services.reset();
        m_api.reset();
    }

    void theShelf()
    {
        HomeView home;
        await(home.shelf()->load());
        QVERIFY(home.shelf()->trouble().isEmpty());
        QVERIFY(home.shelf()->empty());

        NewDeckSheet sheet;
        sheet.setHome(&home);
        await(sheet.loadLanguages());
        QVERIFY(sheet.languageChoices().size() > 2);
        QList<int> decks;
        for (const char *name : {"Deutsch", "Español", "Italiano", "Français", "Verbs"}) {
            sheet.setName(QString::fromUtf8(name));
            sheet.setLanguage("de");
            sheet.setNativeLanguage("en");
            const auto made = await(sheet.start());
            QVERIFY2(made, qPrintable(sheet.trouble()));
            decks.append(made->id);
        }
        QCOMPARE(home.selectedDeckId(), decks.last());

        const auto evening = await(home.folderActions()->newFolder(std::nullopt));
        QVERIFY(evening);
        QCOMPARE(evening->name, QStringLiteral("untitled folder"));
        await(home.folderActions()->rename(evening->id, "Evening class"));
        // A folder made for a deck files the deck into it.
        const auto travel = await(home.folderActions()->newFolder(decks[1]));
        QVERIFY(travel);
        QCOMPARE(travel->name, QStringLiteral("untitled folder"));
        QCOMPARE(home.shelf()->deckById(decks[1])->folderId, std::optional<int>(travel->id));

        QVERIFY(await(home.folderActions()->move({decks[3], decks[4]}, evening->id)));
        home.shelf()->setOpen(travel->id, false);

        // What the server now says matches what the shelf shows.
        HomeView fresh;
        await(fresh.shelf()->load());
        const QString e = QString::number(evening->id), t = QString::number(travel->id);
        const QStringList expected = {"decks",
                                      "deck-" + QString::number(decks[0]),
                                      "deck-" + QString::number(decks[2]),
                                      "folders",
                                      "folder-" + e,
                                      "deck-" + QString::number(decks[3]),
                                      "deck-" + QString::number(decks[4]),
                                      "folder-" + t};
        QCOMPARE(sidebarKeys(fresh), expected);
        QCOMPARE(fresh.shelf()->folderById(evening->id)->name, QStringLiteral("Evening class"));
        QCOMPARE(
            fresh.folderActions()->deleteDetail(evening->id),
            QStringLiteral("Its 2 decks move out of the folder. No cards or notes are deleted."));

        // Unfiling, then deleting a folder that holds two decks leaves both loose.
        QVERIFY(await(fresh.folderActions()->move({decks[1]}, std::nullopt)));
        await(fresh.folderActions()->remove(evening->id));
        QVERIFY(fresh.shelf()->trouble().isEmpty());
        HomeView after;
        await(after.shelf()->load());
        QCOMPARE(after.shelf()->folders().size(), 1);
        for (int id : decks)
            QVERIFY(!after.shelf()->deckById(id)->folderId);
        QVERIFY(!after.shelf()->isOpen(travel->id));

        await(after.deckActions()->remove(decks[2]));
        HomeView last;
        await(last.shelf()->load());
        QCOMPARE(last.shelf()->decks().size(), 4);
    }

    void theCards()
    {
        HomeView home;
        await(home.shelf()->load());
        const int deckId = home.shelf()->decks().first().id;
        QList<Card> cards;
        for (const char *word : {"Hund", "laufen", "schnell"}) {
            const auto card = await(addCard(*m_api, deckId, QString::fromUtf8(word)));
            QVERIFY(card);
            cards.append(*card);
        }
        await(home.shelf()->load());
        QCOMPARE(home.shelf()->deckById(deckId)->cardCount, 3);

        home.selectDeck(deckId);
        CardList &list = *home.cards();
        QTRY_VERIFY(list.hasDeck());
        QCOMPARE(list.total(), 3);
        list.setQuery("HUND");
        QCOMPARE(list.count(), 1);
        list.select(list.cardAt(0).id);
        QCOMPARE(home.detail()->heading(), QStringLiteral("der Hund"));

        await(home.detail()->answer(true));
        QCOMPARE(home.detail()->card().known, 1);
        list.setQuery({});

        Timings::shared().cardUndo = std::chrono::minutes(1);
        CardBin &bin = *home.bin();
        const Card first = list.cardAt(0);
        const Card second = list.cardAt(1);
        QVERIFY(bin.bin(first.id));
        QCOMPARE(home.shelf()->deckById(deckId)->cardCount, 2);
        bin.unbin();
        QCOMPARE(list.cardAt(0).id, first.id);

        QSignalSpy committed(&bin, &CardBin::committed);
        Timings::shared().cardUndo = std::chrono::milliseconds(50);
        QVERIFY(bin.bin(second.id));
        QTRY_COMPARE(committed.count(), 1);
        // The server lets the card go: a fresh load no longer has it.
        QTRY_COMPARE_WITH_TIMEOUT(await(m_api->deck(deckId)).cards.size(), 2, 10000);
        Timings::shared() = Timings{};
    }
};

QTEST_GUILESS_MAIN(TestLibraryEndToEnd)
#include "tst_library_e2e.moc"
