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
#include <ctime>
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

    void newestTwentyStay();
    void oneOfEachDayStaysForAMonth();
    void otherFilesAreLeftAlone_data();
    void otherFilesAreLeftAlone();
    void newOneStaysWhenTheClockWasAhead();
    void newOneStaysAmongThoseOfItsSecond();
    void copiesOfTheSameSecondAreInOrder();
    void hourThatTheClockHasSkippedIsATime();
    void copyThatFailsRemovesNothing();
    void whatCouldNotBeWrittenIsKept();

private:
    static QString copyAt(const QDateTime &time) { return "file.kept-" + time.toString("yyyyMMdd-HHmmss"); }
    static QStringList copies(const TemporaryHome &home)
    {
        return QDir(home.path()).entryList({"file.kept-*"}, QDir::AllEntries | QDir::Hidden, QDir::Name);
    }
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

void KeptCopyTest::newestTwentyStay()
{
    const TemporaryHome home;
    const LoggedMessages messages;
    home.write("file", "a");
    // Of one day long ago, of which nothing else stays.
    QStringList names;
    for (int minute = 0; minute < 25; ++minute)
        names.append(copyAt(QDateTime(QDate(2020, 2, 29), QTime(23, minute, 0))));
    for (const QString &name : names)
        home.write(name, "old");
    const QString copy = keepCopyOfFile(home.path("file"));
    QCOMPARE(copies(home), names.mid(6) + QStringList(QFileInfo(copy).fileName()));
    QVERIFY(messages.contain("Removed " + home.path(names.constFirst())));
}

void KeptCopyTest::oneOfEachDayStaysForAMonth()
{
    const TemporaryHome home;
    const LoggedMessages messages;
    home.write("file", "a");
    QStringList staying;
    const QDate today = QDate::currentDate();
    for (int days = 1; days <= 70; ++days) {
        const QDate day = today.addDays(-days);
        for (int hour = 0; hour < 3; ++hour)
            home.write(copyAt(QDateTime(day, QTime(hour + 10, 0, 0))), "old");
    }
    for (int days = 1; today.addDays(-days) > today.addMonths(-1); ++days) {
        const QDate day = today.addDays(-days);
        // The new one and nineteen others are the newest: six days, and the last copy of the seventh.
        for (int hour = days < 7 ? 0 : 2; hour < 3; ++hour)
            staying.prepend(copyAt(QDateTime(day, QTime(12 - hour + (days < 7 ? 0 : 2), 0, 0))));
    }
    staying.append(QFileInfo(keepCopyOfFile(home.path("file"))).fileName());
    staying.sort();
    QCOMPARE(copies(home), staying);
}

void KeptCopyTest::otherFilesAreLeftAlone_data()
{
    QTest::addColumn<QString>("name");
    for (const char *name : {"file.kept-20200101-000000.txt",
                             "file.kept-20200101-000000~",
                             "file.kept-20200101-000000-1",
                             "file.kept-20200101-000000-02",
                             "file.kept-20200101-000000-2-2",
                             "file.kept-20200101-000000-",
                             "file.kept-20200101-000000-99999999999",
                             "file.kept-20201301-000000",
                             "file.kept-20210229-000000",
                             "file.kept-20200101-250000",
                             "file.kept-20200101-0000000",
                             "file.kept-2020101-000000",
                             "file.kept-",
                             "file.kept-mine",
                             "file.kept",
                             "File.kept-20200101-000000",
                             "file.KEPT-20200101-000000",
                             "file2.kept-20200101-000000",
                             "afile.kept-20200101-000000",
                             "xfile.kept-20200101-000000",
                             ".file.kept-20200101-000000",
                             "fileXkept-20200101-000000",
                             "file.kept-\u0662\u0660\u0662\u0660\u0660\u0661\u0660\u0661-000000"})
        QTest::newRow(name) << QString::fromUtf8(name);
}

void KeptCopyTest::otherFilesAreLeftAlone()
{
    QFETCH(QString, name);
    const TemporaryHome home;
    const LoggedMessages messages;
    home.write("file", "a");
    home.write(name, "mine");
    for (int minute = 0; minute < 30; ++minute)
        home.write(copyAt(QDateTime(QDate(2020, 2, 1), QTime(12, minute, 0))), "old");
    // Of the right name, but no files.
    QVERIFY(QDir(home.path()).mkdir("file.kept-20190101-000000"));
    QVERIFY(QFile::link(home.path(name), home.path("file.kept-20190101-000001")));
    QVERIFY(!keepCopyOfFile(home.path("file")).isNull());
    QCOMPARE(home.read(name), "mine");
    QVERIFY(QFileInfo(home.path("file.kept-20190101-000000")).isDir());
    QVERIFY(QFileInfo(home.path("file.kept-20190101-000001")).isSymLink());
}

void KeptCopyTest::newOneStaysWhenTheClockWasAhead()
{
    const TemporaryHome home;
    const LoggedMessages messages;
    home.write("file", "a");
    QStringList ahead;
    for (int minute = 0; minute < 30; ++minute)
        ahead.append(copyAt(QDateTime(QDate::currentDate().addYears(3), QTime(12, minute, 0))));
    for (const QString &name : ahead)
        home.write(name, "ahead");
    QStringList now;
    for (int i = 0; i < 19; ++i) // all of them, though the others are newer by their names
        now.append(QFileInfo(keepCopyOfFile(home.path("file"))).fileName());
    for (const QString &name : now)
        QVERIFY2(QFileInfo::exists(home.path(name)), qPrintable(name));
    QCOMPARE(copies(home).size(), 19 + 20);
    QVERIFY(!QFileInfo::exists(home.path(ahead.constFirst())));
    QVERIFY(QFileInfo::exists(home.path(ahead.constLast())));
}

// The first name of a second may be free again while later ones are taken.
void KeptCopyTest::newOneStaysAmongThoseOfItsSecond()
{
    const TemporaryHome home;
    const LoggedMessages messages;
    home.write("file", "a");
    const QDateTime now = QDateTime::currentDateTime();
    for (int seconds = 0; seconds < 10; ++seconds) {
        for (int number = 2; number < 25; ++number)
            home.write(copyAt(now.addSecs(seconds)) + '-' + QString::number(number), "old");
    }
    const QString copy = keepCopyOfFile(home.path("file"));
    QVERIFY(!copy.isNull());
    QCOMPARE(home.read(QFileInfo(copy).fileName()), "a");
}

void KeptCopyTest::copiesOfTheSameSecondAreInOrder()
{
    const TemporaryHome home;
    const LoggedMessages messages;
    home.write("file", "a");
    const QString second = copyAt(QDateTime(QDate(2020, 2, 1), QTime(12, 0, 0)));
    home.write(second, "1");
    for (int number = 2; number <= 25; ++number)
        home.write(second + '-' + QString::number(number), QByteArray::number(number));
    QVERIFY(!keepCopyOfFile(home.path("file")).isNull());
    QCOMPARE(copies(home).size(), 20);
    QVERIFY(!QFileInfo::exists(home.path(second)));
    QVERIFY(!QFileInfo::exists(home.path(second + "-6")));
    QVERIFY(QFileInfo::exists(home.path(second + "-7")));
    QVERIFY(QFileInfo::exists(home.path(second + "-25")));
}

// A copy from elsewhere, or from before the user has moved, may be of an hour that is left out here in spring.
void KeptCopyTest::hourThatTheClockHasSkippedIsATime()
{
    const TemporaryHome home;
    const LoggedMessages messages;
    const QByteArray zone = qgetenv("TZ");
    qputenv("TZ", "Europe/Berlin");
    ::tzset();
    home.write("file", "a");
    for (int minute = 10; minute < 40; ++minute)
        home.write("file.kept-20260329-02" + QString::number(minute) + "00", "old");
    const bool isMade = !keepCopyOfFile(home.path("file")).isNull();
    qputenv("TZ", zone);
    ::tzset();
    QVERIFY(isMade);
    QCOMPARE(copies(home).size(), 20);
}

void KeptCopyTest::copyThatFailsRemovesNothing()
{
    const TemporaryHome home;
    const LoggedMessages messages;
    for (int minute = 0; minute < 30; ++minute)
        home.write(copyAt(QDateTime(QDate(2020, 2, 1), QTime(12, minute, 0))), "old");
    QVERIFY(keepCopyOfFile(home.path("file")).isNull());
    QCOMPARE(copies(home).size(), 30);
    // Nor does one in a folder that is no folder, or cannot be listed.
    QVERIFY(keepCopyOfFile(home.path("missing/file")).isNull());
}

void KeptCopyTest::whatCouldNotBeWrittenIsKept()
{
    const TemporaryHome home;
    const LoggedMessages messages;
    QVERIFY(QDir(home.path()).mkdir("file"));
    const QString copy = keepBesideFile(home.path("file"), "notes");
    QVERIFY(copy.startsWith(home.path("file.kept-")));
    QCOMPARE(home.read(QFileInfo(copy).fileName()), "notes");
    QVERIFY(keepBesideFile(home.path("missing/file"), "notes").isNull());
    QVERIFY(messages.contain("Could not keep a copy"));
}

QTEST_GUILESS_MAIN(KeptCopyTest)
#include "KeptCopyTest.moc"
