#pragma once

#include <qcoro/qcorotask.h>
#include <QObject>
#include <QStringList>
#include <QtQml/qqml.h>
#include <QVariantMap>

namespace orvel {

class Reminder;

// The "Reminder" pane of the settings window: the daily reminder's switch and hour, and the line
// beneath them saying where it is kept, or why it cannot be. Both settings are written at once;
// the app's one Reminder then brings the pending notification in line.
class ReminderPane : public QObject {
    Q_OBJECT
    QML_ELEMENT
    // Whether the computer's answers are in (nothing is shown before).
    Q_PROPERTY(bool ready READ ready NOTIFY stateChanged)
    // Whether this computer can keep the reminder's timer at all.
    Q_PROPERTY(bool available READ available NOTIFY stateChanged)
    Q_PROPERTY(bool on READ on WRITE setOn NOTIFY stateChanged)
    Q_PROPERTY(int hour READ hour WRITE setHour NOTIFY stateChanged)
    // Whether the system refused to show notifications when the reminder was turned on.
    Q_PROPERTY(bool refused READ refused NOTIFY stateChanged)
    // "00:00" … "23:00": the picker's entries, whose index is the hour.
    Q_PROPERTY(QStringList hours READ hours CONSTANT)
    // The line beneath the controls.
    Q_PROPERTY(QString note READ note NOTIFY stateChanged)
    // The pane's own words, by key: title, remindDaily, at, hour.
    Q_PROPERTY(QVariantMap texts READ texts CONSTANT)

public:
    explicit ReminderPane(QObject *parent = nullptr);

    // Asks whether the timer can be kept and whether notifications are shown; each time the
    // pane is shown, since either can change while the app runs.
    QCoro::Task<> load();
    Q_INVOKABLE void reload();

    bool ready() const { return m_ready; }
    bool available() const { return m_available; }
    bool on() const;
    void setOn(bool on);
    int hour() const;
    void setHour(int hour);
    bool refused() const { return m_refused; }
    QStringList hours() const;
    QString note() const;
    QVariantMap texts() const;

    // The switch's task: stores the choice, asks the system when turned on, then schedules.
    QCoro::Task<> turn(bool on);
    // The picker's task: stores the hour, then schedules.
    QCoro::Task<> choose(int hour);

signals:
    void stateChanged();

private:
    Reminder &m_reminder;
    bool m_ready = false;
    bool m_available = false;
    bool m_refused = false;
};

} // namespace orvel
