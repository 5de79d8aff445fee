#pragma once

#include "lists/WayfoldOutlineViewDataSource.h"

// Stands behind the History list, and groups history entries for whoever shows them.
class WayfoldHistoryDataSource : public WayfoldOutlineViewDataSource
{
    Q_OBJECT

public:
    using WayfoldOutlineViewDataSource::WayfoldOutlineViewDataSource;

    // Fills `into` with the very entries of `from`, which get new parents by that; folders that `into` has from an
    // earlier grouping of the same style are used again. None as `into` does nothing. The styles:
    //
    //     "0"  no folders                      "3"  by site
    //     "1"  by day, newest first            "4"  by site, then by day
    //     "2"  by day, then by site            other: no entries
    //
    // Entries without a date are left out but for "0", those without a site for "2" to "4".
    static void regroupBookmarksFromFolderIntoFolderWithGroupingStyle(const WayfoldBookmarkFolderPtr &from,
                                                                      const WayfoldBookmarkFolderPtr &into,
                                                                      const QString &style);
};
