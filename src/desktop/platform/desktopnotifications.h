#pragma once

#include <optional>
#include <qcoro/qcorotask.h>
#include <QDBusConnection>
#include <QString>

namespace orvel {

// The desktop's notification server, reached over the session bus at
// org.freedesktop.Notifications (the freedesktop Desktop Notifications interface that GNOME
// Shell, Plasma, dunst, mako and others serve).
class DesktopNotifications {
public:
    explicit DesktopNotifications(const QDBusConnection &bus = QDBusConnection::sessionBus());

    // Whether a server owns the name, or the bus can start one for it. Never blocks.
    QCoro::Task<bool> serverPresent();

    // Shows a notification now with the app's icon and, when `sound` is set, the desktop's
    // default message sound, waiting (at most a few seconds) for the server to take it. The
    // reason when it was not taken; none when it was.
    std::optional<QString> show(const QString &title, const QString &body, bool sound);

private:
    QDBusConnection m_bus;
};

} // namespace orvel
