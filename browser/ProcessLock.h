#pragma once

#include <QByteArray>
#include <QFile>

// A lock on a file that is held until this goes or its process ends, however it ends. The file has a text, which the
// holder leaves there for those who find it locked.
class ProcessLock
{
public:
    enum Result {
        Locked,
        HeldByAnother,
        Impossible, // the file cannot be made, or its file system knows no locks
    };

    explicit ProcessLock(const QString &path) : _file(path) {}

    Result tryLock();
    // By the holder alone.
    void setText(const QByteArray &text);
    // Empty when there is none yet; that of the holder before this one for a moment.
    QByteArray text() const;

private:
    QFile _file;
};
