// Notes over HTTP: making and saving line lists, the margin's states, the margin stream and
// the one-line margin, deeper levels, cards from lines and slash-command lines.
#include "api.h"

#include <QJsonDocument>
#include <QTest>

class TestNotes : public QObject {
    Q_OBJECT

    ServerProcess server{{"--local"}};
    std::unique_ptr<Api> api;
    qint64 deck = 0;

    QJsonObject newNote(const QString &title, const QString &text)
    {
        return api->note(deck, title, text);
    }
    static QString notePath(const QJsonObject &note, const char *rest = "")
    {
        return path("/api/notes/%1%2", note["id"].toInteger(), rest);
    }
    static QJsonObject line(const QJsonObject &note, int i) { return note["lines"][i].toObject(); }
    static QJsonObject draft(const QJsonObject &stored)
    {
        return {{"id", stored["id"]},
                {"text", stored["text"]},
                {"source", stored["source"]},
                {"kind", stored["kind"]},
                {"annotations", stored["annotations"]}};
    }
    int pendingIn(const QJsonObject &note)
    {
        for (const QJsonValue &n : api->get(path("/api/decks/%1/notes", deck)).array())
            if (n["id"] == note["id"])
                return n["pending_count"].toInt();
        return -1;
    }

private slots:
    void initTestCase()
    {
        QVERIFY(startServer(server));
        api = std::make_unique<Api>(server.baseUrl());
        api->join("notes@example.org");
        deck = api->deck("German")["id"].toInteger();
    }

    void makingSavingAndDeleting()
    {
        const QJsonObject note = newNote("Order", "eins\n\n  zwei  \ndrei");
        QCOMPARE(note["deck_id"].toInteger(), deck);
        QCOMPARE(note["lines"].toArray().size(), 3); // blank lines are not lines
        QCOMPARE(line(note, 0)["state"].toString(), QStringLiteral("blank"));
        QVERIFY(line(note, 0)["media"].isNull());
        QCOMPARE(line(note, 1)["text"].toString(), QStringLiteral("zwei"));
        QCOMPARE(pendingIn(note), 3);
        QCOMPARE(newNote("", "")["lines"].toArray().size(), 0);

        // New order: drei, a new line, eins; zwei is gone.
        const QJsonObject one = line(note, 0), two = line(note, 1), three = line(note, 2);
        const QJsonArray drafts{
            draft(three),
            QJsonObject{
                {"text", "vier"}, {"source", ""}, {"kind", ""}, {"annotations", QJsonArray()}},
            draft(one)};
        const Api::Reply saved =
            api->patch(notePath(note), QJsonObject{{"title", "Reihe"}, {"lines", drafts}});
        QCOMPARE(saved.status, 200);
        const QJsonObject after = saved.object();
        QCOMPARE(after["title"].toString(), QStringLiteral("Reihe"));
        QCOMPARE(line(after, 0)["id"], three["id"]);
        QCOMPARE(line(after, 2)["id"], one["id"]);
        const qint64 fresh = line(after, 1)["id"].toInteger();
        QVERIFY(fresh > 0 && fresh != two["id"].toInteger());
        for (int i = 0; i < 3; ++i)
            QCOMPARE(line(after, i)["ordinal"].toInt(), i);
        QCOMPARE(api->get(notePath(note)).object(), after);

        QCOMPARE(api->patch(notePath(note), QJsonObject{{"title", "x"}, {"lines", "nope"}}).status,
                 400);
        QCOMPARE(
            api->patch(notePath(note), QJsonObject{{"lines", QJsonArray{QJsonObject{{"id", 1}}}}})
                .status,
            400);
        QCOMPARE(api->get(notePath(note)).object(), after); // a refused save changes nothing

        QCOMPARE(api->del(notePath(note)).status, 204);
        QCOMPARE(api->get(notePath(note)).status, 404);
        QCOMPARE(api->del(notePath(note)).status, 404);
    }

    void marginStreamAndStates()
    {
        const QJsonObject note = newNote("Margin", "Ich habe einen Hund.\nDer Hund schläft.");
        const Api::Stream s = api->stream(notePath(note, "/annotate"), QJsonObject{{"all", false}});
        QCOMPARE(s.status, 200);
        QCOMPARE(s.types(), (QStringList{"start", "progress", "progress", "done"}));
        QCOMPARE(s.events.at(0)["total"].toInt(), 2);
        QCOMPARE(s.events.at(1)["done"].toInt(), 1);
        QCOMPARE(s.events.at(2)["done"].toInt(), 2);
        const QJsonObject done = s.events.last();
        const QJsonObject annotated = done["note"].toObject();
        QCOMPARE(done["annotated"].toInt(), 2);
        QCOMPARE(line(annotated, 0)["state"].toString(), QStringLiteral("annotated"));
        QCOMPARE(line(annotated, 0)["annotated_text"].toString(),
                 QStringLiteral("Ich habe einen Hund."));

        // Changing a line's text makes its margin stale; nothing pending is left after a run.
        QJsonObject changed = draft(line(annotated, 1));
        changed["text"] = "Der Hund bellt.";
        const QJsonObject saved =
            api->patch(notePath(note),
                       QJsonObject{{"title", "Margin"},
                                   {"lines", QJsonArray{draft(line(annotated, 0)), changed}}})
                .object();
        QCOMPARE(line(saved, 0)["state"].toString(), QStringLiteral("annotated"));
        QCOMPARE(line(saved, 1)["state"].toString(), QStringLiteral("stale"));
        QCOMPARE(line(saved, 1)["annotations"], line(annotated, 1)["annotations"]);
        QCOMPARE(pendingIn(note), 1);

        const auto annotate = [&](bool all) {
            return api->stream(notePath(note, "/annotate"), QJsonObject{{"all", all}});
        };
        const Api::Stream again = annotate(false);
        QCOMPARE(again.events.first()["total"].toInt(), 1);
        QCOMPARE(line(again.events.last()["note"].toObject(), 1)["state"].toString(),
                 QStringLiteral("annotated"));
        QCOMPARE(annotate(false).types(), (QStringList{"start", "done"}));
        QCOMPARE(annotate(true).events.first()["total"].toInt(), 2);
    }

    void oneLineMarginAndDeeper()
    {
        const QJsonObject note = newNote("One", "Die Katze schläft.\nDer Baum ist grün.");
        const qint64 second = line(note, 1)["id"].toInteger();
        const Api::Reply r =
            api->post(notePath(note, "/annotate"), QJsonObject{{"line_id", second}});
        QCOMPARE(r.status, 200);
        const QJsonObject after = r["note"].toObject();
        QCOMPARE(line(after, 0)["state"].toString(), QStringLiteral("blank"));
        QCOMPARE(line(after, 1)["state"].toString(), QStringLiteral("annotated"));
        QCOMPARE(api->post(notePath(note, "/annotate"), QJsonObject{{"line_id", 987654}}).status,
                 404);

        // Deeper levels need a language model.
        const QString deepen =
            path("/api/notes/%1/lines/%2/deepen", note["id"].toInteger(), second);
        const Api::Reply refused = api->post(deepen, QJsonObject{{"at", 0}});
        QCOMPARE(refused.status, 503);
        QVERIFY(refused.error().contains("--writer llm"));
        QCOMPARE(api->post(deepen, QJsonObject{{"at", 7}}).status, 404);
    }

    void cardFromALine()
    {
        const QJsonObject note = newNote("Cards", "Der Vogel singt.");
        const QString card = path("/api/notes/%1/lines/%2/card", note["id"].toInteger(),
                                  line(note, 0)["id"].toInteger());
        const Api::Reply made = api->post(card, QJsonObject{{"term", "Vogel"}});
        QCOMPARE(made.status, 200);
        QCOMPARE(made["already"].toBool(true), false);
        QCOMPARE(made["card"]["term"].toString(), QStringLiteral("Vogel"));
        QVERIFY(made["card"]["translation"].toString().contains("bird"));
        QCOMPARE(line(api->get(notePath(note)).object(), 0)["card_id"], made["card"]["id"]);

        const Api::Reply again = api->post(card, QJsonObject{{"term", "vogel"}});
        QCOMPARE(again["already"].toBool(), true);
        QCOMPARE(again["card"]["id"], made["card"]["id"]);
    }

    void composeLines()
    {
        const QJsonObject note = newNote("Slash", "gehen");
        const auto compose = [&](const char *kind) {
            return api->post(notePath(note, "/compose"),
                             QJsonObject{{"kind", kind}, {"term", "gehen"}});
        };
        const Api::Reply conj = compose("conj");
        QCOMPARE(conj.status, 200);
        QVERIFY(QJsonDocument(conj["lines"].toArray()).toJson().contains("ging"));
        const Api::Reply hook = compose("mnemonic");
        QCOMPARE(hook.status, 503);
        QVERIFY(hook.error().contains("language model"));
        QCOMPARE(compose("dance").status, 422);
    }
};

QTEST_GUILESS_MAIN(TestNotes)
#include "tst_notes.moc"
