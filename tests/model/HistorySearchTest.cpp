#include "model/HistorySearch.h"

#include "model/HistoryReader.h"
#include "model/WayfoldBookmarkFolder.h"
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
    std::shared_ptr<HistoryItems> read(HistoryReader &reader, const QVariantList &entries)
    {
        const QString path = _home.path() + QStringLiteral("/History.plist");
        PropertyList::writeFile(QVariantMap{{QStringLiteral("WebHistoryDates"), entries}}, path);
        return std::make_shared<HistoryItems>(reader.read(path));
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

QTEST_GUILESS_MAIN(HistorySearchTest)
#include "HistorySearchTest.moc"
