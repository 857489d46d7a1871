// The notes page of a deck: its list, opening a note once however often it is asked for, making
// a new note, the rail's remembered choice, and the list following the editor's saves.
#include "app/appstate.h"
#include "app/timings.h"
#include "awaittask.h"
#include "notereplies.h"
#include "notes/noteeditor.h"
#include "notes/notespanel.h"
#include "scriptedserver.h"
#include "server/apiclient.h"
#include "server/localsettings.h"
#include "testservices.h"

#include <QAbstractItemModelTester>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

using namespace orvel;
using notereplies::noteJson;
using notereplies::remarkJson;
using testsupport::await;

class TestNotesPanel : public QObject {
    Q_OBJECT
    QTemporaryDir m_dir;
    ScriptedServer *m_server = nullptr;
    APIClient *m_api = nullptr;
    testsupport::TestServices *m_services = nullptr;

private slots:
    void init()
    {
        LocalSettings::useFile(m_dir.filePath("orvel.conf"));
        qputenv("XDG_DATA_HOME", m_dir.filePath("data").toUtf8());
        m_server = new ScriptedServer;
        m_api = new APIClient(m_server->baseUrl(), m_dir.filePath("cookies"), QString());
        m_services = new testsupport::TestServices(*m_api);
        m_server->reply("GET", "/api/decks/3/notes", 200,
                        R"([{"id":7,"title":"At the bakery","created_at":"","updated_at":"",)"
                        R"("line_count":2,"pending_count":1},)"
                        R"({"id":8,"title":"","created_at":"","updated_at":"",)"
                        R"("line_count":1,"pending_count":0}])");
        m_server->reply("GET", "/api/decks/4/notes", 200, "[]");
    }

    void cleanup()
    {
        Timings::shared() = Timings{};
        delete m_services;
        delete m_api;
        delete m_server;
    }

    void listsTheDecksNotes()
    {
        NotesPanel panel;
        QAbstractItemModelTester tester(&panel);
        await(panel.load(3, QStringLiteral("de")));
        QVERIFY(panel.loaded());
        QVERIFY(!panel.empty());
        QCOMPARE(panel.count(), 2);
        QCOMPARE(panel.data(panel.index(0), NotesPanel::ShownTitleRole), "At the bakery");
        // A note without a title is listed by what the title field shows for it.
        QCOMPARE(panel.data(panel.index(1), NotesPanel::ShownTitleRole), "Untitled note");
        QCOMPARE(panel.data(panel.index(0), NotesPanel::PendingRole), 1);

        await(panel.load(4, QStringLiteral("fr")));
        QVERIFY(panel.empty());
        QCOMPARE(panel.count(), 0);
        QCOMPARE(panel.language(), "fr");
        QCOMPARE(panel.emptyTitle(), "Nothing written down yet");
        QVERIFY(panel.emptyText().startsWith("A note is a page of phrases and questions — "));
        QVERIFY(panel.emptyText().contains(u"didn’t quite catch"));
    }

    void aNoteAskedForTwiceIsReadOnce()
    {
        m_server->stream(
            "GET", "/api/notes/7",
            {{noteJson(7, "At the bakery", {{700, "zwei Brötchen"}, {701, "bitte"}}), "held"}}, 200,
            "application/json");
        NotesPanel panel;
        await(panel.load(3, QStringLiteral("de")));
        m_server->clear();
        panel.open(7);
        panel.open(7);
        QVERIFY(panel.opening());
        QCOMPARE(panel.openedId(), 7);
        m_server->open("held");
        QTRY_VERIFY(panel.editor()->loaded());
        QCOMPARE(panel.editor()->noteId(), 7);
        QCOMPARE(panel.openedRow(), 0);
        QVERIFY(!panel.opening());
        // Coming back to a note read before needs no call at all.
        m_server->reply("GET", "/api/notes/8", 200, noteJson(8, "", {{800, "Salut"}}));
        panel.open(8);
        QTRY_COMPARE(panel.editor()->noteId(), 8);
        panel.open(7);
        QTRY_COMPARE(panel.editor()->noteId(), 7);
        int reads = 0;
        for (const auto &request : m_server->requests())
            reads += request.path == "/api/notes/7";
        QCOMPARE(reads, 1);
    }

    void aFailedOpenChangesNothingAndSays()
    {
        m_server->reply("GET", "/api/notes/7", 500, R"({"error":"The store is locked."})");
        NotesPanel panel;
        await(panel.load(3, QStringLiteral("de")));
        await(panel.openNote(7));
        QCOMPARE(panel.trouble(), "The store is locked.");
        QVERIFY(!panel.editor()->loaded());
        QVERIFY(!panel.opening());
    }

    void aNewNoteIsEmptyFirstAndOpen()
    {
        m_server->reply("POST", "/api/decks/3/notes", 201, noteJson(9, "", {}));
        NotesPanel panel;
        QAbstractItemModelTester tester(&panel);
        await(panel.load(3, QStringLiteral("de")));
        await(panel.create());
        const auto sent = QJsonDocument::fromJson(m_server->lastRequest().body).object();
        QCOMPARE(sent, (QJsonObject{{"title", ""}, {"text", ""}}));
        QCOMPARE(panel.count(), 3);
        QCOMPARE(panel.data(panel.index(0), NotesPanel::IdRole), 9);
        QCOMPARE(panel.openedId(), 9);
        QCOMPARE(panel.openedRow(), 0);
        QVERIFY(panel.editor()->loaded());
        QCOMPARE(panel.editor()->noteId(), 9);
        QVERIFY(!panel.starting());
    }

    // The deck's listing and a new note asked for together: the listing may come back holding
    // the new note already, and the note is then not listed twice.
    void aNewNoteTheListingHoldsIsListedOnce()
    {
        m_server->reply("GET", "/api/decks/5/notes", 200,
                        R"([{"id":9,"title":"","created_at":"","updated_at":"",)"
                        R"("line_count":0,"pending_count":0}])");
        m_server->reply("POST", "/api/decks/5/notes", 201, noteJson(9, "", {}));
        NotesPanel panel;
        QAbstractItemModelTester tester(&panel);
        await(panel.load(5, QStringLiteral("de")));
        await(panel.create());
        QCOMPARE(panel.count(), 1);
        QCOMPARE(panel.openedId(), 9);
        QCOMPARE(panel.openedRow(), 0);
    }

    void theListFollowsTheOpenNote()
    {
        Timings::shared() = Timings{}.scaled(0.02);
        Preferences preferences;
        preferences.marginAsYouGo = true;
        m_services->state().storePreferences(preferences);
        const QByteArray roll = "[" + remarkJson("gloss", "bread roll") + "]";
        const QByteArray please = "[" + remarkJson("gloss", "please") + "]";
        m_server->reply("GET", "/api/notes/7", 200,
                        noteJson(7, "At the bakery",
                                 {{700, "zwei Brötchen", roll, "zwei Brötchen"}, {701, "bitte"}}));
        m_server->reply("PATCH", "/api/notes/7", 200,
                        noteJson(7, "Beim Bäcker",
                                 {{700, "drei Brötchen", roll, "zwei Brötchen"}, {701, "bitte"}}));
        m_server->reply(
            "POST", "/api/notes/7/annotate", 200,
            "{\"note\":" + noteJson(7, "Beim Bäcker", {{701, "bitte", please, "bitte"}}) + "}");
        NotesPanel panel;
        QAbstractItemModelTester tester(&panel);
        await(panel.load(3, QStringLiteral("de")));
        await(panel.openNote(7));
        const auto pending = [&] { return panel.data(panel.index(0), NotesPanel::PendingRole); };

        // The save renames the row; the changed line waits for its margin again.
        panel.editor()->setTitle(QStringLiteral("Beim Bäcker"));
        panel.editor()->edit(0, QStringLiteral("drei Brötchen"));
        QTRY_COMPARE(panel.data(panel.index(0), NotesPanel::ShownTitleRole), "Beim Bäcker");
        QCOMPARE(pending(), 2);
        // The margin written as the learner goes counts too.
        QTRY_COMPARE(m_server->lastRequest().path, "/api/notes/7/annotate");
        QTRY_COMPARE(pending(), 1);
    }

    void theRailIsRemembered()
    {
        {
            NotesPanel panel;
            QVERIFY(panel.rail());
            QCOMPARE(panel.railToggleText(), "Hide the list of notes");
            panel.toggleRail();
            QCOMPARE(panel.railToggleText(), "Show the list of notes");
        }
        NotesPanel again;
        QVERIFY(!again.rail());
        QCOMPARE(LocalSettings::store().value("zelon.notes.rail").toBool(), false);
    }
};

QTEST_GUILESS_MAIN(TestNotesPanel)
#include "tst_notespanel.moc"
