#pragma once

#include "model/SmartFolderSources.h"

// Smart folders collect from the store's trees, and have history entries grouped as the History list groups them.
class StoreTrees : public SmartFolderSources
{
public:
    WayfoldBookmarkFolderPtr safariBookmarkRoot() const override;
    WayfoldBookmarkFolderPtr historyBookmarkRoot() const override;
    bool bookmarksMayChange() const override { return false; } // the store makes a new tree of each reading
    void regroupBookmarksFromFolderIntoFolderWithGroupingStyle(const WayfoldBookmarkFolderPtr &from,
                                                               const WayfoldBookmarkFolderPtr &into,
                                                               const QString &style) const override;
};
