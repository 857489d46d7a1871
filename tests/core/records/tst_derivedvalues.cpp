// Values the screens derive from records: the article before a term, the word type of a part
// of speech, picture credits, side-list keys and raw values of the records' enumerations.

#include "records/records.h"

#include <QtTest>

using namespace orvel;

Q_DECLARE_METATYPE(orvel::WordType)

class DerivedValuesTest : public QObject {
    Q_OBJECT

private slots:
    void article_data()
    {
        QTest::addColumn<QString>("gender");
        QTest::addColumn<QString>("term");
        QTest::addColumn<QString>("article");
        QTest::newRow("article") << "der"
                                 << "Hund"
                                 << "der";
        QTest::newRow("gender code") << "f"
                                     << "casa"
                                     << "";
        QTest::newRow("gender code upper case") << "M"
                                                << "Hund"
                                                << "";
        QTest::newRow("common gender code") << "c"
                                            << "hund"
                                            << "";
        QTest::newRow("one-letter article") << "o"
                                            << "livro"
                                            << "o";
        QTest::newRow("term carries it") << "la"
                                         << "la casa"
                                         << "";
        QTest::newRow("term carries it, other case") << "La"
                                                     << "la casa"
                                                     << "";
        QTest::newRow("abbreviation") << "fem."
                                      << "casa"
                                      << "";
        QTest::newRow("too long") << "masculine"
                                  << "Hund"
                                  << "";
        QTest::newRow("four characters") << "masc"
                                         << "Hund"
                                         << "";
        QTest::newRow("first word, as written") << "Die Mehrzahl"
                                                << "Hunde"
                                                << "Die";
        QTest::newRow("spaces around") << "  das  "
                                       << "Haus"
                                       << "das";
        QTest::newRow("tab between words") << "el\tmasculino"
                                           << "perro"
                                           << "el";
        QTest::newRow("empty") << ""
                               << "Hund"
                               << "";
        QTest::newRow("only spaces") << "   "
                                     << "Hund"
                                     << "";
        QTest::newRow("non-Latin") << "ال"
                                   << "كتاب"
                                   << "ال";
        QTest::newRow("combining marks count as one character")
            << QString::fromUtf8("e\u0301le") << "x" << QString::fromUtf8("e\u0301le");
    }

    void article()
    {
        QFETCH(QString, gender);
        QFETCH(QString, term);
        QFETCH(QString, article);
        Card card;
        card.gender = gender;
        card.term = term;
        QCOMPARE(card.article(), article);
    }

    void wordType_data()
    {
        QTest::addColumn<QString>("partOfSpeech");
        QTest::addColumn<WordType>("type");
        QTest::newRow("Adverb") << "Adverb" << WordType::Adverb;
        QTest::newRow("advérbio") << "advérbio" << WordType::Adverb;
        QTest::newRow("phrasal verb") << "phrasal verb" << WordType::Verb;
        QTest::newRow("noun phrase") << "noun phrase" << WordType::Noun;
        QTest::newRow("pronoun") << "pronoun" << WordType::Noun;
        QTest::newRow("pronome") << "pronome" << WordType::Noun;
        QTest::newRow("Adjektiv") << "Adjektiv" << WordType::Adjective;
        QTest::newRow("adjetivo") << "adjetivo" << WordType::Adjective;
        QTest::newRow("verbe") << "VERBE" << WordType::Verb;
        QTest::newRow("Substantiv") << "Substantiv, maskulin" << WordType::Noun;
        QTest::newRow("名詞") << "名詞" << WordType::Noun;
        QTest::newRow("idiom") << "idiom" << WordType::Phrase;
        QTest::newRow("locução") << "locução" << WordType::Phrase;
        QTest::newRow("expressão") << "expressão idiomática" << WordType::Phrase;
        QTest::newRow("preposition") << "preposition" << WordType::Function;
        QTest::newRow("definite article") << "definite article" << WordType::Function;
        QTest::newRow("interjection") << "Interjection" << WordType::Function;
        QTest::newRow("numeral") << "numeral" << WordType::Function;
        QTest::newRow("empty") << "" << WordType::Other;
        QTest::newRow("unknown") << "suffix" << WordType::Other;
    }

    void wordType()
    {
        QFETCH(QString, partOfSpeech);
        QFETCH(WordType, type);
        QCOMPARE(wordTypeFromPartOfSpeech(partOfSpeech), type);
    }

    void wordTypeCasesAndRawValues()
    {
        QStringList raw;
        for (WordType type : allWordTypes()) {
            raw << wordTypeRawValue(type);
            QCOMPARE(wordTypeFromRawValue(raw.last()), std::optional<WordType>(type));
        }
        QCOMPARE(raw, QStringList(
                          {"noun", "verb", "adjective", "adverb", "phrase", "function", "other"}));
        QVERIFY(!wordTypeFromRawValue(u"Noun"));
    }

    void credits()
    {
        Media media;
        media.author = "Ann";
        media.licence = "CC BY";
        QCOMPARE(media.credit(), QString::fromUtf8("Ann \u00B7 CC BY"));
        media.author.clear();
        QCOMPARE(media.credit(), QString::fromUtf8("Unknown \u00B7 CC BY"));
        media.licence.clear();
        QCOMPARE(media.credit(), QString::fromUtf8("Unknown \u00B7 "));

        FoundImage found;
        found.licence = "CC0";
        QCOMPARE(found.credit(), QString::fromUtf8("Unknown \u00B7 CC0"));
        found.author = "Bo";
        found.licence.clear();
        QCOMPARE(found.credit(), QString::fromUtf8("Bo \u00B7 "));
    }

    void sidebarKeysNeverCollide()
    {
        DeckSummary deck;
        deck.id = 12;
        Folder folder;
        folder.id = 12;
        QCOMPARE(deck.sidebarKey(), "deck-12");
        QCOMPARE(folder.sidebarKey(), "folder-12");
    }

    void recordEnumerationRawValues()
    {
        QCOMPARE(NoteLine::rawValue(NoteLine::State::Annotated), "annotated");
        QCOMPARE(NoteLine::rawValue(NoteLine::State::Stale), "stale");
        QCOMPARE(NoteLine::rawValue(NoteLine::State::Blank), "blank");
        QCOMPARE(NoteLine::stateFromRawValue(u"stale"), std::optional(NoteLine::State::Stale));
        QVERIFY(!NoteLine::stateFromRawValue(u"pending"));

        const QStringList kinds{"translation", "gloss", "note", "caution"};
        const Annotation::Kind cases[] = {Annotation::Kind::Translation, Annotation::Kind::Gloss,
                                          Annotation::Kind::Note, Annotation::Kind::Caution};
        for (int i = 0; i < 4; ++i) {
            QCOMPARE(Annotation::rawValue(cases[i]), kinds[i]);
            QCOMPARE(Annotation::kindFromRawValue(kinds[i]), std::optional(cases[i]));
        }
        QCOMPARE(Annotation::kindFromRawValue(Annotation{}.kind),
                 std::optional(Annotation::Kind::Note));
    }

    void derivedValuesReachQml()
    {
        Card card;
        card.gender = "der";
        card.term = "Hund";
        const QMetaObject &meta = Card::staticMetaObject;
        const QMetaProperty article = meta.property(meta.indexOfProperty("article"));
        QCOMPARE(article.readOnGadget(&card).toString(), "der");
        const QMetaProperty term = meta.property(meta.indexOfProperty("term"));
        QCOMPARE(term.readOnGadget(&card).toString(), "Hund");
    }
};

QTEST_GUILESS_MAIN(DerivedValuesTest)
#include "tst_derivedvalues.moc"
