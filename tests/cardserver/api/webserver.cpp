#include "webserver.h"

#include <chrono>

WebServer::WebServer()
{
    m_port = m_server.bind_to_any_port("127.0.0.1");
    m_server.set_logger(
        [this](const httplib::Request &, const httplib::Response &) { ++m_requests; });
    m_thread = std::thread([this] { m_server.listen_after_bind(); });
    while (!m_server.is_running())
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
}

WebServer::~WebServer()
{
    m_stopping = true;
    m_server.stop();
    m_thread.join();
}
