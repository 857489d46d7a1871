// The note editor against a real orvel-server: lines typed in the editor reach the server in
// order with their ids, and the margin the server's dictionary writes comes back beside them; a
// pasted picture stays on its line and loads after the note is opened again; "/conj laufen"
// becomes the verb's forms.
#include "app/timings.h"
#include "awaittask.h"
#include "notes/notecommands.h"
#include "notes/noteeditor.h"
#include "notes/notepictures.h"
#include "notes/picturefile.h"
#include "server/apiclient.h"
#include "serverprocess.h"
#include "skipunlessci.h"
#include "testservices.h"

#include <QFile>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

using namespace orvel;
using testsupport::await;
using Key = NoteEditor::LineKey;

class TestNotesEndToEnd : public QObject {
    Q_OBJECT
    QTemporaryDir m_dir;
    ServerProcess m_server{{QStringLiteral("--local")}};

private slots:
    void initTestCase()
    {
        QVERIFY(m_dir.isValid());
        qputenv("XDG_DATA_HOME", m_dir.filePath("data").toUtf8());
        QVERIFY2(m_server.start(), qPrintable(m_server.errorText()));
        Timings::shared() = Timings{}.scaled(0.1);
    }
    void cleanupTestCase() { Timings::shared() = Timings{}; }

    void linesTypedReachTheServerAndGetTheirMargin()
    {
        APIClient api(m_server.baseUrl(), m_dir.filePath("jar"), QString());
        await(api.signUp(QStringLiteral("ana@example.org"), QStringLiteral("correct horse"),
                         QStringLiteral("Ana")));
        await(api.signIn(QStringLiteral("ana@example.org"), QStringLiteral("correct horse")));
        const DeckSummary deck =
            await(api.createDeck(QStringLiteral("Deutsch"), QString(), QStringLiteral("de"),
                                 QStringLiteral("en"), std::nullopt));
        const Note created = await(api.createNote(deck.id, QString(), QString()));

        testsupport::TestServices services(api);
        NoteEditor editor;
        QSignalSpy saved(&editor, &NoteEditor::saved);
        editor.open(created, deck.id, QStringLiteral("de"));
        QCOMPARE(editor.lines()->count(), 1);
        editor.edit(0, QStringLiteral("der Hund"));
        editor.key(0, int(Key::Newline));
        editor.key(1, int(Key::Newline)); // a blank line between, never sent
        editor.edit(2, QStringLiteral("die Katze"));
        editor.key(2, int(Key::Newline));
        editor.edit(3, QStringLiteral("Guten Morgen"));
        QTRY_VERIFY_WITH_TIMEOUT(!saved.isEmpty(), 10000);
        QVERIFY(await(editor.flush()));

        const Note stored = await(api.note(created.id));
        QStringList texts;
        for (const NoteLine &line : stored.lines)
            texts.append(line.text);
        QCOMPARE(texts, QStringList({"der Hund", "die Katze", "Guten Morgen"}));
        QCOMPARE(editor.lines()->at(0).id, stored.lines[0].id);
        QCOMPARE(editor.lines()->at(2).id, stored.lines[1].id);
        QCOMPARE(editor.lines()->at(3).id, stored.lines[2].id);
        QVERIFY(!editor.lines()->at(1).id);
        QCOMPARE(editor.pendingCount(), 3);

        if (!QFile::exists(QStringLiteral("/usr/share/dictd/freedict-deu-eng.index")))
            ORVEL_SKIP_UNLESS_CI("The German FreeDict dictionary is not installed.");
        editor.askForMargin();
        QTRY_VERIFY_WITH_TIMEOUT(!editor.annotating(), 30000);
        QCOMPARE(editor.trouble(), QString());
        QVERIFY2(editor.outcome().endsWith(QStringLiteral(" annotated.")),
                 qPrintable(editor.outcome()));
        QCOMPARE(editor.pendingCount(), 0);
        // The dictionary knows the dog: its gloss sits beside the first line.
        bool dog = false;
        for (const Annotation &remark : editor.lines()->at(0).annotations)
            dog = dog || remark.body.contains(QStringLiteral("dog"), Qt::CaseInsensitive);
        QVERIFY(dog);
        // The untitled note took its first line as its title, and the server has it.
        QCOMPARE(editor.title(), QStringLiteral("der Hund"));
        QVERIFY(await(editor.flush()));
        QCOMPARE(await(api.note(created.id)).title, QStringLiteral("der Hund"));
    }

    void aPictureAndAConjugationStayWithTheNote()
    {
        APIClient api(m_server.baseUrl(), m_dir.filePath("jar2"), QString());
        await(api.signUp(QStringLiteral("ben@example.org"), QStringLiteral("correct horse"),
                         QStringLiteral("Ben")));
        await(api.signIn(QStringLiteral("ben@example.org"), QStringLiteral("correct horse")));
        const DeckSummary deck =
            await(api.createDeck(QStringLiteral("Deutsch"), QString(), QStringLiteral("de"),
                                 QStringLiteral("en"), std::nullopt));
        const Note created = await(api.createNote(deck.id, QString(), QString()));
        testsupport::TestServices services(api);

        // A PNG of one grey pixel.
        const QByteArray bytes =
            QByteArray::fromBase64("iVBORw0KGgoAAAANSUhEUgAAAAEAAAABCAAAAAA6fptVAAAACklEQVR4nGNoAAA"
                                   "AggCBd81ytgAAAABJRU5ErkJggg==");
        {
            NoteEditor editor;
            editor.open(created, deck.id, QStringLiteral("de"));
            editor.edit(0, QStringLiteral("eine Katze"));
            editor.pictures()->place(0, bytes, QStringLiteral("image/png"));
            QTRY_VERIFY_WITH_TIMEOUT(editor.lines()->at(0).media.has_value(), 10000);
            QCOMPARE(editor.pictures()->trouble(), QString());
            QVERIFY(await(editor.flush()));
        }

        // Opened again, the line has its picture, and the picture's file loads.
        const Note stored = await(api.note(created.id));
        QCOMPARE(stored.lines.size(), 1);
        QVERIFY(stored.lines[0].media);
        QCOMPARE(stored.lines[0].media->origin, QStringLiteral("upload"));
        qputenv("XDG_CACHE_HOME", m_dir.filePath("cache").toUtf8());
        PictureFile file;
        file.setUrl(stored.lines[0].media->url);
        QTRY_VERIFY_WITH_TIMEOUT(!file.loading(), 10000);
        QVERIFY(!file.failed());
        QFile kept(file.source().toLocalFile());
        QVERIFY(kept.open(QIODevice::ReadOnly));
        QCOMPARE(kept.readAll(), bytes);

        if (!QFile::exists(QStringLiteral("/usr/share/dictd/freedict-deu-eng.index")))
            ORVEL_SKIP_UNLESS_CI("The German FreeDict dictionary is not installed.");
        NoteEditor editor;
        editor.open(stored, deck.id, QStringLiteral("de"));
        editor.key(0, int(Key::Newline));
        editor.edit(1, QStringLiteral("/conj laufen"));
        QCOMPARE(editor.commands()->row(), 1);
        QVERIFY(editor.key(1, int(Key::Newline)));
        QTRY_VERIFY_WITH_TIMEOUT(editor.lines()->count() > 2, 30000);
        QCOMPARE(editor.commands()->message(), QString());
        QStringList forms;
        for (int row = 1; row < editor.lines()->count(); ++row) {
            forms.append(editor.lines()->at(row).text);
            QCOMPARE(editor.lines()->at(row).source, QStringLiteral("/conj laufen"));
        }
        QVERIFY2(forms.join(u'\n').contains(QStringLiteral("läuft")),
                 qPrintable(forms.join(" / ")));
        QVERIFY(!forms.contains(QStringLiteral("/conj laufen")));
        QVERIFY(await(editor.flush()));
    }
};

QTEST_GUILESS_MAIN(TestNotesEndToEnd)
#include "tst_notes_e2e.moc"
