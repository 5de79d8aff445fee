#include "core/ItemFileStore.h"

#include "core/Backups.h"
#include "model/WayfoldBookmarkFolder.h"
#include "model/WayfoldBookmarkNote.h"
#include "platform/files/FileLock.h"
#include "platform/files/PropertyList.h"
#include "tests/platform/StatusChange.h"
#include "tests/support/InstalledKinds.h"
#include "tests/support/LoggedMessages.h"
#include "tests/support/TemporaryHome.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QtTest>
#include <csignal>
#include <optional>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace
{
const QString name = QStringLiteral("Wayfold/Bookmarks.plist");

QByteArray fileWith(const QByteArray &children)
{
    return "<plist version=\"1.0\"><dict><key>WebBookmarkType</key><string>WebBookmarkTypeList</string>"
           "<key>WebBookmarkUUID</key><string>ROOT</string><key>Title</key><string></string>"
           "<key>Children</key><array>" +
           children + "</array></dict></plist>\n";
}

QByteArray note(const QByteArray &title)
{
    return "<dict><key>WebBookmarkType</key><string>WebBookmarkTypeNote</string>"
           "<key>WebBookmarkUUID</key><string>" +
           title + "</string><key>URIDictionary</key><dict><key>title</key><string>" + title +
           "</string><key></key><string></string></dict><key>Note</key><string>text of " + title + "</string></dict>";
}
} // namespace

// What the user wrote must never be lost: whatever the file holds that is not in the tree is kept beside it.
class ItemFileStoreTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup() { _home.reset(); }

    void missingFileIsWritten();
    void folderThatVanishedIsMadeAgain();
    void whatAKilledSaveLeftIsRemoved();
    void readFileIsWrittenWithoutCopy();
    void ownChangesAreWrittenWithoutCopy();
    void unreadableFileIsKept_data();
    void unreadableFileIsKept();
    void unknownContentStaysInTheFile_data();
    void unknownContentStaysInTheFile();
    void fileThatIsNotReadWholeIsKept_data();
    void fileThatIsNotReadWholeIsKept();
    void fileChangedByAnotherProgramIsKept();
    void fileThatAppearedIsKept();
    void fileReplacedWithTheSameContentsIsKept();
    void otherPermissionsAndNamesAreNoChange();
    void fileThatVanishedIsWrittenAnew();
    void everyStateIsKeptOnce();
    void saveIsRefusedWhenNothingCanBeKept();
    void unreadableFileThatCannotBeKeptIsNotWrittenOver();
    void failedSaveKeepsNoSecondCopy();
    void failedSaveIsTriedAgain();
    void triesBecomeRare();
    void copyIsLogged();
    void directoryIsNoFile();

    void lockedFileIsNotWritten();
    void lockIsLetGo();
    void lockIsTriedAgainSoon();
    void lockThatIsNeverLetGoIsTold();
    void lockOfADeadProgramIsTakenOver();
    void lockIsThatOfTheFileBehindTheLink();
    void folderInTheLocksPlaceIsTold();
    void fullDisk();
    void fileThatAFolderReplaced();
    void fileThatALinkReplaced();
    void failureAfterALockIsTold();

    void quitWaitsForALock();
    void whatCannotBeWrittenAtQuitIsKept_data();
    void whatCannotBeWrittenAtQuitIsKept();
    void nothingIsOwedNothingIsSavedAtQuit();

    void firstSaveOfADayIsBackedUp();
    void onlyWhatWasReadWholeIsBackedUp();
    void failedBackupHindersNothing();

private:
    QStringList keptCopies() const
    {
        return QDir(_home->path(QStringLiteral("Wayfold"))).entryList({QStringLiteral("*.kept-*")}, QDir::Files);
    }
    QByteArray keptContents(int index) const
    {
        return _home->read(QStringLiteral("Wayfold/") + keptCopies().value(index));
    }
    static WayfoldBookmarkFolderPtr treeWith(const QString &title)
    {
        auto root = WayfoldBookmarkFolder::bookmarkWithTitle(QString());
        root->addChild(WayfoldBookmarkNote::bookmarkWithTitleAndNote(title, QStringLiteral("text")));
        return root;
    }

    // The calls of its listeners, but for those of saves and backups that worked.
    void listen()
    {
        const auto note = [this](const char *call) {
            return [this, call] { _told.append(QString::fromLatin1(call)); };
        };
        ItemFileStore::Listeners listeners;
        listeners.notSaved = note("not saved");
        listeners.locked = note("locked");
        listeners.canTryAgain = [this] { _file.tryAgain(*_root); };
        listeners.copyKept = [this](const QString &copy) { _told.append(QFileInfo(copy).fileName()); };
        listeners.backupFailed = [this](const QString &folder) {
            _told.append(QStringLiteral("no backup in ") + folder);
        };
        _file.setListeners(std::move(listeners));
    }
    QString todaysBackup() const
    {
        return _home->path(QStringLiteral("Wayfold/Backups/Bookmarks-%1.plist")
                               .arg(QDate::currentDate().toString(QStringLiteral("yyyy-MM-dd"))));
    }

    std::optional<TemporaryHome> _home;
    ItemFileStore _file;
    QStringList _told;
    WayfoldBookmarkFolderPtr _root = treeWith(QStringLiteral("Milk")); // what is saved when a lock is tried again
};

void ItemFileStoreTest::init()
{
    _home.emplace();
    QVERIFY(QDir().mkpath(_home->path(QStringLiteral("Wayfold"))));
    _file = ItemFileStore();
    _file.setPath(_home->path(name));
    _told.clear();
    listen();
}

void ItemFileStoreTest::missingFileIsWritten()
{
    QVERIFY(!_file.load());
    QVERIFY(_file.save(*treeWith(QStringLiteral("Milk"))));
    QVERIFY(_home->read(name).contains("Milk"));
    QVERIFY(keptCopies().isEmpty());
}

void ItemFileStoreTest::folderThatVanishedIsMadeAgain()
{
    _home->write(name, fileWith(note("Milk")));
    QVERIFY(_file.load());
    QVERIFY(QDir(_home->path(QStringLiteral("Wayfold"))).removeRecursively());
    QVERIFY(_file.save(*treeWith(QStringLiteral("Bread"))));
    QVERIFY(_home->read(name).contains("Bread"));
    // So is one above it, and a file in its place is left alone.
    _file.setPath(_home->path(QStringLiteral("above/below/Bookmarks.plist")));
    QVERIFY(_file.save(*treeWith(QStringLiteral("Salt"))));
    QVERIFY(_home->read(QStringLiteral("above/below/Bookmarks.plist")).contains("Salt"));
    _home->write(QStringLiteral("file"), "mine");
    _file.setPath(_home->path(QStringLiteral("file/Bookmarks.plist")));
    QVERIFY(!_file.save(*treeWith(QStringLiteral("Salt"))));
    QCOMPARE(_home->read(QStringLiteral("file")), QByteArray("mine"));
}

void ItemFileStoreTest::whatAKilledSaveLeftIsRemoved()
{
    const LoggedMessages messages;
    _home->write(name + QStringLiteral(".saving-abcdef"), "half");
    _home->write(name + QStringLiteral(".saving"), "mine");
    QVERIFY(!_file.load());
    QCOMPARE(QDir(_home->path(QStringLiteral("Wayfold"))).entryList(QDir::Files),
             QStringList(QStringLiteral("Bookmarks.plist.saving")));
}

void ItemFileStoreTest::readFileIsWrittenWithoutCopy()
{
    _home->write(name, fileWith(note("Milk") + note("Bread")));
    const auto root = _file.load();
    QVERIFY(root);
    QCOMPARE(root->childCount(), 2U);
    root->removeChild(root->childAtIndex(0));
    QVERIFY(_file.save(*root));
    QVERIFY(!_home->read(name).contains("Milk"));
    QVERIFY(keptCopies().isEmpty());
}

void ItemFileStoreTest::ownChangesAreWrittenWithoutCopy()
{
    QVERIFY(!_file.load());
    for (const char *title : {"Milk", "Bread", "Salt"})
        QVERIFY(_file.save(*treeWith(QString::fromLatin1(title))));
    QVERIFY(_home->read(name).contains("Salt"));
    QVERIFY(keptCopies().isEmpty());
}

void ItemFileStoreTest::unreadableFileIsKept_data()
{
    QTest::addColumn<QByteArray>("contents");
    QTest::newRow("cut off") << fileWith(note("Milk")).left(200);
    QTest::newRow("no property list") << QByteArray("these are my notes");
    QTest::newRow("no dictionary") << QByteArray("<plist version=\"1.0\"><array/></plist>");
    QTest::newRow("empty") << QByteArray("");
}

void ItemFileStoreTest::unreadableFileIsKept()
{
    QFETCH(QByteArray, contents);
    _home->write(name, contents);
    QVERIFY(!_file.load());
    QCOMPARE(_home->read(name), contents);
    QVERIFY(keptCopies().isEmpty()); // reading alone changes nothing

    QVERIFY(_file.save(*treeWith(QStringLiteral("Bread"))));
    QCOMPARE(keptCopies().size(), 1);
    QCOMPARE(keptContents(0), contents);
    static const QRegularExpression pattern(QStringLiteral("^Bookmarks\\.plist\\.kept-\\d{8}-\\d{6}$"));
    QVERIFY2(pattern.match(keptCopies().constFirst()).hasMatch(), qPrintable(keptCopies().constFirst()));
    QVERIFY(_home->read(name).contains("Bread"));
}

void ItemFileStoreTest::unknownContentStaysInTheFile_data()
{
    QTest::addColumn<QByteArray>("children");
    QTest::addColumn<unsigned>("entriesRead");

    QTest::newRow("unknown kind") << note("Milk") + "<dict><key>WebBookmarkType</key><string>Drawing</string></dict>"
                                  << 1U;
    QTest::newRow("no title") << note("Milk") + note("") << 1U;
    QTest::newRow("no dictionary") << note("Milk") + "<string>loose text</string>" << 1U;
    QTest::newRow("unknown key") << note("Milk").replace("</string></dict>",
                                                         "</string><key>Colour</key><string>red</string></dict>")
                                 << 1U;
}

// It is written back, so nothing has to be kept aside.
void ItemFileStoreTest::unknownContentStaysInTheFile()
{
    QFETCH(QByteArray, children);
    QFETCH(unsigned, entriesRead);
    _home->write(name, fileWith(children));
    const auto root = _file.load();
    QVERIFY(root);
    QCOMPARE(root->childCount(), entriesRead);
    const QVariant before = PropertyList::readFile(_home->path(name));
    root->addChild(WayfoldBookmarkNote::bookmarkWithTitle(QStringLiteral("Bread")));
    QVERIFY(_file.save(*root));
    QVERIFY(keptCopies().isEmpty());
    QVERIFY(_home->read(name).contains("Bread"));
    root->removeChild(root->lastChild());
    QVERIFY(_file.save(*root));
    QVariantMap after = PropertyList::readDictionaryFile(_home->path(name));
    QCOMPARE(after.take(QStringLiteral("SearchString")), QVariant(QStringLiteral(""))); // was missing
    QCOMPARE(QVariant(after), before);
}

void ItemFileStoreTest::fileThatIsNotReadWholeIsKept_data()
{
    QTest::addColumn<QByteArray>("contents");
    QTest::newRow("a key twice") << fileWith(
        note("Milk").replace("<key>Note</key>", "<key>Note</key><string>the first text</string><key>Note</key>"));
    QTest::newRow("damaged text") << fileWith(note("Milk") + note("Caf\xe9"));
    QTest::newRow("a value that cannot be held") << fileWith(
        note("Milk").replace("<key>Note</key>", "<key>Made</key><date>0000-01-01T00:00:00Z</date><key>Note</key>"));
    QTest::newRow("an entry that cannot be held") << fileWith(note("Milk") + "<uid>5</uid>");
}

void ItemFileStoreTest::fileThatIsNotReadWholeIsKept()
{
    QFETCH(QByteArray, contents);
    _home->write(name, contents);
    const auto root = _file.load();
    QVERIFY(root);
    QCOMPARE(root->childAtIndex(0)->title(), QStringLiteral("Milk"));
    QVERIFY(_file.save(*root));
    QCOMPARE(keptCopies().size(), 1);
    QCOMPARE(keptContents(0), contents);
    QVERIFY(_file.save(*root));
    QCOMPARE(keptCopies().size(), 1);
}

void ItemFileStoreTest::fileChangedByAnotherProgramIsKept()
{
    _home->write(name, fileWith(note("Milk")));
    const auto root = _file.load();
    const QByteArray others = fileWith(note("Milk") + note("Theirs"));
    _home->write(name, others);
    QVERIFY(_file.save(*root));
    QCOMPARE(keptCopies().size(), 1);
    QCOMPARE(keptContents(0), others);
    QVERIFY(!_home->read(name).contains("Theirs"));

    // And again after a save of our own.
    const QByteArray later = fileWith(note("Later"));
    _home->write(name, later);
    QVERIFY(_file.save(*root));
    QCOMPARE(keptCopies().size(), 2);
    QVERIFY(keptContents(0) == later || keptContents(1) == later);
}

void ItemFileStoreTest::fileThatAppearedIsKept()
{
    QVERIFY(!_file.load());
    _home->write(name, fileWith(note("Theirs")));
    QVERIFY(_file.save(*treeWith(QStringLiteral("Ours"))));
    QCOMPARE(keptContents(0), fileWith(note("Theirs")));
}

void ItemFileStoreTest::fileReplacedWithTheSameContentsIsKept()
{
    // Another file under the same name is not looked into; a copy too many is no loss.
    _home->write(name, fileWith(note("Milk")));
    const auto root = _file.load();
    _home->write(QStringLiteral("Wayfold/other"), fileWith(note("Milk")));
    QVERIFY(QFile::remove(_home->path(name)));
    QVERIFY(QFile::rename(_home->path(QStringLiteral("Wayfold/other")), _home->path(name)));
    QVERIFY(_file.save(*root));
    QCOMPARE(keptCopies().size(), 1);
}

// A backup may give the file a second name every hour.
void ItemFileStoreTest::otherPermissionsAndNamesAreNoChange()
{
    _home->write(name, fileWith(note("Milk")));
    const auto root = _file.load();
    for (int hour = 0; hour < 2; ++hour) {
        const QByteArray path = QFile::encodeName(_home->path(name));
        const QByteArray backup = path + QByteArray::number(hour);
        QCOMPARE(::link(path, backup), 0);
        StatusChange::make(_home->path(name), [&] { QCOMPARE(::chmod(path, 0600), 0); });
        QVERIFY(_file.save(*root));
    }
    QVERIFY(keptCopies().isEmpty());
}

void ItemFileStoreTest::fileThatVanishedIsWrittenAnew()
{
    _home->write(name, fileWith(note("Milk")));
    const auto root = _file.load();
    QVERIFY(QFile::remove(_home->path(name)));
    QVERIFY(_file.save(*root));
    QVERIFY(_home->read(name).contains("Milk"));
    QVERIFY(keptCopies().isEmpty());
}

void ItemFileStoreTest::everyStateIsKeptOnce()
{
    _home->write(name, "unreadable");
    QVERIFY(!_file.load());
    QVERIFY(_file.save(*treeWith(QStringLiteral("Milk"))));
    QVERIFY(_file.save(*treeWith(QStringLiteral("Bread"))));
    QCOMPARE(keptCopies().size(), 1);

    // Reading it again makes a new state, which is ours.
    QVERIFY(_file.load());
    QVERIFY(_file.save(*treeWith(QStringLiteral("Salt"))));
    QCOMPARE(keptCopies().size(), 1);
}

void ItemFileStoreTest::saveIsRefusedWhenNothingCanBeKept()
{
    // A pipe in place of the file can be neither read nor copied, whoever runs this.
    QVERIFY(!_file.load());
    QCOMPARE(::mkfifo(QFile::encodeName(_home->path(name)).constData(), 0600), 0);
    QVERIFY(!_file.save(*treeWith(QStringLiteral("Milk"))));
    QVERIFY(QFileInfo::exists(_home->path(name)));
    QVERIFY(!QFileInfo(_home->path(name)).isFile());
    QVERIFY(keptCopies().isEmpty());
}

void ItemFileStoreTest::unreadableFileThatCannotBeKeptIsNotWrittenOver()
{
    // The name of a copy would be too long, while that of the file itself can be written.
    const QString longName = QStringLiteral("Wayfold/") + QString(240, u'a');
    _file.setPath(_home->path(longName));
    QVERIFY(!_file.load());
    QVERIFY(_file.save(*treeWith(QStringLiteral("Milk"))));

    _home->write(longName, "unreadable");
    QVERIFY(!_file.load());
    QVERIFY(!_file.save(*treeWith(QStringLiteral("Bread"))));
    QVERIFY(!_file.save(*treeWith(QStringLiteral("Bread"))));
    QCOMPARE(_home->read(longName), QByteArray("unreadable"));
}

void ItemFileStoreTest::failedSaveKeepsNoSecondCopy()
{
    _home->write(name, "unreadable");
    QVERIFY(!_file.load());
    const QByteArray before = _home->read(name);
    // A tree that a property list cannot hold deeply enough to be read back is not written.
    auto root = WayfoldBookmarkFolder::bookmarkWithTitle(QStringLiteral("0"));
    auto deepest = root;
    for (int depth = 0; depth < 1200; ++depth) {
        auto folder = WayfoldBookmarkFolder::bookmarkWithTitle(QString::number(depth));
        deepest->addChild(folder);
        deepest = folder;
    }
    QVERIFY(!_file.save(*root));
    QVERIFY(!_file.save(*root));
    QCOMPARE(_home->read(name), before);
    QCOMPARE(keptCopies().size(), 1);
    QVERIFY(_file.save(*treeWith(QStringLiteral("Milk"))));
    QCOMPARE(keptCopies().size(), 1);
}

void ItemFileStoreTest::failedSaveIsTriedAgain()
{
    const auto root = treeWith(QStringLiteral("Milk"));
    QVERIFY(QDir().mkpath(_home->path(name))); // a folder in the place of the file
    _file.retrySave(*root);
    QVERIFY(!_file.isSaveOwed()); // nobody wanted to save yet
    QVERIFY(!_file.save(*root));
    QVERIFY(_file.isSaveOwed());
    _file.retrySave(*root);
    QVERIFY(_file.isSaveOwed());

    QVERIFY(QDir().rmdir(_home->path(name)));
    for (int second = 0; _file.isSaveOwed() && second < 2; ++second)
        _file.retrySave(*root);
    QVERIFY(!_file.isSaveOwed());
    QVERIFY(_home->read(name).contains("Milk"));

    // And then it is left alone.
    QVERIFY(QFile::remove(_home->path(name)));
    _file.retrySave(*root);
    QVERIFY(!QFileInfo::exists(_home->path(name)));

    // A save that works is none that is owed.
    QVERIFY(QDir().mkpath(_home->path(name)));
    QVERIFY(!_file.save(*root));
    QVERIFY(QDir().rmdir(_home->path(name)));
    QVERIFY(_file.save(*root));
    QVERIFY(!_file.isSaveOwed());
}

void ItemFileStoreTest::triesBecomeRare()
{
    const auto root = treeWith(QStringLiteral("Milk"));
    QVERIFY(QDir().mkpath(_home->path(name)));
    LoggedMessages messages; // one at least for each try
    QVERIFY(!_file.save(*root));
    QList<int> pauses;
    int pause = 0;
    for (int second = 0; second < 400; ++second) {
        messages.clear();
        _file.retrySave(*root);
        ++pause;
        if (messages.texts().isEmpty())
            continue;
        pauses.append(pause);
        pause = 0;
    }
    QCOMPARE(pauses, (QList<int>{1, 2, 4, 8, 16, 32, 64, 64, 64, 64, 64}));

    QVERIFY(!_file.save(*root)); // what the user does counts afresh
    messages.clear();
    _file.retrySave(*root);
    QVERIFY(!messages.texts().isEmpty());
}

void ItemFileStoreTest::copyIsLogged()
{
    _home->write(name, "unreadable");
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("Could not read")));
    QVERIFY(!_file.load());
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("kept aside before it is written over")));
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("Kept a copy of .*Bookmarks\\.plist")));
    QVERIFY(_file.save(*treeWith(QStringLiteral("Milk"))));
}

void ItemFileStoreTest::directoryIsNoFile()
{
    QVERIFY(QDir().mkpath(_home->path(name)));
    QVERIFY(!_file.load());
    QVERIFY(!_file.save(*treeWith(QStringLiteral("Milk"))));
    QVERIFY(QFileInfo(_home->path(name)).isDir());
}

void ItemFileStoreTest::lockedFileIsNotWritten()
{
    _home->write(name, fileWith(note("Bread")));
    QVERIFY(_file.load());
    FileLock lock(_home->path(name));
    QCOMPARE(lock.tryLock(), FileLock::Locked);
    QVERIFY(!_file.save(*_root));
    QVERIFY(_file.isSaveOwed());
    QCOMPARE(_home->read(name), fileWith(note("Bread")));
    QVERIFY(_told.isEmpty()); // it may be free in a moment
}

void ItemFileStoreTest::lockIsLetGo()
{
    const QString folder = _home->path(QStringLiteral("Wayfold"));
    QVERIFY(_file.save(*_root));
    QCOMPARE(QDir(folder).entryList(QDir::Files | QDir::Hidden), QStringList(QStringLiteral("Bookmarks.plist")));
    _home->write(name, "unreadable");
    QVERIFY(!_file.load());
    QVERIFY(_file.save(*_root));
    QVERIFY(!QFileInfo::exists(_home->path(name + QStringLiteral(".lock"))));
}

void ItemFileStoreTest::lockIsTriedAgainSoon()
{
    auto lock = std::make_unique<FileLock>(_home->path(name));
    QCOMPARE(lock->tryLock(), FileLock::Locked);
    QVERIFY(!_file.save(*_root));
    lock.reset();
    QTRY_VERIFY(_home->read(name).contains("Milk")); // though nobody counts the seconds
    QVERIFY(!_file.isSaveOwed());
    QVERIFY(_told.isEmpty());
}

void ItemFileStoreTest::lockThatIsNeverLetGoIsTold()
{
    const LoggedMessages messages;
    auto lock = std::make_unique<FileLock>(_home->path(name));
    QCOMPARE(lock->tryLock(), FileLock::Locked);
    QVERIFY(!_file.save(*_root));
    QTRY_COMPARE(_told, QStringList(QStringLiteral("locked")));
    for (int again = 0; again < 5; ++again)
        _file.tryAgain(*_root);
    QVERIFY(!_file.save(*_root));
    QCOMPARE(_told.size(), 1); // once
    QVERIFY(!QFileInfo::exists(_home->path(name)));
    lock.reset();
    QTRY_VERIFY(_home->read(name).contains("Milk"));

    // Another time it is told again.
    lock = std::make_unique<FileLock>(_home->path(name));
    QCOMPARE(lock->tryLock(), FileLock::Locked);
    QVERIFY(!_file.save(*_root));
    QCOMPARE(_told.size(), 1);
    QTRY_COMPARE(_told.size(), 2);
}

void ItemFileStoreTest::lockOfADeadProgramIsTakenOver()
{
    const pid_t child = ::fork();
    QVERIFY(child >= 0);
    if (child == 0) {
        FileLock lock(_home->path(name));
        lock.tryLock();
        ::raise(SIGKILL);
    }
    QCOMPARE(::waitpid(child, nullptr, 0), child);
    QVERIFY(QFileInfo::exists(_home->path(name + QStringLiteral(".lock"))));
    QVERIFY(_file.save(*_root));
    QVERIFY(!QFileInfo::exists(_home->path(name + QStringLiteral(".lock"))));
}

// As in two homes that have one item file.
void ItemFileStoreTest::lockIsThatOfTheFileBehindTheLink()
{
    _home->write(QStringLiteral("shared/Bookmarks.plist"), fileWith(note("Bread")));
    QVERIFY(QFile::link(_home->path(QStringLiteral("shared/Bookmarks.plist")), _home->path(name)));
    QVERIFY(_file.load());
    auto lock = std::make_unique<FileLock>(_home->path(QStringLiteral("shared/Bookmarks.plist")));
    QCOMPARE(lock->tryLock(), FileLock::Locked);
    QVERIFY(!_file.save(*_root));
    lock.reset();
    QVERIFY(_file.save(*_root));
    QVERIFY(_home->read(QStringLiteral("shared/Bookmarks.plist")).contains("Milk"));
    QVERIFY(QFileInfo(_home->path(name)).isSymLink());
    QVERIFY(keptCopies().isEmpty());
    QVERIFY(QFileInfo::exists(todaysBackup())); // in this home
}

void ItemFileStoreTest::folderInTheLocksPlaceIsTold()
{
    const LoggedMessages messages;
    const QString lock = _home->path(name + QStringLiteral(".lock"));
    QVERIFY(QDir().mkpath(lock));
    QVERIFY(!_file.save(*_root));
    QTRY_COMPARE(_told, QStringList(QStringLiteral("locked")));
    QVERIFY(!QFileInfo::exists(_home->path(name)));
    QVERIFY(QDir().rmdir(lock));
    QTRY_VERIFY(_home->read(name).contains("Milk"));
}

void ItemFileStoreTest::fullDisk()
{
    const LoggedMessages messages;
    _home->write(name, fileWith(note("Bread")));
    QVERIFY(_file.load());
    ::signal(SIGXFSZ, SIG_IGN);
    rlimit before;
    QCOMPARE(::getrlimit(RLIMIT_FSIZE, &before), 0);
    const rlimit full = {0, before.rlim_max}; // to this process, the disk is full when files may not grow
    QCOMPARE(::setrlimit(RLIMIT_FSIZE, &full), 0);
    const bool isSaved = _file.save(*_root);
    QCOMPARE(::setrlimit(RLIMIT_FSIZE, &before), 0);
    QVERIFY(!isSaved);
    QCOMPARE(_home->read(name), fileWith(note("Bread")));
    QCOMPARE(_told, QStringList({QStringLiteral("no backup in ") + _home->path(QStringLiteral("Wayfold/Backups")),
                                 QStringLiteral("not saved")}));
    QVERIFY(!QFileInfo::exists(todaysBackup()));
    QCOMPARE(QDir(_home->path(QStringLiteral("Wayfold/Backups"))).entryList(QDir::Files), QStringList());
    for (int second = 0; second < 2; ++second)
        _file.retrySave(*_root);
    QVERIFY(!_file.isSaveOwed());
    QVERIFY(_home->read(name).contains("Milk"));
    QVERIFY(QFileInfo::exists(todaysBackup()));
}

void ItemFileStoreTest::fileThatAFolderReplaced()
{
    const LoggedMessages messages;
    _home->write(name, fileWith(note("Bread")));
    QVERIFY(_file.load());
    QVERIFY(QFile::remove(_home->path(name)));
    QVERIFY(QDir().mkpath(_home->path(name)));
    QVERIFY(!_file.save(*_root));
    QCOMPARE(_told, QStringList(QStringLiteral("not saved")));
    QVERIFY(QDir().rmdir(_home->path(name)));
    for (int second = 0; second < 2; ++second)
        _file.retrySave(*_root);
    QVERIFY(_home->read(name).contains("Milk"));
}

void ItemFileStoreTest::fileThatALinkReplaced()
{
    const LoggedMessages messages;
    _home->write(name, fileWith(note("Bread")));
    QVERIFY(_file.load());
    // What the link leads to is another file, which is kept.
    _home->write(QStringLiteral("elsewhere/Bookmarks.plist"), fileWith(note("Salt")));
    QVERIFY(QFile::remove(_home->path(name)));
    QVERIFY(QFile::link(_home->path(QStringLiteral("elsewhere/Bookmarks.plist")), _home->path(name)));
    QVERIFY(_file.save(*_root));
    QCOMPARE(keptContents(0), fileWith(note("Salt")));
    QVERIFY(_home->read(QStringLiteral("elsewhere/Bookmarks.plist")).contains("Milk"));
    // A link into nowhere leads to a file that can be made, or not.
    QVERIFY(QFile::remove(_home->path(name)));
    QVERIFY(QFile::link(_home->path(QStringLiteral("nowhere/Bookmarks.plist")), _home->path(name)));
    _told.clear();
    QVERIFY(!_file.save(*_root));
    QCOMPARE(_told, QStringList(QStringLiteral("not saved")));
    QVERIFY(QFileInfo(_home->path(name)).isSymLink());
    QVERIFY(QDir().mkpath(_home->path(QStringLiteral("nowhere"))));
    QVERIFY(_file.save(*_root));
    QVERIFY(_home->read(QStringLiteral("nowhere/Bookmarks.plist")).contains("Milk"));
}

void ItemFileStoreTest::failureAfterALockIsTold()
{
    const LoggedMessages messages;
    QVERIFY(QDir().mkpath(_home->path(name)));
    auto lock = std::make_unique<FileLock>(_home->path(name));
    QCOMPARE(lock->tryLock(), FileLock::Locked);
    QVERIFY(!_file.save(*_root));
    lock.reset();
    QTRY_COMPARE(_told, QStringList(QStringLiteral("not saved")));
    QVERIFY(_file.isSaveOwed());
}

void ItemFileStoreTest::quitWaitsForALock()
{
    auto lock = std::make_unique<FileLock>(_home->path(name));
    QCOMPARE(lock->tryLock(), FileLock::Locked);
    QVERIFY(!_file.save(*_root));
    // Another process has it, and lets go soon.
    lock.reset();
    const pid_t child = ::fork();
    QVERIFY(child >= 0);
    if (child == 0) {
        FileLock own(_home->path(name));
        while (own.tryLock() != FileLock::Locked)
            ::usleep(100);
        _home->write(QStringLiteral("locked"), "");
        ::usleep(100 * 1000);
        own.~FileLock();
        ::_exit(0);
    }
    while (!QFileInfo::exists(_home->path(QStringLiteral("locked"))))
        ::usleep(100);
    _file.saveAtQuit(*_root);
    QCOMPARE(::waitpid(child, nullptr, 0), child);
    QVERIFY(_home->read(name).contains("Milk") || !keptCopies().isEmpty()); // on a busy machine it takes too long
    QVERIFY(_home->read(name).contains("Milk") == keptCopies().isEmpty());
}

void ItemFileStoreTest::whatCannotBeWrittenAtQuitIsKept_data()
{
    QTest::addColumn<bool>("isLocked");
    QTest::newRow("locked") << true;
    QTest::newRow("a folder in its place") << false;
}

void ItemFileStoreTest::whatCannotBeWrittenAtQuitIsKept()
{
    QFETCH(bool, isLocked);
    const LoggedMessages messages;
    FileLock lock(_home->path(name));
    if (isLocked) {
        _home->write(name, fileWith(note("Bread")));
        QVERIFY(_file.load());
        QCOMPARE(lock.tryLock(), FileLock::Locked);
    } else {
        QVERIFY(QDir().mkpath(_home->path(name)));
    }
    QVERIFY(!_file.save(*_root));
    _file.saveAtQuit(*_root);
    QCOMPARE(keptCopies().size(), 1);
    const auto kept = WayfoldBookmarkFolder::bookmarkFromDictionaryFile(
        _home->path(QStringLiteral("Wayfold/") + keptCopies().constFirst()));
    QCOMPARE(kept->childCount(), 1U);
    QCOMPARE(kept->childAtIndex(0)->title(), QStringLiteral("Milk"));
    if (isLocked)
        QCOMPARE(_home->read(name), fileWith(note("Bread")));
}

void ItemFileStoreTest::nothingIsOwedNothingIsSavedAtQuit()
{
    _file.saveAtQuit(*_root);
    QVERIFY(QDir(_home->path(QStringLiteral("Wayfold"))).isEmpty());
}

void ItemFileStoreTest::firstSaveOfADayIsBackedUp()
{
    QVERIFY(!_file.load());
    QVERIFY(_file.save(*_root)); // there was nothing before
    QVERIFY(!QFileInfo::exists(todaysBackup()));
    _home->write(name, fileWith(note("Bread")));
    QVERIFY(_file.load());
    QVERIFY(!QFileInfo::exists(todaysBackup())); // reading alone makes none
    QVERIFY(_file.save(*_root));
    QVERIFY(_file.save(*treeWith(QStringLiteral("Salt"))));
    QFile backup(todaysBackup());
    QVERIFY(backup.open(QIODevice::ReadOnly));
    QCOMPARE(backup.readAll(), fileWith(note("Bread")));
    QVERIFY(keptCopies().isEmpty());
}

void ItemFileStoreTest::onlyWhatWasReadWholeIsBackedUp()
{
    const LoggedMessages messages;
    _home->write(name, fileWith(note("Bread")).left(200));
    QVERIFY(!_file.load());
    QVERIFY(_file.save(*_root)); // kept aside instead
    QVERIFY(!QFileInfo::exists(todaysBackup()));
    _home->write(name, fileWith(note("Theirs")));
    QVERIFY(_file.save(*_root)); // nobody has read it
    QVERIFY(!QFileInfo::exists(todaysBackup()));
    QVERIFY(_file.save(*treeWith(QStringLiteral("Salt"))));
    QVERIFY(QFileInfo::exists(todaysBackup())); // of what was written here
}

void ItemFileStoreTest::failedBackupHindersNothing()
{
    const LoggedMessages messages;
    _home->write(name, fileWith(note("Bread")));
    _home->write(QStringLiteral("Wayfold/Backups"), "a file where the folder belongs");
    QVERIFY(_file.load());
    const QString told = QStringLiteral("no backup in ") + _home->path(QStringLiteral("Wayfold/Backups"));
    QVERIFY(_file.save(*_root));
    QVERIFY(_file.save(*_root));
    QCOMPARE(_told, QStringList(told)); // once a day
    QVERIFY(_home->read(name).contains("Milk"));
    QVERIFY(QFile::remove(_home->path(QStringLiteral("Wayfold/Backups"))));
    QVERIFY(_file.save(*_root));
    QVERIFY(QFileInfo::exists(todaysBackup()));
}

QTEST_GUILESS_MAIN(ItemFileStoreTest)
#include "ItemFileStoreTest.moc"
