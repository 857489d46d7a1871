#pragma once
#include <functional>
#include <memory>
#include <QJsonObject>

namespace cardserver {

class Call;
struct StreamChannel;

// Writes server-sent events to a chunked reply: each event is one line
// "data: {json}" followed by a blank line, handed to the connection as it is produced.
// Safe to call from a writer's callbacks on any thread. The job runs on a thread of the
// server's bounded stream pool; at most a little buffered output waits per stream (send
// blocks while the client reads slowly). Once the client has gone away every later send
// returns false at once, and the job is expected to stop.
class EventStream {
public:
    explicit EventStream(std::shared_ptr<StreamChannel> channel) : m_channel(std::move(channel)) {}

    // False once the client has gone away.
    bool send(const QJsonObject &event);
    // False once the client has gone away (without sending anything).
    bool open() const;

    // The reply headers and the job for a stream whose whole job is `job`.
    static void start(Call &call, std::function<void(EventStream &)> job);

private:
    std::shared_ptr<StreamChannel> m_channel;
};

} // namespace cardserver
