#pragma once

#include <QDateTime>
#include <QString>
#include <optional>

// What tells one state of a file from another without reading it: symbolic links are followed.
struct FileStamp
{
    qint64 modificationTime = 0; // nanoseconds since 1970-01-01 00:00 UTC
    qint64 size = 0;             // bytes
    quint64 inode = 0;
    bool isPlainFile = false;

    // None when nothing is there (or a link leads nowhere); `errno` tells why.
    static std::optional<FileStamp> ofFile(const QString &path);
    friend bool operator==(const FileStamp &, const FileStamp &) = default;
};
