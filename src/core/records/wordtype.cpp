#include "records/wordtype.h"

#include "records/rawvalues.h"

#include <initializer_list>
#include <utility>

namespace orvel {

namespace {

constexpr auto rawWordTypes = rawValues<WordType>(
    std::pair{WordType::Noun, u"noun"}, std::pair{WordType::Verb, u"verb"},
    std::pair{WordType::Adjective, u"adjective"}, std::pair{WordType::Adverb, u"adverb"},
    std::pair{WordType::Phrase, u"phrase"}, std::pair{WordType::Function, u"function"},
    std::pair{WordType::Other, u"other"});

struct FragmentGroup {
    WordType type;
    std::initializer_list<const char16_t *> fragments;
};

// Tested in this order; the first group with a fragment anywhere in the text wins. Adverbs come
// before verbs ("adverb" contains "verb") and adjectives; nouns come before function words, so
// "pronoun" is a noun.
const FragmentGroup groups[] = {
    {WordType::Adverb, {u"adverb", u"advérbio", u"adverbio"}},
    {WordType::Adjective, {u"adject", u"adjet", u"adjekt", u"adjektiv", u"adjetivo", u"adjectivo"}},
    {WordType::Verb, {u"verb", u"verbo", u"verbe"}},
    {WordType::Noun, {u"noun", u"substantiv", u"nome", u"sustantivo", u"名詞"}},
    {WordType::Phrase, {u"phrase", u"expression", u"idiom", u"locu", u"saying", u"expressão"}},
    {WordType::Function,
     {u"prepos", u"conjun", u"pronoun", u"pronome", u"article", u"artigo", u"determiner",
      u"particle", u"numeral", u"interjec"}},
};

} // namespace

std::array<WordType, 7> allWordTypes()
{
    return rawWordTypes.all();
}

QString wordTypeRawValue(WordType type)
{
    return rawWordTypes.of(type);
}

std::optional<WordType> wordTypeFromRawValue(QStringView raw)
{
    return rawWordTypes.find(raw);
}

WordType wordTypeFromPartOfSpeech(QStringView partOfSpeech)
{
    const QString lowered = partOfSpeech.toString().toLower();
    for (const FragmentGroup &group : groups)
        for (const char16_t *fragment : group.fragments)
            if (lowered.contains(QStringView(fragment)))
                return group.type;
    return WordType::Other;
}

} // namespace orvel
