// Values the screens derive from records: the article before a term, the word type of a part
// of speech and its raw value, and picture credits.

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
        const auto row = [](const char *name, const QString &gender, const QString &term,
                            const QString &article) {
            QTest::newRow(name) << gender << term << article;
        };
        row("article", u"der"_qs, u"Hund"_qs, u"der"_qs);
        row("gender code", u"f"_qs, u"casa"_qs, {});
        row("gender code upper case", u"M"_qs, u"Hund"_qs, {});
        row("one-letter article", u"o"_qs, u"livro"_qs, u"o"_qs);
        row("term carries it, other case", u"La"_qs, u"la casa"_qs, {});
        row("abbreviation", u"fem."_qs, u"casa"_qs, {});
        row("four characters", u"masc"_qs, u"Hund"_qs, {});
        row("first word, as written", u"Die Mehrzahl"_qs, u"Hunde"_qs, u"Die"_qs);
        row("spaces around", u"  das  "_qs, u"Haus"_qs, u"das"_qs);
        row("tab between words", u"el\tmasculino"_qs, u"perro"_qs, u"el"_qs);
        row("only spaces", u"   "_qs, u"Hund"_qs, {});
        row("non-Latin", u"ال"_qs, u"كتاب"_qs, u"ال"_qs);
        row("combining marks count as one character", u"e\u0301le"_qs, u"x"_qs, u"e\u0301le"_qs);
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
        const auto row = [](const char *text, WordType type) {
            QTest::newRow(text) << QString::fromUtf8(text) << type;
        };
        row("advérbio", WordType::Adverb);
        row("phrasal verb", WordType::Verb);
        row("noun phrase", WordType::Noun);
        row("pronome", WordType::Noun);
        row("Adjektiv", WordType::Adjective);
        row("VERBE", WordType::Verb);
        row("Substantiv, maskulin", WordType::Noun);
        row("名詞", WordType::Noun);
        row("expressão idiomática", WordType::Phrase);
        row("definite article", WordType::Function);
        row("Interjection", WordType::Function);
        QTest::newRow("empty") << QString() << WordType::Other;
        row("suffix", WordType::Other);
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
