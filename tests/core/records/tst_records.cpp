// Decoding rules of the records: required, optional and defaulted keys, lenient records that
// take their defaults, integer and type checks, dictionaries kept as sent, where a failure is
// reported, and hashing that agrees with equality.

#include "records/json.h"
#include "records/records.h"
#include "wire.h"

#include <QtTest>

using namespace orvel;
using json::DecodeError;

namespace {

template <class T> T decoded(const QJsonObject &object)
{
    return json::decode<T>(wire::bytes(object));
}

} // namespace

class RecordsTest : public QObject {
    Q_OBJECT

private slots:
    void cardFieldsLandInTheirMembers()
    {
        const Card card = decoded<Card>(wire::card());
        QCOMPARE(card.deckId, 3);
        QCOMPARE(card.partOfSpeech, "noun");
        QCOMPARE(card.usageNotes, "common");
        QCOMPARE(card.examples[0].translation, "The dog barks.");
        QCOMPARE(card.related[0].relation, "young of");
        QCOMPARE(card.conjugations[0].forms[0].form, "Hunde");
        QCOMPARE(card.seen, 4);
        QCOMPARE(card.known, 3);
        QCOMPARE(card.streak, 2);
        QCOMPARE(card.lastReviewed, std::optional<QString>("2024-05-01T10:00:00Z"));
        // Unknown keys are skipped; keys are read in snake case only.
        QCOMPARE(decoded<Card>(wire::with(wire::card(), "mnemonic", "a hound")), card);
        QJsonObject camel = wire::without(wire::card(), "deck_id");
        camel.insert("deckId", 3);
        QVERIFY_THROWS_EXCEPTION(DecodeError, decoded<Card>(camel));
    }

    void cardKeysAreRequiredButLastReviewed_data()
    {
        QTest::addColumn<QString>("key");
        for (const QString &key : wire::card().keys())
            QTest::newRow(qPrintable(key)) << key;
    }

    void cardKeysAreRequiredButLastReviewed()
    {
        QFETCH(QString, key);
        const QByteArray missing = wire::bytes(wire::without(wire::card(), key));
        const QByteArray null = wire::bytes(wire::with(wire::card(), key, QJsonValue::Null));
        if (key == "last_reviewed") {
            QVERIFY(!json::decode<Card>(missing).lastReviewed);
            QVERIFY(!json::decode<Card>(null).lastReviewed);
        } else {
            QVERIFY_THROWS_EXCEPTION(DecodeError, json::decode<Card>(missing));
            QVERIFY_THROWS_EXCEPTION(DecodeError, json::decode<Card>(null));
        }
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
        const QJsonObject summary = wire::with(wire::deckSummary(), "id", id);
        if (decodes)
            QCOMPARE(decoded<DeckSummary>(summary).id, id.toInteger());
        else
            QVERIFY_THROWS_EXCEPTION(DecodeError, decoded<DeckSummary>(summary));
    }

    void wrongTypesFail()
    {
        QVERIFY_THROWS_EXCEPTION(DecodeError, decoded<Card>(wire::with(wire::card(), "term", 5)));
        QVERIFY_THROWS_EXCEPTION(
            DecodeError, decoded<Card>(wire::with(wire::card(), "examples", QJsonObject{})));
        QVERIFY_THROWS_EXCEPTION(DecodeError,
                                 decoded<Card>(wire::with(wire::card(), "last_reviewed", 3)));
        QVERIFY_THROWS_EXCEPTION(DecodeError, json::decode<Card>("[]"));
        QVERIFY_THROWS_EXCEPTION(DecodeError, json::decode<QList<Card>>("{}"));
    }

    void failuresNameWhereTheyHappened()
    {
        QJsonObject second = wire::card(8);
        second.insert("examples", QJsonArray{QJsonObject{{"sentence", "s"}, {"translation", "t"}}});
        const QJsonObject deck{{"id", 3},
                               {"name", "German"},
                               {"description", ""},
                               {"language", "de"},
                               {"native_language", "en"},
                               {"created_at", "2024"},
                               {"cards", QJsonArray{wire::card(7), second}}};
        try {
            decoded<Deck>(deck);
            QFAIL("decoded a card without an example note");
        } catch (const DecodeError &error) {
            QCOMPARE(QString(error.what()), "cards[1].examples[0].note: missing");
        }
    }

    void deckSummaryDefaultsAndOptionals()
    {
        const auto full = decoded<DeckSummary>(wire::deckSummary());
        QCOMPARE(full.noteCount, 2);
        QCOMPARE(full.folderId, std::optional<int>(5));
        const auto bare = decoded<DeckSummary>(wire::without(
            wire::without(wire::without(wire::deckSummary(), "note_count"), "folder_id"),
            "last_studied"));
        QCOMPARE(bare.noteCount, 0);
        QVERIFY(!bare.folderId);
        QVERIFY(!bare.lastStudied);
        QCOMPARE(
            decoded<DeckSummary>(wire::with(wire::deckSummary(), "note_count", QJsonValue::Null))
                .noteCount,
            0);
        QVERIFY_THROWS_EXCEPTION(
            DecodeError, decoded<DeckSummary>(wire::without(wire::deckSummary(), "card_count")));
        // A default covers absence, not a wrong type.
        QVERIFY_THROWS_EXCEPTION(
            DecodeError, decoded<DeckSummary>(wire::with(wire::deckSummary(), "note_count", "2")));
        const auto languages = json::decode<QList<Language>>(
            R"([{"code":"ja","name":"Japanese","endonym":"日本語","script":"Jpan"},)"
            R"({"code":"pt","name":"Portuguese","endonym":"português","script":null,"variety":"BR"}])");
        QCOMPARE(languages[0].script, std::optional<QString>("Jpan"));
        QVERIFY(!languages[0].variety);
        QVERIFY(!languages[1].script);
    }

    void noteLinesAndTheirMargin()
    {
        const Note note = decoded<Note>(wire::note());
        QCOMPARE(note.lines.size(), 2);
        const NoteLine &line = note.lines[0];
        QCOMPARE(line.cardId, std::optional<int>(7));
        QCOMPARE(line.media->id, 9);
        QVERIFY(line.annotations[0].edited);
        QCOMPARE(line.annotations[0].deeper[0].level, 2);

        QVERIFY(!decoded<NoteLine>(wire::with(wire::noteLine(), "media", QJsonValue::Null)).media);
        QVERIFY(!decoded<NoteLine>(wire::without(wire::noteLine(), "card_id")).cardId);
        QVERIFY_THROWS_EXCEPTION(DecodeError,
                                 decoded<NoteLine>(wire::without(wire::noteLine(), "annotations")));
        QVERIFY_THROWS_EXCEPTION(DecodeError,
                                 decoded<NoteLine>(wire::without(wire::noteLine(), "state")));
        // An optional picture must still be a whole picture.
        QVERIFY_THROWS_EXCEPTION(
            DecodeError, decoded<NoteLine>(wire::with(wire::noteLine(), "media",
                                                      wire::without(wire::media(), "url"))));
    }

    void lenientRecordsTakeTheirDefaults()
    {
        QCOMPARE(json::decode<Annotation>("{}"), Annotation{});
        QCOMPARE(Annotation{}.kind, "note");
        QCOMPARE(
            json::decode<Annotation>(
                R"({"kind":null,"span":null,"body":null,"term":null,"edited":null,"deeper":null})"),
            Annotation{});
        // Lenient about absence, strict about types.
        QVERIFY_THROWS_EXCEPTION(DecodeError, json::decode<Annotation>(R"({"edited":"yes"})"));
        QVERIFY_THROWS_EXCEPTION(DecodeError,
                                 json::decode<Annotation>(R"({"deeper":[{"level":"2"}]})"));

        QCOMPARE(json::decode<Deeper>(R"({"body":"more"})").level, 1);
        QVERIFY_THROWS_EXCEPTION(DecodeError, json::decode<Answer>("{}"));

        QCOMPARE(json::decode<Byte>("{}"), Byte{});
        const auto lesson = json::decode<Offered>(
            R"({"byte":{"title":"Greetings","phrases":[{"phrase":"Hallo","when":"any time"},{}],)"
            R"("correction":{"wrong":"Guten Nacht"}}})");
        QCOMPARE(lesson.byte.phrases[0].meaning, "");
        QCOMPARE(lesson.byte.phrases[1], Phrase{});
        QCOMPARE(lesson.byte.correction.right, "");

        QCOMPARE(json::decode<Done>(R"({"ok":true,"sent":[1,2]})"), Done{});
        QVERIFY_THROWS_EXCEPTION(DecodeError, json::decode<Done>("[]"));
        // A record without fields still reads every key of the text (and so its syntax), however
        // many there are, through both decoders.
        QCOMPARE(json::decode<Done>("{}"), Done{});
        QCOMPARE(json::decode<Done>(R"({"a":{"b":[{}]},"a":null,"c":"\u00e9","d":-0.5e3})"),
                 Done{});
        QCOMPARE(json::fromValue<Done>(QJsonObject{{"a", 1}, {"b", QJsonArray{}}}), Done{});
        QVERIFY_THROWS_EXCEPTION(DecodeError, json::decode<Done>(R"({"a":{"b":[1,]}})"));
        QVERIFY_THROWS_EXCEPTION(DecodeError, json::decode<Done>(R"({"a":1,})"));
        QVERIFY_THROWS_EXCEPTION(DecodeError, json::fromValue<Done>(QJsonValue("x")));
    }

    void preferencesKeepVoiceKeysAsSent()
    {
        const auto prefs = decoded<Preferences>(wire::preferences());
        QCOMPARE(prefs.voices.value("pt_BR"), "pt-voice");
        QCOMPARE(prefs.voices.value("zhHans"), "zh-v");
        QCOMPARE(prefs.marginAsYouGo, std::optional<bool>(false));
        QVERIFY(!prefs.audio);
        QVERIFY(!decoded<Preferences>(wire::without(wire::preferences(), "margin_as_you_go"))
                     .marginAsYouGo);
        QVERIFY_THROWS_EXCEPTION(DecodeError,
                                 decoded<Preferences>(wire::without(wire::preferences(), "skin")));
        QVERIFY_THROWS_EXCEPTION(DecodeError,
                                 decoded<Preferences>(wire::with(wire::preferences(), "voices",
                                                                 QJsonObject{{"de", 3}})));
    }

    void optionalPartsOfReplies()
    {
        const auto offer = json::decode<VoiceOffer>(
            R"({"audio":true,"languages":[{"code":"de","name":"German","locale":"de-DE","selected":"v1",)"
            R"("voices":[{"id":"v1","name":"Anna","gender":"female","preview_url":"/p/v1"},{"id":"v2","name":"Max"}]},)"
            R"({"code":"fi","name":"Finnish","locale":"fi-FI","selected":"","voices":[],"error":"No voices"}]})");
        QCOMPARE(offer.languages[0].voices[0].previewUrl, std::optional<QString>("/p/v1"));
        QVERIFY(!offer.languages[0].voices[1].gender);
        QCOMPARE(offer.languages[1].error, std::optional<QString>("No voices"));

        const auto reply = json::decode<ImageSearchReply>(
            R"({"query":"dog","results":[{"url":"u","thumb":"t","width":1,"height":2,"title":"","author":"",)"
            R"("licence":"","source_url":"s","origin":"tenor","animated":true}],"sources":{"tenor":true,"giphy":false}})");
        QCOMPARE(reply.results[0].animated, std::optional<bool>(true));
        QVERIFY(reply.sources && reply.sources->tenor && !reply.sources->giphy);
        QVERIFY(!json::decode<ImageSearchReply>(R"({"query":"dog","results":[]})").sources);
        QVERIFY_THROWS_EXCEPTION(DecodeError,
                                 json::decode<ImageSearchReply>(
                                     R"({"query":"dog","results":[],"sources":{"tenor":true}})"));

        QVERIFY_THROWS_EXCEPTION(
            DecodeError, json::decode<Made>("{\"card\":" + wire::bytes(wire::card()) + "}"));
        QVERIFY(!json::decode<ComposeReply>("{}").lines);
        QVERIFY_THROWS_EXCEPTION(DecodeError, json::decode<ComposeReply>(R"({"lines":[1]})"));
    }

    void hashingAgreesWithEquality()
    {
        const Card card = decoded<Card>(wire::card());
        Card reviewed = card;
        reviewed.lastReviewed.reset();
        Card relabelled = card;
        relabelled.examples[0].note = "informal";
        QCOMPARE(qHash(Card(card), 7), qHash(card, 7));
        QVERIFY(qHash(reviewed, 0) != qHash(card, 0));
        QVERIFY(qHash(relabelled, 0) != qHash(card, 0));
        const QSet<Card> cards{card, Card(card), reviewed, relabelled};
        QCOMPARE(cards.size(), 3);
    }
};

QTEST_GUILESS_MAIN(RecordsTest)
#include "tst_records.moc"
