// The spoken-clip cache kept under its size: the least recently used clips go first, a read
// counts as a use, files left from an earlier run count (oldest first), and a clip larger than
// the whole limit is served but not kept.
#include "speech/clipcache.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

using namespace cardserver;

class TestClipCache : public QObject {
    Q_OBJECT

    QTemporaryDir dir;

    static QByteArray clip(char fill) { return QByteArray(100, fill); }
    QStringList onDisk(const QString &folder) const
    {
        QStringList names = QDir(dir.filePath(folder)).entryList({"*.mp3"}, QDir::Files);
        names.sort();
        return names;
    }

private slots:
    void keepsTheRecentlyUsedUnderTheLimit()
    {
        ClipCache cache(dir.filePath("a"), 300);
        cache.store("1.mp3", clip('1'));
        cache.store("2.mp3", clip('2'));
        cache.store("3.mp3", clip('3'));
        QCOMPARE(cache.bytes(), 300);
        QCOMPARE(cache.read("1.mp3"), clip('1')); // 1 is now the most recent; 2 the least

        cache.store("4.mp3", clip('4'));
        QCOMPARE(onDisk("a"), QStringList({"1.mp3", "3.mp3", "4.mp3"}));
        QVERIFY(cache.read("2.mp3").isEmpty());
        QCOMPARE(cache.bytes(), 300);

        // A bigger clip makes room for itself, oldest first.
        cache.store("5.mp3", QByteArray(250, '5'));
        QCOMPARE(onDisk("a"), QStringList({"5.mp3"}));
        QCOMPARE(cache.bytes(), 250);

        // One larger than the whole limit is not kept, and takes nothing with it.
        cache.store("6.mp3", QByteArray(301, '6'));
        QCOMPARE(onDisk("a"), QStringList({"5.mp3"}));

        // Storing a clip again replaces it rather than counting it twice.
        cache.store("5.mp3", QByteArray(200, '5'));
        QCOMPARE(cache.bytes(), 200);
        QCOMPARE(cache.read("5.mp3").size(), 200);
    }

    void countsWhatAnEarlierRunLeft()
    {
        const QString folder = dir.filePath("b");
        QDir().mkpath(folder);
        const QDateTime start = QDateTime::currentDateTimeUtc().addSecs(-100);
        for (int i = 0; i < 3; ++i) {
            QFile f(folder + QStringLiteral("/old%1.mp3").arg(i));
            QVERIFY(f.open(QIODevice::WriteOnly));
            f.write(clip(char('a' + i)));
            f.setFileTime(start.addSecs(i), QFileDevice::FileModificationTime);
        }
        ClipCache cache(folder, 300);
        cache.store("new.mp3", clip('n'));
        QCOMPARE(onDisk("b"), QStringList({"new.mp3", "old1.mp3", "old2.mp3"}));
        QCOMPARE(cache.bytes(), 300);

        // A file removed behind its back is a miss, and no longer counts.
        QFile::remove(folder + "/old2.mp3");
        QVERIFY(cache.read("old2.mp3").isEmpty());
        QCOMPARE(cache.bytes(), 200);
    }
};

QTEST_GUILESS_MAIN(TestClipCache)
#include "tst_clipcache.moc"
