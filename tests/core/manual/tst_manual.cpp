// The manual: its page markup, the pages the app ships (each one whole, every link and button
// leading somewhere), search, the navigator's history, and the Help menu's search.
#include "app/appcommands.h"
#include "app/textfold.h"
#include "manual/manualactions.h"
#include "manual/manualblock.h"
#include "manual/manualbook.h"
#include "manual/manualhelpsearch.h"
#include "manual/manualnavigator.h"
#include "manual/manualview.h"
#include "server/localsettings.h"
#include "server/settingskeys.h"

#include <QFile>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

using namespace orvel;
using Kind = ManualBlock::Kind;

namespace {

ManualBlock block(Kind kind, const QString &text = {})
{
    ManualBlock b;
    b.kind = kind;
    b.text = text;
    return b;
}

ManualBlock step(int number, const QString &text)
{
    ManualBlock b = block(Kind::Step, text);
    b.number = number;
    return b;
}

ManualBlock fielded(Kind kind, const QString &first, const QString &second = {},
                    const QString &third = {})
{
    ManualBlock b = block(kind);
    b.first = first;
    b.second = second;
    b.third = third;
    return b;
}

ManualBlock keys(const QStringList &names, const QString &text)
{
    ManualBlock b = block(Kind::Keys, text);
    b.keys = names;
    return b;
}

QStringList ids(const QList<ManualPage> &pages)
{
    QStringList list;
    for (const ManualPage &page : pages)
        list.append(page.id);
    return list;
}

} // namespace

Q_DECLARE_METATYPE(QList<ManualBlock>)

class TestManual : public QObject {
    Q_OBJECT
    QTemporaryDir m_dir;

private slots:
    void initTestCase() { LocalSettings::useFile(m_dir.filePath("orvel.conf")); }

    void pageMarkupIsRead_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QList<ManualBlock>>("blocks");
        QTest::newRow("title, lead, heading")
            << "# Folders\n> Group decks.\n## Make one"
            << QList{block(Kind::Title, "Folders"), block(Kind::Lead, "Group decks."),
                     block(Kind::Heading, "Make one")};
        QTest::newRow("three marks are a heading")
            << "### Deeper" << QList{block(Kind::Heading, "# Deeper")};
        QTest::newRow("a heading needs no space")
            << "##Tight" << QList{block(Kind::Heading, "Tight")};
        QTest::newRow("one mark without a space is text")
            << "#hashtag" << QList{block(Kind::Paragraph, "#hashtag")};
        QTest::newRow("steps") << "3. Press ↩\n  12.   Then this  "
                               << QList{step(3, "Press ↩"), step(12, "Then this")};
        QTest::newRow("not steps") << "3.5 kg\nA1. notes\n4.\n. five"
                                   << QList{block(Kind::Paragraph, "3.5 kg A1. notes 4. . five")};
        QTest::newRow("paragraph lines join, a blank line parts them")
            << "One line\n\t and the next \n\nAnother"
            << QList{block(Kind::Paragraph, "One line and the next"),
                     block(Kind::Paragraph, "Another")};
        QTest::newRow("a block ends the paragraph before it")
            << "Text\n- a bullet\nmore"
            << QList{block(Kind::Paragraph, "Text"), block(Kind::Bullet, "a bullet"),
                     block(Kind::Paragraph, "more")};
        QTest::newRow("keys") << "keys: ⌘ K | Find or Do\nkeys:   Ctrl  Shift N|New note"
                              << QList{keys({"⌘", "K"}, "Find or Do"),
                                       keys({"Ctrl", "Shift", "N"}, "New note")};
        QTest::newRow("keys without a text") << "keys: F1" << QList{keys({"F1"}, "")};
        QTest::newRow("command, try and see fields")
            << "command: orvel --add | a word | Quick add\n"
               "try: palette | Open Find or Do\n"
               "see: notes\n"
               "see: folders | Folders | extra"
            << QList{fielded(Kind::Command, "orvel --add", "a word", "Quick add"),
                     fielded(Kind::TryIt, "palette", "Open Find or Do"),
                     fielded(Kind::See, "notes"), fielded(Kind::See, "folders", "Folders")};
        QTest::newRow("empty fields are kept")
            << "command: | | what" << QList{fielded(Kind::Command, "", "", "what")};
        QTest::newRow("nothing") << "\n  \n" << QList<ManualBlock>{};
        QTest::newRow("CRLF line ends") << "# T\r\n> L\r\n"
                                        << QList{block(Kind::Title, "T"), block(Kind::Lead, "L")};
    }

    void pageMarkupIsRead()
    {
        QFETCH(QString, text);
        QFETCH(QList<ManualBlock>, blocks);
        const QList<ManualBlock> parsed = ManualBlock::parse(text);
        QCOMPARE(parsed.size(), blocks.size());
        for (qsizetype i = 0; i < parsed.size(); ++i) {
            QCOMPARE(ManualBlock::kindName(parsed[i].kind), ManualBlock::kindName(blocks[i].kind));
            QCOMPARE(parsed[i], blocks[i]);
        }
    }

    void everyPageIsWholeAndLeadsSomewhere()
    {
        QCOMPARE(ManualBook::pages().size(), 14);
        QCOMPARE(ManualBook::chapters().size(), 9);
        const QStringList actions = ManualActions::names();
        for (const ManualPage &page : ManualBook::pages()) {
            const QString text = ManualBook::text(page.id);
            QVERIFY2(!text.contains(u"missing from the app"), qPrintable(page.id));
            const QList<ManualBlock> blocks = ManualBlock::parse(text);
            QVERIFY2(blocks.size() >= 5, qPrintable(page.id));
            QCOMPARE(blocks[0].kind, Kind::Title);
            QCOMPARE(blocks[0].text, page.title);
            QCOMPARE(blocks[1].kind, Kind::Lead);
            int content = 0;
            for (const ManualBlock &b : blocks) {
                if (b.kind == Kind::See)
                    QVERIFY2(ManualBook::page(b.first) && b.first != page.id,
                             qPrintable(page.id + ": see " + b.first));
                if (b.kind == Kind::TryIt)
                    QVERIFY2(actions.contains(b.first), qPrintable(page.id + ": try " + b.first));
                if (b.kind == Kind::Keys)
                    QVERIFY2(!b.keys.isEmpty() && !b.text.isEmpty(), qPrintable(page.id));
                // Pages are written for this computer: no Mac key names.
                QVERIFY2(!b.text.contains(u'⌘') && !b.text.contains(u'⌥') && !b.keys.contains(u"⌘"),
                         qPrintable(page.id + ": " + b.text));
                content += b.kind == Kind::Step || b.kind == Kind::Bullet ||
                                   b.kind == Kind::Paragraph || b.kind == Kind::Keys ||
                                   b.kind == Kind::Command
                               ? 1
                               : 0;
            }
            QVERIFY2(content >= 2, qPrintable(page.id));
        }
        // Every action a page may name stands for a command.
        for (const QString &action : actions)
            QVERIFY(ManualActions::command(action));
        QCOMPARE(ManualActions::command(QStringLiteral("fly")), std::nullopt);
        QVERIFY(!ManualActions::run(QStringLiteral("fly")));
    }

    void aMissingPageStillShowsItsTitle()
    {
        QTemporaryDir folder;
        QCOMPARE(ManualBook::text(QStringLiteral("folders"), {folder.path()}),
                 QStringLiteral("# Folders\n> This page is missing from the app."));
        QFile page(folder.filePath(QStringLiteral("manual-folders.md")));
        QVERIFY(page.open(QIODevice::WriteOnly));
        page.write("# Folders\n> Ünïcode kept.");
        page.close();
        QCOMPARE(ManualBook::text(QStringLiteral("folders"), {m_dir.path(), folder.path()}),
                 QStringLiteral("# Folders\n> Ünïcode kept."));
        QCOMPARE(ManualBook::text(QStringLiteral("no-such-page")), QString());
        QCOMPARE(ManualBook::chapterOf(QStringLiteral("notes"))->title, QStringLiteral("Notes"));
        QVERIFY(!ManualBook::chapterOf(QStringLiteral("nope")));
    }

    void searchFindsEveryWordAnywhereInChapterOrder()
    {
        // Case and accents folded; words anywhere, not only at a word's start.
        QCOMPARE(ids(ManualBook::search(QStringLiteral("MÁRGIN"))),
                 ids(ManualBook::search(QStringLiteral("margin"))));
        QVERIFY(ids(ManualBook::search(QStringLiteral("margin"))).contains("notes"));
        QVERIFY(ids(ManualBook::search(QStringLiteral("argi"))).contains("notes"));
        // Every word must be there: each extra word can only narrow the list.
        const QStringList folder = ids(ManualBook::search(QStringLiteral("folder")));
        const QStringList folderDrag = ids(ManualBook::search(QStringLiteral("folder  drag")));
        QVERIFY(folderDrag.contains("folders"));
        QVERIFY(folderDrag.size() <= folder.size());
        for (const QString &id : folderDrag)
            QVERIFY(folder.contains(id));
        QVERIFY(ManualBook::search(QStringLiteral("margin zyxwvut")).isEmpty());
        // The question is searched too, and the order is the table's.
        QCOMPARE(ids(ManualBook::search(QStringLiteral("What's new in orvel"))).first(),
                 QStringLiteral("whats-new"));
        QStringList order = ids(ManualBook::search(QStringLiteral("deck")));
        QStringList sorted = order;
        const QStringList all = ids(ManualBook::pages());
        std::sort(sorted.begin(), sorted.end(), [&](const QString &a, const QString &b) {
            return all.indexOf(a) < all.indexOf(b);
        });
        QCOMPARE(order, sorted);
        // A blank query finds every page.
        QCOMPARE(ManualBook::search(QStringLiteral("  ")).size(), 14);
        QCOMPARE(foldText(QStringLiteral("Équipe STRAẞE")),
                 foldText(QStringLiteral("equipe strasse")));
    }

    void theNavigatorKeepsAHistoryAndTheLastPage()
    {
        LocalSettings::store().setValue(settingskeys::manualPage(), QStringLiteral("nonsense"));
        ManualNavigator fresh(nullptr);
        QCOMPARE(fresh.current(), QStringLiteral("first-deck"));

        LocalSettings::store().setValue(settingskeys::manualPage(), QStringLiteral("notes"));
        ManualNavigator nav(nullptr);
        QCOMPARE(nav.current(), QStringLiteral("notes"));
        QSignalSpy changed(&nav, &ManualNavigator::currentChanged);

        nav.go(QStringLiteral("notes")); // the page shown
        nav.go(QStringLiteral("nowhere"));
        QVERIFY(nav.back().isEmpty());
        QCOMPARE(changed.size(), 0);

        nav.go(QStringLiteral("folders"));
        nav.go(QStringLiteral("studying"));
        QCOMPARE(nav.back(), (QStringList{"notes", "folders"}));
        nav.goBack();
        nav.goBack();
        QCOMPARE(nav.current(), QStringLiteral("notes"));
        QCOMPARE(nav.forward(), (QStringList{"studying", "folders"}));
        nav.goBack(); // nothing further back
        QCOMPARE(nav.current(), QStringLiteral("notes"));
        nav.goForward();
        QCOMPARE(nav.current(), QStringLiteral("folders"));
        // A new page after going back drops what lay ahead.
        nav.go(QStringLiteral("shortcuts"));
        QVERIFY(nav.forward().isEmpty());
        QVERIFY(!nav.canGoForward());
        QCOMPARE(nav.back(), (QStringList{"notes", "folders"}));
        QCOMPARE(LocalSettings::store().value(settingskeys::manualPage()).toString(),
                 QStringLiteral("shortcuts"));
    }

    void theWindowShowsThePageAndItsSearch()
    {
        ManualView view;
        QSignalSpy pages(&view, &ManualView::pageChanged);
        view.open(QStringLiteral("folders"));
        QCOMPARE(view.pageId(), QStringLiteral("folders"));
        QCOMPARE(view.pageTitle(), QStringLiteral("Folders"));
        QCOMPARE(view.chapterTitle(), QStringLiteral("Folders"));
        QCOMPARE(view.blocks().first().toMap()["kind"].toString(), QStringLiteral("title"));
        QVERIFY(!pages.isEmpty());
        int current = 0;
        for (const QVariant &chapter : view.chapters())
            for (const QVariant &page : chapter.toMap()["pages"].toList())
                current += page.toMap()["current"].toBool() ? 1 : 0;
        QCOMPARE(current, 1);

        QVERIFY(!view.searching());
        view.setQuery(QStringLiteral("  "));
        QVERIFY(!view.searching());
        QVERIFY(view.results().isEmpty());
        view.setQuery(QStringLiteral("voice"));
        QVERIFY(view.searching());
        QCOMPARE(view.results().first().toMap()["chapter"].toString().isEmpty(), false);
        view.setQuery(QStringLiteral("qqqzzz"));
        QVERIFY(view.results().isEmpty());

        // A try button posts its command.
        QSignalSpy posted(&AppCommands::shared(), &AppCommands::posted);
        QVERIFY(view.tryIt(QStringLiteral("new-folder")));
        QCOMPARE(posted.size(), 1);
        QCOMPARE(posted[0][0].value<AppCommand>(), AppCommand::NewFolder);
    }

    void theHelpMenuListsAFewPagesAndOpensOne()
    {
        ManualHelpSearch help;
        QVERIFY(help.results().isEmpty());
        help.setQuery(QStringLiteral("e"));
        QCOMPARE(help.results().size(), 8);
        help.setLimit(3);
        QCOMPARE(help.results().size(), 3);
        help.setQuery(QStringLiteral("slash commands"));
        QStringList found;
        for (const QVariant &result : help.results())
            found.append(result.toMap()["id"].toString());
        QVERIFY(found.contains(QStringLiteral("slash-commands")));

        QSignalSpy posted(&AppCommands::shared(), &AppCommands::posted);
        help.open(QStringLiteral("no-such-page"));
        QCOMPARE(posted.size(), 0);
        help.open(QStringLiteral("slash-commands"));
        QCOMPARE(posted.size(), 1);
        QCOMPARE(posted[0][0].value<AppCommand>(), AppCommand::Manual);
        QCOMPARE(posted[0][1].toString(), QStringLiteral("slash-commands"));
    }
};

QTEST_GUILESS_MAIN(TestManual)
#include "tst_manual.moc"
