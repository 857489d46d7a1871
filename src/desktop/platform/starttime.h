#pragma once

namespace orvel {

// Start-up figures for `orvel --timings`: milliseconds since the process was created (read from
// /proc/self/stat, in clock ticks) and since main() began.
class StartTime {
public:
    static void markMain();
    static long long sinceMain();
    static long long sinceProcessStart();
};

} // namespace orvel
