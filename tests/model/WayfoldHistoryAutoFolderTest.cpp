#include "tests/model/ModelTestSupport.h"

#include "model/WayfoldHistoryAutoFolder.h"

#include <QtTest>

class WayfoldHistoryAutoFolderTest : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<FreshHome> _home;

private Q_SLOTS:
    void init();
    void cleanup();

    void collectsByDay();
    void foldersAreLeftOut();
    void collectsAgain();
    void searchStringChanges();
    void withoutHistory();
    void withoutSources();
};

void WayfoldHistoryAutoFolderTest::init()
{
    _home = std::make_unique<FreshHome>();
}

void WayfoldHistoryAutoFolderTest::cleanup()
{
    _home.reset();
}

static WayfoldHistoryURLPtr visit(const QString &title, const QString &address)
{
    return WayfoldHistoryURL::bookmarkFromDictionary({{"", address}, {"title", title}, {"lastVisitedDate", "1"}});
}

void WayfoldHistoryAutoFolderTest::collectsByDay()
{
    FakeSmartFolderSources sources;
    const auto first = visit("Zebra NEWS", "http://z.example/");
    sources.history->addChild(first);
    sources.history->addChild(visit("Other", "http://o.example/"));
    sources.history->addChild(visit("Ant", "http://news.example/"));
    const auto smart = WayfoldHistoryAutoFolder::bookmarkWithTitle("news");
    QVERIFY(smart->refresh());
    QCOMPARE(sources.regroupings, 1);
    QVERIFY(sources.regroupedTitle.isEmpty() && !sources.regroupedTitle.isNull());
    QCOMPARE(childTitles(*smart), QStringList{"1"}); // the style asked for
    const auto day = WayfoldBookmarkFolder::fromItem(smart->childAtIndex(0));
    QCOMPARE(childTitles(*day), (QStringList{"Zebra NEWS", "Ant"})); // in the history's order
    QVERIFY(day->childAtIndex(0) != first);
    QCOMPARE(day->childAtIndex(0)->uuid(), first->uuid());
    QCOMPARE(day->childAtIndex(0)->timestamp(), first->timestamp());
    QCOMPARE(first->parent(), sources.history);
    QVERIFY(!day->canBePersistent());
}

void WayfoldHistoryAutoFolderTest::foldersAreLeftOut()
{
    FakeSmartFolderSources sources;
    sources.history->addChild(makeFolder("news folder", {visit("news", "http://a.example/")}));
    const auto smart = WayfoldHistoryAutoFolder::bookmarkWithTitle("news");
    smart->refresh();
    QCOMPARE(smart->deepChildCount(), 2u); // the group and the one visit
}

void WayfoldHistoryAutoFolderTest::collectsAgain()
{
    FakeSmartFolderSources sources;
    sources.history->addChild(visit("news 1", "http://a.example/"));
    const auto smart = WayfoldHistoryAutoFolder::bookmarkWithTitle("news");
    smart->ensureUpToDate();
    QVERIFY(smart->isLoaded());
    const KDRBookmarkPtr day = smart->childAtIndex(0);
    sources.history = makeFolder("History", {visit("news 2", "http://a.example/")});
    smart->ensureUpToDate();
    QCOMPARE(sources.regroupings, 1);
    smart->refresh();
    QCOMPARE(smart->childAtIndex(0), day); // the group stays, and with it whether it is open in the list
    QCOMPARE(childTitles(*WayfoldBookmarkFolder::fromItem(day)), QStringList{"news 2"});
}

void WayfoldHistoryAutoFolderTest::searchStringChanges()
{
    FakeSmartFolderSources sources;
    sources.history->addChild(visit("cats", "http://a.example/"));
    sources.history->addChild(visit("dogs", "http://a.example/"));
    const auto smart = WayfoldHistoryAutoFolder::bookmarkWithTitle("Related History");
    smart->setFilterString("cats");
    QCOMPARE(sources.regroupings, 0);
    smart->ensureUpToDate();
    smart->setFilterString("dogs");
    QCOMPARE(titlesOf(smart->bookmarksWithSubstring("dogs")), QStringList{"dogs"});
    QCOMPARE(smart->deepChildCount(), 2u);
}

void WayfoldHistoryAutoFolderTest::withoutHistory()
{
    FakeSmartFolderSources sources;
    sources.history->addChild(visit("news", "http://a.example/"));
    const auto smart = WayfoldHistoryAutoFolder::bookmarkWithTitle("news");
    smart->ensureUpToDate();
    sources.history = nullptr;
    QVERIFY(smart->refresh());
    QCOMPARE(smart->deepChildCount(), 0u);
}

void WayfoldHistoryAutoFolderTest::withoutSources()
{
    const auto smart = WayfoldHistoryAutoFolder::bookmarkWithTitle("x");
    smart->ensureUpToDate();
    QCOMPARE(smart->childCount(), 0u);
    QCOMPARE(int(WayfoldHistoryAutoFolder::bookmarkFromDictionary({{"Title", "T"}})->type()), 1);
}

QTEST_MAIN(WayfoldHistoryAutoFolderTest)
#include "WayfoldHistoryAutoFolderTest.moc"
