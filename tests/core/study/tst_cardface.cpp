// How a card reads on the study card.
#include "study/cardface.h"

#include <QTest>

using namespace orvel;

class TestCardFace : public QObject {
    Q_OBJECT
private slots:
    void aFullCard()
    {
        Card card;
        card.term = "Hund";
        card.gender = "der (masculine)";
        card.partOfSpeech = "noun";
        card.definition = "a domesticated carnivorous mammal";
        card.usageNotes = "Also used as a mild insult.";
        card.examples = {{"Der Hund bellt laut.", "The dog barks loudly.", QString()},
                         {"Ein Hund.", "A dog.", "indefinite"}};
        card.related = {{"Katze", "cat", "contrast"}};
        card.conjugations = {{"Plural", QString(), {{"die", "Hunde"}}}};
        QCOMPARE(CardFace::word(card), QStringLiteral("der Hund"));
        QCOMPARE(CardFace::kindLine(card), QStringLiteral("noun · masculine"));
        QCOMPARE(CardFace::example(card),
                 QStringLiteral("Der Hund bellt laut. — The dog barks loudly."));
        const QVariantList rest = CardFace::rest(card);
        QStringList headings;
        for (const QVariant &section : rest)
            headings.append(section.toMap().value("heading").toString());
        QCOMPARE(headings, (QStringList{"Means", "Usage", "In use", "Nearby", "Plural"}));
        QCOMPARE(rest[2].toMap().value("lines").toStringList(),
                 (QStringList{"Der Hund bellt laut. — The dog barks loudly.",
                              "Ein Hund. — A dog. (indefinite)"}));
        QCOMPARE(rest[3].toMap().value("lines").toStringList(),
                 (QStringList{"Katze — cat · contrast"}));
        QCOMPARE(rest[4].toMap().value("lines").toStringList(), (QStringList{"die  Hunde"}));
    }

    void aBareCard()
    {
        Card card;
        card.term = "und";
        card.gender = "f";
        QCOMPARE(CardFace::word(card), QStringLiteral("und"));
        QCOMPARE(CardFace::kindLine(card), QString());
        QCOMPARE(CardFace::example(card), QString());
        QVERIFY(CardFace::rest(card).isEmpty());
        card.partOfSpeech = " conjunction ";
        card.gender = "Feminine";
        QCOMPARE(CardFace::kindLine(card), QStringLiteral("conjunction · feminine"));
    }
};

QTEST_GUILESS_MAIN(TestCardFace)
#include "tst_cardface.moc"
