// Figures of the dictionary writer and the speech renderer: dictionary index load (cold) and
// lookups (warm) for German, a whole card for "Hund", extraction from a paragraph, the cost of
// making the writer at server start, and a short clip rendered cold and from the cache.
#include "speech/speechrenderer.h"
#include "writers/dictionary.h"
#include "writers/dictionarywriter.h"
#include "writers/writerfactory.h"

#include <benchmark/benchmark.h>
#include <QFile>
#include <QTemporaryDir>

using namespace cardserver;

namespace {

const QString kGermanStem = QStringLiteral("/usr/share/dictd/freedict-deu-eng");

bool haveGerman(benchmark::State &state)
{
    if (QFile::exists(kGermanStem + QStringLiteral(".index")))
        return true;
    state.SkipWithError("dict-freedict-deu-eng is not installed");
    return false;
}

void BM_GermanFirstLookupCold(benchmark::State &state)
{
    if (!haveGerman(state))
        return;
    for (auto _ : state) {
        Dictionary dictionary(kGermanStem); // a fresh dictionary reads its index on first use
        benchmark::DoNotOptimize(dictionary.lookup(QStringLiteral("Hund")));
    }
}
BENCHMARK(BM_GermanFirstLookupCold)->Unit(benchmark::kMillisecond)->Iterations(5);

void BM_GermanLookupWarm(benchmark::State &state)
{
    if (!haveGerman(state))
        return;
    Dictionary dictionary(kGermanStem);
    dictionary.load();
    const QStringList words{"Hund", "gehen", "schön", "Haus", "Zeit", "machen", "Katze", "Baum"};
    qsizetype i = 0;
    for (auto _ : state)
        benchmark::DoNotOptimize(dictionary.lookup(words[i++ % words.size()]));
}
BENCHMARK(BM_GermanLookupWarm)->Unit(benchmark::kMicrosecond);

void BM_WriteCardHund(benchmark::State &state)
{
    if (!haveGerman(state))
        return;
    DictionaryWriter writer;
    writer.writeCard({"de", "en"}, "Hund", {}); // loads the index
    for (auto _ : state)
        benchmark::DoNotOptimize(writer.writeCard({"de", "en"}, "Hund", {}));
}
BENCHMARK(BM_WriteCardHund)->Unit(benchmark::kMicrosecond);

void BM_ExtractGermanParagraph(benchmark::State &state)
{
    if (!haveGerman(state))
        return;
    DictionaryWriter writer;
    const QString text = QStringLiteral(
        "Am Morgen geht der alte Mann mit seinem Hund in den Park. Die Sonne scheint, und die "
        "Vögel singen in den Bäumen. Nach einer Stunde kehren sie nach Hause zurück, wo seine "
        "Frau schon das Frühstück gemacht hat. Sie trinken Kaffee und lesen die Zeitung.");
    writer.extract({"de", "en"}, text, {});
    for (auto _ : state)
        benchmark::DoNotOptimize(writer.extract({"de", "en"}, text, {}));
}
BENCHMARK(BM_ExtractGermanParagraph)->Unit(benchmark::kMillisecond);

void BM_MakeDictionaryWriter(benchmark::State &state)
{
    for (auto _ : state)
        benchmark::DoNotOptimize(makeWriter({}));
}
BENCHMARK(BM_MakeDictionaryWriter)->Unit(benchmark::kMicrosecond);

void BM_RenderClipCold(benchmark::State &state)
{
    QTemporaryDir dir;
    SpeechRenderer speech(dir.path());
    if (!speech.available()) {
        state.SkipWithError("espeak-ng or lame is not installed");
        return;
    }
    for (auto _ : state) {
        state.PauseTiming();
        QFile::remove(speech.cachePath("Der Hund schläft.", "de", 1.0, ""));
        state.ResumeTiming();
        benchmark::DoNotOptimize(speech.render("Der Hund schläft.", "de", 1.0, ""));
    }
}
BENCHMARK(BM_RenderClipCold)->Unit(benchmark::kMillisecond)->Iterations(10);

void BM_RenderClipCached(benchmark::State &state)
{
    QTemporaryDir dir;
    SpeechRenderer speech(dir.path());
    if (!speech.available()) {
        state.SkipWithError("espeak-ng or lame is not installed");
        return;
    }
    speech.render("Der Hund schläft.", "de", 1.0, "");
    for (auto _ : state)
        benchmark::DoNotOptimize(speech.render("Der Hund schläft.", "de", 1.0, ""));
}
BENCHMARK(BM_RenderClipCached)->Unit(benchmark::kMicrosecond);

} // namespace
