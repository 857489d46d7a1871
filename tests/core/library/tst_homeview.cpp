// The home screen's shelf against a scripted server: loading and its failure, the sidebar model,
// shut folders kept across screens, filing by drop and by menu (the request bodies), new folders
// and their names, deleting folders and decks, and the study entry points.
#include "app/appcommands.h"
#include "awaittask.h"
#include "library/cardchanges.h"
#include "library/deckfiling.h"
#include "library/homeview.h"
#include "library/newdecksheet.h"
#include "library/renamedecksheet.h"
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

QStringList sidebarKeys(const HomeView &home)
{
    QStringList keys;
    for (const SidebarRow &row : home.shelf()->sidebar()->rows())
        keys.append(row.key);
    return keys;
}

} // namespace

class TestHomeView : public QObject {
    Q_OBJECT
    QTemporaryDir m_dir;
    std::unique_ptr<ScriptedServer> m_server;
    std::unique_ptr<APIClient> m_api;
    std::unique_ptr<testsupport::TestServices> m_services;

    // Two loose decks (1, 2), a deck in folder 10 (3), a deck in folder 20 (4), and deck 5 in a
    // folder the listing does not have.
    void scriptShelf()
    {
        m_server->reply("GET", "/api/decks", 200,
                        bytes(QJsonArray{summary(1, "Deutsch", {}, 42, 2), summary(2, "Español"),
                                         summary(3, "Français", 10, 64), summary(4, "Verbs", 20, 0),
                                         summary(5, "Lost", 99, 3)}));
        m_server->reply("GET", "/api/folders", 200,
                        bytes(QJsonArray{folder(10, "Evening class", 1), folder(20, "Travel", 1)}));
    }

    std::unique_ptr<HomeView> loadedHome()
    {
        scriptShelf();
        auto home = std::make_unique<HomeView>();
        await(home->shelf()->load());
        return home;
    }

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

    void loadsTheShelfInSidebarOrder()
    {
        scriptShelf();
        HomeView home;
        QAbstractItemModelTester tester(home.shelf()->sidebar(),
                                        QAbstractItemModelTester::FailureReportingMode::QtTest);
        QVERIFY(!home.shelf()->loaded());
        await(home.shelf()->load());
        QVERIFY(home.shelf()->loaded());
        QVERIFY(!home.shelf()->empty());
        QVERIFY(home.shelf()->trouble().isEmpty());
        QCOMPARE(sidebarKeys(home), (QStringList{"decks", "deck-1", "deck-2", "deck-5", "folders",
                                                 "folder-10", "deck-3", "folder-20", "deck-4"}));
        const QModelIndex deck = home.shelf()->sidebar()->index(1);
        QCOMPARE(deck.data(SidebarModel::NameRole).toString(), QStringLiteral("Deutsch"));
        QCOMPARE(deck.data(SidebarModel::CountRole).toInt(), 42);
        QCOMPARE(deck.data(SidebarModel::KindRole).toString(), QStringLiteral("deck"));
        QCOMPARE(home.shelf()->deckForShortcut(1), 1);
        QCOMPARE(home.shelf()->deckForShortcut(3), 5);
        QCOMPARE(home.shelf()->deckForShortcut(4), 3);
        QCOMPARE(home.shelf()->deckForShortcut(6), 0);

        // A failed listing keeps the shelf and says so.
        m_server->reply("GET", "/api/folders", 500, R"({"error":"boom"})");
        await(home.shelf()->load());
        QCOMPARE(home.shelf()->trouble(), QStringLiteral("Couldn't load your decks"));
        QCOMPARE(home.shelf()->decks().size(), 5);
    }

    void cardsMadeElsewhereCountOnTheirDeck()
    {
        const auto home = loadedHome();
        const auto countOf = [&](int row) {
            return home->shelf()->sidebar()->index(row).data(SidebarModel::CountRole).toInt();
        };
        Card made;
        made.id = 70;
        made.deckId = 3;
        made.term = QStringLiteral("le chien");
        CardChanges::shared().announceAdded(made); // a card made from a note's line
        QCOMPARE(countOf(6), 65);
        CardChanges::shared().announce(made); // a card that changed is not a new one
        QCOMPARE(countOf(6), 65);
        QCOMPARE(countOf(1), 42);
    }

    void anEmptyShelf()
    {
        m_server->reply("GET", "/api/decks", 200, "[]");
        m_server->reply("GET", "/api/folders", 200, "[]");
        HomeView home;
        await(home.shelf()->load());
        QVERIFY(home.shelf()->empty());
        QVERIFY(!home.shelf()->hasDecks());
    }

    void shutFoldersAreKeptAcrossScreens()
    {
        auto home = loadedHome();
        QAbstractItemModelTester tester(home->shelf()->sidebar(),
                                        QAbstractItemModelTester::FailureReportingMode::QtTest);
        home->shelf()->setOpen(20, false);
        home->shelf()->setOpen(10, false);
        QCOMPARE(LocalSettings::store().value("zelon.sidebar.shutFolders").toStringList(),
                 (QStringList{"10", "20"}));
        QCOMPARE(sidebarKeys(*home), (QStringList{"decks", "deck-1", "deck-2", "deck-5", "folders",
                                                  "folder-10", "folder-20"}));
        home->shelf()->setOpen(10, true);
        QCOMPARE(LocalSettings::store().value("zelon.sidebar.shutFolders").toStringList(),
                 QStringList{"20"});

        auto again = loadedHome();
        QVERIFY(again->shelf()->isOpen(10));
        QVERIFY(!again->shelf()->isOpen(20));
        QVERIFY(!sidebarKeys(*again).contains("deck-4"));
    }

    void filingByDropSendsTheFolderOrNull()
    {
        auto home = loadedHome();
        m_server->reply("PATCH", "/api/decks/1", 200, bytes(summary(1, "Deutsch", 20, 42, 2)));
        m_server->reply("PATCH", "/api/decks/3", 200, bytes(summary(3, "Français", {}, 64)));

        // Unknown folder or no known deck: refused, nothing sent.
        QVERIFY(!home->folderActions()->file(QVariantList{1}, 77));
        QVERIFY(!home->folderActions()->file(QVariantList{404}, 20));
        QCOMPARE(m_server->requestCount(), 2);

        QVERIFY(home->folderActions()->file(QVariantList{1}, 20));
        QTRY_COMPARE(home->shelf()->deckById(1)->folderId, std::optional<int>(20));
        auto request = m_server->lastRequest();
        QCOMPARE(request.path, QStringLiteral("/api/decks/1"));
        QCOMPARE(body(request.body), (QJsonObject{{"folder_id", 20}}));
        QCOMPARE(sidebarKeys(*home),
                 (QStringList{"decks", "deck-2", "deck-5", "folders", "folder-10", "deck-3",
                              "folder-20", "deck-1", "deck-4"}));

        // Dropped on the "Decks" heading: out of any folder, with an explicit null.
        QVERIFY(await(home->folderActions()->move({3}, std::nullopt)));
        request = m_server->lastRequest();
        QCOMPARE(request.path, QStringLiteral("/api/decks/3"));
        QCOMPARE(body(request.body), (QJsonObject{{"folder_id", QJsonValue()}}));
        QVERIFY(!home->shelf()->deckById(3)->folderId);

        // A deck already where it is dropped is not sent again.
        const int before = m_server->requestCount();
        QVERIFY(await(home->folderActions()->move({2, 5}, std::nullopt)));
        QCOMPARE(m_server->requestCount(), before);

        // A refused move says so.
        m_server->reply("PATCH", "/api/decks/2", 500, R"({"error":"nope"})");
        QVERIFY(!await(home->folderActions()->move({2}, 10)));
        QCOMPARE(home->shelf()->trouble(), QStringLiteral("Couldn't file that"));
    }

    void theMoveToMenu()
    {
        auto home = loadedHome();
        DeckFiling filing;
        filing.setHome(home.get());
        filing.setDeckId(3);
        QCOMPARE(filing.current(), 10);
        QCOMPARE(filing.folders().size(), 2);
        QCOMPARE(filing.folders()[1].toMap()["name"].toString(), QStringLiteral("Travel"));
        QCOMPARE(filing.newFolderText(), QStringLiteral("New Folder with “Français”"));
        filing.setDeckId(5); // its folder is not in the listing
        QVERIFY(!filing.hasCurrent());

        m_server->reply("PATCH", "/api/decks/5", 200, bytes(summary(5, "Lost", 20, 3)));
        QSignalSpy changed(&filing, &DeckFiling::changed);
        QVERIFY(filing.move(20));
        QTRY_COMPARE(filing.current(), 20);
        QVERIFY(changed.count() > 0);
    }

    void newFoldersAreNamedAndCanTakeADeck()
    {
        m_server->reply("GET", "/api/decks", 200, bytes(QJsonArray{summary(1, "Deutsch")}));
        m_server->reply(
            "GET", "/api/folders", 200,
            bytes(QJsonArray{folder(10, "Untitled Folder"), folder(20, "untitled folder 2")}));
        HomeView home;
        await(home.shelf()->load());
        m_server->reply("POST", "/api/folders", 200, bytes(folder(30, "untitled folder 3")));
        m_server->reply("PATCH", "/api/decks/1", 200, bytes(summary(1, "Deutsch", 30)));

        const auto made = await(home.folderActions()->newFolder(1));
        QVERIFY(made);
        QCOMPARE(made->id, 30);
        const auto requests = m_server->requests();
        QCOMPARE(requests[requests.size() - 2].path, QStringLiteral("/api/folders"));
        QCOMPARE(body(requests[requests.size() - 2].body),
                 (QJsonObject{{"name", "untitled folder 3"}}));
        QCOMPARE(body(requests.last().body), (QJsonObject{{"folder_id", 30}}));
        QCOMPARE(home.shelf()->deckById(1)->folderId, std::optional<int>(30));
        // The new folder's name is edited in place next.
        QCOMPARE(home.folderActions()->editingFolderId(), 30);

        m_server->reply("PATCH", "/api/folders/30", 200, bytes(folder(30, "Grammar")));
        await(home.folderActions()->rename(30, "  Grammar\t"));
        QCOMPARE(body(m_server->lastRequest().body), (QJsonObject{{"name", "Grammar"}}));
        QCOMPARE(home.shelf()->folderById(30)->name, QStringLiteral("Grammar"));
        QCOMPARE(home.folderActions()->editingFolderId(), 0);
        // A blank name keeps the old one and sends nothing.
        const int before = m_server->requestCount();
        await(home.folderActions()->rename(30, "   "));
        QCOMPARE(m_server->requestCount(), before);

        m_server->reply("POST", "/api/folders", 500, R"({"error":"no"})");
        QVERIFY(!await(home.folderActions()->newFolder(std::nullopt)));
        QCOMPARE(home.shelf()->trouble(), QStringLiteral("Couldn't file that"));
    }

    void deletingAFolderLeavesItsDecksLoose()
    {
        m_server->reply(
            "GET", "/api/decks", 200,
            bytes(QJsonArray{summary(1, "A", 10), summary(2, "B", 10), summary(3, "C")}));
        m_server->reply("GET", "/api/folders", 200,
                        bytes(QJsonArray{folder(10, "Travel", 2), folder(20, "Empty")}));
        HomeView home;
        await(home.shelf()->load());
        home.shelf()->setOpen(10, false);
        QCOMPARE(home.folderActions()->deleteQuestion(10),
                 QStringLiteral("Delete the folder “Travel”?"));
        QCOMPARE(
            home.folderActions()->deleteDetail(10),
            QStringLiteral("Its 2 decks move out of the folder. No cards or notes are deleted."));
        QCOMPARE(home.folderActions()->deleteDetail(20), QStringLiteral("The folder is empty."));

        m_server->reply("DELETE", "/api/folders/10", 204, "");
        await(home.folderActions()->remove(10));
        QCOMPARE(m_server->lastRequest().method, QByteArray("DELETE"));
        QCOMPARE(sidebarKeys(home),
                 (QStringList{"decks", "deck-1", "deck-2", "deck-3", "folders", "folder-20"}));
        // The folder is forgotten among the shut ones too.
        QVERIFY(ShutFolders_readIsEmpty());
    }

    void deletingADeck()
    {
        auto home = loadedHome();
        QCOMPARE(home->deckActions()->deleteQuestion(1), QStringLiteral("Delete Deutsch?"));
        QCOMPARE(home->deckActions()->deleteDetail(1),
                 QStringLiteral("42 cards and 2 notes go too. This cannot be undone."));
        QCOMPARE(home->deckActions()->deleteDetail(3),
                 QStringLiteral("64 cards go too. This cannot be undone."));
        QCOMPARE(home->deckActions()->deleteQuestion(404), QStringLiteral("Delete this deck?"));

        m_server->reply("GET", "/api/decks/1", 200, bytes(deck(1, "Deutsch", {})));
        home->selectDeck(1);
        QTRY_VERIFY(home->cards()->hasDeck());
        m_server->reply("DELETE", "/api/decks/1", 500, R"({"error":"Not now."})");
        await(home->deckActions()->remove(1));
        QCOMPARE(home->shelf()->trouble(), QStringLiteral("Not now."));
        QVERIFY(home->shelf()->deckById(1));

        m_server->reply("DELETE", "/api/decks/1", 204, "");
        await(home->deckActions()->remove(1));
        QVERIFY(!home->shelf()->deckById(1));
        QCOMPARE(home->selectedDeckId(), 0);
        QVERIFY(!home->cards()->hasDeck());
    }

    void studyEntryPointsPostTheStudyCommand()
    {
        auto home = loadedHome();
        QSignalSpy posted(&AppCommands::shared(), &AppCommands::posted);
        home->deckActions()->study(1);
        QCOMPARE(posted.count(), 1);
        QCOMPARE(posted[0][0].value<AppCommand>(), AppCommand::Study);
        QCOMPARE(posted[0][1].toString(), QStringLiteral("1"));

        // Folder 10 holds deck 3 (64 cards); folder 20 holds only deck 4, which has none.
        QVERIFY(home->folderActions()->studyAll(10));
        QCOMPARE(posted.last()[1].toString(), QStringLiteral("3"));
        QVERIFY(!home->folderActions()->studyAll(20));
        QCOMPARE(posted.count(), 2);

        m_server->reply("PATCH", "/api/decks/1", 200, bytes(summary(1, "Deutsch", 10, 42)));
        QVERIFY(await(home->folderActions()->move({1}, 10)));
        QCOMPARE(home->folderActions()->studyAllDecks(10), (QList<int>{1, 3}));
        QVERIFY(home->folderActions()->studyAll(10));
        QCOMPARE(posted.last()[1].toString(), QStringLiteral("1,3"));
        QCOMPARE(home->deckActions()->studyButtonText("Ctrl+R"),
                 QStringLiteral("Study this deck (Ctrl+R)"));
    }

    void shortcutsOpenDecks()
    {
        auto home = loadedHome();
        m_server->reply("GET", "/api/decks/2", 200, bytes(deck(2, "Español", {})));
        QVERIFY(home->openShortcut(2));
        QCOMPARE(home->selectedDeckId(), 2);
        QTRY_COMPARE(home->cards()->deckName(), QStringLiteral("Español"));
        QVERIFY(!home->openShortcut(9));
    }

    void newAndRenameSheets()
    {
        auto home = loadedHome();
        m_server->reply("GET", "/api/languages", 200,
                        R"([{"code":"de","name":"German","endonym":"Deutsch"},
                            {"code":"en","name":"English","endonym":"English"}])");
        NewDeckSheet sheet;
        sheet.setHome(home.get());
        QCOMPARE(sheet.startText(), QStringLiteral("Start deck"));
        await(sheet.loadLanguages());
        const QVariantList choices = sheet.languageChoices();
        QCOMPARE(choices.size(), 3);
        QCOMPARE(choices[0].toMap()["label"].toString(), QStringLiteral("Pick one"));
        QCOMPARE(choices[1].toMap()["label"].toString(), QStringLiteral("German · Deutsch"));
        QCOMPARE(choices[2].toMap()["label"].toString(), QStringLiteral("English"));

        sheet.setName("  Portuguese\t");
        QVERIFY(!sheet.canStart());
        sheet.setLanguage("de");
        QVERIFY(!sheet.canStart());
        sheet.setNativeLanguage("en");
        QVERIFY(sheet.canStart());
        sheet.setName(" \t ");
        QVERIFY(!sheet.canStart());
        sheet.setName("  Deutsch 2\t");

        m_server->reply("POST", "/api/decks", 200, bytes(summary(6, "Deutsch 2")));
        QSignalSpy started(&sheet, &NewDeckSheet::started);
        const auto made = await(sheet.start());
        QVERIFY(made);
        QCOMPARE(started.count(), 1);
        QCOMPARE(body(m_server->lastRequest().body), (QJsonObject{{"name", "Deutsch 2"},
                                                                  {"description", ""},
                                                                  {"language", "de"},
                                                                  {"native_language", "en"}}));
        QCOMPARE(home->selectedDeckId(), 6);
        QVERIFY(home->shelf()->deckById(6));

        m_server->reply("POST", "/api/decks", 400, R"({"error":"Pick a language."})");
        QVERIFY(!await(sheet.start()));
        QCOMPARE(sheet.trouble(), QStringLiteral("Pick a language."));
        QCOMPARE(sheet.startText(), QStringLiteral("Start deck"));

        RenameDeckSheet rename;
        rename.setHome(home.get());
        rename.setDeckId(2);
        QCOMPARE(rename.name(), QStringLiteral("Español"));
        rename.setName("Español Dos");
        m_server->reply("PATCH", "/api/decks/2", 200, bytes(summary(2, "Español Dos")));
        QVERIFY(await(rename.save()));
        QCOMPARE(body(m_server->lastRequest().body),
                 (QJsonObject{{"name", "Español Dos"}, {"description", ""}}));
        QCOMPARE(home->shelf()->deckById(2)->name, QStringLiteral("Español Dos"));
    }

private:
    static bool ShutFolders_readIsEmpty()
    {
        return LocalSettings::store().value("zelon.sidebar.shutFolders").toStringList().isEmpty();
    }
};

QTEST_GUILESS_MAIN(TestHomeView)
#include "tst_homeview.moc"
