#include "http/httpserver.h"

#include "http/eventstream.h"
#include "http/streamchannel.h"

#include <algorithm>
#include <atomic>
#include <boost/asio.hpp>
#include <boost/beast/core.hpp>
#include <boost/beast/http.hpp>
#include <cerrno>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <optional>
#include <QDebug>
#include <QJsonObject>
#include <regex>
#include <stdexcept>
#include <strings.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <thread>
#include <unordered_map>

namespace beast = boost::beast;
namespace http = boost::beast::http;
namespace net = boost::asio;
using tcp = boost::asio::ip::tcp;

namespace cardserver {

namespace httpimpl {

// Long-lived threads taking tasks from one queue. The queue needs no bound of its own: a
// connection has at most one request in a pool at a time, and connections are bounded.
class WorkerPool {
public:
    ~WorkerPool() { stop(); }

    void start(int count)
    {
        std::lock_guard lock(m_lock);
        for (int i = 0; i < count; ++i)
            m_threads.emplace_back([this] { work(); });
    }

    void post(std::function<void()> task)
    {
        {
            std::lock_guard lock(m_lock);
            if (m_stopping)
                return;
            m_tasks.push_back(std::move(task));
        }
        m_ready.notify_one();
    }

    // Lets the running tasks end, drops the waiting ones and joins the threads.
    void stop()
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

    int busy() const { return m_busy.load(std::memory_order_relaxed); }

private:
    void work()
    {
        for (;;) {
            std::function<void()> task;
            {
                std::unique_lock lock(m_lock);
                m_ready.wait(lock, [this] { return m_stopping || !m_tasks.empty(); });
                if (m_stopping)
                    return;
                task = std::move(m_tasks.front());
                m_tasks.pop_front();
            }
            m_busy.fetch_add(1, std::memory_order_relaxed);
            task();
            task = nullptr;
            m_busy.fetch_sub(1, std::memory_order_relaxed);
        }
    }

    std::mutex m_lock;
    std::condition_variable m_ready;
    std::deque<std::function<void()>> m_tasks;
    std::vector<std::thread> m_threads;
    std::atomic<int> m_busy{0};
    bool m_stopping = false;
};

int hexDigit(char c)
{
    if (c >= '0' && c <= '9')
        return c - '0';
    if (c >= 'a' && c <= 'f')
        return c - 'a' + 10;
    if (c >= 'A' && c <= 'F')
        return c - 'A' + 10;
    return -1;
}

std::string percentDecoded(std::string_view s, bool plusIsSpace)
{
    std::string out;
    out.reserve(s.size());
    for (size_t i = 0; i < s.size(); ++i) {
        const char c = s[i];
        if (c == '%' && i + 2 < s.size()) {
            const int hi = hexDigit(s[i + 1]), lo = hexDigit(s[i + 2]);
            if (hi >= 0 && lo >= 0) {
                out += char(hi * 16 + lo);
                i += 2;
                continue;
            }
        }
        out += (plusIsSpace && c == '+') ? ' ' : c;
    }
    return out;
}

void parseQuery(std::string_view query, std::vector<std::pair<std::string, std::string>> &out)
{
    while (!query.empty()) {
        const size_t amp = query.find('&');
        const std::string_view item = query.substr(0, amp);
        query = amp == std::string_view::npos ? std::string_view() : query.substr(amp + 1);
        if (item.empty())
            continue;
        const size_t eq = item.find('=');
        const std::string_view key = item.substr(0, eq);
        if (key.empty())
            continue;
        const std::string_view value =
            eq == std::string_view::npos ? std::string_view() : item.substr(eq + 1);
        out.emplace_back(percentDecoded(key, true), percentDecoded(value, true));
    }
}

bool isConnectionError(const beast::error_code &ec)
{
    return ec == http::error::end_of_stream || ec == beast::error::timeout ||
           ec == net::error::eof || ec == net::error::operation_aborted ||
           ec == net::error::connection_reset || ec == net::error::broken_pipe ||
           ec == net::error::bad_descriptor || ec.category() == net::error::get_system_category();
}

std::string trimmedLower(beast::string_view view)
{
    std::string_view s(view.data(), view.size());
    while (!s.empty() && (s.front() == ' ' || s.front() == '\t'))
        s.remove_prefix(1);
    while (!s.empty() && (s.back() == ' ' || s.back() == '\t'))
        s.remove_suffix(1);
    std::string out(s);
    for (char &c : out)
        if (c >= 'A' && c <= 'Z')
            c = char(c - 'A' + 'a');
    return out;
}

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

struct Route {
    std::string method;
    std::regex pattern;
    HttpServer::Handler handler;
};

class Session;

} // namespace httpimpl

using namespace httpimpl;

struct HttpServer::Impl {
    explicit Impl(HttpLimits l) : limits(l) {}

    HttpLimits limits;
    std::vector<Route> routes;
    std::function<void(HttpResponse &)> errorBody;
    std::string ownOrigin;

    // Declared before the I/O context: sessions still queued in it when it goes use these.
    std::atomic<int> connections{0};
    std::atomic<int> streamJobs{0};
    std::atomic<int> closing{0}; // refused connections being answered
    std::atomic<long long> refused{0};
    std::atomic<bool> stopping{false};
    std::mutex registryLock;
    std::unordered_map<Session *, std::weak_ptr<Session>> sessions;
    std::unordered_map<StreamChannel *, std::weak_ptr<StreamChannel>> channels;

    net::io_context ioc;
    tcp::acceptor acceptor{net::make_strand(ioc)};
    std::optional<net::executor_work_guard<net::io_context::executor_type>> work{ioc.get_executor()};
    std::mutex workLock;
    std::unique_ptr<net::steady_timer> acceptPause;

    WorkerPool workers;
    WorkerPool streamPool;

    void accept();
    void refuse(tcp::socket socket);
    void dispatch(HttpRequest &req, HttpResponse &res);
    void finish(HttpResponse &res) const
    {
        if (res.status == 0)
            res.status = 200;
        if (res.status >= 400 && res.body.empty() && errorBody)
            errorBody(res);
    }
};

namespace httpimpl {

// One client connection: reads requests with deadlines and limits, hands each to the worker
// pool, writes the reply (or the event stream) and waits for the next one.
class Session : public std::enable_shared_from_this<Session> {
public:
    Session(HttpServer::Impl &server, tcp::socket socket)
        : m_server(server), m_stream(std::move(socket))
    {
        m_server.connections.fetch_add(1);
    }

    ~Session()
    {
        {
            std::lock_guard lock(m_server.registryLock);
            m_server.sessions.erase(this);
        }
        m_server.connections.fetch_sub(1);
    }

    void start()
    {
        {
            std::lock_guard lock(m_server.registryLock);
            m_server.sessions.emplace(this, weak_from_this());
        }
        beast::error_code ec;
        const auto peer = m_stream.socket().remote_endpoint(ec);
        if (!ec) {
            const auto address = peer.address();
            m_peer = (address.is_v6() && address.to_v6().is_v4_mapped())
                         ? address.to_v6().to_v4().to_string()
                         : address.to_string();
        }
        m_stream.socket().set_option(tcp::no_delay(true), ec);
        net::dispatch(m_stream.get_executor(), [self = shared_from_this()] { self->waitRequest(); });
    }

    // From any thread: closes the connection on its strand.
    void abortLater()
    {
        net::post(m_stream.get_executor(), [self = shared_from_this()] { self->abort(); });
    }

private:
    const HttpLimits &limits() const { return m_server.limits; }

    void waitRequest()
    {
        if (m_server.stopping)
            return abort();
        if (m_buffer.size() > 0)
            return readHeader();
        // An idle kept-alive connection: wait for the first byte of the next request.
        m_stream.expires_after(std::chrono::seconds(limits().idleTimeoutSeconds));
        m_stream.async_read_some(m_buffer.prepare(4096), [self = shared_from_this()](
                                                             beast::error_code ec, size_t n) {
            if (ec)
                return self->abort();
            self->m_buffer.commit(n);
            self->readHeader();
        });
    }

    void readHeader()
    {
        m_parser.emplace();
        m_parser->header_limit(std::uint32_t(limits().maxHeaderBytes));
        m_parser->body_limit(std::uint64_t(limits().maxBodyBytes));
        // The whole of the request line and headers must come within the deadline, however
        // slowly a client sends them.
        m_stream.expires_after(std::chrono::seconds(limits().readTimeoutSeconds));
        http::async_read_header(m_stream, m_buffer, *m_parser,
                                [self = shared_from_this()](beast::error_code ec, size_t) {
                                    self->onHeader(ec);
                                });
    }

    void refuseRead(const beast::error_code &ec)
    {
        if (ec == http::error::header_limit)
            return fail(431);
        if (ec == http::error::body_limit)
            return fail(413);
        if (ec == http::error::bad_transfer_encoding)
            return fail(415);
        if (isConnectionError(ec))
            return abort();
        fail(400);
    }

    void onHeader(beast::error_code ec)
    {
        if (ec)
            return refuseRead(ec);
        const auto &head = m_parser->get();
        if (std::distance(head.begin(), head.end()) > limits().maxHeaders)
            return fail(431);
        // Bodies are taken as sent: a compressed body could inflate past any limit.
        const auto coding = head.find(http::field::content_encoding);
        if (coding != head.end() && trimmedLower(coding->value()) != "identity")
            return fail(415);
        const auto transfer = head.find(http::field::transfer_encoding);
        if (transfer != head.end() && trimmedLower(transfer->value()) != "chunked")
            return fail(415);
        if (const auto length = m_parser->content_length();
            length && *length > limits().maxBodyBytes)
            return fail(413);
        const auto expect = head.find(http::field::expect);
        if (expect != head.end() && trimmedLower(expect->value()) == "100-continue") {
            static const std::string carryOn = "HTTP/1.1 100 Continue\r\n\r\n";
            m_stream.expires_after(std::chrono::seconds(limits().writeTimeoutSeconds));
            net::async_write(m_stream, net::buffer(carryOn),
                             [self = shared_from_this()](beast::error_code ec, size_t) {
                                 if (ec)
                                     return self->abort();
                                 self->readBody();
                             });
            return;
        }
        readBody();
    }

    void readBody()
    {
        if (m_parser->is_done())
            return onBody({});
        m_stream.expires_after(std::chrono::seconds(limits().bodyTimeoutSeconds));
        http::async_read(m_stream, m_buffer, *m_parser,
                         [self = shared_from_this()](beast::error_code ec, size_t) {
                             self->onBody(ec);
                         });
    }

    void onBody(beast::error_code ec)
    {
        if (ec)
            return refuseRead(ec);
        m_stream.expires_never();
        auto &message = m_parser->get();
        auto req = std::make_shared<HttpRequest>();
        req->method = std::string(message.method_string());
        req->target = std::string(message.target());
        req->headers.reserve(16);
        for (const auto &field : message)
            req->headers.emplace_back(std::string(field.name_string()),
                                      std::string(field.value()));
        req->body = std::move(message.body());
        req->remoteAddr = m_peer;
        m_keepAlive = message.keep_alive();
        m_version = message.version();
        m_head = message.method() == http::verb::head;
        m_parser.reset();

        m_server.workers.post([self = shared_from_this(), req] {
            auto res = std::make_shared<HttpResponse>();
            self->m_server.dispatch(*req, *res);
            net::post(self->m_stream.get_executor(),
                      [self, res]() mutable { self->respond(std::move(*res)); });
        });
    }

    void respond(HttpResponse res)
    {
        if (m_server.stopping)
            return abort();
        if (res.streamJob)
            return startStream(std::move(res));
        writeReply(std::move(res), m_keepAlive, false);
    }

    // Answers a request the layer refuses, then closes without reading the rest.
    void fail(int status)
    {
        HttpResponse res;
        res.status = status;
        m_server.finish(res);
        m_parser.reset();
        m_head = false;
        writeReply(std::move(res), false, true);
    }

    void writeReply(HttpResponse res, bool keepAlive, bool linger)
    {
        auto message = std::make_shared<http::response<http::string_body>>();
        message->version(m_version);
        message->result(unsigned(res.status));
        for (auto &[name, value] : res.headers)
            message->insert(name, value);
        if (!res.contentType.empty())
            message->set(http::field::content_type, res.contentType);
        message->body() = std::move(res.body);
        message->keep_alive(keepAlive);
        if (keepAlive && m_version == 11)
            message->set(http::field::keep_alive,
                         "timeout=" + std::to_string(limits().idleTimeoutSeconds));
        const int status = res.status;
        if (status >= 200 && status != 204 && status != 304)
            message->prepare_payload();
        m_stream.expires_after(std::chrono::seconds(limits().writeTimeoutSeconds));
        auto done = [self = shared_from_this(), message, keepAlive,
                     linger](beast::error_code ec, size_t) {
            if (ec)
                return self->abort();
            if (linger)
                return self->lingeringClose();
            if (!keepAlive)
                return self->closeGracefully();
            self->waitRequest();
        };
        if (m_head) {
            auto serializer = std::make_shared<http::response_serializer<http::string_body>>(*message);
            http::async_write_header(m_stream, *serializer,
                                     [serializer, done](beast::error_code ec, size_t n) mutable {
                                         done(ec, n);
                                     });
        } else {
            http::async_write(m_stream, *message, std::move(done));
        }
    }

    // After a refusal: no more is read into memory, but what the client is still sending is
    // drained (for a few seconds at most) so that it sees the answer rather than a reset.
    void lingeringClose()
    {
        beast::error_code ec;
        m_stream.socket().shutdown(tcp::socket::shutdown_send, ec);
        m_stream.expires_after(std::chrono::seconds(5));
        m_buffer.clear();
        drain();
    }

    void drain()
    {
        m_stream.async_read_some(net::buffer(m_drain, sizeof m_drain),
                                 [self = shared_from_this()](beast::error_code ec, size_t n) {
                                     self->m_drained += n;
                                     if (ec || self->m_drained > 256u * 1024 * 1024)
                                         return self->abort();
                                     self->drain();
                                 });
    }

    void closeGracefully()
    {
        beast::error_code ec;
        m_stream.socket().shutdown(tcp::socket::shutdown_send, ec);
        m_stream.expires_after(std::chrono::seconds(2));
        m_buffer.clear();
        drain();
    }

    void abort()
    {
        if (m_channel)
            m_channel->close();
        beast::error_code ec;
        m_stream.socket().shutdown(tcp::socket::shutdown_both, ec);
        m_stream.close();
    }

    // ---- event streams ----

    void startStream(HttpResponse res)
    {
        m_channel = std::make_shared<StreamChannel>();
        std::weak_ptr<Session> weak = weak_from_this();
        auto executor = m_stream.get_executor();
        m_channel->wake = [weak, executor] {
            net::post(executor, [weak] {
                if (auto self = weak.lock())
                    self->flush();
            });
        };
        {
            std::lock_guard lock(m_server.registryLock);
            m_server.channels.emplace(m_channel.get(), m_channel);
        }
        m_chunked = m_version >= 11;
        auto head = std::make_shared<http::response<http::empty_body>>();
        head->version(m_version);
        head->result(unsigned(res.status));
        for (auto &[name, value] : res.headers)
            head->insert(name, value);
        head->set(http::field::content_type, res.contentType);
        // The connection ends with the stream: its end is the reply's end for old clients,
        // and nothing is left to misread for new ones.
        head->keep_alive(false);
        if (m_chunked)
            head->chunked(true);
        auto serializer = std::make_shared<http::response_serializer<http::empty_body>>(*head);
        m_writing = true;
        m_stream.expires_after(std::chrono::seconds(limits().writeTimeoutSeconds));
        http::async_write_header(m_stream, *serializer,
                                 [self = shared_from_this(), head,
                                  serializer](beast::error_code ec, size_t) {
                                     self->m_writing = false;
                                     if (ec)
                                         return self->abort();
                                     self->flush();
                                 });
        watchPeer();

        HttpServer::Impl *server = &m_server;
        server->streamJobs.fetch_add(1);
        server->streamPool.post([server, channel = m_channel, job = std::move(res.streamJob)] {
            if (!channel->isClosed()) {
                EventStream stream(channel);
                try {
                    job(stream);
                } catch (const std::exception &e) {
                    // The job reports its own failures as events; anything escaping is a fault.
                    qWarning().noquote() << "stream job failed:" << e.what();
                    stream.send(QJsonObject{{"type", "error"},
                                            {"error", "The server ran into a problem while "
                                                      "writing. Try again."}});
                } catch (...) {
                    qWarning().noquote() << "stream job failed";
                }
            }
            channel->finish();
            {
                std::lock_guard lock(server->registryLock);
                server->channels.erase(channel.get());
            }
            server->streamJobs.fetch_sub(1);
        });
    }

    // Notices a client that hangs up while its stream is quiet.
    void watchPeer()
    {
        m_stream.socket().async_wait(
            tcp::socket::wait_read, [self = shared_from_this()](beast::error_code ec) {
                if (ec)
                    return;
                char byte = 0;
                const ssize_t got = ::recv(self->m_stream.socket().native_handle(), &byte, 1,
                                           MSG_PEEK | MSG_DONTWAIT);
                if (got == 0 || (got < 0 && errno != EAGAIN && errno != EWOULDBLOCK &&
                                 errno != EINTR))
                    return self->abort();
                if (got < 0)
                    return self->watchPeer();
                // The client sent more (a next request): it is read after the stream, never.
            });
    }

    void flush()
    {
        if (m_writing || !m_channel || !m_stream.socket().is_open())
            return;
        bool finished = false;
        std::string data = m_channel->take(finished);
        if (data.empty() && !finished)
            return;
        m_out.clear();
        if (m_chunked) {
            if (!data.empty()) {
                char size[32];
                std::snprintf(size, sizeof size, "%zx\r\n", data.size());
                m_out += size;
                m_out += data;
                m_out += "\r\n";
            }
            if (finished)
                m_out += "0\r\n\r\n";
        } else {
            m_out = std::move(data);
        }
        m_writing = true;
        m_streamEnded = finished;
        m_stream.expires_after(std::chrono::seconds(limits().writeTimeoutSeconds));
        net::async_write(m_stream, net::buffer(m_out),
                         [self = shared_from_this()](beast::error_code ec, size_t) {
                             self->m_writing = false;
                             if (ec)
                                 return self->abort();
                             if (self->m_streamEnded) {
                                 self->m_channel.reset();
                                 return self->closeGracefully();
                             }
                             self->flush();
                         });
    }

    HttpServer::Impl &m_server;
    beast::tcp_stream m_stream;
    beast::flat_buffer m_buffer{64 * 1024};
    std::optional<http::request_parser<http::string_body>> m_parser;
    std::string m_peer;
    bool m_keepAlive = true;
    bool m_head = false;
    unsigned m_version = 11;
    char m_drain[16 * 1024];
    size_t m_drained = 0;

    std::shared_ptr<StreamChannel> m_channel;
    std::string m_out;
    bool m_chunked = true;
    bool m_writing = false;
    bool m_streamEnded = false;
};

} // namespace httpimpl

void HttpServer::Impl::accept()
{
    acceptor.async_accept(net::make_strand(ioc), [this](beast::error_code ec, tcp::socket socket) {
        if (!acceptor.is_open() || stopping)
            return;
        if (ec) {
            // Out of file descriptors: give the open connections a moment to end.
            if (ec == net::error::no_descriptors || ec.value() == ENFILE || ec.value() == ENOBUFS ||
                ec.value() == ENOMEM) {
                acceptPause = std::make_unique<net::steady_timer>(acceptor.get_executor());
                acceptPause->expires_after(std::chrono::milliseconds(50));
                acceptPause->async_wait([this](beast::error_code) { accept(); });
                return;
            }
            return accept();
        }
        if (connections.load() >= limits.maxConnections)
            refuse(std::move(socket));
        else
            std::make_shared<Session>(*this, std::move(socket))->start();
        accept();
    });
}

void HttpServer::Impl::refuse(tcp::socket socket)
{
    refused.fetch_add(1);
    if (closing.load() >= 256) // answering refusals has its own bound
        return;
    HttpResponse res;
    res.status = 503;
    finish(res);
    auto text = std::make_shared<std::string>(
        "HTTP/1.1 503 Service Unavailable\r\nContent-Type: " + res.contentType +
        "\r\nContent-Length: " + std::to_string(res.body.size()) +
        "\r\nRetry-After: 1\r\nConnection: close\r\n\r\n" + res.body);
    auto stream = std::make_shared<beast::tcp_stream>(std::move(socket));
    closing.fetch_add(1);
    stream->expires_after(std::chrono::seconds(2));
    net::async_write(*stream, net::buffer(*text), [this, stream, text](beast::error_code ec, size_t) {
        if (!ec) {
            // Lets the client read the answer before the connection goes.
            stream->socket().shutdown(tcp::socket::shutdown_send, ec);
            auto sink = std::make_shared<std::array<char, 4096>>();
            auto drain = std::make_shared<std::function<void()>>();
            *drain = [this, stream, sink, drain] {
                stream->async_read_some(net::buffer(*sink), [this, stream, drain](
                                                                beast::error_code ec, size_t) {
                    if (ec) {
                        stream->close();
                        closing.fetch_sub(1);
                        *drain = nullptr; // ends the cycle
                        return;
                    }
                    (*drain)();
                });
            };
            (*drain)();
            return;
        }
        stream->close();
        closing.fetch_sub(1);
    });
}

void HttpServer::Impl::dispatch(HttpRequest &req, HttpResponse &res)
{
    const size_t question = req.target.find('?');
    req.path = percentDecoded(std::string_view(req.target).substr(0, question), false);
    if (question != std::string::npos)
        parseQuery(std::string_view(req.target).substr(question + 1), req.params);
    // A form's fields read like the query's (after them).
    if (const std::string *type = req.header("Content-Type");
        type && strncasecmp(type->c_str(), "application/x-www-form-urlencoded", 33) == 0)
        parseQuery(req.body, req.params);
    const std::string &method = req.method == "HEAD" ? std::string("GET") : req.method;
    std::smatch match;
    for (const Route &route : routes) {
        if (route.method != method || !std::regex_match(req.path, match, route.pattern))
            continue;
        req.matches.reserve(match.size());
        for (const auto &group : match)
            req.matches.push_back(group.str());
        try {
            route.handler(req, res);
        } catch (const std::exception &e) {
            qWarning().noquote() << req.path.c_str() << "failed:" << e.what();
            res = HttpResponse{};
            res.status = 500;
        } catch (...) {
            res = HttpResponse{};
            res.status = 500;
        }
        finish(res);
        return;
    }
    bool elsewhere = false;
    for (const Route &route : routes)
        if (std::regex_match(req.path, route.pattern)) {
            elsewhere = true;
            break;
        }
    res.status = elsewhere ? 405 : 404;
    finish(res);
}

HttpServer::HttpServer(HttpLimits limits) : d(std::make_unique<Impl>(limits)) {}

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
    d->routes.push_back(Route{method, std::regex(pattern), std::move(handler)});
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
    const int chosen = acceptor.local_endpoint(ec).port();
    d->accept();
    return chosen;
}

void HttpServer::run()
{
    const int cores = int(std::max(1u, std::thread::hardware_concurrency()));
    d->workers.start(std::max(1, d->limits.workerThreads));
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
    std::vector<std::shared_ptr<Session>> open;
    {
        std::lock_guard lock(d->registryLock);
        for (auto &[key, weak] : d->channels)
            if (auto channel = weak.lock())
                channel->close();
        if (first)
            for (auto &[key, weak] : d->sessions)
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
