#pragma once
#include <boost/asio/ip/tcp.hpp>
#include <boost/beast/core.hpp>
#include <boost/beast/http.hpp>
#include <chrono>
#include <memory>
#include <optional>
#include <string>

namespace cardserver {

struct HttpLimits;
struct HttpResponse;
struct ServerState;
struct StreamChannel;

// One client connection: reads requests with deadlines and limits, hands each to the worker
// pool, writes the reply (or the event stream) and waits for the next one.
class HttpConnection : public std::enable_shared_from_this<HttpConnection> {
public:
    HttpConnection(ServerState &server, boost::asio::ip::tcp::socket socket);
    ~HttpConnection();

    void start();

    // From any thread: closes the connection on its strand.
    void abortLater();

private:
    const HttpLimits &limits() const;

    void waitRequest();

    void readHeader();

    void refuseRead(const boost::beast::error_code &ec);

    void onHeader(boost::beast::error_code ec);

    void readBody();

    void onBody(boost::beast::error_code ec);

    void respond(HttpResponse res);

    // Answers a request the layer refuses, then closes without reading the rest.
    void fail(int status);

    void writeReply(HttpResponse res, bool keepAlive, bool linger);

    // Ends the connection after its last reply: nothing more is read into memory, but what the
    // client still sends is drained (until `deadline`) so that it reads the reply rather than
    // a reset.
    void closeWithin(std::chrono::seconds deadline);
    void drain();

    void abort();

    // ---- event streams ----

    void startStream(HttpResponse res);

    // Notices a client that hangs up while its stream is quiet.
    void watchPeer();

    void flush();

    ServerState &m_server;
    boost::beast::tcp_stream m_stream;
    boost::beast::flat_buffer m_buffer{64 * 1024};
    std::optional<boost::beast::http::request_parser<boost::beast::http::string_body>> m_parser;
    std::string m_peer;
    bool m_keepAlive = true;
    unsigned m_answered = 0; // requests read on this connection
    bool m_head = false;
    unsigned m_version = 11;
    static constexpr size_t DrainBytes = 16 * 1024;
    std::unique_ptr<char[]> m_drain; // only while closing
    size_t m_drained = 0;

    std::shared_ptr<StreamChannel> m_channel;
    std::string m_out;
    bool m_chunked = true;
    bool m_writing = false;
    bool m_streamEnded = false;
};

} // namespace cardserver
