#include "passwordrule.h"

#include <QTextBoundaryFinder>

namespace orvel {

bool PasswordRule::tooShort(const QString &password)
{
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, password);
    int count = 0;
    while (count < minimumLength && finder.toNextBoundary() > 0)
        ++count;
    return count < minimumLength;
}

QString PasswordRule::tooShortMessage()
{
    return QStringLiteral("Choose a password of at least 8 characters.");
}

} // namespace orvel
