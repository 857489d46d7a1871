#pragma once
#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <string>

namespace cardserver {

// What an event stream's job hands to its connection: the events not yet written, bounded
// in size (push waits while more than MaxPending bytes wait to be written), and whether the
// client is still there. push may be called from any thread; the connection takes the
// events on its own strand, woken by `wake`.
struct StreamChannel {
    static constexpr size_t MaxPending = 256 * 1024;

    // Called (under no lock) when there is something new for the connection to write.
    std::function<void()> wake;

    // False once the client has gone (or the server stops). Waits while more than
    // MaxPending bytes wait to be written.
    bool push(std::string event);
    // The job has ended: the connection ends the reply once everything is written.
    void finish();
    // The client has gone: every later push fails and any waiting push returns.
    void close();
    bool isClosed() const;
    // For the connection: everything waiting, as one piece; `finished` tells whether the job
    // has ended (and nothing more will come once this is written).
    std::string take(bool &finished);

private:
    mutable std::mutex m_lock;
    std::condition_variable m_drained;
    std::deque<std::string> m_pending;
    size_t m_pendingBytes = 0;
    bool m_closed = false;
    bool m_finished = false;
    bool m_wakePending = false;
};

} // namespace cardserver
