#include "platform/files/FileStamp.h"

#include <QFile>
#include <sys/stat.h>

std::optional<FileStamp> FileStamp::ofFile(const QString &path)
{
    struct stat status;
    if (::stat(QFile::encodeName(path).constData(), &status) != 0)
        return std::nullopt;
    FileStamp stamp;
    stamp.modificationTime = qint64(status.st_mtim.tv_sec) * 1000000000 + status.st_mtim.tv_nsec;
    stamp.size = status.st_size;
    stamp.inode = status.st_ino;
    stamp.isPlainFile = S_ISREG(status.st_mode);
    return stamp;
}
