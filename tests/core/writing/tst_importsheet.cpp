// Adding cards from a pasted text against a scripted server: finding the words (ticks, notices,
// failures), choosing, writing the batch in order with its skips and failures, and a sheet
// closed while its batch is still being written.
#include "awaittask.h"
#include "library/cardchanges.h"
#include "scriptedserver.h"
#include "server/apiclient.h"
#include "server/localsettings.h"
#include "testservices.h"
#include "writing/composer.h"
#include "writing/importsheet.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

using namespace orvel;

namespace {

const QString extractPath = QStringLiteral("/api/decks/12/extract");
const QString batchPath = QStringLiteral("/api/decks/12/cards/batch");

QByteArray data(const QByteArray &json)
{
    return "data: " + json + "\n\n";
}

QByteArray word(const QByteArray &term, const QByteArray &level, const QByteArray &seenAs = {})
{
    return R"({"term":")" + term + R"(","seen_as":")" + (seenAs.isEmpty() ? term : seenAs) +
           R"(","gloss":"gloss of )" + term + R"(","sentence":"Ein Satz mit )" + term +
           R"(.","level":")" + level + R"("})";
}

QByteArray done(const QList<QByteArray> &words, int skipped = 0, int unread = 0,
                const QByteArray &summary = {})
{
    QByteArray list = "[";
    for (const QByteArray &w : words)
        list += (list.size() > 1 ? "," : "") + w;
    list += "]";
    return data(R"({"type":"done","summary":")" + summary + R"(","words":)" + list +
                R"(,"skipped":)" + QByteArray::number(skipped) + R"(,"unread":)" +
                QByteArray::number(unread) + "}");
}

QByteArray cardEvent(int index, int id, const QByteArray &term)
{
    QByteArray json = R"({"type":"card","index":)" + QByteArray::number(index) +
                      R"(,"card":{"id":)" + QByteArray::number(id) + R"(,"deck_id":12,"term":")" +
                      term +
                      R"(","reading":"","part_of_speech":"noun","gender":"","translation":"t",
"definition":"","usage_notes":"","examples":[],"related":[],"conjugations":[],"seen":0,
"known":0,"streak":0,"last_reviewed":null,"created_at":"2026-11-01"}})";
    return data(json.replace('\n', ' '));
}

} // namespace

class TestImportSheet : public QObject {
    Q_OBJECT
    QTemporaryDir m_dir;
    std::unique_ptr<ScriptedServer> m_server;
    std::unique_ptr<APIClient> m_api;
    std::unique_ptr<testsupport::TestServices> m_services;
    QList<Card> m_wrote;

    std::unique_ptr<ImportSheet> sheet(const QString &seed = QStringLiteral("Der Hund läuft."))
    {
        return std::make_unique<ImportSheet>(
            12, QStringLiteral("German"), seed,
            [this](const QList<Card> &cards) { m_wrote += cards; });
    }

    // Finds the words of a sheet's text; true once the sheet is no longer busy.
    static bool find(ImportSheet &sheet)
    {
        sheet.find();
        return QTest::qWaitFor([&] { return !sheet.busy(); }, 5000);
    }

    static QStringList chosenTerms(const ImportSheet &sheet)
    {
        QStringList terms;
        for (const Candidate &word : sheet.candidates()->chosenWords())
            terms.append(word.term);
        return terms;
    }

private slots:
    void initTestCase() { LocalSettings::useFile(m_dir.filePath("orvel.conf")); }
    void init()
    {
        m_server = std::make_unique<ScriptedServer>();
        m_api = std::make_unique<APIClient>(m_server->baseUrl(), m_dir.filePath("jar"), QString());
        m_services = std::make_unique<testsupport::TestServices>(*m_api);
        m_wrote.clear();
    }
    void cleanup()
    {
        m_services.reset();
        m_api.reset();
        m_server.reset();
    }

    void thePasteStageCountsCharactersAndSaysWhatItIsFor()
    {
        auto s = sheet(QString());
        QCOMPARE(s->title(), QStringLiteral("Add from text"));
        QCOMPARE(s->subtitle(), QStringLiteral("Paste something you're reading in German. orvel "
                                               "picks out the words worth a card."));
        QCOMPARE(s->characterCount(), QStringLiteral("0 characters"));
        QVERIFY(!s->canFind());
        s->setText(QStringLiteral("a"));
        QCOMPARE(s->characterCount(), QStringLiteral("1 character"));
        QVERIFY(s->canFind());
        // A letter outside the basic plane is one character, not two.
        s->setText(QStringLiteral("𝔄b"));
        QCOMPARE(s->characterCount(), QStringLiteral("2 characters"));
        // Blank text asks nothing of the server.
        s->setText(QStringLiteral(" \n\t"));
        QVERIFY(!s->canFind());
        s->find();
        QTest::qWait(50);
        QCOMPARE(m_server->requestCount(), 0);
        QCOMPARE(s->stage(), ImportSheet::Stage::Paste);
    }

    void foundWordsArriveTickedExceptSpecialistsWithTheServersNotices()
    {
        const QString text(25000, u'a');
        m_server->stream("POST", extractPath,
                         {{data(R"({"type":"reading","characters":20000})")},
                          {data(R"({"type":"word","word":)" + word("Hund", "common") + "}")},
                          {done({word("Hund", "common"), word("Anode", "specialist"),
                                 word("laufen", "everyday", "läuft")},
                                3, 5000)}});
        auto s = sheet(text);
        QSignalSpy stages(s.get(), &ImportSheet::stageChanged);
        QVERIFY(find(*s));

        QCOMPARE(QJsonDocument::fromJson(m_server->lastRequest().body).object(),
                 (QJsonObject{{"text", text}}));
        QCOMPARE(s->stage(), ImportSheet::Stage::Choose);
        QCOMPARE(stages.size(), 1);
        QCOMPARE(s->trouble(), QString());
        QCOMPARE(s->subtitle(), QStringLiteral("Choose what's worth keeping."));
        QCOMPARE(s->unreadNotice(), QStringLiteral("Read the first 20,000 characters; 5000 to go"));
        QCOMPARE(s->skippedNotice(), QStringLiteral("3 already in the deck"));

        ImportCandidates &words = *s->candidates();
        QCOMPARE(words.rowCount(), 3);
        QCOMPARE(chosenTerms(*s), (QStringList{"Hund", "laufen"}));
        QCOMPARE(words.data(words.index(1), ImportCandidates::ChosenRole).toBool(), false);
        QCOMPARE(words.data(words.index(2), ImportCandidates::SeenAsTextRole).toString(),
                 QStringLiteral("seen as läuft"));
        QCOMPARE(s->writeLabel(), QStringLiteral("Write 2 cards"));

        words.toggle(1);
        QCOMPARE(s->writeLabel(), QStringLiteral("Write 3 cards"));
        words.toggle(0);
        words.toggle(2);
        QCOMPARE(s->writeLabel(), QStringLiteral("Write 1 card"));
        words.chooseNone();
        QCOMPARE(s->writeLabel(), QStringLiteral("Write cards"));
        // Nothing chosen writes nothing.
        const int before = m_server->requestCount();
        s->write();
        QTest::qWait(50);
        QCOMPARE(m_server->requestCount(), before);
        QCOMPARE(s->stage(), ImportSheet::Stage::Choose);

        // Back keeps the text; a summary from the server replaces the plain subtitle.
        s->back();
        QCOMPARE(s->stage(), ImportSheet::Stage::Paste);
        QCOMPARE(s->text(), text);
        m_server->stream("POST", extractPath,
                         {{done({word("Hund", "common")}, 0, 0, "A page about a dog.")}});
        QVERIFY(find(*s));
        QCOMPARE(s->subtitle(), QStringLiteral("A page about a dog."));
        QCOMPARE(s->unreadNotice(), QString());
        QCOMPARE(s->skippedNotice(), QString());
        QCOMPARE(chosenTerms(*s), (QStringList{"Hund"}));
    }

    void aFindThatFailsStaysWithTheTextAndSaysWhy_data()
    {
        QTest::addColumn<int>("how");
        QTest::addColumn<QString>("message");
        QTest::newRow("the server gives up") << 0 << "The writer is not available.";
        QTest::newRow("refused") << 1 << "No such deck.";
        QTest::newRow("ends without its last word") << 2 << "";
    }

    void aFindThatFailsStaysWithTheTextAndSaysWhy()
    {
        QFETCH(int, how);
        QFETCH(QString, message);
        if (how == 0)
            m_server->stream(
                "POST", extractPath,
                {{data(R"({"type":"word","word":)" + word("Hund", "common") + "}")},
                 {data(R"({"type":"error","error":"The writer is not available."})")}});
        else if (how == 1)
            m_server->reply("POST", extractPath, 404, R"({"error":"No such deck."})");
        else
            m_server->stream("POST", extractPath,
                             {{data(R"({"type":"word","word":)" + word("Hund", "common") + "}")}});
        auto s = sheet();
        QVERIFY(find(*s));
        QCOMPARE(s->stage(), ImportSheet::Stage::Paste);
        QCOMPARE(s->text(), QStringLiteral("Der Hund läuft."));
        QVERIFY(!s->trouble().isEmpty());
        if (!message.isEmpty())
            QCOMPARE(s->trouble(), message);
        QVERIFY(s->canFind());
        // The next try clears the message.
        m_server->stream("POST", extractPath, {{done({word("Hund", "common")})}});
        QVERIFY(find(*s));
        QCOMPARE(s->trouble(), QString());
        QCOMPARE(s->stage(), ImportSheet::Stage::Choose);
    }

    void theChosenWordsAreWrittenInOrderWithSkipsAndFailuresListedApart()
    {
        m_server->stream("POST", extractPath,
                         {{done({word("Hund", "common"), word("Katze", "common"),
                                 word("Anode", "specialist"), word("laufen", "common")})}});
        auto s = sheet();
        QVERIFY(find(*s));
        s->candidates()->toggle(1); // Katze out, so three go: Hund, laufen, and Anode ticked
        s->candidates()->toggle(2);
        m_server->stream(
            "POST", batchPath,
            {{data(R"({"type":"start","total":3})")},
             {data(R"({"type":"word","index":0,"term":"Hund"})")},
             {cardEvent(0, 41, "Hund")},
             {data(R"({"type":"word","index":1,"term":"Anode"})")},
             {data(R"({"type":"failed","index":1,"term":"Anode","error":"No entry."})")},
             {data(R"({"type":"word","index":2,"term":"laufen"})")},
             {data(R"({"type":"skipped","index":2,"term":"laufen",)"
                   R"("reason":"Already a card."})"),
              "half"},
             {data(R"({"type":"done","written":1})")}});
        s->write();
        QCOMPARE(s->stage(), ImportSheet::Stage::Writing);
        QCOMPARE(s->total(), 3);
        QCOMPARE(s->subtitle(), QStringLiteral("Writing 0 of 3"));
        QVERIFY(QTest::qWaitFor([&] { return s->writingTerm() == u"laufen"; }, 5000));
        QCOMPARE(s->subtitle(), QStringLiteral("Writing 2 of 3"));
        QVERIFY(!s->finished());
        m_server->open("half");
        QVERIFY(QTest::qWaitFor([&] { return s->finished(); }, 5000));

        const QJsonArray sent =
            QJsonDocument::fromJson(m_server->lastRequest().body).object()["words"].toArray();
        QCOMPARE(sent.size(), 3);
        QCOMPARE(sent[0].toObject(),
                 (QJsonObject{{"term", "Hund"}, {"source", "Ein Satz mit Hund."}}));
        QCOMPARE(sent[1].toObject()["term"].toString(), QStringLiteral("Anode"));
        QCOMPARE(sent[2].toObject()["term"].toString(), QStringLiteral("laufen"));

        QCOMPARE(s->subtitle(), QStringLiteral("Writing 3 of 3"));
        QCOMPARE(s->writtenCount(), 1);
        QCOMPARE(m_wrote.size(), 1);
        QCOMPARE(m_wrote[0].id, 41);
        QCOMPARE(s->writingTerm(), QString());
        QCOMPARE(s->trouble(), QString());
        QCOMPARE(s->writtenCards(),
                 (QVariantList{QVariantMap{{"term", "Hund"}, {"translation", "t"}}}));
        QCOMPARE(s->failures(),
                 (QVariantList{QVariantMap{{"term", "Anode"}, {"why", "No entry."}}}));
        QCOMPARE(s->skips(),
                 (QVariantList{QVariantMap{{"term", "laufen"}, {"why", "Already a card."}}}));
    }

    void aBatchCutShortEndsWithoutAnythingLeftPending()
    {
        m_server->stream("POST", extractPath,
                         {{done({word("Hund", "common"), word("Maus", "common")})}});
        auto s = sheet();
        QVERIFY(find(*s));
        m_server->streamThenCut("POST", batchPath,
                                {{data(R"({"type":"start","total":2})")},
                                 {data(R"({"type":"word","index":0,"term":"Hund"})")}});
        s->write();
        QVERIFY(QTest::qWaitFor([&] { return s->finished(); }, 5000));
        QVERIFY(!s->busy());
        QCOMPARE(s->writingTerm(), QString());
        QVERIFY(!s->trouble().isEmpty());
    }

    void closingTheSheetWhileWritingStillHandsOnTheCards()
    {
        m_server->stream("POST", extractPath,
                         {{done({word("Hund", "common"), word("Maus", "common")})}});
        auto s = sheet();
        QVERIFY(find(*s));
        m_server->stream("POST", batchPath,
                         {{data(R"({"type":"start","total":2})")},
                          {cardEvent(0, 41, "Hund")},
                          {cardEvent(1, 42, "Maus"), "later"},
                          {data(R"({"type":"done"})")}});
        QSignalSpy over(s.get(), &ImportSheet::over);
        QSignalSpy closed(s.get(), &ImportSheet::closed);
        s->write();
        QVERIFY(QTest::qWaitFor([&] { return s->writtenCount() == 1; }, 5000));
        s->close();
        QCOMPARE(closed.size(), 1);
        QCOMPARE(over.size(), 0);
        m_server->open("later");
        QVERIFY(over.wait(5000));
        QCOMPARE(m_wrote.size(), 2);
        QCOMPARE(m_wrote[1].id, 42);
        QCOMPARE(m_server->abandonedStreams(), 0);
    }

    void theComposerOpensOneSheetAndItsCardsReachTheDeck()
    {
        Composer composer;
        composer.setDeckId(12);
        composer.setLanguage(QStringLiteral("de"));
        composer.addFromText(QStringLiteral("Der Hund."));
        ImportSheet *first = composer.importing();
        QVERIFY(first);
        QCOMPARE(first->text(), QStringLiteral("Der Hund."));
        QVERIFY(first->subtitle().contains(u"in German."));
        // A second drop on the same deck gives the open sheet its text.
        composer.addFromText(QStringLiteral("Die Katze."));
        QCOMPARE(composer.importing(), first);
        QCOMPARE(first->text(), QStringLiteral("Die Katze."));

        m_server->stream("POST", extractPath, {{done({word("Katze", "common")})}});
        QVERIFY(find(*first));
        m_server->stream("POST", batchPath,
                         {{data(R"({"type":"start","total":1})")},
                          {cardEvent(0, 43, "Katze"), "later"},
                          {data(R"({"type":"done"})")}});
        QSignalSpy added(&CardChanges::shared(), &CardChanges::added);
        first->write();
        first->close();
        QCOMPARE(composer.importing(), nullptr);
        QPointer<ImportSheet> gone = first;
        m_server->open("later");
        QVERIFY(QTest::qWaitFor([&] { return gone.isNull(); }, 5000));
        QCOMPARE(added.size(), 1);
        QCOMPARE(added[0][0].value<Card>().id, 43);

        // No deck, no sheet.
        composer.setDeckId(0);
        composer.addFromText();
        QCOMPARE(composer.importing(), nullptr);
    }
};

QTEST_GUILESS_MAIN(TestImportSheet)
#include "tst_importsheet.moc"
