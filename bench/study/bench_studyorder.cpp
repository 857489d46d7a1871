// Ordering a large deck for a study session (goal: 20,000 cards in at most 5 ms).
#include "study/studyorder.h"

#include <benchmark/benchmark.h>

using namespace orvel;

namespace {

QList<Card> deckOf(int size)
{
    QList<Card> cards;
    cards.reserve(size);
    quint32 seed = 42;
    auto next = [&seed](int n) {
        seed = seed * 1664525u + 1013904223u;
        return int((seed >> 8) % quint32(n));
    };
    for (int i = 0; i < size; ++i) {
        Card card;
        card.id = i + 1;
        card.deckId = 1;
        card.term = QStringLiteral("Wort %1").arg(i);
        card.translation = QStringLiteral("word %1").arg(i);
        card.seen = next(5) == 0 ? 0 : 1 + next(30);
        card.known = card.seen ? next(card.seen + 1) : 0;
        card.streak = card.known ? next(6) : 0;
        cards.append(card);
    }
    return cards;
}

void orderCards(benchmark::State &state)
{
    const QList<Card> cards = deckOf(int(state.range(0)));
    for (auto _ : state) {
        QList<Card> ordered = StudyOrder::order(cards);
        benchmark::DoNotOptimize(ordered.data());
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

} // namespace

BENCHMARK(orderCards)->Arg(200)->Arg(2000)->Arg(20000)->Unit(benchmark::kMillisecond);
BENCHMARK_MAIN();
