#include "tests/model/ModelTestSupport.h"

#include "platform/widgets/Workspace.h"

#include <QtTest>

class WayfoldBookmarkFileTest : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<FreshHome> _home;

private Q_SLOTS:
    void init();
    void cleanup();

    void makers();
    void tooltipIsThePath_data();
    void tooltipIsThePath();
    void image();
    void editViaDialog();
    void dictionary();
};

void WayfoldBookmarkFileTest::init()
{
    _home = std::make_unique<FreshHome>();
}

void WayfoldBookmarkFileTest::cleanup()
{
    _home.reset();
}

void WayfoldBookmarkFileTest::makers()
{
    QCOMPARE(WayfoldBookmarkFile::bookmarkWithTitle("T")->title(), "T");
    const auto made = WayfoldBookmarkFile::bookmarkWithTitleAndURL("T", Url::fileURLWithPath("/tmp/a b.txt"));
    QCOMPARE(made->valueAsString(), "file:///tmp/a%20b.txt");
}

void WayfoldBookmarkFileTest::tooltipIsThePath_data()
{
    QTest::addColumn<Url>("url");
    QTest::addColumn<QString>("path");
    QTest::newRow("plain") << Url::fileURLWithPath("/tmp/a.txt") << "/tmp/a.txt";
    QTest::newRow("blank") << Url::fileURLWithPath("/tmp/a b.txt") << "/tmp/a b.txt";
    QTest::newRow("not ASCII") << Url::fileURLWithPath(QString::fromUtf8("/tmp/ä.txt"))
                               << QString::fromUtf8("/tmp/ä.txt");
    QTest::newRow("folder") << Url::URLWithString("file:///home/ann/dir/") << "/home/ann/dir";
    QTest::newRow("root") << Url::URLWithString("file:///") << "/";
    QTest::newRow("none") << Url() << QString();
}

void WayfoldBookmarkFileTest::tooltipIsThePath()
{
    QFETCH(Url, url);
    QTEST(WayfoldBookmarkFile::bookmarkWithTitleAndURL("T", url)->tooltipText(), "path");
}

void WayfoldBookmarkFileTest::image()
{
    _home->write("a.txt", "text");
    const QString path = _home->path("a.txt");
    const auto made = WayfoldBookmarkFile::bookmarkWithTitleAndURL("T", Url::fileURLWithPath(path));
    const auto image = made->imageForCellSize(QSizeF(48, 48));
    QVERIFY(image);
    QCOMPARE(image->size(), Workspace::iconForFile(path)->size()); // the icon's own, whatever the cell's
    QVERIFY(!image->scalesWhenResized());
    // Whatever size a list has drawn it at.
    image->setScalesWhenResized(true);
    image->setSize(QSizeF(48, 48));
    QCOMPARE(made->imageForCellSize(QSizeF(48, 48))->size(), Workspace::iconForFile(path)->size());
    WayfoldDefaults::sharedInstance().setShowBookmarkIcons(false);
    QVERIFY(!made->imageForCellSize(QSizeF(48, 48)));
    WayfoldDefaults::sharedInstance().setShowBookmarkIcons(true);
    QVERIFY(!WayfoldBookmarkFile::bookmarkWithTitle("T")->imageForCellSize(QSizeF(48, 48)));
}

void WayfoldBookmarkFileTest::editViaDialog()
{
    const auto made = WayfoldBookmarkFile::bookmarkWithTitle("T");
    QVERIFY(!made->editViaDialog());
    RecordingDialogs dialogs;
    QVERIFY(made->editViaDialog());
    QCOMPARE(dialogs.opened, QStringList{"editFile"});
    QCOMPARE(dialogs.item, made);

    const KDRBookmarkPtr before = made->copy();
    dialogs.accepts = false;
    QVERIFY(!made->editViaDialog());
    QVERIFY(made->isEqual(before));
}

void WayfoldBookmarkFileTest::dictionary()
{
    const auto made = WayfoldBookmarkFile::bookmarkWithTitleAndURL("T", Url::fileURLWithPath("/tmp/a.txt"));
    const QVariantMap dictionary = made->createDictionary(true);
    QCOMPARE(dictionary["WebBookmarkType"], QVariant("WebBookmarkTypeLeaf"));
    QCOMPARE(dictionary["URLString"], QVariant("file:///tmp/a.txt"));
    QVERIFY(made->isEqual(WayfoldBookmarkURL::bookmarkFromDictionary(dictionary)));
}

QTEST_MAIN(WayfoldBookmarkFileTest)
#include "WayfoldBookmarkFileTest.moc"
