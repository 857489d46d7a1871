#include "store/connectionpool.h"

#include "store/connection.h"

#include <algorithm>

namespace cardserver {

ConnectionPool::ConnectionPool(Opener open, int size) : m_open(std::move(open)), m_size(size) {}

ConnectionPool::~ConnectionPool() = default;

Connection *ConnectionPool::take()
{
    std::unique_lock lock(m_lock);
    m_freed.wait(lock, [&] { return !m_idle.empty() || m_openCount < m_size; });
    if (!m_idle.empty()) {
        Connection *c = m_idle.back();
        m_idle.pop_back();
        return c;
    }
    ++m_openCount; // the place is held while the connection opens, outside the lock
    lock.unlock();
    std::unique_ptr<Connection> c;
    try {
        c = m_open();
    } catch (...) {
        lock.lock();
        --m_openCount;
        m_freed.notify_one();
        throw;
    }
    lock.lock();
    m_all.push_back(std::move(c));
    return m_all.back().get();
}

void ConnectionPool::give(Connection *connection)
{
    std::vector<std::unique_ptr<Connection>> closing; // closed outside the lock
    {
        std::lock_guard lock(m_lock);
        if (connection->broken()) {
            // One lost connection usually means the server restarted: the idle ones are lost
            // too, so they are closed with it and opened afresh when needed.
            m_idle.push_back(connection);
            for (Connection *c : m_idle) {
                const auto it = std::find_if(m_all.begin(), m_all.end(),
                                             [&](const auto &held) { return held.get() == c; });
                closing.push_back(std::move(*it));
                m_all.erase(it);
                --m_openCount;
            }
            m_idle.clear();
        } else {
            m_idle.push_back(connection);
        }
    }
    m_freed.notify_all();
}

} // namespace cardserver
