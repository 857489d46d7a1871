#include "study/studyview.h"

#include "server/apiclient.h"
#include "sound/speech.h"
#include "study/cardface.h"
#include "study/folderstudy.h"
#include "study/studyorder.h"
#include "study/studytexts.h"

#include <algorithm>
#include <QPointer>

#include "app/services.h"
#include "library/cardchanges.h"

namespace orvel {

StudyView::StudyView(QObject *parent)
    : QObject(parent), m_api(Services::current().api()), m_speech(Services::current().speech())
{}

StudyView::~StudyView() = default;

void StudyView::start(const DeckSummary &deck, const QList<Card> &cards)
{
    m_calls.abandonLatest();
    begin(deck.name, cards, {}, deck.language);
}

void StudyView::start(const StudySet &set)
{
    m_calls.abandonLatest();
    begin(set.title, set.cards, set.languages, QString());
}

void StudyView::studyDeck(const DeckSummary &deck)
{
    // The load starts first, so the emptied session already reads as loading.
    loadDeck(deck);
    reset(deck.name);
}

bool StudyView::studyDecks(const QString &deckIds)
{
    const QList<int> ids = FolderStudy::parseIds(deckIds);
    if (ids.isEmpty())
        return false;
    loadSet(FolderStudy::gather(m_api, QString(), ids));
    reset(QString());
    return true;
}

void StudyView::studyFolder(const Folder &folder, const QList<DeckSummary> &decks)
{
    loadSet(FolderStudy::gather(m_api, folder, decks));
    reset(folder.name);
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
    emit changed();
}

QCoro::Task<> StudyView::loadDeck(DeckSummary deck)
{
    const auto loaded = co_await m_calls.run(m_api.deck(deck.id), CallOptions().latest());
    if (loaded)
        begin(deck.name, loaded->cards, {}, deck.language);
}

QCoro::Task<> StudyView::loadSet(QCoro::Task<StudySet> gathering)
{
    const auto set = co_await m_calls.run(std::move(gathering), CallOptions().latest());
    if (set)
        begin(set->title, set->cards, set->languages, QString());
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
    m_calls.setTrouble({});
    emit changed();
    listen();
    readSettings();
}

QCoro::Task<> StudyView::readSettings()
{
    // Without the settings the card is simply not spoken when it turns.
    const auto preferences = co_await m_calls.run(m_api.preferences(), CallOptions().background());
    if (preferences && m_hearOnFlip != preferences->hearOnFlip) {
        m_hearOnFlip = preferences->hearOnFlip;
        emit hearOnFlipChanged();
    }
}

StudyView::State StudyView::state() const
{
    if (m_calls.working())
        return State::Loading;
    if (!m_calls.trouble().isEmpty())
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
    // The reply goes to the card lists through the notice board, not through this view, so it
    // arrives there even after the session was closed.
    try {
        CardChanges::shared().announce(co_await m_api.review(card.id, known));
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
