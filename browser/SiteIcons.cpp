#include "browser/SiteIcons.h"

#include "platform/base/Log.h"
#include "platform/base/Url.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>

namespace
{
constexpr int storedSize = 32; // pixels
constexpr int mostFiles = 2000;
} // namespace

SiteIcons::SiteIcons(const QString &folder, QObject *parent) : QObject(parent), _folder(folder)
{
    QDir().mkpath(_folder);
    dropOldFiles();
}

void SiteIcons::add(const QUrl &page, const QIcon &icon)
{
    const QString host = page.host().toLower();
    const QImage image = icon.pixmap(QSize(storedSize, storedSize), 1.0).toImage();
    if (host.isEmpty() || image.isNull() || imageForHost(host) == image)
        return;
    _images.insert(host, image);
    if (!image.save(fileForHost(host)))
        qCInfo(logFiles) << "The icon of" << host << "could not be kept in" << _folder;
}

QImage SiteIcons::iconForAddress(const QString &address, const QSize &size)
{
    const QString host = Url::URLWithString(address).host().toLower();
    const QImage &image = imageForHost(host);
    if (image.isNull() || size.isEmpty() || image.size() == size)
        return image;
    return image.scaled(size, Qt::KeepAspectRatio, Qt::SmoothTransformation);
}

QIcon SiteIcons::iconForHost(const QString &host)
{
    const QImage &image = imageForHost(host.toLower());
    return image.isNull() ? QIcon() : QIcon(QPixmap::fromImage(image));
}

const QImage &SiteIcons::imageForHost(const QString &host)
{
    const auto found = _images.constFind(host);
    if (found != _images.constEnd())
        return *found;
    return *_images.insert(host, host.isEmpty() ? QImage() : QImage(fileForHost(host)));
}

QString SiteIcons::fileForHost(const QString &host) const
{
    const QByteArray name = QCryptographicHash::hash(host.toUtf8(), QCryptographicHash::Sha1).toHex();
    return QDir(_folder).filePath(QString::fromLatin1(name) + QStringLiteral(".png"));
}

void SiteIcons::dropOldFiles() const
{
    const QFileInfoList files = QDir(_folder).entryInfoList({QStringLiteral("*.png")}, QDir::Files, QDir::Time);
    for (const QFileInfo &file : files.mid(mostFiles))
        QFile::remove(file.filePath());
}
