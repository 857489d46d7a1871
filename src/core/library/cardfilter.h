#pragma once

#include "records/card.h"
#include "records/wordtype.h"

#include <optional>
#include <QList>
#include <QString>

namespace orvel {

// Which cards of a deck the list shows. It keeps, per card, what the filters test (the lower-cased
// term, translation and reading, the kind and whether the card is learned), so a keystroke in the
// search field costs one pass of substring tests and nothing else. Callers keep it in step with
// the deck's list through reset(), insert(), remove() and replace().
class CardFilter {
public:
    // The second filter of the list: none, "Learned" or "Not learned yet".
    enum class Learned { Any, Learned, NotLearned };

    // A card is learned when the learner answered "Knew it" on its last two reviews in a row
    // (streak of 2 or more). One lucky answer is not enough, and a miss puts the card back among
    // the ones not learned yet until it has been known twice running again.
    static bool isLearned(const Card &card);
    static constexpr int learnedStreak = 2;

    void reset(const QList<Card> &cards);
    void insert(qsizetype index, const Card &card);
    void remove(qsizetype index);
    void replace(qsizetype index, const Card &card);
    qsizetype size() const { return m_entries.size(); }

    // The indexes of the shown cards, in deck order: of the given kind (all kinds when none),
    // whose term, translation or reading contains the lower-cased query (case is folded, accents
    // are not: "hund" finds "Hund", "cafe" does not find "café"), learned or not as asked.
    QList<qsizetype> shown(std::optional<WordType> kind, const QString &query,
                           Learned learned) const;

private:
    struct Entry {
        QString term;
        QString translation;
        QString reading;
        WordType kind = WordType::Other;
        bool learned = false;
    };
    static Entry entryFor(const Card &card);

    QList<Entry> m_entries;
};

} // namespace orvel
