#include "tests/model/ModelTestSupport.h"

#include "model/WayfoldBookmarkABGroup.h"
#include "model/WayfoldBookmarkABPerson.h"
#include "model/WayfoldBookmarkAutoFolder.h"
#include "platform/files/PropertyList.h"
#include "tests/support/MemoryContacts.h"
#include "tests/support/PythonScript.h"

#include <QRandomGenerator>
#include <QtTest>

// The item file as a whole: what is written, and what is made of any file that is found in its place.
class ItemFileTest : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<FreshHome> _home;
    QString path() const { return _home->path("Bookmarks.plist"); }
    WayfoldBookmarkFolderPtr readBack(ItemFileReading *reading = nullptr) const
    {
        return WayfoldBookmarkFolder::readDictionaryFile(path(), reading);
    }

private Q_SLOTS:
    void init();
    void cleanup();

    void writesEveryKind();
    void writesAnEmptyRoot();
    void readsWhatItWrote();
    void peopleComeThrough_data();
    void peopleComeThrough();
    void othersReadPeople();
    void groupsAreWrittenAlone();
    void smartFoldersAreLeftOut();
    void historyEntriesTravelEmpty();
    void rawSearchStringIsWritten();
    void missingSearchStringBecomesTheTitle();
    void loadingReplacesTheContents();
    void entries_data();
    void entries();
    void foldersOfTheBrowser();
    void withoutInsertAFolderIsLoadedIntoThisOne();
    void withoutInsertOtherKinds();
    void missingFile();
    void unreadableFiles_data();
    void unreadableFiles();
    void rootOfAnotherKind();
    void nothingIsLost_data();
    void nothingIsLost();
    void othersFindAllOfTheirs();
    void othersFindAllOfTheirsAfterChanges();
    void valuesOfOtherTypes();
    void truncatedFiles();
    void oddTexts();
    void textsThatBeginWithAByteOrderMark();
    void titlesOfControlCharacters();
    void cannotBeWritten();
    void deepestTree();
    void deepSmartFolder();
};

void ItemFileTest::init()
{
    _home = std::make_unique<FreshHome>();
}

void ItemFileTest::cleanup()
{
    QLoggingCategory::setFilterRules({});
    _home.reset();
}

static WayfoldBookmarkFolderPtr sampleTree()
{
    const auto site =
        makeFolder("example.com", {makeLink("Page", "http://www.example.com/a?b=c&d"),
                                   makeLink("Report", "file:///tmp/report.txt"), makeLink("Mail", "mailto:ann"),
                                   WayfoldBookmarkNote::bookmarkWithTitleAndNote("Note", "Two\nlines")});
    site->setFilterString("example");
    const auto empty = makeFolder("Empty");
    empty->setFilterString("Empty");
    const auto root = makeFolder("Root", {site, empty});
    root->setFilterString("Root");
    return root;
}

// The dictionary without the entries that have no value.
static QVariantMap known(QVariantMap dictionary)
{
    dictionary.removeIf([](const auto entry) { return !entry.value().isValid(); });
    return dictionary;
}

// Whether the file holds all that the value holds. Of what can be missing, empty texts mean the same.
static bool holds(const QVariant &file, const QVariant &value)
{
    if (value.typeId() == QMetaType::QString && value.toString().isEmpty() && file.typeId() == QMetaType::QString)
        return true;
    if (value.typeId() != file.typeId())
        return false;
    if (value.typeId() == QMetaType::QVariantMap) {
        const QVariantMap dictionary = value.toMap();
        const QVariantMap holder = file.toMap();
        return std::all_of(dictionary.keyBegin(), dictionary.keyEnd(), [&](const QString &key) {
            return holder.contains(key) && holds(holder.value(key), dictionary.value(key));
        });
    }
    if (value.typeId() != QMetaType::QVariantList)
        return file == value;
    const QVariantList values = value.toList();
    const QVariantList others = file.toList();
    return std::equal(others.begin(), others.end(), values.begin(), values.end(), holds);
}

static QVariantMap leaf(const QVariant &title, const QVariant &address)
{
    return known({{"WebBookmarkType", "WebBookmarkTypeLeaf"},
                  {"URLString", address},
                  {"URIDictionary", known({{"title", title}, {"", address}})}});
}

static QVariantMap list(const QVariant &title, const QVariantList &children)
{
    return known({{"WebBookmarkType", "WebBookmarkTypeList"}, {"Title", title}, {"Children", children}});
}

void ItemFileTest::writesEveryKind()
{
    const auto root = sampleTree();
    QVERIFY(root->writeDictionaryFile(path()));
    const auto site = WayfoldBookmarkFolder::fromItem(root->childAtIndex(0));
    const auto uuid = [&](unsigned index) { return site->childAtIndex(index)->uuid(); };
    const auto linkDictionary = [&](unsigned index, const QString &title, const QString &address) {
        return QVariantMap{{"WebBookmarkType", "WebBookmarkTypeLeaf"},
                           {"WebBookmarkUUID", uuid(index)},
                           {"URLString", address},
                           {"URIDictionary", QVariantMap{{"title", title}, {"", address}}}};
    };
    const QVariantMap note{{"WebBookmarkType", "WebBookmarkTypeNote"},
                           {"WebBookmarkUUID", uuid(3)},
                           {"Note", "Two\nlines"},
                           {"URIDictionary", QVariantMap{{"title", "Note"}, {"", ""}}}};
    const QVariantMap siteDictionary{
        {"WebBookmarkType", "WebBookmarkTypeList"},
        {"WebBookmarkUUID", site->uuid()},
        {"Title", "example.com"},
        {"SearchString", "example"},
        {"Children", QVariantList{linkDictionary(0, "Page", "http://www.example.com/a?b=c&d"),
                                  linkDictionary(1, "Report", "file:///tmp/report.txt"),
                                  linkDictionary(2, "Mail", "mailto:ann"), note}}};
    const QVariantMap empty{{"WebBookmarkType", "WebBookmarkTypeList"},
                            {"WebBookmarkUUID", root->childAtIndex(1)->uuid()},
                            {"Title", "Empty"},
                            {"SearchString", "Empty"},
                            {"Children", QVariantList()}};
    const QVariantMap expected{{"WebBookmarkType", "WebBookmarkTypeList"},
                               {"WebBookmarkUUID", root->uuid()},
                               {"Title", "Root"},
                               {"SearchString", "Root"},
                               {"Children", QVariantList{siteDictionary, empty}}};
    QCOMPARE(PropertyList::readDictionaryFile(path()), expected);
    QVERIFY(_home->read("Bookmarks.plist").startsWith("<?xml"));
}

void ItemFileTest::writesAnEmptyRoot()
{
    QVERIFY(std::make_shared<WayfoldBookmarkFolder>()->writeDictionaryFile(path()));
    const QVariantMap dictionary = PropertyList::readDictionaryFile(path());
    QCOMPARE(dictionary["Title"], QVariant(""));
    QCOMPARE(dictionary["SearchString"], QVariant(""));
    QCOMPARE(dictionary["Children"], QVariant(QVariantList()));
    const auto root = readBack();
    QVERIFY(root->title().isEmpty() && !root->title().isNull()); // what was none is an empty text now
    QCOMPARE(root->uuid(), dictionary["WebBookmarkUUID"].toString());
}

void ItemFileTest::readsWhatItWrote()
{
    const auto root = sampleTree();
    QVERIFY(root->writeDictionaryFile(path()));
    ItemFileReading reading;
    const auto read = readBack(&reading);
    QVERIFY(root->isEqual(read));
    QVERIFY(read->isEqual(root));
    QVERIFY(reading.readable);
    QVERIFY(reading.complete);
    QCOMPARE(read->childAtIndex(0)->parent(), read);
    const auto site = WayfoldBookmarkFolder::fromItem(read->childAtIndex(0));
    for (unsigned i = 0; i < 4; ++i)
        QCOMPARE(int(site->childAtIndex(i)->type()), (std::array{2, 3, 5, 4})[i]);
    QVERIFY(root->isEqual(WayfoldBookmarkFolder::bookmarkFromDictionaryFile(path())));
    // Written once more it is the same file.
    const QByteArray first = _home->read("Bookmarks.plist");
    QVERIFY(read->writeDictionaryFile(path()));
    QCOMPARE(_home->read("Bookmarks.plist"), first);
}

void ItemFileTest::peopleComeThrough_data()
{
    QTest::addColumn<bool>("areThere");
    QTest::addColumn<QStringList>("titles");
    QTest::newRow("contacts") << true << QStringList({"Ann Bell", "Friends", "Kettle", "Note", "Invalid"});
    QTest::newRow("no contacts") << false << QStringList({"Invalid", "Invalid", "Invalid", "Note", "Invalid"});
}

void ItemFileTest::peopleComeThrough()
{
    QFETCH(bool, areThere);
    MemoryContacts contacts;
    if (areThere) {
        contacts.set(MemoryContacts::person("ann", "Ann", "Bell"));
        contacts.set(MemoryContacts::group("friends", "Friends", {"ann"}));
        contacts.set(MemoryContacts::company("kettle", "Kettle"));
    }
    const auto entry = [](const char *type, const char *id, const char *uuid) {
        return QVariantMap{{"WebBookmarkType", type}, {"AddressBookID", id}, {"WebBookmarkUUID", uuid}};
    };
    const QVariantMap note{{"WebBookmarkType", "WebBookmarkTypeNote"},
                           {"WebBookmarkUUID", "note"},
                           {"Note", "text"},
                           {"URIDictionary", QVariantMap{{"title", "Note"}, {"", ""}}}};
    const QVariantMap file{
        {"WebBookmarkType", "WebBookmarkTypeList"},
        {"WebBookmarkUUID", "root"},
        {"Title", "Root"},
        {"SearchString", "Root"},
        {"Children", QVariantList{entry("ABPerson", "ann", "own identifier"), entry("ABGroup", "friends", "friends"),
                                  entry("ABPerson", "kettle", "kettle"), note, entry("ABPerson", "gone", "gone")}}};
    QVERIFY(PropertyList::writeFile(file, path()));
    const QByteArray written = _home->read("Bookmarks.plist");
    ItemFileReading reading;
    const auto root = readBack(&reading);
    QTEST(childTitles(*root), "titles");
    QVERIFY(reading.complete);
    root->refresh();
    for (const KDRBookmarkPtr &item : root->children())
        item->ensureUpToDate();
    QVERIFY(root->writeDictionaryFile(path()));
    QCOMPARE(_home->read("Bookmarks.plist"), written);
}

void ItemFileTest::othersReadPeople()
{
    MemoryContacts contacts;
    contacts.set(MemoryContacts::person("ann:ABPerson", "Ann", "Bell"));
    contacts.set(MemoryContacts::group("B\u00fcro <1>", "Friends", {"ann:ABPerson"}));
    const auto root = makeFolder("Root", {WayfoldBookmarkABPerson::bookmarkWithID("ann:ABPerson"),
                                          WayfoldBookmarkABGroup::bookmarkWithID("B\u00fcro <1>"),
                                          WayfoldBookmarkABPerson::bookmarkWithRecord(nullptr)});
    root->childAtIndex(0)->setUUID("own");
    root->refresh();
    QVERIFY(root->writeDictionaryFile(path()));
    const QString failure = runPython(*_home, "d = plistlib.load(open('Bookmarks.plist', 'rb'))\n"
                                              "assert d['Children'] == [\n"
                                              " {'WebBookmarkType': 'ABPerson', 'AddressBookID': 'ann:ABPerson',\n"
                                              "  'WebBookmarkUUID': 'own'},\n"
                                              " {'WebBookmarkType': 'ABGroup', 'AddressBookID': 'B\\u00fcro <1>',\n"
                                              "  'WebBookmarkUUID': 'B\\u00fcro <1>'},\n"
                                              " {'WebBookmarkType': 'ABPerson', 'AddressBookID': '',\n"
                                              "  'WebBookmarkUUID': ''}], d\n"
                                              "plistlib.dump(d, open('Bookmarks.plist', 'wb'))\n");
    QVERIFY2(failure.isNull(), qPrintable(failure));
    // And the other way round.
    const auto read = readBack();
    QCOMPARE(childTitles(*read), QStringList({"Ann Bell", "Friends", "Invalid"}));
    QCOMPARE(read->childAtIndex(0)->uuid(), QStringLiteral("own"));
}

void ItemFileTest::groupsAreWrittenAlone()
{
    MemoryContacts contacts;
    contacts.set(MemoryContacts::person("ann", "Ann", "Bell"));
    contacts.set(MemoryContacts::group("friends", "Friends", {"ann"}));
    const auto friends = WayfoldBookmarkABGroup::bookmarkWithID("friends");
    friends->ensureUpToDate();
    const auto site = makeFolder("Site", {friends});
    site->addAutoFolders();
    QCOMPARE(site->childCount(), 3u);
    QCOMPARE(site->persistentChildCount(), 2u); // the group and whom it holds, deliberately
    const auto copy = std::static_pointer_cast<WayfoldBookmarkFolder>(site->copy());
    QVERIFY(makeFolder("Root", {site})->writeDictionaryFile(path()));
    const auto read = WayfoldBookmarkFolder::fromItem(readBack()->childAtIndex(0));
    QCOMPARE(childTitles(*read), QStringList{"Friends"});
    QCOMPARE(WayfoldBookmarkFolder::fromItem(read->childAtIndex(0))->childCount(), 0u);
    QCOMPARE(copy->persistentChildCount(), 2u);
}

void ItemFileTest::smartFoldersAreLeftOut()
{
    const auto site = makeFolder("example.com", {makeLink("Page")});
    site->addAutoFolders();
    const auto smart = WayfoldBookmarkFolder::fromItem(site->childAtIndex(1));
    smart->addChild(makeLink("Inside"));
    const auto root = makeFolder("Root", {site});
    QCOMPARE(root->createDictionary(true)["Children"].toList()[0].toMap()["Children"].toList().size(), 1);
    const QVariantList all = root->createDictionary(false)["Children"].toList()[0].toMap()["Children"].toList();
    QCOMPARE(all.size(), 3);
    QCOMPARE(all[1].toMap()["Title"], QVariant("Related Bookmarks"));
    QCOMPARE(all[1].toMap()["Children"].toList().size(), 1);
    QCOMPARE(all[2].toMap()["Title"], QVariant("Related History"));
    QVERIFY(root->writeDictionaryFile(path()));
    const QByteArray file = _home->read("Bookmarks.plist");
    QVERIFY(!file.contains("Related"));
    QVERIFY(!file.contains("Inside"));
    QVERIFY(file.contains("Page"));
}

void ItemFileTest::historyEntriesTravelEmpty()
{
    const auto root = makeFolder("Root");
    root->parseHistoryDictionary({{"", "http://a.example/"}, {"title", "T"}, {"lastVisitedDate", "1"}});
    QCOMPARE(root->createDictionary(true)["Children"], QVariant(QVariantList{QVariantMap()}));
}

void ItemFileTest::rawSearchStringIsWritten()
{
    const auto site = makeFolder("example.com");
    QCOMPARE(site->createDictionary(true)["SearchString"], QVariant(""));
    QVERIFY(!site->createDictionary(true)["SearchString"].toString().isNull());
    site->setFilterString("exam");
    QCOMPARE(site->createDictionary(true)["SearchString"], QVariant("exam"));
}

void ItemFileTest::missingSearchStringBecomesTheTitle()
{
    for (const QVariant &stored : {QVariant(), QVariant("")}) {
        const auto site = WayfoldBookmarkFolder::bookmarkFromDictionary({{"Title", "A"}, {"SearchString", stored}});
        QCOMPARE(site->filterString(), "A");
        QCOMPARE(site->createDictionary(true)["SearchString"], QVariant("A"));
        site->setTitle("B");
        QCOMPARE(site->filterString(), "A");
    }
    QCOMPARE(WayfoldBookmarkFolder::bookmarkFromDictionary({{"Title", "A"}, {"SearchString", "B"}})->filterString(),
             "B");
}

void ItemFileTest::loadingReplacesTheContents()
{
    const auto site = makeFolder("Old", {makeLink("Old link")});
    const QString oldUUID = site->uuid();
    site->setFilterString("old");
    site->setTimestamp({});
    site->loadFromDictionary(list("New", {leaf("New link", "http://a.example/")}));
    QCOMPARE(site->title(), "New");
    QCOMPARE(childTitles(*site), QStringList{"New link"});
    QCOMPARE(site->filterString(), "New");
    QVERIFY(site->uuid() != oldUUID);
    QVERIFY(site->timestamp().isValid());
    site->loadFromDictionary({{"Title", "T"}, {"WebBookmarkUUID", ""}});
    QCOMPARE(site->uuid().size(), 36);
    site->initFromDictionary({{"Title", "T"}, {"WebBookmarkUUID", "Kept"}});
    QCOMPARE(site->uuid(), "Kept");
    QCOMPARE(site->childCount(), 0u);
}

void ItemFileTest::entries_data()
{
    QTest::addColumn<QVariant>("entry");
    QTest::addColumn<int>("type"); // of the item, 0: left out
    const auto with = [](QVariantMap dictionary, const QString &key, const QVariant &value) {
        dictionary[key] = value;
        return QVariant(known(dictionary));
    };
    const QVariantMap note{{"WebBookmarkType", "WebBookmarkTypeNote"}, {"URIDictionary", QVariantMap{{"title", "T"}}}};
    QTest::newRow("folder") << QVariant(list("T", {})) << 1;
    QTest::newRow("bookmarks bar") << with(list("T", {}), "WebBookmarkType", "BookmarksBar") << 1;
    QTest::newRow("bookmarks menu") << with(list("T", {}), "WebBookmarkType", "BookmarksMenu") << 1;
    QTest::newRow("folder, empty title") << QVariant(list("", {leaf("T", "http://a.example/")})) << 0;
    QTest::newRow("folder, no title") << QVariant(list(QVariant(), {leaf("T", "http://a.example/")})) << 0;
    QTest::newRow("web link") << QVariant(leaf("T", "http://a.example/")) << 2;
    QTest::newRow("file link") << QVariant(leaf("T", "file:///tmp/a")) << 3;
    QTest::newRow("e-mail link") << QVariant(leaf("T", "mailto:ann")) << 5;
    QTest::newRow("link, no address") << QVariant(leaf("T", QVariant())) << 2;
    QTest::newRow("link, empty title") << QVariant(leaf("", "http://a.example/")) << 0;
    QTest::newRow("link, no title") << QVariant(leaf(QVariant(), "http://a.example/")) << 0;
    QTest::newRow("e-mail link, no title") << QVariant(leaf(QVariant(), "mailto:ann")) << 0;
    QTest::newRow("link, no dictionary") << with(leaf("T", "http://a.example/"), "URIDictionary", QVariant()) << 0;
    QTest::newRow("note") << QVariant(note) << 4;
    QTest::newRow("note, no title") << with(note, "URIDictionary", QVariantMap()) << 0;
    QTest::newRow("note, empty title") << with(note, "URIDictionary", QVariantMap{{"title", ""}}) << 0;
    const QVariantMap person{{"WebBookmarkType", "ABPerson"}, {"AddressBookID", "nobody"}};
    QTest::newRow("person") << QVariant(person) << 7;
    QTest::newRow("person, no card") << with(person, "AddressBookID", QVariant()) << 7;
    QTest::newRow("group") << with(person, "WebBookmarkType", "ABGroup") << 8;
    QTest::newRow("group, no card") << QVariant(QVariantMap{{"WebBookmarkType", "ABGroup"}}) << 8;
    QTest::newRow("person, other case") << with(person, "WebBookmarkType", "abPerson") << 0;
    QTest::newRow("proxy") << with(list("T", {}), "WebBookmarkType", "WebBookmarkTypeProxy") << 0;
    QTest::newRow("other case") << with(list("T", {}), "WebBookmarkType", "webbookmarktypelist") << 0;
    QTest::newRow("no type") << with(list("T", {}), "WebBookmarkType", QVariant()) << 0;
    QTest::newRow("type of another type") << with(list("T", {}), "WebBookmarkType", 1) << 0;
    QTest::newRow("empty dictionary") << QVariant(QVariantMap()) << 0;
    QTest::newRow("a text") << QVariant("WebBookmarkTypeList") << 0;
    QTest::newRow("a list") << QVariant(QVariantList{list("T", {})}) << 0;
}

void ItemFileTest::entries()
{
    QFETCH(QVariant, entry);
    QFETCH(int, type);
    const QVariantList children{leaf("Before", "http://a.example/"), entry, leaf("After", "http://a.example/")};
    QVERIFY(PropertyList::writeFile(list("Root", children), path()));
    const auto root = readBack();
    QCOMPARE(root->childCount(), type == 0 ? 2u : 3u);
    QCOMPARE(root->childAtIndex(0)->title(), "Before");
    QCOMPARE(root->lastChild()->title(), "After");
    if (type == 0)
        return;
    QCOMPARE(int(root->childAtIndex(1)->type()), type);
    QCOMPARE(root->childAtIndex(1)->title(), type < 7 ? "T" : "Invalid"); // there are no contacts
    QCOMPARE(root->childAtIndex(1)->parent(), root);
}

void ItemFileTest::foldersOfTheBrowser()
{
    const QVariantMap bar{{"WebBookmarkType", "WebBookmarkTypeList"},
                          {"Title", "BookmarksBar"},
                          {"WebBookmarkUUID", "Bookmarks Bar ID"},
                          {"Children", QVariantList{leaf("News", "http://news.example/")}}};
    const QVariantMap proxy{{"WebBookmarkType", "WebBookmarkTypeProxy"}, {"Title", "History"}};
    const QVariantMap file{{"WebBookmarkFileVersion", 1LL},
                           {"WebBookmarkType", "WebBookmarkTypeList"},
                           {"WebBookmarkUUID", "Root"},
                           {"Children", QVariantList{proxy, bar, list("", {leaf("Gone", "http://a.example/")}),
                                                     list("Folder", {leaf("Mail", "mailto:ann")})}}};
    QVERIFY(PropertyList::writeFile(file, path()));
    ItemFileReading reading;
    const auto root = readBack(&reading);
    QVERIFY(root->title().isNull());
    QCOMPARE(root->uuid(), "Root");
    QCOMPARE(childTitles(*root), (QStringList{"BookmarksBar", "Folder"}));
    QCOMPARE(root->childAtIndex(0)->uuid(), "Bookmarks Bar ID");
    QCOMPARE(WayfoldBookmarkFolder::fromItem(root->childAtIndex(0))->filterString(), "BookmarksBar");
    QVERIFY(root->bookmarksWithSubstring("Gone").empty());
    QVERIFY(reading.complete);
    // Written, it is all that it was, with what was missing.
    QVERIFY(root->writeDictionaryFile(path()));
    QVERIFY(holds(PropertyList::readDictionaryFile(path()), file));
}

void ItemFileTest::withoutInsertAFolderIsLoadedIntoThisOne()
{
    const auto root = makeFolder("Old", {makeLink("Old link")});
    root->parseBookmarkDictionaryInsert(list("New", {leaf("New link", "http://a.example/")}), false);
    QCOMPARE(root->title(), "New");
    QCOMPARE(childTitles(*root), QStringList{"New link"});
    root->parseBookmarkDictionaryInsert(leaf("Another", "http://a.example/"), false);
    QCOMPARE(childTitles(*root), (QStringList{"New link", "Another"}));
}

void ItemFileTest::withoutInsertOtherKinds()
{
    const auto root = makeFolder("Old", {makeLink("Old link")});
    for (const char *type : {"BookmarksBar", "BookmarksMenu"}) { // loaded into this one as well
        QVariantMap dictionary = list(QLatin1String(type), {leaf("L", "http://a.example/")});
        dictionary["WebBookmarkType"] = QLatin1String(type);
        root->parseBookmarkDictionaryInsert(dictionary, false);
        QCOMPARE(root->title(), QLatin1String(type));
        QCOMPARE(childTitles(*root), QStringList{"L"});
    }
    const QVariantMap note{{"WebBookmarkType", "WebBookmarkTypeNote"}, {"URIDictionary", QVariantMap{{"title", "N"}}}};
    root->parseBookmarkDictionaryInsert(note, false);
    QCOMPARE(childTitles(*root), (QStringList{"L", "N"}));
    root->parseBookmarkDictionaryInsert({{"WebBookmarkType", "Newer"}, {"Title", "Newer"}}, false);
    root->parseBookmarkDictionaryInsert({{"Title", "Without a type"}}, false);
    QCOMPARE(root->title(), "BookmarksMenu");
    QCOMPARE(childTitles(*root), (QStringList{"L", "N"}));
}

void ItemFileTest::missingFile()
{
    ItemFileReading reading;
    const auto root = readBack(&reading);
    QVERIFY(root);
    QVERIFY(root->title().isNull());
    QCOMPARE(root->childCount(), 0u);
    QVERIFY(!reading.readable);
    QVERIFY(!reading.complete);
    QVERIFY(WayfoldBookmarkFolder::bookmarkFromDictionaryFile(QString())->title().isNull());
}

void ItemFileTest::unreadableFiles_data()
{
    QTest::addColumn<QByteArray>("contents");
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("no property list") << QByteArray("This is no property list.");
    QTest::newRow("another top level") << PropertyList::toXml(QVariantList{"text"});
    QTest::newRow("damaged") << PropertyList::toXml(list("T", {})).replace("</dict>", "</array>");
    QTest::newRow("zeros") << QByteArray(100, '\0');
}

void ItemFileTest::unreadableFiles()
{
    QFETCH(QByteArray, contents);
    _home->write("Bookmarks.plist", contents);
    ItemFileReading reading{true, true};
    const auto root = readBack(&reading);
    QVERIFY(root->title().isNull());
    QCOMPARE(root->childCount(), 0u);
    QVERIFY(!reading.readable);
    QVERIFY(!reading.complete);
}

void ItemFileTest::rootOfAnotherKind()
{
    // The top level is taken for a folder whatever it says.
    QVERIFY(PropertyList::writeFile(QVariantMap{{"WebBookmarkType", "Other"}, {"Title", "T"}}, path()));
    ItemFileReading reading;
    const auto root = readBack(&reading);
    QCOMPARE(root->title(), "T");
    QVERIFY(reading.readable);
    QVERIFY(reading.complete);
    QCOMPARE(root->createDictionary(true)["WebBookmarkType"], QVariant("Other"));
}

void ItemFileTest::nothingIsLost_data()
{
    QTest::addColumn<QVariantMap>("file");
    const auto with = [](QVariantMap dictionary, const QString &key, const QVariant &value) {
        dictionary[key] = value;
        return dictionary;
    };
    const QVariantMap page = leaf("T", "http://a.example/");
    const QVariantMap note{{"WebBookmarkType", "WebBookmarkTypeNote"}, {"URIDictionary", QVariantMap{{"title", "T"}}}};
    const QVariantMap deep{{"List", QVariantList{1LL, QVariantMap{{"Data", QByteArray("\0\1", 2)}}, QVariantList()}},
                           {"Date", QDateTime(QDate(2004, 5, 1), QTime(8, 0), Qt::UTC)}};
    QTest::newRow("nothing in it") << QVariantMap();
    QTest::newRow("no search strings, no identifiers") << list("R", {page, list("F", {page})});
    QTest::newRow("empty texts") << with(with(list("R", {page}), "SearchString", ""), "WebBookmarkUUID", "");
    QTest::newRow("unknown kind") << list("R", {page, with(page, "WebBookmarkType", "Newer"), page});
    QTest::newRow("unknown kind alone") << list("R", {list("F", {with(page, "WebBookmarkType", "Newer")})});
    QTest::newRow("untitled link") << list("R", {leaf("", "http://a.example/")});
    QTest::newRow("untitled folder and all in it") << list("R", {list("", {page, list("F", {page})}), page});
    QTest::newRow("no dictionary") << list("R", {page, "text", 7LL, QVariantList{page}, QVariantMap(), deep});
    QTest::newRow("unknown key") << list("R", {with(page, "Colour", "red")});
    QTest::newRow("unknown key, empty text") << list("R", {with(page, "Colour", "")});
    QTest::newRow("unknown keys, deep") << with(list("R", {with(note, "More", deep)}), "More", deep);
    QTest::newRow("unknown key of a folder") << list("R", {with(list("F", {page}), "Colour", 7LL)});
    QTest::newRow("unknown key within a link")
        << list("R", {with(page, "URIDictionary",
                           QVariantMap{{"title", "T"}, {"", "http://a.example/"}, {"icon", QByteArray("icon")}})});
    QTest::newRow("unknown key at the top") << with(list("R", {page}), "Version", 1LL);
    QTest::newRow("bar") << list("R", {with(list("Bar", {page}), "WebBookmarkType", "BookmarksBar")});
    QTest::newRow("address that is none") << list("R", {leaf("T", "http://a b/")});
    QTest::newRow("address of another type") << list("R", {with(page, "URLString", QVariantList{1LL})});
    QTest::newRow("note of another type") << list("R", {with(note, "Note", 7.5)});
    QTest::newRow("address in a note") << list("R",
                                               {with(note, "URIDictionary", QVariantMap{{"title", "T"}, {"", "x"}})});
    QTest::newRow("identifier of another type") << list("R", {with(page, "WebBookmarkUUID", true)});
    QTest::newRow("search string of another type") << list("R", {with(list("F", {}), "SearchString", QByteArray("d"))});
    QTest::newRow("children of another type") << with(list("R", {}), "Children", "text");
    QTest::newRow("title of another type at the top") << with(list("R", {page}), "Title", 7LL);
    QTest::newRow("type of another type at the top") << with(list("R", {page}), "WebBookmarkType", deep);
    QTest::newRow("children of a link") << list("R", {with(page, "Children", QVariantList{page})});
    QTest::newRow("long note") << list("R", {with(note, "Note", QString(40000, 'a'))});
    const QVariantMap person{{"WebBookmarkType", "ABPerson"}, {"AddressBookID", "id"}, {"WebBookmarkUUID", "own"}};
    QTest::newRow("person") << list("R", {person});
    QTest::newRow("person without an identifier") << list("R", {with(person, "WebBookmarkUUID", "")});
    QTest::newRow("person with a title") << list("R", {with(person, "Title", "Ann")});
    QTest::newRow("person by a number") << list("R", {with(person, "AddressBookID", 7LL)});
    const QVariantMap group = with(person, "WebBookmarkType", "ABGroup");
    QTest::newRow("group") << list("R", {group});
    QTest::newRow("group with members") << list("R", {with(group, "Children", QVariantList{person})});
    QTest::newRow("two addresses") << list("R", {with(page, "URLString", "http://b.example/")});
}

void ItemFileTest::nothingIsLost()
{
    QFETCH(QVariantMap, file);
    QVERIFY(PropertyList::writeFile(file, path()));
    ItemFileReading reading;
    const auto root = readBack(&reading);
    QVERIFY(reading.readable);
    QVERIFY(reading.complete);
    QVERIFY(root->writeDictionaryFile(path()));
    const QVariantMap written = PropertyList::readDictionaryFile(path());
    QVERIFY2(holds(written, file), PropertyList::toXml(written));
    // Nor by a copy, nor by an archive, nor the second time. The copy of a group stands for no card.
    if (!QByteArray(QTest::currentDataTag()).startsWith("group"))
        QCOMPARE(root->copy()->createDictionary(true), root->createDictionary(true));
    QCOMPARE(roundTripThroughArchive(root)->createDictionary(true), root->createDictionary(true));
    QCOMPARE(readBack()->createDictionary(true), written);
}

// Python's own writer and reader of property lists: "0.plist" and so on are made by chance, full of what nobody here
// knows, and compared with what we made of them.
static QString runWithTheirFiles(const FreshHome &home, const QByteArray &call)
{
    QFile script(qEnvironmentVariable("WAYFOLD_SOURCE") + "/tests/model/unknown_content.py");
    return script.open(QIODevice::ReadOnly) ? runPython(home, script.readAll() + "\n" + call + "\n")
                                            : script.errorString();
}

static QString theirFile(int number)
{
    return QString::number(number) + QStringLiteral(".plist");
}

void ItemFileTest::othersFindAllOfTheirs()
{
    QString failure = runWithTheirFiles(*_home, "make(30)");
    QVERIFY2(failure.isNull(), qPrintable(failure));
    for (int number = 0; number < 30; ++number) {
        const QString theirs = _home->path(theirFile(number));
        ItemFileReading reading;
        const auto root = WayfoldBookmarkFolder::readDictionaryFile(theirs, &reading);
        QVERIFY(reading.complete);
        QVERIFY(root->deepChildCount() > 20);
        QVERIFY(root->writeDictionaryFile(theirs));
    }
    failure = runWithTheirFiles(*_home, "check(30, check_all)");
    QVERIFY2(failure.isNull(), qPrintable(failure));
}

// Every folder in which something may be changed, the root too.
static std::vector<WayfoldBookmarkFolderPtr> foldersOf(const WayfoldBookmarkFolderPtr &root)
{
    std::vector<WayfoldBookmarkFolderPtr> folders{root};
    for (std::size_t i = 0; i < folders.size(); ++i) {
        for (const KDRBookmarkPtr &item : folders[i]->children()) {
            if (item->type() == KDRBookmark::FolderType)
                folders.push_back(WayfoldBookmarkFolder::fromItem(item));
        }
    }
    return folders;
}

// What a user does, by chance.
static void change(const WayfoldBookmarkFolderPtr &root, QRandomGenerator &random)
{
    const std::vector<WayfoldBookmarkFolderPtr> folders = foldersOf(root);
    const auto any = [&](std::size_t count) { return std::size_t(random.bounded(quint32(count))); };
    const WayfoldBookmarkFolderPtr folder = folders[any(folders.size())];
    const WayfoldBookmarkFolderPtr other = folders[any(folders.size())];
    const KDRBookmarkPtr item =
        folder->isEmpty() ? nullptr : folder->children()[any(folder->childCount())]; // a reference of its own
    switch (random.bounded(6)) {
    case 0:
        folder->addChildAtIndex(makeLink("New"), int(any(folder->childCount() + 1)));
        break;
    case 1:
        folder->sortChildrenByTitle();
        break;
    case 2:
        folder->removeChild(item);
        break;
    case 3:
        if (item && item->type() < KDRBookmark::PersonType)
            item->setTitle("Retitled " + item->title());
        break;
    default: // moved
        if (item && other != item && !other->isChildOf(item)) {
            folder->removeChild(item);
            other->addChildAtIndex(item, int(any(other->childCount() + 1)));
        }
    }
}

void ItemFileTest::othersFindAllOfTheirsAfterChanges()
{
    QString failure = runWithTheirFiles(*_home, "make(60)");
    QVERIFY2(failure.isNull(), qPrintable(failure));
    for (int number = 0; number < 60; ++number) {
        const QString theirs = _home->path(theirFile(number));
        const auto root = WayfoldBookmarkFolder::bookmarkFromDictionaryFile(theirs);
        QRandomGenerator random{quint32(number)};
        for (int changes = 0; changes < 25; ++changes)
            change(root, random);
        QVERIFY(root->writeDictionaryFile(theirs));
    }
    failure = runWithTheirFiles(*_home, "check(60, check_after_changes)");
    QVERIFY2(failure.isNull(), qPrintable(failure));
}

// Calls `visit` with a copy of the value for every place in it, that place taken by `replacement`.
static void replaceEach(const QVariant &value, const QVariant &replacement,
                        const std::function<void(const QVariant &, const QVariant &)> &visit)
{
    if (value.typeId() == QMetaType::QVariantMap) {
        const QVariantMap dictionary = value.toMap();
        for (auto entry = dictionary.begin(); entry != dictionary.end(); ++entry) {
            const auto visitWhole = [&](const QVariant &changed, const QVariant &old) {
                QVariantMap whole = dictionary;
                whole[entry.key()] = changed;
                visit(whole, old);
            };
            visitWhole(replacement, entry.value());
            replaceEach(entry.value(), replacement, visitWhole);
        }
    } else if (value.typeId() == QMetaType::QVariantList) {
        const QVariantList list = value.toList();
        for (qsizetype i = 0; i < list.size(); ++i) {
            const auto visitWhole = [&](const QVariant &changed, const QVariant &old) {
                QVariantList whole = list;
                whole[i] = changed;
                visit(whole, old);
            };
            visitWhole(replacement, list[i]);
            replaceEach(list[i], replacement, visitWhole);
        }
    }
}

void ItemFileTest::valuesOfOtherTypes()
{
    const auto root = sampleTree();
    const QVariantMap file = root->createDictionary(true);
    const QVariantList replacements{"text",
                                    7LL,
                                    quint64(-1),
                                    7.5,
                                    true,
                                    QDateTime(QDate(2004, 5, 1), QTime(8, 0), Qt::UTC),
                                    QByteArray("data"),
                                    QVariantList{"text", 7LL, QVariantMap{{"Title", "T"}}},
                                    QVariantMap{{"title", 7LL}, {"Children", "text"}}};
    int count = 0;
    for (const QVariant &replacement : replacements) {
        replaceEach(file, replacement, [&](const QVariant &changed, const QVariant &old) {
            if (old.typeId() == replacement.typeId())
                return;
            ++count;
            const QByteArray contents = PropertyList::toXml(changed);
            const auto read = WayfoldBookmarkFolder::bookmarkFromDictionary(PropertyList::fromData(contents).toMap());
            QVERIFY(read->deepChildCount() <= root->deepChildCount());
            const QVariantMap rewritten = read->createDictionary(true);
            QVERIFY2(holds(rewritten, PropertyList::fromData(contents)), contents);
            const auto again = WayfoldBookmarkFolder::bookmarkFromDictionary(rewritten);
            QVERIFY(holds(again->createDictionary(true), rewritten));
        });
        if (QTest::currentTestFailed())
            return;
    }
    QVERIFY(count > 200);
}

void ItemFileTest::truncatedFiles()
{
    QVERIFY(sampleTree()->writeDictionaryFile(path()));
    const QByteArray whole = _home->read("Bookmarks.plist");
    const qsizetype end = whole.lastIndexOf("</plist>");
    QVERIFY(end > 0);
    QLoggingCategory::setFilterRules("wayfold.files=false"); // a line for each of them
    for (qsizetype length = 0; length < end; length += 31) {
        _home->write("Bookmarks.plist", whole.left(length));
        ItemFileReading reading;
        const auto root = readBack(&reading);
        QVERIFY2(!reading.readable, qPrintable(QString::number(length)));
        QCOMPARE(root->childCount(), 0u);
        QVERIFY(root->title().isNull());
    }
}

void ItemFileTest::oddTexts()
{
    const QStringList texts{" ",          "\n",    "<&>\"'", QString::fromUtf8("Ünïcödé 😀 \u202e"),
                            "]]>",        "%1 %n", "/",      QString(5000, 'x'),
                            "a\r\nb\rc\n"};
    for (const QString &text : texts) {
        const auto root =
            makeFolder(text, {WayfoldBookmarkNote::bookmarkWithTitleAndNote(text, text), makeFolder(text)});
        root->setFilterString(text);
        WayfoldBookmarkFolder::fromItem(root->lastChild())->setFilterString(text);
        QVERIFY(root->writeDictionaryFile(path()));
        ItemFileReading reading;
        QVERIFY2(root->isEqual(readBack(&reading)), qPrintable(text));
        QVERIFY(reading.complete);
    }
}

// A title that no file can hold does not take its item away.
void ItemFileTest::textsThatBeginWithAByteOrderMark()
{
    const QString mark(QChar(0xfeff));
    const auto root = makeFolder(
        mark + "root", {WayfoldBookmarkNote::bookmarkWithTitleAndNote(mark, mark + "note"), makeLink(mark + "link")});
    root->setFilterString(mark);
    QVERIFY(root->writeDictionaryFile(path()));
    const QByteArray written = _home->read("Bookmarks.plist");
    QVERIFY(written.contains("<string>\xef\xbb\xbf</string>"));
    const auto read = readBack();
    QCOMPARE(read->title(), mark + "root");
    QCOMPARE(read->filterString(), mark);
    QCOMPARE(read->childCount(), 2U);
    QCOMPARE(read->childAtIndex(0)->title(), mark);
    QCOMPARE(read->childAtIndex(0)->valueAsString(), mark + "note");
    QCOMPARE(read->childAtIndex(1)->title(), mark + "link");
    QVERIFY(read->writeDictionaryFile(path()));
    QCOMPARE(_home->read("Bookmarks.plist"), written);
}

void ItemFileTest::titlesOfControlCharacters()
{
    const auto folder =
        makeFolder("\x01", {makeLink("\x18"), WayfoldBookmarkNote::bookmarkWithTitleAndNote("\x7", "kept")});
    QVERIFY(makeFolder("root", {folder})->writeDictionaryFile(path()));
    const auto read = WayfoldBookmarkFolder::fromItem(readBack()->childAtIndex(0));
    QVERIFY(read);
    QCOMPARE(read->childCount(), 2U);
    QCOMPARE(read->lastChild()->valueAsString(), QString("kept"));
}

void ItemFileTest::cannotBeWritten()
{
    const auto root = sampleTree();
    QVERIFY(!root->writeDictionaryFile(_home->path("missing/Bookmarks.plist")));
    QVERIFY(!root->writeDictionaryFile(_home->path()));
    QVERIFY(!root->writeDictionaryFile(QString()));
    QVERIFY(root->writeDictionaryFile(path()));
}

void ItemFileTest::deepestTree()
{
    // Whatever is written can be read again; what could not is not written.
    int deepest = 0;
    auto root = makeFolder("T", {makeLink("L")});
    for (int depth = 1; depth < 600; ++depth) {
        if (depth >= 500) {
            const bool written = root->writeDictionaryFile(path());
            if (!written)
                break;
            deepest = depth;
            QCOMPARE(readBack()->deepChildCount(), root->deepChildCount());
        }
        root = makeFolder("T", {root});
    }
    QVERIFY(deepest >= 500);
    QVERIFY(deepest < 520);
}

void ItemFileTest::deepSmartFolder()
{
    // As deep as is saved, with a smart folder below in which others lie.
    const auto smart = WayfoldBookmarkAutoFolder::bookmarkWithTitle("Related Bookmarks");
    auto below = makeFolder("Inside");
    smart->addChild(below);
    for (int depth = 0; depth < 600; ++depth) {
        const auto next = makeFolder("Inside");
        below->addChild(next);
        below = next;
    }
    auto root = makeFolder("T", {smart});
    for (int depth = 0; depth < 510; ++depth)
        root = makeFolder("T", {root});
    QVERIFY(root->writeDictionaryFile(path()));
    QCOMPARE(readBack()->deepChildCount(), 510U);
    QVERIFY(!_home->read("Bookmarks.plist").contains("Inside"));
}

QTEST_MAIN(ItemFileTest)
#include "ItemFileTest.moc"
