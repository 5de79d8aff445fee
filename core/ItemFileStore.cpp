#include "core/ItemFileStore.h"

#include "core/Backups.h"
#include "model/WayfoldBookmarkFolder.h"
#include "platform/base/Log.h"
#include "platform/files/FileLock.h"
#include "platform/files/FileReplacement.h"
#include "platform/files/KeptCopy.h"

#include <QDir>
#include <QFileInfo>

using namespace std::chrono_literals;

namespace
{
constexpr auto untilLockIsTriedAgain = 250ms;
constexpr auto untilLockIsTold = 2000ms;
constexpr auto patienceAtQuit = 500ms;

template <class Listener, class... Arguments>
void tell(const Listener &listener, const Arguments &...arguments)
{
    if (listener)
        listener(arguments...);
}
} // namespace

ItemFileStore::ItemFileStore() : _listeners(std::make_shared<Listeners>()), _untilTryAgain(std::make_unique<QTimer>())
{
    _untilTryAgain->setSingleShot(true);
    _untilTryAgain->setInterval(untilLockIsTriedAgain);
    QObject::connect(_untilTryAgain.get(), &QTimer::timeout, _untilTryAgain.get(),
                     [listeners = _listeners] { tell(listeners->canTryAgain); });
}

void ItemFileStore::setListeners(Listeners listeners)
{
    *_listeners = std::move(listeners);
}

std::shared_ptr<WayfoldBookmarkFolder> ItemFileStore::load()
{
    removeAbandonedSaves(_path);
    // Stamped first: a change that arrives while the file is read is then noticed before it is written over.
    _stamp = FileStamp::ofFile(_path);
    _holdsMore = false;
    _retries.end();
    if (!_stamp || !_stamp->isPlainFile)
        return nullptr;
    ItemFileReading reading;
    auto root = WayfoldBookmarkFolder::readDictionaryFile(_path, &reading);
    _holdsMore = !reading.complete;
    return reading.readable ? root : nullptr;
}

bool ItemFileStore::save(const WayfoldBookmarkFolder &root)
{
    const Outcome outcome = write(root, 0ms);
    if (outcome == Written)
        return true;
    _retries.begin();
    if (outcome == Failed)
        tell(_listeners->notSaved);
    return false;
}

bool ItemFileStore::holdsWhatWasSaved() const
{
    if (isSaveOwed() || _holdsMore || !_stamp || !_stamp->isPlainFile)
        return false;
    const std::optional<FileStamp> stamp = FileStamp::ofFile(_path);
    return stamp && stamp->hasContentsOf(*_stamp);
}

// Not every second, since a try takes its time with a large tree and leaves a line in the log.
void ItemFileStore::retrySave(const WayfoldBookmarkFolder &root)
{
    if (_retries.isDue())
        tryAgain(root);
}

void ItemFileStore::tryAgain(const WayfoldBookmarkFolder &root)
{
    if (!_retries.isOwed())
        return;
    const bool wasLocked = _lockedSince.isValid();
    const Outcome outcome = write(root, 0ms);
    if (outcome == Written && !wasLocked)
        qCWarning(logFiles) << _path << "is saved now";
    if (outcome == Failed && wasLocked)
        tell(_listeners->notSaved);
}

void ItemFileStore::saveAtQuit(const WayfoldBookmarkFolder &root)
{
    if (!_retries.isOwed() || write(root, patienceAtQuit) == Written)
        return;
    const QByteArray contents = root.dictionaryFileContents();
    if (!contents.isEmpty())
        keepBesideFile(_path, contents);
}

// Look and write under one lock, which is never held for longer.
ItemFileStore::Outcome ItemFileStore::write(const WayfoldBookmarkFolder &root, std::chrono::milliseconds patience)
{
    // The folder may have been removed since it was made.
    QDir().mkpath(QFileInfo(_path).path());
    FileLock lock(_path);
    if (lock.lockWithin(patience) == FileLock::Busy) {
        tellOfLock();
        return Locked;
    }
    _lockedSince.invalidate();
    _isLockTold = false;
    if (!keepWhatWouldBeLost() || !root.writeDictionaryFile(_path))
        return Failed;
    _stamp = FileStamp::ofFile(_path);
    _retries.end();
    tell(_listeners->saved);
    return Written;
}

void ItemFileStore::tellOfLock()
{
    _untilTryAgain->start();
    if (!_lockedSince.isValid())
        _lockedSince.start();
    if (_isLockTold || _lockedSince.elapsed() < untilLockIsTold.count())
        return;
    _isLockTold = true;
    qCWarning(logFiles) << _path << "is not written, since another program has it locked";
    tell(_listeners->locked);
}

bool ItemFileStore::keepWhatWouldBeLost()
{
    const std::optional<FileStamp> stamp = FileStamp::ofFile(_path);
    const bool holdsWhatWeKnow = stamp && _stamp && stamp->hasContentsOf(*_stamp) && !_holdsMore;
    if (holdsWhatWeKnow && stamp->isPlainFile)
        backUp();
    else if (stamp && !holdsWhatWeKnow && !keepCopy())
        return false;
    _stamp = stamp;
    _holdsMore = false;
    return true;
}

bool ItemFileStore::keepCopy()
{
    qCWarning(logFiles) << _path << "holds what is not in the list; it is kept aside before it is written over";
    const QString copy = keepCopyOfFile(_path);
    if (copy.isNull())
        qCWarning(logFiles) << _path << "is not written, since it could not be kept";
    else
        tell(_listeners->copyKept, copy);
    return !copy.isNull();
}

// Of a file that was read, or written here, whole. Whether that works is no matter of the save.
void ItemFileStore::backUp()
{
    const Backups backups(_path);
    const QDate today = QDate::currentDate();
    const QString reason = backups.make(today);
    if (reason.isNull()) {
        tell(_listeners->backupMade);
    } else if (_failedBackup != today) {
        _failedBackup = today;
        qCWarning(logFiles).noquote() << "Could not make today's backup of" << _path << "-" << reason;
        tell(_listeners->backupFailed, backups.folder());
    }
}
