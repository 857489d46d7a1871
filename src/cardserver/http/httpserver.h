#pragma once
#include "http/httprequest.h"
#include "http/httpresponse.h"

#include <functional>
#include <memory>
#include <string>

namespace cardserver {

struct ServerState;

// The bounds the HTTP layer keeps whatever a client sends.
struct HttpLimits {
    size_t maxBodyBytes = 10 * 1024 * 1024; // chunked or not; larger answers 413
    size_t maxHeaderBytes = 16 * 1024;      // request line and headers; larger answers 431
    int maxHeaders = 100;                   // more answers 431
    int readTimeoutSeconds = 10;  // to read a request's line and headers once it has begun
    int bodyTimeoutSeconds = 60;  // to read its body
    int writeTimeoutSeconds = 30; // for any one write to a client
    int idleTimeoutSeconds = 30;  // a kept-alive connection with no request is closed
    int maxConnections = 10000;   // more are answered 503 and closed
    int ioThreads = 0;            // 0: one per core
    int workerThreads = 32;       // run the routes (blocking work: the store, hashing)
    int streamThreads = 64;       // run event streams' jobs (a writer may take seconds)
    int backlog = 1024;           // the kernel's queue of connections not yet accepted
};

// The HTTP/1.1 server (Boost.Beast over Boost.Asio; nothing outside http/ knows it).
// Connections are served with asynchronous I/O on a few threads; routes run on a bounded
// pool of long-lived worker threads (each keeps its own store connection), event streams'
// jobs on a bounded pool of their own, so idle or slow connections never hold a thread.
class HttpServer {
public:
    using Handler = std::function<void(HttpRequest &, HttpResponse &)>;

    explicit HttpServer(HttpLimits limits = {});
    ~HttpServer();
    HttpServer(const HttpServer &) = delete;
    HttpServer &operator=(const HttpServer &) = delete;

    // A route: `pattern` is a regular expression over the whole decoded path; HEAD is
    // answered by the GET routes. Routes are tried in the order they were added.
    void route(const std::string &method, const std::string &pattern, Handler handler);
    // Fills the body of a reply the layer makes itself, or that a route left without one,
    // from its status (>= 400).
    void setErrorBody(std::function<void(HttpResponse &)> fill);

    // Binds and listens; port 0 picks a free one. Returns the port. Throws
    // std::runtime_error with a one-line reason.
    int bind(const std::string &host, int port);
    // Serves until stop(); returns once every I/O thread has ended.
    void run();
    // Stops accepting, closes every connection (streams' sends then return false) and makes
    // run() return. Safe from any thread, more than once, and before run().
    void stop();

    // This server's own origin (scheme://host:port), accepted in Origin headers.
    void setOwnOrigin(std::string origin);
    const std::string &ownOrigin() const;

    const HttpLimits &limits() const;

    struct Stats {
        int connections = 0;   // open now
        int streamJobs = 0;    // event-stream jobs running or waiting for a thread
        int busyWorkers = 0;   // routes running now
        long long refused = 0; // connections refused for want of room since start
    };
    Stats stats() const;

private:
    std::unique_ptr<ServerState> d;
};

} // namespace cardserver
