#include "lists/WayfoldOutlineView.h"

#include "core/Notifications.h"
#include "lists/WayfoldBookmarkOutlineView.h"
#include "platform/base/NotificationCenter.h"
#include "tests/lists/ListStage.h"

#include <QContextMenuEvent>
#include <QEventLoop>
#include <QFontDatabase>
#include <QFontMetricsF>
#include <QMenu>
#include <QScrollBar>
#include <QTabWidget>

Q_DECLARE_METATYPE(std::vector<KDRBookmarkPtr>)

namespace
{
QAction *addItem(QMenu &menu, const char *action)
{
    QAction *item = menu.addAction(QString::fromLatin1(action));
    MenuItem::setAction(item, QString::fromLatin1(action));
    return item;
}

void changeFont()
{
    NotificationCenter::defaultCenter().postNotificationName(Notifications::ListViewFontChangeNotification, nullptr);
}

qreal heightFor(const QFont &font)
{
    return QFontMetricsF(font).lineSpacing() + 3.0;
}

std::vector<KDRBookmarkPtr> notes(int count, const QString &prefix = QString())
{
    std::vector<KDRBookmarkPtr> notes;
    notes.reserve(std::size_t(count));
    for (int i = 0; i < count; ++i)
        notes.push_back(ListStage::note(prefix + QString::number(i)));
    return notes;
}

// Stands behind a list that shows a folder.
class FolderSource : public WayfoldOutlineViewDataSource
{
public:
    WayfoldOutlineView *view = nullptr;
    WayfoldBookmarkFolderPtr root;

    WayfoldBookmarkFolderPtr localRootFolder() const override { return root; }
    WayfoldOutlineView *myOutlineView() const override { return view; }
};

// Where a list shows anything, in points.
QRect inkIn(WayfoldOutlineView &view)
{
    const QImage shot = view.viewport()->grab().toImage();
    const QColor ground = view.palette().color(QPalette::Base);
    QRect ink;
    for (int y = 0; y < shot.height(); ++y) {
        for (int x = 0; x < shot.width(); ++x) {
            if (shot.pixelColor(x, y) != ground)
                ink |= QRect(x, y, 1, 1);
        }
    }
    const int scale = int(shot.devicePixelRatio());
    return {ink.topLeft() / scale, ink.size() / scale};
}

// The row that is seen first, and where it stands.
std::pair<QString, int> topOf(const WayfoldOutlineView &view)
{
    const int row = view.rowAtPoint(QPoint(5, 0));
    return {ListStage::rows(view).value(row), view.rectOfRow(row).top()};
}
} // namespace

class WayfoldOutlineViewTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        _stage.emplace();
        _pad.emplace(*_stage);
    }
    void cleanup()
    {
        _pad.reset();
        _stage.reset();
    }

    void fontAndRowHeight();
    void fontChangesInEveryList();
    void unknownFontChangesNothing();
    void emptyListSaysSoInItsMiddle();
    void emptyListSaysNothingWithoutRoom();
    void incomingDropsAndDragOperations();

    void reloadRestoresByIdentifier();
    void memoryIsUsedOnce();
    void reloadKeepsTheSameItems();
    void reloadKeepsWhatIsOpenInAClosedFolder();
    void reloadKeepsTheScrollPosition();
    void reloadKeepsTheTopRowInItsPlace_data();
    void reloadKeepsTheTopRowInItsPlace();
    void rowThatMovesAwayTakesNobodyWithIt();
    void reloadAtTheTopStaysThere();
    void hiddenListStaysWhereItIs();
    void reloadKeepsTheCurrentItem();
    void reloadKeepsTheCurrentRow();
    void droppedItemsAreScrolledTo();
    void expandedFoldersBeforeTheirSubfolders();
    void reselectingAddsToTheSelection();
    void identifiersWithoutARoot();
    void changeWaitsUntilTheListIsSeen();

    void toolTips();
    void toolTipsOfPeopleAndGroups();
    void toolTipsAfterRemoval();

    void selectionHelpers();
    void predicates_data();
    void predicates();
    void insideASmartFolder();

    void keysOpen_data();
    void keysOpen();
    void heldKeysOpenOnce_data();
    void heldKeysOpenOnce();
    void controlSpaceIsTheToolkits();
    void spaceOnAFolderIsTheToolkits();
    void lastSelectedRowCounts();
    void rightClickSelects();
    void rightClickInsideTheSelectionKeepsIt();
    void menuKeySelectsNothing();
    void contextMenuActsOnTheListThatShowedIt();
    void contextMenuDisablesWhatTheListCannotDo();

    void openItem_data();
    void openItem();
    void openInTabsItem_data();
    void openInTabsItem();
    void otherItems();

    void windowMayCloseDuringADrag();

private:
    std::optional<ListStage> _stage;
    std::optional<Scratchpad> _pad;
};

// --- Appearance -----------------------------------------------------------------------------------------------------

void WayfoldOutlineViewTest::fontAndRowHeight()
{
    // The font of a fresh user's settings is not known everywhere; the desktop's own stands in for it.
    const QFont font = ListStage::settings().listViewFont().value_or(_pad->view.font());
    QCOMPARE(_pad->view.currentListViewFont(), font);
    QCOMPARE(_pad->view.rowHeight(), heightFor(font));
}

void WayfoldOutlineViewTest::fontChangesInEveryList()
{
    WayfoldBookmarkOutlineView other;
    other.awakeFromNib();
    const QString family = QFontDatabase::families().constFirst();
    ListStage::settings().setListViewFontName(family);
    ListStage::settings().setListViewFontSize(31);
    changeFont();
    const QFont font = *WayfoldDefaults::fontWithNameSize(family, 31);
    for (const WayfoldOutlineView *view :
         {static_cast<WayfoldOutlineView *>(&_pad->view), static_cast<WayfoldOutlineView *>(&other)}) {
        QCOMPARE(view->currentListViewFont(), font);
        QCOMPARE(view->rowHeight(), heightFor(font));
    }
    QVERIFY(_pad->view.rowHeight() > 31);
}

void WayfoldOutlineViewTest::unknownFontChangesNothing()
{
    const QFont before = _pad->view.currentListViewFont();
    ListStage::settings().setListViewFontName(QStringLiteral("No Such Font At All"));
    ListStage::settings().setListViewFontSize(40);
    changeFont();
    QCOMPARE(_pad->view.currentListViewFont(), before);
    QCOMPARE(_pad->view.rowHeight(), heightFor(before));
}

void WayfoldOutlineViewTest::emptyListSaysSoInItsMiddle()
{
    FolderSource source;
    WayfoldOutlineView view;
    view.setDelegate(&source);
    view.awakeFromNib();
    view.setOutlineDataSource(&source);
    view.resize(250, 300);
    view.setFrameStyle(QFrame::NoFrame);
    view.show();
    QVERIFY(inkIn(view).isEmpty());
    view.setPlaceholderText(
        QStringLiteral("There is nothing in this list, nothing at all, and so it says so.\n\nHow."));
    const QRect ink = inkIn(view);
    QVERIFY(ink.height() > 3 * view.fontMetrics().height()); // wrapped
    const QRect room = view.viewport()->rect();
    QVERIFY(ink.left() >= 16 && ink.right() <= room.right() - 16);
    QVERIFY(qAbs(ink.center().x() - room.center().x()) <= 8);
    QVERIFY(qAbs(ink.center().y() - room.center().y()) <= 8);

    source.root = ListStage::folder("Root", {ListStage::note(QString())});
    view.reloadData();
    QVERIFY(view.emptyListText().isNull());
    QVERIFY(inkIn(view).isEmpty());
    view.setOutlineDataSource(nullptr);
}

void WayfoldOutlineViewTest::emptyListSaysNothingWithoutRoom()
{
    WayfoldOutlineView view;
    view.setPlaceholderText(QStringLiteral("There is nothing in this list, nothing at all, and so it says so."));
    view.setFrameStyle(QFrame::NoFrame);
    view.resize(250, 200);
    view.show();
    QVERIFY(!inkIn(view).isEmpty());
    view.resize(250, 60);
    QVERIFY(inkIn(view).isEmpty());
    view.resize(20, 200);
    QVERIFY(inkIn(view).isEmpty());
}

void WayfoldOutlineViewTest::incomingDropsAndDragOperations()
{
    const WayfoldBookmarkOutlineView bookmarks;
    QVERIFY(!bookmarks.allowIncomingDrops());
    QVERIFY(_pad->view.allowIncomingDrops());
    QVERIFY(bookmarks.focusPolicy() & Qt::TabFocus);
    QVERIFY(bookmarks.focusPolicy() & Qt::ClickFocus);
    const Qt::DropActions all = Qt::CopyAction | Qt::MoveAction | Qt::LinkAction;
    QCOMPARE(bookmarks.draggingSourceOperationMaskForLocal(true), all);
    QCOMPARE(bookmarks.draggingSourceOperationMaskForLocal(false), Qt::CopyAction | Qt::MoveAction);
}

// --- Reload with memory ---------------------------------------------------------------------------------------------

void WayfoldOutlineViewTest::reloadRestoresByIdentifier()
{
    const auto gone = ListStage::folder("Gone", {ListStage::note("x")});
    const auto kept = ListStage::folder("Kept", {ListStage::note("In it"), ListStage::note("Beside")});
    _pad->showItems({gone, kept});
    _pad->view.expandItem(gone);
    _pad->view.expandItem(kept);
    _pad->select({kept->childAtIndex(0), gone});
    QCOMPARE(_pad->view.getExpandedItemsUUIDList(), QStringList({gone->uuid(), kept->uuid()}));
    QCOMPARE(_pad->view.getSelectedItemsUUIDList(), QStringList({gone->uuid(), kept->childAtIndex(0)->uuid()}));

    _pad->view.prepForReloadData();
    QCOMPARE(_pad->view.selectedRow(), -1);
    // Another tree with copies: the same identifiers, other objects.
    const KDRBookmarkPtr copy = kept->copy();
    ListStage::store().bookmarkRoot()->removeAllChildren();
    ListStage::store().bookmarkRoot()->addChild(copy);
    _pad->view.reloadData();
    QCOMPARE(ListStage::rows(_pad->view),
             QStringList({QStringLiteral("Kept"), QStringLiteral("-In it"), QStringLiteral("-Beside")}));
    QCOMPARE(ListStage::titles(_pad->view.selectedItemList()), QStringList{QStringLiteral("In it")});
    QVERIFY(_pad->view.selectedItem() != kept->childAtIndex(0));
}

void WayfoldOutlineViewTest::memoryIsUsedOnce()
{
    const auto folder = ListStage::folder("Folder", {ListStage::note("In it")});
    _pad->showItems({folder});
    _pad->view.expandItem(folder);
    _pad->view.prepForReloadData();
    _pad->view.reloadData();
    QVERIFY(_pad->view.isItemExpanded(folder));

    const auto put = [this](const KDRBookmarkPtr &item) {
        ListStage::store().bookmarkRoot()->removeAllChildren();
        ListStage::store().bookmarkRoot()->addChild(item);
        _pad->view.reloadData();
    };
    // Without preparation only the very same items stay as they are; a copy is another item.
    put(folder->copy());
    QCOMPARE(ListStage::rows(_pad->view), QStringList{QStringLiteral("Folder")});
}

void WayfoldOutlineViewTest::reloadKeepsTheSameItems()
{
    const auto inner = ListStage::folder("Inner", {ListStage::note("Deep")});
    const auto outer = ListStage::folder("Outer", {inner});
    _pad->showItems({outer});
    _pad->view.expandItem(outer);
    _pad->view.expandItem(inner);
    _pad->select({inner->childAtIndex(0)});
    inner->addChildAtIndex(ListStage::note("New"), 0);
    _pad->view.reloadData();
    QCOMPARE(ListStage::rows(_pad->view), QStringList({QStringLiteral("Outer"), QStringLiteral("-Inner"),
                                                       QStringLiteral("--New"), QStringLiteral("--Deep")}));
    QCOMPARE(ListStage::titles(_pad->view.selectedItemList()), QStringList{QStringLiteral("Deep")});
}

void WayfoldOutlineViewTest::reloadKeepsWhatIsOpenInAClosedFolder()
{
    const auto innermost = ListStage::folder("Innermost", {ListStage::note("Deep")});
    const auto inner = ListStage::folder("Inner", {innermost});
    const auto outer = ListStage::folder("Outer", {inner});
    const auto closed = ListStage::folder("Closed", {ListStage::folder("In it", {ListStage::note("x")})});
    const auto last = ListStage::note("Last");
    _pad->showItems({outer, closed, last});
    for (const WayfoldBookmarkFolderPtr &each : {outer, inner, innermost})
        _pad->view.expandItem(each);
    _pad->view.expandItem(closed);
    _pad->view.collapseItem(closed);
    _pad->view.collapseItem(inner);
    _pad->view.collapseItem(outer);
    _pad->select({last});
    const QStringList rows = {QStringLiteral("Outer"), QStringLiteral("Closed"), QStringLiteral("Last")};
    QCOMPARE(ListStage::rows(_pad->view), rows);
    _pad->view.reloadData();
    QCOMPARE(ListStage::rows(_pad->view), rows);
    QCOMPARE(ListStage::titles(_pad->view.selectedItemList()), QStringList{QStringLiteral("Last")});
    _pad->view.expandItem(outer);
    QCOMPARE(ListStage::rows(_pad->view), QStringList({QStringLiteral("Outer"), QStringLiteral("-Inner"),
                                                       QStringLiteral("Closed"), QStringLiteral("Last")}));
    _pad->view.expandItem(inner);
    QCOMPARE(ListStage::rows(_pad->view),
             QStringList({QStringLiteral("Outer"), QStringLiteral("-Inner"), QStringLiteral("--Innermost"),
                          QStringLiteral("---Deep"), QStringLiteral("Closed"), QStringLiteral("Last")}));
    _pad->view.expandItem(closed);
    QVERIFY(!_pad->view.isItemExpanded(closed->childAtIndex(0)));

    // By identifier only what is shown is remembered.
    _pad->view.collapseItem(outer);
    QCOMPARE(_pad->view.getExpandedItemsUUIDList(), QStringList{closed->uuid()});
    _pad->view.prepForReloadData();
    _pad->view.reloadData();
    _pad->view.expandItem(outer);
    QVERIFY(!_pad->view.isItemExpanded(inner));
}

void WayfoldOutlineViewTest::reloadKeepsTheScrollPosition()
{
    _pad->showItems(notes(200));
    _pad->view.selectIndividualRow(0);
    QTRY_VERIFY(_pad->view.verticalScrollBar()->maximum() > 100);
    _pad->view.verticalScrollBar()->setValue(100);
    _pad->view.reloadData();
    QCOMPARE(_pad->view.verticalScrollBar()->value(), 100);
    QCOMPARE(_pad->view.selectedRow(), 0);
}

void WayfoldOutlineViewTest::reloadKeepsTheTopRowInItsPlace_data()
{
    QTest::addColumn<int>("added");
    QTest::addColumn<bool>("copied");
    QTest::addColumn<bool>("prepared");
    for (const int added : {1, 30, 300}) {
        QTest::addRow("%d more", added) << added << false << false;
        QTest::addRow("%d more, prepared", added) << added << false << true;
        QTest::addRow("%d more, other items", added) << added << true << true;
    }
}

// What comes in above moves nothing that the user looks at.
void WayfoldOutlineViewTest::reloadKeepsTheTopRowInItsPlace()
{
    QFETCH(int, added);
    QFETCH(bool, copied);
    QFETCH(bool, prepared);
    const auto folder = ListStage::folder(QStringLiteral("Folder"), notes(10, QStringLiteral("In it ")));
    std::vector<KDRBookmarkPtr> items = notes(200);
    items.insert(items.begin(), folder);
    _pad->showItems(items);
    _pad->view.expandItem(folder);
    _pad->view.verticalScrollBar()->setValue(_pad->view.rectOfRow(100).top() + 5); // not a whole row
    const std::pair<QString, int> before = topOf(_pad->view);
    QVERIFY(before.second < 0);

    if (prepared)
        _pad->view.prepForReloadData();
    if (copied) {
        for (KDRBookmarkPtr &item : items)
            item = item->copy();
    }
    const std::vector<KDRBookmarkPtr> more = notes(added, QStringLiteral("New "));
    items.insert(items.begin() + 2, more.cbegin(), more.cend());
    _pad->showItems(items);
    QCOMPARE(topOf(_pad->view), before);
    QCOMPARE(_pad->view.numberOfRows(), 211 + added);

    // The same when they go.
    if (prepared)
        _pad->view.prepForReloadData();
    items.erase(items.begin() + 2, items.begin() + 2 + added);
    _pad->showItems(items);
    QCOMPARE(topOf(_pad->view), before);
}

// A page that is opened once more comes first in a history without folders.
void WayfoldOutlineViewTest::rowThatMovesAwayTakesNobodyWithIt()
{
    std::vector<KDRBookmarkPtr> items = notes(200);
    _pad->showItems(items);
    for (const int top : {100, 20}) {
        _pad->view.verticalScrollBar()->setValue(_pad->view.rectOfRow(top).top() - _pad->view.rectOfRow(0).top());
        QCOMPARE(_pad->view.rowAtPoint(QPoint(5, 0)), top);
        const QString next = ListStage::rows(_pad->view).at(top + 1);
        const int place = _pad->view.rectOfRow(top + 1).top();
        _pad->view.prepForReloadData();
        std::rotate(items.begin(), items.begin() + top, items.begin() + top + 1);
        _pad->showItems(items);
        QCOMPARE(_pad->view.rectOfRow(int(ListStage::rows(_pad->view).indexOf(next))).top(), place);
    }
}

void WayfoldOutlineViewTest::reloadAtTheTopStaysThere()
{
    std::vector<KDRBookmarkPtr> items = notes(200);
    _pad->showItems(items);
    items.insert(items.begin(), ListStage::note(QStringLiteral("New")));
    _pad->view.prepForReloadData();
    _pad->showItems(items);
    QCOMPARE(topOf(_pad->view), std::make_pair(QStringLiteral("New"), 0));
}

void WayfoldOutlineViewTest::hiddenListStaysWhereItIs()
{
    QTabWidget tabs;
    tabs.addTab(&_pad->view, QStringLiteral("List"));
    tabs.addTab(new QWidget, QStringLiteral("Other"));
    const auto takenOut = qScopeGuard([this] { _pad->view.setParent(nullptr); });
    tabs.resize(300, 400);
    tabs.show();
    QVERIFY(QTest::qWaitForWindowExposed(&tabs));
    std::vector<KDRBookmarkPtr> items = notes(200);
    _pad->showItems(items);
    _pad->select({items[3], items[5]});
    _pad->view.scrollRowToVisible(100);
    const std::pair<QString, int> before = topOf(_pad->view);

    for (const bool prepared : {true, false}) {
        tabs.setCurrentIndex(1);
        if (prepared)
            _pad->view.prepForReloadData();
        items.insert(items.begin(), ListStage::note(QStringLiteral("New")));
        _pad->showItems(items);
        tabs.setCurrentIndex(0);
        QVERIFY(_pad->view.isVisible());
        _pad->view.grab();
        QCOMPARE(topOf(_pad->view), before);
        QCOMPARE(_pad->view.selectedItemCount(), 2);
    }
}

void WayfoldOutlineViewTest::reloadKeepsTheCurrentItem()
{
    std::vector<KDRBookmarkPtr> items = notes(20);
    _pad->showItems(items);
    _pad->view.setFocus();
    _pad->view.selectIndividualRow(5);
    QTest::keyClick(&_pad->view, Qt::Key_Up, Qt::ShiftModifier); // rows 4 and 5, and 4 is the current one
    QCOMPARE(_pad->view.selectedRows(), std::vector<int>({4, 5}));
    _pad->view.prepForReloadData();
    for (KDRBookmarkPtr &item : items)
        item = item->copy();
    items.insert(items.begin(), ListStage::note(QStringLiteral("New")));
    _pad->showItems(items);
    QCOMPARE(_pad->view.selectedRows(), std::vector<int>({5, 6}));
    QTest::keyClick(&_pad->view, Qt::Key_Up);
    QCOMPARE(ListStage::titles(_pad->view.selectedItemList()), QStringList{QStringLiteral("3")});
}

// The item that the keyboard stands on is gone; the keyboard stays where it is.
void WayfoldOutlineViewTest::reloadKeepsTheCurrentRow()
{
    std::vector<KDRBookmarkPtr> items = notes(200);
    _pad->showItems(items);
    _pad->view.setFocus();
    _pad->view.scrollRowToVisible(120);
    _pad->view.selectIndividualRow(110);
    const std::pair<QString, int> before = topOf(_pad->view);
    _pad->view.prepForReloadData();
    items.erase(items.begin() + 110);
    _pad->showItems(items);
    QCOMPARE(_pad->view.selectedRow(), -1);
    QCOMPARE(topOf(_pad->view), before);
    QTest::keyClick(&_pad->view, Qt::Key_Down);
    QCOMPARE(_pad->view.selectedRows(), std::vector<int>({111}));
    QCOMPARE(topOf(_pad->view), before);

    _pad->view.prepForReloadData();
    items.resize(30);
    _pad->showItems(items);
    QTest::keyClick(&_pad->view, Qt::Key_Up);
    QCOMPARE(_pad->view.selectedRows(), std::vector<int>({28}));
    _pad->view.prepForReloadData();
    _pad->showItems({});
    QVERIFY(!_pad->view.currentIndex().isValid());
}

void WayfoldOutlineViewTest::droppedItemsAreScrolledTo()
{
    const std::vector<KDRBookmarkPtr> items = notes(200);
    _pad->showItems(items);
    _pad->view.selectItems({items[150], items[151]});
    QVERIFY(_pad->view.viewport()->rect().contains(_pad->view.rectOfRow(151)));
}

void WayfoldOutlineViewTest::expandedFoldersBeforeTheirSubfolders()
{
    const auto inner = ListStage::folder("Inner", {ListStage::note("Deep")});
    const auto outer = ListStage::folder("Outer", {inner});
    _pad->showItems({outer});
    _pad->view.reexpandItemsFromUUIDList({outer->uuid(), QStringLiteral("unknown"), inner->uuid()});
    QCOMPARE(_pad->view.numberOfRows(), 3);
    _pad->view.reselectItemsFromUUIDList({inner->uuid(), outer->uuid()});
    QCOMPARE(_pad->view.selectedItemCount(), 2);
}

void WayfoldOutlineViewTest::reselectingAddsToTheSelection()
{
    const auto a = ListStage::note("a");
    const auto b = ListStage::note("b");
    const auto c = ListStage::note("c");
    _pad->showItems({a, b, c});
    _pad->select({b});
    _pad->view.reselectItemsFromUUIDList({c->uuid(), a->uuid()});
    QCOMPARE(_pad->view.selectedItemCount(), 3);
}

void WayfoldOutlineViewTest::identifiersWithoutARoot()
{
    WayfoldOutlineView view;
    view.reexpandItemsFromUUIDList({QStringLiteral("a")});
    view.reselectItemsFromUUIDList({QStringLiteral("a")});
    view.prepForReloadData();
    view.reloadData();
    QCOMPARE(view.numberOfRows(), 0);
}

void WayfoldOutlineViewTest::changeWaitsUntilTheListIsSeen()
{
    QStringList made;
    const auto change = [&](const QString &name) { _pad->view.changeWhenSeen([&made, name] { made.append(name); }); };
    change("at once");
    QCOMPARE(made, QStringList{"at once"});
    _pad->view.hide();
    change("earlier");
    change("later");
    QCOMPARE(made.size(), 1);
    _pad->view.show();
    QCOMPARE(made, QStringList({"at once", "later"}));

    _pad->view.hide();
    change("in time");
    _pad->view.catchUp();
    QCOMPARE(made.last(), QString("in time"));
    _pad->view.catchUp();
    change("never");
    _pad->view.changeWhenSeen({});
    _pad->view.show();
    QCOMPARE(made.size(), 3);
}

// --- Tool tips ------------------------------------------------------------------------------------------------------

void WayfoldOutlineViewTest::toolTips()
{
    const auto link = ListStage::link("Link");
    const auto note = ListStage::note("Note", "What the note says");
    const auto folder = ListStage::folder("Folder");
    _pad->showItems({link, note, folder});
    QVERIFY(QTest::qWaitForWindowExposed(&_pad->view));
    _pad->view.grab(); // draws the rows
    const auto tip = [this](int row) { return _pad->view.toolTipAtPoint(_pad->view.rectOfRow(row).center()); };
    QCOMPARE(tip(0), QStringLiteral("http://www.example.com/page"));
    QCOMPARE(tip(1), QStringLiteral("What the note says"));
    QVERIFY(tip(2).isNull());
    QVERIFY(_pad->view.toolTipAtPoint(QPoint(5, _pad->view.viewport()->height() - 1)).isNull());
}

void WayfoldOutlineViewTest::toolTipsOfPeopleAndGroups()
{
    const auto ann = ListStage::person("Ann", {"ann@a.org"});
    const auto friends = ListStage::group("Friends", {ann});
    _pad->showItems({ann, friends, WayfoldBookmarkABPerson::bookmarkWithID("gone")});
    _pad->view.expandItem(friends);
    _pad->view.grab(); // each row that is drawn gets its own
    const auto tip = [this](int row) { return _pad->view.toolTipAtPoint(_pad->view.rectOfRow(row).center()); };
    QCOMPARE(tip(0), QStringLiteral("Ann\n\nwork: ann@a.org"));
    QVERIFY(tip(1).isNull());
    QCOMPARE(tip(2), tip(0)); // in the group
    QVERIFY(tip(3).isNull());
}

void WayfoldOutlineViewTest::toolTipsAfterRemoval()
{
    const auto first = ListStage::note("First", "one");
    const auto second = ListStage::note("Second", "two");
    _pad->showItems({first, second});
    const auto tip = [this](int row) { return _pad->view.toolTipAtPoint(_pad->view.rectOfRow(row).center()); };
    _pad->view.removeAllToolTips();
    QVERIFY(tip(0).isNull());
    // Rows get theirs from the top down to the one that is drawn.
    _pad->view.ensureToolTipPresentForItem(second);
    QCOMPARE(tip(0), QStringLiteral("one"));
    QCOMPARE(tip(1), QStringLiteral("two"));
    _pad->view.removeAllToolTips();
    _pad->view.ensureToolTipPresentForItem(first);
    QCOMPARE(tip(0), QStringLiteral("one"));
    QVERIFY(tip(1).isNull());
    _pad->view.ensureToolTipPresentForItem(ListStage::note("Not shown"));
    QVERIFY(tip(1).isNull());
    _pad->view.reloadData(); // the rows may be others now
    QVERIFY(tip(0).isNull());
}

// --- Selection ------------------------------------------------------------------------------------------------------

void WayfoldOutlineViewTest::selectionHelpers()
{
    const auto a = ListStage::note("a");
    const auto b = ListStage::note("b");
    const auto c = ListStage::note("c");
    _pad->showItems({a, b, c});
    WayfoldOutlineView &view = _pad->view;
    QVERIFY(!view.selectedItem());
    QCOMPARE(view.selectedItemCount(), 0);
    view.selectRow(2);
    view.selectRow(0);
    QCOMPARE(ListStage::titles(view.selectedItemList()), QStringList({QStringLiteral("a"), QStringLiteral("c")}));
    view.selectIndividualRow(1);
    QVERIFY(view.selectedItem() == b);
    QCOMPARE(view.selectedItemCount(), 1);
    view.selectItem(a);
    view.selectItem(nullptr);
    QCOMPARE(view.selectedItemCount(), 2);
    view.selectIndividualItem(c);
    QCOMPARE(ListStage::titles(view.selectedItemList()), QStringList{QStringLiteral("c")});
    view.selectIndividualItem(nullptr);
    view.selectIndividualItem(ListStage::note("elsewhere"));
    view.selectRow(99);
    view.selectRow(-1);
    QCOMPARE(ListStage::titles(view.selectedItemList()), QStringList{QStringLiteral("c")});
}

void WayfoldOutlineViewTest::predicates_data()
{
    QTest::addColumn<std::vector<KDRBookmarkPtr>>("items");
    QTest::addColumn<QString>("holds"); // one letter for each predicate that does
    using Items = std::vector<KDRBookmarkPtr>;
    QTest::newRow("nothing") << Items{} << QString();
    QTest::newRow("note") << Items{ListStage::note("a")} << QStringLiteral("ED");
    QTest::newRow("folder") << Items{ListStage::folder("a")} << QStringLiteral("ED");
    QTest::newRow("link") << Items{ListStage::link("a")} << QStringLiteral("EDW");
    QTest::newRow("link and note") << Items{ListStage::link("a"), ListStage::note("b")} << QStringLiteral("ED");
    QTest::newRow("link and visited page")
        << Items{ListStage::link("a"), ListStage::history("b")} << QStringLiteral("EDW");
    QTest::newRow("file") << Items{ListStage::file("a")} << QStringLiteral("ED");
    QTest::newRow("mail") << Items{ListStage::mail("a")} << QStringLiteral("EDM");
    QTest::newRow("person") << Items{ListStage::person("a")} << QStringLiteral("EDAM");
    QTest::newRow("person and group") << Items{ListStage::person("a"), ListStage::group("b")} << QStringLiteral("EDAM");
    QTest::newRow("person and mail") << Items{ListStage::person("a"), ListStage::mail("b")} << QStringLiteral("EDM");
    QTest::newRow("person and note") << Items{ListStage::person("a"), ListStage::note("b")} << QStringLiteral("ED");
}

void WayfoldOutlineViewTest::predicates()
{
    QFETCH(std::vector<KDRBookmarkPtr>, items);
    QFETCH(QString, holds);
    _pad->showItems(items);
    _pad->select(items);
    const WayfoldOutlineView &view = _pad->view;
    QCOMPARE(view.allSelectedItemsAreEditable(), holds.contains(u'E'));
    QCOMPARE(view.allSelectedItemsAreDeletable(), holds.contains(u'D'));
    QCOMPARE(view.allSelectedItemsAreAddressBookItems(), holds.contains(u'A'));
    QCOMPARE(view.allSelectedItemsAreEmailable(), holds.contains(u'M'));
    QCOMPARE(view.allSelectedItemsAreWebURLs(), holds.contains(u'W'));
}

// What a smart folder has collected is not kept, so it is neither edited nor deleted; contacts are edited elsewhere.
void WayfoldOutlineViewTest::insideASmartFolder()
{
    const auto smart = WayfoldAutoFolder::bookmarkWithTitle(QStringLiteral("Smart"));
    smart->ensureUpToDate();
    const auto link = ListStage::link("Link");
    const auto person = ListStage::person("Person");
    smart->addChild(link);
    smart->addChild(person);
    _pad->showItems({smart});
    _pad->view.expandItem(smart);
    QCOMPARE(_pad->view.numberOfRows(), 3);
    _pad->select({smart});
    QVERIFY(!_pad->view.allSelectedItemsAreEditable());
    QVERIFY(!_pad->view.allSelectedItemsAreDeletable());
    _pad->select({link});
    QVERIFY(!_pad->view.allSelectedItemsAreEditable());
    _pad->select({person});
    QVERIFY(_pad->view.allSelectedItemsAreEditable());
    QVERIFY(!_pad->view.allSelectedItemsAreDeletable());
}

// --- Keys and mouse -------------------------------------------------------------------------------------------------

void WayfoldOutlineViewTest::keysOpen_data()
{
    QTest::addColumn<int>("key");
    QTest::addColumn<int>("modifiers");
    QTest::addColumn<bool>("opens");
    QTest::newRow("space") << int(Qt::Key_Space) << int(Qt::NoModifier) << true;
    QTest::newRow("command and down") << int(Qt::Key_Down) << int(Qt::ControlModifier) << true;
    QTest::newRow("down") << int(Qt::Key_Down) << int(Qt::NoModifier) << false;
    QTest::newRow("a letter") << int(Qt::Key_X) << int(Qt::NoModifier) << false;
}

void WayfoldOutlineViewTest::keysOpen()
{
    QFETCH(int, key);
    QFETCH(int, modifiers);
    QFETCH(bool, opens);
    const auto link = ListStage::link("Link");
    _pad->showItems({link, ListStage::note("Note")});
    _pad->controller->setCurrentWebFrame(_pad->web->frame);
    _pad->select({link});
    QTest::keyClick(&_pad->view, Qt::Key(key), Qt::KeyboardModifiers(modifiers));
    QCOMPARE(_pad->web->frame->loadRequests.size(), opens ? 1U : 0U);
    // Nothing is opened while nothing is selected.
    _pad->view.deselectAll();
    _pad->web->frame->loadRequests.clear();
    QTest::keyClick(&_pad->view, Qt::Key(key), Qt::KeyboardModifiers(modifiers));
    QVERIFY(_pad->web->frame->loadRequests.empty());
}

void WayfoldOutlineViewTest::heldKeysOpenOnce_data()
{
    QTest::addColumn<int>("key");
    QTest::addColumn<int>("modifiers");
    QTest::newRow("space") << int(Qt::Key_Space) << int(Qt::NoModifier);
    QTest::newRow("command and down") << int(Qt::Key_Down) << int(Qt::ControlModifier);
    QTest::newRow("return") << int(Qt::Key_Return) << int(Qt::NoModifier);
}

void WayfoldOutlineViewTest::heldKeysOpenOnce()
{
    QFETCH(int, key);
    QFETCH(int, modifiers);
    FolderSource source;
    source.root = ListStage::folder(QStringLiteral("Root"), notes(2));
    WayfoldBookmarkOutlineView view;
    view.setDelegate(&source);
    view.setOutlineDataSource(&source);
    const auto left = qScopeGuard([&view] { view.setOutlineDataSource(nullptr); });
    int opened = 0;
    view.doubleAction = [&opened] { ++opened; };
    view.selectRow(0);
    for (const bool isRepeated : {false, true, true}) {
        QKeyEvent press(QEvent::KeyPress, key, Qt::KeyboardModifiers(modifiers), QString(), isRepeated);
        QCoreApplication::sendEvent(&view, &press);
        QVERIFY(press.isAccepted());
    }
    QCOMPARE(opened, 1);
    QCOMPARE(view.selectedRows(), std::vector<int>{0});
}

void WayfoldOutlineViewTest::controlSpaceIsTheToolkits()
{
    _pad->showItems(notes(2));
    int opened = 0;
    _pad->view.doubleAction = [&opened] { ++opened; };
    _pad->view.selectRow(0);
    _pad->view.selectRow(1);
    QTest::keyClick(&_pad->view, Qt::Key_Space, Qt::ControlModifier);
    QCOMPARE(_pad->view.selectedRows(), std::vector<int>{0});
    QTest::keyClick(&_pad->view, Qt::Key_Space, Qt::ControlModifier);
    QCOMPARE(_pad->view.selectedItemCount(), 2);
    QCOMPARE(opened, 0);
}

// Which goes on to the next row without selecting it, and selects the row that it stands on.
void WayfoldOutlineViewTest::spaceOnAFolderIsTheToolkits()
{
    const auto folder = ListStage::folder("Folder", {ListStage::note("In it")});
    _pad->showItems({folder, ListStage::note("Next")});
    int opened = 0;
    _pad->view.doubleAction = [&opened] { ++opened; };
    _pad->select({folder});
    QTest::keyClick(&_pad->view, Qt::Key_Down, Qt::ControlModifier);
    QCOMPARE(_pad->view.selectedRows(), std::vector<int>{0});
    QCOMPARE(_pad->view.currentIndex().row(), 1);
    QTest::keyClick(&_pad->view, Qt::Key_Space);
    QCOMPARE(_pad->view.selectedRows(), std::vector<int>({0, 1}));
    QCOMPARE(opened, 0);
}

// Of several: a folder among them is opened with them unless it is the last one.
void WayfoldOutlineViewTest::lastSelectedRowCounts()
{
    const auto first = ListStage::note("First");
    const auto folder = ListStage::folder("Folder");
    const auto last = ListStage::note("Last");
    _pad->showItems({first, folder, last});
    int opened = 0;
    _pad->view.doubleAction = [&opened] { ++opened; };
    _pad->select({first, folder});
    QCOMPARE(_pad->view.selectedItem(), KDRBookmarkPtr(folder));
    QTest::keyClick(&_pad->view, Qt::Key_Space);
    QCOMPARE(opened, 0);
    _pad->select({last, folder});
    QCOMPARE(_pad->view.selectedItem(), KDRBookmarkPtr(last));
    QTest::keyClick(&_pad->view, Qt::Key_Space);
    QCOMPARE(opened, 1);
}

void WayfoldOutlineViewTest::rightClickSelects()
{
    _pad->showItems({ListStage::note("a"), ListStage::note("b"), ListStage::note("c")});
    const auto rightClick = [this](int row) {
        const QPoint point =
            row < 0 ? QPoint(5, _pad->view.viewport()->height() - 2) : _pad->view.rectOfRow(row).center();
        QContextMenuEvent event(QContextMenuEvent::Mouse, point, QPoint());
        _pad->view.menuForEvent(&event);
    };
    rightClick(1);
    QCOMPARE(ListStage::titles(_pad->view.selectedItemList()), QStringList{QStringLiteral("b")});
    _pad->view.selectRow(2);
    rightClick(2);
    QCOMPARE(_pad->view.selectedItemCount(), 2);
    rightClick(0);
    QCOMPARE(ListStage::titles(_pad->view.selectedItemList()), QStringList{QStringLiteral("a")});
    rightClick(-1);
    QCOMPARE(ListStage::titles(_pad->view.selectedItemList()), QStringList{QStringLiteral("a")});
}

void WayfoldOutlineViewTest::rightClickInsideTheSelectionKeepsIt()
{
    _pad->showItems(notes(4));
    QVERIFY(QTest::qWaitForWindowExposed(&_pad->view));
    const auto rightClick = [this](int row) {
        QWidget *viewport = _pad->view.viewport();
        const QPoint point = _pad->view.rectOfRow(row).center();
        QTest::mousePress(viewport, Qt::RightButton, {}, point);
        QContextMenuEvent event(QContextMenuEvent::Mouse, point, viewport->mapToGlobal(point));
        QCoreApplication::sendEvent(viewport, &event);
        QVERIFY(WayfoldOutlineView::defaultMenu()->isVisible());
        WayfoldOutlineView::defaultMenu()->hide();
        QTest::mouseRelease(viewport, Qt::RightButton, {}, point);
    };
    _pad->view.selectRow(1);
    _pad->view.selectRow(2);
    rightClick(2);
    QCOMPARE(_pad->view.selectedRows(), std::vector<int>({1, 2}));
    rightClick(1);
    QCOMPARE(_pad->view.selectedRows(), std::vector<int>({1, 2}));
    rightClick(3);
    QCOMPARE(_pad->view.selectedRows(), std::vector<int>({3}));
}

void WayfoldOutlineViewTest::menuKeySelectsNothing()
{
    _pad->showItems(notes(50));
    const auto pressMenuKey = [this] {
        QContextMenuEvent event(QContextMenuEvent::Keyboard, QPoint(3, 3), _pad->view.mapToGlobal(QPoint(3, 3)));
        QCoreApplication::sendEvent(&_pad->view, &event);
        QVERIFY(WayfoldOutlineView::defaultMenu()->isVisible());
        WayfoldOutlineView::defaultMenu()->hide();
    };
    pressMenuKey();
    QCOMPARE(_pad->view.selectedRow(), -1);
    _pad->view.selectRow(3);
    _pad->view.selectRow(4);
    pressMenuKey();
    QCOMPARE(_pad->view.selectedRows(), std::vector<int>({3, 4}));
}

void WayfoldOutlineViewTest::contextMenuActsOnTheListThatShowedIt()
{
    QMenu *menu = WayfoldOutlineView::defaultMenu();
    QVERIFY(menu);
    QCOMPARE(menu, ListStage::store().menu());
    const auto link = ListStage::link("Link");
    _pad->showItems({link});
    _pad->controller->setCurrentWebFrame(_pad->web->frame);
    QContextMenuEvent event(QContextMenuEvent::Mouse, _pad->view.rectOfRow(0).center(), QPoint());
    QCOMPARE(_pad->view.menuForEvent(&event), menu);

    QAction *open = nullptr;
    for (QAction *item : menu->actions()) {
        if (MenuItem::action(item) == u"handleResolveBookmarkRequest:")
            open = item;
    }
    QVERIFY(open);
    menu->popup(QPoint(0, 0));
    QVERIFY(open->isEnabled());
    QCOMPARE(open->text(), QStringLiteral("Open Item"));
    menu->hide();
    open->trigger();
    QCOMPARE(_pad->web->frame->loadRequests.size(), 1U);

    // The list goes away; its menu stays, and does nothing.
    {
        WayfoldBookmarkOutlineView other;
        QCOMPARE(other.menuForEvent(&event), menu);
    }
    open->trigger();
    QCOMPARE(_pad->web->frame->loadRequests.size(), 1U);
}

void WayfoldOutlineViewTest::contextMenuDisablesWhatTheListCannotDo()
{
    WayfoldBookmarkOutlineView bookmarks;
    QContextMenuEvent event(QContextMenuEvent::Mouse, QPoint(1, 1), QPoint());
    QMenu *menu = bookmarks.menuForEvent(&event);
    menu->popup(QPoint(0, 0));
    int checked = 0;
    for (const QAction *item : menu->actions()) {
        const QString action = MenuItem::action(item);
        if (action == u"handleDeleteItemRequest:" || action == u"handleItemEditRequest:") {
            QVERIFY(!item->isEnabled());
            ++checked;
        }
    }
    menu->hide();
    QCOMPARE(checked, 2);
}

// --- Menu -----------------------------------------------------------------------------------------------------------

void WayfoldOutlineViewTest::openItem_data()
{
    QTest::addColumn<std::vector<KDRBookmarkPtr>>("items");
    QTest::addColumn<QString>("title");
    QTest::addColumn<bool>("enabled");
    using Items = std::vector<KDRBookmarkPtr>;
    const QString one = QStringLiteral("Open Item");
    const QString several = QStringLiteral("Open Items");
    QTest::newRow("nothing") << Items{} << one << false;
    QTest::newRow("one") << Items{ListStage::note("a")} << one << true;
    QTest::newRow("two") << Items{ListStage::note("a"), ListStage::link("b")} << several << true;
    QTest::newRow("person") << Items{ListStage::person("a")} << QStringLiteral("Open Item in Address Book") << true;
    QTest::newRow("two people") << Items{ListStage::person("a"), ListStage::person("b")} << several << false;
    QTest::newRow("person and note") << Items{ListStage::person("a"), ListStage::note("b")} << several << true;
    QTest::newRow("group") << Items{ListStage::group("a")} << one << true;
    QTest::newRow("organization") << Items{ListStage::organization("a")} << QStringLiteral("Open Item in Address Book")
                                  << true;
    QTest::newRow("person and group") << Items{ListStage::person("a"), ListStage::group("b")} << several << true;
}

void WayfoldOutlineViewTest::openItem()
{
    QFETCH(std::vector<KDRBookmarkPtr>, items);
    QFETCH(QString, title);
    QFETCH(bool, enabled);
    _pad->showItems(items);
    _pad->select(items);
    QMenu menu;
    QAction *item = addItem(menu, "handleResolveBookmarkRequest:");
    QCOMPARE(_pad->view.validateMenuItem(item), enabled);
    QCOMPARE(item->text(), title);
}

void WayfoldOutlineViewTest::openInTabsItem_data()
{
    QTest::addColumn<std::vector<KDRBookmarkPtr>>("items");
    QTest::addColumn<bool>("tabs");
    QTest::addColumn<QString>("title");
    QTest::addColumn<bool>("enabled");
    using Items = std::vector<KDRBookmarkPtr>;
    const QString one = QStringLiteral("Open Item in New Tab");
    const QString several = QStringLiteral("Open Items in New Tabs");
    const Items links = {ListStage::link("a"), ListStage::history("b")};
    QTest::newRow("nothing") << Items{} << true << one << false;
    QTest::newRow("link") << Items{ListStage::link("a")} << true << one << true;
    QTest::newRow("note") << Items{ListStage::note("a")} << true << one << false;
    QTest::newRow("file") << Items{ListStage::file("a")} << true << one << false;
    QTest::newRow("links") << links << true << several << true;
    QTest::newRow("link and note") << Items{ListStage::link("a"), ListStage::note("b")} << true << one << false;
    QTest::newRow("link without tabs") << Items{ListStage::link("a")} << false << one << false;
    QTest::newRow("links without tabs") << links << false << one << false;
}

void WayfoldOutlineViewTest::openInTabsItem()
{
    QFETCH(std::vector<KDRBookmarkPtr>, items);
    QFETCH(bool, tabs);
    QFETCH(QString, title);
    QFETCH(bool, enabled);
    _stage->host.hostSettings.setObjectForKey(tabs, QStringLiteral("TabbedBrowsing"));
    _pad->showItems(items);
    _pad->select(items);
    QMenu menu;
    QAction *item = addItem(menu, "handleOpenBookmarksInTabsRequest:");
    QCOMPARE(_pad->view.validateMenuItem(item), enabled);
    QCOMPARE(item->text(), title);
}

void WayfoldOutlineViewTest::otherItems()
{
    WayfoldBookmarkOutlineView view;
    QMenu menu;
    for (const char *action : {"handleNewSubFolderRequest:", "handleNewNoteRequest:", "handleNewEmailRequest:",
                               "handleNewPersonRequest:", "handleSendEmailRequest:"})
        QVERIFY2(!view.validateMenuItem(addItem(menu, action)), action);
    QVERIFY(view.validateMenuItem(addItem(menu, "somethingElse:")));
}

// --- Dragging -------------------------------------------------------------------------------------------------------

namespace
{
// A view whose drag is an event loop, as every drag is.
class DraggedView : public WayfoldOutlineView
{
public:
    std::function<void()> duringDrag;

protected:
    Qt::DropAction runDrag(QDrag * /*drag*/) override
    {
        QEventLoop loop;
        QTimer::singleShot(0, &loop, [&loop, act = duringDrag] {
            act();
            QTimer::singleShot(0, &loop, &QEventLoop::quit);
        });
        loop.exec();
        return Qt::IgnoreAction;
    }
};

// A list and what stands behind it, as a browser window holds them: once it is let go of, both go with the next events.
class DragWindow : public QObject
{
public:
    FolderSource source;
    DraggedView view; // goes before its source does

    static std::shared_ptr<DragWindow> open()
    {
        const std::shared_ptr<DragWindow> window(new DragWindow, [](DragWindow *closed) { closed->deleteLater(); });
        window->source.view = &window->view;
        window->source.root = ListStage::folder("Root", {ListStage::note("Dragged")});
        window->source.setOwner(window);
        window->view.setDelegate(&window->source);
        window->view.setOutlineDataSource(&window->source);
        window->view.resize(300, 200);
        window->view.show();
        return window;
    }
};

void sendMouse(QWidget *viewport, QEvent::Type type, const QPoint &point)
{
    const Qt::MouseButton button = type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton;
    QMouseEvent event(type, point, viewport->mapToGlobal(point), button, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(viewport, &event);
}
} // namespace

// A page may close its own window at any time. What handles the mouse goes on with the list when the drag is over.
void WayfoldOutlineViewTest::windowMayCloseDuringADrag()
{
    std::shared_ptr<DragWindow> window = DragWindow::open();
    const QPointer<DragWindow> alive(window.get());
    QVERIFY(QTest::qWaitForWindowExposed(&window->view));
    bool dragged = false;
    bool aliveDuringDrag = false;
    window->view.duringDrag = [&] {
        dragged = true;
        window.reset();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        aliveDuringDrag = alive;
    };
    QWidget *viewport = window->view.viewport();
    const QPoint start = window->view.rectOfRow(0).center();
    sendMouse(viewport, QEvent::MouseButtonPress, start);
    for (int step = 1; step <= 3 && !dragged; ++step)
        sendMouse(viewport, QEvent::MouseMove, start + QPoint(0, step * QApplication::startDragDistance()));
    QVERIFY(dragged);
    QVERIFY(aliveDuringDrag);
    QTRY_VERIFY(!alive);
}

QTEST_MAIN(WayfoldOutlineViewTest)
#include "WayfoldOutlineViewTest.moc"
