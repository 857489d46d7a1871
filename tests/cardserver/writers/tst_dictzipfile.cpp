#include "skipunlessci.h"
#include "writers/dictindex.h"
#include "writers/dictzipfile.h"
#include "writers/writer.h"

#include <QFile>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QtTest>
#include <zlib.h>

using namespace cardserver;

namespace {

void putLe16(QByteArray &out, int v)
{
    out.append(char(v & 0xff));
    out.append(char((v >> 8) & 0xff));
}

void putLe32(QByteArray &out, quint32 v)
{
    for (int i = 0; i < 4; ++i)
        out.append(char((v >> (8 * i)) & 0xff));
}

// Writes text as dictzip does: one raw deflate stream, fully flushed after every chunk of
// chunkLength bytes, with the compressed chunk sizes in the "RA" extra field.
QByteArray makeDictzip(const QByteArray &text, int chunkLength)
{
    z_stream z{};
    deflateInit2(&z, 9, Z_DEFLATED, -MAX_WBITS, 8, Z_DEFAULT_STRATEGY);
    QByteArray body;
    QList<int> sizes;
    for (qsizetype at = 0; at < text.size(); at += chunkLength) {
        QByteArray in = text.mid(at, chunkLength);
        const bool last = at + chunkLength >= text.size();
        QByteArray out(chunkLength * 2 + 64, 0);
        z.next_in = reinterpret_cast<Bytef *>(in.data());
        z.avail_in = uInt(in.size());
        z.next_out = reinterpret_cast<Bytef *>(out.data());
        z.avail_out = uInt(out.size());
        deflate(&z, last ? Z_FINISH : Z_FULL_FLUSH);
        const int produced = int(out.size() - z.avail_out);
        sizes.append(produced);
        body.append(out.left(produced));
    }
    deflateEnd(&z);

    QByteArray ra;
    putLe16(ra, 1);
    putLe16(ra, chunkLength);
    putLe16(ra, int(sizes.size()));
    for (int s : sizes)
        putLe16(ra, s);
    QByteArray extra("RA");
    putLe16(extra, int(ra.size()));
    extra.append(ra);

    QByteArray file;
    file.append("\x1f\x8b\x08", 3);
    file.append(char(4 | 8)); // FEXTRA | FNAME
    putLe32(file, 0);
    file.append(char(2));
    file.append(char(3));
    putLe16(file, int(extra.size()));
    file.append(extra);
    file.append("test.dict", 10); // name with its terminating zero
    file.append(body);
    putLe32(file, quint32(crc32(0, reinterpret_cast<const Bytef *>(text.constData()),
                                uInt(text.size()))));
    putLe32(file, quint32(text.size()));
    return file;
}

QString writeFile(const QTemporaryDir &dir, const QString &name, const QByteArray &data)
{
    const QString path = dir.filePath(name);
    QFile f(path);
    f.open(QIODevice::WriteOnly);
    f.write(data);
    return path;
}

} // namespace

class TestDictzipFile : public QObject {
    Q_OBJECT
private slots:
    void readsAnyRangeAcrossChunks()
    {
        QByteArray text;
        QRandomGenerator rng(7);
        while (text.size() < 50000)
            text.append("word" + QByteArray::number(rng.bounded(100000)) +
                        (rng.bounded(8) ? ' ' : '\n'));
        QTemporaryDir dir;
        DictzipFile file(writeFile(dir, "t.dict.dz", makeDictzip(text, 4096)));
        QCOMPARE(file.chunkLength(), 4096);
        QCOMPARE(file.chunkCount(), int((text.size() + 4095) / 4096));

        QCOMPARE(file.read(0, 10), text.left(10));
        QCOMPARE(file.read(4090, 20), text.mid(4090, 20));      // spans two chunks
        QCOMPARE(file.read(100, 9000), text.mid(100, 9000));    // spans three
        QCOMPARE(file.read(text.size() - 5, 5), text.right(5)); // the short last chunk
        QCOMPARE(file.read(0, text.size()), text);
        for (int i = 0; i < 200; ++i) {
            const qint64 at = rng.bounded(int(text.size()));
            const qint64 n = rng.bounded(int(std::min<qint64>(6000, text.size() - at)) + 1);
            QCOMPARE(file.read(at, n), text.mid(at, n));
        }
        QVERIFY_THROWS_EXCEPTION(WriterError, file.read(text.size() - 2, 10));
        QVERIFY_THROWS_EXCEPTION(WriterError, file.read(-1, 2));
    }

    void refusesFilesThatAreNotDictzip()
    {
        QTemporaryDir dir;
        QVERIFY_THROWS_EXCEPTION(WriterError, DictzipFile(dir.filePath("missing.dz")));
        QVERIFY_THROWS_EXCEPTION(WriterError, DictzipFile(writeFile(dir, "plain", "just text")));

        // A gzip file without the RA field cannot be read at random.
        QByteArray gz = makeDictzip("hello", 4096);
        gz[12] = 'X';
        QVERIFY_THROWS_EXCEPTION(WriterError, DictzipFile(writeFile(dir, "nora.dz", gz)));

        // A damaged chunk is reported, not returned as garbage.
        QByteArray text(20000, 'a');
        for (int i = 0; i < text.size(); i += 7)
            text[i] = char('a' + i % 26);
        QByteArray broken = makeDictzip(text, 4096);
        const qsizetype bodyStart = broken.indexOf("test.dict") + 10;
        for (qsizetype i = bodyStart; i < bodyStart + 40; ++i)
            broken[i] = char(0xff);
        DictzipFile damaged(writeFile(dir, "broken.dz", broken));
        QVERIFY_THROWS_EXCEPTION(WriterError, damaged.read(0, 100));
        QCOMPARE(damaged.read(8192, 10), text.mid(8192, 10)); // other chunks still read
    }

    void decodesIndexNumbers()
    {
        QCOMPARE(DictIndex::decodeNumber("/"), 63);
        QCOMPARE(DictIndex::decodeNumber("BA"), 64);
        QCOMPARE(DictIndex::decodeNumber("F1"), 5 * 64 + 53);
        QCOMPARE(DictIndex::decodeNumber("BZHj3"),
                 ((((1LL * 64 + 25) * 64 + 7) * 64 + 35) * 64 + 55));
        QCOMPARE(DictIndex::decodeNumber("a-b"), -1);
        QCOMPARE(DictIndex::decodeNumber(""), -1);
    }

    void findsHeadwordsIgnoringCase()
    {
        QTemporaryDir dir;
        const QString path = writeFile(dir, "t.index",
                                       "Hund\tA\tF\nhund\tF\tC\nÄrger\tI\tB\nbadline\n"
                                       "Katze\tJ\t!!\n");
        const DictIndex index(path);
        QCOMPARE(index.size(), 3);
        QCOMPARE(index.find("HUND"), (QVector<DictLocation>{{0, 5}, {5, 2}}));
        QCOMPARE(index.find(" ärger "), (QVector<DictLocation>{{8, 1}}));
        QVERIFY(index.find("Katze").isEmpty());
        QVERIFY(index.find("Hun").isEmpty());
        QVERIFY_THROWS_EXCEPTION(WriterError, DictIndex(dir.filePath("nope.index")));
    }

    void readsTheInstalledGermanDictionary()
    {
        const QString stem = QStringLiteral("/usr/share/dictd/freedict-deu-eng");
        if (!QFile::exists(stem + ".index"))
            ORVEL_SKIP_UNLESS_CI("dict-freedict-deu-eng is not installed");
        const DictIndex index(stem + ".index");
        QVERIFY(index.size() > 400000);
        const auto where = index.find("hund");
        QVERIFY(where.size() >= 3);
        DictzipFile data(stem + ".dict.dz");
        bool dog = false;
        for (const DictLocation &at : where) {
            const QString entry = QString::fromUtf8(data.read(at.offset, at.length));
            QVERIFY2(entry.startsWith("Hund /hˈʊnt/"), qPrintable(entry));
            dog = dog || entry.contains("dog <n>");
        }
        QVERIFY(dog);
    }
};

QTEST_GUILESS_MAIN(TestDictzipFile)
#include "tst_dictzipfile.moc"
