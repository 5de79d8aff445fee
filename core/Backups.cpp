#include "core/Backups.h"

#include "platform/base/Log.h"
#include "platform/files/DiskFlush.h"
#include "platform/files/FileStamp.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QThreadPool>
#include <algorithm>
#include <set>
#include <utility>

namespace
{
constexpr std::size_t mostDays = 14;
constexpr std::size_t mostMonths = 12;
const QString dateFormat = QStringLiteral("yyyy-MM-dd");

using Month = std::pair<int, int>; // with its year

Month monthOf(const QDate &day)
{
    return {day.year(), day.month()};
}

// Nobody has to wait for the disk: a backup that a failing power takes is one of a file that is there itself.
void flushLater(const QString &path)
{
    QThreadPool::globalInstance()->start([path] {
        flushToDisk(path);
        flushToDisk(QFileInfo(path).path());
    });
}

// Null, or the reason why not. Waits for no disk, as the system's own copying does.
QString copyOf(const QString &path, const QString &copy)
{
    constexpr qint64 pieceSize = qint64(1) << 20;
    QFile from(path);
    QFile to(copy);
    if (!from.open(QIODevice::ReadOnly | QIODevice::Unbuffered))
        return from.errorString();
    if (!to.open(QIODevice::WriteOnly | QIODevice::Unbuffered, QFile::ReadOwner | QFile::WriteOwner))
        return to.errorString();
    for (QByteArray piece = from.read(pieceSize); !piece.isEmpty(); piece = from.read(pieceSize)) {
        if (to.write(piece) != piece.size())
            return to.errorString();
    }
    return from.error() == QFile::NoError ? QString() : from.errorString();
}

// Those that are to go, of backups whose newest comes first.
QStringList surplus(const std::vector<Backups::Backup> &backups)
{
    QStringList paths;
    std::set<Month> months;
    for (std::size_t i = 0; i < backups.size(); ++i) {
        const Month month = monthOf(backups[i].day);
        const bool isLastOfMonth = month != monthOf(backups.front().day) && !months.contains(month);
        const bool staysForItsMonth = isLastOfMonth && months.size() < mostMonths;
        if (isLastOfMonth)
            months.insert(month);
        if (i >= mostDays && !staysForItsMonth)
            paths.append(backups[i].path);
    }
    return paths;
}
} // namespace

Backups::Backups(const QString &itemFilePath) : _itemFilePath(itemFilePath)
{
    const QFileInfo file(itemFilePath);
    _folder = file.path() + QLatin1String("/Backups");
    _name = file.completeBaseName() + u'-';
    _suffix = file.suffix().isEmpty() ? QString() : u'.' + file.suffix();
}

QString Backups::pathOf(const QDate &day) const
{
    return _folder + u'/' + _name + day.toString(dateFormat) + _suffix;
}

std::vector<Backups::Backup> Backups::list() const
{
    std::vector<Backup> backups;
    const QFileInfoList files = QDir(_folder).entryInfoList(QDir::Files | QDir::Hidden | QDir::NoSymLinks);
    for (const QFileInfo &file : files) {
        const QString date = file.fileName().mid(_name.size(), dateFormat.size());
        const QDate day = QDate::fromString(date, dateFormat);
        if (day.isValid() && file.fileName() == QFileInfo(pathOf(day)).fileName())
            backups.push_back({day, file.filePath()});
    }
    std::sort(backups.begin(), backups.end(), [](const Backup &a, const Backup &b) { return a.day > b.day; });
    return backups;
}

// An empty one is what a failing power has left of it.
bool Backups::hasBackupOf(const QDate &day) const
{
    const QFileInfo file(pathOf(day));
    return file.isFile() && file.size() > 0;
}

QString Backups::make(const QDate &today) const
{
    if (hasBackupOf(today))
        return {};
    const std::optional<FileStamp> stamp = FileStamp::ofFile(_itemFilePath);
    if (!stamp || !stamp->isPlainFile)
        return QStringLiteral("there is no file to copy");
    if (!QDir().mkpath(_folder))
        return QStringLiteral("there can be no folder %1").arg(_folder);
    // Under another name until it is whole. Whoever saves holds the lock, so nobody else is making it.
    const QString path = pathOf(today);
    const QString unfinished = path + QLatin1String(".unfinished");
    QFile::remove(unfinished);
    QString reason = copyOf(_itemFilePath, unfinished);
    if (reason.isNull() && (FileStamp::ofFile(_itemFilePath) != stamp || QFileInfo(unfinished).size() != stamp->size))
        reason = QStringLiteral("the file was being written");
    if (reason.isNull() && QFileInfo(path).size() == 0)
        QFile::remove(path);
    if (reason.isNull() && !QFile::rename(unfinished, path))
        reason = QStringLiteral("there can be no file %1").arg(path);
    if (!reason.isNull()) {
        QFile::remove(unfinished);
        return reason;
    }
    flushLater(path);
    removeSurplus(today);
    return {};
}

// Whatever the clock says, the new one stays.
void Backups::removeSurplus(const QDate &today) const
{
    const std::vector<Backup> backups = list();
    const auto firstOfPast =
        std::find_if(backups.begin(), backups.end(), [&today](const Backup &backup) { return backup.day <= today; });
    const QStringList paths = surplus({backups.begin(), firstOfPast}) + surplus({firstOfPast, backups.end()});
    for (const QString &path : paths) {
        if (QFile::remove(path))
            qCInfo(logFiles).noquote() << "Removed" << path << "- there are newer backups";
    }
}
