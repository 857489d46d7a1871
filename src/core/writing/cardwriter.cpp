#include "writing/cardwriter.h"

#include "app/services.h"
#include "server/apiclient.h"

#include <QMetaObject>

namespace orvel {

CardWriter::CardWriter(QObject *parent) : QObject(parent), m_api(Services::current().api()) {}

CardWriter::~CardWriter()
{
    *m_alive = false;
    // The reading task wakes from the event loop, sees this writer gone and drops the stream,
    // which closes the connection.
    if (m_stream) {
        QPointer<StreamReply> stream = m_stream;
        QMetaObject::invokeMethod(
            stream, [stream] { stream->cancel(); }, Qt::QueuedConnection);
    }
}

bool CardWriter::start(int deckId, const QString &input)
{
    if (m_busy || input.isEmpty())
        return false;
    m_writing = Writing::begin(input);
    m_narration.clear();
    setBusy(true);
    emit writingChanged();
    emit narrationChanged();
    run(deckId, input);
    return true;
}

QCoro::Task<> CardWriter::run(int deckId, QString input)
{
    const std::shared_ptr<bool> alive = m_alive;
    try {
        EventStream<CardEvent> stream = m_api.addCardStreaming(deckId, input);
        m_stream = stream.handle();
        while (std::optional<CardEvent> event = co_await stream.next()) {
            if (!*alive)
                co_return;
            if (m_writing.take(*event))
                emit writingChanged();
            if (const std::optional<QString> line = Writing::narrationFor(*event)) {
                m_narration = *line;
                emit narrationChanged();
            }
            if (event->kind == CardEvent::Kind::Card)
                emit written(event->card, deckId);
            else if (event->kind == CardEvent::Kind::Failed)
                emit failed(event->message);
        }
    } catch (const ServerError &error) {
        if (!*alive)
            co_return;
        emit refused(error.message());
    }
    if (!*alive)
        co_return;
    m_stream = nullptr;
    setBusy(false);
    emit finished();
}

void CardWriter::setBusy(bool busy)
{
    if (m_busy == busy)
        return;
    m_busy = busy;
    emit busyChanged();
}

} // namespace orvel
