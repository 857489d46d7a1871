#include "starttime.h"

#include <ctime>
#include <QElapsedTimer>
#include <QFile>
#include <unistd.h>

namespace orvel {

namespace {

QElapsedTimer &mainTimer()
{
    static QElapsedTimer timer;
    return timer;
}

// When the process started, in milliseconds since boot; -1 when /proc cannot tell.
long long processStartSinceBoot()
{
    QFile stat(QStringLiteral("/proc/self/stat"));
    if (!stat.open(QIODevice::ReadOnly))
        return -1;
    const QByteArray line = stat.readAll();
    // Field 22 (starttime) counts after the command name, which is in parentheses and may hold
    // spaces: split what follows the last ')'.
    const qsizetype close = line.lastIndexOf(')');
    if (close < 0)
        return -1;
    const QList<QByteArray> fields = line.mid(close + 2).split(' ');
    constexpr int startTimeField = 22 - 3; // fields 1 and 2 are before the split
    if (fields.size() <= startTimeField)
        return -1;
    bool ok = false;
    const long long ticks = fields[startTimeField].toLongLong(&ok);
    const long ticksPerSecond = ::sysconf(_SC_CLK_TCK);
    if (!ok || ticksPerSecond <= 0)
        return -1;
    return ticks * 1000 / ticksPerSecond;
}

long long nowSinceBoot()
{
    timespec now{};
    ::clock_gettime(CLOCK_BOOTTIME, &now);
    return static_cast<long long>(now.tv_sec) * 1000 + now.tv_nsec / 1000000;
}

} // namespace

void StartTime::markMain()
{
    mainTimer().start();
}

long long StartTime::sinceMain()
{
    return mainTimer().isValid() ? mainTimer().elapsed() : -1;
}

long long StartTime::sinceProcessStart()
{
    const long long started = processStartSinceBoot();
    return started < 0 ? -1 : nowSinceBoot() - started;
}

} // namespace orvel
