// The store's watching of the browser's own files.
#include "core/KDRDrawerBundle.h"

#include "core/Notifications.h"
#include "core/settings/WayfoldToolkit.h"
#include "model/HistoryItems.h"
#include "model/WayfoldBookmarkFolder.h"
#include "platform/files/Paths.h"
#include "platform/files/PropertyList.h"
#include "platform/host/CurrentHost.h"
#include "platform/host/HostApplication.h"

#include <QFileInfo>

namespace
{
// What the browser's bookmark file keeps, whatever is written into it.
const QString keptKeys[] = {
    QStringLiteral("WebBookmarkFileVersion"),
    QStringLiteral("WebBookmarkType"),
    QStringLiteral("WebBookmarkUUID"),
};

bool isPlainFile(const QString &path)
{
    const std::optional<FileStamp> stamp = FileStamp::ofFile(path);
    return stamp && stamp->isPlainFile;
}

// Looks at the file again; true when it is there and not what it was. A missing file leaves no stamp, so that it is
// read again when it comes back.
bool hasChanged(const QString &path, std::optional<FileStamp> &stamp)
{
    const std::optional<FileStamp> previous = stamp;
    stamp = FileStamp::ofFile(path);
    return stamp && stamp != previous;
}
} // namespace

QString KDRDrawerBundle::safariBookmarkFilePath()
{
    const HostApplication *host = currentHost();
    return Paths::standardized(host ? host->bookmarkFilePath() : QStringLiteral("~/Library/Safari/Bookmarks.plist"));
}

QString KDRDrawerBundle::safariHistoryFilePath()
{
    const HostApplication *host = currentHost();
    return Paths::standardized(host ? host->historyFilePath() : QStringLiteral("~/Library/Safari/History.plist"));
}

void KDRDrawerBundle::tagSafariFilesNextEvent()
{
    WayfoldToolkit::postDelayedNotificationNameObject(Notifications::TagSafariFilesNotification, this);
}

void KDRDrawerBundle::checkSafariFiles(const Notification & /*notification*/)
{
    tagSafariFiles();
}

void KDRDrawerBundle::tagSafariFiles()
{
    if (_terminating || !_extSafariFileLock.tryLock())
        return;
    if (hasChanged(safariBookmarkFilePath(), _safariBookmarkFileModDate)) {
        loadSafariBookmarkFile();
        WayfoldToolkit::postNotificationNameObject(Notifications::SafariBookmarkFileModNotification, this);
    }
    if (hasChanged(safariHistoryFilePath(), _safariHistoryFileModDate)) {
        loadHistoryBookmarkFile();
        WayfoldToolkit::postNotificationNameObject(Notifications::SafariHistoryFileModNotification, this);
    }
    _extSafariFileLock.unlock();
}

bool KDRDrawerBundle::loadSafariBookmarkFile()
{
    const QString path = safariBookmarkFilePath();
    _safariBookmarkRoot = std::make_shared<WayfoldBookmarkFolder>();
    if (!isPlainFile(path))
        return false;
    bool isDictionary = false;
    const QVariantMap file = PropertyList::readDictionaryFile(path, &isDictionary);
    if (!isDictionary)
        return false;
    _safariBookmarkRoot->loadFromDictionary(file);
    _safariBookmarkRoot->setTitle(QStringLiteral("Bookmarks"));
    return true;
}

bool KDRDrawerBundle::loadHistoryBookmarkFile()
{
    const std::shared_ptr<const HistoryRecords> records = _historyReader.read(safariHistoryFilePath());
    _safariHistoryRoot = std::make_shared<WayfoldBookmarkFolder>();
    if (!records)
        return false;
    _safariHistoryRoot->setTitle(QStringLiteral("History"));
    _safariHistoryRoot->setLazyChildren(std::make_shared<HistoryItems>(records));
    return true;
}

bool KDRDrawerBundle::saveSafariBookmarkFile(const QVariantMap &dictionary)
{
    const QMutexLocker locker(&_extSafariFileLock);
    bool isDictionary = false;
    const QVariantMap current = PropertyList::readDictionaryFile(safariBookmarkFilePath(), &isDictionary);
    if (!isDictionary)
        return false;
    QVariantMap written = dictionary;
    for (const QString &key : keptKeys) {
        if (current.contains(key))
            written.insert(key, current.value(key));
    }
    return PropertyList::writeFile(written, safariBookmarkFilePath());
}
