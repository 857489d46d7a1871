#pragma once
#include <QByteArray>
#include <QFile>
#include <QString>

// One memory figure of a running process from /proc/<pid>/status ("VmRSS", "VmHWM", …), in
// bytes, or -1 when it cannot be read. Header-only, for the tests and the benchmarks alike.
inline qint64 processMemoryBytes(qint64 pid, const char *field)
{
    QFile status(QStringLiteral("/proc/%1/status").arg(pid));
    if (!status.open(QIODevice::ReadOnly))
        return -1;
    const QByteArray key = QByteArray(field) + ':';
    for (const QByteArray &line : status.readAll().split('\n'))
        if (line.startsWith(key))
            return line.mid(key.size()).trimmed().split(' ').first().toLongLong() * 1024;
    return -1;
}

// The peak resident memory of a running process so far, in bytes.
inline qint64 peakResidentBytes(qint64 pid)
{
    return processMemoryBytes(pid, "VmHWM");
}
