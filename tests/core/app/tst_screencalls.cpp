// How a screen's server calls show: working while one runs (counted, so overlapping calls end
// together), a failure's message in `trouble`, nothing touched once the screen is gone, and a
// latest-only call that a newer one replaces. Calls here are coroutines the test releases by
// hand, so every step is deterministic.
#include "app/servercalls.h"
#include "awaittask.h"

#include <memory>
#include <QCoreApplication>
#include <qcoro/qcorosignal.h>
#include <QSignalSpy>
#include <QTest>

using namespace orvel;

namespace {

// A call the test finishes: open() with a value, or fail() with the server's words.
class Gate : public QObject {
    Q_OBJECT
public:
    void open(int value) { finish(value, {}); }
    void fail(const QString &message) { finish(0, message); }

    QCoro::Task<int> call()
    {
        const auto [value, failure] = co_await qCoro(this, &Gate::done);
        if (!failure.isEmpty())
            throw APIError(403, failure);
        co_return value;
    }

signals:
    void done(int value, const QString &failure);

private:
    // The awaiting coroutine resumes from the event loop; let it run to its next wait.
    void finish(int value, const QString &failure)
    {
        emit done(value, failure);
        QCoreApplication::sendPostedEvents();
        QCoreApplication::processEvents();
    }
};

class Screen : public QObject {
    Q_OBJECT
public:
    ServerCalls calls{this, &Screen::workingChanged, &Screen::troubleChanged};
    std::optional<CallReply<int>> last;

    QCoro::Task<> run(QCoro::Task<int> call, CallOptions options = {})
    {
        auto reply = co_await calls.run(std::move(call), options);
        if (!reply.gone())
            last = reply;
    }

signals:
    void workingChanged();
    void troubleChanged();
};

} // namespace

class TestScreenCalls : public QObject {
    Q_OBJECT

private slots:
    void aCallReadsAsWorkingAndItsFailureBecomesTrouble()
    {
        Screen screen;
        Gate gate;
        QSignalSpy working(&screen, &Screen::workingChanged);
        screen.calls.setTrouble(QStringLiteral("old"));

        screen.run(gate.call());
        QVERIFY(screen.calls.working());
        QCOMPARE(screen.calls.trouble(), QString()); // cleared when the call starts
        gate.fail(QStringLiteral("That deck is gone."));
        QVERIFY(!screen.calls.working());
        QCOMPARE(working.count(), 2);
        QCOMPARE(screen.calls.trouble(), QStringLiteral("That deck is gone."));
        QVERIFY(screen.last && screen.last->failed());
        QCOMPARE(screen.last->status(), 403);

        screen.run(gate.call(), CallOptions().failingWith(QStringLiteral("Couldn't file that")));
        gate.fail(QStringLiteral("server words"));
        QCOMPARE(screen.calls.trouble(), QStringLiteral("Couldn't file that"));

        screen.run(gate.call());
        gate.open(7);
        QVERIFY(screen.last && *screen.last);
        QCOMPARE(**screen.last, 7);
        QCOMPARE(screen.calls.trouble(), QString());
    }

    void overlappingCallsStayWorkingUntilTheLastEnds()
    {
        Screen screen;
        Gate first, second, quiet;
        QSignalSpy working(&screen, &Screen::workingChanged);
        screen.run(first.call());
        screen.run(second.call());
        screen.run(quiet.call(), CallOptions().quiet());
        first.open(1);
        QVERIFY(screen.calls.working());
        second.open(2);
        QVERIFY(!screen.calls.working());
        QCOMPARE(working.count(), 2);
        quiet.fail(QStringLiteral("no"));
        QVERIFY(!screen.calls.working());
        QCOMPARE(screen.calls.trouble(), QStringLiteral("no"));
    }

    void backgroundCallsLeaveTroubleAlone()
    {
        Screen screen;
        Gate gate;
        screen.calls.setTrouble(QStringLiteral("shown"));
        QSignalSpy working(&screen, &Screen::workingChanged);
        screen.run(gate.call(), CallOptions().background());
        gate.fail(QStringLiteral("ignored"));
        QCOMPARE(screen.calls.trouble(), QStringLiteral("shown"));
        QCOMPARE(working.count(), 0);
        QVERIFY(screen.last && screen.last->failed());
    }

    void aScreenGoneMeanwhileIsNotTouched()
    {
        auto screen = std::make_unique<Screen>();
        Gate gate;
        std::optional<CallReply<int>> reply;
        auto running = [](ServerCalls &calls, QCoro::Task<int> call,
                          std::optional<CallReply<int>> &out) -> QCoro::Task<> {
            out = co_await calls.run(std::move(call));
        };
        running(screen->calls, gate.call(), reply);
        screen.reset();
        gate.open(5);
        QVERIFY(reply);
        QVERIFY(reply->gone());
        QVERIFY(!*reply);
        QVERIFY(!reply->failed());
    }

    void aNewerLatestOnlyCallReplacesTheOneRunning()
    {
        Screen screen;
        Gate older, newer, dropped;
        screen.run(older.call(), CallOptions().latest());
        screen.run(newer.call(), CallOptions().latest());
        older.fail(QStringLiteral("stale failure"));
        QVERIFY(!screen.last); // the replaced call came back gone
        QCOMPARE(screen.calls.trouble(), QString());
        QVERIFY(screen.calls.working()); // the newer one still runs
        newer.open(2);
        QVERIFY(!screen.calls.working());
        QCOMPARE(**screen.last, 2);

        screen.last.reset();
        screen.run(dropped.call(), CallOptions().latest());
        screen.calls.abandonLatest();
        QVERIFY(!screen.calls.working());
        dropped.open(3);
        QVERIFY(!screen.last);
    }
};

QTEST_GUILESS_MAIN(TestScreenCalls)
#include "tst_screencalls.moc"
