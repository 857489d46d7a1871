#include "records/credit.h"

namespace orvel {

QString pictureCredit(const QString &author, const QString &licence)
{
    QString credit = author.isEmpty() ? QStringLiteral("Unknown") : author;
    credit += QStringView(u" \u00B7 ");
    credit += licence;
    return credit;
}

bool learnersOwnPicture(const QString &origin)
{
    return origin == QLatin1String("upload") || origin == QLatin1String("yours");
}

} // namespace orvel
