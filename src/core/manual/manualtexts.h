#pragma once

#include <QString>

namespace orvel::manualtexts {

// The wording of the manual window and the Help menu, each text in one place.
inline QString windowTitle()
{
    return QStringLiteral("Orvel Manual");
}
inline QString searchPlaceholder()
{
    return QStringLiteral("Search the Manual");
}
inline QString nothingMatches()
{
    return QStringLiteral("Nothing in the manual matches.");
}
inline QString back()
{
    return QStringLiteral("Back");
}
inline QString forward()
{
    return QStringLiteral("Forward");
}
inline QString contents()
{
    return QStringLiteral("Contents");
}

} // namespace orvel::manualtexts
