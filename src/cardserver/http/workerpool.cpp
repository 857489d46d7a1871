#include "http/workerpool.h"

namespace cardserver {

WorkerPool::~WorkerPool()
{
    stop();
}

void WorkerPool::start(int count)
{
    std::lock_guard lock(m_lock);
    for (int i = 0; i < count; ++i)
        m_threads.emplace_back([this] { work(); });
}

void WorkerPool::post(std::function<void()> task)
{
    {
        std::lock_guard lock(m_lock);
        if (m_stopping)
            return;
        m_tasks.push_back(std::move(task));
        m_queued.store(m_tasks.size(), std::memory_order_relaxed);
        if (m_sleeping == 0)
            return; // a worker is awake and will find it
    }
    m_ready.notify_one();
}

void WorkerPool::stop()
{
    std::deque<std::function<void()>> dropped;
    {
        std::lock_guard lock(m_lock);
        m_stopping = true;
        dropped.swap(m_tasks);
    }
    m_ready.notify_all();
    for (auto &t : m_threads)
        if (t.joinable())
            t.join();
    m_threads.clear();
}

void WorkerPool::work()
{
    for (;;) {
        std::function<void()> task;
        // Under load the next task comes within microseconds: looking again a few times costs
        // less than sleeping and being woken.
        for (int spin = 0; spin < 64 && m_queued.load(std::memory_order_relaxed) == 0; ++spin)
            std::this_thread::yield();
        {
            std::unique_lock lock(m_lock);
            if (!m_stopping && m_tasks.empty()) {
                ++m_sleeping;
                m_ready.wait(lock, [this] { return m_stopping || !m_tasks.empty(); });
                --m_sleeping;
            }
            if (m_stopping)
                return;
            task = std::move(m_tasks.front());
            m_tasks.pop_front();
            m_queued.store(m_tasks.size(), std::memory_order_relaxed);
        }
        m_busy.fetch_add(1, std::memory_order_relaxed);
        task();
        task = nullptr;
        m_busy.fetch_sub(1, std::memory_order_relaxed);
    }
}

} // namespace cardserver
