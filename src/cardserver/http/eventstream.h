#pragma once
#include <httplib.h>
#include <mutex>
#include <QJsonObject>

namespace cardserver {

class Call;

// Writes server-sent events to a chunked reply: each event is one line
// "data: {json}" followed by a blank line, written to the socket as it is produced.
// Safe to call from a writer's callbacks on any thread. Once the client has gone away every
// later send is dropped quietly: the job itself goes on, since what it stores is the
// learner's either way.
class EventStream {
public:
    explicit EventStream(httplib::DataSink &sink) : m_sink(sink) {}

    // False once the client has gone away.
    bool send(const QJsonObject &event);

    // The reply headers and provider for a stream whose whole job is `job`.
    static void start(Call &call, std::function<void(EventStream &)> job);

private:
    httplib::DataSink &m_sink;
    std::mutex m_lock;
    bool m_open = true;
};

} // namespace cardserver
