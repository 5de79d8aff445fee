#include "lists/WayfoldOutlineViewDataSource.h"

#include "lists/DroppedData.h"
#include "lists/NoteViewer.h"
#include "lists/PasteboardTypes.h"
#include "lists/WayfoldOutlineView.h"
#include "platform/files/PropertyList.h"
#include "platform/widgets/Image.h"
#include "platform/widgets/TextFieldCell.h"
#include "tests/lists/ListStage.h"
#include "tests/support/LoggedMessages.h"

#include <QMimeData>

Q_DECLARE_METATYPE(std::vector<KDRBookmarkPtr>)

namespace
{
// A list like the Bookmarks and the History list: its items are dragged out, nothing is dropped.
class PlainSource : public WayfoldOutlineViewDataSource
{
public:
    WayfoldOutlineView view;
    WayfoldBookmarkFolderPtr root;

    PlainSource()
    {
        view.setDelegate(this);
        view.setOutlineDataSource(this);
    }
    ~PlainSource() override { view.setOutlineDataSource(nullptr); }
    WayfoldBookmarkFolderPtr localRootFolder() const override { return root; }
    WayfoldOutlineView *myOutlineView() const override { return const_cast<WayfoldOutlineView *>(&view); }
};

std::vector<OutlineItemPtr> rowsOf(const std::vector<KDRBookmarkPtr> &items)
{
    return {items.cbegin(), items.cend()};
}

QStringList declaredTypes(const QMimeData &data)
{
    QStringList types = data.formats();
    types.removeIf([](const QString &type) { return type.contains(QLatin1Char('/')); });
    types.sort();
    return types;
}

// A folder that counts how often it is asked to fill itself.
class CountingFolder : public WayfoldAutoFolder
{
public:
    int count = 0;
    void ensureUpToDate() override { ++count; }
};
} // namespace

class WayfoldOutlineViewDataSourceTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { _stage.emplace(); }
    void cleanup() { _stage.reset(); }

    void acceptableTypesInOrder();
    void baseHasNeitherRootNorView();
    void rowsComeFromTheTree();
    void nothingWithoutARoot();
    void foldersAreBroughtUpToDate();
    void cellsGetImageAndFont();
    void titlesAreNotEditedInPlace();
    void dropsAreRefused();

    void typesOfOneItem_data();
    void typesOfOneItem();
    void typesOfSeveralItems_data();
    void typesOfSeveralItems();
    void dataOfEachType();
    void dataOfSeveralItems();
    void dataOfPeople();
    void desktopTypesOfPeople();
    void desktopTypesOfGroups();
    void cardFileThatCannotBeWritten();
    void peopleComeBackAsThemselves();
    void dataOnlyDuringADrag();
    void dataOutlivesTheSource();
    void desktopTypes();
    void desktopTypesOfSeveralLinks();
    void desktopTypesOfVisits();
    void dictionariesHoldSmartFolders();
    void largeFoldersAreWrittenOnlyWhenAskedFor();

    void openNothing();
    void openFolders();
    void openGroups();
    void openPeople();
    void openPeopleWithACommand();
    void openWebLinksInTheCurrentFrame();
    void openWebLinksWithoutAFrame();
    void openInTheFrontWindow();
    void openFilesAndMails();
    void openNote();
    void openInTabs();
    void openInTabsOfAnEmptyWindow();
    void openSeveralInTabsOfAnEmptyWindow();

private:
    std::optional<ListStage> _stage;
};

void WayfoldOutlineViewDataSourceTest::acceptableTypesInOrder()
{
    const QStringList expected = {QStringLiteral("NSURLPboardType"),
                                  QStringLiteral("WebURLsWithTitlesPboardType"),
                                  QStringLiteral("BookmarkDictionaryListPboardType"),
                                  QStringLiteral("NSFilenamesPboardType"),
                                  QStringLiteral("KDRBookmark"),
                                  QStringLiteral("KDRBookmarkList"),
                                  QStringLiteral("NSStringPboardType"),
                                  QStringLiteral("ABPeopleUIDsPboardType"),
                                  QStringLiteral("ABGroupsUIDsPboardType")};
    QCOMPARE(WayfoldOutlineViewDataSource::acceptableDragTypes(), expected);
}

void WayfoldOutlineViewDataSourceTest::baseHasNeitherRootNorView()
{
    WayfoldOutlineViewDataSource source;
    QVERIFY(!source.localRootFolder());
    QVERIFY(!source.myOutlineView());
    QVERIFY(!source.anyItemSelected());
    source.handleResolveBookmarkRequest(nullptr);
    source.handleOpenBookmarksInTabsRequest(nullptr);
    QVERIFY(_stage->openedURLs.isEmpty());
}

void WayfoldOutlineViewDataSourceTest::rowsComeFromTheTree()
{
    PlainSource source;
    const auto inner = ListStage::folder("Inner", {ListStage::note("Deep")});
    source.root = ListStage::folder("Root", {inner, ListStage::link("Link")});
    source.view.reloadData();

    QCOMPARE(source.outlineViewNumberOfChildrenOfItem(source.view, nullptr), 2);
    QCOMPARE(source.outlineViewNumberOfChildrenOfItem(source.view, inner), 1);
    QCOMPARE(source.outlineViewNumberOfChildrenOfItem(source.view, source.root->childAtIndex(1)), 0);
    QVERIFY(source.outlineViewIsItemExpandable(source.view, nullptr));
    QVERIFY(source.outlineViewIsItemExpandable(source.view, inner));
    QVERIFY(!source.outlineViewIsItemExpandable(source.view, source.root->childAtIndex(1)));
    QVERIFY(source.outlineViewChildOfItem(source.view, 0, nullptr) == inner);
    QCOMPARE(source.outlineViewObjectValueByItem(source.view, inner), QStringLiteral("Inner"));
    source.view.expandItem(inner);
    QCOMPARE(ListStage::rows(source.view),
             QStringList({QStringLiteral("Inner"), QStringLiteral("-Deep"), QStringLiteral("Link")}));
}

void WayfoldOutlineViewDataSourceTest::nothingWithoutARoot()
{
    PlainSource source;
    source.view.reloadData();
    QCOMPARE(source.view.numberOfRows(), 0);
    QCOMPARE(source.outlineViewNumberOfChildrenOfItem(source.view, nullptr), 0);
    QVERIFY(!source.outlineViewIsItemExpandable(source.view, nullptr));
    QVERIFY(!source.outlineViewChildOfItem(source.view, 0, nullptr));
    QVERIFY(source.outlineViewObjectValueByItem(source.view, nullptr).isNull());
}

void WayfoldOutlineViewDataSourceTest::foldersAreBroughtUpToDate()
{
    PlainSource source;
    const auto smart = std::make_shared<CountingFolder>();
    smart->init();
    smart->addChild(ListStage::note("In it"));
    source.root = ListStage::folder("Root", {smart});
    source.view.reloadData();

    smart->count = 0;
    source.outlineViewChildOfItem(source.view, 0, smart);
    QCOMPARE(smart->count, 1);
    source.outlineViewObjectValueByItem(source.view, smart);
    QCOMPARE(smart->count, 2);
}

void WayfoldOutlineViewDataSourceTest::cellsGetImageAndFont()
{
    PlainSource source;
    source.view.awakeFromNib();
    source.view.setRowHeight(40);
    const auto folder = ListStage::folder("Folder");
    struct Cell : TextFieldCell
    {
        std::shared_ptr<Image> shown;
        std::shared_ptr<Image> image() const override { return shown; }
        void setImage(const std::shared_ptr<Image> &image) override { shown = image; }
    } cell;
    source.outlineViewWillDisplayCell(source.view, cell, folder);
    QVERIFY(cell.image());
    QCOMPARE(cell.image(), folder->imageForCellSize(QSizeF(40, 40)));
    QCOMPARE(cell.font(), source.view.currentListViewFont());

    cell.setFont(QFont());
    source.outlineViewWillDisplayCell(source.view, cell, nullptr);
    QCOMPARE(cell.image(), folder->imageForCellSize(QSizeF(40, 40))); // as before
    QCOMPARE(cell.font(), source.view.currentListViewFont());
}

void WayfoldOutlineViewDataSourceTest::titlesAreNotEditedInPlace()
{
    PlainSource source;
    QVERIFY(!source.outlineViewShouldEdit(source.view, ListStage::note("Note")));
}

void WayfoldOutlineViewDataSourceTest::dropsAreRefused()
{
    PlainSource source;
    source.root = ListStage::folder("Root");
    QMimeData data;
    data.setText(QStringLiteral("text"));
    OutlineDropTarget target;
    QVERIFY(!source.outlineViewTakesData(source.view, data));
    QCOMPARE(source.outlineViewValidateDrop(source.view, data, false, target), Qt::IgnoreAction);
    QVERIFY(!source.outlineViewAcceptDrop(source.view, data, target));
    QCOMPARE(source.root->childCount(), 0U);
}

void WayfoldOutlineViewDataSourceTest::typesOfOneItem_data()
{
    QTest::addColumn<std::vector<KDRBookmarkPtr>>("items");
    QTest::addColumn<QStringList>("publicTypes");
    const auto row = [](const char *name, const KDRBookmarkPtr &item, const QStringList &types) {
        QTest::newRow(name) << std::vector<KDRBookmarkPtr>{item} << types;
    };
    const QString string = QStringLiteral("NSStringPboardType");
    const QString url = QStringLiteral("NSURLPboardType");
    const QString urlsWithTitles = QStringLiteral("WebURLsWithTitlesPboardType");
    row("folder", ListStage::folder("a"), {string, QStringLiteral("BookmarkDictionaryListPboardType")});
    row("web link", ListStage::link("a"), {string, url, urlsWithTitles});
    row("history entry", ListStage::history("a"), {string, url, urlsWithTitles});
    row("file link", ListStage::file("a"), {string, url, urlsWithTitles, QStringLiteral("NSFilenamesPboardType")});
    row("note", ListStage::note("a"), {string});
    row("e-mail link", ListStage::mail("a"), {string, url});
    row("person", ListStage::person("a"),
        {QStringLiteral("ABPeopleUIDsPboardType"), QStringLiteral("NSVCardPboardType")});
    row("group", ListStage::group("a"), {QStringLiteral("ABGroupsUIDsPboardType")});
}

void WayfoldOutlineViewDataSourceTest::typesOfOneItem()
{
    QFETCH(std::vector<KDRBookmarkPtr>, items);
    QFETCH(QStringList, publicTypes);
    publicTypes.sort();

    PlainSource plain;
    const std::unique_ptr<QMimeData> data(plain.outlineViewWriteItems(plain.view, rowsOf(items)));
    QVERIFY(data);
    QCOMPARE(declaredTypes(*data), publicTypes);

    Scratchpad pad(*_stage);
    const std::unique_ptr<QMimeData> own(pad.source->outlineViewWriteItems(pad.view, rowsOf(items)));
    QVERIFY(own);
    publicTypes.append(QStringLiteral("KDRBookmark"));
    publicTypes.sort();
    QCOMPARE(declaredTypes(*own), publicTypes);
}

void WayfoldOutlineViewDataSourceTest::typesOfSeveralItems_data()
{
    QTest::addColumn<std::vector<KDRBookmarkPtr>>("items");
    QTest::addColumn<QStringList>("publicTypes"); // none: no drag
    QTest::addColumn<QString>("privateType");     // none: no drag, or no own type in common
    using Items = std::vector<KDRBookmarkPtr>;
    const QString dictionaries = QStringLiteral("BookmarkDictionaryListPboardType");
    const QString list = QStringLiteral("KDRBookmarkList");
    const QString single = QStringLiteral("KDRBookmark");
    QTest::newRow("folder and link") << Items{ListStage::folder("a"), ListStage::link("b")} << QStringList{dictionaries}
                                     << list;
    QTest::newRow("mail and history") << Items{ListStage::mail("a"), ListStage::history("b")}
                                      << QStringList{dictionaries} << list;
    QTest::newRow("files") << Items{ListStage::file("a"), ListStage::file("b")}
                           << QStringList{dictionaries, QStringLiteral("NSFilenamesPboardType")} << list;
    QTest::newRow("file and link") << Items{ListStage::file("a"), ListStage::link("b")} << QStringList{dictionaries}
                                   << list;
    QTest::newRow("note and link") << Items{ListStage::note("a"), ListStage::link("b")} << QStringList() << QString();
    QTest::newRow("notes") << Items{ListStage::note("a"), ListStage::note("b")} << QStringList() << QString();
    QTest::newRow("people") << Items{ListStage::person("a"), ListStage::person("b")}
                            << QStringList{QStringLiteral("ABPeopleUIDsPboardType"),
                                           QStringLiteral("NSVCardPboardType")}
                            << single;
    QTest::newRow("groups") << Items{ListStage::group("a"), ListStage::group("b")}
                            << QStringList{QStringLiteral("ABGroupsUIDsPboardType")} << single;
    // What a person and a group have in common is the private name alone.
    QTest::newRow("person and group") << Items{ListStage::person("a"), ListStage::group("b")} << QStringList()
                                      << single;
    QTest::newRow("person and link") << Items{ListStage::person("a"), ListStage::link("b")} << QStringList()
                                     << QString();
}

void WayfoldOutlineViewDataSourceTest::typesOfSeveralItems()
{
    QFETCH(std::vector<KDRBookmarkPtr>, items);
    QFETCH(QStringList, publicTypes);
    QFETCH(QString, privateType);
    publicTypes.sort();

    PlainSource plain;
    const std::unique_ptr<QMimeData> data(plain.outlineViewWriteItems(plain.view, rowsOf(items)));
    QCOMPARE(data ? declaredTypes(*data) : QStringList(), publicTypes);
    QCOMPARE(data == nullptr, publicTypes.isEmpty());

    if (!privateType.isNull())
        publicTypes.append(privateType);
    publicTypes.sort();
    Scratchpad pad(*_stage);
    const std::unique_ptr<QMimeData> own(pad.source->outlineViewWriteItems(pad.view, rowsOf(items)));
    QCOMPARE(own ? declaredTypes(*own) : QStringList(), publicTypes);
    QCOMPARE(own == nullptr, publicTypes.isEmpty());
}

void WayfoldOutlineViewDataSourceTest::dataOfEachType()
{
    PlainSource source;
    const auto link = ListStage::link("A page");
    const std::unique_ptr<QMimeData> data(source.outlineViewWriteItems(source.view, {link}));
    const QString address = QStringLiteral("http://www.example.com/page");
    QCOMPARE(QString::fromUtf8(data->data(QStringLiteral("NSStringPboardType"))), address);
    QCOMPARE(QString::fromUtf8(data->data(QStringLiteral("NSURLPboardType"))), address);
    QCOMPARE(PropertyList::fromData(data->data(QStringLiteral("WebURLsWithTitlesPboardType"))).toList(),
             QVariantList({QVariant(QVariantList{address}), QVariant(QVariantList{QStringLiteral("A page")})}));
    QCOMPARE(source.pasteboardProvideDataForType(QStringLiteral("KDRBookmark")).toString(), link->uuid());
    QVERIFY(!source.pasteboardProvideDataForType(QStringLiteral("something else")).isValid());
    QVERIFY(data->data(QStringLiteral("something else")).isEmpty());

    const auto note = ListStage::note("Note", QString::fromUtf8("f\xc3\xbcnf"));
    const std::unique_ptr<QMimeData> noteData(source.outlineViewWriteItems(source.view, {note}));
    QCOMPARE(QString::fromUtf8(noteData->data(QStringLiteral("NSStringPboardType"))), QString::fromUtf8("f\xc3\xbcnf"));
}

void WayfoldOutlineViewDataSourceTest::dataOfSeveralItems()
{
    Scratchpad pad(*_stage);
    const auto one = ListStage::file("One", "/tmp/a b.txt");
    const auto two = ListStage::file("Two", "/tmp/c.txt");
    const std::unique_ptr<QMimeData> data(pad.source->outlineViewWriteItems(pad.view, {one, two}));
    QCOMPARE(PropertyList::fromData(data->data(QStringLiteral("KDRBookmarkList"))).toList(),
             QVariantList({one->uuid(), two->uuid()}));
    QCOMPARE(PropertyList::fromData(data->data(QStringLiteral("NSFilenamesPboardType"))).toList(),
             QVariantList({QStringLiteral("/tmp/a b.txt"), QStringLiteral("/tmp/c.txt")}));
    const QVariantList dictionaries =
        PropertyList::fromData(data->data(QStringLiteral("BookmarkDictionaryListPboardType"))).toList();
    QCOMPARE(dictionaries, QVariantList({one->createDictionary(false), two->createDictionary(false)}));

    const auto ann = ListStage::person("Ann");
    const auto bob = ListStage::person("Bob");
    const std::unique_ptr<QMimeData> people(pad.source->outlineViewWriteItems(pad.view, {ann, bob}));
    QCOMPARE(PropertyList::fromData(people->data(QStringLiteral("ABPeopleUIDsPboardType"))).toList(),
             QVariantList({ann->uuid(), bob->uuid()}));
    // Only the first of them is moved within the Scratchpad.
    QCOMPARE(QString::fromUtf8(people->data(QStringLiteral("KDRBookmark"))), ann->uuid());
    const auto friends = ListStage::group("Friends");
    const std::unique_ptr<QMimeData> groups(pad.source->outlineViewWriteItems(pad.view, {friends}));
    QCOMPARE(PropertyList::fromData(groups->data(QStringLiteral("ABGroupsUIDsPboardType"))).toList(),
             QVariantList({friends->uuid()}));
}

void WayfoldOutlineViewDataSourceTest::dataOfPeople()
{
    Scratchpad pad(*_stage);
    const auto ann = ListStage::person("Ann");
    const auto zoe = ListStage::person("Zoe");
    const auto kettles = ListStage::organization("Kettles");
    const auto gone = WayfoldBookmarkABPerson::bookmarkWithID("nobody");
    const QByteArray ofAnn = ListStage::card(ann->uuid(), "Ann", "Miller", "ann@a.org");
    const QByteArray ofZoe = ListStage::card(zoe->uuid(), QString::fromUtf8("Zo\xc3\xab"), "", "");
    ListStage::contacts().cards = {{ann->uuid(), ofAnn}, {zoe->uuid(), ofZoe}, {kettles->uuid(), "not to be given"}};
    const auto dragged = [&pad](const std::vector<OutlineItemPtr> &items) {
        return std::unique_ptr<QMimeData>(pad.source->outlineViewWriteItems(pad.view, items));
    };
    const auto people = dragged({zoe, kettles, gone, ann});
    const QString type = QStringLiteral("NSVCardPboardType");
    QCOMPARE(pad.source->pasteboardProvideDataForType(type).toString(), QString::fromUtf8(ofZoe + ofAnn));
    QCOMPARE(people->data(type), ofZoe + ofAnn);
    QCOMPARE(PropertyList::fromData(people->data(QStringLiteral("ABPeopleUIDsPboardType"))).toList(),
             QVariantList({zoe->uuid(), kettles->uuid(), QStringLiteral("nobody"), ann->uuid()}));

    const auto company = dragged({kettles});
    QVERIFY(company->hasFormat(type)); // but there is nothing in it
    QVERIFY(company->data(type).isEmpty());
    // What is not offered is not given.
    const auto note = dragged({ListStage::note("Note")});
    QVERIFY(!note->hasFormat(type));
    QVERIFY(pad.source->pasteboardProvideDataForType(type).toString().isEmpty());
}

void WayfoldOutlineViewDataSourceTest::desktopTypesOfPeople()
{
    Scratchpad pad(*_stage);
    const auto ann = ListStage::person("Ann");
    const auto bob = ListStage::person("Bob");
    const auto kettles = ListStage::organization("Kettles");
    const QByteArray ofAnn = ListStage::card(ann->uuid(), "Ann", "Miller", "ann@a.org");
    const QByteArray ofBob = ListStage::card(bob->uuid(), "Bob", "Brown", "bob@a.org");
    ListStage::contacts().cards = {{ann->uuid(), ofAnn}, {bob->uuid(), ofBob}};
    const auto dragged = [&pad](const std::vector<OutlineItemPtr> &items) {
        return std::unique_ptr<QMimeData>(pad.source->outlineViewWriteItems(pad.view, items));
    };
    const QString folder = _stage->home.path("Library/Caches/Wayfold/Cards");

    const auto one = dragged({ann});
    QCOMPARE(one->text(), QStringLiteral("Ann"));
    for (const char *type : {"text/vcard", "text/x-vcard"})
        QCOMPARE(one->data(QString::fromLatin1(type)), ofAnn);
    QVERIFY(one->hasUrls());
    QVERIFY(!QFile::exists(folder)); // nobody has asked for a file yet
    QCOMPARE(one->data("text/uri-list"), QUrl::fromLocalFile(folder + "/Ann.vcf").toEncoded() + "\r\n");
    QCOMPARE(_stage->home.read("Library/Caches/Wayfold/Cards/Ann.vcf"), ofAnn);
    QVERIFY(!one->hasFormat("text/x-moz-url"));
    QVERIFY(one->data("text/html").isEmpty());

    const auto three = dragged({ann, kettles, bob});
    QCOMPARE(three->text(), QStringLiteral("Ann\nKettles\nBob"));
    QCOMPARE(three->data("text/vcard"), ofAnn + ofBob);
    QCOMPARE(three->urls(), QList<QUrl>{QUrl::fromLocalFile(folder + "/Ann and 2 more.vcf")});
    QCOMPARE(_stage->home.read("Library/Caches/Wayfold/Cards/Ann and 2 more.vcf"), ofAnn + ofBob);

    // An organization has no card to give.
    const auto company = dragged({kettles});
    QCOMPARE(company->text(), QStringLiteral("Kettles"));
    QVERIFY(!company->hasUrls());
    QVERIFY(!company->hasFormat("text/vcard"));
    QVERIFY(company->data("text/vcard").isEmpty());
}

void WayfoldOutlineViewDataSourceTest::desktopTypesOfGroups()
{
    Scratchpad pad(*_stage);
    const auto friends = ListStage::group("Friends", {ListStage::person("Ann")});
    const auto choir = ListStage::group("Choir");
    const std::unique_ptr<QMimeData> data(pad.source->outlineViewWriteItems(pad.view, {friends, choir}));
    QCOMPARE(data->text(), QStringLiteral("Friends\nChoir"));
    QCOMPARE(PropertyList::fromData(data->data(QStringLiteral("ABGroupsUIDsPboardType"))).toList(),
             QVariantList({friends->uuid(), choir->uuid()}));
    QVERIFY(!data->hasUrls());
    QVERIFY(!data->hasFormat("text/vcard"));
}

void WayfoldOutlineViewDataSourceTest::cardFileThatCannotBeWritten()
{
    Scratchpad pad(*_stage);
    const auto ann = ListStage::person("Ann");
    ListStage::contacts().cards = {{ann->uuid(), ListStage::card("", "Ann", "Miller", "ann@a.org")}};
    _stage->home.write("Library/Caches", "in the way");
    const std::unique_ptr<QMimeData> data(pad.source->outlineViewWriteItems(pad.view, {ann}));
    const LoggedMessages log;
    QVERIFY(data->urls().isEmpty());
    QVERIFY(!data->data("text/vcard").isEmpty());
}

// A drag of our own goes by the identifiers, whatever else it has for others.
void WayfoldOutlineViewDataSourceTest::peopleComeBackAsThemselves()
{
    Scratchpad pad(*_stage);
    const auto ann = ListStage::person("Ann");
    const auto folder = ListStage::folder("Folder");
    ListStage::contacts().cards = {{ann->uuid(), ListStage::card("", "Somebody", "Else", "else@a.org")}};
    pad.showItems({ann, folder});
    const std::unique_ptr<QMimeData> data(pad.source->outlineViewWriteItems(pad.view, {ann}));
    QVERIFY(pad.source->outlineViewTakesData(pad.view, *data));
    QVERIFY(pad.source->outlineViewAcceptDrop(pad.view, *data, {folder, 0}));
    QVERIFY(folder->childAtIndex(0) == ann);
    QCOMPARE(folder->childCount(), 1U);

    // Without the list's own names, as in another process.
    PlainSource plain;
    const std::unique_ptr<QMimeData> copied(plain.outlineViewWriteItems(plain.view, {ann}));
    QVERIFY(pad.source->outlineViewAcceptDrop(pad.view, *copied, {nullptr, 0}));
    const KDRBookmarkPtr copy = ListStage::store().bookmarkRoot()->childAtIndex(0);
    QVERIFY(copy != ann);
    QCOMPARE(copy->type(), KDRBookmark::PersonType);
    QCOMPARE(copy->uuid(), ann->uuid());
    QVERIFY(!QFile::exists(_stage->home.path("Library/Caches/Wayfold/Cards")));
}

void WayfoldOutlineViewDataSourceTest::dataOnlyDuringADrag()
{
    PlainSource source;
    QVERIFY(!source.pasteboardProvideDataForType(QStringLiteral("NSStringPboardType")).isValid());
    const std::unique_ptr<QMimeData> data(source.outlineViewWriteItems(source.view, {ListStage::note("Note")}));
    QVERIFY(!data->data(QStringLiteral("NSStringPboardType")).isEmpty());
    source.outlineViewDraggingEnded(source.view);
    QVERIFY(data->data(QStringLiteral("NSStringPboardType")).isEmpty());
    QVERIFY(!source.pasteboardProvideDataForType(QStringLiteral("NSStringPboardType")).isValid());
}

void WayfoldOutlineViewDataSourceTest::dataOutlivesTheSource()
{
    std::unique_ptr<QMimeData> data;
    {
        PlainSource source;
        data.reset(source.outlineViewWriteItems(source.view, {ListStage::link("Link")}));
    }
    QVERIFY(data->data(QStringLiteral("NSURLPboardType")).isEmpty());
    QVERIFY(data->text().isEmpty());
    QVERIFY(data->urls().isEmpty());
}

void WayfoldOutlineViewDataSourceTest::desktopTypes()
{
    PlainSource source;
    const std::unique_ptr<QMimeData> link(source.outlineViewWriteItems(source.view, {ListStage::link("A page")}));
    QCOMPARE(link->text(), QStringLiteral("http://www.example.com/page"));
    QCOMPARE(link->data(QStringLiteral("text/uri-list")), QByteArray("http://www.example.com/page\r\n"));
    const QByteArray mozilla = link->data(QStringLiteral("text/x-moz-url"));
    QCOMPARE(QString(reinterpret_cast<const QChar *>(mozilla.constData()), mozilla.size() / 2),
             QStringLiteral("http://www.example.com/page\nA page"));

    const std::unique_ptr<QMimeData> file(source.outlineViewWriteItems(source.view, {ListStage::file("File")}));
    QCOMPARE(file->urls(), QList<QUrl>{QUrl::fromLocalFile(QStringLiteral("/tmp/a b.txt"))});

    const std::unique_ptr<QMimeData> note(
        source.outlineViewWriteItems(source.view, {ListStage::note("Note", "words")}));
    QCOMPARE(note->text(), QStringLiteral("words"));
    QVERIFY(!note->hasUrls());
}

void WayfoldOutlineViewDataSourceTest::desktopTypesOfSeveralLinks()
{
    PlainSource source;
    const std::unique_ptr<QMimeData> data(source.outlineViewWriteItems(
        source.view, {ListStage::link("One", "http://a/1"), ListStage::folder("Folder"), ListStage::mail("Two")}));
    QCOMPARE(data->data(QStringLiteral("text/uri-list")), QByteArray("http://a/1\r\nmailto:ann\r\n"));
    const QByteArray mozilla = data->data(QStringLiteral("text/x-moz-url"));
    QCOMPARE(QString(reinterpret_cast<const QChar *>(mozilla.constData()), mozilla.size() / 2),
             QStringLiteral("http://a/1\nOne\nmailto:ann\nTwo"));
}

void WayfoldOutlineViewDataSourceTest::desktopTypesOfVisits()
{
    PlainSource source;
    const std::unique_ptr<QMimeData> data(
        source.outlineViewWriteItems(source.view, {ListStage::history("One"), ListStage::history("Two")}));
    const QString address = QStringLiteral("http://www.example.com/visited");
    QCOMPARE(data->urls(), QList<QUrl>({QUrl(address), QUrl(address)}));
    const QByteArray mozilla = data->data(QStringLiteral("text/x-moz-url"));
    QCOMPARE(QString(reinterpret_cast<const QChar *>(mozilla.constData()), mozilla.size() / 2),
             address + QStringLiteral("\nOne\n") + address + QStringLiteral("\nTwo"));
    // In the browser's form they are nothing.
    QCOMPARE(PropertyList::fromData(data->data(QStringLiteral("BookmarkDictionaryListPboardType"))).toList(),
             QVariantList({QVariantMap(), QVariantMap()}));
}

// Which the item file leaves out.
void WayfoldOutlineViewDataSourceTest::dictionariesHoldSmartFolders()
{
    PlainSource source;
    const auto site = ListStage::folder("a.org");
    site->addAutoFolders();
    const std::unique_ptr<QMimeData> data(source.outlineViewWriteItems(source.view, {site}));
    const QVariantList dictionaries =
        PropertyList::fromData(data->data(QStringLiteral("BookmarkDictionaryListPboardType"))).toList();
    QStringList titles;
    for (const QVariant &child : dictionaries.value(0).toMap().value(QStringLiteral("Children")).toList())
        titles.append(child.toMap().value(QStringLiteral("Title")).toString());
    QCOMPARE(titles, QStringList({QStringLiteral("Related Bookmarks"), QStringLiteral("Related History")}));
}

// What a list asks of the data at every move of a drag.
void WayfoldOutlineViewDataSourceTest::largeFoldersAreWrittenOnlyWhenAskedFor()
{
    class WrittenFolder : public WayfoldBookmarkFolder
    {
    public:
        mutable int written = 0;
        void writeToDictionaryForSaving(QVariantMap &dictionary, bool forSaving) const override
        {
            ++written;
            WayfoldBookmarkFolder::writeToDictionaryForSaving(dictionary, forSaving);
        }
    };
    PlainSource source;
    const auto folder = std::make_shared<WrittenFolder>();
    const std::unique_ptr<QMimeData> data(source.outlineViewWriteItems(source.view, {folder}));
    for (int move = 0; move < 10; ++move)
        QVERIFY(DroppedData(*data).offersAnyOf(PasteboardTypes::acceptableDragTypes()));
    QCOMPARE(folder->written, 0);
    QVERIFY(!data->data(QStringLiteral("BookmarkDictionaryListPboardType")).isEmpty());
}

void WayfoldOutlineViewDataSourceTest::openNothing()
{
    Scratchpad pad(*_stage);
    pad.showItems({ListStage::link("Link")});
    pad.source->handleResolveBookmarkRequest(nullptr);
    pad.source->handleOpenBookmarksInTabsRequest(nullptr);
    QVERIFY(pad.web->frame->loadRequests.empty());
    QVERIFY(pad.window->newTabURLs.empty());
}

void WayfoldOutlineViewDataSourceTest::openFolders()
{
    Scratchpad pad(*_stage);
    const auto closed = ListStage::folder("Closed", {ListStage::note("a")});
    const auto open = ListStage::folder("Open", {ListStage::note("b")});
    pad.showItems({closed, open});
    pad.view.expandItem(open);
    pad.select({closed, open});
    pad.source->handleResolveBookmarkRequest(nullptr);
    QVERIFY(pad.view.isItemExpanded(closed));
    QVERIFY(!pad.view.isItemExpanded(open));
}

void WayfoldOutlineViewDataSourceTest::openGroups()
{
    Scratchpad pad(*_stage);
    const auto closed = ListStage::group("Closed", {ListStage::person("Ann")});
    const auto open = ListStage::group("Open", {ListStage::person("Bob")});
    pad.showItems({closed, open});
    pad.view.expandItem(open);
    QCOMPARE(ListStage::rows(pad.view), QStringList({"Closed", "Open", "-Bob"}));
    pad.select({closed, open});
    pad.view.doubleAction();
    QCOMPARE(ListStage::rows(pad.view), QStringList({"Closed", "-Ann", "Open"}));
    QVERIFY(ListStage::contacts().opened.isEmpty());
}

void WayfoldOutlineViewDataSourceTest::openPeople()
{
    Scratchpad pad(*_stage);
    const auto ann = ListStage::person("Ann");
    const auto kettles = ListStage::organization("Kettles");
    const auto note = ListStage::note("Note");
    pad.showItems({ann, note, kettles});
    pad.select({ann, note, kettles});
    pad.source->handleResolveBookmarkRequest(nullptr);
    QCOMPARE(ListStage::contacts().opened, QStringList({ann->uuid(), kettles->uuid()}));
    QCOMPARE(_stage->openedURLs, QStringList({QStringLiteral("file:///cards/%1.vcf").arg(ann->uuid()),
                                              QStringLiteral("file:///cards/%1.vcf").arg(kettles->uuid())}));
    QVERIFY(_stage->dialogs.cardsNotShown.isEmpty());
}

namespace
{
// Contacts whose program is a command.
class CommandedContacts : public MemoryContacts
{
public:
    QStringList command;
    Opening opening(const ContactRecord &record, Purpose purpose) const override
    {
        Opening opening;
        if (!command.isEmpty())
            opening.command = command + QStringList{purpose == Edit ? "--edit" : "--show", record.uniqueId};
        return opening;
    }
};
} // namespace

void WayfoldOutlineViewDataSourceTest::openPeopleWithACommand()
{
    Scratchpad pad(*_stage);
    CommandedContacts contacts;
    contacts.command = QStringList{"contacts"};
    contacts.set(MemoryContacts::person("ann", "Ann", QString()));
    const auto ann = WayfoldBookmarkABPerson::bookmarkWithID("ann");
    pad.showItems({ann});
    pad.select({ann});
    std::vector<QStringList> started;
    bool isStarted = true;
    Workspace::setProgramHandler([&](const QStringList &command) {
        started.push_back(command);
        return isStarted;
    });
    pad.source->handleResolveBookmarkRequest(nullptr);
    pad.source->handleItemEditRequest(nullptr);
    QCOMPARE(started, std::vector<QStringList>({{"contacts", "--show", "ann"}, {"contacts", "--edit", "ann"}}));
    QVERIFY(_stage->dialogs.cardsNotShown.isEmpty());

    isStarted = false;
    pad.source->handleResolveBookmarkRequest(nullptr);
    pad.source->handleItemEditRequest(nullptr);
    QCOMPARE(_stage->dialogs.cardsNotShown, QStringList({"Ann", "Ann"}));
    Workspace::setProgramHandler({});
    QVERIFY(_stage->openedURLs.isEmpty());

    // Nothing that could be started, and nobody to be shown.
    contacts.command.clear();
    pad.source->handleResolveBookmarkRequest(nullptr);
    contacts.take("ann");
    ann->refresh();
    pad.source->handleResolveBookmarkRequest(nullptr);
    QCOMPARE(_stage->dialogs.cardsNotShown, QStringList({"Ann", "Ann", "Ann", QString()}));
}

void WayfoldOutlineViewDataSourceTest::openWebLinksInTheCurrentFrame()
{
    Scratchpad pad(*_stage);
    const auto link = ListStage::link("Link");
    const auto visited = ListStage::history("Visited");
    pad.showItems({link, visited});
    pad.controller->setCurrentWebFrame(pad.web->frame);
    pad.select({link, visited});
    pad.source->handleResolveBookmarkRequest(nullptr);
    QCOMPARE(pad.web->frame->loadRequests,
             std::vector<Url>({link->url(), Url::URLWithString(QStringLiteral("http://www.example.com/visited"))}));
    QVERIFY(_stage->openedURLs.isEmpty());
}

void WayfoldOutlineViewDataSourceTest::openWebLinksWithoutAFrame()
{
    Scratchpad pad(*_stage);
    const auto link = ListStage::link("Link");
    pad.showItems({link});
    pad.controller->setCurrentWebFrame(nullptr);
    pad.select({link});
    pad.source->handleResolveBookmarkRequest(nullptr);
    QCOMPARE(_stage->openedURLs, QStringList{QStringLiteral("http://www.example.com/page")});
}

// Whichever window's list they are opened from.
void WayfoldOutlineViewDataSourceTest::openInTheFrontWindow()
{
    Scratchpad pad(*_stage);
    Scratchpad front(*_stage, QRectF(200, 200, 800, 600));
    _stage->host.key = front.window;
    for (Scratchpad *each : {&pad, &front})
        each->controller->setCurrentWebFrame(each->web->frame);
    const auto link = ListStage::link("Link");
    pad.showItems({link});
    pad.select({link});
    pad.source->handleResolveBookmarkRequest(nullptr);
    QCOMPARE(front.web->frame->loadRequests, std::vector<Url>{link->url()});
    QVERIFY(pad.web->frame->loadRequests.empty());
    pad.source->handleOpenBookmarksInTabsRequest(nullptr);
    QCOMPARE(front.window->newTabURLs, std::vector<Url>{link->url()});
    QVERIFY(pad.window->newTabURLs.empty());
}

void WayfoldOutlineViewDataSourceTest::openFilesAndMails()
{
    Scratchpad pad(*_stage);
    const auto file = ListStage::file("File");
    const auto mail = ListStage::mail("Mail");
    const auto lines = ListStage::mail("Two lines", "mailto:ann%0Abob");
    pad.showItems({file, mail, lines});
    pad.controller->setCurrentWebFrame(pad.web->frame);
    pad.select({file, mail, lines});
    pad.source->handleResolveBookmarkRequest(nullptr);
    QCOMPARE(_stage->openedURLs, QStringList({QStringLiteral("file:///tmp/a%20b.txt"), QStringLiteral("mailto:ann"),
                                              QStringLiteral("mailto:ann,bob")}));
    QVERIFY(pad.web->frame->loadRequests.empty());
}

void WayfoldOutlineViewDataSourceTest::openNote()
{
    Scratchpad pad(*_stage);
    const auto note = ListStage::note("Note");
    pad.showItems({note});
    pad.select({note});
    WayfoldBookmarkNotePtr shown;
    NoteViewer::setOpener([&shown](const WayfoldBookmarkNotePtr &opened) { shown = opened; });
    pad.source->handleResolveBookmarkRequest(nullptr);
    NoteViewer::setOpener({});
    QCOMPARE(shown, note);
    pad.source->handleResolveBookmarkRequest(nullptr); // nobody to show it
}

void WayfoldOutlineViewDataSourceTest::openInTabs()
{
    Scratchpad pad(*_stage);
    const auto link = ListStage::link("Link");
    const auto note = ListStage::note("Note");
    const auto mail = ListStage::mail("Mail");
    const auto visited = ListStage::history("Visited");
    pad.showItems({link, note, mail, visited});
    pad.select({link, note, mail, visited});
    pad.source->handleOpenBookmarksInTabsRequest(nullptr);
    const std::vector<Url> expected = {link->url(),
                                       Url::URLWithString(QStringLiteral("http://www.example.com/visited"))};
    QCOMPARE(pad.window->newTabURLs, expected);
    QVERIFY(pad.window->currentTabURLs.empty());

    // A page that is only on its way counts as well.
    pad.web->frame->committed.reset();
    pad.web->frame->provisional = HostDataSource{Url::URLWithString(QStringLiteral("http://coming/"))};
    pad.select({link});
    pad.source->handleOpenBookmarksInTabsRequest(nullptr);
    QCOMPARE(pad.window->newTabURLs.size(), 3U);
}

void WayfoldOutlineViewDataSourceTest::openInTabsOfAnEmptyWindow()
{
    Scratchpad pad(*_stage);
    const auto link = ListStage::link("Link");
    pad.showItems({link});
    pad.select({link});
    pad.web->frame->committed.reset();
    pad.source->handleOpenBookmarksInTabsRequest(nullptr);
    QCOMPARE(pad.window->currentTabURLs, std::vector<Url>{link->url()});
    QVERIFY(pad.window->newTabURLs.empty());

    pad.window->frontWebView.reset();
    pad.source->handleOpenBookmarksInTabsRequest(nullptr);
    QCOMPARE(pad.window->currentTabURLs.size(), 2U);
}

namespace
{
// Begins to load what its window was told to go to.
class StartingFrame : public FakeHostFrame
{
public:
    std::shared_ptr<FakeHostWindow> window;
    HostDataSource coming;

    const HostDataSource *provisionalDataSource() const override
    {
        return window->currentTabURLs.empty() ? nullptr : &coming;
    }
};
} // namespace

// The first of them loads in the empty tab.
void WayfoldOutlineViewDataSourceTest::openSeveralInTabsOfAnEmptyWindow()
{
    Scratchpad pad(*_stage);
    const auto frame = std::make_shared<StartingFrame>();
    frame->owner = pad.web;
    frame->window = pad.window;
    pad.web->frame = frame;
    const auto one = ListStage::link("One", "http://a/1");
    const auto two = ListStage::link("Two", "http://a/2");
    const auto three = ListStage::link("Three", "http://a/3");
    pad.showItems({one, two, three});
    pad.select({one, two, three});
    pad.source->handleOpenBookmarksInTabsRequest(nullptr);
    QCOMPARE(pad.window->currentTabURLs, std::vector<Url>{one->url()});
    QCOMPARE(pad.window->newTabURLs, std::vector<Url>({two->url(), three->url()}));
    frame->window.reset();
}

QTEST_MAIN(WayfoldOutlineViewDataSourceTest)
#include "WayfoldOutlineViewDataSourceTest.moc"
