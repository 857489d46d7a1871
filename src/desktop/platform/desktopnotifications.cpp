#include "desktopnotifications.h"

#include <qcoro/qcorodbuspendingcall.h>
#include <QDBusMessage>
#include <QDBusPendingCall>
#include <QVariantMap>

namespace orvel {

namespace {

const QString notificationsService = QStringLiteral("org.freedesktop.Notifications");
const QString notificationsPath = QStringLiteral("/org/freedesktop/Notifications");
const QString busService = QStringLiteral("org.freedesktop.DBus");
const QString busPath = QStringLiteral("/org/freedesktop/DBus");
// The freedesktop sound theme's name for an incoming message: what a desktop plays by default.
const QString defaultSound = QStringLiteral("message-new-instant");
constexpr int busTimeoutMs = 3000;

QDBusMessage askBus(const QString &method)
{
    return QDBusMessage::createMethodCall(busService, busPath, busService, method);
}

} // namespace

DesktopNotifications::DesktopNotifications(const QDBusConnection &bus) : m_bus(bus) {}

QCoro::Task<bool> DesktopNotifications::serverPresent()
{
    if (!m_bus.isConnected())
        co_return false;
    QDBusMessage hasOwner = askBus(QStringLiteral("NameHasOwner"));
    hasOwner << notificationsService;
    const QDBusMessage owned =
        co_await qCoro(m_bus.asyncCall(hasOwner, busTimeoutMs)).waitForFinished();
    if (owned.type() == QDBusMessage::ReplyMessage && !owned.arguments().isEmpty() &&
        owned.arguments().constFirst().toBool())
        co_return true;
    // A server that is started on demand (dunst, notification-daemon…) owns the name only once
    // the first notification arrives.
    const QDBusMessage activatable =
        co_await qCoro(
            m_bus.asyncCall(askBus(QStringLiteral("ListActivatableNames")), busTimeoutMs))
            .waitForFinished();
    co_return activatable.type() == QDBusMessage::ReplyMessage &&
        !activatable.arguments().isEmpty() &&
        activatable.arguments().constFirst().toStringList().contains(notificationsService);
}

std::optional<QString> DesktopNotifications::show(const QString &title, const QString &body,
                                                  bool sound)
{
    if (!m_bus.isConnected())
        return QStringLiteral("there is no session bus to reach a notification server on");
    QVariantMap hints;
    hints.insert(QStringLiteral("desktop-entry"), QStringLiteral("orvel"));
    if (sound)
        hints.insert(QStringLiteral("sound-name"), defaultSound);
    QDBusMessage notify = QDBusMessage::createMethodCall(
        notificationsService, notificationsPath, notificationsService, QStringLiteral("Notify"));
    // app_name, replaces_id, app_icon, summary, body, actions, hints, expire_timeout (-1: the
    // server's default).
    notify << QStringLiteral("Orvel") << uint(0) << QStringLiteral("org.orvel.Orvel") << title
           << body << QStringList() << hints << int(-1);
    const QDBusMessage reply = m_bus.call(notify, QDBus::Block, busTimeoutMs);
    if (reply.type() == QDBusMessage::ReplyMessage)
        return std::nullopt;
    if (reply.errorName() == QLatin1String("org.freedesktop.DBus.Error.ServiceUnknown"))
        return QStringLiteral("no notification server is running on the session bus "
                              "(nothing owns org.freedesktop.Notifications)");
    return QStringLiteral("the notification server did not take the notification: ") +
           reply.errorMessage();
}

} // namespace orvel
