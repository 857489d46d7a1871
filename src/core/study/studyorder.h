#pragma once

#include "records/card.h"

#include <QList>

namespace orvel {

// The order in which a session shows cards: cards never seen first, in the order given; then
// the lower streak first; then the lower share of right answers (known ÷ seen) first. Ties keep
// the order given (the sort is stable).
class StudyOrder {
public:
    static QList<Card> order(const QList<Card> &cards);
    // Whether card a is shown before card b (the comparison the order sorts by).
    static bool before(const Card &a, const Card &b);
};

} // namespace orvel
