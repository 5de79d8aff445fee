#pragma once

#include "core/Retries.h"
#include "platform/files/FileStamp.h"

#include <QString>
#include <functional>
#include <memory>
#include <optional>

class WayfoldBookmarkFolder;

// The user's own file on disk. Whatever it holds that the tree in memory does not (it could not be read, some entries
// are of kinds unknown here, another program has changed it) is copied aside before it is first written over.
class ItemFileStore
{
public:
    void setPath(const QString &path) { _path = path; }
    QString path() const { return _path; }

    // The tree in the file; none when there is no plain file or it cannot be read.
    std::shared_ptr<WayfoldBookmarkFolder> load();
    // False, with the reason in the log, when the file could not be written, or not be copied aside first.
    bool save(const WayfoldBookmarkFolder &root);

    // What the tree is about to lose may still be wanted: the file is copied aside before it is written over next.
    void keepBeforeNextSave() { _holdsMore = true; }

    // Whether the last save failed, so that the file does not hold the last changes.
    bool isSaveOwed() const { return _retries.isOwed(); }
    // Called once a second: tries an owed save again, see Retries. Nothing happens while none is owed.
    void retrySave(const WayfoldBookmarkFolder &root);

    // Told the path of each copy that was kept.
    std::function<void(const QString &copy)> copyKept;

private:
    bool write(const WayfoldBookmarkFolder &root);
    bool keepWhatWouldBeLost();

    QString _path;
    // The file as it was last read or written; none: it was not there.
    std::optional<FileStamp> _stamp;
    // Whether the file with that stamp holds more than was read from it.
    bool _holdsMore = false;
    Retries _retries;
};
