#include "platform/widgets/OutlineView.h"

#include "platform/base/NotificationCenter.h"
#include "platform/base/NotificationQueue.h"
#include "tests/support/OutlineTree.h"

#include <QAccessible>
#include <QDrag>
#include <QMenu>
#include <QRandomGenerator>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTest>
#include <QToolTip>
#include <QtMath>

namespace
{
// A view whose drags and menus a test decides.
class TestedView : public OutlineView
{
public:
    QString tip;
    QMenu *menu = nullptr;
    QList<QPoint> menuPoints;
    std::function<void(QDrag &)> duringDrag;
    Qt::DropAction dragAction = Qt::CopyAction;
    bool keepsDrags = false; // as long as another application has not asked for the data
    int reloads = 0;

    using OutlineView::startDrag;

    QString toolTipAtPoint(const QPoint &point) override { return rowAtPoint(point) == 1 ? tip : QString(); }
    QMenu *menuForEvent(QContextMenuEvent *event) override
    {
        menuPoints.append(event->pos());
        return menu;
    }
    void reloadData() override
    {
        ++reloads;
        OutlineView::reloadData();
    }

protected:
    Qt::DropAction runDrag(QDrag *drag) override
    {
        if (duringDrag)
            duringDrag(*drag);
        if (!keepsDrags)
            delete drag;
        return dragAction;
    }
};

// Makes its rows as it is asked for them, counts who looks through those that it has made, and looks itself up for
// every title, as a list with tips for its rows does.
class MadeTree : public OutlineTree
{
public:
    std::vector<bool> made;
    int walks = 0;
    bool areLeaves = false;

    explicit MadeTree(int rows) : made(std::size_t(rows))
    {
        for (int i = 0; i < rows; ++i)
            add(QString::number(i));
    }
    bool outlineViewMakesChildrenOfItem(OutlineView & /*view*/, const OutlineItemPtr &item) override { return !item; }
    bool outlineViewMakesLeavesOfItem(OutlineView & /*view*/, const OutlineItemPtr & /*item*/) override
    {
        return areLeaves;
    }
    bool outlineViewIsChildExpandable(OutlineView & /*view*/, int index, const OutlineItemPtr & /*item*/) override
    {
        return root->children[std::size_t(index)]->isFolder;
    }
    OutlineItemPtr outlineViewChildOfItem(OutlineView &view, int index, const OutlineItemPtr &item) override
    {
        made[std::size_t(index)] = true;
        return OutlineTree::outlineViewChildOfItem(view, index, item);
    }
    std::vector<std::pair<int, OutlineItemPtr>> outlineViewMadeChildrenOfItem(OutlineView & /*view*/,
                                                                              const OutlineItemPtr & /*item*/) override
    {
        ++walks;
        std::vector<std::pair<int, OutlineItemPtr>> children;
        for (std::size_t i = 0; i < made.size(); ++i) {
            if (made[i])
                children.emplace_back(int(i), root->children[i]);
        }
        return children;
    }
    QString outlineViewObjectValueByItem(OutlineView &view, const OutlineItemPtr &item) override
    {
        return view.rowForItem(item) < 0 ? QString() : nodeOf(item).title;
    }
};

void showList(OutlineView &view, const QSize &size = QSize(240, 400))
{
    view.resize(size);
    view.setRowHeight(20);
    view.show();
    QVERIFY(QTest::qWaitForWindowExposed(&view));
}

// Each of these enters the list first, as every drag does.
void enterList(OutlineView &view, const QMimeData &data, Qt::DropActions possible)
{
    QDragEnterEvent enter(QPoint(60, 1), possible, &data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(view.viewport(), &enter);
    QVERIFY(enter.isAccepted());
}

// The action that the list answered, none when it refused.
Qt::DropAction dragTo(OutlineView &view, int y, const QMimeData &data, Qt::DropActions possible = Qt::CopyAction)
{
    enterList(view, data, possible);
    QDragMoveEvent move(QPoint(60, y), possible, &data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(view.viewport(), &move);
    return move.isAccepted() ? move.dropAction() : Qt::IgnoreAction;
}

Qt::DropAction dropAt(OutlineView &view, int y, const QMimeData &data, Qt::DropActions possible = Qt::CopyAction)
{
    enterList(view, data, possible);
    QDropEvent drop(QPointF(60, y), possible, &data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(view.viewport(), &drop);
    return drop.isAccepted() ? drop.dropAction() : Qt::IgnoreAction;
}

QStringList shownTitles(const OutlineView &view, const OutlineTree &tree)
{
    QStringList titles;
    for (int row = 0; row < view.numberOfRows(); ++row)
        titles.append(QString(view.levelForRow(row), QLatin1Char(' ')) + tree.nodeOf(view.itemAtRow(row)).title);
    return titles;
}

QStringList selectedTitles(const OutlineView &view, const OutlineTree &tree)
{
    QStringList titles;
    for (const int row : view.selectedRows())
        titles.append(tree.nodeOf(view.itemAtRow(row)).title);
    return titles;
}
} // namespace

class OutlineViewTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void countsRowsOverWhatIsOpen();
    void asksOnlyForWhatIsOpen();
    void hasNoRowsWithoutASource();
    void answersNothingForRowsThatDoNotExist();
    void findsTheFirstOfSeveralRowsWithAnItem();
    void mapsRowsBothWays_data();
    void mapsRowsBothWays();
    void remembersWhatWasOpenInAClosedFolder();
    void doesNotOpenLeaves();
    void opensManyWhateverTheirOrder();
    void opensManyInOneWalk();

    void reloadForgetsExpansionAndSelection();
    void reloadTellsOfALostSelection();
    void reloadItemAsksForTheTitleAgain();
    void reloadItemTurnsALeafIntoAFolder();
    void reloadItemWithoutChildrenKeepsTheRowsBelow();
    void reloadItemKeepsWhatIsOpenBelow();
    void reloadItemOpensMovedFolders();
    void reloadItemEndsForAFolderWithinItself();
    void reloadItemKeepsTheSelection();
    void reloadItemTellsWhenSelectedItemsAreGone();
    void reloadOfNoneReloadsEverything();
    void reloadOfAnUnknownItemChangesNothing();
    void keepsNoItemThatIsGone();

    void selectsRows();
    void selectsRowsOfItems();
    void currentRowIsNotSelected();
    void collapsingDeselectsWhatIsHidden();
    void tellsOfSelectionChanges();

    void rowsAreAsHighAsTold();
    void mapsPointsToRows();
    void scrollsRowsIntoView();

    void keysWalkAndFold();
    void typingFindsTitles();
    void doubleClickActsOnRowsOnly();
    void showsToolTips();
    void showsContextMenus();
    void menuKeyAsksForTheSelectedRow();
    void notificationsWaitForTheEndOfAMenu();

    void dragsTheSelectionInRowOrder();
    void startsNoDragWithoutData();
    void notificationsWaitForTheEndOfADrag();
    void survivesBeingDeletedWhileDragging();
    void dragEndsWhenItsDataIsHandedOver();
    void dragThatNobodyTookEndsAtOnce();
    void lateEndOfADragSparesTheNext();
    void survivesADragThatOutlivesIt();
    void mapsDropsToPlaces_data();
    void mapsDropsToPlaces();
    void sourceMayRetargetADrop();
    void dragOfOtherDataStaysOutside();
    void refusedDropsAreIgnored_data();
    void refusedDropsAreIgnored();
    void dropIndicatorGoesWithTheDrag();
    void offersOnlyActionsThatTheDragAllows_data();
    void offersOnlyActionsThatTheDragAllows();
    void opensFoldersUnderADrag();
    void opensOnlyTheFolderThatADragRestsOn();
    void scrollsUnderADrag();
    void marksWhereADropGoes_data();
    void marksWhereADropGoes();
    void marksADropBehindAnEmptyFolder();
    void drawsTheDropIndicator();
    void dropIndicatorScrollsWithTheRows();
    void dragsAPictureOfTheRows();

    void drawsRowsWithTheDataCell();
    void cellsHaveTheFontOfTheView();
    void elidesLongTitles();
    void rowsHaveAccessibleNames();
    void rowsAreDescribedWhenAsked();
    void rowsThatAreShownAreFoundWithoutASearch();

    void keepsQtsRules_data();
    void keepsQtsRules();
    void tellsQtWhatRowsCanDo();
    void indexesThatAreOutOfDateLeadNowhere();
    void listsWhatStandsOpen();
    void asksMadeChildrenOneByOne();
    void reloadItemKeepsMadeRows();
    void countsBelowZeroAreNone();

private:
    void buildGarden();

    std::unique_ptr<OutlineTree> _tree;
    std::unique_ptr<TestedView> _view;
    OutlineTree::Node _fruit;
    OutlineTree::Node _apple;
    OutlineTree::Node _citrus;
    OutlineTree::Node _lemon;
    OutlineTree::Node _pear;
    OutlineTree::Node _herb;
    OutlineTree::Node _tools;
    OutlineTree::Node _rake;
};

void OutlineViewTest::init()
{
    _tree = std::make_unique<OutlineTree>();
    _view = std::make_unique<TestedView>();
    buildGarden();
}

void OutlineViewTest::cleanup()
{
    _view.reset();
    _tree.reset();
}

// fruit (apple, citrus (lemon), pear), herb, tools (rake)
void OutlineViewTest::buildGarden()
{
    _fruit = _tree->add("fruit");
    _apple = _tree->add("apple", _fruit);
    _citrus = _tree->add("citrus", _fruit);
    _lemon = _tree->add("lemon", _citrus);
    _pear = _tree->add("pear", _fruit);
    _herb = _tree->add("herb");
    _tools = _tree->add("tools");
    _rake = _tree->add("rake", _tools);
    _view->setOutlineDataSource(_tree.get());
}

// --- Rows -----------------------------------------------------------------------------------------------------------

void OutlineViewTest::countsRowsOverWhatIsOpen()
{
    QCOMPARE(shownTitles(*_view, *_tree), QStringList({"fruit", "herb", "tools"}));
    _view->expandItem(_fruit);
    QCOMPARE(shownTitles(*_view, *_tree), QStringList({"fruit", " apple", " citrus", " pear", "herb", "tools"}));
    _view->expandItem(_citrus);
    QCOMPARE(shownTitles(*_view, *_tree),
             QStringList({"fruit", " apple", " citrus", "  lemon", " pear", "herb", "tools"}));
    QVERIFY(_view->isItemExpanded(_citrus));
    _view->collapseItem(_citrus);
    QCOMPARE(shownTitles(*_view, *_tree), QStringList({"fruit", " apple", " citrus", " pear", "herb", "tools"}));
    QVERIFY(!_view->isItemExpanded(_citrus));
}

void OutlineViewTest::asksOnlyForWhatIsOpen()
{
    const ModelChecks::Pause unchecked;
    OutlineTree tree;
    auto folder = tree.add("folder");
    for (int i = 0; i < 50; ++i)
        tree.add(QString::number(i), folder);
    OutlineView view;
    view.setOutlineDataSource(&tree);
    showList(view);
    QCOMPARE(view.numberOfRows(), 1);
    QCOMPARE(tree.countCalls, 1);
    QCOMPARE(tree.childCalls, 1);

    view.expandItem(folder);
    QCOMPARE(view.numberOfRows(), 51);
    QCOMPARE(tree.countCalls, 2);
    view.collapseItem(folder);
    view.expandItem(folder);
    QCOMPARE(view.numberOfRows(), 51);
    QCOMPARE(tree.countCalls, 2);
    QCOMPARE(tree.childCalls, 51);
}

void OutlineViewTest::hasNoRowsWithoutASource()
{
    _view->setOutlineDataSource(nullptr);
    QCOMPARE(_view->numberOfRows(), 0);
    QVERIFY(!_view->outlineDataSource());
    _view->reloadData();
    _view->reloadItem(_fruit, true);
    _view->expandItem(_fruit);
    QVERIFY(!_view->isExpandable(_fruit));
    QCOMPARE(_view->rowForItem(_fruit), -1);
}

void OutlineViewTest::answersNothingForRowsThatDoNotExist()
{
    QVERIFY(!_view->itemAtRow(-1));
    QVERIFY(!_view->itemAtRow(3));
    QCOMPARE(_view->levelForRow(-1), -1);
    QCOMPARE(_view->levelForRow(3), -1);
    QVERIFY(_view->rectOfRow(-1).isEmpty());
    QVERIFY(_view->rectOfRow(3).isEmpty());
    QCOMPARE(_view->rowForItem(nullptr), -1);
    QCOMPARE(_view->rowForItem(_apple), -1); // its folder is closed
    QVERIFY(!_view->isItemExpanded(nullptr));
    _view->expandItem(nullptr);
    _view->scrollRowToVisible(99);
    QCOMPARE(_view->numberOfRows(), 3);
}

void OutlineViewTest::findsTheFirstOfSeveralRowsWithAnItem()
{
    _tools->children.push_back(_citrus); // now in two folders
    _view->reloadData();
    _view->expandItem(_tools);
    QCOMPARE(_view->rowForItem(_citrus), 4);
    _view->expandItem(_fruit);
    QCOMPARE(_view->rowForItem(_citrus), 2);
    QCOMPARE(_view->itemAtRow(7), OutlineItemPtr(_citrus));

    _view->expandItem(_citrus); // the first one only
    QCOMPARE(shownTitles(*_view, *_tree),
             QStringList({"fruit", " apple", " citrus", "  lemon", " pear", "herb", "tools", " rake", " citrus"}));
    _view->collapseItem(_fruit);
    QCOMPARE(_view->rowForItem(_citrus), 4);
    QVERIFY(!_view->isItemExpanded(_citrus));
}

void OutlineViewTest::mapsRowsBothWays_data()
{
    QTest::addColumn<quint32>("seed");
    for (quint32 seed = 1; seed <= 8; ++seed)
        QTest::addRow("tree %u", seed) << seed;
}

// Against a plain walk over a random tree that is opened and closed at random.
void OutlineViewTest::mapsRowsBothWays()
{
    QFETCH(quint32, seed);
    QRandomGenerator random(seed);
    OutlineTree tree;
    std::vector<OutlineTree::Node> folders = {nullptr};
    for (int i = 0; i < 300; ++i) {
        auto node = tree.add(QString::number(i), folders[random.bounded(quint32(folders.size()))]);
        if (random.bounded(3) == 0) {
            node->isFolder = true;
            folders.push_back(node);
        }
    }
    OutlineView view;
    view.setOutlineDataSource(&tree);

    QSet<OutlineItem *> open;
    std::vector<OutlineItemPtr> expected;
    const std::function<void(const OutlineTreeItem &)> walk = [&](const OutlineTreeItem &folder) {
        for (const auto &child : folder.children) {
            expected.push_back(child);
            if (open.contains(child.get()))
                walk(*child);
        }
    };
    for (int step = 0; step < 120; ++step) {
        expected.clear();
        walk(*tree.root);
        const OutlineItemPtr item = expected[random.bounded(quint32(expected.size()))];
        if (!tree.nodeOf(item).isFolder)
            continue;
        if (open.remove(item.get())) {
            view.collapseItem(item);
        } else {
            open.insert(item.get());
            view.expandItem(item);
        }
        expected.clear();
        walk(*tree.root);
        QCOMPARE(view.numberOfRows(), int(expected.size()));
        for (int row = 0; row < int(expected.size()); ++row) {
            QCOMPARE(view.itemAtRow(row), expected[std::size_t(row)]);
            QCOMPARE(view.rowForItem(expected[std::size_t(row)]), row);
        }
    }
}

void OutlineViewTest::remembersWhatWasOpenInAClosedFolder()
{
    _view->expandItem(_fruit);
    _view->expandItem(_citrus);
    _view->collapseItem(_fruit);
    QCOMPARE(_view->numberOfRows(), 3);
    _view->expandItem(_fruit);
    QCOMPARE(_view->numberOfRows(), 7);
}

void OutlineViewTest::opensManyWhateverTheirOrder()
{
    showList(*_view);
    _tree->countCalls = 0;
    const auto elsewhere = std::make_shared<OutlineTreeItem>();
    _view->expandItems({_citrus, elsewhere, _tools, nullptr, _fruit, _herb});
    QCOMPARE(shownTitles(*_view, *_tree),
             QStringList({"fruit", " apple", " citrus", "  lemon", " pear", "herb", "tools", " rake"}));
    QTest::mouseClick(_view->viewport(), Qt::LeftButton, {}, QPoint(100, 3 * 20 + 10));
    QCOMPARE(selectedTitles(*_view, *_tree), QStringList({"lemon"}));
}

void OutlineViewTest::opensManyInOneWalk()
{
    const ModelChecks::Pause unchecked;
    _view = std::make_unique<TestedView>();
    MadeTree tree(1000);
    for (const OutlineTree::Node &node : tree.root->children)
        node->isFolder = true;
    _view->setOutlineDataSource(&tree);
    _view->expandItems({tree.root->children.cbegin(), tree.root->children.cend()}); // the view has seen none of them
    QCOMPARE(_view->expandedItems().size(), std::size_t(0));
    for (int row = 0; row < 1000; ++row)
        tree.made[std::size_t(row)] = true;
    tree.walks = 0;
    _view->expandItems({tree.root->children.cbegin(), tree.root->children.cend()});
    QCOMPARE(_view->expandedItems().size(), std::size_t(1000));
    QCOMPARE(tree.walks, 1);
    _view->setOutlineDataSource(nullptr);
}

void OutlineViewTest::doesNotOpenLeaves()
{
    QVERIFY(_view->isExpandable(_fruit));
    QVERIFY(!_view->isExpandable(_herb));
    QVERIFY(!_view->isExpandable(nullptr));
    _view->expandItem(_herb);
    QVERIFY(!_view->isItemExpanded(_herb));
    QCOMPARE(_view->numberOfRows(), 3);
}

// --- Reloading ------------------------------------------------------------------------------------------------------

void OutlineViewTest::reloadForgetsExpansionAndSelection()
{
    _view->expandItem(_fruit);
    _view->selectRowExtending(1, false);
    _tree->add("seeds");
    QCOMPARE(_view->numberOfRows(), 6);
    _view->reloadData();
    QCOMPARE(shownTitles(*_view, *_tree), QStringList({"fruit", "herb", "tools", "seeds"}));
    QCOMPARE(_view->numberOfSelectedRows(), 0);
}

void OutlineViewTest::reloadTellsOfALostSelection()
{
    _view->reloadData();
    QCOMPARE(_tree->selectionChanges, 0);
    _view->selectRowExtending(1, false);
    _tree->selectionChanges = 0;
    _view->reloadData();
    QCOMPARE(_tree->selectionChanges, 1);
}

void OutlineViewTest::reloadItemAsksForTheTitleAgain()
{
    showList(*_view);
    const QModelIndex index = _view->model()->index(1, 0);
    QCOMPARE(index.data().toString(), QString("herb"));
    QSignalSpy changes(_view->model(), &QAbstractItemModel::dataChanged);
    _herb->title = "mint";
    _view->reloadItem(_herb, false);
    QCOMPARE(changes.size(), 1);
    QCOMPARE(changes[0][0].toModelIndex(), index);
    QCOMPARE(index.data().toString(), QString("mint"));
}

void OutlineViewTest::reloadItemTurnsALeafIntoAFolder()
{
    _view->rowForItem(_herb);
    _tree->add("mint", _herb);
    _view->expandItem(_herb);
    QCOMPARE(_view->numberOfRows(), 3);
    _view->reloadItem(_herb, false);
    _view->expandItem(_herb);
    QCOMPARE(shownTitles(*_view, *_tree), QStringList({"fruit", "herb", " mint", "tools"}));

    _herb->isFolder = false;
    _herb->children.clear();
    _view->reloadItem(_herb, true);
    QCOMPARE(shownTitles(*_view, *_tree), QStringList({"fruit", "herb", "tools"}));
    QVERIFY(!_view->isItemExpanded(_herb));
}

void OutlineViewTest::reloadItemWithoutChildrenKeepsTheRowsBelow()
{
    _view->expandItem(_fruit);
    _tree->add("plum", _fruit);
    _view->reloadItem(_fruit, false);
    QCOMPARE(_view->numberOfRows(), 6);
    _view->reloadItem(_fruit, true);
    QCOMPARE(_view->numberOfRows(), 7);
}

void OutlineViewTest::reloadItemKeepsWhatIsOpenBelow()
{
    showList(*_view);
    _view->expandItem(_fruit);
    _view->expandItem(_citrus);
    _tree->add("lime", _citrus);
    _fruit->children = {_citrus, _pear, _tree->add("plum", _fruit)}; // apple is gone, citrus comes first
    _view->reloadItem(_fruit, true);
    QCOMPARE(shownTitles(*_view, *_tree),
             QStringList({"fruit", " citrus", "  lemon", "  lime", " pear", " plum", "herb", "tools"}));
    QVERIFY(_view->isExpanded(_view->model()->index(0, 0, _view->model()->index(0, 0))));
    QCOMPARE(_view->rowForItem(_apple), -1);
    QCOMPARE(_view->rowForItem(_tools), 7);
}

void OutlineViewTest::reloadItemOpensMovedFolders()
{
    _view->expandItem(_fruit);
    _view->expandItem(_citrus);
    const auto basket = _tree->add("basket", _fruit);
    basket->isFolder = true;
    _view->reloadItem(_fruit, true);
    _view->expandItem(basket);
    _fruit->children = {_apple, _pear, basket};
    basket->children = {_citrus};
    _view->reloadItem(_fruit, true);
    QCOMPARE(shownTitles(*_view, *_tree),
             QStringList({"fruit", " apple", " pear", " basket", "  citrus", "   lemon", "herb", "tools"}));
}

void OutlineViewTest::reloadItemEndsForAFolderWithinItself()
{
    _fruit->children.push_back(_fruit);
    _view->reloadData();
    _view->expandItem(_fruit);
    _view->expand(_view->model()->index(3, 0, _view->model()->index(0, 0))); // the fruit in the fruit
    QCOMPARE(_view->numberOfRows(), 3 + 4 + 4);
    _view->reloadItem(_fruit, true);
    QCOMPARE(_view->numberOfRows(), 3 + 4 + 4);
    _fruit->children.pop_back();
    _view->reloadItem(_fruit, true);
    QCOMPARE(_view->numberOfRows(), 3 + 3);
}

void OutlineViewTest::reloadItemKeepsTheSelection()
{
    _view->expandItem(_fruit);
    _view->selectRowExtending(1, false); // apple
    _view->selectRowExtending(3, true);  // pear
    _view->selectRowExtending(4, true);  // herb
    _tree->selectionChanges = 0;
    _fruit->children = {_citrus, _pear, _apple};
    _view->reloadItem(_fruit, true);
    QCOMPARE(selectedTitles(*_view, *_tree), QStringList({"pear", "apple", "herb"}));
}

void OutlineViewTest::reloadItemTellsWhenSelectedItemsAreGone()
{
    _view->expandItem(_fruit);
    _view->selectRowExtending(1, false);
    _view->selectRowExtending(4, true);
    _tree->selectionChanges = 0;
    _fruit->children = {_citrus, _pear};
    _view->reloadItem(_fruit, true);
    QCOMPARE(selectedTitles(*_view, *_tree), QStringList({"herb"}));
    QCOMPARE(_tree->selectionChanges, 1);
    _view->reloadItem(_fruit, true);
    QCOMPARE(_tree->selectionChanges, 1);
}

void OutlineViewTest::reloadOfNoneReloadsEverything()
{
    _view->expandItem(_fruit);
    _view->reloadItem(nullptr, false);
    QCOMPARE(_view->reloads, 1);
    QCOMPARE(_view->numberOfRows(), 3);
}

void OutlineViewTest::reloadOfAnUnknownItemChangesNothing()
{
    const auto stranger = std::make_shared<OutlineTreeItem>();
    _view->expandItem(_fruit);
    _view->reloadItem(stranger, true);
    QCOMPARE(_view->numberOfRows(), 6);
}

// What a list holds is counted by those who ask whether anyone still needs it.
void OutlineViewTest::keepsNoItemThatIsGone()
{
    showList(*_view);
    _view->expandItem(_fruit);
    _view->expandItem(_citrus);
    _view->selectRowExtending(3, false);
    const std::weak_ptr<OutlineTreeItem> citrus = _citrus;
    const std::weak_ptr<OutlineTreeItem> lemon = _lemon;
    _fruit->children = {_apple, _pear};
    _citrus.reset();
    _lemon.reset();
    _view->reloadItem(_fruit, true);
    QVERIFY(citrus.expired());
    QVERIFY(lemon.expired());

    const std::weak_ptr<OutlineTreeItem> apple = _apple;
    _fruit->children.clear();
    _apple.reset();
    QVERIFY(!apple.expired());
    _view->reloadData();
    QVERIFY(apple.expired());
}

// --- Selection ------------------------------------------------------------------------------------------------------

void OutlineViewTest::selectsRows()
{
    QCOMPARE(_view->selectedRow(), -1);
    QVERIFY(_view->selectedRows().empty());
    _view->expandItem(_fruit);
    _view->selectRowExtending(5, false);
    _view->selectRowExtending(2, true);
    _view->selectRowExtending(0, true);
    QCOMPARE(_view->selectedRows(), std::vector<int>({0, 2, 5}));
    QCOMPARE(_view->selectedRow(), 5); // the last one
    QCOMPARE(_view->numberOfSelectedRows(), 3);

    _view->selectRowExtending(-1, false);
    _view->selectRowExtending(6, true);
    QCOMPARE(_view->selectedRows(), std::vector<int>({0, 2, 5}));

    _view->selectRowExtending(4, false);
    QCOMPARE(_view->selectedRows(), std::vector<int>({4}));
    _view->deselectAll();
    QCOMPARE(_view->numberOfSelectedRows(), 0);
}

void OutlineViewTest::selectsRowsOfItems()
{
    for (int i = 0; i < 100; ++i)
        _tree->add(QString::number(i));
    _view->reloadData();
    _view->expandItem(_fruit);
    showList(*_view);
    _view->scrollRowToVisible(60);
    const int position = _view->verticalScrollBar()->value();
    _view->selectRowsOfItems({_pear, _lemon, _apple, nullptr}); // the lemon's folder is closed
    QCOMPARE(selectedTitles(*_view, *_tree), QStringList({"apple", "pear"}));
    _view->selectRowsOfItems({_herb, _fruit});
    QCOMPARE(selectedTitles(*_view, *_tree), QStringList({"fruit", "apple", "pear", "herb"}));
    QCOMPARE(_view->currentRow(), 0);
    QCOMPARE(_view->verticalScrollBar()->value(), position);

    // Nor does it scroll when it is shown again.
    _view->hide();
    _view->selectRowsOfItems({_tools});
    _view->show();
    QVERIFY(QTest::qWaitForWindowExposed(_view.get()));
    QCOMPARE(_view->verticalScrollBar()->value(), position);
}

void OutlineViewTest::currentRowIsNotSelected()
{
    QCOMPARE(_view->currentRow(), -1);
    showList(*_view);
    _view->expandItem(_fruit);
    _view->setCurrentRow(3);
    QCOMPARE(_view->currentRow(), 3);
    QCOMPARE(_view->selectedRow(), -1);
    _view->setCurrentRow(99);
    _view->setCurrentRow(-1);
    QCOMPARE(_view->currentRow(), 3);
    QTest::keyClick(_view.get(), Qt::Key_Down);
    QCOMPARE(selectedTitles(*_view, *_tree), QStringList{"herb"});
}

void OutlineViewTest::collapsingDeselectsWhatIsHidden()
{
    _view->expandItem(_fruit);
    _view->expandItem(_citrus);
    _view->selectRowExtending(5, false); // herb
    _view->selectRowExtending(3, true);  // lemon
    _tree->selectionChanges = 0;
    _view->collapseItem(_fruit);
    QCOMPARE(selectedTitles(*_view, *_tree), QStringList({"herb"}));
    QCOMPARE(_tree->selectionChanges, 1);
    QCOMPARE(_view->currentIndex(), _view->model()->index(0, 0));
}

void OutlineViewTest::tellsOfSelectionChanges()
{
    _view->selectRowExtending(1, false);
    QCOMPARE(_tree->selectionChanges, 1);
    _view->selectRowExtending(1, true);
    QCOMPARE(_tree->selectionChanges, 1);
    _view->deselectAll();
    QCOMPARE(_tree->selectionChanges, 2);
}

// --- Geometry -------------------------------------------------------------------------------------------------------

void OutlineViewTest::rowsAreAsHighAsTold()
{
    QCOMPARE(_view->rowHeight(), QFontMetricsF(_view->font()).height() + 3.0);
    _view->setRowHeight(17.5);
    QCOMPARE(_view->rowHeight(), 17.5);
    QCOMPARE(_view->rectOfRow(1).height(), 18);
    QCOMPARE(_view->rectOfRow(1).top(), 18);
    QCOMPARE(_view->visualRect(_view->model()->index(1, 0)).height(), 18);
    _view->setRowHeight(30);
    QCOMPARE(_view->visualRect(_view->model()->index(1, 0)).top(), 30);
    _view->setRowHeight(0);
    QCOMPARE(_view->rectOfRow(2), QRect(0, 2, _view->viewport()->width(), 1));
}

void OutlineViewTest::mapsPointsToRows()
{
    showList(*_view);
    _view->expandItem(_fruit);
    for (int row = 0; row < _view->numberOfRows(); ++row) {
        const QRect rect = _view->rectOfRow(row);
        QCOMPARE(rect, QRect(0, 20 * row, _view->viewport()->width(), 20));
        QCOMPARE(_view->rowAtPoint(rect.topLeft()), row);
        QCOMPARE(_view->rowAtPoint(rect.bottomRight()), row);
        QCOMPARE(_view->visualRect(_view->indexAt(rect.center())).top(), rect.top());
    }
    QCOMPARE(_view->rowAtPoint(QPoint(5, 20 * 6)), -1);
    QCOMPARE(_view->rowAtPoint(QPoint(5, -1)), -1);
    QCOMPARE(_view->rowAtPoint(QPoint(-1, 5)), -1);
    QCOMPARE(_view->rowAtPoint(QPoint(_view->viewport()->width() - 1, 5)), 0);
    QCOMPARE(_view->rowAtPoint(QPoint(_view->viewport()->width(), 5)), -1);
    QCOMPARE(_view->rowAtPoint(QPoint(0, 0)), 0);
}

void OutlineViewTest::scrollsRowsIntoView()
{
    for (int i = 0; i < 100; ++i)
        _tree->add(QString::number(i));
    _view->reloadData();
    showList(*_view);
    _view->scrollRowToVisible(90);
    const QRect rect = _view->rectOfRow(90);
    QVERIFY(_view->viewport()->rect().contains(rect));
    QCOMPARE(_view->rowAtPoint(rect.center()), 90);
    QVERIFY(_view->rectOfRow(0).bottom() < 0);
    _view->scrollRowToVisible(91); // by just one row
    QCOMPARE(_view->rectOfRow(91), rect);
    _view->scrollRowToVisible(91); // where it is
    _view->scrollRowToVisible(85);
    QCOMPARE(_view->rectOfRow(91), rect);
    _view->scrollRowToVisible(0);
    QCOMPARE(_view->rectOfRow(0).top(), 0);
    _view->scrollRowToVisible(-1);
    _view->scrollRowToVisible(103);
    QCOMPARE(_view->rectOfRow(0).top(), 0);
    // One that is higher than the list begins at its top.
    _view->setRowHeight(1000);
    _view->scrollRowToVisible(7);
    QCOMPARE(_view->rectOfRow(7).top(), 0);
}

// --- Keyboard and mouse ---------------------------------------------------------------------------------------------

void OutlineViewTest::keysWalkAndFold()
{
    showList(*_view);
    _view->setFocus();
    QTest::keyClick(_view.get(), Qt::Key_Home);
    QCOMPARE(_view->selectedRows(), std::vector<int>({0}));
    QTest::keyClick(_view.get(), Qt::Key_Right);
    QVERIFY(_view->isItemExpanded(_fruit));
    QTest::keyClick(_view.get(), Qt::Key_Down);
    QTest::keyClick(_view.get(), Qt::Key_Down, Qt::ShiftModifier);
    QCOMPARE(_view->selectedRows(), std::vector<int>({1, 2}));
    QTest::keyClick(_view.get(), Qt::Key_End);
    QCOMPARE(_view->selectedRows(), std::vector<int>({5}));
    QTest::keyClick(_view.get(), Qt::Key_Home);
    QTest::keyClick(_view.get(), Qt::Key_Left);
    QVERIFY(!_view->isItemExpanded(_fruit));
    QCOMPARE(_view->numberOfRows(), 3);
    // With Ctrl the keyboard walks and selects nothing; nor does a key that walks nowhere.
    _view->deselectAll();
    QTest::keyClick(_view.get(), Qt::Key_Down, Qt::ControlModifier);
    QCOMPARE(_view->currentRow(), 1);
    QTest::keyClick(_view.get(), Qt::Key_Shift);
    QCOMPARE(_view->numberOfSelectedRows(), 0);
    QTest::keyClick(_view.get(), Qt::Key_Up);
    QCOMPARE(_view->selectedRows(), std::vector<int>({0}));
    _view->deselectAll();
    QTest::keyClick(_view.get(), Qt::Key_Up); // there is no row above
    QCOMPARE(_view->selectedRows(), std::vector<int>({0}));
}

void OutlineViewTest::typingFindsTitles()
{
    showList(*_view);
    _view->expandItem(_fruit);
    _view->setFocus();
    QTest::keyClicks(_view.get(), "pe");
    QCOMPARE(selectedTitles(*_view, *_tree), QStringList({"pear"}));
}

void OutlineViewTest::doubleClickActsOnRowsOnly()
{
    showList(*_view);
    int actions = 0;
    _view->doubleAction = [&actions] { ++actions; };
    QTest::mouseDClick(_view->viewport(), Qt::LeftButton, {}, _view->rectOfRow(0).center());
    QCOMPARE(actions, 1);
    QVERIFY(!_view->isItemExpanded(_fruit)); // that is for the action to do
    QTest::mouseDClick(_view->viewport(), Qt::LeftButton, {}, QPoint(4, _view->rectOfRow(1).center().y()));
    QTest::mouseDClick(_view->viewport(), Qt::LeftButton, {}, QPoint(50, 200));
    QTest::mouseDClick(_view->viewport(), Qt::RightButton, {}, _view->rectOfRow(0).center());
    QCOMPARE(actions, 1);
    for (const Qt::MouseButton button : {Qt::LeftButton, Qt::RightButton})
        QTest::mouseRelease(_view->viewport(), button); // which a simulated double click leaves out
    QCOMPARE(QGuiApplication::mouseButtons(), Qt::NoButton);
}

void OutlineViewTest::showsToolTips()
{
    showList(*_view);
    _view->tip = "<b>mint & thyme</b>";
    const auto pointAt = [this](int row) {
        const QPoint point = _view->rectOfRow(row).center();
        QHelpEvent help(QEvent::ToolTip, point, _view->viewport()->mapToGlobal(point));
        return QCoreApplication::sendEvent(_view->viewport(), &help) && help.isAccepted();
    };
    QVERIFY(pointAt(1));
    QVERIFY(QToolTip::isVisible());
    // The text as it is, not what it would mean as markup.
    QVERIFY2(QToolTip::text().contains("&lt;b&gt;mint &amp; thyme&lt;/b&gt;"), qPrintable(QToolTip::text()));
    QVERIFY(!pointAt(2)); // nothing to show, so whoever is behind may
    QTRY_VERIFY(!QToolTip::isVisible());
    _view->tip = QStringLiteral("http://www.example.com/") + QStringLiteral("word/").repeated(100000);
    pointAt(1);
    QVERIFY(QToolTip::text().contains(QStringLiteral("http://www.example.com/word/word/")));
    QVERIFY2(QToolTip::text().size() < 3000, qPrintable(QString::number(QToolTip::text().size())));
}

void OutlineViewTest::showsContextMenus()
{
    showList(*_view);
    QMenu menu;
    menu.addAction("Open");
    const QPoint point = _view->rectOfRow(1).center();
    QContextMenuEvent event(QContextMenuEvent::Mouse, point, _view->viewport()->mapToGlobal(point));

    QCoreApplication::sendEvent(_view->viewport(), &event);
    QCOMPARE(_view->menuPoints, QList<QPoint>({point}));
    QVERIFY(!menu.isVisible());

    _view->menu = &menu;
    QCoreApplication::sendEvent(_view->viewport(), &event);
    QVERIFY(menu.isVisible());
    menu.close();
}

void OutlineViewTest::menuKeyAsksForTheSelectedRow()
{
    showList(*_view);
    _view->selectRowExtending(2, false);
    QContextMenuEvent event(QContextMenuEvent::Keyboard, QPoint(3, 3), _view->mapToGlobal(QPoint(3, 3)));
    QCoreApplication::sendEvent(_view.get(), &event);
    QCOMPARE(_view->menuPoints.size(), 1);
    QCOMPARE(_view->rowAtPoint(_view->menuPoints[0]), 2);
    _view->deselectAll();
    QCoreApplication::sendEvent(_view.get(), &event);
    QCOMPARE(_view->menuPoints.last(), _view->viewport()->rect().center());

    // A row that is out of sight comes into it first.
    for (int i = 0; i < 100; ++i)
        _tree->add(QString::number(i));
    _view->reloadData();
    _view->selectRowExtending(50, false);
    _view->verticalScrollBar()->setValue(0);
    QMenu menu;
    menu.addAction("Open");
    _view->menu = &menu;
    QCoreApplication::sendEvent(_view.get(), &event);
    QVERIFY(_view->viewport()->rect().contains(_view->rectOfRow(50)));
    QCOMPARE(_view->menuPoints.last(), _view->rectOfRow(50).center());
    QVERIFY(menu.isVisible());
    QCOMPARE(menu.pos().x(), _view->viewport()->mapToGlobal(_view->rectOfRow(50).center()).x());
    menu.close();
}

// What the menu acts on must not be loaded anew under it.
void OutlineViewTest::notificationsWaitForTheEndOfAMenu()
{
    showList(*_view);
    QMenu menu;
    QAction *open = menu.addAction("Open");
    _view->menu = &menu;
    QStringList told;
    NotificationCenter &center = NotificationCenter::defaultCenter();
    const auto removed = qScopeGuard([&] { center.removeObserver(&told); });
    center.addObserver(
        &told, [&told](const Notification &notification) { told.append(notification.name); }, "Changed");
    QContextMenuEvent event(QContextMenuEvent::Mouse, QPoint(5, 5), _view->mapToGlobal(QPoint(5, 5)));
    QCoreApplication::sendEvent(_view->viewport(), &event);
    QVERIFY(menu.isVisible());
    NotificationQueue::defaultQueue().enqueueNotification({"Changed", nullptr}, NotificationQueue::NSPostASAP);
    for (int i = 0; i < 100; ++i)
        QCoreApplication::processEvents();
    QVERIFY(told.isEmpty());
    connect(open, &QAction::triggered, this, [&told] { told.append("Opened"); });
    QTest::mouseClick(&menu, Qt::LeftButton, {}, menu.actionGeometry(open).center());
    QTRY_COMPARE(told, QStringList({"Opened", "Changed"}));
}

// --- Drag and drop --------------------------------------------------------------------------------------------------

void OutlineViewTest::dragsTheSelectionInRowOrder()
{
    _view->expandItem(_fruit);
    _view->selectRowExtending(4, false);
    _view->selectRowExtending(0, true);
    _view->selectRowExtending(3, true);
    QString text;
    bool endedBefore = true;
    _view->duringDrag = [&](QDrag &drag) {
        text = drag.mimeData()->text();
        QCOMPARE(drag.source(), _view.get());
        QVERIFY(!drag.pixmap().isNull());
        endedBefore = _tree->draggingEnded > 0;
    };
    _view->startDrag(Qt::MoveAction);
    QCOMPARE(_tree->dragged, std::vector<OutlineItemPtr>({_fruit, _pear, _herb}));
    QCOMPARE(text, QString("fruit"));
    QVERIFY(!endedBefore);
    QCOMPARE(_tree->draggingEnded, 1);
    QCOMPARE(_view->numberOfRows(), 6); // nothing is taken out of the list by the view
}

void OutlineViewTest::startsNoDragWithoutData()
{
    bool ran = false;
    _view->duringDrag = [&ran](QDrag &) { ran = true; };
    _view->startDrag(Qt::CopyAction); // nothing selected
    QVERIFY(_tree->dragged.empty());
    _tree->refusesDrag = true;
    _view->selectRowExtending(1, false);
    _view->startDrag(Qt::CopyAction);
    QVERIFY(!ran);
    QCOMPARE(_tree->draggingEnded, 0);
}

void OutlineViewTest::notificationsWaitForTheEndOfADrag()
{
    QStringList told;
    NotificationCenter &center = NotificationCenter::defaultCenter();
    const auto tell = [&told](const Notification &notification) { told.append(notification.name); };
    const auto removed = qScopeGuard([&] { center.removeObserver(&told); });
    center.addObserver(&told, tell, "Idle");
    center.addObserver(&told, tell, "ASAP");
    bool ran = false;
    _view->duringDrag = [&](QDrag &) {
        NotificationQueue &queue = NotificationQueue::defaultQueue();
        queue.enqueueNotification({"Idle", nullptr}, NotificationQueue::NSPostWhenIdle);
        queue.enqueueNotification({"ASAP", nullptr}, NotificationQueue::NSPostASAP);
        for (int i = 0; i < 100; ++i)
            QCoreApplication::processEvents();
        ran = told.isEmpty();
    };
    _view->selectRowExtending(0, false);
    _view->startDrag(Qt::CopyAction);
    QVERIFY(ran);
    QTRY_COMPARE(told, QStringList({"ASAP", "Idle"}));
}

void OutlineViewTest::survivesBeingDeletedWhileDragging()
{
    auto *view = new TestedView;
    view->setOutlineDataSource(_tree.get());
    view->selectRowExtending(0, false);
    class Deleting : public TestedView
    {
    protected:
        Qt::DropAction runDrag(QDrag * /*drag*/) override
        {
            delete this; // and the drag, which is its child, with it
            return Qt::IgnoreAction;
        }
    };
    delete view;
    auto *deleting = new Deleting;
    deleting->setOutlineDataSource(_tree.get());
    deleting->selectRowExtending(0, false);
    deleting->startDrag(Qt::CopyAction);
    QCOMPARE(_tree->draggingEnded, 0);
}

void OutlineViewTest::dragEndsWhenItsDataIsHandedOver()
{
    QPointer<QDrag> drag;
    _view->keepsDrags = true;
    _view->duringDrag = [&drag](QDrag &begun) { drag = &begun; };
    _view->selectRowExtending(0, false);
    _view->startDrag(Qt::CopyAction);
    QVERIFY(drag);
    QCOMPARE(_tree->draggingEnded, 0);
    delete drag;
    QCOMPARE(_tree->draggingEnded, 1);
}

void OutlineViewTest::dragThatNobodyTookEndsAtOnce()
{
    QPointer<QDrag> drag;
    _view->keepsDrags = true;
    _view->dragAction = Qt::IgnoreAction;
    _view->duringDrag = [&drag](QDrag &begun) { drag = &begun; };
    _view->selectRowExtending(0, false);
    _view->startDrag(Qt::CopyAction);
    QCOMPARE(_tree->draggingEnded, 1);
    delete drag;
    QCOMPARE(_tree->draggingEnded, 1);
}

void OutlineViewTest::lateEndOfADragSparesTheNext()
{
    std::vector<QPointer<QDrag>> drags;
    _view->keepsDrags = true;
    _view->duringDrag = [&drags](QDrag &begun) { drags.emplace_back(&begun); };
    _view->selectRowExtending(0, false);
    _view->startDrag(Qt::CopyAction);
    _view->startDrag(Qt::CopyAction);
    delete drags.front();
    QCOMPARE(_tree->draggingEnded, 0);
    delete drags.back();
    QCOMPARE(_tree->draggingEnded, 1);
}

void OutlineViewTest::survivesADragThatOutlivesIt()
{
    _view->keepsDrags = true;
    _view->selectRowExtending(0, false);
    _view->startDrag(Qt::CopyAction);
    _view.reset(); // and the drag, which is its child, with it
    QCOMPARE(_tree->draggingEnded, 0);
}

void OutlineViewTest::mapsDropsToPlaces_data()
{
    QTest::addColumn<int>("y");
    QTest::addColumn<QString>("item");
    QTest::addColumn<int>("childIndex");

    // Rows of 20: fruit, apple, citrus, lemon, pear, herb, tools.
    QTest::newRow("above the first row") << 1 << "" << 0;
    QTest::newRow("on a folder") << 10 << "fruit" << -1;
    QTest::newRow("below an open folder") << 19 << "fruit" << 0;
    QTest::newRow("above its first child") << 21 << "fruit" << 0;
    QTest::newRow("on a leaf") << 30 << "apple" << -1;
    QTest::newRow("below a leaf") << 38 << "fruit" << 1;
    QTest::newRow("above an inner folder") << 41 << "fruit" << 1;
    QTest::newRow("in an inner folder") << 61 << "citrus" << 0;
    QTest::newRow("below the last child") << 99 << "fruit" << 3;
    QTest::newRow("above a later row") << 101 << "" << 1;
    QTest::newRow("below a closed folder") << 139 << "" << 3;
    QTest::newRow("where no row is") << 200 << "" << -1;
}

void OutlineViewTest::mapsDropsToPlaces()
{
    QFETCH(int, y);
    QFETCH(QString, item);
    QFETCH(int, childIndex);
    showList(*_view);
    _view->expandItem(_fruit);
    _view->expandItem(_citrus);

    QMimeData data;
    QCOMPARE(dropAt(*_view, y, data, Qt::CopyAction | Qt::MoveAction), Qt::CopyAction);
    QCOMPARE(_tree->accepted.size(), std::size_t(1));
    const OutlineDropTarget target = _tree->accepted[0];
    QCOMPARE(target.item ? _tree->nodeOf(target.item).title : QString(), item);
    QCOMPARE(target.childIndex, childIndex);
}

void OutlineViewTest::sourceMayRetargetADrop()
{
    showList(*_view);
    _view->expandItem(_tools);
    _tree->retarget = [this](OutlineDropTarget &target) { target = {_tools, 1}; };
    QMimeData data;
    dragTo(*_view, 10, data);
    QVERIFY(qAbs(_view->dropIndicatorRect().center().y() - _view->rectOfRow(3).bottom()) <= 1); // below the rake

    QCOMPARE(dropAt(*_view, 10, data), Qt::CopyAction);
    QCOMPARE(_tree->accepted[0].item, OutlineItemPtr(_tools));
    QCOMPARE(_tree->accepted[0].childIndex, 1);
}

void OutlineViewTest::dragOfOtherDataStaysOutside()
{
    _tree->takesData = false;
    const QMimeData data;
    QDragEnterEvent enter(QPoint(60, 1), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(_view->viewport(), &enter);
    QVERIFY(!enter.isAccepted());
    QVERIFY(_tree->validated.empty());
}

void OutlineViewTest::refusedDropsAreIgnored_data()
{
    QTest::addColumn<Qt::DropAction>("answer");
    QTest::addColumn<bool>("accepts");
    QTest::newRow("refused while dragging") << Qt::IgnoreAction << true;
    QTest::newRow("refused at the drop") << Qt::CopyAction << false;
}

void OutlineViewTest::refusedDropsAreIgnored()
{
    QFETCH(Qt::DropAction, answer);
    QFETCH(bool, accepts);
    showList(*_view);
    _tree->answer = answer;
    _tree->accepts = accepts;
    QMimeData data;
    QCOMPARE(dropAt(*_view, 10, data), Qt::IgnoreAction);
    QCOMPARE(_tree->accepted.empty(), answer == Qt::IgnoreAction);
    QVERIFY(_view->dropIndicatorRect().isEmpty());
}

void OutlineViewTest::dropIndicatorGoesWithTheDrag()
{
    showList(*_view);
    QMimeData data;
    const auto moveTo = [&](int y) { dragTo(*_view, y, data); };
    moveTo(10);
    QCOMPARE(_view->dropIndicatorRect(), _view->rectOfRow(0));
    moveTo(21); // between the first two rows
    QCOMPARE(_view->dropIndicatorRect().top(), 19);
    QVERIFY(_view->dropIndicatorRect().height() < 5);
    moveTo(300);
    QCOMPARE(_view->dropIndicatorRect(), _view->viewport()->rect());
    _tree->answer = Qt::IgnoreAction;
    moveTo(10);
    QVERIFY(_view->dropIndicatorRect().isEmpty());
    _tree->answer = Qt::CopyAction;
    moveTo(10);
    QDragLeaveEvent leave;
    QCoreApplication::sendEvent(_view->viewport(), &leave);
    QVERIFY(_view->dropIndicatorRect().isEmpty());
}

void OutlineViewTest::offersOnlyActionsThatTheDragAllows_data()
{
    QTest::addColumn<Qt::DropAction>("answer");
    QTest::addColumn<Qt::DropActions>("possible");
    QTest::addColumn<Qt::DropAction>("action");
    const Qt::DropActions copyOrMove = Qt::CopyAction | Qt::MoveAction;
    QTest::newRow("copy") << Qt::CopyAction << copyOrMove << Qt::CopyAction;
    QTest::newRow("move") << Qt::MoveAction << copyOrMove << Qt::MoveAction;
    QTest::newRow("move from one who copies") << Qt::MoveAction << Qt::DropActions(Qt::CopyAction) << Qt::CopyAction;
    QTest::newRow("copy from one who links") << Qt::CopyAction << Qt::DropActions(Qt::LinkAction) << Qt::LinkAction;
    QTest::newRow("copy from one who moves") << Qt::CopyAction << Qt::DropActions(Qt::MoveAction) << Qt::IgnoreAction;
}

void OutlineViewTest::offersOnlyActionsThatTheDragAllows()
{
    QFETCH(Qt::DropAction, answer);
    QFETCH(Qt::DropActions, possible);
    QFETCH(Qt::DropAction, action);
    showList(*_view);
    _tree->answer = answer;
    QMimeData data;
    QCOMPARE(dragTo(*_view, 10, data, possible), action);
}

void OutlineViewTest::opensFoldersUnderADrag()
{
    showList(*_view);
    QMimeData data;
    dragTo(*_view, 10, data);
    QVERIFY(!_view->isItemExpanded(_fruit));
    QTRY_VERIFY(_view->isItemExpanded(_fruit));
}

void OutlineViewTest::opensOnlyTheFolderThatADragRestsOn()
{
    showList(*_view);
    QMimeData data;
    dragTo(*_view, 10, data); // on the fruit
    dragTo(*_view, 50, data); // on the tools
    QTRY_VERIFY(_view->isItemExpanded(_tools));
    QVERIFY(!_view->isItemExpanded(_fruit));
    // Neither one that a drag has left, nor one beside which it would go in.
    dragTo(*_view, 10, data);
    QDragLeaveEvent leave;
    QCoreApplication::sendEvent(_view->viewport(), &leave);
    _view->collapseItem(_tools);
    dragTo(*_view, 10, data);
    dragTo(*_view, 21, data);
    dragTo(*_view, 50, data);
    QTRY_VERIFY(_view->isItemExpanded(_tools));
    QVERIFY(!_view->isItemExpanded(_fruit));
}

void OutlineViewTest::scrollsUnderADrag()
{
    for (int i = 0; i < 100; ++i)
        _tree->add(QString::number(i));
    _view->reloadData();
    showList(*_view, QSize(240, 200));
    QMimeData data;
    const int bottom = _view->viewport()->height() - 1;
    dragTo(*_view, bottom, data);
    QTRY_VERIFY(_view->verticalScrollBar()->value() > 15);
    dragTo(*_view, 1, data);
    QTRY_VERIFY(_view->verticalScrollBar()->value() < 10);
    _view->verticalScrollBar()->setValue(0);
    // In the middle it stays, and the mouse selects as ever when the drag has gone.
    dragTo(*_view, 100, data);
    QDragLeaveEvent leave;
    QCoreApplication::sendEvent(_view->viewport(), &leave);
    QTest::mouseClick(_view->viewport(), Qt::LeftButton, {}, QPoint(60, 30));
    QCOMPARE(_view->selectedRows(), std::vector<int>({1}));
    QCOMPARE(_view->verticalScrollBar()->value(), 0);
}

void OutlineViewTest::marksWhereADropGoes_data()
{
    QTest::addColumn<QString>("item");
    QTest::addColumn<int>("childIndex");
    QTest::addColumn<int>("y");      // of the line, or of the frame
    QTest::addColumn<int>("level");  // of the line's beginning; -1: a frame
    QTest::addColumn<int>("height"); // of the frame in rows, 0: the whole list, -1: no mark

    // Rows of 20: fruit, apple, citrus, lemon, pear, herb, tools.
    QTest::newRow("before everything") << "" << 0 << 0 << 0 << 0;
    QTest::newRow("between two rows at the top") << "" << 1 << 99 << 0 << 0;
    QTest::newRow("after everything") << "" << 3 << 139 << 0 << 0;
    QTest::newRow("beyond the end") << "" << 9 << 139 << 0 << 0;
    QTest::newRow("first in an open folder") << "fruit" << 0 << 19 << 1 << 0;
    QTest::newRow("before an inner folder") << "fruit" << 1 << 39 << 1 << 0;
    QTest::newRow("behind an open inner folder") << "fruit" << 2 << 79 << 1 << 0;
    QTest::newRow("last in an open folder") << "fruit" << 3 << 99 << 1 << 0;
    QTest::newRow("last in an inner folder") << "citrus" << 1 << 79 << 2 << 0;
    QTest::newRow("on an open folder") << "fruit" << -1 << 0 << -1 << 1;
    QTest::newRow("on a leaf") << "apple" << -1 << 20 << -1 << 1;
    QTest::newRow("in a closed folder") << "tools" << 0 << 120 << -1 << 1;
    QTest::newRow("on the list") << "" << -1 << 0 << -1 << 0;
    QTest::newRow("in what is not shown") << "rake" << 0 << 0 << -1 << -1;
}

void OutlineViewTest::marksWhereADropGoes()
{
    QFETCH(QString, item);
    QFETCH(int, childIndex);
    QFETCH(int, y);
    QFETCH(int, level);
    QFETCH(int, height);
    showList(*_view);
    _view->expandItem(_fruit);
    _view->expandItem(_citrus);
    const QHash<QString, OutlineTree::Node> nodes{{"", nullptr},     {"fruit", _fruit}, {"citrus", _citrus},
                                                  {"apple", _apple}, {"tools", _tools}, {"rake", _rake}};
    _tree->retarget = [&](OutlineDropTarget &target) { target = {nodes.value(item), childIndex}; };
    QMimeData data;
    dragTo(*_view, 10, data);
    const QRect mark = _view->dropIndicatorRect();
    const int width = _view->viewport()->width();
    if (level >= 0) {
        const int x = (level + 1) * _view->indentation();
        QCOMPARE(mark, QRect(x, y, width - x, 2));
        _view->setLayoutDirection(Qt::RightToLeft);
        dragTo(*_view, 30, data);
        QCOMPARE(_view->dropIndicatorRect(), QRect(0, y, width - x, 2));
    } else if (height > 0) {
        QCOMPARE(mark, QRect(0, y, width, height * 20));
    } else {
        QCOMPARE(mark, height < 0 ? QRect() : _view->viewport()->rect());
    }
}

void OutlineViewTest::marksADropBehindAnEmptyFolder()
{
    showList(*_view);
    _view->expandItem(_tools);
    _tools->children.clear();
    _view->reloadItem(_tools, true);
    QVERIFY(_view->isItemExpanded(_tools));
    _tree->retarget = [](OutlineDropTarget &target) { target = {nullptr, 3}; };
    QMimeData data;
    dragTo(*_view, 10, data);
    QCOMPARE(_view->dropIndicatorRect().top(), 59);
    // Nor is there anything to be first in.
    _tree->retarget = nullptr;
    QCOMPARE(dropAt(*_view, 59, data), Qt::CopyAction);
    QVERIFY(!_tree->accepted.back().item);
    QCOMPARE(_tree->accepted.back().childIndex, 3);
}

void OutlineViewTest::drawsTheDropIndicator()
{
    showList(*_view);
    const QColor color(1, 200, 3);
    QPalette palette = _view->palette();
    palette.setColor(QPalette::Highlight, color);
    _view->setPalette(palette);
    const auto colorAt = [this](const QPoint &point) {
        const QImage shot = _view->viewport()->grab().toImage();
        return shot.pixelColor(point * shot.devicePixelRatio());
    };
    QMimeData data;
    dragTo(*_view, 21, data); // between the first two rows
    const QRect line = _view->dropIndicatorRect();
    QCOMPARE(colorAt(line.center()), color);
    QCOMPARE(colorAt(line.topLeft()), color);
    QVERIFY(colorAt(line.center() + QPoint(0, 3)) != color);
    dragTo(*_view, 10, data); // on the first row
    const QRect frame = _view->dropIndicatorRect();
    QCOMPARE(colorAt(QPoint(frame.center().x(), 1)), color);
    QVERIFY(colorAt(QPoint(frame.right() - 30, frame.center().y())) != color);
    QDragLeaveEvent leave;
    QCoreApplication::sendEvent(_view->viewport(), &leave);
    QVERIFY(colorAt(line.center()) != color);
}

void OutlineViewTest::dropIndicatorScrollsWithTheRows()
{
    for (int i = 0; i < 100; ++i)
        _tree->add(QString::number(i));
    _view->reloadData();
    showList(*_view);
    _view->verticalScrollBar()->setValue(15);
    QVERIFY(_view->dropIndicatorRect().isEmpty());
    QMimeData data;
    dragTo(*_view, 110, data);
    const QRect mark = _view->dropIndicatorRect();
    QCOMPARE(mark, _view->rectOfRow(6));
    _view->verticalScrollBar()->setValue(25);
    QCOMPARE(_view->dropIndicatorRect(), mark.translated(0, -10));
    QCOMPARE(_view->dropIndicatorRect(), _view->rectOfRow(6));
}

// As wide as the longest title, but not wider than a drawer is; not higher than the pointer can see past.
void OutlineViewTest::dragsAPictureOfTheRows()
{
    QSizeF size;
    QPoint hotSpot;
    QImage picture;
    _view->duringDrag = [&](QDrag &drag) {
        size = drag.pixmap().deviceIndependentSize();
        hotSpot = drag.hotSpot();
        picture = drag.pixmap().toImage();
    };
    showList(*_view);
    _view->selectRowExtending(0, false);
    _view->selectRowExtending(2, true);
    _view->startDrag(Qt::CopyAction);
    const int text =
        std::max(_view->fontMetrics().horizontalAdvance("fruit"), _view->fontMetrics().horizontalAdvance("tools"));
    QCOMPARE(size, QSizeF(text + 40, 40));
    QCOMPARE(hotSpot, QPoint(0, 10));
    QCOMPARE(picture.devicePixelRatio(), _view->devicePixelRatioF());
    // Something is drawn in either row, and there is no ground behind it.
    const qreal scale = picture.devicePixelRatio();
    for (const int row : {0, 1}) {
        bool hasInk = false;
        for (int y = int(row * 20 * scale); y < int((row + 1) * 20 * scale); ++y) {
            for (int x = 0; x < picture.width(); ++x)
                hasInk = hasInk || picture.pixelColor(x, y).alpha() > 100;
        }
        QVERIFY(hasInk);
        QCOMPARE(picture.pixelColor(picture.width() - 1, int(row * 20 * scale)).alpha(), 0);
    }

    for (int i = 0; i < 20; ++i)
        _tree->add(QString(500, QLatin1Char('m')));
    _view->reloadData();
    _view->selectAll();
    _view->startDrag(Qt::CopyAction);
    QCOMPARE(size, QSizeF(260, 8 * 20));
}

// --- Cells ----------------------------------------------------------------------------------------------------------

// Every row with the same cell, which has the row's text before it is decorated, and the cell's part of the row.
void OutlineViewTest::drawsRowsWithTheDataCell()
{
    struct Cell : TextFieldCell
    {
        QList<QPair<QString, QRectF>> &drawn;
        explicit Cell(QList<QPair<QString, QRectF>> &list) : drawn(list) {}
        void drawWithFrameInView(const QRectF &frame, QPainter & /*painter*/,
                                 const QStyleOptionViewItem & /*view*/) const override
        {
            drawn.append({stringValue(), frame});
        }
    };
    QList<QPair<QString, QRectF>> drawn;
    _view->setDataCell(std::make_unique<Cell>(drawn));
    _tree->decorate = [](TextFieldCell &cell) { cell.setStringValue(cell.stringValue() + QLatin1Char('!')); };
    showList(*_view);
    drawn.clear();
    _view->grab();
    QCOMPARE(drawn.size(), 3);
    const QRectF first = _view->visualRect(_view->model()->index(0, 0));
    QCOMPARE(drawn.at(0), (QPair<QString, QRectF>(QStringLiteral("fruit!"), first)));
    QCOMPARE(drawn.at(1), (QPair<QString, QRectF>(QStringLiteral("herb!"), first.translated(0, 20))));
    QCOMPARE(drawn.at(2).first, QStringLiteral("tools!"));
}

// The row's own font is the view's, unless the source gives it another.
void OutlineViewTest::cellsHaveTheFontOfTheView()
{
    QFont large = _view->font();
    large.setPointSize(31);
    _view->setFont(large);
    QList<QFont> fonts;
    QFont other = large;
    other.setItalic(true);
    _tree->decorate = [&](TextFieldCell &cell) {
        fonts.append(cell.font());
        cell.setFont(other);
    };
    showList(*_view);
    fonts.clear();
    _view->grab();
    QCOMPARE(fonts, QList<QFont>({large, large, large}));
    QCOMPARE(_view->dataCell().font(), other);
}

void OutlineViewTest::elidesLongTitles()
{
    _herb->title = QString(5000, QLatin1Char('m'));
    showList(*_view, QSize(200, 100));
    const QRect cell = _view->visualRect(_view->model()->index(1, 0));
    QVERIFY(cell.right() <= _view->viewport()->rect().right());
    const QImage shot = _view->viewport()->grab().toImage();
    // An ellipsis leaves the upper half of the row's right end free, a letter cut off would not.
    const QColor ground = _view->palette().color(QPalette::Base);
    const int scale = int(shot.devicePixelRatio()); // pixels to the point
    for (int y = cell.top() * scale; y < (cell.center().y() - 2) * scale; ++y)
        QCOMPARE(shot.pixelColor((cell.right() - 5) * scale, y), ground);
}

void OutlineViewTest::rowsHaveAccessibleNames()
{
    showList(*_view);
    _view->expandItem(_fruit);
    QAccessibleInterface *list = QAccessible::queryAccessibleInterface(_view.get());
    QVERIFY(list);
    QStringList names;
    for (int i = 0; i < list->childCount(); ++i)
        names.append(list->child(i)->text(QAccessible::Name));
    for (const char *title : {"fruit", "apple", "pear", "herb"})
        QVERIFY2(names.contains(QLatin1String(title)), qPrintable(names.join(',')));
}

void OutlineViewTest::rowsAreDescribedWhenAsked()
{
    _tree->describe = [](const QString &title) { return title + QStringLiteral(", a plant"); };
    showList(*_view);
    _view->grab();
    QAccessibleInterface *list = QAccessible::queryAccessibleInterface(_view.get());
    QAccessibleInterface *row = list->tableInterface()->cellAt(1, 0);
    QCOMPARE(row->text(QAccessible::Name), QStringLiteral("herb"));
    QCOMPARE(_tree->descriptions, 0);
    QCOMPARE(row->text(QAccessible::Description), QStringLiteral("herb, a plant"));
    QCOMPARE(_tree->descriptions, 1);
    QCOMPARE(_view->model()->index(99, 0).data(Qt::AccessibleDescriptionRole), QVariant());
}

// A repaint of a long list must not take longer the longer the list is.
void OutlineViewTest::rowsThatAreShownAreFoundWithoutASearch()
{
    constexpr int rows = 1000;
    MadeTree tree(rows);
    OutlineView view;
    view.setOutlineDataSource(&tree);
    showList(view);
    view.grab();
    view.scrollRowToVisible(rows / 2);
    view.grab();
    QVERIFY(tree.made[rows / 2]);
    QVERIFY(std::count(tree.made.cbegin(), tree.made.cend(), true) < 100); // those that were seen
    QCOMPARE(view.model()->index(rows - 1, 0).data(Qt::AccessibleTextRole).toString(), QString::number(rows - 1));
    QAccessibleInterface *list = QAccessible::queryAccessibleInterface(&view);
    QStringList names;
    for (int i = 0; i < 10; ++i)
        names.append(list->child(i)->text(QAccessible::Name));
    QVERIFY2(names.contains("3"), qPrintable(names.join(',')));
    QCOMPARE(tree.walks, 0);

    tree.made[7 * rows / 8] = true; // by somebody else
    QCOMPARE(view.rowForItem(tree.root->children[7 * rows / 8]), 7 * rows / 8);
    QCOMPARE(tree.walks, 1);
    view.grab();
    QCOMPARE(tree.walks, 1);
}

// --- The model ------------------------------------------------------------------------------------------------------

void OutlineViewTest::keepsQtsRules_data()
{
    mapsRowsBothWays_data();
}

// A random tree that is opened, closed, changed and reloaded at random, under Qt's own check of models and beside a
// walk over the rows as Qt sees them.
void OutlineViewTest::keepsQtsRules()
{
    QFETCH(quint32, seed);
    QRandomGenerator random(seed);
    OutlineTree tree;
    std::vector<OutlineTree::Node> folders;
    const auto oneOf = [&random](const auto &list) { return list[random.bounded(quint32(list.size()))]; };
    for (int i = 0; i < 60; ++i) {
        const auto node = tree.add(QString::number(i), folders.empty() || i % 7 == 0 ? nullptr : oneOf(folders));
        if (i % 3 == 0) {
            node->isFolder = true;
            folders.push_back(node);
        }
    }
    OutlineView view;
    view.setOutlineDataSource(&tree);
    view.show();

    std::vector<QModelIndex> seen;
    const std::function<void(const QModelIndex &)> walk = [&](const QModelIndex &parent) {
        for (int i = 0; i < view.model()->rowCount(parent); ++i) {
            const QModelIndex index = view.model()->index(i, 0, parent);
            seen.push_back(index);
            if (view.isExpanded(index))
                walk(index);
        }
    };
    for (int step = 0; step < 150; ++step) {
        const OutlineTree::Node folder = oneOf(folders);
        std::vector<OutlineTree::Node> &children = folder->children;
        switch (random.bounded(5)) {
        case 0:
            view.expandItem(folder);
            break;
        case 1:
            view.collapseItem(folder);
            break;
        case 2:
            tree.add(QString::number(1000 + step), folder);
            view.reloadItem(folder, true);
            break;
        case 3:
            std::shuffle(children.begin(), children.end(), std::minstd_rand(seed + quint32(step)));
            if (!children.empty() && !children.back()->isFolder)
                children.pop_back();
            view.reloadItem(folder, true);
            break;
        default: // from one folder into another one beside it
            for (const OutlineTree::Node &child : children) {
                if (!child->isFolder || child == children.front())
                    continue;
                child->children.push_back(children.front());
                children.erase(children.begin());
                break;
            }
            view.reloadItem(folder, true);
        }
        view.selectRowExtending(int(random.bounded(quint32(view.numberOfRows()))), random.bounded(2) == 0);

        seen.clear();
        walk({});
        QCOMPARE(view.numberOfRows(), int(seen.size()));
        for (int row = 0; row < int(seen.size()); ++row) {
            int level = 0;
            for (QModelIndex above = seen[std::size_t(row)].parent(); above.isValid(); above = above.parent())
                ++level;
            QCOMPARE(view.levelForRow(row), level);
            QCOMPARE(view.rowForItem(view.itemAtRow(row)), row);
            QCOMPARE(tree.nodeOf(view.itemAtRow(row)).title, seen[std::size_t(row)].data().toString());
            QCOMPARE(view.isItemExpanded(view.itemAtRow(row)), view.isExpanded(seen[std::size_t(row)]));
        }
    }
}

void OutlineViewTest::tellsQtWhatRowsCanDo()
{
    const QAbstractItemModel &model = *_view->model();
    const QModelIndex folder = model.index(0, 0);
    const QModelIndex leaf = model.index(1, 0);
    const Qt::ItemFlags flags =
        Qt::ItemIsSelectable | Qt::ItemIsEnabled | Qt::ItemIsDragEnabled | Qt::ItemIsDropEnabled;
    QCOMPARE(model.flags(folder), flags);
    QCOMPARE(model.flags(leaf), flags | Qt::ItemNeverHasChildren);
    QCOMPARE(model.flags({}), Qt::ItemFlags(Qt::ItemIsDropEnabled));
    QVERIFY(model.hasChildren());
    QVERIFY(model.hasChildren(folder));
    QVERIFY(!model.hasChildren(leaf));
    QCOMPARE(model.columnCount(), 1);
    QCOMPARE(model.supportedDropActions(), Qt::CopyAction | Qt::MoveAction);
    QCOMPARE(model.data(folder, Qt::DisplayRole).toString(), QString("fruit"));
    QCOMPARE(model.data(folder, Qt::AccessibleTextRole).toString(), QString("fruit"));
    QVERIFY(!model.data(folder, Qt::DecorationRole).isValid());
    QVERIFY(!model.index(-1, 0).isValid());
    QVERIFY(!model.index(3, 0).isValid());
    QVERIFY(!model.index(0, 1).isValid());
    QVERIFY(!model.index(0, 0, leaf).isValid());
    QCOMPARE(model.index(0, 0, folder).parent(), folder);
    _view->setOutlineDataSource(nullptr);
    QVERIFY(!model.hasChildren());
}

// Somebody may still hold an index of a row that a reload has taken away.
void OutlineViewTest::indexesThatAreOutOfDateLeadNowhere()
{
    _view->expandItem(_fruit);
    const QModelIndex pear = _view->model()->index(2, 0, _view->model()->index(0, 0));
    QCOMPARE(pear.data().toString(), QString("pear"));
    _fruit->children = {_apple};
    _view->reloadItem(_fruit, true);
    QCOMPARE(pear.data().toString(), QString());
    QVERIFY(!_view->model()->hasChildren(pear));
    QCOMPARE(_view->model()->rowCount(pear), 0);
    QCOMPARE(_view->numberOfRows(), 4);
}

void OutlineViewTest::listsWhatStandsOpen()
{
    using Items = std::vector<OutlineItemPtr>;
    const auto expansions = [this] {
        QStringList list;
        for (const OutlineExpansion &expansion : _view->expansions())
            list.append(_tree->nodeOf(expansion.item).title + (expansion.isOpen ? " open" : " closed"));
        return list;
    };
    QCOMPARE(_view->expandedItems(), Items());
    QCOMPARE(expansions(), QStringList());
    _view->expandItem(_tools);
    _view->expandItem(_fruit);
    _view->expandItem(_citrus);
    QCOMPARE(_view->expandedItems(), Items({_fruit, _citrus, _tools}));
    QCOMPARE(expansions(), QStringList({"fruit open", "citrus open", "tools open"}));
    _view->collapseItem(_fruit);
    QCOMPARE(_view->expandedItems(), Items({_tools}));
    QCOMPARE(expansions(), QStringList({"fruit closed", "citrus open", "tools open"}));
    _view->expandItem(_fruit);
    _view->collapseItem(_citrus);
    _view->collapseItem(_fruit);
    QCOMPARE(expansions(), QStringList({"tools open"}));
    _tools->isFolder = false; // as the list learns only when it asks again
    _tools->children.clear();
    _view->reloadItem(_tools, false);
    QCOMPARE(_view->expandedItems(), Items());
    QCOMPARE(expansions(), QStringList());
}

void OutlineViewTest::asksMadeChildrenOneByOne()
{
    const ModelChecks::Pause unchecked;
    MadeTree tree(100);
    tree.root->children[5]->isFolder = true;
    OutlineView view;
    view.setOutlineDataSource(&tree);
    const QAbstractItemModel &model = *view.model();
    QVERIFY(model.hasChildren(model.index(5, 0)));
    QVERIFY(!model.hasChildren(model.index(6, 0)));
    QCOMPARE(tree.childCalls, 0); // nothing was made for that
    QCOMPARE(model.index(6, 0).data().toString(), QString("6"));
    QVERIFY(!model.hasChildren(model.index(6, 0)));
    QCOMPARE(view.rowForItem(tree.root->children[6]), 6);
    QCOMPARE(view.rowForItem(tree.root->children[7]), -1); // nobody has made it
    tree.made[7] = true;
    QCOMPARE(view.rowForItem(tree.root->children[7]), 7);
    tree.areLeaves = true;
    view.reloadData();
    QVERIFY(!model.hasChildren(model.index(5, 0)));
    view.setOutlineDataSource(nullptr);
}

// A folder whose rows are made as they are seen, as long lists are; what was made keeps its row wherever it is now.
void OutlineViewTest::reloadItemKeepsMadeRows()
{
    struct Made : OutlineTree
    {
        Node folder = add("folder");
        std::vector<std::pair<int, OutlineItemPtr>> made;
        bool outlineViewMakesChildrenOfItem(OutlineView & /*view*/, const OutlineItemPtr &item) override
        {
            return item == folder;
        }
        std::vector<std::pair<int, OutlineItemPtr>>
        outlineViewMadeChildrenOfItem(OutlineView & /*view*/, const OutlineItemPtr & /*item*/) override
        {
            return made;
        }
    };
    Made tree;
    std::vector<OutlineTree::Node> nodes;
    for (int i = 0; i < 6; ++i)
        nodes.push_back(tree.add(QString::number(i), tree.folder));
    tree.add("inner", nodes[3]);
    OutlineView view;
    view.setOutlineDataSource(&tree);
    view.expandItem(tree.folder);
    for (const int row : {2, 4, 6}) // 1, 3 and 5 are made
        QVERIFY(view.itemAtRow(row));
    tree.made = {{1, nodes[1]}, {3, nodes[3]}, {5, nodes[5]}};
    view.expandItem(nodes[3]);
    view.selectRowExtending(2, false);
    view.selectRowExtending(7, true);
    QCOMPARE(view.numberOfRows(), 8);

    // 1 goes, 3 and 5 move up, and the source tells of one that lies beyond the end.
    tree.folder->children = {nodes[0], nodes[3], nodes[5], nodes[2]};
    tree.made = {{1, nodes[3]}, {2, nodes[5]}, {4, nodes[1]}};
    tree.selectionChanges = 0;
    view.reloadItem(tree.folder, true);
    QCOMPARE(shownTitles(view, tree), QStringList({"folder", " 0", " 3", "  inner", " 5", " 2"}));
    QCOMPARE(selectedTitles(view, tree), QStringList({"5"}));
    QCOMPARE(tree.selectionChanges, 1);
    QVERIFY(view.isItemExpanded(nodes[3]));
    QCOMPARE(view.rowForItem(nodes[1]), -1);
    view.setOutlineDataSource(nullptr);
}

void OutlineViewTest::countsBelowZeroAreNone()
{
    struct Negative : OutlineTree
    {
        int outlineViewNumberOfChildrenOfItem(OutlineView & /*view*/, const OutlineItemPtr & /*item*/) override
        {
            return -1;
        }
    };
    Negative tree;
    OutlineView view;
    view.setOutlineDataSource(&tree);
    QCOMPARE(view.numberOfRows(), 0);
    QVERIFY(!view.itemAtRow(0));
}

QTEST_MAIN(OutlineViewTest)
#include "OutlineViewTest.moc"
