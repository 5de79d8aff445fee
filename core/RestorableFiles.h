#pragma once

#include <QDateTime>
#include <QString>
#include <vector>

// The files that an earlier state of the item file lies in.
namespace RestorableFiles
{
struct File
{
    QString path;
    QDateTime time; // local; of a backup the beginning of its day, since that is what it tells of
    bool isBackup = false;
};

// The newest first: the backups of the item file, and the copies of it that were kept beside it.
std::vector<File> ofItemFile(const QString &path);
} // namespace RestorableFiles
