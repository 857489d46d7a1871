// The replay of journaled notes against a scripted server: saved entries are forgotten, failed
// ones kept and saved by a later run, a note the server lost is made again in its deck, claimed
// notes are left to their editor, and triggers that come together make one run.
#include "app/appstate.h"
#include "app/timings.h"
#include "notes/draftjournal.h"
#include "notes/journalclaim.h"
#include "notes/journalreplay.h"
#include "scriptedserver.h"
#include "server/apiclient.h"
#include "server/localsettings.h"
#include "testservices.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

using namespace orvel;

namespace {

QByteArray noteReply(int id, int deck = 3)
{
    return QJsonDocument(QJsonObject{{"id", id},
                                     {"deck_id", deck},
                                     {"title", "Tiere"},
                                     {"created_at", ""},
                                     {"updated_at", ""},
                                     {"lines", QJsonArray{}}})
        .toJson();
}

JournalEntry entryFor(int noteId)
{
    Draft saved = Draft::withText(QStringLiteral("der Hund"));
    saved.id = 70 + noteId;
    return JournalEntry{noteId,
                        3,
                        QStringLiteral("Tiere"),
                        {saved, Draft::withText(QStringLiteral(" \t")),
                         Draft::withText(QStringLiteral("die Katze"))}};
}

QList<ScriptedServer::Request> requestsTo(const ScriptedServer &server, const QString &path)
{
    QList<ScriptedServer::Request> found;
    for (const auto &request : server.requests())
        if (request.path == path)
            found.append(request);
    return found;
}

} // namespace

class TestJournalReplay : public QObject {
    Q_OBJECT
    std::unique_ptr<QTemporaryDir> m_dir;
    std::unique_ptr<ScriptedServer> m_server;
    std::unique_ptr<APIClient> m_api;
    std::unique_ptr<testsupport::TestServices> m_services;
    std::unique_ptr<DraftJournal> m_journal;

    void signIn() { m_services->state().setSignedIn(User{1, "ana@example.org", "Ana"}); }

private slots:
    void init()
    {
        Timings::shared() = Timings{}.scaled(0.001);
        m_dir = std::make_unique<QTemporaryDir>();
        qputenv("XDG_DATA_HOME", m_dir->path().toUtf8());
        LocalSettings::useFile(m_dir->filePath("settings.conf"));
        m_server = std::make_unique<ScriptedServer>();
        m_api = std::make_unique<APIClient>(m_server->baseUrl(), m_dir->filePath("jar"), QString());
        m_services = std::make_unique<testsupport::TestServices>(*m_api);
        m_journal = std::make_unique<DraftJournal>();
        QCOMPARE(m_journal->folder(), m_dir->filePath("orvel/drafts"));
    }

    void cleanup()
    {
        m_services.reset();
        m_api.reset();
        m_server.reset();
    }

    void savesTheKeptLinesAndForgetsOnceAcknowledged()
    {
        QVERIFY(m_journal->keep(entryFor(5)));
        QVERIFY(m_journal->keep(entryFor(6)));
        m_server->reply("PATCH", "/api/notes/5", 200, noteReply(5));
        m_server->reply("PATCH", "/api/notes/6", 200, noteReply(6));
        JournalReplay replay;
        QCOMPARE(replay.waiting(), 2);
        QCOMPARE(m_server->requestCount(), 0); // nothing before sign-in
        signIn();
        QTRY_COMPARE(replay.waiting(), 0);
        QCOMPARE(m_journal->notes(), QList<int>{});

        const auto saves = requestsTo(*m_server, "/api/notes/5");
        QCOMPARE(saves.size(), 1);
        const QJsonObject body = QJsonDocument::fromJson(saves[0].body).object();
        QCOMPARE(body["title"].toString(), QStringLiteral("Tiere"));
        const QJsonArray lines = body["lines"].toArray();
        QCOMPARE(lines.size(), 2); // the blank line is not sent
        QCOMPARE(lines[0].toObject()["id"].toInt(), 75);
        QCOMPARE(lines[0].toObject()["text"].toString(), QStringLiteral("der Hund"));
        QCOMPARE(lines[1].toObject()["text"].toString(), QStringLiteral("die Katze"));
        QVERIFY(!lines[1].toObject().contains("id"));
    }

    void aFailedSaveKeepsTheEntryAndALaterRunSavesIt()
    {
        const JournalEntry entry = entryFor(5);
        QVERIFY(m_journal->keep(entry));
        m_server->reply("PATCH", "/api/notes/5", 500, R"({"error": "Database is busy."})");
        JournalReplay replay;
        QSignalSpy replayed(&replay, &JournalReplay::replayed);
        signIn();
        QVERIFY(replayed.wait());
        QCOMPARE(m_journal->read(5), entry);
        QCOMPARE(replay.waiting(), 1);
        QCOMPARE(replay.trouble(), QStringLiteral("Database is busy."));

        m_server->reply("PATCH", "/api/notes/5", 200, noteReply(5));
        QTRY_COMPARE(replay.waiting(), 0); // the retry timer's run
        QCOMPARE(m_journal->read(5), std::nullopt);
    }

    void aNoteTheServerLostIsMadeAgainInItsDeck()
    {
        QVERIFY(m_journal->keep(entryFor(5)));
        m_server->reply("PATCH", "/api/notes/5", 404, R"({"error": "No such note."})");
        m_server->reply("POST", "/api/decks/3/notes", 404, R"({"error": "No such deck."})");
        JournalReplay replay;
        QSignalSpy replayed(&replay, &JournalReplay::replayed);
        signIn();
        QVERIFY(replayed.wait());
        QCOMPARE(m_journal->notes(), QList<int>{5}); // the deck is gone too: nothing is lost

        m_server->reply("POST", "/api/decks/3/notes", 201, noteReply(9));
        m_server->reply("PATCH", "/api/notes/9", 200, noteReply(9));
        QTRY_COMPARE(replay.waiting(), 0);
        const auto made = requestsTo(*m_server, "/api/decks/3/notes");
        QCOMPARE(QJsonDocument::fromJson(made.last().body).object()["title"].toString(),
                 QStringLiteral("Tiere"));
        const auto saves = requestsTo(*m_server, "/api/notes/9");
        QCOMPARE(saves.size(), 1);
        const QJsonArray lines = QJsonDocument::fromJson(saves[0].body).object()["lines"].toArray();
        QCOMPARE(lines.size(), 2);
        QVERIFY(!lines[0].toObject().contains("id")); // the old note's line ids mean nothing there
        QCOMPARE(lines[0].toObject()["text"].toString(), QStringLiteral("der Hund"));
        QCOMPARE(m_journal->notes(), QList<int>{});
    }

    void aClaimedNoteIsLeftToItsEditor()
    {
        QVERIFY(m_journal->keep(entryFor(5)));
        QVERIFY(m_journal->keep(entryFor(6)));
        m_server->reply("PATCH", "/api/notes/5", 200, noteReply(5));
        m_server->reply("PATCH", "/api/notes/6", 200, noteReply(6));
        auto claim = std::make_unique<JournalClaim>(5);
        JournalClaim second(5);
        QVERIFY(JournalClaim::claimed(5));
        JournalReplay replay;
        QSignalSpy replayed(&replay, &JournalReplay::replayed);
        signIn();
        QVERIFY(replayed.wait());
        QCOMPARE(m_journal->notes(), QList<int>{5});
        QVERIFY(requestsTo(*m_server, "/api/notes/5").isEmpty());

        claim.reset();
        QVERIFY(JournalClaim::claimed(5)); // the other editor still holds it
        JournalClaim moved = std::move(second);
        QVERIFY(JournalClaim::claimed(5));
        moved.release();
        QVERIFY(!JournalClaim::claimed(5));
        QTRY_COMPARE(replay.waiting(), 0);
        QCOMPARE(requestsTo(*m_server, "/api/notes/5").size(), 1);
    }

    void aNoteLetGoIsSavedAtOnce()
    {
        Timings::shared().journalRetry = std::chrono::hours(1); // no round comes in this case
        QVERIFY(m_journal->keep(entryFor(5)));
        m_server->reply("PATCH", "/api/notes/5", 200, noteReply(5));
        JournalClaim editing(5);
        JournalReplay replay;
        QSignalSpy replayed(&replay, &JournalReplay::replayed);
        signIn();
        QTRY_COMPARE(replayed.size(), 1); // a run with nothing to send
        QCOMPARE(replay.waiting(), 1);

        // Another editor still holds it: nothing goes.
        JournalClaim other(5);
        editing.release();
        QCoreApplication::processEvents();
        QVERIFY(requestsTo(*m_server, "/api/notes/5").isEmpty());

        other.release();
        QTRY_COMPARE(replay.waiting(), 0);
        QCOMPARE(requestsTo(*m_server, "/api/notes/5").size(), 1);
    }

    void triggersThatComeTogetherMakeOneRun()
    {
        QVERIFY(m_journal->keep(entryFor(5)));
        m_server->reply("PATCH", "/api/notes/5", 200, noteReply(5));
        JournalReplay replay;
        QSignalSpy replayed(&replay, &JournalReplay::replayed);
        signIn();
        replay.replay();
        replay.replay();
        QVERIFY(replayed.wait());
        QCOMPARE(replay.waiting(), 0);
        QCOMPARE(requestsTo(*m_server, "/api/notes/5").size(), 1);
        QCOMPARE(replayed.size(), 1);
    }

    void aRunSlowerThanTheRetryIntervalEnds()
    {
        // Note 5's save is held while the retry timer ticks; note 6 can be neither saved nor
        // made again. The run still ends after trying each once, rather than going round again
        // for a tick that came while it waited.
        QVERIFY(m_journal->keep(entryFor(5)));
        QVERIFY(m_journal->keep(entryFor(6)));
        m_server->stream("PATCH", "/api/notes/5", {{noteReply(5), "slow"}}, 200,
                         "application/json");
        m_server->reply("PATCH", "/api/notes/6", 404, R"({"error": "No such note."})");
        m_server->reply("POST", "/api/decks/3/notes", 404, R"({"error": "No such deck."})");
        m_server->reply("PATCH", "/api/notes/8", 200, noteReply(8));
        JournalReplay replay;
        qsizetype triesOfSixAtTheEnd = -1;
        connect(&replay, &JournalReplay::replayed, this, [&] {
            if (triesOfSixAtTheEnd < 0)
                triesOfSixAtTheEnd = requestsTo(*m_server, "/api/notes/6").size();
        });
        signIn();
        QTRY_COMPARE(requestsTo(*m_server, "/api/notes/5").size(), 1);

        // A tick during the run: it finds the entry written meanwhile.
        QSignalSpy waiting(&replay, &JournalReplay::waitingChanged);
        QVERIFY(m_journal->keep(entryFor(8)));
        QTRY_VERIFY(!waiting.isEmpty());

        m_server->open("slow");
        QTRY_VERIFY(triesOfSixAtTheEnd >= 0);
        QCOMPARE(triesOfSixAtTheEnd, 1);
        QTRY_COMPARE(m_journal->notes(), QList<int>{6}); // a later run saves note 8
    }
};

QTEST_GUILESS_MAIN(TestJournalReplay)
#include "tst_journalreplay.moc"
