#include "lists/WayfoldHistoryDataSource.h"

#include "core/Notifications.h"
#include "lists/WayfoldHistoryOutlineView.h"
#include "platform/files/FileStamp.h"
#include "tests/lists/ListStage.h"
#include "tests/support/BrowserFiles.h"

#include <QLineEdit>

namespace
{
// Seconds since the reference date, as the browser's file has them: noon of a day in January 2001.
QString noonOf(int day)
{
    return QString::number((day - 1) * 86400 + 43200);
}

void addEntry(const WayfoldBookmarkFolderPtr &folder, const QString &title, const QString &address, int day)
{
    QVariantMap entry{{QString(""), address}, {"title", title}};
    if (day > 0)
        entry.insert("lastVisitedDate", noonOf(day));
    folder->parseHistoryDictionary(entry);
    if (day == 0)
        folder->lastChild()->setTimestamp(CalendarDate());
}

WayfoldBookmarkFolderPtr someHistory()
{
    auto history = WayfoldBookmarkFolder::bookmarkWithTitle("History");
    addEntry(history, "b today", "http://www.b.org/1", 3);
    addEntry(history, "a today", "http://www.a.org/1", 3);
    addEntry(history, "a yesterday", "http://www.a.org/2", 2);
    addEntry(history, "b long ago", "http://www.b.org/2", 1);
    addEntry(history, "a again", "http://www.a.org/3", 3);
    addEntry(history, "no site", "file:///etc/hosts", 2);
    addEntry(history, "no date", "http://www.c.org/", 0);
    return history;
}

// "title" for an entry, "title(...)" for a folder with what it holds.
QString outline(const WayfoldBookmarkFolder &folder)
{
    QStringList parts;
    for (const KDRBookmarkPtr &child : folder.children()) {
        const auto sub = WayfoldBookmarkFolder::fromItem(child);
        parts.append(sub ? sub->title() + "(" + outline(*sub) + ")" : child->title());
    }
    return parts.join(", ");
}

void regroup(const WayfoldBookmarkFolderPtr &from, const WayfoldBookmarkFolderPtr &into, const QString &style)
{
    WayfoldHistoryDataSource::regroupBookmarksFromFolderIntoFolderWithGroupingStyle(from, into, style);
}

// The History tab of one drawer.
class HistoryTab
{
public:
    explicit HistoryTab(bool isSeen = true)
    {
        source = std::make_unique<WayfoldHistoryDataSource>(&view);
        view.setDelegate(source.get());
        view.awakeFromNib();
        view.setOutlineDataSource(source.get());
        source->awakeFromNib();
        view.resize(300, 400);
        view.setVisible(isSeen);
    }

    WayfoldHistoryOutlineView view;
    QLineEdit field;
    std::unique_ptr<WayfoldHistoryDataSource> source; // goes before the view does

    QStringList rows() const { return ListStage::rows(view); }
    QString shown() const { return outline(*source->localRootFolder()); }
    void search(const QString &text)
    {
        field.setText(text);
        source->processSearchFilter(&field);
    }
    void expandAll()
    {
        for (int row = 0; row < view.numberOfRows(); ++row)
            view.expandItem(view.itemAtRow(row));
    }
};

QVariantList someVisits()
{
    using Files = BrowserFiles;
    return {
        Files::visit("b today", "http://www.b.org/1", Files::noonOf(3)),
        Files::visit("a today", "http://www.a.org/1", Files::noonOf(3)),
        Files::visit("a yesterday", "http://www.a.org/2", Files::noonOf(2)),
        Files::visit("no site", "file:///etc/hosts", Files::noonOf(2)),
        Files::visit("b long ago", "http://www.b.org/2", Files::noonOf(1)),
    };
}

// Some fifty sites, the newest visit first, "istory" in every title.
QVariantList manyVisits(int count)
{
    QVariantList visits;
    for (int i = count; i > 0; --i) {
        const QString address = QString("http://www.site%1.org/%2").arg(i % 50).arg(i);
        visits.append(
            BrowserFiles::visit(QString("History of %1").arg(i), address, BrowserFiles::noonOf(1 + (i - 1) / 100)));
    }
    return visits;
}

// The row that is seen first, and where it stands.
std::pair<QString, int> topOf(const WayfoldOutlineView &view)
{
    const int row = view.rowAtPoint(QPoint(5, 0));
    return {ListStage::rows(view).value(row), view.rectOfRow(row).top()};
}

const char *const bySiteAndDay = "a.org(03.01.01(a today), 02.01.01(a yesterday)), "
                                 "b.org(03.01.01(b today), 01.01.01(b long ago))";
} // namespace

class WayfoldHistoryDataSourceTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    // Days as 03.01.01, and the texts as they are, since nobody has translated them.
    void initTestCase() { QLocale::setDefault(QLocale(QLocale::Italian, QLocale::Switzerland)); }
    void init()
    {
        _stage.emplace();
        BrowserFiles(_stage->home).writeHistory(someVisits());
        ListStage::store();
        QCoreApplication::processEvents(); // what the start had to tell is told
    }
    void cleanup() { _stage.reset(); }

    void styles_data();
    void styles();
    void entriesAreTheVeryOnes();
    void foldersAreUsedAgain();
    void emptyFoldersGo();
    void noTargetIsNoMistake();
    void unknownStyleKeepsFoldersOnly();

    void nothingIsShownBeforeItIsLoaded();
    void loadsOnce();
    void listOfEveryStyle_data();
    void listOfEveryStyle();
    void daysInTheUsersFormat_data();
    void daysInTheUsersFormat();
    void emptyHistoryGivesAnEmptyList();
    void everyDrawerHasFoldersOfItsOwn();

    void newHistoryKeepsTheFolders();
    void openFoldersStayOpen();
    void siteThatIsGoneGoesWithTheReloadAfter();
    void styleChangeStartsAnew();
    void otherStyleOfTheSameTitlesStartsAnew();
    void nothingIsHeardBeforeItIsLoaded();
    void rebuildingDeselects();
    void newVisitsMoveNothing_data();
    void newVisitsMoveNothing();
    void listOutOfSightFollowsWhenItIsSeen_data();
    void listOutOfSightFollowsWhenItIsSeen();

    void matches_data();
    void matches();
    void matchesAreCopies();
    void searchMakesNoEntries();
    void noMatchesGiveAnEmptyList();
    void refiningKeepsTheFolderOfMatches();
    void clearingGroupsAgain_data();
    void clearingGroupsAgain();
    void openFoldersAreOpenAfterTheSearch();
    void selectedMatchIsSelectedAfterTheSearch();
    void matchesBeginAtTheTop();
    void clearingWhatIsNotFilteredChangesNothing();
    void newHistoryIsFilteredToo();
    void nothingIsKeptOfTheOldHistory();
    void styleChangeWaitsForTheFilter();
    void searchDeselects();
    void selectedMatchStaysSelected();
    void foundHistoryIsAFolderLikeAnyOther();
    void matchStaysSelectedBesideTheFoundHistory();
    void searchBeforeTheBrowserHasWritten();

    void rowsAreOpened();
    void dropsAreRefused();
    void savingWritesNothing();
    void goesBeforeItsView();
    void worksWithoutView();

private:
    // The browser has written its file again.
    void change(const QVariantList &visits)
    {
        BrowserFiles(_stage->home).writeHistory(visits);
        ListStage::store().tagSafariFiles();
        QCoreApplication::processEvents();
    }
    // As the preferences do.
    static void changeStyle(const QString &style)
    {
        ListStage::settings().setHistoryGroupingStyle(style);
        NotificationCenter::defaultCenter().postNotificationName(Notifications::SafariHistoryFileModNotification,
                                                                 nullptr);
    }

    std::optional<ListStage> _stage;
};

// --- Grouping -------------------------------------------------------------------------------------------------------

void WayfoldHistoryDataSourceTest::styles_data()
{
    QTest::addColumn<QString>("style");
    QTest::addColumn<QString>("expected");
    QTest::newRow("none") << "0"
                          << "b today, a today, a yesterday, b long ago, a again, no site, no date";
    QTest::newRow("by day") << "1"
                            << "03.01.01(b today, a today, a again), 02.01.01(a yesterday, no site), "
                               "01.01.01(b long ago)";
    QTest::newRow("by day, then by site") << "2"
                                          << "03.01.01(a.org(a today, a again), b.org(b today)), "
                                             "02.01.01(a.org(a yesterday)), 01.01.01(b.org(b long ago))";
    QTest::newRow("by site") << "3"
                             << "a.org(a today, a yesterday, a again), b.org(b today, b long ago)";
    QTest::newRow("by site, then by day") << "4"
                                          << "a.org(03.01.01(a today, a again), 02.01.01(a yesterday)), "
                                             "b.org(03.01.01(b today), 01.01.01(b long ago))";
}

void WayfoldHistoryDataSourceTest::styles()
{
    QFETCH(QString, style);
    QFETCH(QString, expected);
    const auto into = WayfoldBookmarkFolder::bookmarkWithTitle("");
    regroup(someHistory(), into, style);
    QCOMPARE(outline(*into), expected);
}

void WayfoldHistoryDataSourceTest::entriesAreTheVeryOnes()
{
    const auto history = someHistory();
    const auto into = WayfoldBookmarkFolder::bookmarkWithTitle("");
    regroup(history, into, "3");
    const auto site = WayfoldBookmarkFolder::fromItem(into->childWithTitle("a.org"));
    QVERIFY(site);
    QCOMPARE(site->childAtIndex(0), history->childAtIndex(1));
    QCOMPARE(history->childAtIndex(1)->parent(), site);
    QCOMPARE(history->childCount(), 7U);
}

void WayfoldHistoryDataSourceTest::foldersAreUsedAgain()
{
    const auto into = WayfoldBookmarkFolder::bookmarkWithTitle("");
    regroup(someHistory(), into, "4");
    const auto site = into->childWithTitle("a.org");
    const auto day = WayfoldBookmarkFolder::fromItem(site)->childAtIndex(0);
    regroup(someHistory(), into, "4");
    QCOMPARE(into->childWithTitle("a.org"), site);
    QCOMPARE(WayfoldBookmarkFolder::fromItem(site)->childAtIndex(0), day);
}

void WayfoldHistoryDataSourceTest::emptyFoldersGo()
{
    const auto into = WayfoldBookmarkFolder::bookmarkWithTitle("");
    regroup(someHistory(), into, "3");
    const auto rest = WayfoldBookmarkFolder::bookmarkWithTitle("History");
    addEntry(rest, "b", "http://www.b.org/", 1);
    regroup(rest, into, "3");
    QCOMPARE(outline(*into), QString("b.org(b)"));
}

void WayfoldHistoryDataSourceTest::noTargetIsNoMistake()
{
    const auto history = someHistory();
    regroup(history, nullptr, "1");
    QCOMPARE(history->childCount(), 7U);
    QVERIFY(!history->childAtIndex(0)->parent() || history->childAtIndex(0)->parent() == history);
}

void WayfoldHistoryDataSourceTest::unknownStyleKeepsFoldersOnly()
{
    const auto into = WayfoldBookmarkFolder::bookmarkWithTitle("");
    regroup(someHistory(), into, "3");
    into->addChild(WayfoldHistoryURL::bookmarkWithTitle("leaf"));
    regroup(someHistory(), into, "9");
    QCOMPARE(outline(*into), QString("a.org(), b.org()"));
}

// --- The list -------------------------------------------------------------------------------------------------------

void WayfoldHistoryDataSourceTest::nothingIsShownBeforeItIsLoaded()
{
    const HistoryTab tab;
    QVERIFY(!tab.source->localRootFolder());
    QCOMPARE(tab.view.numberOfRows(), 0);
    QCOMPARE(tab.source->myOutlineView(), &tab.view);
}

void WayfoldHistoryDataSourceTest::loadsOnce()
{
    HistoryTab tab;
    tab.source->ensureDataLoaded();
    QCOMPARE(tab.rows(), QStringList({"a.org", "b.org"}));
    const KDRBookmarkPtr entry = ListStage::store().historyBookmarkRoot()->childAtIndex(0);
    ListStage::store().historyBookmarkRoot()->removeAllChildren();
    tab.source->ensureDataLoaded();
    QCOMPARE(tab.shown(), QString(bySiteAndDay));
    QCOMPARE(tab.source->localRootFolder()->findByUUID("http://www.b.org/1"), entry);
}

void WayfoldHistoryDataSourceTest::listOfEveryStyle_data()
{
    QTest::addColumn<QString>("style");
    QTest::addColumn<QString>("expected");
    QTest::newRow("0") << "0"
                       << "b today, a today, a yesterday, no site, b long ago";
    QTest::newRow("1") << "1"
                       << "03.01.01(b today, a today), 02.01.01(a yesterday, no site), 01.01.01(b long ago)";
    QTest::newRow("2") << "2"
                       << "03.01.01(a.org(a today), b.org(b today)), 02.01.01(a.org(a yesterday)), "
                          "01.01.01(b.org(b long ago))";
    QTest::newRow("3") << "3"
                       << "a.org(a today, a yesterday), b.org(b today, b long ago)";
    QTest::newRow("4") << "4" << bySiteAndDay;
    QTest::newRow("unknown") << "7"
                             << "";
}

void WayfoldHistoryDataSourceTest::listOfEveryStyle()
{
    QFETCH(QString, style);
    QFETCH(QString, expected);
    ListStage::settings().setHistoryGroupingStyle(style);
    HistoryTab tab;
    tab.source->ensureDataLoaded();
    QCOMPARE(tab.shown(), expected);
}

void WayfoldHistoryDataSourceTest::daysInTheUsersFormat_data()
{
    QTest::addColumn<QString>("format");
    QTest::addColumn<QString>("expected");
    QTest::newRow("day") << "%1d.%1m.%Y"
                         << "3.1.2001(b today, a today), 2.1.2001(a yesterday, no site), 1.1.2001(b long ago)";
    QTest::newRow("month") << "%B %Y"
                           << "gennaio 2001(b today, a today, a yesterday, no site, b long ago)";
    QTest::newRow("time of day") << "%d %H:%M"
                                 << "03 12:00(b today, a today), 02 12:00(a yesterday, no site), "
                                    "01 12:00(b long ago)";
    QTest::newRow("none") << ""
                          << "03.01.01(b today, a today), 02.01.01(a yesterday, no site), 01.01.01(b long ago)";
}

void WayfoldHistoryDataSourceTest::daysInTheUsersFormat()
{
    QFETCH(QString, format);
    QFETCH(QString, expected);
    _stage->host.hostSettings.values.insert("NSShortDateFormatString", format);
    ListStage::settings().setHistoryGroupingStyle("1");
    HistoryTab tab;
    tab.source->ensureDataLoaded();
    QCOMPARE(tab.shown(), expected);
    // Later visits of the same days.
    QVariantList visits = someVisits();
    visits.prepend(BrowserFiles::visit("b later", "http://www.b.org/3", QString::number(2 * 86400 + 43200 + 1800)));
    change(visits);
    QCOMPARE(tab.source->localRootFolder()->childCount(), format.contains("%M") ? 4U : format == "%B %Y" ? 1U : 3U);
}

void WayfoldHistoryDataSourceTest::emptyHistoryGivesAnEmptyList()
{
    change({});
    HistoryTab tab;
    tab.source->ensureDataLoaded();
    QCOMPARE(tab.view.numberOfRows(), 0);
    QCOMPARE(tab.view.placeholderText(), QString("The history is empty.\n\nThe pages that you visit appear here."));
}

void WayfoldHistoryDataSourceTest::everyDrawerHasFoldersOfItsOwn()
{
    HistoryTab tab;
    HistoryTab other;
    tab.source->ensureDataLoaded();
    other.source->ensureDataLoaded();
    QVERIFY(tab.source->localRootFolder() != other.source->localRootFolder());
    QVERIFY(tab.view.itemAtRow(0) != other.view.itemAtRow(0));
    QCOMPARE(tab.shown(), other.shown());
}

void WayfoldHistoryDataSourceTest::newHistoryKeepsTheFolders()
{
    HistoryTab tab;
    tab.source->ensureDataLoaded();
    const WayfoldBookmarkFolderPtr root = tab.source->localRootFolder();
    const KDRBookmarkPtr site = root->childWithTitle("a.org");
    QVariantList visits = someVisits();
    visits.prepend(BrowserFiles::visit("c", "http://www.c.org/", BrowserFiles::noonOf(4)));
    change(visits);
    QCOMPARE(tab.source->localRootFolder(), root);
    QCOMPARE(root->childWithTitle("a.org"), site);
    QCOMPARE(tab.rows(), QStringList({"a.org", "b.org", "c.org"}));
}

void WayfoldHistoryDataSourceTest::openFoldersStayOpen()
{
    HistoryTab tab;
    tab.source->ensureDataLoaded();
    tab.view.expandItem(tab.view.itemAtRow(0));
    tab.view.expandItem(tab.view.itemAtRow(1));
    tab.view.selectItem(tab.source->localRootFolder()->findByUUID("http://www.a.org/1"));
    QVariantList visits = someVisits();
    visits.prepend(BrowserFiles::visit("a new", "http://www.a.org/9", BrowserFiles::noonOf(3)));
    change(visits);
    QCOMPARE(tab.rows(), QStringList({"a.org", "-03.01.01", "--a new", "--a today", "-02.01.01", "b.org"}));
    QCOMPARE(ListStage::titles(tab.view.selectedItemList()), QStringList{"a today"});
}

void WayfoldHistoryDataSourceTest::siteThatIsGoneGoesWithTheReloadAfter()
{
    HistoryTab tab;
    tab.source->ensureDataLoaded();
    change({someVisits().first()});
    tab.source->parseHistoryBookmarks(); // when it was looked into, only its days were empty before
    QCOMPARE(tab.shown(), QString("b.org(03.01.01(b today))"));
}

void WayfoldHistoryDataSourceTest::styleChangeStartsAnew()
{
    HistoryTab tab;
    tab.source->ensureDataLoaded();
    const WayfoldBookmarkFolderPtr root = tab.source->localRootFolder();
    changeStyle("1");
    QCOMPARE(tab.source->localRootFolder(), root);
    QCOMPARE(tab.rows(), QStringList({"03.01.01", "02.01.01", "01.01.01"}));
    changeStyle("0");
    QCOMPARE(tab.rows(), QStringList({"b today", "a today", "a yesterday", "no site", "b long ago"}));
    changeStyle("8");
    QCOMPARE(tab.view.numberOfRows(), 0);
}

void WayfoldHistoryDataSourceTest::otherStyleOfTheSameTitlesStartsAnew()
{
    HistoryTab tab;
    tab.source->ensureDataLoaded();
    const KDRBookmarkPtr site = tab.source->localRootFolder()->childWithTitle("a.org");
    changeStyle("3");
    QVERIFY(tab.source->localRootFolder()->childWithTitle("a.org") != site);
    QCOMPARE(tab.shown(), QString("a.org(a today, a yesterday), b.org(b today, b long ago)"));
}

void WayfoldHistoryDataSourceTest::nothingIsHeardBeforeItIsLoaded()
{
    const HistoryTab tab;
    change({someVisits().first()});
    QVERIFY(!tab.source->localRootFolder());
}

void WayfoldHistoryDataSourceTest::rebuildingDeselects()
{
    HistoryTab tab;
    tab.source->ensureDataLoaded();
    tab.view.selectRow(1);
    tab.source->parseHistoryBookmarks();
    QVERIFY(!tab.source->anyItemSelected());
}

void WayfoldHistoryDataSourceTest::newVisitsMoveNothing_data()
{
    QTest::addColumn<QString>("style");
    QTest::addColumn<QString>("search");
    QTest::newRow("no folders") << "0" << QString();
    QTest::newRow("by day") << "1" << QString();
    QTest::newRow("by day, then by site") << "2" << QString();
    QTest::newRow("by site") << "3" << QString();
    QTest::newRow("by site, then by day") << "4" << QString();
    QTest::newRow("searching") << "4"
                               << "of";
    QTest::newRow("searching for what the whole is called, too") << "4"
                                                                 << "istory";
}

// What the user looks at stays where it is, also if a page is visited once more that stood there.
void WayfoldHistoryDataSourceTest::newVisitsMoveNothing()
{
    QFETCH(QString, style);
    QFETCH(QString, search);
    QVariantList visits = manyVisits(300);
    change(visits);
    ListStage::settings().setHistoryGroupingStyle(style);
    HistoryTab tab;
    tab.source->ensureDataLoaded();
    for (int level = 0; level < 2; ++level)
        tab.expandAll();
    tab.search(search);
    QVERIFY(tab.view.numberOfRows() >= 300);
    tab.view.scrollRowToVisible(250);
    tab.view.grab();
    const std::pair<QString, int> before = topOf(tab.view);
    for (int more = 1; more <= 3; ++more) {
        const QString address = QString("http://www.site0.org/new%1").arg(more);
        visits.prepend(BrowserFiles::visit(QString("History of new %1").arg(more), address, BrowserFiles::noonOf(9)));
        change(visits);
        QCOMPARE(topOf(tab.view), before);
    }
    visits.prepend(visits.takeAt(200));
    const int rows = tab.view.numberOfRows();
    const QString bottom = ListStage::rows(tab.view).last();
    change(visits);
    QCOMPARE(tab.view.numberOfRows(), rows);
    QCOMPARE(ListStage::rows(tab.view).last(), bottom);
    QCOMPARE(topOf(tab.view), before);
}

// --- Searching ------------------------------------------------------------------------------------------------------

// Every window has a list, and most of them are behind another tab, or in a drawer that is closed.
void WayfoldHistoryDataSourceTest::listOutOfSightFollowsWhenItIsSeen_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("wasSeen");
    QTest::newRow("grouped") << "" << true;
    QTest::newRow("searched") << "again" << true;
    QTest::newRow("never seen") << "" << false;
}

void WayfoldHistoryDataSourceTest::listOutOfSightFollowsWhenItIsSeen()
{
    QFETCH(QString, text);
    QFETCH(bool, wasSeen);
    HistoryTab tab(wasSeen);
    tab.source->ensureDataLoaded();
    tab.search(text);
    const QStringList before = tab.rows();
    tab.view.hide();
    QVariantList visits = someVisits();
    visits.prepend(BrowserFiles::visit("again and again", "http://www.new.org/again", BrowserFiles::noonOf(4)));
    change(visits);
    QCOMPARE(tab.rows(), before);
    tab.view.show();
    QVERIFY(tab.rows() != before);
    QVERIFY(tab.rows().contains(text.isEmpty() ? "new.org" : "again and again"));
    const WayfoldBookmarkFolderPtr root = tab.source->localRootFolder();
    const KDRBookmarkPtr first = root->childAtIndex(0);
    tab.view.hide();
    tab.view.show(); // nothing has changed
    QVERIFY(tab.source->localRootFolder() == root);
    QVERIFY(root->childAtIndex(0) == first);
}

void WayfoldHistoryDataSourceTest::matches_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QStringList>("rows");
    QTest::newRow("titles, whatever their letters' case") << "TODAY" << QStringList({"b today", "a today"});
    QTest::newRow("addresses") << "www.b.org" << QStringList({"b today", "b long ago"});
    QTest::newRow("what no site has") << "hosts" << QStringList{"no site"};
    QTest::newRow("the root has a title too") << "istor" << QStringList{"History"};
}

void WayfoldHistoryDataSourceTest::matches()
{
    QFETCH(QString, text);
    QFETCH(QStringList, rows);
    HistoryTab tab;
    tab.source->ensureDataLoaded();
    tab.search(text);
    QCOMPARE(tab.rows(), rows);
    QCOMPARE(tab.source->localRootFolder()->title(), QString(""));
}

void WayfoldHistoryDataSourceTest::matchesAreCopies()
{
    HistoryTab tab;
    tab.source->ensureDataLoaded();
    const WayfoldBookmarkFolderPtr grouped = tab.source->localRootFolder();
    tab.search("b long ago");
    const KDRBookmarkPtr match = tab.source->localRootFolder()->childAtIndex(0);
    const KDRBookmarkPtr original = ListStage::store().historyBookmarkRoot()->childAtIndex(4);
    QVERIFY(match != original);
    QVERIFY(match->isEqual(*original));
    QCOMPARE(outline(*grouped), QString(bySiteAndDay));
    QCOMPARE(original->parent()->title(), QString("01.01.01"));
}

void WayfoldHistoryDataSourceTest::searchMakesNoEntries()
{
    HistoryTab tab;
    tab.source->ensureDataLoaded();
    tab.search("today");
    QCOMPARE(tab.view.numberOfRows(), 2);
    const WayfoldBookmarkFolderPtr history = ListStage::store().historyBookmarkRoot();
    QVERIFY(history->childCount() > 2);
    QVERIFY(history->madeChildren().empty());
}

void WayfoldHistoryDataSourceTest::noMatchesGiveAnEmptyList()
{
    HistoryTab tab;
    tab.source->ensureDataLoaded();
    tab.search("zeppelin");
    QCOMPARE(tab.view.numberOfRows(), 0);
    QCOMPARE(tab.view.placeholderText(), QString("No Matches"));
    tab.search("");
    QCOMPARE(tab.shown(), QString(bySiteAndDay));
}

void WayfoldHistoryDataSourceTest::refiningKeepsTheFolderOfMatches()
{
    HistoryTab tab;
    tab.source->ensureDataLoaded();
    tab.search("a");
    const WayfoldBookmarkFolderPtr found = tab.source->localRootFolder();
    tab.search("a y");
    QCOMPARE(tab.source->localRootFolder(), found);
    QCOMPARE(tab.rows(), QStringList{"a yesterday"});
}

void WayfoldHistoryDataSourceTest::clearingGroupsAgain_data()
{
    listOfEveryStyle_data();
}

void WayfoldHistoryDataSourceTest::clearingGroupsAgain()
{
    QFETCH(QString, style);
    QFETCH(QString, expected);
    ListStage::settings().setHistoryGroupingStyle(style);
    HistoryTab tab;
    tab.source->ensureDataLoaded();
    tab.search("o"); // the root among others
    const WayfoldBookmarkFolderPtr found = tab.source->localRootFolder();
    tab.search("");
    QCOMPARE(tab.source->localRootFolder(), found);
    QCOMPARE(tab.shown(), expected);
    tab.search("long");
    QCOMPARE(tab.rows(), QStringList{"b long ago"});
}

void WayfoldHistoryDataSourceTest::openFoldersAreOpenAfterTheSearch()
{
    HistoryTab tab;
    tab.source->ensureDataLoaded();
    const KDRBookmarkPtr site = tab.source->localRootFolder()->childWithTitle("a.org");
    tab.view.expandItem(tab.view.itemAtRow(0));
    tab.view.expandItem(tab.view.itemAtRow(1));
    const QStringList before = tab.rows();
    QCOMPARE(before.size(), 5);
    tab.search("t");
    tab.search("to");
    tab.search("");
    QCOMPARE(tab.rows(), before);
    QCOMPARE(tab.source->localRootFolder()->childWithTitle("a.org"), site);
    // With what came meanwhile.
    tab.search("to");
    QVariantList visits = someVisits();
    visits.prepend(BrowserFiles::visit("a new", "http://www.a.org/9", BrowserFiles::noonOf(3)));
    change(visits);
    tab.search("");
    QCOMPARE(tab.rows(), QStringList({"a.org", "-03.01.01", "--a new", "--a today", "-02.01.01", "b.org"}));
}

void WayfoldHistoryDataSourceTest::selectedMatchIsSelectedAfterTheSearch()
{
    change(manyVisits(200));
    ListStage::settings().setHistoryGroupingStyle("1");
    HistoryTab tab;
    tab.source->ensureDataLoaded();
    tab.view.expandItem(tab.view.itemAtRow(1));
    tab.search("of 30");
    tab.view.selectRow(0);
    QCOMPARE(ListStage::titles(tab.view.selectedItemList()), QStringList{"History of 30"});
    tab.search("");
    QCOMPARE(ListStage::titles(tab.view.selectedItemList()), QStringList{"History of 30"});
    QVERIFY(tab.view.viewport()->rect().contains(tab.view.rectOfRow(tab.view.selectedRow())));
    QVERIFY(tab.view.rectOfRow(0).bottom() < 0);
    // With nothing selected, from the top.
    tab.search("of 30");
    tab.view.deselectAll();
    tab.search("");
    QCOMPARE(tab.view.rectOfRow(0).top(), 0);
    QVERIFY(!tab.source->anyItemSelected());
}

void WayfoldHistoryDataSourceTest::matchesBeginAtTheTop()
{
    change(manyVisits(200));
    ListStage::settings().setHistoryGroupingStyle("0");
    HistoryTab tab;
    tab.source->ensureDataLoaded();
    tab.view.scrollRowToVisible(150);
    tab.view.selectRow(150);
    QVERIFY(tab.view.rectOfRow(0).bottom() < 0);
    for (const char *text : {"o", "of", "of 1"}) {
        tab.search(text);
        QCOMPARE(tab.view.rectOfRow(0).top(), 0);
        tab.view.scrollRowToVisible(100);
        QVERIFY(tab.view.rectOfRow(0).bottom() < 0);
    }
    tab.view.setFocus();
    tab.search("of 2");
    QVERIFY(!tab.source->anyItemSelected());
    QTest::keyClick(&tab.view, Qt::Key_Home);
    QCOMPARE(tab.view.selectedRows(), std::vector<int>{0});
}

void WayfoldHistoryDataSourceTest::clearingWhatIsNotFilteredChangesNothing()
{
    HistoryTab tab;
    tab.source->ensureDataLoaded();
    tab.view.expandItem(tab.view.itemAtRow(0));
    const WayfoldBookmarkFolderPtr grouped = tab.source->localRootFolder();
    tab.search("");
    QCOMPARE(tab.source->localRootFolder(), grouped);
    QCOMPARE(tab.rows(), QStringList({"a.org", "-03.01.01", "-02.01.01", "b.org"}));
}

void WayfoldHistoryDataSourceTest::nothingIsKeptOfTheOldHistory()
{
    HistoryTab tab;
    tab.source->ensureDataLoaded();
    // Looked at, opened and selected.
    tab.view.selectRow(0);
    for (int row = 0; row < tab.view.numberOfRows(); ++row)
        tab.view.expandItem(tab.view.itemAtRow(row));
    const std::weak_ptr<WayfoldBookmarkFolder> root = ListStage::store().historyBookmarkRoot();
    const std::weak_ptr<KDRBookmark> visit = root.lock()->childAtIndex(0);
    QVariantList visits = someVisits();
    visits.prepend(BrowserFiles::visit("c today", "http://www.c.org/", BrowserFiles::noonOf(3)));
    change(visits);
    QVERIFY(tab.view.numberOfRows() > 0);
    QVERIFY(root.expired());
    QVERIFY(visit.expired());
}

void WayfoldHistoryDataSourceTest::newHistoryIsFilteredToo()
{
    HistoryTab tab;
    tab.source->ensureDataLoaded();
    tab.search("today");
    QVariantList visits = someVisits();
    visits.removeFirst();
    visits.append(BrowserFiles::visit("c today", "http://www.c.org/", BrowserFiles::noonOf(3)));
    change(visits);
    QCOMPARE(tab.rows(), QStringList({"a today", "c today"}));
    tab.search("");
    QCOMPARE(tab.rows(), QStringList({"a.org", "b.org", "c.org"}));
}

void WayfoldHistoryDataSourceTest::styleChangeWaitsForTheFilter()
{
    HistoryTab tab;
    tab.source->ensureDataLoaded();
    tab.search("today");
    changeStyle("1");
    QCOMPARE(tab.rows(), QStringList({"b today", "a today"}));
    tab.search("");
    QCOMPARE(tab.rows(), QStringList({"03.01.01", "02.01.01", "01.01.01"}));
}

void WayfoldHistoryDataSourceTest::searchDeselects()
{
    HistoryTab tab;
    tab.source->ensureDataLoaded();
    tab.view.selectRow(1);
    tab.search("today");
    QVERIFY(!tab.source->anyItemSelected());
    tab.view.selectRow(1);
    tab.search("");
    QVERIFY(!tab.source->anyItemSelected());
}

void WayfoldHistoryDataSourceTest::selectedMatchStaysSelected()
{
    HistoryTab tab;
    tab.source->ensureDataLoaded();
    tab.search("da");
    tab.view.selectItem(tab.source->localRootFolder()->findByUUID("http://www.a.org/1"));
    tab.search("day");
    QCOMPARE(ListStage::titles(tab.view.selectedItemList()), QStringList{"a today"});
    tab.search("today");
    QCOMPARE(ListStage::titles(tab.view.selectedItemList()), QStringList{"a today"});
    tab.search("yester");
    QVERIFY(!tab.source->anyItemSelected());
}

// What the search finds of the tree itself stands above the entries that it finds.
void WayfoldHistoryDataSourceTest::foundHistoryIsAFolderLikeAnyOther()
{
    QVariantList visits = someVisits();
    visits.append(BrowserFiles::visit("Prehistory", "http://www.stone.org/", BrowserFiles::noonOf(1)));
    change(visits);
    HistoryTab tab;
    tab.source->ensureDataLoaded();
    tab.search("istor");
    QCOMPARE(tab.rows(), QStringList({"History", "Prehistory"}));
    tab.view.expandItem(tab.view.itemAtRow(0));
    const QStringList open = {"History",  "-b today",    "-a today",    "-a yesterday",
                              "-no site", "-b long ago", "-Prehistory", "Prehistory"};
    QCOMPARE(tab.rows(), open);
    tab.view.selectIndividualRow(3);
    tab.search("istory");
    QCOMPARE(tab.rows(), open);
    QCOMPARE(tab.view.selectedRows(), std::vector<int>{3});
}

// The history's own folder stands there as well, closed, and holds the same pages.
void WayfoldHistoryDataSourceTest::matchStaysSelectedBesideTheFoundHistory()
{
    QVariantList visits = manyVisits(10);
    change(visits);
    HistoryTab tab;
    tab.source->ensureDataLoaded();
    tab.search("istory");
    tab.view.selectRow(4);
    QCOMPARE(ListStage::titles(tab.view.selectedItemList()), QStringList{"History of 7"});
    visits.prepend(BrowserFiles::visit("History of new", "http://www.a.org/", BrowserFiles::noonOf(9)));
    change(visits);
    QCOMPARE(ListStage::titles(tab.view.selectedItemList()), QStringList{"History of 7"});
    tab.view.deselectAll();
    visits.removeFirst();
    change(visits);
    QVERIFY(!tab.source->anyItemSelected());
}

// A user's very first minute: the browser has visited nothing, so it has written no file.
void WayfoldHistoryDataSourceTest::searchBeforeTheBrowserHasWritten()
{
    _stage.reset();
    _stage.emplace();
    QVERIFY(!ListStage::store().historyBookmarkRoot());
    HistoryTab tab;
    tab.source->ensureDataLoaded();
    QCOMPARE(tab.view.placeholderText(), QString("The history is empty.\n\nThe pages that you visit appear here."));
    tab.search("x");
    QCOMPARE(tab.view.numberOfRows(), 0);
    QCOMPARE(tab.view.placeholderText(), QString("No Matches"));
    tab.search("");
    QCOMPARE(tab.view.numberOfRows(), 0);
    QCOMPARE(tab.view.placeholderText(), QString("The history is empty.\n\nThe pages that you visit appear here."));
    tab.search("today");
    change(someVisits());
    QCOMPARE(tab.rows(), QStringList({"b today", "a today"}));
    tab.search("");
    QCOMPARE(tab.shown(), QString(bySiteAndDay));
}

// --- The rest -------------------------------------------------------------------------------------------------------

void WayfoldHistoryDataSourceTest::rowsAreOpened()
{
    HistoryTab tab;
    tab.source->ensureDataLoaded();
    tab.expandAll();
    tab.view.selectItem(tab.source->localRootFolder()->findByUUID("http://www.b.org/2"));
    tab.view.doubleAction();
    QCOMPARE(_stage->openedURLs, QStringList{"http://www.b.org/2"});
    tab.search("yesterday");
    tab.view.selectRow(0);
    tab.view.doubleAction();
    QCOMPARE(_stage->openedURLs.last(), QString("http://www.a.org/2"));
}

void WayfoldHistoryDataSourceTest::dropsAreRefused()
{
    HistoryTab tab;
    tab.source->ensureDataLoaded();
    QMimeData data;
    data.setUrls({QUrl("http://a.org/")});
    OutlineDropTarget target;
    QVERIFY(!tab.source->outlineViewTakesData(tab.view, data));
    QCOMPARE(tab.source->outlineViewValidateDrop(tab.view, data, false, target), Qt::IgnoreAction);
    QVERIFY(!tab.source->outlineViewAcceptDrop(tab.view, data, target));
    QVERIFY(!tab.view.allowIncomingDrops());
}

void WayfoldHistoryDataSourceTest::savingWritesNothing()
{
    HistoryTab tab;
    tab.source->ensureDataLoaded();
    const QString path = _stage->home.path("Library/Safari/History.plist");
    const std::optional<FileStamp> before = FileStamp::ofFile(path);
    QVERIFY(before);
    tab.source->localRootFolder()->removeAllChildren();
    tab.source->saveHistoryBookmarkRoot();
    QCOMPARE(FileStamp::ofFile(path), before); // not even the same once more
    QCOMPARE(QDir(QFileInfo(path).path()).entryList(QDir::Files), QStringList{"History.plist"});
}

void WayfoldHistoryDataSourceTest::goesBeforeItsView()
{
    HistoryTab tab;
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

void WayfoldHistoryDataSourceTest::worksWithoutView()
{
    WayfoldHistoryDataSource source(nullptr);
    source.awakeFromNib();
    source.ensureDataLoaded();
    QCOMPARE(outline(*source.localRootFolder()), QString(bySiteAndDay));
    QLineEdit field("long");
    source.processSearchFilter(&field);
    QCOMPARE(outline(*source.localRootFolder()), QString("b long ago"));
    field.clear();
    source.processSearchFilter(&field);
    QCOMPARE(outline(*source.localRootFolder()), QString(bySiteAndDay));
    change({someVisits().last()});
    QCOMPARE(outline(*source.localRootFolder()), QString("a.org(), b.org(01.01.01(b long ago))"));
}

QTEST_MAIN(WayfoldHistoryDataSourceTest)
#include "WayfoldHistoryDataSourceTest.moc"
