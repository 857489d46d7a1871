// The desktop's dark or light appearance, read from a stand-in desktop portal on a private
// session bus and followed as the portal announces changes, the way xdg-desktop-portal does.
#include "platform/colourscheme.h"
#include "skipunlessci.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QProcess>
#include <QSignalSpy>
#include <QStandardPaths>
#include <QTest>
#include <QThread>

using namespace orvel;

namespace {

const QString service = QStringLiteral("org.freedesktop.portal.Desktop");
const QString path = QStringLiteral("/org/freedesktop/portal/desktop");
const QString settingsInterface = QStringLiteral("org.freedesktop.portal.Settings");
const QString appearance = QStringLiteral("org.freedesktop.appearance");
const QString colourScheme = QStringLiteral("color-scheme");

enum : uint { noPreference = 0, preferDark = 1, preferLight = 2 };

// The portal's Settings interface with one setting. Read answers the way xdg-desktop-portal
// does, with the value in a variant inside the reply's variant; ReadOne without the extra one.
// It lives on its own thread, so that it answers while the app's thread waits for the reply.
class StandInPortal : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.portal.Settings")

public:
    std::atomic<uint> value = noPreference;

public slots:
    QDBusVariant Read(const QString &group, const QString &key)
    {
        return QDBusVariant(QVariant::fromValue(ReadOne(group, key)));
    }
    QDBusVariant ReadOne(const QString &group, const QString &key)
    {
        if (group != appearance || key != colourScheme)
            return QDBusVariant(QString());
        return QDBusVariant(uint(value));
    }
};

// The SettingChanged signal with xdg-desktop-portal's signature, (ssv); `nested` wraps the value
// in a second variant, as some portal versions do.
QDBusMessage settingChanged(const QString &group, const QString &key, uint value,
                            bool nested = false)
{
    QDBusMessage signal =
        QDBusMessage::createSignal(path, settingsInterface, QStringLiteral("SettingChanged"));
    const QVariant inner = nested ? QVariant::fromValue(QDBusVariant(value)) : QVariant(value);
    signal << group << key << QVariant::fromValue(QDBusVariant(inner));
    return signal;
}

} // namespace

class TestColourScheme : public QObject {
    Q_OBJECT

    QProcess m_daemon;
    QString m_address;
    QThread m_portalThread;
    StandInPortal *m_portal = nullptr;

    QDBusConnection bus(const QString &name)
    {
        return QDBusConnection::connectToBus(m_address, name);
    }

private slots:
    void initTestCase()
    {
        const QString daemon = QStandardPaths::findExecutable(QStringLiteral("dbus-daemon"));
        if (daemon.isEmpty())
            ORVEL_SKIP_UNLESS_CI("dbus-daemon is missing (Debian's dbus package)");
        m_daemon.start(daemon, {QStringLiteral("--session"), QStringLiteral("--print-address"),
                                QStringLiteral("--nofork")});
        QVERIFY2(m_daemon.waitForStarted(), qPrintable(m_daemon.errorString()));
        while (!m_daemon.canReadLine())
            QVERIFY2(m_daemon.waitForReadyRead(), "dbus-daemon printed no address");
        m_address = QString::fromUtf8(m_daemon.readLine()).trimmed();

        QDBusConnection portalBus = bus(QStringLiteral("portal"));
        QVERIFY2(portalBus.isConnected(), qPrintable(portalBus.lastError().message()));
        m_portal = new StandInPortal;
        m_portal->moveToThread(&m_portalThread);
        connect(&m_portalThread, &QThread::finished, m_portal, &QObject::deleteLater);
        m_portalThread.start();
        QVERIFY(portalBus.registerObject(path, m_portal, QDBusConnection::ExportAllSlots));
        QVERIFY(portalBus.registerService(service));
    }

    void cleanupTestCase()
    {
        m_portalThread.quit();
        m_portalThread.wait();
        QDBusConnection::disconnectFromBus(QStringLiteral("portal"));
        QDBusConnection::disconnectFromBus(QStringLiteral("app"));
        if (m_daemon.state() != QProcess::NotRunning) {
            m_daemon.terminate();
            m_daemon.waitForFinished();
        }
    }

    // First, while nothing in this process has used QDBusVariant, as in the app at start-up.
    void followsThePortalBothWays()
    {
        m_portal->value = preferLight;
        ColourScheme scheme(bus(QStringLiteral("app")));
        QVERIFY(scheme.fromPortal());
        QVERIFY(!scheme.dark());
        QSignalSpy changed(&scheme, &ColourScheme::darkChanged);
        QDBusConnection portalBus(QStringLiteral("portal"));

        // The desktop turns dark, then light again.
        QVERIFY(portalBus.send(settingChanged(appearance, colourScheme, preferDark)));
        QVERIFY(changed.wait());
        QCOMPARE(changed.takeFirst().constFirst().toBool(), true);
        QVERIFY(scheme.dark());

        QVERIFY(portalBus.send(settingChanged(appearance, colourScheme, preferLight)));
        QVERIFY(changed.wait());
        QCOMPARE(changed.takeFirst().constFirst().toBool(), false);
        QVERIFY(!scheme.dark());

        // A value wrapped twice is read all the same.
        QVERIFY(portalBus.send(settingChanged(appearance, colourScheme, preferDark, true)));
        QVERIFY(changed.wait());
        QCOMPARE(changed.takeFirst().constFirst().toBool(), true);

        // No preference: the palette decides, and the offscreen palette is light.
        QVERIFY(portalBus.send(settingChanged(appearance, colourScheme, noPreference)));
        QVERIFY(changed.wait());
        QCOMPARE(changed.takeFirst().constFirst().toBool(), false);
    }

    void startsDarkWhenThePortalSaysSo()
    {
        m_portal->value = preferDark;
        ColourScheme scheme(bus(QStringLiteral("app")));
        QVERIFY(scheme.fromPortal());
        QVERIFY(scheme.dark());
    }
};

QTEST_MAIN(TestColourScheme)
#include "tst_colourscheme.moc"
