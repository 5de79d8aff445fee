#pragma once

#include <QSizeF>
#include <QString>
#include <QStringView>
#include <memory>

class HostFrame;
class Image;

// What every room needs a little of: texts, the lists' search rule, images, the version, site keys, and posting
// notifications later.
class WayfoldToolkit
{
public:
    // The text in the user's language for the English `key`; the key itself when there is no translation.
    static QString localizedString(const QString &key);
    // Whether B occurs in A, without regard to letter case. An empty B occurs nowhere.
    static bool stringContainsString(const QString &a, const QString &b);

    // An image of the plug-in's own, a new one each time; none when there is none of that name. Scaled to `size` when
    // drawn, unless that is the zero size.
    static std::shared_ptr<Image> loadImageNamed(const QString &name);
    static std::shared_ptr<Image> loadImageNamedScaledTo(const QString &name, const QSizeF &size);
    // The same for an image that the host knows by that name.
    static std::shared_ptr<Image> loadAppImageNamed(const QString &name);
    static std::shared_ptr<Image> loadAppImageNamedScaledTo(const QString &name, const QSizeF &size);

    // The bundle's version; null when it cannot be read.
    static QString getCurrentVersion();
    // Versions of exactly three parts as major * 10000 + minor * 100 + patch; 0 for any other.
    static unsigned getCurrentVersionAsNumber();
    static unsigned versionAsNumber(const QString &version);

    // The host of the frame's committed page; null when there is no frame, page, address or host.
    static QString hostNameFromWebFrame(const HostFrame *frame);
    // The site key of that host: the name under which a site's items are filed.
    static QString hostNameToTrackFromWebFrame(const HostFrame *frame);
    // "news.example.com" gives "example.com": of three or more labels the first is dropped, unless the last label
    // holds anything but letters (a numeric address stays whole). Letter case is kept; null stays null.
    static QString hostNameToTrackFromHostName(const QString &hostName);
    // The same rules without making strings, for what runs at every drawing. A site key is always an ending of its
    // host name; the views live as long as the host name does (a frame's: until control returns to the host).
    static QStringView siteKeyInHostName(QStringView hostName);
    static QStringView siteKeyInWebFrame(const HostFrame *frame);

    // Delivered at the end of the current pass of the event loop. Pending posts of one name and object are one.
    static void postNotificationNameObject(const QString &name, const void *object);
    // The same, delivered when the event loop has nothing else to do.
    static void postDelayedNotificationNameObject(const QString &name, const void *object);
};
