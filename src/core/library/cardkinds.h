#pragma once

#include "records/card.h"
#include "records/wordtype.h"

#include <QList>
#include <QString>

namespace orvel {

// How the card list names kinds of word.
namespace cardkinds {

// The kind menu's label: "nouns", "verbs", "adjectives", "adverbs", "phrases", "grammar" (for
// function words), "other".
QString pluralLabel(WordType type);
// A row's short badge: "adj.", "adv.", "phr.", "gram."; nouns, verbs and other words carry none.
QString badge(WordType type);
// The kinds that occur among the cards, in the order of WordType.
QList<WordType> present(const QList<Card> &cards);

} // namespace cardkinds

} // namespace orvel
