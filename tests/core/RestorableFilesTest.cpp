#include "core/RestorableFiles.h"

#include "tests/support/TemporaryHome.h"

#include <QFileInfo>
#include <QtTest>

class RestorableFilesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void nothingIsThereAtFirst();
    void keptCopiesComeNewestFirst();
    void backupsStandAtTheBeginningOfTheirDays();
    void otherFilesAreNone_data();
    void otherFilesAreNone();

private:
    QStringList names() const
    {
        QStringList names;
        for (const RestorableFiles::File &file : RestorableFiles::ofItemFile(_home.path(_file)))
            names.append(QFileInfo(file.path).fileName());
        return names;
    }

    TemporaryHome _home;
    const QString _file = QStringLiteral("Wayfold/Bookmarks.plist");
};

void RestorableFilesTest::nothingIsThereAtFirst()
{
    QVERIFY(names().isEmpty());
    _home.write(_file, "x");
    QVERIFY(names().isEmpty());
}

void RestorableFilesTest::keptCopiesComeNewestFirst()
{
    for (const char *time : {"20260131-235959", "20260201-000001", "20260201-000001-2", "20251231-120000"})
        _home.write(_file + QStringLiteral(".kept-") + QLatin1String(time), "x");
    const QString kept = QStringLiteral("Bookmarks.plist.kept-");
    QCOMPARE(names(),
             QStringList({kept + QStringLiteral("20260201-000001-2"), kept + QStringLiteral("20260201-000001"),
                          kept + QStringLiteral("20260131-235959"), kept + QStringLiteral("20251231-120000")}));
    const RestorableFiles::File oldest = RestorableFiles::ofItemFile(_home.path(_file)).back();
    QCOMPARE(oldest.time, QDateTime(QDate(2025, 12, 31), QTime(12, 0)));
    QVERIFY(!oldest.isBackup);
    QCOMPARE(oldest.path, _home.path(_file + QStringLiteral(".kept-20251231-120000")));
}

// A copy that was kept on that day was kept later.
void RestorableFilesTest::backupsStandAtTheBeginningOfTheirDays()
{
    const TemporaryHome home;
    home.write(_file + QStringLiteral(".kept-20260201-000001"), "x");
    home.write(_file + QStringLiteral(".kept-20260131-235959"), "x");
    home.write(QStringLiteral("Wayfold/Backups/Bookmarks-2026-02-01.plist"), "x");
    home.write(QStringLiteral("Wayfold/Backups/Bookmarks-2026-01-31.plist"), "x");
    const std::vector<RestorableFiles::File> files = RestorableFiles::ofItemFile(home.path(_file));
    QCOMPARE(files.size(), 4U);
    QCOMPARE(files[1].path, home.path(QStringLiteral("Wayfold/Backups/Bookmarks-2026-02-01.plist")));
    QCOMPARE(files[1].time.date(), QDate(2026, 2, 1));
    QCOMPARE(files[3].path, home.path(QStringLiteral("Wayfold/Backups/Bookmarks-2026-01-31.plist")));
    for (std::size_t i = 0; i < files.size(); ++i)
        QCOMPARE(files[i].isBackup, i % 2 == 1);
}

void RestorableFilesTest::otherFilesAreNone_data()
{
    QTest::addColumn<QString>("name");
    for (const char *name : {"Bookmarks.plist.kept-", "Bookmarks.plist.kept-20261399-000000",
                             "Bookmarks.plist.kept-20260201-000001-x", "Bookmarks.plist.kept-20260201-000001.bak",
                             "Other.plist.kept-20260201-000001", "Bookmarks.plist-20260201-000001"})
        QTest::newRow(name) << QString::fromLatin1(name);
}

void RestorableFilesTest::otherFilesAreNone()
{
    QFETCH(QString, name);
    const TemporaryHome home;
    home.write(QStringLiteral("Wayfold/") + name, "x");
    QVERIFY(RestorableFiles::ofItemFile(home.path(_file)).empty());
}

QTEST_GUILESS_MAIN(RestorableFilesTest)
#include "RestorableFilesTest.moc"
