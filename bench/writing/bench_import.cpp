// Adding cards from a pasted text against a real orvel-server with its dictionary writer: how
// long a 20,000-character German article takes from "Find words" to the list of candidates, how
// many cards a second the batch then writes, and what the import sheet holds for 500 candidates.
#include "benchlearner.h"
#include "writing/importsheet.h"

#include <benchmark/benchmark.h>
#include <malloc.h>
#include <QElapsedTimer>
#include <QTest>

using namespace orvel;

namespace {

// A German article of at least `characters` characters: a few paragraphs of everyday prose,
// repeated with their sentences in turn, so the words recur as they do in a real text.
QString germanArticle(qsizetype characters)
{
    const QStringList sentences = {
        QStringLiteral("Am Morgen geht die alte Frau mit ihrem Hund durch den Park."),
        QStringLiteral("Die Vögel singen in den Bäumen, und ein Kind läuft über die nasse Wiese."),
        QStringLiteral("Später trinkt sie einen Kaffee am Fenster und liest die Zeitung."),
        QStringLiteral("In der Stadt wird seit Wochen über den neuen Bahnhof gestritten."),
        QStringLiteral("Die Bürgermeisterin verspricht, dass die Bauarbeiten im Frühling enden."),
        QStringLiteral("Viele Händler fürchten jedoch, dass ihre Kunden ausbleiben werden."),
        QStringLiteral("Ein Bäcker erzählt, er habe schon zwei Angestellte entlassen müssen."),
        QStringLiteral("Am Abend treffen sich die Nachbarn im Gasthaus an der Ecke."),
        QStringLiteral("Man spricht über das Wetter, die Kinder und die steigenden Preise."),
        QStringLiteral("Der Wirt stellt frisches Brot und eine Schüssel Suppe auf den Tisch."),
        QStringLiteral("Draußen regnet es leise, und die Straßenlaternen spiegeln sich im Wasser."),
        QStringLiteral("Niemand hat es eilig, nach Hause zu gehen."),
    };
    QString text;
    for (int n = 0; text.size() < characters; ++n)
        text += sentences[n % sentences.size()] + (n % 4 == 3 ? QStringLiteral("\n\n") : u" "_qs);
    return text.left(characters);
}

benchsupport::BenchLearner &session()
{
    static benchsupport::BenchLearner learner;
    return learner;
}

void BM_ImportGermanArticle(benchmark::State &state)
{
    benchsupport::BenchLearner &s = session();
    if (!s.api && !s.start()) {
        state.SkipWithError(qPrintable(s.error));
        return;
    }
    const QString article = germanArticle(20000);
    const int toWrite = int(state.range(0));
    double findMs = 0;
    double cardsPerSecond = 0;
    int candidates = 0;
    for (auto _ : state) {
        state.PauseTiming();
        // A new learner each time, so no word counts as already in the deck.
        const int deck = s.newLearnerWithDeck();
        int wrote = 0;
        ImportSheet sheet(deck, QStringLiteral("German"), article,
                          [&](const QList<Card> &cards) { wrote += int(cards.size()); });
        state.ResumeTiming();
        QElapsedTimer clock;
        clock.start();
        sheet.find();
        if (!QTest::qWaitFor([&] { return !sheet.busy(); }, 120000)) {
            state.SkipWithError("no words found within two minutes");
            return;
        }
        findMs = double(clock.nsecsElapsed()) / 1e6;
        if (sheet.stage() != ImportSheet::Stage::Choose) {
            state.SkipWithError(qPrintable(sheet.trouble()));
            return;
        }
        candidates = sheet.candidates()->rowCount();
        sheet.candidates()->chooseNone();
        for (int row = 0; row < std::min(toWrite, candidates); ++row)
            sheet.candidates()->setChosen(row, true);
        clock.restart();
        sheet.write();
        if (!QTest::qWaitFor([&] { return sheet.finished(); }, 300000)) {
            state.SkipWithError("the batch did not end within five minutes");
            return;
        }
        cardsPerSecond = wrote / (double(clock.nsecsElapsed()) / 1e9);
    }
    state.counters["find_ms"] = findMs;
    state.counters["candidates"] = candidates;
    state.counters["cards_per_s"] = cardsPerSecond;
}
BENCHMARK(BM_ImportGermanArticle)->Arg(40)->Iterations(3)->Unit(benchmark::kMillisecond);

// What the sheet's word list holds for 500 candidates, each with a sentence of context: the
// words are made afresh each time, so the list is their only holder, as with words read off the
// server's stream.
QList<Candidate> fiveHundredWords()
{
    QList<Candidate> words;
    for (int n = 0; n < 500; ++n)
        words.append(
            Candidate{QStringLiteral("Wort%1").arg(n), QStringLiteral("Wörter%1").arg(n),
                      QStringLiteral("a word, number %1").arg(n),
                      QStringLiteral("Ein ganz gewöhnlicher Satz mit dem Wort %1 darin, "
                                     "wie er in einer Zeitung stehen könnte.")
                          .arg(n),
                      n % 10 == 0 ? QStringLiteral("specialist") : QStringLiteral("common")});
    return words;
}

void BM_FiveHundredCandidates(benchmark::State &state)
{
    double bytes = 0;
    for (auto _ : state) {
        const size_t before = mallinfo2().uordblks;
        auto model = std::make_unique<ImportCandidates>();
        model->reset(fiveHundredWords());
        benchmark::DoNotOptimize(model->chosenCount());
        bytes = double(mallinfo2().uordblks - before);
    }
    state.counters["held_KiB"] = bytes / 1024;
}
BENCHMARK(BM_FiveHundredCandidates)->Unit(benchmark::kMicrosecond);

} // namespace
