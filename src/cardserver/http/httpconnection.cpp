#include "http/httpconnection.h"

#include "http/eventstream.h"
#include "http/serverstate.h"
#include "http/streamchannel.h"

#include <cerrno>
#include <QDebug>
#include <QJsonObject>
#include <sys/socket.h>

namespace beast = boost::beast;
namespace http = boost::beast::http;
namespace net = boost::asio;
using tcp = boost::asio::ip::tcp;

namespace cardserver {

namespace {

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

} // namespace

const HttpLimits &HttpConnection::limits() const
{
    return m_server.limits;
}

HttpConnection::HttpConnection(ServerState &server, tcp::socket socket)
    : m_server(server), m_stream(std::move(socket))
{
    m_server.connections.fetch_add(1);
}

HttpConnection::~HttpConnection()
{
    {
        std::lock_guard lock(m_server.registryLock);
        m_server.connectionsOpen.erase(this);
    }
    m_server.connections.fetch_sub(1);
}

void HttpConnection::start()
{
    {
        std::lock_guard lock(m_server.registryLock);
        m_server.connectionsOpen.emplace(this, weak_from_this());
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

void HttpConnection::abortLater()
{
    net::post(m_stream.get_executor(), [self = shared_from_this()] { self->abort(); });
}

void HttpConnection::waitRequest()
{
    if (m_server.stopping)
        return abort();
    if (m_buffer.size() > 0)
        return readHeader();
    // Wait for the first byte of the next request: a kept-alive connection may idle for the
    // idle timeout, a new one has no longer than it would have to send its headers.
    m_stream.expires_after(std::chrono::seconds(m_answered > 0 ? limits().idleTimeoutSeconds
                                                               : limits().readTimeoutSeconds));
    m_stream.async_read_some(m_buffer.prepare(4096),
                             [self = shared_from_this()](beast::error_code ec, size_t n) {
                                 if (ec)
                                     return self->abort();
                                 self->m_buffer.commit(n);
                                 self->readHeader();
                             });
}

void HttpConnection::readHeader()
{
    m_parser.emplace();
    m_parser->header_limit(std::uint32_t(limits().maxHeaderBytes));
    m_parser->body_limit(std::uint64_t(limits().maxBodyBytes));
    // The whole of the request line and headers must come within the deadline, however
    // slowly a client sends them.
    m_stream.expires_after(std::chrono::seconds(limits().readTimeoutSeconds));
    http::async_read_header(
        m_stream, m_buffer, *m_parser,
        [self = shared_from_this()](beast::error_code ec, size_t) { self->onHeader(ec); });
}

void HttpConnection::refuseRead(const beast::error_code &ec)
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

void HttpConnection::onHeader(beast::error_code ec)
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
    if (const auto length = m_parser->content_length(); length && *length > limits().maxBodyBytes)
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

void HttpConnection::readBody()
{
    if (m_parser->is_done())
        return onBody({});
    m_stream.expires_after(std::chrono::seconds(limits().bodyTimeoutSeconds));
    http::async_read(
        m_stream, m_buffer, *m_parser,
        [self = shared_from_this()](beast::error_code ec, size_t) { self->onBody(ec); });
}

void HttpConnection::onBody(beast::error_code ec)
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
        req->headers.emplace_back(std::string(field.name_string()), std::string(field.value()));
    req->body = std::move(message.body());
    req->remoteAddr = m_peer;
    m_keepAlive = message.keep_alive();
    ++m_answered;
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

void HttpConnection::respond(HttpResponse res)
{
    if (m_server.stopping)
        return abort();
    if (res.streamJob)
        return startStream(std::move(res));
    writeReply(std::move(res), m_keepAlive, false);
}

void HttpConnection::fail(int status)
{
    HttpResponse res;
    res.status = status;
    m_server.finish(res);
    m_parser.reset();
    m_head = false;
    writeReply(std::move(res), false, true);
}

void HttpConnection::writeReply(HttpResponse res, bool keepAlive, bool linger)
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
    auto done = [self = shared_from_this(), message, keepAlive, linger](beast::error_code ec,
                                                                        size_t) {
        if (ec)
            return self->abort();
        if (linger)
            return self->closeWithin(std::chrono::seconds(5));
        if (!keepAlive)
            return self->closeWithin(std::chrono::seconds(2));
        self->waitRequest();
    };
    if (m_head) {
        auto serializer = std::make_shared<http::response_serializer<http::string_body>>(*message);
        http::async_write_header(
            m_stream, *serializer,
            [serializer, done](beast::error_code ec, size_t n) mutable { done(ec, n); });
    } else {
        http::async_write(m_stream, *message, std::move(done));
    }
}

void HttpConnection::closeWithin(std::chrono::seconds deadline)
{
    beast::error_code ec;
    m_stream.socket().shutdown(tcp::socket::shutdown_send, ec);
    m_stream.expires_after(deadline);
    m_buffer.clear();
    drain();
}

void HttpConnection::drain()
{
    if (!m_drain)
        m_drain = std::make_unique<char[]>(DrainBytes);
    m_stream.async_read_some(net::buffer(m_drain.get(), DrainBytes),
                             [self = shared_from_this()](beast::error_code ec, size_t n) {
                                 self->m_drained += n;
                                 if (ec || self->m_drained > 256u * 1024 * 1024)
                                     return self->abort();
                                 self->drain();
                             });
}

void HttpConnection::abort()
{
    if (m_channel)
        m_channel->close();
    beast::error_code ec;
    m_stream.socket().shutdown(tcp::socket::shutdown_both, ec);
    m_stream.close();
}

void HttpConnection::startStream(HttpResponse res)
{
    m_channel = std::make_shared<StreamChannel>();
    std::weak_ptr<HttpConnection> weak = weak_from_this();
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
    http::async_write_header(
        m_stream, *serializer,
        [self = shared_from_this(), head, serializer](beast::error_code ec, size_t) {
            self->m_writing = false;
            if (ec)
                return self->abort();
            self->flush();
        });
    watchPeer();

    ServerState *server = &m_server;
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

void HttpConnection::watchPeer()
{
    m_stream.socket().async_wait(
        tcp::socket::wait_read, [self = shared_from_this()](beast::error_code ec) {
            if (ec)
                return;
            char byte = 0;
            const ssize_t got =
                ::recv(self->m_stream.socket().native_handle(), &byte, 1, MSG_PEEK | MSG_DONTWAIT);
            if (got == 0 || (got < 0 && errno != EAGAIN && errno != EWOULDBLOCK && errno != EINTR))
                return self->abort();
            if (got < 0)
                return self->watchPeer();
            // The client sent more (a next request): it is read after the stream, never.
        });
}

void HttpConnection::flush()
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
                             return self->closeWithin(std::chrono::seconds(2));
                         }
                         self->flush();
                     });
}

} // namespace cardserver
