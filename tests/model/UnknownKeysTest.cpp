#include "model/UnknownKeys.h"

#include "model/WayfoldBookmarkABPerson.h"
#include "tests/model/ModelTestSupport.h"

#include <QtTest>

// What a dictionary says of an item that this version cannot use.
class UnknownKeysTest : public QObject
{
    Q_OBJECT

private:
    FreshHome _home;

private Q_SLOTS:
    void isAsLargeAsAPointer();
    void addsWhatWasFound_data();
    void addsWhatWasFound();
    void depth_data();
    void depth();
    void archive();
    void whatTheUserSetsWins();
    void goesWithTheItem();
    void isNoPartOfTheItem();
    void goesWhenTheItemBeginsAnew();
    void isTakenFromWhatTheItemAgreesWith();
};

void UnknownKeysTest::isAsLargeAsAPointer()
{
    QCOMPARE(sizeof(UnknownKeys), sizeof(void *));
}

void UnknownKeysTest::addsWhatWasFound_data()
{
    QTest::addColumn<QVariantMap>("found");
    QTest::addColumn<QVariantMap>("used");    // what the item wrote then
    QTest::addColumn<QVariantMap>("written"); // what it writes now
    QTest::addColumn<QVariantMap>("expected");
    using Map = QVariantMap;
    QTest::newRow("all known") << Map{{"a", "1"}} << Map{{"a", "1"}} << Map{{"a", "2"}} << Map{{"a", "2"}};
    QTest::newRow("unknown key") << Map{{"b", 1}} << Map{{"a", "1"}} << Map{{"a", "2"}} << Map{{"a", "2"}, {"b", 1}};
    QTest::newRow("unknown key, empty") << Map{{"b", ""}} << Map() << Map{{"a", "2"}} << Map{{"a", "2"}, {"b", ""}};
    QTest::newRow("missing") << Map() << Map{{"a", "1"}} << Map{{"a", "1"}} << Map{{"a", "1"}};
    QTest::newRow("empty means none") << Map{{"a", ""}} << Map{{"a", "1"}} << Map{{"a", "1"}} << Map{{"a", "1"}};
    QTest::newRow("another type") << Map{{"a", 7}} << Map{{"a", ""}} << Map{{"a", ""}} << Map{{"a", 7}};
    QTest::newRow("another type, set since") << Map{{"a", 7}} << Map{{"a", ""}} << Map{{"a", "x"}} << Map{{"a", "x"}};
    QTest::newRow("another value") << Map{{"a", "long"}} << Map{{"a", "lo"}} << Map{{"a", "lo"}} << Map{{"a", "long"}};
    QTest::newRow("another value, set since")
        << Map{{"a", "long"}} << Map{{"a", "lo"}} << Map{{"a", "l"}} << Map{{"a", "l"}};
    const Map within{{"t", "T"}, {"i", 1}};
    const Map known{{"t", "T"}};
    QTest::newRow("within") << Map{{"u", within}} << Map{{"u", known}} << Map{{"u", Map{{"t", "X"}, {"s", 2}}}}
                            << Map{{"u", Map{{"t", "X"}, {"s", 2}, {"i", 1}}}};
    QTest::newRow("nothing within") << Map{{"u", known}} << Map{{"u", within}} << Map{{"u", known}}
                                    << Map{{"u", known}};
    QTest::newRow("dictionary for a text")
        << Map{{"a", known}} << Map{{"a", ""}} << Map{{"a", ""}} << Map{{"a", known}};
    QTest::newRow("dictionary for a text, set since")
        << Map{{"a", known}} << Map{{"a", ""}} << Map{{"a", "x"}} << Map{{"a", "x"}};
    QTest::newRow("text for a dictionary")
        << Map{{"u", "x"}} << Map{{"u", known}} << Map{{"u", known}} << Map{{"u", "x"}};
    QTest::newRow("list for a list") << Map{{"l", QVariantList{1}}} << Map{{"l", QVariantList()}}
                                     << Map{{"l", QVariantList()}} << Map{{"l", QVariantList{1}}};
}

void UnknownKeysTest::addsWhatWasFound()
{
    QFETCH(QVariantMap, found);
    QFETCH(QVariantMap, used);
    QFETCH(QVariantMap, written);
    QVariantMap untouched = written;
    UnknownKeys().addTo(untouched);
    QCOMPARE(untouched, written);
    UnknownKeys(found, used).addTo(written);
    QTEST(written, "expected");
}

void UnknownKeysTest::depth_data()
{
    QTest::addColumn<QVariantMap>("found");
    QTest::addColumn<int>("depth");
    QTest::newRow("nothing") << QVariantMap() << 0;
    QTest::newRow("a number") << QVariantMap{{"a", 1}} << 0;
    QTest::newRow("an empty list") << QVariantMap{{"a", QVariantList()}} << 1;
    QTest::newRow("a list in a dictionary") << QVariantMap{{"a", QVariantMap{{"b", QVariantList{1}}}}, {"c", 1}} << 2;
    QTest::newRow("the deepest counts") << QVariantMap{{"a", QVariantList{QVariantList{QVariantMap()}, 1}},
                                                       {"b", QVariantMap{{"c", 1}}}}
                                        << 3;
}

void UnknownKeysTest::depth()
{
    QFETCH(QVariantMap, found);
    QTEST(UnknownKeys(found, {}).depth(), "depth");
}

void UnknownKeysTest::archive()
{
    QVERIFY(!UnknownKeys().archived().isValid());
    QVERIFY(!UnknownKeys({{"a", ""}}, {{"a", "x"}}).archived().isValid());
    const UnknownKeys keys({{"a", 7}, {"b", 8}}, {{"a", ""}});
    QVariantMap written{{"a", ""}};
    UnknownKeys::fromArchive(keys.archived()).addTo(written);
    QCOMPARE(written, (QVariantMap{{"a", 7}, {"b", 8}}));
    QVariantMap untouched;
    UnknownKeys::fromArchive({}).addTo(untouched);
    UnknownKeys::fromArchive("no archive").addTo(untouched);
    QVERIFY(untouched.isEmpty());
}

// --- Of items -------------------------------------------------------------------------------------------------------

static QVariantMap link(const QVariant &address)
{
    return {{"WebBookmarkType", "WebBookmarkTypeLeaf"},
            {"WebBookmarkUUID", "U"},
            {"URLString", address},
            {"Colour", "red"},
            {"URIDictionary", QVariantMap{{"title", "T"}, {"", "http://other.example/"}, {"icon", 7}}}};
}

void UnknownKeysTest::whatTheUserSetsWins()
{
    const auto item = WayfoldBookmarkURL::bookmarkFromDictionary(link(7));
    QCOMPARE(item->createDictionary(true), link(7));
    QCOMPARE(item->createDictionary(false), link(7)); // another window's drawer may get it
    item->setTitle("New");
    QVariantMap expected = link(7);
    expected["URIDictionary"] = QVariantMap{{"title", "New"}, {"", "http://other.example/"}, {"icon", 7}};
    QCOMPARE(item->createDictionary(true), expected);
    item->setURL(Url::URLWithString("http://a.example/"));
    expected["URLString"] = "http://a.example/";
    expected["URIDictionary"] = QVariantMap{{"title", "New"}, {"", "http://a.example/"}, {"icon", 7}};
    QCOMPARE(item->createDictionary(true), expected);
}

void UnknownKeysTest::goesWithTheItem()
{
    const auto item = WayfoldBookmarkURL::bookmarkFromDictionary(link(7));
    QCOMPARE(item->copy()->createDictionary(true), link(7));
    QCOMPARE(roundTripThroughArchive(item)->createDictionary(true), link(7));
    const auto from = makeFolder("From", {item});
    const auto to = makeFolder("To");
    from->removeChild(item);
    to->addChild(item);
    QCOMPARE(to->createDictionary(true)["Children"].toList(), QVariantList{link(7)});
    // A copy is on its own.
    const auto copy = std::static_pointer_cast<WayfoldBookmarkURL>(item->copy());
    copy->setURL(Url::URLWithString("http://a.example/"));
    QCOMPARE(item->createDictionary(true), link(7));
}

void UnknownKeysTest::isNoPartOfTheItem()
{
    const auto item = WayfoldBookmarkURL::bookmarkFromDictionary(link(7));
    QVariantMap other = link(7);
    other["Colour"] = "blue";
    QVERIFY(item->isEqual(WayfoldBookmarkURL::bookmarkFromDictionary(other)));
    QVERIFY(item->bookmarksWithSubstring("red").empty());
    QVERIFY(item->url().isNull());
    QVERIFY(item->valueAsString().isEmpty());
}

void UnknownKeysTest::goesWhenTheItemBeginsAnew()
{
    const auto item = WayfoldBookmarkURL::bookmarkFromDictionary(link(7));
    item->initWithTitle("Other");
    QVERIFY(!item->createDictionary(true).contains("Colour"));
    item->loadFromDictionary(link(7));
    QVariantMap plain = link("http://other.example/");
    plain.remove("Colour");
    item->loadFromDictionary(plain);
    QCOMPARE(item->createDictionary(true), plain);
}

void UnknownKeysTest::isTakenFromWhatTheItemAgreesWith()
{
    const auto item = makeLink("T", "http://a.example/");
    item->setUUID("U");
    QVariantMap dictionary = item->createDictionary(true);
    dictionary["Colour"] = "blue";
    item->keepUnknown(dictionary);
    QCOMPARE(item->createDictionary(true), dictionary);
    dictionary.remove("Colour");
    item->keepUnknown(dictionary);
    QCOMPARE(item->createDictionary(true), dictionary);
}

QTEST_MAIN(UnknownKeysTest)
#include "UnknownKeysTest.moc"
