#include "lists/StoreTrees.h"

#include "core/settings/WayfoldToolkit.h"
#include "model/WayfoldHistoryAutoFolder.h"
#include "model/history/HistoryItems.h"
#include "model/history/HistoryRecords.h"
#include "tests/lists/ListStage.h"
#include "tests/support/BrowserFiles.h"

// The smart folders of a site, over the browser's two files.
class StoreTreesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void bothFilesOfASite();
    void changedFiles();
    void unchangedBookmarksAreCollectedAgain();
    void images();
    void copyOfRelatedHistory();
    void relatedHistoryHoldsOnlyWhatItShows();
    void withoutFiles();

private:
    // A site's folder with its two smart folders, looked into.
    WayfoldBookmarkFolderPtr site(const QString &name) const
    {
        WayfoldBookmarkFolderPtr folder = ListStage::folder(name);
        folder->addAutoFolders();
        for (const KDRBookmarkPtr &smart : folder->children())
            smart->ensureUpToDate();
        return folder;
    }
    static QStringList outline(const KDRBookmarkPtr &item)
    {
        QStringList titles;
        for (const KDRBookmarkPtr &child : WayfoldBookmarkFolder::fromItem(item)->children())
            titles.append(child->isFolder() ? child->title() + "(" + outline(child).join(", ") + ")" : child->title());
        return titles;
    }

    std::optional<ListStage> _stage;
    StoreTrees _trees;
};

void StoreTreesTest::init()
{
    _stage.emplace();
    SmartFolderSources::setCurrent(&_trees);
    const BrowserFiles files(_stage->home);
    files.writeBookmarks({BrowserFiles::folder("Bar", "BAR",
                                               {BrowserFiles::link("Zebra", "http://www.a.example/z", "Z"),
                                                BrowserFiles::link("Other", "http://b.example/", "O")}),
                          BrowserFiles::link("Ant at a.example", "http://c.example/", "A")});
    files.writeHistory({BrowserFiles::visit("Third", "http://a.example/3", BrowserFiles::noonOf(3)),
                        BrowserFiles::visit("Other", "http://b.example/", BrowserFiles::noonOf(3)),
                        BrowserFiles::visit("On a.example", "http://c.example/", BrowserFiles::noonOf(2)),
                        BrowserFiles::visit("Second", "http://a.example/2", BrowserFiles::noonOf(2))});
}

void StoreTreesTest::cleanup()
{
    SmartFolderSources::setCurrent(nullptr);
    _stage.reset();
}

void StoreTreesTest::bothFilesOfASite()
{
    ListStage::store();
    const WayfoldBookmarkFolderPtr folder = site("a.example");
    QCOMPARE(outline(folder->childAtIndex(0)), (QStringList{"Ant at a.example", "Zebra"}));
    QCOMPARE(outline(folder->childAtIndex(1)), (QStringList{"3 Jan 2001(Third)", "2 Jan 2001(On a.example, Second)"}));
    QCOMPARE(outline(site("nowhere")), (QStringList{"Related Bookmarks()", "Related History()"}));
}

// As after a page visit: the bookmarks are those of before, and what was taken out of the folder is there again.
void StoreTreesTest::unchangedBookmarksAreCollectedAgain()
{
    ListStage::store();
    const WayfoldBookmarkFolderPtr folder = site("a.example");
    const auto related = WayfoldBookmarkFolder::fromItem(folder->childAtIndex(0));
    related->removeChild(related->childAtIndex(0));
    related->childAtIndex(0)->setTitle("Changed by somebody");
    QVERIFY(related->refresh());
    QCOMPARE(outline(related), (QStringList{"Ant at a.example", "Zebra"}));
    related->setFilterString("b.example");
    QCOMPARE(outline(related), QStringList{"Other"});
    related->setFilterString("a.example");
    QCOMPARE(outline(related), (QStringList{"Ant at a.example", "Zebra"}));
}

void StoreTreesTest::changedFiles()
{
    ListStage::store();
    const WayfoldBookmarkFolderPtr folder = site("a.example");
    const BrowserFiles files(_stage->home);
    files.writeBookmarks({BrowserFiles::link("New", "http://a.example/", "N")});
    files.writeHistory({BrowserFiles::visit("Fourth", "http://a.example/4", BrowserFiles::noonOf(4)),
                        BrowserFiles::visit("Third", "http://a.example/3", BrowserFiles::noonOf(3))});
    ListStage::store().tagSafariFiles();
    folder->refresh();
    QCOMPARE(outline(folder->childAtIndex(0)), QStringList{"New"});
    QCOMPARE(outline(folder->childAtIndex(1)), (QStringList{"4 Jan 2001(Fourth)", "3 Jan 2001(Third)"}));
    folder->childAtIndex(1)->ensureUpToDate();
    WayfoldBookmarkFolder::fromItem(folder->childAtIndex(1))->setFilterString("fourth");
    QCOMPARE(outline(folder->childAtIndex(1)), QStringList{"4 Jan 2001(Fourth)"});
}

void StoreTreesTest::images()
{
    ListStage::store();
    const auto imageName = [](const KDRBookmarkPtr &item) {
        const auto image = item->imageForCellSize(QSizeF(16, 16));
        const auto looksLike = [&](const char *name) {
            const auto named = WayfoldToolkit::loadImageNamed(QString::fromLatin1(name));
            return image && image->icon().pixmap(16).toImage() == named->icon().pixmap(16).toImage();
        };
        return looksLike("WayfoldAutoFolderIcon16") ? "full" : looksLike("WayfoldAutoFolderEmptyIcon16") ? "empty" : "";
    };
    const WayfoldBookmarkFolderPtr known = site("a.example");
    const WayfoldBookmarkFolderPtr unknown = site("nowhere");
    for (unsigned i = 0; i < 2; ++i) {
        QCOMPARE(imageName(known->childAtIndex(i)), "full");
        QCOMPARE(imageName(unknown->childAtIndex(i)), "empty");
    }
}

void StoreTreesTest::relatedHistoryHoldsOnlyWhatItShows()
{
    ListStage::store();
    const WayfoldBookmarkFolderPtr folder = site("a.example");
    const KDRBookmarkPtr related = folder->childAtIndex(1);
    const auto textsOf = [] {
        return HistoryItems::ofFolder(*ListStage::store().historyBookmarkRoot())->records().sharedTexts();
    };
    const std::weak_ptr<const void> former = textsOf();
    QVERIFY(!former.expired());
    const BrowserFiles files(_stage->home);
    files.writeHistory({});
    ListStage::store().tagSafariFiles();
    QVERIFY(former.expired());
    QCOMPARE(outline(related), (QStringList{"3 Jan 2001(Third)", "2 Jan 2001(On a.example, Second)"}));
    related->refresh();
    QCOMPARE(outline(related), QStringList());
}

void StoreTreesTest::copyOfRelatedHistory()
{
    ListStage::store();
    const KDRBookmarkPtr history = site("a.example")->childAtIndex(1);
    const auto copy = std::dynamic_pointer_cast<WayfoldHistoryAutoFolder>(history->copy());
    QVERIFY(copy);
    QVERIFY(!copy->isLoaded());
    QCOMPARE(outline(copy), outline(history));
    const auto day = WayfoldBookmarkFolder::fromItem(WayfoldBookmarkFolder::fromItem(history)->childAtIndex(1));
    const auto dayOfCopy = WayfoldBookmarkFolder::fromItem(copy->childAtIndex(1));
    QVERIFY(dayOfCopy != day);
    QCOMPARE(dayOfCopy->parent(), copy);
    QVERIFY(dayOfCopy->childAtIndex(0) != day->childAtIndex(0));
    QCOMPARE(dayOfCopy->childAtIndex(0)->uuid(), day->childAtIndex(0)->uuid());
    QCOMPARE(dayOfCopy->childAtIndex(0)->parent(), dayOfCopy);
}

void StoreTreesTest::withoutFiles()
{
    QVERIFY(QFile::remove(_stage->home.path("Library/Safari/Bookmarks.plist")));
    QVERIFY(QFile::remove(_stage->home.path("Library/Safari/History.plist")));
    QVERIFY(!ListStage::store().historyBookmarkRoot());
    QCOMPARE(outline(site("a.example")), (QStringList{"Related Bookmarks()", "Related History()"}));
}

QTEST_MAIN(StoreTreesTest)
#include "StoreTreesTest.moc"
