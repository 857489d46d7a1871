// Event streams: how fast the reader and decoder turn bytes into events, and how long an event
// takes from the server's socket to the consumer on loopback.
#include "latencies.h"
#include "server/apiclient.h"
#include "server/eventlinereader.h"

#include <algorithm>
#include <benchmark/benchmark.h>
#include <chrono>
#include <httplib.h>
#include <QTemporaryDir>
#include <thread>

using namespace orvel;

namespace {

QByteArray progressBody(int events)
{
    QByteArray body;
    for (int i = 0; i < events; ++i) {
        body += "data: {\"type\":\"progress\",\"field\":\"translation\",\"value\":\"the dog, a "
                "domestic "
                "animal number ";
        body += QByteArray::number(i);
        body += "\"}\n\n";
    }
    return body;
}

// Reader and decoder together, fed in 4 KiB reads as a socket would deliver them.
void readAndDecode(benchmark::State &state)
{
    const QByteArray body = progressBody(10'000);
    for (auto _ : state) {
        EventLineReader reader;
        int decoded = 0;
        for (qsizetype at = 0; at < body.size(); at += 4096) {
            for (const QByteArray &payload : reader.feed(body.mid(at, 4096))) {
                const CardEvent event = json::decode<CardEvent>(payload);
                decoded += event.kind == CardEvent::Kind::Text;
            }
        }
        benchmark::DoNotOptimize(decoded);
    }
    state.SetItemsProcessed(state.iterations() * 10'000);
}
BENCHMARK(readAndDecode)->Unit(benchmark::kMillisecond);

void readerOnly(benchmark::State &state)
{
    const QByteArray body = progressBody(10'000);
    for (auto _ : state) {
        EventLineReader reader;
        qsizetype lines = 0;
        for (qsizetype at = 0; at < body.size(); at += 4096)
            lines += reader.feed(body.mid(at, 4096)).size();
        benchmark::DoNotOptimize(lines);
    }
    state.SetItemsProcessed(state.iterations() * 10'000);
}
BENCHMARK(readerOnly)->Unit(benchmark::kMillisecond);

qint64 nowNs()
{
    return std::chrono::duration_cast<std::chrono::nanoseconds>(
               std::chrono::steady_clock::now().time_since_epoch())
        .count();
}

QCoro::Task<QList<qint64>> consume(EventStream<CardEvent> stream)
{
    QList<qint64> delays;
    while (auto event = co_await stream.next())
        delays.append(nowNs() - event->value.toLongLong());
    co_return delays;
}

// Each event carries the steady-clock time at which the server wrote it; the consumer notes
// when it received it. Events are spaced out so each one travels on its own.
void socketToConsumerDelay(benchmark::State &state)
{
    httplib::Server server;
    server.set_tcp_nodelay(true); // as orvel-server does: no Nagle delay on small event writes
    server.Post("/api/decks/1/cards", [](const httplib::Request &, httplib::Response &response) {
        response.set_chunked_content_provider(
            "text/event-stream", [](size_t, httplib::DataSink &sink) {
                for (int i = 0; i < 50; ++i) {
                    std::this_thread::sleep_for(std::chrono::milliseconds(2));
                    const std::string line =
                        "data: {\"type\":\"progress\",\"field\":\"t\",\"value\":\"" +
                        std::to_string(nowNs()) + "\"}\n\n";
                    if (!sink.write(line.data(), line.size()))
                        return false;
                }
                sink.done();
                return true;
            });
    });
    const int port = server.bind_to_any_port("127.0.0.1");
    std::thread thread([&] { server.listen_after_bind(); });
    while (!server.is_running())
        std::this_thread::sleep_for(std::chrono::milliseconds(1));

    QTemporaryDir dir;
    APIClient client(QUrl(QStringLiteral("http://127.0.0.1:%1").arg(port)), dir.filePath("c"), {});
    QList<qint64> all;
    for (auto _ : state) {
        const QList<qint64> delays = QCoro::waitFor(consume(client.addCardStreaming(1, "x")));
        all += delays;
    }
    server.stop();
    thread.join();
    benchsupport::reportLatencies(state, all, "events");
}
BENCHMARK(socketToConsumerDelay)->Iterations(5)->Unit(benchmark::kMillisecond);

} // namespace
