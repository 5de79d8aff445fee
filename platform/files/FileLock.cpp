#include "platform/files/FileLock.h"

#include "platform/files/Paths.h"

#include <QSysInfo>

using namespace std::chrono_literals;

FileLock::FileLock(const QString &path) : _lock(Paths::behindLinks(path) + QLatin1String(".lock")) {}

FileLock::Result FileLock::tryLock()
{
    return lockWithin(0ms);
}

FileLock::Result FileLock::lockWithin(std::chrono::milliseconds most)
{
    if (_lock.isLocked())
        return Locked;
    _lock.setStaleLockTime(int(staleAge().count()));
    if (_lock.tryLock(int(most.count())))
        return Locked;
    return _lock.error() == QLockFile::LockFailedError ? Busy : Impossible;
}

// A lock is held for some milliseconds. One that is much older, and names a process of this machine or none (the power
// failed while it was written), belongs to nobody: the process that has its number now is another one. Whoever does
// hold it has locked its file with the system as well, and keeps it. 0 stands for no age at all.
std::chrono::milliseconds FileLock::staleAge() const
{
    qint64 process = 0;
    QString machine;
    QString program;
    const bool namesMachine = _lock.getLockInfo(&process, &machine, &program) && !machine.isEmpty();
    return namesMachine && machine != QSysInfo::machineHostName() ? 0ms : 60s;
}
