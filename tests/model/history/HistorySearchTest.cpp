#include "model/history/HistorySearch.h"

#include "model/WayfoldBookmarkFolder.h"
#include "model/history/HistoryReader.h"
#include "model/history/HistoryRecords.h"
#include "platform/files/PropertyList.h"
#include "tests/support/TemporaryHome.h"

#include <QTest>

// Reads a history file again and again, and searches each reading with the same search and with a fresh one.
class HistorySearchTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void findsWhatAFreshSearchFinds();
    void startsAnewWithOtherTexts();
    void readingThatWasBegunTwice();
    void whatIsFoundHoldsNothingElse();

private:
    static QVariantMap entry(const QString &address, const QString &title)
    {
        return {{QStringLiteral(""), address}, {QStringLiteral("title"), title}};
    }
    static QStringList titles(const std::shared_ptr<HistoryItems> &found)
    {
        QStringList titles;
        for (unsigned i = 0; i < found->count(); ++i)
            titles.append(found->item(i)->title());
        return titles;
    }
    std::shared_ptr<HistoryItems> read(HistoryReader &reader, const QVariantList &entries,
                                       const QByteArray &before = QByteArray(), const QByteArray &after = QByteArray())
    {
        const QVariantMap file = {{QStringLiteral("WebHistoryDates"), entries}};
        _home.write(QStringLiteral("History.plist"), PropertyList::toXml(file).replace(before, after));
        return std::make_shared<HistoryItems>(reader.read(_home.path(QStringLiteral("History.plist"))));
    }

    TemporaryHome _home;
};

void HistorySearchTest::findsWhatAFreshSearchFinds()
{
    HistoryReader reader;
    HistorySearch search(QStringLiteral("NEWS"));
    QVariantList entries = {entry("http://a.example.com/", "First news"), entry("http://b.example.com/", "Other"),
                            entry("http://news.example.com/", "Third")};
    QCOMPARE(titles(search.copiesOfMatches(*read(reader, entries))), QStringList({"First news", "Third"}));

    entries.prepend(entry("http://c.example.com/", "More news"));
    QCOMPARE(titles(search.copiesOfMatches(*read(reader, entries))), QStringList({"More news", "First news", "Third"}));

    // A reading that is not searched lies between.
    entries.removeAt(1);
    entries.prepend(entry("http://d.example.com/", "Plain"));
    entries.prepend(entry("http://e.example.com/", "Newsletter"));
    read(reader, entries);
    entries.move(4, 0);
    QCOMPARE(titles(search.copiesOfMatches(*read(reader, entries))), QStringList({"Third", "Newsletter", "More news"}));
}

void HistorySearchTest::startsAnewWithOtherTexts()
{
    HistorySearch search(QStringLiteral("news"));
    HistoryReader reader;
    HistoryReader other;
    QCOMPARE(titles(search.copiesOfMatches(*read(reader, {entry("http://a.example.com/", "News")}))),
             QStringList({"News"}));
    QCOMPARE(titles(search.copiesOfMatches(*read(other, {entry("http://a.example.com/", "Other")}))), QStringList());
    QCOMPARE(titles(search.copiesOfMatches(*read(reader, {entry("http://b.example.com/", "Old news")}))),
             QStringList({"Old news"}));
}

// The quick way gives up at the last entry, and the numbers that it has given by then are not given again.
void HistorySearchTest::readingThatWasBegunTwice()
{
    HistoryReader reader;
    HistorySearch search(QStringLiteral("news"));
    QVariantList entries = {entry("http://a.example.com/", "First news"), entry("http://b.example.com/", "Other")};
    search.copiesOfMatches(*read(reader, entries));

    entries.prepend(entry("http://c.example.com/", "Plain"));
    entries.prepend(entry("http://d.example.com/", "More news"));
    entries.append(entry("http://e.example.com/", "Last news"));
    const std::shared_ptr<HistoryItems> again = read(reader, entries, "Last news", "<![CDATA[Last news]]>");
    QCOMPARE(again->count(), 5U);
    QVERIFY(again->records().nextSerialNumber() > again->count());
    const QStringList found = {"More news", "First news", "Last news"};
    QCOMPARE(titles(search.copiesOfMatches(*again)), found);
    QCOMPARE(titles(HistorySearch(QStringLiteral("news")).copiesOfMatches(*again)), found);

    entries.prepend(entry("http://f.example.com/", "Newsletter"));
    QCOMPARE(titles(search.copiesOfMatches(*read(reader, entries))), QStringList("Newsletter") + found);
}

// A session goes by many sites, each of which keeps what it found in the history as it was then.
void HistorySearchTest::whatIsFoundHoldsNothingElse()
{
    HistorySearch search(QStringLiteral("news"));
    auto records = std::make_shared<HistoryRecords>();
    records->append("Other", "http://a.example.com/", "1");
    records->append("News", "http://b.example.com/", "2");
    records->append("Old news", "http://c.example.com/", "3");
    const std::weak_ptr<const HistoryRecords> reading = records;
    auto history = std::make_shared<HistoryItems>(std::move(records));
    std::vector<std::weak_ptr<KDRBookmark>> items;
    for (unsigned i = 0; i < history->count(); ++i)
        items.push_back(history->item(i));
    const std::shared_ptr<HistoryItems> found = search.copiesOfMatches(*history);
    QCOMPARE(found->count(), 2U);
    QVERIFY(found->item(0) != history->item(1)); // a copy
    QVERIFY(!reading.expired());
    history.reset();

    QVERIFY(reading.expired());
    for (const std::weak_ptr<KDRBookmark> &item : items)
        QVERIFY(item.expired());
    QCOMPARE(titles(found), QStringList({"News", "Old news"}));
    QCOMPARE(found->item(1)->uuid(), QStringLiteral("http://c.example.com/"));
    QCOMPARE(titles(search.copiesOfMatches(*found)), QStringList({"News", "Old news"}));
}

QTEST_GUILESS_MAIN(HistorySearchTest)
#include "HistorySearchTest.moc"
