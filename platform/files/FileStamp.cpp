#include "platform/files/FileStamp.h"

#include <QFile>
#include <sys/stat.h>

namespace
{
qint64 nanoseconds(const timespec &time)
{
    return qint64(time.tv_sec) * 1000000000 + time.tv_nsec;
}
} // namespace

std::optional<FileStamp> FileStamp::ofFile(const QString &path)
{
    struct stat status;
    if (::stat(QFile::encodeName(path).constData(), &status) != 0)
        return std::nullopt;
    return ofStatus(status);
}

FileStamp FileStamp::ofStatus(const struct stat &status)
{
    FileStamp stamp;
    stamp.modificationTime = nanoseconds(status.st_mtim);
    stamp.statusChangeTime = nanoseconds(status.st_ctim);
    stamp.size = status.st_size;
    stamp.inode = status.st_ino;
    stamp.isPlainFile = S_ISREG(status.st_mode);
    return stamp;
}

bool FileStamp::hasContentsOf(const FileStamp &other) const
{
    FileStamp same = other;
    same.statusChangeTime = statusChangeTime;
    return *this == same;
}
