#include "model/history/HistoryGrouping.h"

#include "model/TextSearch.h"
#include "model/WayfoldHistoryURL.h"
#include "model/history/HistoryEntries.h"
#include "model/history/HistoryItems.h"
#include "model/history/HistoryRecords.h"
#include "tests/support/InstalledKinds.h"

#include <QRandomGenerator>
#include <QTest>

namespace
{
using Folder = WayfoldBookmarkFolderPtr;

Folder subfolder(const KDRBookmarkPtr &item)
{
    return WayfoldBookmarkFolder::fromItem(item);
}

void regroup(const Folder &from, const Folder &into, const QString &style)
{
    HistoryGrouping::regroup(from, into, style);
}

// The grouping in so many words, one entry after the other, with ordinary folders.
class PlainGrouping
{
public:
    static void regroup(const Folder &from, const Folder &into, const QString &style)
    {
        into->removeAllLeafChildren();
        for (const KDRBookmarkPtr &item : from->children()) {
            if (const Folder place = placeFor(static_cast<const WayfoldHistoryURL &>(*item), into, style))
                place->addChild(item);
        }
        if (style == "1" || style == "2")
            tidy(into, true);
        else if (style == "3" || style == "4")
            tidy(into, false);
        if (style == "2" || style == "4") {
            for (const KDRBookmarkPtr &child : into->children())
                tidy(subfolder(child), style == "4");
        }
    }

private:
    static Folder placeFor(const WayfoldHistoryURL &entry, const Folder &into, const QString &style)
    {
        const bool hasSite = !entry.trackedHostName().isEmpty();
        if (style == "0")
            return into;
        if (!entry.lastVisitedDate().isValid())
            return nullptr;
        if (style == "1")
            return dayFolder(entry, into);
        if (style == "2") {
            const Folder day = dayFolder(entry, into);
            return hasSite ? siteFolder(entry, day) : nullptr;
        }
        if (!hasSite)
            return nullptr;
        if (style == "3")
            return siteFolder(entry, into);
        return style == "4" ? dayFolder(entry, siteFolder(entry, into)) : nullptr;
    }
    static Folder dayFolder(const WayfoldHistoryURL &entry, const Folder &in)
    {
        const QString title = QLocale().toString(entry.lastVisitedDate().date(), QLocale::ShortFormat);
        if (const KDRBookmarkPtr known = in->childWithTitle(title))
            return subfolder(known);
        Folder made = WayfoldBookmarkFolder::bookmarkWithTitle(title);
        made->setTimestamp(entry.lastVisitedDate());
        in->addChild(made);
        return made;
    }
    static Folder siteFolder(const WayfoldHistoryURL &entry, const Folder &in)
    {
        if (const KDRBookmarkPtr known = in->childWithTitle(entry.trackedHostName()))
            return subfolder(known);
        Folder made = WayfoldBookmarkFolder::bookmarkWithTitle(entry.trackedHostName());
        in->addChild(made);
        return made;
    }
    static void tidy(const Folder &folder, bool isByDay)
    {
        folder->removeEmptySubfolders();
        if (isByDay)
            folder->sortChildrenByTimestampDescending();
        else
            folder->sortChildrenByTitle();
    }
};

struct Visit
{
    QByteArray title; // of its own
    QByteArray address;
    QByteArray seconds;
};

// A history that changes as a browser's does.
class ChangingHistory
{
public:
    explicit ChangingHistory(quint32 seed) : _random(seed)
    {
        for (int count = below(25); count > 0; --count)
            _visits.prepend(visit());
    }

    int below(int limit) { return _random.bounded(limit); }
    void change()
    {
        for (int times = below(4); times > 0; --times) {
            if (below(2))
                _visits.prepend(visit());
            else if (!_visits.isEmpty())
                _visits.removeAt(below(int(_visits.size())));
        }
        if (below(6) == 0)
            _visits = _visits.mid(below(int(_visits.size()) + 1));
        if (_visits.size() > 1 && below(3) == 0)
            _visits.move(below(int(_visits.size())), below(int(_visits.size())));
    }

    // As the store keeps it.
    Folder folder() const
    {
        auto records = std::make_shared<HistoryRecords>();
        for (const Visit &visit : _visits)
            records->append(visit.title, visit.address, visit.seconds);
        Folder folder = WayfoldBookmarkFolder::bookmarkWithTitle("History");
        folder->setLazyChildren(std::make_shared<HistoryItems>(records));
        return folder;
    }
    // The same, item by item.
    Folder plainFolder() const
    {
        Folder folder = WayfoldBookmarkFolder::bookmarkWithTitle("History");
        for (const Visit &visit : _visits)
            folder->parseHistoryDictionary({{"title", QString::fromUtf8(visit.title)},
                                            {"", QString::fromUtf8(visit.address)},
                                            {"lastVisitedDate", QString::fromUtf8(visit.seconds)}});
        return folder;
    }

private:
    Visit visit()
    {
        static const char *const addresses[] = {
            "http://www.b.example/x", "http://a.example/",      "http://news.c.example/",
            "http://b.example:80/",   "file:///etc/hosts",      "no address",
            "http://D.example/",      "http://192.168.0.1/a?b", "http://www.a.example/"};
        const QByteArray seconds = below(12) ? QByteArray::number(below(5) * 86400 + below(86400)) : QByteArray("1e99");
        return {QByteArray::number(++_number), addresses[below(int(std::size(addresses)))], seconds};
    }

    QRandomGenerator _random;
    int _number = 0;
    QList<Visit> _visits; // newest first
};

bool isDay(const QString &title)
{
    return QDate::fromString(title, QStringLiteral("dd.MM.yy")).isValid();
}

QStringList outline(const Folder &folder, bool withDates = false, int depth = 0)
{
    QStringList lines;
    for (const KDRBookmarkPtr &child : folder->children()) {
        const Folder sub = subfolder(child);
        lines.append(QString(qsizetype(depth) * 2, ' ') + child->title() + (sub ? "/" : ""));
        // Those of the sites' folders tell when they were made.
        if (withDates && sub && isDay(child->title()))
            lines.last() += " " + sub->timestamp().toString(Qt::ISODateWithMs);
        if (sub)
            lines.append(outline(sub, withDates, depth + 1));
    }
    return lines;
}

// Looks into some of the folders that are known by then.
void openSome(const Folder &folder, ChangingHistory &history)
{
    for (const KDRBookmarkPtr &child : folder->children()) {
        const Folder sub = subfolder(child);
        if (sub && history.below(2))
            openSome(sub, history);
    }
}

// Every folder that somebody knows, by the titles on the way to it.
void addKnownFolders(const Folder &folder, const QString &path, QHash<QString, KDRBookmarkPtr> &known)
{
    for (const KDRBookmarkPtr &child : folder->madeChildren()) {
        const Folder sub = subfolder(child);
        if (!sub)
            continue;
        known.insert(path + "/" + sub->title(), sub);
        addKnownFolders(sub, path + "/" + sub->title(), known);
    }
}

void addEntries(const Folder &folder, std::vector<KDRBookmarkPtr> &entries)
{
    for (const KDRBookmarkPtr &child : folder->children()) {
        if (const Folder sub = subfolder(child))
            addEntries(sub, entries);
        else {
            QCOMPARE(child->parent(), folder);
            entries.push_back(child);
        }
    }
}

Folder emptyRoot()
{
    return WayfoldBookmarkFolder::bookmarkWithTitle("");
}
} // namespace

class HistoryGroupingTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany)); }

    void freshGrouping_data() { styles(); }
    void freshGrouping();
    void regrouped_data() { styles(); }
    void regrouped();
    void knownFoldersAreKept_data() { styles(); }
    void knownFoldersAreKept();
    void entriesAreThoseOfTheHistory_data() { styles(); }
    void entriesAreThoseOfTheHistory();
    void searches_data() { styles(); }
    void searches();
    void itemsAreMadeWhenTheyAreSeen();
    void emptiedFolderStaysUntilTheNextGrouping_data();
    void emptiedFolderStaysUntilTheNextGrouping();
    void dayKeepsTheDateOfTheEntryThatMadeIt_data();
    void dayKeepsTheDateOfTheEntryThatMadeIt();
    void ungroupedEntriesFollowTheFolders_data();
    void ungroupedEntriesFollowTheFolders();
    void sitesThatDifferInCase();
    void daysOfTwoCenturies();
    void ofOtherThanHistory();
    void noHistory_data();
    void noHistory();
    void noHistorySortsWhatStays();

private:
    static void styles()
    {
        QTest::addColumn<QString>("style");
        QTest::addColumn<bool>("isPlain");
        for (const char *style : {"0", "1", "2", "3", "4", "9", ""}) {
            QTest::addRow("style %s", style) << QString::fromLatin1(style) << false;
            QTest::addRow("style %s, items", style) << QString::fromLatin1(style) << true;
        }
    }
};

void HistoryGroupingTest::freshGrouping()
{
    QFETCH(QString, style);
    QFETCH(bool, isPlain);
    for (quint32 seed = 0; seed < 60; ++seed) {
        const ChangingHistory history(seed);
        const Folder into = emptyRoot();
        const Folder from = isPlain ? history.plainFolder() : history.folder();
        regroup(from, into, style);
        const Folder expected = emptyRoot();
        const Folder plain = history.plainFolder();
        PlainGrouping::regroup(plain, expected, style);
        QCOMPARE(outline(into, true), outline(expected, true));
    }
}

void HistoryGroupingTest::regrouped()
{
    QFETCH(QString, style);
    QFETCH(bool, isPlain);
    for (quint32 seed = 0; seed < 150; ++seed) {
        ChangingHistory history(seed);
        const Folder into = emptyRoot();
        const Folder expected = emptyRoot();
        std::vector<Folder> sources;
        for (int times = 1 + history.below(4); times > 0; --times) {
            if (history.below(3) == 0)
                openSome(into, history);
            sources.push_back(isPlain ? history.plainFolder() : history.folder());
            regroup(sources.back(), into, style);
            const Folder plain = history.plainFolder();
            PlainGrouping::regroup(plain, expected, style);
            QCOMPARE(into->childCount(), expected->childCount());
            if (times == 1)
                QCOMPARE(outline(into), outline(expected));
            sources.push_back(plain);
            history.change();
        }
    }
}

void HistoryGroupingTest::knownFoldersAreKept()
{
    QFETCH(QString, style);
    QFETCH(bool, isPlain);
    int kept = 0;
    for (quint32 seed = 0; seed < 60; ++seed) {
        ChangingHistory history(seed);
        const Folder into = emptyRoot();
        Folder from = isPlain ? history.plainFolder() : history.folder();
        regroup(from, into, style);
        for (int times = 0; times < 4; ++times) {
            openSome(into, history);
            QHash<QString, KDRBookmarkPtr> before;
            addKnownFolders(into, QString(), before);
            history.change();
            from = isPlain ? history.plainFolder() : history.folder();
            regroup(from, into, style);
            outline(into); // makes all of them
            QHash<QString, KDRBookmarkPtr> after;
            addKnownFolders(into, QString(), after);
            for (auto folder = before.cbegin(); folder != before.cend(); ++folder) {
                if (!after.contains(folder.key()))
                    continue;
                QCOMPARE(after.value(folder.key()), folder.value());
                ++kept;
            }
        }
    }
    QCOMPARE(kept > 0, QStringLiteral("1234").contains(style) && !style.isEmpty());
}

void HistoryGroupingTest::entriesAreThoseOfTheHistory()
{
    QFETCH(QString, style);
    QFETCH(bool, isPlain);
    const ChangingHistory history(3);
    const Folder from = isPlain ? history.plainFolder() : history.folder();
    const Folder into = emptyRoot();
    regroup(from, into, style);
    std::vector<KDRBookmarkPtr> entries;
    addEntries(into, entries);
    for (const KDRBookmarkPtr &entry : entries)
        QCOMPARE(from->childWithTitle(entry->title()), entry);
}

void HistoryGroupingTest::searches()
{
    QFETCH(QString, style);
    QFETCH(bool, isPlain);
    for (quint32 seed = 0; seed < 20; ++seed) {
        const ChangingHistory history(seed);
        const Folder from = isPlain ? history.plainFolder() : history.folder();
        const Folder into = emptyRoot();
        regroup(from, into, style);
        const Folder plain = history.plainFolder();
        const Folder expected = emptyRoot();
        PlainGrouping::regroup(plain, expected, style);
        for (const char *text : {"example", "1", "a.example", "01.01", "nothing", ""}) {
            QStringList found;
            for (const KDRBookmarkPtr &item : into->bookmarksWithSubstring(text))
                found.append(item->title());
            QStringList wanted;
            for (const KDRBookmarkPtr &item : expected->bookmarksWithSubstring(text))
                wanted.append(item->title());
            QCOMPARE(found, wanted);
        }
        for (const KDRBookmarkPtr &item : plain->children()) {
            const KDRBookmarkPtr found = into->findByUUID(item->uuid());
            const KDRBookmarkPtr wanted = expected->findByUUID(item->uuid());
            QCOMPARE(found ? found->title() : QString(), wanted ? wanted->title() : QString());
        }
    }
}

void HistoryGroupingTest::itemsAreMadeWhenTheyAreSeen()
{
    auto records = std::make_shared<HistoryRecords>();
    for (int i = 0; i < 100; ++i)
        records->append("Page " + QByteArray::number(i), "http://www.example.com/", QByteArray::number(i * 86400));
    const auto items = std::make_shared<HistoryItems>(records);
    Folder from = emptyRoot();
    from->setLazyChildren(items);
    const Folder into = emptyRoot();
    regroup(from, into, "4");
    QCOMPARE(into->childCount(), 1U);
    const Folder site = subfolder(into->childAtIndex(0));
    QVERIFY(!site->isEmpty());
    QVERIFY(site->madeChildren().empty());
    QCOMPARE(site->childCount(), 100U);
    const Folder day = subfolder(site->childAtIndex(0));
    QCOMPARE(day->childCount(), 1U);
    QVERIFY(day->madeChildren().empty());
    QCOMPARE(day->childAtIndex(0), items->item(99));
    QVERIFY(from->madeChildren().empty());
}

void HistoryGroupingTest::emptiedFolderStaysUntilTheNextGrouping_data()
{
    QTest::addColumn<QString>("style");
    QTest::addColumn<bool>("isOpened");
    for (const char *style : {"2", "4"}) {
        QTest::addRow("style %s, opened", style) << QString::fromLatin1(style) << true;
        QTest::addRow("style %s, never opened", style) << QString::fromLatin1(style) << false;
    }
}

// Folders that become empty go one level a grouping.
void HistoryGroupingTest::emptiedFolderStaysUntilTheNextGrouping()
{
    QFETCH(QString, style);
    QFETCH(bool, isOpened);
    auto records = std::make_shared<HistoryRecords>();
    records->append("A", "http://a.example/", "0");
    Folder from = emptyRoot();
    from->setLazyChildren(std::make_shared<HistoryItems>(records));
    const Folder into = emptyRoot();
    regroup(from, into, style);
    const Folder group = subfolder(into->childAtIndex(0));
    if (isOpened)
        QCOMPARE(group->children().size(), size_t(1));
    regroup(emptyRoot(), into, style);
    QCOMPARE(into->children(), std::vector<KDRBookmarkPtr>{group});
    QVERIFY(group->isEmpty());
    regroup(emptyRoot(), into, style);
    QVERIFY(into->isEmpty());
}

namespace
{
// One site's visits, in seconds since the beginning of 2001.
Folder visitsAt(const std::vector<int> &seconds)
{
    auto records = std::make_shared<HistoryRecords>();
    for (const int at : seconds)
        records->append(QByteArray::number(at), "http://a.example/" + QByteArray::number(at), QByteArray::number(at));
    Folder from = emptyRoot();
    from->setLazyChildren(std::make_shared<HistoryItems>(records));
    return from;
}
} // namespace

void HistoryGroupingTest::dayKeepsTheDateOfTheEntryThatMadeIt_data()
{
    QTest::addColumn<QString>("style");
    for (const char *style : {"1", "2", "4"})
        QTest::addRow("style %s", style) << QString::fromLatin1(style);
}

void HistoryGroupingTest::dayKeepsTheDateOfTheEntryThatMadeIt()
{
    QFETCH(QString, style);
    const Folder into = emptyRoot();
    const auto day = [&] {
        return style == "4" ? subfolder(into->childAtIndex(0))->childAtIndex(0) : into->childAtIndex(0);
    };
    const Folder first = visitsAt({43200, 40000});
    regroup(first, into, style);
    const KDRBookmarkPtr made = day();
    QCOMPARE(made->title(), QString("01.01.01"));
    const QString noon = "2001-01-01T12:00:00";
    QVERIFY2(made->timestamp().toString(Qt::ISODate).startsWith(noon), qPrintable(made->timestamp().toString()));
    // Later and earlier ones of the same day come first then.
    const Folder later = visitsAt({50000, 43200, 40000});
    regroup(later, into, style);
    QCOMPARE(day(), made);
    QVERIFY(made->timestamp().toString(Qt::ISODate).startsWith(noon));
    const Folder earlier = visitsAt({100, 43200});
    regroup(earlier, into, style);
    QCOMPARE(day(), made);
    QVERIFY(made->timestamp().toString(Qt::ISODate).startsWith(noon));
}

void HistoryGroupingTest::ungroupedEntriesFollowTheFolders_data()
{
    QTest::addColumn<bool>("isPlain");
    QTest::newRow("made as they are seen") << false;
    QTest::newRow("items") << true;
}

void HistoryGroupingTest::ungroupedEntriesFollowTheFolders()
{
    QFETCH(bool, isPlain);
    const Folder into = emptyRoot();
    const Folder full = WayfoldBookmarkFolder::bookmarkWithTitle("full");
    full->addChild(WayfoldBookmarkFolder::bookmarkWithTitle("inner"));
    full->addChild(WayfoldBookmarkURL::bookmarkWithTitle("leaf"));
    into->addChild(WayfoldBookmarkURL::bookmarkWithTitle("leaf"));
    into->addChild(full);
    into->addChild(WayfoldBookmarkFolder::bookmarkWithTitle("empty"));
    const Folder from = visitsAt({43200, 100});
    if (isPlain)
        from->addChild(WayfoldBookmarkURL::bookmarkWithTitle("last"));
    regroup(from, into, "0");
    QStringList expected = {"full/", "  inner/", "empty/", "43200", "100"};
    if (isPlain)
        expected.append("last");
    QCOMPARE(outline(into), expected);
}

void HistoryGroupingTest::sitesThatDifferInCase()
{
    auto records = std::make_shared<HistoryRecords>();
    records->append("1", "http://B.example/", "0");
    records->append("2", "http://b.example/", "0");
    records->append("3", "http://A.example/", "0");
    records->append("4", "http://B.example/", "0");
    Folder from = emptyRoot();
    from->setLazyChildren(std::make_shared<HistoryItems>(records));
    const Folder into = emptyRoot();
    regroup(from, into, "3");
    QCOMPARE(outline(into), (QStringList{"A.example/", "  3", "B.example/", "  1", "  4", "b.example/", "  2"}));
}

// The short form of a day may leave the century out; its folder then holds both.
void HistoryGroupingTest::daysOfTwoCenturies()
{
    auto records = std::make_shared<HistoryRecords>();
    records->append("now", "http://a.example/", "43200");
    records->append("then", "http://a.example/", QByteArray::number(43200 - 36525.0 * 86400, 'f', 0));
    Folder from = emptyRoot();
    from->setLazyChildren(std::make_shared<HistoryItems>(records));
    const Folder into = emptyRoot();
    regroup(from, into, "1");
    QCOMPARE(outline(into), (QStringList{"01.01.01/", "  now", "  then"}));
}

void HistoryGroupingTest::ofOtherThanHistory()
{
    Folder from = emptyRoot();
    from->addChild(WayfoldBookmarkURL::bookmarkWithTitleAndURL("link", Url::URLWithString("http://a.example/")));
    from->addChild(WayfoldBookmarkFolder::bookmarkWithTitle("folder"));
    const Folder into = emptyRoot();
    regroup(from, into, "1");
    QVERIFY(into->isEmpty());
    regroup(from, into, "0");
    QCOMPARE(into->children(), from->children());
}

void HistoryGroupingTest::noHistory_data()
{
    QTest::addColumn<QString>("style");
    for (const char *style : {"0", "1", "2", "3", "4", "9"})
        QTest::addRow("style %s", style) << QString::fromLatin1(style);
}

namespace
{
// Folders that hold more than entries, in no order.
Folder untidyRoot()
{
    Folder root = emptyRoot();
    for (const char *title : {"z", "y"}) {
        const Folder outer = WayfoldBookmarkFolder::bookmarkWithTitle(title);
        outer->addChild(WayfoldBookmarkFolder::bookmarkWithTitle("inner"));
        root->addChild(outer);
    }
    return root;
}

Folder groupedRoot(const QString &style)
{
    Folder root = untidyRoot();
    regroup(visitsAt({100000, 43200, 100}), root, style);
    return root;
}
} // namespace

void HistoryGroupingTest::noHistory()
{
    QFETCH(QString, style);
    const Folder into = groupedRoot(style == "9" ? "1" : style);
    const Folder expected = groupedRoot(style == "9" ? "1" : style);
    for (int time = 0; time < 3; ++time) {
        regroup(nullptr, into, style);
        regroup(emptyRoot(), expected, style);
        QCOMPARE(outline(into), outline(expected));
    }
    const bool isTidied = style != "0" && style != "9";
    QCOMPARE(into->isEmpty(), isTidied);
}

void HistoryGroupingTest::noHistorySortsWhatStays()
{
    const Folder into = untidyRoot();
    regroup(nullptr, into, "3");
    QCOMPARE(outline(into), (QStringList{"y/", "z/"}));
}

QTEST_APPLESS_MAIN(HistoryGroupingTest)
#include "HistoryGroupingTest.moc"
