#pragma once
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <vector>

namespace cardserver {

class Connection;

// PostgreSQL connections shared by the request threads. There are far more request threads
// than a database server should have connections (every open event stream holds a thread), so
// a thread borrows a connection for one statement or one transaction and gives it back. At most
// `size` connections are open; a thread that finds none free waits for one.
class ConnectionPool {
public:
    using Opener = std::function<std::unique_ptr<Connection>()>;

    ConnectionPool(Opener open, int size);
    ~ConnectionPool();
    ConnectionPool(const ConnectionPool &) = delete;
    ConnectionPool &operator=(const ConnectionPool &) = delete;

    // A free connection, opened when none is idle and the pool is not full. Throws
    // std::runtime_error when a new connection cannot be opened.
    Connection *take();
    // Gives a connection back; a broken one is closed with every idle one, and their places
    // freed.
    void give(Connection *connection);

private:
    Opener m_open;
    int m_size;
    int m_openCount = 0;
    std::mutex m_lock;
    std::condition_variable m_freed;
    std::vector<std::unique_ptr<Connection>> m_all;
    std::vector<Connection *> m_idle;
};

} // namespace cardserver
