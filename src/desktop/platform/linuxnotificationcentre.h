#pragma once

#include "desktopnotifications.h"
#include "reminders/notificationcentre.h"
#include "systemdtimer.h"

namespace orvel {

// The notification centre on Linux. Notifications are allowed while a notification server is on
// the session bus; there is no one to ask beyond that, so the answer is never "not determined"
// and asking only looks again. The one pending request it keeps, the daily reminder, is a
// systemd user timer that runs `orvel --remind` at the request's hour; the notification's texts
// are the reminder's own, which `--remind` shows.
class LinuxNotificationCentre : public NotificationCentre {
public:
    // The session bus and this user's systemd units.
    LinuxNotificationCentre();
    LinuxNotificationCentre(const QDBusConnection &bus, SystemdTimer::Setup timer);

    QCoro::Task<Authorization> authorization() override;
    QCoro::Task<bool> requestAuthorization() override;
    QCoro::Task<> removePending(QStringList identifiers) override;
    // Only the daily reminder's request (daily at a whole hour, repeating) can be kept.
    QCoro::Task<bool> add(NotificationRequest request) override;
    QCoro::Task<bool> canSchedule() override;

private:
    DesktopNotifications m_notifications;
    SystemdTimer m_timer;
};

} // namespace orvel
