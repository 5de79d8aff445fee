#include "model/FileIcons.h"
#include "platform/widgets/Image.h"
#include "tests/model/ModelTestSupport.h"

#include <QDir>
#include <QtTest>

using namespace std::chrono_literals;

class FileIconsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { _home.emplace(); }
    void cleanup() { _home.reset(); }

    void keptForAWhile();
    void lookedForAgain();
    void eachPathHasItsOwn();
    void newImageEachTime();
    void emptyPath();

private:
    QString path(const QString &name) const { return _home->path(name); }
    void makeFile(const QString &name) const { _home->write(name, "text"); }
    // Where the file was there is a folder, which has another icon.
    void makeFolderOfIt(const QString &name) const
    {
        QVERIFY(QFile::remove(path(name)));
        QVERIFY(QDir().mkpath(path(name)));
    }

    std::optional<FreshHome> _home;
};

void FileIconsTest::keptForAWhile()
{
    FileIcons icons(1h);
    makeFile("a");
    const QImage before = pictureOf(icons.iconForFile(path("a")));
    makeFolderOfIt("a");
    QCOMPARE(pictureOf(icons.iconForFile(path("a"))), before);
}

void FileIconsTest::lookedForAgain()
{
    FileIcons icons(0ms);
    makeFile("a");
    const QImage before = pictureOf(icons.iconForFile(path("a")));
    makeFolderOfIt("a");
    QVERIFY(pictureOf(icons.iconForFile(path("a"))) != before);
}

void FileIconsTest::eachPathHasItsOwn()
{
    FileIcons icons(1h);
    makeFile("a");
    makeFile("folder/inside");
    const QImage file = pictureOf(icons.iconForFile(path("a")));
    const QImage folder = pictureOf(icons.iconForFile(path("folder")));
    QVERIFY(file != folder);
    QCOMPARE(pictureOf(icons.iconForFile(path("a"))), file);
    QCOMPARE(pictureOf(icons.iconForFile(path("folder"))), folder);
}

void FileIconsTest::newImageEachTime()
{
    FileIcons icons(1h);
    makeFile("a");
    const auto image = icons.iconForFile(path("a"));
    const QSizeF size = image->size();
    image->setScalesWhenResized(true);
    image->setSize(QSizeF(7, 7));
    const auto again = icons.iconForFile(path("a"));
    QVERIFY(again != image);
    QCOMPARE(again->size(), size);
    QVERIFY(!again->scalesWhenResized());
}

void FileIconsTest::emptyPath()
{
    FileIcons icons(1h);
    QVERIFY(!icons.iconForFile(QString()));
    QVERIFY(!icons.iconForFile(QString("")));
    QVERIFY(!icons.iconForFile(QString()));
}

QTEST_MAIN(FileIconsTest)
#include "FileIconsTest.moc"
