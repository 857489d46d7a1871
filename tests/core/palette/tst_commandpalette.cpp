// The palette as the keys drive it: opening, moving with wrap-around, the two-step confirm,
// stepping into stages and back out with ⌫, what closes it and what is remembered, the list the
// view shows, and the library search while a query is typed (only the newest reply counts).
#include "app/timings.h"
#include "palette/commandpalette.h"
#include "palette/paletterecent.h"
#include "palettefixtures.h"
#include "scriptedserver.h"
#include "server/apiclient.h"
#include "server/localsettings.h"
#include "settledreplies.h"
#include "testservices.h"

#include <QAbstractItemModelTester>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

using namespace orvel;
using namespace palettefixtures;

namespace {

QByteArray searchReply(const QList<std::pair<int, QString>> &cards)
{
    QJsonArray list;
    for (const auto &[id, term] : cards)
        list.append(QJsonObject{{"id", id},
                                {"deck_id", 1},
                                {"term", term},
                                {"reading", ""},
                                {"part_of_speech", "noun"},
                                {"gender", ""},
                                {"translation", "x"},
                                {"definition", ""},
                                {"usage_notes", ""},
                                {"examples", QJsonArray{}},
                                {"related", QJsonArray{}},
                                {"conjugations", QJsonArray{}},
                                {"seen", 0},
                                {"known", 0},
                                {"streak", 0},
                                {"last_reviewed", QJsonValue()},
                                {"created_at", "2026-11-01"}});
    return QJsonDocument(
               QJsonObject{{"cards", list}, {"notes", QJsonArray{}}, {"lines", QJsonArray{}}})
        .toJson(QJsonDocument::Compact);
}

QStringList shownIds(const CommandPalette &palette)
{
    QStringList ids;
    for (int i = 0; i < palette.list()->itemCount(); ++i)
        ids.append(palette.list()->item(i).id);
    return ids;
}

QStringList rowTexts(const CommandPalette &palette, int role)
{
    QStringList texts;
    const PaletteListModel *list = palette.list();
    for (int row = 0; row < list->rowCount(); ++row)
        texts.append(list->index(row).data(role).toString());
    return texts;
}

} // namespace

class TestCommandPalette : public QObject {
    Q_OBJECT
    QTemporaryDir m_dir;
    std::unique_ptr<ScriptedServer> m_server;
    std::unique_ptr<APIClient> m_api;
    std::unique_ptr<testsupport::TestServices> m_services;
    std::shared_ptr<QStringList> m_log;
    QList<PaletteRecent> m_recents;
    Timings m_timings;

    // Deutsch (1) open in Evening class, Español (2); a recent card of Español.
    std::unique_ptr<CommandPalette> palette(bool deckOpen = true)
    {
        auto palette = std::make_unique<CommandPalette>();
        palette->setManual({{QStringLiteral("first-deck"), QStringLiteral("Your first deck"),
                             QStringLiteral("How do I start a deck?")}});
        palette->setContextSource([this, deckOpen] {
            PaletteContext context = recordingContext(m_log);
            context.decks = {deck(1, "Deutsch", 12, 0, 10), deck(2, "Español", 3, 0, {}, "es")};
            context.folders = {folder(10, "Evening class", 1)};
            if (deckOpen)
                context.deck = context.decks.first();
            context.recents = m_recents;
            return context;
        });
        return palette;
    }

    // Moves the selection to the item with this id; false when it is not listed.
    static bool selectId(CommandPalette &palette, const QString &id)
    {
        for (int i = 0; i < palette.list()->itemCount(); ++i) {
            if (palette.selectedItem() && palette.selectedItem()->id == id)
                return true;
            palette.move(1);
        }
        return palette.selectedItem() && palette.selectedItem()->id == id;
    }

    // Opens the card stage of the recent card Español/50 ("perro").
    std::unique_ptr<CommandPalette> inCardStage()
    {
        m_recents = {PaletteRecent::card({2, 50, "perro", "dog", "noun"})};
        auto p = palette();
        p->open();
        if (!selectId(*p, "recent-card-50") || !p->deeper())
            return nullptr;
        return p;
    }

private slots:
    void initTestCase()
    {
        QVERIFY(m_dir.isValid());
        m_timings = Timings::shared();
        Timings::shared() = Timings{}.scaled(0.05);
    }

    void cleanupTestCase() { Timings::shared() = m_timings; }

    void init()
    {
        LocalSettings::useFile(
            m_dir.filePath(QString("settings-%1.conf").arg(QTest::currentTestFunction())));
        m_server = std::make_unique<ScriptedServer>();
        m_api = std::make_unique<APIClient>(m_server->baseUrl(), m_dir.filePath("jar"), QString());
        m_services = std::make_unique<testsupport::TestServices>(*m_api);
        m_log = std::make_shared<QStringList>();
        m_recents.clear();
    }

    void cleanup()
    {
        m_services.reset();
        m_api.reset();
        m_server.reset();
    }

    void opensAtTheStart()
    {
        auto p = palette();
        QAbstractItemModelTester tester(p->list(),
                                        QAbstractItemModelTester::FailureReportingMode::QtTest);
        QSignalSpy opened(p.get(), &CommandPalette::openedChanged);
        QVERIFY(!p->opened());
        p->open();
        QVERIFY(p->opened());
        QCOMPARE(opened.size(), 1);
        QCOMPARE(p->query(), QString());
        QCOMPARE(p->selectedIndex(), 0);
        QCOMPARE(p->selectedRow(), 1);
        QVERIFY(!p->inStage());
        QVERIFY(p->armedId().isEmpty());
        QCOMPARE(p->placeholder(),
                 QStringLiteral("Find a deck, a card, a note — or say what to do"));
        QCOMPARE(p->emptyText(), QString());

        // Headings and rows, as the view reads them.
        QCOMPARE(rowTexts(*p, PaletteListModel::KindRole),
                 (QStringList{"section", "item", "item", "item", "item"}));
        QCOMPARE(rowTexts(*p, PaletteListModel::TitleRole),
                 (QStringList{"In Deutsch", "Write a card…", "Add from Text…", "New Note",
                              "Study Deutsch"}));
        const QModelIndex study = p->list()->index(4);
        QCOMPARE(study.data(PaletteListModel::MetaRole).toString(), QStringLiteral("12 cards"));
        QCOMPARE(study.data(PaletteListModel::GlyphRole).toString(), QStringLiteral("play.fill"));
        QCOMPARE(study.data(PaletteListModel::SpokenRole).toString(),
                 QStringLiteral("Study Deutsch, 12 cards"));
        QVERIFY(p->list()->index(1).data(PaletteListModel::SelectedRole).toBool());
        QVERIFY(!study.data(PaletteListModel::SelectedRole).toBool());
        QCOMPARE(p->list()->itemAtRow(0), -1);
        QCOMPARE(p->list()->itemAtRow(4), 3);

        const QVariantList hints = p->hints();
        QCOMPARE(hints.size(), 3);
        QCOMPARE(hints[0].toMap()["keys"].toStringList(), QStringList{"↩"});
        QCOMPARE(hints[0].toMap()["label"].toString(), QStringLiteral("Open"));
        QCOMPARE(hints[1].toMap()["keys"].toStringList(), QStringList{"Tab"});
        QCOMPARE(hints[1].toMap()["label"].toString(), QStringLiteral("Actions"));
        QCOMPARE(hints[2].toMap()["label"].toString(), QStringLiteral("Close"));

        QVERIFY(p->escape());
        QVERIFY(!p->opened());
    }

    void arrowsMoveWithWrapAround_data()
    {
        QTest::addColumn<QList<int>>("steps");
        QTest::addColumn<int>("selected");
        QTest::newRow("down") << QList<int>{1} << 1;
        QTest::newRow("up from the first row selects the last") << QList<int>{-1} << 3;
        QTest::newRow("down from the last row selects the first") << QList<int>{1, 1, 1, 1} << 0;
        QTest::newRow("there and back") << QList<int>{1, 1, -1} << 1;
        QTest::newRow("around twice upwards") << QList<int>{-1, -1, -1, -1, -1, -1, -1, -1} << 0;
    }

    void arrowsMoveWithWrapAround()
    {
        QFETCH(QList<int>, steps);
        QFETCH(int, selected);
        auto p = palette();
        p->open();
        QCOMPARE(p->list()->itemCount(), 4);
        for (int step : steps)
            QVERIFY(p->move(step));
        QCOMPARE(p->selectedIndex(), selected);
        QCOMPARE(p->selectedRow(), selected + 1);
        for (int row = 1; row < 5; ++row)
            QCOMPARE(p->list()->index(row).data(PaletteListModel::SelectedRole).toBool(),
                     row == selected + 1);
    }

    void anEmptyListIgnoresTheKeys()
    {
        auto p = palette();
        p->open();
        p->setQuery(QStringLiteral("x"));
        QCOMPARE(p->list()->itemCount(), 0);
        QCOMPARE(p->selectedIndex(), -1);
        QCOMPARE(p->emptyText(), QStringLiteral("Nothing matches."));
        QVERIFY(!p->move(1));
        QVERIFY(!p->move(-1));
        QVERIFY(!p->perform());
        QVERIFY(!p->deeper());
        QVERIFY(!p->back());
        QVERIFY(p->opened());
    }

    void typingSelectsTheFirstRowAndDisarms()
    {
        auto p = inCardStage();
        QVERIFY(p);
        p->move(-1);
        QVERIFY(p->perform());
        QCOMPARE(p->armedId(), QStringLiteral("c-delete"));
        p->setQuery(QStringLiteral("delete"));
        QVERIFY(p->armedId().isEmpty());
        QCOMPARE(p->selectedIndex(), 0);
        QCOMPARE(shownIds(*p), QStringList{"c-delete"});
        QVERIFY(m_log->isEmpty());
    }

    // The keys after stepping into a card's stage and going to "Delete Card…": r is ↩, d is ↓,
    // u is ↑, t types a letter and takes it back.
    void deletingTakesTwoReturns_data()
    {
        QTest::addColumn<QString>("keys");
        QTest::addColumn<bool>("deleted");
        QTest::addColumn<QString>("armed");
        QTest::newRow("one ↩ only arms") << "r" << false << "c-delete";
        QTest::newRow("two ↩ delete") << "rr" << true << "";
        QTest::newRow("↓ then ↑ between them needs two ↩ again") << "rdur" << false << "c-delete";
        QTest::newRow("… and then deletes") << "rdurr" << true << "";
        QTest::newRow("typing disarms") << "rtr" << false << "c-delete";
        QTest::newRow("arming twice in a row deletes once") << "rtrr" << true << "";
    }

    void deletingTakesTwoReturns()
    {
        QFETCH(QString, keys);
        QFETCH(bool, deleted);
        QFETCH(QString, armed);
        auto p = inCardStage();
        QVERIFY(p);
        QCOMPARE(shownIds(*p), (QStringList{"c-open", "c-hear", "c-rewrite", "c-delete"}));
        p->move(-1);
        for (const QChar key : keys) {
            if (key == u'r')
                QVERIFY(p->perform());
            else if (key == u'd')
                p->move(1);
            else if (key == u'u')
                p->move(-1);
            else if (key == u't') {
                p->setQuery(QStringLiteral("d"));
                p->setQuery(QString());
                p->move(-1);
            }
        }
        QCOMPARE(m_log->contains("deleteCard 50"), deleted);
        QCOMPARE(m_log->size(), deleted ? 1 : 0);
        QCOMPARE(p->opened(), !deleted);
        QCOMPARE(p->armedId(), armed);
        if (!deleted) {
            // The armed row says what the next ↩ does.
            const QModelIndex row = p->list()->index(p->selectedRow());
            QCOMPARE(row.data(PaletteListModel::SubtitleRole).toString(),
                     QStringLiteral("Press ↩ again to delete"));
            QVERIFY(row.data(PaletteListModel::ArmedRole).toBool());
            QVERIFY(row.data(PaletteListModel::DestructiveRole).toBool());
        }
    }

    void stagesAreSteppedIntoAndOutOf()
    {
        auto p = palette();
        p->open();
        QSignalSpy stage(p.get(), &CommandPalette::stageChanged);
        p->setQuery(QStringLiteral("deu"));
        QCOMPARE(p->selectedItem()->id, QStringLiteral("deck-1"));
        QVERIFY(p->deeper());
        QVERIFY(p->inStage());
        QCOMPARE(stage.size(), 1);
        QCOMPARE(p->stageTitle(), QStringLiteral("What to do with it"));
        QCOMPARE(p->query(), QString());
        QCOMPARE(p->selectedIndex(), 0);
        QCOMPARE(shownIds(*p), (QStringList{"d-open", "d-study", "d-import"}));
        QCOMPARE(p->hints().size(), 3);
        QCOMPARE(p->hints()[0].toMap()["label"].toString(), QStringLiteral("Do it"));
        QCOMPARE(p->hints()[1].toMap()["keys"].toStringList(), QStringList{"⌫"});
        QCOMPARE(p->hints()[1].toMap()["label"].toString(), QStringLiteral("Back"));

        // With text in the field ⌫ is the field's; with none it steps out.
        p->setQuery(QStringLiteral("st"));
        QCOMPARE(shownIds(*p), QStringList{"d-study"});
        QVERIFY(!p->back());
        QVERIFY(p->inStage());
        p->setQuery(QString());
        QCOMPARE(p->emptyText(), QString());
        QVERIFY(p->back());
        QVERIFY(!p->inStage());
        QCOMPARE(p->query(), QStringLiteral("deu"));
        QCOMPARE(p->selectedIndex(), 0);
        QCOMPARE(p->selectedItem()->id, QStringLiteral("deck-1"));
        QCOMPARE(stage.size(), 2);
        // Outside any stage ⌫ is always the field's.
        QVERIFY(!p->back());
        p->setQuery(QString());
        QVERIFY(!p->back());
    }

    void stagesNest()
    {
        auto p = palette();
        p->open();
        p->setQuery(QStringLiteral("move deu"));
        QVERIFY(selectId(*p, "mv-pick-1"));
        // ↩ on a row with only a stage steps in, like ⇥.
        QVERIFY(p->perform());
        QCOMPARE(p->stageTitle(), QStringLiteral("Which folder"));
        QCOMPARE(shownIds(*p), (QStringList{"fp-none", "fp-new"}));
        p->setQuery(QStringLiteral("new"));
        QCOMPARE(p->emptyText(), QString());
        p->setQuery(QStringLiteral("zebra"));
        QCOMPARE(p->emptyText(), QStringLiteral("Nothing matches."));
        p->setQuery(QString());
        QVERIFY(p->back());
        QCOMPARE(p->query(), QStringLiteral("move deu"));
        QVERIFY(p->perform());
        QVERIFY(p->perform());
        QCOMPARE(*m_log, QStringList{"move 1 out"});
        QVERIFY(!p->opened());
    }

    void tabNeedsAStage()
    {
        auto p = palette();
        p->open();
        QCOMPARE(p->selectedItem()->id, QStringLiteral("write-empty"));
        QVERIFY(!p->deeper());
        p->setQuery(QStringLiteral(" ? "));
        QCOMPARE(p->hints().size(), 1);
        QCOMPARE(p->hints()[0].toMap()["keys"].toStringList(), QStringList{"Esc"});
        QCOMPARE(p->hints()[0].toMap()["label"].toString(), QStringLiteral("Close"));
        // A shortcut row does nothing, on ↩ or ⇥; the palette stays.
        QVERIFY(!p->deeper());
        QVERIFY(!p->perform());
        QVERIFY(p->opened());
        QCOMPARE(p->list()->index(1).data(PaletteListModel::KeysRole).toStringList(),
                 QStringList{"Ctrl+K"});
        p->setQuery(QStringLiteral("?"));
        QVERIFY(selectId(*p, "sc-Didn’t know it / knew it"));
        QCOMPARE(p->list()->index(p->selectedRow()).data(PaletteListModel::KeysRole).toStringList(),
                 (QStringList{"1", "2"}));
    }

    void closingRowsAreRememberedAndStayingRowsKeepItOpen()
    {
        auto p = palette();
        p->open();
        QSignalSpy focus(p.get(), &CommandPalette::focusWanted);
        // "Write a card…" only gives the field back.
        QVERIFY(p->perform());
        QVERIFY(p->opened());
        QCOMPARE(focus.size(), 1);
        QVERIFY(m_log->isEmpty());

        // Hearing the typed word stays open too; nothing is remembered.
        p->setQuery(QStringLiteral("Hund"));
        QVERIFY(selectId(*p, "hear"));
        QVERIFY(p->perform());
        QCOMPARE(*m_log, QStringList{"hear Hund de"});
        QVERIFY(p->opened());
        QCOMPARE(p->query(), QStringLiteral("Hund"));
        QCOMPARE(p->selectedItem()->id, QStringLiteral("hear"));
        QVERIFY(PaletteRecent::load().isEmpty());

        // Opening a deck closes the palette and puts the deck first among the recents.
        p->setQuery(QStringLiteral("esp"));
        QVERIFY(selectId(*p, "deck-2"));
        QVERIFY(p->perform());
        QVERIFY(!p->opened());
        QCOMPARE(m_log->last(), QStringLiteral("openDeck 2"));
        QCOMPARE(PaletteRecent::load().first().key(), QStringLiteral("deck-2"));

        // A command closes without being remembered.
        p->open();
        p->setQuery(QStringLiteral("new deck"));
        QVERIFY(p->perform());
        QCOMPARE(m_log->last(), QStringLiteral("newDeck"));
        QCOMPARE(PaletteRecent::load().size(), 1);
    }

    void aCardOpenedFromItsStageIsRemembered()
    {
        auto p = inCardStage();
        QVERIFY(p);
        QVERIFY(p->perform());
        QCOMPARE(*m_log, QStringList{"openCard 2 50"});
        const QList<PaletteRecent> recents = PaletteRecent::load();
        QCOMPARE(recents.size(), 1);
        QCOMPARE(recents.first().card()->term, QStringLiteral("perro"));
    }

    void clickingARowSelectsAndPerformsIt()
    {
        auto p = inCardStage();
        QVERIFY(p);
        QVERIFY(!p->choose(0)); // the heading
        QVERIFY(p->choose(4));  // "Delete Card…": armed
        QCOMPARE(p->armedId(), QStringLiteral("c-delete"));
        QVERIFY(p->choose(3)); // another row disarms and runs
        QVERIFY(p->armedId().isEmpty());
        QCOMPARE(*m_log, QStringList{"rewrite 50"});
    }

    void reopeningStartsAfresh()
    {
        auto p = inCardStage();
        QVERIFY(p);
        p->setQuery(QStringLiteral("hear"));
        p->close();
        QVERIFY(!p->opened());
        QSignalSpy stage(p.get(), &CommandPalette::stageChanged);
        QSignalSpy focus(p.get(), &CommandPalette::focusWanted);
        p->open();
        QCOMPARE(focus.size(), 0);
        QVERIFY(!p->inStage());
        QCOMPARE(stage.size(), 1);
        QCOMPARE(p->query(), QString());
        QCOMPARE(p->selectedIndex(), 0);
        QCOMPARE(p->list()->rowCount(), 7); // "In Deutsch" and "Jump back to"
        QCOMPARE(rowTexts(*p, PaletteListModel::TitleRole).at(5), QStringLiteral("Jump back to"));

        // Asked to open while open (Ctrl+K again): back to the start, the field focused.
        p->setQuery(QStringLiteral("hear"));
        p->open();
        QCOMPARE(focus.size(), 1);
        QVERIFY(p->opened());
        QCOMPARE(p->query(), QString());
    }

    void followsTheAppWhileOpen()
    {
        bool second = false;
        auto p = std::make_unique<CommandPalette>();
        p->setContextSource([&second] {
            PaletteContext context;
            context.decks = {deck(1, "Deutsch", 3)};
            if (second)
                context.decks.append(deck(2, "Dänisch", 5));
            return context;
        });
        p->open();
        p->setQuery(QStringLiteral("d"));
        QCOMPARE(idsOf(sectionTitled(p->sections(), "Decks")), QStringList{"deck-1"});
        QVERIFY(selectId(*p, "cmd-newdeck"));
        second = true;
        p->refresh();
        QCOMPARE(idsOf(sectionTitled(p->sections(), "Decks")), (QStringList{"deck-1", "deck-2"}));
        // The selected row stays selected where it now is.
        QCOMPARE(p->selectedItem()->id, QStringLiteral("cmd-newdeck"));
    }

    void searchesWhileAQueryIsTyped()
    {
        m_server->reply("GET", "/api/search", 200,
                        searchReply({{100, "Hund"}, {101, "Hundeleine"}}));
        auto p = palette();
        p->open();
        p->setQuery(QStringLiteral(" hund "));
        QTRY_VERIFY(shownIds(*p).contains("card-100"));
        QCOMPARE(m_server->requestCount(), 1);
        QCOMPARE(m_server->lastRequest().queryValue("q"), QStringLiteral("hund"));
        QCOMPARE(shownIds(*p).mid(0, 2), (QStringList{"card-100", "card-101"}));
        QCOMPARE(rowTexts(*p, PaletteListModel::NoteRole).first(), QStringLiteral("2 in 1 deck"));
        QVERIFY(p->reply());

        // Clearing the field drops the reply; the next query starts without it.
        p->setQuery(QString());
        QVERIFY(!p->reply());
        m_server->reply("GET", "/api/search", 500, R"({"error":"boom"})");
        SettledReplies settled(m_api->network());
        p->setQuery(QStringLiteral("hunde"));
        QVERIFY(settled.waitFor(1));
        QVERIFY(!shownIds(*p).contains("card-100"));
        QCOMPARE(sections(*p), (QStringList{"Not in any deck"}));
    }

    void aFailedSearchKeepsTheLastReply()
    {
        m_server->reply("GET", "/api/search", 200, searchReply({{100, "Hund"}}));
        auto p = palette();
        p->open();
        p->setQuery(QStringLiteral("hund"));
        QTRY_VERIFY(shownIds(*p).contains("card-100"));
        m_server->reply("GET", "/api/search", 500, R"({"error":"boom"})");
        SettledReplies settled(m_api->network());
        p->setQuery(QStringLiteral("hundi"));
        QVERIFY(settled.waitFor(1));
        QCOMPARE(m_server->requestCount(), 2);
        QVERIFY(shownIds(*p).contains("card-100"));
    }

    void onlyTheNewestReplyCounts()
    {
        // The first search's reply is held back until the second one has been shown.
        m_server->stream("GET", "/api/search", {{searchReply({{7, "Katze"}}), "first"}}, 200,
                         "application/json");
        auto p = palette();
        p->open();
        SettledReplies settled(m_api->network());
        p->setQuery(QStringLiteral("ka"));
        QTRY_COMPARE(m_server->requestCount(), 1);
        m_server->reply("GET", "/api/search", 200, searchReply({{100, "Hund"}}));
        p->setQuery(QStringLiteral("hund"));
        QTRY_VERIFY(shownIds(*p).contains("card-100"));
        m_server->open("first");
        QVERIFY(settled.waitFor(2));
        QVERIFY(shownIds(*p).contains("card-100"));
        QVERIFY(!shownIds(*p).contains("card-7"));
        QCOMPARE(p->reply()->cards.size(), 1);
        QCOMPARE(p->reply()->cards.first().term, QStringLiteral("Hund"));
    }

    void noSearchInAStageOrForTheShortcuts()
    {
        m_server->reply("GET", "/api/search", 200, searchReply({{100, "Hund"}}));
        auto p = palette();
        p->open();
        p->setQuery(QStringLiteral("?"));
        p->setQuery(QStringLiteral("deu"));
        QTRY_COMPARE(m_server->requestCount(), 1);
        QCOMPARE(m_server->lastRequest().queryValue("q"), QStringLiteral("deu"));
        QTRY_VERIFY(shownIds(*p).contains("card-100"));
        QVERIFY(selectId(*p, "deck-1"));
        QVERIFY(p->deeper());
        p->setQuery(QStringLiteral("open"));
        p->setQuery(QStringLiteral("opened"));
        QTest::qWait(int(Timings::shared().paletteSearch.count()) * 4);
        QCOMPARE(m_server->requestCount(), 1);
        // Back out: the query's reply is still there and is not asked for again.
        p->setQuery(QString());
        QVERIFY(p->back());
        QVERIFY(shownIds(*p).contains("card-100"));
        QTest::qWait(int(Timings::shared().paletteSearch.count()) * 4);
        QCOMPARE(m_server->requestCount(), 1);
        // The shortcut list asks for nothing.
        p->setQuery(QStringLiteral("?"));
        QTest::qWait(int(Timings::shared().paletteSearch.count()) * 4);
        QCOMPARE(m_server->requestCount(), 1);
    }

    void typingFastSearchesOnce()
    {
        m_server->reply("GET", "/api/search", 200, searchReply({}));
        auto p = palette();
        p->open();
        for (const char *typed : {"h", "hu", "hun", "hund"})
            p->setQuery(QString::fromUtf8(typed));
        QTRY_COMPARE(m_server->requestCount(), 1);
        QTest::qWait(int(Timings::shared().paletteSearch.count()) * 4);
        QCOMPARE(m_server->requestCount(), 1);
        QCOMPARE(m_server->lastRequest().queryValue("q"), QStringLiteral("hund"));
    }

private:
    static QStringList sections(const CommandPalette &palette)
    {
        return titlesOf(palette.sections());
    }
};

QTEST_GUILESS_MAIN(TestCommandPalette)

#include "tst_commandpalette.moc"
