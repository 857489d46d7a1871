// The shelf's rules that need no server: folder naming, sidebar order and its model, the shut
// folders in the settings, the delete texts' counts, the kinds, the card filter and the detail's
// lines.
#include "library/carddetail.h"
#include "library/cardfilter.h"
#include "library/cardkinds.h"
#include "library/foldernaming.h"
#include "library/shelftexts.h"
#include "library/shutfolders.h"
#include "library/sidebarmodel.h"
#include "library/sidebarorder.h"
#include "server/localsettings.h"

#include <QAbstractItemModelTester>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

using namespace orvel;

namespace {

Folder folder(int id, const QString &name)
{
    Folder f;
    f.id = id;
    f.name = name;
    return f;
}

DeckSummary deck(int id, const QString &name, std::optional<int> folderId = std::nullopt,
                 int cards = 0)
{
    DeckSummary d;
    d.id = id;
    d.name = name;
    d.folderId = folderId;
    d.cardCount = cards;
    return d;
}

Card card(int id, const QString &term, const QString &translation, const QString &pos,
          int streak = 0, const QString &reading = {})
{
    Card c;
    c.id = id;
    c.term = term;
    c.translation = translation;
    c.partOfSpeech = pos;
    c.streak = streak;
    c.reading = reading;
    return c;
}

QStringList keys(const QList<SidebarRow> &rows)
{
    QStringList out;
    for (const SidebarRow &row : rows)
        out.append(row.key);
    return out;
}

QList<int> ids(const QList<Card> &cards, const QList<qsizetype> &indexes)
{
    QList<int> out;
    for (qsizetype i : indexes)
        out.append(cards[i].id);
    return out;
}

} // namespace

class TestShelfLogic : public QObject {
    Q_OBJECT
    QTemporaryDir m_dir;

private slots:
    void initTestCase()
    {
        QVERIFY(m_dir.isValid());
        LocalSettings::useFile(m_dir.filePath("orvel.conf"));
    }

    void folderNamesAvoidTakenOnesInLowerCase()
    {
        QCOMPARE(untitledFolderName({}), QStringLiteral("untitled folder"));
        QCOMPARE(untitledFolderName({folder(1, "Travel")}), QStringLiteral("untitled folder"));
        QCOMPARE(untitledFolderName({folder(1, "Untitled Folder"), folder(2, "untitled folder 2")}),
                 QStringLiteral("untitled folder 3"));
        // A gap is filled first.
        QCOMPARE(untitledFolderName({folder(1, "untitled folder"), folder(2, "UNTITLED FOLDER 3")}),
                 QStringLiteral("untitled folder 2"));
    }

    void sidebarOrderLooseThenFoldersWithTheirDecks()
    {
        // Deck 4 names folder 99, which is not in the listing: it counts as loose.
        const QList<DeckSummary> decks = {deck(1, "Deutsch"),      deck(2, "Français", 20),
                                          deck(3, "Verbs", 20),    deck(4, "Lost", 99),
                                          deck(5, "Italiano", 10), deck(6, "Español")};
        const QList<Folder> folders = {folder(20, "Evening class"), folder(10, "Travel"),
                                       folder(30, "Empty")};
        const auto rows = sidebarRows(decks, folders, {});
        QCOMPARE(keys(rows),
                 (QStringList{"decks", "deck-1", "deck-4", "deck-6", "folders", "folder-20",
                              "deck-2", "deck-3", "folder-10", "deck-5", "folder-30"}));
        QCOMPARE(rows[0].name, QStringLiteral("Decks"));
        QCOMPARE(rows[4].name, QStringLiteral("Folders"));
        QCOMPARE(rows[5].count, 2);  // decks in Evening class
        QCOMPARE(rows[10].count, 0); // Empty
        QCOMPARE(rows[6].depth, 1);
        QCOMPARE(rows[6].folderId, 20);
        QCOMPARE(rows[2].folderId, 0); // the deck of the unknown folder is at the top level

        // Shut folders keep their row but not their decks; the shortcuts count shown decks only.
        const auto shut = sidebarRows(decks, folders, {20});
        QCOMPARE(keys(shut), (QStringList{"decks", "deck-1", "deck-4", "deck-6", "folders",
                                          "folder-20", "folder-10", "deck-5", "folder-30"}));
        QVERIFY(!shut[5].open);
        QVERIFY(shut[6].open);
        QCOMPARE(shut[7].shortcut, 4);

        QCOMPARE(looseDecks(decks, folders).size(), 3);
        QCOMPARE(decksInFolder(decks, 20).size(), 2);
    }

    // The model tells a view only what changed: the rows whose contents changed when the rows
    // stay the same, a reset when rows come or go.
    void sidebarModelReportsItsChanges()
    {
        SidebarModel model;
        QAbstractItemModelTester tester(&model,
                                        QAbstractItemModelTester::FailureReportingMode::QtTest);
        QSignalSpy changed(&model, &QAbstractItemModel::dataChanged);
        QSignalSpy reset(&model, &QAbstractItemModel::modelReset);
        QSignalSpy count(&model, &SidebarModel::countChanged);
        const QList<DeckSummary> decks = {deck(1, "Deutsch"), deck(2, "Français", 20, 4)};
        const QList<Folder> folders = {folder(20, "Evening class")};
        model.setRows(sidebarRows(decks, folders, {}));
        QCOMPARE(model.rowCount(), 5);
        QCOMPARE(model.data(model.index(4), SidebarModel::NameRole).toString(), "Français");
        QCOMPARE(model.data(model.index(3), SidebarModel::KindRole).toString(), "folder");
        QCOMPARE(reset.size(), 1);
        QCOMPARE(count.size(), 1);

        // A renamed deck and a new count: the same rows, two of them changed.
        QList<DeckSummary> renamed = decks;
        renamed[0].name = QStringLiteral("Deutsch A1");
        renamed[1].cardCount = 5;
        model.setRows(sidebarRows(renamed, folders, {}));
        QCOMPARE(reset.size(), 1);
        QCOMPARE(changed.size(), 2);
        QCOMPARE(changed[0][0].toModelIndex().row(), 1);
        QCOMPARE(changed[1][0].toModelIndex().row(), 4);
        model.setRows(sidebarRows(renamed, folders, {})); // nothing new, nothing told
        QCOMPARE(changed.size(), 2);

        // Shutting the folder hides its deck: rows go, the view starts over.
        model.setRows(sidebarRows(renamed, folders, {20}));
        QCOMPARE(reset.size(), 2);
        QCOMPARE(model.rowCount(), 4);
        QCOMPARE(count.size(), 2);
        model.setRows({});
        QCOMPARE(reset.size(), 3);
        QCOMPARE(model.rowCount(), 0);
    }

    void onlyTheFirstNineDecksHaveShortcuts()
    {
        QList<DeckSummary> decks;
        for (int i = 1; i <= 12; ++i)
            decks.append(deck(i, QString::number(i)));
        const auto rows = sidebarRows(decks, {}, {});
        QCOMPARE(rows[1].shortcut, 1);
        QCOMPARE(rows[9].shortcut, 9);
        QCOMPARE(rows[10].shortcut, 0);
        QCOMPARE(rows[10].id, 10);
    }

    void shutFoldersAreStoredAscending()
    {
        ShutFolders::write({12, 3});
        QCOMPARE(LocalSettings::store().value("zelon.sidebar.shutFolders").toStringList(),
                 (QStringList{"3", "12"}));
        QCOMPARE(ShutFolders::read(), (QSet<int>{3, 12}));
        ShutFolders::write({7});
        QCOMPARE(ShutFolders::read(), (QSet<int>{7}));
        ShutFolders::write({});
        QCOMPARE(ShutFolders::read(), QSet<int>{});
        // Unreadable entries are skipped, the rest kept.
        LocalSettings::store().setValue("zelon.sidebar.shutFolders", QStringList{"4", "x", "9"});
        QCOMPARE(ShutFolders::read(), (QSet<int>{4, 9}));
    }

    void deleteTextsCountWhatGoes()
    {
        QCOMPARE(
            shelftexts::folderDeleteDetail(1),
            QStringLiteral("Its 1 deck moves out of the folder. No cards or notes are deleted."));
        QCOMPARE(
            shelftexts::folderDeleteDetail(3),
            QStringLiteral("Its 3 decks move out of the folder. No cards or notes are deleted."));
        QCOMPARE(shelftexts::folderDeleteDetail(0), QStringLiteral("The folder is empty."));
        QCOMPARE(shelftexts::deckDeleteQuestion({}), QStringLiteral("Delete this deck?"));
        QCOMPARE(shelftexts::deckDeleteDetail(42, 2),
                 QStringLiteral("42 cards and 2 notes go too. This cannot be undone."));
        QCOMPARE(shelftexts::deckDeleteDetail(42, 0),
                 QStringLiteral("42 cards go too. This cannot be undone."));
    }

    void kindsInTheirOrder()
    {
        const QList<Card> cards = {
            card(1, "schnell", "fast", "Adjective"), card(2, "zwischen", "between", "preposition"),
            card(3, "Hund", "dog", "noun"), card(4, "Guten Appetit", "enjoy", "phrase")};
        QCOMPARE(cardkinds::present(cards),
                 (QList<WordType>{WordType::Noun, WordType::Adjective, WordType::Phrase,
                                  WordType::Function}));
        QCOMPARE(cardkinds::present({cards[2]}), QList<WordType>{WordType::Noun});
    }

    void learnedMeansKnownTwiceRunning()
    {
        Card c = card(1, "Hund", "dog", "noun", 0);
        QVERIFY(!CardFilter::isLearned(c));
        c.streak = 1;
        c.known = 5;
        QVERIFY(!CardFilter::isLearned(c));
        c.streak = 2;
        QVERIFY(CardFilter::isLearned(c));
    }

    void filtersCombine()
    {
        const QList<Card> cards = {
            card(1, "der Hund", "dog", "noun", 3),  card(2, "café", "coffee", "noun", 0),
            card(3, "laufen", "to run", "verb", 2), card(4, "HUNDERT", "hundred", "numeral", 0),
            card(5, "犬", "dog", "名詞", 0, "inu"), card(6, "schnell", "fast", "adjective", 5)};
        CardFilter filter;
        filter.reset(cards);
        using L = CardFilter::Learned;
        QCOMPARE(ids(cards, filter.shown(std::nullopt, {}, L::Any)),
                 (QList<int>{1, 2, 3, 4, 5, 6}));
        // Case is folded on both sides; the reading and the translation are searched too.
        QCOMPARE(ids(cards, filter.shown(std::nullopt, "HUND", L::Any)), (QList<int>{1, 4}));
        QCOMPARE(ids(cards, filter.shown(std::nullopt, "hund", L::Any)), (QList<int>{1, 4}));
        QCOMPARE(ids(cards, filter.shown(std::nullopt, "Inu", L::Any)), (QList<int>{5}));
        QCOMPARE(ids(cards, filter.shown(std::nullopt, "dog", L::Any)), (QList<int>{1, 5}));
        // Accents are not folded.
        QCOMPARE(ids(cards, filter.shown(std::nullopt, "cafe", L::Any)), QList<int>{});
        QCOMPARE(ids(cards, filter.shown(std::nullopt, "CAFÉ", L::Any)), QList<int>{2});
        // Kind, query and learned together.
        QCOMPARE(ids(cards, filter.shown(WordType::Noun, {}, L::Any)), (QList<int>{1, 2, 5}));
        QCOMPARE(ids(cards, filter.shown(WordType::Noun, "dog", L::Any)), (QList<int>{1, 5}));
        QCOMPARE(ids(cards, filter.shown(WordType::Noun, "dog", L::NotLearned)), QList<int>{5});
        QCOMPARE(ids(cards, filter.shown(WordType::Noun, "dog", L::Learned)), QList<int>{1});
        QCOMPARE(ids(cards, filter.shown(std::nullopt, {}, L::Learned)), (QList<int>{1, 3, 6}));
        QCOMPARE(ids(cards, filter.shown(WordType::Function, {}, L::Any)), QList<int>{4});

        // Kept in step with edits of the deck's list.
        QList<Card> edited = cards;
        edited.remove(0);
        filter.remove(0);
        QCOMPARE(ids(edited, filter.shown(std::nullopt, "hund", L::Any)), QList<int>{4});
        Card back = cards[0];
        edited.insert(0, back);
        filter.insert(0, back);
        QCOMPARE(ids(edited, filter.shown(std::nullopt, "hund", L::Any)), (QList<int>{1, 4}));
        edited[1].streak = 2;
        filter.replace(1, edited[1]);
        QCOMPARE(ids(edited, filter.shown(std::nullopt, {}, L::Learned)), (QList<int>{1, 2, 3, 6}));
    }

    void detailLines()
    {
        Card c = card(1, "Hund", "dog", "noun");
        c.gender = "der";
        QCOMPARE(CardDetail::kindLine(c), QStringLiteral("noun"));
        c.gender = "masculine";
        QCOMPARE(CardDetail::kindLine(c), QStringLiteral("noun · masculine"));
        c.gender = "die (Femininum)";
        QCOMPARE(CardDetail::kindLine(c), QStringLiteral("noun · feminine"));
        c.gender = "f";
        QCOMPARE(CardDetail::kindLine(c), QStringLiteral("noun · feminine"));
        c.gender = "masc.";
        QCOMPARE(CardDetail::kindLine(c), QStringLiteral("noun · masculine"));
        c.gender = "neuter";
        QCOMPARE(CardDetail::kindLine(c), QStringLiteral("noun"));
        c.partOfSpeech.clear();
        c.gender = "feminine";
        QCOMPARE(CardDetail::kindLine(c), QStringLiteral("feminine"));

        c.seen = 6;
        c.known = 5;
        c.streak = 3;
        QCOMPARE(CardDetail::foot(c), QStringLiteral("seen 6 · 5 right · streak 3"));
    }
};

QTEST_GUILESS_MAIN(TestShelfLogic)
#include "tst_shelflogic.moc"
