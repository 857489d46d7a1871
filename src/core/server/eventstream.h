#pragma once

#include "records/json.h"
#include "servererror.h"
#include "streamreply.h"

#include <memory>
#include <optional>
#include <qcoro/qcorotask.h>
#include <QPointer>

namespace orvel {

// A typed event stream that its one consumer reads in order:
//
//     auto stream = api.addCardStreaming(deckId, input);
//     while (auto event = co_await stream.next()) { ... }
//
// next() gives the next event, or nothing once the stream has ended normally (the body ended, or
// the stream was cancelled). It throws the stream's error: APIError for a refused request (no
// events are delivered), TransportError for a broken connection, and APIError with status 0 for
// an event that could not be read, after the events before it. Dropping the stream aborts the
// request and closes the connection.
template <class Event> class EventStream {
public:
    explicit EventStream(std::unique_ptr<StreamReply> reply) : m_reply(std::move(reply)) {}
    EventStream(EventStream &&) noexcept = default;
    EventStream &operator=(EventStream &&) noexcept = default;

    QCoro::Task<std::optional<Event>> next()
    {
        StreamReply *reply = m_reply.get();
        for (;;) {
            if (reply->hasPayload()) {
                const QByteArray payload = reply->takePayload();
                try {
                    co_return json::decode<Event>(payload);
                } catch (const json::DecodeError &) {
                    reply->fail(std::make_exception_ptr(APIError(0, APIError::couldNotRead())));
                }
            }
            if (reply->isDone()) {
                if (std::exception_ptr error = reply->takeError())
                    std::rethrow_exception(error);
                co_return std::nullopt;
            }
            co_await reply->nextChange();
        }
    }

    // Ends the stream as if its body had ended; a pending next() then yields nothing.
    void cancel() { m_reply->cancel(); }
    // A handle through which another owner (a screen) can cancel the stream while a coroutine
    // reads it; it turns null once the stream is gone.
    QPointer<StreamReply> handle() const { return m_reply.get(); }

private:
    std::unique_ptr<StreamReply> m_reply;
};

} // namespace orvel
