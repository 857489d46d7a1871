#include "chatanswer.h"
#include "scriptedserver.h"
#include "writers/llmwriter.h"
#include "writers/partialjson.h"
#include "writers/writerfactory.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QtTest>

using namespace cardserver;

namespace {

// The model's address, as the writer is configured with it.
QString base(const ScriptedServer &model)
{
    return model.baseUrl().toString() + "/v1";
}

const Languages kGerman{"de", "en"};

// The scripted model runs on loopback, which the writer may reach only when allowed.
AddressPolicy loopbackAllowed()
{
    AddressPolicy policy;
    policy.allowPrivate(true);
    return policy;
}

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
        ScriptedServer model;
        const QString answer = QString::fromUtf8(kCard);
        // The examples are held back until the definition has been reported: the writing ends
        // only if each field was reported as soon as it was there.
        model.stream("POST", "/v1/chat/completions",
                     streamedChatAnswer(answer, answer.indexOf("\"examples\"")));
        LlmWriter writer(base(model), "test-model", "secret", loopbackAllowed());
        QStringList order;
        QHash<QString, int> counts;
        const WrittenCard card = writer.writeCard(kGerman, "Hund",
                                                  {[&](const QString &f, const QString &) {
                                                       order.append(f);
                                                       if (f == "definition")
                                                           model.open("rest");
                                                   },
                                                   [&](const QString &f, int n) {
                                                       order.append(f);
                                                       counts.insert(f, n);
                                                   }});
        QCOMPARE(order, (QStringList{"term", "reading", "part_of_speech", "gender", "translation",
                                     "definition", "examples", "related", "conjugations"}));
        QCOMPARE(counts["examples"], 2);
        QCOMPARE(counts["related"], 1);
        QCOMPARE(counts["conjugations"], 0);

        QCOMPARE(card["translation"].toString(), "dog");
        QCOMPARE(card["usage_notes"].toString(), "");
        QCOMPARE(card["examples"].toArray()[1].toObject(),
                 (QJsonObject{{"sentence", "Ein \"braver\" Hund."},
                              {"translation", "A good dog."},
                              {"note", ""}}));

        const ScriptedServer::Request sent = model.lastRequest();
        QCOMPARE(sent.header("Authorization"), "Bearer secret");
        const QJsonObject request = QJsonDocument::fromJson(sent.body).object();
        QCOMPARE(request["model"].toString(), "test-model");
        QCOMPARE(request["stream"].toBool(), true);
        QCOMPARE(request.value("response_format")["type"].toString(), "json_object");
        const QJsonArray messages = request["messages"].toArray();
        QCOMPARE(messages.size(), 2);
        QCOMPARE(messages[0]["role"].toString(), "system");
        QVERIFY(messages[0]["content"].toString().contains("German"));
        QVERIFY(messages[1]["content"].toString().contains("\"Hund\""));
    }

    void failsPlainlyOnBadAnswers()
    {
        ScriptedServer model;
        LlmWriter writer(base(model) + "/chat/completions", "m", "", loopbackAllowed());
        const auto expect503 = [&](const char *contains) {
            try {
                writer.writeCard(kGerman, "Hund", {});
                QFAIL("a bad answer made a card");
            } catch (const WriterError &e) {
                QCOMPARE(e.status(), 503);
                QVERIFY2(e.message().contains(QLatin1String(contains)), qPrintable(e.message()));
            }
        };
        const auto answer = [&](const char *text) {
            model.stream("POST", "/v1/chat/completions",
                         streamedChatAnswer(QString::fromUtf8(text)));
        };
        answer(R"({"term": "Hund", "translation": "dog", "examples": [)");
        expect503("could not be read");
        answer("I am sorry, I cannot do that.");
        expect503("could not be read");
        answer(R"({"term": "Hund", "translation": ""})");
        expect503("no translation");
        QVERIFY(model.lastRequest().header("Authorization").isEmpty()); // no key, no header

        model.reply("POST", "/v1/chat/completions", 500,
                    R"({"error": {"message": "model not loaded"}})");
        expect503("answered 500"); // what the model's server said stays in the log
        try {
            writer.writeCard(kGerman, "Hund", {});
        } catch (const WriterError &e) {
            QVERIFY2(!e.message().contains("not loaded"), qPrintable(e.message()));
        }

        // A model that stops answering: the writer gives up.
        model.stream("POST", "/v1/chat/completions", {{"data: {}\n\n", "never"}});
        writer.setTimeout(1);
        expect503("unavailable");

        LlmWriter nowhere("http://127.0.0.1:1/v1", "m", "", loopbackAllowed());
        QVERIFY_THROWS_EXCEPTION(WriterError, nowhere.writeCard(kGerman, "Hund", {}));
        QVERIFY_THROWS_EXCEPTION(WriterError, writer.writeCard(kGerman, "  ", {}));
    }

    void refusesAModelOnLoopbackUnlessAllowed()
    {
        ScriptedServer model;
        model.stream("POST", "/v1/chat/completions", streamedChatAnswer(kCard));
        LlmWriter writer(base(model), "m", "", AddressPolicy());
        try {
            writer.writeCard(kGerman, "Hund", {});
            QFAIL("a refused model wrote a card");
        } catch (const WriterError &e) {
            QCOMPARE(e.status(), 503);
            QVERIFY2(e.message().contains("--allow-private-fetch"), qPrintable(e.message()));
            QVERIFY(!e.message().contains("127.0.0.1"));
        }
        QCOMPARE(model.requestCount(), 0);
    }

    void extractsWordsOneByOne()
    {
        ScriptedServer model;
        const QString answer = R"({"words": [{"term": "Hund", "seen_as": "Hunde", "gloss": "dog",
            "sentence": "Die Hunde bellen.", "level": "common"},
            {"term": "bellen", "gloss": "bark", "sentence": "Die Hunde bellen.", "level": "common"},
            {"term": "hund", "gloss": "dog again"}]})";
        // The rest waits until the first word has been reported.
        model.stream("POST", "/v1/chat/completions",
                     streamedChatAnswer(answer, answer.indexOf("{\"term\": \"bellen\"")));
        LlmWriter writer(base(model), "m", "", loopbackAllowed());
        QList<QJsonObject> words;
        const QJsonArray all =
            writer.extract(kGerman, "Die Hunde bellen.", [&](const QJsonObject &c) {
                words.append(c);
                model.open("rest");
            });
        QCOMPARE(all.size(), 2); // "hund" again is a duplicate
        QCOMPARE(words.size(), 2);
        QCOMPARE(words[0]["seen_as"].toString(), "Hunde");
        QCOMPARE(words[1]["seen_as"].toString(), "bellen"); // missing: the term itself
    }

    void writesLessonsMarginsAndCommands()
    {
        ScriptedServer model;
        LlmWriter writer(base(model), "m", "", loopbackAllowed());
        const auto answer = [&](const char *text) {
            model.stream("POST", "/v1/chat/completions",
                         streamedChatAnswer(QString::fromUtf8(text)));
        };
        answer(R"({"title": "Greetings", "gist": "Say hello.", "phrases": [{"phrase": "Hallo",
            "meaning": "hello"}], "correction": {"wrong": "Gute Morgen", "right": "Guten Morgen"}})");
        const QJsonObject byte = writer.byte(kGerman, "greetings");
        QCOMPARE(byte["title"].toString(), "Greetings");
        QCOMPARE(byte["explain"].toString(), "");
        QCOMPARE(byte["phrases"][0]["when"].toString(), "");
        QCOMPARE(byte["correction"]["right"].toString(), "Guten Morgen");

        answer(R"({"annotations": [{"kind": "gloss", "span": "Hund", "body": "dog", "term": "Hund"},
            {"kind": "shout", "span": "bellt", "body": "barks"}, {"kind": "note", "body": ""}]})");
        const QJsonArray notes = writer.annotateLine(kGerman, "Der Hund bellt.", {});
        QCOMPARE(notes.size(), 2);
        QCOMPARE(notes[1]["kind"].toString(), "note"); // an unknown kind becomes a note
        QCOMPARE(notes[1]["term"].toString(), "");

        answer(R"({"level": 1, "body": "Because nouns are capitalised.", "last": false})");
        const QJsonObject deeper = writer.deepen(kGerman, "Der Hund", notes[0].toObject(), 2);
        QCOMPARE(deeper["level"].toInt(), 2);
        QCOMPARE(deeper["last"].toBool(), false);

        answer(R"({"lines": ["Present: ich gehe, du gehst", ""]})");
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
