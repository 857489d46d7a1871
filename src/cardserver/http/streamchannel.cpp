#include "http/streamchannel.h"

namespace cardserver {

bool StreamChannel::push(std::string event)
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

void StreamChannel::finish()
{
    std::unique_lock lock(m_lock);
    m_finished = true;
    const bool needWake = !m_wakePending;
    m_wakePending = true;
    lock.unlock();
    if (needWake && wake)
        wake();
}

void StreamChannel::close()
{
    {
        std::lock_guard lock(m_lock);
        m_closed = true;
        m_pending.clear();
        m_pendingBytes = 0;
    }
    m_drained.notify_all();
}

bool StreamChannel::isClosed() const
{
    std::lock_guard lock(m_lock);
    return m_closed;
}

std::string StreamChannel::take(bool &finished)
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

} // namespace cardserver
