#include "writing/composer.h"

#include "app/appstate.h"
#include "library/learnerinput.h"
#include "server/apiclient.h"
#include "writing/bytesheet.h"
#include "writing/cardwriter.h"
#include "writing/writingsheet.h"
#include "writing/writingtexts.h"

namespace orvel {

Composer::Composer(QObject *parent) : Composer(APIClient::shared(), parent) {}

Composer::Composer(APIClient &api, QObject *parent)
    : QObject(parent), m_api(api), m_writer(new CardWriter(api, this)),
      m_progress(new WritingSheet(this))
{
    connect(m_writer, &CardWriter::busyChanged, this, &Composer::addingChanged);
    connect(m_writer, &CardWriter::writingChanged, this, &Composer::takeWriting);
    connect(m_writer, &CardWriter::narrationChanged, this,
            [this] { setNarration(m_writer->narration()); });
    connect(m_writer, &CardWriter::written, this, [this](const Card &card) {
        putFirst({card});
        emit cardWritten(card);
    });
    connect(m_writer, &CardWriter::failed, this, &Composer::setRefused);
    connect(m_writer, &CardWriter::refused, this, &Composer::setRefused);
    connect(m_writer, &CardWriter::finished, this, [] {
        // The server may have changed the learner's settings while writing (a first card, a
        // quota); background bookkeeping, so a failure shows nothing.
        if (AppState *state = AppState::instance())
            state->adoptPreferences();
    });
    connect(m_progress, &WritingSheet::hidden, this, &Composer::hideWriting);
}

Composer::~Composer()
{
    *m_alive = false;
}

void Composer::setDeckId(int deckId)
{
    if (m_deckId == deckId)
        return;
    m_deckId = deckId;
    emit deckChanged();
}

void Composer::setLanguage(const QString &language)
{
    if (m_language == language)
        return;
    m_language = language;
    emit deckChanged();
}

void Composer::setCards(CardList *cards)
{
    if (m_cards == cards)
        return;
    m_cards = cards;
    emit cardsChanged();
}

void Composer::putFirst(const QList<Card> &cards)
{
    if (!m_cards)
        return;
    // Last first, so that the cards stand at the front in the order they came.
    for (auto card = cards.crbegin(); card != cards.crend(); ++card)
        m_cards->restoreCard(*card, 0);
}

void Composer::setInput(const QString &input)
{
    if (m_input == input)
        return;
    m_input = input;
    emit inputChanged();
}

bool Composer::adding() const
{
    return m_writer->busy();
}

QString Composer::askingText() const
{
    return m_asking ? writingtexts::askingFor(m_topicAsked) : QString();
}

QString Composer::placeholder() const
{
    return writingtexts::placeholder();
}

QString Composer::addHelp() const
{
    return writingtexts::addHelp();
}

QString Composer::teachHelp() const
{
    return writingtexts::teachHelp();
}

void Composer::add()
{
    const QString text = trimSpacesAndTabs(m_input);
    if (text.isEmpty() || adding() || m_deckId <= 0)
        return;
    setInput(QString());
    setRefused(QString());
    m_writingShown = true;
    m_writer->start(m_deckId, text);
}

void Composer::takeWriting()
{
    m_writing = m_writer->writing();
    m_progress->setWriting(*m_writing);
    emit writingChanged();
}

void Composer::hideWriting()
{
    if (!m_writingShown)
        return;
    m_writingShown = false;
    emit writingChanged();
}

void Composer::dismissWriting()
{
    if (adding()) {
        hideWriting();
        return;
    }
    if (!m_writing)
        return;
    m_writing.reset();
    m_writingShown = false;
    m_progress->setWriting(Writing{});
    emit writingChanged();
}

void Composer::askForByte()
{
    askForByteTask();
}

QCoro::Task<> Composer::askForByteTask()
{
    const QString topic = trimSpacesAndTabs(m_input);
    if (topic.isEmpty() || m_asking || m_deckId <= 0)
        co_return;
    const std::shared_ptr<bool> alive = m_alive;
    const int deckId = m_deckId;
    const QString language = m_language;
    setRefused(QString());
    setAsking(true, topic);
    try {
        Byte byte = co_await m_api.byte(deckId, topic);
        if (!*alive)
            co_return;
        QList<NoteSummary> notes = co_await m_api.notes(deckId);
        if (!*alive)
            co_return;
        m_deckNotes = notes;
        APIClient *api = &m_api;
        ByteSheet::Keep keep = [api, deckId, byte](QList<Kept> kept, bool context,
                                                   std::optional<int> into) {
            return api->keepByte(deckId, byte, std::move(kept), context, into);
        };
        auto *sheet =
            new ByteSheet(std::move(byte), language, std::move(notes), std::move(keep), this);
        connect(sheet, &ByteSheet::landed, this, [this](const Landed &landed) {
            if (landed.cards.isEmpty())
                return;
            putFirst(landed.cards);
            emit cardsLanded(landed.cards);
        });
        connect(sheet, &ByteSheet::closed, this, [this, sheet] {
            if (m_offer == sheet)
                setOffer(nullptr);
            sheet->deleteLater();
        });
        setOffer(sheet);
    } catch (const ServerError &error) {
        if (!*alive)
            co_return;
        setRefused(error.message());
    }
    setAsking(false, m_topicAsked);
}

void Composer::closeOffer()
{
    if (m_offer)
        m_offer->dismiss();
}

void Composer::setRefused(const QString &refused)
{
    if (m_refused == refused)
        return;
    m_refused = refused;
    emit refusedChanged();
}

void Composer::setNarration(const QString &narration)
{
    if (m_narration == narration)
        return;
    m_narration = narration;
    emit narrationChanged();
}

void Composer::setAsking(bool asking, const QString &topic)
{
    if (m_asking == asking && m_topicAsked == topic)
        return;
    m_asking = asking;
    m_topicAsked = topic;
    emit askingChanged();
}

void Composer::setOffer(ByteSheet *offer)
{
    if (m_offer == offer)
        return;
    m_offer = offer;
    emit offerChanged();
}

} // namespace orvel
