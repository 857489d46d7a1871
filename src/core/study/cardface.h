#pragma once

#include "records/card.h"

#include <QString>
#include <QVariantList>

namespace orvel {

// How a card reads on the study card: the word with its article, the kind line, the first
// example, and the rest of the card as headed sections.
class CardFace {
public:
    // "der Hund": the word with the article its gender gives, if any.
    static QString word(const Card &card);
    // "noun · masculine": the part of speech with the gender words "feminine" and "masculine"
    // recognised in the card's gender.
    static QString kindLine(const Card &card);
    // "Der Hund bellt laut. — The dog barks loudly.": the first example, or nothing.
    static QString example(const Card &card);
    // The rest of the card, each section a map {heading, lines}, empty sections left out:
    // what it means, usage notes, examples, related words and conjugations.
    static QVariantList rest(const Card &card);
};

} // namespace orvel
