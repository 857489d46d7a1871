#include "http/serverstate.h"

#include "http/httpconnection.h"
#include "http/urldecoding.h"

#include <array>
#include <QDebug>
#include <strings.h>

namespace beast = boost::beast;
namespace net = boost::asio;
using tcp = boost::asio::ip::tcp;

namespace cardserver {

void ServerState::accept()
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
        take(std::move(socket));
        // Takes whatever else is already waiting before going back to the reactor, so that a
        // burst of new connections does not wait behind the requests of open ones.
        for (int i = 0; i < 256; ++i) {
            tcp::socket next(net::make_strand(ioc));
            acceptor.accept(next, ec);
            if (ec)
                break;
            take(std::move(next));
        }
        accept();
    });
}

void ServerState::take(tcp::socket socket)
{
    if (connections.load() >= limits.maxConnections)
        refuse(std::move(socket));
    else
        std::make_shared<HttpConnection>(*this, std::move(socket))->start();
}

namespace {

// Reads and drops what a refused client still sends until it closes or the deadline passes,
// so that it reads the answer rather than a reset.
void drainThenClose(std::shared_ptr<beast::tcp_stream> stream,
                    std::shared_ptr<std::array<char, 4096>> sink, std::atomic<int> &closing)
{
    stream->async_read_some(net::buffer(*sink),
                            [stream, sink, &closing](beast::error_code ec, size_t) {
                                if (!ec)
                                    return drainThenClose(stream, sink, closing);
                                stream->close();
                                closing.fetch_sub(1);
                            });
}

} // namespace

void ServerState::refuse(tcp::socket socket)
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
    net::async_write(
        *stream, net::buffer(*text), [this, stream, text](beast::error_code ec, size_t) {
            if (ec) {
                stream->close();
                closing.fetch_sub(1);
                return;
            }
            stream->socket().shutdown(tcp::socket::shutdown_send, ec);
            drainThenClose(stream, std::make_shared<std::array<char, 4096>>(), closing);
        });
}

void ServerState::dispatch(HttpRequest &req, HttpResponse &res)
{
    const size_t question = req.target.find('?');
    req.path = UrlDecoding::decoded(std::string_view(req.target).substr(0, question), false);
    if (question != std::string::npos)
        UrlDecoding::parseQuery(std::string_view(req.target).substr(question + 1), req.params);
    // A form's fields read like the query's (after them).
    if (const std::string *type = req.header("Content-Type");
        type && strncasecmp(type->c_str(), "application/x-www-form-urlencoded", 33) == 0)
        UrlDecoding::parseQuery(req.body, req.params);
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

void ServerState::finish(HttpResponse &res) const
{
    if (res.status == 0)
        res.status = 200;
    if (res.status >= 400 && res.body.empty() && errorBody)
        errorBody(res);
}

} // namespace cardserver
