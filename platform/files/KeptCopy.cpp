#include "platform/files/KeptCopy.h"

#include "platform/base/Log.h"
#include "platform/files/DiskFlush.h"
#include "platform/files/FileStamp.h"

#include <QDateTime>
#include <QFile>
#include <QFileInfo>

namespace
{
// A name that nothing has yet, not even a link that leads nowhere.
QString freeName(const QString &path)
{
    const QString base =
        path + QLatin1String(".kept-") + QDateTime::currentDateTime().toString(QStringLiteral("yyyyMMdd-HHmmss"));
    QString name = base;
    for (int number = 2; QFileInfo::exists(name) || QFileInfo(name).isSymLink(); number++)
        name = base + u'-' + QString::number(number);
    return name;
}
} // namespace

QString keepCopyOfFile(const QString &path)
{
    const std::optional<FileStamp> stamp = FileStamp::ofFile(path);
    if (!stamp || !stamp->isPlainFile) {
        qCWarning(logFiles).noquote() << "Could not keep a copy of" << path << "- it is not a plain file";
        return {};
    }
    QString copy = freeName(path);
    QFile file(path);
    QString reason;
    if (!file.copy(copy))
        reason = file.errorString();
    else if (reason = flushToDisk(copy); reason.isNull())
        reason = flushToDisk(QFileInfo(copy).path());
    if (!reason.isNull()) {
        qCWarning(logFiles).noquote() << "Could not keep a copy of" << path << "as" << copy << "-" << reason;
        return {};
    }
    qCWarning(logFiles).noquote() << "Kept a copy of" << path << "as" << copy;
    return copy;
}
