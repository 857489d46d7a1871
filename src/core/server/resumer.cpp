#include "resumer.h"

#include <utility>

namespace orvel {

Resumer::Awaiter::~Awaiter()
{
    // A coroutine destroyed while it waits must not be resumed.
    if (m_resumer && m_waiter && m_resumer->m_waiter == m_waiter)
        m_resumer->m_waiter = {};
}

void Resumer::Awaiter::await_suspend(std::coroutine_handle<> waiter) noexcept
{
    m_waiter = waiter;
    m_resumer->m_waiter = waiter;
}

void Resumer::wake()
{
    if (!m_waiter || m_wakeQueued)
        return;
    m_wakeQueued = true;
    // Queued on this object: if it is destroyed first, the wake-up goes with it.
    QMetaObject::invokeMethod(
        this,
        [this] {
            m_wakeQueued = false;
            if (std::coroutine_handle<> waiter = std::exchange(m_waiter, {}))
                waiter.resume();
        },
        Qt::QueuedConnection);
}

} // namespace orvel
