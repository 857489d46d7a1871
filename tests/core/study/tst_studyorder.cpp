// The order a session shows cards in.
#include "study/studyorder.h"

#include <QTest>

using namespace orvel;

namespace {

Card card(int id, int seen, int known, int streak)
{
    Card c;
    c.id = id;
    c.seen = seen;
    c.known = known;
    c.streak = streak;
    return c;
}

QList<int> ids(const QList<Card> &cards)
{
    QList<int> result;
    for (const Card &c : cards)
        result.append(c.id);
    return result;
}

} // namespace

class TestStudyOrder : public QObject {
    Q_OBJECT
private slots:
    void order_data()
    {
        QTest::addColumn<QList<Card>>("cards");
        QTest::addColumn<QList<int>>("expected");
        QTest::newRow("empty") << QList<Card>{} << QList<int>{};
        QTest::newRow("all unseen keep deck order")
            << QList<Card>{card(3, 0, 0, 0), card(1, 0, 0, 0), card(2, 0, 0, 0)}
            << QList<int>{3, 1, 2};
        QTest::newRow("unseen before seen, each keeping deck order")
            << QList<Card>{card(1, 5, 5, 5), card(2, 0, 0, 0), card(3, 1, 0, 0), card(4, 0, 0, 0)}
            << QList<int>{2, 4, 3, 1};
        QTest::newRow("lower ratio first at equal streak")
            << QList<Card>{card(1, 2, 2, 0), card(2, 4, 1, 0)} << QList<int>{2, 1};
        QTest::newRow("lower streak first whatever the ratio")
            << QList<Card>{card(1, 4, 1, 1), card(2, 2, 2, 0)} << QList<int>{2, 1};
        QTest::newRow("equal ratios keep deck order")
            << QList<Card>{card(1, 4, 2, 1), card(2, 2, 1, 1), card(3, 6, 3, 1)}
            << QList<int>{1, 2, 3};
        QTest::newRow("mixed") << QList<Card>{card(1, 3, 3, 3), card(2, 3, 1, 0), card(3, 0, 0, 0),
                                              card(4, 3, 2, 0), card(5, 2, 1, 1), card(6, 0, 0, 0)}
                               << QList<int>{3, 6, 2, 4, 5, 1};
    }
    void order()
    {
        QFETCH(QList<Card>, cards);
        QFETCH(QList<int>, expected);
        const QList<Card> ordered = StudyOrder::order(cards);
        QCOMPARE(ids(ordered), expected);
        // The cards themselves travel whole.
        for (const Card &c : ordered)
            QVERIFY(cards.contains(c));
    }

    void orderAgreesWithTheComparison()
    {
        // A larger pseudo-random deck: every neighbouring pair respects the comparison, and
        // equal neighbours keep their deck order.
        QList<Card> cards;
        quint32 seed = 7;
        auto next = [&seed](int n) {
            seed = seed * 1103515245u + 12345u;
            return int((seed >> 16) % quint32(n));
        };
        for (int i = 0; i < 500; ++i) {
            const int seen = next(4) == 0 ? 0 : 1 + next(6);
            cards.append(card(i, seen, seen ? next(seen + 1) : 0, next(3)));
        }
        const QList<Card> ordered = StudyOrder::order(cards);
        QCOMPARE(ordered.size(), cards.size());
        for (qsizetype i = 1; i < ordered.size(); ++i) {
            QVERIFY(!StudyOrder::before(ordered[i], ordered[i - 1]));
            if (!StudyOrder::before(ordered[i - 1], ordered[i]))
                QVERIFY(ordered[i - 1].id < ordered[i].id);
        }
    }
};

QTEST_GUILESS_MAIN(TestStudyOrder)
#include "tst_studyorder.moc"
