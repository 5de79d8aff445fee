#pragma once

#include <QFile>
#include <QString>
#include <sys/stat.h>

// What happens to a file within one tick of the system's clock has the same time there.
namespace StatusChange
{
inline timespec timeOf(const QString &path)
{
    struct stat status = {};
    ::stat(QFile::encodeName(path).constData(), &status);
    return status.st_ctim;
}

// Makes the change, to a file that is there, until the clock has moved on.
template <class Change>
void make(const QString &path, Change change)
{
    const timespec before = timeOf(path);
    timespec after = before;
    while (after.tv_sec == before.tv_sec && after.tv_nsec == before.tv_nsec) {
        change();
        after = timeOf(path);
    }
}
} // namespace StatusChange
