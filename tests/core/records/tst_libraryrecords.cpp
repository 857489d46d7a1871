// Decoding rules of the library records: required, optional and defaulted keys, integer and type
// checks, nested lists and where a failure is reported.

#include "records/json.h"
#include "records/records.h"
#include "wire.h"

#include <QtTest>

using namespace orvel;
using json::DecodeError;

class LibraryRecordsTest : public QObject {
    Q_OBJECT

private slots:
    void cardDecodesEveryField()
    {
        const Card card = json::decode<Card>(wire::bytes(wire::card()));
        QCOMPARE(card.id, 7);
        QCOMPARE(card.deckId, 3);
        QCOMPARE(card.term, "Hund");
        QCOMPARE(card.reading, "hʊnt");
        QCOMPARE(card.partOfSpeech, "noun");
        QCOMPARE(card.usageNotes, "common");
        QCOMPARE(card.examples.size(), 1);
        QCOMPARE(card.examples[0].sentence, "Der Hund bellt.");
        QCOMPARE(card.examples[0].translation, "The dog barks.");
        QCOMPARE(card.related[0].relation, "young of");
        QCOMPARE(card.conjugations[0].tense, "Plural");
        QCOMPARE(card.conjugations[0].forms[0].form, "Hunde");
        QCOMPARE(card.seen, 4);
        QCOMPARE(card.known, 3);
        QCOMPARE(card.streak, 2);
        QCOMPARE(card.lastReviewed, std::optional<QString>("2024-05-01T10:00:00Z"));
        QCOMPARE(card.createdAt, "2024-04-01T09:00:00Z");
    }

    void cardLastReviewedIsOptional()
    {
        const auto nulled = json::decode<Card>(
            wire::bytes(wire::with(wire::card(), "last_reviewed", QJsonValue::Null)));
        QVERIFY(!nulled.lastReviewed);
        const auto missing =
            json::decode<Card>(wire::bytes(wire::without(wire::card(), "last_reviewed")));
        QVERIFY(!missing.lastReviewed);
    }

    void cardEveryOtherKeyIsRequired_data()
    {
        QTest::addColumn<QString>("key");
        for (const QString &key : wire::card().keys())
            if (key != "last_reviewed")
                QTest::newRow(qPrintable(key)) << key;
    }

    void cardEveryOtherKeyIsRequired()
    {
        QFETCH(QString, key);
        QVERIFY_THROWS_EXCEPTION(DecodeError,
                                 json::decode<Card>(wire::bytes(wire::without(wire::card(), key))));
        QVERIFY_THROWS_EXCEPTION(
            DecodeError,
            json::decode<Card>(wire::bytes(wire::with(wire::card(), key, QJsonValue::Null))));
    }

    void keysAreReadInSnakeCaseOnly()
    {
        QJsonObject camel = wire::without(wire::card(), "deck_id");
        camel.insert("deckId", 3);
        QVERIFY_THROWS_EXCEPTION(DecodeError, json::decode<Card>(wire::bytes(camel)));
    }

    void unknownKeysAreIgnored()
    {
        const auto card =
            json::decode<Card>(wire::bytes(wire::with(wire::card(), "mnemonic", "a hound")));
        QCOMPARE(card, json::decode<Card>(wire::bytes(wire::card())));
    }

    void integersMustBeWholeNumbersInRange_data()
    {
        QTest::addColumn<QJsonValue>("id");
        QTest::addColumn<bool>("decodes");
        QTest::newRow("whole") << QJsonValue(12) << true;
        QTest::newRow("negative") << QJsonValue(-3) << true;
        QTest::newRow("written as 12.0") << QJsonValue(12.0) << true;
        QTest::newRow("fraction") << QJsonValue(12.5) << false;
        QTest::newRow("string") << QJsonValue("12") << false;
        QTest::newRow("boolean") << QJsonValue(true) << false;
        QTest::newRow("too large for int") << QJsonValue(qint64(1) << 40) << false;
        QTest::newRow("huge double") << QJsonValue(1e300) << false;
    }

    void integersMustBeWholeNumbersInRange()
    {
        QFETCH(QJsonValue, id);
        QFETCH(bool, decodes);
        const QByteArray bytes = wire::bytes(wire::with(wire::deckSummary(), "id", id));
        if (decodes)
            QCOMPARE(json::decode<DeckSummary>(bytes).id, id.toInteger());
        else
            QVERIFY_THROWS_EXCEPTION(DecodeError, json::decode<DeckSummary>(bytes));
    }

    void wrongTypesFail()
    {
        QVERIFY_THROWS_EXCEPTION(
            DecodeError, json::decode<Card>(wire::bytes(wire::with(wire::card(), "term", 5))));
        QVERIFY_THROWS_EXCEPTION(
            DecodeError,
            json::decode<Card>(wire::bytes(wire::with(wire::card(), "examples", QJsonObject{}))));
        QVERIFY_THROWS_EXCEPTION(DecodeError, json::decode<Card>(wire::bytes(
                                                  wire::with(wire::card(), "last_reviewed", 3))));
        QVERIFY_THROWS_EXCEPTION(DecodeError, json::decode<Card>("[]"));
        QVERIFY_THROWS_EXCEPTION(DecodeError, json::decode<QList<Card>>("{}"));
    }

    void badJsonFails()
    {
        QVERIFY_THROWS_EXCEPTION(DecodeError, json::decode<Card>(""));
        QVERIFY_THROWS_EXCEPTION(DecodeError, json::decode<Card>("<html>502</html>"));
        QVERIFY_THROWS_EXCEPTION(DecodeError,
                                 json::decode<Card>(wire::bytes(wire::card()).chopped(1)));
        QVERIFY_THROWS_EXCEPTION(DecodeError, json::decode<int>("1 2"));
    }

    void failuresNameWhereTheyHappened()
    {
        QJsonObject second = wire::card(8);
        QJsonArray examples{QJsonObject{{"sentence", "s"}, {"translation", "t"}}};
        second.insert("examples", examples);
        const QJsonObject deck{{"id", 3},
                               {"name", "German"},
                               {"description", ""},
                               {"language", "de"},
                               {"native_language", "en"},
                               {"created_at", "2024"},
                               {"cards", QJsonArray{wire::card(7), second}}};
        try {
            json::decode<Deck>(wire::bytes(deck));
            QFAIL("decoded a card without an example note");
        } catch (const DecodeError &error) {
            QCOMPARE(QString(error.what()), "cards[1].examples[0].note: missing");
        }
    }

    void deckDecodesItsCardsInOrder()
    {
        const QJsonObject deck{{"id", 3},
                               {"name", "German"},
                               {"description", ""},
                               {"language", "de"},
                               {"native_language", "en"},
                               {"created_at", "2024"},
                               {"cards", QJsonArray{wire::card(9), wire::card(2)}}};
        const Deck decoded = json::decode<Deck>(wire::bytes(deck));
        QCOMPARE(decoded.nativeLanguage, "en");
        QCOMPARE(decoded.cards.size(), 2);
        QCOMPARE(decoded.cards[0].id, 9);
        QCOMPARE(decoded.cards[1].id, 2);
        QVERIFY_THROWS_EXCEPTION(DecodeError,
                                 json::decode<Deck>(wire::bytes(wire::without(deck, "cards"))));
    }

    void deckSummaryDefaultsAndOptionals()
    {
        const auto full = json::decode<DeckSummary>(wire::bytes(wire::deckSummary()));
        QCOMPARE(full.noteCount, 2);
        QCOMPARE(full.folderId, std::optional<int>(5));
        QCOMPARE(full.lastStudied, std::optional<QString>("2024-02-01"));

        const auto bare = json::decode<DeckSummary>(wire::bytes(wire::without(
            wire::without(wire::without(wire::deckSummary(), "note_count"), "folder_id"),
            "last_studied")));
        QCOMPARE(bare.noteCount, 0);
        QVERIFY(!bare.folderId);
        QVERIFY(!bare.lastStudied);

        const auto nulled = json::decode<DeckSummary>(
            wire::bytes(wire::with(wire::deckSummary(), "note_count", QJsonValue::Null)));
        QCOMPARE(nulled.noteCount, 0);

        QVERIFY_THROWS_EXCEPTION(DecodeError, json::decode<DeckSummary>(wire::bytes(wire::without(
                                                  wire::deckSummary(), "card_count"))));
        // A default covers absence, not a wrong type.
        QVERIFY_THROWS_EXCEPTION(DecodeError, json::decode<DeckSummary>(wire::bytes(wire::with(
                                                  wire::deckSummary(), "note_count", "2"))));
    }

    void listsOfSummariesFoldersAndLanguages()
    {
        const auto decks = json::decode<QList<DeckSummary>>(
            "[" + wire::bytes(wire::deckSummary()) + "," + wire::bytes(wire::deckSummary()) + "]");
        QCOMPARE(decks.size(), 2);
        QCOMPARE(json::decode<QList<DeckSummary>>("[]").size(), 0);

        const auto folders = json::decode<QList<Folder>>(
            R"([{"id":1,"name":"Travel","deck_count":3},{"id":2,"name":"Work","deck_count":0}])");
        QCOMPARE(folders[0].deckCount, 3);
        QCOMPARE(folders[1].name, "Work");
        QVERIFY_THROWS_EXCEPTION(DecodeError,
                                 json::decode<QList<Folder>>(R"([{"id":1,"name":"Travel"}])"));

        const auto languages = json::decode<QList<Language>>(
            R"([{"code":"ja","name":"Japanese","endonym":"日本語","script":"Jpan"},)"
            R"({"code":"pt","name":"Portuguese","endonym":"português","script":null,"variety":"BR"}])");
        QCOMPARE(languages[0].endonym, "日本語");
        QCOMPARE(languages[0].script, std::optional<QString>("Jpan"));
        QVERIFY(!languages[0].variety);
        QVERIFY(!languages[1].script);
        QCOMPARE(languages[1].variety, std::optional<QString>("BR"));
    }

    void mediaAndSearchResults()
    {
        const Media media = json::decode<Media>(wire::bytes(wire::media()));
        QCOMPARE(media.width, 640);
        QCOMPARE(media.sourceUrl, "");
        QCOMPARE(media.licence, "CC BY");

        const QJsonObject results{
            {"cards", QJsonArray{wire::card()}},
            {"notes", QJsonArray{QJsonObject{{"id", 4}, {"deck_id", 3}, {"title", "Park"}}}},
            {"lines", QJsonArray{QJsonObject{{"id", 11},
                                             {"note_id", 4},
                                             {"deck_id", 3},
                                             {"note_title", "Park"},
                                             {"text", "der Hund"}}}}};
        const auto decoded = json::decode<SearchResults>(wire::bytes(results));
        QCOMPARE(decoded.cards.size(), 1);
        QCOMPARE(decoded.notes[0].deckId, 3);
        QCOMPARE(decoded.lines[0].noteTitle, "Park");
        QCOMPARE(decoded.lines[0].noteId, 4);
        QVERIFY_THROWS_EXCEPTION(
            DecodeError, json::decode<SearchResults>(wire::bytes(wire::without(results, "lines"))));
    }

    void equalityCoversNestedFields()
    {
        const Card card = json::decode<Card>(wire::bytes(wire::card()));
        Card changed = card;
        QCOMPARE(changed, card);
        changed.conjugations[0].forms[0].label = "Pl.";
        QVERIFY(changed != card);
    }

    void hashingAgreesWithEquality()
    {
        const Card card = json::decode<Card>(wire::bytes(wire::card()));
        Card reviewed = card;
        reviewed.lastReviewed.reset();
        Card relabelled = card;
        relabelled.examples[0].note = "informal";
        QCOMPARE(qHash(Card(card), 7), qHash(card, 7));
        QVERIFY(qHash(reviewed, 0) != qHash(card, 0));
        QVERIFY(qHash(relabelled, 0) != qHash(card, 0));
        const QSet<Card> cards{card, Card(card), reviewed, relabelled};
        QCOMPARE(cards.size(), 3);

        const auto summary = json::decode<DeckSummary>(wire::bytes(wire::deckSummary()));
        QSet<DeckSummary> summaries{summary, summary};
        QCOMPARE(summaries.size(), 1);
    }
};

QTEST_GUILESS_MAIN(LibraryRecordsTest)
#include "tst_libraryrecords.moc"
