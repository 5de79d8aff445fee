#include "lists/WayfoldBookmarkDataSource.h"
#include "lists/WayfoldBookmarkOutlineView.h"
#include "lists/WayfoldHistoryDataSource.h"
#include "lists/WayfoldHistoryOutlineView.h"
#include "tests/drawer/DrawerStage.h"
#include "tests/support/BrowserFiles.h"
#include "tests/support/ModelChecks.h"

#include <QLineEdit>
#include <QTabBar>
#include <QToolButton>

// The Bookmarks and the History tab of a real drawer.
class DrawerListsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup() { _stage.reset(); }

    void dataIsLoadedWhenTheTabIsShown();
    void firstTabIsLoadedAtOnce();
    void listsOutOfSightFollowWhenTheyAreSeen_data();
    void listsOutOfSightFollowWhenTheyAreSeen();
    void bookmarksAreTheSameInAllDrawers();
    void searchFieldFiltersAtEveryChange();
    void searchesAreOfOneTab();
    void searchStaysWithItsDrawer();
    void keyboardOfTheTabs_data();
    void keyboardOfTheTabs();
    void typingInTheListSearches();
    void findFromTheTabHeader();
    void scratchpadHasNoSearch();
    void closingDeselects_data();
    void closingDeselects();
    void openFoldersStayOpenWhileOtherTabsAreShown();
    void doubleClickOpens();

private:
    KDRDrawerController *controller() { return DrawerStage::controller(*_window); }
    KDRDrawer *drawer() { return DrawerStage::drawer(*_window); }
    WayfoldBookmarkOutlineView &bookmarks() { return *controller()->bookmarkOutlineView(); }
    WayfoldHistoryOutlineView &history() { return *controller()->historyOutlineView(); }
    QLineEdit &bookmarkField() { return *drawer()->findChild<QLineEdit *>("bookmarkSearchField"); }
    QLineEdit &historyField() { return *drawer()->findChild<QLineEdit *>("historySearchField"); }
    void openDrawer()
    {
        drawer()->open();
        drawer()->activateWindow();
        QTRY_VERIFY(drawer()->isActiveWindow());
    }

    std::optional<DrawerStage> _stage;
    std::shared_ptr<FakeHostWindow> _window;
};

void DrawerListsTest::init()
{
    using Files = BrowserFiles;
    _stage.emplace();
    const Files files(_stage->home);
    files.writeBookmarks({Files::folder("News", "NEWS", {Files::link("Marsh Line", "http://www.marsh.org/", "MARSH")}),
                          Files::link("Kettle works", "http://kettle.org/", "KETTLE")});
    files.writeHistory({Files::visit("A birch", "http://www.a.org/", Files::noonOf(3)),
                        Files::visit("A beech", "http://www.b.org/", Files::noonOf(2))});
    _window = _stage->openWindow(QRectF(100, 100, 800, 600), true);
}

void DrawerListsTest::dataIsLoadedWhenTheTabIsShown()
{
    QVERIFY(!controller()->bookmarkDataSource()->localRootFolder());
    QVERIFY(!controller()->historyDataSource()->localRootFolder());
    controller()->showBookmarkTabView();
    QCOMPARE(DrawerStage::rows(bookmarks()), QStringList({"News", "Kettle works"}));
    QVERIFY(!controller()->historyDataSource()->localRootFolder());
    drawer()->findChild<QTabBar *>()->setCurrentIndex(2);
    QCOMPARE(DrawerStage::rows(history()), QStringList({"a.org", "b.org"}));
}

void DrawerListsTest::firstTabIsLoadedAtOnce()
{
    DrawerStage::settings().setDefaultFirstTabIdentifier("2");
    _window = _stage->openWindow();
    QVERIFY(controller()->isHistoryTabViewCurrent());
    QCOMPARE(history().numberOfRows(), 2);
}

void DrawerListsTest::listsOutOfSightFollowWhenTheyAreSeen_data()
{
    QTest::addColumn<bool>("isOpen");
    QTest::newRow("behind another tab") << true;
    QTest::newRow("in a drawer that was never open") << false;
}

void DrawerListsTest::listsOutOfSightFollowWhenTheyAreSeen()
{
    QFETCH(bool, isOpen);
    using Files = BrowserFiles;
    if (isOpen)
        openDrawer();
    controller()->showBookmarkTabView();
    controller()->showHistoryTabView();
    if (isOpen)
        controller()->showScratchPadTabView();
    const Files files(_stage->home);
    files.writeBookmarks({Files::link("Observatory", "http://stars.org/", "STARS")});
    files.writeHistory({Files::visit("A cedar", "http://www.c.org/", Files::noonOf(4))});
    DrawerStage::store().tagSafariFiles();
    QCoreApplication::processEvents();
    QCOMPARE(DrawerStage::rows(bookmarks()), QStringList({"News", "Kettle works"}));
    QCOMPARE(DrawerStage::rows(history()), QStringList({"a.org", "b.org"}));
    openDrawer();
    controller()->showHistoryTabView();
    QVERIFY(DrawerStage::rows(history()).contains("c.org"));
    QCOMPARE(DrawerStage::rows(bookmarks()), QStringList({"News", "Kettle works"}));
    controller()->showBookmarkTabView();
    QCOMPARE(DrawerStage::rows(bookmarks()), QStringList{"Observatory"});
}

void DrawerListsTest::bookmarksAreTheSameInAllDrawers()
{
    controller()->showBookmarkTabView();
    const WayfoldBookmarkFolderPtr root = controller()->bookmarkDataSource()->localRootFolder();
    _window = _stage->openWindow();
    controller()->showBookmarkTabView();
    QCOMPARE(controller()->bookmarkDataSource()->localRootFolder(), root);
    QCOMPARE(root, DrawerStage::store().safariBookmarkRoot());
}

void DrawerListsTest::searchFieldFiltersAtEveryChange()
{
    openDrawer();
    controller()->showBookmarkTabView();
    bookmarkField().setFocus();
    QTest::keyClick(&bookmarkField(), Qt::Key_L);
    QCOMPARE(DrawerStage::rows(bookmarks()), QStringList({"Marsh Line", "Kettle works"}));
    QTest::keyClick(&bookmarkField(), Qt::Key_I);
    QCOMPARE(DrawerStage::rows(bookmarks()), QStringList{"Marsh Line"});
    QTest::keyClick(&bookmarkField(), Qt::Key_Z);
    QCOMPARE(bookmarks().numberOfRows(), 0);
    QTest::keyClick(&bookmarkField(), Qt::Key_Backspace);
    QCOMPARE(DrawerStage::rows(bookmarks()), QStringList{"Marsh Line"});
    auto *clearButton = bookmarkField().findChild<QToolButton *>();
    QVERIFY(clearButton);
    clearButton->click();
    QCOMPARE(DrawerStage::rows(bookmarks()), QStringList({"News", "Kettle works"}));
}

void DrawerListsTest::searchesAreOfOneTab()
{
    openDrawer();
    controller()->showBookmarkTabView();
    bookmarkField().setText("kettle");
    controller()->showHistoryTabView();
    QVERIFY(historyField().text().isEmpty());
    QCOMPARE(history().numberOfRows(), 2);
    historyField().setText("birch");
    QCOMPARE(DrawerStage::rows(history()), QStringList{"A birch"});
    controller()->showBookmarkTabView();
    QCOMPARE(DrawerStage::rows(bookmarks()), QStringList{"Kettle works"});
}

void DrawerListsTest::searchStaysWithItsDrawer()
{
    controller()->showBookmarkTabView();
    bookmarkField().setText("kettle");
    _window = _stage->openWindow();
    controller()->showBookmarkTabView();
    QVERIFY(bookmarkField().text().isEmpty());
    QCOMPARE(bookmarks().numberOfRows(), 2);
}

void DrawerListsTest::keyboardOfTheTabs_data()
{
    QTest::addColumn<QString>("tab");
    QTest::addColumn<QString>("responder");
    QTest::newRow("Scratchpad") << "0"
                                << "scratchOutlineView";
    QTest::newRow("Bookmarks") << "1"
                               << "bookmarkOutlineView";
    QTest::newRow("History") << "2"
                             << "historyOutlineView";
}

void DrawerListsTest::keyboardOfTheTabs()
{
    QFETCH(QString, tab);
    QFETCH(QString, responder);
    openDrawer();
    controller()->tabView()->selectTabWithIdentifier(tab);
    controller()->selectInitialFirstResponder();
    QTRY_VERIFY(QApplication::focusWidget());
    QCOMPARE(QApplication::focusWidget()->objectName(), responder);
}

void DrawerListsTest::typingInTheListSearches()
{
    openDrawer();
    controller()->showHistoryTabView();
    controller()->selectInitialFirstResponder();
    QTRY_COMPARE(QApplication::focusWidget(), &history());
    QTest::keyClicks(&history(), "b");
    QTest::keyClicks(QApplication::focusWidget(), "eech");
    QCOMPARE(historyField().text(), QString("beech"));
    QCOMPARE(DrawerStage::rows(history()), QStringList{"A beech"});
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Escape);
    QCOMPARE(QApplication::focusWidget(), &history());
    QCOMPARE(DrawerStage::rows(history()), QStringList({"a.org", "b.org"}));
}

void DrawerListsTest::findFromTheTabHeader()
{
    openDrawer();
    auto *bar = drawer()->findChild<QTabBar *>();
    for (const int tab : {1, 2}) {
        bar->setCurrentIndex(tab);
        bar->setFocus();
        QTest::keyClick(bar, Qt::Key_F, Qt::ControlModifier);
        QCOMPARE(QApplication::focusWidget(), tab == 1 ? &bookmarkField() : &historyField());
    }
}

void DrawerListsTest::scratchpadHasNoSearch()
{
    DrawerStage::store().bookmarkRoot()->addChild(DrawerStage::note("Marsh"));
    DrawerStage::store().updateAllDrawerContentsExceptFor(nullptr);
    openDrawer();
    controller()->selectInitialFirstResponder();
    WayfoldScratchOutlineView *list = controller()->scratchOutlineView();
    QTRY_COMPARE(QApplication::focusWidget(), list);
    QTest::keyClicks(list, "zz");
    QTest::keyClick(list, Qt::Key_F, Qt::ControlModifier);
    QCOMPARE(QApplication::focusWidget(), list);
    QCOMPARE(list->numberOfRows(), 1);
    QVERIFY(bookmarkField().text().isEmpty());
    QVERIFY(historyField().text().isEmpty());
}

void DrawerListsTest::closingDeselects_data()
{
    QTest::addColumn<QString>("tab");
    QTest::newRow("Bookmarks") << "1";
    QTest::newRow("History") << "2";
}

void DrawerListsTest::closingDeselects()
{
    QFETCH(QString, tab);
    openDrawer();
    controller()->tabView()->selectTabWithIdentifier(tab);
    WayfoldOutlineView &list = tab == u"1" ? static_cast<WayfoldOutlineView &>(bookmarks()) : history();
    int leaf = 0; // folders have no tip
    for (; list.isExpandable(list.itemAtRow(leaf)); ++leaf)
        list.expandItem(list.itemAtRow(leaf));
    const int rows = list.numberOfRows();
    QVERIFY(leaf > 0);
    list.selectRow(leaf);
    QCOMPARE(list.selectedItemCount(), 1);
    drawer()->grab();
    const QPoint point = list.rectOfRow(leaf).center();
    QVERIFY(!list.toolTipAtPoint(point).isNull());
    drawer()->close();
    QCOMPARE(list.selectedItemCount(), 0);
    QVERIFY(list.toolTipAtPoint(point).isNull());
    QCOMPARE(list.numberOfRows(), rows);
}

void DrawerListsTest::openFoldersStayOpenWhileOtherTabsAreShown()
{
    openDrawer();
    controller()->showBookmarkTabView();
    bookmarks().expandItem(bookmarks().itemAtRow(0));
    controller()->showScratchPadTabView();
    drawer()->close();
    drawer()->open();
    controller()->showBookmarkTabView();
    QCOMPARE(DrawerStage::rows(bookmarks()), QStringList({"News", "Marsh Line", "Kettle works"}));
}

void DrawerListsTest::doubleClickOpens()
{
    openDrawer();
    controller()->setCurrentWebFrame(_window->frontWebView->frame);
    controller()->showBookmarkTabView();
    const QPoint point = bookmarks().rectOfRow(1).center();
    QTest::mouseClick(bookmarks().viewport(), Qt::LeftButton, {}, point);
    QTest::mouseDClick(bookmarks().viewport(), Qt::LeftButton, {}, point);
    QCOMPARE(_window->frontWebView->frame->loadRequests.size(), 1U);
    QCOMPARE(_window->frontWebView->frame->loadRequests.back().absoluteString(), QString("http://kettle.org/"));
}

QTEST_MAIN(DrawerListsTest)
#include "DrawerListsTest.moc"
