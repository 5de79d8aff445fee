#include "platform/files/KeptCopy.h"

#include "platform/base/Log.h"
#include "platform/files/DiskFlush.h"
#include "platform/files/FileReplacement.h"
#include "platform/files/FileStamp.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <algorithm>
#include <optional>
#include <utility>
#include <vector>

namespace
{
constexpr int mostCopies = 20; // beside those of the days
const QString ending = QStringLiteral(".kept-");

struct Copy
{
    QDateTime time;
    int number = 1; // of those of the same second
    QString path;

    bool isNewerThan(const Copy &other) const { return std::pair(time, number) > std::pair(other.time, other.number); }
};

// A name that nothing has yet, not even a link that leads nowhere.
QString freeName(const QString &path)
{
    const QString base = path + ending + QDateTime::currentDateTime().toString(QStringLiteral("yyyyMMdd-HHmmss"));
    QString name = base;
    for (int number = 2; QFileInfo::exists(name) || QFileInfo(name).isSymLink(); number++)
        name = base + u'-' + QString::number(number);
    return name;
}

// None unless that is just the name of a copy of the file.
std::optional<Copy> copyNamed(const QString &name, const QString &fileName)
{
    static const QRegularExpression form(
        QRegularExpression::anchoredPattern(QStringLiteral("([0-9]{8})-([0-9]{6})(?:-([2-9]|[1-9][0-9]{1,8}))?")));
    if (!name.startsWith(fileName + ending))
        return std::nullopt;
    const QRegularExpressionMatch match = form.match(name.mid(fileName.size() + ending.size()));
    const QDate date = QDate::fromString(match.captured(1), QStringLiteral("yyyyMMdd"));
    const QTime time = QTime::fromString(match.captured(2), QStringLiteral("HHmmss"));
    if (!match.hasMatch() || !date.isValid() || !time.isValid())
        return std::nullopt;
    Copy copy;
    copy.time = QDateTime(date, time, Qt::UTC); // which has every time of a clock, and each once
    if (match.hasCaptured(3))
        copy.number = match.captured(3).toInt();
    return copy;
}

// The newest first.
std::vector<Copy> copiesOfFile(const QString &path)
{
    std::vector<Copy> copies;
    const QFileInfo file(path);
    const QFileInfoList entries = file.dir().entryInfoList(QDir::Files | QDir::Hidden | QDir::NoSymLinks);
    for (const QFileInfo &entry : entries) {
        std::optional<Copy> copy = copyNamed(entry.fileName(), file.fileName());
        if (!copy)
            continue;
        copy->path = entry.filePath();
        copies.push_back(*copy);
    }
    std::sort(copies.begin(), copies.end(), [](const Copy &a, const Copy &b) { return a.isNewerThan(b); });
    return copies;
}

// Those that are to go, of copies whose newest comes first.
QStringList surplus(const std::vector<Copy> &copies)
{
    QStringList paths;
    QDate day;
    for (std::size_t i = 0; i < copies.size(); ++i) {
        const QDate month = copies.front().time.date().addMonths(-1);
        const bool isLastOfDay = copies[i].time.date() != std::exchange(day, copies[i].time.date());
        const bool stays = i < mostCopies || (isLastOfDay && day > month);
        if (!stays)
            paths.append(copies[i].path);
    }
    return paths;
}

// Whatever the clock says, the new one stays.
void removeSurplus(const QString &path, const QString &newest)
{
    const std::vector<Copy> copies = copiesOfFile(path);
    const std::optional<Copy> made = copyNamed(QFileInfo(newest).fileName(), QFileInfo(path).fileName());
    const auto firstOfPast =
        std::find_if(copies.begin(), copies.end(), [&](const Copy &copy) { return made && copy.time <= made->time; });
    const QStringList paths = surplus({copies.begin(), firstOfPast}) + surplus({firstOfPast, copies.end()});
    for (const QString &copy : paths) {
        if (QFileInfo(copy).fileName() == QFileInfo(newest).fileName())
            continue;
        if (QFile::remove(copy))
            qCInfo(logFiles).noquote() << "Removed" << copy << "- there are newer copies";
    }
}

// The copy, once it is made; null when there is a reason why not.
QString finish(const QString &path, const QString &copy, const QString &reason)
{
    if (!reason.isNull()) {
        qCWarning(logFiles).noquote() << "Could not keep a copy of" << path << "as" << copy << "-" << reason;
        return {};
    }
    qCWarning(logFiles).noquote() << "Kept a copy of" << path << "as" << copy;
    removeSurplus(path, copy);
    return copy;
}
} // namespace

QString keepCopyOfFile(const QString &path)
{
    const std::optional<FileStamp> stamp = FileStamp::ofFile(path);
    if (!stamp || !stamp->isPlainFile) {
        qCWarning(logFiles).noquote() << "Could not keep a copy of" << path << "- it is not a plain file";
        return {};
    }
    const QString copy = freeName(path);
    QFile file(path);
    QString reason;
    if (!file.copy(copy))
        reason = file.errorString();
    else if (reason = flushToDisk(copy); reason.isNull())
        reason = flushToDisk(QFileInfo(copy).path());
    return finish(path, copy, reason);
}

QString keepBesideFile(const QString &path, const QByteArray &contents)
{
    const QString copy = freeName(path);
    return finish(path, copy, replaceFile(copy, contents));
}
