#include "lists/WayfoldBookmarkDataSource.h"

#include "core/Notifications.h"
#include "lists/WayfoldBookmarkOutlineView.h"
#include "platform/files/FileStamp.h"
#include "tests/lists/ListStage.h"
#include "tests/support/BrowserFiles.h"

#include <QLineEdit>

namespace
{
// The Bookmarks tab of one drawer.
class BookmarksTab
{
public:
    BookmarksTab()
    {
        source = std::make_unique<WayfoldBookmarkDataSource>(&view);
        view.setDelegate(source.get());
        view.awakeFromNib();
        view.setOutlineDataSource(source.get());
        source->awakeFromNib();
        view.resize(300, 400);
        view.show();
    }

    WayfoldBookmarkOutlineView view;
    QLineEdit field;
    std::unique_ptr<WayfoldBookmarkDataSource> source; // goes before the view does

    QStringList rows() const { return ListStage::rows(view); }
    void search(const QString &text)
    {
        field.setText(text);
        source->processSearchFilter(&field);
    }
    KDRBookmarkPtr item(const QString &uuid) const { return source->localRootFolder()->findByUUID(uuid); }
};

QVariantList someBookmarks()
{
    using Files = BrowserFiles;
    return {
        Files::folder(
            "Bookmarks Bar", "BAR",
            {Files::link("Marsh Line", "http://www.marsh.org/", "MARSH"),
             Files::folder("Trains", "TRAINS", {Files::link("Timetable", "http://www.marsh.org/t", "TIMES")})}),
        Files::folder("Kitchen", "KITCHEN", {Files::link("Kettle works", "http://kettle.example.com/", "KETTLE")}),
        Files::link("Observatory", "http://stars.org/", "STARS"),
    };
}

QVariantList manyPages(int count)
{
    QVariantList pages;
    for (int i = 0; i < count; ++i)
        pages.append(
            BrowserFiles::link(QString("Page %1").arg(i), QString("http://a.org/%1").arg(i), QString("PAGE%1").arg(i)));
    return pages;
}

// The row that is seen first, and where it stands.
std::pair<QString, int> topOf(const WayfoldOutlineView &view)
{
    const int row = view.rowAtPoint(QPoint(5, 0));
    return {ListStage::rows(view).value(row), view.rectOfRow(row).top()};
}
} // namespace

class WayfoldBookmarkDataSourceTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        _stage.emplace();
        BrowserFiles(_stage->home).writeBookmarks(someBookmarks());
        ListStage::store();
        QCoreApplication::processEvents(); // what the start had to tell is told
    }
    void cleanup() { _stage.reset(); }

    void nothingIsShownBeforeItIsLoaded();
    void loadsOnce();
    void showsTheTreeOfAllDrawers();
    void nothingIsHeardBeforeItIsLoaded();

    void newTreeIsTaken();
    void nothingIsKeptOfTheOldTree_data();
    void nothingIsKeptOfTheOldTree();
    void openFoldersStayOpen();
    void missingFileKeepsTheTree();
    void listOutOfSightFollowsWhenItIsSeen_data();
    void listOutOfSightFollowsWhenItIsSeen();

    void matches_data();
    void matches();
    void matchesAreCopies();
    void foundFolderIsAWholeCopy();
    void noMatchesGiveAnEmptyList();
    void refiningKeepsTheFolderOfMatches();
    void clearingShowsTheTreeAgain();
    void openFoldersAreOpenAfterTheSearch();
    void clearingWhatIsNotFilteredChangesNothing();
    void newTreeIsFilteredToo();
    void matchesBeginAtTheTop();
    void selectedMatchStaysSelected();
    void selectedMatchIsSelectedAfterTheSearch();
    void newBookmarksMoveNothing_data();
    void newBookmarksMoveNothing();
    void searchBeforeTheBrowserHasWritten();

    void rowsAreOpened();
    void returnOpens_data();
    void returnOpens();
    void selection();
    void dropsAreRefused();
    void savingWritesNothing();
    void goesBeforeItsView();
    void worksWithoutView();

private:
    // The browser has written its file again.
    void change(const QVariantList &children)
    {
        BrowserFiles(_stage->home).writeBookmarks(children);
        ListStage::store().tagSafariFiles();
        QCoreApplication::processEvents();
    }

    std::optional<ListStage> _stage;
};

// --- Loading --------------------------------------------------------------------------------------------------------

void WayfoldBookmarkDataSourceTest::nothingIsShownBeforeItIsLoaded()
{
    const BookmarksTab tab;
    QVERIFY(!tab.source->localRootFolder());
    QCOMPARE(tab.view.numberOfRows(), 0);
    QCOMPARE(tab.source->myOutlineView(), &tab.view);
}

void WayfoldBookmarkDataSourceTest::loadsOnce()
{
    BookmarksTab tab;
    tab.source->ensureDataLoaded();
    QCOMPARE(tab.rows(), QStringList({"Bookmarks Bar", "Kitchen", "Observatory"}));
    tab.view.expandItem(tab.item("BAR"));
    ListStage::store().safariBookmarkRoot()->removeChild(tab.item("STARS"));
    tab.source->ensureDataLoaded();
    QCOMPARE(tab.rows(), QStringList({"Bookmarks Bar", "-Marsh Line", "-Trains", "Kitchen", "Observatory"}));
}

void WayfoldBookmarkDataSourceTest::showsTheTreeOfAllDrawers()
{
    BookmarksTab tab;
    BookmarksTab other;
    tab.source->ensureDataLoaded();
    other.source->ensureDataLoaded();
    QCOMPARE(tab.source->localRootFolder(), ListStage::store().safariBookmarkRoot());
    QCOMPARE(other.source->localRootFolder(), tab.source->localRootFolder());
    QCOMPARE(other.view.itemAtRow(0), tab.view.itemAtRow(0));
}

void WayfoldBookmarkDataSourceTest::nothingIsHeardBeforeItIsLoaded()
{
    const BookmarksTab tab;
    change({BrowserFiles::link("New", "http://new.org/", "NEW")});
    QVERIFY(!tab.source->localRootFolder());
    tab.source->ensureDataLoaded();
    QCOMPARE(tab.rows(), QStringList{"New"});
}

// --- New trees ------------------------------------------------------------------------------------------------------

void WayfoldBookmarkDataSourceTest::newTreeIsTaken()
{
    BookmarksTab tab;
    tab.source->ensureDataLoaded();
    const WayfoldBookmarkFolderPtr before = tab.source->localRootFolder();
    change({BrowserFiles::link("New", "http://new.org/", "NEW")});
    QVERIFY(tab.source->localRootFolder() != before);
    QCOMPARE(tab.source->localRootFolder(), ListStage::store().safariBookmarkRoot());
    QCOMPARE(tab.rows(), QStringList{"New"});
}

void WayfoldBookmarkDataSourceTest::openFoldersStayOpen()
{
    BookmarksTab tab;
    tab.source->ensureDataLoaded();
    tab.view.expandItem(tab.item("BAR"));
    tab.view.expandItem(tab.item("TRAINS"));
    tab.view.expandItem(tab.item("KITCHEN"));
    tab.view.selectItem(tab.item("TIMES"));
    QVariantList changed = someBookmarks();
    changed.removeAt(1); // the kitchen
    changed.prepend(BrowserFiles::link("New", "http://new.org/", "NEW"));
    change(changed);
    QCOMPARE(tab.rows(), QStringList({"New", "Bookmarks Bar", "-Marsh Line", "-Trains", "--Timetable", "Observatory"}));
    QCOMPARE(ListStage::titles(tab.view.selectedItemList()), QStringList{"Timetable"});
    QCOMPARE(tab.view.selectedItem(), tab.item("TIMES"));
}

void WayfoldBookmarkDataSourceTest::missingFileKeepsTheTree()
{
    BookmarksTab tab;
    tab.source->ensureDataLoaded();
    QVERIFY(QFile::remove(_stage->home.path("Library/Safari/Bookmarks.plist")));
    ListStage::store().tagSafariFiles();
    QCoreApplication::processEvents();
    QCOMPARE(tab.view.numberOfRows(), 3);
}

void WayfoldBookmarkDataSourceTest::listOutOfSightFollowsWhenItIsSeen_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("all") << "";
    QTest::newRow("searched") << "page";
}

void WayfoldBookmarkDataSourceTest::listOutOfSightFollowsWhenItIsSeen()
{
    QFETCH(QString, text);
    BookmarksTab tab;
    tab.source->ensureDataLoaded();
    tab.search(text);
    const QStringList before = tab.rows();
    tab.view.hide();
    change(manyPages(2));
    QCOMPARE(tab.rows(), before);
    tab.view.show();
    QCOMPARE(tab.rows(), QStringList({"Page 0", "Page 1"}));
}

// --- Searching ------------------------------------------------------------------------------------------------------

void WayfoldBookmarkDataSourceTest::matches_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QStringList>("rows");
    QTest::newRow("a title, whatever its letters' case") << "kETTLE" << QStringList{"Kettle works"};
    QTest::newRow("an address") << "stars.org" << QStringList{"Observatory"};
    QTest::newRow("several, in the order of the tree") << "marsh" << QStringList({"Marsh Line", "Timetable"});
    QTest::newRow("a folder, and what is in it")
        << "t" << QStringList({"Marsh Line", "Trains", "Timetable", "Kitchen", "Kettle works", "Observatory"});
    QTest::newRow("the root has a title too") << "bookmarks" << QStringList({"Bookmarks", "Bookmarks Bar"});
    QTest::newRow("blanks count") << "kettle " << QStringList{"Kettle works"};
}

void WayfoldBookmarkDataSourceTest::matches()
{
    QFETCH(QString, text);
    QFETCH(QStringList, rows);
    BookmarksTab tab;
    tab.source->ensureDataLoaded();
    tab.search(text);
    QCOMPARE(tab.rows(), rows);
    QCOMPARE(tab.source->localRootFolder()->title(), QString(""));
}

void WayfoldBookmarkDataSourceTest::matchesAreCopies()
{
    BookmarksTab tab;
    tab.source->ensureDataLoaded();
    tab.search("kettle");
    const KDRBookmarkPtr match = tab.source->localRootFolder()->childAtIndex(0);
    const KDRBookmarkPtr original = ListStage::store().safariBookmarkRoot()->findByUUID("KETTLE");
    QVERIFY(match != original);
    QVERIFY(match->isEqual(*original));
    QCOMPARE(original->parent(), ListStage::store().safariBookmarkRoot()->findByUUID("KITCHEN"));
}

void WayfoldBookmarkDataSourceTest::foundFolderIsAWholeCopy()
{
    const WayfoldBookmarkFolderPtr tree = ListStage::store().safariBookmarkRoot();
    const WayfoldBookmarkFolderPtr original = WayfoldBookmarkFolder::fromItem(tree->findByUUID("BAR"));
    original->setFilterString("rails");
    original->setTimestampInMilliseconds(1234567000);
    BookmarksTab tab;
    tab.source->ensureDataLoaded();
    tab.search("bookmarks bar");
    QCOMPARE(tab.rows(), QStringList{"Bookmarks Bar"});

    const auto copy = WayfoldBookmarkFolder::fromItem(tab.source->localRootFolder()->childAtIndex(0));
    QVERIFY(copy && copy != original);
    QCOMPARE(copy->uuid(), QString("BAR"));
    QCOMPARE(copy->filterString(), QString("rails"));
    QCOMPARE(copy->timestampInMilliseconds(), 1234567000);
    QCOMPARE(copy->parent(), tab.source->localRootFolder());
    QCOMPARE(original->parent(), tree);

    // And so on below.
    QCOMPARE(copy->childCount(), 2U);
    for (unsigned i = 0; i < 2; ++i) {
        QVERIFY(copy->childAtIndex(i) != original->childAtIndex(i));
        QVERIFY(copy->childAtIndex(i)->isEqual(*original->childAtIndex(i)));
        QCOMPARE(copy->childAtIndex(i)->parent(), copy);
        QCOMPARE(original->childAtIndex(i)->parent(), original);
    }
    const auto inner = WayfoldBookmarkFolder::fromItem(copy->childAtIndex(1));
    QVERIFY(inner);
    QCOMPARE(inner->childCount(), 1U);
    QCOMPARE(inner->childAtIndex(0)->title(), QString("Timetable"));
    QCOMPARE(inner->childAtIndex(0)->parent(), inner);
    QVERIFY(inner->childAtIndex(0) != tree->findByUUID("TIMES"));
}

void WayfoldBookmarkDataSourceTest::noMatchesGiveAnEmptyList()
{
    BookmarksTab tab;
    tab.source->ensureDataLoaded();
    tab.search("zeppelin");
    QCOMPARE(tab.view.numberOfRows(), 0);
    QCOMPARE(tab.view.placeholderText(), QString("No Matches"));
    tab.search("");
    QCOMPARE(tab.view.numberOfRows(), 3);
    QCOMPARE(tab.view.placeholderText(),
             QString("There are no bookmarks.\n\nThose that you add in the browser appear here."));
}

void WayfoldBookmarkDataSourceTest::refiningKeepsTheFolderOfMatches()
{
    BookmarksTab tab;
    tab.source->ensureDataLoaded();
    tab.search("t");
    const WayfoldBookmarkFolderPtr found = tab.source->localRootFolder();
    tab.search("ti");
    QCOMPARE(tab.source->localRootFolder(), found);
    QCOMPARE(tab.rows(), QStringList{"Timetable"});
}

void WayfoldBookmarkDataSourceTest::clearingShowsTheTreeAgain()
{
    BookmarksTab tab;
    tab.source->ensureDataLoaded();
    tab.search("kettle");
    tab.search("");
    QCOMPARE(tab.source->localRootFolder(), ListStage::store().safariBookmarkRoot());
    QCOMPARE(tab.rows(), QStringList({"Bookmarks Bar", "Kitchen", "Observatory"}));
    tab.search("stars");
    QCOMPARE(tab.rows(), QStringList{"Observatory"});
    QCOMPARE(ListStage::store().safariBookmarkRoot()->childCount(), 3U);
}

void WayfoldBookmarkDataSourceTest::openFoldersAreOpenAfterTheSearch()
{
    BookmarksTab tab;
    tab.source->ensureDataLoaded();
    tab.view.expandItem(tab.item("BAR"));
    tab.view.expandItem(tab.item("TRAINS"));
    const QStringList before = tab.rows();
    QCOMPARE(before.size(), 6);
    tab.search("k");
    tab.search("ke");
    tab.search("");
    QCOMPARE(tab.rows(), before);
    // What was closed meanwhile stays so.
    tab.view.collapseItem(tab.item("BAR"));
    tab.search("k");
    tab.search("");
    QCOMPARE(tab.rows().size(), 3);
}

void WayfoldBookmarkDataSourceTest::clearingWhatIsNotFilteredChangesNothing()
{
    BookmarksTab tab;
    tab.source->ensureDataLoaded();
    tab.view.expandItem(tab.item("BAR"));
    tab.search("");
    QCOMPARE(tab.source->localRootFolder(), ListStage::store().safariBookmarkRoot());
    QCOMPARE(tab.rows(), QStringList({"Bookmarks Bar", "-Marsh Line", "-Trains", "Kitchen", "Observatory"}));
}

void WayfoldBookmarkDataSourceTest::nothingIsKeptOfTheOldTree_data()
{
    QTest::addColumn<QString>("search");
    QTest::newRow("unfiltered") << "";
    QTest::newRow("filtered") << "kettle";
    QTest::newRow("a folder found") << "kitchen";
}

void WayfoldBookmarkDataSourceTest::nothingIsKeptOfTheOldTree()
{
    QFETCH(QString, search);
    BookmarksTab tab;
    tab.source->ensureDataLoaded();
    if (!search.isEmpty())
        tab.search(search);
    // Looked at, opened and selected.
    tab.view.selectRow(0);
    for (int row = 0; row < tab.view.numberOfRows(); ++row)
        tab.view.expandItem(tab.view.itemAtRow(row));
    const std::weak_ptr<WayfoldBookmarkFolder> root = ListStage::store().safariBookmarkRoot();
    const std::weak_ptr<KDRBookmark> folder = root.lock()->findByUUID("KITCHEN");
    const std::weak_ptr<KDRBookmark> link = root.lock()->findByUUID("KETTLE");
    change(someBookmarks());
    QVERIFY(tab.view.numberOfRows() > 0);
    QVERIFY(root.expired());
    QVERIFY(folder.expired());
    QVERIFY(link.expired());
}

void WayfoldBookmarkDataSourceTest::newTreeIsFilteredToo()
{
    BookmarksTab tab;
    tab.source->ensureDataLoaded();
    tab.search("kettle");
    change({BrowserFiles::link("Copper kettle", "http://copper.org/", "COPPER"),
            BrowserFiles::link("New", "http://new.org/", "NEW")});
    QCOMPARE(tab.rows(), QStringList{"Copper kettle"});
    QVERIFY(tab.source->localRootFolder() != ListStage::store().safariBookmarkRoot());
    tab.search("");
    QCOMPARE(tab.rows(), QStringList({"Copper kettle", "New"}));
}

void WayfoldBookmarkDataSourceTest::matchesBeginAtTheTop()
{
    change(manyPages(200));
    BookmarksTab tab;
    tab.source->ensureDataLoaded();
    tab.view.scrollRowToVisible(150);
    QVERIFY(tab.view.rectOfRow(0).bottom() < 0);
    tab.search("page");
    QCOMPARE(tab.view.rectOfRow(0).top(), 0);
}

void WayfoldBookmarkDataSourceTest::selectedMatchStaysSelected()
{
    BookmarksTab tab;
    tab.source->ensureDataLoaded();
    tab.search("marsh");
    tab.view.selectItem(tab.item("TIMES"));
    tab.search("marsh.org");
    QCOMPARE(ListStage::titles(tab.view.selectedItemList()), QStringList{"Timetable"});
    tab.search("marsh.org/t");
    QCOMPARE(ListStage::titles(tab.view.selectedItemList()), QStringList{"Timetable"});
    tab.search("kettle");
    QVERIFY(!tab.source->anyItemSelected());
}

void WayfoldBookmarkDataSourceTest::selectedMatchIsSelectedAfterTheSearch()
{
    change({BrowserFiles::folder("Closed", "CLOSED", {BrowserFiles::link("Hidden", "http://b.org/", "HIDDEN")}),
            BrowserFiles::folder("Open", "OPEN", manyPages(200))});
    BookmarksTab tab;
    tab.source->ensureDataLoaded();
    tab.view.expandItem(tab.item("OPEN"));
    tab.search("page 17");
    tab.view.selectItem(tab.item("PAGE171"));
    tab.search("");
    QCOMPARE(tab.view.selectedItem(), tab.item("PAGE171"));
    QVERIFY(tab.view.viewport()->rect().contains(tab.view.rectOfRow(tab.view.selectedRow())));
    // What cannot be seen is not selected.
    tab.search("hidden");
    tab.view.selectRow(0);
    tab.search("");
    QVERIFY(!tab.source->anyItemSelected());
    QCOMPARE(tab.view.rectOfRow(0).top(), 0);
}

void WayfoldBookmarkDataSourceTest::newBookmarksMoveNothing_data()
{
    QTest::addColumn<QString>("search");
    QTest::newRow("all") << QString();
    QTest::newRow("searching") << "page";
}

void WayfoldBookmarkDataSourceTest::newBookmarksMoveNothing()
{
    QFETCH(QString, search);
    QVariantList pages = manyPages(200);
    change(pages);
    BookmarksTab tab;
    tab.source->ensureDataLoaded();
    tab.search(search);
    tab.view.scrollRowToVisible(150);
    const std::pair<QString, int> before = topOf(tab.view);
    for (const char *title : {"New page", "Newer page"}) {
        pages.prepend(BrowserFiles::link(title, "http://new.org/", title));
        change(pages);
        QCOMPARE(topOf(tab.view), before);
    }
}

void WayfoldBookmarkDataSourceTest::searchBeforeTheBrowserHasWritten()
{
    _stage.reset();
    _stage.emplace();
    QVERIFY(!ListStage::store().safariBookmarkRoot());
    BookmarksTab tab;
    tab.source->ensureDataLoaded();
    QCOMPARE(tab.view.placeholderText(),
             QString("There are no bookmarks.\n\nThose that you add in the browser appear here."));
    tab.search("x");
    QCOMPARE(tab.view.numberOfRows(), 0);
    QCOMPARE(tab.view.placeholderText(), QString("No Matches"));
    tab.search("");
    QCOMPARE(tab.view.numberOfRows(), 0);
    QCOMPARE(tab.view.placeholderText(),
             QString("There are no bookmarks.\n\nThose that you add in the browser appear here."));
    tab.search("kettle");
    change(someBookmarks());
    QCOMPARE(tab.rows(), QStringList{"Kettle works"});
    tab.search("");
    QCOMPARE(tab.rows(), QStringList({"Bookmarks Bar", "Kitchen", "Observatory"}));
}

// --- The rest -------------------------------------------------------------------------------------------------------

void WayfoldBookmarkDataSourceTest::rowsAreOpened()
{
    BookmarksTab tab;
    tab.source->ensureDataLoaded();
    tab.view.selectItem(tab.item("STARS"));
    tab.view.doubleAction();
    QCOMPARE(_stage->openedURLs, QStringList{"http://stars.org/"});
    tab.search("kettle");
    tab.view.selectRow(0);
    tab.view.doubleAction();
    QCOMPARE(_stage->openedURLs.last(), QString("http://kettle.example.com/"));
}

void WayfoldBookmarkDataSourceTest::returnOpens_data()
{
    QTest::addColumn<Qt::Key>("key");
    QTest::newRow("Return") << Qt::Key_Return;
    QTest::newRow("Enter") << Qt::Key_Enter;
}

void WayfoldBookmarkDataSourceTest::returnOpens()
{
    QFETCH(Qt::Key, key);
    BookmarksTab tab;
    tab.source->ensureDataLoaded();
    QTest::keyClick(&tab.view, key); // nothing is selected
    tab.view.selectItem(tab.item("STARS"));
    QTest::keyClick(&tab.view, key, Qt::ControlModifier);
    QVERIFY(_stage->openedURLs.isEmpty());
    QTest::keyClick(&tab.view, key);
    QCOMPARE(_stage->openedURLs, QStringList{"http://stars.org/"});
    tab.view.selectIndividualItem(tab.item("KITCHEN"));
    QTest::keyClick(&tab.view, key);
    QVERIFY(tab.view.isItemExpanded(tab.item("KITCHEN")));
    QTest::keyClick(&tab.view, key);
    QVERIFY(!tab.view.isItemExpanded(tab.item("KITCHEN")));
    QCOMPARE(_stage->openedURLs.size(), 1);
}

void WayfoldBookmarkDataSourceTest::selection()
{
    BookmarksTab tab;
    tab.source->ensureDataLoaded();
    QVERIFY(!tab.source->anyItemSelected());
    tab.view.selectRow(1);
    QVERIFY(tab.source->anyItemSelected());
    tab.source->deselectAllItems();
    QVERIFY(!tab.source->anyItemSelected());
}

void WayfoldBookmarkDataSourceTest::dropsAreRefused()
{
    BookmarksTab tab;
    tab.source->ensureDataLoaded();
    QMimeData data;
    data.setUrls({QUrl("http://a.org/")});
    OutlineDropTarget target;
    QVERIFY(!tab.source->outlineViewTakesData(tab.view, data));
    QCOMPARE(tab.source->outlineViewValidateDrop(tab.view, data, false, target), Qt::IgnoreAction);
    QVERIFY(!tab.source->outlineViewAcceptDrop(tab.view, data, target));
    QVERIFY(!tab.view.allowIncomingDrops());
}

void WayfoldBookmarkDataSourceTest::savingWritesNothing()
{
    BookmarksTab tab;
    tab.source->ensureDataLoaded();
    const QString path = _stage->home.path("Library/Safari/Bookmarks.plist");
    const std::optional<FileStamp> before = FileStamp::ofFile(path);
    QVERIFY(before);
    tab.source->localRootFolder()->removeAllChildren();
    tab.source->savebookmarkBookmarkRoot();
    QCOMPARE(FileStamp::ofFile(path), before); // not even the same once more
    QCOMPARE(QDir(QFileInfo(path).path()).entryList(QDir::Files), QStringList{"Bookmarks.plist"});
}

void WayfoldBookmarkDataSourceTest::goesBeforeItsView()
{
    BookmarksTab tab;
    tab.source->ensureDataLoaded();
    tab.source.reset();
    QVERIFY(!tab.view.outlineDataSource());
    QVERIFY(!tab.view.delegate());
    QVERIFY(!tab.view.doubleAction);
    tab.view.prepForReloadData();
    tab.view.reloadData();
    QTest::keyClick(&tab.view, Qt::Key_Space);
    change({});
    QCOMPARE(tab.view.numberOfRows(), 0);
}

void WayfoldBookmarkDataSourceTest::worksWithoutView()
{
    WayfoldBookmarkDataSource source(nullptr);
    source.awakeFromNib();
    source.ensureDataLoaded();
    QLineEdit field("kettle");
    source.processSearchFilter(&field);
    QCOMPARE(source.localRootFolder()->childCount(), 1U);
    change({});
    QCOMPARE(source.localRootFolder()->childCount(), 0U);
    source.deselectAllItems();
    QVERIFY(!source.anyItemSelected());
}

QTEST_MAIN(WayfoldBookmarkDataSourceTest)
#include "WayfoldBookmarkDataSourceTest.moc"
