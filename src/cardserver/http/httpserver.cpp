#include "http/httpserver.h"

#include "http/httpconnection.h"
#include "http/serverstate.h"

#include <algorithm>
#include <stdexcept>
#include <sys/resource.h>
#include <thread>

namespace beast = boost::beast;
namespace net = boost::asio;
using tcp = boost::asio::ip::tcp;

namespace cardserver {

namespace {

// Raises this process's limit of open files to the hard limit: every connection is one.
rlim_t raiseOpenFileLimit()
{
    rlimit limit{};
    if (getrlimit(RLIMIT_NOFILE, &limit) != 0)
        return 1024;
    if (limit.rlim_cur < limit.rlim_max) {
        limit.rlim_cur = limit.rlim_max;
        setrlimit(RLIMIT_NOFILE, &limit);
        getrlimit(RLIMIT_NOFILE, &limit);
    }
    return limit.rlim_cur;
}

} // namespace

HttpServer::HttpServer(HttpLimits limits) : d(std::make_unique<ServerState>(limits)) {}

HttpServer::~HttpServer()
{
    stop();
    // Blocked sends return at once; the pools let the running tasks end and join.
    {
        std::lock_guard lock(d->registryLock);
        for (auto &[key, weak] : d->channels)
            if (auto channel = weak.lock())
                channel->close();
    }
    d->workers.stop();
    d->streamPool.stop();
}

void HttpServer::route(const std::string &method, const std::string &pattern, Handler handler)
{
    d->routes.push_back(ServerState::Route{method, std::regex(pattern), std::move(handler)});
}

void HttpServer::setErrorBody(std::function<void(HttpResponse &)> fill)
{
    d->errorBody = std::move(fill);
}

void HttpServer::setOwnOrigin(std::string origin)
{
    d->ownOrigin = std::move(origin);
}

const std::string &HttpServer::ownOrigin() const
{
    return d->ownOrigin;
}

const HttpLimits &HttpServer::limits() const
{
    return d->limits;
}

int HttpServer::bind(const std::string &host, int port)
{
    const rlim_t files = raiseOpenFileLimit();
    // Room for the store, the clip cache and the pools' own files besides the connections.
    if (files > 128 && rlim_t(d->limits.maxConnections) > files - 128)
        d->limits.maxConnections = int(files - 128);

    beast::error_code ec;
    tcp::endpoint endpoint;
    const auto address = net::ip::make_address(host, ec);
    if (!ec) {
        endpoint = tcp::endpoint(address, std::uint16_t(port));
    } else {
        tcp::resolver resolver(d->ioc);
        const auto found = resolver.resolve(host, std::to_string(port), ec);
        if (ec || found.empty())
            throw std::runtime_error("cannot resolve " + host);
        endpoint = found.begin()->endpoint();
    }
    auto &acceptor = d->acceptor;
    acceptor.open(endpoint.protocol(), ec);
    if (!ec)
        acceptor.set_option(net::socket_base::reuse_address(true), ec);
    if (!ec)
        acceptor.bind(endpoint, ec);
    if (!ec)
        acceptor.listen(d->limits.backlog, ec);
    if (ec) {
        acceptor.close(ec);
        throw std::runtime_error(ec.message());
    }
    acceptor.non_blocking(true, ec);
    const int chosen = acceptor.local_endpoint(ec).port();
    d->accept();
    return chosen;
}

void HttpServer::run()
{
    const int cores = int(std::max(1u, std::thread::hardware_concurrency()));
    // A few per core: enough that a request waiting on the disk or a password hash does not
    // hold up the others, few enough that they do not crowd out the I/O threads.
    d->workers.start(d->limits.workerThreads > 0 ? d->limits.workerThreads
                                                 : std::max(8, 4 * cores));
    d->streamPool.start(std::max(1, d->limits.streamThreads));
    const int ioThreads = d->limits.ioThreads > 0 ? d->limits.ioThreads : cores;
    std::vector<std::thread> threads;
    for (int i = 1; i < ioThreads; ++i)
        threads.emplace_back([this] { d->ioc.run(); });
    d->ioc.run();
    for (auto &t : threads)
        t.join();
}

void HttpServer::stop()
{
    const bool first = !d->stopping.exchange(true);
    std::vector<std::shared_ptr<HttpConnection>> open;
    {
        std::lock_guard lock(d->registryLock);
        for (auto &[key, weak] : d->channels)
            if (auto channel = weak.lock())
                channel->close();
        if (first)
            for (auto &[key, weak] : d->connectionsOpen)
                if (auto session = weak.lock())
                    open.push_back(std::move(session));
    }
    if (first) {
        net::post(d->acceptor.get_executor(), [impl = d.get()] {
            beast::error_code ec;
            impl->acceptor.close(ec);
            if (impl->acceptPause)
                impl->acceptPause->cancel();
        });
        for (auto &session : open)
            session->abortLater();
    }
    {
        std::lock_guard lock(d->workLock);
        d->work.reset();
    }
    // What is left (a request a worker is still answering) ends with the I/O context.
    auto timer = std::make_shared<net::steady_timer>(d->ioc, std::chrono::milliseconds(200));
    timer->async_wait([impl = d.get(), timer](beast::error_code) { impl->ioc.stop(); });
}

HttpServer::Stats HttpServer::stats() const
{
    Stats s;
    s.connections = d->connections.load();
    s.streamJobs = d->streamJobs.load();
    s.busyWorkers = d->workers.busy();
    s.refused = d->refused.load();
    return s;
}

} // namespace cardserver
