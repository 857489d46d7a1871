#include "study/studyview.h"

#include "server/apiclient.h"
#include "sound/speech.h"
#include "study/cardface.h"
#include "study/folderstudy.h"
#include "study/studyorder.h"
#include "study/studytexts.h"

#include <algorithm>
#include <QPointer>

namespace orvel {

StudyView::StudyView(QObject *parent) : StudyView(APIClient::shared(), Speech::shared(), parent) {}

StudyView::StudyView(APIClient &api, Speech &speech, QObject *parent)
    : QObject(parent), m_api(api), m_speech(speech)
{}

StudyView::~StudyView() = default;

void StudyView::setReviewed(std::function<void(const Card &)> reviewed)
{
    m_reviewed = std::move(reviewed);
}

void StudyView::start(const DeckSummary &deck, const QList<Card> &cards)
{
    ++m_load;
    begin(deck.name, cards, {}, deck.language);
}

void StudyView::start(const StudySet &set)
{
    ++m_load;
    begin(set.title, set.cards, set.languages, QString());
}

void StudyView::studyDeck(const DeckSummary &deck)
{
    reset(deck.name);
    loadDeck(deck, ++m_load);
}

bool StudyView::studyDecks(const QString &deckIds)
{
    const QList<int> ids = FolderStudy::parseIds(deckIds);
    if (ids.isEmpty())
        return false;
    reset(QString());
    loadSet(FolderStudy::gather(m_api, QString(), ids), ++m_load);
    return true;
}

void StudyView::studyFolder(const Folder &folder, const QList<DeckSummary> &decks)
{
    reset(folder.name);
    loadSet(FolderStudy::gather(m_api, folder, decks), ++m_load);
}

void StudyView::reset(const QString &title)
{
    m_speech.stop();
    m_title = title;
    m_queue.clear();
    m_languages.clear();
    m_fallbackLanguage.clear();
    m_index = 0;
    m_flipped = false;
    m_expanded = false;
    m_said.clear();
    m_trouble.clear();
    m_loading = true;
    emit changed();
}

void StudyView::fail(const QString &message)
{
    m_loading = false;
    m_trouble = message;
    emit changed();
}

QCoro::Task<> StudyView::loadDeck(DeckSummary deck, quint64 load)
{
    QPointer self(this);
    try {
        const Deck loaded = co_await m_api.deck(deck.id);
        if (self && m_load == load)
            begin(deck.name, loaded.cards, {}, deck.language);
    } catch (const ServerError &error) {
        if (self && m_load == load)
            fail(error.message());
    }
}

QCoro::Task<> StudyView::loadSet(QCoro::Task<StudySet> gathering, quint64 load)
{
    QPointer self(this);
    try {
        const StudySet set = co_await std::move(gathering);
        if (self && m_load == load)
            begin(set.title, set.cards, set.languages, QString());
    } catch (const ServerError &error) {
        if (self && m_load == load)
            fail(error.message());
    }
}

void StudyView::begin(const QString &title, const QList<Card> &cards,
                      const QHash<int, QString> &languages, const QString &fallbackLanguage)
{
    m_speech.stop();
    m_title = title;
    m_queue = StudyOrder::order(cards);
    m_languages = languages;
    m_fallbackLanguage = fallbackLanguage;
    m_index = 0;
    m_flipped = false;
    m_expanded = false;
    m_said.clear();
    m_trouble.clear();
    m_loading = false;
    emit changed();
    listen();
    readSettings();
}

QCoro::Task<> StudyView::readSettings()
{
    QPointer self(this);
    try {
        const Preferences preferences = co_await m_api.preferences();
        if (self && m_hearOnFlip != preferences.hearOnFlip) {
            m_hearOnFlip = preferences.hearOnFlip;
            emit hearOnFlipChanged();
        }
    } catch (const ServerError &) {
        // Without the settings the card is simply not spoken when it turns.
    }
}

StudyView::State StudyView::state() const
{
    if (m_loading)
        return State::Loading;
    if (!m_trouble.isEmpty())
        return State::Failed;
    if (m_queue.isEmpty())
        return State::Empty;
    if (finished())
        return State::Done;
    return m_flipped ? State::Back : State::Front;
}

QString StudyView::language() const
{
    if (!hasCard())
        return m_fallbackLanguage;
    return m_languages.value(m_queue[m_index].deckId, m_fallbackLanguage);
}

QString StudyView::word() const
{
    return hasCard() ? CardFace::word(m_queue[m_index]) : QString();
}

QString StudyView::kindLine() const
{
    return hasCard() ? CardFace::kindLine(m_queue[m_index]) : QString();
}

QString StudyView::example() const
{
    return hasCard() ? CardFace::example(m_queue[m_index]) : QString();
}

QVariantList StudyView::rest() const
{
    return hasCard() ? CardFace::rest(m_queue[m_index]) : QVariantList();
}

void StudyView::flip()
{
    if (!hasCard())
        return;
    m_flipped = !m_flipped;
    emit changed();
    if (m_flipped && m_hearOnFlip)
        m_speech.say(m_queue[m_index].term, language());
}

void StudyView::answer(bool known)
{
    if (!m_flipped || !hasCard())
        return;
    m_said.insert(int(m_index), known);
    m_speech.stop();
    sendReview(m_queue[m_index], known);
    m_flipped = false;
    m_expanded = false;
    ++m_index;
    emit changed();
    listen();
}

QCoro::Task<> StudyView::sendReview(Card card, bool known)
{
    // The opener's callback is held by this task, not read from the view, so a reply that
    // arrives after the session was closed still reaches the opener's list.
    const std::function<void(const Card &)> reviewed = m_reviewed;
    QPointer self(this);
    try {
        const Card updated = co_await m_api.review(card.id, known);
        if (reviewed)
            reviewed(updated);
        if (self)
            emit self->reviewed(updated);
    } catch (const ServerError &) {
        // The answer stays in the tally; the server's counts stay as they were.
    }
}

void StudyView::step(int by)
{
    moveTo(m_index + by);
}

void StudyView::moveTo(qsizetype index)
{
    if (index < 0 || index >= m_queue.size() || index == m_index)
        return;
    m_speech.stop();
    m_flipped = false;
    m_expanded = false;
    m_index = index;
    emit changed();
}

void StudyView::toggleExpanded()
{
    if (!hasCard() || !m_flipped)
        return;
    m_expanded = !m_expanded;
    emit changed();
}

void StudyView::click()
{
    if (m_flipped)
        toggleExpanded();
    else
        flip();
}

void StudyView::hear()
{
    if (hasCard())
        m_speech.say(m_queue[m_index].term, language());
}

void StudyView::listen()
{
    setListening(true);
    emit wantsKeys();
}

void StudyView::setListening(bool listening)
{
    if (m_listening == listening)
        return;
    m_listening = listening;
    emit listeningChanged();
}

int StudyView::knew() const
{
    return int(std::count(m_said.begin(), m_said.end(), true));
}

int StudyView::missed() const
{
    return int(std::count(m_said.begin(), m_said.end(), false));
}

QString StudyView::progress() const
{
    if (!hasCard())
        return QString();
    return QString::number(m_index + 1) + studytexts::of() + QString::number(m_queue.size());
}

QString StudyView::hint() const
{
    // Nothing to point at once the rest of the card is open.
    if (!hasCard() || m_expanded)
        return QString();
    return m_flipped ? studytexts::restHint() : studytexts::turnHint();
}

QString StudyView::moreLabel() const
{
    return m_expanded ? studytexts::less() : studytexts::more();
}

QString StudyView::tally() const
{
    return QString::number(knew()) + studytexts::right() + QString::number(missed()) +
           studytexts::toComeBackTo();
}

QString StudyView::emptyTitle()
{
    return studytexts::nothingToStudy();
}

QString StudyView::emptyLine()
{
    return studytexts::noCardsYet();
}

QString StudyView::closeLabel()
{
    return studytexts::close();
}

QString StudyView::didntKnowLabel()
{
    return studytexts::didntKnow();
}

QString StudyView::knewLabel()
{
    return studytexts::knew();
}

} // namespace orvel
