#include "platform/widgets/Drawer.h"

#include "platform/base/NotificationCenter.h"
#include "platform/base/PlatformNotifications.h"
#include "platform/widgets/DrawerGrip.h"
#include "tests/support/FakeHost.h"

#include <QGuiApplication>
#include <QLineEdit>
#include <QScreen>
#include <QStyle>
#include <QTest>

namespace N = PlatformNotifications;

namespace
{
// How much of a drawer on the right is out, as it has laid itself out: what a window manager says of it comes later.
int partOut(const Drawer &drawer)
{
    return drawer.findChild<DrawerGrip *>()->parentWidget()->geometry().right() + 1;
}

// Handles events until the drawer, which slides slowly, is partly out. False when it has got to the end without.
bool slidesPartly(const Drawer &drawer)
{
    while (partOut(drawer) < 2 || partOut(drawer) > 199) {
        if (drawer.state() == Drawer::Open || drawer.state() == Drawer::Closed)
            return false;
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
    return true;
}
constexpr int slowly = 20000;

// All screens, the tests' own among them: a drawer may reach from one onto the next.
QRect desktop()
{
    return QRect(0, 0, 1000, 900) | QGuiApplication::primaryScreen()->availableVirtualGeometry();
}
} // namespace

class DrawerTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void postsInOrder();
    void isInStep_data();
    void isInStep();
    void opensOnlyWithAWindow();
    void openAndCloseAreIdempotent();
    void toggles();
    void slidesOut();
    void isOpenOnceItLooksOpen();
    void turnsRoundWhileClosing();
    void turnsRoundWhileOpening();
    void followsTheDesktopsWishForAnimations();

    void standsBesideTheWindow_data();
    void standsBesideTheWindow();
    void observerOfWillOpenChoosesTheEdge();
    void observerOfWillOpenMayMoveTheWindow();
    void observerOfWillOpenMayCloseIt();
    void observerOfDidCloseMayDeleteIt();
    void preferredEdgeTakesEffectAtTheNextOpening();
    void followsTheWindow();
    void hidesWithTheWindow();
    void opensUnseenBesideAHiddenWindow();
    void endsWhereTheScreenEnds_data();
    void endsWhereTheScreenEnds();
    void hidesBeyondTheScreen();
    void standsOnAnyScreen_data();
    void standsOnAnyScreen();
    void returnsWhenItIsMovedAway();
    void isAToolWindowOfItsWindow();
    void doesNotStayMinimised();
    void standsAlone();
    void standsAloneInTheUsersSize();
    void standsAloneAcrossItsWindowsChanges();

    void widthHasAMinimum();
    void widthIsLimitedByTheScreen();
    void heightFollowsTheWindow();
    void contentFillsTheInside_data();
    void contentFillsTheInside();
    void replacesTheContentView();
    void gripChangesTheWidth_data();
    void gripChangesTheWidth();
    void gripStopsAtTheMinimumAndThreeQuartersOfTheScreen();
    void gripLeavesAWiderChoiceAlone();
    void gripWorksByKeyboard_data();
    void gripWorksByKeyboard();
    void gripIsReachedByTab();
    void gripTakesNoKeyboardFromTheMouse();

    void isListedWithItsWindow();
    void changesWindows();
    void letsGoOfItsWindow();
    void goesOutOfSightWhenTheWindowCloses();
    void goesWithTheWindowsWidget();
    void isNotListedWithANewWindowInTheSamePlace();
    void closesWhenTheWindowManagerAsks();
    void looksLikeThePalette_data();
    void looksLikeThePalette();

private:
    Drawer *makeDrawer(int slideDuration = 0);

    std::unique_ptr<FakeHostApplication> _host;
    std::shared_ptr<FakeHostWindow> _window;
    QPointer<Drawer> _drawer;
    QStringList _posted;
};

void DrawerTest::init()
{
    _host = std::make_unique<FakeHostApplication>();
    _window = _host->openWindow(QRectF(300, 100, 400, 300));
    _posted.clear();
    for (const QString &name : {N::NSDrawerWillOpenNotification, N::NSDrawerDidOpenNotification,
                                N::NSDrawerWillCloseNotification, N::NSDrawerDidCloseNotification}) {
        NotificationCenter::defaultCenter().addObserver(
            this,
            [this](const Notification &notification) {
                QCOMPARE(notification.object, static_cast<const void *>(_drawer.data()));
                _posted.append(QString(notification.name).remove("NSDrawer").remove("Notification"));
            },
            name);
    }
    _drawer = makeDrawer();
}

void DrawerTest::cleanup()
{
    NotificationCenter::defaultCenter().removeObserver(this);
    delete _drawer;
    _window.reset();
    _host.reset();
}

Drawer *DrawerTest::makeDrawer(int slideDuration)
{
    auto *drawer = new Drawer;
    drawer->setSlideDuration(slideDuration);
    drawer->setMinContentSize(QSizeF(100, 50));
    drawer->setContentSize(QSizeF(180, 50));
    drawer->setParentWindow(_window);
    return drawer;
}

// --- Opening and closing --------------------------------------------------------------------------------------------

void DrawerTest::postsInOrder()
{
    _drawer->open();
    QCOMPARE(_posted, QStringList({"WillOpen", "DidOpen"}));
    _drawer->close();
    QCOMPARE(_posted, QStringList({"WillOpen", "DidOpen", "WillClose", "DidClose"}));
}

void DrawerTest::isInStep_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("state");
    QTest::addColumn<bool>("visible");
    QTest::newRow("before it opens") << N::NSDrawerWillOpenNotification << 1 << false;
    QTest::newRow("after it opened") << N::NSDrawerDidOpenNotification << 2 << true;
    QTest::newRow("before it closes") << N::NSDrawerWillCloseNotification << 3 << true;
    QTest::newRow("after it closed") << N::NSDrawerDidCloseNotification << 0 << false;
}

void DrawerTest::isInStep()
{
    QFETCH(QString, name);
    QFETCH(int, state);
    QFETCH(bool, visible);
    int told = 0;
    NotificationCenter::defaultCenter().addObserver(
        this,
        [&](const Notification &) {
            ++told;
            QCOMPARE(int(_drawer->state()), state);
            QCOMPARE(_drawer->isVisible(), visible);
        },
        name, _drawer);
    QCOMPARE(_drawer->state(), Drawer::Closed);
    _drawer->open();
    _drawer->close();
    QCOMPARE(told, 1);
}

void DrawerTest::opensOnlyWithAWindow()
{
    _drawer->setParentWindow(nullptr);
    _drawer->open();
    QCOMPARE(_drawer->state(), Drawer::Closed);
    QVERIFY(!_drawer->isVisible());
    QVERIFY(_posted.isEmpty());
}

void DrawerTest::openAndCloseAreIdempotent()
{
    _drawer->close();
    QVERIFY(_posted.isEmpty());
    _drawer->open();
    _drawer->open();
    QCOMPARE(_posted.size(), 2);
    _drawer->close();
    _drawer->close();
    QCOMPARE(_posted.size(), 4);
}

void DrawerTest::toggles()
{
    _drawer->toggle();
    QCOMPARE(_drawer->state(), Drawer::Open);
    _drawer->toggle();
    QCOMPARE(_drawer->state(), Drawer::Closed);
}

void DrawerTest::slidesOut()
{
    _drawer->setSlideDuration(60);
    _drawer->open();
    QCOMPARE(_drawer->state(), Drawer::Opening);
    QVERIFY(_drawer->isVisible());
    QVERIFY(partOut(*_drawer) < 200);
    QCOMPARE(_posted, QStringList({"WillOpen"}));
    QTRY_COMPARE(_drawer->state(), Drawer::Open);
    QTRY_COMPARE(_drawer->width(), 200);
    QCOMPARE(_posted, QStringList({"WillOpen", "DidOpen"}));

    _drawer->close();
    QCOMPARE(_drawer->state(), Drawer::Closing);
    QTRY_COMPARE(_drawer->state(), Drawer::Closed);
    QVERIFY(!_drawer->isVisible());
}

// A hand goes by what it sees.
void DrawerTest::isOpenOnceItLooksOpen()
{
    _drawer->setSlideDuration(2000);
    _drawer->open();
    while (_drawer->width() < 200)
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    QCOMPARE(_drawer->state(), Drawer::Open);
    QCOMPARE(_posted, QStringList({"WillOpen", "DidOpen"}));
}

void DrawerTest::turnsRoundWhileClosing()
{
    _drawer->open();
    _posted.clear();
    _drawer->setSlideDuration(slowly);
    _drawer->close();
    QVERIFY(slidesPartly(*_drawer));
    const int out = partOut(*_drawer);
    _drawer->open();
    QCOMPARE(_drawer->state(), Drawer::Opening);
    QCOMPARE(partOut(*_drawer), out); // from where it was
    QTRY_COMPARE(_drawer->state(), Drawer::Open);
    QCOMPARE(_posted, QStringList({"WillClose", "DidOpen"}));
    QTRY_COMPARE(_drawer->width(), 200);
    QVERIFY(_drawer->isVisible());
}

void DrawerTest::turnsRoundWhileOpening()
{
    _drawer->setSlideDuration(slowly);
    _drawer->open();
    QVERIFY(slidesPartly(*_drawer));
    const int out = partOut(*_drawer);
    _drawer->toggle();
    QCOMPARE(_drawer->state(), Drawer::Closing);
    QCOMPARE(partOut(*_drawer), out);
    QTRY_COMPARE(_drawer->state(), Drawer::Closed);
    QCOMPARE(_posted, QStringList({"WillOpen", "WillClose", "DidClose"}));
}

void DrawerTest::followsTheDesktopsWishForAnimations()
{
    _drawer->setSlideDuration(-1);
    const bool animates = _drawer->style()->styleHint(QStyle::SH_Widget_Animation_Duration) > 0;
    _drawer->open();
    QCOMPARE(_drawer->state(), animates ? Drawer::Opening : Drawer::Open);
    QTRY_COMPARE(_drawer->state(), Drawer::Open);
}

// --- Place ----------------------------------------------------------------------------------------------------------

void DrawerTest::standsBesideTheWindow_data()
{
    QTest::addColumn<bool>("hasWidget");
    QTest::addColumn<int>("edge");
    QTest::newRow("right") << false << int(Drawer::NSMaxXEdge);
    QTest::newRow("left") << false << int(Drawer::NSMinXEdge);
    QTest::newRow("right of a widget") << true << int(Drawer::NSMaxXEdge);
    QTest::newRow("left of a widget") << true << int(Drawer::NSMinXEdge);
}

void DrawerTest::standsBesideTheWindow()
{
    QFETCH(bool, hasWidget);
    QFETCH(int, edge);
    if (hasWidget) {
        _drawer->setParentWindow(nullptr);
        _window->makeWidget();
        _drawer->setParentWindow(_window);
    }
    _drawer->setPreferredEdge(Drawer::Edge(edge));
    _drawer->open();
    QCOMPARE(int(_drawer->edge()), edge);
    const QRect frame = _drawer->geometry();
    QCOMPARE(frame.width(), 180 + Drawer::frameWidth);
    if (edge == Drawer::NSMaxXEdge)
        QCOMPARE(frame.left(), 300 + 400);
    else
        QCOMPARE(frame.right() + 1, 300);
    // A little shorter than the window, and within its height.
    QVERIFY(frame.top() > 100);
    QVERIFY(frame.bottom() < 100 + 300 - 1);
    QVERIFY(frame.height() > 200);
}

void DrawerTest::observerOfWillOpenChoosesTheEdge()
{
    NotificationCenter::defaultCenter().addObserver(
        this, [this](const Notification &) { _drawer->setPreferredEdge(Drawer::NSMinXEdge); },
        N::NSDrawerWillOpenNotification, _drawer);
    _drawer->open();
    QCOMPARE(_drawer->edge(), Drawer::NSMinXEdge);
    QCOMPARE(_drawer->geometry().right() + 1, 300);
}

void DrawerTest::observerOfWillOpenMayMoveTheWindow()
{
    bool isShownBefore = true;
    const auto move = [&](const Notification &) {
        _window->setFrame(QRectF(200, 100, 350, 300), true);
        NotificationCenter::defaultCenter().postNotificationName(N::WindowFrameDidChangeNotification, _window.get());
        isShownBefore = _drawer->isVisible();
    };
    NotificationCenter::defaultCenter().addObserver(this, move, N::NSDrawerWillOpenNotification, _drawer);
    _drawer->open();
    QVERIFY(!isShownBefore); // nobody knows yet where it is to stand
    QCOMPARE(_drawer->geometry().left(), 550);
    QVERIFY(_drawer->isVisible());
}

void DrawerTest::observerOfWillOpenMayCloseIt()
{
    NotificationCenter::defaultCenter().addObserver(
        this, [this](const Notification &) { _drawer->close(); }, N::NSDrawerWillOpenNotification, _drawer);
    _drawer->open();
    QCOMPARE(_drawer->state(), Drawer::Closed);
    QVERIFY(!_drawer->isVisible());
    QCOMPARE(_posted, QStringList({"WillOpen", "WillClose", "DidClose"}));
}

void DrawerTest::observerOfDidCloseMayDeleteIt()
{
    _drawer->open();
    NotificationCenter::defaultCenter().addObserver(
        this, [this](const Notification &) { delete _drawer; }, N::NSDrawerDidCloseNotification, _drawer);
    _drawer->setParentWindow(nullptr);
    QVERIFY(!_drawer);
    QVERIFY(Drawer::drawersForWindow(_window.get()).isEmpty());
}

void DrawerTest::preferredEdgeTakesEffectAtTheNextOpening()
{
    _drawer->open();
    _drawer->setPreferredEdge(Drawer::NSMinXEdge);
    _window->frameDidChange();
    QCOMPARE(_drawer->preferredEdge(), Drawer::NSMinXEdge);
    QCOMPARE(_drawer->edge(), Drawer::NSMaxXEdge);
    QCOMPARE(_drawer->geometry().left(), 700);
    _drawer->close();
    _drawer->open();
    QCOMPARE(_drawer->geometry().right() + 1, 300);
}

void DrawerTest::followsTheWindow()
{
    _drawer->open();
    const int height = _drawer->height();
    _window->setFrame(QRectF(150, 120, 300, 360), false);
    QCOMPARE(_drawer->geometry().left(), 450);
    QCOMPARE(_drawer->height(), height + 60);
    QCOMPARE(_drawer->width(), 200);
}

void DrawerTest::hidesWithTheWindow()
{
    _drawer->open();
    _window->hide();
    QVERIFY(!_drawer->isVisible());
    QCOMPARE(_drawer->state(), Drawer::Open);
    _window->show();
    QVERIFY(_drawer->isVisible());
    _drawer->close();
    _window->hide();
    _window->show();
    QVERIFY(!_drawer->isVisible());
}

void DrawerTest::opensUnseenBesideAHiddenWindow()
{
    _drawer->setSlideDuration(1000);
    _window->hide();
    _drawer->open();
    QCOMPARE(_drawer->state(), Drawer::Open); // nobody would see it slide
    QVERIFY(!_drawer->isVisible());
    _window->show();
    QVERIFY(_drawer->isVisible());
    QCOMPARE(_drawer->width(), 200);
}

void DrawerTest::endsWhereTheScreenEnds_data()
{
    QTest::addColumn<QRectF>("window");
    QTest::addColumn<int>("edge");
    QTest::addColumn<int>("left");
    QTest::addColumn<int>("right");
    const QRect all = desktop();
    const int end = all.right() + 1;
    const int start = all.left();
    QTest::newRow("right") << QRectF(end - 500, 100, 400, 300) << int(Drawer::NSMaxXEdge) << end - 100 << end;
    QTest::newRow("left") << QRectF(start + 150, 100, 400, 300) << int(Drawer::NSMinXEdge) << start << start + 150;
    QTest::newRow("below") << QRectF(300, all.bottom() - 200, 400, 300) << int(Drawer::NSMaxXEdge) << 700 << 900;
}

// A window manager would push it back onto the screen, over its window.
void DrawerTest::endsWhereTheScreenEnds()
{
    QFETCH(QRectF, window);
    QFETCH(int, edge);
    QFETCH(int, left);
    QFETCH(int, right);
    auto *content = new QWidget;
    _drawer->setContentView(content);
    _window->screenFrame = desktop();
    _window->setFrame(window, false);
    _drawer->setPreferredEdge(Drawer::Edge(edge));
    _drawer->open();
    QCOMPARE(_drawer->geometry().left(), left);
    QCOMPARE(_drawer->geometry().right() + 1, right);
    QVERIFY(_drawer->geometry().bottom() <= desktop().bottom());
    // Only the view of it is cut off.
    QCOMPARE(_drawer->contentSize().width(), 180.0);
    QCOMPARE(QSizeF(content->size()), _drawer->contentSize());
    _window->setFrame(QRectF(300, 100, 400, 300), false);
    QCOMPARE(_drawer->width(), 200);
}

void DrawerTest::hidesBeyondTheScreen()
{
    _window->screenFrame = desktop();
    _drawer->open();
    const int end = desktop().right() + 1;
    _window->setFrame(QRectF(end - 300, 100, 400, 300), false);
    QVERIFY(!_drawer->isVisible());
    QCOMPARE(_drawer->state(), Drawer::Open);
    _window->setFrame(QRectF(end - 500, 100, 400, 300), false);
    QVERIFY(_drawer->isVisible());
}

void DrawerTest::standsOnAnyScreen_data()
{
    QTest::addColumn<QRectF>("screen");
    QTest::newRow("to the right") << QRectF(2000, 0, 1000, 900);
    QTest::newRow("to the left, lower") << QRectF(-1000, 300, 1000, 900);
    QTest::newRow("above") << QRectF(0, -900, 1000, 900);
}

void DrawerTest::standsOnAnyScreen()
{
    QFETCH(QRectF, screen);
    _window->screenFrame = screen;
    for (const Drawer::Edge edge : {Drawer::NSMaxXEdge, Drawer::NSMinXEdge}) {
        _window->setFrame(QRectF(screen.x() + 300, screen.y() + 100, 400, 300), false);
        _drawer->setPreferredEdge(edge);
        _drawer->open();
        QVERIFY(_drawer->isVisible());
        QCOMPARE(_drawer->width(), 200);
        QCOMPARE(_drawer->geometry().left(), int(screen.x()) + (edge == Drawer::NSMaxXEdge ? 700 : 100));
        QVERIFY(screen.contains(QRectF(_drawer->geometry())));
        _drawer->close();
    }
}

void DrawerTest::returnsWhenItIsMovedAway()
{
    _drawer->open();
    const QRect place = _drawer->geometry();
    _drawer->move(20, 20);
    QTRY_COMPARE(_drawer->geometry(), place);
    _drawer->resize(60, 60);
    QTRY_COMPARE(_drawer->geometry(), place);
    // Whoever insists has his way in the end.
    for (int i = 0; i < 100; ++i) {
        _drawer->move(20, 20);
        QCoreApplication::processEvents();
    }
    QCOMPARE(_drawer->pos(), QPoint(20, 20));
    _window->frameDidChange();
    QCOMPARE(_drawer->geometry(), place);
}

void DrawerTest::isAToolWindowOfItsWindow()
{
    QVERIFY(!_drawer->parentWidget());
    QVERIFY(_drawer->isWindow());
    _drawer->setParentWindow(nullptr);
    QWidget *widget = _window->makeWidget();
    _drawer->setParentWindow(_window);
    QCOMPARE(_drawer->parentWidget(), widget);
    QVERIFY(_drawer->isWindow());
    QCOMPARE(_drawer->windowType(), Qt::Tool);
    QVERIFY(_drawer->windowFlags().testFlag(Qt::FramelessWindowHint));
    // It neither takes the keyboard when it slides out nor keeps the program running.
    QVERIFY(_drawer->testAttribute(Qt::WA_ShowWithoutActivating));
    QVERIFY(!_drawer->testAttribute(Qt::WA_QuitOnClose));
    _drawer->setParentWindow(nullptr);
    QVERIFY(!_drawer->parentWidget());
}

// A window manager minimises a drawer with its window; shown minimised again, it would minimise the window again.
void DrawerTest::doesNotStayMinimised()
{
    _drawer->open();
    _window->hide();
    _drawer->setWindowState(Qt::WindowMinimized);
    _window->show();
    QVERIFY(_drawer->isVisible());
    QVERIFY(!_drawer->isMinimized());
}

// --- Size -----------------------------------------------------------------------------------------------------------

// Where no program may place a window, it is one like any other: the desktop gives it a frame and puts it somewhere.
void DrawerTest::standsAlone()
{
    QVERIFY(!_drawer->standsAlone());
    QVERIFY(_drawer->windowFlags() & Qt::FramelessWindowHint);
    _drawer->setStandsAlone(true);
    QVERIFY(_drawer->standsAlone());
    QVERIFY(!(_drawer->windowFlags() & Qt::FramelessWindowHint));
    QVERIFY(_drawer->windowFlags() & Qt::WindowTitleHint);
    QVERIFY(_drawer->windowFlags() & Qt::WindowCloseButtonHint);
    QCOMPARE(_drawer->windowType(), Qt::Tool);
    _drawer->setSlideDuration(slowly);
    _drawer->open();
    QCOMPARE(_drawer->state(), Drawer::Open);
    QVERIFY(_drawer->isVisible());
    QCOMPARE(_drawer->width(), int(_drawer->contentSize().width()) + Drawer::frameWidth);
    const QImage picture = _drawer->grab().toImage();
    QCOMPARE(picture.pixelColor(0, 0), _drawer->palette().color(QPalette::Window));
    QCOMPARE(picture.pixelColor(1, picture.height() / 2), _drawer->palette().color(QPalette::Window));
    _drawer->close();
    QCOMPARE(_drawer->state(), Drawer::Closed);
    QVERIFY(!_drawer->isVisible());
}

void DrawerTest::standsAloneInTheUsersSize()
{
    auto *content = new QWidget;
    _drawer->setContentView(content);
    _drawer->setStandsAlone(true);
    _drawer->setMinContentSize(QSizeF(150, 100));
    _drawer->open();
    _drawer->resize(300 + Drawer::frameWidth, 500);
    QTRY_COMPARE(_drawer->contentSize().width(), 300.0);
    QTRY_COMPARE(content->width(), 300);
    QCOMPARE(_drawer->chosenContentWidth(), 300.0);
    _drawer->resize(300 + Drawer::frameWidth, 600);
    QTRY_COMPARE(content->height(), _drawer->contentSize().height());
    QCOMPARE(_drawer->height(), 600);
    QCOMPARE(content->mapTo(_drawer.data(), QPoint(0, content->height())).y(), 592);
    _drawer->resize(100, 600);
    QTRY_COMPARE(_drawer->width(), 150 + Drawer::frameWidth);
    QCOMPARE(_drawer->contentSize().width(), 150.0);
    _drawer->close();
    QCOMPARE(_drawer->chosenContentWidth(), 150.0);
}

void DrawerTest::standsAloneAcrossItsWindowsChanges()
{
    _drawer->setStandsAlone(true);
    _drawer->open();
    _drawer->move(20, 30);
    _drawer->resize(_drawer->width(), 333);
    const QRect own = _drawer->geometry();
    _window->windowFrame = QRectF(-5000, 200, 700, 100); // beyond every screen
    _window->frameDidChange();
    QCoreApplication::processEvents();
    QVERIFY(_drawer->isVisible());
    QCOMPARE(_drawer->geometry(), own);
    _window->hide();
    QVERIFY(!_drawer->isVisible());
    _window->show();
    QVERIFY(_drawer->isVisible());
}

void DrawerTest::widthHasAMinimum()
{
    QCOMPARE(_drawer->minContentSize(), QSizeF(100, 50));
    _drawer->setContentSize(QSizeF(40, 50));
    QCOMPARE(_drawer->contentSize().width(), 100.0);
    _drawer->setContentSize(QSizeF(240, 50));
    _drawer->setMinContentSize(QSizeF(280, 50));
    QCOMPARE(_drawer->contentSize().width(), 280.0);
    _drawer->open();
    QCOMPARE(_drawer->width(), 300);
    _drawer->setContentSize(QSizeF(320, 50));
    QCOMPARE(_drawer->width(), 340);
    QCOMPARE(_drawer->geometry().left(), 700);
}

// A width that was chosen on a wide screen waits there while the window is on a narrow one.
void DrawerTest::widthIsLimitedByTheScreen()
{
    _window->screenFrame = QRectF(0, 0, 1000, 900);
    _drawer->setContentSize(QSizeF(1500, 50));
    QCOMPARE(_drawer->contentSize().width(), 1500.0);
    qreal widthBeforeItOpens = 0;
    NotificationCenter::defaultCenter().addObserver(
        this, [&](const Notification &) { widthBeforeItOpens = _drawer->contentSize().width(); },
        N::NSDrawerWillOpenNotification, _drawer);
    _drawer->open();
    QCOMPARE(widthBeforeItOpens, 730.0);
    QCOMPARE(_drawer->contentSize().width(), 730.0);
    QCOMPARE(_drawer->chosenContentWidth(), 1500.0);
    QCOMPARE(_drawer->findChild<DrawerGrip *>()->parentWidget()->width(), 750);
    _drawer->close();
    QCOMPARE(_drawer->contentSize().width(), 1500.0);
    _window->screenFrame = QRectF(0, 0, 4000, 900);
    _drawer->open();
    QCOMPARE(_drawer->contentSize().width(), 1500.0);
    // The minimum is kept on the narrowest screen.
    _window->screenFrame = QRectF(0, 0, 110, 900);
    QCOMPARE(_drawer->contentSize().width(), 100.0);
}

void DrawerTest::heightFollowsTheWindow()
{
    _drawer->open();
    const qreal height = _drawer->contentSize().height();
    QVERIFY(height > 150);
    _drawer->setContentSize(QSizeF(180, 2000));
    QCOMPARE(_drawer->contentSize().height(), height);
    QVERIFY(_drawer->height() < 300);
}

void DrawerTest::contentFillsTheInside_data()
{
    QTest::addColumn<int>("edge");
    QTest::newRow("right") << int(Drawer::NSMaxXEdge);
    QTest::newRow("left") << int(Drawer::NSMinXEdge);
}

void DrawerTest::contentFillsTheInside()
{
    QFETCH(int, edge);
    auto *content = new QWidget;
    _drawer->setContentView(content);
    QCOMPARE(_drawer->contentView(), content);
    _drawer->setPreferredEdge(Drawer::Edge(edge));
    _drawer->open();
    QVERIFY(content->isVisible());
    QCOMPARE(QSizeF(content->size()), _drawer->contentSize());
    const QRect inside(content->mapTo(_drawer.data(), QPoint()), content->size());
    QVERIFY(_drawer->rect().adjusted(2, 2, -2, -2).contains(inside));
    const auto *grip = _drawer->findChild<DrawerGrip *>();
    const QRect gripFrame(grip->mapTo(_drawer.data(), QPoint()), grip->size());
    QVERIFY(!gripFrame.intersects(inside));
    QCOMPARE(gripFrame.center().x() < inside.left(), edge == Drawer::NSMinXEdge);
}

void DrawerTest::replacesTheContentView()
{
    const QPointer<QWidget> first = new QWidget;
    auto *second = new QWidget;
    _drawer->setContentView(first);
    _drawer->setContentView(second);
    QVERIFY(!first);
    QCOMPARE(_drawer->contentView(), second);
    delete second;
    QVERIFY(!_drawer->contentView());
    _drawer->open();
    QCOMPARE(_drawer->state(), Drawer::Open);
}

void DrawerTest::gripChangesTheWidth_data()
{
    QTest::addColumn<int>("edge");
    QTest::addColumn<int>("distance");
    QTest::addColumn<qreal>("width");
    QTest::newRow("right, wider") << int(Drawer::NSMaxXEdge) << 35 << 215.0;
    QTest::newRow("right, narrower") << int(Drawer::NSMaxXEdge) << -35 << 145.0;
    QTest::newRow("left, wider") << int(Drawer::NSMinXEdge) << -35 << 215.0;
    QTest::newRow("left, narrower") << int(Drawer::NSMinXEdge) << 35 << 145.0;
}

// The mouse's own events, since the grip moves under the mouse.
static void dragGrip(Drawer &drawer, int distance)
{
    auto *grip = drawer.findChild<DrawerGrip *>();
    const QPointF start(grip->mapToGlobal(QPoint(3, 40)));
    const QPointF end = start + QPointF(distance, 0);
    QMouseEvent press(QEvent::MouseButtonPress, QPointF(3, 40), start, Qt::LeftButton, Qt::LeftButton, {});
    QCoreApplication::sendEvent(grip, &press);
    for (const QPointF &point : {(start + end) / 2, end}) {
        QMouseEvent move(QEvent::MouseMove, grip->mapFromGlobal(point), point, Qt::NoButton, Qt::LeftButton, {});
        QCoreApplication::sendEvent(grip, &move);
    }
    QMouseEvent release(QEvent::MouseButtonRelease, grip->mapFromGlobal(end), end, Qt::LeftButton, Qt::NoButton, {});
    QCoreApplication::sendEvent(grip, &release);
}

void DrawerTest::gripChangesTheWidth()
{
    QFETCH(int, edge);
    QFETCH(int, distance);
    QFETCH(qreal, width);
    _drawer->setPreferredEdge(Drawer::Edge(edge));
    _drawer->open();
    const auto *grip = _drawer->findChild<DrawerGrip *>();
    QCOMPARE(grip->cursor().shape(), Qt::SplitHCursor);
    QVERIFY(!grip->accessibleName().isEmpty());
    QVERIFY(!grip->toolTip().isEmpty());
    dragGrip(*_drawer, distance);
    QCOMPARE(_drawer->contentSize().width(), width);
    QCOMPARE(_drawer->width(), int(width) + Drawer::frameWidth);
    if (edge == Drawer::NSMinXEdge)
        QCOMPARE(_drawer->geometry().right() + 1, 300);
    else
        QCOMPARE(_drawer->geometry().left(), 700);
}

void DrawerTest::gripStopsAtTheMinimumAndThreeQuartersOfTheScreen()
{
    _window->screenFrame = QRectF(0, 0, 1000, 900);
    _drawer->open();
    dragGrip(*_drawer, -500);
    QCOMPARE(_drawer->contentSize().width(), 100.0);
    dragGrip(*_drawer, 5000);
    QCOMPARE(_drawer->contentSize().width(), 730.0); // with its frame, 750
    // From there it goes back without a gap, also when more had been set.
    dragGrip(*_drawer, -10);
    QCOMPARE(_drawer->contentSize().width(), 720.0);
    _drawer->setContentSize(QSizeF(3000, 50));
    dragGrip(*_drawer, -10);
    QCOMPARE(_drawer->contentSize().width(), 720.0);
}

// At the widest that there is room for, whoever asks for more has not asked for less than was chosen before.
void DrawerTest::gripLeavesAWiderChoiceAlone()
{
    _window->screenFrame = QRectF(0, 0, 1000, 900);
    _drawer->setContentSize(QSizeF(1500, 50));
    _drawer->open();
    dragGrip(*_drawer, 0);
    dragGrip(*_drawer, 40);
    QTest::keyClick(_drawer->findChild<DrawerGrip *>(), Qt::Key_Right);
    QCOMPARE(_drawer->chosenContentWidth(), 1500.0);
    dragGrip(*_drawer, -40);
    QCOMPARE(_drawer->chosenContentWidth(), 690.0);
}

void DrawerTest::gripWorksByKeyboard_data()
{
    QTest::addColumn<int>("edge");
    QTest::addColumn<int>("key");
    QTest::addColumn<qreal>("width"); // from 180, after two strokes
    const int step = DrawerGrip::keyStep;
    QTest::newRow("right, wider") << int(Drawer::NSMaxXEdge) << int(Qt::Key_Right) << 180.0 + 2 * step;
    QTest::newRow("right, narrower") << int(Drawer::NSMaxXEdge) << int(Qt::Key_Left) << 180.0 - 2 * step;
    QTest::newRow("left, wider") << int(Drawer::NSMinXEdge) << int(Qt::Key_Left) << 180.0 + 2 * step;
    QTest::newRow("left, narrower") << int(Drawer::NSMinXEdge) << int(Qt::Key_Right) << 180.0 - 2 * step;
    QTest::newRow("another key") << int(Drawer::NSMaxXEdge) << int(Qt::Key_Up) << 180.0;
}

void DrawerTest::gripWorksByKeyboard()
{
    QFETCH(int, edge);
    QFETCH(int, key);
    QFETCH(qreal, width);
    _drawer->setPreferredEdge(Drawer::Edge(edge));
    _drawer->open();
    auto *grip = _drawer->findChild<DrawerGrip *>();
    QTest::keyClick(grip, Qt::Key(key));
    QTest::keyClick(grip, Qt::Key(key));
    QCOMPARE(_drawer->contentSize().width(), width);
    QCOMPARE(_drawer->chosenContentWidth(), width);
    // Down to the minimum, and not beyond.
    const Qt::Key narrower = edge == Drawer::NSMinXEdge ? Qt::Key_Right : Qt::Key_Left;
    for (int i = 0; i < 20; ++i)
        QTest::keyClick(grip, narrower);
    QCOMPARE(_drawer->contentSize().width(), 100.0);
}

void DrawerTest::gripIsReachedByTab()
{
    auto *content = new QWidget;
    auto *first = new QLineEdit(content);
    auto *last = new QLineEdit(content);
    _drawer->setContentView(content);
    _drawer->open();
    _drawer->activateWindow();
    QTRY_VERIFY(_drawer->isActiveWindow());
    QTRY_COMPARE(_drawer->focusWidget(), first); // the keyboard comes to the content
    auto *grip = _drawer->findChild<DrawerGrip *>();
    const QImage plain = grip->grab().toImage();
    QStringList order;
    for (int i = 0; i < 3; ++i) {
        QTest::keyClick(_drawer->focusWidget(), Qt::Key_Tab);
        const QWidget *reached = _drawer->focusWidget();
        order.append(reached == last ? "last" : reached == grip ? "grip" : reached == first ? "first" : "other");
        if (reached == grip) // and it is seen that it has the keyboard
            QVERIFY(grip->grab().toImage() != plain);
    }
    QCOMPARE(order, QStringList({"last", "grip", "first"}));
    QCOMPARE(grip->grab().toImage(), plain);
}

void DrawerTest::gripTakesNoKeyboardFromTheMouse()
{
    auto *content = new QLineEdit;
    _drawer->setContentView(content);
    _drawer->open();
    _drawer->activateWindow();
    QTRY_VERIFY(_drawer->isActiveWindow());
    content->setFocus();
    QTest::mouseClick(_drawer->findChild<DrawerGrip *>(), Qt::LeftButton);
    QCOMPARE(_drawer->focusWidget(), content);
}

// --- Life -----------------------------------------------------------------------------------------------------------

void DrawerTest::isListedWithItsWindow()
{
    const auto other = _host->openWindow();
    QCOMPARE(Drawer::drawersForWindow(_window.get()), QList<Drawer *>({_drawer.data()}));
    QVERIFY(Drawer::drawersForWindow(other.get()).isEmpty());
    QVERIFY(Drawer::drawersForWindow(nullptr).isEmpty());

    Drawer *second = makeDrawer();
    QCOMPARE(Drawer::drawersForWindow(_window.get()), QList<Drawer *>({_drawer.data(), second}));
    delete second;
    QCOMPARE(Drawer::drawersForWindow(_window.get()), QList<Drawer *>({_drawer.data()}));
    QCOMPARE(_drawer->className(), QString("Drawer"));
}

void DrawerTest::changesWindows()
{
    const auto other = _host->openWindow(QRectF(100, 50, 200, 200));
    _drawer->open();
    _drawer->setParentWindow(other);
    QCOMPARE(_drawer->state(), Drawer::Closed);
    QCOMPARE(_drawer->parentWindow(), std::shared_ptr<HostWindow>(other));
    QVERIFY(Drawer::drawersForWindow(_window.get()).isEmpty());
    QCOMPARE(Drawer::drawersForWindow(other.get()).size(), 1);
    _drawer->open();
    QCOMPARE(_drawer->geometry().left(), 300);
    _window->setFrame(QRectF(0, 0, 100, 100), false);
    QCOMPARE(_drawer->geometry().left(), 300);
}

void DrawerTest::letsGoOfItsWindow()
{
    _drawer->setSlideDuration(1000);
    _drawer->open();
    _drawer->setParentWindow(nullptr);
    QCOMPARE(_drawer->state(), Drawer::Closed);
    QVERIFY(!_drawer->isVisible());
    QVERIFY(!_drawer->parentWindow());
    QCOMPARE(_posted, QStringList({"WillOpen", "WillClose", "DidClose"}));
    QVERIFY(Drawer::drawersForWindow(_window.get()).isEmpty());
}

// While others are told that the window closes, the drawer still answers as it stood.
void DrawerTest::goesOutOfSightWhenTheWindowCloses()
{
    _drawer->open();
    bool told = false;
    NotificationCenter::defaultCenter().addObserver(
        this,
        [&](const Notification &) {
            told = true;
            QVERIFY(!_drawer->isVisible());
            _window->frameDidChange(); // it can still be seen, and moves as it goes
            QVERIFY(!_drawer->isVisible());
            QCOMPARE(_drawer->state(), Drawer::Open);
            QCOMPARE(_drawer->parentWindow(), std::shared_ptr<HostWindow>(_window));
            QCOMPARE(_drawer->contentSize().width(), 180.0);
        },
        N::NSWindowWillCloseNotification, _window.get());
    _window->close();
    QVERIFY(told);
    _window->frameDidChange();
    QVERIFY(!_drawer->isVisible());
    QTRY_COMPARE(_drawer->state(), Drawer::Closed);
    QVERIFY(!_drawer->parentWindow());
    QVERIFY(Drawer::drawersForWindow(_window.get()).isEmpty());
}

void DrawerTest::goesWithTheWindowsWidget()
{
    _drawer->setParentWindow(nullptr);
    QWidget *widget = _window->makeWidget();
    _drawer->setParentWindow(_window);
    _drawer->setSlideDuration(1000);
    _drawer->open();
    delete widget; // without a word
    QVERIFY(!_drawer);
    QVERIFY(Drawer::drawersForWindow(_window.get()).isEmpty());
    _window->frameDidChange();
}

void DrawerTest::isNotListedWithANewWindowInTheSamePlace()
{
    alignas(FakeHostWindow) static char place[sizeof(FakeHostWindow)];
    const auto makeThere = [] {
        return std::shared_ptr<FakeHostWindow>(new (place) FakeHostWindow(QRectF(0, 0, 400, 300)),
                                               [](FakeHostWindow *window) { window->~FakeHostWindow(); });
    };
    auto first = makeThere();
    _drawer->setParentWindow(first);
    QCOMPARE(Drawer::drawersForWindow(first.get()).size(), 1);
    first.reset(); // without a word
    const auto second = makeThere();
    QVERIFY(Drawer::drawersForWindow(second.get()).isEmpty());
    Drawer later;
    later.setParentWindow(second);
    QCOMPARE(Drawer::drawersForWindow(second.get()), QList<Drawer *>({&later}));
}

void DrawerTest::closesWhenTheWindowManagerAsks()
{
    _drawer->open();
    QCloseEvent event;
    QCoreApplication::sendEvent(_drawer, &event);
    QVERIFY(!event.isAccepted());
    QCOMPARE(_drawer->state(), Drawer::Closed);
}

void DrawerTest::looksLikeThePalette_data()
{
    QTest::addColumn<QColor>("window");
    QTest::addColumn<QColor>("text");
    QTest::newRow("light") << QColor(239, 239, 239) << QColor(Qt::black);
    QTest::newRow("dark") << QColor(40, 42, 46) << QColor(Qt::white);
}

void DrawerTest::looksLikeThePalette()
{
    QFETCH(QColor, window);
    QFETCH(QColor, text);
    QPalette palette;
    palette.setColor(QPalette::Window, window);
    palette.setColor(QPalette::WindowText, text);
    _drawer->setPalette(palette);
    _drawer->open();
    const QImage shot = _drawer->grab().toImage();
    const int middle = shot.height() / 2;
    QCOMPARE(shot.pixelColor(shot.width() / 2, middle), window);
    // A line on the free sides that stands out, and none where the window is.
    const auto distance = [&](int x, int y) { return qAbs(shot.pixelColor(x, y).lightness() - window.lightness()); };
    QVERIFY(distance(shot.width() / 2, int(shot.devicePixelRatio() + 0.5)) < 30); // and a thin one
    QVERIFY(distance(shot.width() - 1, middle) > 30);
    QVERIFY(distance(shot.width() / 2, 0) > 30);
    QVERIFY(distance(shot.width() / 2, shot.height() - 1) > 30);
    // There it throws its shadow, which ends soon.
    const int shadow = shot.pixelColor(0, middle).lightness();
    QVERIFY(window.lightness() == 0 || shadow < window.lightness());
    QVERIFY(shadow <= shot.pixelColor(int(3 * shot.devicePixelRatio()), middle).lightness());
    QCOMPARE(shot.pixelColor(int(7 * shot.devicePixelRatio()), middle), window);
}

QTEST_MAIN(DrawerTest)
#include "DrawerTest.moc"
