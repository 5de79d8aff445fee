#include "lists/WayfoldOutlineViewDataSource.h"

#include "core/KDRDrawerBundle.h"
#include "core/SiteDrawer.h"
#include "lists/ItemDescription.h"
#include "lists/ItemMimeData.h"
#include "lists/NoteViewer.h"
#include "lists/PasteboardTypes.h"
#include "lists/WayfoldOutlineView.h"
#include "model/WayfoldBookmarkABPerson.h"
#include "model/WayfoldBookmarkEmail.h"
#include "platform/base/StringRules.h"
#include "platform/host/HostFrame.h"
#include "platform/host/HostWebView.h"
#include "platform/host/HostWindow.h"
#include "platform/widgets/TextFieldCell.h"
#include "platform/widgets/Workspace.h"

#include <QHash>

namespace
{
KDRBookmarkPtr bookmark(const OutlineItemPtr &item)
{
    return std::static_pointer_cast<KDRBookmark>(item); // a list's rows are items, nothing else
}

Url urlOf(const KDRBookmark &item)
{
    return item.value().value<Url>();
}

// Every kind may travel as itself where the lists' own types are allowed.
QStringList typesOfOneItem(KDRBookmark::Type type)
{
    namespace Types = PasteboardTypes;
    switch (type) {
    case KDRBookmark::FolderType:
        return {Types::NSStringPboardType, Types::BookmarkDictionaryList};
    case KDRBookmark::WebLinkType:
    case KDRBookmark::HistoryEntryType:
        return {Types::NSStringPboardType, Types::NSURLPboardType, Types::WebURLsWithTitles};
    case KDRBookmark::FileLinkType:
        return {Types::NSStringPboardType, Types::NSURLPboardType, Types::WebURLsWithTitles,
                Types::NSFilenamesPboardType};
    case KDRBookmark::NoteType:
        return {Types::NSStringPboardType};
    case KDRBookmark::EmailLinkType:
        return {Types::NSStringPboardType, Types::NSURLPboardType};
    case KDRBookmark::PersonType:
        return {Types::ABPeopleUIDs, Types::NSVCardPboardType};
    case KDRBookmark::GroupType:
        return {Types::ABGroupsUIDs};
    default:
        return {};
    }
}

QStringList typesOfOneItem(KDRBookmark::Type type, bool privateTypesAllowed)
{
    QStringList types = typesOfOneItem(type);
    if (privateTypesAllowed && type != KDRBookmark::NoType)
        types.append(PasteboardTypes::KDRBookmark);
    return types;
}

// Several people or groups travel under the name for a single item, so that only the first of them is moved.
QStringList typesOfItemAmongSeveral(KDRBookmark::Type type, bool privateTypesAllowed)
{
    namespace Types = PasteboardTypes;
    QStringList types;
    switch (type) {
    case KDRBookmark::FolderType:
    case KDRBookmark::WebLinkType:
    case KDRBookmark::EmailLinkType:
    case KDRBookmark::HistoryEntryType:
        types = {Types::BookmarkDictionaryList};
        break;
    case KDRBookmark::FileLinkType:
        types = {Types::BookmarkDictionaryList, Types::NSFilenamesPboardType};
        break;
    case KDRBookmark::PersonType:
    case KDRBookmark::GroupType:
        return typesOfOneItem(type, privateTypesAllowed);
    default:
        return {};
    }
    if (privateTypesAllowed)
        types.append(Types::KDRBookmarkList);
    return types;
}

// The types that every one of the items can be written as.
QStringList commonTypes(const std::vector<OutlineItemPtr> &items, bool privateTypesAllowed)
{
    QHash<QString, std::size_t> counts;
    for (const OutlineItemPtr &item : items) {
        const KDRBookmark::Type type = bookmark(item)->type();
        const QStringList types = items.size() == 1 ? typesOfOneItem(type, privateTypesAllowed)
                                                    : typesOfItemAmongSeveral(type, privateTypesAllowed);
        for (const QString &name : types)
            ++counts[name];
    }
    QStringList common;
    for (auto count = counts.cbegin(); count != counts.cend(); ++count) {
        if (count.value() == items.size())
            common.append(count.key());
    }
    return common;
}

// A page of the history has no dictionary of its own: its place is taken by that of a link to it.
void writeVisits(QVariantMap &dictionary, const KDRBookmarkPtr &item)
{
    if (item->type() == KDRBookmark::HistoryEntryType)
        dictionary = WayfoldBookmarkURL::bookmarkWithTitleAndURL(item->title(), urlOf(*item))->createDictionary(false);
    const WayfoldBookmarkFolderPtr folder = WayfoldBookmarkFolder::fromItem(item);
    if (!folder || folder->isEmpty())
        return;
    const std::vector<KDRBookmarkPtr> &children = folder->children();
    const QString childrenKey = QStringLiteral("Children");
    QVariantList written = dictionary.take(childrenKey).toList();
    for (std::size_t i = 0; i < children.size() && qsizetype(i) < written.size(); ++i) {
        QVariantMap child = written[qsizetype(i)].toMap();
        written[qsizetype(i)].clear(); // or changing the map would copy it
        writeVisits(child, children[i]);
        written[qsizetype(i)] = child;
    }
    dictionary.insert(childrenKey, written);
}

QVariantList urlWithTitle(const KDRBookmark &item)
{
    return {QVariant(QVariantList{urlOf(item).absoluteString()}), QVariant(QVariantList{item.title()})};
}

void openInCurrentTab(const Url &url)
{
    const SiteDrawer *drawer = KDRDrawerBundle::sharedInstance().frontDrawer();
    const SiteDrawerController *controller = drawer ? drawer->controller() : nullptr;
    if (const std::shared_ptr<HostFrame> frame = controller ? controller->currentWebFrame() : nullptr)
        frame->loadRequest(url);
    else
        Workspace::openURL(url);
}

// Whether the window shows a page, or is about to: an empty one takes the address itself.
bool showsPage(const HostWindow &window)
{
    const std::shared_ptr<HostWebView> view = window.currentWebView();
    const std::shared_ptr<HostFrame> frame = view ? view->mainFrame() : nullptr;
    return frame && (frame->dataSource() || frame->provisionalDataSource());
}
} // namespace

void WayfoldOutlineViewDataSource::leaveView(WayfoldOutlineView *view)
{
    if (!view)
        return;
    if (view->outlineDataSource() == this)
        view->setOutlineDataSource(nullptr);
    if (view->delegate() == this)
        view->setDelegate(nullptr);
    view->doubleAction = {};
    view->changeWhenSeen({});
}

void WayfoldOutlineViewDataSource::deselectAllItems()
{
    if (WayfoldOutlineView *view = myOutlineView())
        view->deselectAll();
}

bool WayfoldOutlineViewDataSource::anyItemSelected() const
{
    const WayfoldOutlineView *view = myOutlineView();
    return view && view->selectedRow() >= 0;
}

const QStringList &WayfoldOutlineViewDataSource::acceptableDragTypes()
{
    return PasteboardTypes::acceptableDragTypes();
}

// --- Rows -----------------------------------------------------------------------------------------------------------

KDRBookmarkPtr WayfoldOutlineViewDataSource::itemOrRoot(const OutlineItemPtr &item) const
{
    return item ? bookmark(item) : localRootFolder();
}

int WayfoldOutlineViewDataSource::outlineViewNumberOfChildrenOfItem(OutlineView & /*view*/, const OutlineItemPtr &item)
{
    const WayfoldBookmarkFolderPtr folder = WayfoldBookmarkFolder::fromItem(itemOrRoot(item));
    if (!folder)
        return 0;
    folder->ensureUpToDate(); // a key can open a folder that was never painted
    return int(folder->childCount());
}

bool WayfoldOutlineViewDataSource::outlineViewIsItemExpandable(OutlineView & /*view*/, const OutlineItemPtr &item)
{
    const KDRBookmarkPtr shown = itemOrRoot(item);
    return shown && shown->isFolder();
}

OutlineItemPtr WayfoldOutlineViewDataSource::outlineViewChildOfItem(OutlineView & /*view*/, int index,
                                                                    const OutlineItemPtr &item)
{
    const WayfoldBookmarkFolderPtr folder = WayfoldBookmarkFolder::fromItem(itemOrRoot(item));
    if (!folder)
        return nullptr;
    folder->ensureUpToDate();
    return folder->childAtIndex(unsigned(index));
}

bool WayfoldOutlineViewDataSource::outlineViewMakesChildrenOfItem(OutlineView & /*view*/, const OutlineItemPtr &item)
{
    const WayfoldBookmarkFolderPtr folder = WayfoldBookmarkFolder::fromItem(itemOrRoot(item));
    return folder && folder->lazyChildren();
}

bool WayfoldOutlineViewDataSource::outlineViewIsChildExpandable(OutlineView & /*view*/, int index,
                                                                const OutlineItemPtr &item)
{
    const WayfoldBookmarkFolderPtr folder = WayfoldBookmarkFolder::fromItem(itemOrRoot(item));
    return folder && unsigned(index) < folder->childCount() && folder->isFolderAtIndex(unsigned(index));
}

bool WayfoldOutlineViewDataSource::outlineViewMakesLeavesOfItem(OutlineView & /*view*/, const OutlineItemPtr &item)
{
    const WayfoldBookmarkFolderPtr folder = WayfoldBookmarkFolder::fromItem(itemOrRoot(item));
    return folder && folder->lazyChildren() && !folder->mayHaveLazyFolders();
}

std::vector<std::pair<int, OutlineItemPtr>>
WayfoldOutlineViewDataSource::outlineViewMadeChildrenOfItem(OutlineView & /*view*/, const OutlineItemPtr &item)
{
    std::vector<std::pair<int, OutlineItemPtr>> made;
    if (const WayfoldBookmarkFolderPtr folder = WayfoldBookmarkFolder::fromItem(itemOrRoot(item))) {
        for (auto &[index, child] : folder->madeChildrenWithIndexes())
            made.emplace_back(int(index), std::move(child));
    }
    return made;
}

QString WayfoldOutlineViewDataSource::outlineViewObjectValueByItem(OutlineView &view, const OutlineItemPtr &item)
{
    const KDRBookmarkPtr shown = itemOrRoot(item);
    if (!shown)
        return {};
    if (auto *list = qobject_cast<WayfoldOutlineView *>(&view))
        list->ensureToolTipPresentForItem(shown);
    shown->ensureUpToDate();
    return shown->title();
}

QString WayfoldOutlineViewDataSource::outlineViewDescriptionOfItem(OutlineView & /*view*/, const OutlineItemPtr &item)
{
    return ItemDescription::ofItem(*bookmark(item));
}

void WayfoldOutlineViewDataSource::outlineViewWillDisplayCell(OutlineView &view, TextFieldCell &cell,
                                                              const OutlineItemPtr &item)
{
    const qreal height = view.rowHeight();
    if (item)
        cell.setImage(bookmark(item)->imageForCellSize(QSizeF(height, height)));
    if (const auto *list = qobject_cast<WayfoldOutlineView *>(&view))
        cell.setFont(list->currentListViewFont());
}

bool WayfoldOutlineViewDataSource::outlineViewShouldEdit(OutlineView & /*view*/, const OutlineItemPtr & /*item*/)
{
    return false;
}

void WayfoldOutlineViewDataSource::outlineViewSelectionDidChange(OutlineView & /*view*/) {}

// --- Dragging out ---------------------------------------------------------------------------------------------------

QMimeData *WayfoldOutlineViewDataSource::outlineViewWriteItems(OutlineView &view,
                                                               const std::vector<OutlineItemPtr> &items)
{
    const auto *list = qobject_cast<WayfoldOutlineView *>(&view);
    const bool privateTypesAllowed = list && list->allowIncomingDrops();
    QStringList types = commonTypes(items, privateTypesAllowed);
    if (types.isEmpty())
        return nullptr;
    if (!privateTypesAllowed && types.contains(PasteboardTypes::BookmarkDictionaryList))
        types.append(PasteboardTypes::dictionariesWithVisits);
    _dragSource = &view;
    _dragItems.clear();
    for (const OutlineItemPtr &item : items)
        _dragItems.push_back(bookmark(item));
    // The data may outlive this source, when the window closes during the drag.
    const auto provide = [source = QPointer<WayfoldOutlineViewDataSource>(this)](const QString &type) {
        return source ? source->pasteboardProvideDataForType(type) : QVariant();
    };
    return new ItemMimeData(types, provide, _dragItems);
}

void WayfoldOutlineViewDataSource::outlineViewDraggingEnded(OutlineView & /*view*/)
{
    _dragSource.clear();
    _dragItems.clear();
}

QVariantList WayfoldOutlineViewDataSource::valuesOfDragItems(QVariant (*value)(const KDRBookmarkPtr &item)) const
{
    QVariantList values;
    for (const KDRBookmarkPtr &item : _dragItems)
        values.append(value(item));
    return values;
}

QVariantList WayfoldOutlineViewDataSource::linksOfDragItems() const
{
    QVariantList addresses;
    QVariantList titles;
    for (const KDRBookmarkPtr &item : _dragItems) {
        const Url url = urlOf(*item);
        if (url.isNull())
            continue;
        addresses.append(url.absoluteString());
        titles.append(item->title());
    }
    return {QVariant(addresses), QVariant(titles)};
}

QString WayfoldOutlineViewDataSource::cardsOfDragItems() const
{
    QByteArray cards;
    for (const KDRBookmarkPtr &item : _dragItems) {
        if (const auto person = std::dynamic_pointer_cast<WayfoldBookmarkABPerson>(item))
            cards += person->vcard();
    }
    return StringRules::fromUtf8(cards);
}

QVariant WayfoldOutlineViewDataSource::pasteboardProvideDataForType(const QString &type) const
{
    namespace Types = PasteboardTypes;
    if (!_dragSource || _dragItems.empty())
        return {};
    const KDRBookmark &first = *_dragItems.front();
    if (type == Types::NSStringPboardType)
        return first.valueAsString();
    if (type == Types::NSURLPboardType)
        return urlOf(first).absoluteString();
    if (type == Types::WebURLsWithTitles)
        return urlWithTitle(first);
    if (type == Types::KDRBookmark)
        return first.uuid();
    if (type == Types::NSFilenamesPboardType)
        return valuesOfDragItems([](const KDRBookmarkPtr &item) { return QVariant(urlOf(*item).path()); });
    if (type == Types::BookmarkDictionaryList)
        return valuesOfDragItems([](const KDRBookmarkPtr &item) { return QVariant(item->createDictionary(false)); });
    if (type == Types::dictionariesWithVisits) {
        return valuesOfDragItems([](const KDRBookmarkPtr &item) {
            QVariantMap dictionary = item->createDictionary(false);
            writeVisits(dictionary, item);
            return QVariant(dictionary);
        });
    }
    if (type == Types::mozillaUrl)
        return linksOfDragItems();
    if (type == Types::NSVCardPboardType)
        return cardsOfDragItems();
    if (type == Types::plainText)
        return valuesOfDragItems([](const KDRBookmarkPtr &item) { return QVariant(item->title()); });
    if (type == Types::KDRBookmarkList || type == Types::ABPeopleUIDs || type == Types::ABGroupsUIDs)
        return valuesOfDragItems([](const KDRBookmarkPtr &item) { return QVariant(item->uuid()); });
    return {};
}

// --- Dropping -------------------------------------------------------------------------------------------------------

bool WayfoldOutlineViewDataSource::outlineViewTakesData(OutlineView & /*view*/, const QMimeData & /*data*/)
{
    return false;
}

Qt::DropAction WayfoldOutlineViewDataSource::outlineViewValidateDrop(OutlineView & /*view*/, const QMimeData & /*data*/,
                                                                     bool /*isLocal*/, OutlineDropTarget & /*target*/)
{
    return Qt::IgnoreAction;
}

bool WayfoldOutlineViewDataSource::outlineViewAcceptDrop(OutlineView & /*view*/, const QMimeData & /*data*/,
                                                         const OutlineDropTarget & /*target*/)
{
    return false;
}

// --- Opening --------------------------------------------------------------------------------------------------------

void WayfoldOutlineViewDataSource::openItem(const KDRBookmarkPtr &item)
{
    switch (item->type()) {
    case KDRBookmark::FolderType:
    case KDRBookmark::GroupType:
        if (myOutlineView()->isItemExpanded(item))
            myOutlineView()->collapseItem(item);
        else
            myOutlineView()->expandItem(item);
        break;
    case KDRBookmark::WebLinkType:
    case KDRBookmark::HistoryEntryType:
        openInCurrentTab(urlOf(*item));
        break;
    case KDRBookmark::FileLinkType:
        Workspace::openURL(urlOf(*item));
        break;
    case KDRBookmark::EmailLinkType:
        Workspace::openURL(static_cast<const WayfoldBookmarkEmail &>(*item).urlForMailProgram());
        break;
    case KDRBookmark::PersonType:
        std::static_pointer_cast<WayfoldBookmarkABPerson>(item)->selectInAddressBook();
        break;
    case KDRBookmark::NoteType:
        NoteViewer::showNote(std::static_pointer_cast<WayfoldBookmarkNote>(item));
        break;
    default:
        break;
    }
}

void WayfoldOutlineViewDataSource::handleResolveBookmarkRequest(QObject * /*sender*/)
{
    if (!anyItemSelected())
        return;
    const std::shared_ptr<const void> keeper = keptAlive();
    for (const KDRBookmarkPtr &item : myOutlineView()->selectedItemList())
        openItem(item);
}

void WayfoldOutlineViewDataSource::handleOpenBookmarksInTabsRequest(QObject * /*sender*/)
{
    if (!anyItemSelected())
        return;
    const SiteDrawer *drawer = KDRDrawerBundle::sharedInstance().frontDrawer();
    const std::shared_ptr<HostWindow> window = drawer ? drawer->parentWindow() : nullptr;
    if (!window)
        return;
    for (const KDRBookmarkPtr &item : myOutlineView()->selectedItemList()) {
        if (item->type() != KDRBookmark::WebLinkType && item->type() != KDRBookmark::HistoryEntryType)
            continue;
        if (showsPage(*window))
            window->openURLInNewTab(urlOf(*item));
        else
            window->windowShouldGoToURL(urlOf(*item));
    }
}
