// The note editor against a scripted server: keys at the edges of a note, pasting, the save
// debounce and what a save sends, ids paired by key while lines move, failed saves and their
// retries, undo steps and their limit, the title offered, deleting the note, and the rows the
// view model reports.
#include "app/timings.h"
#include "editorsuite.h"
#include "notereplies.h"
#include "notes/draftjournal.h"
#include "notes/noteeditor.h"
#include "notes/notetitle.h"
#include "records/json.h"
#include "scriptedserver.h"
#include "server/apiclient.h"
#include "testservices.h"

#include <QAbstractItemModelTester>
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

int key(Key k)
{
    return int(k);
}

// The ids a save sent (0 for a new line).
QList<int> sentIds(const ScriptedServer::Request &request)
{
    QList<int> ids;
    for (const QJsonValue &line : QJsonDocument::fromJson(request.body)["lines"].toArray())
        ids.append(line.toObject().contains("id") ? line["id"].toInt() : 0);
    return ids;
}

QStringList texts(const NoteEditor &editor)
{
    QStringList out;
    for (const Draft &draft : editor.lines()->drafts())
        out.append(draft.text);
    return out;
}

Draft picture()
{
    Draft draft;
    draft.media = Media{};
    draft.media->id = 4;
    return draft;
}

} // namespace

class TestNoteEditor : public notetests::EditorSuite {
    Q_OBJECT

private slots:
    void init() { setUpEditor(); }
    void cleanup() { tearDownEditor(); }

    void keysAtTheEdgesOfTheNote()
    {
        open({{11, "eins"}, {12, "zwei"}});
        NoteEditor &editor = *m_editor;
        QAbstractItemModelTester tester(editor.lines(),
                                        QAbstractItemModelTester::FailureReportingMode::QtTest);
        // Leaving the note at either end is the field's business.
        QVERIFY(!editor.key(0, key(Key::Up)));
        QVERIFY(!editor.key(0, key(Key::CrossUp)));
        QVERIFY(!editor.key(0, key(Key::BackTab)));
        QVERIFY(!editor.key(1, key(Key::Down)));
        QVERIFY(!editor.key(1, key(Key::Tab)));
        QVERIFY(!editor.key(0, key(Key::MoveUp)));
        QVERIFY(!editor.key(1, key(Key::MoveDown)));
        QVERIFY(!editor.key(0, key(Key::PasteImage)));
        QVERIFY(!editor.key(0, key(Key::Escape)));
        QCOMPARE(texts(editor), QStringList({"eins", "zwei"}));
        QVERIFY(!editor.canUndo());

        const int moves = editor.caretMoves();
        QVERIFY(editor.key(0, key(Key::Down)));
        QCOMPARE(editor.caret(), 1);
        QCOMPARE(editor.caretPlace(), NoteEditor::LinePlace::Start);
        QVERIFY(editor.key(1, key(Key::CrossUp)));
        QCOMPARE(editor.caret(), 0);
        QCOMPARE(editor.caretPlace(), NoteEditor::LinePlace::End);
        QVERIFY(editor.key(0, key(Key::Tab)));
        QCOMPARE(editor.caret(), 1);
        QCOMPARE(editor.caretPlace(), NoteEditor::LinePlace::End);
        QCOMPARE(editor.caretMoves(), moves + 3);

        // Return on the last line adds one below and goes there; backspace in it takes it away
        // and goes to the end of the line above.
        QVERIFY(editor.key(1, key(Key::Newline)));
        QCOMPARE(texts(editor), QStringList({"eins", "zwei", ""}));
        QCOMPARE(editor.caret(), 2);
        QVERIFY(!editor.key(1, key(Key::DeleteEmpty))); // a line with words backspaces itself
        QVERIFY(editor.key(2, key(Key::DeleteEmpty)));
        QCOMPARE(texts(editor), QStringList({"eins", "zwei"}));
        QCOMPARE(editor.caret(), 1);
        QCOMPARE(editor.caretPlace(), NoteEditor::LinePlace::End);

        QVERIFY(editor.key(0, key(Key::MoveDown)));
        QCOMPARE(texts(editor), QStringList({"zwei", "eins"}));
        QCOMPARE(editor.caret(), 1);

        // The last line deleted leaves one empty line to write in.
        QVERIFY(editor.key(0, key(Key::DeleteLine)));
        QVERIFY(editor.key(0, key(Key::DeleteLine)));
        QCOMPARE(texts(editor), QStringList({""}));
        QCOMPARE(editor.caret(), 0);
    }

    void pastedTextBecomesLines()
    {
        open({{11, "eins"}, {12, "vier"}});
        NoteEditor &editor = *m_editor;
        QAbstractItemModelTester tester(editor.lines(),
                                        QAbstractItemModelTester::FailureReportingMode::QtTest);
        QVERIFY(!editor.pasteText(0, QStringLiteral("nur eins\n\n  ")));
        QCOMPARE(texts(editor), QStringList({"eins", "vier"}));
        QVERIFY(editor.pasteText(0, QStringLiteral("zwei\r\n\n\t drei \n")));
        QCOMPARE(texts(editor), QStringList({"zwei", "drei", "vier"}));
        QCOMPARE(editor.caret(), 1);
        QCOMPARE(editor.caretPlace(), NoteEditor::LinePlace::End);
        QVERIFY(!editor.lines()->at(1).id);
    }

    void aBurstOfTypingSavesOnceWithoutBlankLines()
    {
        Timings::shared().save = std::chrono::milliseconds(300);
        m_server->reply("PATCH", NotePath, 200,
                        noteJson(7, {}, {{11, "der Hund"}, {12, "die Katze"}}));
        open({});
        NoteEditor &editor = *m_editor;
        QSignalSpy saved(&editor, &NoteEditor::saved);
        // One keystroke after another, the event loop turning between them.
        for (const char *typed : {"d", "de", "der", "der ", "der H", "der Hu", "der Hund"}) {
            editor.edit(0, typed);
            QCoreApplication::processEvents();
        }
        editor.key(0, key(Key::Newline));
        editor.key(1, key(Key::Newline));
        editor.edit(2, QStringLiteral("die Katze"));
        editor.key(2, key(Key::Newline));
        editor.edit(3, QStringLiteral(" \t"));
        QVERIFY(editor.lines()->pending(2));
        QCOMPARE(editor.pendingCount(), 2);
        QTRY_COMPARE(saved.count(), 1);
        QCOMPARE(saves(*m_server).size(), 1);
        QCOMPARE(sentTexts(saves(*m_server).first()), QStringList({"der Hund", "die Katze"}));
        QCOMPARE(editor.lines()->at(0).id, 11);
        QCOMPARE(editor.lines()->at(1).id, std::nullopt);
        QCOMPARE(editor.lines()->at(2).id, 12);
        QVERIFY(!editor.saving());
    }

    void idsFollowTheirLinesWhateverMovedDuringTheSave()
    {
        m_server->stream("PATCH", NotePath,
                         {{noteJson(7, {}, {{21, "eins"}, {22, "zwei"}}), "reply"}}, 200,
                         "application/json");
        open({});
        NoteEditor &editor = *m_editor;
        QSignalSpy saved(&editor, &NoteEditor::saved);
        editor.edit(0, QStringLiteral("eins"));
        editor.key(0, key(Key::Newline));
        editor.edit(1, QStringLiteral("zwei"));
        QTRY_COMPARE(m_server->requestCount(), 1);
        QVERIFY(editor.saving());
        // While the save is out: the lines swap, and another line is typed.
        QVERIFY(editor.key(1, key(Key::MoveUp)));
        editor.key(1, key(Key::Newline));
        editor.edit(2, QStringLiteral("drei"));
        m_server->reply("PATCH", NotePath, 200,
                        noteJson(7, {}, {{22, "zwei"}, {21, "eins"}, {23, "drei"}}));
        m_server->open("reply");
        QTRY_COMPARE(saved.count(), 2);
        QCOMPARE(texts(editor), QStringList({"zwei", "eins", "drei"}));
        QCOMPARE(editor.lines()->at(0).id, 22);
        QCOMPARE(editor.lines()->at(1).id, 21);
        // The second save sent the known ids in their new order and the new line without one.
        const auto sent = saves(*m_server);
        QCOMPARE(sent.size(), 2);
        QCOMPARE(sentIds(sent[1]), QList<int>({22, 21, 0}));
        QCOMPARE(editor.lines()->at(2).id, 23);
    }

    void aFailedSaveKeepsTheLinesAndIsTriedAgain()
    {
        m_server->reply("PATCH", NotePath, 503, R"({"error":"The store is busy."})");
        open({{11, "eins"}});
        NoteEditor &editor = *m_editor;
        QSignalSpy saved(&editor, &NoteEditor::saved);
        editor.edit(0, QStringLiteral("eins zwei"));
        QTRY_COMPARE(editor.trouble(), QStringLiteral("The store is busy."));
        QVERIFY(editor.localOnly());
        QVERIFY(!editor.localOnlyText().isEmpty());
        QCOMPARE(texts(editor), QStringList({"eins zwei"}));
        // It tries again on its own while the note stays open.
        QTRY_VERIFY(saves(*m_server).size() >= 2);
        m_server->reply("PATCH", NotePath, 200, noteJson(7, {}, {{11, "eins zwei"}}));
        QTRY_COMPARE(saved.count(), 1);
        QVERIFY(!editor.localOnly());
        QCOMPARE(editor.trouble(), QString());
        QCOMPARE(sentTexts(saves(*m_server).last()), QStringList({"eins zwei"}));

        // Failing again, the next change saves too.
        m_server->reply("PATCH", NotePath, 500, R"({"error":"Down for a moment."})");
        editor.edit(0, QStringLiteral("eins"));
        QTRY_COMPARE(editor.trouble(), QStringLiteral("Down for a moment."));
        m_server->reply("PATCH", NotePath, 200, noteJson(7, {}, {{11, "eins drei"}}));
        editor.edit(0, QStringLiteral("eins drei"));
        QTRY_COMPARE(saved.count(), 2);
        QCOMPARE(sentTexts(saves(*m_server).last()), QStringList({"eins drei"}));
    }

    void undoGoesBackAWordAtATime()
    {
        m_server->reply("PATCH", NotePath, 200, noteJson(7, {}, {{11, "x"}}));
        open({{11, "der"}});
        NoteEditor &editor = *m_editor;
        QSignalSpy saved(&editor, &NoteEditor::saved);
        QVERIFY(!editor.key(0, key(Key::Undo)));
        for (const char *typed : {"der ", "der H", "der Hu", "der Hund"})
            editor.edit(0, typed);
        QTRY_COMPARE(saved.count(), 1); // the undo step is recorded before the save
        editor.key(0, key(Key::Newline));
        editor.edit(1, QStringLiteral("b"));
        editor.edit(1, QStringLiteral("be"));
        // Undo at once takes back the unrecorded word first, then the one before it.
        QVERIFY(editor.key(1, key(Key::Undo)));
        QCOMPARE(texts(editor), QStringList({"der Hund"}));
        QCOMPARE(editor.caret(), 0);
        QVERIFY(editor.key(0, key(Key::Undo)));
        QCOMPARE(texts(editor), QStringList({"der"}));
        QVERIFY(!editor.key(0, key(Key::Undo)));
        QVERIFY(editor.canRedo());
        QVERIFY(editor.key(0, key(Key::Redo)));
        QVERIFY(editor.key(0, key(Key::Redo)));
        QCOMPARE(texts(editor), QStringList({"der Hund", "be"}));
        QCOMPARE(editor.caret(), 1);
        QVERIFY(!editor.key(0, key(Key::Redo)));
        // The lines restored keep their keys: the first line kept the id the server gave.
        QCOMPARE(editor.lines()->at(0).id, 11);
    }

    void sixtyStepsAreKept()
    {
        m_server->reply("PATCH", NotePath, 200, noteJson(7, {}, {{11, "x"}}));
        open({{11, "start"}});
        NoteEditor &editor = *m_editor;
        QSignalSpy saved(&editor, &NoteEditor::saved);
        for (int i = 1; i <= 61; ++i) {
            editor.edit(0, QString::number(i));
            QTRY_COMPARE(saved.count(), i);
        }
        int undone = 0;
        while (editor.key(0, key(Key::Undo)))
            ++undone;
        QCOMPARE(undone, 60);
        QCOMPARE(texts(editor), QStringList({"1"}));
    }

    void theTitle_data()
    {
        QTest::addColumn<QStringList>("lines");
        QTest::addColumn<QString>("title");
        QTest::newRow("short") << QStringList{"  der Hund  "} << "der Hund";
        QTest::newRow("blank lines and commands passed over")
            << QStringList{"", " \t", "/conj gehen", "die  Katze"} << "die Katze";
        QTest::newRow("cut at a word")
            << QStringList{"Wo ist der Bahnhof, bitte, und wann fährt der letzte Zug?"}
            << "Wo ist der Bahnhof, bitte, und wann…";
        QTest::newRow("one long word")
            << QStringList{QString(60, u'x')} << QString(39, u'x') + u'…';
        QTest::newRow("a picture first") << QStringList{"\x01picture", "der Hund"} << "";
        QTest::newRow("nothing written") << QStringList{"", ""} << "";
    }
    void theTitle()
    {
        QFETCH(QStringList, lines);
        QFETCH(QString, title);
        QList<Draft> drafts;
        for (const QString &line : lines)
            drafts.append(line == QStringLiteral("\x01picture") ? picture()
                                                                : Draft::withText(line));
        QCOMPARE(suggestedTitle(drafts), title);
        QVERIFY(suggestedTitle(drafts).size() <= 40);
    }

    void titleEditsAreSaved()
    {
        m_server->reply("PATCH", NotePath, 200, noteJson(7, "Am Bahnhof", {{11, "eins"}}));
        open({{11, "eins"}});
        NoteEditor &editor = *m_editor;
        QCOMPARE(editor.titlePlaceholder(), QStringLiteral("Untitled note"));
        QCOMPARE(editor.suggestedTitle(), QStringLiteral("eins"));
        QSignalSpy saved(&editor, &NoteEditor::saved);
        editor.setTitle(QStringLiteral("Am Bahnhof"));
        QTRY_COMPARE(saved.count(), 1);
        QCOMPARE(QJsonDocument::fromJson(saves(*m_server).first().body)["title"].toString(),
                 QStringLiteral("Am Bahnhof"));
        QCOMPARE(saved.first().first().value<Note>().title, QStringLiteral("Am Bahnhof"));
    }

    void deletingTheNote()
    {
        open({{11, "eins"}});
        NoteEditor &editor = *m_editor;
        editor.requestDelete();
        QCOMPARE(editor.deleteQuestion(),
                 QStringLiteral("Its one line goes too. This cannot be undone."));
        QVERIFY(editor.key(0, key(Key::Escape)));
        QVERIFY(!editor.confirmingDelete());

        open({{11, "eins"}, {12, "zwei"}, {13, "drei"}});
        editor.requestDelete();
        QCOMPARE(editor.deleteQuestion(),
                 QStringLiteral("Its 3 lines go too. This cannot be undone."));
        m_server->reply("DELETE", NotePath, 404, R"({"error":"That note does not exist."})");
        editor.confirmDelete();
        QTRY_COMPARE(editor.trouble(), QStringLiteral("That note does not exist."));
        QVERIFY(editor.loaded());

        QSignalSpy removed(&editor, &NoteEditor::removed);
        m_server->reply("DELETE", NotePath, 204, {});
        editor.requestDelete();
        editor.confirmDelete();
        QTRY_COMPARE(removed.count(), 1);
        QCOMPARE(removed.first().first().toInt(), 7);
        QVERIFY(!editor.loaded());
    }

    void theViewModelChangesOnlyTheRowsThatChanged()
    {
        m_server->reply("PATCH", NotePath, 200, noteJson(7, {}, {{11, "x"}}));
        open({{11, "eins"}, {12, "zwei"}, {13, "drei"}});
        NoteEditor &editor = *m_editor;
        NoteLines &lines = *editor.lines();
        QAbstractItemModelTester tester(&lines,
                                        QAbstractItemModelTester::FailureReportingMode::QtTest);
        QSignalSpy resets(&lines, &QAbstractItemModel::modelReset);
        QSignalSpy changed(&lines, &QAbstractItemModel::dataChanged);
        QSignalSpy moved(&lines, &QAbstractItemModel::rowsMoved);
        QSignalSpy inserted(&lines, &QAbstractItemModel::rowsInserted);
        editor.edit(1, QStringLiteral("zwei!"));
        QCOMPARE(changed.count(), 1);
        QCOMPARE(changed.first().first().toModelIndex().row(), 1);
        QCOMPARE(lines.data(lines.index(1), NoteLines::TextRole).toString(), "zwei!");
        QCOMPARE(lines.data(lines.index(1), NoteLines::LineIdRole).toInt(), 12);
        editor.key(2, key(Key::MoveUp));
        QCOMPARE(moved.count(), 1);
        editor.key(0, key(Key::Newline));
        QCOMPARE(inserted.count(), 1);
        QCOMPARE(lines.data(lines.index(1), NoteLines::LineIdRole).toInt(), 0);
        // Undo and redo move, insert and remove rows as the history says; no reset.
        QVERIFY(editor.key(0, key(Key::Undo)));
        QCOMPARE(texts(editor), QStringList({"eins", "zwei", "drei"}));
        QVERIFY(editor.key(0, key(Key::Redo)));
        QCOMPARE(texts(editor), QStringList({"eins", "", "drei", "zwei!"}));
        QCOMPARE(resets.count(), 0);
        QCOMPARE(lines.roleNames().value(NoteLines::RemarksRole), QByteArray("remarks"));
    }
};

QTEST_GUILESS_MAIN(TestNoteEditor)
#include "tst_noteeditor.moc"
