#include "text/clock.h"

#include <QDateTime>

namespace cardserver {

QString Clock::nowText()
{
    return QDateTime::currentDateTimeUtc().toString(Qt::ISODate);
}

qint64 Clock::nowSeconds()
{
    return QDateTime::currentSecsSinceEpoch();
}

} // namespace cardserver
