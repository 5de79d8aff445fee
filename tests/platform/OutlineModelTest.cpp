#include "platform/widgets/OutlineModel.h"

#include "platform/widgets/OutlineView.h"
#include "tests/support/OutlineTree.h"

#include <QRandomGenerator>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTest>
#include <numeric>

namespace
{
using Node = OutlineTree::Node;

// Counts how often it was laid out.
class CountedView : public OutlineView
{
public:
    int layouts = 0;

protected:
    void doItemsLayout() override
    {
        ++layouts;
        OutlineView::doItemsLayout();
    }
};

// A tree that tells its views what changes.
class TellingTree : public OutlineTree
{
public:
    std::vector<OutlineView *> views;

    Node node(const QString &title, bool isFolder = false)
    {
        auto made = std::make_shared<OutlineTreeItem>();
        made->title = title;
        made->isFolder = isFolder;
        return made;
    }
    void insert(const std::vector<Node> &nodes, int index, const Node &parent = nullptr)
    {
        std::vector<Node> &children = (parent ? parent : root)->children;
        children.insert(children.begin() + index, nodes.begin(), nodes.end());
        for (OutlineView *view : views)
            view->insertItems({nodes.begin(), nodes.end()}, index, parent);
    }
    void remove(int count, int index, const Node &parent = nullptr)
    {
        std::vector<Node> &children = (parent ? parent : root)->children;
        children.erase(children.begin() + index, children.begin() + index + count);
        for (OutlineView *view : views)
            view->removeItems(count, index, parent);
    }
    // Takes one child to another place of the same parent.
    void move(int from, int to, const Node &parent = nullptr)
    {
        std::vector<int> order((parent ? parent : root)->children.size());
        std::iota(order.begin(), order.end(), 0);
        order.erase(order.begin() + from);
        order.insert(order.begin() + to, from);
        arrange(order, parent);
    }
    // The child at place i is then the one that was at `from[i]`.
    void arrange(const std::vector<int> &from, const Node &parent = nullptr)
    {
        std::vector<Node> &children = (parent ? parent : root)->children;
        std::vector<Node> arranged;
        for (const int place : from)
            arranged.push_back(children[std::size_t(place)]);
        children = arranged;
        for (OutlineView *view : views)
            view->moveItems(from, parent);
    }
    // As trees do with those that stand scattered: they are gathered at the end first.
    void removeGathered(const std::vector<int> &places)
    {
        std::vector<int> order(root->children.size());
        std::iota(order.begin(), order.end(), 0);
        std::stable_partition(order.begin(), order.end(),
                              [&](int place) { return !std::binary_search(places.begin(), places.end(), place); });
        arrange(order);
        remove(int(places.size()), int(order.size() - places.size()));
    }
};

// Makes the rows of the top level as it is asked for them.
class MadeTree : public TellingTree
{
public:
    bool makes = true;

    bool outlineViewMakesChildrenOfItem(OutlineView & /*view*/, const OutlineItemPtr &item) override
    {
        return !item && makes;
    }
    bool outlineViewIsChildExpandable(OutlineView & /*view*/, int /*index*/, const OutlineItemPtr & /*item*/) override
    {
        return false;
    }
};

// Every row, indented by its level, with a star when it is selected.
QStringList rowsOf(const OutlineView &view, const OutlineTree &tree)
{
    const std::vector<int> selected = view.selectedRows();
    QStringList rows;
    for (int row = 0; row < view.numberOfRows(); ++row) {
        const bool isSelected = std::binary_search(selected.begin(), selected.end(), row);
        rows.append(QString(view.levelForRow(row), u' ') + tree.nodeOf(view.itemAtRow(row)).title +
                    (isSelected ? QStringLiteral("*") : QString()));
    }
    return rows;
}

// The title of the uppermost row that is seen, and how far it is cut.
QString seenAtTop(const OutlineView &view, const OutlineTree &tree)
{
    const int row = view.rowAtPoint(QPoint(1, 0));
    return tree.nodeOf(view.itemAtRow(row)).title + QStringLiteral(" %1").arg(view.rectOfRow(row).top());
}

QString currentTitle(const OutlineView &view, const OutlineTree &tree)
{
    return view.currentRow() < 0 ? QString() : tree.nodeOf(view.itemAtRow(view.currentRow())).title;
}
} // namespace

// What the source of an outline view tells row by row.
class OutlineModelTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void insertsRows();
    void removesRows();
    void movesRows();
    void changesARow();
    void everyRowOfAnItemFollows();
    void folderThatWasNotOpenedCostsNothing();
    void leafBecomesAFolder();
    void closedFolderFollows();
    void rowsOutOfStepAreCompared();
    void rowsMadeOnDemandFollow();
    void rowsMadeOnDemandBecomeOrdinary();
    void rowsThatAreAskedForMeanwhileAreRight();
    void viewWithoutASourceStaysEmpty();
    void folderWithinItselfFollows();

    void keepsWhatIsSelectedAndOpen();
    void rowThatGoesElsewhereStaysSelectedAndOpen();
    void selectionMadeMeanwhileCounts();
    void keyboardStaysWithItsRow();
    void keyboardGoesOnAtThePlaceOfARowThatWent();
    void keyboardStaysWhenRowsAreGatheredAndGo();
    void tellsOfALostSelectionOnce();
    void tellsNothingWhenTheSelectionStays();

    void whatIsSeenStays();
    void listAtItsTopShowsWhatComesIn();
    void rowThatGoesByItselfTakesNothingAlong();
    void seenRowsThatGoLeaveTheOthers();
    void seenRowsThatComeBackAreSeenAgain();
    void whatWasSeenStaysInAHiddenList();
    void pressedRowIsDraggedThoughRowsComeAbove();
    void dropMarkGoesWhenRowsMove();

    void removesManyScatteredRows();
    void removesARunOfSelectedRows();

    void followsAnyChange_data();
    void followsAnyChange();

private:
    void showRows(int rows);

    std::unique_ptr<TellingTree> _tree;
    std::unique_ptr<CountedView> _view;
    Node _fruit;
    Node _apple;
    Node _citrus;
    Node _lemon;
    Node _herb;
};

// fruit (apple, citrus (lemon)), herb
void OutlineModelTest::init()
{
    _tree = std::make_unique<TellingTree>();
    _view = std::make_unique<CountedView>();
    _tree->views = {_view.get()};
    _fruit = _tree->add("fruit");
    _apple = _tree->add("apple", _fruit);
    _citrus = _tree->add("citrus", _fruit);
    _lemon = _tree->add("lemon", _citrus);
    _herb = _tree->add("herb");
    _view->setOutlineDataSource(_tree.get());
}

void OutlineModelTest::cleanup()
{
    _view.reset();
    _tree.reset();
}

// A list of so many rows, of which ten are seen.
void OutlineModelTest::showRows(int rows)
{
    _tree->root->children.clear();
    for (int i = 0; i < rows; ++i)
        _tree->add(QString::number(i));
    _view->reloadData();
    _view->setRowHeight(20);
    _view->resize(200, 200);
    _view->setFrameShape(QFrame::NoFrame);
    _view->show();
    QVERIFY(QTest::qWaitForWindowExposed(_view.get()));
    QCOMPARE(_view->viewport()->height(), 200);
}

// --- Rows -----------------------------------------------------------------------------------------------------------

void OutlineModelTest::insertsRows()
{
    _view->expandItem(_fruit);
    QCOMPARE(rowsOf(*_view, *_tree), QStringList({"fruit", " apple", " citrus", "herb"}));
    const QSignalSpy inserted(_view->model(), &QAbstractItemModel::rowsInserted);
    const QSignalSpy reset(_view->model(), &QAbstractItemModel::modelReset);
    const QSignalSpy layout(_view->model(), &QAbstractItemModel::layoutChanged);
    _tree->insert({_tree->node("fig"), _tree->node("kiwi")}, 1, _fruit);
    _tree->insert({_tree->node("first")}, 0);
    _tree->insert({_tree->node("last")}, 3);
    QCOMPARE(rowsOf(*_view, *_tree),
             QStringList({"first", "fruit", " apple", " fig", " kiwi", " citrus", "herb", "last"}));
    QCOMPARE(inserted.size(), 3);
    QCOMPARE(inserted[0][1].toInt(), 1);
    QCOMPARE(inserted[0][2].toInt(), 2);
    QVERIFY(!inserted[1][0].toModelIndex().isValid());
    QCOMPARE(reset.size(), 0);
    QCOMPARE(layout.size(), 0);
    QVERIFY(_view->isItemExpanded(_fruit));
}

void OutlineModelTest::removesRows()
{
    _view->expandItem(_fruit);
    _view->expandItem(_citrus);
    QCOMPARE(rowsOf(*_view, *_tree), QStringList({"fruit", " apple", " citrus", "  lemon", "herb"}));
    const QSignalSpy removed(_view->model(), &QAbstractItemModel::rowsRemoved);
    _tree->remove(1, 1, _fruit);
    QCOMPARE(rowsOf(*_view, *_tree), QStringList({"fruit", " apple", "herb"}));
    QCOMPARE(_view->rowForItem(_citrus), -1);
    QCOMPARE(_view->rowForItem(_lemon), -1);
    QCOMPARE(_view->rowForItem(_herb), 2);
    _tree->remove(2, 0);
    QCOMPARE(_view->numberOfRows(), 0);
    QCOMPARE(removed.size(), 2);
    QCOMPARE(_tree->childCalls, 5); // the rest is known
}

void OutlineModelTest::movesRows()
{
    _view->expandItem(_fruit);
    _view->expandItem(_citrus);
    const QSignalSpy layout(_view->model(), &QAbstractItemModel::layoutChanged);
    _tree->move(1, 0, _fruit);
    QCOMPARE(rowsOf(*_view, *_tree), QStringList({"fruit", " citrus", "  lemon", " apple", "herb"}));
    _tree->move(0, 1);
    QCOMPARE(rowsOf(*_view, *_tree), QStringList({"herb", "fruit", " citrus", "  lemon", " apple"}));
    QCOMPARE(layout.size(), 2);
    QCOMPARE(_view->rowForItem(_lemon), 3);
}

void OutlineModelTest::changesARow()
{
    const ModelChecks::Pause unchecked;
    _view = std::make_unique<CountedView>();
    _view->setOutlineDataSource(_tree.get());
    QCOMPARE(_view->rowForItem(_herb), 1);
    const QSignalSpy changed(_view->model(), &QAbstractItemModel::dataChanged);
    _herb->title = QStringLiteral("basil");
    _view->changeItem(_herb);
    QCOMPARE(changed.size(), 1);
    QCOMPARE(changed[0][0].toModelIndex().data().toString(), QStringLiteral("basil"));
    _view->changeItem(_lemon); // not asked for yet
    _view->changeItem(_tree->node("stranger"));
    QCOMPARE(changed.size(), 1);
}

void OutlineModelTest::everyRowOfAnItemFollows()
{
    _tree->root->children.push_back(_citrus);
    _view->reloadData();
    _view->expandItem(_fruit);
    _view->expandItem(_citrus);
    _view->expand(_view->model()->index(2, 0));
    QCOMPARE(rowsOf(*_view, *_tree),
             QStringList({"fruit", " apple", " citrus", "  lemon", "herb", "citrus", " lemon"}));
    _tree->insert({_tree->node("lime")}, 1, _citrus);
    QCOMPARE(rowsOf(*_view, *_tree),
             QStringList({"fruit", " apple", " citrus", "  lemon", "  lime", "herb", "citrus", " lemon", " lime"}));
    const QSignalSpy changed(_view->model(), &QAbstractItemModel::dataChanged);
    _view->changeItem(_citrus);
    QCOMPARE(changed.size(), 2);
    _tree->remove(1, 0, _citrus);
    QCOMPARE(rowsOf(*_view, *_tree), QStringList({"fruit", " apple", " citrus", "  lime", "herb", "citrus", " lime"}));
}

void OutlineModelTest::folderThatWasNotOpenedCostsNothing()
{
    const ModelChecks::Pause unchecked;
    _view = std::make_unique<CountedView>();
    _tree->views = {_view.get()};
    _view->setOutlineDataSource(_tree.get());
    QCOMPARE(_view->rowForItem(_herb), 1);
    const int childCalls = _tree->childCalls;
    const int countCalls = _tree->countCalls;
    const QSignalSpy inserted(_view->model(), &QAbstractItemModel::rowsInserted);
    const QSignalSpy changed(_view->model(), &QAbstractItemModel::dataChanged);
    _tree->insert({_tree->node("fig")}, 0, _fruit);
    _tree->remove(1, 1, _fruit);
    _tree->move(0, 1, _fruit);
    _tree->insert({_tree->node("lime")}, 0, _citrus); // has no row at all
    QCOMPARE(_tree->childCalls, childCalls);
    QCOMPARE(_tree->countCalls, countCalls);
    QCOMPARE(inserted.size(), 0);
    QCOMPARE(changed.size(), 0);
    _view->expandItem(_fruit);
    QCOMPARE(rowsOf(*_view, *_tree), QStringList({"fruit", " citrus", " fig", "herb"}));
}

void OutlineModelTest::leafBecomesAFolder()
{
    showRows(3);
    const Node leaf = _tree->root->children[1];
    QVERIFY(!_view->model()->hasChildren(_view->model()->index(1, 0)));
    leaf->isFolder = true;
    _tree->insert({_tree->node("within")}, 0, leaf);
    QVERIFY(_view->model()->hasChildren(_view->model()->index(1, 0)));
    _view->expandItem(leaf);
    QCOMPARE(rowsOf(*_view, *_tree), QStringList({"0", "1", " within", "2"}));
    leaf->isFolder = false;
    _tree->remove(1, 0, leaf);
    QCOMPARE(rowsOf(*_view, *_tree), QStringList({"0", "1", "2"}));
    QVERIFY(!_view->model()->hasChildren(_view->model()->index(1, 0)));
}

void OutlineModelTest::closedFolderFollows()
{
    _view->expandItem(_fruit);
    _view->expandItem(_citrus);
    _view->collapseItem(_fruit);
    _tree->insert({_tree->node("fig")}, 0, _fruit);
    _tree->insert({_tree->node("lime")}, 1, _citrus);
    QCOMPARE(rowsOf(*_view, *_tree), QStringList({"fruit", "herb"}));
    QCOMPARE(_view->rowForItem(_herb), 1);
    _view->expandItem(_fruit);
    QCOMPARE(rowsOf(*_view, *_tree), QStringList({"fruit", " fig", " apple", " citrus", "  lemon", "  lime", "herb"}));
}

// A source that is further on than what it tells.
void OutlineModelTest::rowsOutOfStepAreCompared()
{
    _view->expandItem(_fruit);
    _view->selectRowsOfItems({_citrus});
    const Node fig = _tree->node("fig");
    const Node kiwi = _tree->node("kiwi");
    _fruit->children = {fig, _citrus};
    _view->insertItems({fig}, 0, _fruit); // apple has gone already
    QCOMPARE(rowsOf(*_view, *_tree), QStringList({"fruit", " fig", " citrus*", "herb"}));
    _view->removeItems(1, 1, _fruit);
    QCOMPARE(rowsOf(*_view, *_tree), QStringList({"fruit", " fig", " citrus*", "herb"}));
    _fruit->children = {_citrus, kiwi};
    _view->removeItems(1, 0, _fruit); // kiwi has come already
    _view->insertItems({kiwi}, 1, _fruit);
    QCOMPARE(rowsOf(*_view, *_tree), QStringList({"fruit", " citrus*", " kiwi", "herb"}));
    _tree->insert({fig}, 0, _fruit);
    QCOMPARE(rowsOf(*_view, *_tree), QStringList({"fruit", " fig", " citrus*", " kiwi", "herb"}));
    _view->removeItems(7, 1, _fruit);
    _view->insertItems({kiwi}, 9, _fruit);
    _view->removeItems(0, 0, _fruit);
    _view->insertItems({}, 0, _fruit);
    QCOMPARE(rowsOf(*_view, *_tree), QStringList({"fruit", " fig", " citrus*", " kiwi", "herb"}));
    // For the root, before anybody has looked for an item.
    CountedView other;
    other.setOutlineDataSource(_tree.get());
    QCOMPARE(other.numberOfRows(), 2);
    QCOMPARE(rowsOf(other, *_tree), QStringList({"fruit", "herb"}));
    _tree->root->children = {_herb};
    other.insertItems({_herb}, 1, nullptr);
    QCOMPARE(rowsOf(other, *_tree), QStringList({"herb"}));
}

void OutlineModelTest::rowsMadeOnDemandFollow()
{
    const ModelChecks::Pause unchecked;
    MadeTree tree;
    for (int i = 0; i < 1000; ++i)
        tree.add(QString::number(i));
    CountedView view;
    view.setOutlineDataSource(&tree);
    tree.views = {&view};
    QCOMPARE(view.numberOfRows(), 1000);
    QCOMPARE(tree.nodeOf(view.itemAtRow(500)).title, QStringLiteral("500"));
    tree.insert({tree.node("new")}, 100);
    tree.remove(50, 200);
    QCOMPARE(tree.childCalls, 1);
    QCOMPARE(view.numberOfRows(), 951);
    QCOMPARE(tree.nodeOf(view.itemAtRow(100)).title, QStringLiteral("new"));
    QCOMPARE(tree.nodeOf(view.itemAtRow(99)).title, QStringLiteral("99"));
    QCOMPARE(tree.nodeOf(view.itemAtRow(101)).title, QStringLiteral("100"));
    QCOMPARE(tree.nodeOf(view.itemAtRow(451)).title, QStringLiteral("500"));
    QCOMPARE(tree.nodeOf(view.itemAtRow(950)).title, QStringLiteral("999"));
}

void OutlineModelTest::rowsMadeOnDemandBecomeOrdinary()
{
    const ModelChecks::Pause unchecked;
    for (const bool inserts : {true, false}) {
        MadeTree tree;
        for (int i = 0; i < 100; ++i)
            tree.add(QString::number(i));
        CountedView view;
        view.setOutlineDataSource(&tree);
        tree.views = {&view};
        QCOMPARE(view.rowForItem(tree.root->children[70]), -1); // nobody has made it
        tree.makes = false;
        if (inserts)
            tree.insert({tree.node("new")}, 10);
        else
            tree.remove(1, 10);
        QCOMPARE(view.rowForItem(tree.root->children[70]), 70);
    }
}

// While some rows have followed and others have not, whoever asks is answered right.
void OutlineModelTest::rowsThatAreAskedForMeanwhileAreRight()
{
    const ModelChecks::Pause unchecked;
    for (const bool inserts : {true, false}) {
        TellingTree tree;
        const Node shared = tree.add("shared");
        shared->isFolder = true;
        for (int i = 0; i < 9; ++i)
            tree.add(QString::number(i), shared);
        tree.root->children.push_back(shared);
        CountedView view;
        view.setOutlineDataSource(&tree);
        tree.views = {&view};
        QAbstractItemModel &model = *view.model();
        QCOMPARE(model.rowCount(model.index(0, 0)) + model.rowCount(model.index(1, 0)), 18);
        QStringList asked;
        const auto ask = [&](const QModelIndex &parent, int first, int last) {
            for (int folder = 0; folder < 2; ++folder) {
                for (const int row : {first - 1, first, last + 1})
                    asked.append(model.index(row, 0, model.index(folder, 0)).data().toString());
            }
            asked.append(QString::number(parent.row()));
        };
        if (inserts) {
            connect(&model, &QAbstractItemModel::rowsAboutToBeInserted, this, ask);
            tree.insert({tree.node("a"), tree.node("b")}, 4, shared);
        } else {
            connect(&model, &QAbstractItemModel::rowsAboutToBeRemoved, this, ask);
            tree.remove(2, 4, shared);
        }
        const QStringList before = inserts ? QStringList({"3", "4", "6"}) : QStringList({"3", "", "6"});
        const QStringList after = inserts ? QStringList({"3", "a", "4"}) : QStringList({"3", "6", "8"});
        const QStringList firstIs = asked.mid(6, 1);
        QCOMPARE(asked.mid(0, 3), before);
        QCOMPARE(asked.mid(3, 3), before);
        QCOMPARE(firstIs == QStringList("0") ? asked.mid(7, 3) : asked.mid(10, 3), after);
        QCOMPARE(firstIs == QStringList("0") ? asked.mid(10, 3) : asked.mid(7, 3), before);
        for (int folder = 0; folder < 2; ++folder) {
            const QModelIndex parent = model.index(folder, 0);
            QCOMPARE(model.rowCount(parent), int(shared->children.size()));
            for (int row = 0; row < model.rowCount(parent); ++row)
                QCOMPARE(model.index(row, 0, parent).data().toString(), shared->children[std::size_t(row)]->title);
        }
    }
}

void OutlineModelTest::viewWithoutASourceStaysEmpty()
{
    CountedView view;
    view.insertItems({_herb}, 0, nullptr);
    view.removeItems(1, 0, nullptr);
    view.moveItems({1, 0}, nullptr);
    view.insertItems({_herb}, 0, _fruit);
    view.changeItem(_herb);
    QCOMPARE(view.numberOfRows(), 0);
}

void OutlineModelTest::folderWithinItselfFollows()
{
    _fruit->children = {_fruit, _apple};
    _view->reloadData();
    _view->expandItem(_fruit);
    _view->expand(_view->model()->index(0, 0, _view->model()->index(0, 0)));
    QCOMPARE(rowsOf(*_view, *_tree), QStringList({"fruit", " fruit", "  fruit", "  apple", " apple", "herb"}));
    _tree->insert({_lemon}, 1, _fruit);
    QCOMPARE(rowsOf(*_view, *_tree),
             QStringList({"fruit", " fruit", "  fruit", "  lemon", "  apple", " lemon", " apple", "herb"}));
    _tree->remove(2, 0, _fruit);
    QCOMPARE(rowsOf(*_view, *_tree), QStringList({"fruit", " apple", "herb"}));
}

// --- The user's place -----------------------------------------------------------------------------------------------

void OutlineModelTest::keepsWhatIsSelectedAndOpen()
{
    _view->expandItem(_fruit);
    _view->expandItem(_citrus);
    _view->selectRowsOfItems({_lemon, _herb});
    _tree->insert({_tree->node("a"), _tree->node("b")}, 0);
    _tree->insert({_tree->node("c")}, 1, _fruit);
    _tree->remove(1, 0, _fruit);
    _tree->move(2, 3);
    QCOMPARE(rowsOf(*_view, *_tree), QStringList({"a", "b", "herb*", "fruit", " c", " citrus", "  lemon*"}));
}

// It is told as gone and come.
void OutlineModelTest::rowThatGoesElsewhereStaysSelectedAndOpen()
{
    const Node deep = _tree->add("deep", _citrus);
    _tree->add("deeper", deep);
    _view->reloadData();
    _view->expandItem(_fruit);
    _view->expandItem(_citrus);
    _view->expandItem(deep);
    _view->collapseItem(_citrus);
    _view->expandItem(_citrus);
    _view->selectRowsOfItems({_apple, _lemon, _citrus});
    _tree->remove(1, 1, _fruit);
    QCOMPARE(rowsOf(*_view, *_tree), QStringList({"fruit", " apple*", "herb"}));
    _tree->insert({_citrus}, 2);
    QCOMPARE(rowsOf(*_view, *_tree),
             QStringList({"fruit", " apple*", "herb", "citrus*", " lemon*", " deep", "  deeper"}));
    // Not for ever.
    _tree->remove(1, 2);
    QTest::qWait(0);
    QCoreApplication::processEvents();
    _tree->insert({_citrus}, 2);
    QCOMPARE(rowsOf(*_view, *_tree), QStringList({"fruit", " apple*", "herb", "citrus"}));
}

void OutlineModelTest::selectionMadeMeanwhileCounts()
{
    _view->selectRowsOfItems({_fruit});
    _tree->remove(1, 0);
    _view->deselectAll();
    _tree->insert({_fruit}, 0);
    QCOMPARE(rowsOf(*_view, *_tree), QStringList({"fruit", "herb"}));
    _view->selectRowsOfItems({_fruit});
    _tree->remove(1, 0);
    _view->selectRowExtending(0, false);
    _tree->insert({_fruit}, 0);
    QCOMPARE(rowsOf(*_view, *_tree), QStringList({"fruit", "herb*"}));
}

void OutlineModelTest::keyboardStaysWithItsRow()
{
    showRows(30);
    _view->setCurrentRow(20);
    _tree->insert({_tree->node("a")}, 3);
    _tree->remove(2, 0);
    _tree->remove(5, 25);
    QCOMPARE(currentTitle(*_view, *_tree), QStringLiteral("20"));
    _tree->move(19, 0);
    QCOMPARE(currentTitle(*_view, *_tree), QStringLiteral("20"));
    QCOMPARE(_view->currentRow(), 0);
}

void OutlineModelTest::keyboardGoesOnAtThePlaceOfARowThatWent()
{
    showRows(30);
    _view->setCurrentRow(10);
    _tree->remove(5, 8);
    QCOMPARE(currentTitle(*_view, *_tree), QStringLiteral("13"));
    for (int i = 0; i < 4; ++i)
        _tree->remove(1, 8); // the row of the keyboard again and again
    QCOMPARE(currentTitle(*_view, *_tree), QStringLiteral("17"));
    const int layouts = _view->layouts;
    QCoreApplication::processEvents();
    QCOMPARE(_view->layouts, layouts + 1);
    QCOMPARE(_view->currentRow(), 8);
    QCOMPARE(_view->currentIndex().row(), 8);
    QVERIFY(!_view->selectionModel()->hasSelection());
    // The last ones.
    _view->setCurrentRow(20);
    _tree->remove(3, 18);
    QCOMPARE(currentTitle(*_view, *_tree), QStringLiteral("26"));
    // From within a folder to what stands below it.
    _tree->insert({_fruit}, 0);
    _view->expandItem(_fruit);
    _view->expandItem(_citrus);
    _view->setCurrentRow(_view->rowForItem(_lemon));
    _tree->remove(1, 1, _fruit);
    QCOMPARE(currentTitle(*_view, *_tree), QStringLiteral("0"));
    _tree->remove(_view->model()->rowCount(), 0);
    QCOMPARE(_view->currentRow(), -1);
    QCoreApplication::processEvents();
    QCOMPARE(_view->currentRow(), -1);
}

void OutlineModelTest::keyboardStaysWhenRowsAreGatheredAndGo()
{
    showRows(60);
    _view->verticalScrollBar()->setValue(20 * 20);
    _view->setCurrentRow(22);
    _tree->removeGathered({3, 5, 20, 21, 22, 23, 30, 59});
    QCOMPARE(currentTitle(*_view, *_tree), QStringLiteral("24"));
    QCOMPARE(_view->rectOfRow(_view->currentRow()).top(), 80);
    QCoreApplication::processEvents();
    QCOMPARE(currentTitle(*_view, *_tree), QStringLiteral("24"));
    // From within one of them.
    _tree->insert({_fruit}, 20);
    _view->expandItem(_fruit);
    _view->setCurrentRow(22);
    QCOMPARE(currentTitle(*_view, *_tree), QStringLiteral("citrus"));
    const QString below = _tree->root->children[21]->title;
    _tree->removeGathered({2, 20, 40});
    QCOMPARE(currentTitle(*_view, *_tree), below);
    // The last one.
    _view->setCurrentRow(_view->numberOfRows() - 1);
    _tree->removeGathered({0, _view->numberOfRows() - 1});
    QCOMPARE(_view->currentRow(), _view->numberOfRows() - 1);
    // One that is only moved keeps the keyboard.
    _view->setCurrentRow(10);
    const QString moved = currentTitle(*_view, *_tree);
    _tree->move(10, 30);
    _tree->remove(1, 0);
    QCOMPARE(currentTitle(*_view, *_tree), moved);
}

void OutlineModelTest::tellsOfALostSelectionOnce()
{
    showRows(30);
    _view->selectRowsOfItems({_tree->root->children.begin(), _tree->root->children.begin() + 10});
    _tree->selectionChanges = 0;
    for (int i = 0; i < 5; ++i)
        _tree->remove(1, 2);
    QCOMPARE(_tree->selectionChanges, 0);
    QTRY_COMPARE(_tree->selectionChanges, 1);
    QCOMPARE(_view->numberOfSelectedRows(), 5);
    QCoreApplication::processEvents();
    QCOMPARE(_tree->selectionChanges, 1);
}

void OutlineModelTest::tellsNothingWhenTheSelectionStays()
{
    showRows(30);
    _view->selectRowExtending(10, false);
    _tree->selectionChanges = 0;
    _tree->remove(3, 2);
    _tree->insert({_tree->node("a")}, 0);
    _tree->move(0, 5);
    QTest::qWait(10);
    QCOMPARE(_tree->selectionChanges, 0);
    QCOMPARE(_view->selectedRows(), std::vector<int>{8});
}

// --- What is seen ---------------------------------------------------------------------------------------------------

void OutlineModelTest::whatIsSeenStays()
{
    showRows(100);
    _view->verticalScrollBar()->setValue(20 * 20 + 7);
    QCOMPARE(seenAtTop(*_view, *_tree), QStringLiteral("20 -7"));
    _tree->insert({_tree->node("a"), _tree->node("b"), _tree->node("c")}, 5);
    QCOMPARE(seenAtTop(*_view, *_tree), QStringLiteral("20 -7"));
    QCOMPARE(_view->verticalScrollBar()->value(), 23 * 20 + 7);
    _tree->remove(10, 3);
    _tree->insert({_tree->node("d")}, 0);
    QCoreApplication::processEvents();
    QCOMPARE(seenAtTop(*_view, *_tree), QStringLiteral("20 -7"));
    // Below what is seen, and within.
    _tree->remove(10, 60);
    _tree->insert({_tree->node("e")}, 15);
    QCOMPARE(seenAtTop(*_view, *_tree), QStringLiteral("20 -7"));
    // At the lower end, where there is no room yet for what is to be scrolled.
    _view->verticalScrollBar()->setValue(_view->verticalScrollBar()->maximum());
    const QString seen = seenAtTop(*_view, *_tree);
    _tree->insert({_tree->node("f"), _tree->node("g")}, 0);
    QCOMPARE(seenAtTop(*_view, *_tree), seen);
}

void OutlineModelTest::listAtItsTopShowsWhatComesIn()
{
    showRows(100);
    _tree->insert({_tree->node("a")}, 0);
    QCOMPARE(seenAtTop(*_view, *_tree), QStringLiteral("a 0"));
    _tree->remove(3, 0);
    QCOMPARE(seenAtTop(*_view, *_tree), QStringLiteral("2 0"));
    QCOMPARE(_view->verticalScrollBar()->value(), 0);
}

void OutlineModelTest::rowThatGoesByItselfTakesNothingAlong()
{
    showRows(100);
    _view->verticalScrollBar()->setValue(20 * 20);
    _tree->move(20, 90);                                                                // the uppermost
    QCOMPARE(_view->rectOfRow(_view->rowForItem(_tree->root->children[20])).top(), 20); // 21 stays where it was
    _tree->move(25, 0);                                                                 // another one
    QCOMPARE(_view->rectOfRow(_view->rowForItem(_tree->root->children[21])).top(), 20);
}

void OutlineModelTest::seenRowsThatGoLeaveTheOthers()
{
    showRows(100);
    _view->verticalScrollBar()->setValue(20 * 20);
    const Node stays = _tree->root->children[24];
    _tree->remove(14, 10);
    QCOMPARE(_view->rectOfRow(_view->rowForItem(stays)).top(), 80);
    // All that was seen.
    _tree->remove(60, 6);
    QCOMPARE(_view->numberOfRows(), 26);
    QCOMPARE(_view->verticalScrollBar()->value(), 6 * 20);
}

void OutlineModelTest::seenRowsThatComeBackAreSeenAgain()
{
    showRows(100);
    _view->verticalScrollBar()->setValue(20 * 20 + 7);
    std::vector<Node> nodes = _tree->root->children;
    _tree->remove(100, 0);
    nodes.insert(nodes.begin(), _tree->node("a"));
    _tree->insert(nodes, 0);
    QCOMPARE(seenAtTop(*_view, *_tree), QStringLiteral("20 -7"));
    // One that goes and is shown elsewhere as well takes nobody along.
    _tree->insert({nodes[21]}, 0);
    QCOMPARE(seenAtTop(*_view, *_tree), QStringLiteral("20 -7"));
    _tree->remove(1, 22);
    QCOMPARE(_view->rectOfRow(_view->rowForItem(nodes[22])).top(), 13);
}

void OutlineModelTest::whatWasSeenStaysInAHiddenList()
{
    showRows(100);
    _view->verticalScrollBar()->setValue(20 * 20);
    _view->hide();
    const int layouts = _view->layouts;
    _tree->insert({_tree->node("a")}, 0);
    QCoreApplication::processEvents();
    _tree->remove(5, 3);
    QCoreApplication::processEvents();
    QCOMPARE(_view->layouts, layouts);
    _view->show();
    QVERIFY(QTest::qWaitForWindowExposed(_view.get()));
    QCOMPARE(seenAtTop(*_view, *_tree), QStringLiteral("20 0"));
}

void OutlineModelTest::pressedRowIsDraggedThoughRowsComeAbove()
{
    showRows(100);
    _view->verticalScrollBar()->setValue(20 * 20);
    _tree->refusesDrag = true;
    QTest::mousePress(_view->viewport(), Qt::LeftButton, {}, QPoint(60, 50)); // 22
    _tree->insert({_tree->node("a")}, 0);
    _tree->remove(1, 4);
    QCoreApplication::processEvents();
    QMouseEvent move(QEvent::MouseMove, QPointF(60, 90), _view->viewport()->mapToGlobal(QPointF(60, 90)), Qt::NoButton,
                     Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(_view->viewport(), &move);
    QCoreApplication::sendEvent(_view->viewport(), &move);
    QCOMPARE(_tree->dragged.size(), std::size_t(1));
    QCOMPARE(_tree->nodeOf(_tree->dragged.front()).title, QStringLiteral("22"));
    QTest::mouseRelease(_view->viewport(), Qt::LeftButton, {}, QPoint(60, 90));
}

void OutlineModelTest::dropMarkGoesWhenRowsMove()
{
    showRows(10);
    QMimeData data;
    data.setText("x");
    QDragEnterEvent enter(QPoint(60, 25), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(_view->viewport(), &enter);
    QDragMoveEvent move(QPoint(60, 25), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(_view->viewport(), &move);
    QVERIFY(!_view->dropIndicatorRect().isEmpty());
    _tree->insert({_tree->node("a")}, 0);
    QVERIFY(_view->dropIndicatorRect().isEmpty());
    QDragMoveEvent again(QPoint(60, 25), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(_view->viewport(), &again);
    QVERIFY(!_view->dropIndicatorRect().isEmpty());
}

// --- Many at once ---------------------------------------------------------------------------------------------------

void OutlineModelTest::removesManyScatteredRows()
{
    const ModelChecks::Pause unchecked;
    _view = std::make_unique<CountedView>();
    _tree->views = {_view.get()};
    _view->setOutlineDataSource(_tree.get());
    showRows(20000);
    std::vector<OutlineItemPtr> selected;
    for (std::size_t i = 0; i < 20000; i += 10)
        selected.push_back(_tree->root->children[i]);
    _view->selectRowsOfItems(selected);
    QCOMPARE(_view->selectionModel()->selection().size(), 2000);
    _view->verticalScrollBar()->setValue(10005 * 20);
    _tree->selectionChanges = 0;
    const int layouts = _view->layouts;
    for (int i = 19980; i >= 0; i -= 20) {
        _tree->remove(1, i);
        // Qt would walk over them for each row.
        QVERIFY(_view->selectionModel()->QItemSelectionModel::selection().size() <= 32);
    }
    QCOMPARE(_view->layouts, layouts);
    QTRY_COMPARE(_tree->selectionChanges, 1);
    QCOMPARE(_view->layouts, layouts + 1);
    QCOMPARE(_view->numberOfSelectedRows(), 1000);
    QCOMPARE(_view->selectedRows()[1], 28); // 30
    QCOMPARE(seenAtTop(*_view, *_tree), QStringLiteral("10005 0"));
}

void OutlineModelTest::removesARunOfSelectedRows()
{
    const ModelChecks::Pause unchecked;
    _view = std::make_unique<CountedView>();
    _tree->views = {_view.get()};
    _view->setOutlineDataSource(_tree.get());
    showRows(20000);
    _view->selectRowsOfItems({_tree->root->children.begin() + 5000, _tree->root->children.begin() + 6001});
    _view->setCurrentRow(5999);
    _tree->selectionChanges = 0;
    const int layouts = _view->layouts;
    for (int i = 5999; i >= 5000; --i) // the row of the keyboard first, which Qt would move to the next that goes
        _tree->remove(1, i);
    QCOMPARE(_view->layouts, layouts);
    QTRY_COMPARE(_tree->selectionChanges, 1);
    QCOMPARE(_view->layouts, layouts + 1);
    QCOMPARE(_view->selectedRows(), std::vector<int>{5000});
    QCOMPARE(_view->currentRow(), 5000);
}

// --- Any change -----------------------------------------------------------------------------------------------------

void OutlineModelTest::followsAnyChange_data()
{
    QTest::addColumn<quint32>("seed");
    for (quint32 seed = 1; seed <= 8; ++seed)
        QTest::addRow("%u", seed) << seed;
}

// Folders that change at random, some shown in two places, beside a view that is loaded anew each time. What is
// selected stays selected.
void OutlineModelTest::followsAnyChange()
{
    QFETCH(quint32, seed);
    QRandomGenerator random(seed);
    TellingTree tree;
    std::vector<Node> folders = {tree.root};
    int made = 0;
    const auto below = [&random](std::size_t bound) { return int(random.bounded(quint32(bound))); };
    const auto makeNodes = [&](int count) {
        std::vector<Node> nodes;
        for (int i = 0; i < count; ++i) {
            nodes.push_back(tree.node(QString::number(made++), below(3) == 0));
            if (nodes.back()->isFolder)
                folders.push_back(nodes.back());
        }
        return nodes;
    };
    CountedView view;
    CountedView hidden;
    view.setOutlineDataSource(&tree);
    hidden.setOutlineDataSource(&tree);
    view.resize(200, 200);
    view.show();
    tree.views = {&view, &hidden};
    const auto fold = [&](OutlineView &list, int row) {
        const OutlineItemPtr item = list.itemAtRow(row);
        if (list.isItemExpanded(item))
            list.collapseItem(item);
        else
            list.expandItem(item);
    };
    for (int step = 0; step < 200; ++step) {
        const Node folder = folders[std::size_t(below(folders.size()))];
        const Node parent = folder == tree.root ? nullptr : folder;
        const int count = int(folder->children.size());
        QList<QPersistentModelIndex> selected;
        for (const QModelIndex &index : view.selectionModel()->selectedIndexes())
            selected.append(index);
        const int way = below(8);
        if (way < 3 || count == 0) {
            tree.insert(makeNodes(1 + below(4)), below(std::size_t(count) + 1), parent);
        } else if (way == 3) {
            const int first = below(std::size_t(count));
            tree.remove(1 + below(std::size_t(count - first)), first, parent);
        } else if (way == 4) {
            tree.move(below(std::size_t(count)), below(std::size_t(count)), parent);
        } else if (way == 5) { // into another folder, or shown there as well; never below itself
            const Node child = folder->children[std::size_t(below(std::size_t(count)))];
            if (child->isFolder)
                tree.move(0, count - 1, parent);
            else
                tree.insert({child}, 0);
        } else if (view.numberOfRows() > 0) {
            const int row = below(std::size_t(view.numberOfRows()));
            if (way == 6)
                fold(view, row);
            else
                view.selectRowExtending(row, below(2) == 0);
            fold(hidden, below(std::size_t(hidden.numberOfRows())));
        }
        if (below(4) == 0)
            QCoreApplication::processEvents();

        if (way < 6) {
            for (const QPersistentModelIndex &index : std::as_const(selected))
                QVERIFY(!index.isValid() || view.selectionModel()->isSelected(index));
        }
        for (const CountedView *list : {&view, &hidden}) {
            const ModelChecks::Pause unchecked;
            OutlineView fresh;
            fresh.setOutlineDataSource(&tree);
            QStringList titles;
            for (int row = 0; row < list->numberOfRows(); ++row) {
                QVERIFY(row < fresh.numberOfRows());
                const QModelIndex shown = static_cast<OutlineModel *>(list->model())->indexAtRow(row);
                if (list->isExpanded(shown))
                    fresh.expand(static_cast<OutlineModel *>(fresh.model())->indexAtRow(row));
                QCOMPARE(static_cast<OutlineModel *>(list->model())->rowOfIndex(shown), row);
                titles.append(QString(list->levelForRow(row), u' ') + tree.nodeOf(list->itemAtRow(row)).title);
            }
            QStringList freshTitles;
            for (int row = 0; row < fresh.numberOfRows(); ++row)
                freshTitles.append(QString(fresh.levelForRow(row), u' ') + tree.nodeOf(fresh.itemAtRow(row)).title);
            QCOMPARE(titles, freshTitles);
        }
    }
    QVERIFY(ModelChecks::models() >= 3);
}

QTEST_MAIN(OutlineModelTest)
#include "OutlineModelTest.moc"
