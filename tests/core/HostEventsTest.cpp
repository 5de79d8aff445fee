#include "core/HostEvents.h"

#include "platform/base/PlatformNotifications.h"
#include "tests/core/StoreInTemporaryHome.h"

class HostEventsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void eventBecomesNotification_data();
    void eventBecomesNotification();
    void windowMayBeLetGoMeanwhile();
    void windowGetsItsDrawer();
};

void HostEventsTest::eventBecomesNotification_data()
{
    QTest::addColumn<int>("event");
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("isAboutWindow");

    QTest::newRow("key") << 0 << PlatformNotifications::NSWindowDidBecomeKeyNotification << true;
    QTest::newRow("close") << 1 << PlatformNotifications::NSWindowWillCloseNotification << true;
    QTest::newRow("frame") << 2 << PlatformNotifications::WindowFrameDidChangeNotification << true;
    QTest::newRow("quit") << 3 << PlatformNotifications::NSApplicationWillTerminateNotification << false;
}

void HostEventsTest::eventBecomesNotification()
{
    QFETCH(int, event);
    QFETCH(QString, name);
    QFETCH(bool, isAboutWindow);
    const std::shared_ptr<HostWindow> window = std::make_shared<FakeHostWindow>(QRectF(0, 0, 800, 600));
    NotificationLog log({PlatformNotifications::NSWindowDidBecomeKeyNotification,
                         PlatformNotifications::NSWindowWillCloseNotification,
                         PlatformNotifications::WindowFrameDidChangeNotification,
                         PlatformNotifications::NSApplicationWillTerminateNotification});
    HostEvents events;
    HostObserver &observer = events;
    switch (event) {
    case 0:
        observer.windowDidBecomeKey(window);
        break;
    case 1:
        observer.windowWillClose(window);
        break;
    case 2:
        observer.windowFrameDidChange(window);
        break;
    default:
        observer.applicationWillTerminate();
    }
    QCOMPARE(log.names(), QStringList{name}); // at once
    QCOMPARE(log.received.front().object, static_cast<const void *>(isAboutWindow ? window.get() : nullptr));
}

void HostEventsTest::windowMayBeLetGoMeanwhile()
{
    std::shared_ptr<HostWindow> window = std::make_shared<FakeHostWindow>(QRectF(0, 0, 800, 600));
    QString kind;
    NotificationCenter::defaultCenter().addObserver(
        this,
        [&](const Notification &notification) {
            window.reset();
            kind = static_cast<const HostWindow *>(notification.object)->className();
        },
        PlatformNotifications::NSWindowWillCloseNotification);
    HostEvents().windowWillClose(window);
    NotificationCenter::defaultCenter().removeObserver(this);
    QCOMPARE(kind, QStringLiteral("BrowserWindow"));
}

void HostEventsTest::windowGetsItsDrawer()
{
    StoreInTemporaryHome fresh;
    StoreInTemporaryHome::store();
    const auto window = fresh.host.openWindow();
    HostEvents().windowDidBecomeKey(window);
    QCOMPARE(StoreInTemporaryHome::store().drawerForWindow(window.get()), &fresh.controller().drawer);
}

QTEST_MAIN(HostEventsTest)
#include "HostEventsTest.moc"
