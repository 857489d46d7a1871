// From say() with a cached clip to the first samples the audio sink takes (goal: at most
// 30 ms). Plays through the sound server named by PULSE_SERVER, or through a PulseAudio with a
// null sink that the benchmark starts for itself. The clip is rendered with espeak-ng and lame.
#include "qtaudiooutput.h"
#include "server/apiclient.h"
#include "sound/speech.h"

#include <benchmark/benchmark.h>
#include <chrono>
#include <memory>
#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QFileInfo>
#include <QProcess>
#include <QTemporaryDir>
#include <QThread>
#include <QTimer>

using namespace orvel;

namespace {

const QString text = QStringLiteral("Guten Morgen");

QTemporaryDir *workDir = nullptr;

bool renderClip(const QString &path)
{
    QProcess espeak, lame;
    espeak.setStandardOutputProcess(&lame);
    espeak.start(QStringLiteral("espeak-ng"), {"-v", "de", "--stdout", text});
    lame.start(QStringLiteral("lame"), {"--quiet", "-", path});
    return espeak.waitForFinished() && lame.waitForFinished() && QFileInfo(path).size() > 0;
}

bool startSoundServer(QProcess &pulse)
{
    if (qEnvironmentVariableIsSet("PULSE_SERVER"))
        return true;
    const QString runtime = workDir->filePath(QStringLiteral("runtime"));
    QDir().mkpath(runtime);
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert(QStringLiteral("XDG_RUNTIME_DIR"), runtime);
    env.insert(QStringLiteral("HOME"), runtime);
    pulse.setProcessEnvironment(env);
    pulse.start(QStringLiteral("pulseaudio"),
                {"-n", "--daemonize=no", "--exit-idle-time=-1",
                 "--load=module-null-sink sink_name=nullsink",
                 "--load=module-native-protocol-unix auth-anonymous=1"});
    if (!pulse.waitForStarted())
        return false;
    const QString socket = runtime + QStringLiteral("/pulse/native");
    QElapsedTimer waited;
    waited.start();
    while (!QFileInfo::exists(socket) && waited.elapsed() < 10000)
        QThread::msleep(50);
    qputenv("XDG_RUNTIME_DIR", runtime.toUtf8());
    qputenv("PULSE_SERVER", ("unix:" + socket).toUtf8());
    return QFileInfo::exists(socket);
}

// Time from say() to the sink taking the first samples, with a new player each time (a clip
// cached on disk, decoded afresh) or with one player throughout (a clip heard again).
void sayToFirstSamples(benchmark::State &state)
{
    const bool again = state.range(0) == 1;
    APIClient api(QUrl(QStringLiteral("http://127.0.0.1:9")), workDir->filePath("jar"), QString());
    std::unique_ptr<QtAudioOutput> output;
    std::unique_ptr<Speech> speech;
    auto fresh = [&] {
        speech.reset();
        output = std::make_unique<QtAudioOutput>();
        speech = std::make_unique<Speech>(api, *output, workDir->path());
    };
    fresh();
    // The clip is in the cache under the name say() will look for.
    const QString cached = speech->cacheFile(speech->clipUrl(text, QStringLiteral("de"), {}));
    if (!QFileInfo::exists(cached) && !renderClip(cached)) {
        state.SkipWithError("espeak-ng or lame could not render the clip");
        return;
    }
    if (again) {
        // Heard once before the measuring starts.
        bool heard = false;
        QObject::connect(output.get(), &QtAudioOutput::firstSamples, [&] { heard = true; });
        speech->say(text, QStringLiteral("de"));
        QElapsedTimer waited;
        waited.start();
        while (!heard && waited.elapsed() < 5000)
            QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
    }
    bool failed = false;
    for (auto _ : state) {
        speech->stop();
        if (!again)
            fresh();
        QCoreApplication::processEvents();
        QEventLoop loop;
        bool arrived = false;
        QObject::connect(output.get(), &QtAudioOutput::firstSamples, &loop, [&] {
            arrived = true;
            loop.quit();
        });
        QTimer::singleShot(5000, &loop, &QEventLoop::quit);
        const auto start = std::chrono::steady_clock::now();
        speech->say(text, QStringLiteral("de"));
        if (!arrived)
            loop.exec();
        const auto end = std::chrono::steady_clock::now();
        QObject::disconnect(output.get(), &QtAudioOutput::firstSamples, &loop, nullptr);
        if (!arrived) {
            failed = true;
            break;
        }
        state.SetIterationTime(std::chrono::duration<double>(end - start).count());
    }
    speech->stop();
    if (failed)
        state.SkipWithError("no samples reached the sink within 5 s");
}

} // namespace

BENCHMARK(sayToFirstSamples)
    ->ArgName("heardBefore")
    ->Arg(0)
    ->Arg(1)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond)
    ->Iterations(30);

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    QTemporaryDir dir;
    workDir = &dir;
    QProcess pulse;
    if (!startSoundServer(pulse)) {
        fprintf(stderr, "no sound server: PULSE_SERVER is unset and pulseaudio did not start\n");
        return 1;
    }
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    pulse.terminate();
    pulse.waitForFinished(5000);
    return 0;
}
