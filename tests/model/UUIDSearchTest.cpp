#include "model/UUIDSearch.h"
#include "tests/model/ModelTestSupport.h"

#include <QtTest>

class UUIDSearchTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void findsWhatIsWanted();
    void firstOfTheSameIsFound();
    void nothingIsWanted();
    void noneIsNeverWanted();
    void identifiersInUtf8_data();
    void identifiersInUtf8();
};

namespace
{
KDRBookmarkPtr itemWith(const QString &uuid)
{
    const KDRBookmarkPtr item = KDRBookmark::bookmarkWithTitle("item");
    item->setUUID(uuid);
    return item;
}
} // namespace

void UUIDSearchTest::findsWhatIsWanted()
{
    UUIDSearch search({"A", "B", "A"});
    QVERIFY(search.isWanted(QString("A")));
    QVERIFY(!search.isWanted(QString("a"))); // case matters
    QVERIFY(!search.isWanted(QString("C")));
    const KDRBookmarkPtr a = itemWith("A");
    const KDRBookmarkPtr b = itemWith("B");
    search.offer(itemWith("C"));
    QVERIFY(search.found().isEmpty());
    search.offer(b);
    QVERIFY(!search.isOver());
    QVERIFY(!search.isWanted(QString("B")));
    search.offer(a);
    QVERIFY(search.isOver());
    QCOMPARE(search.found().size(), 2);
    QCOMPARE(search.found().value("A"), a);
    QCOMPARE(search.found().value("B"), b);
}

void UUIDSearchTest::firstOfTheSameIsFound()
{
    UUIDSearch search({"A"});
    const KDRBookmarkPtr first = itemWith("A");
    search.offer(first);
    search.offer(itemWith("A"));
    QCOMPARE(search.found().value("A"), first);
}

void UUIDSearchTest::nothingIsWanted()
{
    UUIDSearch search{QStringList()};
    QVERIFY(search.isOver());
    search.offer(itemWith("A"));
    QVERIFY(search.found().isEmpty());
}

void UUIDSearchTest::noneIsNeverWanted()
{
    UUIDSearch search({QString(), "A"});
    QVERIFY(!search.isWanted(QString()));
    search.offer(itemWith(QString()));
    QVERIFY(search.found().isEmpty());
    QVERIFY(!search.isOver());
}

void UUIDSearchTest::identifiersInUtf8_data()
{
    QTest::addColumn<QString>("uuid");
    QTest::newRow("short") << "A";
    QTest::newRow("address") << "http://www.example.com/page?a=b#c";
    QTest::newRow("beyond ASCII") << QString::fromUtf8("caf\xc3\xa9 \xf0\x9f\x98\x80");
    for (const int length : {4094, 4095, 4096, 10000})
        QTest::addRow("%d letters", length) << QString(length, 'x');
}

void UUIDSearchTest::identifiersInUtf8()
{
    QFETCH(QString, uuid);
    UUIDSearch search({uuid});
    const QByteArray utf8 = uuid.toUtf8();
    QVERIFY(search.isWanted(QByteArrayView(utf8)));
    QVERIFY(!search.isWanted(QByteArrayView(utf8.chopped(1))));
    QVERIFY(!search.isWanted(QByteArrayView(utf8 + "x")));
    QByteArray other = utf8;
    other[0] = other[0] == 'z' ? 'y' : 'z';
    QVERIFY(!search.isWanted(QByteArrayView(other)));
    search.offer(itemWith(uuid));
    QVERIFY(!search.isWanted(QByteArrayView(utf8)));
}

QTEST_MAIN(UUIDSearchTest)
#include "UUIDSearchTest.moc"
