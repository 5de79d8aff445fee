#pragma once

#include <QFile>

// What this process has read since it started, in bytes; 0 where the system does not count it. From Linux's
// /proc/self/io, whose first line is "rchar: 1234".
inline qint64 bytesRead()
{
    QFile counters(QStringLiteral("/proc/self/io"));
    return counters.open(QIODevice::ReadOnly) ? counters.readLine().mid(6).trimmed().toLongLong() : 0;
}
