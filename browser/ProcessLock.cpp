#include "browser/ProcessLock.h"

#include <cerrno>
#include <sys/file.h>

ProcessLock::Result ProcessLock::tryLock()
{
    // The programs that this one starts do not inherit the open file, and the lock with it.
    if (!_file.isOpen() && !_file.open(QIODevice::ReadWrite | QIODevice::Unbuffered))
        return Impossible;
    if (flock(_file.handle(), LOCK_EX | LOCK_NB) == 0)
        return Locked;
    return errno == EWOULDBLOCK ? HeldByAnother : Impossible;
}

void ProcessLock::setText(const QByteArray &text)
{
    _file.resize(0);
    _file.seek(0);
    _file.write(text);
}

QByteArray ProcessLock::text() const
{
    QFile file(_file.fileName());
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}
