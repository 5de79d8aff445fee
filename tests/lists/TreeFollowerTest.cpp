#include "lists/TreeFollower.h"

#include "platform/base/NotificationQueue.h"
#include "tests/lists/ListStage.h"

#include <QRandomGenerator>
#include <QScrollBar>
#include <QSignalSpy>
#include <optional>

namespace
{
const QString siteA = QStringLiteral("www.a.com");

// What a list's model told since this was made.
class Told
{
public:
    explicit Told(const OutlineView &view) : _model(view.model()) {}

    qsizetype inserted() const { return _inserted.size(); }
    qsizetype removed() const { return _removed.size(); }
    qsizetype changed() const { return _changed.size(); }
    // The list was loaded anew, or part of it was compared.
    qsizetype others() const { return _reset.size() + _layout.size(); }

private:
    const QAbstractItemModel *_model;
    QSignalSpy _inserted{_model, &QAbstractItemModel::rowsInserted};
    QSignalSpy _removed{_model, &QAbstractItemModel::rowsRemoved};
    QSignalSpy _changed{_model, &QAbstractItemModel::dataChanged};
    QSignalSpy _reset{_model, &QAbstractItemModel::modelReset};
    QSignalSpy _layout{_model, &QAbstractItemModel::layoutChanged};
};

// A smart folder that finds what a test says.
class FindingFolder : public WayfoldAutoFolder
{
public:
    std::vector<KDRBookmarkPtr> found;
    int searches = 0;

    bool refresh() override
    {
        ++searches;
        refreshFromBookmarkRoot(ListStage::folder(QString(), found));
        return true;
    }
};

std::shared_ptr<FindingFolder> finding(const QString &title, const std::vector<KDRBookmarkPtr> &found)
{
    auto folder = std::make_shared<FindingFolder>();
    folder->setTitle(title);
    folder->setFilterString(QStringLiteral("found"));
    folder->found = found;
    return folder;
}

void settle()
{
    for (int pass = 0; pass < 5; ++pass)
        QCoreApplication::processEvents();
}
} // namespace

class TreeFollowerTest : public QObject
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

    void rowsComeAndGo();
    void rowsAreSorted();
    void changeOfAnItemIsOneRow();
    void changeThatIsNotSeenIsNone();
    void siteAndWholeTreeFollow();
    void leftSiteIsNotFollowed();
    void followedSiteIsNotHeld();
    void listThatGoesFollowsNothing();
    void placeOfTheUserStays();
    void itemThatIsMovedStaysSelectedAndOpen();

    void smartFolderThatIsOpen();
    void smartFolderThatNobodyHasOpened();
    void unseenSmartFolderIsShownWhenItIsSeen();
    void replacedRowsWaitForTheMouse();
    void groupsMembersFollow();

    void deletesManyAtOnce();
    void drawersAreNotReloaded();

    void anyChange_data();
    void anyChange();

private:
    QStringList rows() const { return ListStage::rows(_pad->view); }
    static WayfoldBookmarkFolderPtr root() { return ListStage::store().bookmarkRoot(); }

    std::optional<ListStage> _stage;
    std::optional<Scratchpad> _pad;
};

// --- Row by row -----------------------------------------------------------------------------------------------------

void TreeFollowerTest::rowsComeAndGo()
{
    const auto folder = ListStage::folder(QStringLiteral("folder"), {ListStage::note(QStringLiteral("deep"))});
    const auto note = ListStage::note(QStringLiteral("note"));
    _pad->showItems({folder, note});
    _pad->view.expandItem(folder);
    const Told told(_pad->view);
    root()->addChild(ListStage::note(QStringLiteral("last")));
    root()->addChildAtIndex(ListStage::note(QStringLiteral("first")), 0);
    folder->addChild(ListStage::note(QStringLiteral("deeper")));
    QCOMPARE(rows(), QStringList({"first", "folder", "-deep", "-deeper", "note", "last"}));
    root()->removeChild(note);
    folder->removeAllChildren();
    QCOMPARE(rows(), QStringList({"first", "folder", "last"}));
    QCOMPARE(told.inserted(), 3);
    QCOMPARE(told.removed(), 2);
    QCOMPARE(told.changed(), 0);
    QCOMPARE(told.others(), 0);
}

void TreeFollowerTest::rowsAreSorted()
{
    const auto folder = ListStage::folder(QStringLiteral("b"), {ListStage::note(QStringLiteral("deep"))});
    _pad->showItems({ListStage::note(QStringLiteral("c")), folder, ListStage::note(QStringLiteral("a"))});
    _pad->view.expandItem(folder);
    _pad->select({folder->children().front()});
    const Told told(_pad->view);
    root()->sortChildrenByTitle();
    QCOMPARE(rows(), QStringList({"a", "b", "-deep", "c"}));
    QCOMPARE(_pad->view.selectedRows(), std::vector<int>{2});
    QCOMPARE(told.inserted() + told.removed(), 0);
}

void TreeFollowerTest::changeOfAnItemIsOneRow()
{
    const auto note = ListStage::note(QStringLiteral("note"));
    const auto folder = ListStage::folder(QStringLiteral("folder"));
    const auto closed = ListStage::folder(QStringLiteral("closed"), {ListStage::note(QStringLiteral("deep"))});
    _pad->showItems({note, folder, closed});
    QCOMPARE(rows().size(), 3);
    const Told told(_pad->view);
    note->setTitle(QStringLiteral("other"));
    QCOMPARE(told.changed(), 1);
    folder->setTitle(QStringLiteral("drawer"));
    QCOMPARE(told.changed(), 2);
    QCOMPARE(rows(), QStringList({"other", "drawer", "closed"}));
    QCOMPARE(told.inserted() + told.removed() + told.others(), 0);
    root()->setTitle(QStringLiteral("root")); // has no row
    QCOMPARE(told.changed(), 2);
}

void TreeFollowerTest::changeThatIsNotSeenIsNone()
{
    const auto folder = ListStage::folder(QStringLiteral("folder"));
    _pad->showItems({folder});
    QCOMPARE(rows().size(), 1);
    const Told told(_pad->view);
    folder->setFilterString(QStringLiteral("else"));
    folder->setUUID(QStringLiteral("another"));
    folder->setTimestampInMilliseconds(1);
    QCOMPARE(told.changed(), 0);
}

// Two windows, one on the whole tree and one on a site's folder.
void TreeFollowerTest::siteAndWholeTreeFollow()
{
    const auto site = ListStage::folder(siteA, {ListStage::note(QStringLiteral("one"))});
    _pad->showItems({site});
    _pad->view.expandItem(site);
    Scratchpad other(*_stage);
    other.show(siteA);
    const Told told(other.view);
    site->addChild(ListStage::note(QStringLiteral("two")));
    QCOMPARE(rows(), QStringList({siteA, "-one", "-two"}));
    QCOMPARE(ListStage::rows(other.view), QStringList({"one", "two"}));
    root()->addChild(ListStage::note(QStringLiteral("elsewhere")));
    QCOMPARE(rows(), QStringList({siteA, "-one", "-two", "elsewhere"}));
    QCOMPARE(told.inserted(), 1);
    QCOMPARE(told.others(), 0);
    // The site goes from the whole tree, and its window still shows it.
    ListStage::store().deleteBookmark(site);
    QCOMPARE(rows(), QStringList({"elsewhere"}));
    site->addChild(ListStage::note(QStringLiteral("three")));
    QCOMPARE(ListStage::rows(other.view), QStringList({"one", "two", "three"}));
}

void TreeFollowerTest::leftSiteIsNotFollowed()
{
    const auto site = ListStage::folder(siteA, {ListStage::note(QStringLiteral("one"))});
    _pad->showItems({site});
    _pad->show(siteA);
    _pad->show(QStringLiteral("www.b.com"));
    const QStringList before = rows();
    const Told told(_pad->view);
    site->addChild(ListStage::note(QStringLiteral("two")));
    root()->addChild(ListStage::note(QStringLiteral("three")));
    QCOMPARE(rows(), before);
    QCOMPARE(told.inserted() + told.others(), 0);
}

// Whether a provisional folder is in use is told by its holders.
void TreeFollowerTest::followedSiteIsNotHeld()
{
    _pad->show(siteA);
    QVERIFY(ListStage::store().provisionalBookmarkRoot()->childWithTitle(siteA));
    _pad->show(QString(QStringLiteral("")));
    QVERIFY(!ListStage::store().provisionalBookmarkRoot()->childWithTitle(siteA));
}

void TreeFollowerTest::listThatGoesFollowsNothing()
{
    {
        TreeFollower follower(&_pad->view);
        follower.follow(root());
        follower.follow(root());
        follower.follow(nullptr);
        TreeFollower another(&_pad->view);
        another.follow(ListStage::folder(QStringLiteral("gone at once")));
    }
    {
        auto view = std::make_unique<WayfoldOutlineView>();
        TreeFollower follower(view.get());
        follower.follow(root());
        view.reset();
        const auto note = ListStage::note(QStringLiteral("note"));
        root()->addChild(note);
        note->setTitle(QStringLiteral("other"));
        root()->sortChildrenByTitle();
        root()->removeChild(note);
    }
    _pad->source.reset(); // the list of a window that closes
    root()->addChild(ListStage::note(QStringLiteral("later")));
    QCOMPARE(_pad->view.numberOfRows(), 0);
}

void TreeFollowerTest::placeOfTheUserStays()
{
    std::vector<KDRBookmarkPtr> notes;
    for (int i = 0; i < 200; ++i)
        notes.push_back(ListStage::note(QString::number(i)));
    _pad->showItems(notes);
    _pad->select({notes[100], notes[103]});
    _pad->view.scrollRowToVisible(110);
    const QRect before = _pad->view.rectOfRow(100);
    QVERIFY(_pad->view.viewport()->rect().contains(before));
    root()->addChildrenAtIndex({ListStage::note(QStringLiteral("a")), ListStage::note(QStringLiteral("b"))}, 5);
    root()->removeChild(notes[20]);
    notes[101]->setTitle(QStringLiteral("renamed"));
    QCOMPARE(_pad->view.selectedItemList(), (std::vector<KDRBookmarkPtr>{notes[100], notes[103]}));
    QCOMPARE(_pad->view.rowForItem(notes[100]), 101);
    QCOMPARE(_pad->view.rectOfRow(101).top(), before.top());
    QCOMPARE(_pad->view.currentRow(), 104);
}

void TreeFollowerTest::itemThatIsMovedStaysSelectedAndOpen()
{
    const auto inner = ListStage::folder(QStringLiteral("inner"), {ListStage::note(QStringLiteral("note"))});
    const auto from = ListStage::folder(QStringLiteral("from"), {inner});
    const auto to = ListStage::folder(QStringLiteral("to"), {ListStage::note(QStringLiteral("there"))});
    _pad->showItems({from, to});
    for (const auto &folder : {from, to, inner})
        _pad->view.expandItem(folder);
    _pad->select({inner->children().front()});
    from->removeChild(inner);
    to->addChildAtIndex(inner, 0);
    QCOMPARE(rows(), QStringList({"from", "to", "-inner", "--note", "-there"}));
    QCOMPARE(ListStage::titles(_pad->view.selectedItemList()), QStringList({"note"}));
    settle();
    QCOMPARE(ListStage::titles(_pad->view.selectedItemList()), QStringList({"note"}));
}

// --- What is replaced -----------------------------------------------------------------------------------------------

void TreeFollowerTest::smartFolderThatIsOpen()
{
    const auto one = ListStage::link(QStringLiteral("found one"));
    const auto two = ListStage::link(QStringLiteral("found two"));
    const auto smart = finding(QStringLiteral("smart"), {one, two});
    const auto note = ListStage::note(QStringLiteral("note"));
    _pad->showItems({smart, note});
    _pad->view.expandItem(smart);
    QCOMPARE(rows(), QStringList({"smart", "-found one", "-found two", "note"}));
    _pad->select({smart->children().at(1), note});
    smart->found = {two, ListStage::link(QStringLiteral("found three"))};
    smart->refresh();
    QTRY_COMPARE(rows(), QStringList({"smart", "-found two", "-found three", "note"}));
    // The copy is another one.
    QCOMPARE(ListStage::titles(_pad->view.selectedItemList()), QStringList({"found two", "note"}));
}

void TreeFollowerTest::smartFolderThatNobodyHasOpened()
{
    const ModelChecks::Pause unchecked;
    _pad.emplace(*_stage);
    const auto smart = finding(QStringLiteral("smart"), {ListStage::link(QStringLiteral("found one"))});
    const auto closed = ListStage::folder(QStringLiteral("closed"), {smart});
    _pad->showItems({closed});
    settle();
    QCOMPARE(rows(), QStringList({"closed"}));
    const Told told(_pad->view);
    smart->setFilterString(QStringLiteral("one"));
    settle();
    QCOMPARE(smart->searches, 0);
    smart->ensureUpToDate();
    settle();
    QCOMPARE(smart->searches, 1);
    QCOMPARE(told.inserted() + told.removed(), 0);
    QCOMPARE(told.changed(), 0);
    QCOMPARE(told.others(), 0);
}

void TreeFollowerTest::unseenSmartFolderIsShownWhenItIsSeen()
{
    const auto smart = finding(QStringLiteral("smart"), {ListStage::link(QStringLiteral("found one"))});
    _pad->showItems({smart});
    _pad->view.expandItem(smart);
    _pad->view.hide();
    const Told told(_pad->view);
    smart->found = {ListStage::link(QStringLiteral("found two"))};
    smart->refresh();
    settle();
    smart->refresh();
    settle();
    QCOMPARE(told.others(), 0);
    _pad->view.show();
    QCOMPARE(rows(), QStringList({"smart", "-found two"}));
}

void TreeFollowerTest::replacedRowsWaitForTheMouse()
{
    const auto smart = finding(QStringLiteral("smart"), {ListStage::link(QStringLiteral("found one"))});
    _pad->showItems({smart});
    _pad->view.expandItem(smart);
    smart->found = {ListStage::link(QStringLiteral("found two"))};
    {
        const NotificationQueue::Pause pause; // as in a drag
        smart->refresh();
        settle();
        QCOMPARE(rows(), QStringList({"smart", "-found one"}));
    }
    QTRY_COMPARE(rows(), QStringList({"smart", "-found two"}));
}

void TreeFollowerTest::groupsMembersFollow()
{
    const auto ann = ListStage::person(QStringLiteral("Ann"));
    const auto bob = ListStage::person(QStringLiteral("Bob"));
    const auto group = ListStage::group(QStringLiteral("Friends"), {ann});
    _pad->showItems({group});
    _pad->view.expandItem(group);
    QCOMPARE(rows(), QStringList({"Friends", "-Ann"}));
    ListStage::contacts().set(
        MemoryContacts::group(group->uuid(), QStringLiteral("Friends"), {ann->uuid(), bob->uuid()}));
    group->refresh(); // by whichever window
    QTRY_COMPARE(rows(), QStringList({"Friends", "-Ann", "-Bob"}));
}

// --- Many at once, and none too many --------------------------------------------------------------------------------

void TreeFollowerTest::deletesManyAtOnce()
{
    const ModelChecks::Pause unchecked;
    _pad.emplace(*_stage);
    Scratchpad other(*_stage);
    std::vector<KDRBookmarkPtr> notes;
    std::vector<KDRBookmarkPtr> scattered;
    for (int i = 0; i < 20000; ++i) {
        notes.push_back(ListStage::note(QString::number(i)));
        if (i % 20 == 7)
            scattered.push_back(notes.back());
    }
    _pad->showItems(notes);
    other.view.reloadData();
    ListStage::settings().setConfirmItemDelete(false);
    for (Scratchpad *pad : {&*_pad, &other}) {
        pad->view.selectRowsOfItems({scattered.begin(), scattered.end()});
        pad->view.verticalScrollBar()->setValue(10001 * int(pad->view.rectOfRow(0).height()));
    }
    const Told told(other.view);
    _pad->source->handleDeleteItemRequest(nullptr);
    for (const Scratchpad *pad : {&*_pad, &other}) {
        QCOMPARE(pad->view.numberOfRows(), 19000);
        QCOMPARE(pad->view.selectedItemCount(), 0);
        QCOMPARE(std::static_pointer_cast<KDRBookmark>(pad->view.itemAtRow(pad->view.rowAtPoint(QPoint(1, 1)))),
                 notes[10001]);
        QCOMPARE(pad->view.currentRow(), 19000 - 12); // after the last that went
    }
    QVERIFY(told.others() < 5); // what stands scattered may be gathered first
    QVERIFY(!other.deleteItemButton.isEnabled() || (settle(), !other.deleteItemButton.isEnabled()));
}

// What one window does is in the other's rows without its list being loaded anew.
void TreeFollowerTest::drawersAreNotReloaded()
{
    Scratchpad other(*_stage);
    const auto folder = ListStage::folder(QStringLiteral("folder"));
    _pad->showItems({folder});
    other.view.reloadData();
    other.drawer.reloadCount = _pad->drawer.reloadCount = 0;
    const Told told(other.view);

    _pad->show(QStringLiteral("")); // tells nothing but the frame
    _pad->source->handleSaveCurrentURLRequest(nullptr);
    _stage->dialogs.answer = [](KDRBookmark &item) {
        item.setTitle(QStringLiteral("new"));
        return true;
    };
    _pad->view.deselectAll();
    _pad->view.handleNewNoteRequest(nullptr);
    QCOMPARE(ListStage::rows(other.view).size(), 3);
    QCOMPARE(ListStage::rows(other.view).last(), QStringLiteral("new"));
    _stage->dialogs.answer = [](KDRBookmark &item) {
        item.setTitle(QStringLiteral("edited"));
        return true;
    };
    _pad->source->handleItemEditRequest(nullptr);
    QCOMPARE(ListStage::rows(other.view).last(), QStringLiteral("edited"));
    ListStage::settings().setConfirmItemDelete(false);
    _pad->source->handleDeleteItemRequest(nullptr);
    QCOMPARE(ListStage::rows(other.view).size(), 2);
    QCOMPARE(rows(), ListStage::rows(other.view));

    QCOMPARE(other.drawer.reloadCount, 0);
    QCOMPARE(_pad->drawer.reloadCount, 0);
    QCOMPARE(told.others(), 0);
}

// --- Any change -----------------------------------------------------------------------------------------------------

void TreeFollowerTest::anyChange_data()
{
    QTest::addColumn<quint32>("seed");
    for (quint32 seed = 1; seed <= 6; ++seed)
        QTest::addRow("%u", seed) << seed;
}

// Two windows beside one that is loaded anew at each step.
void TreeFollowerTest::anyChange()
{
    QFETCH(quint32, seed);
    QRandomGenerator random(seed);
    const auto below = [&random](std::size_t bound) { return std::size_t(random.bounded(quint32(bound))); };
    const auto site = ListStage::folder(siteA);
    _pad->showItems({site});
    Scratchpad other(*_stage);
    other.show(siteA);
    std::vector<WayfoldBookmarkFolderPtr> folders = {root(), site};
    int made = 0;
    const auto newItem = [&]() -> KDRBookmarkPtr {
        const QString title = QString::number(made++);
        if (below(3) != 0)
            return ListStage::note(title);
        folders.push_back(ListStage::folder(title));
        return folders.back();
    };
    for (int step = 0; step < 150; ++step) {
        const WayfoldBookmarkFolderPtr folder = folders[below(folders.size())];
        const std::vector<KDRBookmarkPtr> children = folder->children();
        const KDRBookmarkPtr child = children.empty() ? nullptr : children[below(children.size())];
        switch (below(9)) {
        case 0:
        case 1:
            folder->addChildAtIndex(newItem(), int(below(children.size() + 1)));
            break;
        case 2:
            folder->addChildrenAtIndex({newItem(), newItem(), newItem()}, int(below(children.size() + 1)));
            break;
        case 3:
            if (child && child != site)
                folder->removeChild(child);
            break;
        case 4:
            if (child) {
                child->setTitle(QString::number(made++));
                folder->sortChildrenByTitle();
            }
            break;
        case 5:
            if (child && child != site) {
                const WayfoldBookmarkFolderPtr to = folders[below(folders.size())];
                if (to != child && !to->isChildOf(child)) {
                    folder->removeChild(child);
                    to->addChildAtIndex(child, int(below(to->childCount() + 1)));
                }
            }
            break;
        case 6: {
            std::vector<KDRBookmarkPtr> some;
            std::copy_if(children.begin(), children.end(), std::back_inserter(some),
                         [&](const KDRBookmarkPtr &each) { return each != site && below(2) == 0; });
            folder->removeChildren(some);
            break;
        }
        default:
            for (Scratchpad *pad : {&*_pad, &other}) {
                const int count = pad->view.numberOfRows();
                const OutlineItemPtr item = count > 0 ? pad->view.itemAtRow(int(below(std::size_t(count)))) : nullptr;
                if (pad->view.isItemExpanded(item))
                    pad->view.collapseItem(item);
                else
                    pad->view.expandItem(item);
            }
        }
        if (below(3) == 0)
            settle();
        for (Scratchpad *pad : {&*_pad, &other}) {
            const ModelChecks::Pause unchecked;
            WayfoldOutlineView fresh;
            fresh.setDelegate(pad->source.get());
            fresh.setOutlineDataSource(pad->source.get());
            fresh.restoreExpansions(pad->view.expansions());
            QCOMPARE(ListStage::rows(pad->view), ListStage::rows(fresh));
        }
    }
}

QTEST_MAIN(TreeFollowerTest)
#include "TreeFollowerTest.moc"
