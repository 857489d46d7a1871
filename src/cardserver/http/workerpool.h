#pragma once
#include <atomic>
#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

namespace cardserver {

// Long-lived threads taking tasks from one queue. The queue needs no bound of its own: a
// connection has at most one request in a pool at a time, and connections are bounded.
class WorkerPool {
public:
    ~WorkerPool();

    void start(int count);
    void post(std::function<void()> task);
    // Lets the running tasks end, drops the waiting ones and joins the threads.
    void stop();
    // Tasks running now.
    int busy() const { return m_busy.load(std::memory_order_relaxed); }

private:
    void work();

    std::mutex m_lock;
    std::condition_variable m_ready;
    std::deque<std::function<void()>> m_tasks;
    std::vector<std::thread> m_threads;
    std::atomic<int> m_busy{0};
    std::atomic<size_t> m_queued{0}; // m_tasks.size(), readable without the lock
    int m_sleeping = 0;              // workers waiting on m_ready
    bool m_stopping = false;
};

} // namespace cardserver
