#pragma once

#include <QLockFile>
#include <QString>
#include <chrono>
#include <optional>

// The right to look at a file and to write it, which one process has at a time: a lock file beside it, `<name>.lock`,
// beside what the last of its links leads to. It is held for as long as this lives, and never across a question to the
// user.
//
// The lock of a process of this machine that has died is taken over. That of another machine never is: whether its
// process lives cannot be known here.
class FileLock
{
public:
    enum Result {
        Locked,
        Busy,       // another has it
        Impossible, // there are no locks here: the folder is missing or takes no files, or its disk is full
    };

    explicit FileLock(const QString &path);

    // At once. Once it is locked, it stays so.
    Result tryLock();
    // Waits that long for another to let go.
    Result lockWithin(std::chrono::milliseconds most);
    // The file of the lock.
    QString lockFile() const { return _lock.fileName(); }

private:
    std::chrono::milliseconds staleAge() const;

    QLockFile _lock;
};
