#include "core/KDRDrawerBundle.h"

#include "core/FolderInUse.h"
#include "core/Notifications.h"
#include "core/settings/WayfoldToolkit.h"
#include "model/WayfoldBookmarkABGroup.h"
#include "platform/base/PlatformNotifications.h"
#include "platform/files/FileStamp.h"
#include "platform/files/PropertyList.h"
#include "platform/host/CurrentHost.h"
#include "tests/core/StoreInTemporaryHome.h"
#include "tests/support/MemoryContacts.h"

#include <QDir>
#include <QFileInfo>
#include <QMenu>
#include <optional>

namespace
{
const QString itemFile = QStringLiteral("Library/Wayfold/Bookmarks.plist");

// An item file whose root holds a site folder with a note, and a note beside it.
const QByteArray storedItems = R"(<plist version="1.0"><dict>
    <key>WebBookmarkType</key><string>WebBookmarkTypeList</string>
    <key>WebBookmarkUUID</key><string>ROOT</string>
    <key>Title</key><string></string>
    <key>Children</key><array>
        <dict>
            <key>WebBookmarkType</key><string>WebBookmarkTypeList</string>
            <key>WebBookmarkUUID</key><string>SITE</string>
            <key>Title</key><string>example.com</string>
            <key>SearchString</key><string>example.com</string>
            <key>Children</key><array>
                <dict>
                    <key>WebBookmarkType</key><string>WebBookmarkTypeNote</string>
                    <key>WebBookmarkUUID</key><string>NOTE1</string>
                    <key>URIDictionary</key><dict><key>title</key><string>Milk</string><key></key><string></string></dict>
                    <key>Note</key><string>two bottles</string>
                </dict>
            </array>
        </dict>
        <dict>
            <key>WebBookmarkType</key><string>WebBookmarkTypeNote</string>
            <key>WebBookmarkUUID</key><string>NOTE2</string>
            <key>URIDictionary</key><dict><key>title</key><string>Loose</string><key></key><string></string></dict>
            <key>Note</key><string>beside</string>
        </dict>
    </array>
</dict></plist>
)";

const QStringList smartFolders = {QStringLiteral("Related Bookmarks"), QStringLiteral("Related History")};

const QStringList drawerRequests = {Notifications::DrawerShouldOpenForLocationChange,
                                    Notifications::DrawerShouldCloseForLocationChange};
} // namespace

// A host that tells what the store asks for as it starts, and in which state the store is by then.
class StartingHost : public FakeHostApplication
{
public:
    QStringList asked;
    std::function<QString()> state;

    HostMenuBar &mainMenu() override
    {
        note("menus");
        return FakeHostApplication::mainMenu();
    }
    HostClasses &classes() override
    {
        note("hooks");
        return FakeHostApplication::classes();
    }
    QString bookmarkFilePath() const override
    {
        const_cast<StartingHost *>(this)->note("files");
        return FakeHostApplication::bookmarkFilePath();
    }

private:
    void note(const char *what)
    {
        const QString entry = QLatin1String(what) + QStringLiteral(": ") + state();
        if (!asked.contains(entry))
            asked.append(entry);
    }
};

class KDRDrawerBundleTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { _fresh.emplace(); }
    void cleanup() { _fresh.reset(); }

    // Start-up
    void thereIsOneInstance();
    void firstStartMakesTheDataDirectory();
    void fileInPlaceOfTheDataDirectory();
    void dataDirectoryThatCannotBeMade();
    void startReadsTheItemFile();
    void smartFoldersAreNotAddedWhenSwitchedOff();
    void missingItemFileGivesAnEmptyTree();
    void unreadableItemFileGivesAnEmptyTree();
    void directoryInPlaceOfTheItemFile();
    void hooksAreInstalledOnce();
    void hostWithoutClassesIsNoError();
    void startsWithoutHost();
    void startsInOrder();
    void timerAsksForChecks();
    void releasedStoreObservesNothing();

    // The item file
    void saveWritesTheTree();
    void saveLeavesSmartFoldersOut();
    void saveThatFailsAnswersFalse();
    void changeIsSavedWithoutACall();
    void changeIsSavedAtQuit();
    void nothingIsWrittenTwice();
    void provisionalChangesAreNotSaved();
    void saveThatFailedIsTriedAgain();
    void saveThatFailedIsTriedAgainAtQuit();
    void saveThatFailsIsSaid();
    void saveThatWorksLaterIsSaid();
    void keptCopyIsSaid();
    void keptCopyOfSettingsIsSaid();
    void startSaysNothing();

    // Provisional items
    void newProvisionalFolder();
    void newProvisionalFolderIsFoundAgain();
    void releaseLetsUnheldFolderGo();
    void releaseKeepsFolderInUse();
    void heldFolderIsNotInUse();
    void releaseOfOtherItemsDoesNothing();
    void adoptMovesTheFolder();
    void adoptOfOtherItemsDoesNothing();

    // Other operations on the trees
    void deleteLeaf();
    void deleteTopLevelFolderMakesItProvisional();
    void deletedSiteThatNobodyShowsIsGone();
    void deletedSitesThatSomebodyShowsStay();
    void deleteTopLevelLeafIsGone();
    void deleteNestedFolderIsGone();
    void deleteProvisionalFolder();
    void deleteFolderBesideAProvisionalOne();
    void deleteReloadsNoDrawer();
    void deleteOfNoneOrParentlessItem();
    void knownSite_data();
    void knownSite();
    void smartFoldersOfTheTopLevel();
    void groupsHoldNoSmartFolders();
    void groupsThatGoWithSmartFoldersAreKept();
    void updateAllDrawersExceptOne();

    // Windows and drawers
    void trackedWindows();
    void windowThatVanishedIsForgotten();
    void drawerOfWindow();
    void drawerIsKnownByItsExactClass();
    void frontDrawer();
    void openDrawer_data();
    void openDrawer();
    void closeDrawer_data();
    void closeDrawer();
    void openAndCloseWithoutFrontDrawer();
    void windowThatBecomesKey_data();
    void windowThatBecomesKey();
    void windowGetsOneDrawer();
    void enlargedWindowGetsItsDrawerLater();
    void keyNotificationWithoutWindow();
    void newWindowOpensItsDrawerWhenSet_data();
    void newWindowOpensItsDrawerWhenSet();
    void windowWithoutDrawerRoom();

    // Page loads
    void subFrameChangesNothing();
    void backgroundTabChangesNothing();
    void frameWithoutViewOrWindowChangesNothing();
    void windowWithoutDrawerChangesNothing();
    void windowWithoutCurrentViewChangesNothing();
    void frameIsKept();
    void autoFocusRelabels();
    void labelStaysWithoutAutoFocus();
    void pageWithoutHostIsNoSite();
    void pageWithoutHostAndWithoutAutoFocus();
    void nullKeyEqualsNullLabelOnly();
    void reloadOfTheSamePagePostsNothing();
    void otherPageOfUnknownSiteClosesAgain();
    void sameFrameOfUnknownSiteAgain_data();
    void sameFrameOfUnknownSiteAgain();
    void decision_data();
    void decision();
    void provisionalSiteIsKnownWhenItHoldsSomething();
    void requestsWaitForAnIdleMoment_data();
    void requestsWaitForAnIdleMoment();
    void requestsAreCoalesced();

private:
    KDRDrawerBundle &store() { return StoreInTemporaryHome::store(); }

    quint64 fileNumber() const;

    std::optional<StoreInTemporaryHome> _fresh;
};

// ---- Start-up

void KDRDrawerBundleTest::thereIsOneInstance()
{
    KDRDrawerBundle::load();
    QCOMPARE(_fresh->host.menuBar.menus.size(), 1);
    KDRDrawerBundle *first = &KDRDrawerBundle::sharedInstance();
    KDRDrawerBundle::load();
    QCOMPARE(&KDRDrawerBundle::sharedInstance(), first);
    QCOMPARE(_fresh->host.menuBar.menus.size(), 1);
}

void KDRDrawerBundleTest::firstStartMakesTheDataDirectory()
{
    QVERIFY(!QFileInfo::exists(_fresh->home.path(QStringLiteral("Library"))));
    QCOMPARE(store().bookmarkFilePath(), _fresh->home.path(itemFile));
    QVERIFY(QFileInfo(_fresh->home.path(QStringLiteral("Library/Wayfold"))).isDir());
    QCOMPARE(KDRDrawerBundle::dataDir(), _fresh->home.path(QStringLiteral("Library/Wayfold")));
    QCOMPARE(store().bookmarkRoot()->childCount(), 0U);
    QVERIFY(store().bookmarkRoot()->title().isNull());
    QCOMPARE(store().provisionalBookmarkRoot()->childCount(), 0U);
    QVERIFY(!QFileInfo::exists(_fresh->home.path(itemFile))); // starting saves nothing
}

void KDRDrawerBundleTest::fileInPlaceOfTheDataDirectory()
{
    _fresh->home.write(QStringLiteral("Library/Wayfold"), "in the way");
    const QString oldDirectory = QDir::currentPath();
    QDir::setCurrent(_fresh->home.path());
    QVERIFY(KDRDrawerBundle::dataDir().isNull());
    QCOMPARE(store().bookmarkFilePath(), QStringLiteral("Bookmarks.plist"));
    QCOMPARE(store().bookmarkRoot()->childCount(), 0U);
    QVERIFY(store().saveBookmarkFile());
    QVERIFY(QFileInfo::exists(_fresh->home.path(QStringLiteral("Bookmarks.plist"))));
    QDir::setCurrent(oldDirectory);
}

void KDRDrawerBundleTest::dataDirectoryThatCannotBeMade()
{
    _fresh->home.write(QStringLiteral("Library"), "in the way");
    QVERIFY(KDRDrawerBundle::dataDir().isNull());
    QCOMPARE(store().bookmarkFilePath(), QStringLiteral("Bookmarks.plist"));
}

void KDRDrawerBundleTest::startReadsTheItemFile()
{
    _fresh->home.write(itemFile, storedItems);
    const WayfoldBookmarkFolderPtr root = store().bookmarkRoot();
    QCOMPARE(StoreInTemporaryHome::titles(root), (QStringList{"example.com", "Loose"}));
    QCOMPARE(root->uuid(), QStringLiteral("ROOT"));
    // Every folder at the top gets its smart folders.
    const auto site = WayfoldBookmarkFolder::fromItem(root->childAtIndex(0));
    QCOMPARE(StoreInTemporaryHome::titles(site), QStringList{"Milk"} + smartFolders);
    QVERIFY(store().loadBookmarkFile());
    QVERIFY(store().bookmarkRoot() != root);
    QCOMPARE(StoreInTemporaryHome::titles(store().bookmarkRoot()), (QStringList{"example.com", "Loose"}));
}

void KDRDrawerBundleTest::smartFoldersAreNotAddedWhenSwitchedOff()
{
    _fresh->home.write(itemFile, storedItems);
    _fresh->settings().setCreateAutoFolders(false);
    const auto site = WayfoldBookmarkFolder::fromItem(store().bookmarkRoot()->childAtIndex(0));
    QCOMPARE(StoreInTemporaryHome::titles(site), QStringList{"Milk"});
}

void KDRDrawerBundleTest::missingItemFileGivesAnEmptyTree()
{
    StoreInTemporaryHome::addNote(store().bookmarkRoot(), QStringLiteral("Milk"));
    QVERIFY(!store().loadBookmarkFile());
    QCOMPARE(store().bookmarkRoot()->childCount(), 0U);
}

void KDRDrawerBundleTest::unreadableItemFileGivesAnEmptyTree()
{
    _fresh->home.write(itemFile, "<plist><dict><key>Children</key>");
    QCOMPARE(store().bookmarkRoot()->childCount(), 0U);
    QVERIFY(!store().loadBookmarkFile());
    QCOMPARE(store().bookmarkRoot()->childCount(), 0U);
    QCOMPARE(_fresh->home.read(itemFile), QByteArray("<plist><dict><key>Children</key>")); // untouched
}

void KDRDrawerBundleTest::directoryInPlaceOfTheItemFile()
{
    QVERIFY(QDir().mkpath(_fresh->home.path(itemFile)));
    QVERIFY(store().bookmarkRoot());
    QVERIFY(!store().loadBookmarkFile());
    QCOMPARE(store().bookmarkRoot()->childCount(), 0U);
}

void KDRDrawerBundleTest::hooksAreInstalledOnce()
{
    const auto window = _fresh->openWindow();
    const auto view = window->addTab(QStringLiteral("http://www.example.com/"));
    int checks = 0;
    _fresh->controller().onFrameCheck = [&checks] { ++checks; };
    _fresh->host.finishLoad(*view, view->frame);
    QCOMPARE(checks, 1);
    QCOMPARE(_fresh->host.baseFinishLoadCount, 1);
    _fresh->host.draw(*view);
    QCOMPARE(checks, 2);
    QCOMPARE(_fresh->host.baseDrawCount, 1);
}

void KDRDrawerBundleTest::hostWithoutClassesIsNoError()
{
    _fresh->host.hostClasses = HostClasses();
    const auto window = _fresh->openWindow();
    const auto view = window->addTab(QStringLiteral("http://www.example.com/"));
    int checks = 0;
    _fresh->controller().onFrameCheck = [&checks] { ++checks; };
    _fresh->host.finishLoad(*view, view->frame);
    _fresh->host.draw(*view);
    QCOMPARE(checks, 0);
    QCOMPARE(_fresh->host.baseFinishLoadCount, 1);

    // One class of the two is enough for its own hook.
    KDRDrawerBundle::releaseSharedInstance();
    _fresh->host.hostClasses.add(QStringLiteral("WebView"), &_fresh->host.webViewClass);
    _fresh->room.controllers.clear();
    window->becomeKey();
    store();
    window->becomeKey();
    _fresh->controller().onFrameCheck = [&checks] { ++checks; };
    _fresh->host.finishLoad(*view, view->frame);
    QCOMPARE(checks, 0);
    _fresh->host.draw(*view);
    QCOMPARE(checks, 1);
}

void KDRDrawerBundleTest::startsWithoutHost()
{
    setCurrentHost(nullptr);
    QVERIFY(store().bookmarkRoot());
    QVERIFY(store().wayfoldMenu());
    QVERIFY(!store().frontDrawer());
    QVERIFY(!store().openKDRDrawer());
    QVERIFY(!store().closeKDRDrawer());
    setCurrentHost(&_fresh->host);
}

void KDRDrawerBundleTest::startsInOrder()
{
    _fresh->home.write(itemFile, storedItems);
    _fresh->home.write(QStringLiteral("Library/Safari/Bookmarks.plist"), storedItems);
    StartingHost host;
    host.state = [&] {
        // Whether the store observes yet shows when a window becomes key.
        const auto window = host.openWindow();
        window->becomeKey();
        const bool observes = !_fresh->room.controllers.empty();
        _fresh->room.controllers.clear();
        QStringList done;
        done.append(QStringLiteral("%1 items").arg(store().bookmarkRoot()->childCount()));
        done.append(store().wayfoldMenu() ? QStringLiteral("menus") : QStringLiteral("no menus"));
        done.append(observes ? QStringLiteral("observing") : QStringLiteral("not observing"));
        done.append(store().safariBookmarkRoot() ? QStringLiteral("bookmarks") : QStringLiteral("no bookmarks"));
        return done.join(QStringLiteral(", "));
    };
    store();
    QCOMPARE(host.asked, (QStringList{"menus: 2 items, menus, not observing, no bookmarks",
                                      "hooks: 2 items, menus, observing, no bookmarks",
                                      "files: 2 items, menus, observing, no bookmarks"}));
    QVERIFY(store().safariBookmarkRoot());
    KDRDrawerBundle::releaseSharedInstance();
    _fresh->room.controllers.clear();
}

void KDRDrawerBundleTest::timerAsksForChecks()
{
    NotificationLog log({Notifications::TagSafariFilesNotification});
    QCOMPARE(store().intervalOfChecks(), std::chrono::milliseconds(1000));
    QVERIFY(log.received.empty());
    QTRY_VERIFY_WITH_TIMEOUT(log.received.size() >= 2, 20000);
    QCOMPARE(log.received.front().object, static_cast<const void *>(&store()));
}

void KDRDrawerBundleTest::releasedStoreObservesNothing()
{
    store().tagSafariFilesNextEvent();
    KDRDrawerBundle::releaseSharedInstance();
    NotificationLog log({Notifications::TagSafariFilesNotification});
    _fresh->host.openWindow()->becomeKey();
    NotificationLog::deliverPending();
    QVERIFY(log.received.empty());
    QVERIFY(_fresh->room.controllers.empty());
}

// ---- The item file

void KDRDrawerBundleTest::saveWritesTheTree()
{
    const auto site = StoreInTemporaryHome::addFolder(store().bookmarkRoot(), QStringLiteral("example.com"));
    StoreInTemporaryHome::addNote(site, QStringLiteral("Milk"));
    QVERIFY(store().saveBookmarkFile());
    const QVariantMap written = PropertyList::readDictionaryFile(_fresh->home.path(itemFile));
    QCOMPARE(written, store().bookmarkRoot()->createDictionary(true));

    _fresh->restart();
    QCOMPARE(StoreInTemporaryHome::titles(store().bookmarkRoot()), QStringList{"example.com"});
    const auto again = WayfoldBookmarkFolder::fromItem(store().bookmarkRoot()->childAtIndex(0));
    QCOMPARE(StoreInTemporaryHome::titles(again), QStringList{"Milk"} + smartFolders);
}

void KDRDrawerBundleTest::saveLeavesSmartFoldersOut()
{
    _fresh->home.write(itemFile, storedItems);
    QVERIFY(store().saveBookmarkFile());
    QVERIFY(!_fresh->home.read(itemFile).contains("Related"));
    QVERIFY(_fresh->home.read(itemFile).contains("two bottles"));
}

void KDRDrawerBundleTest::saveThatFailsAnswersFalse()
{
    QVERIFY(QDir().mkpath(_fresh->home.path(itemFile)));
    QVERIFY(!store().saveBookmarkFile());
    QVERIFY(QFileInfo(_fresh->home.path(itemFile)).isDir());
}

void KDRDrawerBundleTest::saveThatFailedIsTriedAgain()
{
    QVERIFY(QDir().mkpath(_fresh->home.path(itemFile)));
    StoreInTemporaryHome::addNote(store().bookmarkRoot(), QStringLiteral("Milk"));
    QVERIFY(!store().saveBookmarkFile());
    QVERIFY(QDir().rmdir(_fresh->home.path(itemFile)));
    QTRY_VERIFY_WITH_TIMEOUT(_fresh->home.read(itemFile).contains("Milk"), 20000);
}

void KDRDrawerBundleTest::saveThatFailedIsTriedAgainAtQuit()
{
    const auto quit = [] {
        NotificationCenter::defaultCenter().postNotificationName(
            PlatformNotifications::NSApplicationWillTerminateNotification, nullptr);
    };
    QVERIFY(QDir().mkpath(_fresh->home.path(itemFile)));
    StoreInTemporaryHome::addNote(store().bookmarkRoot(), QStringLiteral("Milk"));
    QVERIFY(!store().saveBookmarkFile());
    QVERIFY(QDir().rmdir(_fresh->home.path(itemFile)));
    quit();
    QVERIFY(_fresh->home.read(itemFile).contains("Milk"));

    // Nothing is saved at quit otherwise.
    _fresh->restart();
    QVERIFY(QFile::remove(_fresh->home.path(itemFile)));
    quit();
    QVERIFY(!QFileInfo::exists(_fresh->home.path(itemFile)));
}

// The file's number on disk, another one after each writing.
quint64 KDRDrawerBundleTest::fileNumber() const
{
    const auto stamp = FileStamp::ofFile(_fresh->home.path(itemFile));
    return stamp ? stamp->inode : 0;
}

void KDRDrawerBundleTest::changeIsSavedWithoutACall()
{
    StoreInTemporaryHome::addNote(store().bookmarkRoot(), QStringLiteral("Milk"));
    StoreInTemporaryHome::addNote(store().bookmarkRoot(), QStringLiteral("Bread"));
    QVERIFY(!QFileInfo::exists(_fresh->home.path(itemFile)));
    QTRY_VERIFY(QFileInfo::exists(_fresh->home.path(itemFile)));
    const QByteArray written = _fresh->home.read(itemFile);
    QVERIFY(written.contains("Milk") && written.contains("Bread"));
    store().bookmarkRoot()->childAtIndex(1)->setTitle(QStringLiteral("Butter"));
    QTRY_VERIFY(_fresh->home.read(itemFile).contains("Butter"));
}

void KDRDrawerBundleTest::changeIsSavedAtQuit()
{
    StoreInTemporaryHome::addNote(store().bookmarkRoot(), QStringLiteral("Milk"));
    NotificationCenter::defaultCenter().postNotificationName(
        PlatformNotifications::NSApplicationWillTerminateNotification, nullptr);
    QVERIFY(_fresh->home.read(itemFile).contains("Milk"));
}

void KDRDrawerBundleTest::nothingIsWrittenTwice()
{
    StoreInTemporaryHome::addNote(store().bookmarkRoot(), QStringLiteral("Milk"));
    QVERIFY(store().saveBookmarkFile());
    const quint64 first = fileNumber();
    QVERIFY(store().saveBookmarkFile());
    QCOMPARE(fileNumber(), first);
    // Not at the end of the pass, either.
    QTest::qWait(0);
    QCOMPARE(fileNumber(), first);
    _fresh->restart();
    QVERIFY(store().saveBookmarkFile());
    QCOMPARE(fileNumber(), first);

    // But when somebody has taken it away, or changed it.
    QVERIFY(QFile::remove(_fresh->home.path(itemFile)));
    QVERIFY(store().saveBookmarkFile());
    QVERIFY(_fresh->home.read(itemFile).contains("Milk"));
    _fresh->home.write(itemFile, "something else");
    QVERIFY(store().saveBookmarkFile());
    QVERIFY(_fresh->home.read(itemFile).contains("Milk"));
}

void KDRDrawerBundleTest::provisionalChangesAreNotSaved()
{
    const auto site = store().newProvisionalBookmarkWithTitle(QStringLiteral("example.com"));
    StoreInTemporaryHome::addNote(site, QStringLiteral("Milk"));
    QTest::qWait(0);
    QVERIFY(!QFileInfo::exists(_fresh->home.path(itemFile)));
}

// ---- Provisional items

void KDRDrawerBundleTest::saveThatFailsIsSaid()
{
    const QString path = _fresh->home.path(QStringLiteral("Library/Wayfold/Bookmarks.plist"));
    QVERIFY(QDir().mkpath(path)); // a folder in the place of the file
    Messages &messages = _fresh->store().messages();
    QVERIFY(!_fresh->store().saveBookmarkFile());
    QVERIFY(messages.current());
    QCOMPARE(messages.current()->subject, Messages::NotSaved);

    // The user tries again, in vain and then not.
    const auto tryAgain = [&messages] {
        const auto act = messages.current()->buttons.at(0).act;
        act();
    };
    tryAgain();
    QCOMPARE(messages.current()->subject, Messages::NotSaved);
    QVERIFY(QDir().rmdir(path));
    tryAgain();
    QCOMPARE(messages.current()->subject, Messages::SavedAgain);
    QVERIFY(!messages.about(Messages::NotSaved));
    QVERIFY(QFileInfo(path).isFile());
}

void KDRDrawerBundleTest::saveThatWorksLaterIsSaid()
{
    const QString path = _fresh->home.path(QStringLiteral("Library/Wayfold/Bookmarks.plist"));
    QVERIFY(QDir().mkpath(path));
    QVERIFY(!_fresh->store().saveBookmarkFile());
    QVERIFY(QDir().rmdir(path));
    const Messages &messages = _fresh->store().messages();
    QTRY_VERIFY(messages.about(Messages::SavedAgain));
    QVERIFY(!messages.about(Messages::NotSaved));
    QVERIFY(QFileInfo(path).isFile());
}

void KDRDrawerBundleTest::keptCopyIsSaid()
{
    const QString path = QStringLiteral("Library/Wayfold/Bookmarks.plist");
    _fresh->home.write(path, "no property list");
    const Messages &messages = _fresh->store().messages();
    QVERIFY(!messages.current());
    QVERIFY(_fresh->store().saveBookmarkFile());
    QVERIFY(messages.current());
    QCOMPARE(messages.current()->subject, Messages::KeptAside);
}

void KDRDrawerBundleTest::keptCopyOfSettingsIsSaid()
{
    UserDefaults &settings = UserDefaults::standardUserDefaults();
    QVERIFY(settings.synchronize());
    const Messages &messages = _fresh->store().messages();
    _fresh->home.write(QStringLiteral("Library/Preferences/org.wayfold.Wayfold.plist"), "no property list");
    _fresh->settings().setConfirmItemDelete(false);
    QVERIFY(settings.synchronize());
    QVERIFY(messages.current());
    QCOMPARE(messages.current()->subject, Messages::KeptAside);
    QVERIFY(messages.current()->text.contains(QStringLiteral("settings")));
}

void KDRDrawerBundleTest::startSaysNothing()
{
    const Messages &messages = _fresh->store().messages();
    QVERIFY(!messages.current());
    QVERIFY(_fresh->store().saveBookmarkFile());
    QVERIFY(!messages.current());
}

void KDRDrawerBundleTest::newProvisionalFolder()
{
    const auto folder = store().newProvisionalBookmarkWithTitle(QStringLiteral("example.com"));
    QCOMPARE(folder->title(), QStringLiteral("example.com"));
    QCOMPARE(StoreInTemporaryHome::titles(folder), smartFolders);
    QCOMPARE(store().provisionalBookmarkRoot()->children(), std::vector<KDRBookmarkPtr>{folder});
    QVERIFY(store().isProvisionalBookmark(folder.get()));
    QVERIFY(!store().isProvisionalBookmark(folder->childAtIndex(0).get()));
    QVERIFY(!store().isProvisionalBookmark(nullptr));
    QCOMPARE(store().bookmarkRoot()->childCount(), 0U);

    _fresh->settings().setCreateAutoFolders(false);
    QCOMPARE(store().newProvisionalBookmarkWithTitle(QStringLiteral("other.org"))->childCount(), 0U);
    QVERIFY(!QFileInfo::exists(_fresh->home.path(itemFile)));
}

void KDRDrawerBundleTest::newProvisionalFolderIsFoundAgain()
{
    const auto folder = store().newProvisionalBookmarkWithTitle(QStringLiteral("example.com"));
    QCOMPARE(store().newProvisionalBookmarkWithTitle(QStringLiteral("example.com")), folder);
    QCOMPARE(folder->childCount(), 2U); // no second pair of smart folders
    QVERIFY(store().newProvisionalBookmarkWithTitle(QStringLiteral("Example.com")) != folder);
    QCOMPARE(store().provisionalBookmarkRoot()->childCount(), 2U);
}

void KDRDrawerBundleTest::releaseLetsUnheldFolderGo()
{
    auto folder = store().newProvisionalBookmarkWithTitle(QStringLiteral("example.com"));
    const std::weak_ptr<WayfoldBookmarkFolder> watched = folder;
    const KDRBookmark *item = folder.get();
    folder.reset();
    store().releaseProvisionalBookmark(item);
    QCOMPARE(store().provisionalBookmarkRoot()->childCount(), 0U);
    QVERIFY(watched.expired());
    store().releaseProvisionalBookmark(item); // gone already
}

void KDRDrawerBundleTest::releaseKeepsFolderInUse()
{
    const auto folder = store().newProvisionalBookmarkWithTitle(QStringLiteral("example.com"));
    FolderInUse shown(folder);
    FolderInUse shownTwice = shown;
    store().releaseProvisionalBookmark(folder.get());
    QCOMPARE(store().provisionalBookmarkRoot()->childCount(), 1U);
    shown = FolderInUse(store().newProvisionalBookmarkWithTitle(QStringLiteral("other.org")));
    store().releaseProvisionalBookmark(folder.get());
    QCOMPARE(store().provisionalBookmarkRoot()->childCount(), 2U);
    const FolderInUse moved = std::move(shownTwice);
    QVERIFY(!shownTwice.folder()); // NOLINT(bugprone-use-after-move)
    store().releaseProvisionalBookmark(folder.get());
    QCOMPARE(store().provisionalBookmarkRoot()->childCount(), 2U);
    QCOMPARE(moved.folder(), folder);
}

void KDRDrawerBundleTest::heldFolderIsNotInUse()
{
    const auto folder = store().newProvisionalBookmarkWithTitle(QStringLiteral("example.com"));
    {
        const FolderInUse shown(folder);
        QVERIFY(FolderInUse::isInUse(folder.get()));
    }
    QVERIFY(!FolderInUse::isInUse(folder.get()));
    store().releaseProvisionalBookmark(folder.get());
    QCOMPARE(store().provisionalBookmarkRoot()->childCount(), 0U);
}

void KDRDrawerBundleTest::releaseOfOtherItemsDoesNothing()
{
    StoreInTemporaryHome::addFolder(store().bookmarkRoot(), QStringLiteral("example.com"));
    store().newProvisionalBookmarkWithTitle(QStringLiteral("other.org"));
    const auto provisional = store().provisionalBookmarkRoot()->childAtIndex(0);
    store().releaseProvisionalBookmark(store().bookmarkRoot()->childAtIndex(0).get());
    store().releaseProvisionalBookmark(
        WayfoldBookmarkFolder::fromItem(provisional)->childAtIndex(0).get()); // a provisional item's child
    store().releaseProvisionalBookmark(nullptr);
    QCOMPARE(store().bookmarkRoot()->childCount(), 1U);
    QCOMPARE(store().provisionalBookmarkRoot()->childCount(), 1U);
}

void KDRDrawerBundleTest::adoptMovesTheFolder()
{
    StoreInTemporaryHome::addFolder(store().bookmarkRoot(), QStringLiteral("first.org"));
    const auto folder = store().newProvisionalBookmarkWithTitle(QStringLiteral("example.com"));
    store().adoptProvisionalBookmark(folder);
    QCOMPARE(StoreInTemporaryHome::titles(store().bookmarkRoot()), (QStringList{"first.org", "example.com"}));
    QCOMPARE(store().provisionalBookmarkRoot()->childCount(), 0U);
    QCOMPARE(folder->parent(), store().bookmarkRoot());
    QVERIFY(!store().isProvisionalBookmark(folder.get()));
    QVERIFY(!QFileInfo::exists(_fresh->home.path(itemFile))); // the caller saves

    // With the provisional tree's own reference as the argument.
    store().newProvisionalBookmarkWithTitle(QStringLiteral("third.org"));
    store().adoptProvisionalBookmark(store().provisionalBookmarkRoot()->children().front());
    QCOMPARE(store().bookmarkRoot()->lastChild()->title(), QStringLiteral("third.org"));
}

void KDRDrawerBundleTest::adoptOfOtherItemsDoesNothing()
{
    const auto saved = StoreInTemporaryHome::addFolder(store().bookmarkRoot(), QStringLiteral("example.com"));
    store().adoptProvisionalBookmark(saved);
    store().adoptProvisionalBookmark(WayfoldBookmarkFolder::bookmarkWithTitle(QStringLiteral("nowhere")));
    store().adoptProvisionalBookmark(nullptr);
    QCOMPARE(StoreInTemporaryHome::titles(store().bookmarkRoot()), QStringList{"example.com"});
}

// ---- Other operations on the trees

void KDRDrawerBundleTest::deleteLeaf()
{
    const auto site = StoreInTemporaryHome::addFolder(store().bookmarkRoot(), QStringLiteral("example.com"));
    StoreInTemporaryHome::addNote(site, QStringLiteral("Milk"));
    StoreInTemporaryHome::addNote(site, QStringLiteral("Bread"));
    store().deleteBookmark(site->children().front());
    QCOMPARE(StoreInTemporaryHome::titles(site), QStringList{"Bread"});
    QVERIFY(_fresh->home.read(itemFile).contains("Bread"));
    QVERIFY(!_fresh->home.read(itemFile).contains("Milk"));
    QCOMPARE(store().provisionalBookmarkRoot()->childCount(), 0U);
}

void KDRDrawerBundleTest::deleteTopLevelFolderMakesItProvisional()
{
    const auto site = StoreInTemporaryHome::addFolder(store().bookmarkRoot(), QStringLiteral("example.com"));
    StoreInTemporaryHome::addFolder(store().bookmarkRoot(), QStringLiteral("other.org"));
    const auto note = StoreInTemporaryHome::addNote(site, QStringLiteral("Milk"));
    const FolderInUse shown(site);
    store().deleteBookmark(site);
    QCOMPARE(StoreInTemporaryHome::titles(store().bookmarkRoot()), QStringList{"other.org"});
    QCOMPARE(store().provisionalBookmarkRoot()->children(), std::vector<KDRBookmarkPtr>{site});
    QVERIFY(store().isProvisionalBookmark(site.get()));
    QVERIFY(!_fresh->home.read(itemFile).contains("example.com"));

    // Known as long as there is something in it.
    QVERIFY(store().isKnownSite(QStringLiteral("example.com")));
    store().deleteBookmark(note);
    QVERIFY(!store().isKnownSite(QStringLiteral("example.com")));
}

// Or the next visit to the site would bring it back.
void KDRDrawerBundleTest::deletedSiteThatNobodyShowsIsGone()
{
    const QString title = QStringLiteral("example.com");
    const auto site = StoreInTemporaryHome::addFolder(store().bookmarkRoot(), title);
    StoreInTemporaryHome::addNote(site, QStringLiteral("Milk"));
    store().deleteBookmark(site);
    QCOMPARE(store().provisionalBookmarkRoot()->childCount(), 0U);
    QVERIFY(!store().isKnownSite(title));
    QCOMPARE(StoreInTemporaryHome::titles(store().newProvisionalBookmarkWithTitle(title)), smartFolders);
    QVERIFY(!_fresh->home.read(itemFile).contains("Milk"));
}

void KDRDrawerBundleTest::deletedSitesThatSomebodyShowsStay()
{
    std::vector<KDRBookmarkPtr> sites;
    for (const char *title : {"a.org", "b.org", "c.org"})
        sites.push_back(StoreInTemporaryHome::addFolder(store().bookmarkRoot(), QString::fromLatin1(title)));
    const auto note = StoreInTemporaryHome::addNote(WayfoldBookmarkFolder::fromItem(sites[0]), QStringLiteral("Milk"));
    sites.push_back(note);
    const FolderInUse shown(WayfoldBookmarkFolder::fromItem(sites[1]));
    store().deleteBookmarks(sites);
    QCOMPARE(store().bookmarkRoot()->childCount(), 0U);
    QCOMPARE(StoreInTemporaryHome::titles(store().provisionalBookmarkRoot()), QStringList{"b.org"});
}

void KDRDrawerBundleTest::deleteTopLevelLeafIsGone()
{
    const auto note = StoreInTemporaryHome::addNote(store().bookmarkRoot(), QStringLiteral("Milk"));
    store().deleteBookmark(note);
    QCOMPARE(store().bookmarkRoot()->childCount(), 0U);
    QCOMPARE(store().provisionalBookmarkRoot()->childCount(), 0U);
}

void KDRDrawerBundleTest::deleteNestedFolderIsGone()
{
    const auto site = StoreInTemporaryHome::addFolder(store().bookmarkRoot(), QStringLiteral("example.com"));
    const auto nested = StoreInTemporaryHome::addFolder(site, QStringLiteral("nested"));
    store().deleteBookmark(nested);
    QCOMPARE(site->childCount(), 0U);
    QCOMPARE(store().provisionalBookmarkRoot()->childCount(), 0U);
}

void KDRDrawerBundleTest::deleteProvisionalFolder()
{
    const auto folder = store().newProvisionalBookmarkWithTitle(QStringLiteral("example.com"));
    store().deleteBookmark(folder);
    QCOMPARE(store().provisionalBookmarkRoot()->childCount(), 0U);
}

void KDRDrawerBundleTest::deleteFolderBesideAProvisionalOne()
{
    const QString title = QStringLiteral("example.com");
    const auto provisional = store().newProvisionalBookmarkWithTitle(title);
    const auto saved = StoreInTemporaryHome::addFolder(store().bookmarkRoot(), title);
    StoreInTemporaryHome::addNote(saved, QStringLiteral("Milk"));
    const FolderInUse shown(saved);
    store().deleteBookmark(saved);
    QCOMPARE(store().bookmarkRoot()->childCount(), 0U);
    QCOMPARE(store().provisionalBookmarkRoot()->children(), (std::vector<KDRBookmarkPtr>{provisional, saved}));
    QVERIFY(store().isProvisionalBookmark(saved.get()));
    // The first of that title counts.
    QCOMPARE(store().newProvisionalBookmarkWithTitle(title), provisional);
    QVERIFY(!store().isKnownSite(title));
}

void KDRDrawerBundleTest::deleteReloadsNoDrawer()
{
    _fresh->openWindow();
    _fresh->openWindow();
    const auto note = StoreInTemporaryHome::addNote(store().bookmarkRoot(), QStringLiteral("Milk"));
    store().deleteBookmark(note);
    QCOMPARE(_fresh->room.controllers.size(), size_t(2));
    for (const auto &controller : _fresh->room.controllers)
        QCOMPARE(controller->drawer.reloadCount, 0); // their lists follow the tree
}

void KDRDrawerBundleTest::deleteOfNoneOrParentlessItem()
{
    StoreInTemporaryHome::addNote(store().bookmarkRoot(), QStringLiteral("Milk"));
    store().deleteBookmark(nullptr);
    store().deleteBookmark(WayfoldBookmarkFolder::bookmarkWithTitle(QStringLiteral("nowhere")));
    QCOMPARE(StoreInTemporaryHome::titles(store().bookmarkRoot()), QStringList{"Milk"});
    QCOMPARE(store().provisionalBookmarkRoot()->childCount(), 0U);
}

void KDRDrawerBundleTest::knownSite_data()
{
    QTest::addColumn<QString>("siteKey");
    QTest::addColumn<bool>("known");

    QTest::newRow("saved folder") << "saved.org" << true;
    QTest::newRow("saved note of that title") << "a note" << true;
    QTest::newRow("provisional, smart folders only") << "empty.org" << false;
    QTest::newRow("provisional, with a note") << "filled.org" << true;
    QTest::newRow("below the top level") << "nested.org" << false;
    QTest::newRow("other letter case") << "Saved.org" << false;
    QTest::newRow("nowhere") << "unknown.org" << false;
    QTest::newRow("empty") << "" << false;
}

void KDRDrawerBundleTest::knownSite()
{
    QFETCH(QString, siteKey);
    QFETCH(bool, known);
    const auto saved = StoreInTemporaryHome::addFolder(store().bookmarkRoot(), QStringLiteral("saved.org"));
    StoreInTemporaryHome::addFolder(saved, QStringLiteral("nested.org"));
    StoreInTemporaryHome::addNote(store().bookmarkRoot(), QStringLiteral("a note"));
    store().newProvisionalBookmarkWithTitle(QStringLiteral("empty.org"));
    StoreInTemporaryHome::addNote(store().newProvisionalBookmarkWithTitle(QStringLiteral("filled.org")),
                                  QStringLiteral("Milk"));
    QCOMPARE(store().isKnownSite(siteKey), known);
}

void KDRDrawerBundleTest::smartFoldersOfTheTopLevel()
{
    _fresh->openWindow();
    const auto saved = StoreInTemporaryHome::addFolder(store().bookmarkRoot(), QStringLiteral("saved.org"));
    const auto nested = StoreInTemporaryHome::addFolder(saved, QStringLiteral("nested"));
    StoreInTemporaryHome::addNote(store().bookmarkRoot(), QStringLiteral("Milk"));
    const auto provisional = store().newProvisionalBookmarkWithTitle(QStringLiteral("new.org"));

    store().removeSmartFoldersFromTopLevel();
    QCOMPARE(StoreInTemporaryHome::titles(saved), QStringList{"nested"});
    QCOMPARE(provisional->childCount(), 0U);
    QCOMPARE(_fresh->controller().drawer.reloadCount, 1);

    store().addSmartFoldersToTopLevel();
    QCOMPARE(StoreInTemporaryHome::titles(saved), QStringList{"nested"} + smartFolders);
    QCOMPARE(StoreInTemporaryHome::titles(provisional), smartFolders);
    QCOMPARE(nested->childCount(), 0U);
    QCOMPARE(_fresh->controller().drawer.reloadCount, 2);

    QVERIFY(_fresh->settings().createAutoFolders());
    QVERIFY(!QFileInfo::exists(_fresh->home.path(itemFile)));
}

// They hold their members, wherever they stand.
void KDRDrawerBundleTest::groupsHoldNoSmartFolders()
{
    MemoryContacts contacts;
    contacts.set(MemoryContacts::group("inner", "Inner", {}));
    contacts.set(MemoryContacts::group("all", "All", {"inner"}));
    const auto all = WayfoldBookmarkABGroup::bookmarkWithID("all");
    store().bookmarkRoot()->addChild(all);
    all->ensureUpToDate();
    store().addSmartFoldersToTopLevel();
    QCOMPARE(StoreInTemporaryHome::titles(all), QStringList{"Inner"});
    store().removeSmartFoldersFromTopLevel();
    QCOMPARE(StoreInTemporaryHome::titles(all), QStringList{"Inner"});
    QVERIFY(store().saveBookmarkFile());
    QVERIFY(store().loadBookmarkFile());
    const auto read = WayfoldBookmarkFolder::fromItem(store().bookmarkRoot()->lastChild());
    QCOMPARE(read->title(), QStringLiteral("All"));
    QVERIFY(read->isEmpty());
}

// The groups of a site go when the user wants no smart folders. They are still in the file that was there before.
void KDRDrawerBundleTest::groupsThatGoWithSmartFoldersAreKept()
{
    const auto keptCopies = [this] {
        const QFileInfo file(_fresh->home.path(itemFile));
        return file.dir().entryList({file.fileName() + QStringLiteral(".kept-*")}, QDir::Files);
    };
    const auto site = StoreInTemporaryHome::addFolder(store().bookmarkRoot(), QStringLiteral("saved.org"));
    QVERIFY(store().saveBookmarkFile());
    store().removeSmartFoldersFromTopLevel();
    QVERIFY(store().saveBookmarkFile());
    QVERIFY(keptCopies().isEmpty());

    site->addChild(WayfoldBookmarkABGroup::bookmarkWithID("friends"));
    QVERIFY(store().saveBookmarkFile());
    const QByteArray saved = _fresh->home.read(itemFile);
    QVERIFY(saved.contains("friends"));
    store().removeSmartFoldersFromTopLevel();
    QVERIFY(site->isEmpty());
    QVERIFY(store().saveBookmarkFile());
    QVERIFY(store().saveBookmarkFile());
    QCOMPARE(keptCopies().size(), 1);
    QFile kept(QFileInfo(_fresh->home.path(itemFile)).dir().filePath(keptCopies().first()));
    QVERIFY(kept.open(QIODevice::ReadOnly));
    QCOMPARE(kept.readAll(), saved);
}

void KDRDrawerBundleTest::updateAllDrawersExceptOne()
{
    const auto first = _fresh->openWindow();
    _fresh->openWindow();
    FakeSiteDrawer otherKind(QStringLiteral("OtherDrawer"));
    otherKind.setParentWindow(first);
    FakeSiteDrawer second(QStringLiteral("KDRDrawer")); // a window's other drawers of the right class count too
    second.setParentWindow(first);
    const auto reloads = [this] {
        return QList<int>{_fresh->room.controllers[0]->drawer.reloadCount,
                          _fresh->room.controllers[1]->drawer.reloadCount};
    };

    store().updateAllDrawerContentsExceptFor(first.get());
    QCOMPARE(reloads(), (QList<int>{0, 1}));
    store().updateAllDrawerContentsExceptFor(nullptr);
    QCOMPARE(reloads(), (QList<int>{1, 2}));
    QCOMPARE(second.reloadCount, 1);
    QCOMPARE(otherKind.reloadCount, 0);
    store().untrackWindow(first);
    store().updateAllDrawerContentsExceptFor(nullptr);
    QCOMPARE(reloads(), (QList<int>{1, 3}));
}

// ---- Windows and drawers

void KDRDrawerBundleTest::trackedWindows()
{
    const auto a = _fresh->host.openWindow();
    const auto b = _fresh->host.openWindow();
    QVERIFY(store().trackedWindows().empty());
    store().trackWindow(b);
    store().trackWindow(a);
    auto windows = store().trackedWindows();
    QCOMPARE(windows, (std::vector<std::shared_ptr<HostWindow>>{b, a}));
    windows.clear(); // a copy
    QVERIFY(store().isWindowTracked(a.get()));
    QVERIFY(store().isWindowTracked(b.get()));
    store().untrackWindow(b);
    QVERIFY(!store().isWindowTracked(b.get()));
    QCOMPARE(store().trackedWindows(), std::vector<std::shared_ptr<HostWindow>>{a});
    QVERIFY(!store().isWindowTracked(nullptr));
    store().trackWindow(nullptr);
    QCOMPARE(store().trackedWindows().size(), size_t(1));
}

void KDRDrawerBundleTest::windowThatVanishedIsForgotten()
{
    auto window = _fresh->host.openWindow();
    store().trackWindow(window);
    _fresh->host.windows.clear();
    _fresh->host.key.reset();
    const HostWindow *address = window.get();
    window.reset();
    QVERIFY(!store().isWindowTracked(address));
    QVERIFY(store().trackedWindows().empty());
    QVERIFY(!store().drawerForWindow(address));
    store().updateAllDrawerContentsExceptFor(nullptr);
    QVERIFY(!store().isWindowTracked(nullptr));
}

void KDRDrawerBundleTest::drawerOfWindow()
{
    const auto window = _fresh->openWindow();
    QCOMPARE(store().drawerForWindow(window.get()), &_fresh->controller().drawer);
    QVERIFY(!store().drawerForWindow(nullptr));
    store().untrackWindow(window);
    QVERIFY(!store().drawerForWindow(window.get()));
    store().trackWindow(window);
    _fresh->controller().drawer.setParentWindow(nullptr);
    QVERIFY(!store().drawerForWindow(window.get()));
}

void KDRDrawerBundleTest::drawerIsKnownByItsExactClass()
{
    const auto window = _fresh->host.openWindow();
    store().trackWindow(window);
    FakeSiteDrawer other(QStringLiteral("KDRDrawerOfAnother"));
    other.setParentWindow(window);
    QVERIFY(!store().drawerForWindow(window.get()));
    FakeSiteDrawer first;
    first.setParentWindow(window);
    FakeSiteDrawer second;
    second.setParentWindow(window);
    QCOMPARE(store().drawerForWindow(window.get()), &first);
}

void KDRDrawerBundleTest::frontDrawer()
{
    QVERIFY(!store().frontDrawer());
    const auto first = _fresh->openWindow();
    _fresh->openWindow();
    QCOMPARE(store().frontDrawer(), &_fresh->room.controllers[1]->drawer);
    _fresh->host.key = first;
    QCOMPARE(store().frontDrawer(), &_fresh->room.controllers[0]->drawer);
    _fresh->host.key.reset();
    QVERIFY(!store().frontDrawer());
    _fresh->host.key = _fresh->host.openWindow(); // not tracked yet
    QVERIFY(!store().frontDrawer());
}

namespace
{
void bringInto(Drawer &drawer, Drawer::State state)
{
    constexpr int foreverInMilliseconds = 1000000;
    drawer.setSlideDuration(state == Drawer::Opening ? foreverInMilliseconds : 0);
    if (state != Drawer::Closed)
        drawer.open();
    drawer.setSlideDuration(foreverInMilliseconds);
    if (state == Drawer::Closing)
        drawer.close();
    QCOMPARE(drawer.state(), state);
}
} // namespace

void KDRDrawerBundleTest::openDrawer_data()
{
    QTest::addColumn<Drawer::State>("before");
    QTest::addColumn<bool>("result");

    QTest::newRow("closed") << Drawer::Closed << true;
    QTest::newRow("opening") << Drawer::Opening << false;
    QTest::newRow("open") << Drawer::Open << false;
    QTest::newRow("closing") << Drawer::Closing << true;
}

void KDRDrawerBundleTest::openDrawer()
{
    QFETCH(Drawer::State, before);
    QFETCH(bool, result);
    _fresh->openWindow();
    FakeDrawerController &controller = _fresh->controller();
    bringInto(controller.drawer, before);
    controller.openedManually = true;
    QCOMPARE(store().openKDRDrawer(), result);
    QVERIFY(controller.drawer.state() == Drawer::Opening || controller.drawer.state() == Drawer::Open);
    QCOMPARE(controller.openedManually, !result);
}

void KDRDrawerBundleTest::closeDrawer_data()
{
    QTest::addColumn<Drawer::State>("before");
    QTest::addColumn<bool>("result");

    QTest::newRow("closed") << Drawer::Closed << false;
    QTest::newRow("opening") << Drawer::Opening << true;
    QTest::newRow("open") << Drawer::Open << true;
    QTest::newRow("closing") << Drawer::Closing << false;
}

void KDRDrawerBundleTest::closeDrawer()
{
    QFETCH(Drawer::State, before);
    QFETCH(bool, result);
    _fresh->openWindow();
    FakeDrawerController &controller = _fresh->controller();
    bringInto(controller.drawer, before);
    controller.openedManually = true;
    QCOMPARE(store().closeKDRDrawer(), result);
    QVERIFY(controller.drawer.state() == Drawer::Closing || controller.drawer.state() == Drawer::Closed);
    QCOMPARE(controller.openedManually, !result);
}

void KDRDrawerBundleTest::openAndCloseWithoutFrontDrawer()
{
    _fresh->openWindow();
    FakeDrawerController &controller = _fresh->controller();
    _fresh->host.key.reset(); // the downloads window, say
    QVERIFY(!store().frontDrawer());
    QVERIFY(!store().openKDRDrawer());
    QCOMPARE(controller.drawer.state(), Drawer::Closed);
    controller.drawer.open();
    QVERIFY(!store().closeKDRDrawer());
    QCOMPARE(controller.drawer.state(), Drawer::Open);
    QVERIFY(controller.calls.isEmpty());
}

void KDRDrawerBundleTest::windowThatBecomesKey_data()
{
    QTest::addColumn<QString>("kind");
    QTest::addColumn<QSizeF>("size");
    QTest::addColumn<bool>("getsDrawer");

    const QString browser = QStringLiteral("BrowserWindow");
    QTest::newRow("browser window") << browser << QSizeF(800, 600) << true;
    QTest::newRow("exactly the least size") << browser << QSizeF(350, 200) << true;
    QTest::newRow("too narrow") << browser << QSizeF(349.9, 600) << false;
    QTest::newRow("too low") << browser << QSizeF(800, 199.9) << false;
    QTest::newRow("a panel") << "Panel" << QSizeF(800, 600) << false;
    QTest::newRow("a window of a derived class") << "BrowserWindowWithMore" << QSizeF(800, 600) << false;
    QTest::newRow("other letter case") << "browserwindow" << QSizeF(800, 600) << false;
}

void KDRDrawerBundleTest::windowThatBecomesKey()
{
    QFETCH(QString, kind);
    QFETCH(QSizeF, size);
    QFETCH(bool, getsDrawer);
    store();
    const auto window = _fresh->host.openWindow(QRectF(QPointF(10, 10), size));
    window->kind = kind;
    QVERIFY(_fresh->room.controllers.empty());
    window->becomeKey();
    QCOMPARE(_fresh->room.controllers.size(), size_t(getsDrawer ? 1 : 0));
    QCOMPARE(store().isWindowTracked(window.get()), getsDrawer);
    if (getsDrawer)
        QCOMPARE(_fresh->controller().drawer.parentWindow(), window);
}

void KDRDrawerBundleTest::windowGetsOneDrawer()
{
    const auto window = _fresh->openWindow();
    window->becomeKey();
    window->becomeKey();
    QCOMPARE(_fresh->room.controllers.size(), size_t(1));
}

void KDRDrawerBundleTest::enlargedWindowGetsItsDrawerLater()
{
    const auto window = _fresh->openWindow(QRectF(0, 0, 200, 150));
    QVERIFY(_fresh->room.controllers.empty());
    window->windowFrame = QRectF(0, 0, 800, 600);
    window->frameDidChange();
    QVERIFY(_fresh->room.controllers.empty());
    window->becomeKey();
    QCOMPARE(_fresh->room.controllers.size(), size_t(1));
}

void KDRDrawerBundleTest::keyNotificationWithoutWindow()
{
    store();
    NotificationCenter::defaultCenter().postNotificationName(PlatformNotifications::NSWindowDidBecomeKeyNotification,
                                                             nullptr);
    QVERIFY(_fresh->room.controllers.empty());
}

void KDRDrawerBundleTest::newWindowOpensItsDrawerWhenSet_data()
{
    QTest::addColumn<bool>("set");
    QTest::newRow("set") << true;
    QTest::newRow("not set") << false;
}

void KDRDrawerBundleTest::newWindowOpensItsDrawerWhenSet()
{
    QFETCH(bool, set);
    _fresh->settings().setOpenDrawerOnNewWindow(set);
    _fresh->openWindow();
    QCOMPARE(_fresh->controller().drawer.state(), set ? Drawer::Open : Drawer::Closed);
    QVERIFY(_fresh->controller().calls.isEmpty());
}

void KDRDrawerBundleTest::windowWithoutDrawerRoom()
{
    SiteDrawerFactory::setMaker({});
    _fresh->settings().setOpenDrawerOnNewWindow(true);
    const auto window = _fresh->openWindow();
    QVERIFY(!store().isWindowTracked(window.get()));
}

// ---- Page loads

void KDRDrawerBundleTest::subFrameChangesNothing()
{
    const auto window = _fresh->openWindow();
    _fresh->settings().setAutoFocusOnSiteChange(true);
    const auto view = window->addTab(QStringLiteral("http://www.example.com/"));
    const auto subFrame = FakeHostWebView::makeSubFrame(view);
    subFrame->commit(QStringLiteral("http://ads.example.org/"));
    store().updateDrawerForFrame(subFrame);
    QVERIFY(_fresh->controller().calls.isEmpty());
    QVERIFY(!_fresh->controller().currentWebFrame());
}

void KDRDrawerBundleTest::backgroundTabChangesNothing()
{
    const auto window = _fresh->openWindow();
    _fresh->settings().setAutoFocusOnSiteChange(true);
    const auto background = window->addTab(QStringLiteral("http://www.example.com/"));
    const auto front = window->addTab(QStringLiteral("http://www.example.org/"));
    store().updateDrawerForFrame(background->frame);
    QVERIFY(_fresh->controller().calls.isEmpty());
    QVERIFY(!_fresh->controller().currentWebFrame());
    store().updateDrawerForFrame(front->frame);
    QCOMPARE(_fresh->controller().calls, QStringList{"label:example.org"});
}

void KDRDrawerBundleTest::frameWithoutViewOrWindowChangesNothing()
{
    const auto window = _fresh->openWindow();
    _fresh->settings().setAutoFocusOnSiteChange(true);
    store().updateDrawerForFrame(nullptr);

    const auto view = window->addTab(QStringLiteral("http://www.example.com/"));
    view->window.reset(); // being moved to another window
    store().updateDrawerForFrame(view->frame);

    const auto orphan = FakeHostWebView::makeSubFrame(nullptr);
    orphan->commit(QStringLiteral("http://www.example.com/"));
    store().updateDrawerForFrame(orphan);
    QVERIFY(_fresh->controller().calls.isEmpty());
}

void KDRDrawerBundleTest::windowWithoutDrawerChangesNothing()
{
    _fresh->settings().setAutoFocusOnSiteChange(true);
    const auto small = _fresh->openWindow(QRectF(0, 0, 200, 150));
    const auto view = small->addTab(QStringLiteral("http://www.example.com/"));
    store().updateDrawerForFrame(view->frame);
    QVERIFY(_fresh->room.controllers.empty());

    const auto window = _fresh->openWindow();
    const auto page = window->addTab(QStringLiteral("http://www.example.com/"));
    _fresh->controller().drawer.setController(nullptr);
    store().updateDrawerForFrame(page->frame);
    QVERIFY(_fresh->controller().calls.isEmpty());
}

void KDRDrawerBundleTest::windowWithoutCurrentViewChangesNothing()
{
    const auto window = _fresh->openWindow();
    _fresh->settings().setAutoFocusOnSiteChange(true);
    const auto view = window->addTab(QStringLiteral("http://www.example.com/"));
    window->frontWebView.reset();
    store().updateDrawerForFrame(view->frame);
    QVERIFY(_fresh->controller().calls.isEmpty());
    QVERIFY(!_fresh->controller().currentWebFrame());
}

void KDRDrawerBundleTest::frameIsKept()
{
    const auto window = _fresh->openWindow();
    const auto view = window->addTab(QStringLiteral("http://www.example.com/"));
    store().updateDrawerForFrame(view->frame);
    QCOMPARE(_fresh->controller().currentWebFrame(), view->frame);
    const auto other = window->addTab();
    store().updateDrawerForFrame(other->frame);
    QCOMPARE(_fresh->controller().currentWebFrame(), other->frame);
}

void KDRDrawerBundleTest::autoFocusRelabels()
{
    const auto window = _fresh->openWindow();
    _fresh->settings().setAutoFocusOnSiteChange(true);
    const auto view = window->addTab(QStringLiteral("http://news.example.com/"));
    store().updateDrawerForFrame(view->frame);
    // The fake says so when the frame given is not the current one yet.
    QCOMPARE(_fresh->controller().calls, QStringList{"label:example.com"});
    view->frame->commit(QStringLiteral("http://mail.example.com/"));
    store().updateDrawerForFrame(view->frame);
    QCOMPARE(_fresh->controller().calls.size(), 1); // the same site
    view->frame->commit(QStringLiteral("http://www.example.org/"));
    store().updateDrawerForFrame(view->frame);
    QCOMPARE(_fresh->controller().calls, (QStringList{"label:example.com", "label:example.org"}));
}

void KDRDrawerBundleTest::labelStaysWithoutAutoFocus()
{
    const auto window = _fresh->openWindow();
    _fresh->settings().setOpenDrawerForKnownSite(true);
    StoreInTemporaryHome::addFolder(store().bookmarkRoot(), QStringLiteral("example.com"));
    NotificationLog log(drawerRequests);
    _fresh->controller().label = QStringLiteral("example.com"); // set by the user
    const auto view = window->addTab(QStringLiteral("http://www.example.com/"));
    store().updateDrawerForFrame(view->frame); // the site of the label
    NotificationLog::deliverPending();
    QVERIFY(log.received.empty());

    _fresh->controller().label = QStringLiteral("example.org");
    store().updateDrawerForFrame(view->frame);
    NotificationLog::deliverPending();
    QCOMPARE(log.names(), QStringList{Notifications::DrawerShouldOpenForLocationChange});
    QVERIFY(_fresh->controller().calls.isEmpty());
}

void KDRDrawerBundleTest::pageWithoutHostIsNoSite()
{
    const auto window = _fresh->openWindow();
    _fresh->settings().setAutoFocusOnSiteChange(true);
    _fresh->settings().setCloseDrawerForUnknownSite(true);
    NotificationLog log(drawerRequests);
    FakeDrawerController &controller = _fresh->controller();
    controller.label = QStringLiteral("example.com");

    const auto view = window->addTab(QStringLiteral("file:///home/ann/a.html"));
    store().updateDrawerForFrame(view->frame);
    const auto empty = window->addTab();
    store().updateDrawerForFrame(empty->frame);
    QCOMPARE(controller.calls, (QStringList{"label:", "label:"}));
    NotificationLog::deliverPending();
    QVERIFY(log.received.empty());
}

void KDRDrawerBundleTest::pageWithoutHostAndWithoutAutoFocus()
{
    const auto window = _fresh->openWindow();
    _fresh->settings().setOpenDrawerForKnownSite(true);
    _fresh->settings().setCloseDrawerForUnknownSite(true);
    NotificationLog log(drawerRequests);
    _fresh->controller().label = QStringLiteral("example.com");
    const auto view = window->addTab(QStringLiteral("file:///home/ann/a.html"));
    store().updateDrawerForFrame(view->frame);
    NotificationLog::deliverPending();
    QCOMPARE(_fresh->controller().currentWebFrame(), view->frame);
    QVERIFY(_fresh->controller().calls.isEmpty());
    QVERIFY(log.received.empty());
}

void KDRDrawerBundleTest::nullKeyEqualsNullLabelOnly()
{
    const auto window = _fresh->openWindow();
    _fresh->settings().setAutoFocusOnSiteChange(true);
    FakeDrawerController &controller = _fresh->controller();
    const auto view = window->addTab(QStringLiteral("about:blank"));
    controller.frame = view->frame;

    QVERIFY(controller.label.isNull());
    store().updateDrawerForFrame(view->frame); // no site, no label, the same frame
    QVERIFY(controller.calls.isEmpty());

    controller.label = QStringLiteral("");
    store().updateDrawerForFrame(view->frame); // an empty label is one
    QCOMPARE(controller.calls, QStringList{"label:"});

    view->frame->commit(QStringLiteral("http://www.example.com/"));
    controller.label = QString();
    store().updateDrawerForFrame(view->frame);
    QCOMPARE(controller.calls, (QStringList{"label:", "label:example.com"}));
}

void KDRDrawerBundleTest::reloadOfTheSamePagePostsNothing()
{
    const auto window = _fresh->openWindow();
    _fresh->settings().setAutoFocusOnSiteChange(true);
    _fresh->settings().setCloseDrawerForUnknownSite(true);
    NotificationLog log(drawerRequests);
    const auto view = window->addTab(QStringLiteral("http://www.example.com/"));
    store().updateDrawerForFrame(view->frame);
    NotificationLog::deliverPending();
    QCOMPARE(log.names(), QStringList{Notifications::DrawerShouldCloseForLocationChange});
    store().updateDrawerForFrame(view->frame);
    view->frame->commit(QStringLiteral("http://www.example.com/another"));
    store().updateDrawerForFrame(view->frame); // same host, same frame
    NotificationLog::deliverPending();
    QCOMPARE(log.received.size(), size_t(1));
}

void KDRDrawerBundleTest::otherPageOfUnknownSiteClosesAgain()
{
    const auto window = _fresh->openWindow();
    _fresh->settings().setAutoFocusOnSiteChange(true);
    _fresh->settings().setCloseDrawerForUnknownSite(true);
    NotificationLog log(drawerRequests);
    store().updateDrawerForFrame(window->addTab(QStringLiteral("http://www.example.com/"))->frame);
    NotificationLog::deliverPending();
    store().updateDrawerForFrame(window->addTab(QStringLiteral("http://www.example.com/other"))->frame);
    NotificationLog::deliverPending();
    QCOMPARE(log.received.size(), size_t(2)); // same site, another frame
}

void KDRDrawerBundleTest::sameFrameOfUnknownSiteAgain_data()
{
    QTest::addColumn<QString>("label");
    QTest::addColumn<int>("posted");
    QTest::newRow("the site is shown") << "example.com" << 1;
    QTest::newRow("another site is shown") << "example.org" << 2; // which the page's site differs from each time
}

void KDRDrawerBundleTest::sameFrameOfUnknownSiteAgain()
{
    QFETCH(QString, label);
    QFETCH(int, posted);
    const auto window = _fresh->openWindow();
    _fresh->settings().setCloseDrawerForUnknownSite(true);
    _fresh->controller().label = label;
    NotificationLog log(drawerRequests);
    const auto view = window->addTab(QStringLiteral("http://www.example.com/"));
    for (int i = 0; i < 2; ++i) {
        store().updateDrawerForFrame(view->frame);
        NotificationLog::deliverPending();
    }
    QCOMPARE(int(log.received.size()), posted);
    view->frame->commit(QStringLiteral("http://www.example.net/")); // another site in the same frame
    store().updateDrawerForFrame(view->frame);
    NotificationLog::deliverPending();
    QCOMPARE(int(log.received.size()), posted + 1);
}

void KDRDrawerBundleTest::decision_data()
{
    QTest::addColumn<bool>("known");
    QTest::addColumn<bool>("sameSite");
    QTest::addColumn<bool>("openForKnown");
    QTest::addColumn<bool>("closeForUnknown");
    QTest::addColumn<QStringList>("posted");

    const QStringList open = {Notifications::DrawerShouldOpenForLocationChange};
    const QStringList close = {Notifications::DrawerShouldCloseForLocationChange};
    for (bool known : {true, false}) {
        for (bool same : {true, false}) {
            for (bool openForKnown : {true, false}) {
                for (bool closeForUnknown : {true, false}) {
                    QStringList posted;
                    if (known && !same && openForKnown)
                        posted = open;
                    if (!known && closeForUnknown)
                        posted = close;
                    QTest::addRow("%s site, %s site, open %s, close %s", known ? "known" : "unknown",
                                  same ? "same" : "other", openForKnown ? "on" : "off", closeForUnknown ? "on" : "off")
                        << known << same << openForKnown << closeForUnknown << posted;
                }
            }
        }
    }
}

void KDRDrawerBundleTest::decision()
{
    QFETCH(bool, known);
    QFETCH(bool, sameSite);
    QFETCH(bool, openForKnown);
    QFETCH(bool, closeForUnknown);
    QFETCH(QStringList, posted);
    const auto window = _fresh->openWindow();
    _fresh->settings().setOpenDrawerForKnownSite(openForKnown);
    _fresh->settings().setCloseDrawerForUnknownSite(closeForUnknown);
    if (known)
        StoreInTemporaryHome::addFolder(store().bookmarkRoot(), QStringLiteral("example.com"));
    _fresh->controller().label = sameSite ? QStringLiteral("example.com") : QStringLiteral("example.org");
    NotificationLog log(drawerRequests);

    const auto view = window->addTab(QStringLiteral("http://www.example.com/"));
    store().updateDrawerForFrame(view->frame);
    QVERIFY(log.received.empty()); // nothing before the event loop is idle
    NotificationLog::deliverPending();
    QCOMPARE(log.names(), posted);
    const Drawer *drawer = &_fresh->controller().drawer;
    for (const Notification &notification : log.received)
        QCOMPARE(notification.object, static_cast<const void *>(drawer));
}

void KDRDrawerBundleTest::provisionalSiteIsKnownWhenItHoldsSomething()
{
    const auto window = _fresh->openWindow();
    _fresh->settings().setOpenDrawerForKnownSite(true);
    _fresh->settings().setCloseDrawerForUnknownSite(true);
    const auto folder = store().newProvisionalBookmarkWithTitle(QStringLiteral("example.com"));
    NotificationLog log(drawerRequests);
    store().updateDrawerForFrame(window->addTab(QStringLiteral("http://www.example.com/"))->frame);
    NotificationLog::deliverPending();
    StoreInTemporaryHome::addNote(folder, QStringLiteral("Milk"));
    store().updateDrawerForFrame(window->addTab(QStringLiteral("http://www.example.com/"))->frame);
    NotificationLog::deliverPending();
    QCOMPARE(log.names(), (QStringList{Notifications::DrawerShouldCloseForLocationChange,
                                       Notifications::DrawerShouldOpenForLocationChange}));
}

void KDRDrawerBundleTest::requestsWaitForAnIdleMoment_data()
{
    QTest::addColumn<bool>("known");
    QTest::newRow("open") << true;
    QTest::newRow("close") << false;
}

void KDRDrawerBundleTest::requestsWaitForAnIdleMoment()
{
    QFETCH(bool, known);
    const auto window = _fresh->openWindow();
    _fresh->settings().setOpenDrawerForKnownSite(true);
    _fresh->settings().setCloseDrawerForUnknownSite(true);
    if (known)
        StoreInTemporaryHome::addFolder(store().bookmarkRoot(), QStringLiteral("example.com"));
    NotificationLog::deliverPending();
    const QString sooner = QStringLiteral("AtTheEndOfThisPass");
    NotificationLog log(drawerRequests + QStringList{sooner});
    store().updateDrawerForFrame(window->addTab(QStringLiteral("http://www.example.com/"))->frame);
    WayfoldToolkit::postNotificationNameObject(sooner, this);
    NotificationLog::deliverPending();
    const QString request =
        known ? Notifications::DrawerShouldOpenForLocationChange : Notifications::DrawerShouldCloseForLocationChange;
    QCOMPARE(log.names(), QStringList({sooner, request})); // though it was posted first
}

void KDRDrawerBundleTest::requestsAreCoalesced()
{
    _fresh->settings().setCloseDrawerForUnknownSite(true);
    const auto first = _fresh->openWindow();
    const auto second = _fresh->openWindow();
    NotificationLog log(drawerRequests);
    for (const auto &window : {first, second}) {
        store().updateDrawerForFrame(window->addTab(QStringLiteral("http://www.example.com/"))->frame);
        store().updateDrawerForFrame(window->addTab(QStringLiteral("http://www.example.org/"))->frame);
    }
    NotificationLog::deliverPending();
    QCOMPARE(log.received.size(), size_t(2)); // one a drawer
    QVERIFY(log.received[0].object != log.received[1].object);
}

QTEST_MAIN(KDRDrawerBundleTest)
#include "KDRDrawerBundleTest.moc"
