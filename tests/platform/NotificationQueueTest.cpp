#include "platform/base/NotificationQueue.h"

#include <QApplication>
#include <QDialog>
#include <QEventLoop>
#include <QMenu>
#include <QProcess>
#include <QStringList>
#include <QTest>
#include <QTimer>
#include <functional>
#include <memory>
#include <optional>

namespace
{
// An object that does something for each event that it is sent.
class EventTaker : public QObject
{
public:
    explicit EventTaker(std::function<void()> reaction) : _reaction(std::move(reaction)) {}

    void post() { QCoreApplication::postEvent(this, new QEvent(QEvent::User)); }

protected:
    bool event(QEvent *event) override
    {
        if (event->type() != QEvent::User)
            return QObject::event(event);
        _reaction();
        return true;
    }

private:
    std::function<void()> _reaction;
};

void enqueue(const QString &name, NotificationQueue::PostingStyle style, const void *object = nullptr)
{
    NotificationQueue::defaultQueue().enqueueNotification({name, object}, style);
}

constexpr auto asap = NotificationQueue::NSPostASAP;
constexpr auto idle = NotificationQueue::NSPostWhenIdle;
} // namespace

class NotificationQueueTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void nothingIsDeliveredAtOnce();
    void asapComesAtTheEndOfThePass();
    void asapComesAfterWaitingEvents();
    void idleComesAfterASAP();
    void idleWaitsForPostedEvents();
    void idleWaitsForTimers();
    void idleWaitsForTheEventThatEnqueuedIt();
    void idleComesInALoopThatNeverBlocks();
    void idleComesInALoopThatBlocks();
    void coalesces_data();
    void coalesces();
    void otherObjectsArePostsOfTheirOwn();
    void soonerStyleCounts_data();
    void soonerStyleCounts();
    void broughtForwardWhileDelivering();
    void keepsTheOrder();
    void enqueuedWhileDelivered_data();
    void enqueuedWhileDelivered();
    void dequeuesForAnObject();
    void dequeuesWhileDelivering();
    void nestedLoopDelivers_data();
    void nestedLoopDelivers();
    void modalDialogHoldsBoth();
    void sheetOnAModalDialogHoldsBoth();
    void dialogOpenedByAnObserverHoldsTheRest();
    void windowModalDialogHoldsNothing();
    void pauseHoldsBoth();
    void pauseOfAnObserverHoldsTheRest();
    void pressedMouseHoldsBoth();
    void menuHoldsNothing();
    void leavesNoFilterBehind();
    void withoutWindows();
    void withTheOtherDispatcher();

private:
    void observe(const QString &name, const std::function<void()> &reaction = {}, const void *object = nullptr);
    void runPasses(int count);

    QStringList _told;
};

void NotificationQueueTest::init()
{
    _told.clear();
}

void NotificationQueueTest::cleanup()
{
    NotificationCenter::defaultCenter().removeObserver(this);
}

void NotificationQueueTest::observe(const QString &name, const std::function<void()> &reaction, const void *object)
{
    const auto handler = [this, reaction](const Notification &notification) {
        _told.append(notification.name);
        if (reaction)
            reaction();
    };
    NotificationCenter::defaultCenter().addObserver(this, handler, name, object);
}

// Lets the event loop go through so many passes, each with an event of its own.
void NotificationQueueTest::runPasses(int count)
{
    QEventLoop loop;
    QTimer timer;
    connect(&timer, &QTimer::timeout, &loop, [&] {
        if (--count <= 0)
            loop.quit();
    });
    timer.start(0);
    loop.exec();
}

void NotificationQueueTest::nothingIsDeliveredAtOnce()
{
    observe("A");
    observe("B");
    enqueue("A", asap);
    enqueue("B", idle);
    QVERIFY(_told.isEmpty());
    QTRY_COMPARE(_told.size(), 2);
}

void NotificationQueueTest::asapComesAtTheEndOfThePass()
{
    observe("A");
    enqueue("A", asap);
    QCoreApplication::sendPostedEvents();
    QCOMPARE(_told, QStringList("A"));
}

void NotificationQueueTest::asapComesAfterWaitingEvents()
{
    observe("ASAP");
    EventTaker first([&] {
        _told.append("first");
        enqueue("ASAP", asap);
    });
    EventTaker second([&] { _told.append("second"); });
    first.post();
    second.post();
    QTRY_COMPARE(_told, QStringList({"first", "second", "ASAP"}));

    // Even after those that were posted later, but before the pass began.
    _told.clear();
    enqueue("ASAP", asap);
    second.post();
    QTRY_COMPARE(_told, QStringList({"second", "ASAP"}));
}

void NotificationQueueTest::idleComesAfterASAP()
{
    observe("Idle");
    observe("ASAP");
    enqueue("Idle", idle);
    enqueue("ASAP", asap);
    QTRY_COMPARE(_told, QStringList({"ASAP", "Idle"}));
}

void NotificationQueueTest::idleWaitsForPostedEvents()
{
    observe("Idle");
    int left = 50;
    std::unique_ptr<EventTaker> taker;
    taker = std::make_unique<EventTaker>([&] {
        QVERIFY(_told.isEmpty());
        if (--left > 0)
            taker->post();
    });
    enqueue("Idle", idle);
    taker->post();
    QEventLoop loop;
    NotificationCenter::defaultCenter().addObserver(
        this, [&](const Notification &) { loop.quit(); }, "Idle");
    loop.exec();
    QCOMPARE(left, 0);
    QCOMPARE(_told, QStringList("Idle"));
}

void NotificationQueueTest::idleWaitsForTimers()
{
    observe("Idle");
    enqueue("Idle", idle);
    runPasses(50); // a timer that is due in every pass
    QVERIFY(_told.isEmpty());
    QTRY_COMPARE(_told, QStringList("Idle"));
}

void NotificationQueueTest::idleWaitsForTheEventThatEnqueuedIt()
{
    observe("Idle");
    QEventLoop loop;
    EventTaker last([&] { _told.append("last"); });
    EventTaker taker([&] {
        enqueue("Idle", idle);
        last.post();
    });
    NotificationCenter::defaultCenter().addObserver(
        this, [&](const Notification &) { loop.quit(); }, "Idle");
    taker.post();
    loop.exec();
    QCOMPARE(_told, QStringList({"last", "Idle"}));
}

void NotificationQueueTest::idleComesInALoopThatNeverBlocks()
{
    observe("Idle");
    enqueue("Idle", idle);
    for (int i = 0; i < 1000 && _told.isEmpty(); i++)
        QCoreApplication::processEvents();
    QCOMPARE(_told, QStringList("Idle"));
}

void NotificationQueueTest::idleComesInALoopThatBlocks()
{
    // Nothing else wakes this loop up.
    QEventLoop loop;
    observe("Idle", [&] { loop.quit(); });
    enqueue("Idle", idle);
    loop.exec();
    QCOMPARE(_told, QStringList("Idle"));
}

void NotificationQueueTest::coalesces_data()
{
    QTest::addColumn<int>("style");
    QTest::newRow("as soon as possible") << int(asap);
    QTest::newRow("when idle") << int(idle);
}

void NotificationQueueTest::coalesces()
{
    QFETCH(int, style);
    const auto postingStyle = static_cast<NotificationQueue::PostingStyle>(style);
    observe("A");
    observe("Last");
    for (int i = 0; i < 3; i++)
        enqueue("A", postingStyle, this);
    enqueue("Last", idle);
    QTRY_VERIFY(_told.contains("Last"));
    QCOMPARE(_told, QStringList({"A", "Last"}));

    // Once delivered, it may be posted again.
    enqueue("A", postingStyle, this);
    QTRY_COMPARE(_told, QStringList({"A", "Last", "A"}));
}

void NotificationQueueTest::otherObjectsArePostsOfTheirOwn()
{
    const int one = 0;
    const int two = 0;
    observe("A", {}, &one);
    observe("A", {}, &two);
    observe("Last");
    enqueue("A", idle, &one);
    enqueue("A", idle, &two);
    enqueue("A", idle, &one);
    enqueue("Last", idle);
    QTRY_COMPARE(_told, QStringList({"A", "A", "Last"}));
}

void NotificationQueueTest::soonerStyleCounts_data()
{
    QTest::addColumn<int>("first");
    QTest::addColumn<int>("second");
    QTest::newRow("brought forward") << int(idle) << int(asap);
    QTest::newRow("not put off") << int(asap) << int(idle);
}

void NotificationQueueTest::soonerStyleCounts()
{
    QFETCH(int, first);
    QFETCH(int, second);
    observe("A");
    observe("Other");
    observe("Last");
    enqueue("Other", idle);
    enqueue("A", static_cast<NotificationQueue::PostingStyle>(first), this);
    enqueue("A", static_cast<NotificationQueue::PostingStyle>(second), this);
    enqueue("Last", idle);
    QCoreApplication::sendPostedEvents(); // the end of a pass, and no idle moment
    QCOMPARE(_told, QStringList("A"));
    QTRY_COMPARE(_told, QStringList({"A", "Other", "Last"}));
}

void NotificationQueueTest::broughtForwardWhileDelivering()
{
    // What an observer enqueues is not delivered with the rest, even if it was pending before.
    observe("First", [] { enqueue("A", asap); });
    observe("Second");
    observe("A");
    enqueue("A", idle);
    enqueue("First", asap);
    enqueue("Second", asap);
    QTRY_COMPARE(_told, QStringList({"First", "Second", "A"}));
    _told.clear();
    observe("Last");
    enqueue("Last", idle);
    QTRY_COMPARE(_told, QStringList("Last")); // and it is not delivered again
}

void NotificationQueueTest::keepsTheOrder()
{
    const QStringList names{"C", "A", "B", "E", "D"};
    for (const QString &name : names)
        observe(name);
    for (const QString &name : names)
        enqueue(name, asap);
    QTRY_COMPARE(_told, names);
    _told.clear();
    for (const QString &name : names)
        enqueue(name, idle);
    QTRY_COMPARE(_told, names);
}

void NotificationQueueTest::enqueuedWhileDelivered_data()
{
    coalesces_data();
}

void NotificationQueueTest::enqueuedWhileDelivered()
{
    QFETCH(int, style);
    const auto postingStyle = static_cast<NotificationQueue::PostingStyle>(style);
    int left = 3;
    bool isDelivering = false;
    observe("A", [&] {
        QVERIFY(!isDelivering);
        isDelivering = true;
        if (--left > 0)
            enqueue("A", postingStyle);
        isDelivering = false;
    });
    enqueue("A", postingStyle);
    QTRY_COMPARE(left, 0);
    QCOMPARE(_told.size(), 3);
}

void NotificationQueueTest::dequeuesForAnObject()
{
    const int gone = 0;
    observe("A");
    observe("B");
    observe("Last");
    enqueue("A", asap, &gone);
    enqueue("A", idle, &gone);
    enqueue("B", idle, this);
    enqueue("Last", idle);
    NotificationQueue::defaultQueue().dequeueNotificationsForObject(&gone);
    QTRY_COMPARE(_told, QStringList({"B", "Last"}));
}

void NotificationQueueTest::dequeuesWhileDelivering()
{
    const int gone = 0;
    observe("A", [&] { NotificationQueue::defaultQueue().dequeueNotificationsForObject(&gone); });
    observe("B");
    observe("Last");
    enqueue("A", asap);
    enqueue("B", asap, &gone);
    enqueue("Last", idle);
    QTRY_COMPARE(_told, QStringList({"A", "Last"}));
}

void NotificationQueueTest::nestedLoopDelivers_data()
{
    coalesces_data();
}

void NotificationQueueTest::nestedLoopDelivers()
{
    QFETCH(int, style);
    const auto postingStyle = static_cast<NotificationQueue::PostingStyle>(style);
    // The first observer runs a loop of its own; the second notification is delivered in there.
    observe("A", [&] {
        QEventLoop nested;
        observe("B", [&] { nested.quit(); });
        nested.exec();
        _told.append("nested loop ended");
    });
    enqueue("A", postingStyle);
    enqueue("B", postingStyle);
    QTRY_COMPARE(_told, QStringList({"A", "B", "nested loop ended"}));
}

void NotificationQueueTest::modalDialogHoldsBoth()
{
    observe("Idle");
    observe("ASAP");
    QDialog dialog;
    QTimer::singleShot(0, &dialog, [&] {
        enqueue("Idle", idle);
        enqueue("ASAP", asap);
        runPasses(20);
        for (int i = 0; i < 20; i++)
            QCoreApplication::processEvents();
        _told.append("closing");
        dialog.accept();
    });
    enqueue("Idle", idle); // from before, and held as well
    dialog.exec();
    QTRY_COMPARE(_told, QStringList({"closing", "ASAP", "Idle"}));
}

void NotificationQueueTest::sheetOnAModalDialogHoldsBoth()
{
    observe("Idle");
    observe("ASAP");
    QDialog dialog;
    dialog.setWindowModality(Qt::ApplicationModal);
    dialog.show();
    QDialog sheet(&dialog);
    sheet.setWindowModality(Qt::WindowModal);
    sheet.show();
    enqueue("Idle", idle);
    enqueue("ASAP", asap);
    runPasses(20);
    sheet.hide();
    runPasses(20);
    for (int i = 0; i < 20; i++)
        QCoreApplication::processEvents();
    QVERIFY(_told.isEmpty());
    dialog.hide();
    QTRY_COMPARE(_told, QStringList({"ASAP", "Idle"}));
}

void NotificationQueueTest::dialogOpenedByAnObserverHoldsTheRest()
{
    QDialog dialog;
    dialog.setWindowModality(Qt::ApplicationModal);
    observe("A", [&] { dialog.show(); });
    observe("B");
    enqueue("A", asap);
    enqueue("B", asap);
    QTRY_COMPARE(_told, QStringList("A"));
    runPasses(20);
    QCOMPARE(_told, QStringList("A"));
    dialog.hide();
    QTRY_COMPARE(_told, QStringList({"A", "B"}));
}

void NotificationQueueTest::windowModalDialogHoldsNothing()
{
    observe("Idle");
    observe("ASAP");
    QWidget window;
    window.show();
    QDialog sheet(&window);
    sheet.setWindowModality(Qt::WindowModal);
    sheet.show();
    enqueue("Idle", idle);
    enqueue("ASAP", asap);
    QTRY_COMPARE(_told, QStringList({"ASAP", "Idle"}));
}

void NotificationQueueTest::pauseHoldsBoth()
{
    observe("Before");
    observe("Idle");
    observe("ASAP");
    enqueue("Before", asap); // about to be delivered, and held as well
    {
        const NotificationQueue::Pause outer;
        {
            const NotificationQueue::Pause inner;
            enqueue("Idle", idle);
            enqueue("ASAP", asap);
        }
        runPasses(20);
        for (int i = 0; i < 20; i++)
            QCoreApplication::processEvents();
        QVERIFY(_told.isEmpty());
    }
    QVERIFY(_told.isEmpty()); // in a pass of the event loop, as always
    QEventLoop loop;          // in which nothing else happens
    NotificationCenter::defaultCenter().addObserver(
        this, [&](const Notification &) { loop.quit(); }, "Idle");
    loop.exec();
    QCOMPARE(_told, QStringList({"Before", "ASAP", "Idle"}));
}

void NotificationQueueTest::pressedMouseHoldsBoth()
{
    observe("Idle");
    observe("ASAP");
    QWindow window;
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    QTest::mousePress(&window, Qt::LeftButton, {}, QPoint(5, 5));
    enqueue("Idle", idle);
    enqueue("ASAP", asap);
    runPasses(20);
    QVERIFY(_told.isEmpty());
    QTest::mouseMove(&window, QPoint(9, 9));
    runPasses(20);
    QVERIFY(_told.isEmpty());
    QTest::mouseRelease(&window, Qt::LeftButton, {}, QPoint(9, 9));
    QTRY_COMPARE(_told, QStringList({"ASAP", "Idle"}));
}

// A command that is chosen from it comes after what was asked for before.
void NotificationQueueTest::menuHoldsNothing()
{
    observe("Idle");
    observe("ASAP");
    QWidget window;
    window.show();
    QMenu menu(&window);
    menu.addAction("Open");
    menu.popup(QPoint(5, 5));
    enqueue("Idle", idle);
    enqueue("ASAP", asap);
    QTRY_COMPARE(_told, QStringList({"ASAP", "Idle"}));
    QVERIFY(menu.isVisible());
}

void NotificationQueueTest::pauseOfAnObserverHoldsTheRest()
{
    std::optional<NotificationQueue::Pause> pause;
    observe("A", [&] { pause.emplace(); });
    observe("B");
    enqueue("A", asap);
    enqueue("B", asap);
    QTRY_COMPARE(_told, QStringList("A"));
    runPasses(20);
    QCOMPARE(_told, QStringList("A"));
    pause.reset();
    QTRY_COMPARE(_told, QStringList({"A", "B"}));
}

void NotificationQueueTest::leavesNoFilterBehind()
{
    // Once nothing is pending, events must cost nothing.
    observe("Idle");
    enqueue("Idle", idle);
    QTRY_COMPARE(_told, QStringList("Idle"));
    class Watcher : public NotificationQueue
    {
    public:
        int seen = 0;

    protected:
        bool eventFilter(QObject *watched, QEvent *event) override
        {
            seen++;
            return NotificationQueue::eventFilter(watched, event);
        }
    } watcher;
    runPasses(5);
    QCOMPARE(watcher.seen, 0);
    watcher.enqueueNotification({"Idle", this}, idle);
    runPasses(5);
    QVERIFY(watcher.seen > 0);
    watcher.dequeueNotificationsForObject(this);
    watcher.seen = 0;
    runPasses(5);
    QCOMPARE(watcher.seen, 0);
}

void NotificationQueueTest::withoutWindows()
{
    QProcess child;
    child.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    child.start(QCoreApplication::applicationFilePath(), {"--without-windows"});
    QVERIFY(child.waitForFinished());
    QCOMPARE(child.readAllStandardOutput().trimmed(), "ASAP Idle");
    QCOMPARE(child.exitCode(), 0);
}

void NotificationQueueTest::withTheOtherDispatcher()
{
    if (qEnvironmentVariableIsSet("QT_NO_GLIB"))
        return; // this is the other dispatcher
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("QT_NO_GLIB", "1");
    QProcess child;
    child.setProcessEnvironment(environment);
    child.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    child.start(QCoreApplication::applicationFilePath(), QStringList());
    QVERIFY(child.waitForFinished(120000));
    QVERIFY2(child.exitCode() == 0, child.readAllStandardOutput().constData());
}

// A program without windows, as the companion of a host outside of this process is.
static int runWithoutWindows(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    QStringList told;
    NotificationCenter &center = NotificationCenter::defaultCenter();
    const auto tell = [&](const Notification &notification) { told.append(notification.name); };
    center.addObserver(&told, tell, "ASAP");
    center.addObserver(&told, tell, "Idle");
    center.addObserver(
        &told, [](const Notification &) { QCoreApplication::quit(); }, "Idle");
    enqueue("Idle", idle);
    enqueue("ASAP", asap);
    const int result = QCoreApplication::exec();
    puts(qPrintable(told.join(u' ')));
    return result;
}

int main(int argc, char **argv)
{
    if (argc == 2 && QByteArray(argv[1]) == "--without-windows")
        return runWithoutWindows(argc, argv);
    QApplication application(argc, argv);
    NotificationQueueTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "NotificationQueueTest.moc"
