#include "lists/ScratchpadDrop.h"

#include "lists/CardFiles.h"
#include "lists/PasteboardTypes.h"
#include "lists/SavedDepth.h"
#include "lists/WayfoldBookmarkOutlineView.h"
#include "lists/WayfoldHistoryDataSource.h"
#include "lists/WayfoldHistoryOutlineView.h"
#include "model/WayfoldHistoryAutoFolder.h"
#include "platform/files/PropertyList.h"
#include "tests/lists/AskedData.h"
#include "tests/lists/ListStage.h"

#include <QDragEnterEvent>
#include <QMimeData>
#include <QSysInfo>
#include <sys/stat.h>

namespace
{
// Somebody who is among the contacts for a while.
class ContactCleaner
{
public:
    explicit ContactCleaner(const ContactRecord &record) : _id(record.uniqueId) { ListStage::contacts().set(record); }
    ~ContactCleaner() { ListStage::contacts().take(_id); }

private:
    QString _id;
};

QStringList rowsOf(const Scratchpad &pad)
{
    return ListStage::rows(pad.view);
}
} // namespace

// What is dropped on the Scratchpad, from the question whether it may be to what the list shows then.
class ScratchpadDropTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        _stage.emplace();
        _pad.emplace(*_stage);
        _a = ListStage::note(QStringLiteral("a"));
        _b = ListStage::note(QStringLiteral("b"));
        _c = ListStage::note(QStringLiteral("c"));
        _inner = ListStage::folder(QStringLiteral("inner"), {ListStage::note(QStringLiteral("deep"))});
        _folder = ListStage::folder(QStringLiteral("folder"), {_inner, ListStage::note(QStringLiteral("x"))});
        _pad->showItems({_a, _b, _c, _folder});
        _pad->view.expandItem(_folder);
        _stage->removeSavedFile();
        _data = std::make_unique<QMimeData>();
    }
    void cleanup()
    {
        _data.reset();
        _folder.reset();
        _pad.reset();
        _stage.reset();
    }

    // ---- Validating
    void operationBySource();
    void unknownDataIsRefused();
    void moveOfADragAsksForNothing();
    void proposedFolder();
    void proposedLeafAtTheTop();
    void proposedLeafInAFolder();
    void proposedSmartFolder();
    void proposedWithinASmartFoldersFolder();
    void noProposedItem();

    // ---- Moving
    void moveDownWithinAFolder();
    void moveUpWithinAFolder();
    void moveIntoAFolder();
    void moveOutOfAFolder();
    void refusedMoves_data();
    void refusedMoves();
    void moveSeveral();
    void moveSeveralFromSeveralFolders();
    void moveSeveralIntoOneOfThem();
    void visitsOutOfASmartFolderAreKept();
    void severalUnknown();
    void nothingChangesWhenAllWereSkipped_data();
    void nothingChangesWhenAllWereSkipped();
    void twoPeopleMoveOnlyTheFirst();
    void draggedTwinMoves_data();
    void draggedTwinMoves();
    void draggedTwinsMove();

    // ---- Making
    void people();
    void groups();
    void contactsThatNobodyKnows();
    void contactsThatMayStillCome();
    void membersOfAGroupStayThere();
    void memberIsNotTakenForItsTwin();
    void groupWithinAGroup();
    void largeGroupFitsAnywhere();
    void dictionaries();
    void dictionariesOfNothing();
    void dictionariesWithoutATitle();
    void dictionariesOfUnknownKinds();
    void unknownValuesTooDeepToBeSaved();
    void pagesKnownByTheirAddressesAlone();
    void severalVisits();
    void foldersOfVisits();
    void treeThatIsTooDeepToBeSaved();
    void movedTooDeepToBeSaved();
    void nothingGoesTooDeepToBeSaved_data();
    void nothingGoesTooDeepToBeSaved();
    void urlsWithTitles();
    void url_data();
    void url();
    void fileNames();
    void text_data();
    void text();
    void firstOfferedTypeCounts();
    void typesInOrder_data();
    void typesInOrder();
    void nothingOffered();
    void smartFolderTakesNothing();

    // ---- What other applications bring
    void foreign_data();
    void foreign();

    // ---- Cards
    void cardOfAContact_data();
    void cardOfAContact();
    void cardsOfOtherPrograms_data();
    void cardsOfOtherPrograms();
    void cardsOfStrangers_data();
    void cardsOfStrangers();
    void cardOfAStrangerWhereLastNamesStandFirst();
    void sameCardTwice();
    void cardOfAGroup();
    void whatIsNoCard_data();
    void whatIsNoCard();
    void ownTypesBeforeCards();
    void cardFiles();
    void filesThatStayFiles_data();
    void filesThatStayFiles();
    void cardFilesAreReadUpToAMost();
    void cardFileWithoutContacts();
    void cardFileFromAList();

    // ---- Afterwards
    void dropsAreSelectedSavedAndShownElsewhere();
    void indexOfADropOnAnItem();
    void dropOnASiteListBecomesPartOfTheTree();
    void dragFromAnotherListCopies();
    void folderAndFileFromAnotherList();
    void manyAreSelectedAtOnce();

private:
    using Target = OutlineDropTarget;

    void setString(const QString &type, const QString &value) { _data->setData(type, value.toUtf8()); }
    void setList(const QString &type, const QVariantList &value) { _data->setData(type, PropertyList::toXml(value)); }
    bool drop(const Target &target) { return _pad->source->outlineViewAcceptDrop(_pad->view, *_data, target); }
    // Drops what a drag of these from a list that takes no drops brings.
    bool dropFrom(WayfoldOutlineView &view, const std::vector<OutlineItemPtr> &items)
    {
        WayfoldOutlineViewDataSource source;
        const std::unique_ptr<QMimeData> dragged(source.outlineViewWriteItems(view, items));
        return dragged && _pad->source->outlineViewAcceptDrop(_pad->view, *dragged, {nullptr, 0});
    }
    void setMozilla(const QString &lines)
    {
        _data->setData(QStringLiteral("text/x-moz-url"),
                       QByteArray(reinterpret_cast<const char *>(lines.utf16()), lines.size() * 2));
    }
    Qt::DropAction validate(Target &target, bool isLocal = false)
    {
        if (!_pad->source->outlineViewTakesData(_pad->view, *_data))
            return Qt::IgnoreAction;
        return _pad->source->outlineViewValidateDrop(_pad->view, *_data, isLocal, target);
    }
    // So many folders, one inside the other.
    static WayfoldBookmarkFolderPtr chain(int length)
    {
        WayfoldBookmarkFolderPtr outermost = ListStage::folder(QStringLiteral("bottom"));
        for (int i = 1; i < length; ++i)
            outermost = ListStage::folder(QStringLiteral("f"), {outermost});
        return outermost;
    }
    // After a drop: the first item of the list.
    KDRBookmarkPtr first() { return ListStage::store().bookmarkRoot()->childAtIndex(0); }

    std::optional<ListStage> _stage;
    std::optional<Scratchpad> _pad;
    std::unique_ptr<QMimeData> _data;
    WayfoldBookmarkNotePtr _a;
    WayfoldBookmarkNotePtr _b;
    WayfoldBookmarkNotePtr _c;
    WayfoldBookmarkFolderPtr _inner;
    WayfoldBookmarkFolderPtr _folder;
};

// --- Validating -----------------------------------------------------------------------------------------------------

void ScratchpadDropTest::operationBySource()
{
    setString(PasteboardTypes::KDRBookmark, _a->uuid());
    Target target;
    QCOMPARE(validate(target, true), Qt::MoveAction);
    target = {};
    QCOMPARE(validate(target, false), Qt::CopyAction);
}

void ScratchpadDropTest::unknownDataIsRefused()
{
    _data->setData(QStringLiteral("image/png"), "x");
    Target target;
    QCOMPARE(validate(target), Qt::IgnoreAction);
}

void ScratchpadDropTest::moveOfADragAsksForNothing()
{
    AskedData files;
    files.setUrls({QUrl(QStringLiteral("file:///tmp/a")), QUrl(QStringLiteral("file:///tmp/b"))});
    QDragEnterEvent enter(QPoint(60, 1), Qt::CopyAction, &files, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(_pad->view.viewport(), &enter);
    QVERIFY(enter.isAccepted());
    const int asked = files.asked;
    QVERIFY(asked > 0);
    for (int row = 0; row < _pad->view.numberOfRows(); ++row) {
        const QPoint place = _pad->view.rectOfRow(row).center();
        QDragMoveEvent move(place, Qt::CopyAction, &files, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(_pad->view.viewport(), &move);
        QVERIFY(move.isAccepted());
    }
    QCOMPARE(files.asked, asked);
    QDropEvent drop(QPointF(60, 1), Qt::CopyAction, &files, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(_pad->view.viewport(), &drop);
    QVERIFY(drop.isAccepted());
    QCOMPARE(rowsOf(*_pad).mid(0, 2), QStringList({QStringLiteral("a"), QStringLiteral("b")}));
    QCOMPARE(first()->type(), KDRBookmark::FileLinkType);
}

void ScratchpadDropTest::proposedFolder()
{
    _data->setText(QStringLiteral("words"));
    Target target = {_folder, 1};
    QCOMPARE(validate(target), Qt::CopyAction);
    QVERIFY(target.item == _folder);
    QCOMPARE(target.childIndex, 1);
}

void ScratchpadDropTest::proposedLeafAtTheTop()
{
    _data->setText(QStringLiteral("words"));
    Target target = {_b, -1};
    QCOMPARE(validate(target), Qt::CopyAction);
    QVERIFY(!target.item);
    QCOMPARE(target.childIndex, -1);
    // Which means the end of the list.
    QVERIFY(drop(target));
    QCOMPARE(rowsOf(*_pad).last(), QStringLiteral("words"));
}

void ScratchpadDropTest::proposedLeafInAFolder()
{
    _data->setText(QStringLiteral("words"));
    Target target = {_folder->childAtIndex(1), -1};
    QCOMPARE(validate(target), Qt::CopyAction);
    QVERIFY(target.item == _folder);
    QCOMPARE(target.childIndex, 1); // just before the leaf
}

void ScratchpadDropTest::proposedSmartFolder()
{
    const auto smart = WayfoldAutoFolder::bookmarkWithTitle(QStringLiteral("Smart"));
    const auto found = ListStage::link(QStringLiteral("Found"));
    smart->addChild(found);
    _pad->showItems({smart});
    _data->setText(QStringLiteral("words"));
    Target onFolder = {smart, -1};
    QCOMPARE(validate(onFolder), Qt::IgnoreAction);
    Target onLeaf = {found, -1};
    QCOMPARE(validate(onLeaf), Qt::IgnoreAction);
}

void ScratchpadDropTest::proposedWithinASmartFoldersFolder()
{
    const auto related = WayfoldHistoryAutoFolder::bookmarkWithTitle(QStringLiteral("Related History"));
    const auto found = ListStage::folder(QString(), {ListStage::history(QStringLiteral("Page"))});
    WayfoldHistoryDataSource::regroupBookmarksFromFolderIntoFolderWithGroupingStyle(found, related,
                                                                                    QStringLiteral("1"));
    const WayfoldBookmarkFolderPtr day = WayfoldBookmarkFolder::fromItem(related->childAtIndex(0));
    QVERIFY(day);
    _pad->showItems({related});
    _data->setText(QStringLiteral("words"));
    for (const KDRBookmarkPtr &item : {KDRBookmarkPtr(day), day->childAtIndex(0)}) {
        Target on = {item, -1};
        QCOMPARE(validate(on), Qt::IgnoreAction);
        QVERIFY(!drop({item, 0}));
    }
    QCOMPARE(day->childCount(), 1U);
    QVERIFY(_stage->savedFile().isEmpty());
}

void ScratchpadDropTest::noProposedItem()
{
    _data->setText(QStringLiteral("words"));
    Target on = {nullptr, -1};
    QCOMPARE(validate(on), Qt::CopyAction);
    QVERIFY(!on.item);
    QCOMPARE(on.childIndex, 4);
    Target between = {nullptr, 2};
    QCOMPARE(validate(between), Qt::CopyAction);
    QCOMPARE(between.childIndex, 2);
    _pad->showItems({});
    Target empty = {nullptr, -1};
    QCOMPARE(validate(empty), Qt::CopyAction);
    QCOMPARE(empty.childIndex, -1);
}

// --- Moving ---------------------------------------------------------------------------------------------------------

void ScratchpadDropTest::moveDownWithinAFolder()
{
    setString(PasteboardTypes::KDRBookmark, _a->uuid());
    QVERIFY(drop({nullptr, 2})); // between b and c
    QCOMPARE(ListStage::titles(ListStage::store().bookmarkRoot()).mid(0, 3),
             QStringList({QStringLiteral("b"), QStringLiteral("a"), QStringLiteral("c")}));
    QCOMPARE(rowsOf(*_pad).mid(0, 3), QStringList({QStringLiteral("b"), QStringLiteral("a"), QStringLiteral("c")}));
    QVERIFY(_pad->view.selectedItem() == _a);
}

void ScratchpadDropTest::moveUpWithinAFolder()
{
    setString(PasteboardTypes::KDRBookmark, _c->uuid());
    QVERIFY(drop({nullptr, 1}));
    QCOMPARE(rowsOf(*_pad).mid(0, 3), QStringList({QStringLiteral("a"), QStringLiteral("c"), QStringLiteral("b")}));
}

void ScratchpadDropTest::moveIntoAFolder()
{
    setString(PasteboardTypes::KDRBookmark, _a->uuid());
    QVERIFY(drop({_folder, 1}));
    QVERIFY(_a->parent() == _folder);
    QCOMPARE(rowsOf(*_pad), QStringList({QStringLiteral("b"), QStringLiteral("c"), QStringLiteral("folder"),
                                         QStringLiteral("-inner"), QStringLiteral("-a"), QStringLiteral("-x")}));
}

void ScratchpadDropTest::moveOutOfAFolder()
{
    setString(PasteboardTypes::KDRBookmark, _inner->uuid());
    QVERIFY(drop({nullptr, 0}));
    QCOMPARE(rowsOf(*_pad), QStringList({QStringLiteral("inner"), QStringLiteral("a"), QStringLiteral("b"),
                                         QStringLiteral("c"), QStringLiteral("folder"), QStringLiteral("-x")}));
}

void ScratchpadDropTest::refusedMoves_data()
{
    QTest::addColumn<QString>("moved");
    QTest::newRow("into itself") << QStringLiteral("folder");
    QTest::newRow("nobody") << QString();
    QTest::newRow("unknown") << QStringLiteral("unknown");
    QTest::newRow("the whole tree") << QStringLiteral("root");
}

void ScratchpadDropTest::refusedMoves()
{
    QFETCH(QString, moved);
    QString uuid = moved;
    if (moved == u"folder")
        uuid = _folder->uuid();
    else if (moved == u"root")
        uuid = ListStage::store().bookmarkRoot()->uuid();
    setString(PasteboardTypes::KDRBookmark, uuid);
    const QStringList before = rowsOf(*_pad);
    QVERIFY(!drop({_folder, 0}));
    QVERIFY(!drop({_inner, 0})); // deeper down
    QCOMPARE(rowsOf(*_pad), before);
    QVERIFY(_stage->savedFile().isEmpty());
}

void ScratchpadDropTest::moveSeveral()
{
    setList(PasteboardTypes::KDRBookmarkList, {_a->uuid(), QStringLiteral("unknown"), _c->uuid()});
    QVERIFY(drop({nullptr, 3})); // before the folder
    QCOMPARE(rowsOf(*_pad).mid(0, 3), QStringList({QStringLiteral("b"), QStringLiteral("a"), QStringLiteral("c")}));
    QCOMPARE(_pad->view.selectedItemCount(), 2);
    QVERIFY(drop({_folder, 2})); // to its end
    QCOMPARE(ListStage::titles(_folder),
             QStringList({QStringLiteral("inner"), QStringLiteral("x"), QStringLiteral("a"), QStringLiteral("c")}));
}

// The rows that they leave go as well, wherever they stood.
void ScratchpadDropTest::moveSeveralFromSeveralFolders()
{
    const KDRBookmarkPtr x = _folder->childAtIndex(1);
    _pad->view.expandItem(_inner);
    setList(PasteboardTypes::KDRBookmarkList, {_b->uuid(), x->uuid()});
    QVERIFY(drop({_inner, 0}));
    QCOMPARE(rowsOf(*_pad),
             QStringList({QStringLiteral("a"), QStringLiteral("c"), QStringLiteral("folder"), QStringLiteral("-inner"),
                          QStringLiteral("--b"), QStringLiteral("--x"), QStringLiteral("--deep")}));
    QCOMPARE(ListStage::titles(_pad->view.selectedItemList()), QStringList({QStringLiteral("b"), QStringLiteral("x")}));
}

// What was moved out of a smart folder is in the item file from then on.
void ScratchpadDropTest::visitsOutOfASmartFolderAreKept()
{
    const auto smart = WayfoldAutoFolder::bookmarkWithTitle(QStringLiteral("Smart"));
    const auto visit = ListStage::history(QStringLiteral("Visit"));
    const auto link = ListStage::link(QStringLiteral("Link"));
    const auto day = ListStage::folder(QStringLiteral("Monday"), {ListStage::history(QStringLiteral("Earlier"))});
    for (const KDRBookmarkPtr &child : std::vector<KDRBookmarkPtr>{visit, link, day})
        smart->addChild(child);
    _folder->addChild(smart);

    setString(PasteboardTypes::KDRBookmark, visit->uuid());
    QVERIFY(drop({nullptr, 0}));
    QCOMPARE(ListStage::titles(smart), QStringList({QStringLiteral("Link"), QStringLiteral("Monday")}));
    _data->clear();
    setList(PasteboardTypes::KDRBookmarkList, {link->uuid(), day->uuid()});
    QVERIFY(drop({nullptr, 1}));
    QVERIFY(first()->parent() == ListStage::store().bookmarkRoot());
    QVERIFY(ListStage::store().bookmarkRoot()->childAtIndex(1) == link); // it can be saved as it is

    const auto saved =
        WayfoldBookmarkFolder::bookmarkFromDictionary(PropertyList::fromData(_stage->savedFile()).toMap());
    QCOMPARE(ListStage::titles(saved).mid(0, 3),
             QStringList({QStringLiteral("Visit"), QStringLiteral("Link"), QStringLiteral("Monday")}));
    QVERIFY(saved->childAtIndex(0)->value() == visit->value());
    QCOMPARE(saved->childAtIndex(0)->type(), KDRBookmark::WebLinkType);
    QCOMPARE(ListStage::titles(WayfoldBookmarkFolder::fromItem(saved->childAtIndex(2))),
             QStringList(QStringLiteral("Earlier")));
}

// The folder stays where it is, but the place moves up for it all the same.
void ScratchpadDropTest::moveSeveralIntoOneOfThem()
{
    setList(PasteboardTypes::KDRBookmarkList, {_folder->uuid(), _a->uuid()});
    QVERIFY(drop({_folder, 1}));
    QCOMPARE(ListStage::titles(_folder),
             QStringList({QStringLiteral("inner"), QStringLiteral("a"), QStringLiteral("x")}));
    _data->clear();
    setList(PasteboardTypes::KDRBookmarkList, {_inner->uuid(), _b->uuid()});
    QVERIFY(drop({_inner, 0}));
    QCOMPARE(ListStage::titles(_inner), QStringList({QStringLiteral("b"), QStringLiteral("deep")}));
}

void ScratchpadDropTest::severalUnknown()
{
    setList(PasteboardTypes::KDRBookmarkList, {QStringLiteral("unknown")});
    QVERIFY(drop({nullptr, 0}));
    QVERIFY(_stage->savedFile().isEmpty());
    setList(PasteboardTypes::KDRBookmarkList, {});
    QVERIFY(!drop({nullptr, 0}));
}

void ScratchpadDropTest::nothingChangesWhenAllWereSkipped_data()
{
    QTest::addColumn<QString>("type");
    QTest::newRow("moved items") << PasteboardTypes::KDRBookmarkList;
    QTest::newRow("people") << PasteboardTypes::ABPeopleUIDs;
    QTest::newRow("groups") << PasteboardTypes::ABGroupsUIDs;
    QTest::newRow("files") << PasteboardTypes::NSFilenamesPboardType;
}

void ScratchpadDropTest::nothingChangesWhenAllWereSkipped()
{
    QFETCH(QString, type);
    Scratchpad other(*_stage);
    other.drawer.reloadCount = 0;
    setList(type, {QStringLiteral("")});
    QVERIFY(drop({nullptr, 0}));
    QCOMPARE(other.drawer.reloadCount, 0);
    QVERIFY(first() == _a);
    QVERIFY(_stage->savedFile().isEmpty());
}

// A bookmark and its copy in a smart folder have the same identifier.
void ScratchpadDropTest::draggedTwinMoves_data()
{
    QTest::addColumn<bool>("draggingTheCopy");
    QTest::addColumn<QStringList>("rows");
    QTest::newRow("the bookmark") << false << QStringList({"smart", "-link", "a", "folder", "-link"});
    QTest::newRow("its copy") << true << QStringList({"smart", "link", "a", "folder", "-link"});
}

void ScratchpadDropTest::draggedTwinMoves()
{
    QFETCH(bool, draggingTheCopy);
    const auto link = ListStage::link(QStringLiteral("link"));
    const auto smart = WayfoldAutoFolder::bookmarkWithTitle(QStringLiteral("smart"));
    smart->addChild(link->copy());
    const auto folder = ListStage::folder(QStringLiteral("folder"), {_b});
    _pad->showItems({smart, link, _a, folder});
    _pad->view.expandItem(smart);
    _pad->view.expandItem(folder);
    const KDRBookmarkPtr dragged = draggingTheCopy ? smart->childAtIndex(0) : link;
    const std::unique_ptr<QMimeData> data(_pad->source->outlineViewWriteItems(_pad->view, {dragged}));
    QVERIFY(_pad->source->outlineViewAcceptDrop(_pad->view, *data, {folder, 0}));
    QFETCH(QStringList, rows);
    rows.append(QStringLiteral("-b"));
    QCOMPARE(rowsOf(*_pad), rows);
    QVERIFY(folder->childAtIndex(0) == dragged);
}

void ScratchpadDropTest::draggedTwinsMove()
{
    const auto link = ListStage::link(QStringLiteral("link"));
    const auto smart = WayfoldAutoFolder::bookmarkWithTitle(QStringLiteral("smart"));
    const auto twin = link->copy();
    smart->addChild(twin);
    _pad->showItems({smart, link, _folder});
    const std::unique_ptr<QMimeData> data(_pad->source->outlineViewWriteItems(_pad->view, {twin, link}));
    QVERIFY(_pad->source->outlineViewAcceptDrop(_pad->view, *data, {_inner, 0}));
    QVERIFY(_inner->childAtIndex(0) == twin);
    QVERIFY(_inner->childAtIndex(1) == link);
    QVERIFY(smart->isEmpty());
}

void ScratchpadDropTest::twoPeopleMoveOnlyTheFirst()
{
    const auto ann = ListStage::person(QStringLiteral("Ann"));
    const auto bob = ListStage::person(QStringLiteral("Bob"));
    _pad->showItems({ann, bob, _c});
    const std::unique_ptr<QMimeData> dragged(_pad->source->outlineViewWriteItems(_pad->view, {ann, bob}));
    QVERIFY(_pad->source->outlineViewAcceptDrop(_pad->view, *dragged, {nullptr, 3}));
    QCOMPARE(rowsOf(*_pad), QStringList({QStringLiteral("Bob"), QStringLiteral("c"), QStringLiteral("Ann")}));
}

// --- Making ---------------------------------------------------------------------------------------------------------

void ScratchpadDropTest::people()
{
    const auto ann = ListStage::person(QStringLiteral("Ann"));
    const auto kettles = ListStage::organization(QStringLiteral("Kettles"));
    setList(PasteboardTypes::ABPeopleUIDs, {ann->uuid(), QStringLiteral(""), kettles->uuid(), 7});
    QVERIFY(drop({_folder, 1}));
    QCOMPARE(ListStage::titles(_folder), QStringList({"inner", "Ann", "Kettles", "x"}));
    const KDRBookmarkPtr made = _folder->childAtIndex(1);
    QVERIFY(made != ann);
    QCOMPARE(made->type(), KDRBookmark::PersonType);
    QCOMPARE(made->typeDescription(), QStringLiteral("Person"));
    QCOMPARE(made->uuid(), ann->uuid());
    QCOMPARE(_folder->childAtIndex(2)->typeDescription(), QStringLiteral("Organization"));
    QCOMPARE(ListStage::titles(_pad->view.selectedItemList()), QStringList({"Ann", "Kettles"}));

    const auto saved =
        WayfoldBookmarkFolder::bookmarkFromDictionary(PropertyList::fromData(_stage->savedFile()).toMap());
    const auto folder = WayfoldBookmarkFolder::fromItem(saved->childWithTitle(QStringLiteral("folder")));
    QCOMPARE(folder->childAtIndex(1)->type(), KDRBookmark::PersonType);
    QCOMPARE(folder->childAtIndex(1)->title(), QStringLiteral("Ann"));
    setList(PasteboardTypes::ABPeopleUIDs, {});
    QVERIFY(!drop({nullptr, 0}));
}

void ScratchpadDropTest::groups()
{
    const auto ann = ListStage::person(QStringLiteral("Ann"));
    const auto friends = ListStage::group(QStringLiteral("Friends"), {ann});
    setList(PasteboardTypes::ABGroupsUIDs, {friends->uuid()});
    QVERIFY(drop({nullptr, 0}));
    QCOMPARE(first()->type(), KDRBookmark::GroupType);
    QCOMPARE(first()->uuid(), friends->uuid());
    _pad->view.expandItem(first());
    QCOMPARE(rowsOf(*_pad).mid(0, 3), QStringList({"Friends", "-Ann", "a"}));
    QVERIFY(_stage->savedFile().contains("<string>ABGroup</string>"));
    setList(PasteboardTypes::ABGroupsUIDs, {});
    QVERIFY(!drop({nullptr, 0}));
}

void ScratchpadDropTest::contactsThatNobodyKnows()
{
    Scratchpad other(*_stage);
    for (const QString &type : {PasteboardTypes::ABPeopleUIDs, PasteboardTypes::ABGroupsUIDs}) {
        _data->clear();
        other.drawer.reloadCount = 0;
        setList(type, {QStringLiteral("unknown contact")});
        QVERIFY(drop({nullptr, 0}));
        QVERIFY(first() == _a);
        QCOMPARE(other.drawer.reloadCount, 0);
        QVERIFY(_stage->savedFile().isEmpty());
    }
    // Those beside them are made.
    setList(PasteboardTypes::ABPeopleUIDs,
            {QStringLiteral("unknown contact"), ListStage::person(QStringLiteral("Ann"))->uuid()});
    _data->removeFormat(PasteboardTypes::ABGroupsUIDs);
    QVERIFY(drop({nullptr, 0}));
    QCOMPARE(rowsOf(*_pad).mid(0, 2), QStringList({"Ann", "a"}));
}

// As long as not all contacts are there, nobody is taken for unknown.
void ScratchpadDropTest::contactsThatMayStillCome()
{
    ListStage::contacts().presentState = ContactStore::Loading;
    setList(PasteboardTypes::ABPeopleUIDs, {QString(), QStringLiteral("late-comer")});
    QVERIFY(drop({nullptr, 0}));
    QCOMPARE(first()->uuid(), QStringLiteral("late-comer"));
    QVERIFY(ListStage::store().bookmarkRoot()->childAtIndex(1) == _a); // an empty identifier is nobody's
    QCOMPARE(first()->title(), QStringLiteral("Invalid"));
    ListStage::contacts().presentState = ContactStore::Ready;
    ListStage::contacts().set(MemoryContacts::person(QStringLiteral("late-comer"), QStringLiteral("Late"), QString()));
    QTRY_COMPARE(first()->title(), QStringLiteral("Late"));
    ListStage::contacts().take(QStringLiteral("late-comer"));
}

void ScratchpadDropTest::membersOfAGroupStayThere()
{
    const auto friends = ListStage::group(QStringLiteral("Friends"), {ListStage::person(QStringLiteral("Ann"))});
    _pad->showItems({friends, _folder});
    _pad->view.expandItem(friends);
    _pad->view.expandItem(_folder);
    const KDRBookmarkPtr member = friends->childAtIndex(0);
    const std::unique_ptr<QMimeData> data(_pad->source->outlineViewWriteItems(_pad->view, {member}));
    QVERIFY(_pad->source->outlineViewAcceptDrop(_pad->view, *data, {_folder, 0}));
    QCOMPARE(rowsOf(*_pad), QStringList({"Friends", "-Ann", "folder", "-Ann", "-inner", "-x"}));
    QVERIFY(friends->childAtIndex(0) == member);
    const KDRBookmarkPtr own = _folder->childAtIndex(0);
    QVERIFY(own != member);
    QCOMPARE(own->uuid(), member->uuid());
    QVERIFY(own->parent() == _folder);
    QVERIFY(!member->parent());
    QVERIFY(_pad->view.selectedItem() == own);
    // Nor does a group take anything.
    OutlineDropTarget target = {friends, 0};
    QCOMPARE(_pad->source->outlineViewValidateDrop(_pad->view, *data, true, target), Qt::IgnoreAction);
    target = {member, -1};
    QCOMPARE(_pad->source->outlineViewValidateDrop(_pad->view, *data, true, target), Qt::IgnoreAction);
    QVERIFY(!_pad->source->outlineViewAcceptDrop(_pad->view, *data, {friends, 0}));
}

// Somebody may stand in a list, and in a group in the list.
void ScratchpadDropTest::memberIsNotTakenForItsTwin()
{
    const auto ann = ListStage::person(QStringLiteral("Ann"));
    const auto friends = ListStage::group(QStringLiteral("Friends"), {ann});
    _pad->showItems({ann, friends, _folder});
    _pad->view.expandItem(friends);
    const std::unique_ptr<QMimeData> data(_pad->source->outlineViewWriteItems(_pad->view, {friends->childAtIndex(0)}));
    QVERIFY(_pad->source->outlineViewAcceptDrop(_pad->view, *data, {_folder, 0}));
    QCOMPARE(ListStage::titles(ListStage::store().bookmarkRoot()), QStringList({"Ann", "Friends", "folder"}));
    QCOMPARE(_folder->childAtIndex(0)->title(), QStringLiteral("Ann"));
    // A member of what is not shown here is nobody's.
    const auto elsewhere = ListStage::group(QStringLiteral("Elsewhere"), {ListStage::person(QStringLiteral("Bob"))});
    elsewhere->ensureUpToDate();
    const std::unique_ptr<QMimeData> others(
        _pad->source->outlineViewWriteItems(_pad->view, {elsewhere->childAtIndex(0)}));
    QVERIFY(!_pad->source->outlineViewAcceptDrop(_pad->view, *others, {_folder, 0}));
}

void ScratchpadDropTest::groupWithinAGroup()
{
    const auto ann = ListStage::person(QStringLiteral("Ann"));
    const auto inner = ListStage::group(QStringLiteral("Inner"), {ann});
    ListStage::contacts().set(MemoryContacts::group(QStringLiteral("outer"), QStringLiteral("Outer"), {inner->uuid()}));
    const auto outer = WayfoldBookmarkABGroup::bookmarkWithID(QStringLiteral("outer"));
    _pad->showItems({outer, _folder});
    _pad->view.expandItem(outer);
    const std::unique_ptr<QMimeData> data(_pad->source->outlineViewWriteItems(_pad->view, {outer->childAtIndex(0)}));
    QVERIFY(_pad->source->outlineViewAcceptDrop(_pad->view, *data, {nullptr, 2}));
    const KDRBookmarkPtr own = ListStage::store().bookmarkRoot()->lastChild();
    _pad->view.expandItem(own);
    QCOMPARE(rowsOf(*_pad), QStringList({"Outer", "-Inner", "folder", "-inner", "-x", "Inner", "-Ann"}));
    ListStage::contacts().take(QStringLiteral("outer"));
}

// Its members are not saved, so they need no room in the file.
void ScratchpadDropTest::largeGroupFitsAnywhere()
{
    const WayfoldBookmarkFolderPtr deep = chain(520);
    WayfoldBookmarkFolderPtr bottom = deep;
    while (!bottom->isEmpty())
        bottom = WayfoldBookmarkFolder::fromItem(bottom->childAtIndex(0));
    const auto inner = ListStage::group(QStringLiteral("Inner"), {ListStage::person(QStringLiteral("Ann"))});
    ListStage::contacts().set(MemoryContacts::group(QStringLiteral("outer"), QStringLiteral("Outer"), {inner->uuid()}));
    const auto outer = WayfoldBookmarkABGroup::bookmarkWithID(QStringLiteral("outer"));
    outer->ensureUpToDate();
    _pad->showItems({deep, outer});
    int room = 0;
    for (WayfoldBookmarkFolderPtr at = bottom; at; at = at->parent(), ++room) {
        const auto note = ListStage::note(QStringLiteral("n"));
        ListStage::store().bookmarkRoot()->addChild(note);
        setString(PasteboardTypes::KDRBookmark, note->uuid());
        const bool takesNote = drop({at, 0});
        setString(PasteboardTypes::KDRBookmark, outer->uuid());
        QCOMPARE(drop({at, 0}), takesNote);
        if (takesNote)
            break;
    }
    QVERIFY(room > 0); // it was tried at the edge
    ListStage::contacts().take(QStringLiteral("outer"));
}

void ScratchpadDropTest::dictionaries()
{
    const auto link = ListStage::link(QStringLiteral("Link"));
    const auto tree = ListStage::folder(QStringLiteral("Tree"), {ListStage::note(QStringLiteral("Leaf"))});
    setList(PasteboardTypes::BookmarkDictionaryList, {link->createDictionary(false), tree->createDictionary(false)});
    QVERIFY(drop({nullptr, 1}));
    const auto root = ListStage::store().bookmarkRoot();
    QCOMPARE(ListStage::titles(root).mid(0, 4),
             QStringList({QStringLiteral("a"), QStringLiteral("Link"), QStringLiteral("Tree"), QStringLiteral("b")}));
    QVERIFY(root->childAtIndex(1) != link); // a copy
    QCOMPARE(root->childAtIndex(1)->type(), KDRBookmark::WebLinkType);
    QCOMPARE(ListStage::titles(WayfoldBookmarkFolder::fromItem(root->childAtIndex(2))),
             QStringList{QStringLiteral("Leaf")});
    setList(PasteboardTypes::BookmarkDictionaryList, {});
    QVERIFY(!drop({nullptr, 0}));
}

void ScratchpadDropTest::dictionariesOfNothing()
{
    const QVariantMap nothing;
    const QVariantMap emptyFolder = {{QStringLiteral("Children"), QVariantList()}};
    const QStringList before = rowsOf(*_pad);
    setList(PasteboardTypes::BookmarkDictionaryList, {nothing, emptyFolder});
    QVERIFY(!drop({nullptr, 0}));
    QCOMPARE(rowsOf(*_pad), before);
    QVERIFY(_stage->savedFile().isEmpty());

    const auto link = ListStage::link(QStringLiteral("Link"));
    setList(PasteboardTypes::BookmarkDictionaryList, {nothing, link->createDictionary(false), emptyFolder});
    QVERIFY(drop({nullptr, 0}));
    QCOMPARE(rowsOf(*_pad), QStringList(QStringLiteral("Link")) + before);
}

// Without a title they would be gone after the next start.
void ScratchpadDropTest::dictionariesWithoutATitle()
{
    QVariantMap link = ListStage::link(QStringLiteral(""), QStringLiteral("http://a/b"))->createDictionary(false);
    QVariantMap folder =
        ListStage::folder(QStringLiteral(""), {ListStage::note(QStringLiteral("In it"))})->createDictionary(false);
    setList(PasteboardTypes::BookmarkDictionaryList, {link, folder});
    QVERIFY(drop({nullptr, 0}));
    QCOMPARE(rowsOf(*_pad).mid(0, 2), QStringList({QStringLiteral("/b"), QStringLiteral("Untitled Folder")}));
    const auto saved = WayfoldBookmarkFolder::bookmarkFromDictionaryFile(ListStage::store().bookmarkFilePath());
    QCOMPARE(saved->childAtIndex(0)->valueAsString(), QStringLiteral("http://a/b"));
    QCOMPARE(ListStage::titles(WayfoldBookmarkFolder::fromItem(saved->childAtIndex(1))),
             QStringList{QStringLiteral("In it")});
}

// What they call themselves does not keep them from being read again; what else they say stays.
void ScratchpadDropTest::dictionariesOfUnknownKinds()
{
    QVariantMap link = ListStage::link(QStringLiteral("Link"), QStringLiteral("http://a/b"))->createDictionary(false);
    QVariantMap folder =
        ListStage::folder(QStringLiteral("Tree"), {ListStage::note(QStringLiteral("In it"))})->createDictionary(false);
    for (QVariantMap *dictionary : {&link, &folder}) {
        dictionary->insert(QStringLiteral("WebBookmarkType"), QStringLiteral("Newer"));
        dictionary->insert(QStringLiteral("Colour"), QStringLiteral("red"));
    }
    setList(PasteboardTypes::BookmarkDictionaryList, {link, folder});
    QVERIFY(drop({nullptr, 0}));
    const auto saved = WayfoldBookmarkFolder::bookmarkFromDictionaryFile(ListStage::store().bookmarkFilePath());
    QCOMPARE(ListStage::titles(saved).mid(0, 2), QStringList({QStringLiteral("Link"), QStringLiteral("Tree")}));
    for (const unsigned index : {0U, 1U}) {
        const QVariantMap dictionary = saved->childAtIndex(index)->createDictionary(true);
        QCOMPARE(dictionary.value(QStringLiteral("Colour")), QVariant(QStringLiteral("red")));
    }
}

// Beside the item's own dictionary and the list around it there is room for this many.
void ScratchpadDropTest::unknownValuesTooDeepToBeSaved()
{
    const auto nested = [](int depth) {
        QVariant value = 1;
        for (int i = 0; i < depth; ++i)
            value = QVariantList{value};
        return value;
    };
    const auto root = ListStage::store().bookmarkRoot();
    for (const bool isEntry : {false, true}) {
        const int fitting = PropertyList::maximumDepth - (isEntry ? 4 : 3);
        for (const int depth : {fitting, fitting + 1}) {
            QVariantMap dictionary = ListStage::folder(QStringLiteral("Deep"))->createDictionary(false);
            if (isEntry)
                dictionary.insert(QStringLiteral("Children"), QVariantList{nested(depth)});
            else
                dictionary.insert(QStringLiteral("Unknown"), nested(depth));
            setList(PasteboardTypes::BookmarkDictionaryList, {dictionary});
            QCOMPARE(drop({nullptr, 0}), depth == fitting);
            QVERIFY(ListStage::store().saveBookmarkFile());
        }
        // Below another folder there is no room for it.
        const KDRBookmarkPtr deep = root->childAtIndex(0)->copy();
        QVERIFY(SavedDepth::fits(*root, *deep));
        QVERIFY(!SavedDepth::fits(*_folder, *deep));
        QVERIFY(!SavedDepth::fits(*root, *ListStage::folder(QStringLiteral("Outer"), {deep})));
    }
}

void ScratchpadDropTest::pagesKnownByTheirAddressesAlone()
{
    setList(PasteboardTypes::BookmarkDictionaryList, {QVariantMap(), QVariantMap()});
    _data->setData(QStringLiteral("text/uri-list"), "http://a/b\r\nhttp://a/c\r\n");
    QVERIFY(drop({nullptr, 0}));
    QCOMPARE(rowsOf(*_pad).mid(0, 3), QStringList({QStringLiteral("/b"), QStringLiteral("/c"), QStringLiteral("a")}));
    setMozilla(QStringLiteral("http://a/d\nD page\nhttp://a/e\n"));
    QVERIFY(drop({nullptr, 0}));
    QCOMPARE(rowsOf(*_pad).mid(0, 3),
             QStringList({QStringLiteral("D page"), QStringLiteral("/e"), QStringLiteral("/b")}));
    // Only when nothing came of the dictionaries.
    setList(PasteboardTypes::BookmarkDictionaryList,
            {ListStage::link(QStringLiteral("Link"))->createDictionary(false), QVariantMap()});
    QVERIFY(drop({nullptr, 0}));
    QCOMPARE(rowsOf(*_pad).mid(0, 2), QStringList({QStringLiteral("Link"), QStringLiteral("D page")}));
}

void ScratchpadDropTest::severalVisits()
{
    WayfoldHistoryOutlineView history;
    QVERIFY(dropFrom(history, {ListStage::history(QStringLiteral("One")), ListStage::history(QStringLiteral("Two"))}));
    QCOMPARE(rowsOf(*_pad).mid(0, 3), QStringList({QStringLiteral("One"), QStringLiteral("Two"), QStringLiteral("a")}));
    QCOMPARE(first()->type(), KDRBookmark::WebLinkType);
    QCOMPARE(first()->valueAsString(), QStringLiteral("http://www.example.com/visited"));
    QCOMPARE(ListStage::titles(_pad->view.selectedItemList()),
             QStringList({QStringLiteral("One"), QStringLiteral("Two")}));
    const auto saved = WayfoldBookmarkFolder::bookmarkFromDictionaryFile(ListStage::store().bookmarkFilePath());
    QCOMPARE(ListStage::titles(saved).mid(0, 2), QStringList({QStringLiteral("One"), QStringLiteral("Two")}));
}

// A day of the history, with its pages, beside a single page.
void ScratchpadDropTest::foldersOfVisits()
{
    const auto site = ListStage::folder(
        QStringLiteral("a.org"), {ListStage::history(QStringLiteral("Second")), ListStage::link(QStringLiteral("L"))});
    const auto day = ListStage::folder(QStringLiteral("Monday"), {ListStage::history(QStringLiteral("First")), site});
    WayfoldHistoryOutlineView history;
    QVERIFY(dropFrom(history, {day, ListStage::history(QStringLiteral("Single"))}));
    QCOMPARE(rowsOf(*_pad).mid(0, 3),
             QStringList({QStringLiteral("Monday"), QStringLiteral("Single"), QStringLiteral("a")}));
    const auto copy = WayfoldBookmarkFolder::fromItem(first());
    QVERIFY(copy != day);
    QCOMPARE(ListStage::titles(copy), QStringList({QStringLiteral("First"), QStringLiteral("a.org")}));
    QCOMPARE(copy->childAtIndex(0)->type(), KDRBookmark::WebLinkType);
    QCOMPARE(ListStage::titles(WayfoldBookmarkFolder::fromItem(copy->childAtIndex(1))),
             QStringList({QStringLiteral("Second"), QStringLiteral("L")}));
    QCOMPARE(day->childAtIndex(0)->type(), KDRBookmark::HistoryEntryType); // as it was

    QVERIFY(dropFrom(history, {site}));
    QCOMPARE(rowsOf(*_pad).mid(0, 2), QStringList({QStringLiteral("a.org"), QStringLiteral("Monday")}));
    QCOMPARE(WayfoldBookmarkFolder::fromItem(first())->childCount(), 2U);
}

// The root and 511 folders are as much as a file can hold.
void ScratchpadDropTest::treeThatIsTooDeepToBeSaved()
{
    const auto link = ListStage::link(QStringLiteral("Link"));
    const QVariantMap deep = chain(511)->createDictionary(false);
    const QStringList before = ListStage::titles(_folder);

    setList(PasteboardTypes::BookmarkDictionaryList, {deep});
    QVERIFY(!drop({_folder, 0}));
    QCOMPARE(ListStage::titles(_folder), before);
    setList(PasteboardTypes::BookmarkDictionaryList, {deep, link->createDictionary(false)});
    QVERIFY(drop({_folder, 0})); // the others are taken
    QCOMPARE(ListStage::titles(_folder), QStringList(QStringLiteral("Link")) + before);
    QVERIFY(ListStage::store().saveBookmarkFile());

    setList(PasteboardTypes::BookmarkDictionaryList, {deep});
    QVERIFY(drop({nullptr, 0}));
    QVERIFY(ListStage::store().saveBookmarkFile());
    ItemFileReading reading;
    const auto saved = WayfoldBookmarkFolder::readDictionaryFile(ListStage::store().bookmarkFilePath(), &reading);
    QVERIFY(reading.readable);
    QCOMPARE(saved->deepChildCount(), ListStage::store().bookmarkRoot()->deepChildCount());
}

void ScratchpadDropTest::movedTooDeepToBeSaved()
{
    const auto moved = chain(256);
    const auto other = chain(256);
    auto bottom = other;
    while (bottom->childCount() != 0)
        bottom = WayfoldBookmarkFolder::fromItem(bottom->childAtIndex(0));
    ListStage::store().bookmarkRoot()->addChild(moved);
    ListStage::store().bookmarkRoot()->addChild(other);

    setString(PasteboardTypes::KDRBookmark, moved->uuid());
    QVERIFY(!drop({bottom, 0}));
    _data = std::make_unique<QMimeData>();
    setList(PasteboardTypes::KDRBookmarkList, {moved->uuid(), _a->uuid()});
    QVERIFY(drop({bottom, 0})); // the other one moves
    QCOMPARE(ListStage::titles(bottom), QStringList(QStringLiteral("a")));
    QVERIFY(moved->parent() == ListStage::store().bookmarkRoot());
    QVERIFY(ListStage::store().saveBookmarkFile());

    const auto shorter = WayfoldBookmarkFolder::fromItem(moved->childAtIndex(0));
    setString(PasteboardTypes::KDRBookmark, shorter->uuid());
    QVERIFY(drop({bottom, 0}));
    QVERIFY(shorter->parent() == bottom);
    QVERIFY(ListStage::store().saveBookmarkFile());
}

void ScratchpadDropTest::nothingGoesTooDeepToBeSaved_data()
{
    QTest::addColumn<QString>("type");
    QTest::newRow("text") << PasteboardTypes::NSStringPboardType;
    QTest::newRow("address") << PasteboardTypes::NSURLPboardType;
}

void ScratchpadDropTest::nothingGoesTooDeepToBeSaved()
{
    QFETCH(QString, type);
    const auto outermost = chain(511);
    ListStage::store().bookmarkRoot()->addChild(outermost);
    auto last = outermost;
    while (last->childCount() != 0)
        last = WayfoldBookmarkFolder::fromItem(last->childAtIndex(0));
    setString(type, QStringLiteral("http://www.example.com/"));
    QVERIFY(!drop({last, 0}));
    QCOMPARE(last->childCount(), 0U);
    QVERIFY(drop({last->parent(), 0}));
    QCOMPARE(last->parent()->childCount(), 2U);
    QVERIFY(ListStage::store().saveBookmarkFile());
}

void ScratchpadDropTest::urlsWithTitles()
{
    const QVariantList addresses = {QStringLiteral("http://a/one"), QStringLiteral(""), QStringLiteral("mailto:ann"),
                                    QStringLiteral("http://a/two%20b"), QStringLiteral("http://a")};
    const QVariantList titles = {QStringLiteral("One"), QStringLiteral("Nothing"), QStringLiteral("")};
    setList(PasteboardTypes::WebURLsWithTitles, {QVariant(addresses), QVariant(titles)});
    QVERIFY(drop({nullptr, 0}));
    QCOMPARE(ListStage::titles(ListStage::store().bookmarkRoot()).mid(0, 5),
             QStringList({QStringLiteral("One"), QStringLiteral("mailto:ann"), QStringLiteral("/two b"),
                          QStringLiteral("http://a"), QStringLiteral("a")}));
    QCOMPARE(ListStage::store().bookmarkRoot()->childAtIndex(1)->type(), KDRBookmark::EmailLinkType);
    setList(PasteboardTypes::WebURLsWithTitles, {QVariant(QVariantList{QStringLiteral("")}), QVariant(titles)});
    QVERIFY(!drop({nullptr, 0}));
    setList(PasteboardTypes::WebURLsWithTitles, {});
    QVERIFY(!drop({nullptr, 0}));
}

void ScratchpadDropTest::url_data()
{
    QTest::addColumn<QString>("address");
    QTest::addColumn<QString>("title"); // none: refused
    QTest::newRow("page") << QStringLiteral("http://a.org/b%20c?d") << QStringLiteral("/b c");
    QTest::newRow("mail") << QStringLiteral("mailto:ann") << QStringLiteral("mailto:ann");
    QTest::newRow("no path") << QStringLiteral("http://a.org") << QStringLiteral("http://a.org");
    QTest::newRow("empty") << QStringLiteral("") << QString();
}

void ScratchpadDropTest::url()
{
    QFETCH(QString, address);
    QFETCH(QString, title);
    setString(PasteboardTypes::NSURLPboardType, address);
    QCOMPARE(drop({nullptr, 0}), !title.isNull());
    if (title.isNull())
        return;
    QCOMPARE(first()->title(), title);
    QCOMPARE(first()->valueAsString(), address);
}

void ScratchpadDropTest::fileNames()
{
    setList(PasteboardTypes::NSFilenamesPboardType,
            {QStringLiteral("/tmp/a b.txt"), QStringLiteral(""), QStringLiteral("~/notes/")});
    QVERIFY(drop({nullptr, 0}));
    const auto root = ListStage::store().bookmarkRoot();
    QCOMPARE(ListStage::titles(root).mid(0, 3),
             QStringList({QStringLiteral("a b.txt"), QStringLiteral("notes"), QStringLiteral("a")}));
    QCOMPARE(root->childAtIndex(0)->type(), KDRBookmark::FileLinkType);
    QCOMPARE(root->childAtIndex(0)->valueAsString(), QStringLiteral("file:///tmp/a%20b.txt"));
    QVERIFY(root->childAtIndex(1)->valueAsString().startsWith(QStringLiteral("file://") + _stage->home.path()));

    _stage->removeSavedFile();
    setList(PasteboardTypes::NSFilenamesPboardType, {QStringLiteral("")});
    QVERIFY(drop({nullptr, 0})); // all skipped, yet accepted
    QVERIFY(_stage->savedFile().isEmpty());
    setList(PasteboardTypes::NSFilenamesPboardType, {});
    QVERIFY(!drop({nullptr, 0}));
}

void ScratchpadDropTest::text_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("title");
    const QString letters(40, u'x');
    QTest::newRow("short") << QStringLiteral("words") << QStringLiteral("words");
    QTest::newRow("29") << letters.left(29) << letters.left(29);
    QTest::newRow("30") << letters.left(30) << letters.left(30) + QStringLiteral("...");
    const QString face = QString::fromUtf8("\xf0\x9f\x98\x80"); // one letter of two units
    QTest::newRow("a letter across the cut")
        << letters.left(29) + face + letters.left(5) << letters.left(29) + QStringLiteral("...");
    QTest::newRow("a letter before the cut")
        << letters.left(28) + face + letters.left(5) << letters.left(28) + face + QStringLiteral("...");
    QTest::newRow("a letter at the end") << letters.left(28) + face << letters.left(28) + face + QStringLiteral("...");
    QTest::newRow("40") << letters << letters.left(30) + QStringLiteral("...");
}

void ScratchpadDropTest::text()
{
    QFETCH(QString, text);
    QFETCH(QString, title);
    setString(PasteboardTypes::NSStringPboardType, text);
    QVERIFY(drop({nullptr, 0}));
    QCOMPARE(first()->type(), KDRBookmark::NoteType);
    QCOMPARE(first()->title(), title);
    QCOMPARE(first()->valueAsString(), text);
    setString(PasteboardTypes::NSStringPboardType, QStringLiteral(""));
    QVERIFY(!drop({nullptr, 0}));
}

void ScratchpadDropTest::firstOfferedTypeCounts()
{
    setString(PasteboardTypes::NSStringPboardType, QStringLiteral("words"));
    setString(PasteboardTypes::NSURLPboardType, QStringLiteral("http://a/b"));
    QVERIFY(drop({nullptr, 0}));
    QCOMPARE(first()->title(), QStringLiteral("/b"));
    // An item of another Scratchpad is unknown here, and nothing else is made of it.
    setString(PasteboardTypes::KDRBookmark, QStringLiteral("unknown"));
    QVERIFY(!drop({nullptr, 0}));
}

void ScratchpadDropTest::typesInOrder_data()
{
    QTest::addColumn<int>("first"); // from which type on the data offers all
    QTest::addColumn<bool>("dropped");
    QTest::addColumn<QString>("made"); // kind and title of what stands first then
    int first = 0;
    QTest::newRow("an item of the list") << first++ << true << QStringLiteral("4 b");
    QTest::newRow("items of the list") << first++ << true << QStringLiteral("4 c");
    QTest::newRow("people") << first++ << false << QStringLiteral("4 a"); // none, and nothing else is made
    QTest::newRow("groups") << first++ << true << QStringLiteral("4 a");  // nobody knows them
    QTest::newRow("dictionaries") << first++ << true << QStringLiteral("1 Tree");
    QTest::newRow("addresses with titles") << first++ << true << QStringLiteral("2 A page");
    QTest::newRow("address") << first++ << true << QStringLiteral("2 /url");
    QTest::newRow("file names") << first++ << true << QStringLiteral("3 file");
    QTest::newRow("text") << first++ << true << QStringLiteral("4 words");
}

void ScratchpadDropTest::typesInOrder()
{
    QFETCH(int, first);
    QFETCH(bool, dropped);
    QFETCH(QString, made);
    const QVariantList page = {QVariant(QVariantList{QStringLiteral("http://a/web")}),
                               QVariant(QVariantList{QStringLiteral("A page")})};
    const std::vector<std::function<void()>> types = {
        [&] { setString(PasteboardTypes::KDRBookmark, _b->uuid()); },
        [&] { setList(PasteboardTypes::KDRBookmarkList, {_c->uuid()}); },
        [&] { setList(PasteboardTypes::ABPeopleUIDs, {}); },
        [&] { setList(PasteboardTypes::ABGroupsUIDs, {QStringLiteral("unknown")}); },
        [&] {
            setList(PasteboardTypes::BookmarkDictionaryList,
                    {ListStage::folder(QStringLiteral("Tree"))->createDictionary(false)});
        },
        [&] { setList(PasteboardTypes::WebURLsWithTitles, page); },
        [&] { setString(PasteboardTypes::NSURLPboardType, QStringLiteral("http://a/url")); },
        [&] { setList(PasteboardTypes::NSFilenamesPboardType, {QStringLiteral("/tmp/file")}); },
        [&] { setString(PasteboardTypes::NSStringPboardType, QStringLiteral("words")); },
    };
    for (std::size_t type = std::size_t(first); type < types.size(); ++type)
        types[type]();
    QCOMPARE(drop({nullptr, 0}), dropped);
    QCOMPARE(QStringLiteral("%1 %2").arg(int(this->first()->type())).arg(this->first()->title()), made);
}

void ScratchpadDropTest::nothingOffered()
{
    _data->setData(QStringLiteral("image/png"), "x");
    QVERIFY(!drop({nullptr, 0}));
}

void ScratchpadDropTest::smartFolderTakesNothing()
{
    const auto smart = WayfoldAutoFolder::bookmarkWithTitle(QStringLiteral("Smart"));
    _pad->showItems({smart});
    setString(PasteboardTypes::NSStringPboardType, QStringLiteral("words"));
    QVERIFY(!drop({smart, 0}));
    QCOMPARE(smart->childCount(), 0U);
}

// --- Other applications ---------------------------------------------------------------------------------------------

void ScratchpadDropTest::foreign_data()
{
    QTest::addColumn<QString>("addresses"); // lines
    QTest::addColumn<QString>("mozilla");   // lines of address and title
    QTest::addColumn<QString>("text");
    QTest::addColumn<QStringList>("made"); // kind and title
    const QString none;
    QTest::newRow("a link with its title") << QStringLiteral("http://a/b") << QStringLiteral("http://a/b\nA page")
                                           << QStringLiteral("http://a/b") << QStringList{QStringLiteral("2 A page")};
    QTest::newRow("a link") << QStringLiteral("http://a/b") << none << QStringLiteral("http://a/b")
                            << QStringList{QStringLiteral("2 /b")};
    QTest::newRow("a link with its text") << QStringLiteral("http://a/b") << none << QStringLiteral("The\n page")
                                          << QStringList{QStringLiteral("2 The page")};
    QTest::newRow("a link around a picture") << QStringLiteral("http://a/b") << none << QStringLiteral("http://a/c.png")
                                             << QStringList{QStringLiteral("2 /b")};
    QTest::newRow("a mail with its address") << QStringLiteral("mailto:ann") << none << QStringLiteral("mailto:ann")
                                             << QStringList{QStringLiteral("5 mailto:ann")};
    QTest::newRow("a file with its path")
        << QStringLiteral("file:///tmp/a") << none << QStringLiteral("/tmp/a") << QStringList{QStringLiteral("3 a")};
    QTest::newRow("links") << QStringLiteral("# two of them\r\nhttp://a/b\r\nhttp://a/c\r\n") << none << none
                           << QStringList{QStringLiteral("2 /b"), QStringLiteral("2 /c")};
    QTest::newRow("links, one of them none")
        << none << QStringLiteral("http://a/b\nOne\nhttp://[\nTwo\nhttp://a/c\nThree") << none
        << QStringList{QStringLiteral("2 One"), QStringLiteral("2 Three")};
    QTest::newRow("files") << QStringLiteral("file:///tmp/a%20b\r\nfile:///tmp/c\r\n") << none << none
                           << QStringList{QStringLiteral("3 a b"), QStringLiteral("3 c")};
    QTest::newRow("a mail") << QStringLiteral("mailto:ann") << none << none
                            << QStringList{QStringLiteral("5 mailto:ann")};
    QTest::newRow("an address with letters that may not stand in one")
        << QString::fromUtf8("http://a/f\xc3\xbcnf") << none << none
        << QStringList{QString::fromUtf8("2 /f\xc3\xbcnf")};
    QTest::newRow("text") << none << none << QStringLiteral("words") << QStringList{QStringLiteral("4 words")};
}

void ScratchpadDropTest::foreign()
{
    QFETCH(QString, addresses);
    QFETCH(QString, mozilla);
    QFETCH(QString, text);
    QFETCH(QStringList, made);
    if (!addresses.isNull())
        _data->setData(QStringLiteral("text/uri-list"), addresses.toUtf8());
    if (!mozilla.isNull())
        setMozilla(mozilla);
    if (!text.isNull())
        _data->setText(text);
    Target target = {nullptr, 0};
    QCOMPARE(validate(target), Qt::CopyAction);
    QVERIFY(drop(target));
    QStringList found;
    for (const KDRBookmarkPtr &item : ListStage::store().bookmarkRoot()->children()) {
        if (item == _a)
            break;
        found.append(QStringLiteral("%1 %2").arg(int(item->type())).arg(item->title()));
    }
    QCOMPARE(found, made);
}

// --- Cards ----------------------------------------------------------------------------------------------------------

void ScratchpadDropTest::cardOfAContact_data()
{
    QTest::addColumn<QByteArray>("card");
    QTest::addColumn<bool>("isKnown");
    QTest::newRow("same identifier") << ListStage::card("ann", "Anna", "Smith", "new@b.org") << true;
    QTest::newRow("same name and address") << ListStage::card("other", "Ann", "Miller", "ANN@a.org") << true;
    QTest::newRow("without identifier") << ListStage::card("", "Ann", "Miller", "ann@a.org") << true;
    QTest::newRow("another's name") << ListStage::card("other", "Bob", "Miller", "ann@a.org") << false;
    QTest::newRow("another's address") << ListStage::card("other", "Ann", "Miller", "bob@a.org") << false;
    QTest::newRow("no address") << ListStage::card("", "Ann", "Miller", "") << false;
}

void ScratchpadDropTest::cardOfAContact()
{
    QFETCH(QByteArray, card);
    QFETCH(bool, isKnown);
    const ContactCleaner cleaner(MemoryContacts::person("ann", "Ann", "Miller", {"ann@a.org"}));
    _data->setData(QStringLiteral("text/vcard"), card);
    Target target = {nullptr, 0};
    QCOMPARE(validate(target), Qt::CopyAction);
    QVERIFY(drop(target));
    QCOMPARE(first()->type() == KDRBookmark::PersonType, isKnown);
    if (isKnown) {
        QCOMPARE(first()->title(), QStringLiteral("Ann Miller"));
        QCOMPARE(first()->uuid(), QStringLiteral("ann"));
    }
    QVERIFY(_pad->view.selectedItem() == first());
    QVERIFY(!_stage->savedFile().isEmpty());
}

void ScratchpadDropTest::cardsOfOtherPrograms_data()
{
    using Formats = std::vector<std::pair<QString, QByteArray>>;
    QTest::addColumn<Formats>("formats");
    const QByteArray ann = ListStage::card("ann", "Ann", "Miller", "ann@a.org");
    const QByteArray bob = ListStage::card("", "Bob", "Brown", "bob@a.org");
    const QByteArray both = ann + "\r\n\r\n" + bob; // as address books put several together
    QTest::newRow("by its present name") << Formats{{"text/vcard", both}};
    QTest::newRow("by its old name") << Formats{{"text/x-vcard", both}};
    QTest::newRow("by its first name") << Formats{{"text/directory", both}};
    QTest::newRow("in capital letters") << Formats{{"TEXT/X-VCARD", both}};
    QTest::newRow("with its character set") << Formats{{"text/x-vcard;charset=utf-8", both}};
    QTest::newRow("with the address book that it comes from")
        << Formats{{"text/x-source-vcard", "1700000000.1234.0@host\n" + both}, {"text/x-vcard", both}};
    QTest::newRow("beside names and addresses")
        << Formats{{"moz/abcard", "0"},
                   {"text/x-moz-address", "Ann Miller <ann@a.org>,Bob Brown <bob@a.org>"},
                   {"text/plain", "Ann Miller <ann@a.org>,Bob Brown <bob@a.org>"},
                   {"text/vcard", both},
                   {"application/x-moz-file-promise-dest-filename", "Ann Miller.vcf"}};
    QTest::newRow("beside a link to it") << Formats{{"text/uri-list", "akonadi:?item=12&type=text/directory\r\n"},
                                                    {"text/directory", both}};
    QTest::newRow("in several versions") << Formats{{"text/directory", "BEGIN:VCARD\r\nEND:VCARD\r\n"},
                                                    {"text/vcard", both}};
    QTest::newRow("in UTF-16") << Formats{
        {"text/vcard",
         QByteArray("\xff\xfe", 2) + QByteArray(reinterpret_cast<const char *>(QString::fromUtf8(both).utf16()),
                                                QString::fromUtf8(both).size() * 2)}};
}

void ScratchpadDropTest::cardsOfOtherPrograms()
{
    using Formats = std::vector<std::pair<QString, QByteArray>>;
    QFETCH(Formats, formats);
    const ContactCleaner cleaner(MemoryContacts::person("ann", "Ann", "Miller", {"ann@a.org"}));
    for (const auto &[format, data] : formats)
        _data->setData(format, data);
    Target target = {nullptr, 1};
    QCOMPARE(validate(target), Qt::CopyAction);
    QVERIFY(drop(target));
    QCOMPARE(rowsOf(*_pad).mid(0, 4), QStringList({"a", "Ann Miller", "Bob Brown", "b"}));
    const auto root = ListStage::store().bookmarkRoot();
    QCOMPARE(root->childAtIndex(1)->type(), KDRBookmark::PersonType);
    QCOMPARE(root->childAtIndex(2)->type(), KDRBookmark::EmailLinkType);
    QCOMPARE(root->childAtIndex(2)->valueAsString(), QStringLiteral("mailto:bob@a.org"));
}

void ScratchpadDropTest::cardsOfStrangers_data()
{
    QTest::addColumn<QByteArray>("lines");
    QTest::addColumn<QString>("made"); // kind and title
    QTest::addColumn<QString>("value");
    const QString whole; // the card itself
    QTest::newRow("name and address") << QByteArray("N:Brown;Bob;;;\nEMAIL:bob@a.org") << "5 Bob Brown"
                                      << "mailto:bob@a.org";
    QTest::newRow("the address that counts")
        << QByteArray("N:Brown;Bob;;;\nEMAIL:home@a.org\nEMAIL;TYPE=PREF:bob@a.org") << "5 Bob Brown"
        << "mailto:bob@a.org";
    QTest::newRow("company") << QByteArray("ORG:Kettles & Sons\nEMAIL:a@b.org") << "5 Kettles & Sons"
                             << "mailto:a@b.org";
    QTest::newRow("address alone") << QByteArray("EMAIL:a+b&c@b.org") << "5 a+b&c@b.org"
                                   << "mailto:a%2Bb%26c@b.org";
    QTest::newRow("no address") << QByteArray("N:Brown;Bob;;;\nTEL:123") << "4 Bob Brown" << whole;
    QTest::newRow("number alone") << QByteArray("TEL:123") << "4 123" << whole;
    QTest::newRow("nothing but a note") << QByteArray("UID:1\nNOTE:What was it\\, then?") << "4 Unnamed Person"
                                        << whole;
}

void ScratchpadDropTest::cardsOfStrangers()
{
    QFETCH(QByteArray, lines);
    QFETCH(QString, made);
    QFETCH(QString, value);
    const QByteArray card = "BEGIN:VCARD\nVERSION:3.0\n" + lines + "\nEND:VCARD\n";
    _data->setData(QStringLiteral("text/vcard"), QByteArray(card).replace("\n", "\r\n"));
    QVERIFY(drop({nullptr, 0}));
    QCOMPARE(QStringLiteral("%1 %2").arg(int(first()->type())).arg(first()->title()), made);
    QCOMPARE(first()->valueAsString(), value.isNull() ? QString::fromUtf8(card) : value);
}

void ScratchpadDropTest::cardOfAStrangerWhereLastNamesStandFirst()
{
    ListStage::contacts().ordering = ContactRecord::LastNameFirst;
    _data->setData(QStringLiteral("text/vcard"), ListStage::card("", "Bob", "Brown", "bob@a.org"));
    QVERIFY(drop({nullptr, 0}));
    QCOMPARE(first()->title(), QStringLiteral("Brown Bob"));
}

void ScratchpadDropTest::sameCardTwice()
{
    const QByteArray bob = ListStage::card("", "Bob", "Brown", "bob@a.org");
    _data->setData(QStringLiteral("text/vcard"), bob + bob);
    QVERIFY(drop({nullptr, 0}));
    QCOMPARE(rowsOf(*_pad).mid(0, 2), QStringList({"Bob Brown", "a"}));
}

void ScratchpadDropTest::cardOfAGroup()
{
    const QByteArray list = "BEGIN:VCARD\r\nVERSION:3.0\r\nUID:%1\r\nFN:Choir\r\nX-EVOLUTION-LIST:TRUE\r\n"
                            "EMAIL;X-EVOLUTION-DEST-EMAIL=ann@a.org:Ann <ann@a.org>\r\n"
                            "EMAIL;X-EVOLUTION-DEST-EMAIL=bob@a.org:Bob <bob@a.org>\r\nEND:VCARD\r\n";
    _data->setData(QStringLiteral("text/x-vcard"), list);
    QVERIFY(drop({nullptr, 0}));
    QCOMPARE(first()->type(), KDRBookmark::EmailLinkType);
    QCOMPARE(first()->title(), QStringLiteral("Choir"));
    QCOMPARE(first()->valueAsString(), QStringLiteral("mailto:ann@a.org,bob@a.org"));

    const auto known = ListStage::group(QStringLiteral("Choir"));
    _data->setData(QStringLiteral("text/x-vcard"), QByteArray(list).replace("%1", known->uuid().toUtf8()));
    QVERIFY(drop({nullptr, 0}));
    QCOMPARE(first()->type(), KDRBookmark::GroupType);
    QCOMPARE(first()->uuid(), known->uuid());
}

void ScratchpadDropTest::whatIsNoCard_data()
{
    QTest::addColumn<QByteArray>("data");
    QTest::newRow("nothing") << QByteArray();
    QTest::newRow("words") << QByteArray("words");
    QTest::newRow("without an end") << QByteArray("BEGIN:VCARD\r\nFN:Ann\r\n");
    QTest::newRow("zeros") << QByteArray(100, '\0');
    QByteArray endless;
    while (endless.size() <= CardFiles::maximumSize)
        endless += ListStage::card(QString::number(endless.size()), "Ann", "Miller", "ann@a.org");
    QTest::newRow("endless") << endless;
}

// What else there is counts then.
void ScratchpadDropTest::whatIsNoCard()
{
    QFETCH(QByteArray, data);
    _data->setData(QStringLiteral("text/vcard"), data);
    QVERIFY(!drop({nullptr, 0}));
    QVERIFY(_stage->savedFile().isEmpty());
    _data->setText(QStringLiteral("words"));
    QVERIFY(drop({nullptr, 0}));
    QCOMPARE(rowsOf(*_pad).mid(0, 2), QStringList({"words", "a"}));
}

void ScratchpadDropTest::ownTypesBeforeCards()
{
    _data->setData(QStringLiteral("text/vcard"), ListStage::card("", "Bob", "Brown", "bob@a.org"));
    setString(PasteboardTypes::NSStringPboardType, QStringLiteral("words"));
    QVERIFY(drop({nullptr, 0}));
    QCOMPARE(rowsOf(*_pad).mid(0, 2), QStringList({"words", "a"}));
}

void ScratchpadDropTest::cardFiles()
{
    const ContactCleaner cleaner(MemoryContacts::person("ann", "Ann", "Miller", {"ann@a.org"}));
    const QByteArray ann = ListStage::card("ann", "Ann", "Miller", "ann@a.org");
    const QByteArray bob = ListStage::card("", "Bob", "Brown", "bob@a.org");
    const QByteArray cy = ListStage::card("", "Cy", "Young", "cy@a.org");
    _stage->home.write(QStringLiteral("Ann Miller.vcf"), ann);
    _stage->home.write(QStringLiteral("two.VCard"), bob + cy);
    _stage->home.write(QStringLiteral("notes.txt"), cy);
    QList<QUrl> urls;
    for (const char *name : {"Ann Miller.vcf", "notes.txt", "two.VCard"})
        urls.append(QUrl::fromLocalFile(_stage->home.path(QString::fromLatin1(name))));
    urls[0].setHost(QStringLiteral("localhost"));
    urls[2].setHost(QSysInfo::machineHostName());
    _data->setUrls(urls);
    // As file managers do.
    _data->setData(QStringLiteral("x-special/gnome-copied-files"), "copy\n" + urls[0].toEncoded());
    _data->setText(urls[0].toLocalFile());
    Target target = {nullptr, 0};
    QCOMPARE(validate(target), Qt::CopyAction);
    QVERIFY(drop(target));
    QCOMPARE(rowsOf(*_pad).mid(0, 5), QStringList({"Ann Miller", "notes.txt", "Bob Brown", "Cy Young", "a"}));
    const auto root = ListStage::store().bookmarkRoot();
    QCOMPARE(root->childAtIndex(0)->type(), KDRBookmark::PersonType);
    QCOMPARE(root->childAtIndex(1)->type(), KDRBookmark::FileLinkType);
    QCOMPARE(root->childAtIndex(2)->type(), KDRBookmark::EmailLinkType);
    QCOMPARE(_pad->view.selectedItemCount(), 4);
}

void ScratchpadDropTest::filesThatStayFiles_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("no card") << "words.vcf";
    QTest::newRow("empty") << "empty.vcf";
    QTest::newRow("too large") << "large.vcf";
    QTest::newRow("pipe") << "pipe.vcf";
    QTest::newRow("folder") << "folder.vcf";
    QTest::newRow("missing") << "missing.vcf";
    QTest::newRow("link to nothing") << "lost.vcf";
    QTest::newRow("unreadable") << "device.vcf";
    QTest::newRow("on another machine") << "//elsewhere/ann.vcf";
    QTest::newRow("another name") << "ann.txt";
}

void ScratchpadDropTest::filesThatStayFiles()
{
    QFETCH(QString, name);
    const QByteArray ann = ListStage::card("", "Ann", "Miller", "ann@a.org");
    const TemporaryHome &home = _stage->home;
    home.write(QStringLiteral("ann.txt"), ann);
    home.write(QStringLiteral("ann.vcf"), ann);
    home.write(QStringLiteral("words.vcf"), "words");
    home.write(QStringLiteral("empty.vcf"), "");
    home.write(QStringLiteral("large.vcf"), ann + QByteArray(CardFiles::maximumSize, '\n'));
    QDir(home.path()).mkdir(QStringLiteral("folder.vcf"));
    QCOMPARE(::mkfifo(QFile::encodeName(home.path(QStringLiteral("pipe.vcf"))), 0600), 0);
    QFile::link(home.path(QStringLiteral("nothing.vcf")), home.path(QStringLiteral("lost.vcf")));
    QFile::link(QStringLiteral("/dev/zero"), home.path(QStringLiteral("device.vcf")));
    QUrl url = QUrl::fromLocalFile(home.path(name));
    if (name.startsWith(u'/')) {
        url = QUrl::fromLocalFile(home.path(QStringLiteral("ann.vcf")));
        url.setHost(QStringLiteral("elsewhere"));
    }
    _data->setUrls({url});
    QVERIFY(drop({nullptr, 0}));
    QCOMPARE(first()->type(), KDRBookmark::FileLinkType);
    QCOMPARE(first()->title(), name.section(u'/', -1));
    QVERIFY(ListStage::store().bookmarkRoot()->childAtIndex(1) == _a);
}

void ScratchpadDropTest::cardFilesAreReadUpToAMost()
{
    QByteArray filler = ListStage::card("", "Filler", "", "f@a.org");
    filler.replace("END:VCARD", "NOTE:" + QByteArray(int(CardFiles::maximumSize / 3), 'x') + "\r\nEND:VCARD");
    QList<QUrl> urls;
    for (int i = 0; i < 4; ++i) {
        const QString name = QStringLiteral("%1.vcf").arg(i);
        _stage->home.write(name, QByteArray(filler).replace("Filler", "Card" + QByteArray::number(i)));
        urls.append(QUrl::fromLocalFile(_stage->home.path(name)));
    }
    _data->setUrls(urls);
    QVERIFY(drop({nullptr, 0}));
    QCOMPARE(rowsOf(*_pad).mid(0, 5), QStringList({"Card0", "Card1", "2.vcf", "3.vcf", "a"}));
}

void ScratchpadDropTest::cardFileWithoutContacts()
{
    ListStage::contacts().presentState = ContactStore::Absent;
    _stage->home.write(QStringLiteral("ann.vcf"), ListStage::card("", "Ann", "Miller", "ann@a.org"));
    _data->setUrls({QUrl::fromLocalFile(_stage->home.path(QStringLiteral("ann.vcf")))});
    QVERIFY(drop({nullptr, 0}));
    QCOMPARE(first()->type(), KDRBookmark::FileLinkType);
    // What is no file is what can be made of it.
    _data->clear();
    _data->setData(QStringLiteral("text/vcard"), ListStage::card("", "Ann", "Miller", "ann@a.org"));
    QVERIFY(drop({nullptr, 0}));
    QCOMPARE(first()->type(), KDRBookmark::EmailLinkType);
}

// A link to such a file, dragged from another list, stays one.
void ScratchpadDropTest::cardFileFromAList()
{
    _stage->home.write(QStringLiteral("ann.vcf"), ListStage::card("", "Ann", "Miller", "ann@a.org"));
    WayfoldHistoryOutlineView history;
    const auto file = ListStage::file(QStringLiteral("Ann"), _stage->home.path(QStringLiteral("ann.vcf")));
    QVERIFY(dropFrom(history, {file}));
    QCOMPARE(first()->type(), KDRBookmark::FileLinkType);
    QVERIFY(dropFrom(history, {file, ListStage::file(QStringLiteral("Bob"), QStringLiteral("/tmp/bob.vcf"))}));
    QCOMPARE(first()->type(), KDRBookmark::FileLinkType);
    setList(PasteboardTypes::NSFilenamesPboardType, {_stage->home.path(QStringLiteral("ann.vcf"))});
    QVERIFY(drop({nullptr, 0}));
    QCOMPARE(first()->type(), KDRBookmark::FileLinkType);
}

// --- Afterwards -----------------------------------------------------------------------------------------------------

void ScratchpadDropTest::dropsAreSelectedSavedAndShownElsewhere()
{
    Scratchpad other(*_stage);
    other.drawer.reloadCount = 0;
    _pad->drawer.reloadCount = 0;
    _pad->select({_a});
    setString(PasteboardTypes::NSStringPboardType, QStringLiteral("Dropped words"));
    QVERIFY(drop({_folder, 0}));
    QCOMPARE(ListStage::titles(_pad->view.selectedItemList()), QStringList{QStringLiteral("Dropped words")});
    QVERIFY(_stage->savedFile().contains("Dropped words"));
    other.view.expandItem(_folder);
    QCOMPARE(std::static_pointer_cast<KDRBookmark>(other.view.itemAtRow(other.view.rowForItem(_folder) + 1))->title(),
             QStringLiteral("Dropped words"));
    QCOMPARE(other.drawer.reloadCount, 0);
    QCOMPARE(_pad->drawer.reloadCount, 0);
}

void ScratchpadDropTest::indexOfADropOnAnItem()
{
    setString(PasteboardTypes::NSStringPboardType, QStringLiteral("top"));
    QVERIFY(drop({_folder, -1}));
    QCOMPARE(_folder->childAtIndex(0)->title(), QStringLiteral("top"));
    setString(PasteboardTypes::NSStringPboardType, QStringLiteral("end"));
    QVERIFY(drop({nullptr, -1}));
    QCOMPARE(ListStage::store().bookmarkRoot()->lastChild()->title(), QStringLiteral("end"));
}

void ScratchpadDropTest::dropOnASiteListBecomesPartOfTheTree()
{
    _pad->show(QStringLiteral("new.org"));
    setString(PasteboardTypes::NSStringPboardType, QStringLiteral("Dropped words"));
    QVERIFY(drop({nullptr, 0}));
    QVERIFY(ListStage::store().bookmarkRoot()->childWithTitle(QStringLiteral("new.org")));
    QVERIFY(_stage->savedFile().contains("Dropped words"));
}

void ScratchpadDropTest::dragFromAnotherListCopies()
{
    WayfoldOutlineView bookmarks; // takes no drops, so its drags carry none of the private types
    const auto link = ListStage::link(QStringLiteral("Of the browser"));
    WayfoldOutlineViewDataSource source;
    const std::unique_ptr<QMimeData> dragged(source.outlineViewWriteItems(bookmarks, {link}));
    QVERIFY(_pad->source->outlineViewAcceptDrop(_pad->view, *dragged, {nullptr, 0}));
    QCOMPARE(first()->title(), QStringLiteral("Of the browser"));
    QVERIFY(first() != link);
    QVERIFY(first()->uuid() != link->uuid());
}

void ScratchpadDropTest::folderAndFileFromAnotherList()
{
    WayfoldBookmarkOutlineView bookmarks;
    const auto tree = ListStage::folder(QStringLiteral("Tree"), {ListStage::link(QStringLiteral("Leaf"))});
    QVERIFY(dropFrom(bookmarks, {tree}));
    QCOMPARE(first()->title(), QStringLiteral("Tree"));
    QVERIFY(first()->isFolder());
    QCOMPARE(ListStage::titles(WayfoldBookmarkFolder::fromItem(first())), QStringList{QStringLiteral("Leaf")});

    QVERIFY(dropFrom(bookmarks, {ListStage::file(QStringLiteral("A letter"))}));
    QCOMPARE(first()->type(), KDRBookmark::FileLinkType);
    QCOMPARE(first()->title(), QStringLiteral("A letter")); // not the file's name
}

// One after the other would take quadratic time.
void ScratchpadDropTest::manyAreSelectedAtOnce()
{
    constexpr int many = 300;
    QVariantList links;
    for (int i = 0; i < many; ++i)
        links.append(ListStage::link(QString::number(i))->createDictionary(false));
    setList(PasteboardTypes::BookmarkDictionaryList, links);
    const QSignalSpy changes(_pad->view.selectionModel(), &QItemSelectionModel::selectionChanged);
    QVERIFY(drop({nullptr, 0}));
    QCOMPARE(_pad->view.selectedItemCount(), many);
    QVERIFY(changes.count() <= 3);
}

QTEST_MAIN(ScratchpadDropTest)
#include "ScratchpadDropTest.moc"
