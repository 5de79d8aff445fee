#include "core/Backups.h"
#include "tests/support/LoggedMessages.h"
#include "tests/support/TemporaryHome.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QThreadPool>
#include <QtTest>
#include <atomic>
#include <csignal>
#include <optional>
#include <sys/resource.h>
#include <sys/stat.h>

namespace
{
std::atomic<int> flushes;
}

// In place of the system's, for the whole program.
extern "C" int fsync(int /*descriptor*/)
{
    ++flushes;
    return 0;
}

// A dated copy a day, and which of them stay.
class BackupsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void makesACopy();
    void isFlushed();
    void onceADay();
    void isACopyAndNoSecondName();
    void copyOfWhatALinkLeadsTo();
    void emptyLeftoverIsReplaced();
    void unfinishedLeftoverIsReplaced();
    void listIsNewestFirst();
    void otherFilesAreNoBackups_data();
    void otherFilesAreNoBackups();
    void otherFilesStay();
    void fourteenDaysAndTwelveMonthsStay();
    void lastOfEachMonthStays_data();
    void lastOfEachMonthStays();
    void nothingGoesWhileThereAreFew();
    void leapDay();
    void clockThatJumpedBack();
    void clockThatWasAhead();
    void cannotBeMade_data();
    void cannotBeMade();
    void fullDisk();

private:
    static QString nameOf(const QDate &day)
    {
        return QStringLiteral("Bookmarks-%1.plist").arg(day.toString(Qt::ISODate));
    }
    void put(const QDate &day) const { _home->write(QStringLiteral("Backups/") + nameOf(day), "old"); }
    QStringList files() const
    {
        return QDir(_home->path(QStringLiteral("Backups")))
            .entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot, QDir::Name);
    }
    QByteArray contentsOf(const QDate &day) const { return _home->read(QStringLiteral("Backups/") + nameOf(day)); }
    QList<QDate> days() const
    {
        QList<QDate> days;
        for (const Backups::Backup &backup : _backups->list())
            days.append(backup.day);
        return days;
    }

    const QDate _today{2026, 11, 22};
    std::optional<TemporaryHome> _home;
    std::optional<Backups> _backups;
};

void BackupsTest::init()
{
    _home.emplace();
    _home->write(QStringLiteral("Bookmarks.plist"), "notes");
    _backups.emplace(_home->path(QStringLiteral("Bookmarks.plist")));
}

void BackupsTest::cleanup()
{
    QThreadPool::globalInstance()->waitForDone();
    _backups.reset();
    _home.reset();
}

void BackupsTest::makesACopy()
{
    QVERIFY(!_backups->hasBackupOf(_today));
    QCOMPARE(_backups->make(_today), QString());
    QVERIFY(_backups->hasBackupOf(_today));
    QCOMPARE(files(), QStringList(QStringLiteral("Bookmarks-2026-11-22.plist")));
    QCOMPARE(contentsOf(_today), QByteArray("notes"));
    QCOMPARE(_backups->folder(), _home->path(QStringLiteral("Backups")));
    QCOMPARE(_backups->list().at(0).path, _home->path(QStringLiteral("Backups/Bookmarks-2026-11-22.plist")));
}

void BackupsTest::isFlushed()
{
    flushes = 0;
    QCOMPARE(_backups->make(_today), QString());
    QTRY_COMPARE(flushes.load(), 2); // the file, and its folder
}

void BackupsTest::onceADay()
{
    QCOMPARE(_backups->make(_today), QString());
    _home->write(QStringLiteral("Bookmarks.plist"), "later");
    QCOMPARE(_backups->make(_today), QString());
    QCOMPARE(contentsOf(_today), QByteArray("notes"));
    QCOMPARE(_backups->make(_today.addDays(1)), QString());
    QCOMPARE(contentsOf(_today.addDays(1)), QByteArray("later"));
    QCOMPARE(contentsOf(_today), QByteArray("notes"));
}

void BackupsTest::isACopyAndNoSecondName()
{
    const QByteArray path = QFile::encodeName(_home->path(QStringLiteral("Bookmarks.plist")));
    QCOMPARE(::chmod(path, 0600), 0);
    QCOMPARE(_backups->make(_today), QString());
    _home->write(QStringLiteral("Bookmarks.plist"), "written in place");
    QCOMPARE(contentsOf(_today), QByteArray("notes"));
    struct stat status;
    QCOMPARE(::stat(QFile::encodeName(_backups->list().at(0).path), &status), 0);
    QCOMPARE(status.st_mode & 0777, 0600U);
    QCOMPARE(status.st_nlink, 1U);
}

void BackupsTest::copyOfWhatALinkLeadsTo()
{
    QVERIFY(QDir(_home->path()).mkdir(QStringLiteral("mine")));
    QVERIFY(QFile::link(_home->path(QStringLiteral("Bookmarks.plist")),
                        _home->path(QStringLiteral("mine/Bookmarks.plist"))));
    const Backups backups(_home->path(QStringLiteral("mine/Bookmarks.plist")));
    QCOMPARE(backups.make(_today), QString());
    QCOMPARE(_home->read(QStringLiteral("mine/Backups/Bookmarks-2026-11-22.plist")), QByteArray("notes"));
    QVERIFY(!QFileInfo(backups.list().at(0).path).isSymLink());
}

void BackupsTest::emptyLeftoverIsReplaced()
{
    _home->write(QStringLiteral("Backups/") + nameOf(_today), "");
    QVERIFY(!_backups->hasBackupOf(_today));
    QCOMPARE(_backups->make(_today), QString());
    QCOMPARE(contentsOf(_today), QByteArray("notes"));
}

void BackupsTest::unfinishedLeftoverIsReplaced()
{
    _home->write(QStringLiteral("Backups/Bookmarks-2026-11-22.plist.unfinished"), "no");
    QVERIFY(_backups->list().empty());
    QCOMPARE(_backups->make(_today), QString());
    QCOMPARE(files(), QStringList(QStringLiteral("Bookmarks-2026-11-22.plist")));
    QCOMPARE(contentsOf(_today), QByteArray("notes"));
}

void BackupsTest::listIsNewestFirst()
{
    QVERIFY(_backups->list().empty());
    for (const QDate day : {QDate(2026, 1, 31), QDate(2025, 12, 31), QDate(2026, 11, 2), QDate(2026, 2, 1)})
        put(day);
    QCOMPARE(days(), (QList<QDate>{QDate(2026, 11, 2), QDate(2026, 2, 1), QDate(2026, 1, 31), QDate(2025, 12, 31)}));
}

void BackupsTest::otherFilesAreNoBackups_data()
{
    QTest::addColumn<QString>("name");
    for (const char *name :
         {"Bookmarks-2026-02-29.plist", "Bookmarks-2026-13-01.plist", "Bookmarks-2026-1-1.plist",
          "Bookmarks-2026-01-01.plist~", "Bookmarks-2026-01-01.xml", "Bookmarks-2026-01-01", "Bookmarks.plist",
          "bookmarks-2026-01-01.plist", "Bookmarks-2026-01-01 2.plist", "MyBookmarks-2026-01-01.plist",
          "Bookmarks-2026-01-01.plist.unfinished", ".Bookmarks-2026-01-01.plist", "Bookmarks-20260101.plist"})
        QTest::newRow(name) << QString::fromLatin1(name);
}

void BackupsTest::otherFilesAreNoBackups()
{
    QFETCH(QString, name);
    _home->write(QStringLiteral("Backups/") + name, "mine");
    QVERIFY(_backups->list().empty());
}

void BackupsTest::otherFilesStay()
{
    const LoggedMessages messages;
    _home->write(QStringLiteral("Backups/Bookmarks-2020-01-01.plist~"), "mine");
    QVERIFY(QDir(_home->path()).mkpath(QStringLiteral("Backups/Bookmarks-2020-01-02.plist")));
    QVERIFY(QFile::link(_home->path(QStringLiteral("Bookmarks.plist")),
                        _home->path(QStringLiteral("Backups/Bookmarks-2020-01-03.plist"))));
    for (int days = 1; days <= 1000; ++days)
        put(_today.addDays(-days));
    QCOMPARE(_backups->make(_today), QString());
    QCOMPARE(files().size(), 14 + 12 + 3);
}

void BackupsTest::fourteenDaysAndTwelveMonthsStay()
{
    const LoggedMessages messages;
    for (int days = 1; days <= 1000; ++days)
        put(_today.addDays(-days));
    QCOMPARE(_backups->make(_today), QString());
    QList<QDate> expected;
    for (int days = 0; days < 14; ++days)
        expected.append(_today.addDays(-days));
    for (int months = 1; months <= 12; ++months) {
        const QDate month = _today.addMonths(-months);
        expected.append(QDate(month.year(), month.month(), month.daysInMonth()));
    }
    QCOMPARE(expected.constLast(), QDate(2025, 11, 30));
    QCOMPARE(days(), expected);
}

void BackupsTest::lastOfEachMonthStays_data()
{
    QTest::addColumn<QDate>("today");
    QTest::addColumn<int>("count");
    QTest::newRow("first of a month") << QDate(2026, 11, 1) << 25; // October's last is among the days
    QTest::newRow("fourteenth") << QDate(2026, 11, 14) << 26;
    QTest::newRow("last of a month") << QDate(2026, 10, 31) << 26;
    QTest::newRow("new year") << QDate(2027, 1, 1) << 25;
    QTest::newRow("leap day") << QDate(2028, 2, 29) << 26;
    QTest::newRow("after it") << QDate(2028, 3, 1) << 25;
}

// As over years of days, one after the other.
void BackupsTest::lastOfEachMonthStays()
{
    QFETCH(QDate, today);
    QFETCH(int, count);
    const LoggedMessages messages;
    for (QDate day = today.addDays(-500); day <= today; day = day.addDays(1))
        QCOMPARE(_backups->make(day), QString());
    const QList<QDate> staying = days();
    QCOMPARE(staying.size(), count);
    for (int days = 0; days < 14; ++days)
        QVERIFY(staying.contains(today.addDays(-days)));
    for (int months = 1; months <= 12; ++months) {
        const QDate month = QDate(today.year(), today.month(), 1).addMonths(-months);
        QVERIFY2(staying.contains(QDate(month.year(), month.month(), month.daysInMonth())),
                 qPrintable(month.toString()));
    }
}

void BackupsTest::nothingGoesWhileThereAreFew()
{
    // Of somebody who changes something once in a while.
    for (int weeks = 1; weeks <= 13; ++weeks)
        put(_today.addDays(-7 * weeks));
    QCOMPARE(_backups->make(_today), QString());
    QCOMPARE(files().size(), 14);
}

void BackupsTest::leapDay()
{
    QCOMPARE(_backups->make(QDate(2028, 2, 29)), QString());
    QCOMPARE(files(), QStringList(QStringLiteral("Bookmarks-2028-02-29.plist")));
    QCOMPARE(days(), QList<QDate>{QDate(2028, 2, 29)});
}

void BackupsTest::clockThatJumpedBack()
{
    QCOMPARE(_backups->make(_today), QString());
    _home->write(QStringLiteral("Bookmarks.plist"), "later");
    QCOMPARE(_backups->make(_today.addDays(-1)), QString());
    QCOMPARE(_backups->make(_today), QString());
    QCOMPARE(contentsOf(_today), QByteArray("notes")); // what is there is not written over
    QCOMPARE(contentsOf(_today.addDays(-1)), QByteArray("later"));
}

void BackupsTest::clockThatWasAhead()
{
    const LoggedMessages messages;
    for (int days = 0; days < 400; ++days)
        put(_today.addYears(4).addDays(-days));
    for (int days = 1; days < 400; ++days)
        put(_today.addDays(-days));
    QCOMPARE(_backups->make(_today), QString());
    const QList<QDate> staying = days();
    for (int days = 0; days < 14; ++days)
        QVERIFY(staying.contains(_today.addDays(-days)));
    QCOMPARE(staying.size(), 2 * 26);
}

void BackupsTest::cannotBeMade_data()
{
    QTest::addColumn<QString>("inTheWay");
    QTest::newRow("no file") << QString();
    QTest::newRow("folder is a file") << QStringLiteral("Backups");
    QTest::newRow("a folder of that name") << QStringLiteral("Backups/Bookmarks-2026-11-22.plist/folder");
}

void BackupsTest::cannotBeMade()
{
    QFETCH(QString, inTheWay);
    if (inTheWay.isNull())
        QVERIFY(QFile::remove(_home->path(QStringLiteral("Bookmarks.plist"))));
    else
        _home->write(inTheWay, "mine");
    QVERIFY(!_backups->make(_today).isNull());
    QVERIFY(_backups->list().empty());
    if (!inTheWay.isNull())
        QCOMPARE(_home->read(inTheWay), QByteArray("mine"));
    QVERIFY(!files().contains(QStringLiteral("Bookmarks-2026-11-22.plist.unfinished")));
}

void BackupsTest::fullDisk()
{
    put(_today.addDays(-1));
    ::signal(SIGXFSZ, SIG_IGN);
    rlimit before;
    QCOMPARE(::getrlimit(RLIMIT_FSIZE, &before), 0);
    const rlimit full = {2, before.rlim_max}; // to this process, the disk is full when files may not grow
    QCOMPARE(::setrlimit(RLIMIT_FSIZE, &full), 0);
    const QString reason = _backups->make(_today);
    QCOMPARE(::setrlimit(RLIMIT_FSIZE, &before), 0);
    QVERIFY(!reason.isNull());
    QCOMPARE(files(), QStringList(nameOf(_today.addDays(-1))));
    QCOMPARE(_backups->make(_today), QString());
}

QTEST_GUILESS_MAIN(BackupsTest)
#include "BackupsTest.moc"
