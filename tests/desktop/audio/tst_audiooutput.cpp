// The desktop's audio output, headless: a PulseAudio of the test's own with a null sink, a clip
// from orvel-server's speech, and what reached the sink recorded from its monitor.
#include "awaittask.h"
#include "qtaudiooutput.h"
#include "samplegain.h"
#include "server/apiclient.h"
#include "serverprocess.h"
#include "skipunlessci.h"
#include "sound/speech.h"

#include <QFileInfo>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>

using namespace orvel;
using testsupport::await;

namespace {

constexpr int rate = 44100;

// parec on the null sink's monitor, its samples (16-bit, mono) kept as they come. The sink runs
// on its own clock, so counting its samples is how the test lets time pass for the sound.
class Recorder {
public:
    Recorder()
    {
        QObject::connect(&m_process, &QProcess::readyReadStandardOutput, &m_process,
                         [this] { m_pcm += m_process.readAllStandardOutput(); });
        m_process.start(QStringLiteral("parec"),
                        {QStringLiteral("-d"), QStringLiteral("nullsink.monitor"),
                         QStringLiteral("--format=s16le"), QStringLiteral("--channels=1"),
                         QStringLiteral("--rate=44100"), QStringLiteral("--latency-msec=20"),
                         QStringLiteral("--raw")});
    }
    ~Recorder()
    {
        m_process.terminate();
        m_process.waitForFinished();
    }

    qsizetype samples() const { return m_pcm.size() / 2; }
    // Waits until the sink's samples come in at all: the recording has begun.
    bool live()
    {
        return QTest::qWaitFor([&] { return samples() > 0; }, 20000);
    }
    // Waits until `count` samples have come after the first `from`.
    bool waitPast(qsizetype from, qsizetype count)
    {
        return QTest::qWaitFor([&] { return samples() >= from + count; }, 20000);
    }
    // The loudest sample from `from` on.
    int peak(qsizetype from = 0) const
    {
        const auto *pcm = reinterpret_cast<const qint16 *>(m_pcm.constData());
        int peak = 0;
        for (qsizetype i = from; i < samples(); ++i)
            peak = std::max(peak, std::abs(int(pcm[i])));
        return peak;
    }

private:
    QProcess m_process;
    QByteArray m_pcm;
};

} // namespace

class TestAudioOutput : public QObject {
    Q_OBJECT
    QTemporaryDir m_runtime;
    QTemporaryDir m_dir;
    QProcess m_pulse;
    ServerProcess m_server{{QStringLiteral("--local")}};
    std::unique_ptr<APIClient> m_api;

    // Plays `text` through the real output at `gain` while recording the sink; the loudest
    // sample that reached it.
    int peakOf(const QString &text, double gain, int *played = nullptr)
    {
        Recorder recorder;
        if (!recorder.live())
            return -1;
        QtAudioOutput output;
        int firstSamples = 0;
        connect(&output, &QtAudioOutput::firstSamples, this, [&] { ++firstSamples; });
        Speech speech(*m_api, output, m_dir.path());
        speech.setGain(gain);
        speech.say(text, QStringLiteral("de"));
        const bool ended = QTest::qWaitFor([&] { return speech.saying().isEmpty(); }, 20000);
        // A third of a second more of the sink, for the end of the clip to come through.
        if (!recorder.waitPast(recorder.samples(), rate / 3))
            return -1;
        if (played)
            *played = ended ? firstSamples : -1;
        return recorder.peak();
    }

private slots:
    void initTestCase()
    {
        if (QStandardPaths::findExecutable(QStringLiteral("pulseaudio")).isEmpty() ||
            QStandardPaths::findExecutable(QStringLiteral("parec")).isEmpty())
            ORVEL_SKIP_UNLESS_CI("pulseaudio and parec (Debian's pulseaudio and pulseaudio-utils) "
                                 "are needed to hear anything");
        QVERIFY(m_runtime.isValid());
        // A sound server of the test's own, reached through its own runtime folder.
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.insert(QStringLiteral("XDG_RUNTIME_DIR"), m_runtime.path());
        env.insert(QStringLiteral("HOME"), m_runtime.path());
        m_pulse.setProcessEnvironment(env);
        m_pulse.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        m_pulse.start(QStringLiteral("pulseaudio"),
                      {QStringLiteral("-n"), QStringLiteral("--daemonize=no"),
                       QStringLiteral("--exit-idle-time=-1"),
                       QStringLiteral("--load=module-null-sink sink_name=nullsink"),
                       QStringLiteral("--load=module-native-protocol-unix auth-anonymous=1")});
        QVERIFY(m_pulse.waitForStarted());
        const QString socket = m_runtime.filePath(QStringLiteral("pulse/native"));
        QVERIFY2(QTest::qWaitFor([&] { return QFileInfo::exists(socket); }, 10000),
                 "pulseaudio did not come up");
        qputenv("XDG_RUNTIME_DIR", m_runtime.path().toUtf8());
        qputenv("PULSE_SERVER", ("unix:" + socket).toUtf8());

        QVERIFY2(m_server.start(), qPrintable(m_server.errorText()));
        m_api = std::make_unique<APIClient>(m_server.baseUrl(), m_dir.filePath("jar"), QString());
        await(m_api->signUp(QStringLiteral("ana@example.org"), QStringLiteral("correct horse"),
                            QStringLiteral("Ana")));
        await(m_api->signIn(QStringLiteral("ana@example.org"), QStringLiteral("correct horse")));
    }
    void cleanupTestCase()
    {
        m_api.reset();
        if (m_pulse.state() != QProcess::NotRunning) {
            m_pulse.terminate();
            m_pulse.waitForFinished(5000);
        }
    }

    void aClipIsHeardAndTheGainScalesIt()
    {
        const QString text = QStringLiteral("Guten Morgen, wie geht es dir?");
        int started = 0;
        const int unity = peakOf(text, 1.0, &started);
        QCOMPARE(started, 1);
        QVERIFY2(unity > 1000, qPrintable(QStringLiteral("peak %1").arg(unity)));
        const int half = peakOf(text, 0.5);
        const double ratio = double(half) / double(unity);
        QVERIFY2(ratio > 0.4 && ratio < 0.6,
                 qPrintable(QStringLiteral("peaks %1 and %2").arg(unity).arg(half)));
        // Louder than unity, held under full scale.
        const int loud = peakOf(text, 4.0);
        QVERIFY2(loud > unity, qPrintable(QStringLiteral("peaks %1 and %2").arg(unity).arg(loud)));
        QVERIFY2(loud < 32767, qPrintable(QStringLiteral("peak %1").arg(loud)));
    }

    void stopSilencesAtOnce()
    {
        Recorder recorder;
        QVERIFY(recorder.live());
        QtAudioOutput output;
        Speech speech(*m_api, output, m_dir.path());
        speech.say(QStringLiteral("Guten Morgen, wie geht es dir?"), QStringLiteral("de"));
        QVERIFY2(QTest::qWaitFor([&] { return recorder.peak() > 1000; }, 20000),
                 "the clip never reached the sink");
        speech.stop();
        QVERIFY(speech.saying().isEmpty());
        // A second of the sink after the stop; past what was already on its way (a quarter of a
        // second), nothing more reaches it.
        const qsizetype stoppedAt = recorder.samples();
        QVERIFY(recorder.waitPast(stoppedAt, rate));
        const int peak = recorder.peak(stoppedAt + rate / 4);
        QVERIFY2(peak < 100, qPrintable(QStringLiteral("peak %1 after stop").arg(peak)));
    }

    void undecodableClipsEndQuietly()
    {
        QTemporaryDir dir;
        const QString path = dir.filePath(QStringLiteral("broken.mp3"));
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(QByteArray(4096, 'x'));
        file.close();
        QtAudioOutput output;
        bool done = false;
        output.play(path, 0.0, [&] { done = true; });
        QVERIFY(QTest::qWaitFor([&] { return done; }, 10000));
    }

    void theSoftLimitKeepsSamplesInRange()
    {
        const SampleGain unity(0.0);
        QCOMPARE(unity.shape(0.5f), 0.5f);
        QCOMPARE(unity.shape(-0.7f), -0.7f);
        QCOMPARE(unity.shape(0.97f), 0.97f); // unity leaves loud samples alone too
        QCOMPARE(unity.shape(1.5f), 1.0f);   // held at full scale
        const SampleGain loud(24.0);
        float last = 0.0f;
        for (float x = 0.0f; x <= 1.0f; x += 0.01f) {
            const float y = loud.shape(x);
            QVERIFY(y < 1.0f);
            QVERIFY(y >= last); // louder input is never quieter output
            QCOMPARE(loud.shape(-x), -y);
            last = y;
        }
        const SampleGain half(-6.0206);
        QVERIFY(qAbs(half.shape(0.8f) - 0.4f) < 1e-3f);
    }
};

QTEST_GUILESS_MAIN(TestAudioOutput)
#include "tst_audiooutput.moc"
