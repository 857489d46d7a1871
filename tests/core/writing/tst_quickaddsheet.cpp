#include "awaittask.h"
#include "scriptedserver.h"
#include "server/apiclient.h"
#include "testservices.h"
#include "writing/quickaddsheet.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

using namespace orvel;

namespace {

QByteArray data(const QByteArray &json)
{
    return "data: " + json + "\n\n";
}

const QByteArray cardJson =
    R"({"id":5,"deck_id":2,"term":"Hund","reading":"","part_of_speech":"noun","gender":"der",)"
    R"("translation":"dog","definition":"","usage_notes":"","examples":[],"related":[],)"
    R"("conjugations":[],"seen":0,"known":0,"streak":0,"last_reviewed":null,"created_at":"x"})";

const QByteArray decksJson = R"([
  {"id":1,"name":"Reisen","description":"","language":"de","native_language":"en",
   "created_at":"a","card_count":0,"known_count":0,"last_studied":null,"folder_id":7},
  {"id":2,"name":"Deutsch","description":"","language":"de","native_language":"en",
   "created_at":"a","card_count":0,"known_count":0,"last_studied":null,"folder_id":null},
  {"id":3,"name":"Küche","description":"","language":"de","native_language":"en",
   "created_at":"a","card_count":0,"known_count":0,"last_studied":null,"folder_id":9},
  {"id":4,"name":"Français","description":"","language":"fr","native_language":"en",
   "created_at":"a","card_count":0,"known_count":0,"last_studied":null,"folder_id":null}])";

const QByteArray foldersJson =
    R"([{"id":7,"name":"Travel","deck_count":1},{"id":8,"name":"Empty","deck_count":0},
        {"id":9,"name":"Home","deck_count":1}])";

QStringList namesOf(const QVariantList &choices)
{
    QStringList names;
    for (const QVariant &entry : choices) {
        const QVariantMap map = entry.toMap();
        names.append((map.value("section").toBool() ? u"# "_qs : QString()) +
                     map.value("name").toString());
    }
    return names;
}

} // namespace

class TestQuickAddSheet : public QObject {
    Q_OBJECT
    QTemporaryDir m_dir;
    std::unique_ptr<ScriptedServer> m_server;
    std::unique_ptr<APIClient> m_api;
    std::unique_ptr<testsupport::TestServices> m_services;

private slots:
    void init()
    {
        m_server = std::make_unique<ScriptedServer>();
        m_server->reply("GET", "/api/decks", 200, decksJson);
        m_server->reply("GET", "/api/folders", 200, foldersJson);
        m_api = std::make_unique<APIClient>(m_server->baseUrl(), m_dir.filePath("jar"), QString());
        m_services = std::make_unique<testsupport::TestServices>(*m_api);
    }
    void cleanup()
    {
        m_services.reset();
        m_api.reset();
        m_server.reset();
    }

    void theChooserListsLooseDecksThenOneSectionPerFolder()
    {
        QuickAddSheet sheet;
        testsupport::await(sheet.load());
        QCOMPARE(namesOf(sheet.deckChoices()),
                 (QStringList{"Pick one", "Deutsch", "Français", "# Travel", "Reisen", "# Home",
                              "Küche"}));
        QCOMPARE(sheet.deckId(), std::nullopt);
        QCOMPARE(sheet.chosenIndex(), 0);
        sheet.setDeckId(3);
        QCOMPARE(sheet.chosenIndex(), 6);
        sheet.setDeckId(42); // no such deck
        QCOMPARE(sheet.deckId(), std::nullopt);
    }

    void aWrittenCardIsReportedWithItsDeckAndTheSheetCloses()
    {
        m_server->stream("POST", "/api/decks/2/cards",
                         {{data(R"({"type":"progress","field":"translation","value":"dog"})")},
                          {data(R"({"type":"card","card":)" + cardJson + "}")}});
        QuickAddSheet sheet;
        testsupport::await(sheet.load());
        QSignalSpy added(&sheet, &QuickAddSheet::added);
        QSignalSpy closed(&sheet, &QuickAddSheet::closed);
        QStringList narrated;
        connect(&sheet, &QuickAddSheet::narrationChanged, this,
                [&] { narrated.append(sheet.narration()); });
        // Without a deck, or with only blanks, nothing is written.
        sheet.setText(QStringLiteral("Hund"));
        QVERIFY(!sheet.canWrite());
        sheet.add();
        sheet.setDeckId(2);
        sheet.setText(QStringLiteral(" \t "));
        QVERIFY(!sheet.canWrite());
        sheet.add();
        QVERIFY(!sheet.working());

        sheet.setText(QStringLiteral("Hund "));
        sheet.add();
        QVERIFY(sheet.working());
        sheet.add(); // once is enough
        QVERIFY(QTest::qWaitFor([&] { return closed.size() == 1; }, 5000));
        QCOMPARE(added.size(), 1);
        QCOMPARE(added[0][0].value<DeckSummary>().name, QStringLiteral("Deutsch"));
        QCOMPARE(added[0][1].value<Card>().term, QStringLiteral("Hund"));
        QVERIFY(narrated.contains(QStringLiteral("translation: dog")));
        QCOMPARE(QJsonDocument::fromJson(m_server->lastRequest().body).object(),
                 (QJsonObject{{"input", "Hund"}}));
        QCOMPARE(m_server->requestCount(), 3); // the decks, the folders and this one card
    }

    void aFailureKeepsTheSheetOpenWithItsText_data()
    {
        QTest::addColumn<bool>("refused");
        QTest::addColumn<QString>("message");
        QTest::newRow("failed event") << false << "No such word in German.";
        QTest::newRow("signed out") << true << "You are signed out.";
    }

    void aFailureKeepsTheSheetOpenWithItsText()
    {
        QFETCH(bool, refused);
        QFETCH(QString, message);
        if (refused)
            m_server->reply("POST", "/api/decks/2/cards", 401, "");
        else
            m_server->stream("POST", "/api/decks/2/cards",
                             {{data(R"({"type":"error","error":"No such word in German."})")}});
        QuickAddSheet sheet;
        testsupport::await(sheet.load());
        QSignalSpy closed(&sheet, &QuickAddSheet::closed);
        sheet.setText(QStringLiteral("Hnud"));
        sheet.setDeckId(2);
        sheet.add();
        QVERIFY(QTest::qWaitFor([&] { return !sheet.working(); }, 5000));
        QCOMPARE(sheet.trouble(), message);
        QCOMPARE(sheet.text(), QStringLiteral("Hnud"));
        QCOMPARE(sheet.deckId(), std::optional<int>(2));
        QCOMPARE(closed.size(), 0);
        QVERIFY(sheet.canWrite());
    }

    void aLibraryThatCannotBeLoadedShowsWhy()
    {
        m_server->reply("GET", "/api/decks", 401, "");
        QuickAddSheet sheet;
        testsupport::await(sheet.load());
        QCOMPARE(sheet.trouble(), QStringLiteral("You are signed out."));
        QVERIFY(!sheet.loading());
        QCOMPARE(sheet.deckChoices().size(), 1);
    }
};

QTEST_GUILESS_MAIN(TestQuickAddSheet)
#include "tst_quickaddsheet.moc"
