#include "platform/base/NotificationCenter.h"

#include <QStringList>
#include <QTest>
#include <memory>

class NotificationCenterTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void tellsWhoObservesTheName();
    void objectLimitsARegistration();
    void tellsInTheOrderOfRegistration();
    void passesNameAndObjectOn();
    void removeObserverTakesAllBack();
    void observerMayRemoveItself();
    void removedObserverIsNotToldAnyMore();
    void addedObserverIsToldFromTheNextPostOn();
    void postsMayBeNested();
    void handlerOutlivesItsOwnRemoval();
    void registeredTwiceIsToldTwice();
    void defaultCenterIsOne();
};

static NotificationCenter::Handler noting(QStringList *told, const QString &text)
{
    return [told, text](const Notification &) { told->append(text); };
}

void NotificationCenterTest::tellsWhoObservesTheName()
{
    NotificationCenter center;
    QStringList told;
    center.addObserver(this, noting(&told, "a"), "A");
    center.addObserver(this, noting(&told, "b"), "B");
    center.postNotificationName("A", nullptr);
    QCOMPARE(told, QStringList("a"));
    center.postNotificationName("C", nullptr);
    QCOMPARE(told, QStringList("a"));
}

void NotificationCenterTest::objectLimitsARegistration()
{
    NotificationCenter center;
    QStringList told;
    const int one = 1;
    const int two = 1; // equal, but not the same
    center.addObserver(this, noting(&told, "one"), "A", &one);
    center.addObserver(this, noting(&told, "any"), "A", nullptr);
    center.postNotificationName("A", &two);
    QCOMPARE(told, QStringList("any"));
    center.postNotificationName("A", nullptr);
    QCOMPARE(told, QStringList({"any", "any"}));
    center.postNotificationName("A", &one);
    QCOMPARE(told, QStringList({"any", "any", "one", "any"}));
}

void NotificationCenterTest::tellsInTheOrderOfRegistration()
{
    NotificationCenter center;
    QStringList told;
    QStringList expected;
    for (int i = 0; i < 20; i++) {
        expected.append(QString::number(i));
        center.addObserver(&told, noting(&told, expected.last()), "A");
    }
    center.postNotificationName("A", nullptr);
    QCOMPARE(told, expected);
}

void NotificationCenterTest::passesNameAndObjectOn()
{
    NotificationCenter center;
    Notification received;
    center.addObserver(
        this, [&](const Notification &notification) { received = notification; }, "A");
    center.postNotification({"A", this});
    QCOMPARE(received.name, "A");
    QCOMPARE(received.object, static_cast<const void *>(this));
}

void NotificationCenterTest::removeObserverTakesAllBack()
{
    NotificationCenter center;
    QStringList told;
    const int other = 0;
    center.addObserver(this, noting(&told, "a"), "A");
    center.addObserver(&other, noting(&told, "other"), "A");
    center.addObserver(this, noting(&told, "b"), "B", &other);
    center.removeObserver(this);
    center.postNotificationName("A", nullptr);
    center.postNotificationName("B", &other);
    QCOMPARE(told, QStringList("other"));
    center.removeObserver(this);
}

void NotificationCenterTest::observerMayRemoveItself()
{
    NotificationCenter center;
    int count = 0;
    QStringList told;
    center.addObserver(
        this,
        [&](const Notification &) {
            count++;
            center.removeObserver(this);
        },
        "A");
    center.addObserver(&told, noting(&told, "next"), "A");
    center.postNotificationName("A", nullptr);
    center.postNotificationName("A", nullptr);
    QCOMPARE(count, 1);
    QCOMPARE(told.size(), 2);
}

void NotificationCenterTest::removedObserverIsNotToldAnyMore()
{
    NotificationCenter center;
    QStringList told;
    center.addObserver(
        this, [&](const Notification &) { center.removeObserver(&told); }, "A");
    center.addObserver(&told, noting(&told, "gone"), "A");
    center.postNotificationName("A", nullptr);
    QVERIFY(told.isEmpty());
}

void NotificationCenterTest::addedObserverIsToldFromTheNextPostOn()
{
    NotificationCenter center;
    QStringList told;
    bool isAdded = false;
    center.addObserver(
        this,
        [&](const Notification &) {
            if (!isAdded)
                center.addObserver(&told, noting(&told, "added"), "A");
            isAdded = true;
        },
        "A");
    center.postNotificationName("A", nullptr);
    QVERIFY(told.isEmpty());
    center.postNotificationName("A", nullptr);
    QCOMPARE(told, QStringList("added"));
}

void NotificationCenterTest::postsMayBeNested()
{
    NotificationCenter center;
    QStringList told;
    center.addObserver(
        this,
        [&](const Notification &) {
            told.append("before");
            center.postNotificationName("B", nullptr);
            told.append("after");
        },
        "A");
    center.addObserver(this, noting(&told, "b"), "B");
    center.addObserver(this, noting(&told, "a"), "A");
    center.postNotificationName("A", nullptr);
    QCOMPARE(told, QStringList({"before", "b", "after", "a"}));
}

void NotificationCenterTest::handlerOutlivesItsOwnRemoval()
{
    NotificationCenter center;
    auto owned = std::make_shared<QString>("still here");
    const std::weak_ptr<QString> watch = owned;
    QString seen;
    center.addObserver(
        this,
        [&center, &seen, this, owned](const Notification &) {
            center.removeObserver(this);
            seen = *owned;
        },
        "A");
    owned.reset();
    center.postNotificationName("A", nullptr);
    QCOMPARE(seen, "still here");
    QVERIFY(watch.expired());
}

void NotificationCenterTest::registeredTwiceIsToldTwice()
{
    NotificationCenter center;
    QStringList told;
    center.addObserver(this, noting(&told, "a"), "A");
    center.addObserver(this, noting(&told, "a"), "A");
    center.postNotificationName("A", nullptr);
    QCOMPARE(told.size(), 2);
}

void NotificationCenterTest::defaultCenterIsOne()
{
    QCOMPARE(&NotificationCenter::defaultCenter(), &NotificationCenter::defaultCenter());
}

QTEST_GUILESS_MAIN(NotificationCenterTest)
#include "NotificationCenterTest.moc"
