#pragma once
#include <atomic>
#include <httplib.h>
#include <QString>
#include <thread>

// An httplib server on a free loopback port, running on a thread of its own.
class WebServer {
public:
    WebServer();
    ~WebServer();

    httplib::Server &routes() { return m_server; }
    QString url(const char *path) const
    {
        return QStringLiteral("http://127.0.0.1:%1%2").arg(m_port).arg(QLatin1String(path));
    }
    QString hostPort() const { return QStringLiteral("127.0.0.1:%1").arg(m_port); }
    int requests() const { return m_requests; }
    bool stopping() const { return m_stopping; }

private:
    httplib::Server m_server;
    int m_port = 0;
    std::thread m_thread;
    std::atomic<int> m_requests{0};
    std::atomic<bool> m_stopping{false};
};
