// Limits on what one account makes the server do, over HTTP against a scripted language model:
// writing streams running at once, model calls a minute, and the size of what goes into a
// prompt (a word refused when too long, a pasted text cut to what is read); and what a failing
// model said reaches the log, not the learner.
#include "api.h"
#include "webserver.h"

#include <QJsonDocument>
#include <QTest>
#include <thread>

namespace {

// A chat-completions endpoint that answers every request with one card, streamed, once it is
// let go; it counts the requests and keeps the size of the last one.
class ScriptedModel {
public:
    ScriptedModel()
    {
        m_web.routes().Post("/v1/chat/completions", [this](const httplib::Request &req,
                                                           httplib::Response &res) {
            ++m_asked;
            m_lastSize = int(req.body.size());
            if (m_failing) {
                res.status = 500;
                res.set_content(R"({"error": {"message": "cannot open /srv/models/m.gguf on )"
                                R"(10.1.2.3: permission denied"}})",
                                "application/json");
                return;
            }
            res.set_chunked_content_provider("text/event-stream", [this](size_t,
                                                                         httplib::DataSink &sink) {
                while (m_held && !m_web.stopping())
                    std::this_thread::sleep_for(std::chrono::milliseconds(5));
                const QJsonObject chunk{
                    {"choices",
                     QJsonArray{QJsonObject{
                         {"delta", QJsonObject{{"content", R"({"term": "Hund", "translation": )"
                                                           R"("dog", "words": []})"}}}}}}};
                const std::string event =
                    "data: " + QJsonDocument(chunk).toJson(QJsonDocument::Compact).toStdString() +
                    "\n\ndata: [DONE]\n\n";
                sink.write(event.data(), event.size());
                sink.done();
                return true;
            });
        });
    }

    QStringList arguments() const
    {
        return {"--local",        "--writer",    "llm", "--llm-url",
                m_web.url("/v1"), "--llm-model", "m",   "--allow-private-fetch"};
    }
    void hold(bool held) { m_held = held; }
    // Answers 500 with an error that names a file and an address.
    void fail(bool failing) { m_failing = failing; }
    int asked() const { return m_asked; }
    int lastSize() const { return m_lastSize; }

private:
    WebServer m_web;
    std::atomic<bool> m_held{false};
    std::atomic<bool> m_failing{false};
    std::atomic<int> m_asked{0};
    std::atomic<int> m_lastSize{0};
};

} // namespace

class TestAccountLimits : public QObject {
    Q_OBJECT

private slots:
    void streamsAndModelCallsPerAccount()
    {
        ScriptedModel model;
        ServerProcess server(model.arguments() + QStringList{"--streams-per-account", "2",
                                                             "--llm-calls-per-minute", "3"});
        QVERIFY(startServer(server));
        Api api(server.baseUrl());
        api.join("ola@example.org");
        const qint64 deck = api.deck().value("id").toInteger();
        const QString cards = path("/api/decks/%1/cards", deck);

        model.hold(true);
        QList<Api::Stream> held(2);
        std::vector<std::thread> writers;
        for (int i = 0; i < 2; ++i)
            writers.emplace_back([&, i] {
                Api same(server.baseUrl());
                same.setCookie(api.cookie());
                held[i] = same.stream(cards, QJsonObject{{"input", "Hund"}});
            });
        QTRY_COMPARE_WITH_TIMEOUT(model.asked(), 2, 20000);

        const Api::Stream third = api.stream(cards, QJsonObject{{"input", "Katze"}});
        QCOMPARE(third.status, 429);
        QVERIFY2(third.raw.contains("You already have 2 writing jobs running"), third.raw);
        QCOMPARE(model.asked(), 2);

        model.hold(false);
        for (std::thread &t : writers)
            t.join();
        for (const Api::Stream &s : held) {
            QCOMPARE(s.status, 200);
            QVERIFY(s.types().contains("card"));
        }

        // The slots came back with the jobs' ends; this is the account's third model call.
        const Api::Stream again = api.stream(cards, QJsonObject{{"input", "Maus"}});
        QCOMPARE(again.status, 200);
        const QJsonObject card = again.events.last().value("card").toObject();
        QVERIFY(card.value("id").toInteger() > 0);

        // A fourth within the minute is refused before the model is asked.
        const Api::Reply fourth =
            api.post(path("/api/cards/%1/regenerate", card.value("id").toInteger()));
        QCOMPARE(fourth.status, 429);
        QVERIFY2(fourth.error().contains("language model 3 times"), qPrintable(fourth.error()));
        QCOMPARE(model.asked(), 3);

        // Another account has its own share.
        Api other(server.baseUrl());
        other.join("per@example.org");
        const Api::Stream theirs =
            other.stream(path("/api/decks/%1/cards", other.deck().value("id").toInteger()),
                         QJsonObject{{"input", "Hund"}});
        QCOMPARE(theirs.status, 200);
        QVERIFY(theirs.types().contains("card"));
    }

    void aFailingModelsWordsStayInTheLog()
    {
        ScriptedModel model;
        model.fail(true);
        ServerProcess server(model.arguments());
        QVERIFY(startServer(server));
        Api api(server.baseUrl());
        api.join("rae@example.org");
        const qint64 deck = api.deck().value("id").toInteger();
        const Api::Stream written =
            api.stream(path("/api/decks/%1/cards", deck), QJsonObject{{"input", "Hund"}});
        QCOMPARE(written.status, 200);
        QCOMPARE(written.events.last().value("type").toString(), QStringLiteral("error"));
        const QString shown = written.events.last().value("error").toString();
        QVERIFY2(shown.contains("answered 500"), qPrintable(shown));
        const Api::Reply lesson =
            api.post(path("/api/decks/%1/byte", deck), QJsonObject{{"topic", "greetings"}});
        QCOMPARE(lesson.status, 503);
        for (const QString &text : {shown, lesson.error()})
            for (const char *secret : {"/srv/models", "10.1.2.3", "127.0.0.1", "permission"})
                QVERIFY2(!text.contains(secret), qPrintable(text));
        QTRY_VERIFY(server.log().contains("/srv/models/m.gguf"));
    }

    void promptsAreCapped()
    {
        ScriptedModel model;
        ServerProcess server(model.arguments());
        QVERIFY(startServer(server));
        Api api(server.baseUrl());
        api.join("quin@example.org");
        const qint64 deck = api.deck().value("id").toInteger();
        const qint64 note = api.note(deck, "Notes", "Der Hund").value("id").toInteger();

        // A word for a command or a lesson's topic is refused whole, before the model is asked.
        const Api::Reply word =
            api.post(path("/api/notes/%1/compose", note),
                     QJsonObject{{"kind", "conj"}, {"term", QString(300, 'a')}});
        QCOMPARE(word.status, 422);
        QVERIFY2(word.error().contains("too long"), qPrintable(word.error()));
        const Api::Reply topic =
            api.post(path("/api/decks/%1/byte", deck), QJsonObject{{"topic", QString(600, 'a')}});
        QCOMPARE(topic.status, 422);
        QCOMPARE(model.asked(), 0);

        // A pasted text is read up to its limit; the rest is reported unread.
        const Api::Stream read = api.stream(path("/api/decks/%1/extract", deck),
                                            QJsonObject{{"text", QString(30'000, 'a')}});
        QCOMPARE(read.status, 200);
        QCOMPARE(read.events.last().value("unread").toInt(), 10'000);
        QCOMPARE(model.asked(), 1);
        QVERIFY(model.lastSize() > 20'000 && model.lastSize() < 25'000);
    }
};

QTEST_GUILESS_MAIN(TestAccountLimits)
#include "tst_accountlimits.moc"
