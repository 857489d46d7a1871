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
using Chunk = ScriptedServer::Chunk;

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

// Waits until the composer has no card on its way.
bool settle(const Composer &composer)
{
    return QTest::qWaitFor([&] { return !composer.adding(); }, 5000);
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

    std::unique_ptr<APIClient> client(const ScriptedServer &server)
    {
        return std::make_unique<APIClient>(server.baseUrl(), m_dir.filePath("cookies"), QString());
    }

private slots:
    void initTestCase() { LocalSettings::useFile(m_dir.filePath("orvel.conf")); }

    void theWritingFillsEventByEventAndTheCardGoesFirst()
    {
        ScriptedServer server;
        // Keys in any order, unknown keys, an unknown field and an unknown event type.
        server.stream("POST", "/api/decks/12/cards",
                      {{data(R"({"value":"der Hund","field":"term","type":"progress"})")},
                       {data(R"({"type":"progress","field":"gender","value":"der","extra":1})")},
                       {data(R"({"type":"progress","field":"translation","value":"dog"})")},
                       {data(R"({"count":2,"type":"progress","field":"examples"})")},
                       {data(R"({"type":"progress","field":"related","count":4})")},
                       {data(R"({"type":"thinking","about":"dogs"})")},
                       {data(R"({"type":"progress","field":"usage_notes","value":"common"})")},
                       {data(R"({"type":"card","card":)" + cardJson(5, "Hund") + "}")}});
        auto api = client(server);
        testsupport::TestServices services(*api);
        Composer composer;
        composer.setDeckId(12);
        QAbstractItemModelTester tester(composer.progress(),
                                        QAbstractItemModelTester::FailureReportingMode::QtTest);

        // What the view model shows, row by row, as each change arrives.
        QStringList seen;
        connect(composer.progress(), &QAbstractItemModel::dataChanged, this,
                [&](const QModelIndex &from) {
                    seen.append(
                        composer.progress()->data(from, WritingSheet::LabelRole).toString() + u'=' +
                        composer.progress()->data(from, WritingSheet::ValueRole).toString());
                });
        QSignalSpy written(&composer, &Composer::cardWritten);
        QStringList narrated;
        connect(&composer, &Composer::narrationChanged, this,
                [&] { narrated.append(composer.narration()); });

        composer.setInput(QStringLiteral("  Hund\t"));
        composer.add();
        QVERIFY(composer.adding());
        QCOMPARE(composer.input(), QString());
        QVERIFY(composer.hasWriting());
        QVERIFY(composer.showsWriting());
        QCOMPARE(composer.writing()->input, QStringLiteral("Hund"));
        QCOMPARE(composer.progress()->filledCount(), 0);
        QVERIFY(settle(composer));

        QCOMPARE(bodyOf(server.lastRequest()), (QJsonObject{{"input", "Hund"}}));
        QCOMPARE(seen, (QStringList{"TERM=der Hund", "MEANS=dog", "EXAMPLES=2 sentences",
                                    "USAGE=common"}));
        QCOMPARE(narrated, (QStringList{"term: der Hund", "gender: der", "translation: dog",
                                        "examples: 2", "related: 4", "usage_notes: common"}));
        QVERIFY(!composer.writing()->trouble);
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
        ScriptedServer server;
        server.stream("POST", "/api/decks/12/cards",
                      {{data(R"({"type":"progress","field":"translation","value":"dog"})")},
                       {data(R"({"error":"No such word in German.","type":"error"})")}});
        auto api = client(server);
        testsupport::TestServices services(*api);
        Composer composer;
        composer.setDeckId(12);
        composer.setInput(QStringLiteral("Hnud"));
        composer.add();
        QVERIFY(settle(composer));
        QCOMPARE(composer.refused(), QStringLiteral("No such word in German."));
        QCOMPARE(composer.writing()->trouble, std::optional<QString>("No such word in German."));
        WritingSheet *sheet = composer.progress();
        QVERIFY(sheet->failed());
        QCOMPARE(sheet->filledCount(), 1); // the translation that came before

        // The next attempt clears the refusal and starts a fresh record.
        server.stream("POST", "/api/decks/12/cards",
                      {{data(R"({"type":"card","card":)" + cardJson(6, "Hund") + "}")}});
        composer.setInput(QStringLiteral("Hund"));
        composer.add();
        QCOMPARE(composer.refused(), QString());
        QVERIFY(!composer.progress()->failed());
        QCOMPARE(composer.progress()->filledCount(), 0);
        QVERIFY(settle(composer));
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
        ScriptedServer server;
        if (cut) {
            server.streamThenCut(
                "POST", "/api/decks/12/cards",
                {{data(R"({"type":"progress","field":"term","value":"der Hund"})")},
                 {"data: {\"type\":\"progr"}});
        } else {
            server.reply("POST", "/api/decks/12/cards", status,
                         status == 404 ? R"({"error":"No such deck."})" : "");
        }
        auto api = client(server);
        testsupport::TestServices services(*api);
        Composer composer;
        composer.setDeckId(12);
        QSignalSpy written(&composer, &Composer::cardWritten);
        composer.setInput(QStringLiteral("Hund"));
        composer.add();
        QVERIFY(settle(composer));
        QVERIFY(!composer.refused().isEmpty());
        if (!message.isEmpty())
            QCOMPARE(composer.refused(), message);
        QCOMPARE(written.size(), 0);
        // A stream error is the composer's refusal, not the server giving up on the card.
        QVERIFY(!composer.writing()->trouble);
        QCOMPARE(composer.writing()->term, cut ? QStringLiteral("der Hund") : QString());
    }

    void onlySpacesAndTabsAreTrimmedAndOnlyOneCardIsWrittenAtATime()
    {
        ScriptedServer server;
        server.stream("POST", "/api/decks/12/cards",
                      {{data(R"({"type":"progress","field":"term","value":"x"})")},
                       {data(R"({"type":"card","card":)" + cardJson(7, "x") + "}")}});
        auto api = client(server);
        testsupport::TestServices services(*api);
        Composer composer;
        composer.setDeckId(12);

        composer.setInput(QStringLiteral(" \t  "));
        composer.add();
        QVERIFY(!composer.adding());
        QCOMPARE(composer.input(), QStringLiteral(" \t  ")); // nothing happened, nothing lost
        composer.askForByte();
        QVERIFY(!composer.asking());

        composer.setInput(QStringLiteral("\t guten\nTag \t"));
        composer.add();
        composer.setInput(QStringLiteral("Katze"));
        composer.add(); // Return again while the first card is on its way
        QCOMPARE(composer.input(), QStringLiteral("Katze"));
        QVERIFY(settle(composer));
        // The learner's settings are read again once the writing ends: everything the composer
        // sends has been sent by then.
        QVERIFY(QTest::qWaitFor([&] { return countOf(server, "GET", "/api/settings") == 1; }));
        QCOMPARE(countOf(server, "POST", "/api/decks/12/cards"), 1);
        QCOMPARE(bodyOf(server.requests().first()), (QJsonObject{{"input", "guten\nTag"}}));
    }

    void twoCardsInARowGoToTheFrontOfTheDecksList()
    {
        ScriptedServer server;
        server.reply("GET", "/api/decks/12", 200,
                     R"({"id":12,"name":"Deutsch","description":"","language":"de",
                         "native_language":"en","created_at":"a","cards":[)" +
                         cardJson(1, "Haus") + "]}");
        auto api = client(server);
        testsupport::TestServices services(*api);
        CardList list;
        QAbstractItemModelTester tester(&list,
                                        QAbstractItemModelTester::FailureReportingMode::QtTest);
        testsupport::await(list.load(12));
        Composer composer;
        composer.setDeckId(12);
        composer.setCards(&list);
        for (const auto &[id, term] : {std::pair{5, QByteArray("Hund")}, {6, "Katze"}}) {
            server.stream("POST", "/api/decks/12/cards",
                          {{data(R"({"type":"card","card":)" + cardJson(id, term) + "}")}});
            composer.setInput(QString::fromUtf8(term));
            composer.add();
            QVERIFY(settle(composer));
        }
        QCOMPARE(list.count(), 3);
        QCOMPARE(list.cardAt(0).id, 6);
        QCOMPARE(list.cardAt(1).id, 5);
        QCOMPARE(list.cardAt(2).id, 1);
    }

    void closingTheViewLeavesTheWritingGoing()
    {
        ScriptedServer server;
        server.stream("POST", "/api/decks/12/cards",
                      {{data(R"({"type":"progress","field":"term","value":"x"})")},
                       {data(R"({"type":"card","card":)" + cardJson(8, "x") + "}")}});
        auto api = client(server);
        testsupport::TestServices services(*api);
        Composer composer;
        composer.setDeckId(12);
        QSignalSpy written(&composer, &Composer::cardWritten);
        composer.setInput(QStringLiteral("x"));
        composer.add();
        composer.progress()->hide();
        QVERIFY(!composer.showsWriting());
        QVERIFY(composer.adding());
        QVERIFY(settle(composer));
        QCOMPARE(written.size(), 1);
        QCOMPARE(server.abandonedStreams(), 0);
    }

    void aLessonIsAskedForAndOffered()
    {
        ScriptedServer server;
        server.reply("POST", "/api/decks/12/byte", 200,
                     R"({"byte":{"title":"Asking for the bill","gist":"Ask politely.",
                         "phrases":[{"phrase":"Die Rechnung, bitte.","meaning":"The bill, please."},
                                    {"phrase":"Zahlen, bitte."}],
                         "correction":{"wrong":"Ich will zahlen.","right":"Ich möchte zahlen."}}})");
        server.reply("GET", "/api/decks/12/notes", 200,
                     R"([{"id":3,"title":"","created_at":"a","updated_at":"b","line_count":1,
                          "pending_count":0}])");
        auto api = client(server);
        testsupport::TestServices services(*api);
        Composer composer;
        composer.setDeckId(12);
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
        QCOMPARE(countOf(server, "POST", "/api/decks/12/byte"), 1);
        QCOMPARE(bodyOf(server.requests().first()),
                 (QJsonObject{{"topic", "asking for the bill"}}));
        QVERIFY(composer.offer());
        QCOMPARE(composer.offer()->byte().phrases.size(), 2);
        QCOMPARE(composer.offer()->language(), QStringLiteral("de"));
        QCOMPARE(composer.deckNotes().size(), 1);

        // Keeping goes through the deck; the cards it wrote come back for the list.
        server.reply("POST", "/api/decks/12/byte/keep", 200,
                     R"({"note":{"id":3,"title":""},"cards":[)" + cardJson(9, "Zahlen") + "]}");
        QSignalSpy landed(&composer, &Composer::cardsLanded);
        // With no list to put them in, the cards are still reported.
        ByteSheet *sheet = composer.offer();
        sheet->setFate(1, ByteSheet::Fate::Card);
        sheet->setFate(0, ByteSheet::Fate::Note);
        sheet->setIntoId(3);
        testsupport::await(sheet->commit());
        QCOMPARE(landed.size(), 1);
        QCOMPARE(landed[0][0].value<QList<Card>>().first().id, 9);
        QVERIFY(!composer.offer());
        const QJsonObject kept = bodyOf(server.lastRequest());
        QCOMPARE(
            kept.value("keep").toArray(),
            QJsonDocument::fromJson(R"([{"at":0,"card":false},{"at":1,"card":true}])").array());
        QCOMPARE(kept.value("note_id").toInt(), 3);
        QCOMPARE(kept.value("byte").toObject().value("title").toString(),
                 QStringLiteral("Asking for the bill"));
    }

    void aLessonThatCannotBeWrittenIsARefusal()
    {
        ScriptedServer server;
        server.reply("POST", "/api/decks/12/byte", 503,
                     R"({"error":"A short lesson needs a language model."})");
        auto api = client(server);
        testsupport::TestServices services(*api);
        Composer composer;
        composer.setDeckId(12);
        composer.setInput(QStringLiteral("the dative"));
        testsupport::await(composer.askForByteTask());
        QVERIFY(!composer.asking());
        QVERIFY(!composer.offer());
        QCOMPARE(composer.refused(), QStringLiteral("A short lesson needs a language model."));
        QCOMPARE(composer.input(), QStringLiteral("the dative"));
    }
};

QTEST_GUILESS_MAIN(TestComposer)
#include "tst_composer.moc"
