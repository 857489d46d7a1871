// The note editor's per-keystroke costs at 200 lines: building what a save sends (goal: at most
// 0.5 ms) and its JSON body, recording an undo step, and one edit() through the editor and its
// line model, with the reads a view makes after it (a stand-in for keystroke to field).
#include "app/appstate.h"
#include "app/services.h"
#include "notes/noteeditor.h"
#include "notes/notesave.h"
#include "notes/undohistory.h"
#include "records/json.h"
#include "server/apiclient.h"
#include "sound/silentoutput.h"
#include "sound/speech.h"

#include <benchmark/benchmark.h>

#include <QTemporaryDir>

using namespace orvel;

namespace {

// A note as it looks after some use: phrases of a few words, every third with two remarks.
QList<Draft> noteOf(int lines)
{
    QList<Draft> drafts;
    drafts.reserve(lines);
    for (int i = 0; i < lines; ++i) {
        Draft draft =
            Draft::withText(QStringLiteral("Wie komme ich zum Bahnhof, Zeile %1?").arg(i));
        draft.id = 1000 + i;
        if (i % 3 == 0) {
            Annotation gloss;
            gloss.kind = QStringLiteral("gloss");
            gloss.span = QStringLiteral("Bahnhof");
            gloss.body = QStringLiteral("railway station");
            gloss.term = QStringLiteral("der Bahnhof");
            Annotation note;
            note.body = QStringLiteral("zum = zu dem: the dative after zu.");
            note.deeper = {Deeper{1,
                                  QStringLiteral("Contractions of a preposition and an "
                                                 "article are the rule in speech."),
                                  false}};
            draft.annotations = {gloss, note};
        }
        if (i % 10 == 9)
            draft.text.clear(); // a blank line, left out
        drafts.append(draft);
    }
    return drafts;
}

Note storedNote(int lines)
{
    Note note;
    note.id = 7;
    note.deckId = 3;
    int ordinal = 0;
    for (const Draft &draft : noteOf(lines)) {
        NoteLine line;
        line.id = draft.id.value_or(0);
        line.noteId = 7;
        line.ordinal = ordinal++;
        line.text = draft.text;
        line.annotations = draft.annotations;
        line.annotatedText = draft.annotations.isEmpty() ? QString() : draft.text;
        note.lines.append(line);
    }
    return note;
}

void savePayload(benchmark::State &state)
{
    const QList<Draft> drafts = noteOf(int(state.range(0)));
    for (auto _ : state) {
        NoteSave save = NoteSave::of(QStringLiteral("Am Bahnhof"), drafts);
        benchmark::DoNotOptimize(save);
    }
}
BENCHMARK(savePayload)->Arg(200)->Unit(benchmark::kMicrosecond);

// The payload and its JSON body, as the client sends it.
void savePayloadEncoded(benchmark::State &state)
{
    const QList<Draft> drafts = noteOf(int(state.range(0)));
    for (auto _ : state) {
        const NoteSave save = NoteSave::of(QStringLiteral("Am Bahnhof"), drafts);
        QByteArray body = json::encode(save.lines);
        benchmark::DoNotOptimize(body);
    }
}
BENCHMARK(savePayloadEncoded)->Arg(200)->Unit(benchmark::kMicrosecond);

// One undo step: the note compared with the settled one and pushed, with 60 steps already kept.
void undoSnapshot(benchmark::State &state)
{
    QList<Draft> drafts = noteOf(int(state.range(0)));
    UndoHistory history;
    for (int i = 0; i < 61; ++i) {
        drafts[0].text = QString::number(i);
        history.record(Moment{drafts, {}, drafts[0].key});
    }
    int n = 0;
    for (auto _ : state) {
        drafts[n % drafts.size()].text.append(u'x');
        history.record(Moment{drafts, {}, drafts[0].key});
        ++n;
    }
}
BENCHMARK(undoSnapshot)->Arg(200)->Unit(benchmark::kMicrosecond);

// A keystroke: edit() of one line, then what the view reads again (the line's text and pending
// state, the header's pending count and hint).
void editOneLine(benchmark::State &state)
{
    QTemporaryDir dir;
    APIClient api(QUrl(QStringLiteral("http://127.0.0.1:9")), dir.filePath("jar"), QString());
    AppState appState(api);
    SilentOutput silent;
    Speech speech(api, silent, dir.path());
    Services services(api, appState, speech);
    NoteEditor editor;
    editor.open(storedNote(int(state.range(0))), 3, QStringLiteral("de"));
    const int row = int(state.range(0)) / 2;
    NoteLines &lines = *editor.lines();
    QString text = lines.at(row).text;
    for (auto _ : state) {
        text.append(u'a');
        editor.edit(row, text);
        const QModelIndex index = lines.index(row);
        benchmark::DoNotOptimize(lines.data(index, NoteLines::TextRole));
        benchmark::DoNotOptimize(lines.data(index, NoteLines::PendingRole));
        benchmark::DoNotOptimize(editor.pendingCount());
        benchmark::DoNotOptimize(editor.hint());
        if (text.size() > 200)
            text.chop(150);
    }
}
BENCHMARK(editOneLine)->Arg(200)->Unit(benchmark::kMicrosecond);

} // namespace
