// The palette's list for each keystroke: 500 decks in 100 folders, a search reply of 300 cards
// with notes and lines, the command list (a study command per deck, a move command per folder)
// and the manual (goal: at most 1 ms a keystroke).
#include "manual/manualbook.h"
#include "palette/palettebuilder.h"

#include <benchmark/benchmark.h>

#include <QRandomGenerator>

using namespace orvel;

namespace {

const char *const topics[] = {"Deutsch", "Español", "Français", "Italiano", "日本語",    "Verben",
                              "Reisen",  "Küche",   "Arbeit",   "Straße",   "Grammatik", "Wörter"};

QString word(QRandomGenerator &random, int length)
{
    static const QString letters = QStringLiteral("abcdefghijklmnopqrstuvwxyzäöüéèß");
    QString text;
    for (int i = 0; i < length; ++i)
        text.append(letters[random.bounded(int(letters.size()))]);
    return text;
}

PaletteContext bigShelf()
{
    QRandomGenerator random(11);
    PaletteContext context;
    for (int i = 0; i < 100; ++i) {
        Folder folder;
        folder.id = 1000 + i;
        folder.name = QString::fromUtf8(topics[i % 12]) + u' ' + word(random, 6);
        folder.deckCount = 4;
        context.folders.append(folder);
    }
    for (int i = 0; i < 500; ++i) {
        DeckSummary deck;
        deck.id = i + 1;
        deck.name = QString::fromUtf8(topics[random.bounded(12)]) + u' ' + word(random, 5) + u' ' +
                    QString::number(i);
        deck.language = i % 3 ? QStringLiteral("de") : QStringLiteral("es");
        deck.cardCount = random.bounded(200);
        deck.knownCount = random.bounded(deck.cardCount + 1);
        if (i % 5)
            deck.folderId = 1000 + i % 100;
        context.decks.append(deck);
    }
    context.deck = context.decks[1];
    context.canStudyFolder = [](const Folder &) { return true; };
    context.appearance = QStringLiteral("system");
    for (int i = 0; i < 8; ++i)
        context.recents.append(PaletteRecent::deck(i * 7 + 3));
    return context;
}

SearchResults bigReply()
{
    QRandomGenerator random(13);
    SearchResults reply;
    for (int i = 0; i < 300; ++i) {
        Card card;
        card.id = 5000 + i;
        card.deckId = 1 + random.bounded(500);
        card.term = QStringLiteral("Hund") + word(random, 4);
        card.partOfSpeech = QStringLiteral("noun");
        card.gender = QStringLiteral("der");
        reply.cards.append(card);
    }
    for (int i = 0; i < 50; ++i) {
        reply.notes.append(NoteHit{9000 + i, 1 + random.bounded(500), word(random, 8)});
        reply.lines.append(LineHit{9500 + i, 9000 + i, 1 + random.bounded(500), word(random, 8),
                                   QStringLiteral("der Hund ") + word(random, 12)});
    }
    return reply;
}

// Typing three words letter by letter; each iteration is one keystroke.
void sectionsPerKeystroke(benchmark::State &state)
{
    const PaletteBuilder builder(bigShelf(), ManualBook::pages(), bigReply());
    const QStringList typed = {"d",   "de",   "deu", "deut", "deuts", "s",    "st",
                               "stu", "stud", "h",   "hu",   "hun",   "hund", "hund z"};
    qsizetype n = 0;
    qsizetype rows = 0;
    for (auto _ : state) {
        const auto sections = builder.sections(typed[n++ % typed.size()]);
        for (const PaletteSection &section : sections)
            rows += section.items.size();
        benchmark::DoNotOptimize(rows);
    }
    state.counters["rows"] = benchmark::Counter(double(rows), benchmark::Counter::kAvgIterations);
}
BENCHMARK(sectionsPerKeystroke)->Unit(benchmark::kMicrosecond);

// The broadest keystroke: "s" starts every study command and many names.
void sectionsForOneLetter(benchmark::State &state)
{
    const PaletteBuilder builder(bigShelf(), ManualBook::pages(), bigReply());
    for (auto _ : state)
        benchmark::DoNotOptimize(builder.sections(QStringLiteral("s")));
}
BENCHMARK(sectionsForOneLetter)->Unit(benchmark::kMicrosecond);

// A search reply arriving: its 400 rows are made, then the list for the query.
void replyArrives(benchmark::State &state)
{
    PaletteBuilder builder(bigShelf(), ManualBook::pages());
    const SearchResults reply = bigReply();
    for (auto _ : state) {
        builder.setReply(reply);
        benchmark::DoNotOptimize(builder.sections(QStringLiteral("hund")));
    }
}
BENCHMARK(replyArrives)->Unit(benchmark::kMicrosecond);

// The starting point (an empty field) with eight recents to resolve.
void startingPoint(benchmark::State &state)
{
    const PaletteBuilder builder(bigShelf(), ManualBook::pages(), bigReply());
    for (auto _ : state)
        benchmark::DoNotOptimize(builder.sections(QString()));
}
BENCHMARK(startingPoint)->Unit(benchmark::kMicrosecond);

} // namespace

BENCHMARK_MAIN();
