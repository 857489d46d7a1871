// Two orvel-server processes on one store behind nginx, proxied with the configuration in
// packaging/nginx/: whatever one process writes or starts (a session, a picture, a note, a
// card) is there on the other, talking to each process directly and through nginx; event
// streams pass through nginx whole and as they are written; and when one process stops, nginx
// carries on with the other.
#include "api.h"
#include "chatanswer.h"
#include "nginxprocess.h"
#include "scriptedserver.h"
#include "skipunlessci.h"

#include <condition_variable>
#include <QJsonDocument>
#include <QtEndian>
#include <QTest>
#include <thread>

namespace {

QByteArray png(quint32 w, quint32 h, qsizetype padding = 0)
{
    auto be32 = [](quint32 v) {
        QByteArray b(4, '\0');
        qToBigEndian(v, b.data());
        return b;
    };
    return QByteArray("\x89PNG\r\n\x1a\n", 8) + be32(13) + "IHDR" + be32(w) + be32(h) +
           QByteArray("\x08\x06\x00\x00\x00", 5) + be32(0) + be32(0) + "IEND" + be32(0) +
           QByteArray(padding, '\x01');
}

// A card as a language model streams it, from its examples on kept back until the gate
// "rest" opens.
QList<ScriptedServer::Chunk> streamedCard()
{
    const QString answer = QStringLiteral(
        R"({"term": "Hund", "reading": "hʊnt", "part_of_speech": "noun", "gender": "der", )"
        R"("translation": "dog", "definition": "A domestic animal that barks.", )"
        R"("usage_notes": "", "examples": [{"sentence": "Der Hund bellt.", )"
        R"("translation": "The dog barks."}], "related": [], "conjugations": []})");
    return streamedChatAnswer(answer, answer.indexOf("\"examples\""));
}

} // namespace

class TestServerGroup : public QObject {
    Q_OBJECT

    QTemporaryDir store;
    std::unique_ptr<ServerProcess> one, two;
    std::unique_ptr<NginxProcess> proxy;

    // A learner signed in through nginx, and the same session on each process directly.
    struct Learner {
        std::unique_ptr<Api> front, onOne, onTwo;
    };
    Learner learner(const QString &email)
    {
        Learner l{std::make_unique<Api>(proxy->baseUrl()), std::make_unique<Api>(one->baseUrl()),
                  std::make_unique<Api>(two->baseUrl())};
        l.front->join(email);
        l.onOne->setCookie(l.front->cookie());
        l.onTwo->setCookie(l.front->cookie());
        return l;
    }

private slots:
    void initTestCase()
    {
        if (NginxProcess::executable().isEmpty())
            ORVEL_SKIP_UNLESS_CI("nginx is not installed (scripts/install-deps installs it)");
        QVERIFY(store.isValid());
        // On SQLite the store is a file in the data folder, so both processes use one folder.
        // On PostgreSQL the second is pointed at the first one's database and keeps a data
        // folder of its own: whatever it must share has to be in the database.
        const QStringList shared{"--local", "--data", store.path()};
        one = std::make_unique<ServerProcess>(shared);
        QVERIFY(startServer(*one));
        const QString database = one->database().url();
        two = std::make_unique<ServerProcess>(
            database.isEmpty() ? shared : QStringList{"--local", "--database", database});
        QVERIFY(startServer(*two));
        proxy = std::make_unique<NginxProcess>(QList<QUrl>{one->baseUrl(), two->baseUrl()});
        QVERIFY2(proxy->start(), qPrintable(proxy->errorText()));
    }

    void aSessionHoldsOnEveryProcess()
    {
        const Learner l = learner("session@example.org");
        const qint64 id = l.front->get("/api/auth/me").id();
        QVERIFY(id > 0);
        QCOMPARE(l.onOne->get("/api/auth/me").id(), id);
        QCOMPARE(l.onTwo->get("/api/auth/me").id(), id);

        // Signed up and in on the second process, known to the first.
        Api viaTwo(two->baseUrl());
        const qint64 other = viaTwo.join("other@example.org")["id"].toInteger();
        Api onOne(one->baseUrl());
        onOne.setCookie(viaTwo.cookie());
        QCOMPARE(onOne.get("/api/auth/me").id(), other);

        // Signing out through one process ends the session on the other.
        QCOMPARE(viaTwo.post("/api/auth/logout").status, 200);
        QCOMPARE(onOne.get("/api/auth/me").status, 401);
        QCOMPARE(l.onTwo->get("/api/auth/me").id(), id);
    }

    void failedSignInsCountOnEveryProcess()
    {
        Api viaOne(one->baseUrl()), viaTwo(two->baseUrl());
        viaOne.join("guessed@example.org");
        const QJsonObject wrong{{"email", "guessed@example.org"}, {"password", "not-the-one"}};
        // Failures through the first process use up this client's free tries on that
        // address; the next attempt through the second process has to wait, even with the
        // right password, because both read the same counters from the store.
        for (int i = 0; i < 5; ++i)
            QCOMPARE(viaOne.post("/api/auth/login", wrong).status, 401);
        const QJsonObject right{{"email", "guessed@example.org"}, {"password", "secret-pass"}};
        const Api::Reply refused = viaTwo.post("/api/auth/login", right);
        QCOMPARE(refused.status, 429);
        QVERIFY(!refused.header("Retry-After").isEmpty());
    }

    void aPictureUploadedThroughOneIsServedByTheOther()
    {
        const Learner l = learner("pictures@example.org");
        // Over nginx's default body limit of 1 MB, under the server's 10 MB.
        const QByteArray picture = png(800, 600, 3 * 1024 * 1024);
        const Api::Reply up = l.front->postRaw("/api/media", picture, "image/png");
        QCOMPARE(up.status, 201);
        const QString url = up["url"].toString();
        for (Api *api : {l.onOne.get(), l.onTwo.get(), l.front.get()}) {
            const Api::Reply file = api->get(url);
            QCOMPARE(file.status, 200);
            QCOMPARE(file.body, picture);
        }
        const Api::Reply direct = l.onOne->postRaw("/api/media", png(4, 4), "image/png");
        QCOMPARE(direct.status, 201);
        QCOMPARE(l.onTwo->get(direct["url"].toString()).body, png(4, 4));

        // Over the limit nginx refuses it itself, in the server's words.
        const Api::Reply big =
            l.front->postRaw("/api/media", png(4, 4, 10 * 1024 * 1024), "image/png");
        QCOMPARE(big.status, 413);
        QVERIFY(!big.error().isEmpty());
    }

    void aNoteSavedThroughOneIsReadThroughTheOther()
    {
        const Learner l = learner("notes@example.org");
        const qint64 deck = l.onOne->deck("German")["id"].toInteger();
        const QJsonObject note = l.onOne->note(deck, "Tiere", "der Hund\ndie Katze");
        const QString at = path("/api/notes/%1", note["id"].toInteger());
        QCOMPARE(l.onTwo->get(at).object(), note);

        QJsonArray lines = note["lines"].toArray();
        lines.append(QJsonObject{
            {"text", "das Pferd"}, {"source", ""}, {"kind", ""}, {"annotations", QJsonArray()}});
        const Api::Reply saved =
            l.onTwo->patch(at, QJsonObject{{"title", "Tiere"}, {"lines", lines}});
        QCOMPARE(saved.status, 200);
        QCOMPARE(saved["lines"].toArray().size(), 3);
        QCOMPARE(l.onOne->get(at).object(), saved.object());
        QCOMPARE(l.front->get(at).object(), saved.object());
    }

    void theDeckListFollowsWritesOnTheOtherProcess()
    {
        const Learner l = learner("decks@example.org");
        const qint64 deck = l.onOne->deck("German")["id"].toInteger();
        auto countsOnTwo = [&] {
            const QJsonObject d = l.onTwo->get("/api/decks").array().at(0).toObject();
            return std::pair{d["card_count"].toInt(), d["known_count"].toInt()};
        };
        QCOMPARE(countsOnTwo(), (std::pair{0, 0}));
        const QJsonObject card = l.onOne->card(deck, "Hund");
        QVERIFY(!card.isEmpty());
        QCOMPARE(countsOnTwo(), (std::pair{1, 0}));
        QCOMPARE(l.onOne
                     ->post(path("/api/cards/%1/review", card["id"].toInteger()),
                            QJsonObject{{"known", true}})
                     .status,
                 200);
        QCOMPARE(countsOnTwo(), (std::pair{1, 1}));
    }

    void aCardStreamPassesThroughWhole()
    {
        const Learner l = learner("stream@example.org");
        const qint64 deck = l.front->deck("German")["id"].toInteger();
        QJsonArray words;
        for (const char *term : {"Apfel", "Brot", "Xqzzvvk", "Milch", "apfel"})
            words.append(QJsonObject{{"term", term}, {"source", ""}});
        const Api::Stream s =
            l.front->stream(path("/api/decks/%1/cards/batch", deck), QJsonObject{{"words", words}});
        QCOMPARE(s.status, 200);
        QVERIFY(s.contentType.startsWith("text/event-stream"));
        QCOMPARE(s.types(), (QStringList{"start", "word", "card", "word", "card", "word", "failed",
                                         "word", "card", "word", "skipped", "done"}));
        for (int i = 0; i < 5; ++i)
            QCOMPARE(s.events.at(2 * i + 2)["index"].toInt(), i);
        QStringList terms;
        for (const QJsonValue &c : l.onTwo->get(path("/api/decks/%1", deck))["cards"].toArray())
            terms.append(c["term"].toString());
        terms.sort();
        QCOMPARE(terms, (QStringList{"Apfel", "Brot", "Milch"}));
    }

    void aStreamReachesTheClientAsItIsWritten()
    {
        // The model holds the rest of its answer until the client has seen, through nginx, the
        // card's definition: a proxy that buffered the stream would keep it until the end and
        // the rest would never be asked for. A thread lets the rest go after a minute at most,
        // so a buffering proxy fails the test rather than hanging it.
        ScriptedServer model;
        model.stream("POST", "/v1/chat/completions", streamedCard());
        ServerProcess writer({"--local", "--allow-private-fetch", "--writer", "llm", "--llm-url",
                              model.baseUrl().toString() + "/v1", "--llm-model", "scripted"});
        QVERIFY(startServer(writer));
        NginxProcess front({writer.baseUrl()});
        QVERIFY2(front.start(), qPrintable(front.errorText()));
        Api api(front.baseUrl());
        api.setHeader("Accept-Encoding", "gzip, deflate"); // as Qt's network access sends it
        api.join("held@example.org");
        const qint64 deck = api.deck("German")["id"].toInteger();

        std::mutex lock;
        std::condition_variable done;
        bool finished = false;
        std::atomic<bool> fellBack{false};
        std::thread fallback([&] {
            std::unique_lock held(lock);
            if (!done.wait_for(held, std::chrono::seconds(60), [&] { return finished; })) {
                fellBack = true;
                model.open("rest");
            }
        });
        bool heardBeforeTheRest = false;
        api.watchStreams([&](const QJsonObject &event) {
            if (event["type"] == "progress" && event["field"] == "definition") {
                heardBeforeTheRest = !fellBack;
                model.open("rest");
            }
        });
        const Api::Stream s =
            api.stream(path("/api/decks/%1/cards", deck), QJsonObject{{"input", "Hund"}});
        {
            std::lock_guard held(lock);
            finished = true;
        }
        done.notify_all();
        fallback.join();
        QCOMPARE(s.status, 200);
        QVERIFY2(heardBeforeTheRest, "the definition reached the client only after the writing");
        QCOMPARE(s.types().last(), QStringLiteral("card"));
        QCOMPARE(s.events.last()["card"]["definition"].toString(),
                 QStringLiteral("A domestic animal that barks."));
    }

    void whenOneProcessStopsTheOtherCarriesOn()
    {
        const Learner l = learner("carry-on@example.org");
        const qint64 deck = l.front->deck("German")["id"].toInteger();
        one->stop();
        // Round robin would send every other request to the stopped process: nginx passes
        // each on to the one left, reads and writes alike.
        for (int i = 0; i < 4; ++i) {
            QCOMPARE(l.front->get("/api/decks").status, 200);
            QCOMPARE(l.front
                         ->post(path("/api/decks/%1/notes", deck),
                                QJsonObject{{"title", QString::number(i)}, {"text", "eins"}})
                         .status,
                     201);
        }
        QCOMPARE(l.onTwo->get(path("/api/decks/%1/notes", deck)).array().size(), 4);
    }
};

QTEST_GUILESS_MAIN(TestServerGroup)
#include "tst_group.moc"
