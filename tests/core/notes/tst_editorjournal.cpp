// The note editor and the draft journal: lines the server has not acknowledged are on disk,
// acknowledged ones are not, lines journaled on this computer come back when their note is
// opened and are saved, and the open note is claimed from the background replay.
#include "app/appstate.h"
#include "app/timings.h"
#include "awaittask.h"
#include "editorsuite.h"
#include "notereplies.h"
#include "notes/draftjournal.h"
#include "notes/journalclaim.h"
#include "notes/journalreplay.h"
#include "notes/noteeditor.h"
#include "notes/quitflush.h"
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

namespace {

QStringList journaledTexts(int noteId)
{
    QStringList texts;
    if (const auto entry = DraftJournal().read(noteId))
        for (const Draft &draft : entry->drafts)
            texts.append(draft.text);
    return texts;
}

} // namespace

class TestEditorJournal : public notetests::EditorSuite {
    Q_OBJECT

private slots:
    void init() { setUpEditor(); }
    void cleanup() { tearDownEditor(); }

    void linesStayOnDiskUntilTheServerHasThem()
    {
        m_server->reply("PATCH", NotePath, 503, R"({"error":"The store is busy."})");
        open({{11, "eins"}});
        NoteEditor &editor = *m_editor;
        QVERIFY(JournalClaim::claimed(7));
        QSignalSpy saved(&editor, &NoteEditor::saved);
        editor.edit(0, QStringLiteral("eins zwei"));
        editor.key(0, int(NoteEditor::LineKey::Newline));
        editor.edit(1, QStringLiteral("drei"));
        QTRY_COMPARE(journaledTexts(7), QStringList({"eins zwei", "drei"}));
        QTRY_COMPARE(editor.trouble(), QStringLiteral("The store is busy."));
        QCOMPARE(editor.localOnlyText(),
                 QStringLiteral("Some lines are only on this computer until the server answers."));
        QCOMPARE(DraftJournal().read(7)->deckId, 3);

        m_server->reply("PATCH", NotePath, 200, noteJson(7, {}, {{11, "eins zwei"}, {12, "drei"}}));
        QTRY_COMPARE(saved.count(), 1);
        QVERIFY(!DraftJournal().read(7));
        QVERIFY(!editor.localOnly());

        // A change the server has not answered yet is on disk again, and goes when it answers.
        m_server->stream("PATCH", NotePath,
                         {{noteJson(7, {}, {{11, "eins"}, {12, "drei"}}), "answer"}}, 200,
                         "application/json");
        editor.edit(0, QStringLiteral("eins"));
        QTRY_COMPARE(saveCount(*m_server), 3);
        QCOMPARE(journaledTexts(7), QStringList({"eins", "drei"}));
        QCOMPARE(DraftJournal().read(7)->drafts[1].id, 12);
        m_server->open("answer");
        QTRY_COMPARE(saved.count(), 2);
        QVERIFY(!DraftJournal().read(7));
    }

    void closingKeepsWhatTheServerLacks()
    {
        Timings::shared().save = std::chrono::minutes(1);
        open({{11, "eins"}});
        m_editor->edit(0, QStringLiteral("eins und zwei"));
        m_editor.reset();
        QVERIFY(!JournalClaim::claimed(7));
        QCOMPARE(journaledTexts(7), QStringList({"eins und zwei"}));

        // Leaving the note for another deck does the same, and lets the replay take it over.
        m_editor = std::make_unique<NoteEditor>();
        open({{11, "eins"}});
        m_editor->edit(0, QStringLiteral("eins, zwei, drei"));
        m_editor->close();
        QVERIFY(!m_editor->loaded());
        QTRY_VERIFY(
            !JournalClaim::claimed(7)); // once the save of the lines found again is answered
        QCOMPARE(journaledTexts(7), QStringList({"eins, zwei, drei"}));
    }

    void aSaveOnItsWayIsNotOvertaken()
    {
        // The background replay takes over the lines of a note left while its save was on its
        // way, but only once that save is answered, so the older lines cannot land last.
        Timings::shared().journalRetry = std::chrono::hours(1);
        JournalReplay replay;
        QSignalSpy replayed(&replay, &JournalReplay::replayed);
        m_services->state().setSignedIn(User{1, "ana@example.org", "Ana"});
        QTRY_COMPARE(replayed.size(), 1);
        m_server->stream("PATCH", NotePath, {{noteJson(7, {}, {{11, "eins"}}), "held"}}, 200,
                         "application/json");
        open({{11, "null"}});
        m_editor->edit(0, QStringLiteral("eins"));
        QTRY_COMPARE(saveCount(*m_server), 1);
        m_editor->edit(0, QStringLiteral("eins, zwei"));
        m_editor->open(json::decode<Note>(noteJson(8, {}, {{21, "acht"}})), 3,
                       QStringLiteral("de"));
        QCOMPARE(journaledTexts(7), QStringList({"eins, zwei"}));

        replay.replay();
        QTRY_COMPARE(replayed.size(), 2);
        QCOMPARE(saveCount(*m_server), 1);

        m_server->open("held");
        QTRY_COMPARE(saveCount(*m_server), 2);
        QCOMPARE(sentTexts(saves(*m_server).last()), QStringList({"eins, zwei"}));
        QTRY_VERIFY(!DraftJournal().read(7));
    }

    void quittingSavesWhatItCanInTime()
    {
        Timings::shared().save = std::chrono::minutes(1);
        m_server->reply("PATCH", NotePath, 200, noteJson(7, {}, {{11, "eins und zwei"}}));
        open({{11, "eins"}});
        QVERIFY(flushNotesBeforeQuitting(std::chrono::seconds(5))); // nothing to save
        QCOMPARE(saveCount(*m_server), 0);
        m_editor->edit(0, QStringLiteral("eins und zwei"));
        QVERIFY(flushNotesBeforeQuitting(std::chrono::seconds(5)));
        QCOMPARE(saveCount(*m_server), 1);

        // A server that does not answer in time: the wait ends, the journal keeps the line.
        m_server->stream("PATCH", NotePath, {{noteJson(7, {}, {{11, "x"}}), "never"}}, 200,
                         "application/json");
        m_editor->edit(0, QStringLiteral("eins, zwei und drei"));
        QVERIFY(!flushNotesBeforeQuitting(std::chrono::milliseconds(100)));
        QCOMPARE(journaledTexts(7), QStringList({"eins, zwei und drei"}));
    }

    void flushSavesAtOnce()
    {
        Timings::shared().save = std::chrono::minutes(1);
        m_server->reply("PATCH", NotePath, 200, noteJson(7, {}, {{11, "eins und zwei"}}));
        open({{11, "eins"}});
        m_editor->edit(0, QStringLiteral("eins und zwei"));
        QVERIFY(testsupport::await(m_editor->flush()));
        QCOMPARE(saveCount(*m_server), 1);
        QVERIFY(!DraftJournal().read(7));
        // Nothing left: a second flush sends nothing.
        QVERIFY(testsupport::await(m_editor->flush()));
        QCOMPARE(saveCount(*m_server), 1);
    }

    void journaledLinesComeBackAndAreSaved()
    {
        // Typed here before: line 11 changed, "zwei" sent once without its id coming back, and
        // "drei" new. The server still has the old first line and "zwei".
        JournalEntry entry{7, 3, QStringLiteral("Am Bahnhof"), {}};
        Draft first = Draft::withText(QStringLiteral("eins und mehr"));
        first.id = 11;
        entry.drafts = {first, Draft::withText(QStringLiteral("zwei")), Draft::empty(),
                        Draft::withText(QStringLiteral("drei"))};
        QVERIFY(DraftJournal().keep(entry));
        m_server->reply(
            "PATCH", NotePath, 200,
            noteJson(7, "Am Bahnhof", {{11, "eins und mehr"}, {12, "zwei"}, {13, "drei"}}));
        QSignalSpy saved(m_editor.get(), &NoteEditor::saved);
        open({{11, "eins"}, {12, "zwei"}});
        NoteEditor &editor = *m_editor;
        QCOMPARE(editor.recoveredText(),
                 QStringLiteral("Lines typed on this computer that had not reached the server are "
                                "back. They are being saved now."));
        QVERIFY(editor.localOnly());
        QCOMPARE(editor.title(), QStringLiteral("Am Bahnhof"));
        QCOMPARE(editor.lines()->count(), 4);
        QTRY_COMPARE(saved.count(), 1);
        // "zwei" took the id of the stored line with its words: it is not made twice.
        const QJsonArray sent =
            QJsonDocument::fromJson(m_server->lastRequest().body)["lines"].toArray();
        QCOMPARE(sent.size(), 3);
        QCOMPARE(sent[0]["id"].toInt(), 11);
        QCOMPARE(sent[1]["id"].toInt(), 12);
        QVERIFY(!sent[2].toObject().contains("id"));
        QCOMPARE(editor.lines()->at(3).id, 13);
        QVERIFY(!DraftJournal().read(7));
        QVERIFY(!editor.localOnly());
        QCOMPARE(editor.recoveredText(),
                 QStringLiteral("Lines typed on this computer that had not reached the server are "
                                "back and saved."));
        editor.edit(3, QStringLiteral("drei!"));
        QCOMPARE(editor.recoveredText(), QString());
    }

    void anEntryTheServerAlreadyHoldsIsForgotten()
    {
        JournalEntry entry{7, 3, {}, {}};
        Draft line = Draft::withText(QStringLiteral("eins"));
        line.id = 11;
        entry.drafts = {line};
        QVERIFY(DraftJournal().keep(entry));
        open({{11, "eins"}});
        QCOMPARE(m_editor->recoveredText(), QString());
        QVERIFY(!DraftJournal().read(7));
        QCOMPARE(m_server->requestCount(), 0);
    }

    void aDeletedNoteLeavesNothingBehind()
    {
        m_server->reply("PATCH", NotePath, 503, R"({"error":"The store is busy."})");
        m_server->reply("DELETE", NotePath, 204, {});
        open({{11, "eins"}});
        QSignalSpy removed(m_editor.get(), &NoteEditor::removed);
        m_editor->edit(0, QStringLiteral("eins zwei"));
        QTRY_VERIFY(DraftJournal().read(7).has_value());
        m_editor->requestDelete();
        m_editor->confirmDelete();
        QTRY_COMPARE(removed.count(), 1);
        QVERIFY(!DraftJournal().read(7));
        QVERIFY(!JournalClaim::claimed(7));
    }
};

QTEST_GUILESS_MAIN(TestEditorJournal)
#include "tst_editorjournal.moc"
