// The study session's moves, tally and background reviews, against a scripted server.
#include "library/cardchanges.h"
#include "records/json.h"
#include "scriptedserver.h"
#include "server/apiclient.h"
#include "settledreplies.h"
#include "sound/audiooutput.h"
#include "sound/speech.h"
#include "study/studyview.h"
#include "testservices.h"

#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

using namespace orvel;

namespace {

class RecordingOutput : public AudioOutput {
public:
    QStringList played;
    int stops = 0;
    void play(const QString &path, double, std::function<void()>) override { played.append(path); }
    void stop() override { ++stops; }
};

Card card(int id, const QString &term, int deckId = 1, int seen = 0, int known = 0, int streak = 0)
{
    Card c;
    c.id = id;
    c.deckId = deckId;
    c.term = term;
    c.seen = seen;
    c.known = known;
    c.streak = streak;
    return c;
}

DeckSummary deck(int id, const QString &name, const QString &language,
                 std::optional<int> folder = std::nullopt)
{
    DeckSummary d;
    d.id = id;
    d.name = name;
    d.language = language;
    d.folderId = folder;
    d.cardCount = 1;
    return d;
}

// A deck as the server sends it whole, for the sessions that load their decks.
QByteArray deckReply(int id, const QString &name, const QString &language, const QList<Card> &cards)
{
    Deck d;
    d.id = id;
    d.name = name;
    d.language = language;
    d.cards = cards;
    return json::encode(d);
}

QByteArray settings(bool hearOnFlip)
{
    Preferences p;
    p.rate = 1.0;
    p.gain = 1.0;
    p.hearOnFlip = hearOnFlip;
    return json::encode(p);
}

} // namespace

class TestStudyView : public QObject {
    Q_OBJECT
    QTemporaryDir m_dir;
    std::unique_ptr<ScriptedServer> m_server;
    std::unique_ptr<APIClient> m_api;
    RecordingOutput m_output;
    std::unique_ptr<testsupport::TestServices> m_services;
    Speech *m_speech = nullptr;
    std::unique_ptr<StudyView> m_view;

    void answerReviews(const QList<Card> &cards)
    {
        for (Card c : cards) {
            c.seen += 1;
            m_server->reply("POST", QStringLiteral("/api/cards/%1/review").arg(c.id), 200,
                            json::encode(c));
        }
    }

private slots:
    void init()
    {
        m_server = std::make_unique<ScriptedServer>();
        m_server->reply("GET", "/api/settings", 200, settings(false));
        m_server->reply("GET", "/api/audio", 200, "ID3 clip", "audio/mpeg");
        m_api = std::make_unique<APIClient>(m_server->baseUrl(), m_dir.filePath("jar"), QString());
        m_output = {};
        m_services = std::make_unique<testsupport::TestServices>(*m_api, &m_output, m_dir.path());
        m_speech = &m_services->speech();
        m_view = std::make_unique<StudyView>();
    }
    void cleanup()
    {
        m_view.reset();
        m_services.reset();
        m_api.reset();
        m_server.reset();
    }

    void anEmptyDeckShowsTheEmptyState()
    {
        QCOMPARE(m_view->state(), StudyView::State::Empty);
        m_view->start(deck(1, "Deutsch", "de"), {});
        QCOMPARE(m_view->state(), StudyView::State::Empty);
        QVERIFY(!m_view->finished());
        QVERIFY(m_view->progress().isEmpty());
        m_view->flip();
        m_view->answer(true);
        m_view->step(1);
        QCOMPARE(m_view->state(), StudyView::State::Empty);
    }

    void aWholeSessionWithItsTally()
    {
        const QList<Card> cards{card(1, "Hund", 1, 2, 2, 2), card(2, "Katze"), card(3, "Maus")};
        answerReviews(cards);
        QList<Card> handed;
        QObject listener; // the card lists' side of the notice board
        connect(&CardChanges::shared(), &CardChanges::changed, &listener,
                [&handed](const Card &c) { handed.append(c); });
        QSignalSpy keys(m_view.get(), &StudyView::wantsKeys);
        m_view->start(deck(1, "Deutsch", "de"), cards);
        QCOMPARE(m_view->title(), QStringLiteral("Deutsch"));
        QCOMPARE(keys.count(), 1);
        QVERIFY(m_view->listening());
        // Unseen cards first.
        QCOMPARE(m_view->card().term, QStringLiteral("Katze"));
        QCOMPARE(m_view->state(), StudyView::State::Front);
        QCOMPARE(m_view->progress(), QStringLiteral("1 of 3"));
        QCOMPARE(m_view->hint(), QStringLiteral("click, or press space, to turn it over"));

        // Answering before turning the card over does nothing.
        m_view->answer(false);
        QCOMPARE(m_view->index(), 0);
        QVERIFY(m_view->said().isEmpty());

        m_view->flip();
        QCOMPARE(m_view->state(), StudyView::State::Back);
        QCOMPARE(m_view->hint(), QStringLiteral("click, or press E, for the rest of the card"));
        m_view->toggleExpanded();
        QVERIFY(m_view->expanded());
        QVERIFY(m_view->hint().isEmpty());
        m_view->answer(true);
        QCOMPARE(m_view->index(), 1);
        QVERIFY(!m_view->flipped());
        QVERIFY(!m_view->expanded());
        QCOMPARE(keys.count(), 2);
        QCOMPARE(m_view->progress(), QStringLiteral("2 of 3"));

        // A click turns the card, a second click opens the rest, a flip turns it back.
        m_view->click();
        QVERIFY(m_view->flipped());
        m_view->click();
        QVERIFY(m_view->expanded());
        m_view->flip();
        QVERIFY(!m_view->flipped());
        m_view->flip();
        m_view->answer(false);

        // Right arrow on the last card does nothing; the last answer shows the tally.
        QCOMPARE(m_view->card().term, QStringLiteral("Hund"));
        m_view->step(1);
        QCOMPARE(m_view->index(), 2);
        m_view->flip();
        m_view->answer(true);
        QVERIFY(m_view->finished());
        QCOMPARE(m_view->state(), StudyView::State::Done);
        QVERIFY(!m_view->hasCard());
        QCOMPARE(m_view->tally(), QStringLiteral("2 right, 1 to come back to"));

        // Every answer was sent, and every reply handed on.
        QVERIFY(QTest::qWaitFor([&] { return handed.size() == 3; }));
        QList<int> reviewedIds;
        for (const Card &c : handed)
            reviewedIds.append(c.id);
        std::sort(reviewedIds.begin(), reviewedIds.end());
        QCOMPARE(reviewedIds, (QList<int>{1, 2, 3}));
        int knownBodies = 0;
        for (const auto &request : m_server->requests())
            if (request.path.endsWith("/review"))
                knownBodies += request.body.contains("true") ? 1 : 0;
        QCOMPARE(knownBodies, 2);
    }

    void steppingBackAndAnsweringAgainReplacesTheAnswer()
    {
        const QList<Card> cards{card(1, "Hund"), card(2, "Katze")};
        answerReviews(cards);
        m_view->start(deck(1, "Deutsch", "de"), cards);
        m_view->step(-1); // nothing before the first card
        QCOMPARE(m_view->index(), 0);
        m_view->flip();
        m_view->answer(false);
        QCOMPARE(m_view->missed(), 1);
        m_view->flip();
        m_view->step(-1);
        QCOMPARE(m_view->index(), 0);
        QVERIFY(!m_view->flipped());
        m_view->flip();
        m_view->answer(true);
        QCOMPARE(m_view->knew(), 1);
        QCOMPARE(m_view->missed(), 0);
        QCOMPARE(m_view->index(), 1);
        // Stepping records no answer.
        m_view->step(1);
        QCOMPARE(m_view->said().size(), 1);
    }

    void aFailedReviewKeepsTheAnswer()
    {
        m_server->reply("POST", "/api/cards/1/review", 500, R"({"error":"down"})");
        SettledReplies replies(m_api->network());
        QList<Card> handed;
        QObject listener; // the card lists' side of the notice board
        connect(&CardChanges::shared(), &CardChanges::changed, &listener,
                [&handed](const Card &c) { handed.append(c); });
        m_view->start(deck(1, "Deutsch", "de"), {card(1, "Hund")});
        m_view->flip();
        m_view->answer(true);
        QCOMPARE(m_view->tally(), QStringLiteral("1 right, 0 to come back to"));
        QVERIFY(replies.waitFor(2)); // the settings and the review
        QVERIFY(handed.isEmpty());
        QCOMPARE(m_view->state(), StudyView::State::Done);
    }

    void repliesReachTheOpenerAfterTheSessionIsGone()
    {
        m_server->reply("POST", "/api/cards/1/review", 200,
                        json::encode(card(1, "Hund", 1, 1, 1, 1)));
        QList<Card> handed;
        QObject listener; // the card lists' side of the notice board
        connect(&CardChanges::shared(), &CardChanges::changed, &listener,
                [&handed](const Card &c) { handed.append(c); });
        m_view->start(deck(1, "Deutsch", "de"), {card(1, "Hund")});
        m_view->flip();
        m_view->answer(true);
        m_view.reset(); // closed before the reply came
        QVERIFY(QTest::qWaitFor([&] { return handed.size() == 1; }));
        QCOMPARE(handed[0].seen, 1);
        QCOMPARE(handed[0].streak, 1);
    }

    void hearOnFlipSpeaksTheTermInTheDecksLanguage()
    {
        m_server->reply("GET", "/api/settings", 200, settings(true));
        m_view->start(deck(1, "Deutsch", "de"), {card(1, "Hund"), card(2, "Katze")});
        QVERIFY(QTest::qWaitFor([&] { return m_view->hearOnFlip(); }));
        m_view->flip();
        QCOMPARE(m_speech->saying(), QStringLiteral("Hund"));
        QVERIFY(QTest::qWaitFor([&] { return m_output.played.size() == 1; }));
        const auto audio = m_server->lastRequest();
        QCOMPARE(audio.path, QStringLiteral("/api/audio"));
        QCOMPARE(audio.queryValue("lang"), QStringLiteral("de"));
        // Turning back speaks nothing; stepping stops the speech.
        m_view->flip();
        QCOMPARE(m_output.played.size(), 1);
        m_view->flip();
        const int stops = m_output.stops;
        m_view->step(1);
        QVERIFY(m_output.stops > stops);
        QVERIFY(m_speech->saying().isEmpty());
    }

    void withoutHearOnFlipNothingIsSpoken()
    {
        m_server->reply("GET", "/api/settings", 500, R"({"error":"down"})");
        SettledReplies replies(m_api->network());
        m_view->start(deck(1, "Deutsch", "de"), {card(1, "Hund")});
        QVERIFY(replies.waitFor(1));
        m_view->flip();
        QVERIFY(m_speech->saying().isEmpty());
        QVERIFY(!m_view->hearOnFlip());
    }

    void aFolderSessionSpeaksEachCardInItsDecksLanguage()
    {
        m_server->reply("GET", "/api/settings", 200, settings(true));
        m_server->reply(
            "GET", "/api/decks/1", 200,
            deckReply(1, "Deutsch", "de", {card(10, "Hund", 1, 3, 3, 3), card(11, "Katze", 1)}));
        m_server->reply(
            "GET", "/api/decks/2", 200,
            deckReply(2, "Français", "fr", {card(20, "chien", 2, 3, 0, 0), card(21, "chat", 2)}));
        Folder folder;
        folder.id = 5;
        folder.name = "Languages";
        // Deck 3 is not in the folder and is never loaded.
        const QList<DeckSummary> decks{deck(1, "Deutsch", "de", 5), deck(3, "Other", "it"),
                                       deck(2, "Français", "fr", 5)};
        m_view->studyFolder(folder, decks);
        QCOMPARE(m_view->state(), StudyView::State::Loading);
        QCOMPARE(m_view->title(), QStringLiteral("Languages"));
        QVERIFY(QTest::qWaitFor([&] { return m_view->state() == StudyView::State::Front; }));
        QStringList terms, languages;
        for (const Card &c : m_view->queue())
            terms.append(c.term);
        // New cards deck by deck, then the weakest seen card whichever deck it is in.
        QCOMPARE(terms, (QStringList{"Katze", "chat", "chien", "Hund"}));
        QVERIFY(QTest::qWaitFor([&] { return m_view->hearOnFlip(); }));
        for (int i = 0; i < 4; ++i) {
            languages.append(m_view->language());
            m_view->step(1);
        }
        QCOMPARE(languages, (QStringList{"de", "fr", "fr", "de"}));
        m_view->step(-1);
        m_view->flip();
        QVERIFY(QTest::qWaitFor([&] { return m_server->lastRequest().path == "/api/audio"; }));
        QCOMPARE(m_server->lastRequest().queryValue("text"), QStringLiteral("chien"));
        QCOMPARE(m_server->lastRequest().queryValue("lang"), QStringLiteral("fr"));
        for (const auto &request : m_server->requests())
            QVERIFY(request.path != "/api/decks/3");
    }

    void theStudyCommandsDeckIdsOpenOneSession()
    {
        m_server->reply("GET", "/api/decks/1", 200,
                        deckReply(1, "Deutsch", "de", {card(10, "Hund", 1)}));
        m_server->reply("GET", "/api/decks/2", 200,
                        deckReply(2, "Français", "fr", {card(20, "chien", 2)}));
        QVERIFY(!m_view->studyDecks(QString()));
        QVERIFY(!m_view->studyDecks(QStringLiteral("x, ,-3")));
        QCOMPARE(m_view->state(), StudyView::State::Empty);
        QVERIFY(m_view->studyDecks(QStringLiteral("2, 1,x,2")));
        QVERIFY(QTest::qWaitFor([&] { return m_view->state() == StudyView::State::Front; }));
        QCOMPARE(m_view->title(), QStringLiteral("Français, Deutsch"));
        QCOMPARE(m_view->card().term, QStringLiteral("chien"));
        QCOMPARE(m_view->language(), QStringLiteral("fr"));
        QCOMPARE(m_view->count(), 2);

        // One deck: titled with its name.
        QVERIFY(m_view->studyDecks(QStringLiteral("1")));
        QVERIFY(QTest::qWaitFor([&] { return m_view->state() == StudyView::State::Front; }));
        QCOMPARE(m_view->title(), QStringLiteral("Deutsch"));
        QCOMPARE(m_view->count(), 1);
    }

    void aDeckThatCannotLoadShowsTheServersMessage()
    {
        m_server->reply("GET", "/api/decks/4", 404, R"({"error":"No such deck."})");
        m_view->studyDeck(deck(4, "Gone", "de"));
        QVERIFY(QTest::qWaitFor([&] { return m_view->state() == StudyView::State::Failed; }));
        QCOMPARE(m_view->trouble(), QStringLiteral("No such deck."));
    }
};

QTEST_GUILESS_MAIN(TestStudyView)
#include "tst_studyview.moc"
