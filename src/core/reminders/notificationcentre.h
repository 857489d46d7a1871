#pragma once

#include "reminders/notificationrequest.h"

#include <qcoro/qcorotask.h>
#include <QStringList>

namespace orvel {

// The operating system's keeper of local notifications, as the reminder needs it: whether the
// app may show notifications (and asking for that), and the pending requests it shows later,
// on this computer only. Every operation completes asynchronously; none throws.
class NotificationCentre {
public:
    enum class Authorization { NotDetermined, Denied, Authorized, Provisional };

    virtual ~NotificationCentre() = default;

    // What the system currently allows.
    virtual QCoro::Task<Authorization> authorization() = 0;
    // Asks for alerts with sound; true when they are granted, false when refused or failed.
    virtual QCoro::Task<bool> requestAuthorization() = 0;
    // Withdraws the pending requests with these identifiers; unknown ones are no fault.
    virtual QCoro::Task<> removePending(QStringList identifiers) = 0;
    // Keeps the request until it is removed; false when it could not be kept.
    virtual QCoro::Task<bool> add(NotificationRequest request) = 0;
    // Whether this computer can keep a pending request at all (on Linux: whether a systemd
    // user manager runs to own the timer). When it cannot, `add` always fails.
    virtual QCoro::Task<bool> canSchedule() = 0;
};

} // namespace orvel
