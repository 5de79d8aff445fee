#include "model/history/HistoryItems.h"
#include "model/TextSearch.h"
#include "model/UUIDSearch.h"
#include "model/history/HistoryRecords.h"
#include "tests/model/ModelTestSupport.h"

#include <QtTest>

namespace
{
using Numbers = std::vector<unsigned>;

std::shared_ptr<HistoryRecords> someRecords()
{
    auto records = std::make_shared<HistoryRecords>();
    records->append("Alpha", "http://www.a.example/1", "100");
    records->append("Beta", "http://www.b.example/", "200");
    records->append("Alpha again", "http://www.a.example/1", "300");
    records->append("Gamma", "http://alpha.c.example/", "400");
    return records;
}

WayfoldBookmarkFolderPtr folderOf(const std::shared_ptr<HistoryItems> &items)
{
    const WayfoldBookmarkFolderPtr folder = makeFolder("History");
    folder->setLazyChildren(items);
    return folder;
}
} // namespace

class HistoryItemsTest : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<FreshHome> _home;

private Q_SLOTS:
    void init() { _home = std::make_unique<FreshHome>(); }
    void cleanup() { _home.reset(); }

    void allRecords();
    void someOfTheRecords();
    void oneItemEach();
    void itemHasWhatItsRecordSays();
    void parentIsTheFolderThatAsks();
    void whoHasAParentKeepsIt();
    void matches();
    void wanted();
    void findByUUID();
    void copiesAreItemsOfTheirOwn();
    void copiesOfMatches();
    void ofFolder();
    void outliveTheFolder();
    void noRecords();
};

void HistoryItemsTest::allRecords()
{
    HistoryItems items(someRecords());
    QCOMPARE(items.count(), 4U);
    QVERIFY(!items.isEmpty());
    for (unsigned i = 0; i < items.count(); ++i) {
        QVERIFY(!items.isFolder(i));
        QCOMPARE(items.recordNumber(i), i);
    }
    QCOMPARE(items.item(1)->title(), QString("Beta"));
}

void HistoryItemsTest::someOfTheRecords()
{
    HistoryItems items(someRecords(), {3, 1});
    QCOMPARE(items.count(), 2U);
    QCOMPARE(items.recordNumber(0), 3U);
    QCOMPARE(items.item(0)->title(), QString("Gamma"));
    QCOMPARE(items.item(1)->title(), QString("Beta"));
}

void HistoryItemsTest::oneItemEach()
{
    HistoryItems items(someRecords());
    const KDRBookmarkPtr item = items.item(2);
    QVERIFY(!item->parent());
    const WayfoldBookmarkFolderPtr folder = makeFolder("F");
    QCOMPARE(items.makeChild(2, folder), item);
    QCOMPARE(items.item(2), item);
    QVERIFY(items.item(0) != item); // the same address is another entry
    QCOMPARE(items.item(0)->uuid(), item->uuid());
}

void HistoryItemsTest::itemHasWhatItsRecordSays()
{
    HistoryItems items(someRecords());
    const auto entry = std::dynamic_pointer_cast<WayfoldHistoryURL>(items.item(3));
    QVERIFY(entry);
    QCOMPARE(entry->type(), KDRBookmark::HistoryEntryType);
    QCOMPARE(entry->title(), QString("Gamma"));
    QCOMPARE(entry->valueAsString(), QString("http://alpha.c.example/"));
    QCOMPARE(entry->uuid(), QString("http://alpha.c.example/"));
    QCOMPARE(entry->trackedHostName(), QString("c.example"));
    QCOMPARE(entry->timestampInMilliseconds(), items.records().visited(3));
    QVERIFY(entry->createDictionary(false).isEmpty());
}

void HistoryItemsTest::parentIsTheFolderThatAsks()
{
    const auto items = std::make_shared<HistoryItems>(someRecords());
    const WayfoldBookmarkFolderPtr folder = folderOf(items);
    QCOMPARE(folder->childAtIndex(1)->parent(), folder);
    QCOMPARE(folder->childAtIndex(1), items->item(1));
    QCOMPARE(folder->childAtIndex(1)->childIsAtIndex(), 1);
}

void HistoryItemsTest::whoHasAParentKeepsIt()
{
    const auto items = std::make_shared<HistoryItems>(someRecords());
    const WayfoldBookmarkFolderPtr folder = folderOf(items);
    const WayfoldBookmarkFolderPtr group = makeFolder("Group", {items->item(1)});
    QCOMPARE(folder->childAtIndex(1)->parent(), group);
    QCOMPARE(folder->childAtIndex(0)->parent(), folder);
}

void HistoryItemsTest::matches()
{
    HistoryItems all(someRecords());
    QCOMPARE(all.indexesOfMatches(TextSearch("ALPHA")), (Numbers{0, 2, 3}));
    QCOMPARE(all.indexesOfMatches(TextSearch("delta")), Numbers());
    QCOMPARE(all.indexesOfMatches(TextSearch("")), Numbers());
    HistoryItems some(someRecords(), {3, 1, 0});
    QCOMPARE(some.indexesOfMatches(TextSearch("alpha")), (Numbers{0, 2}));
}

void HistoryItemsTest::wanted()
{
    HistoryItems all(someRecords());
    const UUIDSearch search({"http://www.a.example/1", "nowhere"});
    QCOMPARE(all.indexesOfWanted(search), (Numbers{0, 2}));
    HistoryItems some(someRecords(), {3, 2});
    QCOMPARE(some.indexesOfWanted(search), Numbers{1});
}

void HistoryItemsTest::findByUUID()
{
    const WayfoldBookmarkFolderPtr folder = folderOf(std::make_shared<HistoryItems>(someRecords()));
    const KDRBookmarkPtr found = folder->findByUUID("http://www.a.example/1");
    QVERIFY(found);
    QCOMPARE(found, folder->childAtIndex(0)); // the first of two visits to that address
    QCOMPARE(folder->madeChildren(), (std::vector<KDRBookmarkPtr>{found, folder->childAtIndex(2)}));
    QVERIFY(!folder->findByUUID("http://www.a.example/"));
}

void HistoryItemsTest::copiesAreItemsOfTheirOwn()
{
    for (const auto &items : {std::make_shared<HistoryItems>(someRecords()),
                              std::make_shared<HistoryItems>(someRecords(), Numbers{2, 0})}) {
        const WayfoldBookmarkFolderPtr folder = folderOf(items);
        folder->setFilterString("x");
        const auto copy = WayfoldBookmarkFolder::fromItem(folder->copy());
        QCOMPARE(copy->childCount(), folder->childCount());
        QVERIFY(folder->isEqual(*copy));
        for (unsigned i = 0; i < folder->childCount(); ++i) {
            QVERIFY(copy->childAtIndex(i) != folder->childAtIndex(i));
            QVERIFY(copy->childAtIndex(i)->isEqual(folder->childAtIndex(i)));
            QCOMPARE(copy->childAtIndex(i)->timestamp(), folder->childAtIndex(i)->timestamp());
            QCOMPARE(copy->childAtIndex(i)->parent(), copy);
            QCOMPARE(folder->childAtIndex(i)->parent(), folder);
        }
    }
}

void HistoryItemsTest::copiesOfMatches()
{
    const auto items = std::make_shared<HistoryItems>(someRecords(), Numbers{3, 1, 2});
    const auto copies = items->copiesOfMatches(TextSearch("alpha"));
    QCOMPARE(copies->count(), 2U);
    QCOMPARE(copies->item(0)->title(), QString("Gamma"));
    QCOMPARE(copies->item(1)->title(), QString("Alpha again"));
    QVERIFY(copies->item(0) != items->item(0));
    QVERIFY(copies->item(0)->isEqual(items->item(0)));
    QVERIFY(items->copiesOfMatches(TextSearch("delta"))->isEmpty());
}

void HistoryItemsTest::ofFolder()
{
    const auto items = std::make_shared<HistoryItems>(someRecords());
    const WayfoldBookmarkFolderPtr folder = folderOf(items);
    QCOMPARE(HistoryItems::ofFolder(*folder), items);
    QVERIFY(!HistoryItems::ofFolder(*makeFolder("F", {makeLink("L")})));
    QVERIFY(!HistoryItems::ofFolder(*makeFolder("F")));
    folder->removeChild(folder->lastChild());
    QVERIFY(!HistoryItems::ofFolder(*folder)); // it holds something else now
}

void HistoryItemsTest::outliveTheFolder()
{
    const auto items = std::make_shared<HistoryItems>(someRecords());
    WayfoldBookmarkFolderPtr folder = folderOf(items);
    const KDRBookmarkPtr item = folder->childAtIndex(0);
    folder.reset();
    QVERIFY(!item->parent());
    QCOMPARE(items->item(0), item);
    const WayfoldBookmarkFolderPtr other = folderOf(items);
    QCOMPARE(other->childAtIndex(0)->parent(), other);
}

void HistoryItemsTest::noRecords()
{
    const WayfoldBookmarkFolderPtr folder =
        folderOf(std::make_shared<HistoryItems>(std::make_shared<HistoryRecords>()));
    QVERIFY(folder->isEmpty());
    QCOMPARE(folder->childCount(), 0U);
    QVERIFY(!folder->lastChild());
    QVERIFY(!folder->childAtIndex(0));
    QVERIFY(folder->children().empty());
    QVERIFY(folder->bookmarksWithSubstring("a").empty());
}

QTEST_MAIN(HistoryItemsTest)
#include "HistoryItemsTest.moc"
