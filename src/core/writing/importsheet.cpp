#include "writing/importsheet.h"

#include "app/services.h"
#include "server/apiclient.h"
#include "writing/writingtexts.h"

#include <QMetaObject>
#include <QVariantMap>

namespace orvel {

namespace {

// The term of a batch event, or, when the server left it out, the word sent at its index.
QString termAt(const QList<BatchWord> &words, int index, const QString &term)
{
    return !term.isEmpty() || index < 0 || index >= words.size() ? term : words[index].term;
}

} // namespace

ImportSheet::ImportSheet(int deckId, QString languageName, QString seed, Wrote wrote,
                         QObject *parent)
    : QObject(parent), m_api(Services::current().api()), m_deckId(deckId),
      m_languageName(std::move(languageName)), m_wrote(std::move(wrote)), m_text(std::move(seed)),
      m_candidates(new ImportCandidates(this))
{
    connect(m_candidates, &ImportCandidates::chosenChanged, this, &ImportSheet::writeLabelChanged);
}

ImportSheet::~ImportSheet()
{
    *m_alive = false;
    cancelStream();
}

void ImportSheet::cancelStream()
{
    // The reading task wakes from the event loop and finds the stream ended; cancelling from
    // here, inside whatever destroys the sheet, would resume it on this stack.
    if (m_stream) {
        QPointer<StreamReply> stream = m_stream;
        QMetaObject::invokeMethod(
            stream, [stream] { stream->cancel(); }, Qt::QueuedConnection);
    }
}

QString ImportSheet::title() const
{
    return writingtexts::importTitle();
}

QString ImportSheet::placeholder() const
{
    return writingtexts::importPlaceholder();
}

void ImportSheet::setText(const QString &text)
{
    if (m_text == text)
        return;
    changeFinding([&] { m_text = text; });
    emit textChanged();
}

void ImportSheet::changeFinding(const std::function<void()> &change)
{
    const bool could = canFind();
    change();
    if (could != canFind())
        emit canFindChanged();
}

QString ImportSheet::characterCount() const
{
    qsizetype count = 0;
    for (const QChar c : m_text)
        count += c.isLowSurrogate() ? 0 : 1;
    return writingtexts::characters(count);
}

bool ImportSheet::canFind() const
{
    return !m_busy && m_stage == Stage::Paste && !m_text.trimmed().isEmpty();
}

QString ImportSheet::subtitle() const
{
    switch (m_stage) {
    case Stage::Paste:
        return writingtexts::pasteSubtitle(m_languageName);
    case Stage::Choose:
        return m_summary.isEmpty() ? writingtexts::chooseWhatToKeep() : m_summary;
    case Stage::Writing:
        return writingtexts::writingOf(m_done, m_total);
    }
    return {};
}

QString ImportSheet::unreadNotice() const
{
    return m_unread > 0 ? writingtexts::unreadNotice(m_unread) : QString();
}

QString ImportSheet::skippedNotice() const
{
    return m_skipped > 0 ? writingtexts::alreadyInTheDeck(m_skipped) : QString();
}

QString ImportSheet::writeLabel() const
{
    return writingtexts::writeCards(m_candidates->chosenCount());
}

QVariantList ImportSheet::writtenCards() const
{
    QVariantList list;
    for (auto card = m_written.crbegin(); card != m_written.crend(); ++card)
        list.append(QVariantMap{{QStringLiteral("term"), card->term},
                                {QStringLiteral("translation"), card->translation}});
    return list;
}

QVariantList ImportSheet::passedWords(bool failed) const
{
    QVariantList list;
    for (const Passed &word : m_passed)
        if (word.failed == failed)
            list.append(QVariantMap{{QStringLiteral("term"), word.term},
                                    {QStringLiteral("why"), word.why}});
    return list;
}

QVariantMap ImportSheet::texts() const
{
    return {{QStringLiteral("find"), writingtexts::findWords()},
            {QStringLiteral("cancel"), writingtexts::cancel()},
            {QStringLiteral("none"), writingtexts::none()},
            {QStringLiteral("back"), writingtexts::back()},
            {QStringLiteral("done"), writingtexts::done()},
            {QStringLiteral("written"), writingtexts::writtenHeading()},
            {QStringLiteral("skipped"), writingtexts::passedOver()},
            {QStringLiteral("failed"), writingtexts::notWritten()}};
}

void ImportSheet::find()
{
    findTask();
}

QCoro::Task<> ImportSheet::findTask()
{
    if (m_busy || m_stage != Stage::Paste || m_text.trimmed().isEmpty())
        co_return;
    const std::shared_ptr<bool> alive = m_alive;
    setBusy(true);
    setTrouble({});
    m_candidates->clear();
    setFound({}, 0, 0);
    bool found = false;
    try {
        EventStream<ExtractEvent> stream = m_api.extract(m_deckId, m_text);
        m_stream = stream.handle();
        while (std::optional<ExtractEvent> event = co_await stream.next()) {
            if (!*alive)
                co_return;
            switch (event->kind) {
            case ExtractEvent::Kind::Word:
                m_candidates->append(event->word);
                break;
            case ExtractEvent::Kind::Failed:
                setTrouble(event->message);
                break;
            case ExtractEvent::Kind::Done:
                m_candidates->reset(event->words);
                setFound(event->summary, event->skipped, event->unread);
                found = true;
                break;
            case ExtractEvent::Kind::Reading:
            case ExtractEvent::Kind::Unknown:
                break;
            }
        }
    } catch (const ServerError &error) {
        if (!*alive)
            co_return;
        setTrouble(error.message());
    }
    if (!*alive)
        co_return;
    m_stream = nullptr;
    setBusy(false);
    // Without the server's last word the list may be partial: the sheet stays with the text.
    if (found && m_trouble.isEmpty())
        setStage(Stage::Choose);
    else if (!found && m_trouble.isEmpty())
        setTrouble(writingtexts::findBroke());
}

void ImportSheet::write()
{
    writeTask();
}

QCoro::Task<> ImportSheet::writeTask()
{
    const QList<Candidate> chosen = m_candidates->chosenWords();
    if (m_busy || m_stage != Stage::Choose || chosen.isEmpty())
        co_return;
    const std::shared_ptr<bool> alive = m_alive;
    setBusy(true);
    setTrouble({});
    m_total = int(chosen.size());
    m_done = 0;
    m_written.clear();
    m_passed.clear();
    m_writingTerm.clear();
    setStage(Stage::Writing);
    emit progressChanged();

    QList<BatchWord> words;
    words.reserve(chosen.size());
    for (const Candidate &word : chosen)
        words.append(BatchWord{word.term, word.sentence});
    bool ended = false;
    try {
        EventStream<BatchEvent> stream = m_api.addCards(m_deckId, words);
        m_stream = stream.handle();
        while (std::optional<BatchEvent> event = co_await stream.next()) {
            if (!*alive)
                co_return;
            switch (event->kind) {
            case BatchEvent::Kind::Start:
                m_total = event->total;
                break;
            case BatchEvent::Kind::Word:
                m_writingTerm = termAt(words, event->index, event->term);
                break;
            case BatchEvent::Kind::Card:
                m_written.append(event->card);
                ++m_done;
                if (m_wrote)
                    m_wrote({event->card});
                break;
            case BatchEvent::Kind::Skipped:
            case BatchEvent::Kind::Failed:
                pass(termAt(words, event->index, event->term), event->reason,
                     event->kind == BatchEvent::Kind::Failed);
                ++m_done;
                break;
            case BatchEvent::Kind::Done:
                ended = true;
                break;
            case BatchEvent::Kind::Unknown:
                break;
            }
            emit progressChanged();
            emit subtitleChanged();
        }
    } catch (const ServerError &error) {
        if (!*alive)
            co_return;
        setTrouble(error.message());
    }
    if (!*alive)
        co_return;
    m_stream = nullptr;
    m_writingTerm.clear();
    if (!ended && m_trouble.isEmpty())
        setTrouble(writingtexts::batchBroke());
    setBusy(false);
    emit progressChanged();
    if (m_closed)
        emit over();
}

void ImportSheet::back()
{
    if (m_stage != Stage::Choose || m_busy)
        return;
    setTrouble({});
    setStage(Stage::Paste);
}

void ImportSheet::close()
{
    if (m_closed)
        return;
    m_closed = true;
    emit closed();
    // Finding words is for this sheet only; a batch is the learner's cards and is read on.
    if (m_busy && m_stage != Stage::Writing) {
        *m_alive = false;
        cancelStream();
    }
    if (!m_busy || m_stage != Stage::Writing)
        emit over();
}

void ImportSheet::setStage(Stage stage)
{
    if (m_stage == stage)
        return;
    changeFinding([&] { m_stage = stage; });
    emit stageChanged();
    emit subtitleChanged();
}

void ImportSheet::setBusy(bool busy)
{
    if (m_busy == busy)
        return;
    changeFinding([&] { m_busy = busy; });
    emit busyChanged();
}

void ImportSheet::setTrouble(const QString &trouble)
{
    if (m_trouble == trouble)
        return;
    m_trouble = trouble;
    emit troubleChanged();
}

void ImportSheet::setFound(const QString &summary, int skipped, int unread)
{
    m_summary = summary;
    m_skipped = skipped;
    m_unread = unread;
    emit foundChanged();
    emit subtitleChanged();
}

void ImportSheet::pass(const QString &term, const QString &why, bool failed)
{
    Passed word;
    word.term = term;
    word.why = why;
    word.failed = failed;
    m_passed.append(word);
}

} // namespace orvel
