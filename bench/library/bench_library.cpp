// The shelf's two hot paths: narrowing a 20,000-card deck on every keystroke of the search
// field (goal: at most 2 ms), and building the sidebar for 500 decks in 100 folders (goal: at
// most 1 ms).
#include "library/cardfilter.h"
#include "library/sidebarorder.h"

#include <benchmark/benchmark.h>

#include <QRandomGenerator>

using namespace orvel;

namespace {

const char *const parts[] = {"noun", "verb", "adjective", "adverb", "phrase", "preposition"};

QString word(QRandomGenerator &random, int length)
{
    static const QString letters = QStringLiteral("abcdefghijklmnopqrstuvwxyzäöüéèß");
    QString text;
    for (int i = 0; i < length; ++i)
        text.append(letters[random.bounded(int(letters.size()))]);
    return text;
}

QList<Card> deckOf(int size)
{
    QRandomGenerator random(7);
    QList<Card> cards;
    cards.reserve(size);
    for (int i = 0; i < size; ++i) {
        Card card;
        card.id = i + 1;
        card.term = word(random, 4 + random.bounded(8));
        card.translation = word(random, 4 + random.bounded(12)) + u' ' + word(random, 5);
        card.reading = word(random, 6);
        card.partOfSpeech = QString::fromLatin1(parts[random.bounded(6)]);
        card.streak = random.bounded(4);
        cards.append(card);
    }
    return cards;
}

// One keystroke: the query grows by a letter, as when typing "hun", "hund", ...
void filterPerKeystroke(benchmark::State &state)
{
    const QList<Card> cards = deckOf(int(state.range(0)));
    CardFilter filter;
    filter.reset(cards);
    const QStringList queries = {"h", "ha", "han", "hand", "e", "er", "ers", "erst"};
    qsizetype n = 0;
    for (auto _ : state) {
        auto shown =
            filter.shown(std::nullopt, queries[n++ % queries.size()], CardFilter::Learned::Any);
        benchmark::DoNotOptimize(shown);
    }
}
BENCHMARK(filterPerKeystroke)->Arg(20000)->Unit(benchmark::kMillisecond);

// The same with the kind and learned filters on.
void filterCombined(benchmark::State &state)
{
    const QList<Card> cards = deckOf(20000);
    CardFilter filter;
    filter.reset(cards);
    for (auto _ : state) {
        auto shown =
            filter.shown(WordType::Noun, QStringLiteral("er"), CardFilter::Learned::NotLearned);
        benchmark::DoNotOptimize(shown);
    }
}
BENCHMARK(filterCombined)->Unit(benchmark::kMillisecond);

// Opening a deck: the filter's per-card keys are built once.
void filterReset(benchmark::State &state)
{
    const QList<Card> cards = deckOf(20000);
    for (auto _ : state) {
        CardFilter filter;
        filter.reset(cards);
        benchmark::DoNotOptimize(filter);
    }
}
BENCHMARK(filterReset)->Unit(benchmark::kMillisecond);

void sidebar(benchmark::State &state)
{
    QRandomGenerator random(11);
    QList<Folder> folders;
    for (int i = 1; i <= 100; ++i) {
        Folder folder;
        folder.id = i;
        folder.name = QStringLiteral("Folder ") + QString::number(i);
        folders.append(folder);
    }
    QList<DeckSummary> decks;
    for (int i = 1; i <= 500; ++i) {
        DeckSummary deck;
        deck.id = i;
        deck.name = QStringLiteral("Deck ") + QString::number(i);
        deck.cardCount = random.bounded(300);
        // Four in five decks are filed; some name folders the listing does not have.
        if (random.bounded(5) != 0)
            deck.folderId = 1 + random.bounded(105);
        decks.append(deck);
    }
    QSet<int> shut;
    for (int i = 1; i <= 100; i += 3)
        shut.insert(i);
    for (auto _ : state) {
        auto rows = sidebarRows(decks, folders, shut);
        benchmark::DoNotOptimize(rows);
    }
}
BENCHMARK(sidebar)->Unit(benchmark::kMicrosecond);

} // namespace

BENCHMARK_MAIN();
