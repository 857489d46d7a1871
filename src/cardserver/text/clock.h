#pragma once
#include <QString>

namespace cardserver {

// Timestamps as the protocol carries them: ISO 8601 in UTC with seconds ("2026-11-23T07:40:01Z").
class Clock {
public:
    static QString nowText();
    static qint64 nowSeconds();
    // Milliseconds since the epoch, for waits and rates measured across requests.
    static qint64 nowMs();
};

} // namespace cardserver
