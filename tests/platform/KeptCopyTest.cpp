#include "platform/files/KeptCopy.h"
#include "tests/support/LoggedMessages.h"
#include "tests/support/TemporaryHome.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QSet>
#include <QTest>
#include <cerrno>
#include <sys/stat.h>
#include <unistd.h>

namespace
{
QByteArrayList flushed; // the paths, in order
qsizetype failsAt = -1; // the number of the flush that fails
} // namespace

// In place of the system's, for the whole program.
extern "C" int fsync(int descriptor)
{
    char target[4096];
    const QByteArray link = "/proc/self/fd/" + QByteArray::number(descriptor);
    const ssize_t length = ::readlink(link.constData(), target, sizeof target);
    flushed.append(QByteArray(target, qMax<ssize_t>(length, 0)));
    errno = EIO;
    return flushed.size() - 1 == failsAt ? -1 : 0;
}

class KeptCopyTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void copiesBesideTheFile();
    void takenNamesAreNotUsed();
    void copyOfALinkHoldsTheContents();
    void permissionsAreKept();
    void cannotBeCopied_data();
    void cannotBeCopied();
    void directoryThatTakesNoFile();
    void isOnTheDisk();
    void cannotBeFlushed_data();
    void cannotBeFlushed();
};

void KeptCopyTest::isOnTheDisk()
{
    const TemporaryHome home;
    const LoggedMessages messages;
    home.write("file", "a");
    flushed.clear();
    const QString copy = keepCopyOfFile(home.path("file"));
    QVERIFY(flushed.size() >= 2);
    QCOMPARE(flushed.mid(flushed.size() - 2),
             QByteArrayList({QFile::encodeName(copy), QFile::encodeName(home.path())}));
}

void KeptCopyTest::cannotBeFlushed_data()
{
    QTest::addColumn<int>("fromTheLast");
    QTest::newRow("file") << 2;
    QTest::newRow("folder") << 1;
}

void KeptCopyTest::cannotBeFlushed()
{
    QFETCH(int, fromTheLast);
    const TemporaryHome home;
    const LoggedMessages messages;
    home.write("file", "a");
    flushed.clear();
    QVERIFY(!keepCopyOfFile(home.path("file")).isNull());
    failsAt = 2 * flushed.size() - fromTheLast;
    const QString copy = keepCopyOfFile(home.path("file"));
    failsAt = -1;
    QVERIFY(copy.isNull());
    QVERIFY(messages.contain("Input/output error"));
}

void KeptCopyTest::copiesBesideTheFile()
{
    const TemporaryHome home;
    const LoggedMessages messages;
    home.write("Bookmarks.plist", "damaged");
    const QString copy = keepCopyOfFile(home.path("Bookmarks.plist"));
    const QRegularExpression form("^Bookmarks\\.plist\\.kept-[0-9]{8}-[0-9]{6}$");
    QVERIFY2(form.match(QFileInfo(copy).fileName()).hasMatch(), qPrintable(copy));
    QCOMPARE(QFileInfo(copy).path(), home.path());
    QCOMPARE(home.read(QFileInfo(copy).fileName()), "damaged");
    QCOMPARE(home.read("Bookmarks.plist"), "damaged");
    QVERIFY(messages.contain(copy));
    const QDateTime time = QDateTime::fromString(copy.right(15), "yyyyMMdd-HHmmss");
    QVERIFY(qAbs(time.secsTo(QDateTime::currentDateTime())) < 600);
}

void KeptCopyTest::takenNamesAreNotUsed()
{
    const TemporaryHome home;
    const LoggedMessages messages;
    QSet<QString> copies;
    for (int i = 0; i < 5; i++) {
        home.write("file", QByteArray::number(i));
        const QString copy = keepCopyOfFile(home.path("file"));
        QVERIFY(!copy.isNull());
        copies.insert(copy);
        QCOMPARE(home.read(QFileInfo(copy).fileName()), QByteArray::number(i));
    }
    QCOMPARE(copies.size(), 5);
    // Within one second at least two of the five were made.
    const QStringList numbered = QDir(home.path()).entryList({"file.kept-*-2"});
    QVERIFY(!numbered.isEmpty());
}

void KeptCopyTest::copyOfALinkHoldsTheContents()
{
    const TemporaryHome home;
    const LoggedMessages messages;
    home.write("elsewhere/file", "contents");
    QVERIFY(QFile::link(home.path("elsewhere/file"), home.path("link")));
    const QString copy = keepCopyOfFile(home.path("link"));
    QVERIFY(copy.startsWith(home.path("link.kept-")));
    QVERIFY(!QFileInfo(copy).isSymLink());
    QCOMPARE(home.read(QFileInfo(copy).fileName()), "contents");
}

void KeptCopyTest::permissionsAreKept()
{
    const TemporaryHome home;
    const LoggedMessages messages;
    home.write("file", "secret");
    QCOMPARE(::chmod(qPrintable(home.path("file")), 0600), 0);
    struct stat status;
    QCOMPARE(::stat(qPrintable(keepCopyOfFile(home.path("file"))), &status), 0);
    QCOMPARE(status.st_mode & 0777, 0600U);
}

void KeptCopyTest::cannotBeCopied_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("nothing there") << "nothing";
    QTest::newRow("directory") << "directory";
    QTest::newRow("pipe") << "pipe";
    QTest::newRow("link to nothing") << "link";
}

void KeptCopyTest::cannotBeCopied()
{
    QFETCH(QString, name);
    const TemporaryHome home;
    QVERIFY(QDir(home.path()).mkdir("directory"));
    QCOMPARE(::mkfifo(qPrintable(home.path("pipe")), 0600), 0);
    QVERIFY(QFile::link(home.path("nothing"), home.path("link")));
    const LoggedMessages messages;
    QVERIFY(keepCopyOfFile(home.path(name)).isNull());
    QVERIFY(messages.contain("Could not keep a copy of " + home.path(name)));
    QVERIFY(QDir(home.path()).entryList({"*.kept-*"}).isEmpty());
}

void KeptCopyTest::directoryThatTakesNoFile()
{
    // A name that leaves no room for the ending is refused by every file system, whoever the user is.
    const TemporaryHome home;
    const QString name(250, u'a');
    home.write(name, "contents");
    const LoggedMessages messages;
    QVERIFY(keepCopyOfFile(home.path(name)).isNull());
    QVERIFY(messages.contain("Could not keep a copy"));
    QCOMPARE(home.read(name), "contents");
    QCOMPARE(QDir(home.path()).entryList(QDir::Files).size(), 1);
}

QTEST_GUILESS_MAIN(KeptCopyTest)
#include "KeptCopyTest.moc"
