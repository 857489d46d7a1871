// The home screen's palette context against a scripted server: what it reads from the shelf
// and the settings, and what each action does through the home screen (opening a card of
// another deck once its cards are in, deleting and rewriting it, notes, filing, writing, study
// and the app-wide commands), down to a typed query that opens a deck.
#include "app/appcommands.h"
#include "app/appstate.h"
#include "awaittask.h"
#include "library/homepalette.h"
#include "library/homeview.h"
#include "libraryreplies.h"
#include "palette/paletterecent.h"
#include "scriptedserver.h"
#include "server/apiclient.h"
#include "server/localsettings.h"
#include "testservices.h"

#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

using namespace orvel;
using testsupport::await;
using namespace replies;

class TestHomePalette : public QObject {
    Q_OBJECT
    QTemporaryDir m_dir;
    std::unique_ptr<ScriptedServer> m_server;
    std::unique_ptr<APIClient> m_api;
    std::unique_ptr<testsupport::TestServices> m_services;

    // Deutsch (1, loose, cards 70 and 71), Español (2, in folder 10, card 80), Leer (3, empty,
    // in folder 20).
    std::unique_ptr<HomeView> loadedHome()
    {
        m_server->reply("GET", "/api/decks", 200,
                        bytes(QJsonArray{summary(1, "Deutsch", {}, 2), summary(2, "Español", 10, 1),
                                         summary(3, "Leer", 20, 0)}));
        m_server->reply("GET", "/api/folders", 200,
                        bytes(QJsonArray{folder(10, "Reisen", 1), folder(20, "Später", 1)}));
        m_server->reply(
            "GET", "/api/decks/1", 200,
            bytes(deck(1, "Deutsch",
                       QJsonArray{card(70, 1, "Hund"), card(71, 1, "laufen", "verb")})));
        m_server->reply("GET", "/api/decks/2", 200,
                        bytes(deck(2, "Español", QJsonArray{card(80, 2, "perro")})));
        auto home = std::make_unique<HomeView>();
        await(home->shelf()->load());
        return home;
    }

    static Card cardOf(int id, int deckId)
    {
        Card card;
        card.id = id;
        card.deckId = deckId;
        return card;
    }

    static DeckSummary deckOf(const HomeView &home, int id) { return *home.shelf()->deckById(id); }

private slots:
    void initTestCase() { QVERIFY(m_dir.isValid()); }

    void init()
    {
        LocalSettings::useFile(
            m_dir.filePath(QString("settings-%1.conf").arg(QTest::currentTestFunction())));
        m_server = std::make_unique<ScriptedServer>();
        m_api = std::make_unique<APIClient>(m_server->baseUrl(), m_dir.filePath("jar"), QString());
        m_services = std::make_unique<testsupport::TestServices>(*m_api);
    }

    void cleanup()
    {
        m_services.reset();
        m_api.reset();
        m_server.reset();
    }

    void readsTheShelfTheOpenDeckAndTheRecents()
    {
        const auto home = loadedHome();
        PaletteRecent::note(PaletteRecent::deck(2));
        m_services->state().setAppearance(AppState::Appearance::Dark);
        PaletteContext context = HomePalette::context(*home);
        QCOMPARE(context.decks.size(), 3);
        QCOMPARE(context.folders.size(), 2);
        QVERIFY(!context.deck);
        QCOMPARE(context.recents.size(), 1);
        QCOMPARE(context.appearance, QStringLiteral("dark"));
        QVERIFY(context.canStudyFolder(*home->shelf()->folderById(10)));
        QVERIFY(!context.canStudyFolder(*home->shelf()->folderById(20)));

        home->selectDeck(2);
        context = HomePalette::context(*home);
        QCOMPARE(context.deck->name, QStringLiteral("Español"));
    }

    void opensACardOfAnotherDeckOnceItsCardsAreIn()
    {
        const auto home = loadedHome();
        home->selectDeck(1);
        QTRY_VERIFY(home->cards()->hasDeck());
        home->showNotes(true);
        // A filter that hides the card is cleared to show it.
        const PaletteContext context = HomePalette::context(*home);
        context.openCard(deckOf(*home, 2), cardOf(80, 2));
        QCOMPARE(home->selectedDeckId(), 2);
        QVERIFY(!home->notesShown());
        QTRY_COMPARE(home->cards()->selectedCardId(), 80);
        QCOMPARE(home->detail()->heading(), QStringLiteral("perro"));

        // In the deck already open, at once; a hiding filter is cleared.
        home->cards()->setQuery(QStringLiteral("zzz"));
        QCOMPARE(home->cards()->rowOf(80), -1);
        HomePalette::context(*home).openCardID(deckOf(*home, 2), 80);
        QCOMPARE(home->cards()->selectedCardId(), 80);
        QCOMPARE(home->cards()->query(), QString());
        QVERIFY(home->cards()->rowOf(80) >= 0);
    }

    void deletesAndRewritesThroughTheCardsOwnActions()
    {
        const auto home = loadedHome();
        m_server->reply("DELETE", "/api/cards/71", 204, "");
        const PaletteContext context = HomePalette::context(*home);
        context.deleteCard(cardOf(71, 1));
        // Nothing happens before the deck's cards are in.
        QVERIFY(!home->bin()->pending());
        QTRY_VERIFY(home->bin()->pending());
        QCOMPARE(home->bin()->cardId(), 71);
        QCOMPARE(home->cards()->rowOf(71), -1);

        m_server->reply("POST", "/api/cards/70/regenerate", 200,
                        bytes(card(70, 1, "Hund", "noun", 0, "dog")));
        context.rewrite(cardOf(70, 1));
        QTRY_COMPARE(home->cards()->selectedCard().translation, QStringLiteral("dog"));
        QCOMPARE(m_server->lastRequest().path, QStringLiteral("/api/cards/70/regenerate"));
    }

    void aWaitingDeleteIsDroppedWhenTheLearnerMovesOn()
    {
        const auto home = loadedHome();
        m_server->stream("GET", "/api/decks/1",
                         {{bytes(deck(1, "Deutsch", QJsonArray{card(70, 1, "Hund")})), "deck"}},
                         200, "application/json");
        HomePalette::context(*home).deleteCard(cardOf(70, 1));
        QTRY_COMPARE(m_server->requestCount(), 3);
        // The learner opens another deck before Deutsch's cards came.
        home->selectDeck(2);
        m_server->open("deck");
        QTRY_VERIFY(home->cards()->hasDeck());
        home->selectDeck(1);
        QTRY_VERIFY(home->cards()->hasDeck() && home->cards()->deckId() == 1);
        QVERIFY(!home->bin()->pending());
        QVERIFY(home->cards()->rowOf(70) >= 0);
    }

    void notesWritingAndImport()
    {
        const auto home = loadedHome();
        m_server->reply("GET", "/api/decks/1/notes", 200, "[]");
        m_server->reply("GET", "/api/notes/5", 404, R"({"error":"No such note."})");
        const PaletteContext context = HomePalette::context(*home);

        context.openNote(deckOf(*home, 1), 5);
        QCOMPARE(home->selectedDeckId(), 1);
        QVERIFY(home->notesShown());
        QTRY_VERIFY([this] {
            for (const auto &request : m_server->requests())
                if (request.path == u"/api/notes/5")
                    return true;
            return false;
        }());

        QSignalSpy write(home.get(), &HomeView::writeAsked);
        context.writeCard(QStringLiteral("Katze"), deckOf(*home, 2));
        QCOMPARE(home->selectedDeckId(), 2);
        QVERIFY(!home->notesShown());
        QCOMPARE(write.size(), 1);
        QCOMPARE(write.first().first().toString(), QStringLiteral("Katze"));

        QSignalSpy import(home.get(), &HomeView::importAsked);
        home->showNotes(true);
        context.addFromText(deckOf(*home, 1));
        QCOMPARE(home->selectedDeckId(), 1);
        QVERIFY(!home->notesShown());
        QCOMPARE(import.size(), 1);
        QCOMPARE(import.first().first().toString(), QString());

        m_server->reply("POST", "/api/decks/2/notes", 500, R"({"error":"nope"})");
        m_server->reply("GET", "/api/decks/2/notes", 200, "[]");
        context.newNote(deckOf(*home, 2));
        QVERIFY(home->notesShown());
        QTRY_VERIFY([this] {
            for (const auto &request : m_server->requests())
                if (request.method == "POST" && request.path == u"/api/decks/2/notes")
                    return true;
            return false;
        }());
    }

    void filingStudyAndTheSidebar()
    {
        const auto home = loadedHome();
        const PaletteContext context = HomePalette::context(*home);
        m_server->reply("PATCH", "/api/decks/1", 200, bytes(summary(1, "Deutsch", 20, 2)));
        context.move(deckOf(*home, 1), 20);
        QTRY_COMPARE(home->shelf()->deckById(1)->folderId, std::optional<int>(20));
        QCOMPARE(body(m_server->lastRequest().body), (QJsonObject{{"folder_id", 20}}));

        QSignalSpy commands(&AppCommands::shared(), &AppCommands::posted);
        context.study(deckOf(*home, 1));
        context.studyFolder(*home->shelf()->folderById(10));
        context.newDeck();
        context.openManual(QStringLiteral("folders"), QString());
        context.openSettings();
        QCOMPARE(commands.size(), 5);
        QCOMPARE(commands[0][0].value<AppCommand>(), AppCommand::Study);
        QCOMPARE(commands[0][1].toString(), QStringLiteral("1"));
        QCOMPARE(commands[1][1].toString(), QStringLiteral("2"));
        QCOMPARE(commands[2][0].value<AppCommand>(), AppCommand::NewDeck);
        QCOMPARE(commands[3][0].value<AppCommand>(), AppCommand::Manual);
        QCOMPARE(commands[3][1].toString(), QStringLiteral("folders"));
        QCOMPARE(commands[4][0].value<AppCommand>(), AppCommand::Settings);

        home->shelf()->setOpen(10, false);
        QSignalSpy revealed(home.get(), &HomeView::folderRevealed);
        context.revealFolder(*home->shelf()->folderById(10));
        QVERIFY(home->shelf()->isOpen(10));
        QCOMPARE(revealed.size(), 1);
        QCOMPARE(revealed.first().first().toInt(), 10);
        // The row the sidebar scrolls to.
        const int row = home->shelf()->sidebar()->folderRow(10);
        QCOMPARE(home->shelf()->sidebar()->rows().at(row).key, QStringLiteral("folder-10"));
        QCOMPARE(home->shelf()->sidebar()->folderRow(99), -1);

        context.chooseAppearance(QStringLiteral("light"));
        QCOMPARE(m_services->state().appearance(), AppState::Appearance::Light);
    }

    void hearingSpeaksInTheDecksLanguage()
    {
        const auto home = loadedHome();
        HomePalette::context(*home).hear(QStringLiteral("Hund"), QStringLiteral("de"));
        QCOMPARE(m_services->speech().saying(), QStringLiteral("Hund"));
    }

    void theHomeScreensPaletteOpensWhatIsTyped()
    {
        const auto home = loadedHome();
        CommandPalette *palette = home->palette();
        palette->open();
        QCOMPARE(palette->sections().first().title, QStringLiteral("Start"));
        palette->setQuery(QStringLiteral("espa"));
        QCOMPARE(palette->selectedItem()->id, QStringLiteral("deck-2"));
        QVERIFY(palette->perform());
        QVERIFY(!palette->opened());
        QCOMPARE(home->selectedDeckId(), 2);
        QCOMPARE(PaletteRecent::load().first().key(), QStringLiteral("deck-2"));

        // The open deck leads the start; it is not offered to jump back to.
        palette->open();
        QCOMPARE(palette->sections().first().title, QStringLiteral("In Español"));
        QCOMPARE(palette->sections().size(), 1);
        // The palette follows the open deck while it is open.
        home->selectDeck(1);
        QCOMPARE(palette->sections().first().title, QStringLiteral("In Deutsch"));
        QCOMPARE(palette->sections().last().title, QStringLiteral("Jump back to"));
    }
};

QTEST_GUILESS_MAIN(TestHomePalette)

#include "tst_homepalette.moc"
