#include "study/studyorder.h"

#include <algorithm>
#include <numeric>
#include <vector>

namespace orvel {

namespace {

// What the comparison reads of a card, packed so that sorting moves small keys, not cards.
struct Key {
    int seen;
    int streak;
    double ratio;
    qsizetype index;
};

bool keyBefore(const Key &a, const Key &b)
{
    if (a.seen == 0 || b.seen == 0)
        return a.seen < b.seen;
    if (a.streak != b.streak)
        return a.streak < b.streak;
    return a.ratio < b.ratio;
}

Key keyOf(const Card &card, qsizetype index)
{
    const double ratio = card.seen > 0 ? double(card.known) / double(card.seen) : 0.0;
    return {card.seen, card.streak, ratio, index};
}

} // namespace

bool StudyOrder::before(const Card &a, const Card &b)
{
    return keyBefore(keyOf(a, 0), keyOf(b, 0));
}

QList<Card> StudyOrder::order(const QList<Card> &cards)
{
    std::vector<Key> keys;
    keys.reserve(size_t(cards.size()));
    for (qsizetype i = 0; i < cards.size(); ++i)
        keys.push_back(keyOf(cards[i], i));
    std::stable_sort(keys.begin(), keys.end(), keyBefore);
    QList<Card> ordered;
    ordered.reserve(cards.size());
    for (const Key &key : keys)
        ordered.append(cards[key.index]);
    return ordered;
}

} // namespace orvel
