#include "lists/WayfoldScratchDataSource.h"

#include "core/KDRDrawerBundle.h"
#include "core/Notifications.h"
#include "core/settings/WayfoldDefaults.h"
#include "core/settings/WayfoldToolkit.h"
#include "lists/DroppedData.h"
#include "lists/PageTitle.h"
#include "lists/ScratchpadDrawer.h"
#include "lists/ScratchpadDrop.h"
#include "lists/WayfoldScratchOutlineView.h"
#include "lists/WayfoldSitePopupButton.h"
#include "model/WayfoldAutoFolder.h"
#include "model/WayfoldBookmarkURL.h"
#include "platform/base/PlatformNotifications.h"
#include "platform/contacts/ContactStore.h"
#include "platform/host/HostFrame.h"
#include "platform/host/HostWebView.h"
#include "platform/host/HostWindow.h"
#include "platform/widgets/Alert.h"
#include "platform/widgets/Image.h"

#include <QAbstractButton>
#include <algorithm>

namespace
{
constexpr int buttonImageSize = 16;

QString localized(const char *key)
{
    return WayfoldToolkit::localizedString(QString::fromLatin1(key));
}

void setImage(QAbstractButton *button, const char *name)
{
    const std::shared_ptr<Image> image =
        WayfoldToolkit::loadImageNamedScaledTo(QString::fromLatin1(name), QSizeF(buttonImageSize, buttonImageSize));
    if (!button || !image)
        return;
    button->setIcon(image->icon());
    button->setIconSize(QSize(buttonImageSize, buttonImageSize));
}

void setToolTip(QAbstractButton *button, const char *key)
{
    if (!button)
        return;
    button->setToolTip(localized(key));
    button->setAccessibleName(localized(key));
}

void setEnabled(QAbstractButton *button, bool enabled)
{
    if (button)
        button->setEnabled(enabled);
}

QString deleteQuestion(const std::vector<KDRBookmarkPtr> &items)
{
    if (items.size() == 1)
        return localized("Are you sure you want to delete \"%@\"?").replace(QStringLiteral("%@"), items[0]->title());
    return localized("Are you sure you want to delete these %u items ?")
        .replace(QStringLiteral("%u"), QString::number(items.size()));
}

// What an item's refresh does, and below folders the same for people too; but for smart folders and groups that nobody
// has looked into: they collect when somebody does, and with many sites and a long history collecting for all of them
// takes long.
void refresh(const KDRBookmarkPtr &item)
{
    const auto smartFolder = std::dynamic_pointer_cast<WayfoldAutoFolder>(item);
    const WayfoldBookmarkFolderPtr folder = WayfoldBookmarkFolder::fromItem(item);
    if (smartFolder ? smartFolder->isLoaded() : !folder) {
        item->refresh();
        return;
    }
    if (smartFolder)
        return;
    for (const KDRBookmarkPtr &child : folder->children())
        refresh(child);
}

// Whether the list below that folder shows the contacts as they are now, in whichever window; from now on it does.
bool noteContactsFollowed(const WayfoldBookmarkFolder &root)
{
    static quint64 followed = 0;
    static QSet<QString> roots; // those that follow that generation
    const quint64 generation = ContactStore::sharedAddressBook().generation();
    if (std::exchange(followed, generation) != generation)
        roots.clear();
    const bool wasFollowed = roots.contains(root.uuid());
    roots.insert(root.uuid());
    return wasFollowed;
}

QString pageTitleOfFrame(const HostFrame &frame)
{
    const std::shared_ptr<HostWebView> view = frame.webView();
    const std::shared_ptr<HostWindow> window = view ? view->hostWindow() : nullptr;
    return window ? window->title() : QString();
}
} // namespace

WayfoldScratchDataSource::WayfoldScratchDataSource(const Outlets &outlets)
    : _scratchOutlineView(outlets.scratchOutlineView)
    , _drawer(outlets.drawer)
    , _newSubfolderButton(outlets.newSubfolderButton)
    , _newNoteButton(outlets.newNoteButton)
    , _newEmailButton(outlets.newEmailButton)
    , _newPersonButton(outlets.newPersonButton)
    , _deleteItemButton(outlets.deleteItemButton)
    , _editItemButton(outlets.editItemButton)
    , _switchbackButton(outlets.switchbackButton)
    , _follower(outlets.scratchOutlineView)
{}

WayfoldScratchDataSource::~WayfoldScratchDataSource()
{
    NotificationCenter::defaultCenter().removeObserver(this);
    leaveView(_scratchOutlineView);
    releaseRoot();
}

void WayfoldScratchDataSource::awakeFromNib()
{
    _prevLabel = QString();
    _scratchBookmarkRoot.reset();
    if (_scratchOutlineView) {
        _scratchOutlineView->doubleAction = [this] { handleResolveBookmarkRequest(_scratchOutlineView); };
        _scratchOutlineView->setAcceptDrops(true);
    }
    setDrawerLabelUsingFrame(QStringLiteral(""), nullptr);
    decorateButtons();
    observeOutsideChanges();
    if (_scratchOutlineView)
        outlineViewSelectionDidChange(*_scratchOutlineView);
}

void WayfoldScratchDataSource::decorateButtons()
{
    setImage(_newSubfolderButton, "WayfoldButtonNewFolder");
    setImage(_newNoteButton, "WayfoldBookmarkImageNote");
    setImage(_newEmailButton, "WayfoldBookmarkImageMail");
    setImage(_newPersonButton, "WayfoldBookmarkImagePerson");
    setImage(_deleteItemButton, "WayfoldButtonDelete");
    setImage(_editItemButton, "WayfoldButtonEdit");
    setImage(_switchbackButton, "WayfoldButtonSwitchback");
    setToolTip(_newSubfolderButton, "New Subfolder");
    setToolTip(_newNoteButton, "New Note");
    setToolTip(_newEmailButton, "New Email Link");
    setToolTip(_newPersonButton, "New Person Link");
    setToolTip(_deleteItemButton, "Delete Item");
    setToolTip(_editItemButton, "Edit Item");
    setToolTip(_switchbackButton, "Show Previous Site List");
}

void WayfoldScratchDataSource::observeOutsideChanges()
{
    for (const QString &name :
         {Notifications::SafariBookmarkFileModNotification, Notifications::SafariHistoryFileModNotification,
          PlatformNotifications::kABDatabaseChangedNotification,
          PlatformNotifications::kABDatabaseChangedExternallyNotification}) {
        NotificationCenter::defaultCenter().addObserver(
            this, [this](const Notification &notification) { safariFileUpdated(notification); }, name);
    }
}

WayfoldOutlineView *WayfoldScratchDataSource::myOutlineView() const
{
    return _scratchOutlineView;
}

// --- Site list ------------------------------------------------------------------------------------------------------

QString WayfoldScratchDataSource::currentDrawerLabel() const
{
    return _scratchOutlineView ? _scratchOutlineView->currentSitePopupTitle() : QString();
}

std::shared_ptr<HostFrame> WayfoldScratchDataSource::currentWebFrame() const
{
    const SiteDrawerController *controller = _drawer ? _drawer->controller() : nullptr;
    return controller ? controller->currentWebFrame() : nullptr;
}

WayfoldBookmarkFolderPtr WayfoldScratchDataSource::rootForLabel(const QString &label)
{
    KDRDrawerBundle &store = KDRDrawerBundle::sharedInstance();
    if (label.isEmpty() || label == localized("Sites"))
        return store.bookmarkRoot();
    for (const KDRBookmarkPtr &child : store.bookmarkRoot()->children()) {
        if (child->isFolder() && child->title() == label)
            return WayfoldBookmarkFolder::fromItem(child);
    }
    return store.newProvisionalBookmarkWithTitle(label);
}

// Null when there is no root yet. The whole tree's is empty, whatever title the tree has: a page without a host asks
// for it at every drawing, which must come to nothing.
QString WayfoldScratchDataSource::labelOfRoot() const
{
    if (!_scratchBookmarkRoot)
        return {};
    const bool isWholeTree = _scratchBookmarkRoot == KDRDrawerBundle::sharedInstance().bookmarkRoot();
    return isWholeTree ? QStringLiteral("") : _scratchBookmarkRoot->title();
}

// The store lets go of a provisional folder only when nobody uses it, so this has to cease to first.
void WayfoldScratchDataSource::releaseRoot()
{
    const KDRBookmark *root = _scratchBookmarkRoot.get();
    _follower.follow(nullptr);
    _scratchBookmarkRoot.reset();
    _rootInUse = FolderInUse();
    KDRDrawerBundle::sharedInstance().releaseProvisionalBookmark(root);
}

void WayfoldScratchDataSource::setDrawerLabelUsingFrame(const QString &label, const std::shared_ptr<HostFrame> &frame)
{
    // The caller's may be the previous label, which changes here.
    const QString newLabel = label; // NOLINT(performance-unnecessary-copy-initialization)
    const QString oldLabel = labelOfRoot();
    if (_drawer && _drawer->controller())
        _drawer->controller()->setCurrentWebFrame(frame);
    if (newLabel.isNull() || (!oldLabel.isNull() && newLabel == oldLabel))
        return;

    saveScratchBookmarkRoot();
    if (_scratchOutlineView) {
        _scratchOutlineView->catchUp(); // later, it would be about the new site list
        _scratchOutlineView->prepForReloadData();
    }
    releaseRoot();
    _scratchBookmarkRoot = rootForLabel(newLabel);
    _rootInUse = FolderInUse(_scratchBookmarkRoot);
    if (!noteContactsFollowed(*_scratchBookmarkRoot))
        refresh(_scratchBookmarkRoot); // what was not shown when they changed
    _follower.follow(_scratchBookmarkRoot);
    if (_scratchOutlineView) {
        _scratchOutlineView->reloadData();
        _scratchOutlineView->beginAtTop();
        _scratchOutlineView->setSitePopupTitle(newLabel);
        outlineViewSelectionDidChange(*_scratchOutlineView); // what may be made depends on the list, too
    }
    if (!oldLabel.isEmpty()) {
        _prevLabel = oldLabel;
        setEnabled(_switchbackButton, true);
    }
}

void WayfoldScratchDataSource::handleSiteChange(WayfoldSitePopupButton *sender)
{
    if (!sender->title().isNull())
        setDrawerLabelUsingFrame(sender->title(), currentWebFrame());
}

void WayfoldScratchDataSource::handleSwitchbackRequest(QObject * /*sender*/)
{
    if (_prevLabel.isEmpty())
        return;
    setDrawerLabelUsingFrame(_prevLabel, currentWebFrame());
    if (_drawer)
        _drawer->open();
}

void WayfoldScratchDataSource::saveScratchBookmarkRoot()
{
    if (!_scratchBookmarkRoot)
        return;
    KDRDrawerBundle &store = KDRDrawerBundle::sharedInstance();
    if (store.isProvisionalBookmark(_scratchBookmarkRoot.get()) && _scratchBookmarkRoot->persistentChildCount() != 0)
        store.adoptProvisionalBookmark(_scratchBookmarkRoot);
    store.saveBookmarkFile();
}

// --- Items ----------------------------------------------------------------------------------------------------------

void WayfoldScratchDataSource::handleSaveCurrentURLRequest(QObject * /*sender*/)
{
    const std::shared_ptr<HostFrame> frame = currentWebFrame();
    const HostDataSource *page = frame ? frame->dataSource() : nullptr;
    if (!page || page->requestUrl.absoluteString().isEmpty() || !_scratchBookmarkRoot)
        return;
    const Url url = page->requestUrl;
    QString title = pageTitleOfFrame(*frame);
    if (title.isEmpty())
        title = PageTitle::forURL(url);
    const KDRBookmarkPtr link = WayfoldBookmarkURL::bookmarkWithTitleAndURL(title, url);
    if (!_scratchBookmarkRoot->acceptsDroppedItems()) // a group, which holds nothing but its members
        setDrawerLabelUsingFrame(QStringLiteral(""), frame);
    _scratchBookmarkRoot->addChild(link);
    if (_scratchOutlineView)
        _scratchOutlineView->selectIndividualItem(link);
    if (_drawer)
        _drawer->open();
    saveScratchBookmarkRoot();
}

void WayfoldScratchDataSource::handleNewSubFolderRequest(QObject *sender)
{
    if (canTakeNewItem())
        _drawer->handleNewSubFolderRequest(sender);
}

void WayfoldScratchDataSource::handleNewNoteRequest(QObject *sender)
{
    if (canTakeNewItem())
        _drawer->handleNewNoteRequest(sender);
}

void WayfoldScratchDataSource::handleNewEmailRequest(QObject *sender)
{
    if (canTakeNewItem())
        _drawer->handleNewEmailRequest(sender);
}

void WayfoldScratchDataSource::handleNewPersonRequest(QObject *sender)
{
    if (canTakeNewItem())
        _drawer->handleNewPersonRequest(sender);
}

bool WayfoldScratchDataSource::canTakeNewItem() const
{
    return _drawer && _drawer->state() == Drawer::Open;
}

bool WayfoldScratchDataSource::confirmDelete(const std::vector<KDRBookmarkPtr> &items)
{
    if (!WayfoldDefaults::sharedInstance().confirmItemDelete())
        return true;
    Alert alert;
    alert.messageText = localized("Confirm");
    alert.informativeText = deleteQuestion(items);
    alert.defaultButton = localized("OK");
    alert.alternateButton = localized("Cancel");
    alert.style = Alert::NSCriticalAlertStyle;
    return alert.runModal(_scratchOutlineView->window()) == Alert::NSAlertDefaultReturn;
}

void WayfoldScratchDataSource::handleDeleteItemRequest(QObject * /*sender*/)
{
    const std::shared_ptr<const void> keeper = keptAlive();
    const std::vector<KDRBookmarkPtr> items =
        _scratchOutlineView ? _scratchOutlineView->selectedItemList() : std::vector<KDRBookmarkPtr>();
    if (items.empty() || !confirmDelete(items))
        return;
    deselectAllItems();
    KDRDrawerBundle::sharedInstance().deleteBookmarks(items);
    saveScratchBookmarkRoot();
}

void WayfoldScratchDataSource::handleItemEditRequest(QObject * /*sender*/)
{
    const std::shared_ptr<const void> keeper = keptAlive();
    if (!_scratchOutlineView || _scratchOutlineView->selectedItemCount() != 1)
        return;
    const KDRBookmarkPtr item = _scratchOutlineView->selectedItem();
    const bool changed = item->editViaDialog();
    if (const WayfoldBookmarkFolderPtr folder = WayfoldBookmarkFolder::fromItem(item); folder && changed) {
        for (const KDRBookmarkPtr &child : folder->children()) {
            if (auto smartFolder = std::dynamic_pointer_cast<WayfoldAutoFolder>(child))
                smartFolder->setFilterString(folder->title());
        }
    }
}

// --- Observing ------------------------------------------------------------------------------------------------------

void WayfoldScratchDataSource::outlineViewSelectionDidChange(OutlineView & /*view*/)
{
    if (!_scratchOutlineView)
        return;
    const WayfoldScratchOutlineView &view = *_scratchOutlineView;
    setEnabled(_deleteItemButton, view.allSelectedItemsAreDeletable());
    setEnabled(_editItemButton, view.selectedItemCount() == 1 && view.allSelectedItemsAreEditable());
    const bool canMakeItem = view.canMakeItem();
    setEnabled(_newSubfolderButton, canMakeItem);
    setEnabled(_newNoteButton, canMakeItem);
    setEnabled(_newEmailButton, canMakeItem);
    setEnabled(_newPersonButton, canMakeItem);
}

void WayfoldScratchDataSource::safariFileUpdated(const Notification & /*notification*/)
{
    if (_scratchOutlineView)
        _scratchOutlineView->changeWhenSeen([this] { followOutsideChanges(); });
}

void WayfoldScratchDataSource::followOutsideChanges()
{
    if (!_scratchBookmarkRoot)
        return;
    noteContactsFollowed(*_scratchBookmarkRoot);
    _scratchOutlineView->reloadAfter([this] { refresh(_scratchBookmarkRoot); });
}

// --- Dropping -------------------------------------------------------------------------------------------------------

bool WayfoldScratchDataSource::outlineViewTakesData(OutlineView & /*view*/, const QMimeData &data)
{
    return DroppedData(data).offersAnyOf(acceptableDragTypes());
}

Qt::DropAction WayfoldScratchDataSource::outlineViewValidateDrop(OutlineView & /*view*/, const QMimeData & /*data*/,
                                                                 bool isLocal, OutlineDropTarget &target)
{
    if (!_scratchBookmarkRoot)
        return Qt::IgnoreAction;
    const Qt::DropAction operation = isLocal ? Qt::MoveAction : Qt::CopyAction;
    const auto proposed = std::static_pointer_cast<KDRBookmark>(target.item);
    if (!proposed) {
        if (target.childIndex < 0 && _scratchBookmarkRoot->childCount() > 0)
            target.childIndex = int(_scratchBookmarkRoot->childCount());
        return operation;
    }
    if (!proposed->acceptsDroppedItems())
        return Qt::IgnoreAction;
    if (proposed->isFolder())
        return operation;
    const WayfoldBookmarkFolderPtr parent = proposed->parent();
    if (!parent || !parent->acceptsDroppedItems())
        return Qt::IgnoreAction;
    if (parent == _scratchBookmarkRoot)
        target.item.reset();
    else
        target = {parent, proposed->childIsAtIndex()};
    return operation;
}

bool WayfoldScratchDataSource::outlineViewAcceptDrop(OutlineView & /*view*/, const QMimeData &data,
                                                     const OutlineDropTarget &target)
{
    const auto folder =
        target.item ? std::dynamic_pointer_cast<WayfoldBookmarkFolder>(target.item) : _scratchBookmarkRoot;
    if (!folder || !folder->acceptsDroppedItems() || !_scratchOutlineView)
        return false;
    const int index = target.childIndex >= 0 ? target.childIndex : target.item ? 0 : int(folder->childCount());
    ScratchpadDrop drop(_scratchBookmarkRoot, folder, index);
    if (!drop.accept(DroppedData(data)))
        return false;

    if (!drop.droppedItems().empty()) {
        deselectAllItems();
        _scratchOutlineView->selectItems(drop.droppedItems());
        saveScratchBookmarkRoot();
    }
    _strangersQuestion.askAbout(drop.strangers(), _scratchOutlineView);
    return true;
}
