#include "skin.h"

#include <QStringList>

namespace orvel {

QStringList Skin::roles()
{
    return {
        QStringLiteral("window"),     QStringLiteral("surface"),       QStringLiteral("sidebar"),
        QStringLiteral("text"),       QStringLiteral("secondaryText"), QStringLiteral("accent"),
        QStringLiteral("accentText"), QStringLiteral("accentWash"),    QStringLiteral("line"),
        QStringLiteral("good"),       QStringLiteral("danger")};
}

} // namespace orvel
