#pragma once
#include <chrono>
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

    // False once the client has gone (or the server stops).
    bool push(std::string event)
    {
        std::unique_lock lock(m_lock);
        // A client that stops reading holds the job here until the connection's write
        // deadline drops it.
        m_drained.wait(lock, [this] { return m_closed || m_pendingBytes < MaxPending; });
        if (m_closed)
            return false;
        m_pendingBytes += event.size();
        m_pending.push_back(std::move(event));
        const bool needWake = !m_wakePending;
        m_wakePending = true;
        lock.unlock();
        if (needWake && wake)
            wake();
        return true;
    }

    // The job has ended: the connection ends the reply once everything is written.
    void finish()
    {
        std::unique_lock lock(m_lock);
        m_finished = true;
        const bool needWake = !m_wakePending;
        m_wakePending = true;
        lock.unlock();
        if (needWake && wake)
            wake();
    }

    // The client has gone: every later push fails and any waiting push returns.
    void close()
    {
        {
            std::lock_guard lock(m_lock);
            m_closed = true;
            m_pending.clear();
            m_pendingBytes = 0;
        }
        m_drained.notify_all();
    }

    bool isClosed() const
    {
        std::lock_guard lock(m_lock);
        return m_closed;
    }

    // For the connection: everything waiting, as one piece; `finished` tells whether the job
    // has ended (and nothing more will come once this is written).
    std::string take(bool &finished)
    {
        std::string out;
        {
            std::lock_guard lock(m_lock);
            m_wakePending = false;
            for (auto &e : m_pending)
                out += e;
            m_pending.clear();
            m_pendingBytes = 0;
            finished = m_finished;
        }
        m_drained.notify_all();
        return out;
    }

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
