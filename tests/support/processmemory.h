#pragma once
#include <QByteArray>
#include <QFile>
#include <QString>

// The peak resident memory of a running process so far (VmHWM in /proc/<pid>/status), in
// bytes, or -1 when it cannot be read. Header-only, for the tests and the benchmarks alike.
inline qint64 peakResidentBytes(qint64 pid)
{
    QFile status(QStringLiteral("/proc/%1/status").arg(pid));
    if (!status.open(QIODevice::ReadOnly))
        return -1;
    for (const QByteArray &line : status.readAll().split('\n'))
        if (line.startsWith("VmHWM:"))
            return line.mid(6).trimmed().split(' ').first().toLongLong() * 1024;
    return -1;
}
