// Decoding speed of the largest reply (a deck with 20,000 cards) and of card-stream events.

#include "records/json.h"
#include "records/records.h"
#include "server/events/cardevent.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <benchmark/benchmark.h>

using namespace orvel;

namespace {

QJsonObject generatedCard(int id)
{
    const QString n = QString::number(id);
    QJsonArray examples;
    for (int i = 0; i < 2; ++i)
        examples.append(
            QJsonObject{{"sentence", "Der Hund " + n + " läuft schnell über die Straße."},
                        {"translation", "The dog " + n + " runs quickly across the street."},
                        {"note", i == 0 ? "present tense" : ""}});
    QJsonArray conjugations;
    if (id % 3 == 0) {
        QJsonArray forms;
        for (const char *person : {"ich", "du", "er/sie/es", "wir", "ihr", "sie/Sie"})
            forms.append(QJsonObject{{"label", person}, {"form", "laufe" + n}});
        conjugations.append(QJsonObject{{"tense", "Präsens"}, {"note", ""}, {"forms", forms}});
    }
    return QJsonObject{
        {"id", id},
        {"deck_id", 1},
        {"term", "Hund" + n},
        {"reading", "hʊnt"},
        {"part_of_speech", id % 3 == 0 ? "verb" : "noun"},
        {"gender", "der"},
        {"translation", "dog " + n},
        {"definition", "A domesticated carnivorous mammal kept as a pet or for work."},
        {"usage_notes", "Common in everyday speech; the plural is Hunde."},
        {"examples", examples},
        {"related", QJsonArray{QJsonObject{
                        {"word", "Welpe"}, {"translation", "puppy"}, {"relation", "young of"}}}},
        {"conjugations", conjugations},
        {"seen", id % 7},
        {"known", id % 5},
        {"streak", id % 3},
        {"last_reviewed", id % 2 ? QJsonValue("2024-05-01T10:00:00Z") : QJsonValue()},
        {"created_at", "2024-04-01T09:00:00Z"},
    };
}

const QByteArray &deckReply()
{
    static const QByteArray bytes = [] {
        QJsonArray cards;
        for (int id = 1; id <= 20000; ++id)
            cards.append(generatedCard(id));
        const QJsonObject deck{
            {"id", 1},          {"name", "German"},        {"description", "Everything"},
            {"language", "de"}, {"native_language", "en"}, {"created_at", "2024-01-01"},
            {"cards", cards}};
        return QJsonDocument(deck).toJson(QJsonDocument::Compact);
    }();
    return bytes;
}

// Data-line payloads of one card being written: field progress, list counts, then the card.
const QList<QByteArray> &cardStream()
{
    static const QList<QByteArray> lines = [] {
        QList<QByteArray> payloads;
        for (const char *field :
             {"reading", "part_of_speech", "gender", "translation", "definition", "usage_notes"})
            payloads.append(QByteArray(R"({"type":"progress","field":")") + field +
                            R"(","value":"some written text for this field"})");
        for (const char *field : {"examples", "related", "conjugations"})
            payloads.append(QByteArray(R"({"type":"progress","field":")") + field +
                            R"(","count":3})");
        payloads.append(QJsonDocument(QJsonObject{{"type", "card"}, {"card", generatedCard(42)}})
                            .toJson(QJsonDocument::Compact));
        return payloads;
    }();
    return lines;
}

// Bytes to Deck; freeing the previous deck is left out of the timing.
void decodeDeck(benchmark::State &state)
{
    const QByteArray &bytes = deckReply();
    Deck deck;
    for (auto _ : state) {
        deck = json::decode<Deck>(bytes);
        benchmark::DoNotOptimize(deck.cards.size());
        state.PauseTiming();
        deck = Deck{};
        state.ResumeTiming();
    }
    state.SetBytesProcessed(state.iterations() * bytes.size());
    state.counters["cards"] = 20000;
    state.counters["reply MB"] = double(bytes.size()) / 1e6;
}

// The same with the deck freed inside the timing, as when a reloaded deck replaces the last.
void decodeAndFreeDeck(benchmark::State &state)
{
    const QByteArray &bytes = deckReply();
    for (auto _ : state) {
        const Deck deck = json::decode<Deck>(bytes);
        benchmark::DoNotOptimize(deck.cards.size());
    }
    state.SetBytesProcessed(state.iterations() * bytes.size());
}

// Qt's JSON parser alone on the same reply, for comparison: the tree it builds is not decoded.
void parseDeckOnly(benchmark::State &state)
{
    const QByteArray &bytes = deckReply();
    for (auto _ : state) {
        const QJsonDocument document = QJsonDocument::fromJson(bytes);
        benchmark::DoNotOptimize(document.isObject());
    }
    state.SetBytesProcessed(state.iterations() * bytes.size());
}

void decodeCardEvents(benchmark::State &state)
{
    const QList<QByteArray> &lines = cardStream();
    for (auto _ : state)
        for (const QByteArray &line : lines) {
            const CardEvent event = json::decode<CardEvent>(line);
            benchmark::DoNotOptimize(event.kind);
        }
    state.SetItemsProcessed(state.iterations() * lines.size());
    state.counters["events/s"] =
        benchmark::Counter(double(state.iterations() * lines.size()), benchmark::Counter::kIsRate);
}

void decodeProgressEvents(benchmark::State &state)
{
    const QByteArray line = R"({"type":"progress","field":"translation","value":"dog"})";
    for (auto _ : state) {
        const CardEvent event = json::decode<CardEvent>(line);
        benchmark::DoNotOptimize(event.kind);
    }
    state.counters["events/s"] =
        benchmark::Counter(double(state.iterations()), benchmark::Counter::kIsRate);
}

} // namespace

BENCHMARK(decodeDeck)->Unit(benchmark::kMillisecond)->MinTime(2.0);
BENCHMARK(decodeAndFreeDeck)->Unit(benchmark::kMillisecond)->MinTime(2.0);
BENCHMARK(parseDeckOnly)->Unit(benchmark::kMillisecond)->MinTime(2.0);
BENCHMARK(decodeCardEvents)->Unit(benchmark::kMicrosecond);
BENCHMARK(decodeProgressEvents)->Unit(benchmark::kMicrosecond);

BENCHMARK_MAIN();
