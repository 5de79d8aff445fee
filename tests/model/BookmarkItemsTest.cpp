#include "model/BookmarkItems.h"
#include "model/BookmarkRecords.h"
#include "model/TextSearch.h"
#include "model/UUIDSearch.h"
#include "tests/model/ModelTestSupport.h"
#include "tests/support/MemoryContacts.h"

#include <QtTest>

namespace
{
using Kind = BookmarkRecords::Kind;
using Numbers = std::vector<unsigned>;

// Bar (Kettle, Tea (Green, a note)), Empty, Stars
std::shared_ptr<BookmarkRecords> someRecords()
{
    auto records = std::make_shared<BookmarkRecords>();
    const auto leaf = [&](Kind kind, const char *title, const char *value, const char *uuid) {
        records->end(records->begin(), kind, {title, value, uuid});
    };
    const unsigned root = records->begin();
    const unsigned bar = records->begin();
    leaf(Kind::Link, "Kettle", "http://kettle.example/", "KETTLE");
    const unsigned tea = records->begin();
    leaf(Kind::Link, "Green", "http://green.example/", "");
    leaf(Kind::Note, "How to", "Boil water", "NOTE");
    records->end(tea, Kind::Folder, {"Tea", "camellia", "TEA"});
    records->end(bar, Kind::Folder, {"Bar", "", "BAR"});
    leaf(Kind::Folder, "Empty", "", "EMPTY");
    leaf(Kind::Link, "Stars", "no address", "STARS");
    records->end(root, Kind::Folder, {"", "", "ROOT"});
    return records;
}

QStringList outline(const WayfoldBookmarkFolder &folder)
{
    QStringList titles;
    for (const KDRBookmarkPtr &child : folder.children()) {
        const auto sub = WayfoldBookmarkFolder::fromItem(child);
        titles.append(sub ? sub->title() + "(" + outline(*sub).join(' ') + ")" : child->title());
    }
    return titles;
}
} // namespace

class BookmarkItemsTest : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<FreshHome> _home;
    std::shared_ptr<BookmarkRecords> _records;
    WayfoldBookmarkFolderPtr _tree;

private Q_SLOTS:
    void init()
    {
        _home = std::make_unique<FreshHome>();
        _records = someRecords();
        _tree = BookmarkItems::treeOf(_records);
    }
    void cleanup()
    {
        _tree.reset();
        _home.reset();
    }

    void nothingIsMadeBeforeItIsLookedAt();
    void theWholeTree();
    void itemsHaveWhatTheirRecordsSay();
    void peopleAndGroups();
    void identifiers();
    void matchesMakeOnlyWhatIsFound();
    void matchesAreThoseOfTheItems_data();
    void matchesAreThoseOfTheItems();
    void wantedMakeOnlyWhatIsFound();
    void copiesHoldNoRecords();
    void recordsThatWereTakenOver();
    void withoutWaste();
};

void BookmarkItemsTest::nothingIsMadeBeforeItIsLookedAt()
{
    QCOMPARE(_tree->childCount(), 3U);
    QVERIFY(_tree->isFolderAtIndex(0) && _tree->isFolderAtIndex(1) && !_tree->isFolderAtIndex(2));
    QVERIFY(_tree->mayHaveLazyFolders());
    QVERIFY(_tree->madeChildren().empty());
    const KDRBookmarkPtr bar = _tree->childAtIndex(0);
    QCOMPARE(_tree->childAtIndex(0), bar);
    QCOMPARE(_tree->madeChildren().size(), 1U);
    QVERIFY(WayfoldBookmarkFolder::fromItem(bar)->madeChildren().empty());
    QCOMPARE(bar->parent(), _tree);
    const auto tea = WayfoldBookmarkFolder::fromItem(WayfoldBookmarkFolder::fromItem(bar)->childAtIndex(1));
    QVERIFY(!tea->mayHaveLazyFolders());
}

void BookmarkItemsTest::theWholeTree()
{
    QCOMPARE(outline(*_tree), (QStringList{"Bar(Kettle Tea(Green How to))", "Empty()", "Stars"}));
    QCOMPARE(_tree->deepChildCount(), 7U);
}

void BookmarkItemsTest::itemsHaveWhatTheirRecordsSay()
{
    const KDRBookmarkPtr kettle = _tree->findByUUID("KETTLE");
    QCOMPARE(kettle->type(), KDRBookmark::WebLinkType);
    QCOMPARE(kettle->valueAsString(), "http://kettle.example/");
    const KDRBookmarkPtr note = _tree->findByUUID("NOTE");
    QCOMPARE(note->type(), KDRBookmark::NoteType);
    QCOMPARE(note->valueAsString(), "Boil water");
    QCOMPARE(WayfoldBookmarkFolder::fromItem(_tree->findByUUID("TEA"))->filterString(), "camellia");
    QCOMPARE(WayfoldBookmarkFolder::fromItem(_tree->findByUUID("BAR"))->filterString(), "Bar");
    QVERIFY(_tree->findByUUID("STARS")->valueAsString().isNull());
    QVERIFY(WayfoldBookmarkFolder::fromItem(_tree->findByUUID("EMPTY"))->isEmpty());
}

void BookmarkItemsTest::peopleAndGroups()
{
    MemoryContacts contacts;
    contacts.set(MemoryContacts::person("ann", "Ann", "Bell", {"ann@kettle.example"}));
    contacts.set(MemoryContacts::group("friends", "Friends", {"ann"}));
    auto records = std::make_shared<BookmarkRecords>();
    const unsigned root = records->begin();
    const unsigned people = records->begin();
    records->end(records->begin(), Kind::Person, {"", "ann", "ANN"});
    records->end(people, Kind::Folder, {"People", "", ""});
    const unsigned groups = records->begin();
    records->end(records->begin(), Kind::Link, {"gone", "", ""}); // nothing is read in a group
    records->end(groups, Kind::Group, {"", "friends", "FRIENDS"});
    records->end(root, Kind::Folder, {"", "", "ROOT"});
    const WayfoldBookmarkFolderPtr tree = BookmarkItems::treeOf(records);
    QVERIFY(tree->isFolderAtIndex(1));
    QCOMPARE(outline(*tree), QStringList({"People(Ann Bell)", "Friends()"}));
    QCOMPARE(int(tree->findByUUID("ANN")->type()), 7);
    QCOMPARE(int(tree->childAtIndex(1)->type()), 8);
    QCOMPARE(tree->childAtIndex(1)->uuid(), QStringLiteral("FRIENDS"));
    // Found by what is in their cards, also when nobody has looked at them yet.
    for (const char *text : {"kettle", "bell"})
        QCOMPARE(titlesOf(BookmarkItems::treeOf(records)->bookmarksWithSubstring(text)), QStringList{"Ann Bell"});
    QCOMPARE(titlesOf(BookmarkItems::treeOf(records)->bookmarksWithSubstring("friend")), QStringList{"Friends"});
    QVERIFY(BookmarkItems::treeOf(records)->bookmarksWithSubstring("nothing").empty());
    const auto alone = std::make_shared<BookmarkRecords>();
    const unsigned top = alone->begin();
    alone->end(alone->begin(), Kind::Group, {"", "friends", "FRIENDS"});
    alone->end(top, Kind::Folder, {"", "", ""});
    QVERIFY(BookmarkItems::treeOf(alone)->mayHaveLazyFolders());
}

void BookmarkItemsTest::identifiers()
{
    QCOMPARE(_tree->uuid(), "ROOT");
    const auto tea = WayfoldBookmarkFolder::fromItem(_tree->findByUUID("TEA"));
    const QString fresh = tea->childAtIndex(0)->uuid();
    QVERIFY(!fresh.isEmpty());
    QCOMPARE(_tree->findByUUID(fresh), tea->childAtIndex(0));
    QVERIFY(!_tree->findByUUID(""));
}

void BookmarkItemsTest::matchesMakeOnlyWhatIsFound()
{
    QCOMPARE(titlesOf(_tree->bookmarksWithSubstring("green.ex")), QStringList{"Green"});
    QCOMPARE(_tree->madeChildren().size(), 1U);
    const auto bar = WayfoldBookmarkFolder::fromItem(_tree->childAtIndex(0));
    QCOMPARE(titlesOf(bar->madeChildren()), QStringList{"Tea"});
}

void BookmarkItemsTest::matchesAreThoseOfTheItems_data()
{
    QTest::addColumn<QString>("text");
    for (const char *text : {"e", "EXAMPLE", "tea", "no address", "boil", "http", "nothing", "camellia", "s", "Stars"})
        QTest::newRow(text) << text;
}

void BookmarkItemsTest::matchesAreThoseOfTheItems()
{
    QFETCH(QString, text);
    const WayfoldBookmarkFolderPtr items = WayfoldBookmarkFolder::fromItem(_tree->copy());
    QCOMPARE(titlesOf(_tree->bookmarksWithSubstring(text)), titlesOf(items->bookmarksWithSubstring(text)));
}

void BookmarkItemsTest::wantedMakeOnlyWhatIsFound()
{
    const auto found = _tree->itemsWithUUIDs({"NOTE", "STARS", "missing"});
    QCOMPARE(found.size(), 2);
    QCOMPARE(found["NOTE"]->title(), "How to");
    QCOMPARE(titlesOf(_tree->madeChildren()), (QStringList{"Bar", "Stars"}));
    QCOMPARE(_tree->itemsWithUUIDs({"TEA"}).value("TEA")->title(), "Tea");
}

void BookmarkItemsTest::copiesHoldNoRecords()
{
    const WayfoldBookmarkFolderPtr copy = WayfoldBookmarkFolder::fromItem(_tree->childAtIndex(0)->copy());
    const KDRBookmarkPtr original = _tree->findByUUID("NOTE");
    QVERIFY(copy->findByUUID("NOTE") != original);
    QVERIFY(copy->findByUUID("NOTE")->isEqual(original));
    const std::weak_ptr<const void> records = _records;
    const std::weak_ptr<const void> texts = _records->sharedTexts();
    _records.reset();
    QVERIFY(!records.expired());
    _tree.reset();
    QVERIFY(records.expired() && texts.expired());
    QCOMPARE(outline(*copy), (QStringList{"Kettle", "Tea(Green How to)"}));
}

void BookmarkItemsTest::recordsThatWereTakenOver()
{
    BookmarkRecords later(*_records);
    const unsigned root = later.begin();
    later.appendFrom(*_records, 7);
    later.appendFrom(*_records, 2);
    later.end(root, Kind::Folder, {"", "", ""});
    QCOMPARE(later.count(), 3U);
    QCOMPARE(later.behind(root), 3U);
    QCOMPARE(later.behind(1), 2U);
    QCOMPARE(later.title(1), "Stars");
    QCOMPARE(later.uuid(2), "KETTLE");
    QVERIFY(later.uuid(root).isNull());
    QVERIFY(later.isFoundWithin(2, TextSearch("kettle.example")));
    QVERIFY(!later.isFoundWithin(1, TextSearch("kettle")));
    QVERIFY(later.isWantedWithin(root, UUIDSearch({"KETTLE"})));
    QVERIFY(!later.isWantedWithin(root, UUIDSearch({"TEA"})));
}

void BookmarkItemsTest::withoutWaste()
{
    QCOMPARE(_records->wasted(), 0.0);
    BookmarkRecords later(*_records);
    later.appendFrom(*_records, 2);
    QVERIFY(later.wasted() > 0.5 && later.wasted() < 1);
    const auto compact = later.withoutWaste();
    QCOMPARE(compact->wasted(), 0.0);
    QCOMPARE(compact->count(), 1U);
    QCOMPARE(compact->title(0), "Kettle");
    QCOMPARE(compact->value(0), "http://kettle.example/");
    QVERIFY(compact->isFoundWithin(0, TextSearch("KETTLE.example")));
    QCOMPARE(BookmarkRecords().wasted(), 0.0);
}

QTEST_MAIN(BookmarkItemsTest)
#include "BookmarkItemsTest.moc"
