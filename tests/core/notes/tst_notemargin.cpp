// The margin of the note editor against a scripted server: a run read event by event, the
// header's texts, the quiet margin written as the learner goes and the lines it leaves alone,
// stale lines, remarks edited, deeper levels unfolded without asking twice, and cards made from
// lines.
#include "app/appstate.h"
#include "app/timings.h"
#include "editorsuite.h"
#include "library/cardchanges.h"
#include "notereplies.h"
#include "notes/draftjournal.h"
#include "notes/noteeditor.h"
#include "records/json.h"
#include "scriptedserver.h"
#include "server/apiclient.h"
#include "testservices.h"

#include <QDir>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

using namespace orvel;
using namespace notereplies;
using namespace notetests;
using Key = NoteEditor::LineKey;

namespace {

const QString AnnotatePath = QStringLiteral("/api/notes/7/annotate");

QVariantMap remark(const NoteLines &lines, int row, int at)
{
    return lines.data(lines.index(row), NoteLines::RemarksRole).toList().value(at).toMap();
}

QByteArray cardJson(int id, const QByteArray &term)
{
    return R"({"id":)" + QByteArray::number(id) + R"(,"deck_id":3,"term":")" + term +
           R"(","reading":"","part_of_speech":"noun","gender":"der","translation":"dog",
"definition":"","usage_notes":"","examples":[],"related":[],"conjugations":[],"seen":0,
"known":0,"streak":0,"last_reviewed":null,"created_at":"2026-11-01"})";
}

} // namespace

class TestNoteMargin : public notetests::EditorSuite {
    Q_OBJECT
    void marginAsYouGo(bool on)
    {
        Preferences preferences;
        preferences.marginAsYouGo = on;
        m_services->state().storePreferences(preferences);
    }

private slots:
    void init() { setUpEditor(); }
    void cleanup() { tearDownEditor(); }

    void aRunReadEventByEvent()
    {
        const QByteArray translation = remarkJson("translation", "the dog", "Hund");
        const QList<Line> written = {{11, "der Hund", "[" + translation + "]", "der Hund"},
                                     {12, "die Katze", "[]", "die Katze"}};
        const QByteArray done = noteJson(7, {}, written);
        m_server->stream("POST", AnnotatePath,
                         {{sse(R"({"type":"start","total":2})")},
                          {sse(R"({"type":"progress","done":1,"total":2})"), "second"},
                          {sse(R"({"type":"mystery"})"), "second"},
                          {sse(R"({"type":"progress","done":2,"total":2})"), "end"},
                          {sse(R"({"type":"done","annotated":1,"note":)" + done + "}"), "end"}});
        m_server->reply("PATCH", NotePath, 200, noteJson(7, "der Hund", written));
        open({{11, "der Hund"}, {12, "die Katze"}, {13, "  "}});
        NoteEditor &editor = *m_editor;
        QCOMPARE(editor.pendingCount(), 2);
        QCOMPARE(editor.askText(), QStringLiteral("Ask for the margin on these lines"));
        QCOMPARE(editor.askTitle(), QStringLiteral("Annotate 2 lines"));
        QCOMPARE(editor.hint(), QStringLiteral("Ctrl+↩ asks for the margin on 2 lines."));
        QCOMPARE(editor.allAnnotatedText(), QString());

        // Ctrl+Return asks; nothing changed since opening, so nothing is saved first.
        QVERIFY(editor.key(0, int(Key::CommandReturn)));
        QVERIFY(editor.annotating());
        QTRY_COMPARE(editor.progressText(), QStringLiteral("Reading 0 of 2"));
        editor.askForMargin(); // one run at a time
        m_server->open("second");
        QTRY_COMPARE(editor.progressText(), QStringLiteral("Reading 1 of 2"));
        QCOMPARE(countOf(*m_server, "POST", AnnotatePath), 1);
        QCOMPARE(countOf(*m_server, "PATCH", NotePath), 0);
        m_server->open("end");
        QTRY_VERIFY(!editor.annotating());
        QCOMPARE(editor.outcome(), QStringLiteral("1 line annotated."));
        QCOMPARE(editor.progressText(), QString());
        QCOMPARE(editor.pendingCount(), 0);
        QCOMPARE(editor.askText(), QString());
        QCOMPARE(editor.hint(), QString());
        QCOMPARE(
            editor.allAnnotatedText(),
            QStringLiteral("Every line already has a margin. Write them again from the ⋯ menu."));
        const QVariantMap first = remark(*editor.lines(), 0, 0);
        QCOMPARE(first.value("kindLabel").toString(), QStringLiteral("Translation"));
        QCOMPARE(first.value("body").toString(), QStringLiteral("the dog"));
        QCOMPARE(first.value("deeperText").toString(),
                 QStringLiteral("Deeper. Ask why this is so — the rule behind the remark"));
        // The untitled note took its title from the note the run returned, and saves it.
        QCOMPARE(editor.title(), QStringLiteral("der Hund"));
        QTRY_COMPARE(countOf(*m_server, "PATCH", NotePath), 1);
        QCOMPARE(QJsonDocument::fromJson(m_server->lastRequest().body)["title"].toString(),
                 QStringLiteral("der Hund"));
        QVERIFY(editor.key(0, int(Key::Escape)));
        QCOMPARE(editor.outcome(), QString());

        // Everything again: the stream is asked with all lines.
        editor.annotateAll();
        QTRY_VERIFY(!editor.annotating());
        QCOMPARE(QJsonDocument::fromJson(m_server->lastRequest().body)["all"].toBool(), true);
    }

    void aRunThatFailsKeepsTheMargin()
    {
        m_server->stream("POST", AnnotatePath,
                         {{sse(R"({"type":"start","total":1})")},
                          {sse(R"({"type":"error","error":"The writer is out."})")}});
        open({{11, "der Hund", "[" + remarkJson("gloss", "a dog") + "]", "der"}});
        NoteEditor &editor = *m_editor;
        QCOMPARE(editor.askText(), QStringLiteral("Ask for the margin on this line"));
        QCOMPARE(editor.askTitle(), QStringLiteral("Annotate 1 line"));
        QCOMPARE(editor.hint(), QStringLiteral("Ctrl+↩ asks for the margin on this line."));
        editor.askForMargin();
        QTRY_VERIFY(!editor.annotating());
        QCOMPARE(editor.trouble(), QStringLiteral("The writer is out."));
        QCOMPARE(remark(*editor.lines(), 0, 0).value("body").toString(), QStringLiteral("a dog"));

        m_server->reply("POST", AnnotatePath, 402, R"({"error":"No model is set up."})");
        editor.askForMargin();
        QTRY_VERIFY(!editor.annotating());
        QCOMPARE(editor.trouble(), QStringLiteral("No model is set up."));
    }

    void staleLinesAreMarked()
    {
        m_server->reply("PATCH", NotePath, 200, noteJson(7, {}, {{11, "x"}}));
        open({{11, "der Hund", "[" + remarkJson("gloss", "a dog") + "]", "der Hund"}});
        NoteEditor &editor = *m_editor;
        const NoteLines &lines = *editor.lines();
        QCOMPARE(editor.pendingCount(), 0);
        QVERIFY(!lines.data(lines.index(0), NoteLines::StaleRole).toBool());
        editor.edit(0, QStringLiteral("die Hunde"));
        QVERIFY(lines.data(lines.index(0), NoteLines::StaleRole).toBool());
        QVERIFY(lines.data(lines.index(0), NoteLines::PendingRole).toBool());
        QCOMPARE(lines.data(lines.index(0), NoteLines::StaleTextRole).toString(),
                 QStringLiteral("This line changed since the margin was written."));
        QCOMPARE(editor.pendingCount(), 1);
        // Its margin stays until it is asked for again.
        QCOMPARE(remark(lines, 0, 0).value("body").toString(), QStringLiteral("a dog"));
        editor.edit(0, QStringLiteral("der Hund"));
        QCOMPARE(editor.pendingCount(), 0);
    }

    void theMarginAsYouGo()
    {
        marginAsYouGo(true);
        const QByteArray gloss = "[" + remarkJson("gloss", "cat") + "]";
        // 11 has a margin, 12 a stale one, 13 and 14 none; 14 is where the caret will be.
        const QList<Line> stored = {
            {11, "der Hund", "[" + remarkJson("gloss", "dog") + "]", "der Hund"},
            {12, "das Pferd", "[" + remarkJson("gloss", "pony") + "]", "das Pony"},
            {13, "die Katze"},
            {14, "die Maus"}};
        QList<Line> annotated = stored;
        annotated[2] = {13, "die Katze", gloss, "die Katze"};
        m_server->reply("PATCH", NotePath, 200, noteJson(7, {}, stored));
        m_server->reply("POST", AnnotatePath, 500, R"({"error":"The writer is out."})");
        open(stored);
        NoteEditor &editor = *m_editor;
        QSignalSpy saved(&editor, &NoteEditor::saved);
        editor.edit(3, QStringLiteral("die Mau"));
        editor.edit(3, QStringLiteral("die Mäus"));
        QTRY_COMPARE(saved.count(), 1);
        // A failure leaves the line pending and is not shown.
        QTRY_COMPARE(countOf(*m_server, "POST", AnnotatePath), 1);
        QCOMPARE(QJsonDocument::fromJson(m_server->lastRequest().body)["line_id"].toInt(), 13);
        QCOMPARE(editor.trouble(), QString());
        QVERIFY(editor.lines()->pending(2));

        // After the next save it is tried again, and its margin comes.
        m_server->reply("POST", AnnotatePath, 200,
                        R"({"note":)" + noteJson(7, {}, annotated) + "}");
        editor.edit(3, QStringLiteral("die Mäuse"));
        QTRY_COMPARE(saved.count(), 2);
        QTRY_VERIFY(!editor.lines()->pending(2));
        QCOMPARE(remark(*editor.lines(), 2, 0).value("body").toString(), QStringLiteral("cat"));
        QVERIFY(!editor.annotating());
        QCOMPARE(editor.outcome(), QString());
        // Neither the stale line (it has remarks) nor the caret's line were asked for, and
        // nothing else is left to ask: the quiet calls stop.
        QCOMPARE(countOf(*m_server, "POST", AnnotatePath), 2);
        QVERIFY(editor.lines()->pending(1));
        QVERIFY(editor.lines()->pending(3));

        // With the caret elsewhere, the next save makes the next call.
        m_server->reply("PATCH", NotePath, 200, noteJson(7, {}, annotated));
        editor.placeCaret(0);
        editor.edit(3, QStringLiteral("die Maus"));
        editor.placeCaret(0);
        QTRY_COMPARE(saved.count(), 3);
        QTRY_COMPARE(countOf(*m_server, "POST", AnnotatePath), 3);
        QCOMPARE(QJsonDocument::fromJson(m_server->lastRequest().body)["line_id"].toInt(), 14);
    }

    void noQuietMarginWhenItIsOff()
    {
        marginAsYouGo(false);
        m_server->reply("PATCH", NotePath, 200, noteJson(7, {}, {{11, "der Hund"}, {12, "x"}}));
        open({{11, "der Hund"}, {12, "x"}});
        NoteEditor &editor = *m_editor;
        QSignalSpy saved(&editor, &NoteEditor::saved);
        editor.edit(1, QStringLiteral("die Katze"));
        QTRY_COMPARE(saved.count(), 1);
        // A later save stands for "some time later": still no call.
        editor.edit(1, QStringLiteral("die Katzen"));
        QTRY_COMPARE(saved.count(), 2);
        QCOMPARE(countOf(*m_server, "POST", AnnotatePath), 0);
    }

    void remarksEditedInPlace()
    {
        // The server stores the remarks as they were sent.
        const QByteArray edited = "[" + remarkJson("gloss", "a hound", {}, {}, false, true) + "," +
                                  remarkJson("note", "not a cat", {}, {}, false, true) + "]";
        m_server->reply("PATCH", NotePath, 200,
                        noteJson(7, {}, {{11, "der Hund", edited, "der Hund"}}));
        const QByteArray remarks =
            "[" + remarkJson("gloss", "a dog") + "," + remarkJson("caution", "not a cat") + "]";
        open({{11, "der Hund", remarks, "der Hund"}});
        NoteEditor &editor = *m_editor;
        QSignalSpy saved(&editor, &NoteEditor::saved);
        QCOMPARE(editor.remarkHint(), QStringLiteral("Clear it to remove this remark"));
        editor.editRemark(0, 0, QStringLiteral("a hound"));
        QVariantMap first = remark(*editor.lines(), 0, 0);
        QCOMPARE(first.value("body").toString(), QStringLiteral("a hound"));
        QVERIFY(first.value("edited").toBool());
        editor.setRemarkKind(0, 1, QStringLiteral("note"));
        QCOMPARE(remark(*editor.lines(), 0, 1).value("kindLabel").toString(),
                 QStringLiteral("Note"));
        editor.setRemarkKind(0, 1, QStringLiteral("rumour"));
        QCOMPARE(editor.trouble(), QStringLiteral("“rumour” is not a kind of remark."));
        QCOMPARE(remark(*editor.lines(), 0, 1).value("kind").toString(), QStringLiteral("note"));
        QTRY_COMPARE(saved.count(), 1);
        const QJsonArray sent =
            QJsonDocument::fromJson(m_server->lastRequest().body)["lines"][0]["annotations"]
                .toArray();
        QCOMPARE(sent.size(), 2);
        QCOMPARE(sent[0]["body"].toString(), QStringLiteral("a hound"));
        QCOMPARE(sent[0]["edited"].toBool(), true);
        QCOMPARE(sent[1]["kind"].toString(), QStringLiteral("note"));

        // Cleared, it goes.
        editor.editRemark(0, 0, QStringLiteral("  "));
        QCOMPARE(editor.lines()->at(0).annotations.size(), 1);
        QCOMPARE(remark(*editor.lines(), 0, 0).value("body").toString(),
                 QStringLiteral("not a cat"));
        QVERIFY(editor.key(0, int(Key::Undo)));
        QCOMPARE(editor.lines()->at(0).annotations.size(), 2);
    }

    void deeperUnfoldsWhatIsStoredBeforeAsking()
    {
        const QStringList levels = {"A noun of the strong kind.", "Plural: Hunde."};
        m_server->reply("POST", "/api/notes/7/lines/11/deepen", 200,
                        R"({"deeper":{"level":3,"body":"From Old High German.","last":true}})");
        // The save after the new level stores the three levels.
        m_server->reply(
            "PATCH", NotePath, 200,
            noteJson(7, {},
                     {{11, "der Hund",
                       "[" +
                           remarkJson("gloss", "dog", "Hund",
                                      levels + QStringList{"From Old High German."}, true) +
                           "]",
                       "der Hund"}}));
        open(
            {{11, "der Hund", "[" + remarkJson("gloss", "dog", "Hund", levels) + "]", "der Hund"}});
        NoteEditor &editor = *m_editor;
        const auto shown = [&] { return remark(*editor.lines(), 0, 0); };
        QCOMPARE(shown().value("canFold").toBool(), false);
        editor.deeper(0, 0);
        QCOMPARE(shown().value("levels").toStringList(),
                 QStringList({"A noun of the strong kind."}));
        QCOMPARE(shown().value("deeperText").toString(),
                 QStringLiteral("Even deeper. Ask for the register, the regional variation and "
                                "the related forms"));
        QVERIFY(shown().value("canFold").toBool());
        editor.deeper(0, 0);
        editor.lessDeep(0, 0);
        QCOMPARE(shown().value("levels").toStringList().size(), 1);
        editor.deeper(0, 0);
        QCOMPARE(shown().value("levels").toStringList().size(), 2);
        QCOMPARE(m_server->requestCount(), 0);

        // Everything stored is shown: now the server is asked, once.
        editor.deeper(0, 0);
        QVERIFY(shown().value("deepening").toBool());
        editor.deeper(0, 0);
        QTRY_COMPARE(shown().value("levels").toStringList().size(), 3);
        QCOMPARE(countOf(*m_server, "POST", "/api/notes/7/lines/11/deepen"), 1);
        QCOMPARE(QJsonDocument::fromJson(m_server->lastRequest().body)["at"].toInt(), 0);
        QVERIFY(!shown().value("deepening").toBool());
        // The last level ends the offers; the new level is saved with the line.
        QCOMPARE(shown().value("deeperText").toString(), QString());
        editor.deeper(0, 0);
        QTRY_COMPARE(countOf(*m_server, "PATCH", NotePath), 1);
        QCOMPARE(countOf(*m_server, "POST", "/api/notes/7/lines/11/deepen"), 1);
        QCOMPARE(editor.lines()->at(0).annotations.size(), 1);
        QCOMPARE(editor.lines()->at(0).annotations[0].deeper.size(), 3);
        QCOMPARE(
            editor.lessDeepText(),
            QStringLiteral("Less deep. Fold the last answer away — it is kept, not thrown out"));
    }

    void cardsMadeFromLines()
    {
        const QString cardPath = QStringLiteral("/api/notes/7/lines/11/card");
        m_server->reply("POST", cardPath, 200,
                        R"({"card":)" + cardJson(40, "Hund") + R"(,"already":false})");
        open(
            {{11, "der Hund", "[" + remarkJson("translation", "the dog", "Hund") + "]", "der Hund"},
             {12, " "}});
        NoteEditor &editor = *m_editor;
        QSignalSpy added(&CardChanges::shared(), &CardChanges::added);
        QSignalSpy changed(&CardChanges::shared(), &CardChanges::changed);
        QCOMPARE(editor.makeCardText(), QStringLiteral("Make a card from this line"));
        editor.makeCard(1); // a blank line has no word
        editor.makeCard(0);
        QTRY_COMPARE(editor.cardMade(), QStringLiteral("Hund is now a card."));
        QCOMPARE(m_server->requestCount(), 1);
        QCOMPARE(QJsonDocument::fromJson(m_server->lastRequest().body)["term"].toString(),
                 QStringLiteral("Hund"));
        QCOMPARE(added.count(), 1);
        QCOMPARE(added.first().first().value<Card>().id, 40);
        QVERIFY(editor.key(0, int(Key::Escape)));
        QCOMPARE(editor.cardMade(), QString());

        m_server->reply("POST", cardPath, 200,
                        R"({"card":)" + cardJson(40, "Hund") + R"(,"already":true})");
        editor.makeCard(0);
        QTRY_COMPARE(editor.cardMade(), QStringLiteral("Hund was already in the deck."));
        QCOMPARE(changed.count(), 1);
        QCOMPARE(added.count(), 1);

        m_server->reply("POST", cardPath, 422, R"({"error":"That is too long for one card."})");
        editor.makeCard(0);
        QTRY_COMPARE(editor.trouble(), QStringLiteral("That is too long for one card."));
        QCOMPARE(editor.cardMade(), QString());
    }

    void aCardFromALineNotYetSaved()
    {
        m_server->reply("PATCH", NotePath, 200, noteJson(7, {}, {{31, "die Katze"}}));
        m_server->reply("POST", "/api/notes/7/lines/31/card", 200,
                        R"({"card":)" + cardJson(41, "Katze") + R"(,"already":false})");
        open({});
        NoteEditor &editor = *m_editor;
        editor.edit(0, QStringLiteral("die Katze"));
        editor.makeCard(0);
        QTRY_COMPARE(editor.cardMade(), QStringLiteral("Katze is now a card."));
        QCOMPARE(countOf(*m_server, "PATCH", NotePath), 1);
        // No remark names a word yet: the server takes the line's own.
        QVERIFY(!QJsonDocument::fromJson(m_server->lastRequest().body).object().contains("term"));
    }
};

QTEST_GUILESS_MAIN(TestNoteMargin)
#include "tst_notemargin.moc"
