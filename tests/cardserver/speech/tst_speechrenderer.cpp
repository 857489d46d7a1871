#include "http/apierror.h"
#include "skipunlessci.h"
#include "speech/espeakvoicelist.h"
#include "speech/speechrenderer.h"
#include "writers/writer.h"

#include <QDir>
#include <QFile>
#include <QJsonObject>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QtTest>
#include <thread>

using namespace cardserver;

namespace {

// An MP3 frame starts with 11 set sync bits; lame may put an ID3 tag first.
bool startsWithMp3Frame(const QByteArray &bytes)
{
    qsizetype at = 0;
    if (bytes.startsWith("ID3") && bytes.size() > 10)
        at = 10 + ((bytes[6] & 0x7f) << 21 | (bytes[7] & 0x7f) << 14 | (bytes[8] & 0x7f) << 7 |
                   (bytes[9] & 0x7f));
    return bytes.size() > at + 4 && quint8(bytes[at]) == 0xff &&
           (quint8(bytes[at + 1]) & 0xe0) == 0xe0;
}

const char *kTable =
    "Pty Language       Age/Gender VoiceName          File                 Other Languages\n"
    " 5  de              --/M      German             gmw/de               \n"
    " 6  de              --/F      german-mbrola-1    mb/mb-de1            \n"
    " 2  en-gb           --/M      English_(Great_Britain) gmw/en               (en 2)\n"
    " 5  en-us           --/F      us-girl            gmw/en-US-f          (en 3)\n"
    " 5  variant         --/M      Adam               !v/adam              \n"
    " 5  xx              --/-      Nobody             zz/xx                \n";

} // namespace

class TestSpeechRenderer : public QObject {
    Q_OBJECT
    QTemporaryDir dir;
private slots:
    void parsesEspeakVoiceTables()
    {
        QTemporaryDir mbrola;
        const QJsonArray voices = EspeakVoiceList::parse(kTable, mbrola.path());
        QCOMPARE(voices.size(), 4); // no MBROLA data installed, variants left out
        QCOMPARE(voices[0].toObject(), (QJsonObject{{"id", "gmw/de"},
                                                    {"name", "German"},
                                                    {"gender", "male"},
                                                    {"preview_url", QJsonValue::Null}}));
        QCOMPARE(voices[1]["name"].toString(), "English (Great Britain)");
        QCOMPARE(voices[2]["gender"].toString(), "female");
        QVERIFY(voices[3]["gender"].isNull());

        QDir(mbrola.path()).mkpath("de1");
        QCOMPARE(EspeakVoiceList::parse(kTable, mbrola.path()).at(1)["id"].toString(), "mb/mb-de1");
        QCOMPARE(EspeakVoiceList::languages(kTable),
                 (QStringList{"de", "en-gb", "en", "en-us", "xx"}));
        QVERIFY(EspeakVoiceList::parse("").isEmpty());
    }

    void rendersAndCachesClips()
    {
        SpeechRenderer speech(dir.filePath("clips"));
        if (!speech.available())
            ORVEL_SKIP_UNLESS_CI("espeak-ng or lame is not installed");
        const QByteArray clip = speech.render("Hund", "de", 1.0, "");
        QVERIFY(startsWithMp3Frame(clip));
        QVERIFY(clip.size() > 1000);
        const QString cached = speech.cachePath("Hund", "de", 1.0, "");
        QVERIFY(QFile::exists(cached));

        // A cached clip comes back as it is, without espeak-ng: poison the cached file and the
        // poisoned bytes are what render returns.
        {
            QFile f(cached);
            QVERIFY(f.open(QIODevice::WriteOnly));
            f.write("cached clip");
        }
        QCOMPARE(speech.render("Hund", "de", 1.0, ""), QByteArray("cached clip"));
        QVERIFY(QFile::remove(cached));
        QCOMPARE(speech.render("Hund", "de", 1.0, ""), clip); // rendered again, same bytes

        // Rate and voice are part of the key; the slow clip is longer.
        const QByteArray slow = speech.render("Hund", "de", 0.75, "");
        QVERIFY(slow != clip);
        QVERIFY(slow.size() > clip.size());
        QVERIFY(speech.cachePath("Hund", "de", 0.75, "") != cached);
        QVERIFY(speech.cachePath("Hund", "de", 1.0, "gmw/de") != cached);
        QVERIFY(startsWithMp3Frame(speech.render("Hund", "de", 1.0, "gmw/de")));
    }

    void refusesBadRequests()
    {
        SpeechRenderer speech(dir.filePath("clips2"));
        if (!speech.available())
            ORVEL_SKIP_UNLESS_CI("espeak-ng or lame is not installed");
        const auto status = [&](const QString &text, const QString &lang, const QString &voice) {
            try {
                speech.render(text, lang, 1.0, voice);
                return 200;
            } catch (const WriterError &e) {
                return e.status();
            }
        };
        QCOMPARE(status(QString(1001, u'a'), "de", ""), 422);
        QCOMPARE(status("   ", "de", ""), 422);
        QCOMPARE(status("Hund", "de", "--help"), 422);
        QCOMPARE(status("Hund", "de", "../../etc"), 422);
        QCOMPARE(status("Hund", "de", "zz/nonexistent"), 503); // espeak-ng knows no such voice
        try {
            speech.render("Hund", "de", 1.0, "zz/nonexistent");
        } catch (const WriterError &e) {
            // What espeak-ng said is for the log, not for the learner.
            QCOMPARE(e.message(), QStringLiteral("Speech failed on this server. Try again later."));
        }
        QCOMPARE(status("-w /tmp/x", "de", ""), 200); // a text is never an option
        QVERIFY(!QDir(dir.filePath("clips2")).entryList(QDir::Files).isEmpty());
    }

    void sharesOneClipBetweenThreads()
    {
        SpeechRenderer speech(dir.filePath("clips3"));
        if (!speech.available())
            ORVEL_SKIP_UNLESS_CI("espeak-ng or lame is not installed");
        QList<QByteArray> results(6);
        std::vector<std::thread> threads;
        for (int i = 0; i < 6; ++i)
            threads.emplace_back(
                [&, i] { results[i] = speech.render("Guten Morgen", "de", 1.0, ""); });
        for (auto &t : threads)
            t.join();
        for (const QByteArray &r : results)
            QCOMPARE(r, results[0]);
        QVERIFY(startsWithMp3Frame(results[0]));
        QCOMPARE(QDir(dir.filePath("clips3")).entryList(QDir::Files).size(), 1);
    }

    void rendersAFewAtATime()
    {
        // One process at a time and no queueing: of renders started together some are told the
        // server is busy, and those that run leave nothing half-done; a small cache keeps only
        // what fits.
        SpeechRenderer speech(dir.filePath("clips5"), 1, 1, std::chrono::milliseconds(0));
        if (!speech.available())
            ORVEL_SKIP_UNLESS_CI("espeak-ng or lame is not installed");
        QList<int> statuses(8);
        std::vector<std::thread> threads;
        for (int i = 0; i < 8; ++i)
            threads.emplace_back([&, i] {
                try {
                    statuses[i] = startsWithMp3Frame(speech.render(QStringLiteral("Wort %1").arg(i),
                                                                   "de", 1.0, ""))
                                      ? 200
                                      : 500;
                } catch (const ApiError &e) {
                    statuses[i] = e.status();
                }
            });
        for (auto &t : threads)
            t.join();
        QVERIFY(statuses.contains(200));
        QVERIFY(statuses.contains(503));
        QCOMPARE(statuses.count(200) + statuses.count(503), 8);
        QVERIFY(QDir(dir.filePath("clips5")).entryList(QDir::Files).isEmpty()); // 1 byte: none fit
    }

    void listsVoicesAndLanguages()
    {
        SpeechRenderer speech(dir.filePath("clips4"));
        if (!speech.available())
            ORVEL_SKIP_UNLESS_CI("espeak-ng or lame is not installed");
        const QJsonArray german = speech.voices("de");
        QVERIFY(!german.isEmpty());
        QCOMPARE(german[0]["id"].toString(), "gmw/de");
        QVERIFY(speech.voices("--all").isEmpty());
        QVERIFY(speech.languages().contains("de"));
        QVERIFY(speech.languages().contains("fr"));
    }
};

QTEST_GUILESS_MAIN(TestSpeechRenderer)
#include "tst_speechrenderer.moc"
