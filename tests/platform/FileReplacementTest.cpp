#include "platform/files/FileReplacement.h"

#include "tests/support/LoggedMessages.h"
#include "tests/support/TemporaryHome.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QTest>
#include <csignal>
#include <fcntl.h>
#include <functional>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

namespace
{
// What a save asks of the system, in order; and something to do right before it gives the temporary file its place.
struct Watch
{
    QStringList calls;
    std::function<void(const QString &temporary)> beforeRename;
    int flushFailsAt = -1; // the number of the call
};
Watch *watch = nullptr;

int fail(int error)
{
    errno = error;
    return -1;
}
} // namespace

// The system's own, for the whole program.
extern "C" int fsync(int descriptor)
{
    if (watch) {
        struct stat status;
        if (::fstat(descriptor, &status) != 0)
            return fail(EBADF);
        watch->calls.append(S_ISDIR(status.st_mode) ? QStringLiteral("flush folder %1").arg(status.st_ino)
                                                    : QStringLiteral("flush %1 bytes").arg(status.st_size));
        if (watch->calls.size() - 1 == watch->flushFailsAt)
            return fail(EIO);
    }
    return int(::syscall(SYS_fsync, descriptor));
}

extern "C" int rename(const char *from, const char *to) noexcept
{
    if (watch) {
        watch->calls.append(QStringLiteral("rename to %1").arg(QFile::decodeName(to)));
        if (watch->beforeRename)
            watch->beforeRename(QFile::decodeName(from));
    }
    return int(::syscall(SYS_renameat2, AT_FDCWD, from, AT_FDCWD, to, 0));
}

// That the file is whole whatever happens is shown in PropertyListTest, by killing.
class FileReplacementTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void contents_data();
    void contents();
    void flushesFileThenFolder();
    void failedFlushLeavesTheFile();
    void failedFlushOfTheFolderIsTold();
    void failedRenameLeavesTheFile();
    void newFileIsItsOwnersAlone();
    void permissionsAreKept();
    void fileThatMayNotBeWrittenStays();
    void whatALinkLeadsToIsReplaced();
    void killedSaveIsCleanedUp();
    void killedSaveBehindALinkIsCleanedUp();
    void livingSaveIsLeftAlone();
    void otherFilesAreLeftAlone_data();
    void otherFilesAreLeftAlone();
    void noFolder();
    void ringOfLinks();

private:
    QString path(const QString &name = QStringLiteral("Bookmarks.plist")) const { return _home->path(name); }
    QStringList files() const
    {
        return QDir(_home->path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
    }
    // A process that is killed right before its temporary file would get its place.
    void killSaveOf(const QString &file);

    std::unique_ptr<TemporaryHome> _home;
    Watch _watch;
};

void FileReplacementTest::init()
{
    _home = std::make_unique<TemporaryHome>();
    _watch = Watch();
    watch = &_watch;
}

void FileReplacementTest::cleanup()
{
    watch = nullptr;
    _home.reset();
}

void FileReplacementTest::killSaveOf(const QString &file)
{
    const pid_t child = ::fork();
    QVERIFY(child >= 0);
    if (child == 0) {
        _watch.beforeRename = [](const QString &) { ::raise(SIGKILL); };
        replaceFile(file, "killed");
        ::_exit(0);
    }
    int status = 0;
    QCOMPARE(::waitpid(child, &status, 0), child);
    QVERIFY(WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL);
}

void FileReplacementTest::contents_data()
{
    QTest::addColumn<QByteArray>("contents");
    QTest::newRow("empty") << QByteArray("");
    QTest::newRow("short") << QByteArray("a\0b", 3);
    QTest::newRow("long") << QByteArray(3000000, 'x');
}

void FileReplacementTest::contents()
{
    QFETCH(QByteArray, contents);
    QVERIFY(replaceFile(path(), contents).isNull());
    QCOMPARE(_home->read("Bookmarks.plist"), contents);
    QVERIFY(replaceFile(path(), "other").isNull());
    QVERIFY(replaceFile(path(), contents).isNull());
    QCOMPARE(_home->read("Bookmarks.plist"), contents);
    QCOMPARE(files(), QStringList("Bookmarks.plist"));
}

void FileReplacementTest::flushesFileThenFolder()
{
    const QRegularExpression form("^Bookmarks\\.plist\\.saving-[A-Za-z]{6}$");
    _watch.beforeRename = [&](const QString &temporary) {
        QCOMPARE(QFileInfo(temporary).path(), _home->path());
        QVERIFY2(form.match(QFileInfo(temporary).fileName()).hasMatch(), qPrintable(temporary));
        QCOMPARE(_home->read(QFileInfo(temporary).fileName()), QByteArray("12345"));
    };
    QVERIFY(replaceFile(path(), "12345").isNull());
    struct stat folder;
    QCOMPARE(::stat(qPrintable(_home->path()), &folder), 0);
    const QStringList expected{"flush 5 bytes", "rename to " + path(),
                               QStringLiteral("flush folder %1").arg(folder.st_ino)};
    QCOMPARE(_watch.calls, expected);
}

void FileReplacementTest::failedFlushLeavesTheFile()
{
    _home->write("Bookmarks.plist", "old");
    _watch.flushFailsAt = 0;
    QCOMPARE(replaceFile(path(), "new"), QString("Input/output error"));
    QCOMPARE(_home->read("Bookmarks.plist"), QByteArray("old"));
    QCOMPARE(files(), QStringList("Bookmarks.plist"));
}

void FileReplacementTest::failedFlushOfTheFolderIsTold()
{
    _watch.flushFailsAt = 2;
    QCOMPARE(replaceFile(path(), "new"), QString("Input/output error"));
    QCOMPARE(_home->read("Bookmarks.plist"), QByteArray("new"));
}

void FileReplacementTest::failedRenameLeavesTheFile()
{
    // Somebody has put a folder there meanwhile.
    _watch.beforeRename = [&](const QString &) { QVERIFY(QDir().mkpath(path())); };
    QCOMPARE(replaceFile(path(), "new"), QString("Is a directory"));
    QVERIFY(QFileInfo(path()).isDir());
    QCOMPARE(files(), QStringList("Bookmarks.plist"));
}

void FileReplacementTest::newFileIsItsOwnersAlone()
{
    QVERIFY(replaceFile(path(), "new").isNull());
    struct stat status;
    QCOMPARE(::stat(qPrintable(path()), &status), 0);
    QCOMPARE(status.st_mode & 07777, 0600U);
}

void FileReplacementTest::permissionsAreKept()
{
    _home->write("Bookmarks.plist", "old");
    QCOMPARE(::chmod(qPrintable(path()), 0664), 0); // whatever is usual
    QVERIFY(replaceFile(path(), "new").isNull());
    struct stat status;
    QCOMPARE(::stat(qPrintable(path()), &status), 0);
    QCOMPARE(status.st_mode & 07777, 0664U);
}

void FileReplacementTest::fileThatMayNotBeWrittenStays()
{
    _home->write("Bookmarks.plist", "old");
    QCOMPARE(::chmod(qPrintable(_home->path()), 0777), 0);
    QCOMPARE(::chmod(qPrintable(path()), 0444), 0);
    const bool isSuperuser = ::geteuid() == 0; // who may do everything
    if (isSuperuser)
        QCOMPARE(::setresuid(65534, 65534, 0), 0);
    const QString reason = replaceFile(path(), "new");
    if (isSuperuser)
        QCOMPARE(::setresuid(0, 0, 0), 0);
    QCOMPARE(reason, QString("Permission denied"));
    QCOMPARE(_home->read("Bookmarks.plist"), QByteArray("old"));
}

void FileReplacementTest::whatALinkLeadsToIsReplaced()
{
    QVERIFY(QDir().mkpath(path("elsewhere")));
    QVERIFY(QFile::link("elsewhere/second", path("first")));
    QVERIFY(QFile::link("target", path("elsewhere/second")));
    for (const char *contents : {"new", "newer"}) { // at first there is nothing
        QVERIFY(replaceFile(path("first"), contents).isNull());
        QCOMPARE(_home->read("elsewhere/target"), QByteArray(contents));
        QVERIFY(QFileInfo(path("first")).isSymLink());
        QVERIFY(QFileInfo(path("elsewhere/second")).isSymLink());
        QVERIFY(!QFileInfo(path("elsewhere/target")).isSymLink());
    }
}

void FileReplacementTest::killedSaveIsCleanedUp()
{
    const LoggedMessages messages;
    _home->write("Bookmarks.plist", "old");
    killSaveOf(path());
    killSaveOf(path());
    QCOMPARE(files().size(), 3);
    removeAbandonedSaves(path());
    QCOMPARE(files(), QStringList("Bookmarks.plist"));
    QCOMPARE(_home->read("Bookmarks.plist"), QByteArray("old"));
    QCOMPARE(messages.texts().size(), 2);
    QVERIFY(messages.contain("Bookmarks.plist.saving-"));
}

void FileReplacementTest::killedSaveBehindALinkIsCleanedUp()
{
    _home->write("elsewhere/target", "old");
    QVERIFY(QFile::link("elsewhere/target", path("link")));
    killSaveOf(path("link"));
    const QDir folder(path("elsewhere"));
    QCOMPARE(folder.entryList(QDir::Files).size(), 2);
    const LoggedMessages messages;
    removeAbandonedSaves(path("link"));
    QCOMPARE(folder.entryList(QDir::Files), QStringList("target"));
}

void FileReplacementTest::livingSaveIsLeftAlone()
{
    _watch.beforeRename = [&](const QString &temporary) {
        removeAbandonedSaves(path());
        QVERIFY(QFileInfo::exists(temporary));
        // Nor does another process remove it.
        const pid_t child = ::fork();
        if (child == 0) {
            removeAbandonedSaves(path());
            ::_exit(0);
        }
        QCOMPARE(::waitpid(child, nullptr, 0), child);
        QVERIFY(QFileInfo::exists(temporary));
    };
    QVERIFY(replaceFile(path(), "new").isNull());
    QCOMPARE(_home->read("Bookmarks.plist"), QByteArray("new"));
}

void FileReplacementTest::otherFilesAreLeftAlone_data()
{
    QTest::addColumn<QString>("name");
    for (const char *name :
         {"Bookmarks.plist", "Bookmarks.plist.saving", "Bookmarks.plist.saving-", "Bookmarks.plist.saving-abcde",
          "Bookmarks.plist.saving-abcdefg", "Bookmarks.plist.saving-abcde1", "Bookmarks.plist.saving-abcdef~",
          "Bookmarks.plist.abcdef", "Bookmarks.plist.kept-20260101-000000", "xBookmarks.plist.saving-abcdef",
          "Bookmarks-plist.saving-abcdef", "History.plist.saving-abcdef", "folder/Bookmarks.plist.saving-abcdef"})
        QTest::newRow(name) << QString::fromLatin1(name);
}

void FileReplacementTest::otherFilesAreLeftAlone()
{
    QFETCH(QString, name);
    _home->write(name, "mine");
    removeAbandonedSaves(path());
    QCOMPARE(_home->read(name), QByteArray("mine"));
    // Nor is a folder or a link of such a name removed, nor an empty file: a save may have just begun.
    QVERIFY(QDir().mkpath(path("Bookmarks.plist.saving-folder")));
    QVERIFY(QFile::link(path(name), path("Bookmarks.plist.saving-linked")));
    _home->write("Bookmarks.plist.saving-nobody", "");
    removeAbandonedSaves(path());
    QVERIFY(QFileInfo::exists(path("Bookmarks.plist.saving-folder")));
    QVERIFY(QFileInfo(path("Bookmarks.plist.saving-linked")).isSymLink());
    QVERIFY(QFileInfo::exists(path("Bookmarks.plist.saving-nobody")));
    QCOMPARE(_home->read(name), QByteArray("mine"));
}

void FileReplacementTest::noFolder()
{
    const LoggedMessages messages;
    removeAbandonedSaves(path("no/such/folder/file"));
    QVERIFY(messages.texts().isEmpty());
    QCOMPARE(replaceFile(path("no/such/folder/file"), "new"), QString("No such file or directory"));
}

void FileReplacementTest::ringOfLinks()
{
    QVERIFY(QFile::link(path("second"), path("first")));
    QVERIFY(QFile::link(path("first"), path("second")));
    removeAbandonedSaves(path("first")); // comes back, above all
    QCOMPARE(replaceFile(path("first"), "new"), QString("Too many levels of symbolic links"));
    QCOMPARE(files(), QStringList({"first", "second"}));
}

QTEST_APPLESS_MAIN(FileReplacementTest)
#include "FileReplacementTest.moc"
