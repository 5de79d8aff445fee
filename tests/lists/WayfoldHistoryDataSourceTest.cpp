#include "lists/WayfoldHistoryDataSource.h"
#include "model/WayfoldBookmarkFolder.h"
#include "model/WayfoldHistoryURL.h"
#include "tests/support/TemporaryHome.h"

#include <QTest>

namespace
{
// Seconds since the reference date, as the browser's file has them: noon of a day in January 2001.
QString noonOf(int day)
{
    return QString::number((day - 1) * 86400 + 43200);
}

void addEntry(const WayfoldBookmarkFolderPtr &folder, const QString &title, const QString &address, int day)
{
    QVariantMap entry{{QString(""), address}, {"title", title}};
    if (day > 0)
        entry.insert("lastVisitedDate", noonOf(day));
    folder->parseHistoryDictionary(entry);
    if (day == 0)
        folder->lastChild()->setTimestamp(CalendarDate());
}

WayfoldBookmarkFolderPtr someHistory()
{
    auto history = WayfoldBookmarkFolder::bookmarkWithTitle("History");
    addEntry(history, "b today", "http://www.b.org/1", 3);
    addEntry(history, "a today", "http://www.a.org/1", 3);
    addEntry(history, "a yesterday", "http://www.a.org/2", 2);
    addEntry(history, "b long ago", "http://www.b.org/2", 1);
    addEntry(history, "a again", "http://www.a.org/3", 3);
    addEntry(history, "no site", "file:///etc/hosts", 2);
    addEntry(history, "no date", "http://www.c.org/", 0);
    return history;
}

// "title" for an entry, "title(...)" for a folder with what it holds.
QString outline(const WayfoldBookmarkFolder &folder)
{
    QStringList parts;
    for (const KDRBookmarkPtr &child : folder.children()) {
        const auto sub = WayfoldBookmarkFolder::fromItem(child);
        parts.append(sub ? sub->title() + "(" + outline(*sub) + ")" : child->title());
    }
    return parts.join(", ");
}

void regroup(const WayfoldBookmarkFolderPtr &from, const WayfoldBookmarkFolderPtr &into, const QString &style)
{
    WayfoldHistoryDataSource::regroupBookmarksFromFolderIntoFolderWithGroupingStyle(from, into, style);
}
} // namespace

class WayfoldHistoryDataSourceTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany)); }
    void styles_data();
    void styles();
    void entriesAreTheVeryOnes();
    void foldersAreUsedAgain();
    void emptyFoldersGo();
    void noTargetIsNoMistake();
    void unknownStyleKeepsFoldersOnly();
};

void WayfoldHistoryDataSourceTest::styles_data()
{
    QTest::addColumn<QString>("style");
    QTest::addColumn<QString>("expected");
    QTest::newRow("none") << "0"
                          << "b today, a today, a yesterday, b long ago, a again, no site, no date";
    QTest::newRow("by day") << "1"
                            << "03.01.01(b today, a today, a again), 02.01.01(a yesterday, no site), "
                               "01.01.01(b long ago)";
    QTest::newRow("by day, then by site") << "2"
                                          << "03.01.01(a.org(a today, a again), b.org(b today)), "
                                             "02.01.01(a.org(a yesterday)), 01.01.01(b.org(b long ago))";
    QTest::newRow("by site") << "3"
                             << "a.org(a today, a yesterday, a again), b.org(b today, b long ago)";
    QTest::newRow("by site, then by day") << "4"
                                          << "a.org(03.01.01(a today, a again), 02.01.01(a yesterday)), "
                                             "b.org(03.01.01(b today), 01.01.01(b long ago))";
}

void WayfoldHistoryDataSourceTest::styles()
{
    QFETCH(QString, style);
    QFETCH(QString, expected);
    const auto into = WayfoldBookmarkFolder::bookmarkWithTitle("");
    regroup(someHistory(), into, style);
    QCOMPARE(outline(*into), expected);
}

void WayfoldHistoryDataSourceTest::entriesAreTheVeryOnes()
{
    const auto history = someHistory();
    const auto into = WayfoldBookmarkFolder::bookmarkWithTitle("");
    regroup(history, into, "3");
    const auto site = WayfoldBookmarkFolder::fromItem(into->childWithTitle("a.org"));
    QVERIFY(site);
    QCOMPARE(site->childAtIndex(0), history->childAtIndex(1));
    QCOMPARE(history->childAtIndex(1)->parent(), site);
    QCOMPARE(history->childCount(), 7U);
}

void WayfoldHistoryDataSourceTest::foldersAreUsedAgain()
{
    const auto into = WayfoldBookmarkFolder::bookmarkWithTitle("");
    regroup(someHistory(), into, "4");
    const auto site = into->childWithTitle("a.org");
    const auto day = WayfoldBookmarkFolder::fromItem(site)->childAtIndex(0);
    regroup(someHistory(), into, "4");
    QCOMPARE(into->childWithTitle("a.org"), site);
    QCOMPARE(WayfoldBookmarkFolder::fromItem(site)->childAtIndex(0), day);
}

void WayfoldHistoryDataSourceTest::emptyFoldersGo()
{
    const auto into = WayfoldBookmarkFolder::bookmarkWithTitle("");
    regroup(someHistory(), into, "3");
    const auto rest = WayfoldBookmarkFolder::bookmarkWithTitle("History");
    addEntry(rest, "b", "http://www.b.org/", 1);
    regroup(rest, into, "3");
    QCOMPARE(outline(*into), QString("b.org(b)"));
}

void WayfoldHistoryDataSourceTest::noTargetIsNoMistake()
{
    const auto history = someHistory();
    regroup(history, nullptr, "1");
    QCOMPARE(history->childCount(), 7U);
    QVERIFY(!history->childAtIndex(0)->parent() || history->childAtIndex(0)->parent() == history);
}

void WayfoldHistoryDataSourceTest::unknownStyleKeepsFoldersOnly()
{
    const auto into = WayfoldBookmarkFolder::bookmarkWithTitle("");
    regroup(someHistory(), into, "3");
    into->addChild(WayfoldHistoryURL::bookmarkWithTitle("leaf"));
    regroup(someHistory(), into, "9");
    QCOMPARE(outline(*into), QString("a.org(), b.org()"));
}

QTEST_MAIN(WayfoldHistoryDataSourceTest)
#include "WayfoldHistoryDataSourceTest.moc"
