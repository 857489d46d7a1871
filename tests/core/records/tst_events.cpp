// Decoding the four stream event types: each case with its keys, unknown types, the progress
// and reason rules, defaults of "done", and events that do not decode.

#include "records/json.h"
#include "server/events/annotateevent.h"
#include "server/events/batchevent.h"
#include "server/events/cardevent.h"
#include "server/events/extractevent.h"
#include "wire.h"

#include <QtTest>

using namespace orvel;
using json::DecodeError;

namespace {

QByteArray typed(QJsonObject object, const QString &type)
{
    object.insert("type", type);
    return wire::bytes(object);
}

} // namespace

class EventsTest : public QObject {
    Q_OBJECT

private slots:
    void cardEventCases()
    {
        const auto text =
            json::decode<CardEvent>(R"({"type":"progress","field":"translation","value":"dog"})");
        QCOMPARE(text, (CardEvent{
                           .kind = CardEvent::Kind::Text, .field = "translation", .value = "dog"}));

        const auto count =
            json::decode<CardEvent>(R"({"type":"progress","field":"examples","count":3})");
        QCOMPARE(count,
                 (CardEvent{.kind = CardEvent::Kind::Count, .field = "examples", .count = 3}));

        const auto card =
            json::decode<CardEvent>(typed(QJsonObject{{"card", wire::card()}}, "card"));
        QCOMPARE(card.kind, CardEvent::Kind::Card);
        QCOMPARE(card.card.term, "Hund");

        const auto failed = json::decode<CardEvent>(R"({"type":"error","error":"No such word"})");
        QCOMPARE(failed, (CardEvent{.kind = CardEvent::Kind::Failed, .message = "No such word"}));
    }

    void progressPrefersValueOverCount()
    {
        const auto both = json::decode<CardEvent>(
            R"({"type":"progress","field":"examples","value":"x","count":3})");
        QCOMPARE(both.kind, CardEvent::Kind::Text);
        QCOMPARE(both.value, "x");
        // The count is not read at all once a value is there.
        QCOMPARE(
            json::decode<CardEvent>(R"({"type":"progress","field":"f","value":null,"count":2})")
                .kind,
            CardEvent::Kind::Count);
        QCOMPARE(
            json::decode<CardEvent>(R"({"type":"progress","field":"f","value":null,"count":null})"),
            CardEvent{});
    }

    void unknownTypesAreNotErrors()
    {
        QCOMPARE(json::decode<CardEvent>(R"({"type":"heartbeat","anything":[1]})").kind,
                 CardEvent::Kind::Unknown);
        QCOMPARE(json::decode<BatchEvent>(R"({"type":"progress"})").kind,
                 BatchEvent::Kind::Unknown);
        QCOMPARE(json::decode<ExtractEvent>(R"({"type":"card"})").kind,
                 ExtractEvent::Kind::Unknown);
        QCOMPARE(json::decode<AnnotateEvent>(R"({"type":"word"})").kind,
                 AnnotateEvent::Kind::Unknown);
    }

    void undecodableEvents()
    {
        QVERIFY_THROWS_EXCEPTION(DecodeError,
                                 json::decode<CardEvent>(R"({"field":"f","value":"v"})"));
        QVERIFY_THROWS_EXCEPTION(
            DecodeError, json::decode<CardEvent>(R"({"type":"progress","field":"f","value":3})"));
        QVERIFY_THROWS_EXCEPTION(
            DecodeError, json::decode<CardEvent>(R"({"type":"progress","field":"f","count":1.5})"));
        QVERIFY_THROWS_EXCEPTION(
            DecodeError,
            json::decode<CardEvent>(
                typed(QJsonObject{{"card", wire::without(wire::card(), "examples")}}, "card")));
        QVERIFY_THROWS_EXCEPTION(DecodeError, json::decode<CardEvent>(R"({"type":7})"));
        QVERIFY_THROWS_EXCEPTION(DecodeError, json::decode<CardEvent>(R"(["progress"])"));
    }

    void batchEventCases()
    {
        QCOMPARE(json::decode<BatchEvent>(R"({"type":"start","total":4})"),
                 (BatchEvent{.kind = BatchEvent::Kind::Start, .total = 4}));
        QCOMPARE(json::decode<BatchEvent>(R"({"type":"word","index":1,"term":"gehen"})"),
                 (BatchEvent{.kind = BatchEvent::Kind::Word, .index = 1, .term = "gehen"}));
        const auto card = json::decode<BatchEvent>(
            typed(QJsonObject{{"index", 2}, {"card", wire::card(8)}}, "card"));
        QCOMPARE(card.kind, BatchEvent::Kind::Card);
        QCOMPARE(card.index, 2);
        QCOMPARE(card.card.id, 8);
        QVERIFY_THROWS_EXCEPTION(DecodeError,
                                 json::decode<BatchEvent>(R"({"type":"skipped","term":"x"})"));
    }

    void batchReasons_data()
    {
        QTest::addColumn<QByteArray>("keys");
        QTest::addColumn<QString>("reason");
        QTest::newRow("reason") << QByteArray(R"("reason":"duplicate")") << "duplicate";
        QTest::newRow("error only") << QByteArray(R"("error":"timed out")") << "timed out";
        QTest::newRow("both: reason wins") << QByteArray(R"("error":"e","reason":"r")") << "r";
        QTest::newRow("null reason falls back")
            << QByteArray(R"("reason":null,"error":"e")") << "e";
        QTest::newRow("neither") << QByteArray(R"("other":1)") << "";
    }

    void batchReasons()
    {
        QFETCH(QByteArray, keys);
        QFETCH(QString, reason);
        for (const char *type : {"skipped", "failed"}) {
            QByteArray bytes = "{\"index\":3,\"term\":\"Hund\"," + keys + "}";
            bytes = typed(QJsonDocument::fromJson(bytes).object(), type);
            const auto decoded = json::decode<BatchEvent>(bytes);
            QCOMPARE(decoded.kind, qstrcmp(type, "skipped") == 0 ? BatchEvent::Kind::Skipped
                                                                 : BatchEvent::Kind::Failed);
            QCOMPARE(decoded.index, 3);
            QCOMPARE(decoded.term, "Hund");
            QCOMPARE(decoded.reason, reason);
        }
    }

    void extractEventCases()
    {
        QCOMPARE(json::decode<ExtractEvent>(R"({"type":"reading","characters":1200})"),
                 (ExtractEvent{.kind = ExtractEvent::Kind::Reading, .characters = 1200}));
        const auto word =
            json::decode<ExtractEvent>(typed(QJsonObject{{"word", wire::candidate()}}, "word"));
        QCOMPARE(word.kind, ExtractEvent::Kind::Word);
        QCOMPARE(word.word.seenAs, "ging");
        QVERIFY_THROWS_EXCEPTION(
            DecodeError, json::decode<ExtractEvent>(R"({"type":"word","word":{"term":"x"}})"));
    }

    void extractDoneDefaults()
    {
        QCOMPARE(json::decode<ExtractEvent>(R"({"type":"done"})"),
                 ExtractEvent{.kind = ExtractEvent::Kind::Done});
        QCOMPARE(json::decode<ExtractEvent>(
                     R"({"type":"done","summary":null,"words":null,"skipped":null,"unread":null})"),
                 ExtractEvent{.kind = ExtractEvent::Kind::Done});
        const auto full =
            json::decode<ExtractEvent>(typed(QJsonObject{{"summary", "12 words"},
                                                         {"words", QJsonArray{wire::candidate()}},
                                                         {"skipped", 2},
                                                         {"unread", 40}},
                                             "done"));
        QCOMPARE(full.summary, "12 words");
        QCOMPARE(full.words.size(), 1);
        QCOMPARE(full.skipped, 2);
        QCOMPARE(full.unread, 40);
        QVERIFY_THROWS_EXCEPTION(DecodeError,
                                 json::decode<ExtractEvent>(R"({"type":"done","skipped":"2"})"));
    }

    void annotateEventCases()
    {
        QCOMPARE(json::decode<AnnotateEvent>(R"({"type":"start","total":6})"),
                 (AnnotateEvent{.kind = AnnotateEvent::Kind::Start, .total = 6}));
        QCOMPARE(json::decode<AnnotateEvent>(R"({"type":"progress","done":2,"total":6})"),
                 (AnnotateEvent{.kind = AnnotateEvent::Kind::Progress, .total = 6, .done = 2}));

        const auto done = json::decode<AnnotateEvent>(
            typed(QJsonObject{{"note", wire::note()}, {"annotated", 5}}, "done"));
        QCOMPARE(done.kind, AnnotateEvent::Kind::Done);
        QCOMPARE(done.note.lines.size(), 2);
        QCOMPARE(done.annotated, 5);
        QCOMPARE(
            json::decode<AnnotateEvent>(
                typed(QJsonObject{{"note", wire::note()}, {"annotated", QJsonValue::Null}}, "done"))
                .annotated,
            0);
        QVERIFY_THROWS_EXCEPTION(DecodeError,
                                 json::decode<AnnotateEvent>(R"({"type":"done","annotated":1})"));
    }
};

QTEST_GUILESS_MAIN(EventsTest)
#include "tst_events.moc"
