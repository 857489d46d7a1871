#include "library/cardlist.h"

#include "app/services.h"
#include "library/cardchanges.h"
#include "library/cardkinds.h"
#include "server/apiclient.h"

#include <QPointer>
#include <QVariantMap>

namespace orvel {

namespace {
CardFilter::Learned filterChoice(CardList::LearnedFilter learned)
{
    switch (learned) {
    case CardList::LearnedFilter::Learned:
        return CardFilter::Learned::Learned;
    case CardList::LearnedFilter::NotLearned:
        return CardFilter::Learned::NotLearned;
    case CardList::LearnedFilter::Any:
        break;
    }
    return CardFilter::Learned::Any;
}
} // namespace

CardList::CardList(QObject *parent)
    : QAbstractListModel(parent), m_api(Services::current().api()),
      m_calls(this, &CardList::loadingChanged, &CardList::troubleChanged)
{
    // A card answered in a study session (or changed anywhere else) shows its new counts here.
    connect(&CardChanges::shared(), &CardChanges::changed, this, &CardList::replaceCard);
    // A card made elsewhere (from a note line) goes first in its deck's list, as a written one
    // does; restoreCard ignores other decks and cards already listed.
    connect(&CardChanges::shared(), &CardChanges::added, this,
            [this](const Card &card) { restoreCard(card, 0); });
}

int CardList::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(m_shown.size());
}

QVariant CardList::data(const QModelIndex &index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid | CheckIndexOption::ParentIsInvalid))
        return {};
    const Card &card = m_deck->cards[m_shown[index.row()]];
    switch (role) {
    case Qt::DisplayRole:
    case TermRole:
        return card.term;
    case IdRole:
        return card.id;
    case ArticleRole:
        return card.article();
    case TranslationRole:
        return card.translation;
    case ReadingRole:
        return card.reading;
    case KindRole:
        return wordTypeRawValue(wordTypeFromPartOfSpeech(card.partOfSpeech));
    case BadgeRole:
        return cardkinds::badge(wordTypeFromPartOfSpeech(card.partOfSpeech));
    case LearnedRole:
        return CardFilter::isLearned(card);
    default:
        return {};
    }
}

QHash<int, QByteArray> CardList::roleNames() const
{
    return {{IdRole, "cardId"},       {TermRole, "term"},
            {ArticleRole, "article"}, {TranslationRole, "translation"},
            {ReadingRole, "reading"}, {KindRole, "kind"},
            {BadgeRole, "badge"},     {LearnedRole, "learned"}};
}

QCoro::Task<> CardList::load(int deckId)
{
    const bool anotherDeck = deckId != this->deckId();
    if (anotherDeck) {
        m_kind.reset();
        m_query.clear();
        m_learned = LearnedFilter::Any;
        m_selection.reset();
        emit kindChanged();
        emit queryChanged();
        emit learnedChanged();
        emit selectionChanged();
        m_loadingId = deckId;
        setDeck(std::nullopt);
    }
    auto loaded = co_await m_calls.run(m_api.deck(deckId), CallOptions().latest());
    if (loaded.gone())
        co_return;
    if (!loaded) {
        setDeck(std::nullopt);
        co_return;
    }
    setDeck(std::move(loaded.value()));
    if (m_selection && deckIndexOf(*m_selection) < 0)
        select(0);
    emit deckLoaded(deckId);
}

void CardList::open(int deckId)
{
    load(deckId);
}

void CardList::close()
{
    m_calls.abandonLatest();
    m_loadingId = 0;
    m_calls.setTrouble({});
    select(0);
    setDeck(std::nullopt);
}

void CardList::setDeck(std::optional<Deck> deck)
{
    if (!deck && !m_deck)
        return;
    m_deck = std::move(deck);
    m_filter.reset(m_deck ? m_deck->cards : QList<Card>{});
    emit deckChanged();
    emit cardsChanged();
    refilter();
    emit selectionChanged();
}

void CardList::refilter()
{
    const int before = count();
    beginResetModel();
    m_shown =
        m_deck ? m_filter.shown(m_kind, m_query, filterChoice(m_learned)) : QList<qsizetype>{};
    endResetModel();
    if (count() != before)
        emit countChanged();
}

int CardList::learnedCount() const
{
    if (!m_deck)
        return 0;
    return int(std::count_if(m_deck->cards.begin(), m_deck->cards.end(), CardFilter::isLearned));
}

QString CardList::summary() const
{
    const int cards = total();
    return QString::number(cards) +
           (cards == 1 ? QStringLiteral(" card") : QStringLiteral(" cards")) +
           QStringLiteral(" · ") + QString::number(learnedCount()) + QStringLiteral(" learned");
}

QVariantList CardList::kindOptions() const
{
    QVariantList options{QVariantMap{{QStringLiteral("value"), QString()},
                                     {QStringLiteral("label"), QStringLiteral("All kinds")}}};
    if (!m_deck)
        return options;
    for (WordType type : cardkinds::present(m_deck->cards))
        options.append(QVariantMap{{QStringLiteral("value"), wordTypeRawValue(type)},
                                   {QStringLiteral("label"), cardkinds::pluralLabel(type)}});
    return options;
}

QString CardList::kind() const
{
    return m_kind ? wordTypeRawValue(*m_kind) : QString();
}

void CardList::setKind(const QString &kind)
{
    const std::optional<WordType> type = wordTypeFromRawValue(kind);
    if (type == m_kind)
        return;
    m_kind = type;
    emit kindChanged();
    refilter();
}

QString CardList::kindLabel() const
{
    return m_kind ? cardkinds::pluralLabel(*m_kind) : QStringLiteral("All kinds");
}

void CardList::setQuery(const QString &query)
{
    if (query == m_query)
        return;
    m_query = query;
    emit queryChanged();
    refilter();
}

void CardList::setLearned(LearnedFilter learned)
{
    if (learned == m_learned)
        return;
    m_learned = learned;
    emit learnedChanged();
    refilter();
}

void CardList::select(int cardId)
{
    std::optional<int> selection;
    if (cardId != 0 && deckIndexOf(cardId) >= 0)
        selection = cardId;
    if (selection == m_selection)
        return;
    m_selection = selection;
    emit selectionChanged();
}

Card CardList::selectedCard() const
{
    const qsizetype index = m_selection ? deckIndexOf(*m_selection) : -1;
    return index >= 0 ? m_deck->cards[index] : Card{};
}

int CardList::rowOf(int cardId) const
{
    const qsizetype index = deckIndexOf(cardId);
    return index < 0 ? -1 : int(m_shown.indexOf(index));
}

Card CardList::cardAt(int row) const
{
    if (row < 0 || row >= m_shown.size())
        return {};
    return m_deck->cards[m_shown[row]];
}

qsizetype CardList::deckIndexOf(int cardId) const
{
    if (!m_deck)
        return -1;
    const QList<Card> &cards = m_deck->cards;
    for (qsizetype i = 0; i < cards.size(); ++i)
        if (cards[i].id == cardId)
            return i;
    return -1;
}

void CardList::replaceCard(const Card &card)
{
    const qsizetype index = deckIndexOf(card.id);
    if (index < 0 || card.deckId != m_deck->id)
        return;
    m_deck->cards[index] = card;
    m_filter.replace(index, card);
    const bool stillShown = m_shown.contains(index);
    // The new version may fall out of (or into) the filters; the row stays where it is when it
    // still belongs, so the learner's place in the list is kept.
    const QList<qsizetype> shown = m_filter.shown(m_kind, m_query, filterChoice(m_learned));
    if (shown == m_shown) {
        if (stillShown) {
            const QModelIndex row = this->index(int(m_shown.indexOf(index)));
            emit dataChanged(row, row);
        }
    } else {
        refilter();
    }
    emit cardsChanged();
    emit cardReplaced(card);
    if (m_selection == card.id)
        emit selectionChanged();
}

std::optional<std::pair<Card, qsizetype>> CardList::takeCard(int cardId)
{
    const qsizetype index = deckIndexOf(cardId);
    if (index < 0)
        return std::nullopt;
    Card card = m_deck->cards[index];
    const qsizetype row = m_shown.indexOf(index);
    if (row >= 0)
        beginRemoveRows({}, int(row), int(row));
    m_deck->cards.remove(index);
    m_filter.remove(index);
    if (row >= 0)
        m_shown.remove(row);
    for (qsizetype &shown : m_shown)
        if (shown > index)
            --shown;
    if (row >= 0) {
        endRemoveRows();
        emit countChanged();
    }
    emit cardsChanged();
    if (m_selection == cardId) {
        m_selection.reset();
        emit selectionChanged();
    }
    return std::pair{card, index};
}

bool CardList::restoreCard(const Card &card, qsizetype index)
{
    if (!m_deck || card.deckId != m_deck->id || deckIndexOf(card.id) >= 0)
        return false;
    const qsizetype at = std::clamp<qsizetype>(index, 0, m_deck->cards.size());
    m_deck->cards.insert(at, card);
    m_filter.insert(at, card);
    for (qsizetype &shown : m_shown)
        if (shown >= at)
            ++shown;
    // Only the restored card is new, so the shown rows gain at most that one row.
    const QList<qsizetype> shown = m_filter.shown(m_kind, m_query, filterChoice(m_learned));
    const qsizetype row = shown.indexOf(at);
    if (row >= 0) {
        beginInsertRows({}, int(row), int(row));
        m_shown = shown;
        endInsertRows();
        emit countChanged();
    }
    emit cardsChanged();
    return true;
}

} // namespace orvel
