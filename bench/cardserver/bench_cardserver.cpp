// orvel-server figures over loopback (Google Benchmark):
//  - ListDecks: GET /api/decks with 100 decks, from 1, 4 and 16 keep-alive clients
//    (items_per_second is requests per second over wall time; server_cpu_us_per_request
//    is what each request cost the server, which holds however busy the machine is);
//  - SignIns40: 40 sign-ins at once with 2 and with 40 password hashes allowed at once; the
//    time they take and the rise of the server's peak memory;
//  - CardStreams200: 200 card-writing streams with the dictionary writer opened at once;
//    every stream's events are checked against the same word written alone (counters
//    "lost_or_reordered" and "failed" must read 0);
//  - ColdStart: launch to the "listening on" line, fresh data folder each time.
#include "benchserver.h"

#include <atomic>
#include <benchmark/benchmark.h>
#include <mutex>
#include <QCoreApplication>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <thread>

namespace {

BenchServer *decksServer = nullptr;
std::string decksCookie;

void setUpDecks()
{
    if (decksServer)
        return;
    decksServer = new BenchServer();
    decksServer->start();
    decksCookie = decksServer->join("decks@bench.org");
    auto c = decksServer->client();
    for (int i = 0; i < 100; ++i)
        c->Post("/api/decks", {{"Cookie", decksCookie}},
                "{\"name\":\"Deck " + std::to_string(i) +
                    "\",\"language\":\"de\",\"native_language\":\"en\"}",
                "application/json");
}

void ListDecks(benchmark::State &state)
{
    static std::once_flag once;
    std::call_once(once, setUpDecks);
    auto c = decksServer->client();
    const httplib::Headers headers{{"Cookie", decksCookie}};
    const qint64 cpuBefore = state.thread_index() == 0 ? decksServer->cpuMicros() : 0;
    for (auto _ : state) {
        const auto r = c->Get("/api/decks", headers);
        if (!r || r->status != 200 || r->body.size() < 100 * 100) {
            state.SkipWithError("GET /api/decks failed");
            break;
        }
        benchmark::DoNotOptimize(r->body.data());
    }
    state.SetItemsProcessed(state.iterations());
    if (state.thread_index() == 0)
        // Server CPU per request, all threads' requests counted (thread 0 sees the total).
        state.counters["server_cpu_us_per_request"] =
            benchmark::Counter(double(decksServer->cpuMicros() - cpuBefore) /
                               double(state.iterations() * state.threads()));
}
BENCHMARK(ListDecks)->Threads(1)->Threads(4)->Threads(16)->UseRealTime();

// The "data:" lines of one stream, as JSON objects.
QList<QJsonObject> streamCard(httplib::Client &c, const std::string &cookie, qint64 deck,
                              const std::string &word)
{
    QList<QJsonObject> events;
    std::string buffer;
    httplib::Request req;
    req.method = "POST";
    req.path = "/api/decks/" + std::to_string(deck) + "/cards";
    req.headers = {
        {"Cookie", cookie}, {"Accept", "text/event-stream"}, {"Content-Type", "application/json"}};
    req.body = "{\"input\":\"" + word + "\"}";
    req.content_receiver = [&](const char *data, size_t n, uint64_t, uint64_t) {
        buffer.append(data, n);
        size_t end;
        while ((end = buffer.find('\n')) != std::string::npos) {
            const std::string line = buffer.substr(0, end);
            buffer.erase(0, end + 1);
            if (line.rfind("data: ", 0) == 0)
                events.append(
                    QJsonDocument::fromJson(QByteArray::fromStdString(line.substr(6))).object());
        }
        return true;
    };
    c.send(req);
    return events;
}

// What must match between two writings of one word: the events in order, minus the ids and
// timestamps of the stored card.
QByteArray shape(QList<QJsonObject> events)
{
    for (QJsonObject &e : events) {
        if (e.value("type") == "card") {
            QJsonObject card = e.value("card").toObject();
            card.remove("id");
            card.remove("created_at");
            e.insert("card", card);
        }
    }
    QJsonArray all;
    for (const QJsonObject &e : events)
        all.append(e);
    return QJsonDocument(all).toJson(QJsonDocument::Compact);
}

void CardStreams200(benchmark::State &state)
{
    const QList<std::string> words = {"Hund",   "Katze", "Haus",  "Baum",  "Garten",
                                      "Wetter", "Vogel", "Tisch", "Stuhl", "Fenster"};
    // One account opens every stream, so its limit on streams at once is lifted.
    BenchServer server({"--local", "--streams-per-account", "1000"});
    server.start();
    const std::string cookie = server.join("streams@bench.org");
    auto setup = server.client();
    const auto deckReply =
        setup->Post("/api/decks", {{"Cookie", cookie}},
                    "{\"name\":\"Streams\",\"language\":\"de\",\"native_language\":\"en\"}",
                    "application/json");
    const qint64 deck = QJsonDocument::fromJson(QByteArray::fromStdString(deckReply->body))
                            .object()
                            .value("id")
                            .toInteger();
    QList<QByteArray> expected;
    for (const std::string &w : words)
        expected.append(shape(streamCard(*setup, cookie, deck, w)));

    std::atomic<int> wrong{0};
    std::atomic<int> failed{0};
    std::atomic<qint64> events{0};
    for (auto _ : state) {
        std::vector<std::thread> clients;
        for (int i = 0; i < 200; ++i) {
            clients.emplace_back([&, i] {
                auto c = server.client();
                const int w = i % int(words.size());
                const QList<QJsonObject> got = streamCard(*c, cookie, deck, words.at(w));
                events += got.size();
                if (got.isEmpty() || got.last().value("type") != "card")
                    ++failed;
                else if (shape(got) != expected.at(w))
                    ++wrong;
            });
        }
        for (std::thread &t : clients)
            t.join();
    }
    state.counters["streams"] = benchmark::Counter(200.0 * double(state.iterations()));
    state.counters["streams_per_second"] =
        benchmark::Counter(200.0 * double(state.iterations()), benchmark::Counter::kIsRate);
    state.counters["events"] = benchmark::Counter(double(events.load()));
    state.counters["lost_or_reordered"] = benchmark::Counter(wrong.load());
    state.counters["failed"] = benchmark::Counter(failed.load());
}
BENCHMARK(CardStreams200)->Iterations(3)->Unit(benchmark::kMillisecond)->UseRealTime();

// 40 sign-ins at once with state.range(0) password hashes allowed at once: how long they all
// take and how far the server's peak memory rises above what one sign-in left (64 MiB a hash).
void SignIns40(benchmark::State &state)
{
    BenchServer server(
        {"--local", "--hash-workers", QString::number(state.range(0)), "--queue-wait", "600"});
    server.start();
    server.join("many@bench.org");
    const std::string body = R"({"email":"many@bench.org","password":"bench-password"})";
    const qint64 before = server.peakMemory();
    std::atomic<int> refused{0};
    for (auto _ : state) {
        std::vector<std::thread> clients;
        for (int i = 0; i < 40; ++i)
            clients.emplace_back([&] {
                const auto in = server.client()->Post("/api/auth/login", body, "application/json");
                if (!in || in->status != 200)
                    ++refused;
            });
        for (std::thread &t : clients)
            t.join();
    }
    state.counters["peak_rise_MiB"] =
        benchmark::Counter(double(server.peakMemory() - before) / (1024.0 * 1024.0));
    state.counters["refused"] = benchmark::Counter(refused.load());
}
BENCHMARK(SignIns40)->Arg(2)->Arg(40)->Iterations(1)->Unit(benchmark::kMillisecond)->UseRealTime();

void ColdStart(benchmark::State &state)
{
    qint64 total = 0;
    for (auto _ : state) {
        BenchServer server;
        const qint64 micros = server.start();
        total += micros;
        state.SetIterationTime(double(micros) / 1e6);
    }
    state.counters["ms_to_listening"] =
        benchmark::Counter(double(total) / 1000.0 / double(state.iterations()));
}
BENCHMARK(ColdStart)->Iterations(20)->UseManualTime()->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    delete decksServer;
    return 0;
}
