#pragma once

#include <QString>
#include <QStringView>

#include <array>
#include <optional>

namespace orvel {

// The client's classification of a card's free-text part of speech, used to group and label
// cards. The cases are listed in this order wherever all of them are shown.
enum class WordType { Noun, Verb, Adjective, Adverb, Phrase, Function, Other };

// Every case, in order.
std::array<WordType, 7> allWordTypes();
// "noun", "verb", "adjective", "adverb", "phrase", "function", "other".
QString wordTypeRawValue(WordType type);
std::optional<WordType> wordTypeFromRawValue(QStringView raw);

// Classifies a part of speech such as "Adverb", "phrasal verb" or "名詞" by the fragments it
// contains (see wordtype.cpp for the order of the tests).
WordType wordTypeFromPartOfSpeech(QStringView partOfSpeech);

} // namespace orvel
