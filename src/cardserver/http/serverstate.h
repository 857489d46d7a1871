#pragma once
#include "http/httpserver.h"
#include "http/streamchannel.h"
#include "http/workerpool.h"

#include <atomic>
#include <boost/asio.hpp>
#include <memory>
#include <mutex>
#include <optional>
#include <regex>
#include <string>
#include <unordered_map>
#include <vector>

namespace cardserver {

class HttpConnection;

// Everything the server's connections share: the limits, the routes, the counters, the I/O
// context with its listening socket, and the two pools (routes, event streams' jobs).
struct ServerState {
    using tcp = boost::asio::ip::tcp;

    struct Route {
        std::string method;
        std::regex pattern;
        HttpServer::Handler handler;
    };

    explicit ServerState(HttpLimits l) : limits(l) {}

    HttpLimits limits;
    std::vector<Route> routes;
    std::function<void(HttpResponse &)> errorBody;
    std::string ownOrigin;

    // Declared before the I/O context: connections still queued in it when it goes use these.
    std::atomic<int> connections{0};
    std::atomic<int> streamJobs{0};
    std::atomic<int> closing{0}; // refused connections being answered
    std::atomic<long long> refused{0};
    std::atomic<bool> stopping{false};
    std::mutex registryLock;
    std::unordered_map<HttpConnection *, std::weak_ptr<HttpConnection>> connectionsOpen;
    std::unordered_map<StreamChannel *, std::weak_ptr<StreamChannel>> channels;

    boost::asio::io_context ioc;
    tcp::acceptor acceptor{boost::asio::make_strand(ioc)};
    std::optional<boost::asio::executor_work_guard<boost::asio::io_context::executor_type>> work{
        ioc.get_executor()};
    std::mutex workLock;
    std::unique_ptr<boost::asio::steady_timer> acceptPause;

    WorkerPool workers;
    WorkerPool streamPool;

    void accept();
    void take(tcp::socket socket);
    void refuse(tcp::socket socket);
    void dispatch(HttpRequest &req, HttpResponse &res);
    // A route's reply made whole: 200 when no status was set, an error body when none was.
    void finish(HttpResponse &res) const;
};

} // namespace cardserver
