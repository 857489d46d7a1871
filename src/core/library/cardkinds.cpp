#include "library/cardkinds.h"

#include <array>

namespace orvel::cardkinds {

QString pluralLabel(WordType type)
{
    switch (type) {
    case WordType::Noun:
        return QStringLiteral("nouns");
    case WordType::Verb:
        return QStringLiteral("verbs");
    case WordType::Adjective:
        return QStringLiteral("adjectives");
    case WordType::Adverb:
        return QStringLiteral("adverbs");
    case WordType::Phrase:
        return QStringLiteral("phrases");
    case WordType::Function:
        return QStringLiteral("grammar");
    case WordType::Other:
        return QStringLiteral("other");
    }
    return {};
}

QString badge(WordType type)
{
    switch (type) {
    case WordType::Adjective:
        return QStringLiteral("adj.");
    case WordType::Adverb:
        return QStringLiteral("adv.");
    case WordType::Phrase:
        return QStringLiteral("phr.");
    case WordType::Function:
        return QStringLiteral("gram.");
    case WordType::Noun:
    case WordType::Verb:
    case WordType::Other:
        break;
    }
    return {};
}

QList<WordType> present(const QList<Card> &cards)
{
    std::array<bool, 7> seen{};
    for (const Card &card : cards)
        seen[size_t(wordTypeFromPartOfSpeech(card.partOfSpeech))] = true;
    QList<WordType> kinds;
    for (WordType type : allWordTypes())
        if (seen[size_t(type)])
            kinds.append(type);
    return kinds;
}

} // namespace orvel::cardkinds
