#include "platform/contacts/FetchedCards.h"

#include <QTest>

class FetchedCardsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cardIsFetchedOnce();
    void fewAtATime();
    void whatIsAnsweredAtOnce();
    void whatCannotBeHad();
    void forgottenCard();
    void forgottenWhileItIsFetched();
    void forgottenBeforeItIsFetched();
    void forgottenCardsMakeRoomForOthers();
    void whatThereIsNoRoomForIsNotToldAgain();

private:
    void answer(const QByteArray &card) { done.takeFirst()(card); }

    QStringList asked;
    QList<FetchedCards::Done> done;
    QStringList told;
    std::unique_ptr<FetchedCards> cards;
};

void FetchedCardsTest::init()
{
    asked.clear();
    done.clear();
    told.clear();
    cards = std::make_unique<FetchedCards>(
        [this](const QString &id, const FetchedCards::Done &whenDone) {
            asked.append(id);
            done.append(whenDone);
        },
        [this](const QString &id) { told.append(id); });
}

void FetchedCardsTest::cardIsFetchedOnce()
{
    QVERIFY(cards->card("a").isNull());
    QVERIFY(cards->card("a").isNull());
    QCOMPARE(asked, QStringList{"a"});
    answer("card");
    QCOMPARE(told, QStringList{"a"});
    QCOMPARE(cards->card("a"), QByteArray("card"));
    QCOMPARE(asked, QStringList{"a"});
}

void FetchedCardsTest::fewAtATime()
{
    for (const char *id : {"a", "b", "c", "d", "e", "f", "e"})
        cards->card(id);
    QCOMPARE(asked, QStringList({"a", "b", "c", "d"}));
    answer("card");
    QCOMPARE(asked, QStringList({"a", "b", "c", "d", "e"}));
    answer("card");
    answer("card");
    QCOMPARE(asked, QStringList({"a", "b", "c", "d", "e", "f"}));
}

void FetchedCardsTest::whatIsAnsweredAtOnce()
{
    FetchedCards quick([](const QString &id, const FetchedCards::Done &whenDone) { whenDone(id.toUtf8()); },
                       [this](const QString &id) { told.append(id); });
    QVERIFY(quick.card("a").isNull());
    QCOMPARE(quick.card("a"), QByteArray("a"));
    QVERIFY(quick.card("b").isNull());
    QCOMPARE(told, QStringList({"a", "b"}));
}

void FetchedCardsTest::whatCannotBeHad()
{
    cards->card("a");
    answer(QByteArray());
    QVERIFY(told.isEmpty());
    cards->card("a"); // another time, perhaps
    QCOMPARE(asked, QStringList({"a", "a"}));
}

void FetchedCardsTest::forgottenCard()
{
    cards->card("a");
    answer("old");
    cards->forget("a");
    QVERIFY(cards->card("a").isNull());
    answer("new");
    QCOMPARE(cards->card("a"), QByteArray("new"));
    QCOMPARE(told, QStringList({"a", "a"}));
}

void FetchedCardsTest::forgottenWhileItIsFetched()
{
    cards->card("a");
    cards->forget("a");
    QVERIFY(cards->card("a").isNull());
    answer("old");
    QVERIFY(told.isEmpty());
    QVERIFY(cards->card("a").isNull());
    answer("new");
    QCOMPARE(cards->card("a"), QByteArray("new"));
}

void FetchedCardsTest::forgottenBeforeItIsFetched()
{
    for (const char *id : {"a", "b", "c", "d", "e"})
        cards->card(id);
    cards->forget("e");
    answer("card");
    QCOMPARE(asked, QStringList({"a", "b", "c", "d"}));
}

// The book that was asked for them has gone, and will never answer.
void FetchedCardsTest::forgottenCardsMakeRoomForOthers()
{
    for (const char *id : {"a", "b", "c", "d", "e", "f"})
        cards->card(id);
    cards->forget("b");
    QCOMPARE(asked, QStringList({"a", "b", "c", "d", "e"}));
    cards->forget("a");
    QCOMPARE(asked.last(), QString("f"));
    answer("late"); // that is what was forgotten
    QVERIFY(told.isEmpty());
}

// Lists ask again for what they were told of: otherwise that would never end.
void FetchedCardsTest::whatThereIsNoRoomForIsNotToldAgain()
{
    const QByteArray large(FetchedCards::room - 10, 'x');
    for (const char *id : {"a", "b"}) {
        cards->card(id);
        answer(large);
    }
    QCOMPARE(told, QStringList({"a", "b"}));
    QVERIFY(cards->card("a").isNull());
    answer(large);
    QCOMPARE(told, QStringList({"a", "b"}));
    QCOMPARE(cards->card("a"), large);
}

QTEST_APPLESS_MAIN(FetchedCardsTest)
#include "FetchedCardsTest.moc"
