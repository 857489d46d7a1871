#include "server/resumer.h"

#include <QCoreApplication>
#include <qcoro/qcorotask.h>
#include <QTest>

using namespace orvel;

namespace {

// Waits on the resumer `rounds` times, counting each time it was resumed.
QCoro::Task<> waitRounds(Resumer &resumer, int rounds, int &resumed)
{
    for (int i = 0; i < rounds; ++i) {
        co_await resumer.wait();
        ++resumed;
    }
}

} // namespace

class TestResumer : public QObject {
    Q_OBJECT

private slots:
    void manyWakesResumeTheWaiterOnceFromTheLoop()
    {
        Resumer resumer;
        int resumed = 0;
        auto task = waitRounds(resumer, 2, resumed);
        resumer.wake();
        resumer.wake();
        resumer.wake();
        QCOMPARE(resumed, 0); // never inside wake()
        QCoreApplication::processEvents();
        QCOMPARE(resumed, 1);
        // The extra wakes were not kept for the second wait: it waits for a wake of its own.
        QCoreApplication::processEvents();
        QCOMPARE(resumed, 1);
        resumer.wake();
        QCoreApplication::processEvents();
        QCOMPARE(resumed, 2);
        QVERIFY(task.isReady());
    }

    void aWakeWithNobodyWaitingIsDropped()
    {
        Resumer resumer;
        int resumed = 0;
        resumer.wake();
        QCoreApplication::processEvents();
        auto task = waitRounds(resumer, 1, resumed);
        QCoreApplication::processEvents();
        QCOMPARE(resumed, 0);
        resumer.wake();
        QCoreApplication::processEvents();
        QCOMPARE(resumed, 1);
    }

    void aResumerDestroyedWithAWakeQueuedResumesNobody()
    {
        int resumed = 0;
        auto resumer = std::make_unique<Resumer>();
        auto task = waitRounds(*resumer, 1, resumed);
        resumer->wake();
        resumer.reset();
        QCoreApplication::processEvents();
        QCOMPARE(resumed, 0);
    }
};

QTEST_GUILESS_MAIN(TestResumer)
#include "tst_resumer.moc"
