#pragma once

#include <QHash>
#include <QIcon>
#include <QImage>
#include <QObject>
#include <QUrl>

// The icons of the sites that were seen, kept by host name in memory and in a folder.
class SiteIcons : public QObject
{
    Q_OBJECT

public:
    explicit SiteIcons(const QString &folder, QObject *parent = nullptr);

    // The page at that address has this icon; its whole site has it from now on.
    void add(const QUrl &page, const QIcon &icon);
    // The icon of the site that the address belongs to, in that size in pixels; null when it was never seen.
    QImage iconForAddress(const QString &address, const QSize &size);
    // The same for a host.
    QIcon iconForHost(const QString &host);

private:
    const QImage &imageForHost(const QString &host);
    QString fileForHost(const QString &host) const;
    void dropOldFiles() const;

    QString _folder;
    QHash<QString, QImage> _images; // by host in lower case; null for a host without one
};
