#include "core/Retries.h"

#include <QtTest>

class RetriesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void nothingIsOwedAtFirst();
    void becomeRare();
    void beginAfresh();
    void end();
};

void RetriesTest::nothingIsOwedAtFirst()
{
    Retries retries;
    for (int second = 0; second < 10; ++second)
        QVERIFY(!retries.isDue());
    QVERIFY(!retries.isOwed());
}

void RetriesTest::becomeRare()
{
    Retries retries;
    retries.begin();
    QVERIFY(retries.isOwed());
    QList<int> due;
    for (int second = 1; second <= 300; ++second) {
        if (retries.isDue())
            due.append(second);
    }
    QCOMPARE(due, (QList<int>{1, 3, 7, 15, 31, 63, 127, 191, 255}));
    QVERIFY(retries.isOwed());
}

void RetriesTest::beginAfresh()
{
    Retries retries;
    retries.begin();
    for (int second = 0; second < 100; ++second)
        retries.isDue();
    retries.begin();
    QVERIFY(retries.isDue());
    QVERIFY(!retries.isDue());
    QVERIFY(retries.isDue());
}

void RetriesTest::end()
{
    Retries retries;
    retries.begin();
    retries.end();
    QVERIFY(!retries.isOwed());
    QVERIFY(!retries.isDue());
}

QTEST_APPLESS_MAIN(RetriesTest)
#include "RetriesTest.moc"
