#pragma once

#include "model/WayfoldBookmarkFolder.h"

// Where smart folders collect from; filled in at start-up by the rooms that keep these trees.
class SmartFolderSources
{
public:
    virtual ~SmartFolderSources() = default;

    // Null (until set): smart folders find nothing but contacts.
    static SmartFolderSources *current();
    // Not owned.
    static void setCurrent(SmartFolderSources *sources);

    // The browser's bookmarks, and its history as a flat folder; none before they were read.
    virtual WayfoldBookmarkFolderPtr safariBookmarkRoot() const = 0;
    virtual WayfoldBookmarkFolderPtr historyBookmarkRoot() const = 0;
    // False: the bookmarks' tree never changes; what has changed is another tree.
    virtual bool bookmarksMayChange() const { return true; }
    // Groups the history entries of one folder into another ("1": by day). The entries move, they are not copied.
    virtual void regroupBookmarksFromFolderIntoFolderWithGroupingStyle(const WayfoldBookmarkFolderPtr &from,
                                                                       const WayfoldBookmarkFolderPtr &into,
                                                                       const QString &style) const = 0;
};
