#include "lists/WayfoldScratchOutlineView.h"

#include "core/FolderInUse.h"
#include "core/KDRDrawerBundle.h"
#include "core/settings/WayfoldDefaults.h"
#include "core/settings/WayfoldToolkit.h"
#include "lists/PasteboardTypes.h"
#include "lists/SavedDepth.h"
#include "lists/WayfoldOutlineViewDelegate.h"
#include "lists/WayfoldSitePopupButton.h"
#include "model/ItemDialogs.h"
#include "model/WayfoldBookmarkABGroup.h"
#include "model/WayfoldBookmarkABPerson.h"
#include "model/WayfoldBookmarkEmail.h"
#include "model/WayfoldBookmarkNote.h"
#include "platform/base/PlatformNotifications.h"
#include "platform/base/StringRules.h"
#include "platform/base/Url.h"
#include "platform/widgets/Workspace.h"

#include <QHash>
#include <QKeyEvent>
#include <QSet>
#include <algorithm>

namespace
{
using Command = void (WayfoldScratchOutlineView::*)(QObject *sender);

const QHash<QString, Command> &commands()
{
    static const QHash<QString, Command> table = {
        {QStringLiteral("handleItemEditRequest:"), &WayfoldScratchOutlineView::handleItemEditRequest},
        {QStringLiteral("handleDeleteItemRequest:"), &WayfoldScratchOutlineView::handleDeleteItemRequest},
        {QStringLiteral("handleNewSubFolderRequest:"), &WayfoldScratchOutlineView::handleNewSubFolderRequest},
        {QStringLiteral("handleNewNoteRequest:"), &WayfoldScratchOutlineView::handleNewNoteRequest},
        {QStringLiteral("handleNewEmailRequest:"), &WayfoldScratchOutlineView::handleNewEmailRequest},
        {QStringLiteral("handleNewPersonRequest:"), &WayfoldScratchOutlineView::handleNewPersonRequest},
        {QStringLiteral("handleSendEmailRequest:"), &WayfoldScratchOutlineView::handleSendEmailRequest},
    };
    return table;
}

QString localized(const char *key)
{
    return WayfoldToolkit::localizedString(QString::fromLatin1(key));
}

QStringList folderTitles(const WayfoldBookmarkFolder &root)
{
    QStringList titles;
    for (const KDRBookmarkPtr &child : root.children()) {
        if (child->isFolder())
            titles.append(child->title());
    }
    return titles;
}

// The values in turn for each "%@"; a translation that needs only some of them says which, as in "%2$@".
QString filledIn(QString format, const QStringList &values)
{
    for (qsizetype i = 0; i < values.size(); ++i) {
        for (const QString &placeholder : {QStringLiteral("%@"), QStringLiteral("%%1$@").arg(i + 1)}) {
            const qsizetype at = format.indexOf(placeholder);
            if (at >= 0)
                format.replace(at, placeholder.size(), values.at(i));
        }
    }
    return format;
}

bool holdsNothingOfTheUsers(const WayfoldBookmarkFolder &folder)
{
    const std::vector<KDRBookmarkPtr> &children = folder.children();
    return std::none_of(children.cbegin(), children.cend(),
                        [](const KDRBookmarkPtr &child) { return child->canBePersistent(); });
}

// How a command is given: its shortcut as it is set, else where it stands in the menu bar. Null when there is no menu.
QString wayToCommand(const QString &action)
{
    const QMenu *menu = KDRDrawerBundle::sharedInstance().wayfoldMenu();
    const QList<QAction *> items = menu ? menu->actions() : QList<QAction *>();
    for (const QAction *item : items) {
        if (MenuItem::action(item) != action)
            continue;
        const QString keys = item->shortcut().toString(QKeySequence::NativeText);
        return keys.isEmpty() ? MenuItem::title(menu->menuAction()) + QStringLiteral(" > ") + MenuItem::title(item)
                              : keys;
    }
    return {};
}

// A site folder that is only shown becomes part of the tree with what is put into it, whichever site is shown by then.
void adoptSiteFolderOf(const KDRBookmarkPtr &item)
{
    for (KDRBookmarkPtr folder = item; folder; folder = folder->parent())
        KDRDrawerBundle::sharedInstance().adoptProvisionalBookmark(folder);
}

// What is put into a smart folder or a group, or too deep down, would not be saved.
bool takesNewItem(const WayfoldBookmarkFolderPtr &folder)
{
    return folder && folder->canBePersistent() && folder->acceptsDroppedItems() && SavedDepth::hasRoom(*folder);
}

// The site folder that is only shown, with that folder in it. None when it is part of the tree.
WayfoldBookmarkFolderPtr provisionalFolderAround(const WayfoldBookmarkFolderPtr &folder)
{
    WayfoldBookmarkFolderPtr site = folder;
    while (site && !KDRDrawerBundle::sharedInstance().isProvisionalBookmark(site.get()))
        site = site->parent();
    return site;
}

// A site that was left meanwhile was kept in the pop-up only by whoever used its folder here.
void letGo(FolderInUse &site)
{
    const WayfoldBookmarkFolderPtr folder = site.folder();
    site = FolderInUse();
    KDRDrawerBundle::sharedInstance().releaseProvisionalBookmark(folder.get());
}

std::vector<KDRBookmarkPtr> oneItem(const KDRBookmarkPtr &item)
{
    return item ? std::vector{item} : std::vector<KDRBookmarkPtr>();
}

std::vector<KDRBookmarkPtr> chosenPeople()
{
    ItemDialogs *dialogs = ItemDialogs::current();
    return dialogs ? dialogs->newPeople() : std::vector<KDRBookmarkPtr>();
}

// The recipients of one mail, each address once in all.
struct Mail
{
    QStringList to;
    QStringList cc;
    QStringList bcc;
    QString subject;

    // What stands on lines of its own is an address of its own.
    void add(QStringList Mail::*list, const QStringList &addresses)
    {
        const QStringList lines = addresses.join(u'\n').split(u'\n');
        for (const QString &line : lines) {
            const QString address = StringRules::trimmed(line);
            if (address.isEmpty() || _taken.contains(address))
                continue;
            _taken.insert(address);
            (this->*list).append(address);
        }
    }

    bool isEmpty() const { return _taken.isEmpty(); }

private:
    QSet<QString> _taken;
};

void addRecipients(const WayfoldBookmarkEmail &link, Mail &mail)
{
    QStringList to;
    QStringList cc;
    QStringList bcc;
    QString subject;
    link.parseMailToLinkIntoToListCCListBCCListSubject(to, cc, bcc, subject);
    mail.add(&Mail::to, to);
    mail.add(&Mail::cc, cc);
    mail.add(&Mail::bcc, bcc);
    if (mail.subject.isEmpty())
        mail.subject = subject;
}

void addMembers(WayfoldBookmarkABGroup &group, Mail &mail)
{
    group.ensureUpToDate();
    mail.add(&Mail::to, group.primaryEmailAddressList());
}
} // namespace

WayfoldScratchOutlineView::~WayfoldScratchOutlineView() = default;

void WayfoldScratchOutlineView::setSitePopupMenu(WayfoldSitePopupButton *popup)
{
    _sitePopupMenu = popup;
}

void WayfoldScratchOutlineView::awakeFromNib()
{
    initialize();
    if (!_sitePopupMenu)
        return;
    _sitePopupMenu->registerForDraggedTypes(PasteboardTypes::acceptableDragTypes());
    NotificationCenter::defaultCenter().addObserver(
        this, [this](const Notification & /*notification*/) { refreshSitePopup(); },
        PlatformNotifications::NSPopUpButtonWillPopUpNotification, _sitePopupMenu);
}

// --- Site pop-up ----------------------------------------------------------------------------------------------------

void WayfoldScratchOutlineView::refreshSitePopup()
{
    if (!_sitePopupMenu)
        return;
    const QString first = _sitePopupMenu->itemText(0);
    const QString selected = _sitePopupMenu->title().isEmpty() ? first : _sitePopupMenu->title();
    const KDRDrawerBundle &store = KDRDrawerBundle::sharedInstance();
    _sitePopupMenu->setEntries(QStringList(first) + folderTitles(*store.bookmarkRoot()) +
                                   folderTitles(*store.provisionalBookmarkRoot()),
                               selected);
}

void WayfoldScratchOutlineView::setSitePopupTitle(const QString &label)
{
    if (_sitePopupMenu)
        _sitePopupMenu->setTitle(label.isEmpty() ? localized("Sites") : label);
}

QString WayfoldScratchOutlineView::currentSitePopupTitle() const
{
    return _sitePopupMenu ? _sitePopupMenu->title() : QString();
}

QString WayfoldScratchOutlineView::emptyListText() const
{
    const WayfoldBookmarkFolderPtr root = delegate() ? delegate()->localRootFolder() : nullptr;
    if (!root || !holdsNothingOfTheUsers(*root))
        return {};
    if (root == KDRDrawerBundle::sharedInstance().bookmarkRoot())
        return filledIn(localized("Nothing is kept yet.\n\nLinks, notes and files stand here, each site's in a folder "
                                  "of its own.\n\nTo begin, visit a site and go to its list with %@."),
                        {wayToCommand(QStringLiteral("handleFocusOnCurrentSiteRequest:"))});
    return filledIn(
        localized("Nothing is kept for this site yet.\n\nKeep the page with %@, write a note with the button "
                  "below, or drop links, texts and files here."),
        {wayToCommand(QStringLiteral("handleSaveCurrentURLRequest:"))});
}

// --- Commands -------------------------------------------------------------------------------------------------------

void WayfoldScratchOutlineView::handleItemEditRequest(QObject *sender)
{
    if (delegate())
        delegate()->handleItemEditRequest(sender);
}

void WayfoldScratchOutlineView::handleDeleteItemRequest(QObject *sender)
{
    if (delegate())
        delegate()->handleDeleteItemRequest(sender);
}

void WayfoldScratchOutlineView::handleNewSubFolderRequest(QObject * /*sender*/)
{
    createItems([] { return oneItem(WayfoldBookmarkFolder::newViaDialog()); });
}

void WayfoldScratchOutlineView::handleNewNoteRequest(QObject * /*sender*/)
{
    createItems([] { return oneItem(WayfoldBookmarkNote::newViaDialog()); });
}

void WayfoldScratchOutlineView::handleNewEmailRequest(QObject * /*sender*/)
{
    createItems([] { return oneItem(WayfoldBookmarkEmail::newViaDialog()); });
}

void WayfoldScratchOutlineView::handleNewPersonRequest(QObject * /*sender*/)
{
    createItems(&chosenPeople);
}

WayfoldScratchOutlineView::InsertionPoint WayfoldScratchOutlineView::insertionPoint() const
{
    const KDRBookmarkPtr selected = selectedItem();
    if (!selected) {
        const WayfoldBookmarkFolderPtr root = delegate()->localRootFolder();
        return {root, root ? int(root->childCount()) : 0};
    }
    if (selected->isFolder() && selected->canBePersistent() && isItemExpanded(selected) &&
        selected->acceptsDroppedItems())
        return {WayfoldBookmarkFolder::fromItem(selected), 0};
    return {selected->parent(), selected->childIsAtIndex() + 1};
}

void WayfoldScratchOutlineView::createItems(NewItemsMaker newViaDialog)
{
    if (!delegate())
        return;
    const std::shared_ptr<const void> keeper = delegate()->keptAlive();
    InsertionPoint place = insertionPoint();
    if (!takesNewItem(place.folder))
        return;
    const bool inRoot = place.folder == delegate()->localRootFolder();
    FolderInUse site(provisionalFolderAround(place.folder)); // the user may go to another one meanwhile
    const std::vector<KDRBookmarkPtr> items = newViaDialog();
    if (items.empty()) {
        letGo(site);
        return;
    }
    for (const KDRBookmarkPtr &item : items) {
        if (inRoot && item->type() == KDRBookmark::FolderType) // a group holds nothing but its members
            WayfoldBookmarkFolder::fromItem(item)->addAutoFolders();
        place.folder->addChildAtIndex(item, place.index++);
    }
    adoptSiteFolderOf(items.front());
    expandItem(place.folder);
    selectIndividualItem(items.back());
    selectItems(items);
    delegate()->saveScratchBookmarkRoot();
}

Url WayfoldScratchOutlineView::mailURL() const
{
    Mail mail;
    for (const KDRBookmarkPtr &item : selectedItemList()) {
        if (const auto person = std::dynamic_pointer_cast<WayfoldBookmarkABPerson>(item))
            mail.add(&Mail::to, {person->primaryEmailAddress()});
        else if (const auto group = std::dynamic_pointer_cast<WayfoldBookmarkABGroup>(item))
            addMembers(*group, mail);
        else if (item->type() == KDRBookmark::EmailLinkType)
            addRecipients(static_cast<const WayfoldBookmarkEmail &>(*item), mail);
    }
    return mail.isEmpty() ? Url() : WayfoldBookmarkEmail::mailURL(mail.to, mail.cc, mail.bcc, mail.subject);
}

void WayfoldScratchOutlineView::handleSendEmailRequest(QObject * /*sender*/)
{
    const Url url = mailURL();
    if (!url.isNull())
        Workspace::openURL(url);
}

void WayfoldScratchOutlineView::keyPressEvent(QKeyEvent *event)
{
    if (!selectedItem()) {
        WayfoldOutlineView::keyPressEvent(event);
        return;
    }
    switch (event->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
        event->accept();
        handleItemEditRequest(this);
        break;
    case Qt::Key_Delete:
    case Qt::Key_Backspace:
        event->accept();
        handleDeleteItemRequest(this);
        break;
    default:
        WayfoldOutlineView::keyPressEvent(event);
    }
}

// --- Menu -----------------------------------------------------------------------------------------------------------

bool WayfoldScratchOutlineView::respondsToAction(const QString &action) const
{
    return commands().contains(action) || WayfoldOutlineView::respondsToAction(action);
}

bool WayfoldScratchOutlineView::validateEditItem(QAction *item) const
{
    const bool enabled = selectedItemCount() == 1 && allSelectedItemsAreEditable();
    const bool isPerson = enabled && selectedItem()->type() == KDRBookmark::PersonType;
    item->setText(localized(isPerson ? QT_TRID_NOOP("Edit Item in Address Book") : QT_TRID_NOOP("Edit Item...")));
    return enabled;
}

bool WayfoldScratchOutlineView::validateDeleteItem(QAction *item) const
{
    const QString plural = selectedItemCount() >= 2 ? QStringLiteral("s") : QString();
    const QString question = WayfoldDefaults::sharedInstance().confirmItemDelete() ? QStringLiteral("...") : QString();
    item->setText(filledIn(localized("Delete Item%@%@"), {plural, question}));
    return allSelectedItemsAreDeletable();
}

bool WayfoldScratchOutlineView::canMakeItem() const
{
    return delegate() && selectedItemCount() <= 1 && takesNewItem(insertionPoint().folder);
}

bool WayfoldScratchOutlineView::validateMenuItem(QAction *item)
{
    const QString action = MenuItem::action(item);
    if (action == u"handleItemEditRequest:")
        return validateEditItem(item);
    if (action == u"handleDeleteItemRequest:")
        return validateDeleteItem(item);
    if (action == u"handleNewSubFolderRequest:" || action == u"handleNewNoteRequest:" ||
        action == u"handleNewEmailRequest:" || action == u"handleNewPersonRequest:")
        return canMakeItem();
    if (action == u"handleSendEmailRequest:")
        return allSelectedItemsAreEmailable();
    return WayfoldOutlineView::validateMenuItem(item);
}

void WayfoldScratchOutlineView::performMenuItem(QAction *item)
{
    if (const Command command = commands().value(MenuItem::action(item)))
        (this->*command)(item);
    else
        WayfoldOutlineView::performMenuItem(item);
}
