#include "browser/Browser.h"
#include "browser/BrowserWindow.h"
#include "tests/e2e/support/Desk.h"
#include "tests/e2e/support/Hands.h"
#include "tests/e2e/support/Play.h"

// The drawer goes where its window goes, and with it.
class DrawerWindowTest : public QObject
{
    Q_OBJECT

public:
    explicit DrawerWindowTest(Play &play) : _play(play) {}

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();

    void followsMoving();
    void followsResizing();
    void goesAndComesWithMinimising();
    void goesToAnotherWorkspace();
    void staysBehindOnAnotherWorkspace();
    void closesWithItsWindow();
    void closesWithTheManagersButton();
    void comesToTheFrontWithItsWindow();
    void makesRoomAndGivesItBack();
    void slidesOutOnTheLeft();
    void isWidenedAtItsEdge();
    void staysOutOfTheTaskBar();

private:
    // What the display shows, not what the application believes.
    bool isBeside();
    bool isSeen(WId window) { return Desk::visibleWindows().contains(window); }
    bool seenBecomes(WId window, bool seen);
    bool becomesBeside();
    bool remainsAlone(BrowserWindow *window);

    Play &_play;
    BrowserWindow *_window = nullptr;
    QWidget *_drawer = nullptr;
    WId _windowId = 0;
    WId _drawerId = 0;
};

void DrawerWindowTest::initTestCase()
{
    EVENTUALLY(_play.window());
}

void DrawerWindowTest::init()
{
    QVERIFY(_window = _play.startOver());
    Stage::onMain([this] { _window->setGeometry(60, 60, 700, 500); });
    EVENTUALLY(_window->geometry() == QRect(60, 60, 700, 500));
    QVERIFY(_play.openDrawer());
    _drawer = Play::drawer(_window);
    _windowId = Stage::onMain([this] { return _window->winId(); });
    _drawerId = Stage::onMain([this] { return _drawer->winId(); });
    QVERIFY(becomesBeside());
}

void DrawerWindowTest::cleanup()
{
    if (!_play.windows().contains(_window))
        return;
    QVERIFY(Desk::sendToWorkspace(_windowId, 0));
    QVERIFY(Desk::changeToWorkspace(0));
    QVERIFY(_play.bringToFront(_window));
}

bool DrawerWindowTest::isBeside()
{
    const QRect window = Desk::geometryOf(_windowId);
    const QRect drawer = Desk::geometryOf(_drawerId);
    const QMargins frame = Stage::onMain([this] {
        const QRect outer = _window->frameGeometry();
        const QRect inner = _window->geometry();
        return QMargins(inner.left() - outer.left(), inner.top() - outer.top(), outer.right() - inner.right(),
                        outer.bottom() - inner.bottom());
    });
    const QRect whole = window.marginsAdded(frame);
    const bool isNextTo = drawer.left() == whole.right() + 1 || drawer.right() == whole.left() - 1;
    return isNextTo && drawer.width() >= 280 && drawer.top() >= whole.top() && drawer.bottom() <= whole.bottom() &&
           drawer.height() >= window.height() * 3 / 4;
}

bool DrawerWindowTest::becomesBeside()
{
    const QDeadlineTimer deadline(Stage::patience);
    while (!isBeside()) {
        if (deadline.hasExpired())
            return false;
    }
    return true;
}

bool DrawerWindowTest::seenBecomes(WId window, bool seen)
{
    const QDeadlineTimer deadline(Stage::patience);
    while (isSeen(window) != seen) {
        if (deadline.hasExpired())
            return false;
    }
    return true;
}

bool DrawerWindowTest::remainsAlone(BrowserWindow *window)
{
    const QList<WId> expected{Stage::onMain([&] { return window->winId(); })};
    const QDeadlineTimer deadline(Stage::patience);
    while (Desk::visibleWindows() != expected) {
        if (deadline.hasExpired())
            return false;
    }
    return true;
}

void DrawerWindowTest::followsMoving()
{
    const QPoint title = Stage::onMain([this] {
        const QRect frame = _window->frameGeometry();
        return QPoint(frame.center().x(), (frame.top() + _window->geometry().top()) / 2);
    });
    QVERIFY(Hands::drag(title, title + QPoint(120, 70)));
    EVENTUALLY(_window->geometry() == QRect(180, 130, 700, 500));
    QVERIFY(becomesBeside());
    QVERIFY(isSeen(_drawerId));
}

void DrawerWindowTest::followsResizing()
{
    QVERIFY(Desk::resize(_windowId, QSize(640, 620)));
    EVENTUALLY(_window->size() == QSize(640, 620));
    QVERIFY(becomesBeside());
    QVERIFY(Desk::resize(_windowId, QSize(500, 300)));
    EVENTUALLY(_window->size() == QSize(500, 300));
    QVERIFY(becomesBeside());
}

void DrawerWindowTest::goesAndComesWithMinimising()
{
    QVERIFY(Desk::minimise(_windowId));
    EVENTUALLY(_window->isMinimized());
    QVERIFY(seenBecomes(_drawerId, false));
    QVERIFY(Desk::activate(_windowId));
    EVENTUALLY(!_window->isMinimized());
    QVERIFY(seenBecomes(_drawerId, true));
    QVERIFY(becomesBeside());
}

void DrawerWindowTest::goesToAnotherWorkspace()
{
    QVERIFY(Desk::sendToWorkspace(_windowId, 1));
    QVERIFY(seenBecomes(_windowId, false));
    QVERIFY(seenBecomes(_drawerId, false));
    QVERIFY(Desk::changeToWorkspace(1));
    QVERIFY(seenBecomes(_windowId, true));
    QVERIFY(seenBecomes(_drawerId, true));
    QVERIFY(becomesBeside());
}

void DrawerWindowTest::staysBehindOnAnotherWorkspace()
{
    QVERIFY(Desk::changeToWorkspace(1));
    QVERIFY(seenBecomes(_windowId, false));
    QVERIFY(seenBecomes(_drawerId, false));
    QVERIFY(Desk::changeToWorkspace(0));
    QVERIFY(seenBecomes(_windowId, true));
    QVERIFY(seenBecomes(_drawerId, true));
    QVERIFY(becomesBeside());
}

void DrawerWindowTest::closesWithItsWindow()
{
    BrowserWindow *other = _play.openWindow();
    QVERIFY(other);
    QVERIFY(_play.closeWindow(_window));
    QVERIFY(seenBecomes(_drawerId, false));
    QVERIFY(remainsAlone(other));
}

void DrawerWindowTest::closesWithTheManagersButton()
{
    BrowserWindow *other = _play.openWindow();
    QVERIFY(other);
    QVERIFY(_play.bringToFront(_window));
    const QPoint button = Stage::onMain([this] {
        const QRect frame = _window->frameGeometry();
        const int titleHeight = _window->geometry().top() - frame.top();
        return frame.topRight() + QPoint(-titleHeight / 2, titleHeight / 2);
    });
    QVERIFY(Hands::clickAt(button));
    EVENTUALLY(_play.windows().size() == 1);
    QVERIFY(seenBecomes(_drawerId, false));
    QVERIFY(remainsAlone(other));
}

void DrawerWindowTest::comesToTheFrontWithItsWindow()
{
    BrowserWindow *other = _play.openWindow();
    QVERIFY(other);
    Stage::onMain([&] { other->setGeometry(500, 60, 700, 500); });
    EVENTUALLY(other->geometry() == QRect(500, 60, 700, 500));
    // A click into the part of the window that is not covered brings both back.
    QVERIFY(Hands::clickAt(QPoint(200, 400)));
    EVENTUALLY(_window->isActiveWindow());
    const QPoint inDrawer = Stage::onMain([this] { return _drawer->mapToGlobal(_drawer->rect().center()); });
    QVERIFY(Hands::moveTo(inDrawer));
    EVENTUALLY(_drawer->underMouse());
}

void DrawerWindowTest::makesRoomAndGivesItBack()
{
    QVERIFY(_play.closeDrawer());
    const QRect screen = Stage::onMain([this] { return _window->screen()->availableGeometry(); });
    const QRect wide = Stage::onMain([&] {
        const QMargins frame(_window->geometry().left() - _window->frameGeometry().left(), 0,
                             _window->frameGeometry().right() - _window->geometry().right(), 0);
        const QRect place(screen.left() + frame.left(), 60, screen.width() - frame.left() - frame.right(), 500);
        _window->setGeometry(place);
        return place;
    });
    EVENTUALLY(_window->geometry() == wide);
    QVERIFY(_play.openDrawer());
    EVENTUALLY(_window->width() <= wide.width() - 280);
    QVERIFY(becomesBeside());
    QVERIFY(screen.contains(Desk::geometryOf(_drawerId)));
    QVERIFY(_play.closeDrawer());
    EVENTUALLY(_window->geometry() == wide);
}

void DrawerWindowTest::slidesOutOnTheLeft()
{
    QVERIFY(_play.closeDrawer());
    const int right = Stage::onMain([this] { return _window->screen()->availableGeometry().right(); });
    Stage::onMain([&] { _window->setGeometry(right - 720, 60, 700, 500); });
    EVENTUALLY(_window->geometry() == QRect(right - 720, 60, 700, 500));
    QVERIFY(_play.openDrawer());
    QVERIFY(becomesBeside());
    QVERIFY(Desk::geometryOf(_drawerId).right() < right - 700);
    QCOMPARE(Stage::onMain([this] { return _window->geometry(); }), QRect(right - 720, 60, 700, 500));
}

void DrawerWindowTest::isWidenedAtItsEdge()
{
    const QRect before = Desk::geometryOf(_drawerId);
    const QPoint edge(before.right() - 1, before.center().y());
    QVERIFY(Hands::drag(edge, edge + QPoint(90, 0)));
    EVENTUALLY(_drawer->width() == before.width() + 90);
    QVERIFY(becomesBeside());
    // The width is the user's from now on.
    QVERIFY(_play.closeDrawer());
    QVERIFY(_play.openDrawer());
    EVENTUALLY(_drawer->width() == before.width() + 90);
}

void DrawerWindowTest::staysOutOfTheTaskBar()
{
    QVERIFY(Desk::isLeftOutOfTaskBar(_drawerId));
    QVERIFY(!Desk::isLeftOutOfTaskBar(_windowId));
    // The window manager forgets it while the drawer is closed.
    QVERIFY(_play.closeDrawer());
    QVERIFY(seenBecomes(_drawerId, false));
    QVERIFY(_play.openDrawer());
    QVERIFY(becomesBeside());
    QVERIFY(Desk::isLeftOutOfTaskBar(_drawerId));
}

int main(int argc, char **argv)
{
    return Play::perform<DrawerWindowTest>(argc, argv);
}

#include "DrawerWindowTest.moc"
