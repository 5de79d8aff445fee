#include "browser/RunningInstance.h"

#include "tests/support/TemporaryHome.h"

#include <QProcess>
#include <QSignalSpy>
#include <QTest>

// The second process is this program once more, which hands over its arguments.
class RunningInstanceTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void handsOver_data();
    void handsOver();
    void firstAgainAfterTheFirst();
};

void RunningInstanceTest::handsOver_data()
{
    QTest::addColumn<QStringList>("addresses");

    QTest::newRow("addresses") << QStringList{"http://a.example/", "b.example"};
    QTest::newRow("none") << QStringList();
}

void RunningInstanceTest::handsOver()
{
    QFETCH(QStringList, addresses);
    const TemporaryHome home;
    RunningInstance first;
    QVERIFY(first.isFirst());
    QSignalSpy received(&first, &RunningInstance::addressesReceived);

    QProcess second;
    second.start(QCoreApplication::applicationFilePath(), QStringList("--second") + addresses);
    QTRY_COMPARE(received.count(), 1);
    QCOMPARE(received.first().first().toStringList(), addresses);
    QTRY_COMPARE(second.state(), QProcess::NotRunning);
    QCOMPARE(second.exitCode(), 0);
}

void RunningInstanceTest::firstAgainAfterTheFirst()
{
    const TemporaryHome home;
    {
        const RunningInstance first;
        QVERIFY(first.isFirst());
    }
    const RunningInstance next;
    QVERIFY(next.isFirst());
}

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName("wayfold-browser");
    const QStringList arguments = QCoreApplication::arguments().mid(1);
    if (arguments.value(0) == "--second") {
        const RunningInstance second;
        return !second.isFirst() && second.sendAddresses(arguments.mid(1)) ? 0 : 1;
    }
    RunningInstanceTest test;
    return QTest::qExec(&test, argc, argv);
}
#include "RunningInstanceTest.moc"
