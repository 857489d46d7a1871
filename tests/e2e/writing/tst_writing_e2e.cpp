// The composer, quick add and lessons against a real orvel-server with its dictionary writer:
// a German word typed in a deck becomes a card, field by field, and goes first in the deck;
// words taken out of a German paragraph become cards.
#include "awaittask.h"
#include "server/apiclient.h"
#include "serverprocess.h"
#include "testservices.h"
#include "writing/composer.h"
#include "writing/importsheet.h"
#include "writing/quickaddsheet.h"
#include "writing/writingsheet.h"

#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

using namespace orvel;
using testsupport::await;

class TestWritingEndToEnd : public QObject {
    Q_OBJECT
    QTemporaryDir m_dir;
    ServerProcess m_server{{QStringLiteral("--local")}};
    std::unique_ptr<APIClient> m_api;
    std::unique_ptr<testsupport::TestServices> m_services;
    int m_deck = 0;

private slots:
    void initTestCase()
    {
        QVERIFY(m_dir.isValid());
        QVERIFY2(m_server.start(), qPrintable(m_server.errorText()));
        m_api = std::make_unique<APIClient>(m_server.baseUrl(), m_dir.filePath("jar"), QString());
        m_services = std::make_unique<testsupport::TestServices>(*m_api);
        await(m_api->signUp(QStringLiteral("lena@example.org"), QStringLiteral("a long password"),
                            QStringLiteral("Lena")));
        await(m_api->signIn(QStringLiteral("lena@example.org"), QStringLiteral("a long password")));
        m_deck = await(m_api->createDeck(QStringLiteral("Deutsch"), QString(), QStringLiteral("de"),
                                         QStringLiteral("en"), std::nullopt))
                     .id;
    }

    void aTypedWordIsWrittenAndGoesFirst()
    {
        Composer composer;
        composer.setDeckId(m_deck);
        QList<Card> list;
        connect(&composer, &Composer::cardWritten, this,
                [&](const Card &card) { list.prepend(card); });
        int rowsFilled = 0;
        connect(composer.progress(), &QAbstractItemModel::dataChanged, this, [&] { ++rowsFilled; });

        for (const QString &word : {QStringLiteral("Katze"), QStringLiteral("Hund")}) {
            composer.setInput(word);
            composer.add();
            QVERIFY(composer.adding());
            QVERIFY(QTest::qWaitFor([&] { return !composer.adding(); }, 30000));
            QVERIFY2(composer.refused().isEmpty(), qPrintable(composer.refused()));
        }
        QCOMPARE(list.size(), 2);
        const Card hund = list.first();
        QCOMPARE(hund.term, QStringLiteral("Hund"));
        QCOMPARE(hund.gender, QStringLiteral("der"));
        QVERIFY(!hund.examples.isEmpty());

        // The writing view showed the parts as the server sent them.
        QCOMPARE(composer.writing()->translation, hund.translation);
        QVERIFY(composer.writing()->examples > 0);
        QVERIFY(rowsFilled >= 2);

        // The deck as the server now holds it has the new card, newest first.
        const Deck deck = await(m_api->deck(m_deck));
        QCOMPARE(deck.cards.size(), 2);
        QCOMPARE(deck.cards.first().id, hund.id);
    }

    void aLessonIsRefusedWithTheServersReason()
    {
        Composer composer;
        composer.setDeckId(m_deck);
        composer.setInput(QStringLiteral("asking for the bill"));
        await(composer.askForByteTask());
        QVERIFY(!composer.offer());
        QVERIFY(!composer.refused().isEmpty());
        QVERIFY(!composer.refused().startsWith(QStringLiteral("The server answered")));
    }

    void quickAddWritesIntoTheChosenDeck()
    {
        QuickAddSheet sheet;
        await(sheet.load());
        QCOMPARE(sheet.deckChoices().size(), 2); // "Pick one" and the deck
        sheet.setDeckId(m_deck);
        sheet.setText(QStringLiteral("Haus"));
        QSignalSpy added(&sheet, &QuickAddSheet::added);
        sheet.add();
        QVERIFY(QTest::qWaitFor([&] { return !sheet.working(); }, 30000));
        QVERIFY2(sheet.trouble().isEmpty(), qPrintable(sheet.trouble()));
        QCOMPARE(added.size(), 1);
        QCOMPARE(added[0][0].value<DeckSummary>().id, m_deck);
        QCOMPARE(added[0][1].value<Card>().term, QStringLiteral("Haus"));
    }

    void wordsTakenFromAGermanParagraphBecomeCards()
    {
        const QString paragraph = QStringLiteral(
            "Am Morgen geht die alte Frau mit ihrem Hund durch den Park. Die Vögel singen in den "
            "Bäumen, und ein Kind läuft über die nasse Wiese. Später trinkt sie einen Kaffee am "
            "Fenster und liest die Zeitung.");
        QList<Card> wrote;
        ImportSheet sheet(m_deck, QStringLiteral("German"), paragraph,
                          [&](const QList<Card> &cards) { wrote += cards; });
        sheet.find();
        QVERIFY(QTest::qWaitFor([&] { return !sheet.busy(); }, 60000));
        QVERIFY2(sheet.trouble().isEmpty(), qPrintable(sheet.trouble()));
        QCOMPARE(sheet.stage(), ImportSheet::Stage::Choose);
        QVERIFY(sheet.candidates()->rowCount() >= 5);
        // Words already in the deck (Hund, from the first test) are left out and counted.
        QVERIFY(sheet.skipped() >= 1);
        for (const Candidate &word : sheet.candidates()->words())
            QVERIFY2(word.term != u"Hund", qPrintable(word.term));

        // Three words go, in the order found.
        sheet.candidates()->chooseNone();
        for (int row = 0; row < 3; ++row)
            sheet.candidates()->setChosen(row, true);
        sheet.write();
        QVERIFY(QTest::qWaitFor([&] { return sheet.finished(); }, 90000));
        QVERIFY2(sheet.trouble().isEmpty(), qPrintable(sheet.trouble()));
        QCOMPARE(sheet.done(), 3);
        QCOMPARE(wrote.size() + sheet.passed().size(), 3);
        QVERIFY(!wrote.isEmpty());
        for (const Card &card : wrote)
            QCOMPARE(card.deckId, m_deck);
        const Deck deck = await(m_api->deck(m_deck));
        for (const Card &card : wrote) {
            const bool held = std::any_of(deck.cards.cbegin(), deck.cards.cend(),
                                          [&](const Card &kept) { return kept.id == card.id; });
            QVERIFY2(held, qPrintable(card.term));
        }
    }
};

QTEST_GUILESS_MAIN(TestWritingEndToEnd)
#include "tst_writing_e2e.moc"
