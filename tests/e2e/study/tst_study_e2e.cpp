// A study session against a real orvel-server: the answers reach the server's counts, the
// replies reach the opener, and a clip is spoken from the server's own speech.
#include "awaittask.h"
#include "library/homeview.h"
#include "server/apiclient.h"
#include "serverprocess.h"
#include "sound/audiooutput.h"
#include "sound/speech.h"
#include "study/studyview.h"
#include "testservices.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

using namespace orvel;
using testsupport::await;

namespace {

class RecordingOutput : public AudioOutput {
public:
    QStringList played;
    void play(const QString &path, double, std::function<void()> done) override
    {
        played.append(path);
        done();
    }
    void stop() override {}
};

QCoro::Task<Card> write(APIClient &api, int deck, QString word)
{
    auto stream = api.addCardStreaming(deck, word);
    std::optional<Card> card;
    while (auto event = co_await stream.next())
        if (event->kind == CardEvent::Kind::Card)
            card = event->card;
    if (!card)
        throw std::runtime_error("no card written");
    co_return *card;
}

} // namespace

class TestStudyEndToEnd : public QObject {
    Q_OBJECT
    QTemporaryDir m_dir;
    ServerProcess m_server{{QStringLiteral("--local")}};

private slots:
    void initTestCase()
    {
        QVERIFY(m_dir.isValid());
        QVERIFY2(m_server.start(), qPrintable(m_server.errorText()));
    }

    void studyADeckOfThree()
    {
        APIClient api(m_server.baseUrl(), m_dir.filePath("jar"), QString());
        await(api.signUp(QStringLiteral("ana@example.org"), QStringLiteral("correct horse"),
                         QStringLiteral("Ana")));
        await(api.signIn(QStringLiteral("ana@example.org"), QStringLiteral("correct horse")));
        SettingsChange change;
        change.hearOnFlip = true;
        await(api.saveSettings(change));
        const DeckSummary deck =
            await(api.createDeck(QStringLiteral("Deutsch"), QString(), QStringLiteral("de"),
                                 QStringLiteral("en"), std::nullopt));
        for (const char *word : {"Hund", "Katze", "Haus"})
            await(write(api, deck.id, QString::fromLatin1(word)));

        RecordingOutput output;
        testsupport::TestServices services(api, &output, m_dir.path());
        Speech &speech = services.speech();
        // The deck is open on the home screen too: the answers' new counts must reach its list.
        HomeView home;
        await(home.shelf()->load());
        home.selectDeck(deck.id);
        QVERIFY(QTest::qWaitFor([&] { return home.cards()->deck().has_value(); }));
        const auto listed = [&home](int cardId) {
            for (const Card &c : home.cards()->deck()->cards)
                if (c.id == cardId)
                    return c;
            return Card{};
        };
        StudyView view;
        view.studyDeck(deck);
        QVERIFY(QTest::qWaitFor([&] { return view.state() == StudyView::State::Front; }));
        QCOMPARE(view.count(), 3);
        QVERIFY(QTest::qWaitFor([&] { return view.hearOnFlip(); }));

        // Whether the server speaks at all (it says so in the settings).
        const bool speaks = await(api.preferences()).audio.value_or(true);
        const QList<Card> queue = view.queue();
        const QList<bool> answers{true, false, true}; // keys 2, 1, 2
        for (bool known : answers) {
            view.flip();
            if (speaks && output.played.isEmpty()) {
                // Hear on flip fetched a real clip of the card's word from the server.
                QCOMPARE(speech.saying(), view.card().term);
                QVERIFY(QTest::qWaitFor([&] { return !output.played.isEmpty(); }, 15000));
                QFile clip(output.played.first());
                QVERIFY(clip.open(QIODevice::ReadOnly));
                QVERIFY(clip.size() > 100);
                QVERIFY(speech.saying().isEmpty());
            }
            view.answer(known);
        }
        QCOMPARE(view.state(), StudyView::State::Done);
        QCOMPARE(view.tally(), QStringLiteral("2 right, 1 to come back to"));
        QVERIFY(QTest::qWaitFor(
            [&] {
                return std::all_of(queue.begin(), queue.end(),
                                   [&](const Card &c) { return listed(c.id).seen == 1; });
            },
            10000));

        const Deck after = await(api.deck(deck.id));
        for (int i = 0; i < 3; ++i) {
            const auto found = std::find_if(after.cards.begin(), after.cards.end(),
                                            [&](const Card &c) { return c.id == queue[i].id; });
            QVERIFY(found != after.cards.end());
            QCOMPARE(found->seen, 1);
            QCOMPARE(found->known, answers[i] ? 1 : 0);
            QCOMPARE(found->streak, answers[i] ? 1 : 0);
            QCOMPARE(listed(found->id).known, found->known);
            QCOMPARE(listed(found->id).streak, found->streak);
        }

        QVERIFY(!speaks || output.played.size() == 1);

        // The next session puts the missed card first.
        view.studyDeck(deck);
        QVERIFY(QTest::qWaitFor([&] { return view.state() == StudyView::State::Front; }));
        QCOMPARE(view.card().id, queue[1].id);
    }
};

QTEST_GUILESS_MAIN(TestStudyEndToEnd)
#include "tst_study_e2e.moc"
