// No typed line is lost when the app is killed: a child process types two lines into a note and
// is killed (SIGKILL) before its save, against a real orvel-server; the note opened again offers
// the lines back from the draft journal and saves them.
#include "app/timings.h"
#include "awaittask.h"
#include "notes/draftjournal.h"
#include "notes/noteeditor.h"
#include "server/apiclient.h"
#include "serverprocess.h"
#include "testservices.h"

#include <csignal>
#include <cstdio>
#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QProcess>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

using namespace orvel;
using testsupport::await;

namespace {

const QString Email = QStringLiteral("ana@example.org");
const QString Password = QStringLiteral("correct horse");

QStringList texts(const QList<NoteLine> &lines)
{
    QStringList out;
    for (const NoteLine &line : lines)
        out.append(line.text);
    return out;
}

// The child: signs in, types two lines into the note and says so once they are in the journal,
// then waits to be killed. Its save would come only after ten minutes.
int typeThenWait(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    const QStringList args = qEnvironmentVariable("ORVEL_TYPE_THEN_WAIT").split(u' ');
    Timings::shared().save = std::chrono::minutes(10);
    APIClient api(QUrl(args[0]), args[3], QString());
    await(api.signIn(Email, Password));
    testsupport::TestServices services(api);
    NoteEditor editor;
    editor.open(await(api.note(args[1].toInt())), args[2].toInt(), QStringLiteral("de"));
    editor.edit(0, QStringLiteral("ein Kaffee"));
    editor.key(0, int(NoteEditor::LineKey::Newline));
    editor.edit(1, QStringLiteral("und ein Wasser, bitte"));
    QTimer poll;
    QObject::connect(&poll, &QTimer::timeout, [&] {
        const auto entry = DraftJournal().read(args[1].toInt());
        if (entry && entry->drafts.size() == 2 && entry->drafts[1].text.endsWith(u"bitte")) {
            poll.stop();
            std::puts("typed");
            std::fflush(stdout);
        }
    });
    poll.start(10);
    return app.exec();
}

} // namespace

class TestNotesKilled : public QObject {
    Q_OBJECT
    QTemporaryDir m_dir;
    ServerProcess m_server{{QStringLiteral("--local")}};

private slots:
    void linesTypedBeforeAKillAreSavedOnTheNextOpening()
    {
        qputenv("XDG_DATA_HOME", m_dir.filePath("data").toUtf8());
        QVERIFY2(m_server.start(), qPrintable(m_server.errorText()));
        APIClient api(m_server.baseUrl(), m_dir.filePath("jar"), QString());
        await(api.signUp(Email, Password, QStringLiteral("Ana")));
        await(api.signIn(Email, Password));
        const DeckSummary deck = await(api.createDeck(
            QStringLiteral("Deutsch"), QString(), QStringLiteral("de"), QStringLiteral("en"), {}));
        const Note note = await(api.createNote(deck.id, QString(), QString()));

        QProcess child;
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.insert(QStringLiteral("ORVEL_TYPE_THEN_WAIT"),
                   QStringList{m_server.baseUrl().toString(), QString::number(note.id),
                               QString::number(deck.id), m_dir.filePath("child-jar")}
                       .join(u' '));
        child.setProcessEnvironment(env);
        child.start(QCoreApplication::applicationFilePath(), {});
        QVERIFY(child.waitForStarted());
        QByteArray said;
        const QDeadlineTimer deadline(30000);
        while (!said.contains("typed") && child.state() == QProcess::Running &&
               !deadline.hasExpired())
            if (child.waitForReadyRead(int(deadline.remainingTime())))
                said += child.readAllStandardOutput();
        QVERIFY2(said.contains("typed"), said.constData());
        ::kill(pid_t(child.processId()), SIGKILL);
        QVERIFY(child.waitForFinished());
        QCOMPARE(child.exitStatus(), QProcess::CrashExit);
        QVERIFY(await(api.note(note.id)).lines.isEmpty()); // the save never went

        testsupport::TestServices services(api);
        NoteEditor editor;
        QSignalSpy saved(&editor, &NoteEditor::saved);
        editor.open(await(api.note(note.id)), deck.id, QStringLiteral("de"));
        QVERIFY(!editor.recoveredText().isEmpty());
        QCOMPARE(editor.lines()->count(), 2);
        QTRY_VERIFY_WITH_TIMEOUT(!saved.isEmpty(), 10000);
        const Note stored = await(api.note(note.id));
        QCOMPARE(texts(stored.lines), QStringList({"ein Kaffee", "und ein Wasser, bitte"}));
        QVERIFY(!DraftJournal().read(note.id));
    }
};

int main(int argc, char **argv)
{
    if (qEnvironmentVariableIsSet("ORVEL_TYPE_THEN_WAIT"))
        return typeThenWait(argc, argv);
    QCoreApplication app(argc, argv);
    TestNotesKilled test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_notes_killed.moc"
