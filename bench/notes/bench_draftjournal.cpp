// What keeping a note's unsaved lines costs: a 200-line entry encoded, and encoded, written to a
// temporary file, flushed, renamed over the old entry and the folder flushed (what each failed
// or pending save pays). The write goes to $TMPDIR, so the figure is that disk's fsync.

#include "notes/draftjournal.h"

#include <QTemporaryDir>

#include <benchmark/benchmark.h>

using namespace orvel;

namespace {

JournalEntry twoHundredLines()
{
    JournalEntry entry;
    entry.noteId = 42;
    entry.deckId = 3;
    entry.title = QStringLiteral("Im Zoo");
    for (int i = 0; i < 200; ++i) {
        Draft draft = Draft::withText(
            QStringLiteral("Line %1: Der Hund läuft schnell über die Straße zum Park.").arg(i));
        if (i % 2 == 0)
            draft.id = 1000 + i;
        if (i % 4 == 0) {
            Annotation remark;
            remark.kind = QStringLiteral("translation");
            remark.span = QStringLiteral("läuft schnell");
            remark.body = QStringLiteral("runs quickly");
            remark.term = QStringLiteral("laufen");
            draft.annotations = {remark, remark};
        }
        entry.drafts.append(draft);
    }
    return entry;
}

void encodeEntry(benchmark::State &state)
{
    const JournalEntry entry = twoHundredLines();
    qsizetype bytes = 0;
    for (auto _ : state) {
        const QByteArray encoded = entry.encode();
        bytes = encoded.size();
        benchmark::DoNotOptimize(encoded.constData());
    }
    state.counters["entry_bytes"] = double(bytes);
    state.SetBytesProcessed(state.iterations() * bytes);
}

void keepEntry(benchmark::State &state)
{
    QTemporaryDir dir;
    DraftJournal journal(dir.filePath("drafts"));
    JournalEntry entry = twoHundredLines();
    for (auto _ : state) {
        entry.title = QStringLiteral("Im Zoo %1").arg(state.iterations());
        if (!journal.keep(entry)) {
            state.SkipWithError(journal.error().toStdString().c_str());
            break;
        }
    }
}

} // namespace

BENCHMARK(encodeEntry)->Unit(benchmark::kMicrosecond);
BENCHMARK(keepEntry)->Unit(benchmark::kMicrosecond);

BENCHMARK_MAIN();
