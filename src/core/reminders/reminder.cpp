#include "reminders/reminder.h"

#include "reminders/remindertexts.h"
#include "server/localsettings.h"
#include "server/settingskeys.h"

#include <qcoro/qcorosignal.h>

namespace orvel {

Reminder::Reminder(NotificationCentre &centre, QObject *parent) : QObject(parent), m_centre(centre)
{}

bool Reminder::on() const
{
    return LocalSettings::store().value(settingskeys::reminderOn(), false).toBool();
}

void Reminder::setOn(bool on)
{
    LocalSettings::store().setValue(settingskeys::reminderOn(), on);
}

int Reminder::hour() const
{
    const QVariant stored = LocalSettings::store().value(settingskeys::reminderHour());
    switch (stored.metaType().id()) {
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::LongLong:
    case QMetaType::ULongLong: {
        bool ok = false;
        const int value = stored.toInt(&ok);
        return ok ? value : defaultHour;
    }
    case QMetaType::QString: {
        // The settings file keeps an integer as its digits, and reads them back as text: only
        // text that is a whole number in full ("7", "23") counts, not "7pm" or "7.5".
        bool ok = false;
        const int value = stored.toString().toInt(&ok);
        return ok ? value : defaultHour;
    }
    default:
        return defaultHour;
    }
}

void Reminder::setHour(int hour)
{
    LocalSettings::store().setValue(settingskeys::reminderHour(), hour);
}

QCoro::Task<bool> Reminder::allowed()
{
    NotificationCentre &centre = m_centre;
    const NotificationCentre::Authorization status = co_await centre.authorization();
    switch (status) {
    case NotificationCentre::Authorization::Authorized:
    case NotificationCentre::Authorization::Provisional:
        co_return true;
    case NotificationCentre::Authorization::NotDetermined: {
        const bool granted = co_await centre.requestAuthorization();
        co_return granted;
    }
    case NotificationCentre::Authorization::Denied:
        break;
    }
    co_return false;
}

QCoro::Task<> Reminder::schedule()
{
    const quint64 call = ++m_calls;
    while (m_running) {
        co_await qCoro(this, &Reminder::runFinished);
        if (call != m_calls)
            co_return; // a later call runs instead, with the settings of its time
    }
    m_running = true;
    co_await bringInLine();
    m_running = false;
    emit runFinished();
}

QCoro::Task<> Reminder::bringInLine()
{
    const QStringList daily{identifier()};
    co_await m_centre.removePending(daily);
    if (!on())
        co_return;
    const bool mayShow = co_await allowed();
    if (!mayShow)
        co_return;
    // A request the centre cannot keep is left at that: the next start tries again.
    co_await m_centre.add(request(hour()));
}

NotificationRequest Reminder::request(int hour)
{
    NotificationRequest request;
    request.identifier = identifier();
    request.title = remindertexts::title();
    request.body = remindertexts::body();
    request.sound = true;
    request.hour = hour;
    request.minute = 0;
    request.repeats = true;
    return request;
}

QString Reminder::identifier()
{
    return QStringLiteral("zelon.daily");
}

} // namespace orvel
