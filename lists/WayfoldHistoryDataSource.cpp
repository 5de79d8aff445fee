#include "lists/WayfoldHistoryDataSource.h"

#include "core/KDRDrawerBundle.h"
#include "core/Notifications.h"
#include "core/settings/WayfoldDefaults.h"
#include "core/settings/WayfoldToolkit.h"
#include "lists/WayfoldHistoryOutlineView.h"
#include "model/TextSearch.h"
#include "model/history/HistoryGrouping.h"
#include "model/history/HistoryMatches.h"

#include <QLineEdit>
#include <utility>

void WayfoldHistoryDataSource::regroupBookmarksFromFolderIntoFolderWithGroupingStyle(
    const WayfoldBookmarkFolderPtr &from, const WayfoldBookmarkFolderPtr &into, const QString &style)
{
    HistoryGrouping::regroup(from, into, style);
}

WayfoldHistoryDataSource::WayfoldHistoryDataSource(WayfoldHistoryOutlineView *view) : _historyOutlineView(view) {}

WayfoldHistoryDataSource::~WayfoldHistoryDataSource()
{
    NotificationCenter::defaultCenter().removeObserver(this);
    leaveView(_historyOutlineView);
}

void WayfoldHistoryDataSource::awakeFromNib()
{
    _historyBookmarkRoot.reset();
    _listIsFiltered = false;
    _lastFilterString = QString();
    _oldGroupingStyle = QString();
    _dataIsLoaded = false;
    _rootBeforeSearch.reset();
    _openBeforeSearch.clear();
    if (_historyOutlineView)
        _historyOutlineView->doubleAction = [this] { handleResolveBookmarkRequest(_historyOutlineView); };
}

WayfoldOutlineView *WayfoldHistoryDataSource::myOutlineView() const
{
    return _historyOutlineView;
}

// --- Grouping -------------------------------------------------------------------------------------------------------

void WayfoldHistoryDataSource::ensureDataLoaded()
{
    if (_dataIsLoaded)
        return;
    parseHistoryBookmarks();
    NotificationCenter::defaultCenter().addObserver(
        this, [this](const Notification &notification) { safariHistoryUpdated(notification); },
        Notifications::SafariHistoryFileModNotification);
    _dataIsLoaded = true;
}

void WayfoldHistoryDataSource::parseHistoryBookmarks()
{
    const QString style = WayfoldDefaults::sharedInstance().historyGroupingStyle();
    const std::lock_guard<std::mutex> guard(_parsingHistoryLock);
    if (!_historyBookmarkRoot) {
        _historyBookmarkRoot = std::make_shared<WayfoldBookmarkFolder>();
        _oldGroupingStyle = style;
    } else if (_oldGroupingStyle.isNull() || style != _oldGroupingStyle) {
        _oldGroupingStyle = style;
        _historyBookmarkRoot->removeAllChildren();
    }
    regroupIntoRoot(style);
    deselectAllItems();
    reloadList();
}

void WayfoldHistoryDataSource::regroupIntoRoot(const QString &style)
{
    regroupBookmarksFromFolderIntoFolderWithGroupingStyle(KDRDrawerBundle::sharedInstance().historyBookmarkRoot(),
                                                          _historyBookmarkRoot, style);
}

// Every window has its own list, and each takes its time at each visit; only those that are seen are worth it.
void WayfoldHistoryDataSource::safariHistoryUpdated(const Notification & /*notification*/)
{
    if (_historyOutlineView)
        _historyOutlineView->changeWhenSeen([this] { followHistory(); });
    else
        followHistory();
}

void WayfoldHistoryDataSource::followHistory()
{
    if (_listIsFiltered) {
        filterList();
        return;
    }
    if (_historyOutlineView)
        _historyOutlineView->prepForReloadData();
    parseHistoryBookmarks();
}

void WayfoldHistoryDataSource::reloadList()
{
    if (!_historyOutlineView)
        return;
    _historyOutlineView->setPlaceholderText(WayfoldToolkit::localizedString(
        _listIsFiltered
            ? QStringLiteral(QT_TRID_NOOP("No Matches"))
            : QStringLiteral(QT_TRID_NOOP("The history is empty.\n\nThe pages that you visit appear here."))));
    _historyOutlineView->reloadData();
}

// --- Searching ------------------------------------------------------------------------------------------------------

void WayfoldHistoryDataSource::processSearchFilter(const QLineEdit *sender)
{
    _lastFilterString = sender->text();
    filterList();
    if (_historyOutlineView)
        _historyOutlineView->scrollAfterSearch(_lastFilterString.isEmpty());
}

void WayfoldHistoryDataSource::filterList()
{
    const std::lock_guard<std::mutex> guard(_filteringHistoryLock);
    if (_historyOutlineView)
        _historyOutlineView->prepForReloadData();
    if (!_lastFilterString.isEmpty()) {
        showMatches();
    } else if (_listIsFiltered) {
        _listIsFiltered = false;
        showGroupsAgain();
    }
}

void WayfoldHistoryDataSource::showMatches()
{
    if (!_listIsFiltered) {
        _rootBeforeSearch = _historyBookmarkRoot;
        if (_historyOutlineView)
            _openBeforeSearch = _historyOutlineView->getExpandedItemsUUIDList();
        _historyBookmarkRoot = WayfoldBookmarkFolder::bookmarkWithTitle(QStringLiteral(""));
        _listIsFiltered = true;
    }
    fillRootFromMatches();
    deselectAllItems();
    reloadList();
}

void WayfoldHistoryDataSource::fillRootFromMatches()
{
    const WayfoldBookmarkFolderPtr history = KDRDrawerBundle::sharedInstance().historyBookmarkRoot();
    const TextSearch search(_lastFilterString);
    _historyBookmarkRoot->removeAllChildren();
    if (!history) // a browser that has not written its file yet
        return;
    if (HistoryItems::ofFolder(*history)) {
        _historyBookmarkRoot->setLazyChildren(std::make_shared<HistoryMatches>(*history, search));
        return;
    }
    for (const KDRBookmarkPtr &match : history->bookmarksWithSubstring(_lastFilterString))
        _historyBookmarkRoot->addChild(match->copy());
}

// The folder of the matches becomes that of the groups, with the folders that it has for them already.
void WayfoldHistoryDataSource::showGroupsAgain()
{
    _historyBookmarkRoot->removeAllChildren();
    const WayfoldBookmarkFolderPtr before = std::exchange(_rootBeforeSearch, nullptr);
    for (const KDRBookmarkPtr &child : before ? before->madeChildren() : std::vector<KDRBookmarkPtr>()) {
        if (child->isFolder())
            _historyBookmarkRoot->addChild(child);
    }
    if (_historyOutlineView)
        _historyOutlineView->alsoReexpand(std::exchange(_openBeforeSearch, {}));
    parseHistoryBookmarks();
}
