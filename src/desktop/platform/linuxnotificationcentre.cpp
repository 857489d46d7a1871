#include "linuxnotificationcentre.h"

#include "reminders/reminder.h"

namespace orvel {

LinuxNotificationCentre::LinuxNotificationCentre()
    : LinuxNotificationCentre(QDBusConnection::sessionBus(), SystemdTimer::forThisUser())
{}

LinuxNotificationCentre::LinuxNotificationCentre(const QDBusConnection &bus,
                                                 SystemdTimer::Setup timer)
    : m_notifications(bus), m_timer(std::move(timer))
{}

QCoro::Task<NotificationCentre::Authorization> LinuxNotificationCentre::authorization()
{
    const bool present = co_await m_notifications.serverPresent();
    co_return present ? Authorization::Authorized : Authorization::Denied;
}

QCoro::Task<bool> LinuxNotificationCentre::requestAuthorization()
{
    const bool present = co_await m_notifications.serverPresent();
    co_return present;
}

QCoro::Task<> LinuxNotificationCentre::removePending(QStringList identifiers)
{
    if (identifiers.contains(Reminder::identifier()))
        co_await m_timer.remove();
}

QCoro::Task<bool> LinuxNotificationCentre::add(NotificationRequest request)
{
    if (request.identifier != Reminder::identifier() || request.minute != 0 || !request.repeats)
        co_return false;
    const bool installed = co_await m_timer.install(request.hour);
    co_return installed;
}

QCoro::Task<bool> LinuxNotificationCentre::canSchedule()
{
    const bool running = co_await m_timer.managerRunning();
    co_return running;
}

} // namespace orvel
