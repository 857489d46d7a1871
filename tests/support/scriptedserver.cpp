#include "scriptedserver.h"

#include <chrono>
#include <condition_variable>
#include <httplib.h>
#include <mutex>
#include <QSet>
#include <QUrlQuery>
#include <thread>

namespace {

struct Script {
    int status = 200;
    QByteArray body;
    QByteArray contentType;
    QList<std::pair<QByteArray, QByteArray>> headers;
    QList<ScriptedServer::Chunk> chunks;
    bool streamed = false;
    bool cut = false;
};

QString key(const QByteArray &method, const QString &path)
{
    return QString::fromLatin1(method) + QLatin1Char(' ') + path;
}

} // namespace

struct ScriptedServer::State {
    httplib::Server server;
    std::thread thread;
    int port = 0;
    mutable std::mutex lock;
    QMap<QString, Script> scripts;
    QList<Request> requests;
    int abandoned = 0;
    QSet<QByteArray> openGates;
    bool stopping = false;
    std::condition_variable gateOpened;

    void handle(const httplib::Request &request, httplib::Response &response);
};

QString ScriptedServer::Request::queryValue(const QString &name) const
{
    for (const auto &[key, value] : query) {
        if (key == name)
            return value;
    }
    return {};
}

ScriptedServer::ScriptedServer() : d(std::make_unique<State>())
{
    d->server.set_keep_alive_timeout(1);
    const auto handler = [this](const httplib::Request &request, httplib::Response &response) {
        d->handle(request, response);
    };
    d->server.Get(".*", handler);
    d->server.Post(".*", handler);
    d->server.Patch(".*", handler);
    d->server.Put(".*", handler);
    d->server.Delete(".*", handler);
    d->port = d->server.bind_to_any_port("127.0.0.1");
    d->thread = std::thread([this] { d->server.listen_after_bind(); });
    // The socket already listens; wait (ten seconds at most) for the accept loop, so that stop()
    // always finds it running.
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    while (!d->server.is_running() && std::chrono::steady_clock::now() < deadline)
        std::this_thread::yield();
}

ScriptedServer::~ScriptedServer()
{
    {
        // Replies held at a gate end now, so that the server's threads can be joined.
        std::lock_guard guard(d->lock);
        d->stopping = true;
    }
    d->gateOpened.notify_all();
    d->server.stop();
    if (d->thread.joinable())
        d->thread.join();
}

QUrl ScriptedServer::baseUrl() const
{
    return QUrl(QStringLiteral("http://127.0.0.1:%1").arg(d->port));
}

int ScriptedServer::port() const
{
    return d->port;
}

void ScriptedServer::reply(const QByteArray &method, const QString &path, int status,
                           const QByteArray &body, const QByteArray &contentType,
                           const QList<std::pair<QByteArray, QByteArray>> &headers)
{
    std::lock_guard guard(d->lock);
    Script script;
    script.status = status;
    script.body = body;
    script.contentType = contentType;
    script.headers = headers;
    d->scripts.insert(key(method, path), script);
}

void ScriptedServer::stream(const QByteArray &method, const QString &path,
                            const QList<Chunk> &chunks, int status, const QByteArray &contentType)
{
    std::lock_guard guard(d->lock);
    Script script;
    script.status = status;
    script.contentType = contentType;
    script.chunks = chunks;
    script.streamed = true;
    d->scripts.insert(key(method, path), script);
}

void ScriptedServer::streamThenCut(const QByteArray &method, const QString &path,
                                   const QList<Chunk> &chunks)
{
    stream(method, path, chunks);
    std::lock_guard guard(d->lock);
    d->scripts[key(method, path)].cut = true;
}

void ScriptedServer::open(const QByteArray &gate)
{
    {
        std::lock_guard guard(d->lock);
        d->openGates.insert(gate);
    }
    d->gateOpened.notify_all();
}

QList<ScriptedServer::Request> ScriptedServer::requests() const
{
    std::lock_guard guard(d->lock);
    return d->requests;
}

ScriptedServer::Request ScriptedServer::lastRequest() const
{
    std::lock_guard guard(d->lock);
    return d->requests.isEmpty() ? Request{} : d->requests.last();
}

int ScriptedServer::requestCount() const
{
    std::lock_guard guard(d->lock);
    return int(d->requests.size());
}

int ScriptedServer::abandonedStreams() const
{
    std::lock_guard guard(d->lock);
    return d->abandoned;
}

void ScriptedServer::clear()
{
    std::lock_guard guard(d->lock);
    d->requests.clear();
    d->abandoned = 0;
}

void ScriptedServer::State::handle(const httplib::Request &request, httplib::Response &response)
{
    Request recorded;
    recorded.method = QByteArray::fromStdString(request.method);
    recorded.path = QString::fromStdString(request.path);
    recorded.body = QByteArray::fromStdString(request.body);
    for (const auto &[name, value] : request.headers)
        recorded.headers.insert(QByteArray::fromStdString(name).toLower(),
                                QByteArray::fromStdString(value));
    // The raw target keeps the query in the order it was written.
    const QByteArray target = QByteArray::fromStdString(request.target);
    const qsizetype mark = target.indexOf('?');
    if (mark >= 0) {
        const QUrlQuery query(QString::fromLatin1(target.mid(mark + 1)));
        for (const auto &[name, value] : query.queryItems(QUrl::FullyDecoded))
            recorded.query.append({name, value});
    }

    Script script;
    bool found = false;
    {
        std::lock_guard guard(lock);
        requests.append(recorded);
        const auto it = scripts.constFind(key(recorded.method, recorded.path));
        if (it != scripts.constEnd()) {
            script = *it;
            found = true;
        }
    }
    if (!found) {
        response.status = 404;
        response.set_content(R"({"error":"not scripted"})", "application/json");
        return;
    }
    response.status = script.status;
    for (const auto &[name, value] : script.headers)
        response.set_header(name.toStdString(), value.toStdString());
    if (!script.streamed) {
        response.set_content(script.body.toStdString(), script.contentType.toStdString());
        return;
    }
    const QList<Chunk> chunks = script.chunks;
    const bool cut = script.cut;
    response.set_chunked_content_provider(
        script.contentType.toStdString(), [this, chunks, cut](size_t, httplib::DataSink &sink) {
            for (const Chunk &chunk : chunks) {
                if (!chunk.gate.isEmpty()) {
                    // A test that never opens the gate gets its reply cut after a minute.
                    std::unique_lock held(lock);
                    if (!gateOpened.wait_for(
                            held, std::chrono::minutes(1),
                            [&] { return stopping || openGates.contains(chunk.gate); }) ||
                        stopping)
                        return false;
                }
                if (chunk.untilClientLeaves) {
                    std::unique_lock held(lock);
                    const auto deadline =
                        std::chrono::steady_clock::now() + std::chrono::seconds(10);
                    while (!stopping && sink.is_writable() &&
                           std::chrono::steady_clock::now() < deadline)
                        gateOpened.wait_for(held, std::chrono::milliseconds(10));
                }
                if (!sink.is_writable() ||
                    !sink.write(chunk.bytes.constData(), chunk.bytes.size())) {
                    std::lock_guard guard(lock);
                    ++abandoned;
                    return false;
                }
            }
            if (cut)
                return false; // drops the connection without the closing chunk
            sink.done();
            return true;
        });
}
