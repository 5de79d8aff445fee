#include "core/ItemFileStore.h"

#include "model/WayfoldBookmarkFolder.h"
#include "platform/base/Log.h"
#include "platform/files/KeptCopy.h"

std::shared_ptr<WayfoldBookmarkFolder> ItemFileStore::load()
{
    // Stamped first: a change that arrives while the file is read is then noticed before it is written over.
    _stamp = FileStamp::ofFile(_path);
    _holdsMore = false;
    if (!_stamp || !_stamp->isPlainFile)
        return nullptr;
    ItemFileReading reading;
    auto root = WayfoldBookmarkFolder::readDictionaryFile(_path, &reading);
    _holdsMore = !reading.complete;
    return reading.readable ? root : nullptr;
}

bool ItemFileStore::save(const WayfoldBookmarkFolder &root)
{
    if (!keepWhatWouldBeLost() || !root.writeDictionaryFile(_path))
        return false;
    _stamp = FileStamp::ofFile(_path);
    return true;
}

bool ItemFileStore::keepWhatWouldBeLost()
{
    const std::optional<FileStamp> stamp = FileStamp::ofFile(_path);
    const bool holdsWhatWeKnow = stamp == _stamp && !_holdsMore;
    if (stamp && !holdsWhatWeKnow) {
        qCWarning(logFiles) << _path << "holds what is not in the list; it is kept aside before it is written over";
        if (keepCopyOfFile(_path).isNull()) {
            qCWarning(logFiles) << _path << "is not written, since it could not be kept";
            return false;
        }
    }
    _stamp = stamp;
    _holdsMore = false;
    return true;
}
