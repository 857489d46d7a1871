// The units that keep the daily reminder under systemd, as text: the timer's calendar for each
// hour, the service's command line for awkward paths, and how a running user manager is told
// from none.
#include "reminders/systemdunits.h"

#include <QRegularExpression>
#include <QTest>

using namespace orvel;

namespace {
// The value of the first `key=` line of a unit.
QString valueOf(const QString &unit, const QString &key)
{
    const QRegularExpression line(QStringLiteral("^%1=(.*)$").arg(QRegularExpression::escape(key)),
                                  QRegularExpression::MultilineOption);
    return line.match(unit).captured(1);
}
} // namespace

class TestSystemdUnits : public QObject {
    Q_OBJECT

private slots:
    void theTimerFiresDailyAtTheHour_data()
    {
        QTest::addColumn<int>("hour");
        QTest::addColumn<QString>("calendar");
        QTest::newRow("midnight") << 0 << "*-*-* 00:00:00";
        QTest::newRow("morning") << 7 << "*-*-* 07:00:00";
        QTest::newRow("last hour") << 23 << "*-*-* 23:00:00";
    }

    void theTimerFiresDailyAtTheHour()
    {
        QFETCH(int, hour);
        QFETCH(QString, calendar);
        const std::optional<QString> unit =
            systemdunits::timer(hour, QStringLiteral("orvel-reminder.service"));
        QVERIFY(unit);
        QCOMPARE(valueOf(*unit, "OnCalendar"), calendar);
        QCOMPARE(unit->count(QStringLiteral("OnCalendar=")), 1);
        QCOMPARE(valueOf(*unit, "Persistent"), QStringLiteral("false"));
        QCOMPARE(valueOf(*unit, "Unit"), QStringLiteral("orvel-reminder.service"));
        QCOMPARE(valueOf(*unit, "WantedBy"), QStringLiteral("timers.target"));
    }

    void noTimerForAnHourNoDayHas()
    {
        for (int hour : {-1, 24, 30})
            QVERIFY2(!systemdunits::timer(hour, QStringLiteral("x.service")),
                     qPrintable(QString::number(hour)));
    }

    void theServiceRunsTheProgramOnce()
    {
        const std::optional<QString> unit = systemdunits::service(QStringLiteral("/usr/bin/orvel"));
        QVERIFY(unit);
        QCOMPARE(valueOf(*unit, "Type"), QStringLiteral("oneshot"));
        QCOMPARE(valueOf(*unit, "ExecStart"), QStringLiteral("/usr/bin/orvel --remind"));
    }

    void awkwardPathsAreQuoted_data()
    {
        QTest::addColumn<QString>("program");
        QTest::addColumn<QString>("execStart");
        QTest::newRow("blank") << "/home/ana/My Apps/orvel"
                               << "\"/home/ana/My Apps/orvel\" --remind";
        QTest::newRow("specifier") << "/opt/100%/orvel"
                                   << "/opt/100%%/orvel --remind";
        QTest::newRow("variable") << "/opt/$HOME/orvel"
                                  << "/opt/$$HOME/orvel --remind";
        QTest::newRow("quote and backslash") << "/opt/a\"b\\c/orvel"
                                             << "\"/opt/a\\\"b\\\\c/orvel\" --remind";
        QTest::newRow("apostrophe") << "/opt/ana's/orvel"
                                    << "\"/opt/ana's/orvel\" --remind";
    }

    void awkwardPathsAreQuoted()
    {
        QFETCH(QString, program);
        QFETCH(QString, execStart);
        const std::optional<QString> unit = systemdunits::service(program);
        QVERIFY(unit);
        QCOMPARE(valueOf(*unit, "ExecStart"), execStart);
    }

    void noServiceForAProgramThatCannotBeNamed()
    {
        QVERIFY(!systemdunits::service(QString()));
        QVERIFY(!systemdunits::service(QStringLiteral("orvel")));           // not absolute
        QVERIFY(!systemdunits::service(QStringLiteral("/opt/a\nb/orvel"))); // two lines
    }

    void aRunningManagerIsToldFromNone_data()
    {
        QTest::addColumn<QByteArray>("output");
        QTest::addColumn<bool>("running");
        QTest::newRow("running") << QByteArray("running\n") << true;
        QTest::newRow("degraded") << QByteArray("degraded\n") << true;
        QTest::newRow("starting") << QByteArray("starting\n") << true;
        QTest::newRow("offline") << QByteArray("offline\n") << false;
        QTest::newRow("unknown") << QByteArray("unknown\n") << false;
        QTest::newRow("nothing") << QByteArray() << false;
        QTest::newRow("an error") << QByteArray("Failed to connect to bus") << false;
    }

    void aRunningManagerIsToldFromNone()
    {
        QFETCH(QByteArray, output);
        QFETCH(bool, running);
        QCOMPARE(systemdunits::managerRunning(output), running);
    }
};

QTEST_GUILESS_MAIN(TestSystemdUnits)
#include "tst_systemdunits.moc"
