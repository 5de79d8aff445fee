#include "platform/files/DiskFlush.h"

#include <QFile>
#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

QString flushToDisk(const QString &path)
{
    const int descriptor = ::open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (descriptor < 0)
        return qt_error_string(errno);
    // Some file systems cannot flush a directory and need not.
    const bool isFlushed = ::fsync(descriptor) == 0 || errno == EINVAL || errno == ENOTSUP;
    QString reason = isFlushed ? QString() : qt_error_string(errno);
    ::close(descriptor);
    return reason;
}
