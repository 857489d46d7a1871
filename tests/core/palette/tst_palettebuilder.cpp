// The palette's lists: the starting point and its recents, the command list for each situation,
// the sections for a typed query (their order, titles, notes and the two-tier split), the rows
// of found things, the writing rows, and the stages with what their rows do.
#include "palette/palettebuilder.h"
#include "palette/palettestage.h"
#include "palettefixtures.h"

#include <QTest>

using namespace orvel;
using namespace palettefixtures;

Q_DECLARE_METATYPE(std::optional<int>)

namespace {

const QList<ManualPage> manualPages{
    {QStringLiteral("first-deck"), QStringLiteral("Your first deck"),
     QStringLiteral("How do I start a deck?")},
    {QStringLiteral("notes"), QStringLiteral("Lines and the margin"),
     QStringLiteral("How do I get the margin on a note?")},
    {QStringLiteral("shortcuts"), QStringLiteral("Keyboard shortcuts"),
     QStringLiteral("What are the keyboard shortcuts?")}};

SearchResults hundReply()
{
    SearchResults reply;
    reply.cards = {
        card(100, 1, QStringLiteral("Hund"), QStringLiteral("noun"), QStringLiteral("der")),
        card(101, 1, QStringLiteral("Hundekuchen"), QStringLiteral("Substantiv"))};
    reply.notes = {NoteHit{7, 1, QStringLiteral("Tiere")}, NoteHit{9, 2, QString()}};
    reply.lines = {LineHit{8, 7, 1, QStringLiteral("Tiere"), QStringLiteral("der Hund bellt")},
                   LineHit{11, 9, 2, QString(), QStringLiteral("el perro")}};
    return reply;
}

} // namespace

class TestPaletteBuilder : public QObject {
    Q_OBJECT
    std::shared_ptr<QStringList> m_log;

    // Deutsch (1, in Evening class), Español (2, loose, partly learned), Verben (3, empty, in
    // Evening class) and Français (4, in Travel); an empty folder "Empty shelf".
    PaletteContext context(std::optional<int> open, const QList<PaletteRecent> &recents = {})
    {
        PaletteContext context = recordingContext(m_log);
        context.decks = {deck(1, "Deutsch", 12, 0, 10), deck(2, "Español", 3, 1, {}, "es"),
                         deck(3, "Verben", 0, 0, 10), deck(4, "Français", 1, 0, 20, "fr")};
        context.folders = {folder(10, "Evening class", 2), folder(20, "Travel", 1),
                           folder(30, "Empty shelf", 0)};
        for (const DeckSummary &deck : context.decks)
            if (open && deck.id == *open)
                context.deck = deck;
        context.recents = recents;
        return context;
    }

    std::unique_ptr<PaletteBuilder> builder(std::optional<int> open,
                                            std::optional<SearchResults> reply = std::nullopt,
                                            const QList<PaletteRecent> &recents = {})
    {
        return std::make_unique<PaletteBuilder>(context(open, recents), manualPages, reply);
    }

    // Runs the item and gives what it logged and whether the palette closes.
    QString run(const PaletteItem &item, PaletteOutcome expected = PaletteOutcome::Close)
    {
        m_log->clear();
        if (!item.run)
            return QStringLiteral("(no action)");
        const PaletteOutcome outcome = item.run();
        if (outcome != expected)
            return QStringLiteral("(wrong outcome)");
        return m_log->join(u';');
    }

    static PaletteItem itemWithId(const QList<PaletteSection> &sections, const QString &id)
    {
        for (const PaletteSection &section : sections)
            for (const PaletteItem &item : section.items)
                if (item.id == id)
                    return item;
        return {};
    }

private slots:
    void init() { m_log = std::make_shared<QStringList>(); }

    void startsInTheOpenDeck()
    {
        const auto sections = builder(1)->sections(QString());
        QCOMPARE(titlesOf(sections), QStringList{"In Deutsch"});
        const PaletteSection in = sections.first();
        QCOMPARE(idsOf(in), (QStringList{"write-empty", "import", "newnote", "study-here"}));
        QCOMPARE(in.items[0].subtitle, QStringLiteral("Type a word, then ↩"));
        QCOMPARE(in.items[3].title, QStringLiteral("Study Deutsch"));
        QCOMPARE(in.items[3].meta, QStringLiteral("12 cards"));
        // Writing an empty card only keeps the palette open for the word.
        QCOMPARE(run(in.items[0], PaletteOutcome::Stay), QString());
        QCOMPARE(run(in.items[1]), QStringLiteral("addFromText 1"));
        QCOMPARE(run(in.items[2]), QStringLiteral("newNote 1"));
        QCOMPARE(run(in.items[3]), QStringLiteral("study 1"));
        QCOMPARE(builder(4)->sections(QString()).first().items[3].meta, QStringLiteral("1 card"));
    }

    void startsWithNewThingsWithoutADeck()
    {
        const auto sections = builder(std::nullopt)->sections(QStringLiteral(" \t "));
        QCOMPARE(titlesOf(sections), QStringList{"Start"});
        QCOMPARE(idsOf(sections.first()), (QStringList{"newdeck", "newfolder"}));
        QCOMPARE(run(sections.first().items[0]), QStringLiteral("newDeck"));
        QCOMPARE(run(sections.first().items[1]), QStringLiteral("newFolder none"));
    }

    void jumpsBackToFiveResolvedRecents()
    {
        const auto snapshot = [](int deckId, int cardId, const char *term, const char *kind) {
            return PaletteRecent::card({deckId, cardId, term, "dog", kind});
        };
        const QList<PaletteRecent> recents{
            PaletteRecent::deck(1),  // the open deck: never offered
            PaletteRecent::deck(99), // deleted: skipped, not removed
            snapshot(2, 50, "perro", "noun"),
            snapshot(99, 51, "gone", "noun"), // its deck is gone
            PaletteRecent::deck(2),
            PaletteRecent::deck(4),
            snapshot(4, 60, "chien", "function"),
            PaletteRecent::deck(3),
            snapshot(1, 70, "Katze", "noun"), // sixth resolved: cut
        };
        const auto sections = builder(1, std::nullopt, recents)->sections(QString());
        QCOMPARE(titlesOf(sections), (QStringList{"In Deutsch", "Jump back to"}));
        const PaletteSection jump = sections[1];
        QCOMPARE(idsOf(jump),
                 (QStringList{"recent-card-50", "deck-2", "deck-4", "recent-card-60", "deck-3"}));

        const PaletteItem perro = jump.items[0];
        QCOMPARE(perro.title, QStringLiteral("perro"));
        QCOMPARE(perro.subtitle, QStringLiteral("noun · dog"));
        QCOMPARE(perro.meta, QStringLiteral("Español"));
        QVERIFY(perro.serif);
        QCOMPARE(run(perro), QStringLiteral("openCardID 2 50"));
        QVERIFY(perro.recent == recents[2]);
        QCOMPARE(jump.items[3].subtitle, QStringLiteral("grammar word · dog"));
        // The card's own actions are at hand from its snapshot.
        QCOMPARE(idsOf(perro.stage().sections(QString()).first()),
                 (QStringList{"c-open", "c-hear", "c-rewrite", "c-delete"}));
        QCOMPARE(jump.items[1].title, QStringLiteral("Español"));
        QCOMPARE(run(jump.items[1]), QStringLiteral("openDeck 2"));

        // With no deck open, the newest recent deck is offered too.
        QCOMPARE(idsOf(builder(std::nullopt, std::nullopt, recents)->sections({})[1]).first(),
                 QStringLiteral("deck-1"));
        // Nothing that resolves: no section.
        QCOMPARE(titlesOf(builder(1, std::nullopt, {PaletteRecent::deck(1)})->sections({})),
                 QStringList{"In Deutsch"});
    }

    void listsTheShortcutsForAQuestionMark()
    {
        const auto b = builder(1);
        const auto sections = b->sections(QStringLiteral("  ?  "));
        QCOMPARE(titlesOf(sections), (QStringList{"Anywhere", "In a note", "Studying"}));
        QCOMPARE(sections[0].items.size(), 8);
        QCOMPARE(sections[1].items.size(), 3);
        QCOMPARE(sections[2].items.size(), 4);
        const PaletteItem first = sections[0].items.first();
        QCOMPARE(first.id, QStringLiteral("sc-Find or do anything"));
        QCOMPARE(first.glyph, QStringLiteral("keyboard"));
        QCOMPARE(first.shortcut, QStringLiteral("Ctrl+K"));
        QCOMPARE(sections[0].items[2].shortcut, QStringLiteral("Ctrl+Shift+N"));
        QCOMPARE(sections[0].items[3].shortcut, QStringLiteral("Ctrl+Alt+N"));
        QCOMPARE(sections[1].items[0].shortcut, QStringLiteral("Ctrl+Return"));
        QCOMPARE(sections[2].items[1].id, QStringLiteral("sc-Didn’t know it / knew it"));
        QCOMPARE(sections[2].items[1].shortcut, QStringLiteral("1  2"));
        for (const PaletteSection &section : sections)
            for (const PaletteItem &item : section.items) {
                QVERIFY(!item.run && !item.stage);
                QVERIFY(item.id.startsWith("sc-"));
                QVERIFY(!item.shortcut.isEmpty());
            }
        // Two question marks are an ordinary query.
        QCOMPARE(titlesOf(b->sections(QStringLiteral("??"))), QStringList{"Not in any deck"});
    }

    void commandListFollowsTheContext()
    {
        QCOMPARE(idsOf(builder(1)->commands()),
                 (QStringList{"cmd-study-here", "cmd-study-folder-10", "cmd-study-2", "cmd-study-4",
                              "cmd-study-pick", "mv-pick-1", "mv-20-1", "mv-30-1", "mv-out-1",
                              "mv-new-1", "cmd-newfolder", "cmd-newdeck", "cmd-newnote",
                              "cmd-import", "cmd-appearance-dark", "cmd-appearance-light",
                              "cmd-settings", "cmd-manual", "cmd-help"}));
        // A loose deck has no folder to study or leave; Travel holds Français.
        QCOMPARE(idsOf(builder(2)->commands()).mid(0, 9),
                 (QStringList{"cmd-study-here", "cmd-study-1", "cmd-study-4", "cmd-study-pick",
                              "mv-pick-2", "mv-10-2", "mv-20-2", "mv-30-2", "mv-new-2"}));
        QCOMPARE(idsOf(builder(std::nullopt)->commands()),
                 (QStringList{"cmd-study-1", "cmd-study-2", "cmd-study-4", "cmd-study-pick",
                              "cmd-newfolder", "cmd-newdeck", "cmd-appearance-dark",
                              "cmd-appearance-light", "cmd-settings", "cmd-manual", "cmd-help"}));

        // A folder with nothing to study offers no study command.
        PaletteContext unstudied = context(4);
        unstudied.canStudyFolder = [](const Folder &) { return false; };
        QVERIFY(!idsOf(PaletteBuilder(unstudied).commands()).contains("cmd-study-folder-20"));
        // The appearance in force is not offered.
        PaletteContext dark = context(std::nullopt);
        dark.appearance = QStringLiteral("dark");
        QCOMPARE(idsOf(PaletteBuilder(dark).commands()).mid(6, 2),
                 (QStringList{"cmd-appearance-light", "cmd-appearance-system"}));
    }

    void commandsSayAndDoWhatTheyShould_data()
    {
        QTest::addColumn<QString>("id");
        QTest::addColumn<QString>("title");
        QTest::addColumn<QString>("done");

        QTest::newRow("study here") << "cmd-study-here"
                                    << "Study Deutsch"
                                    << "study 1";
        QTest::newRow("study folder") << "cmd-study-folder-10"
                                      << "Study All Decks in Evening class"
                                      << "studyFolder 10";
        QTest::newRow("study other") << "cmd-study-2"
                                     << "Study Español"
                                     << "study 2";
        QTest::newRow("study pick") << "cmd-study-pick"
                                    << "Study a Deck…"
                                    << "(no action)";
        QTest::newRow("move pick") << "mv-pick-1"
                                   << "Move Deutsch to…"
                                   << "(no action)";
        QTest::newRow("move to") << "mv-20-1"
                                 << "Move Deutsch to Travel"
                                 << "move 1 20";
        QTest::newRow("move out") << "mv-out-1"
                                  << "Move Deutsch Out of Evening class"
                                  << "move 1 out";
        QTest::newRow("move new") << "mv-new-1"
                                  << "New Folder with “Deutsch”"
                                  << "newFolder 1";
        QTest::newRow("new folder") << "cmd-newfolder"
                                    << "New Folder"
                                    << "newFolder none";
        QTest::newRow("new deck") << "cmd-newdeck"
                                  << "New Deck"
                                  << "newDeck";
        QTest::newRow("new note") << "cmd-newnote"
                                  << "New Note"
                                  << "newNote 1";
        QTest::newRow("import") << "cmd-import"
                                << "Add from Text…"
                                << "addFromText 1";
        QTest::newRow("dark") << "cmd-appearance-dark"
                              << "Appearance: Dark"
                              << "appearance dark";
        QTest::newRow("light") << "cmd-appearance-light"
                               << "Appearance: Light"
                               << "appearance light";
        QTest::newRow("settings") << "cmd-settings"
                                  << "Settings…"
                                  << "settings";
        QTest::newRow("manual") << "cmd-manual"
                                << "Orvel Manual"
                                << "openManual first-deck";
        QTest::newRow("help") << "cmd-help"
                              << "Help"
                              << "openManual shortcuts";
    }

    void commandsSayAndDoWhatTheyShould()
    {
        QFETCH(QString, id);
        QFETCH(QString, title);
        QFETCH(QString, done);
        const PaletteItem command = itemWithId({{{}, {}, builder(1)->commands()}}, id);
        QCOMPARE(command.id, id);
        QCOMPARE(command.title, title);
        QCOMPARE(run(command), done);
    }

    void commandsShowTheirKeysAndCounts()
    {
        const auto b = builder(1);
        const QList<PaletteItem> commands = b->commands();
        QCOMPARE(itemWithId({{{}, {}, commands}}, "cmd-study-here").meta,
                 QStringLiteral("12 cards"));
        QCOMPARE(itemWithId({{{}, {}, commands}}, "cmd-study-4").meta, QStringLiteral("1 card"));
        QCOMPARE(itemWithId({{{}, {}, commands}}, "cmd-study-here").shortcut,
                 QStringLiteral("Ctrl+R"));
        QCOMPARE(itemWithId({{{}, {}, commands}}, "cmd-newdeck").shortcut,
                 QStringLiteral("Ctrl+N"));
        QCOMPARE(itemWithId({{{}, {}, commands}}, "cmd-help").subtitle,
                 QStringLiteral("Open the Orvel Manual"));
    }

    void sectionsForAQuery_data()
    {
        QTest::addColumn<std::optional<int>>("open");
        QTest::addColumn<bool>("withReply");
        QTest::addColumn<QString>("query");
        QTest::addColumn<QStringList>("titles");

        const std::optional<int> deutsch = 1;
        const std::optional<int> none;
        QTest::newRow("leading commands, writing under Do")
            << deutsch << false << "new" << QStringList{"Commands", "Do"};
        QTest::newRow("no leading command: the others under Commands, lower")
            << deutsch << false << "deck" << QStringList{"Commands", "Manual", "Do"};
        QTest::newRow("leading manual pages and nothing else")
            << deutsch << false << "how do" << QStringList{"Manual", "Not in any deck"};
        QTest::newRow("trailing manual page after the writing rows")
            << deutsch << false << "margin" << QStringList{"Not in any deck", "Manual"};
        QTest::newRow("a deck and trailing commands")
            << deutsch << false << "de" << QStringList{"Decks", "Commands", "Manual", "Do"};
        QTest::newRow("a folder") << deutsch << false << "evening"
                                  << QStringList{"Folders", "Commands", "Do"};
        QTest::newRow("folded deck name")
            << deutsch << false << "ESPAÑOL" << QStringList{"Decks", "Commands", "Do"};
        QTest::newRow("word ends find nothing")
            << deutsch << false << "ks" << QStringList{"Not in any deck"};
        QTest::newRow("a hyphen finds nothing on the client")
            << deutsch << false << "t-shirt" << QStringList{"Not in any deck"};
        QTest::newRow("one character: no writing rows") << deutsch << false << "x" << QStringList{};
        QTest::newRow("leading and more commands")
            << deutsch << false << "study" << QStringList{"Commands", "Do"};
        QTest::newRow("both tiers of commands")
            << deutsch << false << "move de" << QStringList{"Commands", "Do"};
        QTest::newRow("found cards, notes and lines; an exact term")
            << deutsch << true << "hund" << QStringList{"Cards", "Notes", "Lines"};
        QTest::newRow("exact term despite case and accents")
            << deutsch << true << "HÜND" << QStringList{"Cards", "Notes", "Lines"};
        QTest::newRow("no exact term: writing rows last")
            << deutsch << true << "hunde" << QStringList{"Cards", "Notes", "Lines", "Do"};
        QTest::newRow("server results with a hyphenated query")
            << deutsch << true << "t-shirt" << QStringList{"Cards", "Notes", "Lines", "Do"};
        QTest::newRow("everything at once")
            << deutsch << true << "de"
            << QStringList{"Cards", "Decks", "Notes", "Lines", "Commands", "Manual", "Do"};
        QTest::newRow("no deck open") << none << false << "zebra" << QStringList{"Not in any deck"};
    }

    void sectionsForAQuery()
    {
        QFETCH(std::optional<int>, open);
        QFETCH(bool, withReply);
        QFETCH(QString, query);
        QFETCH(QStringList, titles);
        const auto b = builder(open, withReply ? std::optional(hundReply()) : std::nullopt);
        const auto sections = b->sections(query);
        QCOMPARE(titlesOf(sections), titles);
        for (const PaletteSection &section : sections)
            QVERIFY(!section.items.isEmpty());
        // Padding does not change the list.
        QCOMPARE(titlesOf(b->sections(" \t" + query + "  ")), titles);
    }

    void commandsSplitIntoLeadingAndTrailing()
    {
        const auto b = builder(1);
        auto sections = b->sections(QStringLiteral("new"));
        QCOMPARE(idsOf(sections[0]),
                 (QStringList{"mv-new-1", "cmd-newfolder", "cmd-newdeck", "cmd-newnote"}));
        // "move de": the move commands lead (in list order); study commands through "Deutsch"
        // and "Decks" follow under "More commands".
        sections = b->sections(QStringLiteral("move de"));
        QCOMPARE(idsOf(sections[0]), (QStringList{"mv-pick-1", "mv-20-1", "mv-30-1", "mv-out-1"}));
        sections = b->sections(QStringLiteral("de move"));
        QCOMPARE(titlesOf(sections), (QStringList{"Commands", "Do"}));
        QCOMPARE(idsOf(sections[0]), (QStringList{"mv-pick-1", "mv-20-1", "mv-30-1", "mv-out-1"}));
        sections = b->sections(QStringLiteral("de"));
        QCOMPARE(
            idsOf(sectionTitled(sections, "Commands")),
            (QStringList{"cmd-study-here", "cmd-study-folder-10", "cmd-study-pick", "mv-pick-1",
                         "mv-20-1", "mv-30-1", "mv-out-1", "mv-new-1", "cmd-newdeck"}));
        sections = b->sections(QStringLiteral("study"));
        QCOMPARE(idsOf(sections[0]), (QStringList{"cmd-study-here", "cmd-study-folder-10",
                                                  "cmd-study-2", "cmd-study-4", "cmd-study-pick"}));
        // Leading and trailing at once: "Study …" leads for "s", "Settings…" too.
        sections = b->sections(QStringLiteral("s"));
        QCOMPARE(titlesOf(sections).first(), QStringLiteral("Commands"));
        QVERIFY(titlesOf(sections).contains("More commands"));
        QVERIFY(idsOf(sectionTitled(sections, "Commands")).contains("cmd-settings"));
        QCOMPARE(idsOf(sectionTitled(sections, "More commands")), QStringList{"mv-30-1"});
        QCOMPARE(titlesOf(sections),
                 (QStringList{"Commands", "Folders", "More commands", "Manual"}));
    }

    void manualPagesSplitByTheirQuestion()
    {
        const auto b = builder(1);
        auto sections = b->sections(QStringLiteral("how do"));
        QCOMPARE(idsOf(sections[0]), (QStringList{"manual-first-deck", "manual-notes"}));
        const PaletteItem page = sections[0].items[1];
        QCOMPARE(page.title, QStringLiteral("How do I get the margin on a note?"));
        QCOMPARE(run(page), QStringLiteral("openManual notes"));
        // Found through the page's title: trailing, after the commands.
        sections = b->sections(QStringLiteral("keyboard"));
        QCOMPARE(titlesOf(sections), (QStringList{"Not in any deck", "Manual"}));
        QCOMPARE(idsOf(sections[1]), QStringList{"manual-shortcuts"});
    }

    void foundThingsMakeTheirRows()
    {
        const auto b = builder(1, hundReply());
        const auto sections = b->sections(QStringLiteral("hunde"));
        const PaletteSection cards = sections[0];
        QCOMPARE(cards.note, QStringLiteral("2 in 1 deck"));
        QCOMPARE(idsOf(cards), (QStringList{"card-100", "card-101"}));
        QCOMPARE(cards.items[0].title, QStringLiteral("der Hund"));
        QCOMPARE(cards.items[0].subtitle, QStringLiteral("noun"));
        QCOMPARE(cards.items[0].meta, QStringLiteral("Deutsch"));
        QVERIFY(cards.items[0].serif);
        QCOMPARE(cards.items[1].title, QStringLiteral("Hundekuchen"));
        QCOMPARE(cards.items[1].subtitle, QStringLiteral("noun"));
        QCOMPARE(run(cards.items[0]), QStringLiteral("openCard 1 100"));
        QCOMPARE(cards.items[0].recent->key(), QStringLiteral("card-100"));
        QCOMPARE(cards.items[0].recent->card()->kind, QStringLiteral("noun"));

        const PaletteSection notes = sections[1];
        QCOMPARE(idsOf(notes), (QStringList{"note-7", "note-9"}));
        QCOMPARE(notes.items[0].title, QStringLiteral("Tiere"));
        QCOMPARE(notes.items[1].title, QStringLiteral("Untitled"));
        QCOMPARE(run(notes.items[1]), QStringLiteral("openNote 2 9"));

        const PaletteSection lines = sections[2];
        QCOMPARE(idsOf(lines), (QStringList{"line-8", "line-11"}));
        QCOMPARE(lines.items[0].title, QStringLiteral("der Hund bellt"));
        QCOMPARE(lines.items[0].subtitle, QStringLiteral("in the note “Tiere” · Deutsch"));
        QCOMPARE(lines.items[1].subtitle, QStringLiteral("in the note Untitled note · Español"));
        QCOMPARE(run(lines.items[1]), QStringLiteral("openNote 2 9"));

        // The deck count of the note counts distinct decks.
        SearchResults spread = hundReply();
        spread.cards.append(card(102, 2, QStringLiteral("perro")));
        QCOMPARE(builder(1, spread)->sections(QStringLiteral("hunde"))[0].note,
                 QStringLiteral("3 in 2 decks"));
        // No reply yet, or an empty one: no such sections.
        QCOMPARE(titlesOf(builder(1, SearchResults{})->sections(QStringLiteral("hund"))),
                 QStringList{"Not in any deck"});
    }

    void decksAndFoldersShowTheirCounts()
    {
        const auto b = builder(std::nullopt);
        QCOMPARE(titlesOf(b->sections(QStringLiteral("e"))),
                 (QStringList{"Decks", "Folders", "Commands"}));
        const QList<PaletteItem> decks = b->sections(QStringLiteral("e"))[0].items;
        QCOMPARE(decks[0].title, QStringLiteral("Español"));
        QCOMPARE(decks[0].meta, QStringLiteral("1 of 3 learned"));
        QCOMPARE(run(decks[0]), QStringLiteral("openDeck 2"));
        QCOMPARE(builder(1)->sections(QStringLiteral("deutsch"))[0].items[0].meta,
                 QStringLiteral("12 cards"));
        const QList<PaletteItem> folders =
            sectionTitled(b->sections(QStringLiteral("e")), "Folders").items;
        QCOMPARE(idsOf(folders), (QStringList{"folder-10", "folder-30"}));
        QCOMPARE(folders[0].meta, QStringLiteral("2 decks"));
        QCOMPARE(builder(1)->sections(QStringLiteral("travel"))[0].items[0].meta,
                 QStringLiteral("1 deck"));
        QCOMPARE(run(folders[1]), QStringLiteral("revealFolder 30"));
    }

    void writingRows()
    {
        auto sections = builder(1)->sections(QStringLiteral("Hund"));
        PaletteSection writing = sectionTitled(sections, "Not in any deck");
        QCOMPARE(idsOf(writing), (QStringList{"write", "write-elsewhere", "hear"}));
        QCOMPARE(writing.items[0].title, QStringLiteral("Write a card for “Hund”"));
        QCOMPARE(writing.items[0].subtitle, QStringLiteral("Deutsch · the card writes itself"));
        QCOMPARE(writing.items[1].title, QStringLiteral("Write It in Another Deck…"));
        QCOMPARE(writing.items[2].title, QStringLiteral("Hear “Hund”"));
        QCOMPARE(run(writing.items[0]), QStringLiteral("writeCard Hund 1"));
        QCOMPARE(run(writing.items[2], PaletteOutcome::Stay), QStringLiteral("hear Hund de"));
        QVERIFY(!writing.items[1].run && writing.items[1].stage);

        sections = builder(std::nullopt)->sections(QStringLiteral("Hund"));
        QCOMPARE(idsOf(sections[0]), QStringList{"write-elsewhere"});
        QCOMPARE(sections[0].items[0].title, QStringLiteral("Write a card for “Hund” in…"));
    }

    void writingRowsNeedTwoToTwoHundredCharacters_data()
    {
        QTest::addColumn<QString>("query");
        QTest::addColumn<bool>("offered");
        QTest::newRow("one") << "a" << false;
        QTest::newRow("two") << "ab" << true;
        QTest::newRow("one accented character, two code units") << "e\u0301" << false;
        QTest::newRow("one emoji, two code units") << "🐶" << false;
        QTest::newRow("two hundred") << QString(200, u'q') << true;
        QTest::newRow("two hundred and one") << QString(201, u'q') << false;
        QTest::newRow("two hundred accented") << QString("e\u0301").repeated(200) << true;
    }

    void writingRowsNeedTwoToTwoHundredCharacters()
    {
        QFETCH(QString, query);
        QFETCH(bool, offered);
        const auto sections = builder(1)->sections(query);
        const bool shown = !sectionTitled(sections, "Not in any deck").items.isEmpty() ||
                           !sectionTitled(sections, "Do").items.isEmpty();
        QCOMPARE(shown, offered);
    }

    void cardStage()
    {
        const auto b = builder(1, hundReply());
        const PaletteItem hund = b->sections(QStringLiteral("hunde"))[0].items[0];
        const PaletteStage stage = hund.stage();
        QCOMPARE(stage.title, QStringLiteral("What to do with it"));
        const auto sections = stage.sections(QString());
        QCOMPARE(titlesOf(sections), QStringList{"der Hund"});
        const QList<PaletteItem> items = sections[0].items;
        QCOMPARE(idsOf(items), (QStringList{"c-open", "c-hear", "c-rewrite", "c-delete"}));
        QVERIFY(items[3].destructive && items[3].confirm);
        QVERIFY(!items[0].confirm && !items[0].destructive);
        QCOMPARE(run(items[0]), QStringLiteral("openCard 1 100"));
        QCOMPARE(items[0].recent->key(), QStringLiteral("card-100"));
        QCOMPARE(run(items[1], PaletteOutcome::Stay), QStringLiteral("hear Hund de"));
        QCOMPARE(run(items[2]), QStringLiteral("rewrite 100"));
        QCOMPARE(run(items[3]), QStringLiteral("deleteCard 100"));
        // The stage filters its own rows.
        QCOMPARE(idsOf(stage.sections(QStringLiteral("hear"))[0]), QStringList{"c-hear"});
        QCOMPARE(idsOf(stage.sections(QStringLiteral("the card"))[0]),
                 (QStringList{"c-open", "c-rewrite"}));
        QVERIFY(stage.sections(QStringLiteral("zebra")).isEmpty());
    }

    void deckAndFolderStages()
    {
        const auto b = builder(std::nullopt);
        const auto found = b->sections(QStringLiteral("e"));
        const PaletteStage deck = sectionTitled(found, "Decks").items[0].stage();
        QCOMPARE(deck.title, QStringLiteral("What to do with it"));
        const QList<PaletteItem> deckItems = deck.sections(QString())[0].items;
        QCOMPARE(idsOf(deckItems), (QStringList{"d-open", "d-study", "d-import"}));
        QCOMPARE(deckItems[0].title, QStringLiteral("Open Español"));
        QCOMPARE(deckItems[1].title, QStringLiteral("Study Español"));
        QCOMPARE(run(deckItems[0]), QStringLiteral("openDeck 2"));
        QCOMPARE(deckItems[0].recent->key(), QStringLiteral("deck-2"));
        QCOMPARE(run(deckItems[1]), QStringLiteral("study 2"));
        QCOMPARE(run(deckItems[2]), QStringLiteral("addFromText 2"));

        const QList<PaletteItem> folders = sectionTitled(found, "Folders").items;
        const QList<PaletteItem> evening = folders[0].stage().sections(QString())[0].items;
        QCOMPARE(idsOf(evening), (QStringList{"f-study", "f-reveal"}));
        QCOMPARE(run(evening[0]), QStringLiteral("studyFolder 10"));
        QCOMPARE(run(evening[1]), QStringLiteral("revealFolder 10"));
        // Nothing to study in an empty folder.
        QCOMPARE(idsOf(folders[1].stage().sections(QString())[0]), QStringList{"f-reveal"});
    }

    void folderPicker()
    {
        const auto stageOf = [this](int open) {
            return itemWithId({{{}, {}, builder(open)->commands()}},
                              "mv-pick-" + QString::number(open))
                .stage();
        };
        const PaletteStage filed = stageOf(1);
        QCOMPARE(filed.title, QStringLiteral("Which folder"));
        const QList<PaletteItem> items = filed.sections(QString())[0].items;
        QCOMPARE(idsOf(items), (QStringList{"fp-20", "fp-30", "fp-none", "fp-new"}));
        QCOMPARE(items[0].title, QStringLiteral("Travel"));
        QCOMPARE(run(items[0]), QStringLiteral("move 1 20"));
        QCOMPARE(run(items[2]), QStringLiteral("move 1 out"));
        QCOMPARE(run(items[3]), QStringLiteral("newFolder 1"));
        // A loose deck: every folder, and no "No Folder".
        QCOMPARE(idsOf(stageOf(2).sections(QString())[0]),
                 (QStringList{"fp-10", "fp-20", "fp-30", "fp-new"}));
        QCOMPARE(idsOf(filed.sections(QStringLiteral("tr"))[0]), QStringList{"fp-20"});
    }

    void deckPickerWritesTheQueryElsewhere()
    {
        const PaletteItem elsewhere =
            itemWithId(builder(1)->sections(QStringLiteral("hund")), "write-elsewhere");
        const PaletteStage picker = elsewhere.stage();
        QCOMPARE(picker.title, QStringLiteral("Which deck"));
        const auto sections = picker.sections(QString());
        QCOMPARE(titlesOf(sections), (QStringList{"Same language", "Other languages"}));
        QCOMPARE(idsOf(sections[0]), QStringList{"pick-3"});
        QCOMPARE(idsOf(sections[1]), (QStringList{"pick-2", "pick-4"}));
        QCOMPARE(sections[0].items[0].meta, QStringLiteral("0 cards"));
        QCOMPARE(sections[1].items[1].meta, QStringLiteral("1 card"));
        QCOMPARE(run(sections[1].items[0]), QStringLiteral("writeCard hund 2"));
        QCOMPARE(titlesOf(picker.sections(QStringLiteral("fr"))), QStringList{"Other languages"});

        const auto loose =
            itemWithId(builder(std::nullopt)->sections(QStringLiteral("hund")), "write-elsewhere")
                .stage()
                .sections(QString());
        QCOMPARE(titlesOf(loose), QStringList{"Decks"});
        QCOMPARE(idsOf(loose[0]), (QStringList{"pick-1", "pick-2", "pick-3", "pick-4"}));
    }

    void studyPickerListsDecksWithCards()
    {
        const PaletteStage picker =
            itemWithId({{{}, {}, builder(1)->commands()}}, "cmd-study-pick").stage();
        QCOMPARE(picker.title, QStringLiteral("Which deck"));
        const auto sections = picker.sections(QString());
        QCOMPARE(titlesOf(sections), QStringList{"Decks"});
        QCOMPARE(idsOf(sections[0]), (QStringList{"study-1", "study-2", "study-4"}));
        QCOMPARE(sections[0].items[0].meta, QStringLiteral("12 cards"));
        QCOMPARE(run(sections[0].items[2]), QStringLiteral("study 4"));
    }

    void trimsSpacesAndTabsOnly()
    {
        QCOMPARE(PaletteBuilder::trimmed(QStringLiteral(" \t hund \t")), QStringLiteral("hund"));
        QCOMPARE(PaletteBuilder::trimmed(QStringLiteral("\nhund\n")), QStringLiteral("\nhund\n"));
        // A line break is not trimmed: the query is not empty.
        QCOMPARE(titlesOf(builder(1)->sections(QStringLiteral("\n"))), QStringList{});
    }
};

QTEST_GUILESS_MAIN(TestPaletteBuilder)

#include "tst_palettebuilder.moc"
