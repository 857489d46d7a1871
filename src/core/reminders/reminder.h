#pragma once

#include "reminders/notificationcentre.h"
#include "reminders/notificationrequest.h"

#include <qcoro/qcorotask.h>
#include <QObject>

namespace orvel {

// The daily reminder: a local notification once a day at a whole hour, kept by the system's
// notification centre on this computer only. Its only state is two local settings (whether it is
// wanted, and the hour); schedule() brings the centre's pending request in line with them. The
// app keeps one, so that every caller's schedule() runs through the same queue.
class Reminder : public QObject {
    Q_OBJECT

public:
    static constexpr int defaultHour = 19;

    explicit Reminder(NotificationCentre &centre, QObject *parent = nullptr);

    NotificationCentre &centre() const { return m_centre; }

    // Whether the reminder is wanted (an absent setting reads as off).
    bool on() const;
    void setOn(bool on);
    // The stored hour as it is, when it is stored as an integer; 19 otherwise.
    int hour() const;
    void setHour(int hour);

    // Whether notifications may be shown, asking the system when it has not decided yet.
    QCoro::Task<bool> allowed();

    // Removes the pending reminder, then adds it again when it is wanted and allowed. Calls made
    // while one runs wait for it; of those, only the last runs (it reads the settings of then),
    // and the others return as soon as it starts. So quick changes leave exactly one request,
    // or none, matching the last settings.
    QCoro::Task<> schedule();

    // The request schedule() adds for the given hour.
    static NotificationRequest request(int hour);
    static QString identifier();

signals:
    // A schedule() run has finished (the queue's turn passes on).
    void runFinished();

private:
    QCoro::Task<> bringInLine();

    NotificationCentre &m_centre;
    bool m_running = false;
    quint64 m_calls = 0;
};

} // namespace orvel
