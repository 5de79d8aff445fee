#include "browser/Downloads.h"

#include "tests/support/TemporaryHome.h"

#include <QTest>

class DownloadsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void safeName_data();
    void safeName();
    void freeName_data();
    void freeName();
    void folder();
    void nothingUnderWay();
};

void DownloadsTest::safeName_data()
{
    QTest::addColumn<QString>("suggested");
    QTest::addColumn<QString>("name");

    QTest::newRow("plain") << "a b.txt"
                           << "a b.txt";
    QTest::newRow("nothing") << ""
                             << "download";
    QTest::newRow("elsewhere") << "../../.profile"
                               << ".profile";
    QTest::newRow("absolute") << "/etc/passwd"
                              << "passwd";
    QTest::newRow("folder") << "a/"
                            << "download";
    QTest::newRow("this folder") << "."
                                 << "download";
    QTest::newRow("folder above") << "x/.."
                                  << "download";
}

void DownloadsTest::safeName()
{
    QFETCH(QString, suggested);
    QTEST(Downloads::safeName(suggested), "name");
}

void DownloadsTest::freeName_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QStringList>("taken");
    QTest::addColumn<QString>("free");

    QTest::newRow("free") << "a.txt" << QStringList() << "a.txt";
    QTest::newRow("taken") << "a.txt" << QStringList{"a.txt"} << "a (2).txt";
    QTest::newRow("taken twice") << "a.txt" << QStringList{"a.txt", "a (2).txt"} << "a (3).txt";
    QTest::newRow("several points") << "a.b.txt" << QStringList{"a.b.txt"} << "a.b (2).txt";
    QTest::newRow("compressed archive") << "a-1.0.tar.gz" << QStringList{"a-1.0.tar.gz"} << "a-1.0 (2).tar.gz";
    QTest::newRow("archive") << "a.tar.gz" << QStringList{"a.tar.gz"} << "a (2).tar.gz";
    QTest::newRow("no ending") << "a" << QStringList{"a"} << "a (2)";
    QTest::newRow("hidden") << ".profile" << QStringList{".profile"} << ".profile (2)";
}

void DownloadsTest::freeName()
{
    QFETCH(QString, name);
    QFETCH(QStringList, taken);
    QTEST(Downloads::freeName(name, [&](const QString &other) { return taken.contains(other); }), "free");
}

void DownloadsTest::folder()
{
    const TemporaryHome home;
    QCOMPARE(Downloads::folder(), home.path("Downloads"));
}

void DownloadsTest::nothingUnderWay()
{
    const Downloads downloads;
    QVERIFY(!downloads.anyUnderWay());
}

QTEST_GUILESS_MAIN(DownloadsTest)
#include "DownloadsTest.moc"
