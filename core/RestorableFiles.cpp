#include "core/RestorableFiles.h"

#include "core/Backups.h"

#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>
#include <algorithm>

namespace
{
// The point in time that its name tells; invalid when it is none of ours.
QDateTime timeOfKeptCopy(const QString &name, const QString &nameOfFile)
{
    static const QRegularExpression pattern(QStringLiteral(R"(^\.kept-(\d{8}-\d{6})(-\d+)?$)"));
    const QRegularExpressionMatch match = pattern.match(name.mid(nameOfFile.size()));
    return QDateTime::fromString(match.captured(1), QStringLiteral("yyyyMMdd-HHmmss"));
}

std::vector<RestorableFiles::File> keptCopies(const QString &path)
{
    const QFileInfo file(path);
    std::vector<RestorableFiles::File> copies;
    const QFileInfoList found = file.dir().entryInfoList({file.fileName() + QStringLiteral(".kept-*")}, QDir::Files);
    for (const QFileInfo &copy : found) {
        const QDateTime time = timeOfKeptCopy(copy.fileName(), file.fileName());
        if (time.isValid())
            copies.push_back({copy.filePath(), time, false});
    }
    return copies;
}
} // namespace

std::vector<RestorableFiles::File> RestorableFiles::ofItemFile(const QString &path)
{
    std::vector<File> files = keptCopies(path);
    for (const Backups::Backup &backup : Backups(path).list())
        files.push_back({backup.path, backup.day.startOfDay(), true});
    std::sort(files.begin(), files.end(),
              [](const File &a, const File &b) { return a.time != b.time ? a.time > b.time : a.path > b.path; });
    return files;
}
