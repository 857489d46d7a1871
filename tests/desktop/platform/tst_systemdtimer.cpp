// The daily reminder's systemd user timer: the units written to the unit folder, the systemctl
// calls that enable and remove it (against a stand-in systemctl that writes down its arguments
// and answers like systemctl with or without a user manager), the notification centre built on
// it, and, where this machine runs a systemd user session, the real thing.
#include "awaittask.h"
#include "platform/linuxnotificationcentre.h"
#include "platform/systemdtimer.h"
#include "reminders/reminder.h"
#include "skipunlessci.h"

#include <QDBusConnection>
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>

using namespace orvel;
using testsupport::await;

namespace {

const QString isRunning = QStringLiteral("--user is-system-running");
const QString reload = QStringLiteral("--user daemon-reload");
const QString enable = QStringLiteral("--user enable --now orvel-reminder.timer");
const QString disableNow = QStringLiteral("--user disable --now orvel-reminder.timer");
const QString disable = QStringLiteral("--user disable orvel-reminder.timer");

QString readAll(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

void writeAll(const QString &path, const QByteArray &text)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
    file.write(text);
}

} // namespace

class TestSystemdTimer : public QObject {
    Q_OBJECT
    QTemporaryDir m_dir;
    QString m_systemctl;

    // The stand-in systemctl's record of its calls, one line each.
    QStringList calls() const
    {
        return readAll(m_dir.filePath("calls")).split('\n', Qt::SkipEmptyParts);
    }
    // "running" (a user manager answers) or "offline" (none, as in a container or over ssh
    // without a session); `failing` makes the calls containing it fail.
    void manager(const QByteArray &state, const QByteArray &failing = {})
    {
        writeAll(m_dir.filePath("state"), state);
        writeAll(m_dir.filePath("failing"), failing);
        QFile::remove(m_dir.filePath("calls"));
    }

    SystemdTimer::Setup setup() const
    {
        SystemdTimer::Setup setup;
        setup.systemctl = m_systemctl;
        setup.unitDirectory = m_dir.filePath("config/systemd/user");
        setup.program = QStringLiteral("/opt/Orvel Apps/orvel");
        setup.name = QStringLiteral("orvel-reminder");
        return setup;
    }

private slots:
    void initTestCase()
    {
        QVERIFY(m_dir.isValid());
        m_systemctl = m_dir.filePath("systemctl");
        // Like systemctl: without a manager, only `disable` (which works on the files alone)
        // succeeds, and is-system-running prints "offline".
        const QString script =
            QStringLiteral("#!/bin/sh\n"
                           "dir='%1'\n"
                           "echo \"$*\" >> \"$dir/calls\"\n"
                           "state=$(cat \"$dir/state\")\n"
                           "failing=$(cat \"$dir/failing\")\n"
                           "if [ \"$*\" = '--user is-system-running' ]; then\n"
                           "  echo \"$state\"; [ \"$state\" = running ]; exit\n"
                           "fi\n"
                           "if [ -n \"$failing\" ] && echo \"$*\" | grep -q -- \"$failing\"; then\n"
                           "  echo 'Failed to enable unit' >&2; exit 1\n"
                           "fi\n"
                           "if [ \"$state\" != running ] && [ \"$*\" != '--user disable "
                           "orvel-reminder.timer' ]; then\n"
                           "  echo 'Failed to connect to bus: No medium found' >&2; exit 1\n"
                           "fi\n")
                .arg(m_dir.path());
        writeAll(m_systemctl, script.toUtf8());
        QVERIFY(QFile::setPermissions(m_systemctl,
                                      QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
    }

    void installWritesTheUnitsAndStartsTheTimer()
    {
        manager("running");
        SystemdTimer timer(setup());
        QVERIFY(await(timer.managerRunning()));
        QVERIFY(await(timer.install(7)));
        QCOMPARE(calls(), QStringList({isRunning, isRunning, reload, enable}));
        const QString unit = readAll(timer.timerPath());
        QVERIFY2(unit.contains(QStringLiteral("\nOnCalendar=*-*-* 07:00:00\n")), qPrintable(unit));
        QVERIFY(unit.contains(QStringLiteral("\nUnit=orvel-reminder.service\n")));
        QCOMPARE(QFileInfo(timer.timerPath()).fileName(), QStringLiteral("orvel-reminder.timer"));
        QVERIFY(readAll(timer.servicePath())
                    .contains(QStringLiteral("\nExecStart=\"/opt/Orvel Apps/orvel\" --remind\n")));

        // Another hour replaces the calendar.
        QVERIFY(await(timer.install(23)));
        QVERIFY(
            readAll(timer.timerPath()).contains(QStringLiteral("\nOnCalendar=*-*-* 23:00:00\n")));

        manager("running");
        await(timer.remove());
        QCOMPARE(calls(), QStringList({disableNow, reload}));
        QVERIFY(!QFile::exists(timer.timerPath()));
        QVERIFY(!QFile::exists(timer.servicePath()));

        // Nothing there: nothing to call.
        manager("running");
        await(timer.remove());
        QVERIFY(calls().isEmpty());
    }

    // systemd's own reading of the units, offline: the calendar, the quoted command line (a path
    // with a blank in it, to a program that exists) and the timer's service.
    void systemdAcceptsTheUnits()
    {
        const QString analyze = QStandardPaths::findExecutable(QStringLiteral("systemd-analyze"));
        if (analyze.isEmpty())
            ORVEL_SKIP_UNLESS_CI("systemd-analyze is missing (Debian's systemd package)");
        SystemdTimer::Setup runnable = setup();
        QVERIFY(QDir().mkpath(m_dir.filePath("Orvel Apps")));
        runnable.program = m_dir.filePath("Orvel Apps/orvel");
        QFile::remove(runnable.program);
        QVERIFY(
            QFile::copy(QStandardPaths::findExecutable(QStringLiteral("true")), runnable.program));
        manager("running");
        SystemdTimer timer(runnable);
        QVERIFY(await(timer.install(7)));
        QProcess verify;
        verify.start(analyze, {"verify", timer.timerPath(), timer.servicePath()});
        QVERIFY(verify.waitForFinished(30000));
        QVERIFY2(verify.exitCode() == 0, verify.readAllStandardError().constData());
        await(timer.remove());
    }

    void withoutAManagerNothingIsInstalled()
    {
        manager("offline");
        SystemdTimer timer(setup());
        QVERIFY(!await(timer.managerRunning()));
        QVERIFY(!await(timer.install(7)));
        QCOMPARE(calls(), QStringList({isRunning, isRunning}));
        QVERIFY(!QFile::exists(timer.timerPath()));
        QVERIFY(!QFile::exists(timer.servicePath()));
    }

    void unitsLeftWithoutAManagerAreStillRemoved()
    {
        manager("running");
        SystemdTimer timer(setup());
        QVERIFY(await(timer.install(7)));
        manager("offline");
        await(timer.remove());
        QCOMPARE(calls(), QStringList({disableNow, disable, reload}));
        QVERIFY(!QFile::exists(timer.timerPath()));
        QVERIFY(!QFile::exists(timer.servicePath()));
    }

    void aFailingSystemctlFailsTheInstall()
    {
        manager("running", "enable");
        SystemdTimer timer(setup());
        QTest::ignoreMessage(QtWarningMsg,
                             QRegularExpression("enable --now orvel-reminder.timer failed: "
                                                "Failed to enable unit"));
        QVERIFY(!await(timer.install(7)));
        // What was written goes at the next removal.
        manager("running");
        await(timer.remove());
        QVERIFY(!QFile::exists(timer.timerPath()));
    }

    void withoutSystemctlThereIsNoTimer()
    {
        SystemdTimer::Setup missing = setup();
        missing.systemctl = m_dir.filePath("no-such-systemctl");
        SystemdTimer timer(missing);
        QVERIFY(!await(timer.managerRunning()));
        QVERIFY(!await(timer.install(7)));
        QVERIFY(!QFile::exists(timer.timerPath()));
    }

    // The centre keeps the daily reminder, and only it, as the timer.
    void theCentreKeepsTheDailyReminderAsTheTimer()
    {
        manager("running");
        // A bus with no one on it: no notification server.
        const QDBusConnection nobody = QDBusConnection::connectToBus(
            QStringLiteral("unix:path=%1").arg(m_dir.filePath("no-bus")), QStringLiteral("none"));
        LinuxNotificationCentre centre(nobody, setup());
        SystemdTimer timer(setup());
        QCOMPARE(await(centre.authorization()), NotificationCentre::Authorization::Denied);
        QVERIFY(!await(centre.requestAuthorization()));
        QVERIFY(await(centre.canSchedule()));

        NotificationRequest other = Reminder::request(7);
        other.identifier = QStringLiteral("zelon.other");
        QVERIFY(!await(centre.add(other)));
        NotificationRequest halfPast = Reminder::request(7);
        halfPast.minute = 30;
        QVERIFY(!await(centre.add(halfPast)));
        QVERIFY(!QFile::exists(timer.timerPath()));

        QVERIFY(await(centre.add(Reminder::request(7))));
        QVERIFY(readAll(timer.timerPath()).contains(QStringLiteral("*-*-* 07:00:00")));
        await(centre.removePending({QStringLiteral("zelon.other")}));
        QVERIFY(QFile::exists(timer.timerPath()));
        await(centre.removePending({Reminder::identifier()}));
        QVERIFY(!QFile::exists(timer.timerPath()));

        manager("offline");
        QVERIFY(!await(centre.canSchedule()));
        QDBusConnection::disconnectFromBus(QStringLiteral("none"));
    }

    // This machine's own systemd user manager, under a name of the test's own so that a
    // reminder the user keeps is left alone.
    void theRealTimerIsWrittenAndRemoved()
    {
        QProcess probe;
        probe.start(QStringLiteral("systemctl"), {"--user", "is-system-running"});
        const bool ran = probe.waitForFinished(10000);
        const QByteArray state = ran ? probe.readAllStandardOutput().trimmed() : QByteArray();
        if (state != "running" && state != "degraded")
            QSKIP(qPrintable(QStringLiteral("no systemd user session on this machine (systemctl "
                                            "--user is-system-running: %1)")
                                 .arg(ran ? QString::fromUtf8(state) : probe.errorString())));
        SystemdTimer::Setup real = SystemdTimer::forThisUser();
        real.name =
            QStringLiteral("orvel-reminder-test-%1").arg(QCoreApplication::applicationPid());
        real.program = QStandardPaths::findExecutable(QStringLiteral("true"));
        SystemdTimer timer(real);
        const QString unit = real.name + QStringLiteral(".timer");
        const auto systemctl = [](const QStringList &arguments) {
            QProcess process;
            process.start(QStringLiteral("systemctl"), QStringList{"--user"} + arguments);
            process.waitForFinished(10000);
            return QString::fromUtf8(process.readAllStandardOutput()).trimmed();
        };

        QVERIFY(await(timer.install(5)));
        QVERIFY(QFile::exists(timer.timerPath()));
        QCOMPARE(systemctl({"is-enabled", unit}), QStringLiteral("enabled"));
        QCOMPARE(systemctl({"is-active", unit}), QStringLiteral("active"));
        QVERIFY(systemctl({"list-timers", "--all", unit}).contains(unit));
        QVERIFY(systemctl({"show", "-P", "TimersCalendar", unit}).contains("05:00:00"));

        await(timer.remove());
        QVERIFY(!QFile::exists(timer.timerPath()));
        QVERIFY(!QFile::exists(timer.servicePath()));
        QVERIFY(systemctl({"is-active", unit}) != QStringLiteral("active"));
    }
};

QTEST_GUILESS_MAIN(TestSystemdTimer)
#include "tst_systemdtimer.moc"
