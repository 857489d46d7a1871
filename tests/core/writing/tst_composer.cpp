// The composer against a scripted server: a card written event by event, failures and broken
// streams, one card at a time, the deck's list, and short lessons asked for and kept.
#include "app/appstate.h"
#include "awaittask.h"
#include "library/cardlist.h"
#include "scriptedserver.h"
#include "server/apiclient.h"
#include "server/localsettings.h"
#include "testservices.h"
#include "writing/bytesheet.h"
#include "writing/composer.h"
#include "writing/writingsheet.h"

#include <QAbstractItemModelTester>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

using namespace orvel;

namespace {

QByteArray cardJson(int id, const QByteArray &term)
{
    return R"({"id":)" + QByteArray::number(id) + R"(,"deck_id":12,"term":")" + term +
           R"(","reading":"","part_of_speech":"noun","gender":"der","translation":"dog",
"definition":"","usage_notes":"","examples":[],"related":[],"conjugations":[],"seen":0,
"known":0,"streak":0,"last_reviewed":null,"created_at":"2026-11-01"})";
}

QByteArray data(const QByteArray &json)
{
    return "data: " + QByteArray(json).replace('\n', ' ') + "\n\n";
}

QByteArray cardEvent(int id, const QByteArray &term)
{
    return data(R"({"type":"card","card":)" + cardJson(id, term) + "}");
}

QJsonObject bodyOf(const ScriptedServer::Request &request)
{
    return QJsonDocument::fromJson(request.body).object();
}

int countOf(const ScriptedServer &server, const QByteArray &method, const QString &path)
{
    int count = 0;
    for (const auto &request : server.requests())
        count += request.method == method && request.path == path ? 1 : 0;
    return count;
}

} // namespace

class TestComposer : public QObject {
    Q_OBJECT
    QTemporaryDir m_dir;
    std::unique_ptr<ScriptedServer> m_server;
    std::unique_ptr<APIClient> m_api;
    std::unique_ptr<testsupport::TestServices> m_services;
    std::unique_ptr<Composer> m_composer;

    // Types `input` and presses Return; true once no card is on its way any more.
    bool add(const QString &input)
    {
        m_composer->setInput(input);
        m_composer->add();
        return QTest::qWaitFor([&] { return !m_composer->adding(); }, 5000);
    }

private slots:
    void initTestCase() { LocalSettings::useFile(m_dir.filePath("orvel.conf")); }
    void init()
    {
        m_server = std::make_unique<ScriptedServer>();
        m_api = std::make_unique<APIClient>(m_server->baseUrl(), m_dir.filePath("jar"), QString());
        m_services = std::make_unique<testsupport::TestServices>(*m_api);
        m_composer = std::make_unique<Composer>();
        m_composer->setDeckId(12);
    }
    void cleanup()
    {
        m_composer.reset();
        m_services.reset();
        m_api.reset();
        m_server.reset();
    }

    void theWritingFillsEventByEventAndTheCardGoesFirst()
    {
        // Keys in any order, unknown keys, an unknown field and an unknown event type.
        m_server->stream("POST", "/api/decks/12/cards",
                         {{data(R"({"value":"der Hund","field":"term","type":"progress"})")},
                          {data(R"({"type":"progress","field":"gender","value":"der","extra":1})")},
                          {data(R"({"type":"progress","field":"translation","value":"dog"})")},
                          {data(R"({"count":2,"type":"progress","field":"examples"})")},
                          {data(R"({"type":"progress","field":"related","count":4})")},
                          {data(R"({"type":"thinking","about":"dogs"})")},
                          {data(R"({"type":"progress","field":"usage_notes","value":"common"})")},
                          {cardEvent(5, "Hund")}});
        Composer &composer = *m_composer;
        WritingSheet *sheet = composer.progress();
        QAbstractItemModelTester tester(sheet,
                                        QAbstractItemModelTester::FailureReportingMode::QtTest);
        // What the view model shows, row by row, as each change arrives.
        QStringList seen;
        connect(sheet, &QAbstractItemModel::dataChanged, this,
                [&](const QModelIndex &from, const QModelIndex &, const QList<int> &roles) {
                    if (!roles.contains(WritingSheet::ValueRole))
                        return; // rows left out once the card is in, not values
                    seen.append(sheet->data(from, WritingSheet::LabelRole).toString() + u'=' +
                                sheet->data(from, WritingSheet::ValueRole).toString());
                });
        QSignalSpy written(&composer, &Composer::cardWritten);
        QStringList narrated;
        connect(&composer, &Composer::narrationChanged, this,
                [&] { narrated.append(composer.narration()); });

        composer.setInput(QStringLiteral("  Hund\t"));
        composer.add();
        QVERIFY(composer.adding());
        QCOMPARE(composer.input(), QString());
        QVERIFY(composer.showsWriting());
        QCOMPARE(composer.writing()->input, QStringLiteral("Hund"));
        QVERIFY(QTest::qWaitFor([&] { return !composer.adding(); }, 5000));

        QCOMPARE(bodyOf(m_server->lastRequest()), (QJsonObject{{"input", "Hund"}}));
        QCOMPARE(seen, (QStringList{"TERM=der Hund", "MEANS=dog", "EXAMPLES=2 sentences",
                                    "USAGE=common"}));
        QCOMPARE(narrated, (QStringList{"term: der Hund", "gender: der", "translation: dog",
                                        "examples: 2", "related: 4", "usage_notes: common"}));
        QCOMPARE(written.size(), 1);
        QCOMPARE(written[0][0].value<Card>().id, 5);
        QCOMPARE(composer.refused(), QString());
        // The record stays on view after the card arrived, until the learner closes it.
        QVERIFY(composer.showsWriting());
        composer.dismissWriting();
        QVERIFY(!composer.hasWriting());
        QVERIFY(!composer.showsWriting());
    }

    void aFailedWritingKeepsItsRowsAndShowsTheMessage()
    {
        m_server->stream("POST", "/api/decks/12/cards",
                         {{data(R"({"type":"progress","field":"translation","value":"dog"})")},
                          {data(R"({"error":"No such word in German.","type":"error"})")}});
        QVERIFY(add(QStringLiteral("Hnud")));
        QCOMPARE(m_composer->refused(), QStringLiteral("No such word in German."));
        QCOMPARE(m_composer->writing()->trouble, std::optional<QString>("No such word in German."));
        QVERIFY(m_composer->progress()->failed());
        QCOMPARE(m_composer->progress()->filledCount(), 1); // the translation that came before

        // The next attempt clears the refusal and starts a fresh record.
        m_server->stream("POST", "/api/decks/12/cards", {{cardEvent(6, "Hund")}});
        m_composer->setInput(QStringLiteral("Hund"));
        m_composer->add();
        QCOMPARE(m_composer->refused(), QString());
        QVERIFY(!m_composer->progress()->failed());
        QCOMPARE(m_composer->progress()->filledCount(), 0);
        QVERIFY(QTest::qWaitFor([&] { return !m_composer->adding(); }, 5000));
    }

    void refusedAndBrokenStreamsShowTheirMessage_data()
    {
        QTest::addColumn<bool>("cut");
        QTest::addColumn<int>("status");
        QTest::addColumn<QString>("message");
        QTest::newRow("signed out") << false << 401 << "You are signed out.";
        QTest::newRow("server words") << false << 404 << "No such deck.";
        QTest::newRow("cut mid-stream") << true << 200 << "";
    }

    void refusedAndBrokenStreamsShowTheirMessage()
    {
        QFETCH(bool, cut);
        QFETCH(int, status);
        QFETCH(QString, message);
        if (cut)
            m_server->streamThenCut(
                "POST", "/api/decks/12/cards",
                {{data(R"({"type":"progress","field":"term","value":"der Hund"})")},
                 {"data: {\"type\":\"progr"}});
        else
            m_server->reply("POST", "/api/decks/12/cards", status,
                            status == 404 ? R"({"error":"No such deck."})" : "");
        QSignalSpy written(m_composer.get(), &Composer::cardWritten);
        QVERIFY(add(QStringLiteral("Hund")));
        QVERIFY(!m_composer->refused().isEmpty());
        if (!message.isEmpty())
            QCOMPARE(m_composer->refused(), message);
        QCOMPARE(written.size(), 0);
        // A stream error is the composer's refusal, not the server giving up on the card.
        QVERIFY(!m_composer->writing()->trouble);
        QCOMPARE(m_composer->writing()->term, cut ? QStringLiteral("der Hund") : QString());
    }

    void onlySpacesAndTabsAreTrimmedAndOnlyOneCardIsWrittenAtATime()
    {
        m_server->stream("POST", "/api/decks/12/cards", {{cardEvent(7, "x")}});
        QVERIFY(add(QStringLiteral(" \t  ")));
        QCOMPARE(m_composer->input(), QStringLiteral(" \t  ")); // nothing happened, nothing lost
        m_composer->askForByte();
        QVERIFY(!m_composer->asking());

        m_composer->setInput(QStringLiteral("\t guten\nTag \t"));
        m_composer->add();
        QVERIFY(add(QStringLiteral("Katze"))); // Return again while the first is on its way
        QCOMPARE(m_composer->input(), QStringLiteral("Katze"));
        // The learner's settings are read again once the writing ends: everything the composer
        // sends has been sent by then.
        QVERIFY(QTest::qWaitFor([&] { return countOf(*m_server, "GET", "/api/settings") == 1; }));
        QCOMPARE(countOf(*m_server, "POST", "/api/decks/12/cards"), 1);
        QCOMPARE(bodyOf(m_server->requests().first()), (QJsonObject{{"input", "guten\nTag"}}));
    }

    void cardsGoToTheFrontOfTheDecksListAndClosingLeavesThemGoing()
    {
        m_server->reply("GET", "/api/decks/12", 200,
                        R"({"id":12,"name":"Deutsch","description":"","language":"de",
                         "native_language":"en","created_at":"a","cards":[)" +
                            cardJson(1, "Haus") + "]}");
        CardList list;
        QAbstractItemModelTester tester(&list,
                                        QAbstractItemModelTester::FailureReportingMode::QtTest);
        testsupport::await(list.load(12));
        m_composer->setCards(&list);
        QSignalSpy written(m_composer.get(), &Composer::cardWritten);
        for (const auto &[id, term] : {std::pair{5, QByteArray("Hund")}, {6, "Katze"}}) {
            m_server->stream("POST", "/api/decks/12/cards",
                             {{data(R"({"type":"progress","field":"term","value":"x"})")},
                              {cardEvent(id, term)}});
            m_composer->setInput(QString::fromUtf8(term));
            m_composer->add();
            // The learner closes the writing view; the card is written all the same.
            m_composer->progress()->hide();
            QVERIFY(!m_composer->showsWriting());
            QVERIFY(QTest::qWaitFor([&] { return !m_composer->adding(); }, 5000));
        }
        QCOMPARE(written.size(), 2);
        QCOMPARE(m_server->abandonedStreams(), 0);
        QCOMPARE(list.count(), 3);
        QCOMPARE(list.cardAt(0).id, 6);
        QCOMPARE(list.cardAt(1).id, 5);
        QCOMPARE(list.cardAt(2).id, 1);
    }

    void aLessonIsAskedForOfferedAndKept()
    {
        m_server->reply("POST", "/api/decks/12/byte", 200,
                        R"({"byte":{"title":"Asking for the bill","gist":"Ask politely.",
                         "phrases":[{"phrase":"Die Rechnung, bitte.","meaning":"The bill, please."},
                                    {"phrase":"Zahlen, bitte."}],
                         "correction":{"wrong":"Ich will zahlen.","right":"Ich möchte zahlen."}}})");
        m_server->reply("GET", "/api/decks/12/notes", 200,
                        R"([{"id":3,"title":"","created_at":"a","updated_at":"b","line_count":1,
                          "pending_count":0}])");
        Composer &composer = *m_composer;
        composer.setLanguage(QStringLiteral("de"));
        QStringList asking;
        connect(&composer, &Composer::askingChanged, this,
                [&] { asking.append(composer.askingText()); });
        composer.setInput(QStringLiteral(" asking for the bill "));
        composer.askForByte();
        QVERIFY(composer.asking());
        composer.askForByte(); // a second ask while waiting is ignored
        QVERIFY(QTest::qWaitFor([&] { return !composer.asking(); }, 5000));
        QCOMPARE(asking, (QStringList{"Writing a byte on “asking for the bill”", ""}));
        QCOMPARE(countOf(*m_server, "POST", "/api/decks/12/byte"), 1);
        QCOMPARE(bodyOf(m_server->requests().first()),
                 (QJsonObject{{"topic", "asking for the bill"}}));
        QVERIFY(composer.offer());
        QCOMPARE(composer.offer()->language(), QStringLiteral("de"));
        QCOMPARE(composer.deckNotes().size(), 1);

        // Keeping goes through the deck; with no list to put them in, the cards it wrote are
        // still reported.
        m_server->reply("POST", "/api/decks/12/byte/keep", 200,
                        R"({"note":{"id":3,"title":""},"cards":[)" + cardJson(9, "Zahlen") + "]}");
        QSignalSpy landed(&composer, &Composer::cardsLanded);
        ByteSheet *sheet = composer.offer();
        sheet->setFate(1, ByteSheet::Fate::Card);
        sheet->setFate(0, ByteSheet::Fate::Note);
        sheet->setIntoId(3);
        testsupport::await(sheet->commit());
        QCOMPARE(landed.size(), 1);
        QCOMPARE(landed[0][0].value<QList<Card>>().first().id, 9);
        QVERIFY(!composer.offer());
        QCOMPARE(m_server->lastRequest().path, QStringLiteral("/api/decks/12/byte/keep"));

        // A lesson that cannot be written is a refusal that keeps the topic.
        m_server->reply("POST", "/api/decks/12/byte", 503,
                        R"({"error":"A short lesson needs a language model."})");
        composer.setInput(QStringLiteral("the dative"));
        testsupport::await(composer.askForByteTask());
        QVERIFY(!composer.offer());
        QCOMPARE(composer.refused(), QStringLiteral("A short lesson needs a language model."));
        QCOMPARE(composer.input(), QStringLiteral("the dative"));
    }
};

QTEST_GUILESS_MAIN(TestComposer)
#include "tst_composer.moc"
