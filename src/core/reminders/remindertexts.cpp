#include "reminders/remindertexts.h"

namespace orvel::remindertexts {

QString paneTitle()
{
    return QStringLiteral("Reminder");
}

QString remindDaily()
{
    return QStringLiteral("Remind me daily");
}

QString at()
{
    return QStringLiteral("At");
}

QString hour()
{
    return QStringLiteral("Hour");
}

QString title()
{
    return QStringLiteral("orvel");
}

QString body()
{
    return QStringLiteral("A few minutes on your cards.");
}

QString hourLabel(int hour)
{
    return QString::asprintf("%02d:00", hour);
}

QString refused()
{
    return QStringLiteral(
        "Notifications are off on this desktop: no notification server is running to show them.");
}

QString local()
{
    return QStringLiteral("Scheduled on this computer. Nothing about your decks leaves it.");
}

QString noTimer()
{
    return QStringLiteral("Daily reminders need a systemd user session to keep their timer, and "
                          "this computer is not running one, so none can be scheduled.");
}

} // namespace orvel::remindertexts
