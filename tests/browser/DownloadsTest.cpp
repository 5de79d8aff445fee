#include "browser/Downloads.h"

#include "tests/support/TemporaryHome.h"

#include <QTest>

class DownloadsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void freeName_data();
    void freeName();
    void folder();
    void nothingUnderWay();
};

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
