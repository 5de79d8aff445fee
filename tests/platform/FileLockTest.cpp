#include "platform/files/FileLock.h"
#include "tests/support/TemporaryHome.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSysInfo>
#include <QTest>
#include <csignal>
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace std::chrono_literals;

namespace
{
// A process that holds a lock until this goes, or is killed.
class Holder
{
public:
    explicit Holder(const QString &path)
    {
        int ready[2];
        if (::pipe(ready) != 0)
            qFatal("no pipe");
        _process = ::fork();
        if (_process == 0) {
            FileLock lock(path);
            const char result = lock.tryLock() == FileLock::Locked ? 'y' : 'n';
            if (::write(ready[1], &result, 1) == 1)
                ::pause();
            ::_exit(0);
        }
        char result = 'n';
        _hasLocked = ::read(ready[0], &result, 1) == 1 && result == 'y';
        ::close(ready[0]);
        ::close(ready[1]);
    }
    ~Holder() { kill(); }

    bool hasLocked() const { return _hasLocked; }
    void kill()
    {
        if (_process <= 0)
            return;
        ::kill(_process, SIGKILL);
        ::waitpid(_process, nullptr, 0);
        _process = 0;
    }

private:
    pid_t _process = 0;
    bool _hasLocked = false;
};

void makeOld(const QString &path)
{
    const timespec times[2] = {{1000000000, 0}, {1000000000, 0}};
    QCOMPARE(::utimensat(AT_FDCWD, QFile::encodeName(path).constData(), times, 0), 0);
}
} // namespace

class FileLockTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void oneHasIt();
    void goesWithItsHolder();
    void liesBesideTheFile();
    void liesBesideWhatALinkLeadsTo();
    void isWaitedFor();
    void ofTheDeadIsTakenOver();
    void ofTheLivingIsKept_data();
    void ofTheLivingIsKept();
    void ofAnotherMachineIsKept_data();
    void ofAnotherMachineIsKept();
    void ofNobodyIsTakenOver_data();
    void ofNobodyIsTakenOver();
    void thatIsBeingWrittenIsKept();
    void cannotBeMade_data();
    void cannotBeMade();
};

void FileLockTest::oneHasIt()
{
    const TemporaryHome home;
    FileLock first(home.path("file"));
    FileLock second(home.path("file"));
    FileLock other(home.path("other"));
    QCOMPARE(first.tryLock(), FileLock::Locked);
    QCOMPARE(first.tryLock(), FileLock::Locked);
    QCOMPARE(second.tryLock(), FileLock::Busy);
    QCOMPARE(other.tryLock(), FileLock::Locked);
    const Holder elsewhere(home.path("file"));
    QVERIFY(!elsewhere.hasLocked());
}

void FileLockTest::goesWithItsHolder()
{
    const TemporaryHome home;
    {
        FileLock first(home.path("file"));
        QCOMPARE(first.tryLock(), FileLock::Locked);
    }
    QVERIFY(QDir(home.path()).isEmpty());
    FileLock second(home.path("file"));
    QCOMPARE(second.tryLock(), FileLock::Locked);
}

void FileLockTest::liesBesideTheFile()
{
    const TemporaryHome home;
    FileLock lock(home.path("file"));
    QCOMPARE(lock.tryLock(), FileLock::Locked);
    QCOMPARE(lock.lockFile(), home.path("file.lock"));
    QCOMPARE(QDir(home.path()).entryList(QDir::Files | QDir::Hidden), QStringList("file.lock"));
}

void FileLockTest::liesBesideWhatALinkLeadsTo()
{
    const TemporaryHome home;
    home.write("shared/file", "a");
    QVERIFY(QDir(home.path()).mkdir("mine"));
    QVERIFY(QFile::link("../shared/file", home.path("mine/link")));
    QVERIFY(QFile::link(home.path("mine/link"), home.path("mine/second")));
    FileLock lock(home.path("mine/second"));
    QCOMPARE(lock.tryLock(), FileLock::Locked);
    QVERIFY(QFileInfo::exists(home.path("shared/file.lock")));
    FileLock direct(home.path("shared/file"));
    QCOMPARE(direct.tryLock(), FileLock::Busy);
}

void FileLockTest::isWaitedFor()
{
    const TemporaryHome home;
    auto holder = std::make_unique<Holder>(home.path("file"));
    QVERIFY(holder->hasLocked());
    FileLock lock(home.path("file"));
    QCOMPARE(lock.lockWithin(30ms), FileLock::Busy);
    holder.reset();
    QCOMPARE(lock.lockWithin(60s), FileLock::Locked);
}

void FileLockTest::ofTheDeadIsTakenOver()
{
    const TemporaryHome home;
    Holder holder(home.path("file"));
    QVERIFY(holder.hasLocked());
    holder.kill();
    QVERIFY(QFileInfo::exists(home.path("file.lock")));
    FileLock lock(home.path("file"));
    QCOMPARE(lock.tryLock(), FileLock::Locked);
    FileLock second(home.path("file"));
    QCOMPARE(second.tryLock(), FileLock::Busy);
}

void FileLockTest::ofTheLivingIsKept_data()
{
    QTest::addColumn<bool>("isOld");
    QTest::newRow("new") << false;
    QTest::newRow("old, or a clock that jumped") << true;
}

void FileLockTest::ofTheLivingIsKept()
{
    QFETCH(bool, isOld);
    const TemporaryHome home;
    const Holder holder(home.path("file"));
    QVERIFY(holder.hasLocked());
    if (isOld)
        makeOld(home.path("file.lock"));
    FileLock lock(home.path("file"));
    QCOMPARE(lock.tryLock(), FileLock::Busy);
    QVERIFY(QFileInfo::exists(home.path("file.lock")));
}

void FileLockTest::ofAnotherMachineIsKept_data()
{
    QTest::addColumn<bool>("isOld");
    QTest::newRow("new") << false;
    QTest::newRow("old") << true;
}

void FileLockTest::ofAnotherMachineIsKept()
{
    QFETCH(bool, isOld);
    const TemporaryHome home;
    home.write("file.lock", "999999999\nprogram\nanother-machine\n0123456789abcdef\nfedcba\n");
    if (isOld)
        makeOld(home.path("file.lock"));
    FileLock lock(home.path("file"));
    QCOMPARE(lock.tryLock(), FileLock::Busy);
    QVERIFY(home.read("file.lock").contains("another-machine"));
}

void FileLockTest::ofNobodyIsTakenOver_data()
{
    QTest::addColumn<QByteArray>("contents");
    const QByteArray here = QSysInfo::machineHostName().toUtf8();
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("damaged") << QByteArray("\0\0\0", 3);
    QTest::newRow("number of a process that is another one now")
        << QByteArray::number(::getppid()) + "\n\n" + here + "\n\n\n";
}

void FileLockTest::ofNobodyIsTakenOver()
{
    QFETCH(QByteArray, contents);
    const TemporaryHome home;
    home.write("file.lock", contents);
    makeOld(home.path("file.lock"));
    FileLock lock(home.path("file"));
    QCOMPARE(lock.tryLock(), FileLock::Locked);
}

void FileLockTest::thatIsBeingWrittenIsKept()
{
    const TemporaryHome home;
    home.write("file.lock", "");
    FileLock lock(home.path("file"));
    QCOMPARE(lock.tryLock(), FileLock::Busy);
}

void FileLockTest::cannotBeMade_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("isDiskFull");
    QTest::newRow("no folder") << "missing/file" << false;
    QTest::newRow("name too long") << QString(253, u'a') << false;
    QTest::newRow("full disk") << "file" << true;
}

void FileLockTest::cannotBeMade()
{
    QFETCH(QString, name);
    QFETCH(bool, isDiskFull);
    const TemporaryHome home;
    // To this process the disk is full when files may not grow.
    ::signal(SIGXFSZ, SIG_IGN);
    rlimit before;
    QCOMPARE(::getrlimit(RLIMIT_FSIZE, &before), 0);
    const rlimit full = {0, before.rlim_max};
    FileLock lock(home.path(name));
    if (isDiskFull)
        QCOMPARE(::setrlimit(RLIMIT_FSIZE, &full), 0);
    const FileLock::Result result = lock.tryLock();
    QCOMPARE(::setrlimit(RLIMIT_FSIZE, &before), 0);
    QCOMPARE(result, FileLock::Impossible);
    QVERIFY(QDir(home.path()).isEmpty());
}

QTEST_GUILESS_MAIN(FileLockTest)
#include "FileLockTest.moc"
