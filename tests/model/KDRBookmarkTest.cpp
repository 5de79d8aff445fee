#include "platform/files/PropertyList.h"
#include "tests/model/ModelTestSupport.h"

#include "model/WayfoldBookmarkAutoFolder.h"
#include "model/WayfoldHistoryAutoFolder.h"

#include <QRegularExpression>
#include <QtTest>

class KDRBookmarkTest : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<FreshHome> _home;

private Q_SLOTS:
    void init();
    void cleanup();

    void newItem();
    void freshIdentifiersDiffer();
    void createUUIDStoresWhatItReturns();
    void initWithTitleStartsAnew();
    void initWithItsOwnTitle();
    void noneAndEmptyTitleDiffer();
    void nothingIsMadeFromADictionary();
    void baseAnswers();
    void kinds_data();
    void kinds();
    void parentIsSetToFoldersOnly();
    void parentGoesAway();
    void findByUUID();
    void isChildOf();
    void childIsAtIndex();
    void policyComesFromTheParent();
    void search_data();
    void search();
    void titleComparator_data();
    void titleComparator();
    void timestampComparators();
    void dictionaryOfTheBaseIsEmpty();
    void untitledItemsWriteEmptyTexts_data();
    void untitledItemsWriteEmptyTexts();
    void copies_data();
    void copies();
    void archives_data();
    void archives();
    void archiveKeys_data();
    void archiveKeys();
    void archivesKeepNoneAndEmptyApart();
    void linksKeepTheirAddress_data();
    void linksKeepTheirAddress();
    void equality();
    void equalityIsOneSided();
    void iconOfAFile();
};

void KDRBookmarkTest::init()
{
    _home = std::make_unique<FreshHome>();
}

void KDRBookmarkTest::cleanup()
{
    _home.reset();
}

static std::vector<KDRBookmarkPtr> oneOfEachKind()
{
    return {std::make_shared<KDRBookmark>(),
            std::make_shared<WayfoldBookmarkFolder>(),
            std::make_shared<WayfoldBookmarkURL>(),
            std::make_shared<WayfoldBookmarkFile>(),
            std::make_shared<WayfoldBookmarkNote>(),
            std::make_shared<WayfoldBookmarkEmail>(),
            std::make_shared<WayfoldHistoryURL>(),
            std::make_shared<WayfoldAutoFolder>(),
            std::make_shared<WayfoldBookmarkAutoFolder>(),
            std::make_shared<WayfoldHistoryAutoFolder>()};
}

static void addRowOfEachKind()
{
    QTest::addColumn<KDRBookmarkPtr>("item");
    for (const KDRBookmarkPtr &item : oneOfEachKind())
        QTest::newRow(qPrintable(item->classNameForCoder())) << item;
}

void KDRBookmarkTest::newItem()
{
    const QDateTime before = QDateTime::currentDateTime();
    const auto item = std::make_shared<KDRBookmark>();
    QVERIFY(item->title().isNull());
    QVERIFY(!item->parent());
    QVERIFY(item->timestamp().isValid());
    QVERIFY(item->timestamp() >= before);
    QVERIFY(item->timestamp() <= QDateTime::currentDateTime());
    static const QRegularExpression canonical("^[0-9A-F]{8}(-[0-9A-F]{4}){3}-[0-9A-F]{12}$");
    QVERIFY2(canonical.match(item->uuid()).hasMatch(), qPrintable(item->uuid()));
    QCOMPARE(KDRBookmark::bookmarkWithTitle("Title")->title(), "Title");
}

void KDRBookmarkTest::freshIdentifiersDiffer()
{
    QVERIFY(std::make_shared<KDRBookmark>()->uuid() != std::make_shared<KDRBookmark>()->uuid());
}

void KDRBookmarkTest::createUUIDStoresWhatItReturns()
{
    const auto item = std::make_shared<KDRBookmark>();
    const QString old = item->uuid();
    const QString fresh = item->createUUID();
    QVERIFY(fresh != old);
    QCOMPARE(item->uuid(), fresh);
}

void KDRBookmarkTest::initWithTitleStartsAnew()
{
    const auto home = makeFolder("Home");
    const auto item = KDRBookmark::bookmarkWithTitle("Old");
    home->addChild(item);
    item->setTimestamp({});
    const QString old = item->uuid();
    item->initWithTitle("New");
    QCOMPARE(item->title(), "New");
    QVERIFY(item->uuid() != old);
    QVERIFY(item->timestamp().isValid());
    QVERIFY(!item->parent());
}

void KDRBookmarkTest::initWithItsOwnTitle()
{
    const auto item = KDRBookmark::bookmarkWithTitle("Same");
    item->initWithTitle(item->title());
    QCOMPARE(item->title(), "Same");
    const auto note = WayfoldBookmarkNote::bookmarkWithTitleAndNote("Same", "Text");
    note->initWithTitleAndNote(note->title(), note->valueAsString());
    QCOMPARE(note->valueAsString(), "Text");
}

void KDRBookmarkTest::noneAndEmptyTitleDiffer()
{
    const auto item = KDRBookmark::bookmarkWithTitle("");
    QVERIFY(item->title().isEmpty());
    QVERIFY(!item->title().isNull());
    item->setTitle(QString());
    QVERIFY(item->title().isNull());
}

void KDRBookmarkTest::nothingIsMadeFromADictionary()
{
    QVERIFY(!KDRBookmark::initializeFromDictionary({{"Title", "Title"}}));
}

void KDRBookmarkTest::baseAnswers()
{
    const auto item = KDRBookmark::bookmarkWithTitle("Title");
    QVERIFY(!item->value().isValid());
    QVERIFY(item->valueAsString().isNull());
    QVERIFY(item->tooltipText().isNull());
    QVERIFY(!item->imageForCellSize(QSizeF(16, 16)));
    QVERIFY(!item->editViaDialog());
    QVERIFY(item->refresh());
    item->setValue(QStringLiteral("anything"));
    QVERIFY(!item->value().isValid());
    item->ensureUpToDate();
    item->loadFromDictionary({{"Title", "Other"}});
    QCOMPARE(item->title(), "Title");
}

void KDRBookmarkTest::kinds_data()
{
    QTest::addColumn<KDRBookmarkPtr>("item");
    QTest::addColumn<int>("type");
    QTest::addColumn<QString>("description");
    QTest::addColumn<bool>("isFolder");
    const std::vector<KDRBookmarkPtr> items = oneOfEachKind();
    QTest::newRow("base") << items[0] << 0 << QString() << false;
    QTest::newRow("folder") << items[1] << 1 << "Subfolder" << true;
    QTest::newRow("web link") << items[2] << 2 << "Bookmark" << false;
    QTest::newRow("file link") << items[3] << 3 << "File Link" << false;
    QTest::newRow("note") << items[4] << 4 << "Note" << false;
    QTest::newRow("e-mail link") << items[5] << 5 << "Email Link" << false;
    QTest::newRow("history entry") << items[6] << 6 << "History Item" << false;
    QTest::newRow("smart folder") << items[7] << 1 << "Subfolder" << true;
    QTest::newRow("related bookmarks") << items[8] << 1 << "Subfolder" << true;
    QTest::newRow("related history") << items[9] << 1 << "Subfolder" << true;
}

void KDRBookmarkTest::kinds()
{
    QFETCH(KDRBookmarkPtr, item);
    QTEST(int(item->type()), "type");
    QTEST(item->typeDescription(), "description");
    QTEST(item->isFolder(), "isFolder");
    QCOMPARE(bool(std::dynamic_pointer_cast<WayfoldBookmarkFolder>(item)), item->isFolder());
}

void KDRBookmarkTest::parentIsSetToFoldersOnly()
{
    const auto item = KDRBookmark::bookmarkWithTitle("Item");
    const auto home = makeFolder("Home");
    item->setParent(home);
    QCOMPARE(item->parent(), home);
    item->setParent(nullptr);
    QCOMPARE(item->parent(), home);
    item->setParent(makeLink("No folder"));
    QCOMPARE(item->parent(), home);
    const auto smart = std::make_shared<WayfoldAutoFolder>();
    item->setParent(smart);
    QCOMPARE(item->parent(), smart);
}

void KDRBookmarkTest::parentGoesAway()
{
    const auto item = KDRBookmark::bookmarkWithTitle("Item");
    {
        const auto home = makeFolder("Home", {item});
        QCOMPARE(item->parent(), home);
    }
    QVERIFY(!item->parent());
    QCOMPARE(item->childIsAtIndex(), -1);
}

void KDRBookmarkTest::findByUUID()
{
    const auto item = KDRBookmark::bookmarkWithTitle("Item");
    item->setUUID("Abc");
    QCOMPARE(item->findByUUID("Abc"), item);
    QVERIFY(!item->findByUUID("abc"));
    QVERIFY(!item->findByUUID("Ab"));
    QVERIFY(!item->findByUUID(QString()));
    item->setUUID(QString());
    QVERIFY(!item->findByUUID(QString()));
    QVERIFY(!item->findByUUID(""));
    item->setUUID(""); // an identifier by which nothing can be told apart
    QVERIFY(!item->findByUUID(""));
    QVERIFY(!makeFolder("Home", {item})->findByUUID(""));
}

void KDRBookmarkTest::isChildOf()
{
    const auto item = KDRBookmark::bookmarkWithTitle("Item");
    QVERIFY(!item->isChildOf(nullptr));
    QVERIFY(!item->isChildOf(item));
    const auto inner = makeFolder("Inner", {item});
    const auto outer = makeFolder("Outer", {inner});
    const auto other = makeFolder("Other");
    QVERIFY(item->isChildOf(inner));
    QVERIFY(item->isChildOf(outer));
    QVERIFY(inner->isChildOf(outer));
    QVERIFY(!outer->isChildOf(inner));
    QVERIFY(!item->isChildOf(other));
    QVERIFY(!item->isChildOf(nullptr));
    QVERIFY(!inner->isChildOf(inner));
    // Who is taken out keeps the way up.
    QVERIFY(inner->removeChild(item));
    QVERIFY(item->isChildOf(inner));
    QVERIFY(item->isChildOf(outer));
}

void KDRBookmarkTest::childIsAtIndex()
{
    const auto a = makeLink("A");
    const auto b = makeLink("B");
    QCOMPARE(a->childIsAtIndex(), -1);
    const auto home = makeFolder("Home", {a, b});
    QCOMPARE(a->childIsAtIndex(), 0);
    QCOMPARE(b->childIsAtIndex(), 1);

    // The very item goes before one that is merely equal.
    const auto twin = a->copy();
    home->addChild(twin);
    QVERIFY(twin->isEqual(a));
    QCOMPARE(twin->childIsAtIndex(), 2);
    // Without it, an equal one counts.
    home->removeChild(twin);
    QCOMPARE(twin->childIsAtIndex(), 0);
    // A removed item still has its parent, but no place in it.
    home->removeChild(b);
    QCOMPARE(b->parent(), home);
    QCOMPARE(b->childIsAtIndex(), -1);
}

void KDRBookmarkTest::policyComesFromTheParent()
{
    const auto item = makeLink("Item");
    QVERIFY(item->acceptsDroppedItems());
    QVERIFY(item->canBePersistent());
    const auto inner = makeFolder("Inner", {item});
    QVERIFY(item->acceptsDroppedItems());
    QVERIFY(item->canBePersistent());
    const auto smart = std::make_shared<WayfoldAutoFolder>();
    smart->addChild(inner);
    QVERIFY(!inner->acceptsDroppedItems());
    QVERIFY(!inner->canBePersistent());
    QVERIFY(!item->acceptsDroppedItems());
    QVERIFY(!item->canBePersistent());
}

void KDRBookmarkTest::search_data()
{
    QTest::addColumn<QString>("title");
    QTest::addColumn<QString>("substring");
    QTest::addColumn<bool>("found");
    QTest::newRow("same") << "Title"
                          << "Title" << true;
    QTest::newRow("inside") << "My Title"
                            << "y T" << true;
    QTest::newRow("other case") << "My Title"
                                << "TITLE" << true;
    QTest::newRow("other case, not ASCII") << QString::fromUtf8("Übung") << QString::fromUtf8("üBUNG") << true;
    QTest::newRow("absent") << "My Title"
                            << "Tittle" << false;
    QTest::newRow("nothing sought") << "My Title"
                                    << "" << false;
    QTest::newRow("none sought") << "My Title" << QString() << false;
    QTest::newRow("no title") << QString() << "Title" << false;
}

void KDRBookmarkTest::search()
{
    QFETCH(QString, title);
    QFETCH(QString, substring);
    QFETCH(bool, found);
    const auto item = KDRBookmark::bookmarkWithTitle(title);
    QCOMPARE(item->matchesSubstring(substring), found);
    const std::vector<KDRBookmarkPtr> matches = item->bookmarksWithSubstring(substring);
    QCOMPARE(matches.size(), std::size_t(found ? 1 : 0));
    if (found)
        QCOMPARE(matches[0], item);
}

void KDRBookmarkTest::titleComparator_data()
{
    QTest::addColumn<QString>("first");
    QTest::addColumn<QString>("second");
    QTest::addColumn<int>("sign");
    QTest::newRow("lower-case a, upper-case B") << "apple"
                                                << "Banana" << -1;
    QTest::newRow("upper-case B, lower-case a") << "Banana"
                                                << "apple" << 1;
    QTest::newRow("only case differs") << "Apple"
                                       << "aPPLE" << 0;
    QTest::newRow("same") << "Apple"
                          << "Apple" << 0;
    QTest::newRow("none first") << QString() << "Apple" << -1;
    QTest::newRow("none last") << "Apple" << QString() << 1;
    QTest::newRow("none and empty") << QString() << "" << 0;
}

void KDRBookmarkTest::titleComparator()
{
    QFETCH(QString, first);
    QFETCH(QString, second);
    const int result = KDRBookmark::bookmarkWithTitle(first)->titleComparator(*KDRBookmark::bookmarkWithTitle(second));
    QTEST((result > 0) - (result < 0), "sign");
}

void KDRBookmarkTest::timestampComparators()
{
    const auto early = makeLink("Early");
    const auto late = makeLink("Late");
    const auto never = makeLink("Never");
    early->setTimestamp(QDateTime(QDate(2004, 5, 1), QTime(8, 0), Qt::UTC));
    late->setTimestamp(QDateTime(QDate(2004, 5, 1), QTime(8, 0, 1), Qt::UTC));
    never->setTimestamp({});
    QVERIFY(early->timestampAscendingComparator(*late) < 0);
    QVERIFY(late->timestampAscendingComparator(*early) > 0);
    QCOMPARE(early->timestampAscendingComparator(*early), 0);
    QVERIFY(early->timestampDescendingComparator(*late) > 0);
    QVERIFY(late->timestampDescendingComparator(*early) < 0);
    QCOMPARE(late->timestampDescendingComparator(*late), 0);
    QVERIFY(never->timestampAscendingComparator(*early) < 0);
    QVERIFY(early->timestampAscendingComparator(*never) > 0);
    QCOMPARE(never->timestampAscendingComparator(*never), 0);
    // The time zone does not matter, the moment does.
    const auto abroad = makeLink("Abroad");
    abroad->setTimestamp(QDateTime(QDate(2004, 5, 1), QTime(10, 0), Qt::OffsetFromUTC, 7200));
    QCOMPARE(abroad->timestampAscendingComparator(*early), 0);
}

void KDRBookmarkTest::dictionaryOfTheBaseIsEmpty()
{
    const auto item = KDRBookmark::bookmarkWithTitle("Title");
    QVERIFY(item->createDictionary(true).isEmpty());
    QVERIFY(item->createDictionary(false).isEmpty());
    QVariantMap dictionary{{"Key", "Value"}};
    item->writeToDictionaryForSaving(dictionary, true);
    QCOMPARE(dictionary, (QVariantMap{{"Key", "Value"}}));
}

void KDRBookmarkTest::untitledItemsWriteEmptyTexts_data()
{
    QTest::addColumn<KDRBookmarkPtr>("item");
    QTest::addColumn<QString>("kindWord");
    QTest::newRow("folder") << KDRBookmarkPtr(std::make_shared<WayfoldBookmarkFolder>()) << "WebBookmarkTypeList";
    QTest::newRow("web link") << KDRBookmarkPtr(std::make_shared<WayfoldBookmarkURL>()) << "WebBookmarkTypeLeaf";
    QTest::newRow("file link") << KDRBookmarkPtr(std::make_shared<WayfoldBookmarkFile>()) << "WebBookmarkTypeLeaf";
    QTest::newRow("e-mail link") << KDRBookmarkPtr(std::make_shared<WayfoldBookmarkEmail>()) << "WebBookmarkTypeLeaf";
    QTest::newRow("note") << KDRBookmarkPtr(std::make_shared<WayfoldBookmarkNote>()) << "WebBookmarkTypeNote";
}

void KDRBookmarkTest::untitledItemsWriteEmptyTexts()
{
    QFETCH(KDRBookmarkPtr, item);
    item->setUUID(QString());
    const QVariantMap dictionary = item->createDictionary(true);
    QTEST(dictionary["WebBookmarkType"].toString(), "kindWord");
    QCOMPARE(dictionary["WebBookmarkUUID"], QVariant(QStringLiteral("")));
    QVERIFY(!dictionary["WebBookmarkUUID"].toString().isNull());
    const QVariant title = item->isFolder() ? dictionary["Title"] : dictionary["URIDictionary"].toMap()["title"];
    QCOMPARE(title, QVariant(QStringLiteral("")));
    QVERIFY(!title.toString().isNull());
}

void KDRBookmarkTest::copies_data()
{
    addRowOfEachKind();
}

void KDRBookmarkTest::copies()
{
    QFETCH(KDRBookmarkPtr, item);
    item->setTitle("Title");
    item->setTimestamp(QDateTime(QDate(2004, 5, 1), QTime(8, 0), Qt::UTC));
    const auto home = makeFolder("Home", {item});
    if (const auto itself = WayfoldBookmarkFolder::fromItem(item))
        itself->setFilterString("Title");
    const KDRBookmarkPtr copy = item->copy();
    QVERIFY(copy != item);
    QVERIFY(typeid(*copy) == typeid(*item));
    QCOMPARE(copy->title(), "Title");
    QCOMPARE(copy->uuid(), item->uuid());
    QCOMPARE(copy->timestamp(), item->timestamp());
    QVERIFY(!copy->parent());
    QVERIFY(copy->isEqual(item));
    QVERIFY(item->isEqual(copy));
    item->setTitle(QString());
    QVERIFY(item->copy()->title().isNull());
}

void KDRBookmarkTest::archives_data()
{
    addRowOfEachKind();
}

void KDRBookmarkTest::archives()
{
    QFETCH(KDRBookmarkPtr, item);
    item->setTitle("Title");
    const auto home = makeFolder("Home", {item});
    const KDRBookmarkPtr decoded = roundTripThroughArchive(item);
    QVERIFY(decoded);
    QVERIFY(typeid(*decoded) == typeid(*item));
    QCOMPARE(decoded->title(), "Title");
    QCOMPARE(decoded->uuid(), item->uuid());
    QVERIFY(!decoded->timestamp().isValid());
    QVERIFY(!decoded->parent());
}

void KDRBookmarkTest::archiveKeys_data()
{
    QTest::addColumn<KDRBookmarkPtr>("item");
    QTest::addColumn<QStringList>("keys");
    const auto folder = [](const WayfoldBookmarkFolderPtr &item) {
        item->setFilterString("search");
        return item;
    };
    const auto url = [](const WayfoldBookmarkURLPtr &item) {
        item->setValue(QVariant::fromValue(Url::URLWithString("http://a.example/")));
        return item;
    };
    const QStringList folderKeys{"_children", "_filterString"};
    QTest::newRow("base") << std::make_shared<KDRBookmark>() << QStringList();
    QTest::newRow("folder") << KDRBookmarkPtr(folder(std::make_shared<WayfoldBookmarkFolder>())) << folderKeys;
    QTest::newRow("smart folder") << KDRBookmarkPtr(folder(std::make_shared<WayfoldAutoFolder>())) << folderKeys;
    QTest::newRow("link") << KDRBookmarkPtr(url(std::make_shared<WayfoldBookmarkURL>())) << QStringList{"_url"};
    QTest::newRow("file") << KDRBookmarkPtr(url(std::make_shared<WayfoldBookmarkFile>())) << QStringList{"_url"};
    QTest::newRow("mail") << KDRBookmarkPtr(url(std::make_shared<WayfoldBookmarkEmail>())) << QStringList{"_url"};
    QTest::newRow("history") << KDRBookmarkPtr(url(std::make_shared<WayfoldHistoryURL>())) << QStringList{"_url"};
    QTest::newRow("note") << KDRBookmarkPtr(WayfoldBookmarkNote::bookmarkWithTitleAndNote("T", "text"))
                          << QStringList{"_noteText"};
}

void KDRBookmarkTest::archiveKeys()
{
    QFETCH(KDRBookmarkPtr, item);
    QFETCH(QStringList, keys);
    item->setTitle("Title");
    item->setUUID("Identifier");
    QVariantMap archive = PropertyList::fromData(KeyedArchiver::archivedDataWithRootObject(*item)).toMap();
    QCOMPARE(archive.take("$class").toString(), item->classNameForCoder());
    QCOMPARE(archive.value("_title"), QVariant("Title"));
    QCOMPARE(archive.value("_uuid"), QVariant("Identifier"));
    keys += QStringList{"_title", "_uuid"};
    keys.sort();
    QCOMPARE(archive.keys(), keys);
}

void KDRBookmarkTest::archivesKeepNoneAndEmptyApart()
{
    const auto item = KDRBookmark::bookmarkWithTitle(QString());
    item->setUUID(QString());
    KDRBookmarkPtr decoded = roundTripThroughArchive(item);
    QVERIFY(decoded->title().isNull());
    QVERIFY(decoded->uuid().isNull());
    item->setTitle("");
    decoded = roundTripThroughArchive(item);
    QVERIFY(decoded->title().isEmpty() && !decoded->title().isNull());
}

void KDRBookmarkTest::linksKeepTheirAddress_data()
{
    QTest::addColumn<WayfoldBookmarkURLPtr>("link");
    const Url web = Url::URLWithString("http://a.example/b%20c");
    QTest::newRow("web") << WayfoldBookmarkURL::bookmarkWithTitleAndURL("T", web);
    QTest::newRow("file") << WayfoldBookmarkURL::bookmarkWithTitleAndURL("T", Url::fileURLWithPath("/tmp/a b.txt"));
    QTest::newRow("mail") << WayfoldBookmarkURL::bookmarkWithTitleAndURL("T", Url::URLWithString("mailto:ann?cc=bob"));
    QTest::newRow("history") << WayfoldBookmarkURLPtr(WayfoldHistoryURL::bookmarkWithTitleAndURL("T", web));
}

void KDRBookmarkTest::linksKeepTheirAddress()
{
    QFETCH(WayfoldBookmarkURLPtr, link);
    QVERIFY(!link->url().isNull());
    for (const KDRBookmarkPtr &other : {link->copy(), KDRBookmarkPtr(roundTripThroughArchive(link))}) {
        QVERIFY(other);
        QCOMPARE(other->type(), link->type());
        QCOMPARE(other->valueAsString(), link->valueAsString());
        QVERIFY(link->isEqual(other));
    }
}

void KDRBookmarkTest::equality()
{
    const auto item = KDRBookmark::bookmarkWithTitle("Title");
    QVERIFY(item->isEqual(item));
    QVERIFY(!item->isEqual(KDRBookmarkPtr()));
    const KDRBookmarkPtr twin = item->copy();
    QVERIFY(item->isEqual(twin));
    twin->setTimestamp({});
    QVERIFY(item->isEqual(twin));
    twin->setTitle("title");
    QVERIFY(!item->isEqual(twin));
    twin->setTitle("Title");
    twin->createUUID();
    QVERIFY(!item->isEqual(twin));
    twin->setUUID(item->uuid().toLower());
    QVERIFY(!item->isEqual(twin));

    const auto untitled = KDRBookmark::bookmarkWithTitle(QString());
    QVERIFY(untitled->isEqual(untitled->copy()));
    const KDRBookmarkPtr empty = untitled->copy();
    empty->setTitle("");
    QVERIFY(!untitled->isEqual(empty));
}

void KDRBookmarkTest::equalityIsOneSided()
{
    const std::vector<KDRBookmarkPtr> items = oneOfEachKind();
    for (const KDRBookmarkPtr &item : items) {
        item->setTitle("Title");
        item->setUUID("ID");
        if (const auto itself = WayfoldBookmarkFolder::fromItem(item))
            itself->setFilterString("Title");
    }
    const auto isEqual = [&](std::size_t a, std::size_t b) { return items[a]->isEqual(items[b]); };
    enum { Base, Folder, Web, File, Note, Mail, History, Auto, RelatedBookmarks, RelatedHistory };
    const QList<std::pair<std::size_t, std::size_t>> derived = {{Base, Folder},
                                                                {Base, Web},
                                                                {Base, File},
                                                                {Base, Note},
                                                                {Base, Mail},
                                                                {Base, Auto},
                                                                {Web, File},
                                                                {Web, Mail},
                                                                {Web, History},
                                                                {Base, History},
                                                                {Folder, Auto},
                                                                {Base, RelatedBookmarks},
                                                                {Folder, RelatedBookmarks},
                                                                {Auto, RelatedBookmarks},
                                                                {Auto, RelatedHistory},
                                                                {Folder, RelatedHistory},
                                                                {Base, RelatedHistory}};
    for (std::size_t a = 0; a < items.size(); ++a) {
        for (std::size_t b = 0; b < items.size(); ++b) {
            const bool expected = a == b || derived.contains(std::pair(a, b));
            QVERIFY2(isEqual(a, b) == expected,
                     qPrintable(items[a]->classNameForCoder() + " and " + items[b]->classNameForCoder()));
        }
    }
}

void KDRBookmarkTest::iconOfAFile()
{
    _home->write("report.txt", "text");
    const QString path = _home->path("report.txt");
    const auto natural = KDRBookmark::loadIconForFileScaledTo(path, QSizeF(0, 0));
    QVERIFY(natural);
    QVERIFY(!natural->scalesWhenResized());
    const auto scaled = KDRBookmark::loadIconForFileScaledTo(path, QSizeF(20, 24));
    QVERIFY(scaled);
    QVERIFY(scaled->scalesWhenResized());
    QCOMPARE(scaled->size(), QSizeF(20, 24));
    QVERIFY(!KDRBookmark::loadIconForFileScaledTo(QString(), QSizeF(16, 16)));
}

QTEST_MAIN(KDRBookmarkTest)
#include "KDRBookmarkTest.moc"
