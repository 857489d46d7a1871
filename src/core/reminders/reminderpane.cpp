#include "reminders/reminderpane.h"

#include "app/services.h"
#include "reminders/reminder.h"
#include "reminders/remindertexts.h"

#include <QPointer>

namespace orvel {

ReminderPane::ReminderPane(QObject *parent)
    : QObject(parent), m_reminder(Services::current().reminder())
{}

QCoro::Task<> ReminderPane::load()
{
    QPointer<ReminderPane> self(this);
    Reminder &reminder = m_reminder;
    const bool available = co_await reminder.centre().canSchedule();
    if (!self)
        co_return;
    bool refused = m_refused;
    if (available && reminder.on()) {
        // Only read, never asked: showing the pane must not raise a question. A reminder left on
        // while notifications went away says so; one whose notifications came back stops saying it.
        const NotificationCentre::Authorization status = co_await reminder.centre().authorization();
        if (!self)
            co_return;
        if (status == NotificationCentre::Authorization::Denied)
            refused = true;
        else if (status != NotificationCentre::Authorization::NotDetermined)
            refused = false;
    }
    m_available = available;
    m_refused = refused;
    m_ready = true;
    emit stateChanged();
}

void ReminderPane::reload()
{
    load();
}

bool ReminderPane::on() const
{
    return m_reminder.on();
}

void ReminderPane::setOn(bool on)
{
    // Without a timer to keep it, the switch has nothing to turn on.
    if (!m_available || on == this->on())
        return;
    turn(on);
}

int ReminderPane::hour() const
{
    return m_reminder.hour();
}

void ReminderPane::setHour(int hour)
{
    if (hour < 0 || hour > 23 || hour == this->hour())
        return;
    choose(hour);
}

QStringList ReminderPane::hours() const
{
    QStringList labels;
    for (int hour = 0; hour < 24; ++hour)
        labels.append(remindertexts::hourLabel(hour));
    return labels;
}

QString ReminderPane::note() const
{
    if (!m_ready)
        return QString();
    if (!m_available)
        return remindertexts::noTimer();
    return m_refused ? remindertexts::refused() : remindertexts::local();
}

QVariantMap ReminderPane::texts() const
{
    return {{QStringLiteral("title"), remindertexts::paneTitle()},
            {QStringLiteral("remindDaily"), remindertexts::remindDaily()},
            {QStringLiteral("at"), remindertexts::at()},
            {QStringLiteral("hour"), remindertexts::hour()}};
}

QCoro::Task<> ReminderPane::turn(bool on)
{
    QPointer<ReminderPane> self(this);
    Reminder &reminder = m_reminder;
    reminder.setOn(on);
    emit stateChanged();
    if (on) {
        // Asked again at each turn on: a system that refused once answers without asking.
        const bool allowed = co_await reminder.allowed();
        if (self) {
            m_refused = !allowed;
            emit stateChanged();
        }
    }
    co_await reminder.schedule();
}

QCoro::Task<> ReminderPane::choose(int hour)
{
    Reminder &reminder = m_reminder;
    reminder.setHour(hour);
    emit stateChanged();
    co_await reminder.schedule();
}

} // namespace orvel
