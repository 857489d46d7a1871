#pragma once

#include <QString>

namespace orvel {

// A local notification to be shown by the system on a repeating calendar trigger: every day at
// `hour`:`minute`, local time, for as long as it stays pending.
struct NotificationRequest {
    QString identifier; // a later request with the same identifier replaces it
    QString title;
    QString body;
    bool sound = true; // with the system's default notification sound
    int hour = 0;
    int minute = 0;
    bool repeats = true;

    bool operator==(const NotificationRequest &) const = default;
};

} // namespace orvel
