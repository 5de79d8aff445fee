#include "browser/Downloads.h"

#include "platform/base/Log.h"

#include <QDir>
#include <QFileInfo>
#include <QStandardPaths>
#include <QWebEngineDownloadRequest>

Downloads::Downloads(QObject *parent) : QObject(parent) {}

void Downloads::take(QWebEngineDownloadRequest *download)
{
    QDir().mkpath(folder());
    const QString name = safeName(download->suggestedFileName());
    download->setDownloadDirectory(folder());
    download->setDownloadFileName(freeName(name, [this](const QString &other) { return isTaken(other); }));
    _underWay.append(download);
    connect(download, &QWebEngineDownloadRequest::isFinishedChanged, this, [this, download] {
        _underWay.removeAll(download);
        if (download->state() != QWebEngineDownloadRequest::DownloadCompleted)
            qCInfo(logWayfold) << "Downloading" << download->downloadFileName()
                               << "stopped:" << download->interruptReasonString();
    });
    connect(download, &QObject::destroyed, this, [this, download] { _underWay.removeAll(download); });
    download->accept();
    Q_EMIT started(download);
}

bool Downloads::anyUnderWay() const
{
    return !_underWay.isEmpty();
}

QString Downloads::folder()
{
    return QStandardPaths::writableLocation(QStandardPaths::DownloadLocation);
}

QString Downloads::safeName(const QString &suggested)
{
    const QString name = QFileInfo(suggested).fileName().trimmed();
    const bool isFolder = name == QLatin1String(".") || name == QLatin1String("..");
    return name.isEmpty() || isFolder ? QStringLiteral("download") : name;
}

QString Downloads::freeName(const QString &name, const std::function<bool(const QString &)> &isTaken)
{
    if (!isTaken(name))
        return name;
    const QFileInfo info(name);
    const bool isCompressedArchive = info.completeBaseName().endsWith(QLatin1String(".tar"));
    QString ending = isCompressedArchive ? QStringLiteral("tar.") + info.suffix() : info.suffix();
    if (info.completeBaseName().isEmpty())
        ending.clear(); // a hidden file
    if (!ending.isEmpty())
        ending.prepend('.');
    const QString base = name.chopped(ending.size());
    for (int number = 2;; ++number) {
        QString candidate = QStringLiteral("%1 (%2)%3").arg(base).arg(number).arg(ending);
        if (!isTaken(candidate))
            return candidate;
    }
}

bool Downloads::isTaken(const QString &name) const
{
    // A dangling link is taken too: writing through it would create a file elsewhere.
    const QFileInfo file(QDir(folder()).filePath(name));
    if (file.exists() || file.isSymLink())
        return true;
    return std::any_of(_underWay.cbegin(), _underWay.cend(),
                       [&](const auto *download) { return download->downloadFileName() == name; });
}
