// The palette's one matching rule: folding, how texts and queries are cut into words, prefixes
// by whole characters with canonical equivalence, and which first words lead a list.
#include "app/textfold.h"
#include "palette/palettequery.h"

#include <QTest>

using namespace orvel;

class TestPaletteMatch : public QObject {
    Q_OBJECT

private slots:
    void matches_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("query");
        QTest::addColumn<bool>("expected");

        const QString folderWith = QStringLiteral("New Folder with “Deutsch”");
        QTest::newRow("prefixes of two words") << folderWith << "new fo" << true;
        QTest::newRow("query words in any order") << folderWith << "folder new" << true;
        QTest::newRow("no infix") << folderWith << "ew" << false;
        QTest::newRow("quoted word") << folderWith << "deu" << true;
        QTest::newRow("every query word must match") << folderWith << "new zebra" << false;
        QTest::newRow("one text word serves several") << "Deutsch"
                                                      << "de deu deutsch" << true;
        QTest::newRow("query word longer than the text word") << "Hu"
                                                              << "hund" << false;

        QTest::newRow("empty query") << "anything"
                                     << "" << true;
        QTest::newRow("spaces only") << "anything"
                                     << "   " << true;
        QTest::newRow("empty text, empty query") << ""
                                                 << "" << true;
        QTest::newRow("empty text") << ""
                                    << "a" << false;
        QTest::newRow("two spaces between words") << "New Deck"
                                                  << "new  deck" << true;
        QTest::newRow("leading and trailing spaces") << "New Deck"
                                                     << "  deck " << true;
        QTest::newRow("a tab stays inside the query word") << "New Deck"
                                                           << "new\tdeck" << false;

        QTest::newRow("case") << "EQUIPE"
                              << "équipe" << true;
        QTest::newRow("accents in the text") << "Équipe"
                                             << "equipe" << true;
        QTest::newRow("accents in the query") << "equipe"
                                              << "ÉQUIPE" << true;
        QTest::newRow("ESPAÑOL finds español") << "español"
                                               << "ESPAÑOL" << true;
        QTest::newRow("ESPAÑOL finds Espanol") << "Espanol"
                                               << "ESPAÑOL" << true;
        QTest::newRow("sharp s folds to ss") << "Straße"
                                             << "STRASSE" << true;
        QTest::newRow("ss finds sharp s") << "Straße"
                                          << "strass" << true;
        QTest::newRow("ligatures fold to their letters") << "Oﬃce ﬁle"
                                                         << "office fi" << true;

        QTest::newRow("through a later word") << "Study All Decks in Travel"
                                              << "de" << true;
        QTest::newRow("word ends do not match") << "Study All Decks in Travel"
                                                << "ks" << false;
        QTest::newRow("numbers are words") << "Top 10 Verben"
                                           << "10" << true;
        QTest::newRow("letters and digits together") << "Unit 3b"
                                                     << "3b" << true;

        // Punctuation separates text words but stays inside query words.
        QTest::newRow("hyphen in the query") << "T-shirt"
                                             << "t-shirt" << false;
        QTest::newRow("hyphen parts as words") << "T-shirt"
                                               << "t shirt" << true;
        QTest::newRow("apostrophe in the query") << "don't panic"
                                                 << "don't" << false;
        QTest::newRow("word before an apostrophe") << "don't panic"
                                                   << "don" << true;
        QTest::newRow("curly apostrophe separates") << "l’eau"
                                                    << "eau" << true;
        QTest::newRow("trailing comma") << "Hund"
                                        << "hund," << false;
        QTest::newRow("leading bracket") << "Hund"
                                         << "(hund" << false;
        QTest::newRow("slash separates") << "read/write"
                                         << "write" << true;
        QTest::newRow("question mark in text") << "How do I study?"
                                               << "study" << true;
        QTest::newRow("question mark in query") << "How do I study?"
                                                << "study?" << false;

        // CJK runs are letters: one word, matched from its start only.
        QTest::newRow("CJK prefix") << "日本語の本"
                                    << "日本" << true;
        QTest::newRow("CJK infix") << "日本語の本"
                                   << "本" << false;
        QTest::newRow("CJK beside Latin") << "学校 school"
                                          << "sch 学" << true;
        QTest::newRow("Hangul syllables") << "한국어 공부"
                                          << "공" << true;

        // Emoji separate words and never match.
        QTest::newRow("emoji before a word") << "🐶Hund"
                                             << "hund" << true;
        QTest::newRow("emoji between words") << "Hund🐶Katze"
                                             << "katze hu" << true;
        QTest::newRow("emoji with a joiner") << "Familie 👨‍👩‍👧 Haus"
                                             << "haus" << true;
        QTest::newRow("emoji in the query") << "🐶Hund"
                                            << "🐶" << false;
        QTest::newRow("emoji with variation selector") << "I ❤️ Berlin"
                                                       << "berlin" << true;

        // Canonical equivalence: composed and decomposed forms are the same characters.
        QTest::newRow("NFD query, NFC text") << "café"
                                             << "cafe\u0301" << true;
        QTest::newRow("NFC query, NFD text") << "cafe\u0301"
                                             << "café" << true;
        QTest::newRow("Hangul NFD query, NFC text") << "한국어"
                                                    << "\u1112\u1161\u11ab" << true;
        QTest::newRow("Hangul NFC query, NFD text") << "\u1112\u1161\u11ab\uad6d"
                                                    << "한" << true;
        // Prefixes by whole characters: 하 is not the start of 한, though its jamo are.
        QTest::newRow("Hangul partial syllable") << "한국"
                                                 << "하" << false;
        QTest::newRow("Hangul partial syllable, NFD") << "한국"
                                                      << "\u1112\u1161" << false;
        // कि is one character (ka with a spacing vowel sign): क alone does not start it.
        QTest::newRow("Devanagari partial cluster") << "किताब"
                                                    << "क" << false;
        QTest::newRow("Devanagari whole cluster") << "किताब"
                                                  << "कि" << true;
        QTest::newRow("Devanagari two clusters") << "किताब"
                                                 << "किता" << true;
    }

    void matches()
    {
        QFETCH(QString, text);
        QFETCH(QString, query);
        QFETCH(bool, expected);
        QCOMPARE(paletteMatches(text, query), expected);
        QCOMPARE(PaletteQuery(query).matches(text), expected);
    }

    void leads_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("query");
        QTest::addColumn<bool>("expected");

        QTest::newRow("first word starts with the first query word") << "Study Deutsch"
                                                                     << "stu deu" << true;
        QTest::newRow("only the first query word counts") << "Study Deutsch"
                                                          << "stu zzz" << true;
        QTest::newRow("a later word does not lead") << "New Deck"
                                                    << "deck" << false;
        QTest::newRow("question leading") << "How do I start a deck?"
                                          << "how do" << true;
        QTest::newRow("question trailing") << "How do I start a deck?"
                                           << "margin" << false;
        QTest::newRow("folded") << "Équipe"
                                << "EQU" << true;
        QTest::newRow("text without words") << "— …"
                                            << "x" << false;
        QTest::newRow("query without words") << "New Deck"
                                             << "  " << false;
        QTest::newRow("punctuation before the first word") << "“Hund”"
                                                           << "hu" << true;
    }

    void leads()
    {
        QFETCH(QString, text);
        QFETCH(QString, query);
        QFETCH(bool, expected);
        QCOMPARE(PaletteQuery(query).leads(text), expected);
    }

    // The palette's quicker folding gives what foldText gives, character by character through
    // its table and for whole texts that mix in other scripts and marks.
    void foldsAsFoldTextDoes()
    {
        for (char16_t c = 0; c < 0x300; ++c) {
            const QString one(QChar{c});
            QCOMPARE(paletteFold(one), foldText(one));
        }
        for (const char *text : {"Straße", "ÆRØ Łódź", "Ǆemal", "İstanbul", "café", "cafe\u0301",
                                 "日本語 Ökonomie", "Ǻngström", "ﬁle", "\u1e9e", "Ωμέγα", "ǅ"}) {
            const QString string = QString::fromUtf8(text);
            QCOMPARE(paletteFold(string), foldText(string));
        }
    }

    void queryWordsAreFoldedAndSplitAtSpacesOnly()
    {
        QCOMPARE(PaletteQuery(QStringLiteral("  Ünter\tden  LINDEN, ")).words(),
                 (QStringList{"unter\tden", "linden,"}));
        QVERIFY(PaletteQuery(QStringLiteral("   ")).isEmpty());
        QVERIFY(!PaletteQuery(QStringLiteral("\t")).isEmpty());
    }
};

QTEST_GUILESS_MAIN(TestPaletteMatch)

#include "tst_palettematch.moc"
