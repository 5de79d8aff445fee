#include "platform/files/FileStamp.h"
#include "tests/platform/StatusChange.h"
#include "tests/support/TemporaryHome.h"

#include <QDir>
#include <QFile>
#include <QTest>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

class FileStampTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void nothingThere();
    void plainFile();
    void nanosecondsCount();
    void sameSizeAndTimeButAnotherFile();
    void otherPermissionsOrNames();
    void dateThatIsPutBack();
    void timesBefore1970();
    void followsLinks();
    void otherThanPlainFiles();
};

static void setModificationTime(const QString &path, qint64 seconds, long nanoseconds)
{
    const timespec times[] = {{0, UTIME_OMIT}, {seconds, nanoseconds}};
    QCOMPARE(::utimensat(AT_FDCWD, qPrintable(path), times, 0), 0);
}

void FileStampTest::nothingThere()
{
    const TemporaryHome home;
    QVERIFY(!FileStamp::ofFile(home.path("nothing")));
    QVERIFY(!FileStamp::ofFile(QString()));
    QVERIFY(!FileStamp::ofFile(""));
    QVERIFY(QFile::link(home.path("nothing"), home.path("link")));
    QVERIFY(!FileStamp::ofFile(home.path("link")));
}

void FileStampTest::plainFile()
{
    const TemporaryHome home;
    home.write("file", "12345");
    setModificationTime(home.path("file"), 1000000000, 123456789);
    const auto stamp = FileStamp::ofFile(home.path("file"));
    QVERIFY(stamp);
    QCOMPARE(stamp->modificationTime, 1000000000123456789);
    QCOMPARE(stamp->size, 5);
    QVERIFY(stamp->inode != 0);
    QVERIFY(stamp->isPlainFile);
    QCOMPARE(*FileStamp::ofFile(home.path("file")), *stamp);
}

void FileStampTest::nanosecondsCount()
{
    const TemporaryHome home;
    home.write("file", "a");
    setModificationTime(home.path("file"), 1000000000, 1);
    const auto before = FileStamp::ofFile(home.path("file"));
    setModificationTime(home.path("file"), 1000000000, 2);
    const auto after = FileStamp::ofFile(home.path("file"));
    QVERIFY(*before != *after);
    QCOMPARE(after->modificationTime - before->modificationTime, 1);
}

void FileStampTest::sameSizeAndTimeButAnotherFile()
{
    const TemporaryHome home;
    home.write("file", "old");
    home.write("new", "new");
    setModificationTime(home.path("file"), 1000000000, 0);
    setModificationTime(home.path("new"), 1000000000, 0);
    const auto before = FileStamp::ofFile(home.path("file"));
    QCOMPARE(::rename(qPrintable(home.path("new")), qPrintable(home.path("file"))), 0);
    QVERIFY(*before != *FileStamp::ofFile(home.path("file")));
}

template <class Change>
static FileStamp stampAfter(const QString &path, Change change)
{
    StatusChange::make(path, change);
    return *FileStamp::ofFile(path);
}

void FileStampTest::otherPermissionsOrNames()
{
    const TemporaryHome home;
    home.write("file", "12345");
    const QString path = home.path("file");
    const FileStamp before = *FileStamp::ofFile(path);
    const FileStamp permitted = stampAfter(path, [&] { QCOMPARE(::chmod(qPrintable(path), 0600), 0); });
    QVERIFY(permitted != before);
    QVERIFY(permitted.hasContentsOf(before));
    const FileStamp named = stampAfter(path, [&] {
        ::unlink(qPrintable(home.path("second")));
        QCOMPARE(::link(qPrintable(path), qPrintable(home.path("second"))), 0);
    });
    QVERIFY(named != permitted);
    QVERIFY(named.hasContentsOf(before));
    setModificationTime(path, 1000000000, 0);
    QVERIFY(!FileStamp::ofFile(path)->hasContentsOf(named));
}

void FileStampTest::dateThatIsPutBack()
{
    const TemporaryHome home;
    home.write("file", "12345");
    const QString path = home.path("file");
    setModificationTime(path, 1000000000, 0);
    const FileStamp before = *FileStamp::ofFile(path);
    const FileStamp after = stampAfter(path, [&] {
        home.write("file", "54321");
        setModificationTime(path, 1000000000, 0);
    });
    QCOMPARE(after.modificationTime, before.modificationTime);
    QVERIFY(after != before);
}

void FileStampTest::timesBefore1970()
{
    const TemporaryHome home;
    home.write("file", "");
    setModificationTime(home.path("file"), -1, 500000000);
    QCOMPARE(FileStamp::ofFile(home.path("file"))->modificationTime, -500000000);
}

void FileStampTest::followsLinks()
{
    const TemporaryHome home;
    home.write("file", "12345");
    QVERIFY(QFile::link(home.path("file"), home.path("link")));
    QCOMPARE(*FileStamp::ofFile(home.path("link")), *FileStamp::ofFile(home.path("file")));
}

void FileStampTest::otherThanPlainFiles()
{
    const TemporaryHome home;
    QCOMPARE(::mkfifo(qPrintable(home.path("pipe")), 0600), 0);
    QVERIFY(!FileStamp::ofFile(home.path("pipe"))->isPlainFile);
    QVERIFY(!FileStamp::ofFile(home.path())->isPlainFile);
    QVERIFY(!FileStamp::ofFile("/dev/null")->isPlainFile);
}

QTEST_GUILESS_MAIN(FileStampTest)
#include "FileStampTest.moc"
