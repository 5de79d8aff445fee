#include "model/ItemCodec.h"

#include "model/WayfoldBookmarkABGroup.h"
#include "model/WayfoldBookmarkABPerson.h"
#include "tests/model/ModelTestSupport.h"

#include <QtTest>

// The one place that knows which word makes which kind, and which kind writes which word.
class ItemCodecTest : public QObject
{
    Q_OBJECT

private:
    FreshHome _home;

private Q_SLOTS:
    void everyKindComesBack_data();
    void everyKindComesBack();
    void foldersByAnyWord_data();
    void foldersByAnyWord();
    void linksByTheirAddress_data();
    void linksByTheirAddress();
    void historyEntries();
    void autoFolders();
    void classesOfArchives();
};

void ItemCodecTest::everyKindComesBack_data()
{
    QTest::addColumn<KDRBookmarkPtr>("item");
    QTest::addColumn<QString>("word");
    QTest::newRow("folder") << KDRBookmarkPtr(makeFolder("T")) << "WebBookmarkTypeList";
    QTest::newRow("web link") << KDRBookmarkPtr(makeLink("T")) << "WebBookmarkTypeLeaf";
    QTest::newRow("file link") << KDRBookmarkPtr(makeLink("T", "file:///tmp/a")) << "WebBookmarkTypeLeaf";
    QTest::newRow("e-mail link") << KDRBookmarkPtr(makeLink("T", "mailto:ann")) << "WebBookmarkTypeLeaf";
    QTest::newRow("note") << KDRBookmarkPtr(WayfoldBookmarkNote::bookmarkWithTitle("T")) << "WebBookmarkTypeNote";
    QTest::newRow("person") << KDRBookmarkPtr(WayfoldBookmarkABPerson::bookmarkWithID("ann")) << "ABPerson";
    QTest::newRow("group") << KDRBookmarkPtr(WayfoldBookmarkABGroup::bookmarkWithID("friends")) << "ABGroup";
}

void ItemCodecTest::everyKindComesBack()
{
    QFETCH(KDRBookmarkPtr, item);
    const QVariantMap dictionary = item->createDictionary(true);
    QTEST(dictionary["WebBookmarkType"].toString(), "word");
    const KDRBookmarkPtr made = ItemKinds::current().itemFromDictionary(dictionary);
    QVERIFY(made);
    QCOMPARE(made->classNameForCoder(), item->classNameForCoder());
    QCOMPARE(made->createDictionary(true)["WebBookmarkUUID"], dictionary["WebBookmarkUUID"]);
    QCOMPARE(ItemKinds::current().isFolder(dictionary), item->type() == KDRBookmark::FolderType);
}

void ItemCodecTest::foldersByAnyWord_data()
{
    QTest::addColumn<QVariant>("word");
    QTest::addColumn<bool>("isFolder");
    QTest::newRow("list") << QVariant("WebBookmarkTypeList") << true;
    QTest::newRow("bar") << QVariant("BookmarksBar") << true;
    QTest::newRow("menu") << QVariant("BookmarksMenu") << true;
    QTest::newRow("other case") << QVariant("bookmarksbar") << false;
    QTest::newRow("unknown") << QVariant("Newer") << false;
    QTest::newRow("none") << QVariant() << false;
    QTest::newRow("number") << QVariant(1) << false;
}

void ItemCodecTest::foldersByAnyWord()
{
    QFETCH(QVariant, word);
    QFETCH(bool, isFolder);
    QCOMPARE(ItemKinds::current().isFolder({{"WebBookmarkType", word}}), isFolder);
    const KDRBookmarkPtr made = ItemKinds::current().itemFromDictionary({{"WebBookmarkType", word}, {"Title", "T"}});
    QCOMPARE(made && made->isFolder(), isFolder);
    // A folder without a title is none to show.
    QVERIFY(!ItemKinds::current().itemFromDictionary({{"WebBookmarkType", word}, {"Title", ""}}));
}

void ItemCodecTest::linksByTheirAddress_data()
{
    QTest::addColumn<QString>("address");
    QTest::addColumn<int>("type");
    QTest::newRow("page") << "http://a.example/" << 2;
    QTest::newRow("file") << "file:///tmp/a" << 3;
    QTest::newRow("mail") << "mailto:ann" << 5;
    QTest::newRow("mail in capitals") << "MAILTO:ann" << 2;
    QTest::newRow("none") << "" << 2;
}

void ItemCodecTest::linksByTheirAddress()
{
    QFETCH(QString, address);
    QFETCH(int, type);
    const WayfoldBookmarkURLPtr link = ItemKinds::current().linkForURL(Url::URLWithString(address));
    QCOMPARE(int(link->type()), type);
    QVERIFY(link->url().isNull());
    QVERIFY(link->title().isNull());
}

void ItemCodecTest::historyEntries()
{
    const ItemKinds &kinds = ItemKinds::current();
    const KDRBookmarkPtr entry = kinds.itemFromHistoryDictionary({{"", "http://a.example/"}, {"title", "T"}});
    QVERIFY(entry);
    QCOMPARE(int(entry->type()), 6);
    QVERIFY(!kinds.itemFromHistoryDictionary({{"", "http://a.example/"}}));
    QVERIFY(!kinds.itemFromHistoryDictionary({{"title", "T"}}));
}

void ItemCodecTest::autoFolders()
{
    const std::vector<WayfoldBookmarkFolderPtr> folders = ItemKinds::current().autoFolders();
    QCOMPARE(folders.size(), 2U);
    QCOMPARE(folders[0]->title(), QStringLiteral("Related Bookmarks"));
    QCOMPARE(folders[0]->classNameForCoder(), QStringLiteral("WayfoldBookmarkAutoFolder"));
    QCOMPARE(folders[1]->title(), QStringLiteral("Related History"));
    QCOMPARE(folders[1]->classNameForCoder(), QStringLiteral("WayfoldHistoryAutoFolder"));
    QVERIFY(folders[0]->isAutoFolder() && folders[1]->isAutoFolder());
}

void ItemCodecTest::classesOfArchives()
{
    for (const KDRBookmarkPtr &item : std::vector<KDRBookmarkPtr>{
             std::make_shared<KDRBookmark>(), makeFolder("T"), makeLink("T"), makeLink("T", "file:///tmp/a"),
             makeLink("T", "mailto:ann"), WayfoldBookmarkNote::bookmarkWithTitle("T"),
             WayfoldHistoryURL::bookmarkWithTitle("T"), WayfoldBookmarkABPerson::bookmarkWithID("ann"),
             WayfoldBookmarkABGroup::bookmarkWithID("friends"), std::make_shared<WayfoldAutoFolder>(),
             ItemKinds::current().autoFolders()[0], ItemKinds::current().autoFolders()[1]}) {
        const KDRBookmarkPtr back = roundTripThroughArchive(item);
        QVERIFY2(back, qPrintable(item->classNameForCoder()));
        QCOMPARE(back->classNameForCoder(), item->classNameForCoder());
    }
}

QTEST_MAIN(ItemCodecTest)
#include "ItemCodecTest.moc"
