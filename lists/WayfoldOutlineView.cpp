#include "lists/WayfoldOutlineView.h"

#include "core/KDRDrawerBundle.h"
#include "core/Notifications.h"
#include "core/settings/WayfoldDefaults.h"
#include "core/settings/WayfoldToolkit.h"
#include "lists/WayfoldOutlineViewDelegate.h"
#include "platform/base/NotificationQueue.h"

#include <QContextMenuEvent>
#include <QDrag>
#include <QFontMetricsF>
#include <QHash>
#include <QKeyEvent>
#include <QPainter>
#include <QPointer>
#include <QSet>
#include <algorithm>
#include <utility>

namespace
{
constexpr qreal rowGap = 3;
constexpr QMargins placeholderMargins(16, 24, 16, 24);

const QString resolveAction = QStringLiteral("handleResolveBookmarkRequest:");
const QString openInTabsAction = QStringLiteral("handleOpenBookmarksInTabsRequest:");

// The lists share one menu; its items act on the list that showed it last, as long as there is that list.
class ListMenuTarget : public MenuItemTarget
{
public:
    void attach(QMenu *menu, WayfoldOutlineView *view)
    {
        _view = view;
        if (menu == _menu)
            return;
        _menu = menu;
        const QList<QAction *> items = menu->actions();
        for (QAction *item : items)
            MenuItem::setTarget(item, this);
        MenuItem::validateOnShow(menu);
    }

    bool validateMenuItem(QAction *item) override
    {
        return _view && _view->respondsToAction(MenuItem::action(item)) && _view->validateMenuItem(item);
    }

    void performMenuItem(QAction *item) override
    {
        if (_view)
            _view->performMenuItem(item);
    }

private:
    QPointer<QMenu> _menu;
    QPointer<WayfoldOutlineView> _view;
};

ListMenuTarget &listMenuTarget()
{
    static ListMenuTarget target;
    return target;
}

// To itself, so that nothing is loaded anew while the mouse is held down or a dialog runs.
const QString listIsStale = QStringLiteral("WayfoldListIsStale");

QString localized(const char *key)
{
    return WayfoldToolkit::localizedString(QString::fromLatin1(key));
}

// With Control, the space bar selects and deselects one row.
bool opensLeaf(const QKeyEvent &event)
{
    const Qt::Key key = event.modifiers().testFlag(Qt::ControlModifier) ? Qt::Key_Down : Qt::Key_Space;
    return event.key() == key;
}

// A folder too, which is closed when it is open.
bool opensAny(const QKeyEvent &event)
{
    const bool isReturn = event.key() == Qt::Key_Return || event.key() == Qt::Key_Enter;
    return isReturn && !(event.modifiers() & ~Qt::KeypadModifier);
}

QStringList without(QStringList texts, const QStringList &others)
{
    texts.removeIf(
        [known = QSet(others.cbegin(), others.cend())](const QString &text) { return known.contains(text); });
    return texts;
}

bool isAddressBookItem(const KDRBookmark &item)
{
    return item.type() == KDRBookmark::PersonType || item.type() == KDRBookmark::GroupType;
}

bool isDeletable(const KDRBookmark &item)
{
    const WayfoldBookmarkFolderPtr parent = item.parent();
    return item.canBePersistent() && parent && parent->canBePersistent();
}

bool isEditable(const KDRBookmark &item)
{
    return isAddressBookItem(item) || isDeletable(item);
}

bool isEmailable(const KDRBookmark &item)
{
    return isAddressBookItem(item) || item.type() == KDRBookmark::EmailLinkType;
}

bool isWebURL(const KDRBookmark &item)
{
    return item.type() == KDRBookmark::WebLinkType || item.type() == KDRBookmark::HistoryEntryType;
}
} // namespace

WayfoldOutlineView::WayfoldOutlineView(QWidget *parent) : OutlineView(parent) {}

WayfoldOutlineView::~WayfoldOutlineView()
{
    NotificationCenter::defaultCenter().removeObserver(this);
    NotificationQueue::defaultQueue().dequeueNotificationsForObject(this);
}

// --- Appearance -----------------------------------------------------------------------------------------------------

void WayfoldOutlineView::awakeFromNib()
{
    initialize();
}

void WayfoldOutlineView::initialize()
{
    useFont(WayfoldDefaults::sharedInstance().listViewFont().value_or(font()));
    NotificationCenter::defaultCenter().addObserver(
        this, [this](const Notification &notification) { handleChangeOfFontNotify(notification); },
        Notifications::ListViewFontChangeNotification);
    NotificationCenter::defaultCenter().addObserver(
        this,
        [this](const Notification & /*notification*/) {
            if (isVisible())
                catchUp();
        },
        listIsStale, this);
}

void WayfoldOutlineView::handleChangeOfFontNotify(const Notification & /*notification*/)
{
    const WayfoldDefaults &settings = WayfoldDefaults::sharedInstance();
    const std::optional<QFont> changed =
        WayfoldDefaults::fontWithNameSize(settings.listViewFontName(), settings.listViewFontSize());
    if (!changed)
        return;
    useFont(*changed);
    viewport()->update();
}

void WayfoldOutlineView::useFont(const QFont &font)
{
    const std::lock_guard<std::mutex> guard(_listViewFontLock);
    _listViewFont = font;
    setRowHeight(QFontMetricsF(font).lineSpacing() + rowGap);
}

QFont WayfoldOutlineView::currentListViewFont() const
{
    return _listViewFont.value_or(font());
}

void WayfoldOutlineView::setPlaceholderText(const QString &text)
{
    _placeholderText = text;
    viewport()->update();
}

void WayfoldOutlineView::paintEvent(QPaintEvent *event)
{
    OutlineView::paintEvent(event);
    QRect room = viewport()->rect();
    room.setTop(std::max(0, rectOfRow(numberOfRows() - 1).bottom() + 1));
    room = room.marginsRemoved(placeholderMargins);
    const QString text = room.isEmpty() ? QString() : emptyListText();
    if (text.isEmpty())
        return;
    QPainter painter(viewport());
    painter.setFont(currentListViewFont());
    painter.setPen(palette().color(QPalette::PlaceholderText));
    constexpr int flags = Qt::AlignCenter | Qt::TextWordWrap;
    if (room.contains(painter.boundingRect(room, flags, text)))
        painter.drawText(room, flags, text);
}

QString WayfoldOutlineView::emptyListText() const
{
    return numberOfRows() == 0 ? _placeholderText : QString();
}

void WayfoldOutlineView::showEvent(QShowEvent *event)
{
    catchUp();
    OutlineView::showEvent(event);
}

void WayfoldOutlineView::changeWhenSeen(std::function<void()> change)
{
    _waitingChange = std::move(change);
    if (isVisible())
        catchUp();
}

void WayfoldOutlineView::catchUp()
{
    if (_isStale)
        reloadAfter({});
    if (const std::function<void()> change = std::exchange(_waitingChange, {}))
        change();
}

void WayfoldOutlineView::replaceContentsOfItem(const OutlineItemPtr &folder)
{
    if (_isStale || !isLoaded(folder))
        return;
    _isStale = true;
    NotificationQueue::defaultQueue().enqueueNotification({listIsStale, this}, NotificationQueue::NSPostASAP);
}

// The very items are open and selected still, and a copy in a smart folder that has the same identifier stays as it is.
// Those that were made anew, in smart folders and groups, are not.
void WayfoldOutlineView::reloadAfter(const std::function<void()> &replaceItems)
{
    const QStringList selected = getSelectedItemsUUIDList();
    const QStringList expanded = getExpandedItemsUUIDList();
    if (replaceItems)
        replaceItems();
    reloadData();
    reexpandItemsFromUUIDList(without(expanded, getExpandedItemsUUIDList()));
    reselectItemsFromUUIDList(without(selected, getSelectedItemsUUIDList()));
}

QMenu *WayfoldOutlineView::defaultMenu()
{
    return KDRDrawerBundle::sharedInstance().menu();
}

QMenu *WayfoldOutlineView::menuForEvent(QContextMenuEvent *event)
{
    const bool isPointedAt = event->reason() != QContextMenuEvent::Keyboard;
    const int row = isPointedAt ? rowAtPoint(event->pos()) : -1;
    const std::vector<int> selected = selectedRows();
    if (row >= 0 && !std::binary_search(selected.cbegin(), selected.cend(), row))
        selectIndividualRow(row);
    QMenu *menu = defaultMenu();
    if (menu)
        listMenuTarget().attach(menu, this);
    return menu;
}

Qt::DropActions WayfoldOutlineView::draggingSourceOperationMaskForLocal(bool local) const
{
    const Qt::DropActions copyOrMove = Qt::CopyAction | Qt::MoveAction;
    return local ? copyOrMove | Qt::LinkAction : copyOrMove;
}

// A drag is offered once, to this application and to the others; nobody here makes links of it.
Qt::DropAction WayfoldOutlineView::runDrag(QDrag *drag)
{
    return drag->exec(draggingSourceOperationMaskForLocal(false), Qt::CopyAction);
}

// The browser window may close while a drag runs. What handles the mouse goes on with the list afterwards, so the list
// goes only when that event is over.
void WayfoldOutlineView::startDrag(Qt::DropActions supportedActions)
{
    const std::shared_ptr<const void> keeper = _delegate ? _delegate->keptAlive() : nullptr;
    OutlineView::startDrag(supportedActions);
}

// --- Reload with memory ---------------------------------------------------------------------------------------------

void WayfoldOutlineView::prepForReloadData()
{
    _savedUUIDSelections = getSelectedItemsUUIDList();
    _savedUUIDExpansions = getExpandedItemsUUIDList();
    executeDelayedItemsLayout(); // or what is seen would not be known
    _savedPlace.emplace(*this);
    deselectAll();
}

void WayfoldOutlineView::alsoReexpand(const QStringList &uuids)
{
    if (_savedUUIDExpansions)
        _savedUUIDExpansions->append(uuids);
}

void WayfoldOutlineView::reloadData()
{
    const bool hasMemory = _savedUUIDExpansions || _savedUUIDSelections;
    if (!hasMemory)
        executeDelayedItemsLayout();
    const std::vector<OutlineExpansion> expanded = hasMemory ? std::vector<OutlineExpansion>() : expansions();
    const std::vector<KDRBookmarkPtr> selected = hasMemory ? std::vector<KDRBookmarkPtr>() : selectedItemList();
    const ListPlace place = hasMemory ? *std::exchange(_savedPlace, std::nullopt) : ListPlace(*this);
    _isStale = false;

    OutlineView::reloadData();
    removeAllToolTips();
    for (const auto &[item, isOpen] : expanded)
        std::static_pointer_cast<KDRBookmark>(item)->ensureUpToDate();
    restoreExpansions(expanded);
    selectRowsOfItems({selected.cbegin(), selected.cend()});
    if (const std::optional<QStringList> uuids = std::exchange(_savedUUIDExpansions, std::nullopt))
        reexpandItemsFromUUIDList(*uuids);
    const std::optional<QStringList> selectedUUIDs = std::exchange(_savedUUIDSelections, std::nullopt);
    if (selectedUUIDs)
        reselectItemsFromUUIDList(*selectedUUIDs);

    executeDelayedItemsLayout();
    place.restore(*this, _delegate ? _delegate->localRootFolder() : nullptr);
    if (selectedUUIDs)
        reselectCurrentRow(*selectedUUIDs);
}

std::vector<KDRBookmarkPtr> WayfoldOutlineView::expandedFolders() const
{
    std::vector<KDRBookmarkPtr> folders;
    for (const OutlineItemPtr &item : expandedItems()) {
        if (KDRBookmarkPtr folder = std::static_pointer_cast<KDRBookmark>(item); folder->isFolder())
            folders.push_back(std::move(folder));
    }
    return folders;
}

// One that collects its contents must have done so before it is opened.
void WayfoldOutlineView::expandUpToDate(const std::vector<OutlineItemPtr> &items)
{
    for (const OutlineItemPtr &item : items)
        std::static_pointer_cast<KDRBookmark>(item)->ensureUpToDate();
    expandItems(items);
}

QStringList WayfoldOutlineView::getExpandedItemsUUIDList() const
{
    QStringList uuids;
    for (const KDRBookmarkPtr &item : expandedFolders())
        uuids.append(item->uuid());
    return uuids;
}

QStringList WayfoldOutlineView::getSelectedItemsUUIDList() const
{
    QStringList uuids;
    for (const KDRBookmarkPtr &item : selectedItemList())
        uuids.append(item->uuid());
    return uuids;
}

// All are looked up in one walk over the tree. What stands in a smart folder that fills itself only when it is opened
// is found by the next walk.
void WayfoldOutlineView::reexpandItemsFromUUIDList(const QStringList &uuids)
{
    const WayfoldBookmarkFolderPtr root = _delegate ? _delegate->localRootFolder() : nullptr;
    if (!root)
        return;
    QStringList missing = uuids;
    qsizetype before = 0;
    do {
        before = missing.size();
        const QHash<QString, KDRBookmarkPtr> items = root->itemsWithUUIDs(missing);
        std::vector<OutlineItemPtr> found;
        for (const QString &uuid : std::exchange(missing, {})) {
            if (KDRBookmarkPtr item = items.value(uuid))
                found.push_back(std::move(item));
            else
                missing.append(uuid);
        }
        expandUpToDate(found);
    } while (!missing.isEmpty() && missing.size() < before);
}

void WayfoldOutlineView::reselectItemsFromUUIDList(const QStringList &uuids)
{
    const WayfoldBookmarkFolderPtr root = _delegate ? _delegate->localRootFolder() : nullptr;
    if (!root)
        return;
    const QHash<QString, KDRBookmarkPtr> items = root->itemsWithUUIDs(uuids);
    std::vector<OutlineItemPtr> found;
    for (const QString &uuid : uuids)
        found.push_back(items.value(uuid));
    selectRowsOfItems(found);
}

// Of the items with one identifier the first was found, which may be in a closed folder.
void WayfoldOutlineView::reselectCurrentRow(const QStringList &uuids)
{
    const KDRBookmarkPtr item = selectedItemCount() < uuids.size() ? itemInRow(currentRow()) : nullptr;
    if (item && uuids.contains(item->uuid()))
        selectionModel()->select(currentIndex(), QItemSelectionModel::Select);
}

void WayfoldOutlineView::scrollAfterSearch(bool hasEnded)
{
    const int selected = selectedRow();
    if (hasEnded && selected >= 0) {
        scrollRowToVisible(selected);
        return;
    }
    scrollToTop();
    if (selected < 0)
        setCurrentRow(0);
}

void WayfoldOutlineView::beginAtTop()
{
    scrollToTop();
    if (selectedRow() < 0)
        setCurrentRow(0);
    else
        scrollRowToVisible(selectedRow());
}

// --- Tool tips ------------------------------------------------------------------------------------------------------

void WayfoldOutlineView::ensureToolTipPresentForItem(const KDRBookmarkPtr &item)
{
    _tooltipRects = std::max(_tooltipRects, rowForItem(item) + 1);
}

void WayfoldOutlineView::removeAllToolTips()
{
    _tooltipRects = 0;
}

QString WayfoldOutlineView::toolTipAtPoint(const QPoint &point)
{
    const int row = rowAtPoint(point);
    const KDRBookmarkPtr item = row < _tooltipRects ? itemInRow(row) : nullptr;
    return item ? item->tooltipText() : QString();
}

// --- Selection ------------------------------------------------------------------------------------------------------

KDRBookmarkPtr WayfoldOutlineView::itemInRow(int row) const
{
    return std::static_pointer_cast<KDRBookmark>(itemAtRow(row));
}

void WayfoldOutlineView::selectRow(int row)
{
    selectRowExtending(row, true);
}

void WayfoldOutlineView::selectIndividualRow(int row)
{
    selectRowExtending(row, false);
}

void WayfoldOutlineView::selectItem(const KDRBookmarkPtr &item)
{
    if (item)
        selectRow(rowForItem(item));
}

void WayfoldOutlineView::selectItems(const std::vector<KDRBookmarkPtr> &items)
{
    selectRowsOfItems({items.cbegin(), items.cend()});
    if (!items.empty())
        scrollRowToVisible(rowForItem(items.back()));
}

void WayfoldOutlineView::selectIndividualItem(const KDRBookmarkPtr &item)
{
    const int row = item ? rowForItem(item) : -1;
    if (row >= 0)
        selectIndividualRow(row);
}

KDRBookmarkPtr WayfoldOutlineView::selectedItem() const
{
    return itemInRow(selectedRow());
}

int WayfoldOutlineView::selectedItemCount() const
{
    return numberOfSelectedRows();
}

std::vector<KDRBookmarkPtr> WayfoldOutlineView::selectedItemList() const
{
    std::vector<KDRBookmarkPtr> items;
    for (const int row : selectedRows()) {
        if (KDRBookmarkPtr item = itemInRow(row))
            items.push_back(std::move(item));
    }
    return items;
}

bool WayfoldOutlineView::allSelectedItems(Predicate qualifies) const
{
    const std::vector<KDRBookmarkPtr> items = selectedItemList();
    return !items.empty() && std::all_of(items.cbegin(), items.cend(),
                                         [qualifies](const KDRBookmarkPtr &item) { return qualifies(*item); });
}

bool WayfoldOutlineView::allSelectedItemsAreEditable() const
{
    return allSelectedItems(isEditable);
}

bool WayfoldOutlineView::allSelectedItemsAreDeletable() const
{
    return allSelectedItems(isDeletable);
}

bool WayfoldOutlineView::allSelectedItemsAreAddressBookItems() const
{
    return allSelectedItems(isAddressBookItem);
}

bool WayfoldOutlineView::allSelectedItemsAreEmailable() const
{
    return allSelectedItems(isEmailable);
}

bool WayfoldOutlineView::allSelectedItemsAreWebURLs() const
{
    return allSelectedItems(isWebURL);
}

// --- Commands -------------------------------------------------------------------------------------------------------

void WayfoldOutlineView::handleResolveBookmarkRequest(QObject *sender)
{
    if (_delegate)
        _delegate->handleResolveBookmarkRequest(sender);
}

void WayfoldOutlineView::handleOpenBookmarksInTabsRequest(QObject *sender)
{
    if (_delegate)
        _delegate->handleOpenBookmarksInTabsRequest(sender);
}

void WayfoldOutlineView::keyPressEvent(QKeyEvent *event)
{
    const KDRBookmarkPtr item = opensAny(*event) || opensLeaf(*event) ? selectedItem() : nullptr;
    if (!item || (item->isFolder() && !opensAny(*event)) || !doubleAction) {
        OutlineView::keyPressEvent(event);
        return;
    }
    event->accept();
    if (!event->isAutoRepeat())
        doubleAction();
}

bool WayfoldOutlineView::respondsToAction(const QString &action) const
{
    return action == resolveAction || action == openInTabsAction;
}

bool WayfoldOutlineView::validateOpenItem(QAction *item) const
{
    const std::vector<KDRBookmarkPtr> items = selectedItemList();
    item->setText(localized(items.size() > 1 ? QT_TRID_NOOP("Open Items") : QT_TRID_NOOP("Open Item")));
    if (items.empty())
        return false;
    const bool areAllPeople = std::all_of(items.cbegin(), items.cend(), [](const KDRBookmarkPtr &selected) {
        return selected->type() == KDRBookmark::PersonType;
    });
    if (!areAllPeople)
        return true;
    if (items.size() > 1)
        return false;
    item->setText(localized("Open Item in Address Book"));
    return true;
}

bool WayfoldOutlineView::validateOpenInTabsItem(QAction *item) const
{
    const bool enabled = WayfoldDefaults::tabbedBrowsingEnabled() && allSelectedItemsAreWebURLs();
    item->setText(localized(enabled && selectedItemCount() > 1 ? QT_TRID_NOOP("Open Items in New Tabs")
                                                               : QT_TRID_NOOP("Open Item in New Tab")));
    return enabled;
}

bool WayfoldOutlineView::validateMenuItem(QAction *item)
{
    const QString action = MenuItem::action(item);
    if (action == resolveAction)
        return validateOpenItem(item);
    if (action == openInTabsAction)
        return validateOpenInTabsItem(item);
    return action != u"handleNewSubFolderRequest:" && action != u"handleNewNoteRequest:" &&
           action != u"handleNewEmailRequest:" && action != u"handleNewPersonRequest:" &&
           action != u"handleSendEmailRequest:";
}

void WayfoldOutlineView::performMenuItem(QAction *item)
{
    const QString action = MenuItem::action(item);
    if (action == resolveAction)
        handleResolveBookmarkRequest(item);
    else if (action == openInTabsAction)
        handleOpenBookmarksInTabsRequest(item);
}
