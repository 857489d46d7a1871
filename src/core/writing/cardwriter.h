#pragma once

#include "records/card.h"
#include "writing/writing.h"

#include <memory>
#include <qcoro/qcorotask.h>
#include <QObject>
#include <QPointer>

namespace orvel {

class APIClient;
class StreamReply;

// The one writing procedure behind the deck's composer and quick add: it asks the server to
// write a card from the learner's input and reads the events as they arrive, keeping a Writing
// record and the narration line up to date and reporting the outcome. One card at a time.
// Destroying the writer stops reading and closes the connection.
class CardWriter : public QObject {
    Q_OBJECT
public:
    explicit CardWriter(QObject *parent = nullptr);
    ~CardWriter() override;

    bool busy() const { return m_busy; }
    const Writing &writing() const { return m_writing; }
    QString narration() const { return m_narration; }

    // Starts writing a card into the deck from the (already trimmed) input. False, with nothing
    // started, while another card is being written or when the input is empty.
    bool start(int deckId, const QString &input);

signals:
    // Writing started (busy) or ended (not busy).
    void busyChanged();
    // The Writing record changed (a part arrived, or the server gave up).
    void writingChanged();
    void narrationChanged();
    // The finished card, written into the deck.
    void written(const orvel::Card &card, int deckId);
    // The server gave up on the card (a failed event); the message is shown as it stands.
    void failed(const QString &message);
    // The request failed before or while streaming: refused, cut, or unreadable.
    void refused(const QString &message);
    // The stream ended, whatever its outcome.
    void finished();

private:
    QCoro::Task<> run(int deckId, QString input);
    void setBusy(bool busy);

    APIClient &m_api;
    bool m_busy = false;
    Writing m_writing;
    QString m_narration;
    QPointer<StreamReply> m_stream;
    // Shared with the reading task, which stops touching this object once it is false.
    std::shared_ptr<bool> m_alive = std::make_shared<bool>(true);
};

} // namespace orvel
