#include "writing/composer.h"

#include "app/appstate.h"
#include "app/services.h"
#include "library/cardchanges.h"
#include "library/languagename.h"
#include "library/learnerinput.h"
#include "server/apiclient.h"
#include "writing/bytesheet.h"
#include "writing/cardwriter.h"
#include "writing/writingsheet.h"
#include "writing/writingtexts.h"

namespace orvel {

QCoro::Task<Composer::LessonOffer> Composer::lessonOffer(APIClient &api, int deckId, QString topic)
{
    LessonOffer offer;
    offer.byte = co_await api.byte(deckId, topic);
    offer.notes = co_await api.notes(deckId);
    co_return offer;
}

Composer::Composer(QObject *parent)
    : QObject(parent), m_services(Services::current()), m_writer(new CardWriter(this)),
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
    const auto writerRefused = [this](const QString &message) { m_calls.setTrouble(message); };
    connect(m_writer, &CardWriter::failed, this, writerRefused);
    connect(m_writer, &CardWriter::refused, this, writerRefused);
    connect(m_writer, &CardWriter::finished, this, [this] {
        // The server may have changed the learner's settings while writing (a first card, a
        // quota); background bookkeeping, so a failure shows nothing.
        m_services.state().adoptPreferences();
    });
    connect(m_progress, &WritingSheet::hidden, this, &Composer::hideWriting);
}

Composer::~Composer() = default;

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
    return asking() ? writingtexts::askingFor(m_topicAsked) : QString();
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

QString Composer::fromText() const
{
    return writingtexts::fromText();
}

QString Composer::fromTextHelp() const
{
    return writingtexts::fromTextHelp();
}

void Composer::add()
{
    const QString text = trimSpacesAndTabs(m_input);
    if (text.isEmpty() || adding() || m_deckId <= 0)
        return;
    setInput(QString());
    m_calls.setTrouble({});
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
    if (topic.isEmpty() || asking() || m_deckId <= 0)
        co_return;
    const int deckId = m_deckId;
    const QString language = m_language;
    m_topicAsked = topic;
    auto offer = co_await m_calls.run(lessonOffer(m_services.api(), deckId, topic));
    if (!offer)
        co_return;
    {
        m_deckNotes = offer->notes;
        APIClient *api = &m_services.api();
        ByteSheet::Keep keep = [api, deckId, byte = offer->byte](QList<Kept> kept, bool context,
                                                                 std::optional<int> into) {
            return api->keepByte(deckId, byte, std::move(kept), context, into);
        };
        auto *sheet = new ByteSheet(std::move(offer->byte), language, std::move(offer->notes),
                                    std::move(keep), this);
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
    }
}

void Composer::closeOffer()
{
    if (m_offer)
        m_offer->dismiss();
}

void Composer::addFromText(const QString &seed)
{
    if (m_deckId <= 0)
        return;
    if (m_import && m_import->deckId() == m_deckId) {
        if (!seed.isEmpty() && m_import->stage() == ImportSheet::Stage::Paste && !m_import->busy())
            m_import->setText(seed);
        return;
    }
    if (m_import)
        m_import->close();
    // Written cards go to their deck's list, wherever the learner is by then, and count on the
    // shelf: the same notice a card made anywhere else gives.
    auto *sheet = new ImportSheet(
        m_deckId, languageName(m_language), seed,
        [](const QList<Card> &cards) {
            for (const Card &card : cards)
                CardChanges::shared().announceAdded(card);
        },
        this);
    connect(sheet, &ImportSheet::closed, this, [this, sheet] {
        if (m_import == sheet) {
            m_import = nullptr;
            emit importingChanged();
        }
    });
    connect(sheet, &ImportSheet::over, sheet, &QObject::deleteLater);
    m_import = sheet;
    emit importingChanged();
}

void Composer::setNarration(const QString &narration)
{
    if (m_narration == narration)
        return;
    m_narration = narration;
    emit narrationChanged();
}

void Composer::setOffer(ByteSheet *offer)
{
    if (m_offer == offer)
        return;
    m_offer = offer;
    emit offerChanged();
}

} // namespace orvel
