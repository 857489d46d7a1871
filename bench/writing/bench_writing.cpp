// How long a progress event takes from the server writing it to the writing view's row showing
// it: a loopback server streams card events, the composer reads them, and the view model
// reports the changed row. Each event carries the steady-clock time at which the server wrote
// it; the row's change notes when it arrived.
#include "app/appstate.h"
#include "app/services.h"
#include "latencies.h"
#include "server/apiclient.h"
#include "sound/silentoutput.h"
#include "sound/speech.h"
#include "writing/composer.h"
#include "writing/writingsheet.h"

#include <algorithm>
#include <benchmark/benchmark.h>
#include <chrono>
#include <httplib.h>
#include <QCoreApplication>
#include <QElapsedTimer>
#include <QTemporaryDir>
#include <thread>

using namespace orvel;

namespace {

qint64 nowNs()
{
    return std::chrono::duration_cast<std::chrono::nanoseconds>(
               std::chrono::steady_clock::now().time_since_epoch())
        .count();
}

// One streamed card: `events` progress events a few milliseconds apart, each a new definition
// stamped with the time of writing, then the card.
void serveCard(httplib::Server &server, int events, int pauseMs)
{
    server.Post("/api/decks/1/cards", [events, pauseMs](const httplib::Request &,
                                                        httplib::Response &response) {
        response.set_chunked_content_provider(
            "text/event-stream", [events, pauseMs](size_t, httplib::DataSink &sink) {
                for (int i = 0; i < events; ++i) {
                    std::this_thread::sleep_for(std::chrono::milliseconds(pauseMs));
                    const std::string line =
                        R"(data: {"type":"progress","field":"definition","value":")" +
                        std::to_string(nowNs()) + "\"}\n\n";
                    if (!sink.write(line.data(), line.size()))
                        return false;
                }
                const std::string card =
                    R"(data: {"type":"card","card":{"id":1,"deck_id":1,"term":"Hund",)"
                    R"("reading":"","part_of_speech":"","gender":"","translation":"",)"
                    R"("definition":"","usage_notes":"","examples":[],"related":[],)"
                    R"("conjugations":[],"seen":0,"known":0,"streak":0,"last_reviewed":null,)"
                    R"("created_at":""}})"
                    "\n\n";
                sink.write(card.data(), card.size());
                sink.done();
                return true;
            });
    });
}

void eventToRow(benchmark::State &state)
{
    const int events = 50;
    httplib::Server server;
    server.set_tcp_nodelay(true); // as orvel-server does: no Nagle delay on small event writes
    serveCard(server, events, 3);
    const int port = server.bind_to_any_port("127.0.0.1");
    std::thread thread([&] { server.listen_after_bind(); });
    while (!server.is_running())
        std::this_thread::sleep_for(std::chrono::milliseconds(1));

    QTemporaryDir dir;
    APIClient client(QUrl(QStringLiteral("http://127.0.0.1:%1").arg(port)), dir.filePath("c"), {});
    AppState appState(client);
    SilentOutput silent;
    Speech speech(client, silent, dir.path());
    Services services(client, appState, speech);
    Composer composer;
    composer.setDeckId(1);
    QList<qint64> delays;
    QObject::connect(composer.progress(), &QAbstractItemModel::dataChanged, composer.progress(),
                     [&](const QModelIndex &row) {
                         const qint64 arrived = nowNs();
                         const QString value =
                             composer.progress()->data(row, WritingSheet::ValueRole).toString();
                         // A new card clears the row; only stamped values count.
                         if (!value.isEmpty())
                             delays.append(arrived - value.toLongLong());
                     });
    for (auto _ : state) {
        composer.setInput(QStringLiteral("Hund"));
        composer.add();
        QElapsedTimer waited;
        waited.start();
        while (composer.adding() && waited.elapsed() < 10'000)
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 50);
    }
    server.stop();
    thread.join();
    benchsupport::reportLatencies(state, delays, "rows");
}
BENCHMARK(eventToRow)->Iterations(10)->Unit(benchmark::kMillisecond);

// The view model alone: a new state of the record with one changed part.
void rowUpdate(benchmark::State &state)
{
    WritingSheet sheet;
    Writing writing = Writing::begin(QStringLiteral("Hund"));
    qint64 changes = 0;
    QObject::connect(&sheet, &QAbstractItemModel::dataChanged, &sheet, [&] { ++changes; });
    int i = 0;
    for (auto _ : state) {
        writing.definition = QString::number(++i);
        sheet.setWriting(writing);
    }
    benchmark::DoNotOptimize(changes);
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(rowUpdate);

} // namespace
