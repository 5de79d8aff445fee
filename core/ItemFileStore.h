#pragma once

#include "core/Retries.h"
#include "platform/files/FileStamp.h"

#include <QDate>
#include <QElapsedTimer>
#include <QString>
#include <QTimer>
#include <chrono>
#include <functional>
#include <memory>
#include <optional>

class WayfoldBookmarkFolder;

// The user's own file on disk, which may have other writers. A save locks it, looks whether it is still what was read
// or written last, writes it and lets go; whatever it holds that the tree in memory does not (it could not be read, or
// not as a whole; another program has changed it) is copied aside before it is first written over. Before the first
// save of a day it is backed up.
class ItemFileStore
{
public:
    // Who is told; what is none is not told.
    struct Listeners
    {
        std::function<void()> saved; // each time
        // The last changes are not on the disk, and are tried again from time to time. Locked: another program has not
        // let go of the file for some seconds.
        std::function<void()> notSaved;
        std::function<void()> locked;
        // Another program had the lock a moment ago: to be answered by tryAgain().
        std::function<void()> canTryAgain;
        std::function<void(const QString &copy)> copyKept;
        std::function<void()> backupMade;
        std::function<void(const QString &folder)> backupFailed; // at most once a day
    };

    ItemFileStore();

    void setListeners(Listeners listeners);
    void setPath(const QString &path) { _path = path; }
    QString path() const { return _path; }

    // The tree in the file; none when there is no plain file or it cannot be read.
    std::shared_ptr<WayfoldBookmarkFolder> load();
    // False when the file could not be written, or not be copied aside first, with the reason in the log, or when
    // another program has it locked just now. Never waits for that.
    bool save(const WayfoldBookmarkFolder &root);

    // Whether the file is as it was read or written last, and as a whole; a look at its stamp.
    bool holdsWhatWasSaved() const;

    // What the tree is about to lose may still be wanted: the file is copied aside before it is written over next.
    void keepBeforeNextSave() { _holdsMore = true; }

    // Whether the last save failed, so that the file does not hold the last changes.
    bool isSaveOwed() const { return _retries.isOwed(); }
    // Called once a second: tries an owed save again, see Retries. Nothing happens while none is owed.
    void retrySave(const WayfoldBookmarkFolder &root);
    // Tries an owed save now.
    void tryAgain(const WayfoldBookmarkFolder &root);
    // The last chance for an owed save, which may wait for others for half a second. What still cannot be written is
    // kept beside the file, as a copy of it would be.
    void saveAtQuit(const WayfoldBookmarkFolder &root);

private:
    enum Outcome { Written, Locked, Failed };

    Outcome write(const WayfoldBookmarkFolder &root, std::chrono::milliseconds patience);
    bool keepWhatWouldBeLost();
    bool keepCopy();
    void backUp();
    void tellOfLock();

    QString _path;
    // The file as it was last read or written; none: it was not there.
    std::optional<FileStamp> _stamp;
    // Whether the file with that stamp holds more than was read from it.
    bool _holdsMore = false;
    Retries _retries;
    QElapsedTimer _lockedSince; // not valid: the last try was not kept from writing by a lock
    bool _isLockTold = false;
    QDate _failedBackup; // the day
    // Where the timer finds them.
    std::shared_ptr<Listeners> _listeners;
    std::unique_ptr<QTimer> _untilTryAgain;
};
