#include "platform/files/FileReplacement.h"

#include "platform/base/Log.h"
#include "platform/files/DiskFlush.h"
#include "platform/files/Paths.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QTemporaryFile>
#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace
{
constexpr char ending[] = ".saving-";

bool writeAll(QFile &file, const QByteArray &contents)
{
    // A disk that fills up takes a part first, and gives its reason when it is asked to take the rest.
    for (qsizetype written = 0; written < contents.size();) {
        const qint64 taken = file.write(contents.constData() + written, contents.size() - written);
        if (taken <= 0)
            return false;
        written += taken;
    }
    return file.flush();
}

// Whether the process that wrote it has gone, and its lock with it.
bool isAbandoned(const QString &temporary)
{
    const int descriptor = ::open(QFile::encodeName(temporary).constData(), O_RDWR | O_CLOEXEC | O_NOFOLLOW);
    const bool isUnlocked = descriptor >= 0 && ::flock(descriptor, LOCK_EX | LOCK_NB) == 0;
    if (descriptor >= 0)
        ::close(descriptor);
    return isUnlocked;
}
} // namespace

QString replaceFile(const QString &path, const QByteArray &contents)
{
    const QByteArray givenName = QFile::encodeName(path);
    struct stat status;
    const bool isThere = ::stat(givenName.constData(), &status) == 0;
    if (!isThere && errno != ENOENT)
        return qt_error_string(errno);
    if (isThere && !S_ISREG(status.st_mode))
        return QStringLiteral("not a plain file");
    if (isThere && ::faccessat(AT_FDCWD, givenName.constData(), W_OK, AT_EACCESS) != 0)
        return qt_error_string(errno);

    // Where the file system has files without a name, this one gets its name when it is asked for: a save that is cut
    // off before leaves nothing behind.
    const QString target = Paths::behindLinks(path);
    QTemporaryFile file(target + QLatin1String(ending) + QLatin1String("XXXXXX"));
    if (!file.open())
        return file.errorString();
    // Tells the temporary files of the living from those of the dead. Where there are no locks, none is removed.
    ::flock(file.handle(), LOCK_EX | LOCK_NB);
    if (!writeAll(file, contents))
        return file.errorString();
    constexpr mode_t permissions = 07777;
    if (isThere && ::fchmod(file.handle(), status.st_mode & permissions) != 0)
        qCWarning(logFiles).noquote() << target << "gets other permissions -" << qt_error_string(errno);
    if (::fsync(file.handle()) != 0)
        return qt_error_string(errno);
    if (::rename(QFile::encodeName(file.fileName()).constData(), QFile::encodeName(target).constData()) != 0)
        return qt_error_string(errno);
    file.setAutoRemove(false);
    return flushToDisk(QFileInfo(target).path());
}

void removeAbandonedSaves(const QString &path)
{
    const QFileInfo target(Paths::behindLinks(path));
    const QRegularExpression form(QRegularExpression::anchoredPattern(
        QRegularExpression::escape(target.fileName() + QLatin1String(ending)) + QLatin1String("[A-Za-z]{6}")));
    const QFileInfoList files = target.dir().entryInfoList(QDir::Files | QDir::Hidden | QDir::NoSymLinks);
    for (const QFileInfo &file : files) {
        // Of an empty one, the process may be about to lock it.
        const bool isCandidate = form.match(file.fileName()).hasMatch() && file.size() > 0;
        if (isCandidate && isAbandoned(file.filePath()) && QFile::remove(file.filePath()))
            qCInfo(logFiles).noquote() << "Removed" << file.filePath() << "- the save was cut off";
    }
}
