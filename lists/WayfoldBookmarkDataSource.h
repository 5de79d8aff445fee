#pragma once

#include "lists/WayfoldOutlineViewDataSource.h"
#include "platform/base/NotificationCenter.h"

#include <mutex>

class QLineEdit;
class WayfoldBookmarkOutlineView;

// Stands behind the Bookmarks list: the browser's own tree, the very items that the other drawers show too, or a flat
// list of copies of what a search finds in it. Nothing can be changed here.
class WayfoldBookmarkDataSource : public WayfoldOutlineViewDataSource
{
    Q_OBJECT

public:
    // The view may be null.
    explicit WayfoldBookmarkDataSource(WayfoldBookmarkOutlineView *view);
    ~WayfoldBookmarkDataSource() override;

    // Run once, when the view is set. Nothing is shown before the data is loaded.
    void awakeFromNib();

    WayfoldBookmarkFolderPtr localRootFolder() const override { return _bookmarkBookmarkRoot; }
    WayfoldOutlineView *myOutlineView() const override;

    // Shows the browser's tree and follows it from then on; later calls do nothing.
    void ensureDataLoaded() override;
    // The browser's tree was read again. A list that is out of sight follows when it can be seen.
    void safariBookmarksUpdated(const Notification &notification);
    // Shows only what contains the search field's text; everything when that is empty.
    void processSearchFilter(const QLineEdit *sender);
    void filterList();
    // Does nothing: this list changes nothing that would have to be saved.
    void savebookmarkBookmarkRoot() {}

private:
    void followBookmarks();
    void showBrowserTree();
    void showMatches();
    void fillRootFromMatches();
    void reloadList();

    QPointer<WayfoldBookmarkOutlineView> _bookmarkOutlineView;
    WayfoldBookmarkFolderPtr _bookmarkBookmarkRoot; // while filtered, a folder of its own
    QString _lastFilterString;                      // null or empty: none
    // Taken in this order.
    std::mutex _parsingBookmarksLock;
    std::mutex _filteringBookmarksLock;
    bool _listIsFiltered = false;
    bool _dataIsLoaded = false;
    QStringList _openBeforeSearch; // the folders that are opened again after it
};
