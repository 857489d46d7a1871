// The draft journal on a temporary folder: every field read back, replacing and forgetting only
// the acknowledged content, what is not an entry (torn, foreign, newer format, stray temporary
// files), private permissions, and a folder that cannot be written.
#include "notes/draftjournal.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <sys/stat.h>
#include <unistd.h>

using namespace orvel;

namespace {

JournalEntry fullEntry(int noteId = 7)
{
    Draft pictured = Draft::withText(QStringLiteral("Der Hund läuft – schnell “hier”"));
    pictured.id = 41;
    Media media;
    media.id = 3;
    media.url = QStringLiteral("https://x/p.png");
    media.width = 640;
    media.height = 480;
    media.origin = QStringLiteral("upload");
    media.sourceUrl = QStringLiteral("https://example.org/dog");
    media.author = QStringLiteral("Ana");
    media.licence = QStringLiteral("CC BY");
    media.title = QStringLiteral("Dog");
    pictured.media = media;
    pictured.source = QStringLiteral("byte");
    pictured.kind = QStringLiteral("phrase");
    Annotation remark;
    remark.kind = QStringLiteral("gloss");
    remark.span = QStringLiteral("Hund");
    remark.body = QStringLiteral("dog");
    remark.term = QStringLiteral("der Hund");
    remark.edited = true;
    Deeper deeper;
    deeper.level = 2;
    deeper.body = QStringLiteral("masculine");
    deeper.last = true;
    remark.deeper = {deeper};
    pictured.annotations = {remark, Annotation{}};
    return JournalEntry{noteId,
                        3,
                        QStringLiteral("Tiere"),
                        {pictured, Draft::empty(), Draft::withText(QStringLiteral("\tzwei"))}};
}

QFileDevice::Permissions modeOf(const QString &path)
{
    return QFile::permissions(path) &
           (QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner |
            QFileDevice::ReadGroup | QFileDevice::WriteGroup | QFileDevice::ExeGroup |
            QFileDevice::ReadOther | QFileDevice::WriteOther | QFileDevice::ExeOther);
}

} // namespace

class TestDraftJournal : public QObject {
    Q_OBJECT
    std::unique_ptr<QTemporaryDir> m_dir;
    QString folder() const { return m_dir->filePath("orvel/drafts"); }

private slots:
    void init() { m_dir = std::make_unique<QTemporaryDir>(); }

    void everyFieldRoundTrips()
    {
        const JournalEntry entry = fullEntry();
        const QByteArray bytes = entry.encode();
        QVERIFY(bytes.contains(entry.drafts[0].key.toString(QUuid::WithoutBraces).toUtf8()));
        QCOMPARE(JournalEntry::decode(bytes), entry);

        DraftJournal journal(folder());
        QVERIFY2(journal.keep(entry), qPrintable(journal.error()));
        QCOMPARE(journal.read(7), entry);
        QCOMPARE(DraftJournal(folder()).read(7), entry);
        QCOMPARE(journal.read(8), std::nullopt);
    }

    void replacesAndForgetsOnlyWhatWasAcknowledged()
    {
        DraftJournal journal(folder());
        JournalEntry older = fullEntry();
        JournalEntry newer = older;
        newer.drafts.append(Draft::withText(QStringLiteral("typed while saving")));
        QVERIFY(journal.keep(older));
        QVERIFY(journal.keep(fullEntry(12)));
        QVERIFY(journal.keep(newer));
        QCOMPARE(journal.read(7), newer);
        QCOMPARE(journal.notes(), (QList<int>{7, 12}));

        journal.forget(7, older); // the save of the older content came back after the newer write
        QCOMPARE(journal.read(7), newer);
        JournalEntry rekeyed = newer;
        rekeyed.drafts[1].key = QUuid::createUuid(); // same text, another line
        journal.forget(7, rekeyed);
        QCOMPARE(journal.read(7), newer);
        journal.forget(7, newer);
        QCOMPARE(journal.read(7), std::nullopt);
        QCOMPARE(journal.notes(), QList<int>{12});
    }

    void bytesThatAreNoEntry_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        const JournalEntry entry = fullEntry();
        const QByteArray good = entry.encode();
        QTest::newRow("empty") << QByteArray();
        QTest::newRow("torn") << good.left(good.size() / 2);
        QTest::newRow("foreign") << QByteArray(R"({"id": 7, "title": "x"})");
        QTest::newRow("array") << QByteArray("[1, 2]");
        QTest::newRow("newer format") << QByteArray(good).replace("\"version\":1", "\"version\":2");
        QTest::newRow("bad key") << QByteArray(good).replace(
            entry.drafts[0].key.toString(QUuid::WithoutBraces).toUtf8(), "not-a-key");
        QTest::newRow("text not a string")
            << QByteArray(good).replace("\"text\":\"\\tzwei\"", "\"text\":2");
        QTest::newRow("media of the wrong shape")
            << QByteArray(good).replace("\"width\":640", "\"width\":\"wide\"");
    }

    void bytesThatAreNoEntry()
    {
        QFETCH(QByteArray, bytes);
        QCOMPARE(JournalEntry::decode(bytes), std::nullopt);
    }

    void tornAndStrayFilesAreNotEntries()
    {
        DraftJournal journal(folder());
        QVERIFY(journal.keep(fullEntry(5)));
        const QByteArray good = fullEntry(9).encode();
        for (const auto &[name, bytes] :
             {std::pair{QStringLiteral("note-9.json"), good.left(good.size() - 3)},
              std::pair{QStringLiteral(".note-11.1a2b3c4d.tmp"), fullEntry(11).encode()},
              std::pair{QStringLiteral("note-13.json.tmp"), fullEntry(13).encode()},
              std::pair{QStringLiteral("note-x.json"), good}}) {
            QFile file(QDir(folder()).filePath(name));
            QVERIFY(file.open(QIODevice::WriteOnly));
            file.write(bytes);
        }
        QCOMPARE(journal.notes(), (QList<int>{5, 9}));
        QCOMPARE(journal.read(9), std::nullopt);
        const JournalEntry replacement = fullEntry(9);
        QVERIFY(journal.keep(replacement)); // a torn entry is simply replaced
        QCOMPARE(journal.read(9), replacement);
        // The file name decides whose entry it is: an entry copied under another note's name is
        // not that note's.
        QVERIFY(QFile::copy(QDir(folder()).filePath("note-5.json"),
                            QDir(folder()).filePath("note-6.json")));
        QCOMPARE(journal.read(6), std::nullopt);
    }

    void folderAndFilesArePrivate()
    {
        const mode_t previous = ::umask(0);
        QVERIFY(QDir().mkpath(folder()));
        QVERIFY(QFile::setPermissions(folder(), QFileDevice::Permissions(0x7755)));
        DraftJournal journal(folder());
        const bool kept = journal.keep(fullEntry());
        ::umask(previous);
        QVERIFY(kept);
        QCOMPARE(modeOf(folder()),
                 QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner);
        QCOMPARE(modeOf(QDir(folder()).filePath("note-7.json")),
                 QFileDevice::ReadOwner | QFileDevice::WriteOwner);
        QCOMPARE(QDir(folder()).entryList(QDir::Files | QDir::Hidden), QStringList{"note-7.json"});
    }

    void aFolderThatCannotBeWrittenGivesAnErrorAndKeepsTheOldEntry()
    {
        // A folder below a plain file can never be made, whoever runs the test.
        QFile blocker(m_dir->filePath("blocker"));
        QVERIFY(blocker.open(QIODevice::WriteOnly));
        DraftJournal blocked(m_dir->filePath("blocker/drafts"));
        QVERIFY(!blocked.keep(fullEntry()));
        QVERIFY(!blocked.error().isEmpty());

        DraftJournal journal(folder());
        const JournalEntry old = fullEntry();
        QVERIFY(journal.keep(old));
        if (::geteuid() == 0)
            QSKIP("running as root: a read-only folder does not stop root from writing");
        QVERIFY(QFile::setPermissions(folder(), QFileDevice::ReadOwner | QFileDevice::ExeOwner));
        JournalEntry newer = old;
        newer.title = QStringLiteral("changed");
        const bool kept = journal.keep(newer);
        const QString error = journal.error();
        QFile::setPermissions(folder(), QFileDevice::ReadOwner | QFileDevice::WriteOwner |
                                            QFileDevice::ExeOwner);
        QVERIFY(!kept);
        QVERIFY(error.contains(folder()));
        QCOMPARE(journal.read(7), old);
        QCOMPARE(journal.notes(), QList<int>{7});
    }
};

QTEST_GUILESS_MAIN(TestDraftJournal)
#include "tst_draftjournal.moc"
