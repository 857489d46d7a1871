#pragma once

#include <QString>

namespace orvel::studytexts {

// The study screen's own wording, each text in one place.
inline QString turnHint()
{
    return QStringLiteral("click, or press space, to turn it over");
}
inline QString restHint()
{
    return QStringLiteral("click, or press E, for the rest of the card");
}
inline QString more()
{
    return QStringLiteral("more");
}
inline QString less()
{
    return QStringLiteral("less");
}
inline QString of()
{
    return QStringLiteral(" of ");
}
inline QString right()
{
    return QStringLiteral(" right, ");
}
inline QString toComeBackTo()
{
    return QStringLiteral(" to come back to");
}
inline QString nothingToStudy()
{
    return QStringLiteral("Nothing to study");
}
inline QString noCardsYet()
{
    return QStringLiteral("This deck has no cards yet.");
}
inline QString close()
{
    return QStringLiteral("Close");
}
inline QString didntKnow()
{
    return QStringLiteral("Didn’t know it");
}
inline QString knew()
{
    return QStringLiteral("Knew it");
}

} // namespace orvel::studytexts
