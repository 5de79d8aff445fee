#include "drawer/PeopleRows.h"

#include "tests/support/MemoryContacts.h"

#include <QTest>

class PeopleRowsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void fewAreMadeAtOnce();
    void manyAreMadeAndSortedInPasses();

private:
    void add(std::size_t count);

    MemoryContacts _contacts;
};

void PeopleRowsTest::add(std::size_t count)
{
    for (std::size_t i = 0; i < count; ++i)
        _contacts.set(MemoryContacts::person(QString::number(i), QStringLiteral("Ann"), QString::number(i)));
}

void PeopleRowsTest::fewAreMadeAtOnce()
{
    add(PeopleRows::rowsOfASlice);
    PeopleRows rows;
    rows.takeFrom(_contacts);
    QVERIFY(!rows.isMade());
    QVERIFY(rows.makeSome());
    QCOMPARE(rows.size(), 0U); // as long as nobody takes them over
    rows.takeOver();
    QVERIFY(rows.isMade());
    QCOMPARE(rows.size(), PeopleRows::rowsOfASlice);
}

// One pass a slice, and one for the order of all.
void PeopleRowsTest::manyAreMadeAndSortedInPasses()
{
    add(2 * PeopleRows::rowsOfASlice + 1);
    PeopleRows rows;
    rows.takeFrom(_contacts);
    for (int pass = 0; pass < 4; ++pass)
        QVERIFY(!rows.makeSome());
    QVERIFY(rows.makeSome());
    rows.takeOver();
    QCOMPARE(rows.size(), 2 * PeopleRows::rowsOfASlice + 1);
}

QTEST_MAIN(PeopleRowsTest)
#include "PeopleRowsTest.moc"
