#pragma once

#include "eventlinereader.h"
#include "resumer.h"

#include <exception>
#include <QByteArray>
#include <QObject>
#include <QPointer>
#include <QQueue>

class QNetworkReply;

namespace orvel {

// The reading side of one event-stream request. It owns the network reply, splits its body into
// data-line payloads as bytes arrive, and records how the stream ended: normally, with an error
// (a status outside 200-299, or a transport failure), or cancelled (which counts as normal).
// Destroying it aborts the request and closes the connection.
class StreamReply : public QObject {
    Q_OBJECT
public:
    explicit StreamReply(QNetworkReply *reply, QObject *parent = nullptr);
    ~StreamReply() override;

    bool hasPayload() const { return !m_payloads.isEmpty(); }
    QByteArray takePayload() { return m_payloads.dequeue(); }
    // True once the body has ended and every payload has been taken.
    bool isDone() const { return m_ended && m_payloads.isEmpty(); }
    // The failure the stream ended with, if any (taken once).
    std::exception_ptr takeError();

    // Stops reading: the request is aborted, queued payloads are dropped and the stream ends
    // normally. Safe to call more than once.
    void cancel();
    // Ends the stream with an error of the consumer's own (an event that could not be read).
    void fail(std::exception_ptr error);

    // `co_await reply->nextChange()` suspends the one reading coroutine until something new can
    // be taken.
    Resumer::Awaiter nextChange() { return m_changes.wait(); }

signals:
    // Something new to take: a payload, or the end.
    void changed();

private:
    void readAvailable();
    void finish();
    int status() const;
    void end();
    // Emits changed() and wakes the waiting reader.
    void announce();

    QPointer<QNetworkReply> m_reply;
    EventLineReader m_reader;
    QQueue<QByteArray> m_payloads;
    QByteArray m_errorBody;
    std::exception_ptr m_error;
    bool m_ended = false;
    Resumer m_changes;
};

} // namespace orvel
