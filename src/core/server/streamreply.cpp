#include "streamreply.h"

#include "servererror.h"

#include <QNetworkReply>

namespace orvel {

StreamReply::StreamReply(QNetworkReply *reply, QObject *parent) : QObject(parent), m_reply(reply)
{
    connect(reply, &QNetworkReply::readyRead, this, &StreamReply::readAvailable);
    connect(reply, &QNetworkReply::finished, this, &StreamReply::finish);
}

StreamReply::~StreamReply()
{
    if (m_reply) {
        m_reply->disconnect(this);
        m_reply->abort();
        m_reply->deleteLater();
    }
}

int StreamReply::status() const
{
    return m_reply ? m_reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt() : 0;
}

void StreamReply::readAvailable()
{
    if (!m_reply || m_ended)
        return;
    const int code = status();
    const QByteArray bytes = m_reply->readAll();
    if (code != 0 && (code < 200 || code > 299)) {
        // A refused stream delivers no events; its body is the error's text.
        m_errorBody += bytes;
        return;
    }
    const QList<QByteArray> payloads = m_reader.feed(bytes);
    if (payloads.isEmpty())
        return;
    for (const QByteArray &payload : payloads)
        m_payloads.enqueue(payload);
    announce();
}

void StreamReply::finish()
{
    if (!m_reply || m_ended)
        return;
    readAvailable();
    const int code = status();
    if (code != 0 && (code < 200 || code > 299)) {
        m_payloads.clear();
        m_error = std::make_exception_ptr(APIError(code, APIError::messageFrom(m_errorBody, code)));
    } else if (m_reply->error() != QNetworkReply::NoError) {
        m_error =
            std::make_exception_ptr(TransportError(int(m_reply->error()), m_reply->errorString()));
    } else if (m_reader.midLine()) {
        // The connection closed in the middle of an event. Depending on when the socket's close
        // is noticed the network layer may not report it, so the cut is reported here.
        m_error = std::make_exception_ptr(
            TransportError(int(QNetworkReply::RemoteHostClosedError),
                           QStringLiteral("The connection closed in the middle of an event.")));
    }
    end();
}

void StreamReply::end()
{
    m_ended = true;
    if (m_reply) {
        m_reply->disconnect(this);
        m_reply->deleteLater();
        m_reply = nullptr;
    }
    announce();
}

void StreamReply::announce()
{
    emit changed();
    m_changes.wake();
}

std::exception_ptr StreamReply::takeError()
{
    return std::exchange(m_error, nullptr);
}

void StreamReply::cancel()
{
    // Whatever was still queued is dropped: the consumer asked for no more events.
    m_payloads.clear();
    m_error = nullptr;
    if (m_ended)
        return;
    if (m_reply) {
        m_reply->disconnect(this);
        m_reply->abort();
    }
    end();
}

void StreamReply::fail(std::exception_ptr error)
{
    // The body may already have ended with events still queued: the error then replaces the
    // normal end, and nothing after the failing event is delivered.
    m_payloads.clear();
    m_error = std::move(error);
    if (m_ended)
        return;
    if (m_reply) {
        m_reply->disconnect(this);
        m_reply->abort();
    }
    end();
}

} // namespace orvel
