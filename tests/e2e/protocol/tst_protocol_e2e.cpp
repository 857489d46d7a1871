// The client core against a real orvel-server on loopback: the road of one card, from a new
// account to a reviewed card, over the protocol alone.
#include "awaittask.h"
#include "server/apiclient.h"
#include "serverprocess.h"

#include <QTemporaryDir>
#include <QTest>

using namespace orvel;
using testsupport::await;

namespace {

QCoro::Task<QList<CardEvent>> collect(EventStream<CardEvent> stream)
{
    QList<CardEvent> events;
    while (auto event = co_await stream.next())
        events.append(*event);
    co_return events;
}

} // namespace

class TestProtocolEndToEnd : public QObject {
    Q_OBJECT
    QTemporaryDir m_dir;
    ServerProcess m_server{{QStringLiteral("--local")}};

    std::unique_ptr<APIClient> client(const QString &jar)
    {
        return std::make_unique<APIClient>(m_server.baseUrl(), m_dir.filePath(jar), QString());
    }

private slots:
    void initTestCase()
    {
        QVERIFY(m_dir.isValid());
        QVERIFY2(m_server.start(), qPrintable(m_server.errorText()));
    }

    void accountAndSession()
    {
        auto api = client("ana");
        QVERIFY_THROWS_EXCEPTION(APIError, await(api->me()));
        await(api->signUp(QStringLiteral("ana@example.org"), QStringLiteral("correct horse"),
                          QStringLiteral("Ana")));
        try {
            await(api->signIn(QStringLiteral("ana@example.org"), QStringLiteral("wrong horse")));
            QFAIL("a wrong password must be refused");
        } catch (const APIError &error) {
            QCOMPARE(error.status(), 401);
            QVERIFY(!error.message().isEmpty());
        }
        const User user =
            await(api->signIn(QStringLiteral("ana@example.org"), QStringLiteral("correct horse")));
        QCOMPARE(user.displayName, QStringLiteral("Ana"));
        QCOMPARE(await(api->me()).id, user.id);

        // A restart: a new client with the same jar is still signed in.
        auto restarted = client("ana");
        QCOMPARE(await(restarted->me()).email, QStringLiteral("ana@example.org"));

        // Settings travel with literal keys and come back whole.
        SettingsChange change;
        change.skin = QStringLiteral("ink");
        change.hearOnFlip = true;
        const Preferences saved = await(restarted->saveSettings(change));
        QCOMPARE(saved.skin, QStringLiteral("ink"));
        QVERIFY(saved.hearOnFlip);
        QCOMPARE(await(restarted->preferences()).skin, QStringLiteral("ink"));
    }

    void theRoadOfOneCard()
    {
        auto api = client("ana");
        const QList<Language> languages = await(api->languages());
        QVERIFY(std::any_of(languages.begin(), languages.end(),
                            [](const Language &l) { return l.code == QLatin1String("de"); }));

        const Folder folder = await(api->createFolder(QStringLiteral("Languages")));
        const DeckSummary deck =
            await(api->createDeck(QStringLiteral("Deutsch"), QString(), QStringLiteral("de"),
                                  QStringLiteral("en"), folder.id));
        QCOMPARE(deck.folderId, std::optional<int>(folder.id));
        QCOMPARE(await(api->moveDeck(deck.id, std::nullopt)).folderId, std::nullopt);

        const QList<CardEvent> events = await(collect(api->addCardStreaming(deck.id, "Hund")));
        QVERIFY(!events.isEmpty());
        QCOMPARE(events.last().kind, CardEvent::Kind::Card);
        const Card card = events.last().card;
        // The card was written field by field before it arrived.
        QVERIFY(std::any_of(events.begin(), events.end(), [](const CardEvent &e) {
            return e.kind == CardEvent::Kind::Text && e.field == QLatin1String("translation");
        }));
        QCOMPARE(card.term, QStringLiteral("Hund"));
        QVERIFY2(card.translation.contains(QLatin1String("dog")), qPrintable(card.translation));
        QCOMPARE(card.article(), QStringLiteral("der"));
        QVERIFY(!card.reading.isEmpty());

        const Card reviewed = await(api->review(card.id, true));
        QCOMPARE(reviewed.seen, 1);
        QCOMPARE(reviewed.known, 1);
        QCOMPARE(reviewed.streak, 1);
        const Card missed = await(api->review(card.id, false));
        QCOMPARE(missed.seen, 2);
        QCOMPARE(missed.known, 1);
        QCOMPARE(missed.streak, 0);

        const Deck loaded = await(api->deck(deck.id));
        QCOMPARE(loaded.cards.size(), 1);
        QCOMPARE(loaded.cards.first().id, card.id);

        // Another account sees none of it.
        auto other = client("bo");
        await(other->signUp(QStringLiteral("bo@example.org"), QStringLiteral("battery staple"),
                            QStringLiteral("Bo")));
        await(other->signIn(QStringLiteral("bo@example.org"), QStringLiteral("battery staple")));
        try {
            await(other->deck(deck.id));
            QFAIL("another account's deck must not be readable");
        } catch (const APIError &error) {
            QCOMPARE(error.status(), 404);
        }
        QVERIFY(await(other->decks()).isEmpty());
    }

    void signingOutEndsTheSession()
    {
        auto api = client("ana");
        await(api->signOut());
        try {
            await(api->me());
            QFAIL("the session should be over");
        } catch (const APIError &error) {
            QCOMPARE(error.status(), 401);
        }
    }
};

QTEST_GUILESS_MAIN(TestProtocolEndToEnd)
#include "tst_protocol_e2e.moc"
