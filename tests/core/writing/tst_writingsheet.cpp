#include "writing/motionpreference.h"
#include "writing/writing.h"
#include "writing/writingsheet.h"

#include <QAbstractItemModelTester>
#include <QSignalSpy>
#include <QTest>

using namespace orvel;

namespace {

QString valueAt(const WritingSheet &sheet, int row)
{
    return sheet.data(sheet.index(row), WritingSheet::ValueRole).toString();
}

CardEvent text(const QString &field, const QString &value)
{
    return CardEvent{.kind = CardEvent::Kind::Text, .field = field, .value = value};
}

CardEvent count(const QString &field, int count)
{
    return CardEvent{.kind = CardEvent::Kind::Count, .field = field, .count = count};
}

} // namespace

class TestWritingSheet : public QObject {
    Q_OBJECT

private slots:
    void eventsFillTheRecordByFieldName()
    {
        Writing writing = Writing::begin(QStringLiteral("Hund"));
        QCOMPARE(writing.input, QStringLiteral("Hund"));
        QVERIFY(writing.id != Writing::begin(QStringLiteral("Hund")).id);
        const Writing fresh = writing;

        QVERIFY(!writing.take(text("gender", "der")));
        QVERIFY(!writing.take(text("usage", "x"))); // the wire name is usage_notes
        QVERIFY(!writing.take(count("related", 3)));
        QVERIFY(!writing.take(CardEvent{}));
        QCOMPARE(writing, fresh);

        QVERIFY(writing.take(text("term", "der Hund")));
        QVERIFY(writing.take(text("translation", "dog")));
        QVERIFY(writing.take(text("definition", "a pet")));
        QVERIFY(writing.take(text("usage_notes", "common")));
        QVERIFY(writing.take(count("examples", 3)));
        QVERIFY(writing.take(count("conjugations", 6)));
        QVERIFY(!writing.take(count("conjugations", 6))); // the same value again is no change
        QCOMPARE(writing.term, QStringLiteral("der Hund"));
        QCOMPARE(writing.translation, QStringLiteral("dog"));
        QCOMPARE(writing.definition, QStringLiteral("a pet"));
        QCOMPARE(writing.usage, QStringLiteral("common"));
        QCOMPARE(writing.examples, 3);
        QCOMPARE(writing.conjugations, 6);
        QVERIFY(writing.take(CardEvent{.kind = CardEvent::Kind::Failed, .message = "Gave up."}));
        QCOMPARE(writing.trouble, std::optional<QString>("Gave up."));
        // The card itself ends the writing: what has not come by then will not come.
        QVERIFY(!writing.written);
        QVERIFY(writing.take(CardEvent{.kind = CardEvent::Kind::Card}));
        QVERIFY(writing.written);

        QCOMPARE(Writing::narrationFor(text("translation", "dog")),
                 std::optional<QString>("translation: dog"));
        QCOMPARE(Writing::narrationFor(count("examples", 3)),
                 std::optional<QString>("examples: 3"));
        QCOMPARE(Writing::narrationFor(CardEvent{.kind = CardEvent::Kind::Card}), std::nullopt);
    }

    void rowsArePendingUntilTheirValueArrives()
    {
        WritingSheet sheet;
        QAbstractItemModelTester tester(&sheet,
                                        QAbstractItemModelTester::FailureReportingMode::QtTest);
        QCOMPARE(sheet.rowCount(), 6);
        for (int row = 0; row < 6; ++row)
            QVERIFY(!sheet.data(sheet.index(row), WritingSheet::FilledRole).toBool());

        Writing writing = Writing::begin(QStringLiteral("Katze"));
        sheet.setWriting(writing);
        QCOMPARE(sheet.input(), QStringLiteral("Katze"));
        QCOMPARE(sheet.heading(), QStringLiteral("WRITING"));

        // Only the rows whose value changed are reported.
        QSignalSpy changed(&sheet, &QAbstractItemModel::dataChanged);
        writing.translation = QStringLiteral("cat");
        writing.examples = 2;
        sheet.setWriting(writing);
        QCOMPARE(changed.size(), 2);
        QCOMPARE(changed[0][0].toModelIndex().row(), 1);
        QCOMPARE(changed[1][0].toModelIndex().row(), 4);
        QVERIFY(sheet.data(sheet.index(1), WritingSheet::FilledRole).toBool());
        QCOMPARE(valueAt(sheet, 1), QStringLiteral("cat"));
        sheet.setWriting(writing);
        QCOMPARE(changed.size(), 2);
        // A fresh writing empties every filled row again.
        sheet.setWriting(Writing::begin(QStringLiteral("Maus")));
        QCOMPARE(sheet.filledCount(), 0);
        QCOMPARE(changed.size(), 4);
    }

    void countsReadAsSentencesAndTenses_data()
    {
        QTest::addColumn<int>("count");
        QTest::addColumn<QString>("examples");
        QTest::addColumn<QString>("paradigm");
        QTest::newRow("none") << 0 << ""
                              << "";
        QTest::newRow("one") << 1 << "1 sentence"
                             << "1 tense";
        QTest::newRow("three") << 3 << "3 sentences"
                               << "3 tenses";
    }

    void countsReadAsSentencesAndTenses()
    {
        QFETCH(int, count);
        QFETCH(QString, examples);
        QFETCH(QString, paradigm);
        WritingSheet sheet;
        Writing writing;
        writing.examples = count;
        writing.conjugations = count;
        sheet.setWriting(writing);
        QCOMPARE(valueAt(sheet, 4), examples);
        QCOMPARE(valueAt(sheet, 5), paradigm);
        QCOMPARE(sheet.data(sheet.index(4), WritingSheet::FilledRole).toBool(), count > 0);
    }

    void aFailedWritingIsNotWrittenButKeepsItsRows()
    {
        WritingSheet sheet;
        Writing writing = Writing::begin(QStringLiteral("Hnud"));
        writing.term = QStringLiteral("Hnud");
        writing.examples = 1;
        writing.trouble = QStringLiteral("Not a German word.");
        sheet.setWriting(writing);
        QVERIFY(sheet.failed());
        QVERIFY(sheet.over());
        QCOMPARE(sheet.heading(), QStringLiteral("NOT WRITTEN"));
        QCOMPARE(sheet.trouble(), QStringLiteral("Not a German word."));
        QCOMPARE(valueAt(sheet, 0), QStringLiteral("Hnud"));
        QCOMPARE(valueAt(sheet, 4), QStringLiteral("1 sentence"));
        QCOMPARE(sheet.filledCount(), 2);

        QSignalSpy hidden(&sheet, &WritingSheet::hidden);
        sheet.hide();
        QCOMPARE(hidden.size(), 1);
    }

    void aWrittenCardEndsTheWaitingButIsNoFailure()
    {
        WritingSheet sheet;
        Writing writing = Writing::begin(QStringLiteral("Hund"));
        writing.term = QStringLiteral("der Hund");
        sheet.setWriting(writing);
        QVERIFY(!sheet.over());
        writing.written = true;
        sheet.setWriting(writing);
        QVERIFY(sheet.over());
        QVERIFY(!sheet.failed());
        QCOMPARE(sheet.heading(), QStringLiteral("WRITING"));
    }

    void countRowsTheCardHasNothingForAreLeftOut()
    {
        WritingSheet sheet;
        QAbstractItemModelTester tester(&sheet,
                                        QAbstractItemModelTester::FailureReportingMode::QtTest);
        const auto dropped = [&](int row) {
            return sheet.data(sheet.index(row), WritingSheet::DroppedRole).toBool();
        };
        Writing writing = Writing::begin(QStringLiteral("Hund"));
        writing.term = QStringLiteral("der Hund");
        writing.examples = 2;
        sheet.setWriting(writing);
        QVERIFY(!dropped(4) && !dropped(5)); // still on their way

        QSignalSpy changed(&sheet, &QAbstractItemModel::dataChanged);
        writing.written = true;
        sheet.setWriting(writing);
        QVERIFY(!dropped(3)); // a text row stays, shown as empty
        QVERIFY(!dropped(4));
        QVERIFY(dropped(5)); // no tenses for a noun
        QVERIFY(!changed.isEmpty());
        QCOMPARE(changed.last().at(1).value<QModelIndex>().row(), 5);
    }

    void theEnvironmentCanAskForReducedMotion()
    {
        qputenv("ORVEL_REDUCE_MOTION", "1");
        QVERIFY(MotionPreference().reduced());
        qputenv("ORVEL_REDUCE_MOTION", "0");
        QVERIFY(!MotionPreference::desktopAsksForReducedMotion());
        qunsetenv("ORVEL_REDUCE_MOTION");
    }
};

QTEST_GUILESS_MAIN(TestWritingSheet)
#include "tst_writingsheet.moc"
