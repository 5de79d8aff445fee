#include "core/KDRDrawerBundle.h"

#include "core/Notifications.h"
#include "core/settings/WayfoldToolkit.h"
#include "model/WayfoldHistoryURL.h"
#include "platform/base/PlatformNotifications.h"
#include "platform/files/PropertyList.h"
#include "platform/host/CurrentHost.h"
#include "tests/core/StoreInTemporaryHome.h"
#include "tests/platform/StatusChange.h"
#include "tests/support/LoggedMessages.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QPoint>
#include <QRegularExpression>
#include <QSemaphore>
#include <QThread>
#include <atomic>
#include <optional>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace
{
const QString bookmarkFile = QStringLiteral("Library/Safari/Bookmarks.plist");
const QString historyFile = QStringLiteral("Library/Safari/History.plist");
const QString bookmarksChanged = Notifications::SafariBookmarkFileModNotification;
const QString historyChanged = Notifications::SafariHistoryFileModNotification;

QByteArray bookmarksWith(const QByteArray &title)
{
    return "<plist version=\"1.0\"><dict><key>WebBookmarkFileVersion</key><integer>1</integer>"
           "<key>WebBookmarkType</key><string>WebBookmarkTypeList</string>"
           "<key>WebBookmarkUUID</key><string>ROOT</string><key>Children</key><array><dict>"
           "<key>WebBookmarkType</key><string>WebBookmarkTypeLeaf</string><key>WebBookmarkUUID</key>"
           "<string>LEAF</string><key>URLString</key><string>http://www.example.com/</string>"
           "<key>URIDictionary</key><dict><key>title</key><string>" +
           title + "</string></dict></dict></array></dict></plist>\n";
}

QByteArray historyEntry(const QByteArray &title, const QByteArray &address)
{
    return "<dict><key></key><string>" + address + "</string><key>title</key><string>" + title +
           "</string><key>lastVisitedDate</key><string>100.0</string></dict>";
}

QByteArray historyWith(const QByteArray &entries)
{
    return "<plist version=\"1.0\"><dict><key>WebHistoryDates</key><array>" + entries + "</array></dict></plist>\n";
}

// For whom permissions count, until this goes.
class OrdinaryUser
{
public:
    OrdinaryUser() : _isSuperuser(::geteuid() == 0), _isOne(!_isSuperuser || ::seteuid(65534) == 0) {}
    ~OrdinaryUser()
    {
        if (_isSuperuser && ::seteuid(0) != 0)
            qFatal("The superuser has gone.");
    }
    OrdinaryUser(const OrdinaryUser &) = delete;
    OrdinaryUser &operator=(const OrdinaryUser &) = delete;

    bool isOne() const { return _isOne; }

private:
    bool _isSuperuser = false;
    bool _isOne = false;
};

// Lets no file be opened until this goes.
class NoDescriptorsLeft
{
public:
    NoDescriptorsLeft()
    {
        if (::getrlimit(RLIMIT_NOFILE, &_before) != 0)
            qFatal("There is no telling how many files may be open.");
        rlimit none = _before;
        none.rlim_cur = 0;
        ::setrlimit(RLIMIT_NOFILE, &none);
    }
    ~NoDescriptorsLeft() { ::setrlimit(RLIMIT_NOFILE, &_before); }
    NoDescriptorsLeft(const NoDescriptorsLeft &) = delete;
    NoDescriptorsLeft &operator=(const NoDescriptorsLeft &) = delete;

private:
    rlimit _before;
};

// Keeps one thread waiting when that first asks for the bookmark file's place.
class WaitingHost : public FakeHostApplication
{
public:
    mutable std::atomic<const QThread *> kept = nullptr;
    mutable QSemaphore hasAsked;
    mutable QSemaphore isAnswered;

    QString bookmarkFilePath() const override
    {
        const QThread *asking = QThread::currentThread();
        if (kept.compare_exchange_strong(asking, nullptr)) {
            hasAsked.release();
            isAnswered.acquire();
        }
        return FakeHostApplication::bookmarkFilePath();
    }
};

// Whether a thread of this program waits for something else than the disk.
bool isAsleep(pid_t thread)
{
    QFile status(QStringLiteral("/proc/self/task/%1/stat").arg(thread));
    if (!status.open(QIODevice::ReadOnly))
        return false;
    const QByteArray line = status.readAll(); // "123 (name) S ..."
    return line.mid(line.lastIndexOf(')')).startsWith(") S");
}
} // namespace

class SafariFilesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { _fresh.emplace(); }
    void cleanup() { _fresh.reset(); }

    void pathsAreTheHosts();
    void startReadsBothFilesAndSaysSo();
    void missingFilesAreNoNews();
    void changedFileIsReadAgain();
    void touchedFileIsReadAgain();
    void unchangedFileIsLeftAlone();
    void replacedFileOfTheSameDateIsReadAgain_data() { bothFiles(); }
    void replacedFileOfTheSameDateIsReadAgain();
    void fileBehindALinkIsFollowed_data() { bothFiles(); }
    void fileBehindALinkIsFollowed();
    void vanishedFileKeepsTheTreeUntilItIsBack_data() { bothFiles(); }
    void vanishedFileKeepsTheTreeUntilItIsBack();
    void fileThatAppearsIsRead();
    void unreadableFileGivesAnEmptyTree_data();
    void unreadableFileGivesAnEmptyTree();
    void fileThatMayBeReadLaterIsReadThen_data() { bothFiles(); }
    void fileThatMayBeReadLaterIsReadThen();
    void fileThatCannotBeOpenedJustNowIsReadLater_data() { bothFiles(); }
    void fileThatCannotBeOpenedJustNowIsReadLater();
    void fileThatCannotBeOpenedAtTheStartIsReadLater_data() { bothFiles(); }
    void fileThatCannotBeOpenedAtTheStartIsReadLater();
    void triesBecomeRare_data() { bothFiles(); }
    void triesBecomeRare();
    void rewrittenFileOfTheSameDateAndLengthIsReadAgain_data() { bothFiles(); }
    void rewrittenFileOfTheSameDateAndLengthIsReadAgain();
    void directoryGivesAnEmptyTree();
    void loadWithoutFileGivesAnEmptyTree();
    void treesAreReplacedWhole();
    void historyIsInFileOrder();
    void historyWithoutDatesIsEmpty();
    void nothingIsReadAfterQuitting_data() { bothFiles(); }
    void nothingIsReadAfterQuitting();
    void changedFileIsNotReadAfterQuitting_data() { bothFiles(); }
    void changedFileIsNotReadAfterQuitting();
    void changeIsToldWithoutWaiting_data() { bothFiles(); }
    void changeIsToldWithoutWaiting();
    void tickIsPostedWhenIdle();
    void ticksAreCoalesced();
    void tickChecksTheFiles();

    void writeBackKeepsTheFilesOwnKeys();
    void writeBackWithoutReadableFileWritesNothing_data();
    void writeBackWithoutReadableFileWritesNothing();
    void writeBackThatFails_data();
    void writeBackThatFails();
    void writeBackToFileWithoutItsKeys();
    void writeBackIsNoticedAsAChange();
    void writeBackIsInTheItemsForm();
    void writeBackWaitsForAReading();
    void checkDoesNotWait();

private:
    KDRDrawerBundle &store() { return StoreInTemporaryHome::store(); }
    QStringList bookmarkTitles() { return StoreInTemporaryHome::titles(store().safariBookmarkRoot()); }
    QStringList historyTitles() { return StoreInTemporaryHome::titles(store().historyBookmarkRoot()); }
    // The same of either file.
    static void bothFiles()
    {
        QTest::addColumn<QString>("file");
        QTest::newRow("bookmarks") << bookmarkFile;
        QTest::newRow("history") << historyFile;
    }
    void writeFile(const QString &file, const QByteArray &title, const QString &place = QString())
    {
        _fresh->home.write(place.isNull() ? file : place,
                           file == bookmarkFile ? bookmarksWith(title)
                                                : historyWith(historyEntry(title, "http://www.example.com/")));
    }
    WayfoldBookmarkFolderPtr rootOf(const QString &file)
    {
        return file == bookmarkFile ? store().safariBookmarkRoot() : store().historyBookmarkRoot();
    }
    QStringList titlesOf(const QString &file) { return StoreInTemporaryHome::titles(rootOf(file)); }
    static QString changeOf(const QString &file) { return file == bookmarkFile ? bookmarksChanged : historyChanged; }
    // Gives a file another date, whatever the clock says.
    void touch(const QString &file, int seconds)
    {
        QFile opened(_fresh->home.path(file));
        QVERIFY(opened.open(QIODevice::ReadWrite));
        QVERIFY(opened.setFileTime(QDateTime::fromSecsSinceEpoch(1000000000 + seconds), QFile::FileModificationTime));
    }

    std::optional<StoreInTemporaryHome> _fresh;
};

void SafariFilesTest::pathsAreTheHosts()
{
    QCOMPARE(KDRDrawerBundle::safariBookmarkFilePath(), _fresh->home.path(bookmarkFile));
    QCOMPARE(KDRDrawerBundle::safariHistoryFilePath(), _fresh->home.path(historyFile));
    _fresh->host.bookmarkPath = QStringLiteral("~/.other/../browser/marks.plist");
    QCOMPARE(KDRDrawerBundle::safariBookmarkFilePath(), _fresh->home.path(QStringLiteral("browser/marks.plist")));
    setCurrentHost(nullptr);
    QCOMPARE(KDRDrawerBundle::safariBookmarkFilePath(), _fresh->home.path(bookmarkFile));
    QCOMPARE(KDRDrawerBundle::safariHistoryFilePath(), _fresh->home.path(historyFile));
    setCurrentHost(&_fresh->host);
}

void SafariFilesTest::startReadsBothFilesAndSaysSo()
{
    _fresh->home.write(bookmarkFile, bookmarksWith("One"));
    _fresh->home.write(historyFile, historyWith(historyEntry("Page", "http://www.example.com/")));
    NotificationLog log({bookmarksChanged, historyChanged});
    store();
    QCOMPARE(store().safariBookmarkRoot()->title(), QStringLiteral("Bookmarks"));
    QCOMPARE(bookmarkTitles(), QStringList{"One"});
    QCOMPARE(store().historyBookmarkRoot()->title(), QStringLiteral("History"));
    QCOMPARE(historyTitles(), QStringList{"Page"});
    QVERIFY(log.received.empty()); // told later, when both are there
    NotificationLog::deliverPending();
    QCOMPARE(log.names(), (QStringList{bookmarksChanged, historyChanged}));
    for (const Notification &notification : log.received)
        QCOMPARE(notification.object, static_cast<const void *>(&store()));
}

void SafariFilesTest::missingFilesAreNoNews()
{
    NotificationLog log({bookmarksChanged, historyChanged});
    store().tagSafariFiles();
    NotificationLog::deliverPending();
    QVERIFY(log.received.empty());
    QVERIFY(!store().safariBookmarkRoot());
    QVERIFY(!store().historyBookmarkRoot());
}

void SafariFilesTest::changedFileIsReadAgain()
{
    _fresh->home.write(bookmarkFile, bookmarksWith("One"));
    _fresh->home.write(historyFile, historyWith(historyEntry("Page", "http://www.example.com/")));
    store();
    NotificationLog::deliverPending();
    NotificationLog log({bookmarksChanged, historyChanged});

    _fresh->home.write(bookmarkFile, bookmarksWith("Two"));
    touch(bookmarkFile, 1);
    store().tagSafariFiles();
    QCOMPARE(bookmarkTitles(), QStringList{"Two"});
    NotificationLog::deliverPending();
    QCOMPARE(log.names(), QStringList{bookmarksChanged});

    _fresh->home.write(historyFile, historyWith(historyEntry("Other", "http://www.example.org/")));
    touch(historyFile, 2);
    store().tagSafariFiles();
    QCOMPARE(historyTitles(), QStringList{"Other"});
    NotificationLog::deliverPending();
    QCOMPARE(log.names(), (QStringList{bookmarksChanged, historyChanged}));
}

void SafariFilesTest::touchedFileIsReadAgain()
{
    _fresh->home.write(bookmarkFile, bookmarksWith("One"));
    _fresh->home.write(historyFile, historyWith(historyEntry("Page", "http://www.example.com/")));
    const auto oldRoot = store().historyBookmarkRoot();
    NotificationLog::deliverPending();
    NotificationLog log({bookmarksChanged, historyChanged});
    touch(historyFile, 1);
    store().tagSafariFiles();
    QVERIFY(store().historyBookmarkRoot() != oldRoot);
    NotificationLog::deliverPending();
    QCOMPARE(log.names(), QStringList{historyChanged});
    touch(historyFile, 0); // an older date is another date
    store().tagSafariFiles();
    NotificationLog::deliverPending();
    QCOMPARE(log.received.size(), size_t(2));
}

void SafariFilesTest::unchangedFileIsLeftAlone()
{
    _fresh->home.write(bookmarkFile, bookmarksWith("One"));
    _fresh->home.write(historyFile, historyWith(""));
    const auto bookmarks = store().safariBookmarkRoot();
    const auto history = store().historyBookmarkRoot();
    NotificationLog::deliverPending();
    NotificationLog log({bookmarksChanged, historyChanged});
    store().tagSafariFiles();
    store().tagSafariFiles();
    NotificationLog::deliverPending();
    QVERIFY(log.received.empty());
    QCOMPARE(store().safariBookmarkRoot(), bookmarks);
    QCOMPARE(store().historyBookmarkRoot(), history);
}

void SafariFilesTest::replacedFileOfTheSameDateIsReadAgain()
{
    QFETCH(QString, file);
    writeFile(file, "One");
    touch(file, 1);
    QCOMPARE(titlesOf(file), QStringList{"One"});
    // A file of the same length, as a backup that keeps the dates puts it back.
    const QString spare = QStringLiteral("spare.plist");
    writeFile(file, "Two", spare);
    touch(spare, 1);
    QVERIFY(QFile::remove(_fresh->home.path(file)));
    QVERIFY(QFile::rename(_fresh->home.path(spare), _fresh->home.path(file)));
    store().tagSafariFiles();
    QCOMPARE(titlesOf(file), QStringList{"Two"});
    // The very same file, rewritten within one tick of the clock.
    writeFile(file, "Three");
    touch(file, 1);
    store().tagSafariFiles();
    QCOMPARE(titlesOf(file), QStringList{"Three"});
}

void SafariFilesTest::fileBehindALinkIsFollowed()
{
    QFETCH(QString, file);
    const QString elsewhere = QStringLiteral("elsewhere.plist");
    writeFile(file, "One", elsewhere);
    QVERIFY(QDir().mkpath(_fresh->home.path(QStringLiteral("Library/Safari"))));
    QVERIFY(QFile::link(_fresh->home.path(elsewhere), _fresh->home.path(file)));
    QCOMPARE(titlesOf(file), QStringList{"One"});
    writeFile(file, "Two", elsewhere);
    touch(elsewhere, 1);
    store().tagSafariFiles();
    QCOMPARE(titlesOf(file), QStringList{"Two"});
}

void SafariFilesTest::vanishedFileKeepsTheTreeUntilItIsBack()
{
    QFETCH(QString, file);
    writeFile(file, "One");
    touch(file, 1);
    store();
    const WayfoldBookmarkFolderPtr root = rootOf(file);
    NotificationLog::deliverPending();
    NotificationLog log({bookmarksChanged, historyChanged});
    const QString path = _fresh->home.path(file);
    QVERIFY(QFile::rename(path, path + QStringLiteral(".away")));
    store().tagSafariFiles();
    NotificationLog::deliverPending();
    QVERIFY(log.received.empty());
    QCOMPARE(rootOf(file), root);

    // The very same file is read again when it comes back.
    QVERIFY(QFile::rename(path + QStringLiteral(".away"), path));
    store().tagSafariFiles();
    NotificationLog::deliverPending();
    QCOMPARE(log.names(), QStringList{changeOf(file)});
    QVERIFY(rootOf(file) != root);
    QCOMPARE(titlesOf(file), QStringList{"One"});
}

void SafariFilesTest::fileThatAppearsIsRead()
{
    store();
    NotificationLog log({bookmarksChanged, historyChanged});
    _fresh->home.write(historyFile, historyWith(historyEntry("Page", "http://www.example.com/")));
    store().tagSafariFiles();
    NotificationLog::deliverPending();
    QCOMPARE(log.names(), QStringList{historyChanged});
    QCOMPARE(historyTitles(), QStringList{"Page"});
}

void SafariFilesTest::unreadableFileGivesAnEmptyTree_data()
{
    QTest::addColumn<QByteArray>("contents");
    QTest::newRow("no property list") << QByteArray("hello");
    QTest::newRow("no dictionary") << QByteArray("<plist version=\"1.0\"><array/></plist>");
    QTest::newRow("cut off") << bookmarksWith("One").left(100);
}

void SafariFilesTest::unreadableFileGivesAnEmptyTree()
{
    QFETCH(QByteArray, contents);
    _fresh->home.write(bookmarkFile, bookmarksWith("One"));
    _fresh->home.write(historyFile, historyWith(historyEntry("Page", "http://www.example.com/")));
    store();
    NotificationLog::deliverPending();
    NotificationLog log({bookmarksChanged, historyChanged});
    _fresh->home.write(bookmarkFile, contents);
    _fresh->home.write(historyFile, contents);
    touch(bookmarkFile, 1);
    touch(historyFile, 1);
    store().tagSafariFiles();
    NotificationLog::deliverPending();
    QCOMPARE(log.names(), (QStringList{bookmarksChanged, historyChanged}));
    for (const auto &root : {store().safariBookmarkRoot(), store().historyBookmarkRoot()}) {
        QVERIFY(root);
        QCOMPARE(root->childCount(), 0U);
        QVERIFY(root->title().isNull());
    }
    QVERIFY(!store().loadSafariBookmarkFile());
    QVERIFY(!store().loadHistoryBookmarkFile());
}

void SafariFilesTest::fileThatMayBeReadLaterIsReadThen()
{
    QFETCH(QString, file);
    store();
    writeFile(file, "One");
    const QByteArray path = QFile::encodeName(_fresh->home.path(file));
    QCOMPARE(::chmod(QFile::encodeName(_fresh->home.path()).constData(), 0755), 0);
    QCOMPARE(::chmod(path.constData(), 0), 0);
    {
        const OrdinaryUser user;
        if (!user.isOne())
            QSKIP("For the superuser permissions do not count.");
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("Permission denied")));
        store().tagSafariFiles();
    }
    QCOMPARE(titlesOf(file), QStringList());
    StatusChange::make(_fresh->home.path(file), [&] { QCOMPARE(::chmod(path.constData(), 0644), 0); });
    store().tagSafariFiles();
    QCOMPARE(titlesOf(file), QStringList{"One"});
}

void SafariFilesTest::fileThatCannotBeOpenedJustNowIsReadLater()
{
    QFETCH(QString, file);
    writeFile(file, "One");
    touch(file, 1);
    store();
    const WayfoldBookmarkFolderPtr root = rootOf(file);
    NotificationLog::deliverPending();
    NotificationLog log({bookmarksChanged, historyChanged});
    writeFile(file, "Two");
    touch(file, 2);
    {
        const LoggedMessages messages;
        const NoDescriptorsLeft none;
        store().tagSafariFiles();
        QVERIFY(messages.contain(QStringLiteral("Too many open files")));
    }
    // What was shown before stays, and nothing has happened.
    QCOMPARE(rootOf(file), root);
    QCOMPARE(titlesOf(file), QStringList{"One"});
    NotificationLog::deliverPending();
    QVERIFY(log.received.empty());

    store().tagSafariFiles();
    QCOMPARE(titlesOf(file), QStringList{"Two"});
    NotificationLog::deliverPending();
    QCOMPARE(log.names(), QStringList{changeOf(file)});
    // Once.
    const WayfoldBookmarkFolderPtr newRoot = rootOf(file);
    for (int check = 0; check < 10; ++check)
        store().tagSafariFiles();
    QCOMPARE(rootOf(file), newRoot);
}

void SafariFilesTest::fileThatCannotBeOpenedAtTheStartIsReadLater()
{
    QFETCH(QString, file);
    store();
    writeFile(file, "One");
    const LoggedMessages messages;
    {
        const NoDescriptorsLeft none;
        store().tagSafariFiles();
    }
    QVERIFY(!rootOf(file));
    store().tagSafariFiles();
    QCOMPARE(titlesOf(file), QStringList{"One"});
    // What has gone meanwhile is not tried again.
    touch(file, 5);
    {
        const NoDescriptorsLeft none;
        store().tagSafariFiles();
    }
    QVERIFY(QFile::remove(_fresh->home.path(file)));
    const WayfoldBookmarkFolderPtr root = rootOf(file);
    store().tagSafariFiles();
    store().tagSafariFiles();
    QCOMPARE(rootOf(file), root);
}

void SafariFilesTest::triesBecomeRare()
{
    QFETCH(QString, file);
    store();
    writeFile(file, "One");
    LoggedMessages messages; // one for each try
    const NoDescriptorsLeft none;
    QList<int> tries;
    for (int check = 0; check < 100; ++check) {
        messages.clear();
        store().tagSafariFiles();
        if (!messages.texts().isEmpty())
            tries.append(check);
    }
    QCOMPARE(tries, (QList<int>{0, 1, 3, 7, 15, 31, 63}));
}

void SafariFilesTest::rewrittenFileOfTheSameDateAndLengthIsReadAgain()
{
    QFETCH(QString, file);
    writeFile(file, "One");
    touch(file, 1);
    QCOMPARE(titlesOf(file), QStringList{"One"});
    StatusChange::make(_fresh->home.path(file), [&] {
        writeFile(file, "Two");
        touch(file, 1);
    });
    store().tagSafariFiles();
    QCOMPARE(titlesOf(file), QStringList{"Two"});
}

void SafariFilesTest::directoryGivesAnEmptyTree()
{
    QVERIFY(QDir().mkpath(_fresh->home.path(bookmarkFile)));
    QVERIFY(QDir().mkpath(_fresh->home.path(historyFile)));
    QVERIFY(!store().loadSafariBookmarkFile());
    QVERIFY(!store().loadHistoryBookmarkFile());
    QCOMPARE(store().safariBookmarkRoot()->childCount(), 0U);
    QVERIFY(store().safariBookmarkRoot()->title().isNull());
    QVERIFY(store().historyBookmarkRoot()->title().isNull());
}

void SafariFilesTest::loadWithoutFileGivesAnEmptyTree()
{
    _fresh->home.write(bookmarkFile, bookmarksWith("One"));
    QVERIFY(store().loadSafariBookmarkFile());
    QVERIFY(QFile::remove(_fresh->home.path(bookmarkFile)));
    QVERIFY(!store().loadSafariBookmarkFile());
    QCOMPARE(store().safariBookmarkRoot()->childCount(), 0U);
    QVERIFY(!store().loadHistoryBookmarkFile());
    QCOMPARE(store().historyBookmarkRoot()->childCount(), 0U);
}

void SafariFilesTest::treesAreReplacedWhole()
{
    _fresh->home.write(bookmarkFile, bookmarksWith("One"));
    const std::weak_ptr<WayfoldBookmarkFolder> old = store().safariBookmarkRoot();
    QVERIFY(store().loadSafariBookmarkFile());
    QVERIFY(old.expired());
    QCOMPARE(bookmarkTitles(), QStringList{"One"});
}

void SafariFilesTest::historyIsInFileOrder()
{
    _fresh->home.write(historyFile,
                       historyWith(historyEntry("B", "http://b.example.com/") + "<string>no entry</string>" +
                                   historyEntry("A", "http://a.example.com/") +
                                   historyEntry("", "http://untitled.example.com/") + historyEntry("No address", "") +
                                   historyEntry("B", "http://b.example.com/")));
    QCOMPARE(historyTitles(), (QStringList{"B", "A", "B"}));
    const auto entry = std::dynamic_pointer_cast<WayfoldHistoryURL>(store().historyBookmarkRoot()->childAtIndex(0));
    QVERIFY(entry);
    QCOMPARE(entry->valueAsString(), QStringLiteral("http://b.example.com/"));
    QCOMPARE(entry->parent(), store().historyBookmarkRoot());
}

void SafariFilesTest::historyWithoutDatesIsEmpty()
{
    for (const QByteArray &contents : {QByteArray("<plist version=\"1.0\"><dict/></plist>"),
                                       QByteArray("<plist version=\"1.0\"><dict><key>WebHistoryDates</key>"
                                                  "<string>none</string></dict></plist>")}) {
        _fresh->home.write(historyFile, contents);
        QVERIFY(store().loadHistoryBookmarkFile());
        QCOMPARE(store().historyBookmarkRoot()->childCount(), 0U);
        QCOMPARE(store().historyBookmarkRoot()->title(), QStringLiteral("History"));
    }
}

static void quit()
{
    NotificationCenter::defaultCenter().postNotificationName(
        PlatformNotifications::NSApplicationWillTerminateNotification, nullptr);
}

void SafariFilesTest::nothingIsReadAfterQuitting()
{
    QFETCH(QString, file);
    store();
    NotificationLog log({bookmarksChanged, historyChanged});
    quit();
    writeFile(file, "One");
    store().tagSafariFiles();
    store().tagSafariFilesNextEvent();
    NotificationLog::deliverPending();
    QVERIFY(log.received.empty());
    QVERIFY(!rootOf(file));
    // Quitting saves nothing either.
    QVERIFY(!QFileInfo::exists(store().bookmarkFilePath()));
}

void SafariFilesTest::changedFileIsNotReadAfterQuitting()
{
    QFETCH(QString, file);
    writeFile(file, "One");
    touch(file, 1);
    store();
    const WayfoldBookmarkFolderPtr root = rootOf(file);
    NotificationLog::deliverPending();
    NotificationLog log({bookmarksChanged, historyChanged});
    quit();
    writeFile(file, "Two");
    touch(file, 2);
    store().tagSafariFiles();
    store().tagSafariFilesNextEvent();
    NotificationLog::deliverPending();
    QVERIFY(log.received.empty());
    QCOMPARE(rootOf(file), root);
    QCOMPARE(titlesOf(file), QStringList{"One"});
}

void SafariFilesTest::changeIsToldWithoutWaiting()
{
    QFETCH(QString, file);
    store();
    const QString whenIdle = QStringLiteral("WhenIdle");
    NotificationLog log({changeOf(file), whenIdle});
    WayfoldToolkit::postDelayedNotificationNameObject(whenIdle, this);
    writeFile(file, "One");
    store().tagSafariFiles();
    QVERIFY(log.received.empty());
    NotificationLog::deliverPending();
    QCOMPARE(log.names(), (QStringList{changeOf(file), whenIdle}));
}

void SafariFilesTest::tickIsPostedWhenIdle()
{
    store();
    const QString asSoonAsPossible = QStringLiteral("AsSoonAsPossible");
    NotificationLog log({Notifications::TagSafariFilesNotification, asSoonAsPossible});
    store().tagSafariFilesNextEvent();
    WayfoldToolkit::postNotificationNameObject(asSoonAsPossible, this);
    QVERIFY(log.received.empty());
    NotificationLog::deliverPending();
    QCOMPARE(log.names().mid(0, 2), (QStringList{asSoonAsPossible, Notifications::TagSafariFilesNotification}));
    QCOMPARE(log.received[1].object, static_cast<const void *>(&store()));
}

void SafariFilesTest::ticksAreCoalesced()
{
    store();
    const QString last = QStringLiteral("LastOfAll");
    NotificationLog log({Notifications::TagSafariFilesNotification, last});
    store().tagSafariFilesNextEvent();
    store().tagSafariFilesNextEvent();
    WayfoldToolkit::postDelayedNotificationNameObject(last, this);
    NotificationLog::deliverPending();
    QCOMPARE(log.names().mid(0, 2), (QStringList{Notifications::TagSafariFilesNotification, last}));
}

void SafariFilesTest::tickChecksTheFiles()
{
    store();
    _fresh->home.write(bookmarkFile, bookmarksWith("One"));
    NotificationLog log({bookmarksChanged});
    QTRY_COMPARE_WITH_TIMEOUT(log.received.size(), size_t(1), 20000); // by the timer alone
    QCOMPARE(bookmarkTitles(), QStringList{"One"});
}

void SafariFilesTest::writeBackKeepsTheFilesOwnKeys()
{
    _fresh->home.write(bookmarkFile, bookmarksWith("One"));
    store();
    const QVariantMap tree = {
        {QStringLiteral("WebBookmarkFileVersion"), qlonglong(99)},
        {QStringLiteral("WebBookmarkType"), QStringLiteral("WebBookmarkTypeProxy")},
        {QStringLiteral("WebBookmarkUUID"), QStringLiteral("OTHER")},
        {QStringLiteral("Title"), QStringLiteral("Bookmarks")},
        {QStringLiteral("Children"), QVariantList()},
    };
    QVERIFY(store().saveSafariBookmarkFile(tree));
    QVariantMap expected = tree;
    expected.insert(QStringLiteral("WebBookmarkFileVersion"), qlonglong(1));
    expected.insert(QStringLiteral("WebBookmarkType"), QStringLiteral("WebBookmarkTypeList"));
    expected.insert(QStringLiteral("WebBookmarkUUID"), QStringLiteral("ROOT"));
    QCOMPARE(PropertyList::readDictionaryFile(_fresh->home.path(bookmarkFile)), expected);
}

void SafariFilesTest::writeBackWithoutReadableFileWritesNothing_data()
{
    QTest::addColumn<QByteArray>("contents");
    QTest::newRow("missing") << QByteArray();
    QTest::newRow("no property list") << QByteArray("hello");
    QTest::newRow("no dictionary") << QByteArray("<plist version=\"1.0\"><array/></plist>");
}

void SafariFilesTest::writeBackWithoutReadableFileWritesNothing()
{
    QFETCH(QByteArray, contents);
    if (!contents.isEmpty())
        _fresh->home.write(bookmarkFile, contents);
    QVERIFY(!store().saveSafariBookmarkFile({{QStringLiteral("Title"), QStringLiteral("x")}}));
    QCOMPARE(_fresh->home.read(bookmarkFile), contents);
    QCOMPARE(QFileInfo::exists(_fresh->home.path(bookmarkFile)), !contents.isEmpty());
}

void SafariFilesTest::writeBackThatFails_data()
{
    QTest::addColumn<QByteArray>("contents");
    QTest::addColumn<QVariant>("value");
    QTest::newRow("file that cannot be read") << QByteArray("hello") << QVariant(QStringLiteral("x"));
    QTest::newRow("value that no property list holds") << bookmarksWith("One") << QVariant(QPoint(1, 2));
}

void SafariFilesTest::writeBackThatFails()
{
    QFETCH(QByteArray, contents);
    QFETCH(QVariant, value);
    _fresh->home.write(bookmarkFile, contents);
    touch(bookmarkFile, 1);
    store();
    QVERIFY(!store().saveSafariBookmarkFile({{QStringLiteral("Title"), value}}));
    QCOMPARE(_fresh->home.read(bookmarkFile), contents);
    // Looking at the file goes on afterwards.
    writeFile(bookmarkFile, "Two");
    touch(bookmarkFile, 2);
    store().tagSafariFiles();
    QCOMPARE(bookmarkTitles(), QStringList{"Two"});
}

void SafariFilesTest::writeBackToFileWithoutItsKeys()
{
    _fresh->home.write(bookmarkFile,
                       "<plist version=\"1.0\"><dict><key>Title</key><string>old</string></dict></plist>");
    const QVariantMap tree = {{QStringLiteral("WebBookmarkUUID"), QStringLiteral("OURS")}};
    QVERIFY(store().saveSafariBookmarkFile(tree));
    QCOMPARE(PropertyList::readDictionaryFile(_fresh->home.path(bookmarkFile)), tree);
}

void SafariFilesTest::writeBackIsNoticedAsAChange()
{
    _fresh->home.write(bookmarkFile, bookmarksWith("One"));
    touch(bookmarkFile, 1);
    store();
    NotificationLog::deliverPending();
    NotificationLog log({bookmarksChanged});
    const auto copy = WayfoldBookmarkFolder::fromItem(store().safariBookmarkRoot()->copy());
    copy->childAtIndex(0)->setTitle(QStringLiteral("Renamed"));
    QVERIFY(store().saveSafariBookmarkFile(copy->createDictionary(false)));
    store().tagSafariFiles();
    NotificationLog::deliverPending();
    QCOMPARE(log.names(), QStringList{bookmarksChanged});
    QCOMPARE(bookmarkTitles(), QStringList{"Renamed"});
}

// Whoever reads the file later, the browser among them, finds what the items have, and the browser does not.
void SafariFilesTest::writeBackIsInTheItemsForm()
{
    const QByteArray link = "<dict><key>WebBookmarkType</key><string>WebBookmarkTypeLeaf</string><key>URLString</key>"
                            "<string>http://www.example.com/</string><key>URIDictionary</key><dict><key>title</key>"
                            "<string>Link</string></dict></dict>";
    _fresh->home.write(bookmarkFile, "<plist version=\"1.0\"><dict><key>Children</key><array><dict><key>Title</key>"
                                     "<string>News</string><key>WebBookmarkType</key><string>WebBookmarkTypeList"
                                     "</string><key>Children</key><array>" +
                                         link + "</array></dict></array></dict></plist>");
    QCOMPARE(bookmarkTitles(), QStringList{"News"});
    const auto entry = [](const QVariantMap &folder) {
        return folder.value(QStringLiteral("Children")).toList().value(0).toMap();
    };
    const auto inFile = [&] { return PropertyList::readDictionaryFile(_fresh->home.path(bookmarkFile)); };
    QVERIFY(!entry(inFile()).contains(QStringLiteral("SearchString")));

    QVERIFY(store().saveSafariBookmarkFile(store().safariBookmarkRoot()->createDictionary(false)));
    QVERIFY(inFile().contains(QStringLiteral("SearchString")));
    QCOMPARE(entry(inFile()).value(QStringLiteral("SearchString")), QVariant(QStringLiteral("News")));
    const QVariantMap texts = entry(entry(inFile())).value(QStringLiteral("URIDictionary")).toMap();
    QCOMPARE(texts, (QVariantMap{{QStringLiteral("title"), QStringLiteral("Link")},
                                 {QStringLiteral(""), QStringLiteral("http://www.example.com/")}}));
}

void SafariFilesTest::writeBackWaitsForAReading()
{
    const QVariantMap tree = {{QStringLiteral("Title"), QStringLiteral("Written")}};
    writeFile(bookmarkFile, "One");
    store();
    const QByteArray before = _fresh->home.read(bookmarkFile);
    WaitingHost host;
    const std::unique_ptr<QThread> reader(QThread::create([this] { store().tagSafariFiles(); }));
    host.kept = reader.get();
    reader->start();
    host.hasAsked.acquire();

    std::atomic<pid_t> writerID = 0;
    std::atomic<bool> isWritten = false;
    const std::unique_ptr<QThread> writer(QThread::create([&] {
        writerID = pid_t(::syscall(SYS_gettid));
        isWritten = store().saveSafariBookmarkFile(tree);
    }));
    writer->start();
    QTRY_VERIFY(writer->isFinished() || (writerID && isAsleep(writerID)));
    const QByteArray meanwhile = _fresh->home.read(bookmarkFile);
    const bool isTooEarly = writer->isFinished();
    host.isAnswered.release();
    QVERIFY(reader->wait());
    QVERIFY(writer->wait());
    setCurrentHost(&_fresh->host);

    QVERIFY(!isTooEarly);
    QCOMPARE(meanwhile, before);
    QVERIFY(isWritten);
    QVERIFY(_fresh->home.read(bookmarkFile).contains("Written"));
}

// It leaves the files to the next one.
void SafariFilesTest::checkDoesNotWait()
{
    writeFile(bookmarkFile, "One");
    store();
    writeFile(bookmarkFile, "Another");
    WaitingHost host;
    const std::unique_ptr<QThread> reader(QThread::create([this] { store().tagSafariFiles(); }));
    host.kept = reader.get();
    reader->start();
    host.hasAsked.acquire();

    std::atomic<pid_t> checkerID = 0;
    const std::unique_ptr<QThread> checker(QThread::create([&] {
        checkerID = pid_t(::syscall(SYS_gettid));
        store().tagSafariFiles();
    }));
    checker->start();
    QTRY_VERIFY(checker->isFinished() || (checkerID && isAsleep(checkerID)));
    const bool hasWaited = !checker->isFinished();
    const QStringList meanwhile = bookmarkTitles();
    host.isAnswered.release();
    QVERIFY(reader->wait());
    QVERIFY(checker->wait());
    setCurrentHost(&_fresh->host);

    QVERIFY(!hasWaited);
    QCOMPARE(meanwhile, QStringList{"One"});
    QCOMPARE(bookmarkTitles(), QStringList{"Another"});
}

QTEST_MAIN(SafariFilesTest)
#include "SafariFilesTest.moc"
