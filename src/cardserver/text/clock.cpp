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

qint64 Clock::nowMs()
{
    return QDateTime::currentMSecsSinceEpoch();
}

} // namespace cardserver
