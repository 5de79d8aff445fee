#pragma once

#include "lists/WayfoldOutlineViewDataSource.h"
#include "platform/base/NotificationCenter.h"

#include <mutex>

class QLineEdit;
class WayfoldHistoryOutlineView;

// Stands behind the History list: the browser's history in folders, as the user's grouping style has it, or a flat list
// of copies of what a search finds in it. Nothing can be changed here. It also groups history entries for whoever else
// shows them.
class WayfoldHistoryDataSource : public WayfoldOutlineViewDataSource
{
    Q_OBJECT

public:
    // The view may be null.
    explicit WayfoldHistoryDataSource(WayfoldHistoryOutlineView *view);
    ~WayfoldHistoryDataSource() override;

    // Run once, when the view is set. Nothing is shown before the data is loaded.
    void awakeFromNib();

    WayfoldBookmarkFolderPtr localRootFolder() const override { return _historyBookmarkRoot; }
    WayfoldOutlineView *myOutlineView() const override;

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

    // Groups the browser's history and follows it from then on; later calls do nothing.
    void ensureDataLoaded() override;
    // Groups the history anew. While the style stays the same the folders do too, so that open ones stay open.
    void parseHistoryBookmarks();
    // The history was read again, or the style has changed. A list that is out of sight follows when it can be seen.
    void safariHistoryUpdated(const Notification &notification);
    // Shows only what contains the search field's text; everything, grouped, when that is empty.
    void processSearchFilter(const QLineEdit *sender);
    void filterList();
    // Does nothing: the history is never written.
    void saveHistoryBookmarkRoot() {}

private:
    void followHistory();
    void regroupIntoRoot(const QString &style);
    void showMatches();
    void fillRootFromMatches();
    void showGroupsAgain();
    void reloadList();

    QPointer<WayfoldHistoryOutlineView> _historyOutlineView;
    WayfoldBookmarkFolderPtr _historyBookmarkRoot; // made on first use, then kept and filled again
    QString _lastFilterString;                     // null or empty: none
    QString _oldGroupingStyle;                     // that the root was last grouped by
    // Taken in this order.
    std::mutex _filteringHistoryLock;
    std::mutex _parsingHistoryLock;
    bool _listIsFiltered = false;
    bool _dataIsLoaded = false;
    // Kept while filtered, so that afterwards the same folders are there, and open.
    WayfoldBookmarkFolderPtr _rootBeforeSearch;
    QStringList _openBeforeSearch;
};
