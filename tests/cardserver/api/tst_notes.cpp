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
        return api
            ->post(QStringLiteral("/api/decks/%1/notes").arg(deck),
                   QJsonObject{{"title", title}, {"text", text}})
            .object();
    }
    static QString notePath(const QJsonObject &note, const char *rest = "")
    {
        return QStringLiteral("/api/notes/%1%2").arg(note.value("id").toInteger()).arg(rest);
    }
    static QJsonArray lines(const QJsonObject &note) { return note.value("lines").toArray(); }
    static QJsonObject line(const QJsonObject &note, int i) { return lines(note).at(i).toObject(); }
    static QJsonObject draft(const QJsonObject &stored)
    {
        return {{"id", stored.value("id")},
                {"text", stored.value("text")},
                {"source", stored.value("source")},
                {"kind", stored.value("kind")},
                {"annotations", stored.value("annotations")}};
    }

private slots:
    void initTestCase()
    {
        QVERIFY(startServer(server));
        api = std::make_unique<Api>(server.baseUrl());
        api->join("notes@example.org");
        deck = api->deck("German").value("id").toInteger();
    }

    void makingAndListing()
    {
        const QJsonObject note = newNote("Market", "Ich habe einen Hund.\n\n  Der Hund schläft.  ");
        QCOMPARE(note.value("title").toString(), QStringLiteral("Market"));
        QCOMPARE(note.value("deck_id").toInteger(), deck);
        QCOMPARE(lines(note).size(), 2);
        const QJsonObject first = line(note, 0);
        for (const char *key : {"id", "note_id", "ordinal", "text", "media", "source", "kind",
                                "annotations", "annotated_text", "state", "card_id", "created_at"})
            QVERIFY2(first.contains(key), key);
        QCOMPARE(first.value("state").toString(), QStringLiteral("blank"));
        QVERIFY(first.value("media").isNull());
        QCOMPARE(line(note, 1).value("text").toString(), QStringLiteral("Der Hund schläft."));

        const QJsonObject empty = newNote("", "");
        QCOMPARE(lines(empty).size(), 0);

        const QJsonArray shelf = api->get(QStringLiteral("/api/decks/%1/notes").arg(deck)).array();
        QCOMPARE(shelf.size(), 2);
        for (const QJsonValue &v : shelf) {
            const QJsonObject n = v.toObject();
            if (n.value("id") == note.value("id")) {
                QCOMPARE(n.value("line_count").toInt(), 2);
                QCOMPARE(n.value("pending_count").toInt(), 2);
            }
        }
    }

    void savingKeepsIdsOrderAndDeletes()
    {
        const QJsonObject note = newNote("Order", "eins\nzwei\ndrei");
        const QJsonObject one = line(note, 0), two = line(note, 1), three = line(note, 2);
        // New order: drei, a new line, eins; zwei is gone.
        const QJsonArray drafts{
            draft(three),
            QJsonObject{
                {"text", "vier"}, {"source", ""}, {"kind", ""}, {"annotations", QJsonArray()}},
            draft(one)};
        const Api::Reply saved =
            api->patch(notePath(note), QJsonObject{{"title", "Reihe"}, {"lines", drafts}});
        QCOMPARE(saved.status, 200);
        const QJsonObject after = saved.object();
        QCOMPARE(after.value("title").toString(), QStringLiteral("Reihe"));
        QCOMPARE(lines(after).size(), 3);
        QCOMPARE(line(after, 0).value("id"), three.value("id"));
        QCOMPARE(line(after, 2).value("id"), one.value("id"));
        QCOMPARE(line(after, 1).value("text").toString(), QStringLiteral("vier"));
        const qint64 fresh = line(after, 1).value("id").toInteger();
        QVERIFY(fresh > 0 && fresh != two.value("id").toInteger());
        for (int i = 0; i < 3; ++i)
            QCOMPARE(line(after, i).value("ordinal").toInt(), i);
        QCOMPARE(api->get(notePath(note)).object(), after);

        QCOMPARE(api->patch(notePath(note), QJsonObject{{"title", "x"}, {"lines", "nope"}}).status,
                 400);
        QCOMPARE(
            api->patch(notePath(note), QJsonObject{{"lines", QJsonArray{QJsonObject{{"id", 1}}}}})
                .status,
            400);
        QCOMPARE(api->get(notePath(note)).object(), after); // a refused save changes nothing
    }

    void marginStreamAndStates()
    {
        const QJsonObject note = newNote("Margin", "Ich habe einen Hund.\nDer Hund schläft.");
        const Api::Stream s = api->stream(notePath(note, "/annotate"), QJsonObject{{"all", false}});
        QCOMPARE(s.status, 200);
        QCOMPARE(s.types(), (QStringList{"start", "progress", "progress", "done"}));
        QCOMPARE(s.events.at(0).value("total").toInt(), 2);
        QCOMPARE(s.events.at(1).value("done").toInt(), 1);
        QCOMPARE(s.events.at(2).value("done").toInt(), 2);
        QCOMPARE(s.events.at(2).value("total").toInt(), 2);
        const QJsonObject done = s.events.last();
        const QJsonObject annotated = done.value("note").toObject();
        QCOMPARE(done.value("annotated").toInt(), 2);
        QCOMPARE(line(annotated, 0).value("state").toString(), QStringLiteral("annotated"));
        QCOMPARE(line(annotated, 0).value("annotated_text").toString(),
                 QStringLiteral("Ich habe einen Hund."));
        const QJsonObject remark =
            line(annotated, 0).value("annotations").toArray().first().toObject();
        for (const char *key : {"kind", "span", "body", "term", "edited", "deeper"})
            QVERIFY2(remark.contains(key), key);

        // Changing a line's text makes its margin stale; nothing pending is left after a run.
        QJsonObject changed = draft(line(annotated, 1));
        changed["text"] = "Der Hund bellt.";
        const QJsonObject saved =
            api->patch(notePath(note),
                       QJsonObject{{"title", "Margin"},
                                   {"lines", QJsonArray{draft(line(annotated, 0)), changed}}})
                .object();
        QCOMPARE(line(saved, 0).value("state").toString(), QStringLiteral("annotated"));
        QCOMPARE(line(saved, 1).value("state").toString(), QStringLiteral("stale"));
        QCOMPARE(line(saved, 1).value("annotations"), line(annotated, 1).value("annotations"));
        for (const QJsonValue &v :
             api->get(QStringLiteral("/api/decks/%1/notes").arg(deck)).array())
            if (v.toObject().value("id") == note.value("id"))
                QCOMPARE(v.toObject().value("pending_count").toInt(), 1);

        const Api::Stream again =
            api->stream(notePath(note, "/annotate"), QJsonObject{{"all", false}});
        QCOMPARE(again.events.first().value("total").toInt(), 1);
        QCOMPARE(line(again.events.last().value("note").toObject(), 1).value("state").toString(),
                 QStringLiteral("annotated"));
        const Api::Stream none =
            api->stream(notePath(note, "/annotate"), QJsonObject{{"all", false}});
        QCOMPARE(none.types(), (QStringList{"start", "done"}));
        const Api::Stream all =
            api->stream(notePath(note, "/annotate"), QJsonObject{{"all", true}});
        QCOMPARE(all.events.first().value("total").toInt(), 2);
    }

    void oneLineMargin()
    {
        const QJsonObject note = newNote("One", "Die Katze schläft.\nDer Baum ist grün.");
        const qint64 second = line(note, 1).value("id").toInteger();
        const Api::Reply r =
            api->post(notePath(note, "/annotate"), QJsonObject{{"line_id", second}});
        QCOMPARE(r.status, 200);
        const QJsonObject after = r.object().value("note").toObject();
        QCOMPARE(line(after, 0).value("state").toString(), QStringLiteral("blank"));
        QCOMPARE(line(after, 1).value("state").toString(), QStringLiteral("annotated"));
        QCOMPARE(api->post(notePath(note, "/annotate"), QJsonObject{{"line_id", 987654}}).status,
                 404);
    }

    void deeperNeedsALanguageModel()
    {
        const QJsonObject note = newNote("Deep", "Ich habe einen Hund.");
        const QJsonObject annotated = api->post(notePath(note, "/annotate"),
                                                QJsonObject{{"line_id", line(note, 0).value("id")}})
                                          .object()
                                          .value("note")
                                          .toObject();
        const QString path = QStringLiteral("/api/notes/%1/lines/%2/deepen")
                                 .arg(note.value("id").toInteger())
                                 .arg(line(annotated, 0).value("id").toInteger());
        const Api::Reply refused = api->post(path, QJsonObject{{"at", 0}});
        QCOMPARE(refused.status, 503);
        QVERIFY(refused.error().contains("--writer llm"));
        QCOMPARE(api->post(path, QJsonObject{{"at", 7}}).status, 404);
    }

    void cardFromALine()
    {
        const QJsonObject note = newNote("Cards", "Der Vogel singt.");
        const QString path = QStringLiteral("/api/notes/%1/lines/%2/card")
                                 .arg(note.value("id").toInteger())
                                 .arg(line(note, 0).value("id").toInteger());
        const Api::Reply made = api->post(path, QJsonObject{{"term", "Vogel"}});
        QCOMPARE(made.status, 200);
        QCOMPARE(made.object().value("already").toBool(true), false);
        const QJsonObject card = made.object().value("card").toObject();
        QCOMPARE(card.value("term").toString(), QStringLiteral("Vogel"));
        QVERIFY(card.value("translation").toString().contains("bird"));
        QCOMPARE(line(api->get(notePath(note)).object(), 0).value("card_id"), card.value("id"));

        const Api::Reply again = api->post(path, QJsonObject{{"term", "vogel"}});
        QCOMPARE(again.object().value("already").toBool(), true);
        QCOMPARE(again.object().value("card").toObject().value("id"), card.value("id"));
    }

    void composeLines()
    {
        const QJsonObject note = newNote("Slash", "gehen");
        const Api::Reply conj =
            api->post(notePath(note, "/compose"), QJsonObject{{"kind", "conj"}, {"term", "gehen"}});
        QCOMPARE(conj.status, 200);
        const QJsonArray lines = conj.object().value("lines").toArray();
        QVERIFY(!lines.isEmpty());
        QVERIFY(QJsonDocument(lines).toJson().contains("ging"));
        const Api::Reply hook = api->post(notePath(note, "/compose"),
                                          QJsonObject{{"kind", "mnemonic"}, {"term", "gehen"}});
        QCOMPARE(hook.status, 503);
        QVERIFY(hook.error().contains("language model"));
        QCOMPARE(
            api->post(notePath(note, "/compose"), QJsonObject{{"kind", "dance"}, {"term", "gehen"}})
                .status,
            422);
    }

    void deletingANote()
    {
        const QJsonObject note = newNote("Bye", "tschüss");
        QCOMPARE(api->del(notePath(note)).status, 204);
        QCOMPARE(api->get(notePath(note)).status, 404);
        QCOMPARE(api->del(notePath(note)).status, 404);
    }
};

QTEST_GUILESS_MAIN(TestNotes)
#include "tst_notes.moc"
