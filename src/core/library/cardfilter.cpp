#include "library/cardfilter.h"

#include <algorithm>

namespace orvel {

bool CardFilter::isLearned(const Card &card)
{
    return card.streak >= learnedStreak;
}

CardFilter::Entry CardFilter::entryFor(const Card &card)
{
    return Entry{card.term.toLower(), card.translation.toLower(), card.reading.toLower(),
                 wordTypeFromPartOfSpeech(card.partOfSpeech), isLearned(card)};
}

void CardFilter::reset(const QList<Card> &cards)
{
    m_entries.clear();
    m_entries.reserve(cards.size());
    for (const Card &card : cards)
        m_entries.append(entryFor(card));
}

void CardFilter::insert(qsizetype index, const Card &card)
{
    m_entries.insert(std::clamp<qsizetype>(index, 0, m_entries.size()), entryFor(card));
}

void CardFilter::remove(qsizetype index)
{
    if (index >= 0 && index < m_entries.size())
        m_entries.remove(index);
}

void CardFilter::replace(qsizetype index, const Card &card)
{
    if (index >= 0 && index < m_entries.size())
        m_entries[index] = entryFor(card);
}

QList<qsizetype> CardFilter::shown(std::optional<WordType> kind, const QString &query,
                                   Learned learned) const
{
    const QString needle = query.toLower();
    QList<qsizetype> indexes;
    indexes.reserve(m_entries.size());
    for (qsizetype i = 0; i < m_entries.size(); ++i) {
        const Entry &entry = m_entries[i];
        if (kind && entry.kind != *kind)
            continue;
        if (!needle.isEmpty() && !entry.term.contains(needle) &&
            !entry.translation.contains(needle) && !entry.reading.contains(needle))
            continue;
        if (learned == Learned::Learned && !entry.learned)
            continue;
        if (learned == Learned::NotLearned && entry.learned)
            continue;
        indexes.append(i);
    }
    return indexes;
}

} // namespace orvel
