// The desktop's notification server as the reminder uses it, against a stand-in server on a
// private session bus: whether one is there (running, or startable by the bus), what a shown
// notification carries, and `orvel --remind`, which the reminder's timer runs.
#include "awaittask.h"
#include "platform/desktopnotifications.h"
#include "skipunlessci.h"

#include <mutex>
#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QFile>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>
#include <QThread>

using namespace orvel;
using testsupport::await;

namespace {

const QString service = QStringLiteral("org.freedesktop.Notifications");
const QString path = QStringLiteral("/org/freedesktop/Notifications");

struct Shown {
    QString app, icon, summary, body;
    QVariantMap hints;
    int timeout = 0;
};

// The Desktop Notifications interface's Notify, writing down each notification. It lives on its
// own thread, so that it answers while the test's thread waits for a reply or a process.
class StandInServer : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Notifications")

public:
    QList<Shown> shown()
    {
        std::lock_guard lock(m_mutex);
        return m_shown;
    }

public slots:
    uint Notify(const QString &app, uint, const QString &icon, const QString &summary,
                const QString &body, const QStringList &, const QVariantMap &hints, int timeout)
    {
        std::lock_guard lock(m_mutex);
        m_shown.append({app, icon, summary, body, hints, timeout});
        return uint(m_shown.size());
    }

private:
    std::mutex m_mutex;
    QList<Shown> m_shown;
};

// A dbus-daemon of the test's own with the session bus's configuration; `dataHome` holds the
// services it can start (dbus-1/services), when given.
class PrivateBus {
public:
    ~PrivateBus()
    {
        if (m_daemon.state() != QProcess::NotRunning) {
            m_daemon.terminate();
            m_daemon.waitForFinished();
        }
    }
    QString start(const QString &dataHome = {})
    {
        const QString daemon = QStandardPaths::findExecutable(QStringLiteral("dbus-daemon"));
        if (daemon.isEmpty())
            return {};
        if (!dataHome.isEmpty()) {
            QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
            environment.insert(QStringLiteral("XDG_DATA_HOME"), dataHome);
            environment.insert(QStringLiteral("XDG_DATA_DIRS"), dataHome);
            m_daemon.setProcessEnvironment(environment);
        }
        m_daemon.start(daemon, {QStringLiteral("--session"), QStringLiteral("--print-address"),
                                QStringLiteral("--nofork")});
        if (!m_daemon.waitForStarted())
            return {};
        while (!m_daemon.canReadLine())
            if (!m_daemon.waitForReadyRead(5000))
                return {};
        return QString::fromUtf8(m_daemon.readLine()).trimmed();
    }

private:
    QProcess m_daemon;
};

} // namespace

class TestDesktopNotifications : public QObject {
    Q_OBJECT
    QTemporaryDir m_dir;
    PrivateBus m_bus;
    QString m_address;
    QThread m_serverThread;
    StandInServer *m_server = nullptr;

    // Puts the stand-in server on the bus, or takes it off.
    void serve(bool on)
    {
        QDBusConnection bus(QStringLiteral("server"));
        if (on) {
            QVERIFY(bus.registerObject(path, m_server, QDBusConnection::ExportAllSlots));
            QVERIFY(bus.registerService(service));
        } else {
            QVERIFY(bus.unregisterService(service));
            bus.unregisterObject(path);
        }
    }

    // `orvel --remind` on the private bus, with no display to open a window on.
    QProcess *remind()
    {
        auto *process = new QProcess(this);
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"), m_address);
        for (const char *name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"})
            environment.remove(QString::fromLatin1(name));
        environment.insert(QStringLiteral("XDG_CONFIG_HOME"), m_dir.filePath("config"));
        process->setProcessEnvironment(environment);
        process->start(QStringLiteral(ORVEL_APP_PATH), {QStringLiteral("--remind")});
        return process;
    }

private slots:
    void initTestCase()
    {
        m_address = m_bus.start();
        if (m_address.isEmpty())
            ORVEL_SKIP_UNLESS_CI("dbus-daemon is missing or did not start (Debian's dbus package)");
        QDBusConnection serverBus = QDBusConnection::connectToBus(m_address, "server");
        QVERIFY2(serverBus.isConnected(), qPrintable(serverBus.lastError().message()));
        m_server = new StandInServer;
        m_server->moveToThread(&m_serverThread);
        connect(&m_serverThread, &QThread::finished, m_server, &QObject::deleteLater);
        m_serverThread.start();
    }

    void cleanupTestCase()
    {
        m_serverThread.quit();
        m_serverThread.wait();
        QDBusConnection::disconnectFromBus(QStringLiteral("server"));
        QDBusConnection::disconnectFromBus(QStringLiteral("app"));
    }

    void aServerIsThereWhileItOwnsTheName()
    {
        DesktopNotifications notifications(QDBusConnection::connectToBus(m_address, "app"));
        QVERIFY(!await(notifications.serverPresent()));
        serve(true);
        QVERIFY(await(notifications.serverPresent()));
        serve(false);
        QVERIFY(!await(notifications.serverPresent()));
        QVERIFY(!await(
            DesktopNotifications(QDBusConnection(QStringLiteral("nothing"))).serverPresent()));
    }

    // dunst, mako and the like are started by the bus for the first notification.
    void aServerTheBusCanStartIsThere()
    {
        const QString data = m_dir.filePath("data");
        QVERIFY(QDir().mkpath(data + QStringLiteral("/dbus-1/services")));
        QFile file(data + QStringLiteral("/dbus-1/services/org.freedesktop.Notifications.service"));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("[D-BUS Service]\nName=org.freedesktop.Notifications\nExec=/bin/false\n");
        file.close();
        PrivateBus startable;
        const QString address = startable.start(data);
        QVERIFY2(!address.isEmpty(), "dbus-daemon did not start with a service folder");
        {
            DesktopNotifications notifications(QDBusConnection::connectToBus(address, "startable"));
            QVERIFY(await(notifications.serverPresent()));
        }
        QDBusConnection::disconnectFromBus(QStringLiteral("startable"));
    }

    void aNotificationCarriesTheTextsAndTheDefaultSound()
    {
        serve(true);
        DesktopNotifications notifications(QDBusConnection::connectToBus(m_address, "app"));
        QCOMPARE(notifications.show(QStringLiteral("orvel"), QStringLiteral("A body."), true),
                 std::nullopt);
        QCOMPARE(notifications.show(QStringLiteral("orvel"), QStringLiteral("Quiet."), false),
                 std::nullopt);
        serve(false);
        const QList<Shown> shown = m_server->shown().mid(m_server->shown().size() - 2);
        QCOMPARE(shown.size(), 2);
        QCOMPARE(shown[0].summary, QStringLiteral("orvel"));
        QCOMPARE(shown[0].body, QStringLiteral("A body."));
        QCOMPARE(shown[0].app, QStringLiteral("Orvel"));
        QCOMPARE(shown[0].icon, QStringLiteral("org.orvel.Orvel"));
        QCOMPARE(shown[0].timeout, -1);
        QCOMPARE(shown[0].hints.value("sound-name").toString(),
                 QStringLiteral("message-new-instant"));
        QCOMPARE(shown[0].hints.value("desktop-entry").toString(), QStringLiteral("orvel"));
        QVERIFY(!shown[1].hints.contains("sound-name"));

        const std::optional<QString> unseen =
            notifications.show(QStringLiteral("orvel"), QStringLiteral("Nobody."), true);
        QVERIFY(unseen);
        QVERIFY2(unseen->contains(QLatin1String("no notification server")), qPrintable(*unseen));
    }

    void theTimersCommandShowsTheReminderAndExits()
    {
        serve(true);
        const qsizetype before = m_server->shown().size();
        QProcess *shown = remind();
        QVERIFY(shown->waitForFinished(20000));
        QCOMPARE(shown->exitStatus(), QProcess::NormalExit);
        QVERIFY2(shown->exitCode() == 0, shown->readAllStandardError().constData());
        QCOMPARE(m_server->shown().size(), before + 1);
        const Shown reminder = m_server->shown().constLast();
        QCOMPARE(reminder.summary, QStringLiteral("orvel"));
        QCOMPARE(reminder.body, QStringLiteral("A few minutes on your cards."));
        QCOMPARE(reminder.hints.value("sound-name").toString(),
                 QStringLiteral("message-new-instant"));
        serve(false);

        QProcess *unseen = remind();
        QVERIFY(unseen->waitForFinished(20000));
        QCOMPARE(unseen->exitCode(), 1);
        const QString error = QString::fromLocal8Bit(unseen->readAllStandardError());
        QVERIFY2(error.contains(QLatin1String("orvel: cannot show the daily reminder: no "
                                              "notification server")),
                 qPrintable(error));
    }
};

QTEST_GUILESS_MAIN(TestDesktopNotifications)
#include "tst_desktopnotifications.moc"
