// The daily reminder against a notification centre in memory: what schedule() asks of the centre
// for each setting and answer, how the stored hour is read, that quick changes leave one request
// matching the last settings, and the settings pane's switch, picker and line beneath.
#include "awaittask.h"
#include "reminders/reminder.h"
#include "reminders/reminderpane.h"
#include "reminders/remindertexts.h"
#include "server/apiclient.h"
#include "server/localsettings.h"
#include "server/settingskeys.h"
#include "testservices.h"

#include <QDeadlineTimer>
#include <QFile>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

using namespace orvel;
using testsupport::await;
using Authorization = NotificationCentre::Authorization;

Q_DECLARE_METATYPE(NotificationCentre::Authorization)

namespace {
const QString removeDaily = QStringLiteral("remove zelon.daily");
const QString readStatus = QStringLiteral("authorization");
const QString askUser = QStringLiteral("request");

QSettings &settings()
{
    return LocalSettings::store();
}

// Handles events as they come until the condition holds (false after five seconds without).
template <class Condition> bool waitUntil(Condition condition)
{
    QDeadlineTimer deadline(5000);
    while (!condition()) {
        if (deadline.hasExpired())
            return false;
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
    return true;
}
} // namespace

class TestReminder : public QObject {
    Q_OBJECT
    QTemporaryDir m_dir;
    int m_files = 0;
    std::unique_ptr<APIClient> m_api;
    std::unique_ptr<testsupport::TestServices> m_services;

    testsupport::FakeNotificationCentre &centre() { return m_services->notifications(); }
    Reminder &reminder() { return m_services->reminder(); }
    QString settingsPath() const
    {
        return m_dir.filePath(QStringLiteral("orvel-%1.conf").arg(m_files));
    }

    // The settings file read afresh, as at the next start.
    void reopenSettings()
    {
        settings().sync();
        LocalSettings::useFile(settingsPath());
    }

private slots:
    // Each case starts as a fresh install: no settings, nothing pending, nothing decided.
    void init()
    {
        ++m_files;
        LocalSettings::useFile(settingsPath());
        m_api = std::make_unique<APIClient>(QUrl(QStringLiteral("http://127.0.0.1:9")),
                                            m_dir.filePath(QStringLiteral("cookies")), QString());
        m_services = std::make_unique<testsupport::TestServices>(*m_api);
    }

    void cleanup()
    {
        m_services.reset();
        m_api.reset();
    }

    void aFreshInstallSchedulesNothing()
    {
        QVERIFY(!reminder().on());
        QCOMPARE(reminder().hour(), 19);
        await(reminder().schedule());
        QCOMPARE(centre().log, QStringList({removeDaily})); // permission is not even asked
        QVERIFY(centre().pending.isEmpty());

        ReminderPane pane;
        QVERIFY(!pane.ready());
        QCOMPARE(pane.note(), QString());
        await(pane.load());
        QVERIFY(pane.ready());
        QVERIFY(pane.available());
        QVERIFY(!pane.on());
        QVERIFY(!pane.refused());
        QCOMPARE(pane.hour(), 19);
        QCOMPARE(pane.hours().size(), 24);
        QCOMPARE(pane.hours().value(pane.hour()), QStringLiteral("19:00"));
        QCOMPARE(pane.hours().first(), QStringLiteral("00:00"));
        QCOMPARE(pane.hours().value(7), QStringLiteral("07:00"));
        QCOMPARE(pane.note(),
                 QStringLiteral("Scheduled on this computer. Nothing about your decks leaves it."));
        QCOMPARE(pane.texts().value("title").toString(), QStringLiteral("Reminder"));
        QCOMPARE(pane.texts().value("remindDaily").toString(), QStringLiteral("Remind me daily"));
        QCOMPARE(pane.texts().value("hour").toString(), QStringLiteral("Hour"));
        QVERIFY(!centre().log.contains(askUser));
    }

    // What is in the settings file, as written by hand or by another version.
    void theHourIsReadOnlyFromAnInteger_data()
    {
        QTest::addColumn<QByteArray>("line");
        QTest::addColumn<int>("hour");
        QTest::newRow("integer") << QByteArray("zelon.reminder.hour=7") << 7;
        QTest::newRow("midnight") << QByteArray("zelon.reminder.hour=0") << 0;
        QTest::newRow("last hour") << QByteArray("zelon.reminder.hour=23") << 23;
        QTest::newRow("out of the day, as stored") << QByteArray("zelon.reminder.hour=30") << 30;
        QTest::newRow("with a unit") << QByteArray("zelon.reminder.hour=7pm") << 19;
        QTest::newRow("fraction") << QByteArray("zelon.reminder.hour=7.5") << 19;
        QTest::newRow("flag") << QByteArray("zelon.reminder.hour=true") << 19;
        QTest::newRow("list") << QByteArray("zelon.reminder.hour=7, 8") << 19;
        QTest::newRow("empty") << QByteArray("zelon.reminder.hour=") << 19;
        QTest::newRow("absent") << QByteArray("zelon.reminder.on=true") << 19;
    }

    void theHourIsReadOnlyFromAnInteger()
    {
        QFETCH(QByteArray, line);
        QFETCH(int, hour);
        QFile file(settingsPath() + QStringLiteral(".hand"));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("[General]\n" + line + "\n");
        file.close();
        LocalSettings::useFile(file.fileName());
        QCOMPARE(reminder().hour(), hour);
    }

    void theHourOfAnyOtherStoredTypeIsTheDefault()
    {
        settings().setValue(settingskeys::reminderHour(), 7.5);
        QCOMPARE(reminder().hour(), 19);
        // What the pane stores reads back the same now and at the next start.
        reminder().setHour(0);
        QCOMPARE(reminder().hour(), 0);
        reopenSettings();
        QCOMPARE(reminder().hour(), 0);
    }

    // Each answer of the centre, with the reminder on: whether it asks, and whether it adds.
    void scheduleFollowsThePermission_data()
    {
        QTest::addColumn<Authorization>("status");
        QTest::addColumn<bool>("grants");
        QTest::addColumn<QStringList>("log");
        const QString add = QStringLiteral("add zelon.daily 19:00");
        QTest::newRow("authorized")
            << Authorization::Authorized << false << QStringList{removeDaily, readStatus, add};
        QTest::newRow("provisional")
            << Authorization::Provisional << false << QStringList{removeDaily, readStatus, add};
        QTest::newRow("denied") << Authorization::Denied << true
                                << QStringList{removeDaily, readStatus};
        QTest::newRow("asked, granted") << Authorization::NotDetermined << true
                                        << QStringList{removeDaily, readStatus, askUser, add};
        QTest::newRow("asked, refused") << Authorization::NotDetermined << false
                                        << QStringList{removeDaily, readStatus, askUser};
    }

    void scheduleFollowsThePermission()
    {
        QFETCH(Authorization, status);
        QFETCH(bool, grants);
        QFETCH(QStringList, log);
        centre().status = status;
        centre().grants = grants;
        centre().pending.insert(Reminder::identifier(), Reminder::request(6)); // an old one
        reminder().setOn(true);
        await(reminder().schedule());
        QCOMPARE(centre().log, log);
        const bool added = log.last().startsWith(QLatin1String("add"));
        QCOMPARE(centre().pending.size(), added ? 1 : 0);
        if (added)
            QCOMPARE(centre().pending.first().hour, 19);
    }

    void theRequestIsTheDailyReminder()
    {
        centre().status = Authorization::Authorized;
        reminder().setOn(true);
        reminder().setHour(7);
        await(reminder().schedule());
        QCOMPARE(centre().pending.size(), 1);
        const NotificationRequest sent = centre().pending.first();
        QCOMPARE(sent.identifier, QStringLiteral("zelon.daily"));
        QCOMPARE(sent.title, QStringLiteral("orvel"));
        QCOMPARE(sent.body, QStringLiteral("A few minutes on your cards."));
        QVERIFY(sent.sound);
        QCOMPARE(sent.hour, 7);
        QCOMPARE(sent.minute, 0);
        QVERIFY(sent.repeats);

        // Run again, it replaces rather than adds.
        await(reminder().schedule());
        QCOMPARE(centre().pending.size(), 1);
        QCOMPARE(centre().log.count(removeDaily), 2);
    }

    // Calls that overlap (each step of the centre takes a while) end as the last settings say,
    // with one request or none, and a call overtaken while it waited does no work.
    void quickChangesLeaveOneRequest()
    {
        centre().status = Authorization::Authorized;
        centre().delay = std::chrono::milliseconds(15);
        reminder().setOn(true);
        reminder().setHour(7);
        auto first = reminder().schedule();
        reminder().setHour(8);
        auto second = reminder().schedule();
        reminder().setHour(9);
        auto third = reminder().schedule();
        await(std::move(first));
        await(std::move(second));
        await(std::move(third));
        QCOMPARE(centre().pending.size(), 1);
        QCOMPARE(centre().pending.first().hour, 9);
        // The first run and the last; the second was overtaken by the third.
        QCOMPARE(centre().log.count(removeDaily), 2);

        // Off while a run that saw "on" is still asking: nothing may be left behind by it.
        centre().log.clear();
        auto on = reminder().schedule();
        QVERIFY(waitUntil([this] { return centre().log.contains(removeDaily); }));
        reminder().setOn(false);
        auto off = reminder().schedule();
        await(std::move(on));
        await(std::move(off));
        QVERIFY(centre().pending.isEmpty());
        QCOMPARE(centre().log.last(), removeDaily);
    }

    void turningOffRemovesEvenWithoutPermission()
    {
        centre().status = Authorization::NotDetermined;
        centre().pending.insert(Reminder::identifier(), Reminder::request(19));
        reminder().setOn(true);
        ReminderPane pane;
        await(pane.load());
        QVERIFY(pane.on());
        // The switch is shown on; turning it off asks nothing and leaves nothing pending.
        centre().log.clear();
        await(pane.turn(false));
        QVERIFY(!pane.on());
        QVERIFY(!settings().value(settingskeys::reminderOn()).toBool());
        QCOMPARE(centre().log, QStringList({removeDaily}));
        QVERIFY(centre().pending.isEmpty());
        QCOMPARE(centre().status, Authorization::NotDetermined);
    }

    void changingTheHourWhileOffOnlyStoresIt()
    {
        ReminderPane pane;
        await(pane.load());
        QSignalSpy changed(&pane, &ReminderPane::stateChanged);
        await(pane.choose(7));
        QCOMPARE(pane.hour(), 7);
        QVERIFY(!changed.isEmpty());
        QCOMPARE(settings().value(settingskeys::reminderHour()).toInt(), 7);
        QVERIFY(centre().pending.isEmpty());
        QVERIFY(!centre().log.contains(askUser));
        QVERIFY(!centre().log.join(' ').contains(QLatin1String("add")));
        // Hours the picker does not offer, and the hour already chosen, change nothing.
        centre().log.clear();
        for (int hour : {-1, 24, 7})
            pane.setHour(hour);
        QCOMPARE(pane.hour(), 7);
        QVERIFY(centre().log.isEmpty());
    }

    void turningOnAsksAndSchedules()
    {
        ReminderPane pane;
        await(pane.load());
        await(pane.choose(8));
        await(pane.turn(true));
        QVERIFY(pane.on());
        QVERIFY(!pane.refused());
        QVERIFY(centre().log.contains(askUser));
        QCOMPARE(centre().pending.size(), 1);
        QCOMPARE(centre().pending.first().hour, 8);
        // A new hour moves the one request.
        await(pane.choose(21));
        QCOMPARE(centre().pending.size(), 1);
        QCOMPARE(centre().pending.first().hour, 21);
    }

    void aRefusalIsShownAndAskedAgainAtTheNextTurn()
    {
        centre().grants = false;
        ReminderPane pane;
        await(pane.load());
        await(pane.turn(true));
        QVERIFY(pane.refused());
        QVERIFY(pane.on()); // the choice stays; only nothing is scheduled
        QVERIFY(settings().value(settingskeys::reminderOn()).toBool());
        QVERIFY(centre().pending.isEmpty());
        QCOMPARE(pane.note(), remindertexts::refused());

        // A notification server has come meanwhile: off and on again asks again.
        centre().status = Authorization::Authorized;
        await(pane.turn(false));
        await(pane.turn(true));
        QVERIFY(!pane.refused());
        QCOMPARE(pane.note(), remindertexts::local());
        QCOMPARE(centre().pending.size(), 1);
    }

    void theComputersAnswersAreReadAgainEachTimeThePaneIsShown()
    {
        reminder().setOn(true);
        centre().status = Authorization::Denied;
        ReminderPane pane;
        await(pane.load());
        QVERIFY(pane.refused());
        centre().status = Authorization::Authorized;
        await(pane.load());
        QVERIFY(!pane.refused());
        QVERIFY(!centre().log.contains(askUser)); // read, never asked
    }

    void withoutATimerTheSwitchDoesNothing()
    {
        centre().schedulable = false;
        ReminderPane pane;
        await(pane.load());
        QVERIFY(pane.ready());
        QVERIFY(!pane.available());
        QCOMPARE(pane.note(), remindertexts::noTimer());
        centre().log.clear();
        pane.setOn(true);
        QVERIFY(!pane.on());
        QVERIFY(!settings().contains(settingskeys::reminderOn()));
        QVERIFY(centre().log.isEmpty());
    }
};

QTEST_GUILESS_MAIN(TestReminder)
#include "tst_reminder.moc"
