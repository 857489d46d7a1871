#pragma once
#include <chrono>
#include <deque>
#include <mutex>
#include <QHash>

namespace cardserver {

// How many calls each account makes in a sliding window (language-model calls a minute). A
// limit of zero counts nothing: every call may go ahead.
class CallRate {
public:
    CallRate(int perWindow, std::chrono::milliseconds window);

    // Counts a call and returns zero when the account may make it now; otherwise counts
    // nothing and returns how long until it may.
    std::chrono::milliseconds take(qint64 userId);
    // Counts a call, or throws ApiError 429 when the account has made its share.
    void takeOrRefuse(qint64 userId);
    // Counts a call, waiting first for as long as the account must (for a job that makes many
    // calls in a row, which slows down rather than fails).
    void takeOrWait(qint64 userId);

private:
    const int m_perWindow;
    const qint64 m_windowMs;
    std::mutex m_lock;
    QHash<qint64, std::deque<qint64>> m_calls; // times of each account's calls in the window
};

} // namespace cardserver
