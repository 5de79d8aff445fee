#include "lists/WayfoldBookmarkDataSource.h"

#include "core/KDRDrawerBundle.h"
#include "core/Notifications.h"
#include "core/settings/WayfoldToolkit.h"
#include "lists/WayfoldBookmarkOutlineView.h"
#include "model/LazyCopies.h"

#include <QLineEdit>
#include <utility>

WayfoldBookmarkDataSource::WayfoldBookmarkDataSource(WayfoldBookmarkOutlineView *view) : _bookmarkOutlineView(view) {}

WayfoldBookmarkDataSource::~WayfoldBookmarkDataSource()
{
    NotificationCenter::defaultCenter().removeObserver(this);
    leaveView(_bookmarkOutlineView);
}

void WayfoldBookmarkDataSource::awakeFromNib()
{
    _listIsFiltered = false;
    _lastFilterString = QString();
    _dataIsLoaded = false;
    if (_bookmarkOutlineView)
        _bookmarkOutlineView->doubleAction = [this] { handleResolveBookmarkRequest(_bookmarkOutlineView); };
}

WayfoldOutlineView *WayfoldBookmarkDataSource::myOutlineView() const
{
    return _bookmarkOutlineView;
}

void WayfoldBookmarkDataSource::ensureDataLoaded()
{
    if (_dataIsLoaded)
        return;
    showBrowserTree();
    NotificationCenter::defaultCenter().addObserver(
        this, [this](const Notification &notification) { safariBookmarksUpdated(notification); },
        Notifications::SafariBookmarkFileModNotification);
    _dataIsLoaded = true;
}

void WayfoldBookmarkDataSource::safariBookmarksUpdated(const Notification & /*notification*/)
{
    if (_bookmarkOutlineView)
        _bookmarkOutlineView->changeWhenSeen([this] { followBookmarks(); });
    else
        followBookmarks();
}

void WayfoldBookmarkDataSource::followBookmarks()
{
    const std::lock_guard<std::mutex> guard(_parsingBookmarksLock);
    if (_listIsFiltered) {
        filterList();
        return;
    }
    if (_bookmarkOutlineView)
        _bookmarkOutlineView->prepForReloadData();
    showBrowserTree();
}

void WayfoldBookmarkDataSource::showBrowserTree()
{
    _bookmarkBookmarkRoot = KDRDrawerBundle::sharedInstance().safariBookmarkRoot();
    reloadList();
}

void WayfoldBookmarkDataSource::reloadList()
{
    if (!_bookmarkOutlineView)
        return;
    _bookmarkOutlineView->setPlaceholderText(WayfoldToolkit::localizedString(
        _listIsFiltered ? QStringLiteral(QT_TRID_NOOP("No Matches"))
                        : QStringLiteral(QT_TRID_NOOP(
                              "There are no bookmarks.\n\nThose that you add in the browser appear here."))));
    _bookmarkOutlineView->reloadData();
}

// --- Searching ------------------------------------------------------------------------------------------------------

void WayfoldBookmarkDataSource::processSearchFilter(const QLineEdit *sender)
{
    _lastFilterString = sender->text();
    filterList();
    if (_bookmarkOutlineView)
        _bookmarkOutlineView->scrollAfterSearch(_lastFilterString.isEmpty());
}

void WayfoldBookmarkDataSource::filterList()
{
    const std::lock_guard<std::mutex> guard(_filteringBookmarksLock);
    if (_bookmarkOutlineView)
        _bookmarkOutlineView->prepForReloadData();
    if (!_lastFilterString.isEmpty()) {
        showMatches();
    } else if (_listIsFiltered) {
        _listIsFiltered = false;
        if (_bookmarkOutlineView)
            _bookmarkOutlineView->alsoReexpand(std::exchange(_openBeforeSearch, {}));
        showBrowserTree();
    }
}

void WayfoldBookmarkDataSource::showMatches()
{
    if (!_listIsFiltered) {
        if (_bookmarkOutlineView)
            _openBeforeSearch = _bookmarkOutlineView->getExpandedItemsUUIDList();
        _bookmarkBookmarkRoot = WayfoldBookmarkFolder::bookmarkWithTitle(QStringLiteral(""));
        _listIsFiltered = true;
    }
    fillRootFromMatches();
    reloadList();
}

void WayfoldBookmarkDataSource::fillRootFromMatches()
{
    const WayfoldBookmarkFolderPtr tree = KDRDrawerBundle::sharedInstance().safariBookmarkRoot();
    _bookmarkBookmarkRoot->removeAllChildren();
    if (!tree) // a browser that has not written its file yet
        return;
    _bookmarkBookmarkRoot->setLazyChildren(
        std::make_shared<LazyCopies>(tree->bookmarksWithSubstring(_lastFilterString)));
}
