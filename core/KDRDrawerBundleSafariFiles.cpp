// The store's watching of the browser's own files.
#include "core/KDRDrawerBundle.h"

#include "core/Notifications.h"
#include "core/settings/WayfoldToolkit.h"
#include "model/BookmarkItems.h"
#include "model/WayfoldBookmarkFolder.h"
#include "model/history/HistoryItems.h"
#include "platform/files/Paths.h"
#include "platform/files/PropertyList.h"
#include "platform/host/CurrentHost.h"
#include "platform/host/HostApplication.h"

namespace
{
// What the browser's bookmark file keeps, whatever is written into it.
const QString keptKeys[] = {
    QStringLiteral("WebBookmarkFileVersion"),
    QStringLiteral("WebBookmarkType"),
    QStringLiteral("WebBookmarkUUID"),
};

// Looks at the file again; true when it is there and not what it was, or is to be tried again. A missing file leaves no
// stamp, so that it is read again when it comes back.
bool isToBeRead(const QString &path, std::optional<FileStamp> &stamp, Retries &retries)
{
    const std::optional<FileStamp> previous = stamp;
    stamp = FileStamp::ofFile(path);
    const bool isDue = retries.isDue();
    return stamp && (stamp != previous || isDue);
}

// Tries go on as they were.
void noteFailure(bool isPassing, Retries &retries)
{
    if (!isPassing)
        retries.end();
    else if (!retries.isOwed())
        retries.begin();
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
    if (isToBeRead(safariBookmarkFilePath(), _safariBookmarkFileModDate, _safariBookmarkRetries)) {
        loadSafariBookmarkFile();
        if (!_safariBookmarkRetries.isOwed())
            WayfoldToolkit::postNotificationNameObject(Notifications::SafariBookmarkFileModNotification, this);
    }
    if (isToBeRead(safariHistoryFilePath(), _safariHistoryFileModDate, _safariHistoryRetries)) {
        loadHistoryBookmarkFile();
        if (!_safariHistoryRetries.isOwed())
            WayfoldToolkit::postNotificationNameObject(Notifications::SafariHistoryFileModNotification, this);
    }
    _extSafariFileLock.unlock();
}

bool KDRDrawerBundle::loadSafariBookmarkFile()
{
    bool isPassing = false;
    const std::shared_ptr<const BookmarkRecords> records = _bookmarkReader.read(safariBookmarkFilePath(), &isPassing);
    noteFailure(isPassing, _safariBookmarkRetries);
    if (isPassing)
        return false;
    _safariBookmarkRoot = records ? BookmarkItems::treeOf(records) : std::make_shared<WayfoldBookmarkFolder>();
    if (!records)
        return false;
    _safariBookmarkRoot->setTitle(QStringLiteral("Bookmarks"));
    return true;
}

bool KDRDrawerBundle::loadHistoryBookmarkFile()
{
    bool isPassing = false;
    const std::shared_ptr<const HistoryRecords> records = _historyReader.read(safariHistoryFilePath(), &isPassing);
    noteFailure(isPassing, _safariHistoryRetries);
    if (isPassing)
        return false;
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
    PropertyList::Reading reading;
    const QVariantMap current = PropertyList::readDictionaryFile(safariBookmarkFilePath(), &reading);
    if (!reading.ok)
        return false;
    QVariantMap written = dictionary;
    for (const QString &key : keptKeys) {
        if (current.contains(key))
            written.insert(key, current.value(key));
    }
    return PropertyList::writeFile(written, safariBookmarkFilePath());
}
