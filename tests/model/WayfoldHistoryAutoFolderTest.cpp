#include "tests/model/ModelTestSupport.h"

#include "model/WayfoldHistoryAutoFolder.h"
#include "model/history/HistoryItems.h"
#include "model/history/HistoryRecords.h"

#include <QtTest>

class WayfoldHistoryAutoFolderTest : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<FreshHome> _home;

    // The history as items, or as the store has it.
    static void bothForms()
    {
        QTest::addColumn<bool>("isOfRecords");
        QTest::newRow("items") << false;
        QTest::newRow("records") << true;
    }

private Q_SLOTS:
    void init();
    void cleanup();

    void collectsByDay_data() { bothForms(); }
    void collectsByDay();
    void foldersAreLeftOut();
    void collectsAgain_data() { bothForms(); }
    void collectsAgain();
    void collectsFromWhatWasTakenOver();
    void searchStringChanges_data() { bothForms(); }
    void searchStringChanges();
    void refreshLeavesItAsLoadedAsItWas();
    void withoutHistory_data() { bothForms(); }
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

struct Visit
{
    QByteArray title;
    QByteArray address;
};

static WayfoldBookmarkFolderPtr historyOf(const std::shared_ptr<HistoryRecords> &records)
{
    const WayfoldBookmarkFolderPtr history = makeFolder("History");
    history->setLazyChildren(std::make_shared<HistoryItems>(records));
    return history;
}

static WayfoldBookmarkFolderPtr historyOf(bool isOfRecords, const std::vector<Visit> &visits)
{
    const auto records = std::make_shared<HistoryRecords>();
    const WayfoldBookmarkFolderPtr items = makeFolder("History");
    for (const auto &[title, address] : visits) {
        records->append(title, address, "1");
        items->addChild(visit(QString::fromLatin1(title), QString::fromLatin1(address)));
    }
    return isOfRecords ? historyOf(records) : items;
}

void WayfoldHistoryAutoFolderTest::collectsByDay()
{
    QFETCH(bool, isOfRecords);
    FakeSmartFolderSources sources;
    sources.history = historyOf(
        isOfRecords,
        {{"Zebra NEWS", "http://z.example/"}, {"Other", "http://o.example/"}, {"Ant", "http://news.example/"}});
    const KDRBookmarkPtr first = sources.history->childAtIndex(0);
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
    QFETCH(bool, isOfRecords);
    FakeSmartFolderSources sources;
    sources.history = historyOf(isOfRecords, {{"news 1", "http://a.example/"}});
    const auto smart = WayfoldHistoryAutoFolder::bookmarkWithTitle("news");
    smart->ensureUpToDate();
    QVERIFY(smart->isLoaded());
    const KDRBookmarkPtr day = smart->childAtIndex(0);
    sources.history = historyOf(isOfRecords, {{"news 2", "http://a.example/"}});
    smart->ensureUpToDate();
    QCOMPARE(sources.regroupings, 1);
    smart->refresh();
    QCOMPARE(smart->childAtIndex(0), day); // the group stays, and with it whether it is open in the list
    QCOMPARE(childTitles(*WayfoldBookmarkFolder::fromItem(day)), QStringList{"news 2"});
}

void WayfoldHistoryAutoFolderTest::collectsFromWhatWasTakenOver()
{
    FakeSmartFolderSources sources;
    const auto former = std::make_shared<HistoryRecords>();
    former->append("news 1", "http://a.example/", "1");
    former->append("other", "http://b.example/", "2");
    former->append("news that goes", "http://c.example/", "3");
    sources.history = historyOf(former);
    const auto smart = WayfoldHistoryAutoFolder::bookmarkWithTitle("news");
    smart->ensureUpToDate();
    const auto later = std::make_shared<HistoryRecords>(*former, 4);
    later->append("news 2", "http://d.example/", "5");
    later->appendFrom(*former, 0, 2);
    later->append("nothing", "http://e.example/", "4");
    sources.history = historyOf(later);
    smart->refresh();
    const auto day = WayfoldBookmarkFolder::fromItem(smart->childAtIndex(0));
    QCOMPARE(childTitles(*day), (QStringList{"news 2", "news 1"}));
}

void WayfoldHistoryAutoFolderTest::searchStringChanges()
{
    QFETCH(bool, isOfRecords);
    FakeSmartFolderSources sources;
    sources.history = historyOf(isOfRecords, {{"cats", "http://a.example/"}, {"dogs", "http://a.example/"}});
    const auto smart = WayfoldHistoryAutoFolder::bookmarkWithTitle("Related History");
    smart->setFilterString("cats");
    QCOMPARE(sources.regroupings, 0);
    smart->ensureUpToDate();
    QCOMPARE(childTitles(*WayfoldBookmarkFolder::fromItem(smart->childAtIndex(0))), QStringList{"cats"});
    smart->setFilterString("dogs");
    QCOMPARE(titlesOf(smart->bookmarksWithSubstring("dogs")), QStringList{"dogs"});
    QCOMPARE(smart->deepChildCount(), 2u);
}

void WayfoldHistoryAutoFolderTest::refreshLeavesItAsLoadedAsItWas()
{
    FakeSmartFolderSources sources;
    sources.history = historyOf(true, {{"news", "http://a.example/"}});
    const auto smart = WayfoldHistoryAutoFolder::bookmarkWithTitle("news");
    QVERIFY(smart->refresh());
    QCOMPARE(smart->deepChildCount(), 2u);
    QVERIFY(!smart->isLoaded());
    smart->ensureUpToDate();
    QVERIFY(smart->isLoaded());
    QCOMPARE(sources.regroupings, 2);
    QVERIFY(smart->refresh());
    QVERIFY(smart->isLoaded());
    QCOMPARE(sources.regroupings, 3);
}

void WayfoldHistoryAutoFolderTest::withoutHistory()
{
    QFETCH(bool, isOfRecords);
    FakeSmartFolderSources sources;
    sources.history = historyOf(isOfRecords, {{"news", "http://a.example/"}});
    const auto smart = WayfoldHistoryAutoFolder::bookmarkWithTitle("news");
    smart->ensureUpToDate();
    QCOMPARE(smart->deepChildCount(), 2u);
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
