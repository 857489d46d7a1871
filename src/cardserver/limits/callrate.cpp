#include "limits/callrate.h"

#include "http/apierror.h"
#include "text/clock.h"

#include <thread>

namespace cardserver {

CallRate::CallRate(int perWindow, std::chrono::milliseconds window)
    : m_perWindow(perWindow), m_windowMs(window.count())
{}

std::chrono::milliseconds CallRate::take(qint64 userId)
{
    if (m_perWindow <= 0)
        return {};
    const qint64 now = Clock::nowMs();
    std::lock_guard guard(m_lock);
    std::deque<qint64> &calls = m_calls[userId];
    while (!calls.empty() && now - calls.front() >= m_windowMs)
        calls.pop_front();
    if (int(calls.size()) >= m_perWindow)
        return std::chrono::milliseconds(calls.front() + m_windowMs - now);
    calls.push_back(now);
    // Keep the table small: forget accounts with no call in the window.
    if (m_calls.size() > 10'000) {
        for (auto it = m_calls.begin(); it != m_calls.end();)
            it = it->empty() || now - it->back() >= m_windowMs ? m_calls.erase(it) : std::next(it);
    }
    return {};
}

void CallRate::takeOrRefuse(qint64 userId)
{
    const std::chrono::milliseconds wait = take(userId);
    if (wait.count() > 0)
        throw ApiError(429, QStringLiteral("You have asked the language model %1 times in the "
                                           "last minute. Wait %2 seconds, then try again.")
                                .arg(m_perWindow)
                                .arg((wait.count() + 999) / 1000));
}

void CallRate::takeOrWait(qint64 userId)
{
    for (std::chrono::milliseconds wait = take(userId); wait.count() > 0; wait = take(userId))
        std::this_thread::sleep_for(wait);
}

} // namespace cardserver
