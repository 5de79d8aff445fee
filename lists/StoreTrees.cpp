#include "lists/StoreTrees.h"

#include "core/KDRDrawerBundle.h"
#include "lists/WayfoldHistoryDataSource.h"

WayfoldBookmarkFolderPtr StoreTrees::safariBookmarkRoot() const
{
    return KDRDrawerBundle::sharedInstance().safariBookmarkRoot();
}

WayfoldBookmarkFolderPtr StoreTrees::historyBookmarkRoot() const
{
    return KDRDrawerBundle::sharedInstance().historyBookmarkRoot();
}

void StoreTrees::regroupBookmarksFromFolderIntoFolderWithGroupingStyle(const WayfoldBookmarkFolderPtr &from,
                                                                       const WayfoldBookmarkFolderPtr &into,
                                                                       const QString &style) const
{
    WayfoldHistoryDataSource::regroupBookmarksFromFolderIntoFolderWithGroupingStyle(from, into, style);
}
