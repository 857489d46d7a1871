#pragma once

#include <memory>
#include <QByteArray>
#include <QList>
#include <QMap>
#include <QString>
#include <QUrl>
#include <utility>

// An HTTP server on 127.0.0.1 that answers what a test scripts and records what it received.
// It runs on a thread of its own, so the client under test keeps the main thread and its event
// loop. Requests that match no script get 404 {"error": "not scripted"}.
class ScriptedServer {
public:
    struct Request {
        QByteArray method;
        QString path;
        QList<std::pair<QString, QString>> query;
        QMap<QByteArray, QByteArray> headers; // names in lower case
        QByteArray body;
        QByteArray header(const QByteArray &name) const { return headers.value(name.toLower()); }
        QString queryValue(const QString &name) const;
    };

    // One piece of a streamed body. A piece with a gate is held back until the test opens that
    // gate, so the test decides what the client has seen before the rest comes. A piece that
    // waits for the client to leave is held until the client closes the connection (ten seconds
    // at most), for tests of a client letting go of a stream.
    struct Chunk {
        QByteArray bytes;
        QByteArray gate = {};
        bool untilClientLeaves = false;
    };

    ScriptedServer();
    ~ScriptedServer();
    ScriptedServer(const ScriptedServer &) = delete;
    ScriptedServer &operator=(const ScriptedServer &) = delete;

    QUrl baseUrl() const;
    int port() const;

    // Answers method + path (no query) with a whole body.
    void reply(const QByteArray &method, const QString &path, int status, const QByteArray &body,
               const QByteArray &contentType = "application/json",
               const QList<std::pair<QByteArray, QByteArray>> &headers = {});
    // Answers method + path with a chunked body written piece by piece.
    void stream(const QByteArray &method, const QString &path, const QList<Chunk> &chunks,
                int status = 200, const QByteArray &contentType = "text/event-stream");
    // The same, closing the connection abruptly after the chunks instead of ending the body.
    void streamThenCut(const QByteArray &method, const QString &path, const QList<Chunk> &chunks);

    // Lets the pieces held at `gate` go, now and in every later reply.
    void open(const QByteArray &gate);

    QList<Request> requests() const;
    Request lastRequest() const;
    int requestCount() const;
    // How many streamed replies found their client gone before they were finished.
    int abandonedStreams() const;
    void clear();

private:
    struct State;
    std::unique_ptr<State> d;
};
