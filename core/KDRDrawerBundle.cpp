#include "core/KDRDrawerBundle.h"

#include "core/FolderInUse.h"
#include "core/KDRLocationMonitor.h"
#include "core/KDRWebView.h"
#include "core/Notifications.h"
#include "core/RestorePanel.h"
#include "core/SiteDrawer.h"
#include "core/SiteDrawerFactory.h"
#include "core/settings/WayfoldDefaults.h"
#include "core/settings/WayfoldToolkit.h"
#include "model/WayfoldBookmarkFolder.h"
#include "platform/base/NotificationQueue.h"
#include "platform/base/PlatformNotifications.h"
#include "platform/files/Paths.h"
#include "platform/files/UserDefaults.h"
#include "platform/host/CurrentHost.h"
#include "platform/host/HostApplication.h"
#include "platform/host/HostClasses.h"
#include "platform/host/HostFrame.h"
#include "platform/host/HostWebView.h"
#include "platform/host/HostWindow.h"

#include <QDir>
#include <QFileInfo>
#include <QHash>
#include <QWidget>
#include <algorithm>

namespace
{
constexpr qreal minimumWindowWidth = 350;
constexpr qreal minimumWindowHeight = 200;
constexpr auto betweenChecks = std::chrono::seconds(1);

KDRDrawerBundle *shared = nullptr;

bool isSiteDrawer(const Drawer *drawer)
{
    return drawer->className() == u"KDRDrawer";
}

bool isShut(const Drawer &drawer)
{
    return drawer.state() == Drawer::Closed || drawer.state() == Drawer::Closing;
}

// None equals none only; the empty string is a label of its own.
bool isSameSite(QStringView siteKey, const QString &label)
{
    return siteKey.isNull() == label.isNull() && siteKey == label;
}

bool isGroup(const KDRBookmarkPtr &item)
{
    return item->type() == KDRBookmark::GroupType;
}

// Groups hold nothing but their members, and are left alone.
void forEachFolder(const WayfoldBookmarkFolder &root, void (WayfoldBookmarkFolder::*operation)())
{
    const std::vector<KDRBookmarkPtr> children = root.children(); // who is told may change them
    for (const KDRBookmarkPtr &child : children) {
        const WayfoldBookmarkFolderPtr folder = WayfoldBookmarkFolder::fromItem(child);
        if (folder && !isGroup(child))
            (folder.get()->*operation)();
    }
}

bool hasFolderWithGroup(const WayfoldBookmarkFolder &root)
{
    return std::any_of(root.children().cbegin(), root.children().cend(), [](const KDRBookmarkPtr &child) {
        const WayfoldBookmarkFolderPtr folder = WayfoldBookmarkFolder::fromItem(child);
        return folder && !isGroup(child) &&
               std::any_of(folder->children().cbegin(), folder->children().cend(), isGroup);
    });
}
} // namespace

void KDRDrawerBundle::load()
{
    sharedInstance();
}

KDRDrawerBundle &KDRDrawerBundle::sharedInstance()
{
    if (!shared) {
        // Stored before it starts: what starting sets in motion already asks for it.
        shared = new KDRDrawerBundle;
        shared->start();
    }
    return *shared;
}

void KDRDrawerBundle::releaseSharedInstance()
{
    delete shared;
    shared = nullptr;
}

KDRDrawerBundle::KDRDrawerBundle()
    : _provisionalBookmarkRoot(std::make_shared<WayfoldBookmarkFolder>())
    , _unsavedChanges([this] { saveBookmarkFile(); })
    , _itemFileMessages(_messages, {[this] { saveBookmarkFile(); }, &RestorePanel::show})
{
    ItemFileStore::Listeners listeners;
    listeners.saved = [this] {
        _unsavedChanges.forget();
        _itemFileMessages.saved();
    };
    listeners.notSaved = [this] { _itemFileMessages.saveFailed(_itemFile.path()); };
    listeners.locked = [this] { _itemFileMessages.fileIsLocked(_itemFile.path()); };
    listeners.canTryAgain = [this] { _itemFile.tryAgain(*_bookmarkRoot); };
    listeners.copyKept = [this](const QString &copy) { _itemFileMessages.keptAside(copy); };
    listeners.backupMade = [this] { _itemFileMessages.backupMade(); };
    listeners.backupFailed = [this](const QString &folder) { _itemFileMessages.backupFailed(folder); };
    _itemFile.setListeners(std::move(listeners));
}

KDRDrawerBundle::~KDRDrawerBundle()
{
    NotificationCenter::defaultCenter().removeObserver(this);
    NotificationQueue::defaultQueue().dequeueNotificationsForObject(this);
    delete _menuInterface;
}

void KDRDrawerBundle::start()
{
    setBookmarkFilePath();
    loadBookmarkFile();
    loadMenuAdditions();

    NotificationCenter &center = NotificationCenter::defaultCenter();
    center.addObserver(
        this, [this](const Notification &notification) { safariWindowBecameKey(notification); },
        PlatformNotifications::NSWindowDidBecomeKeyNotification);
    center.addObserver(
        this, [this](const Notification &notification) { safariWillTerminate(notification); },
        PlatformNotifications::NSApplicationWillTerminateNotification);
    center.addObserver(
        this, [this](const Notification &notification) { checkSafariFiles(notification); },
        Notifications::TagSafariFilesNotification);

    followSettings();
    installHooks();
    tagSafariFiles();

    QObject::connect(&_timer, &QTimer::timeout, &_timer, [this] {
        _itemFile.retrySave(*_bookmarkRoot);
        tagSafariFilesNextEvent();
    });
    _timer.start(betweenChecks);
}

void KDRDrawerBundle::followSettings()
{
    SettingsFollower::Reactions reactions;
    reactions.reloadLists = [this] { updateAllDrawerContentsExceptFor(nullptr); };
    reactions.regroupHistory = [this] {
        WayfoldToolkit::postDelayedNotificationNameObject(Notifications::SafariHistoryFileModNotification, this);
    };
    reactions.addSmartFolders = [this] { addSmartFoldersToTopLevel(); };
    reactions.removeSmartFolders = [this] { removeSmartFoldersFromTopLevel(); };
    reactions.showShortcuts = [this] { showStoredShortcuts(); };
    _settingsFollower.emplace(std::move(reactions));
    QObject::connect(&UserDefaults::standardUserDefaults(), &UserDefaults::copyKept, &_messages,
                     [this](const QString &copy) { _itemFileMessages.settingsKeptAside(copy); });
}

void KDRDrawerBundle::installHooks()
{
    HostApplication *host = currentHost();
    if (!host)
        return;
    if (auto *handler = host->classes().classNamed<HostLocationChangeHandler>(QStringLiteral("LocationChangeHandler")))
        handler->replace([](std::unique_ptr<HostLocationChangeHandler> base) {
            return std::make_unique<KDRLocationMonitor>(std::move(base));
        });
    if (auto *webView = host->classes().classNamed<HostWebViewDrawing>(QStringLiteral("WebView")))
        webView->replace(
            [](std::unique_ptr<HostWebViewDrawing> base) { return std::make_unique<KDRWebView>(std::move(base)); });
}

QString KDRDrawerBundle::dataDir()
{
    const QString path = Paths::standardized(QStringLiteral("~/Library/Wayfold"));
    const QFileInfo there(path);
    if (there.exists())
        return there.isDir() ? path : QString();
    return QDir().mkpath(path) ? path : QString();
}

void KDRDrawerBundle::setBookmarkFilePath()
{
    const QString directory = dataDir();
    const QString name = QStringLiteral("Bookmarks.plist");
    _itemFile.setPath(directory.isNull() ? name : directory + QLatin1Char('/') + name);
}

bool KDRDrawerBundle::loadBookmarkFile()
{
    _bookmarkRoot = _itemFile.load();
    const bool isRead = _bookmarkRoot != nullptr;
    if (!isRead)
        _bookmarkRoot = std::make_shared<WayfoldBookmarkFolder>();
    forEachFolder(*_bookmarkRoot, &WayfoldBookmarkFolder::addAutoFolders);
    _unsavedChanges.observe(_bookmarkRoot);
    return isRead;
}

bool KDRDrawerBundle::saveBookmarkFile()
{
    if (!_bookmarkRoot)
        return false;
    const bool isSaved = !_unsavedChanges.areAny() && _itemFile.holdsWhatWasSaved();
    return isSaved || _itemFile.save(*_bookmarkRoot);
}

KDRDrawerBundle::FolderPtr KDRDrawerBundle::newProvisionalBookmarkWithTitle(const QString &title)
{
    if (const KDRBookmarkPtr child = _provisionalBookmarkRoot->childWithTitle(title))
        return WayfoldBookmarkFolder::fromItem(child);
    FolderPtr folder = WayfoldBookmarkFolder::bookmarkWithTitle(title);
    folder->addAutoFolders();
    _provisionalBookmarkRoot->addChild(folder);
    return folder;
}

bool KDRDrawerBundle::isProvisionalBookmark(const KDRBookmark *item) const
{
    return item && item->parent() == _provisionalBookmarkRoot;
}

void KDRDrawerBundle::releaseProvisionalBookmark(const KDRBookmark *item)
{
    const std::vector<KDRBookmarkPtr> &children = _provisionalBookmarkRoot->children();
    // Looked for by address alone, since an item that nobody holds any more may be gone already.
    const auto found = std::find_if(children.cbegin(), children.cend(),
                                    [item](const KDRBookmarkPtr &child) { return child.get() == item; });
    if (found == children.cend() || FolderInUse::isInUse(item) || !isProvisionalBookmark(found->get()))
        return;
    _provisionalBookmarkRoot->removeChild(*found);
}

void KDRDrawerBundle::adoptProvisionalBookmark(const ItemPtr &item)
{
    if (!isProvisionalBookmark(item.get()))
        return;
    _bookmarkRoot->addChild(item);
    _provisionalBookmarkRoot->removeChild(item);
}

void KDRDrawerBundle::deleteBookmark(const ItemPtr &item)
{
    if (item)
        deleteBookmarks({item});
}

void KDRDrawerBundle::deleteBookmarks(const std::vector<ItemPtr> &items)
{
    takeAway(items);
    saveBookmarkFile();
}

void KDRDrawerBundle::takeAway(const std::vector<ItemPtr> &items)
{
    std::vector<std::pair<FolderPtr, std::vector<ItemPtr>>> itemsOfFolders;
    QHash<const KDRBookmark *, std::size_t> places; // of the folders among these
    for (const ItemPtr &item : items) {
        const FolderPtr parent = item->parent();
        if (!parent)
            continue;
        const bool isThere = item->holder() == parent.get();
        // Whoever shows a deleted site folder goes on showing it, now as a provisional one. It then has a new parent
        // already, and is taken away from the one that it had before.
        if (item->type() == KDRBookmark::FolderType && parent == _bookmarkRoot)
            _provisionalBookmarkRoot->addChild(item);
        if (!isThere) {
            parent->removeChild(item); // or what is equal to it
            continue;
        }
        if (!places.contains(parent.get())) {
            places.insert(parent.get(), itemsOfFolders.size());
            itemsOfFolders.push_back({parent, {}});
        }
        itemsOfFolders[places.value(parent.get())].second.push_back(item);
    }
    for (const auto &[folder, children] : itemsOfFolders)
        folder->removeChildren(children);
    // Or the next visit to the site would bring back what the user has deleted.
    for (const ItemPtr &item : items)
        releaseProvisionalBookmark(item.get());
}

void KDRDrawerBundle::addSmartFoldersToTopLevel()
{
    forEachFolder(*_bookmarkRoot, &WayfoldBookmarkFolder::addAutoFolders);
    forEachFolder(*_provisionalBookmarkRoot, &WayfoldBookmarkFolder::addAutoFolders);
    updateAllDrawerContentsExceptFor(nullptr);
}

// The groups in these folders go as well.
void KDRDrawerBundle::removeSmartFoldersFromTopLevel()
{
    if (hasFolderWithGroup(*_bookmarkRoot))
        _itemFile.keepBeforeNextSave();
    forEachFolder(*_bookmarkRoot, &WayfoldBookmarkFolder::removeAutoFolders);
    forEachFolder(*_provisionalBookmarkRoot, &WayfoldBookmarkFolder::removeAutoFolders);
    updateAllDrawerContentsExceptFor(nullptr);
}

bool KDRDrawerBundle::isKnownSite(const QString &siteKey) const
{
    if (_bookmarkRoot->childWithTitle(siteKey))
        return true;
    const FolderPtr folder = WayfoldBookmarkFolder::fromItem(_provisionalBookmarkRoot->childWithTitle(siteKey));
    return folder && folder->persistentChildCount() != 0;
}

void KDRDrawerBundle::updateAllDrawerContentsExceptFor(const HostWindow *except)
{
    for (const WindowPtr &window : trackedWindows()) {
        if (window.get() == except)
            continue;
        const QList<Drawer *> drawers = Drawer::drawersForWindow(window.get());
        for (Drawer *drawer : drawers) {
            auto *siteDrawer = isSiteDrawer(drawer) ? qobject_cast<SiteDrawer *>(drawer) : nullptr;
            if (siteDrawer)
                siteDrawer->reloadBookmarks();
        }
    }
}

void KDRDrawerBundle::trackWindow(const WindowPtr &window)
{
    if (window)
        _windowTracker.push_back(window);
}

void KDRDrawerBundle::untrackWindow(const WindowPtr &window)
{
    // Windows that went without a word are forgotten here too.
    std::erase_if(_windowTracker, [&window](const std::weak_ptr<HostWindow> &tracked) {
        return tracked.expired() || tracked.lock() == window;
    });
}

bool KDRDrawerBundle::isWindowTracked(const HostWindow *window) const
{
    return window &&
           std::any_of(_windowTracker.cbegin(), _windowTracker.cend(),
                       [window](const std::weak_ptr<HostWindow> &tracked) { return tracked.lock().get() == window; });
}

std::vector<KDRDrawerBundle::WindowPtr> KDRDrawerBundle::trackedWindows() const
{
    std::vector<WindowPtr> windows;
    for (const std::weak_ptr<HostWindow> &tracked : _windowTracker) {
        if (WindowPtr window = tracked.lock())
            windows.push_back(std::move(window));
    }
    return windows;
}

SiteDrawer *KDRDrawerBundle::drawerForWindow(const HostWindow *window) const
{
    if (!isWindowTracked(window))
        return nullptr;
    const QList<Drawer *> &drawers = Drawer::drawersForWindow(window);
    const auto found = std::find_if(drawers.cbegin(), drawers.cend(), isSiteDrawer);
    return found == drawers.cend() ? nullptr : qobject_cast<SiteDrawer *>(*found);
}

SiteDrawer *KDRDrawerBundle::frontDrawer() const
{
    HostApplication *host = currentHost();
    return host ? drawerForWindow(host->keyWindow().get()) : nullptr;
}

bool KDRDrawerBundle::openKDRDrawer()
{
    SiteDrawer *drawer = frontDrawer();
    if (!drawer || !isShut(*drawer))
        return false;
    drawer->open();
    if (SiteDrawerController *controller = drawer->controller())
        controller->markDrawerAsOpenedManually(false);
    return true;
}

bool KDRDrawerBundle::closeKDRDrawer()
{
    SiteDrawer *drawer = frontDrawer();
    if (!drawer || isShut(*drawer))
        return false;
    drawer->close();
    if (SiteDrawerController *controller = drawer->controller())
        controller->markDrawerAsOpenedManually(false);
    return true;
}

void KDRDrawerBundle::safariWindowBecameKey(const Notification &notification)
{
    const auto *keyWindow = static_cast<const HostWindow *>(notification.object);
    if (!keyWindow || keyWindow->className() != u"BrowserWindow" || isWindowTracked(keyWindow))
        return;
    const QRectF frame = keyWindow->frame();
    if (frame.width() < minimumWindowWidth || frame.height() < minimumWindowHeight)
        return;
    const WindowPtr window = std::const_pointer_cast<HostWindow>(keyWindow->weak_from_this().lock());
    if (!window || !SiteDrawerFactory::makeController(window))
        return;
    if (!WayfoldDefaults::sharedInstance().openDrawerOnNewWindow())
        return;
    if (SiteDrawer *drawer = drawerForWindow(keyWindow))
        drawer->open();
}

void KDRDrawerBundle::safariWillTerminate(const Notification & /*notification*/)
{
    _terminating = true;
    if (_unsavedChanges.areAny() && !_itemFile.isSaveOwed())
        saveBookmarkFile();
    _itemFile.saveAtQuit(*_bookmarkRoot);
}

void KDRDrawerBundle::updateDrawerForFrame(const std::shared_ptr<HostFrame> &frame)
{
    // Up to the copy of the site key this runs at every drawing of every page: nothing here may allocate.
    const std::shared_ptr<HostWebView> view = frame ? frame->webView() : nullptr;
    if (!view || view->mainFrame() != frame)
        return;
    const WindowPtr window = view->hostWindow();
    if (!window || window->currentWebView() != view)
        return;
    SiteDrawer *drawer = drawerForWindow(window.get());
    SiteDrawerController *controller = drawer ? drawer->controller() : nullptr;
    if (!controller)
        return;
    const QStringView siteKeyInPlace = WayfoldToolkit::siteKeyInWebFrame(frame.get());
    const bool sameSite = isSameSite(siteKeyInPlace, controller->currentScratchDrawerLabel());
    const bool sameFrame = controller->currentWebFrame() == frame;
    controller->setCurrentWebFrame(frame);
    if (sameSite && sameFrame)
        return;

    // Without auto focus the label stays another than the site's, and this is the way out.
    const WayfoldDefaults &settings = WayfoldDefaults::sharedInstance();
    const bool focusesOnSite = settings.autoFocusOnSiteChange();
    const bool opensForKnownSite = settings.openDrawerForKnownSite() && !sameSite;
    const bool closesForUnknownSite = settings.closeDrawerForUnknownSite();
    if (!focusesOnSite && !opensForKnownSite && !closesForUnknownSite)
        return;

    const QString siteKey = siteKeyInPlace.toString();
    if (focusesOnSite)
        controller->setScratchDrawerLabelUsingFrame(siteKey.isNull() ? QStringLiteral("") : siteKey, frame);
    if (siteKey.isNull())
        return;
    const Drawer *object = drawer;
    if (isKnownSite(siteKey)) {
        if (opensForKnownSite)
            WayfoldToolkit::postDelayedNotificationNameObject(Notifications::DrawerShouldOpenForLocationChange, object);
    } else if (closesForUnknownSite) {
        WayfoldToolkit::postDelayedNotificationNameObject(Notifications::DrawerShouldCloseForLocationChange, object);
    }
}
