// Decoding rules of the note, lesson, picture, voice and account records, and of the local reply
// records of single calls: lenient records, optional media, dictionaries kept as sent.

#include "records/json.h"
#include "records/records.h"
#include "wire.h"

#include <QtTest>

using namespace orvel;
using json::DecodeError;

class NoteRecordsTest : public QObject {
    Q_OBJECT

private slots:
    void noteDecodesLinesWithTheirMargin()
    {
        const Note note = json::decode<Note>(wire::bytes(wire::note()));
        QCOMPARE(note.deckId, 3);
        QCOMPARE(note.updatedAt, "2024-03-02");
        QCOMPARE(note.lines.size(), 2);
        const NoteLine &line = note.lines[0];
        QCOMPARE(line.noteId, 4);
        QCOMPARE(line.annotatedText, "der Hund");
        QCOMPARE(line.cardId, std::optional<int>(7));
        QVERIFY(line.media);
        QCOMPARE(line.media->id, 9);
        QCOMPARE(line.annotations.size(), 1);
        const Annotation &remark = line.annotations[0];
        QCOMPARE(remark.kind, "gloss");
        QCOMPARE(remark.span, "Hund");
        QVERIFY(remark.edited);
        QCOMPARE(remark.deeper.size(), 1);
        QCOMPARE(remark.deeper[0].level, 2);
        QVERIFY(remark.deeper[0].last);
    }

    void noteLineOptionalAndRequiredKeys()
    {
        const auto noMedia = json::decode<NoteLine>(
            wire::bytes(wire::with(wire::noteLine(), "media", QJsonValue::Null)));
        QVERIFY(!noMedia.media);
        const auto noCard =
            json::decode<NoteLine>(wire::bytes(wire::without(wire::noteLine(), "card_id")));
        QVERIFY(!noCard.cardId);
        QVERIFY_THROWS_EXCEPTION(DecodeError, json::decode<NoteLine>(wire::bytes(
                                                  wire::without(wire::noteLine(), "annotations"))));
        QVERIFY_THROWS_EXCEPTION(DecodeError, json::decode<NoteLine>(wire::bytes(
                                                  wire::without(wire::noteLine(), "state"))));
        // An optional picture must still be a whole picture.
        QVERIFY_THROWS_EXCEPTION(
            DecodeError, json::decode<NoteLine>(wire::bytes(wire::with(
                             wire::noteLine(), "media", wire::without(wire::media(), "url")))));
    }

    void emptyAnnotationTakesItsDefaults()
    {
        const Annotation remark = json::decode<Annotation>("{}");
        QCOMPARE(remark.kind, "note");
        QCOMPARE(remark.span, "");
        QCOMPARE(remark.body, "");
        QCOMPARE(remark.term, "");
        QVERIFY(!remark.edited);
        QVERIFY(remark.deeper.isEmpty());
        QCOMPARE(remark, Annotation{});

        const auto nulled = json::decode<Annotation>(
            R"({"kind":null,"span":null,"body":null,"term":null,"edited":null,"deeper":null})");
        QCOMPARE(nulled, Annotation{});
        // Lenient about absence, strict about types.
        QVERIFY_THROWS_EXCEPTION(DecodeError, json::decode<Annotation>(R"({"edited":"yes"})"));
        QVERIFY_THROWS_EXCEPTION(DecodeError,
                                 json::decode<Annotation>(R"({"deeper":[{"level":"2"}]})"));
    }

    void deeperLevelDefaultsToOne()
    {
        const auto deeper = json::decode<Deeper>(R"({"body":"more"})");
        QCOMPARE(deeper.level, 1);
        QCOMPARE(deeper.body, "more");
        QVERIFY(!deeper.last);
        QCOMPARE(json::decode<Answer>(R"({"deeper":{"level":3,"last":true}})").deeper.level, 3);
        QVERIFY_THROWS_EXCEPTION(DecodeError, json::decode<Answer>("{}"));
    }

    void byteDecodesLeniently()
    {
        const Byte empty = json::decode<Byte>("{}");
        QCOMPARE(empty.correction.wrong, "");
        QCOMPARE(empty.correction.right, "");
        QVERIFY(empty.phrases.isEmpty());
        QCOMPARE(empty, Byte{});

        const auto lesson = json::decode<Offered>(
            R"({"byte":{"title":"Greetings","gist":"hello","phrases":[{"phrase":"Hallo","when":"any time"},{}],)"
            R"("correction":{"wrong":"Guten Nacht"},"remember":"r"}})");
        QCOMPARE(lesson.byte.title, "Greetings");
        QCOMPARE(lesson.byte.explain, "");
        QCOMPARE(lesson.byte.phrases.size(), 2);
        QCOMPARE(lesson.byte.phrases[0].when, "any time");
        QCOMPARE(lesson.byte.phrases[0].meaning, "");
        QCOMPARE(lesson.byte.phrases[1], Phrase{});
        QCOMPARE(lesson.byte.correction.wrong, "Guten Nacht");
        QCOMPARE(lesson.byte.correction.right, "");
    }

    void candidateAndSummaryAreStrict()
    {
        const auto word = json::decode<Candidate>(wire::bytes(wire::candidate()));
        QCOMPARE(word.seenAs, "ging");
        QVERIFY_THROWS_EXCEPTION(DecodeError, json::decode<Candidate>(wire::bytes(
                                                  wire::without(wire::candidate(), "level"))));
        const auto summaries = json::decode<QList<NoteSummary>>(
            R"([{"id":1,"title":"Park","created_at":"a","updated_at":"b","line_count":5,"pending_count":2}])");
        QCOMPARE(summaries[0].lineCount, 5);
        QCOMPARE(summaries[0].pendingCount, 2);
        QVERIFY_THROWS_EXCEPTION(
            DecodeError,
            json::decode<QList<NoteSummary>>(
                R"([{"id":1,"title":"Park","created_at":"a","updated_at":"b","line_count":5}])"));
    }

    void preferencesKeepVoiceKeysAsSent()
    {
        const auto prefs = json::decode<Preferences>(wire::bytes(wire::preferences()));
        QCOMPARE(prefs.voices.value("pt_BR"), "pt-voice");
        QCOMPARE(prefs.voices.value("zhHans"), "zh-v");
        QCOMPARE(prefs.voices.size(), 3);
        QCOMPARE(prefs.rate, 0.9);
        QCOMPARE(prefs.gain, 3.0);
        QVERIFY(prefs.hearOnFlip);
        QCOMPARE(prefs.marginAsYouGo, std::optional<bool>(false));
        QVERIFY(!prefs.audio);
        QVERIFY(!prefs.provider);
    }

    void preferencesOptionalAndRequiredKeys()
    {
        const auto noMargin = json::decode<Preferences>(
            wire::bytes(wire::without(wire::preferences(), "margin_as_you_go")));
        QVERIFY(!noMargin.marginAsYouGo);
        QVERIFY_THROWS_EXCEPTION(DecodeError, json::decode<Preferences>(wire::bytes(
                                                  wire::without(wire::preferences(), "skin"))));
        QVERIFY_THROWS_EXCEPTION(DecodeError, json::decode<Preferences>(wire::bytes(
                                                  wire::without(wire::preferences(), "voices"))));
        QVERIFY_THROWS_EXCEPTION(
            DecodeError, json::decode<Preferences>(wire::bytes(
                             wire::with(wire::preferences(), "voices", QJsonObject{{"de", 3}}))));
    }

    void voiceCatalogue()
    {
        const auto offer = json::decode<VoiceOffer>(
            R"({"audio":true,"languages":[{"code":"de","name":"German","locale":"de-DE","selected":"v1",)"
            R"("voices":[{"id":"v1","name":"Anna","gender":"female","preview_url":"/p/v1"},{"id":"v2","name":"Max"}]},)"
            R"({"code":"fi","name":"Finnish","locale":"fi-FI","selected":"","voices":[],"error":"No voices"}]})");
        QVERIFY(offer.audio);
        QCOMPARE(offer.languages.size(), 2);
        const VoiceOffer::Language &german = offer.languages[0];
        QCOMPARE(german.voices[0].previewUrl, std::optional<QString>("/p/v1"));
        QVERIFY(!german.voices[1].gender);
        QVERIFY(!german.error);
        QCOMPARE(offer.languages[1].error, std::optional<QString>("No voices"));
    }

    void accountRecords()
    {
        const auto user = json::decode<User>(R"({"id":5,"email":"a@b.c","display_name":"Ann"})");
        QCOMPARE(user.displayName, "Ann");
        QVERIFY_THROWS_EXCEPTION(DecodeError, json::decode<User>(R"({"id":5,"email":"a@b.c"})"));
        const auto options =
            json::decode<AuthOptions>(R"({"google":true,"apple":false,"signup":true})");
        QVERIFY(options.google && !options.apple && options.signup);
        QVERIFY_THROWS_EXCEPTION(DecodeError, json::decode<AuthOptions>(R"({"google":true})"));
    }

    void doneReadsAnyObject()
    {
        QCOMPARE(json::decode<Done>("{}"), Done{});
        QCOMPARE(json::decode<Done>(R"({"ok":true,"sent":[1,2]})"), Done{});
        QVERIFY_THROWS_EXCEPTION(DecodeError, json::decode<Done>("[]"));
        QVERIFY_THROWS_EXCEPTION(DecodeError, json::decode<Done>(""));
    }

    void pictureRecords()
    {
        const auto reply = json::decode<ImageSearchReply>(
            R"({"query":"dog","results":[{"url":"u","thumb":"t","width":1,"height":2,"title":"","author":"",)"
            R"("licence":"","source_url":"s","origin":"tenor","animated":true}],"sources":{"tenor":true,"giphy":false}})");
        QCOMPARE(reply.query, "dog");
        QCOMPARE(reply.results[0].sourceUrl, "s");
        QCOMPARE(reply.results[0].animated, std::optional<bool>(true));
        QVERIFY(reply.sources && reply.sources->tenor && !reply.sources->giphy);

        const auto noSources = json::decode<ImageSearchReply>(R"({"query":"dog","results":[]})");
        QVERIFY(!noSources.sources);
        QVERIFY_THROWS_EXCEPTION(DecodeError,
                                 json::decode<ImageSearchReply>(
                                     R"({"query":"dog","results":[],"sources":{"tenor":true}})"));
    }

    void singleCallReplies()
    {
        const auto landed =
            json::decode<Landed>("{\"note\":{\"id\":4,\"title\":\"Lesson\"},\"cards\":[" +
                                 wire::bytes(wire::card()) + "]}");
        QCOMPARE(landed.note.title, "Lesson");
        QCOMPARE(landed.cards.size(), 1);

        const auto made =
            json::decode<Made>("{\"card\":" + wire::bytes(wire::card()) + ",\"already\":true}");
        QVERIFY(made.already);
        QCOMPARE(made.card.term, "Hund");
        QVERIFY_THROWS_EXCEPTION(
            DecodeError, json::decode<Made>("{\"card\":" + wire::bytes(wire::card()) + "}"));

        QCOMPARE(
            json::decode<Reply>("{\"note\":" + wire::bytes(wire::note()) + "}").note.lines.size(),
            2);

        QCOMPARE(json::decode<ComposeReply>(R"({"lines":["a","b"]})").lines,
                 std::optional<QList<QString>>(QList<QString>{"a", "b"}));
        QVERIFY(!json::decode<ComposeReply>("{}").lines);
        QVERIFY_THROWS_EXCEPTION(DecodeError, json::decode<ComposeReply>(R"({"lines":[1]})"));
    }
};

QTEST_GUILESS_MAIN(NoteRecordsTest)
#include "tst_noterecords.moc"
