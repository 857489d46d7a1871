#include "limits/workgate.h"

#include "http/apierror.h"

#include <algorithm>

namespace cardserver {

const QString WorkGate::BusyMessage = QStringLiteral("The server is busy; try again in a moment.");

WorkGate::WorkGate(int workers, std::chrono::milliseconds queueDeadline)
    : m_workers(std::max(1, workers)), m_deadline(std::max(queueDeadline, {}))
{}

WorkGate::Pass::~Pass()
{
    if (m_gate)
        m_gate->leave();
}

std::optional<WorkGate::Pass> WorkGate::enter()
{
    std::unique_lock lock(m_lock);
    if (!m_freed.wait_for(lock, m_deadline, [this] { return m_inside < m_workers; }))
        return std::nullopt;
    ++m_inside;
    return std::optional<Pass>(std::in_place, this);
}

WorkGate::Pass WorkGate::enterOrBusy()
{
    std::optional<Pass> pass = enter();
    if (!pass)
        throw ApiError(503, BusyMessage);
    return std::move(*pass);
}

int WorkGate::inside() const
{
    std::lock_guard lock(m_lock);
    return m_inside;
}

void WorkGate::leave()
{
    {
        std::lock_guard lock(m_lock);
        --m_inside;
    }
    m_freed.notify_one();
}

} // namespace cardserver
