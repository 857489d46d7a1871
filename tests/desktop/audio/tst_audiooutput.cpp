// The desktop's audio output, headless: a PulseAudio of the test's own with a null sink, a clip
// from orvel-server's speech, and what reached the sink recorded from its monitor.
#include "awaittask.h"
#include "qtaudiooutput.h"
#include "samplegain.h"
#include "server/apiclient.h"
#include "serverprocess.h"
#include "sound/speech.h"

#include <QElapsedTimer>
#include <QFileInfo>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>

using namespace orvel;
using testsupport::await;

class TestAudioOutput : public QObject {
    Q_OBJECT
    QTemporaryDir m_runtime;
    QTemporaryDir m_dir;
    QProcess m_pulse;
    ServerProcess m_server{{QStringLiteral("--local")}};
    std::unique_ptr<APIClient> m_api;

    // Plays `text` through the real output at `gain` while recording the sink; the loudest
    // sample that reached it (16-bit, mono).
    int peakOf(const QString &text, double gain, int *played = nullptr)
    {
        QProcess recorder;
        recorder.start(QStringLiteral("parec"),
                       {QStringLiteral("-d"), QStringLiteral("nullsink.monitor"),
                        QStringLiteral("--format=s16le"), QStringLiteral("--channels=1"),
                        QStringLiteral("--rate=44100"), QStringLiteral("--raw")});
        if (!recorder.waitForStarted())
            return -1;
        QTest::qWait(300);

        QtAudioOutput output;
        int firstSamples = 0;
        connect(&output, &QtAudioOutput::firstSamples, this, [&] { ++firstSamples; });
        Speech speech(*m_api, output, m_dir.path());
        speech.setGain(gain);
        speech.say(text, QStringLiteral("de"));
        const bool ended = QTest::qWaitFor([&] { return speech.saying().isEmpty(); }, 20000);
        QTest::qWait(300);
        recorder.terminate();
        recorder.waitForFinished();
        if (played)
            *played = ended ? firstSamples : -1;
        const QByteArray pcm = recorder.readAllStandardOutput();
        const auto *samples = reinterpret_cast<const qint16 *>(pcm.constData());
        int peak = 0;
        for (qsizetype i = 0; i < pcm.size() / 2; ++i)
            peak = std::max(peak, std::abs(int(samples[i])));
        return peak;
    }

private slots:
    void initTestCase()
    {
        if (QStandardPaths::findExecutable(QStringLiteral("pulseaudio")).isEmpty() ||
            QStandardPaths::findExecutable(QStringLiteral("parec")).isEmpty())
            QSKIP("pulseaudio and parec are needed to hear anything");
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
        QProcess recorder;
        QtAudioOutput output;
        Speech speech(*m_api, output, m_dir.path());
        speech.say(QStringLiteral("Guten Morgen, wie geht es dir?"), QStringLiteral("de"));
        bool started = false;
        connect(&output, &QtAudioOutput::firstSamples, this, [&] { started = true; });
        QVERIFY(QTest::qWaitFor([&] { return started; }, 20000));
        speech.stop();
        QVERIFY(speech.saying().isEmpty());
        // Recording starts after the stop: nothing more reaches the sink.
        QTest::qWait(100);
        recorder.start(QStringLiteral("parec"),
                       {QStringLiteral("-d"), QStringLiteral("nullsink.monitor"),
                        QStringLiteral("--format=s16le"), QStringLiteral("--channels=1"),
                        QStringLiteral("--raw")});
        QVERIFY(recorder.waitForStarted());
        QTest::qWait(800);
        recorder.terminate();
        recorder.waitForFinished();
        const QByteArray pcm = recorder.readAllStandardOutput();
        const auto *samples = reinterpret_cast<const qint16 *>(pcm.constData());
        int peak = 0;
        for (qsizetype i = 0; i < pcm.size() / 2; ++i)
            peak = std::max(peak, std::abs(int(samples[i])));
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
