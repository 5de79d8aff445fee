#include "tests/model/ModelTestSupport.h"

#include "core/settings/WayfoldToolkit.h"
#include "model/WayfoldBookmarkAutoFolder.h"

#include <QtTest>

class WayfoldAutoFolderTest : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<FreshHome> _home;

private Q_SLOTS:
    void init();
    void cleanup();

    void newFolder();
    void ensureUpToDateCollectsOnce();
    void ensureUpToDateKeepsTheAnswer();
    void changedSearchStringCollectsOnlyWhenLoaded();
    void refreshFromBookmarkRoot();
    void searchesForTheSearchString();
    void takesNoDropsAndIsNotSaved();
    void copyIsUnloadedAndKeepsTheContents();
    void reloadingFromADictionaryUnloads();
    void icons();
    void iconsChangeWithTheContents();
};

void WayfoldAutoFolderTest::init()
{
    _home = std::make_unique<FreshHome>();
}

void WayfoldAutoFolderTest::cleanup()
{
    _home.reset();
}

namespace
{
class CountingFolder : public WayfoldAutoFolder
{
public:
    int refreshCount = 0;
    bool answer = true;

    bool refresh() override
    {
        ++refreshCount;
        return answer;
    }
};
} // namespace

void WayfoldAutoFolderTest::newFolder()
{
    const auto smart = WayfoldAutoFolder::bookmarkWithTitle("Smart");
    QCOMPARE(smart->title(), "Smart");
    QVERIFY(!smart->isLoaded());
    QCOMPARE(smart->childCount(), 0u);
    QVERIFY(smart->isFolder());
}

void WayfoldAutoFolderTest::ensureUpToDateCollectsOnce()
{
    const auto smart = std::make_shared<CountingFolder>();
    smart->ensureUpToDate();
    QCOMPARE(smart->refreshCount, 1);
    QVERIFY(smart->isLoaded());
    smart->ensureUpToDate();
    QCOMPARE(smart->refreshCount, 1);
    // Asked for, it collects again all the same, and stays loaded.
    makeFolder("Home", {smart})->refresh();
    QCOMPARE(smart->refreshCount, 2);
    QVERIFY(smart->isLoaded());
}

void WayfoldAutoFolderTest::ensureUpToDateKeepsTheAnswer()
{
    const auto smart = std::make_shared<CountingFolder>();
    smart->answer = false;
    smart->ensureUpToDate();
    QVERIFY(!smart->isLoaded());
    smart->ensureUpToDate();
    QCOMPARE(smart->refreshCount, 2);
    // A refresh by itself does not load it.
    smart->answer = true;
    smart->refresh();
    QVERIFY(!smart->isLoaded());
}

void WayfoldAutoFolderTest::changedSearchStringCollectsOnlyWhenLoaded()
{
    const auto smart = std::make_shared<CountingFolder>();
    smart->setFilterString("a");
    QCOMPARE(smart->refreshCount, 0);
    QCOMPARE(smart->filterString(), "a");
    smart->ensureUpToDate();
    QCOMPARE(smart->refreshCount, 1);
    smart->setFilterString("b");
    QCOMPARE(smart->refreshCount, 2);
    QCOMPARE(smart->filterString(), "b");
}

void WayfoldAutoFolderTest::refreshFromBookmarkRoot()
{
    const auto first = makeLink("news one");
    const auto root = makeFolder(
        "Root", {makeFolder("z", {first}), makeFolder("News folder", {makeLink("other")}), makeLink("a news")});
    const auto smart = WayfoldAutoFolder::bookmarkWithTitle("news");
    smart->addChild(makeLink("Old"));
    smart->refreshFromBookmarkRoot(root);
    QCOMPARE(childTitles(*smart), (QStringList{"news one", "a news"})); // as found, unsorted, no folders
    QVERIFY(smart->childAtIndex(0) != first);
    QCOMPARE(smart->childAtIndex(0)->uuid(), first->uuid());
    QCOMPARE(smart->childAtIndex(0)->parent(), smart);
    smart->childAtIndex(0)->setTitle("Changed");
    QCOMPARE(first->title(), "news one");
    smart->refreshFromBookmarkRoot(nullptr);
    QCOMPARE(smart->childCount(), 0u);
}

void WayfoldAutoFolderTest::searchesForTheSearchString()
{
    const auto root = makeFolder("Root", {makeLink("by title"), makeLink("by search")});
    const auto smart = WayfoldAutoFolder::bookmarkWithTitle("title");
    smart->setFilterString("search");
    smart->refreshFromBookmarkRoot(root);
    QCOMPARE(childTitles(*smart), QStringList{"by search"});
}

void WayfoldAutoFolderTest::takesNoDropsAndIsNotSaved()
{
    const auto smart = WayfoldAutoFolder::bookmarkWithTitle("Smart");
    const auto inside = makeLink("Inside");
    smart->addChild(inside);
    QVERIFY(!smart->acceptsDroppedItems());
    QVERIFY(!smart->canBePersistent());
    QVERIFY(!inside->acceptsDroppedItems());
    QVERIFY(!inside->canBePersistent());
}

void WayfoldAutoFolderTest::copyIsUnloadedAndKeepsTheContents()
{
    const auto smart = WayfoldAutoFolder::bookmarkWithTitle("Smart");
    smart->ensureUpToDate();
    QVERIFY(smart->isLoaded());
    smart->addChild(makeLink("A"));
    const auto copy = std::dynamic_pointer_cast<WayfoldAutoFolder>(smart->copy());
    QVERIFY(copy);
    QVERIFY(!copy->isLoaded());
    QCOMPARE(childTitles(*copy), QStringList{"A"});
    QVERIFY(copy->childAtIndex(0) != smart->childAtIndex(0));
}

void WayfoldAutoFolderTest::reloadingFromADictionaryUnloads()
{
    const auto smart = WayfoldAutoFolder::bookmarkWithTitle("Smart");
    smart->ensureUpToDate();
    smart->loadFromDictionary({{"Title", "Other"}, {"WebBookmarkType", "WebBookmarkTypeList"}});
    QVERIFY(!smart->isLoaded());
    QCOMPARE(smart->title(), "Other");
    QCOMPARE(WayfoldAutoFolder::bookmarkFromDictionary({{"Title", "Other"}})->filterString(), "Other");
}

void WayfoldAutoFolderTest::icons()
{
    const auto a = WayfoldAutoFolder::bookmarkWithTitle("A");
    WayfoldDefaults::sharedInstance().setShowBookmarkIcons(false);
    QVERIFY(!a->imageForCellSize(QSizeF(16, 16)));
    WayfoldDefaults::sharedInstance().setShowBookmarkIcons(true);
    const auto empty = a->imageForCellSize(QSizeF(32, 32));
    QVERIFY(empty);
    QCOMPARE(pictureOf(empty), pictureOf(WayfoldToolkit::loadImageNamed("WayfoldAutoFolderEmptyIcon16")));
    QCOMPARE(a->imageForCellSize(QSizeF(32, 32)), empty);
    const auto largeEmpty = a->imageForCellSize(QSizeF(33, 33));
    QCOMPARE(pictureOf(largeEmpty), pictureOf(WayfoldToolkit::loadImageNamed("WayfoldAutoFolderEmptyIcon")));

    a->addChild(makeLink("L"));
    const auto small = a->imageForCellSize(QSizeF(32, 32));
    QCOMPARE(pictureOf(small), pictureOf(WayfoldToolkit::loadImageNamed("WayfoldAutoFolderIcon16")));
    QCOMPARE(a->imageForCellSize(QSizeF(32, 32)), small);
    const auto large = a->imageForCellSize(QSizeF(33, 33));
    QCOMPARE(pictureOf(large), pictureOf(WayfoldToolkit::loadImageNamed("WayfoldAutoFolderIcon")));
    for (const auto &image : {empty, largeEmpty, small, large})
        QCOMPARE(image->cacheMode(), Image::NSImageCacheNever);
    // Another smart folder that was never shown loads it anew, for all; while icons are off there is none at all.
    const auto b = std::make_shared<WayfoldBookmarkAutoFolder>();
    b->addChild(makeLink("L"));
    const auto anew = b->imageForCellSize(QSizeF(33, 33));
    QVERIFY(anew != large);
    QCOMPARE(a->imageForCellSize(QSizeF(33, 33)), anew);
    WayfoldDefaults::sharedInstance().setShowBookmarkIcons(false);
    QVERIFY(!a->imageForCellSize(QSizeF(33, 33)));
}

void WayfoldAutoFolderTest::iconsChangeWithTheContents()
{
    const auto smart = WayfoldAutoFolder::bookmarkWithTitle("A");
    const QSizeF cell(16, 16);
    const auto empty = smart->imageForCellSize(cell);
    smart->addChild(makeLink("L"));
    const auto filled = smart->imageForCellSize(cell); // never loaded before, so loaded though the size is the same
    QVERIFY(filled);
    QVERIFY(filled != empty);
    smart->removeAllChildren();
    QCOMPARE(smart->imageForCellSize(cell), empty);
    // A plain folder's image is not theirs.
    QVERIFY(makeFolder("Plain")->imageForCellSize(cell) != empty);
}

QTEST_MAIN(WayfoldAutoFolderTest)
#include "WayfoldAutoFolderTest.moc"
