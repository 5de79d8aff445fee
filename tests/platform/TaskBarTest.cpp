#include "platform/widgets/TaskBar.h"

#include "platform/widgets/Drawer.h"
#include "tests/support/FakeHost.h"

#include <QGuiApplication>
#include <QProcess>
#include <QTest>

namespace
{
bool isOnADisplay()
{
    return QGuiApplication::platformName() == u"xcb";
}

// What the display's server says of the window.
QByteArray stateOf(const QWidget &window)
{
    QProcess xprop;
    xprop.start(QStringLiteral("xprop"),
                {QStringLiteral("-id"), QString::number(window.internalWinId()), QStringLiteral("_NET_WM_STATE")});
    return xprop.waitForFinished() ? xprop.readAllStandardOutput() : QByteArray();
}
} // namespace

// Runs twice: without a display, where there is nothing to stay out of, and on one with a window manager.
class TaskBarTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void windowStaysOut();
    void drawerStaysOut();
    void nothingInTheParentGetsAWindowOfItsOwn();

private:
    // Window managers take the states away when a window goes, so they have to come back with it.
    static void checkThat(QWidget &window)
    {
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        if (!isOnADisplay())
            return;
        QTRY_VERIFY(stateOf(window).contains("_NET_WM_STATE_SKIP_TASKBAR"));
        QVERIFY(stateOf(window).contains("_NET_WM_STATE_SKIP_PAGER"));
    }
};

void TaskBarTest::windowStaysOut()
{
    QWidget plain;
    plain.show();
    QVERIFY(QTest::qWaitForWindowExposed(&plain));
    QVERIFY(!stateOf(plain).contains("SKIP"));
    QWidget window;
    for (int i = 0; i < 5; ++i) {
        TaskBar::leaveOut(window);
        window.show();
        TaskBar::leaveOut(window);
        checkThat(window);
        window.hide(); // and shown again at once, while the manager is busy with that
    }
}

void TaskBarTest::drawerStaysOut()
{
    FakeHostApplication host;
    const auto window = host.openWindow(QRectF(300, 100, 400, 300));
    window->makeWidget();
    Drawer drawer;
    drawer.setSlideDuration(0);
    drawer.setContentSize(QSizeF(180, 50));
    drawer.setParentWindow(window);
    for (int i = 0; i < 5; ++i) {
        drawer.open();
        checkThat(drawer);
        drawer.close();
    }
}

void TaskBarTest::nothingInTheParentGetsAWindowOfItsOwn()
{
    QWidget parent;
    auto *inside = new QWidget(&parent);
    parent.show();
    QVERIFY(QTest::qWaitForWindowExposed(&parent));
    QWidget window(&parent, Qt::Tool);
    TaskBar::leaveOut(window);
    window.show();
    TaskBar::leaveOut(window);
    checkThat(window);
    QVERIFY(!inside->internalWinId());
    QVERIFY(!inside->testAttribute(Qt::WA_NativeWindow));
}

QTEST_MAIN(TaskBarTest)
#include "TaskBarTest.moc"
