// The manual per keystroke: searching all fourteen pages for a query as it is typed, and
// reading (parsing) a page when it is shown.
#include "manual/manualblock.h"
#include "manual/manualbook.h"

#include <benchmark/benchmark.h>

using namespace orvel;

namespace {

// One keystroke's search: every prefix of a two-word query in turn, so the time per iteration
// divided by the prefixes (reported) is the time a keystroke costs.
void BM_SearchAsTyped(benchmark::State &state)
{
    const QString typed = QStringLiteral("margin deeper");
    ManualBook::search(QStringLiteral("warm-up")); // the searchable texts are folded once a run
    qsizetype found = 0;
    for (auto _ : state)
        for (qsizetype length = 1; length <= typed.size(); ++length)
            found += ManualBook::search(typed.left(length)).size();
    benchmark::DoNotOptimize(found);
    state.counters["keystrokes"] = double(typed.size());
}
BENCHMARK(BM_SearchAsTyped)->Unit(benchmark::kMicrosecond);

void BM_ReadLongestPage(benchmark::State &state)
{
    QString longest;
    for (const ManualPage &page : ManualBook::pages()) {
        const QString text = ManualBook::text(page.id);
        if (text.size() > longest.size())
            longest = text;
    }
    for (auto _ : state)
        benchmark::DoNotOptimize(ManualBlock::parse(longest));
    state.counters["characters"] = double(longest.size());
}
BENCHMARK(BM_ReadLongestPage)->Unit(benchmark::kMicrosecond);

} // namespace
