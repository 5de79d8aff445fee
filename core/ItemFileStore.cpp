#include "core/ItemFileStore.h"

#include "model/WayfoldBookmarkFolder.h"
#include "platform/base/Log.h"
#include "platform/files/FileReplacement.h"
#include "platform/files/KeptCopy.h"

#include <QDir>
#include <QFileInfo>

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
    if (write(root))
        _retries.end();
    else
        _retries.begin();
    return !_retries.isOwed();
}

// Not every second, since a try takes its time with a large tree and leaves a line in the log.
void ItemFileStore::retrySave(const WayfoldBookmarkFolder &root)
{
    if (!_retries.isDue() || !write(root))
        return;
    _retries.end();
    qCWarning(logFiles) << _path << "is saved now";
}

bool ItemFileStore::write(const WayfoldBookmarkFolder &root)
{
    // The folder may have been removed since it was made.
    QDir().mkpath(QFileInfo(_path).path());
    if (!keepWhatWouldBeLost() || !root.writeDictionaryFile(_path))
        return false;
    _stamp = FileStamp::ofFile(_path);
    return true;
}

bool ItemFileStore::keepWhatWouldBeLost()
{
    const std::optional<FileStamp> stamp = FileStamp::ofFile(_path);
    const bool holdsWhatWeKnow = stamp && _stamp && stamp->hasContentsOf(*_stamp) && !_holdsMore;
    if (stamp && !holdsWhatWeKnow) {
        qCWarning(logFiles) << _path << "holds what is not in the list; it is kept aside before it is written over";
        const QString copy = keepCopyOfFile(_path);
        if (copy.isNull()) {
            qCWarning(logFiles) << _path << "is not written, since it could not be kept";
            return false;
        }
        if (copyKept)
            copyKept(copy);
    }
    _stamp = stamp;
    _holdsMore = false;
    return true;
}
