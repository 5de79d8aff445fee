#pragma once

#include "core/ItemFileMessages.h"
#include "core/ItemFileStore.h"
#include "core/Messages.h"
#include "core/Retries.h"
#include "core/SettingsFollower.h"
#include "core/UnsavedChanges.h"
#include "model/BookmarkReader.h"
#include "model/history/HistoryReader.h"
#include "platform/base/NotificationCenter.h"
#include "platform/files/FileStamp.h"
#include "platform/widgets/MenuItem.h"

#include <QMutex>
#include <QPointer>
#include <QString>
#include <QTimer>
#include <QVariantMap>
#include <chrono>
#include <memory>
#include <optional>
#include <vector>

class HostFrame;
class HostWebView;
class HostWindow;
class KDRBookmark;
class QMenu;
class QWidget;
class SiteDrawer;
class SiteDrawerController;
class WayfoldBookmarkFolder;

// The store, the plug-in's principal object: it owns the item trees that every drawer shows, knows the browser windows
// that have a drawer, turns page loads into drawer decisions, keeps an eye on the browser's files, and carries out the
// commands of the drawer's menu.
class KDRDrawerBundle : public MenuItemTarget
{
public:
    using ItemPtr = std::shared_ptr<KDRBookmark>;
    using FolderPtr = std::shared_ptr<WayfoldBookmarkFolder>;
    using WindowPtr = std::shared_ptr<HostWindow>;

    // Run when the host loads the plug-in.
    static void load();
    // The one instance; the first call makes and starts it.
    static KDRDrawerBundle &sharedInstance();
    // Ends it: it observes nothing any more, and the next sharedInstance() starts a new one.
    static void releaseSharedInstance();

    ~KDRDrawerBundle() override;
    KDRDrawerBundle(const KDRDrawerBundle &) = delete;
    KDRDrawerBundle &operator=(const KDRDrawerBundle &) = delete;

    // The trees themselves, no copies. The first two are never none; the browser's are none before the first check.
    const FolderPtr &bookmarkRoot() const { return _bookmarkRoot; }
    const FolderPtr &provisionalBookmarkRoot() const { return _provisionalBookmarkRoot; }
    const FolderPtr &safariBookmarkRoot() const { return _safariBookmarkRoot; }
    const FolderPtr &historyBookmarkRoot() const { return _safariHistoryRoot; }

    // The lists' contextual menu, whose items act on the list that shows it, and the menu in the menu bar, whose items
    // act on the front drawer. Null when the interface file is missing.
    QMenu *menu() const { return _contextualMenu; }
    QMenu *wayfoldMenu() const { return _wayfoldMenu; }
    void setPrefsWindowShown(bool shown) { _prefsWindowOpen = shown; }

    // ---- The item file

    // "~/Library/Wayfold", made when nothing is there. Null when it cannot be made or is no directory.
    static QString dataDir();
    // The item file's place in the data directory; its bare name when there is no data directory.
    void setBookmarkFilePath();
    QString bookmarkFilePath() const { return _itemFile.path(); }
    // Reads the item file; an empty tree and false when there is none or it cannot be read.
    bool loadBookmarkFile();
    // Writes the item file, see ItemFileStore::save, unless what would be written lies there already. What changes in
    // its tree is saved without this call, when the event loop comes round. When saving fails it is tried again from
    // time to time, and once more when the host quits; otherwise nothing is saved then.
    bool saveBookmarkFile();

    // What every window's drawer tells the user of.
    Messages &messages() { return _messages; }

    // ---- Provisional items: site folders that are shown but not saved

    // The provisional folder of that title, made when there is none.
    FolderPtr newProvisionalBookmarkWithTitle(const QString &title);
    bool isProvisionalBookmark(const KDRBookmark *item) const;
    // Lets a provisional item go when nobody uses it any more (FolderInUse). The caller has ceased to do so itself.
    void releaseProvisionalBookmark(const KDRBookmark *item);
    // Moves a provisional item into the item file's tree; the caller saves.
    void adoptProvisionalBookmark(const ItemPtr &item);

    // Removes an item from its folder and saves. A folder at the top of the item file's tree becomes provisional, if
    // somebody uses it.
    void deleteBookmark(const ItemPtr &item);
    // The same for several, with one saving.
    void deleteBookmarks(const std::vector<ItemPtr> &items);
    // Every top-level folder of both trees gets, or loses, its smart folders.
    void addSmartFoldersToTopLevel();
    void removeSmartFoldersFromTopLevel();
    // Whether the item file, or a provisional folder that holds something worth saving, has a folder for the site.
    bool isKnownSite(const QString &siteKey) const;
    // Reloads the drawers of all tracked windows but the given one (may be null).
    void updateAllDrawerContentsExceptFor(const HostWindow *window);

    // ---- Windows and drawers

    // The tracker holds windows weakly. A controller tracks its window from its making until the window closes.
    void trackWindow(const WindowPtr &window);
    void untrackWindow(const WindowPtr &window);
    bool isWindowTracked(const HostWindow *window) const;
    // In the order in which they were tracked.
    std::vector<WindowPtr> trackedWindows() const;
    // The drawer of a tracked window, else null. Allocates nothing.
    SiteDrawer *drawerForWindow(const HostWindow *window) const;
    // The drawer of the key window.
    SiteDrawer *frontDrawer() const;
    // Open, or close, the front drawer unless it is so already; true when that changed something.
    bool openKDRDrawer();
    bool closeKDRDrawer();

    // The reaction to a page load, and to every drawing of a page: relabels the window's Scratchpad and asks its drawer
    // to open or close. Costs next to nothing while site and frame stay the same.
    void updateDrawerForFrame(const std::shared_ptr<HostFrame> &frame);

    // ---- The browser's files

    static QString safariBookmarkFilePath();
    static QString safariHistoryFilePath();
    // The timer that asks for a check at each tick: from one to the next.
    std::chrono::milliseconds intervalOfChecks() const { return _timer.intervalAsDuration(); }
    // Asks for a check when the event loop is idle.
    void tagSafariFilesNextEvent();
    // Reads what has changed on disk since the last check, and says so in a notification.
    void tagSafariFiles();
    // An empty tree and false when the file is missing or cannot be read. False and the tree as it was when the file
    // may soon be readable (too many files are open, the disk is busy); later checks try again then.
    bool loadSafariBookmarkFile();
    bool loadHistoryBookmarkFile();
    // Writes a bookmark tree's dictionary into the browser's bookmark file, which keeps its own version, root type and
    // root identifier. False, and nothing written, when the file cannot be read.
    bool saveSafariBookmarkFile(const QVariantMap &dictionary);

    // ---- Observers of the default notification centre

    void safariWindowBecameKey(const Notification &notification);
    void safariWillTerminate(const Notification &notification);
    void checkSafariFiles(const Notification &notification);

    // ---- Menu

    void loadMenuAdditions();
    bool validateMenuItem(QAction *item) override;
    void performMenuItem(QAction *item) override;

    void handleToggleKDRDrawer(QObject *sender);
    void handleShowScratchpadTabView(QObject *sender);
    void handleShowBookmarkTabView(QObject *sender);
    void handleShowHistoryTabView(QObject *sender);
    void handleFocusOnCurrentSiteRequest(QObject *sender);
    void handleSaveCurrentURLRequest(QObject *sender);
    void handleSwitchbackRequest(QObject *sender);
    void handleNewSubFolderRequest(QObject *sender);
    void handleNewNoteRequest(QObject *sender);
    void handleNewEmailRequest(QObject *sender);
    void handleNewPersonRequest(QObject *sender);
    void handleRestoreFromBackupRequest(QObject *sender);
    void handleCheckForNewReleaseRequest(QObject *sender);
    void handleShowPrefsWindow(QObject *sender);
    void handleShowAboutWindow(QObject *sender);

private:
    KDRDrawerBundle();

    void start();
    void installHooks();
    void followSettings();
    void showStoredShortcuts();
    void takeAway(const std::vector<ItemPtr> &items);

    QPointer<QWidget> _menuInterface; // holds both containers
    QMenu *_mainMenuRef = nullptr;
    QMenu *_contextualMenuRef = nullptr;
    FolderPtr _bookmarkRoot;
    FolderPtr _provisionalBookmarkRoot;
    std::vector<std::weak_ptr<HostWindow>> _windowTracker;
    ItemFileStore _itemFile;
    UnsavedChanges _unsavedChanges;
    Messages _messages;
    ItemFileMessages _itemFileMessages;
    QMenu *_contextualMenu = nullptr;
    std::optional<FileStamp> _safariBookmarkFileModDate;
    Retries _safariBookmarkRetries;
    FolderPtr _safariBookmarkRoot;
    BookmarkReader _bookmarkReader;
    std::optional<FileStamp> _safariHistoryFileModDate;
    Retries _safariHistoryRetries;
    FolderPtr _safariHistoryRoot;
    HistoryReader _historyReader;
    QMutex _extSafariFileLock;
    bool _terminating = false;
    bool _prefsWindowOpen = false;
    QMenu *_wayfoldMenu = nullptr;
    QTimer _timer;
    std::optional<SettingsFollower> _settingsFollower;
};
