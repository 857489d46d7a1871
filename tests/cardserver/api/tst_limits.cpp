// The HTTP layer under hostile or merely numerous clients, over real sockets: bodies past the
// limit (chunked, compressed), too many headers, slow-loris connections, thousands of idle
// kept-alive connections, the connection bound, streams whose client hangs up, and the refusals
// of non-JSON bodies and cross-site requests. Each case has its own server and is bounded in time.
#include "api.h"
#include "processmemory.h"

#include <arpa/inet.h>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <fcntl.h>
#include <httplib.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <QElapsedTimer>
#include <QFile>
#include <QJsonDocument>
#include <QTest>
#include <sys/resource.h>
#include <sys/socket.h>
#include <thread>
#include <unistd.h>
#include <vector>
#include <zlib.h>

namespace {

#if defined(__SANITIZE_ADDRESS__)
constexpr bool Sanitized = true;
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
constexpr bool Sanitized = true;
#else
constexpr bool Sanitized = false;
#endif
#else
constexpr bool Sanitized = false;
#endif

// How much the server may grow while refusing a body: 64 MB, or more under AddressSanitizer,
// whose quarantine keeps freed memory resident for a while.
constexpr qint64 GrowthBoundKb = (Sanitized ? 192 : 64) * 1024;

// One of the server's figures from /proc/<pid>/status, in kB (VmRSS, VmHWM).
qint64 memoryKb(qint64 pid, const char *field)
{
    const qint64 bytes = processMemoryBytes(pid, field);
    return bytes < 0 ? -1 : bytes / 1024;
}

// Enough open files for the test's own thousands of connections.
void raiseOpenFiles(rlim_t wanted)
{
    rlimit limit{};
    getrlimit(RLIMIT_NOFILE, &limit);
    if (limit.rlim_cur < wanted) {
        limit.rlim_cur = std::min(wanted, limit.rlim_max);
        setrlimit(RLIMIT_NOFILE, &limit);
    }
}

int openFilesLimit()
{
    rlimit limit{};
    getrlimit(RLIMIT_NOFILE, &limit);
    return int(limit.rlim_cur);
}

class Socket {
public:
    explicit Socket(int port)
    {
        m_fd = ::socket(AF_INET, SOCK_STREAM, 0);
        sockaddr_in a{};
        a.sin_family = AF_INET;
        a.sin_port = htons(quint16(port));
        a.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        if (::connect(m_fd, reinterpret_cast<sockaddr *>(&a), sizeof a) != 0) {
            ::close(m_fd);
            m_fd = -1;
        }
    }
    ~Socket()
    {
        if (m_fd >= 0)
            ::close(m_fd);
    }
    Socket(const Socket &) = delete;
    Socket(Socket &&o) noexcept : m_fd(o.m_fd) { o.m_fd = -1; }

    bool ok() const { return m_fd >= 0; }
    int fd() const { return m_fd; }

    bool send(const QByteArray &bytes)
    {
        qsizetype at = 0;
        while (at < bytes.size()) {
            const ssize_t n =
                ::send(m_fd, bytes.constData() + at, size_t(bytes.size() - at), MSG_NOSIGNAL);
            if (n <= 0)
                return false;
            at += n;
        }
        return true;
    }

    bool readable(int timeoutMs) const
    {
        pollfd p{m_fd, POLLIN, 0};
        return ::poll(&p, 1, timeoutMs) > 0;
    }

    // One reply: the head and a Content-Length body, or whatever came before the peer closed
    // or the deadline passed.
    QByteArray reply(int timeoutMs = 5000)
    {
        QByteArray in;
        QElapsedTimer clock;
        clock.start();
        while (clock.elapsed() < timeoutMs) {
            const qsizetype headEnd = in.indexOf("\r\n\r\n");
            if (headEnd >= 0) {
                const QByteArray head = in.left(headEnd).toLower();
                const qsizetype cl = head.indexOf("content-length:");
                if (cl >= 0) {
                    const qint64 length =
                        head.mid(cl + 15, head.indexOf('\r', cl) - cl - 15).trimmed().toLongLong();
                    if (in.size() >= headEnd + 4 + length)
                        return in;
                }
            }
            if (!readable(int(std::max<qint64>(1, timeoutMs - clock.elapsed()))))
                break;
            char buf[16384];
            const ssize_t n = ::recv(m_fd, buf, sizeof buf, 0);
            if (n <= 0)
                break;
            in.append(buf, n);
        }
        return in;
    }

    // True once the server has closed this connection (reads end or fail).
    bool closedByPeer(int timeoutMs)
    {
        QElapsedTimer clock;
        clock.start();
        while (clock.elapsed() < timeoutMs) {
            if (!readable(int(timeoutMs - clock.elapsed())))
                return false;
            char buf[4096];
            const ssize_t n = ::recv(m_fd, buf, sizeof buf, MSG_DONTWAIT);
            if (n == 0 || (n < 0 && errno != EAGAIN && errno != EWOULDBLOCK))
                return true;
        }
        return false;
    }

private:
    int m_fd = -1;
};

int statusOf(const QByteArray &reply)
{
    if (!reply.startsWith("HTTP/1."))
        return 0;
    return reply.mid(9, 3).toInt();
}

QJsonObject bodyOf(const QByteArray &reply)
{
    const qsizetype at = reply.indexOf("\r\n\r\n");
    return at < 0 ? QJsonObject() : QJsonDocument::fromJson(reply.mid(at + 4)).object();
}

// `bytes` of zeros, gzip-compressed (about a thousandth of the size).
QByteArray gzipBomb(qint64 bytes)
{
    z_stream z{};
    deflateInit2(&z, 9, Z_DEFLATED, 31, 9, Z_DEFAULT_STRATEGY);
    QByteArray out;
    std::vector<unsigned char> zeros(1 << 20, 0);
    std::vector<unsigned char> buf(1 << 16);
    for (qint64 left = bytes; left > 0;) {
        const qint64 n = std::min<qint64>(left, qint64(zeros.size()));
        left -= n;
        z.next_in = zeros.data();
        z.avail_in = uInt(n);
        const int flush = left > 0 ? Z_NO_FLUSH : Z_FINISH;
        do {
            z.next_out = buf.data();
            z.avail_out = uInt(buf.size());
            deflate(&z, flush);
            out.append(reinterpret_cast<const char *>(buf.data()),
                       qsizetype(buf.size() - z.avail_out));
        } while (z.avail_out == 0);
    }
    deflateEnd(&z);
    return out;
}

QJsonObject health(const QUrl &base)
{
    httplib::Client c(base.host().toStdString(), base.port());
    c.set_read_timeout(5);
    const auto r = c.Get("/healthz");
    if (!r)
        return {};
    return QJsonDocument::fromJson(QByteArray::fromStdString(r->body)).object();
}

} // namespace

class TestLimits : public QObject {
    Q_OBJECT

    // Sends a body in chunks of 64 KB until the server answers (or `total` is sent), then
    // reads the answer. Returns it.
    static QByteArray pushChunked(Socket &s, const QByteArray &head, qint64 total,
                                  const QByteArray &payload = QByteArray())
    {
        if (!s.send(head))
            return {};
        const QByteArray piece = payload.isEmpty() ? QByteArray(64 * 1024, 'a') : payload;
        const QByteArray chunk = QByteArray::number(piece.size(), 16) + "\r\n" + piece + "\r\n";
        QElapsedTimer clock;
        clock.start();
        for (qint64 sent = 0; sent < total && clock.elapsed() < 60000;) {
            pollfd p{s.fd(), POLLIN | POLLOUT, 0};
            if (::poll(&p, 1, 1000) <= 0)
                continue;
            if (p.revents & (POLLIN | POLLERR | POLLHUP))
                break;
            if (!s.send(chunk))
                break;
            sent += piece.size();
        }
        return s.reply(10000);
    }

private slots:
    void initTestCase() { raiseOpenFiles(20000); }

    void aChunkedBodyPastTheLimitIsRefusedWithoutBeingKept()
    {
        ServerProcess server({"--local"});
        QVERIFY2(server.start(), qPrintable(server.errorText()));
        QCOMPARE(health(server.baseUrl())["database"].toString(), QStringLiteral("ok"));
        const qint64 idle = memoryKb(server.pid(), "VmRSS");
        QVERIFY(idle > 0);

        Socket s(server.baseUrl().port());
        QVERIFY(s.ok());
        const QByteArray reply = pushChunked(
            s,
            "POST /api/decks HTTP/1.1\r\nHost: localhost\r\nContent-Type: application/json\r\n"
            "Transfer-Encoding: chunked\r\n\r\n",
            400LL * 1024 * 1024);
        QCOMPARE(statusOf(reply), 413);
        QVERIFY(!bodyOf(reply)["error"].toString().isEmpty());
        const qint64 peak = memoryKb(server.pid(), "VmHWM");
        qDebug("idle %lld kB, peak %lld kB", idle, peak);
        QVERIFY2(peak - idle < GrowthBoundKb, qPrintable(QString::number(peak - idle)));
        QCOMPARE(health(server.baseUrl())["status"].toString(), QStringLiteral("ok"));
    }

    void aCompressedBodyIsRefused()
    {
        ServerProcess server({"--local"});
        QVERIFY2(server.start(), qPrintable(server.errorText()));
        health(server.baseUrl());
        const qint64 idle = memoryKb(server.pid(), "VmRSS");
        const QByteArray bomb = gzipBomb(1024LL * 1024 * 1024); // a gigabyte of zeros
        {
            Socket s(server.baseUrl().port());
            QVERIFY(s.ok());
            s.send(
                "POST /api/decks HTTP/1.1\r\nHost: localhost\r\nContent-Type: application/json\r\n"
                "Content-Encoding: gzip\r\nContent-Length: " +
                QByteArray::number(bomb.size()) + "\r\n\r\n");
            s.send(bomb);
            const QByteArray reply = s.reply();
            QCOMPARE(statusOf(reply), 415);
            QVERIFY(!bodyOf(reply)["error"].toString().isEmpty());
        }
        {
            // The same, chunked, sent again and again.
            Socket s(server.baseUrl().port());
            const QByteArray reply =
                pushChunked(s,
                            "POST /api/folders HTTP/1.1\r\nHost: localhost\r\nContent-Type: "
                            "application/json\r\n"
                            "Content-Encoding: gzip\r\nTransfer-Encoding: chunked\r\n\r\n",
                            64LL * 1024 * 1024, bomb.left(64 * 1024));
            QVERIFY2(statusOf(reply) == 415 || statusOf(reply) == 413, reply.left(200));
        }
        const qint64 peak = memoryKb(server.pid(), "VmHWM");
        QVERIFY2(peak - idle < GrowthBoundKb, qPrintable(QString::number(peak - idle)));
    }

    void tooManyHeaders()
    {
        ServerProcess server({"--local"});
        QVERIFY2(server.start(), qPrintable(server.errorText()));
        Socket s(server.baseUrl().port());
        QByteArray request = "GET /api/languages HTTP/1.1\r\nHost: localhost\r\n";
        for (int i = 0; i < 300; ++i)
            request += "X-Filler-" + QByteArray::number(i) + ": x\r\n";
        s.send(request + "\r\n");
        const QByteArray reply = s.reply();
        QVERIFY2(statusOf(reply) == 431 || statusOf(reply) == 400, reply.left(200));
        QVERIFY(!bodyOf(reply)["error"].toString().isEmpty());

        Socket big(server.baseUrl().port());
        big.send("GET /api/languages HTTP/1.1\r\nHost: localhost\r\nX-Big: " +
                 QByteArray(64 * 1024, 'b') + "\r\n\r\n");
        const int status = statusOf(big.reply());
        QVERIFY2(status == 431 || status == 400, qPrintable(QString::number(status)));

        Api api(server.baseUrl());
        QCOMPARE(api.get("/api/languages").status, 200);
    }

    void slowLorisConnectionsAreDroppedWhileOthersAreServed()
    {
        ServerProcess server({"--local", "--read-timeout", "3"});
        QVERIFY2(server.start(), qPrintable(server.errorText()));
        const int port = server.baseUrl().port();
        std::vector<Socket> slow;
        slow.reserve(500);
        for (int i = 0; i < 500; ++i) {
            slow.emplace_back(port);
            QVERIFY(slow.back().ok());
            // One in ten sends nothing at all: it gets no longer than the others.
            if (i % 10 != 0)
                slow.back().send("GET /api/languages HTTP/1.1\r\nHost: localhost\r\n");
        }
        Api api(server.baseUrl());
        QCOMPARE(api.get("/api/languages").status, 200); // the connection is open
        qint64 worst = 0;
        for (int i = 0; i < 40; ++i) {
            // The slow clients trickle a header each now and then.
            slow.at(size_t(i * 12 % 500 + 1)).send("X-Slow: 1\r\n");
            QElapsedTimer clock;
            clock.start();
            QCOMPARE(api.get("/api/languages").status, 200);
            worst = std::max(worst, clock.elapsed());
            QTest::qWait(20);
        }
        qDebug("slowest answer beside 500 slow-loris connections: %lld ms", worst);
        if (!Sanitized)
            QVERIFY2(worst < 100, qPrintable(QString::number(worst)));
        // The read deadline ends them all.
        int dropped = 0;
        QElapsedTimer clock;
        clock.start();
        for (Socket &s : slow)
            dropped += s.closedByPeer(int(std::max<qint64>(1, 15000 - clock.elapsed()))) ? 1 : 0;
        QCOMPARE(dropped, 500);
        QTRY_VERIFY2_WITH_TIMEOUT(health(server.baseUrl())["connections"].toInt() <= 5,
                                  qPrintable(QJsonDocument(health(server.baseUrl())).toJson()),
                                  10000);
    }

    void thousandsOfIdleConnectionsDoNotBlockANewRequest()
    {
        if (openFilesLimit() < 4500)
            QSKIP("the open-file limit is too low for 2,000 connections");
        ServerProcess server({"--local", "--idle-timeout", "60"});
        QVERIFY2(server.start(), qPrintable(server.errorText()));
        const int port = server.baseUrl().port();
        std::vector<Socket> idle;
        idle.reserve(2000);
        for (int i = 0; i < 2000; ++i) {
            idle.emplace_back(port);
            QVERIFY2(idle.back().ok(), qPrintable(QString::number(i)));
            // Each asks once and keeps the connection, as a browser does.
            idle.back().send("GET /healthz HTTP/1.1\r\nHost: localhost\r\n\r\n");
        }
        for (Socket &s : idle)
            QCOMPARE(statusOf(s.reply()), 200);
        QElapsedTimer clock;
        clock.start();
        Api api(server.baseUrl());
        QCOMPARE(api.get("/api/languages").status, 200);
        qDebug("a new request beside 2,000 idle connections: %lld ms; server resident %lld kB",
               clock.elapsed(), memoryKb(server.pid(), "VmRSS"));
        QVERIFY(health(server.baseUrl())["connections"].toInt() >= 2000);
    }

    void connectionsBeyondTheBoundAreTurnedAway()
    {
        ServerProcess server({"--local", "--max-connections", "20"});
        QVERIFY2(server.start(), qPrintable(server.errorText()));
        const int port = server.baseUrl().port();
        std::vector<Socket> held;
        for (int i = 0; i < 20; ++i) {
            held.emplace_back(port);
            held.back().send("GET /healthz HTTP/1.1\r\nHost: localhost\r\n\r\n");
            QCOMPARE(statusOf(held.back().reply()), 200);
        }
        Socket extra(port);
        extra.send("GET /api/languages HTTP/1.1\r\nHost: localhost\r\n\r\n");
        const QByteArray reply = extra.reply();
        QCOMPARE(statusOf(reply), 503);
        QVERIFY(bodyOf(reply)["error"].toString().contains("busy"));
        held.clear();
        QTRY_COMPARE_WITH_TIMEOUT(Api(server.baseUrl()).get("/api/languages").status, 200, 5000);
    }

    void aStreamWhoseClientHangsUpEndsItsJob()
    {
        // A language model that takes its time over every line.
        httplib::Server model;
        std::atomic<int> calls{0};
        model.Post(R"(/v1/chat/completions)", [&](const httplib::Request &,
                                                  httplib::Response &res) {
            ++calls;
            std::this_thread::sleep_for(std::chrono::milliseconds(200));
            const QJsonObject message{{"role", "assistant"}, {"content", R"({"annotations": []})"}};
            const QJsonObject reply{
                {"choices", QJsonArray{QJsonObject{{"message", message}, {"index", 0}}}}};
            res.set_content(QJsonDocument(reply).toJson(QJsonDocument::Compact).toStdString(),
                            "application/json");
        });
        const int modelPort = model.bind_to_any_port("127.0.0.1");
        std::thread modelThread([&] { model.listen_after_bind(); });
        auto stopModel = qScopeGuard([&] {
            model.stop();
            modelThread.join();
        });

        ServerProcess server({"--local", "--writer", "llm", "--llm-model", "test", "--llm-url",
                              QStringLiteral("http://127.0.0.1:%1/v1").arg(modelPort),
                              "--allow-private-fetch"});
        QVERIFY2(server.start(), qPrintable(server.errorText()));
        Api api(server.baseUrl());
        api.join("leaver@example.org");
        const qint64 deck = api.deck()["id"].toInteger();
        QStringList lines;
        for (int i = 0; i < 100; ++i)
            lines.append(QStringLiteral("Der Hund bellt zum %1. Mal.").arg(i + 1));
        const qint64 note = api.note(deck, "Long", lines.join('\n'))["id"].toInteger();
        QVERIFY(note > 0);

        httplib::Client client(server.baseUrl().host().toStdString(), server.baseUrl().port());
        httplib::Request req;
        req.method = "POST";
        req.path = path("/api/notes/%1/annotate", note).toStdString();
        req.headers = {{"Cookie", ("orvel_session=" + api.cookie()).toStdString()},
                       {"Content-Type", "application/json"}};
        req.body = R"({"all": true})";
        bool sawEvent = false;
        req.content_receiver = [&](const char *, size_t, uint64_t, uint64_t) {
            sawEvent = true;
            return false; // hang up at the first event
        };
        client.send(req);
        client.stop();
        QVERIFY(sawEvent);
        // 100 lines at 200 ms would take 20 s; the job ends within a line or two.
        QElapsedTimer clock;
        clock.start();
        QTRY_COMPARE_WITH_TIMEOUT(health(server.baseUrl())["stream_jobs"].toInt(), 0, 8000);
        qDebug("the job ended %lld ms after the hang-up, after %d model calls", clock.elapsed(),
               calls.load());
        QVERIFY(calls.load() < 20);
    }

    void jsonRoutesTakeOnlyJson()
    {
        ServerProcess server({"--local"});
        QVERIFY2(server.start(), qPrintable(server.errorText()));
        Api api(server.baseUrl());
        api.join("json@example.org");
        const Api::Reply plain = api.postRaw("/api/folders", R"({"name":"A"})", "text/plain");
        QCOMPARE(plain.status, 415);
        QVERIFY(!plain.error().isEmpty());
        const Api::Reply form =
            api.postRaw("/api/folders", R"({"name":"A"})", "application/x-www-form-urlencoded");
        QCOMPARE(form.status, 415);
        QCOMPARE(api.postRaw("/api/folders", R"({"name":"A"})", "application/json; charset=utf-8")
                     .status,
                 201);
    }

    void crossSiteRequestsAreRefused()
    {
        ServerProcess server({"--local"});
        QVERIFY2(server.start(), qPrintable(server.errorText()));
        Api api(server.baseUrl());
        api.join("site@example.org");

        Api evil(server.baseUrl());
        evil.setCookie(api.cookie());
        evil.setHeader("Origin", "https://evil.example");
        const Api::Reply refused = evil.post("/api/folders", QJsonObject{{"name", "Stolen"}});
        QCOMPARE(refused.status, 403);
        QVERIFY(!refused.error().isEmpty());

        Api nullOrigin(server.baseUrl());
        nullOrigin.setCookie(api.cookie());
        nullOrigin.setHeader("Origin", "null");
        QCOMPARE(nullOrigin.post("/api/auth/logout").status, 403);

        Api fetched(server.baseUrl());
        fetched.setCookie(api.cookie());
        fetched.setHeader("Sec-Fetch-Site", "cross-site");
        QCOMPARE(fetched.post("/api/folders", QJsonObject{{"name", "Stolen"}}).status, 403);

        Api own(server.baseUrl());
        own.setCookie(api.cookie());
        own.setHeader("Origin", server.baseUrl().toString(QUrl::RemovePath).toStdString());
        own.setHeader("Sec-Fetch-Site", "same-origin");
        QCOMPARE(own.post("/api/folders", QJsonObject{{"name", "Mine"}}).status, 201);
        // Reading is not refused: without CORS headers a browser shows another site nothing.
        QCOMPARE(evil.get("/api/folders").status, 200);
    }

    void pagesMayNotBeFramed()
    {
        ServerProcess server({"--local"});
        QVERIFY2(server.start(), qPrintable(server.errorText()));
        Api api(server.baseUrl());
        const Api::Reply page = api.get("/app?forgot=1");
        QCOMPARE(page.status, 200);
        QVERIFY(page.header("Content-Security-Policy").contains("frame-ancestors 'none'"));
        const Api::Reply reset = api.get("/app?reset=nonsense");
        QVERIFY(reset.header("Content-Security-Policy").contains("frame-ancestors 'none'"));
    }

    void healthAndHead()
    {
        ServerProcess server({"--local"});
        QVERIFY2(server.start(), qPrintable(server.errorText()));
        const QJsonObject h = health(server.baseUrl());
        QCOMPARE(h["status"].toString(), QStringLiteral("ok"));
        QCOMPARE(h["database"].toString(), QStringLiteral("ok"));
        QVERIFY(h.contains("stream_jobs") && h.contains("connections"));

        Socket s(server.baseUrl().port());
        s.send("HEAD /api/languages HTTP/1.1\r\nHost: localhost\r\n\r\n");
        QVERIFY(s.readable(5000));
        char buf[4096];
        const ssize_t n = ::recv(s.fd(), buf, sizeof buf, 0);
        const QByteArray head(buf, int(std::max<ssize_t>(0, n)));
        QCOMPARE(statusOf(head), 200);
        QVERIFY(head.endsWith("\r\n\r\n")); // no body follows
        // The connection stays usable after it.
        s.send("GET /api/nothing-here HTTP/1.1\r\nHost: localhost\r\n\r\n");
        QCOMPARE(statusOf(s.reply()), 404);
    }
};

QTEST_GUILESS_MAIN(TestLimits)
#include "tst_limits.moc"
