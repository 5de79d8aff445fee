#include "platform/widgets/SideWindow.h"

#include "tests/support/FakeHost.h"

#include <QLineEdit>
#include <QScreen>
#include <QTest>
#include <QVBoxLayout>

class SideWindowTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void closesByKey_data();
    void closesByKey();
    void browserMayQuit();
    void standsInTheMiddleOfTheScreen();
    void standsOnTheScreenOfTheKeyWindow();
    void comesToTheFront();

private:
    std::unique_ptr<QWidget> _window;
    QLineEdit *_field = nullptr;
};

void SideWindowTest::init()
{
    _window = std::make_unique<QWidget>();
    _field = new QLineEdit;
    _field->setMinimumWidth(300);
    (new QVBoxLayout(_window.get()))->addWidget(_field);
}

void SideWindowTest::closesByKey_data()
{
    QTest::addColumn<int>("key");
    QTest::addColumn<int>("modifiers");
    QTest::newRow("Escape") << int(Qt::Key_Escape) << int(Qt::NoModifier);
    QTest::newRow("Control and W") << int(Qt::Key_W) << int(Qt::ControlModifier);
}

void SideWindowTest::closesByKey()
{
    QFETCH(int, key);
    QFETCH(int, modifiers);
    SideWindow::prepare(_window.get());
    SideWindow::makeKeyAndOrderFront(_window.get());
    QVERIFY(QTest::qWaitForWindowActive(_window.get()));
    QTest::keyClick(_field, Qt::Key_W);
    QVERIFY(_window->isVisible());
    // Still held down from a sheet that it closed.
    QTest::simulateEvent(_field, true, key, Qt::KeyboardModifiers(modifiers), QString(), true);
    QVERIFY(_window->isVisible());
    QTest::keyClick(_field, Qt::Key(key), Qt::KeyboardModifiers(modifiers));
    QVERIFY(!_window->isVisible());
}

void SideWindowTest::browserMayQuit()
{
    QVERIFY(_window->testAttribute(Qt::WA_QuitOnClose));
    SideWindow::prepare(_window.get());
    QVERIFY(!_window->testAttribute(Qt::WA_QuitOnClose));
}

void SideWindowTest::standsInTheMiddleOfTheScreen()
{
    SideWindow::center(_window.get());
    QCOMPARE(_window->size(), _window->sizeHint());
    const QPoint off =
        _window->frameGeometry().center() - QGuiApplication::primaryScreen()->availableGeometry().center();
    QVERIFY(off.manhattanLength() <= 2);
}

void SideWindowTest::standsOnTheScreenOfTheKeyWindow()
{
    FakeHostApplication host;
    host.key = host.openWindow();
    host.key->screenFrame = QRectF(100, 200, 300, 250);
    SideWindow::center(_window.get());
    QVERIFY((_window->frameGeometry().center() - QPoint(250, 325)).manhattanLength() <= 2);
}

void SideWindowTest::comesToTheFront()
{
    QWidget other;
    SideWindow::makeKeyAndOrderFront(_window.get());
    QVERIFY(QTest::qWaitForWindowActive(_window.get()));
    other.show();
    other.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&other));
    SideWindow::makeKeyAndOrderFront(_window.get());
    QVERIFY(QTest::qWaitForWindowActive(_window.get()));
}

QTEST_MAIN(SideWindowTest)
#include "SideWindowTest.moc"
