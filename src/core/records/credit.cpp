#include "records/credit.h"

namespace orvel {

QString pictureCredit(const QString &author, const QString &licence)
{
    QString credit = author.isEmpty() ? QStringLiteral("Unknown") : author;
    credit += QStringView(u" \u00B7 ");
    credit += licence;
    return credit;
}

} // namespace orvel
