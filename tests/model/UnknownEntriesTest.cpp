#include "model/UnknownEntries.h"

#include "model/WayfoldBookmarkAutoFolder.h"
#include "tests/model/ModelTestSupport.h"

#include <QtTest>

// Entries of a folder that make no item: shown nowhere, and written back where they stood.
class UnknownEntriesTest : public QObject
{
    Q_OBJECT

private:
    FreshHome _home;

    // A folder of the entries: capitals are items, all else is unknown.
    static WayfoldBookmarkFolderPtr folderOf(const QString &entries);
    // The entries that the folder writes, in the same form.
    static QString written(const WayfoldBookmarkFolder &folder);
    static KDRBookmarkPtr item(const WayfoldBookmarkFolder &folder, const char *title)
    {
        return folder.childWithTitle(title);
    }

private Q_SLOTS:
    void stayWhereTheyStood_data();
    void stayWhereTheyStood();
    void areNoChildren();
    void followTheItemBefore();
    void followItWhenSorted();
    void stayWhenItGoes();
    void stayWhenAllGo();
    void comeBackWithTheItem();
    void ofAnItemThatIsThereTwice();
    void areWrittenAmongWhatIsNotSaved();
    void goWithTheFolder();
    void goWithCopies();
    void goWithArchives();
    void goWhenTheFolderBeginsAnew();
    void areTakenFromWhatTheFolderAgreesWith();
    void depth();
    void tooDeepToBeSavedElsewhere();
};

WayfoldBookmarkFolderPtr UnknownEntriesTest::folderOf(const QString &entries)
{
    QVariantList children;
    for (const QChar entry : entries) {
        if (entry.isUpper())
            children.append(makeLink(QString(entry))->createDictionary(true));
        else
            children.append(QString(entry));
    }
    return WayfoldBookmarkFolder::bookmarkFromDictionary(
        {{"WebBookmarkType", "WebBookmarkTypeList"}, {"Title", "F"}, {"Children", children}});
}

QString UnknownEntriesTest::written(const WayfoldBookmarkFolder &folder)
{
    QString entries;
    const QVariantList children = folder.createDictionary(true)["Children"].toList();
    for (const QVariant &child : children) {
        const QString title = child.toMap()["URIDictionary"].toMap()["title"].toString();
        entries += title.isEmpty() ? child.toString() : title;
    }
    return entries;
}

void UnknownEntriesTest::stayWhereTheyStood_data()
{
    QTest::addColumn<QString>("entries");
    for (const char *entries : {"", "A", "a", "ab", "aA", "Aa", "AaB", "aAbBc", "abAcdBef", "ABcd", "abAB"})
        QTest::addRow("%s", entries) << entries;
}

void UnknownEntriesTest::stayWhereTheyStood()
{
    QFETCH(QString, entries);
    QCOMPARE(written(*folderOf(entries)), entries);
}

void UnknownEntriesTest::areNoChildren()
{
    const auto folder = folderOf("aAbBc");
    const auto root = makeFolder("Root", {folder, folderOf("a")});
    QCOMPARE(childTitles(*folder), QStringList({"A", "B"}));
    QCOMPARE(folder->childCount(), 2U);
    QCOMPARE(folder->deepChildCount(), 2U);
    QCOMPARE(folder->persistentChildCount(), 2U);
    QCOMPARE(root->deepChildCount(), 4U);
    QVERIFY(folderOf("zAz")->bookmarksWithSubstring("z").empty());
    QVERIFY(folderOf("a")->isEmpty());
    QVERIFY(!folderOf("a")->childAtIndex(0));
    QVERIFY(!folderOf("Aa")->lastChild()->isFolder());
    // Nor is a folder another one for them.
    const auto without = folderOf("AB");
    without->setUUID(folder->uuid());
    for (int i = 0; i < 2; ++i)
        without->children()[i]->setUUID(folder->children()[i]->uuid());
    QVERIFY(without->isEqual(folder));
}

void UnknownEntriesTest::followTheItemBefore()
{
    const auto folder = folderOf("AaBb");
    const KDRBookmarkPtr b = item(*folder, "B");
    folder->removeChild(b);
    folder->addChildAtIndex(b, 0);
    QCOMPARE(written(*folder), QString("BbAa"));
    folder->addChildAtIndex(makeLink("C"), 1);
    folder->addChild(makeLink("D"));
    QCOMPARE(written(*folder), QString("BbCAaD"));
}

void UnknownEntriesTest::followItWhenSorted()
{
    const auto folder = folderOf("aCbcAdBe");
    folder->sortChildrenByTitle();
    QCOMPARE(written(*folder), QString("aAdBeCbc"));
}

void UnknownEntriesTest::stayWhenItGoes()
{
    const auto folder = folderOf("aAbBcCd");
    folder->removeChild(item(*folder, "B"));
    QCOMPARE(written(*folder), QString("aAbcCd"));
    folder->removeChild(item(*folder, "A"));
    QCOMPARE(written(*folder), QString("abcCd"));
}

void UnknownEntriesTest::stayWhenAllGo()
{
    const auto folder = folderOf("aAbBcCd");
    folder->removeAllChildren();
    QCOMPARE(written(*folder), QString("abcd"));
    folder->addChild(makeLink("X"));
    QCOMPARE(written(*folder), QString("abcdX"));
    folder->removeAllLeafChildren();
    QCOMPARE(written(*folder), QString("abcd"));
}

void UnknownEntriesTest::comeBackWithTheItem()
{
    const auto folder = folderOf("AaBb");
    const KDRBookmarkPtr b = item(*folder, "B");
    folder->removeChild(b);
    QCOMPARE(written(*folder), QString("Aab"));
    folder->addChildAtIndex(b, 0);
    QCOMPARE(written(*folder), QString("BbAa"));
}

void UnknownEntriesTest::ofAnItemThatIsThereTwice()
{
    const auto folder = folderOf("AaB");
    folder->addChild(item(*folder, "A"));
    QCOMPARE(written(*folder), QString("AaBA"));
}

void UnknownEntriesTest::areWrittenAmongWhatIsNotSaved()
{
    const auto folder = folderOf("aAb");
    folder->addAutoFolders();
    folder->addChildAtIndex(WayfoldBookmarkAutoFolder::bookmarkWithTitle("Smart"), 0);
    QCOMPARE(written(*folder), QString("aAb"));
}

void UnknownEntriesTest::goWithTheFolder()
{
    const auto folder = folderOf("aAb");
    const auto root = makeFolder("Root", {folder});
    const auto other = makeFolder("Other");
    root->removeChild(folder);
    QVERIFY(root->createDictionary(true)["Children"].toList().isEmpty());
    other->addChild(folder);
    QCOMPARE(written(*WayfoldBookmarkFolder::fromItem(other->childAtIndex(0))), QString("aAb"));
}

void UnknownEntriesTest::goWithCopies()
{
    const auto folder = folderOf("aAbBc");
    const auto copy = WayfoldBookmarkFolder::fromItem(folder->copy());
    QCOMPARE(written(*copy), QString("aAbBc"));
    copy->removeChild(item(*copy, "A"));
    copy->addChild(makeLink("C"));
    QCOMPARE(written(*copy), QString("abBcC"));
    QCOMPARE(written(*folder), QString("aAbBc"));
    // As they stand by then.
    folder->sortChildrenByTitle();
    folder->removeChild(item(*folder, "A"));
    QCOMPARE(written(*WayfoldBookmarkFolder::fromItem(folder->copy())), QString("abBc"));
}

void UnknownEntriesTest::goWithArchives()
{
    const auto back = roundTripThroughArchive(folderOf("aAbBc"));
    QCOMPARE(written(*back), QString("aAbBc"));
    back->removeChild(item(*back, "A"));
    QCOMPARE(written(*back), QString("abBc"));
    QCOMPARE(written(*roundTripThroughArchive(folderOf("AB"))), QString("AB"));
}

void UnknownEntriesTest::goWhenTheFolderBeginsAnew()
{
    const auto folder = folderOf("aAb");
    folder->loadFromDictionary({{"Title", "T"}});
    QCOMPARE(written(*folder), QString(""));
    const auto other = folderOf("aAb");
    other->init();
    QCOMPARE(written(*other), QString(""));
}

void UnknownEntriesTest::areTakenFromWhatTheFolderAgreesWith()
{
    const auto folder = makeFolder("F", {makeLink("A"), makeLink("B")});
    folder->addAutoFolders();
    QVariantMap dictionary = folder->createDictionary(true);
    QVariantList children = dictionary["Children"].toList();
    children = {"a", children[0], "b", "c", children[1], "d"};
    dictionary["Children"] = children;
    dictionary["Colour"] = "red";
    folder->keepUnknown(dictionary);
    QCOMPARE(written(*folder), QString("aAbcBd"));
    QCOMPARE(folder->createDictionary(true), dictionary);
    QCOMPARE(folder->childCount(), 4U);
    folder->removeChild(item(*folder, "A"));
    QCOMPARE(written(*folder), QString("abcBd"));
}

void UnknownEntriesTest::depth()
{
    QCOMPARE(folderOf("A")->depthOfUnknown(), 0);
    QCOMPARE(folderOf("Aa")->depthOfUnknown(), 1); // the list of the children
    const QVariantList deep{QVariantMap{{"a", QVariantList{QVariantList()}}}};
    const auto folder = WayfoldBookmarkFolder::bookmarkFromDictionary({{"Title", "F"}, {"Children", deep}});
    QCOMPARE(folder->depthOfUnknown(), 4);
}

// What lies too deep in its new place keeps nothing from being read: the file stays as it is.
void UnknownEntriesTest::tooDeepToBeSavedElsewhere()
{
    QVariant deep = "x";
    for (int depth = 0; depth < 1020; ++depth)
        deep = QVariantList{deep};
    auto root = WayfoldBookmarkFolder::bookmarkFromDictionary(
        {{"WebBookmarkType", "WebBookmarkTypeList"}, {"Title", "F"}, {"Children", QVariantList{deep}}});
    const QString path = _home.path("deep.plist");
    root = makeFolder("Root", {root});
    QVERIFY(root->writeDictionaryFile(path));
    QCOMPARE(WayfoldBookmarkFolder::bookmarkFromDictionaryFile(path)->createDictionary(true)["Children"],
             root->createDictionary(true)["Children"]);
    const QByteArray file = _home.read("deep.plist");
    QVERIFY(!makeFolder("Outer", {root})->writeDictionaryFile(path));
    QCOMPARE(_home.read("deep.plist"), file);
}

QTEST_MAIN(UnknownEntriesTest)
#include "UnknownEntriesTest.moc"
