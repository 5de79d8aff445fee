#include "platform/files/DictionaryMerge.h"

#include <QTest>

class DictionaryMergeTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void merges_data();
    void merges();
};

void DictionaryMergeTest::merges_data()
{
    QTest::addColumn<QVariantMap>("base");
    QTest::addColumn<QVariantMap>("ours");
    QTest::addColumn<QVariantMap>("theirs");
    QTest::addColumn<QVariantMap>("merged");

    using Map = QVariantMap;
    const Map none;
    const Map one{{"a", 1}};
    const Map two{{"a", 2}};
    const Map three{{"a", 3}};
    QTest::newRow("nothing") << none << none << none << none;
    QTest::newRow("nobody changed it") << one << one << one << one;
    QTest::newRow("we changed it") << one << two << one << two;
    QTest::newRow("they changed it") << one << one << two << two;
    QTest::newRow("both changed it alike") << one << two << two << two;
    QTest::newRow("both changed it") << one << two << three << two;
    QTest::newRow("we added it") << none << one << none << one;
    QTest::newRow("they added it") << none << none << one << one;
    QTest::newRow("both added it") << none << one << two << one;
    QTest::newRow("we took it away") << one << none << one << none;
    QTest::newRow("they took it away") << one << one << none << none;
    QTest::newRow("both took it away") << one << none << none << none;
    QTest::newRow("we took away what they changed") << one << none << two << none;
    QTest::newRow("we changed what they took away") << one << two << none << two;
    QTest::newRow("each another key") << Map{{"a", 1}, {"b", 1}, {"c", 1}} << Map{{"a", 2}, {"b", 1}, {"c", 1}}
                                      << Map{{"a", 1}, {"b", 2}} << Map{{"a", 2}, {"b", 2}};
    QTest::newRow("another type is a change") << one << Map{{"a", "1"}} << one << Map{{"a", "1"}};
    QTest::newRow("a flag is no number") << Map{{"a", true}} << one << Map{{"a", true}} << one;
    QTest::newRow("a larger number type is no change") << Map{{"a", qlonglong(1)}} << one << two << two;
    QTest::newRow("empty text is no missing one") << Map{{"a", ""}} << none << Map{{"a", ""}} << none;

    const auto table = [](const Map &entries) { return Map{{"t", entries}}; };
    QTest::newRow("each another entry of a table") << table({{"a", 1}, {"b", 1}}) << table({{"a", 2}, {"b", 1}})
                                                   << table({{"a", 1}, {"b", 2}}) << table({{"a", 2}, {"b", 2}});
    QTest::newRow("both made a table") << none << table(one) << table({{"b", 2}}) << table({{"a", 1}, {"b", 2}});
    QTest::newRow("a table in place of a number") << Map{{"t", 1}} << table(one) << Map{{"t", 2}} << table(one);
    QTest::newRow("we took a table away") << table(one) << none << table(two) << none;
    QTest::newRow("an entry taken away, another added")
        << table(one) << table(none) << table({{"a", 1}, {"b", 2}}) << table({{"b", 2}});
}

void DictionaryMergeTest::merges()
{
    QFETCH(QVariantMap, base);
    QFETCH(QVariantMap, ours);
    QFETCH(QVariantMap, theirs);
    QFETCH(QVariantMap, merged);
    QCOMPARE(mergedDictionary(base, ours, theirs), merged);
}

QTEST_APPLESS_MAIN(DictionaryMergeTest)
#include "DictionaryMergeTest.moc"
