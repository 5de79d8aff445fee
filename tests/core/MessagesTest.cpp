#include "core/Messages.h"

#include <QSignalSpy>
#include <QtTest>

class MessagesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void nothingIsSaidAtFirst();
    void theMostImportantIsCurrent_data();
    void theMostImportantIsCurrent();
    void theNextComesWhenOneGoes();
    void theSameSubjectIsReplaced();
    void everySayingIsTold();
    void clearingNothingTellsNothing();
    void aMessageWithATimeGoesByItself();
    void noTimePassesBehindAnother();
    void sayingAnewBeginsTheTimeAnew();
    void whatIsSaidBehindLeavesTheTimeAlone();

private:
    static Messages::Message message(Messages::Subject subject, const QString &text = QStringLiteral("text"))
    {
        return {subject, Messages::Information, text, {}, {}};
    }
    static Messages::Message passing(Messages::Subject subject, int milliseconds)
    {
        Messages::Message said = message(subject);
        said.time = std::chrono::milliseconds(milliseconds);
        return said;
    }
};

void MessagesTest::nothingIsSaidAtFirst()
{
    const Messages messages;
    QVERIFY(!messages.current());
    QVERIFY(!messages.about(Messages::NotSaved));
}

// Whatever the order in which two are said.
void MessagesTest::theMostImportantIsCurrent_data()
{
    QTest::addColumn<int>("more");
    QTest::addColumn<int>("less");
    const Messages::Subject order[] = {Messages::NotSaved, Messages::KeptAside, Messages::NoBackup, Messages::Merged,
                                       Messages::SavedAgain};
    for (int i = 0; i + 1 < int(std::size(order)); ++i)
        QTest::addRow("%d before %d", int(order[i]), int(order[i + 1])) << int(order[i]) << int(order[i + 1]);
}

void MessagesTest::theMostImportantIsCurrent()
{
    QFETCH(int, more);
    QFETCH(int, less);
    for (const bool moreFirst : {true, false}) {
        Messages messages;
        messages.say(message(Messages::Subject(moreFirst ? more : less)));
        messages.say(message(Messages::Subject(moreFirst ? less : more)));
        QCOMPARE(int(messages.current()->subject), more);
        QVERIFY(messages.about(Messages::Subject(less)));
    }
}

void MessagesTest::theNextComesWhenOneGoes()
{
    Messages messages;
    messages.say(message(Messages::Merged));
    messages.say(message(Messages::NotSaved));
    messages.clear(Messages::NotSaved);
    QCOMPARE(messages.current()->subject, Messages::Merged);
    messages.clear(Messages::Merged);
    QVERIFY(!messages.current());
}

void MessagesTest::theSameSubjectIsReplaced()
{
    Messages messages;
    messages.say(message(Messages::Merged, QStringLiteral("one")));
    messages.say(message(Messages::Merged, QStringLiteral("two")));
    QCOMPARE(messages.current()->text, QStringLiteral("two"));
    messages.clear(Messages::Merged);
    QVERIFY(!messages.current());
}

void MessagesTest::everySayingIsTold()
{
    Messages messages;
    const QSignalSpy changed(&messages, &Messages::changed);
    messages.say(message(Messages::NotSaved));
    messages.say(message(Messages::NotSaved));
    messages.say(message(Messages::Merged));
    QCOMPARE(changed.size(), 3);
    messages.clear(Messages::Merged);
    QCOMPARE(changed.size(), 4);
}

void MessagesTest::clearingNothingTellsNothing()
{
    Messages messages;
    messages.say(message(Messages::NotSaved));
    const QSignalSpy changed(&messages, &Messages::changed);
    messages.clear(Messages::Merged);
    QCOMPARE(changed.size(), 0);
    QVERIFY(messages.current());
}

void MessagesTest::aMessageWithATimeGoesByItself()
{
    Messages messages;
    messages.say(passing(Messages::SavedAgain, 1));
    QVERIFY(messages.current());
    QTRY_VERIFY(!messages.current());
}

void MessagesTest::noTimePassesBehindAnother()
{
    Messages messages;
    messages.say(passing(Messages::SavedAgain, 1));
    messages.say(message(Messages::NotSaved));
    messages.say(passing(Messages::Merged, 1));
    // Longer than either, as the timer that is asked for last fires last.
    QTimer later;
    later.setSingleShot(true);
    later.start(20);
    QTRY_VERIFY(!later.isActive());
    QVERIFY(messages.about(Messages::SavedAgain) && messages.about(Messages::Merged));
    messages.clear(Messages::NotSaved);
    QVERIFY(messages.current());
    QTRY_VERIFY(!messages.current());
}

void MessagesTest::sayingAnewBeginsTheTimeAnew()
{
    Messages messages;
    messages.say(passing(Messages::Merged, 1));
    messages.say(message(Messages::Merged));
    QTimer later;
    later.setSingleShot(true);
    later.start(20);
    QTRY_VERIFY(!later.isActive());
    QVERIFY(messages.current()); // which has no time
    messages.say(passing(Messages::Merged, 1));
    QTRY_VERIFY(!messages.current());
}

void MessagesTest::whatIsSaidBehindLeavesTheTimeAlone()
{
    Messages messages;
    messages.say(passing(Messages::Merged, 1));
    messages.say(message(Messages::SavedAgain));
    QTRY_COMPARE(messages.current()->subject, Messages::SavedAgain);
}

QTEST_GUILESS_MAIN(MessagesTest)
#include "MessagesTest.moc"
