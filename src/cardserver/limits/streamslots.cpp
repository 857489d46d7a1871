#include "limits/streamslots.h"

#include "http/apierror.h"

namespace cardserver {

StreamSlots::Slot StreamSlots::take(qint64 userId)
{
    {
        std::lock_guard guard(m_lock);
        int &running = m_running[userId];
        if (running >= m_perAccount)
            throw ApiError(429, QStringLiteral("You already have %1 writing jobs running. Wait "
                                               "for one of them to finish, then try again.")
                                    .arg(m_perAccount));
        ++running;
    }
    return Slot(this, [userId](StreamSlots *owner) { owner->give(userId); });
}

void StreamSlots::give(qint64 userId)
{
    std::lock_guard guard(m_lock);
    const auto it = m_running.find(userId);
    if (it != m_running.end() && --*it <= 0)
        m_running.erase(it);
}

} // namespace cardserver
