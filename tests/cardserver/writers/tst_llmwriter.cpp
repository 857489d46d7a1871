#include "writers/llmwriter.h"
#include "writers/partialjson.h"
#include "writers/writerfactory.h"

#include <atomic>
#include <condition_variable>
#include <httplib.h>
#include <mutex>
#include <QJsonArray>
#include <QJsonDocument>
#include <QtTest>
#include <thread>

using namespace cardserver;

namespace {

// A chat-completions endpoint that streams a scripted answer as server-sent events, a few
// characters per event, and remembers what it was sent. It can hold the answer back at a
// character (or before answering at all) until the test releases it, so a test sees what the
// writer reported before the rest was sent.
class ScriptedModel {
public:
    std::string answer; // the JSON text the "model" writes
    int status = 200;   // a non-2xx status answers with errorBody instead
    std::string errorBody;
    int pieceSize = 7;
    size_t holdAt = std::string::npos; // the pieces from this character on wait for release()
    bool stall = false;                // nothing at all is answered before release()
    std::atomic<int> sent{0};          // pieces written so far
    int pieces = 0;
    QJsonObject request;
    std::string authorization;
    std::string path;

    ScriptedModel()
    {
        server.Post(R"(/.*)", [this](const httplib::Request &req, httplib::Response &res) {
            request = QJsonDocument::fromJson(QByteArray::fromStdString(req.body)).object();
            authorization = req.get_header_value("Authorization");
            path = req.path;
            if (stall && !waitForRelease())
                return;
            if (status != 200) {
                res.status = status;
                res.set_content(errorBody, "application/json");
                return;
            }
            sent = 0;
            pieces = int((answer.size() + pieceSize - 1) / pieceSize);
            res.set_chunked_content_provider("text/event-stream", [this](size_t,
                                                                         httplib::DataSink &sink) {
                for (size_t at = 0; at < answer.size(); at += pieceSize) {
                    if (at >= holdAt && at < holdAt + pieceSize && !waitForRelease())
                        return false;
                    const QJsonObject chunk{
                        {"choices",
                         QJsonArray{QJsonObject{
                             {"delta", QJsonObject{{"content", QString::fromStdString(answer.substr(
                                                                   at, pieceSize))}}}}}}};
                    const std::string event =
                        "data: " +
                        QJsonDocument(chunk).toJson(QJsonDocument::Compact).toStdString() + "\n\n";
                    sink.write(event.data(), event.size());
                    ++sent;
                }
                sink.write("data: [DONE]\n\n", 14);
                sink.done();
                return true;
            });
        });
        server.set_keep_alive_timeout(1);
        port = server.bind_to_any_port("127.0.0.1");
        thread = std::thread([this] { server.listen_after_bind(); });
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
        while (!server.is_running() && std::chrono::steady_clock::now() < deadline)
            std::this_thread::yield();
    }
    ~ScriptedModel()
    {
        release();
        server.stop();
        thread.join();
    }
    QString base() const { return QStringLiteral("http://127.0.0.1:%1/v1").arg(port); }
    // The pieces written before the answer was held.
    int sentBeforeHold() const { return int((holdAt + pieceSize - 1) / pieceSize); }
    void release()
    {
        {
            std::lock_guard guard(lock);
            released = true;
        }
        wake.notify_all();
    }

private:
    // False when no release came within half a minute.
    bool waitForRelease()
    {
        std::unique_lock held(lock);
        return wake.wait_for(held, std::chrono::seconds(30), [this] { return released; });
    }

    httplib::Server server;
    std::thread thread;
    int port = 0;
    std::mutex lock;
    std::condition_variable wake;
    bool released = false;
};

const Languages kGerman{"de", "en"};

const char *kCard = "{\"term\": \"Hund\", \"reading\": \"hʊnt\", \"part_of_speech\": \"noun\""
                    ", \"gender\": \"der\", \"translation\": \"dog\", \"definition\": \"A do"
                    "mestic animal that barks.\", \"usage_notes\": \"\", \"examples\": ["
                    "{\"sentence\": \"Der Hund bellt.\", \"translation\": \"The dog bark"
                    "s.\", \"note\": \"\"}, {\"sentence\": \"Ein \\\"braver\\\" Hund.\", \"tran"
                    "slation\": \"A good dog.\"}], \"related\": [{\"word\": \"Katze\", \"tr"
                    "anslation\": \"cat\", \"relation\": \"see also\"}], \"conjugations\":"
                    " []}";

} // namespace

class TestLlmWriter : public QObject {
    Q_OBJECT
private slots:
    void partialJsonReportsMembersAsTheyComplete()
    {
        const QString text = QString::fromUtf8(kCard);
        // However the text is cut, the same members come out, each once, in order.
        for (int step : {1, 2, 3, 5, 17, 1000}) {
            PartialJson p;
            QStringList keys;
            QList<QJsonValue> values;
            p.onMember = [&](const QString &k, const QJsonValue &v) {
                keys.append(k);
                values.append(v);
            };
            for (int at = 0; at < text.size(); at += step)
                p.feed(text.mid(at, step));
            QCOMPARE(keys, (QStringList{"term", "reading", "part_of_speech", "gender",
                                        "translation", "definition", "usage_notes", "examples",
                                        "related", "conjugations"}));
            QCOMPARE(values[0].toString(), "Hund");
            QCOMPARE(values[7].toArray().at(1)["sentence"].toString(), "Ein \"braver\" Hund.");
            QVERIFY(p.finished());
        }

        // A string member is reported at its closing quote, before anything follows it.
        PartialJson p;
        QStringList keys;
        QList<QJsonValue> elements;
        p.onMember = [&](const QString &k, const QJsonValue &) { keys.append(k); };
        p.onElement = [&](const QString &, const QJsonValue &v) { elements.append(v); };
        p.feed("```json\n{\"a\": \"x, }y\"");
        QCOMPARE(keys, QStringList{"a"});
        p.feed(", \"n\": 12");
        QCOMPARE(keys, QStringList{"a"}); // a number may go on
        p.feed(", \"w\": [{\"t\": 1}, {\"t\"");
        QCOMPARE(keys, (QStringList{"a", "n"}));
        QCOMPARE(elements.size(), 1);
        p.feed(": 2}], \"b\": true}");
        QCOMPARE(keys, (QStringList{"a", "n", "w", "b"}));
        QCOMPARE(elements.size(), 2);
        QCOMPARE(elements[1]["t"].toInt(), 2);
    }

    void streamsACardFieldByField()
    {
        ScriptedModel model;
        model.answer = kCard;
        // The examples are held back until the definition has been reported.
        model.holdAt = model.answer.find("\"examples\"");
        LlmWriter writer(model.base(), "test-model", "secret");
        QStringList order;
        QList<int> sentAt; // pieces sent when each field was reported
        QHash<QString, int> counts;
        const WrittenCard card = writer.writeCard(kGerman, "Hund",
                                                  {[&](const QString &f, const QString &) {
                                                       order.append(f);
                                                       sentAt.append(model.sent);
                                                       if (f == "definition")
                                                           model.release();
                                                   },
                                                   [&](const QString &f, int n) {
                                                       order.append(f);
                                                       counts.insert(f, n);
                                                       sentAt.append(model.sent);
                                                   }});
        QCOMPARE(order, (QStringList{"term", "reading", "part_of_speech", "gender", "translation",
                                     "definition", "examples", "related", "conjugations"}));
        // Each field as soon as it was there: the first six before the examples were sent.
        const int held = model.sentBeforeHold();
        for (int i = 0; i < 6; ++i)
            QVERIFY2(sentAt[i] <= held, qPrintable(order[i]));
        QVERIFY(sentAt[6] > held);
        QCOMPARE(counts["examples"], 2);
        QCOMPARE(counts["related"], 1);
        QCOMPARE(counts["conjugations"], 0);

        QCOMPARE(card["translation"].toString(), "dog");
        QCOMPARE(card["usage_notes"].toString(), "");
        QCOMPARE(card["examples"].toArray()[1].toObject(),
                 (QJsonObject{{"sentence", "Ein \"braver\" Hund."},
                              {"translation", "A good dog."},
                              {"note", ""}}));

        QCOMPARE(model.path, "/v1/chat/completions");
        QCOMPARE(model.authorization, "Bearer secret");
        QCOMPARE(model.request["model"].toString(), "test-model");
        QCOMPARE(model.request["stream"].toBool(), true);
        QCOMPARE(model.request.value("response_format")["type"].toString(), "json_object");
        const QJsonArray messages = model.request["messages"].toArray();
        QCOMPARE(messages.size(), 2);
        QCOMPARE(messages[0]["role"].toString(), "system");
        QVERIFY(messages[0]["content"].toString().contains("German"));
        QVERIFY(messages[1]["content"].toString().contains("\"Hund\""));
    }

    void failsPlainlyOnBadAnswers()
    {
        ScriptedModel model;
        LlmWriter writer(model.base() + "/chat/completions", "m", "");
        const auto expect503 = [&](const char *contains) {
            try {
                writer.writeCard(kGerman, "Hund", {});
                QFAIL("a bad answer made a card");
            } catch (const WriterError &e) {
                QCOMPARE(e.status(), 503);
                QVERIFY2(e.message().contains(QLatin1String(contains)), qPrintable(e.message()));
            }
        };
        model.answer = R"({"term": "Hund", "translation": "dog", "examples": [)";
        expect503("could not be read");
        model.answer = "I am sorry, I cannot do that.";
        expect503("could not be read");
        model.answer = R"({"term": "Hund", "translation": ""})";
        expect503("no translation");
        QVERIFY(model.authorization.empty()); // no key, no header

        model.status = 500;
        model.errorBody = R"({"error": {"message": "model not loaded"}})";
        expect503("model not loaded");

        model.status = 200;
        model.answer = kCard;
        model.stall = true; // answers nothing until the writer has given up
        writer.setTimeout(1);
        expect503("unavailable");
        model.release();

        LlmWriter nowhere("http://127.0.0.1:1/v1", "m", "");
        QVERIFY_THROWS_EXCEPTION(WriterError, nowhere.writeCard(kGerman, "Hund", {}));
        QVERIFY_THROWS_EXCEPTION(WriterError, writer.writeCard(kGerman, "  ", {}));
    }

    void extractsWordsOneByOne()
    {
        ScriptedModel model;
        model.answer = R"({"words": [{"term": "Hund", "seen_as": "Hunde", "gloss": "dog",
            "sentence": "Die Hunde bellen.", "level": "common"},
            {"term": "bellen", "gloss": "bark", "sentence": "Die Hunde bellen.", "level": "common"},
            {"term": "hund", "gloss": "dog again"}]})";
        model.holdAt = model.answer.find("{\"term\": \"bellen\"");
        LlmWriter writer(model.base(), "m", "");
        QList<int> sentAt;
        QList<QJsonObject> words;
        const QJsonArray all =
            writer.extract(kGerman, "Die Hunde bellen.", [&](const QJsonObject &c) {
                words.append(c);
                sentAt.append(model.sent);
                model.release();
            });
        QCOMPARE(all.size(), 2); // "hund" again is a duplicate
        QCOMPARE(words.size(), 2);
        QVERIFY(sentAt[0] <= model.sentBeforeHold()); // the first word before the rest was sent
        QCOMPARE(words[0]["seen_as"].toString(), "Hunde");
        QCOMPARE(words[1]["seen_as"].toString(), "bellen"); // missing: the term itself
    }

    void writesLessonsMarginsAndCommands()
    {
        ScriptedModel model;
        LlmWriter writer(model.base(), "m", "");
        model.answer =
            R"({"title": "Greetings", "gist": "Say hello.", "phrases": [{"phrase": "Hallo",
            "meaning": "hello"}], "correction": {"wrong": "Gute Morgen", "right": "Guten Morgen"}})";
        const QJsonObject byte = writer.byte(kGerman, "greetings");
        QCOMPARE(byte["title"].toString(), "Greetings");
        QCOMPARE(byte["explain"].toString(), "");
        QCOMPARE(byte["phrases"][0]["when"].toString(), "");
        QCOMPARE(byte["correction"]["right"].toString(), "Guten Morgen");

        model.answer =
            R"({"annotations": [{"kind": "gloss", "span": "Hund", "body": "dog", "term": "Hund"},
            {"kind": "shout", "span": "bellt", "body": "barks"}, {"kind": "note", "body": ""}]})";
        const QJsonArray notes = writer.annotateLine(kGerman, "Der Hund bellt.", {});
        QCOMPARE(notes.size(), 2);
        QCOMPARE(notes[1]["kind"].toString(), "note"); // an unknown kind becomes a note
        QCOMPARE(notes[1]["term"].toString(), "");

        model.answer = R"({"level": 1, "body": "Because nouns are capitalised.", "last": false})";
        const QJsonObject deeper = writer.deepen(kGerman, "Der Hund", notes[0].toObject(), 2);
        QCOMPARE(deeper["level"].toInt(), 2);
        QCOMPARE(deeper["last"].toBool(), false);

        model.answer = R"({"lines": ["Present: ich gehe, du gehst", ""]})";
        QCOMPARE(writer.compose(kGerman, "conj", "gehen"),
                 QStringList{"Present: ich gehe, du gehst"});
        QVERIFY_THROWS_EXCEPTION(WriterError, writer.compose(kGerman, "dance", "gehen"));
    }

    void factoryChecksItsConfiguration()
    {
        QCOMPARE(makeWriter({})->name(), "dictionary");
        WriterConfig llm;
        llm.kind = "llm";
        QVERIFY_THROWS_EXCEPTION(WriterError, makeWriter(llm)); // no URL, no model
        llm.llmUrl = "ftp://x";
        llm.llmModel = "m";
        QVERIFY_THROWS_EXCEPTION(WriterError, makeWriter(llm));
        llm.llmUrl = "http://127.0.0.1:9/v1";
        QCOMPARE(makeWriter(llm)->name(), "llm");
        WriterConfig odd;
        odd.kind = "oracle";
        try {
            makeWriter(odd);
            QFAIL("an unknown writer was made");
        } catch (const WriterError &e) {
            QVERIFY(e.message().contains("oracle"));
        }
    }
};

QTEST_GUILESS_MAIN(TestLlmWriter)
#include "tst_llmwriter.moc"
