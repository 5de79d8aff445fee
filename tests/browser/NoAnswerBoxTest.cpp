#include "browser/NoAnswerBox.h"

#include <QPushButton>
#include <QTest>
#include <QTimer>

class NoAnswerBoxTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void says();
    void namesTheAddresses();
    void longAddresses();
    void answers_data();
    void answers();
};

void NoAnswerBoxTest::says()
{
    const NoAnswerBox box({});
    QVERIFY(box.text().contains("does not answer"));
    QVERIFY(!box.informativeText().isEmpty());
    QVERIFY(!box.informativeText().contains("Not opened yet"));
}

// As they are: an address is no mark-up.
void NoAnswerBoxTest::namesTheAddresses()
{
    const NoAnswerBox box({"http://a.example/?<b>", "b.example"});
    QVERIFY(box.informativeText().endsWith("Not opened yet:\nhttp://a.example/?<b>\nb.example"));
    QCOMPARE(box.textFormat(), Qt::PlainText);
}

void NoAnswerBoxTest::longAddresses()
{
    const NoAnswerBox box({QString(80, 'a'), QString(81, 'b'), "c", "d", "e", "f"});
    QVERIFY(box.informativeText().endsWith(QString(80, 'a') + '\n' + QString(80, 'b') +
                                           QString::fromUtf8("…\nc\nd\ne\n…")));
    const NoAnswerBox five({"a", "b", "c", "d", "e"});
    QVERIFY(five.informativeText().endsWith("\nd\ne"));
}

void NoAnswerBoxTest::answers_data()
{
    QTest::addColumn<int>("key");
    QTest::addColumn<bool>("triesAgain");

    QTest::newRow("Return") << int(Qt::Key_Return) << true;
    QTest::newRow("Escape") << int(Qt::Key_Escape) << false;
}

void NoAnswerBoxTest::answers()
{
    QFETCH(int, key);
    QFETCH(bool, triesAgain);
    NoAnswerBox box({});
    QTimer::singleShot(0, &box, [&] { QTest::keyClick(&box, Qt::Key(key)); });
    box.exec();
    QCOMPARE(box.triesAgain(), triesAgain);
}

QTEST_MAIN(NoAnswerBoxTest)
#include "NoAnswerBoxTest.moc"
