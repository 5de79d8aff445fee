#include "tests/model/ModelTestSupport.h"

#include "core/settings/WayfoldToolkit.h"
#include "model/WayfoldBookmarkAutoFolder.h"
#include "model/WayfoldHistoryAutoFolder.h"

#include <QtTest>

class WayfoldBookmarkFolderTest : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<FreshHome> _home;

private Q_SLOTS:
    void init();
    void cleanup();

    void newFolder();
    void searchStringFallsBackToTheTitle();
    void addChild();
    void addChildThatIsAlreadyThere();
    void addChildAtIndex_data();
    void addChildAtIndex();
    void removeChild();
    void removeChildGoesByIdentityFirst();
    void removeChildTakesEveryOccurrence();
    void removeChildGivenByTheListItself();
    void removeAllChildren();
    void removeAllLeafChildren();
    void removeEmptySubfoldersGoesOneLevelACall();
    void sortChildrenByTitle();
    void sortChildrenByTimestampDescending();
    void deepChildCount();
    void persistentChildCount();
    void childAtIndex();
    void childWithTitle();
    void findByUUID();
    void search();
    void refreshReachesFoldersOnly();
    void autoFolders();
    void noAutoFoldersWhenSwitchedOff();
    void equality();
    void equalityIsLopsided();
    void equalityGoesChildByChild();
    void copiesAreDeep();
    void copyOfAFolderWithoutSearchString();
    void archive();
    void newViaDialog();
    void titlesInTheUsersLanguage();
    void editViaDialog();
    void icon();
    void iconIsNotLoadedWhileIconsAreOff();
    void deepTrees();
    void sharedSubtreesSurvive();
};

void WayfoldBookmarkFolderTest::init()
{
    _home = std::make_unique<FreshHome>();
}

void WayfoldBookmarkFolderTest::cleanup()
{
    _home.reset();
}

void WayfoldBookmarkFolderTest::newFolder()
{
    const auto empty = std::make_shared<WayfoldBookmarkFolder>();
    QVERIFY(empty->children().empty());
    QVERIFY(empty->filterString().isNull());
    QVERIFY(empty->title().isNull());
    const auto site = WayfoldBookmarkFolder::bookmarkWithTitle("example.com");
    QCOMPARE(site->title(), "example.com");
    QCOMPARE(site->value(), QVariant("example.com"));
    QCOMPARE(site->valueAsString(), "example.com");
    site->addChild(makeLink("A"));
    site->setFilterString("x");
    site->initWithTitle("other.com");
    QCOMPARE(site->childCount(), 0u);
    QCOMPARE(site->filterString(), "other.com");
}

void WayfoldBookmarkFolderTest::searchStringFallsBackToTheTitle()
{
    const auto site = makeFolder("example.com");
    QCOMPARE(site->filterString(), "example.com");
    site->setFilterString("example");
    QCOMPARE(site->filterString(), "example");
    site->setFilterString("");
    QCOMPARE(site->filterString(), "example.com");
    site->setFilterString(QString());
    QCOMPARE(site->filterString(), "example.com");
}

void WayfoldBookmarkFolderTest::addChild()
{
    const auto home = makeFolder("Home");
    home->addChild(nullptr);
    QCOMPARE(home->childCount(), 0u);
    const auto a = makeLink("A");
    const auto b = makeLink("B");
    home->addChild(a);
    home->addChild(b);
    QCOMPARE(childTitles(*home), (QStringList{"A", "B"}));
    QCOMPARE(a->parent(), home);
    // Another folder takes the item over, but does not take it out.
    const auto other = makeFolder("Other", {a});
    QCOMPARE(a->parent(), other);
    QCOMPARE(childTitles(*home), (QStringList{"A", "B"}));
}

void WayfoldBookmarkFolderTest::addChildThatIsAlreadyThere()
{
    const auto home = makeFolder("Home");
    for (const char *title : {"A", "B", "C", "D", "E"})
        home->addChild(makeLink(title));
    for (int i = 0; i < 20; ++i)
        home->addChild(home->children().front());
    home->addChildAtIndex(home->children().back(), 0);
    QCOMPARE(home->childCount(), 26u);
    QCOMPARE(home->lastChild(), home->childAtIndex(0));
}

void WayfoldBookmarkFolderTest::addChildAtIndex_data()
{
    QTest::addColumn<int>("index");
    QTest::addColumn<QStringList>("titles");
    QTest::newRow("-5") << -5 << QStringList{"New", "A", "B"};
    QTest::newRow("-1") << -1 << QStringList{"New", "A", "B"};
    QTest::newRow("front") << 0 << QStringList{"New", "A", "B"};
    QTest::newRow("middle") << 1 << QStringList{"A", "New", "B"};
    QTest::newRow("count") << 2 << QStringList{"A", "B", "New"};
    QTest::newRow("beyond") << 99 << QStringList{"A", "B", "New"};
    QTest::newRow("far beyond") << std::numeric_limits<int>::max() << QStringList{"A", "B", "New"};
    QTest::newRow("far below") << std::numeric_limits<int>::min() << QStringList{"New", "A", "B"};
}

void WayfoldBookmarkFolderTest::addChildAtIndex()
{
    QFETCH(int, index);
    const auto home = makeFolder("Home", {makeLink("A"), makeLink("B")});
    const auto added = makeLink("New");
    home->addChildAtIndex(added, index);
    QTEST(childTitles(*home), "titles");
    QCOMPARE(added->parent(), home);
    home->addChildAtIndex(nullptr, index);
    QCOMPARE(home->childCount(), 3u);
}

void WayfoldBookmarkFolderTest::removeChild()
{
    const auto a = makeLink("A");
    const auto b = makeLink("B");
    const auto home = makeFolder("Home", {a, b});
    QVERIFY(!home->removeChild(nullptr));
    QVERIFY(!home->removeChild(makeLink("A")));
    QVERIFY(home->removeChild(a));
    QCOMPARE(childTitles(*home), QStringList{"B"});
    QCOMPARE(a->parent(), home);
    QVERIFY(!home->removeChild(a));
    // A folder looks among its own children only.
    const auto outer = makeFolder("Outer", {home});
    QVERIFY(!outer->removeChild(b));
}

void WayfoldBookmarkFolderTest::removeChildGoesByIdentityFirst()
{
    const auto original = makeLink("A");
    const auto twin = original->copy();
    const auto home = makeFolder("Home", {original, twin});
    QVERIFY(home->removeChild(twin));
    QCOMPARE(home->childCount(), 1u);
    QCOMPARE(home->childAtIndex(0), original);
    // It is gone itself; what is equal to it counts now.
    QVERIFY(home->removeChild(twin));
    QCOMPARE(home->childCount(), 0u);
}

void WayfoldBookmarkFolderTest::removeChildTakesEveryOccurrence()
{
    const auto a = makeLink("A");
    const auto home = makeFolder("Home", {a, makeLink("B"), a});
    QVERIFY(home->removeChild(a));
    QCOMPARE(childTitles(*home), QStringList{"B"});
    home->addChild(a->copy());
    home->addChild(a->copy());
    QVERIFY(home->removeChild(a));
    QCOMPARE(childTitles(*home), QStringList{"B"});
}

void WayfoldBookmarkFolderTest::removeChildGivenByTheListItself()
{
    const auto home = makeFolder("Home", {makeLink("A"), makeLink("B"), makeLink("C")});
    QVERIFY(home->removeChild(home->children().front()));
    QCOMPARE(childTitles(*home), (QStringList{"B", "C"}));
    QVERIFY(home->removeChild(home->children().back()));
    QCOMPARE(childTitles(*home), QStringList{"B"});
}

void WayfoldBookmarkFolderTest::removeAllChildren()
{
    const auto a = makeLink("A");
    const auto home = makeFolder("Home", {a, makeFolder("F")});
    home->removeAllChildren();
    QCOMPARE(home->childCount(), 0u);
    QCOMPARE(a->parent(), home);
}

void WayfoldBookmarkFolderTest::removeAllLeafChildren()
{
    const auto inner = makeFolder("Inner", {makeLink("C"), makeFolder("Innermost", {makeLink("D")})});
    const auto home = makeFolder("Home", {makeLink("A"), inner, makeLink("B"), makeFolder("Last")});
    home->removeAllLeafChildren();
    QCOMPARE(childTitles(*home), (QStringList{"Inner", "Last"}));
    QCOMPARE(childTitles(*inner), QStringList{"Innermost"});
    QCOMPARE(home->deepChildCount(), 3u);
    // A smart folder is a folder as well.
    const auto smart = WayfoldAutoFolder::bookmarkWithTitle("Smart");
    smart->addChild(makeLink("E"));
    home->addChild(smart);
    home->removeAllLeafChildren();
    QCOMPARE(home->lastChild(), smart);
    QVERIFY(smart->isEmpty());
}

void WayfoldBookmarkFolderTest::removeEmptySubfoldersGoesOneLevelACall()
{
    const auto c = makeFolder("C");
    const auto b = makeFolder("B", {c});
    const auto a = makeFolder("A", {b, makeLink("Leaf"), makeFolder("Empty")});
    a->removeEmptySubfolders();
    QCOMPARE(childTitles(*a), (QStringList{"B", "Leaf"}));
    QCOMPARE(b->childCount(), 0u);
    a->removeEmptySubfolders();
    QCOMPARE(childTitles(*a), QStringList{"Leaf"});
    // Of smart folders, those that nobody has looked into are empty.
    const auto full = WayfoldAutoFolder::bookmarkWithTitle("Full");
    full->addChild(makeLink("L"));
    a->addChild(WayfoldAutoFolder::bookmarkWithTitle("Not looked into"));
    a->addChild(full);
    a->removeEmptySubfolders();
    QCOMPARE(childTitles(*a), (QStringList{"Leaf", "Full"}));
}

void WayfoldBookmarkFolderTest::sortChildrenByTitle()
{
    const auto inner = makeFolder("b", {makeLink("z"), makeLink("y")});
    const auto home = makeFolder("Home", {makeLink("C"), inner, makeLink("a"), makeLink("B"), makeLink(QString())});
    home->sortChildrenByTitle();
    QCOMPARE(childTitles(*home), (QStringList{QString(), "a", "b", "B", "C"}));
    QCOMPARE(childTitles(*inner), (QStringList{"z", "y"}));
}

void WayfoldBookmarkFolderTest::sortChildrenByTimestampDescending()
{
    const auto home = makeFolder(
        "Home", {makeLink("1"), makeFolder("F", {makeLink("a"), makeLink("b")}), makeLink("3"), makeLink("none")});
    const QDateTime noon(QDate(2004, 5, 1), QTime(12, 0), Qt::UTC);
    home->childAtIndex(0)->setTimestamp(noon.addDays(1));
    home->childAtIndex(1)->setTimestamp(noon.addDays(2));
    home->childAtIndex(2)->setTimestamp(noon.addDays(3));
    home->childAtIndex(3)->setTimestamp({});
    const auto inner = WayfoldBookmarkFolder::fromItem(home->childAtIndex(1));
    inner->childAtIndex(0)->setTimestamp(noon);
    inner->childAtIndex(1)->setTimestamp(noon.addDays(9));
    home->sortChildrenByTimestampDescending();
    QCOMPARE(childTitles(*home), (QStringList{"3", "F", "1", "none"}));
    QCOMPARE(childTitles(*inner), (QStringList{"a", "b"}));
}

void WayfoldBookmarkFolderTest::deepChildCount()
{
    QCOMPARE(makeFolder("Empty")->deepChildCount(), 0u);
    const auto home =
        makeFolder("Home", {makeLink("A"), makeFolder("F", {makeLink("B"), makeFolder("G", {makeLink("C")})})});
    QCOMPARE(home->deepChildCount(), 5u);
    QCOMPARE(home->childCount(), 2u);
}

void WayfoldBookmarkFolderTest::persistentChildCount()
{
    const auto smart = WayfoldAutoFolder::bookmarkWithTitle("Smart");
    for (const char *title : {"1", "2", "3"})
        smart->addChild(makeLink(title));
    const auto home = makeFolder("Home", {smart, WayfoldBookmarkNote::bookmarkWithTitle("Note")});
    QCOMPARE(home->persistentChildCount(), 1u);
    // Below a folder that counts, everything counts.
    const auto inner = makeFolder("Inner", {makeLink("A")});
    const auto outer = makeFolder("Outer", {inner});
    inner->addChild(smart);
    QCOMPARE(outer->persistentChildCount(), 6u);
    QCOMPARE(smart->persistentChildCount(), 0u);
}

void WayfoldBookmarkFolderTest::childAtIndex()
{
    const auto home = makeFolder("Home");
    QVERIFY(!home->childAtIndex(0));
    QVERIFY(!home->childAtIndex(unsigned(-1)));
    QVERIFY(!home->lastChild());
    const auto a = makeLink("A");
    const auto b = makeLink("B");
    home->addChild(a);
    home->addChild(b);
    QCOMPARE(home->childAtIndex(0), a);
    QCOMPARE(home->childAtIndex(1), b);
    QCOMPARE(home->childAtIndex(2), b);
    QCOMPARE(home->childAtIndex(unsigned(-1)), b);
    QCOMPARE(home->lastChild(), b);
}

void WayfoldBookmarkFolderTest::childWithTitle()
{
    const auto first = makeLink("Twice");
    const auto home = makeFolder(
        "Home", {makeLink("twice"), first, makeFolder("Twice", {makeLink("Deep")}), makeLink(""), makeLink(QString())});
    QCOMPARE(home->childWithTitle("Twice"), first);
    QVERIFY(!home->childWithTitle("TWICE"));
    QVERIFY(!home->childWithTitle("Deep"));
    QCOMPARE(home->childWithTitle(""), home->childAtIndex(3));
    QVERIFY(!home->childWithTitle(QString()));
}

void WayfoldBookmarkFolderTest::findByUUID()
{
    const auto deep = makeLink("Deep");
    const auto late = makeLink("Late");
    const auto inner = makeFolder("Inner", {deep});
    const auto home = makeFolder("Home", {inner, late});
    QCOMPARE(home->findByUUID(home->uuid()), home);
    QCOMPARE(home->findByUUID(inner->uuid()), inner);
    QCOMPARE(home->findByUUID(deep->uuid()), deep);
    QCOMPARE(home->findByUUID(late->uuid()), late);
    QVERIFY(!home->findByUUID("nobody"));
    QVERIFY(!home->findByUUID(QString()));
    late->setUUID(deep->uuid());
    QCOMPARE(home->findByUUID(deep->uuid()), deep); // depth first
}

void WayfoldBookmarkFolderTest::search()
{
    const auto home =
        makeFolder("News", {makeLink("old news"), makeFolder("Other", {makeLink("NEWS again"), makeLink("Nothing")}),
                            makeFolder("Newsroom", {makeLink("x", "http://news.example/")})});
    QCOMPARE(titlesOf(home->bookmarksWithSubstring("news")),
             (QStringList{"News", "old news", "NEWS again", "Newsroom", "x"}));
    QCOMPARE(titlesOf(home->bookmarksWithSubstring("Other")), QStringList{"Other"});
    QVERIFY(home->bookmarksWithSubstring("").empty());
    // The search string is not what a folder is found by.
    home->setFilterString("hidden");
    QVERIFY(home->bookmarksWithSubstring("hidden").empty());
}

void WayfoldBookmarkFolderTest::refreshReachesFoldersOnly()
{
    struct Counting : WayfoldAutoFolder
    {
        int count = 0;
        bool refresh() override { return WayfoldAutoFolder::refresh() && ++count > 0; }
    };
    struct CountingLink : WayfoldBookmarkURL
    {
        int count = 0;
        bool refresh() override { return ++count > 0; }
    };
    const auto deep = std::make_shared<Counting>();
    const auto leaf = std::make_shared<CountingLink>();
    const auto home = makeFolder("Home", {makeFolder("Inner", {deep, leaf}), leaf});
    QVERIFY(home->refresh());
    QCOMPARE(deep->count, 1);
    QCOMPARE(leaf->count, 0);
}

void WayfoldBookmarkFolderTest::autoFolders()
{
    const auto site = makeFolder("example.com", {makeLink("A")});
    site->setFilterString("exam");
    site->addAutoFolders();
    QCOMPARE(childTitles(*site), (QStringList{"A", "Related Bookmarks", "Related History"}));
    const auto bookmarks = std::dynamic_pointer_cast<WayfoldBookmarkAutoFolder>(site->childAtIndex(1));
    const auto history = std::dynamic_pointer_cast<WayfoldHistoryAutoFolder>(site->childAtIndex(2));
    QVERIFY(bookmarks);
    QVERIFY(history);
    QCOMPARE(bookmarks->filterString(), "exam");
    QCOMPARE(history->filterString(), "exam");
    QCOMPARE(bookmarks->parent(), site);

    site->addChild(makeFolder("Plain"));
    site->addChild(WayfoldAutoFolder::bookmarkWithTitle("Smart"));
    site->removeAutoFolders();
    QCOMPARE(childTitles(*site), (QStringList{"A", "Plain"}));

    const auto untold = makeFolder("title.org");
    untold->addAutoFolders();
    QCOMPARE(WayfoldBookmarkFolder::fromItem(untold->childAtIndex(0))->filterString(), "title.org");
}

void WayfoldBookmarkFolderTest::noAutoFoldersWhenSwitchedOff()
{
    WayfoldDefaults::sharedInstance().setCreateAutoFolders(false);
    const auto site = makeFolder("example.com");
    site->addAutoFolders();
    QCOMPARE(site->childCount(), 0u);
}

void WayfoldBookmarkFolderTest::equality()
{
    const auto home = makeFolder("Home");
    QVERIFY(!home->isEqual(home));
    const auto untitled = std::make_shared<WayfoldBookmarkFolder>();
    QVERIFY(!untitled->isEqual(*untitled));
    home->setFilterString("Home");
    QVERIFY(home->isEqual(home));
    home->addChild(makeLink("A"));
    const auto twin = WayfoldBookmarkFolder::fromItem(home->copy());
    QVERIFY(home->isEqual(twin));
    twin->addChild(makeLink("B"));
    QVERIFY(!home->isEqual(twin));
    QVERIFY(!twin->isEqual(home));
    twin->removeChild(twin->lastChild());
    twin->childAtIndex(0)->setTitle("a");
    QVERIFY(!home->isEqual(twin));
    twin->childAtIndex(0)->setTitle("A");
    QVERIFY(home->isEqual(twin));
    twin->setFilterString("Other");
    QVERIFY(!home->isEqual(twin));
    QVERIFY(!home->isEqual(makeLink("Home")));
}

void WayfoldBookmarkFolderTest::equalityIsLopsided()
{
    const auto told = makeFolder("Home");
    told->setFilterString("Home");
    const auto untold = makeFolder("Home");
    untold->setUUID(told->uuid());
    QVERIFY(told->isEqual(untold));
    QVERIFY(!untold->isEqual(told));
    // An empty search string of its own is not the title that it stands for.
    const auto empty = makeFolder("Home");
    empty->setUUID(told->uuid());
    empty->setFilterString("");
    QVERIFY(!empty->isEqual(told));
    QVERIFY(told->isEqual(empty));
}

void WayfoldBookmarkFolderTest::equalityGoesChildByChild()
{
    const auto a = makeLink("A");
    const auto b = makeLink("B");
    const auto home = makeFolder("Home", {a, b});
    home->setFilterString("Home");
    const auto turned = WayfoldBookmarkFolder::fromItem(home->copy());
    turned->sortChildrenByTitle();
    QVERIFY(home->isEqual(turned));
    const KDRBookmarkPtr first = turned->childAtIndex(0);
    turned->removeChild(first);
    turned->addChild(first);
    QVERIFY(!home->isEqual(turned)); // the same children in another order

    // Each child decides by its own rule, which may hold from one side only.
    const Url address = Url::fileURLWithPath("/tmp/a.txt");
    const auto web = WayfoldBookmarkURL::bookmarkWithTitle("A");
    web->setURL(address);
    const auto file = WayfoldBookmarkFile::bookmarkWithTitleAndURL("A", address);
    file->setUUID(web->uuid());
    const auto ours = makeFolder("Home", {web});
    const auto theirs = makeFolder("Home", {file});
    theirs->setUUID(ours->uuid());
    ours->setFilterString("Home");
    theirs->setFilterString("Home");
    QVERIFY(ours->isEqual(theirs));
    QVERIFY(!theirs->isEqual(ours));
}

void WayfoldBookmarkFolderTest::copiesAreDeep()
{
    const auto leaf = makeLink("A");
    const auto inner = makeFolder("Inner", {leaf});
    const auto home = makeFolder("Home", {inner, makeLink("B")});
    home->setFilterString("search");
    const auto copy = WayfoldBookmarkFolder::fromItem(home->copy());
    QCOMPARE(copy->filterString(), "search");
    QCOMPARE(childTitles(*copy), (QStringList{"Inner", "B"}));
    const auto innerCopy = WayfoldBookmarkFolder::fromItem(copy->childAtIndex(0));
    QVERIFY(innerCopy != inner);
    QCOMPARE(innerCopy->parent(), copy);
    QCOMPARE(innerCopy->uuid(), inner->uuid());
    const auto leafCopy = innerCopy->childAtIndex(0);
    QVERIFY(leafCopy != leaf);
    QCOMPARE(leafCopy->uuid(), leaf->uuid());
    QCOMPARE(leaf->parent(), inner);
    leafCopy->setTitle("Changed");
    copy->removeAllChildren();
    QCOMPARE(leaf->title(), "A");
    QCOMPARE(home->deepChildCount(), 3u);
}

void WayfoldBookmarkFolderTest::copyOfAFolderWithoutSearchString()
{
    const auto home = makeFolder("Home");
    const auto copy = WayfoldBookmarkFolder::fromItem(home->copy());
    QVERIFY(copy->isEqual(copy)); // it has one of its own now
    copy->setTitle("Renamed");
    QCOMPARE(copy->filterString(), "Home");
}

void WayfoldBookmarkFolderTest::archive()
{
    const auto home = makeFolder("Home", {makeLink("A"), makeFolder("Inner", {makeLink("B")})});
    home->setFilterString("search");
    const auto decoded = roundTripThroughArchive(home);
    QCOMPARE(decoded->filterString(), "search");
    QCOMPARE(childTitles(*decoded), (QStringList{"A", "Inner"}));
    QVERIFY(!decoded->childAtIndex(0)->parent());
    const auto inner = WayfoldBookmarkFolder::fromItem(decoded->childAtIndex(1));
    QCOMPARE(childTitles(*inner), QStringList{"B"});
    QVERIFY(!inner->childAtIndex(0)->parent());
    QCOMPARE(inner->childAtIndex(0)->valueAsString(), "http://a.example/");

    // The raw field travels, not what it stands for.
    const auto untold = roundTripThroughArchive(makeFolder("Home"));
    untold->setTitle("Renamed");
    QCOMPARE(untold->filterString(), "Renamed");
}

void WayfoldBookmarkFolderTest::newViaDialog()
{
    QVERIFY(!WayfoldBookmarkFolder::newViaDialog());
    RecordingDialogs dialogs;
    const auto made = WayfoldBookmarkFolder::newViaDialog();
    QVERIFY(made);
    QCOMPARE(made->title(), "Untitled Folder");
    QCOMPARE(dialogs.opened, QStringList{"newFolder"});
    QCOMPARE(dialogs.item, made);
    dialogs.accepts = false;
    QVERIFY(!WayfoldBookmarkFolder::newViaDialog());
}

void WayfoldBookmarkFolderTest::titlesInTheUsersLanguage()
{
    const UserLanguage german("de_DE");
    RecordingDialogs dialogs;
    QCOMPARE(WayfoldBookmarkFolder::newViaDialog()->title(), "Ordner ohne Titel");
    const auto site = makeFolder("example.com");
    site->addAutoFolders();
    QCOMPARE(childTitles(*site), (QStringList{"Verwandte Lesezeichen", "Verwandte Seiten im Verlauf"}));
}

void WayfoldBookmarkFolderTest::editViaDialog()
{
    const auto home = makeFolder("Home");
    QVERIFY(!home->editViaDialog());
    RecordingDialogs dialogs;
    QVERIFY(home->editViaDialog());
    QCOMPARE(dialogs.opened, QStringList{"editFolder"});
    QCOMPARE(dialogs.item, home);
    dialogs.accepts = false;
    QVERIFY(!home->editViaDialog());
}

void WayfoldBookmarkFolderTest::icon()
{
    const auto a = makeFolder("A");
    const auto b = makeFolder("B");
    const auto small = a->imageForCellSize(QSizeF(32, 32));
    QVERIFY(small);
    QCOMPARE(small->size(), QSizeF(16, 16));
    QCOMPARE(pictureOf(small), pictureOf(WayfoldToolkit::loadImageNamed("WayfoldFolderIcon16")));
    QCOMPARE(small->cacheMode(), Image::NSImageCacheNever);
    QCOMPARE(a->imageForCellSize(QSizeF(32, 32)), small);
    // Another folder has not been shown at that size: the image is loaded anew, for both.
    const auto again = b->imageForCellSize(QSizeF(32, 32));
    QVERIFY(again != small);
    QCOMPARE(a->imageForCellSize(QSizeF(32, 32)), again);
    const auto large = a->imageForCellSize(QSizeF(33, 33));
    QVERIFY(large != again);
    QVERIFY(large->size() != again->size());
    QCOMPARE(pictureOf(large), pictureOf(WayfoldToolkit::loadImageNamed("WayfoldFolderIcon")));
    QVERIFY(pictureOf(large) != pictureOf(small));
    QCOMPARE(a->imageForCellSize(QSizeF(33, 33)), large);
    // The size is compared, not only its height; the height alone decides on the image.
    const auto narrow = a->imageForCellSize(QSizeF(99, 32));
    QVERIFY(narrow != large);
    QCOMPARE(narrow->size(), QSizeF(16, 16));
}

void WayfoldBookmarkFolderTest::iconIsNotLoadedWhileIconsAreOff()
{
    const auto a = makeFolder("A");
    WayfoldDefaults::sharedInstance().setShowBookmarkIcons(false);
    QVERIFY(!a->imageForCellSize(QSizeF(16, 16)));
    WayfoldDefaults::sharedInstance().setShowBookmarkIcons(true);
    const auto image = a->imageForCellSize(QSizeF(16, 16));
    QVERIFY(image);
    WayfoldDefaults::sharedInstance().setShowBookmarkIcons(false);
    QCOMPARE(a->imageForCellSize(QSizeF(64, 64)), image);
    QCOMPARE(makeFolder("B")->imageForCellSize(QSizeF(64, 64)), image);
}

void WayfoldBookmarkFolderTest::deepTrees()
{
    constexpr int depth = 10000;
    WayfoldBookmarkFolderPtr root = makeFolder("Bottom", {makeLink("Leaf")});
    const QString leafUUID = root->childAtIndex(0)->uuid();
    const KDRBookmarkPtr leaf = root->childAtIndex(0);
    for (int i = 0; i < depth; ++i)
        root = makeFolder("Level", {root});

    QCOMPARE(root->deepChildCount(), unsigned(depth + 1));
    QCOMPARE(root->persistentChildCount(), unsigned(depth + 1));
    QCOMPARE(root->findByUUID(leafUUID), leaf);
    QVERIFY(leaf->isChildOf(root));
    QVERIFY(leaf->canBePersistent());
    QCOMPARE(root->bookmarksWithSubstring("Leaf").size(), std::size_t(1));
    QVERIFY(root->refresh());
    WayfoldBookmarkFolderPtr copy = WayfoldBookmarkFolder::fromItem(root->copy());
    QCOMPARE(copy->deepChildCount(), root->deepChildCount());
    QVERIFY(copy->isEqual(root));
    copy->removeEmptySubfolders();
    copy->removeAllLeafChildren();
    QCOMPARE(copy->deepChildCount(), unsigned(depth));
    QVERIFY(!root->writeDictionaryFile(_home->path("Deep.plist")));
    QVERIFY(!QFile::exists(_home->path("Deep.plist")));

    copy->removeAllChildren();
    root.reset();
    QVERIFY(!leaf->parent());
}

void WayfoldBookmarkFolderTest::sharedSubtreesSurvive()
{
    const auto shared = makeFolder("Shared", {makeLink("A")});
    {
        const auto home = makeFolder("Home", {makeFolder("Inner", {shared}), shared});
    }
    QCOMPARE(shared->childCount(), 1u);
    QVERIFY(!shared->parent());
}

QTEST_MAIN(WayfoldBookmarkFolderTest)
#include "WayfoldBookmarkFolderTest.moc"
