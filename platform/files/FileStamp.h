#pragma once

#include <QDateTime>
#include <QString>
#include <optional>

struct stat;

// What tells one state of a file from another without reading it: symbolic links are followed. Times are in nanoseconds
// since 1970-01-01 00:00 UTC.
struct FileStamp
{
    qint64 modificationTime = 0;
    qint64 statusChangeTime = 0; // when anything about it changed last: contents, permissions, number of names
    qint64 size = 0;             // bytes
    quint64 inode = 0;
    bool isPlainFile = false;

    // None when nothing is there (or a link leads nowhere); `errno` tells why.
    static std::optional<FileStamp> ofFile(const QString &path);
    static FileStamp ofStatus(const struct stat &status);
    friend bool operator==(const FileStamp &, const FileStamp &) = default;
    // Whether the contents are taken to be the same, whatever became of the file's permissions and names.
    bool hasContentsOf(const FileStamp &other) const;
};
