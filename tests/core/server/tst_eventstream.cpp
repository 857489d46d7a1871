#include "awaittask.h"
#include "scriptedserver.h"
#include "server/apiclient.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>
#include <QTest>

using namespace orvel;
using testsupport::await;
using Chunk = ScriptedServer::Chunk;

namespace {

const QByteArray cardJson =
    R"({"id":5,"deck_id":12,"term":"Hund","reading":"hʊnt","part_of_speech":"noun",
"gender":"der","translation":"dog","definition":"","usage_notes":"","examples":[],"related":[],
"conjugations":[],"seen":0,"known":0,"streak":0,"last_reviewed":null,"created_at":"2026-11-01"})";

QByteArray data(const QByteArray &json)
{
    return "data: " + QByteArray(json).replace('\n', ' ') + "\n\n";
}

// Everything a consumer saw: the events in order, then how the stream ended.
template <class Event> struct Outcome {
    QList<Event> events;
    std::exception_ptr error;
};

template <class Event>
QCoro::Task<Outcome<Event>> drain(EventStream<Event> stream, int stopAfter = -1)
{
    Outcome<Event> outcome;
    try {
        while (auto event = co_await stream.next()) {
            outcome.events.append(*event);
            if (outcome.events.size() == stopAfter)
                stream.cancel();
        }
    } catch (...) {
        outcome.error = std::current_exception();
    }
    co_return outcome;
}

template <class Error> Error errorOf(const std::exception_ptr &error)
{
    try {
        std::rethrow_exception(error);
    } catch (const Error &e) {
        return e;
    } catch (...) {
    }
    throw std::runtime_error("unexpected error type");
}

} // namespace

class TestEventStream : public QObject {
    Q_OBJECT
    QTemporaryDir m_dir;

    std::unique_ptr<APIClient> client(const ScriptedServer &server)
    {
        return std::make_unique<APIClient>(server.baseUrl(), m_dir.filePath("cookies"), QString());
    }

private slots:
    void cardEventsArriveInOrder()
    {
        ScriptedServer server;
        server.stream(
            "POST", "/api/decks/12/cards",
            {{data(R"({"type":"progress","field":"translation","value":"dog"})")},
             {"event: progress\n" + data(R"({"type":"progress","field":"examples","count":3})")},
             {": keep-alive\n\n"},
             {data(R"({"type":"celebration","confetti":true})")},
             {data(R"({"type":"card","card":)" + cardJson + "}")}});
        auto api = client(server);
        const auto outcome = await(drain(api->addCardStreaming(12, QStringLiteral("Hund"))));
        QVERIFY(!outcome.error);
        QCOMPARE(outcome.events.size(), 4);
        QCOMPARE(outcome.events[0].kind, CardEvent::Kind::Text);
        QCOMPARE(outcome.events[0].field, QStringLiteral("translation"));
        QCOMPARE(outcome.events[0].value, QStringLiteral("dog"));
        QCOMPARE(outcome.events[1].kind, CardEvent::Kind::Count);
        QCOMPARE(outcome.events[1].count, 3);
        QCOMPARE(outcome.events[2].kind, CardEvent::Kind::Unknown);
        QCOMPARE(outcome.events[3].kind, CardEvent::Kind::Card);
        QCOMPARE(outcome.events[3].card.term, QStringLiteral("Hund"));

        const ScriptedServer::Request request = server.lastRequest();
        QCOMPARE(request.header("Accept"), QByteArray("text/event-stream"));
        QCOMPARE(request.header("Content-Type"), QByteArray("application/json"));
        QCOMPARE(QJsonDocument::fromJson(request.body).object(), (QJsonObject{{"input", "Hund"}}));
    }

    void everyStreamingCallHasItsPathAndBody()
    {
        ScriptedServer server;
        server.stream(
            "POST", "/api/decks/12/extract",
            {{data(R"({"type":"reading","characters":120})")}, {data(R"({"type":"done"})")}});
        server.stream(
            "POST", "/api/decks/12/cards/batch",
            {{data(R"({"type":"start","total":2})")},
             {data(R"({"type":"skipped","index":1,"term":"Katze","error":"already there"})")},
             {data(R"({"type":"done"})")}});
        server.stream("POST", "/api/notes/9/annotate",
                      {{data(R"({"type":"start","total":1})")},
                       {data(R"({"type":"progress","done":1,"total":1})")}});
        auto api = client(server);

        const auto extracted = await(drain(api->extract(12, QStringLiteral("Der Hund schläft."))));
        QCOMPARE(extracted.events.size(), 2);
        QCOMPARE(extracted.events[0].characters, 120);
        QCOMPARE(extracted.events[1].kind, ExtractEvent::Kind::Done);
        QCOMPARE(QJsonDocument::fromJson(server.lastRequest().body).object(),
                 (QJsonObject{{"text", "Der Hund schläft."}}));

        BatchWord hund;
        hund.term = QStringLiteral("Hund");
        hund.source = QStringLiteral("Der Hund schläft.");
        BatchWord katze;
        katze.term = QStringLiteral("Katze");
        const auto batch = await(drain(api->addCards(12, {hund, katze})));
        QCOMPARE(batch.events.size(), 3);
        QCOMPARE(batch.events[1].kind, BatchEvent::Kind::Skipped);
        QCOMPARE(batch.events[1].reason, QStringLiteral("already there"));
        QCOMPARE(QJsonDocument::fromJson(server.lastRequest().body).object(),
                 QJsonDocument::fromJson(R"({"words":[{"term":"Hund","source":"Der Hund schläft."},
                                                      {"term":"Katze","source":""}]})")
                     .object());

        const auto margin = await(drain(api->annotate(9, true)));
        QCOMPARE(margin.events.size(), 2);
        QCOMPARE(margin.events[1].kind, AnnotateEvent::Kind::Progress);
        QCOMPARE(QJsonDocument::fromJson(server.lastRequest().body).object(),
                 (QJsonObject{{"all", true}}));
    }

    void refusedStreamsEndWithTheirError_data()
    {
        QTest::addColumn<int>("status");
        QTest::addColumn<QByteArray>("body");
        QTest::addColumn<QString>("message");
        QTest::newRow("signed out") << 401 << QByteArray() << "You are signed out.";
        QTest::newRow("server words")
            << 404 << QByteArray(R"({"error":"No such deck."})") << "No such deck.";
        QTest::newRow("writer down")
            << 503 << QByteArray("<html>busy</html>") << "The server answered 503.";
    }

    void refusedStreamsEndWithTheirError()
    {
        QFETCH(int, status);
        QFETCH(QByteArray, body);
        QFETCH(QString, message);
        ScriptedServer server;
        // Even a body that looks like events delivers none when the status is a failure.
        server.stream("POST", "/api/decks/12/cards", {{body}}, status,
                      body.startsWith('{') ? "application/json" : "text/html");
        auto api = client(server);
        const auto outcome = await(drain(api->addCardStreaming(12, QStringLiteral("Hund"))));
        QVERIFY(outcome.events.isEmpty());
        const APIError error = errorOf<APIError>(outcome.error);
        QCOMPARE(error.status(), status);
        QCOMPARE(error.message(), message);
    }

    void anUnreadableEventEndsTheStreamAfterTheOthers()
    {
        ScriptedServer server;
        server.stream("POST", "/api/decks/12/cards",
                      {{data(R"({"type":"progress","field":"reading","value":"hʊnt"})")},
                       {data(R"({"type":"card","card":{"id":5}})")}, // a card without its fields
                       {data(R"({"type":"progress","field":"gender","value":"der"})")}});
        auto api = client(server);
        const auto outcome = await(drain(api->addCardStreaming(12, QStringLiteral("Hund"))));
        QCOMPARE(outcome.events.size(), 1);
        QCOMPARE(outcome.events[0].value, QStringLiteral("hʊnt"));
        QCOMPARE(errorOf<APIError>(outcome.error).status(), 0);

        server.stream("POST", "/api/decks/12/cards", {{data("not json")}});
        const auto garbage = await(drain(api->addCardStreaming(12, QStringLiteral("Hund"))));
        QVERIFY(garbage.events.isEmpty());
        QCOMPARE(errorOf<APIError>(garbage.error).status(), 0);
    }

    void aCutConnectionIsATransportFailure()
    {
        ScriptedServer server;
        server.streamThenCut("POST", "/api/decks/12/cards",
                             {{data(R"({"type":"progress","field":"reading","value":"x"})")},
                              {"data: {\"type\":\"prog", "first read"}});
        auto api = client(server);
        auto stream = api->addCardStreaming(12, QStringLiteral("Hund"));
        QVERIFY(await(stream.next()));
        // The connection breaks off in the middle of the next event.
        server.open("first read");
        const auto outcome = await(drain(std::move(stream)));
        QVERIFY(outcome.events.isEmpty());
        QVERIFY(outcome.error);
        QVERIFY_THROWS_EXCEPTION(TransportError, std::rethrow_exception(outcome.error));
    }

    void cancellingEndsQuietlyAndClosesTheConnection()
    {
        ScriptedServer server;
        server.stream("POST", "/api/decks/12/cards",
                      {{data(R"({"type":"progress","field":"examples","count":1})")},
                       {data(R"({"type":"progress","field":"examples","count":2})")},
                       {data(R"({"type":"progress","field":"examples","count":3})"), {}, true}});
        auto api = client(server);
        const auto outcome = await(drain(api->addCardStreaming(12, QStringLiteral("Hund")), 2));
        QCOMPARE(outcome.events.size(), 2);
        QVERIFY(!outcome.error); // a cancellation is never a failure
        QTRY_COMPARE_WITH_TIMEOUT(server.abandonedStreams(), 1, 5000);
    }

    void droppingTheStreamClosesTheConnection()
    {
        ScriptedServer server;
        server.stream("POST", "/api/notes/9/annotate",
                      {{data(R"({"type":"start","total":2})")},
                       {data(R"({"type":"progress","done":1,"total":2})"), {}, true}});
        auto api = client(server);
        {
            auto stream = api->annotate(9, false);
            QTRY_COMPARE(server.requestCount(), 1);
        }
        QTRY_COMPARE_WITH_TIMEOUT(server.abandonedStreams(), 1, 5000);
    }
};

QTEST_GUILESS_MAIN(TestEventStream)
#include "tst_eventstream.moc"
