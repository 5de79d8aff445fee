#include "platform/widgets/Drawer.h"

#include "platform/base/NotificationCenter.h"
#include "platform/base/PlatformNotifications.h"
#include "platform/host/HostWindow.h"
#include "platform/widgets/DrawerGrip.h"
#include "platform/widgets/TaskBar.h"

#include <QCloseEvent>
#include <QGuiApplication>
#include <QHash>
#include <QPainter>
#include <QScreen>
#include <QStyle>
#include <algorithm>

namespace
{
constexpr int slideMilliseconds = 180;
constexpr int gripWidth = 8;      // along the free edge
constexpr int freeMargin = 10;    // between the content and the free edge, grip included
constexpr int closeMargin = 10;   // between the content and the window's edge
constexpr int verticalMargin = 8; // above and below the content
constexpr int topInset = 10;      // how much lower than the window's contents the drawer begins
constexpr int bottomInset = 14;
constexpr int titleBarHeight = 28; // of a window of another process, which tells only its frame
constexpr int shadowWidth = 6;
constexpr int mostTimesPutBack = 20;
constexpr qreal mostOfTheScreen = 0.75; // that a drawer may cover

using DrawerTable = QHash<const HostWindow *, QList<Drawer *>>;

DrawerTable &drawerTable()
{
    static DrawerTable table;
    return table;
}

QColor blended(const QColor &under, const QColor &over, float share)
{
    return QColor::fromRgbF(under.redF() + (over.redF() - under.redF()) * share,
                            under.greenF() + (over.greenF() - under.greenF()) * share,
                            under.blueF() + (over.blueF() - under.blueF()) * share);
}

// The window's contents on the screen: what its title bar leaves of its frame.
QRect contentsOf(const HostWindow &window)
{
    const QRect frame = window.frame().toAlignedRect();
    if (const QWidget *widget = window.widget()) {
        QRect contents = frame;
        contents.setTop(std::clamp(widget->window()->geometry().top(), frame.top(), frame.bottom()));
        return contents;
    }
    return frame.adjusted(0, std::min(titleBarHeight, frame.height() / 2), 0, 0);
}

// All screens, without what panels and docks keep for themselves.
QRect desktopOf(const HostWindow &window)
{
    const QRect own = window.visibleScreenFrame().toAlignedRect();
    const QScreen *screen = QGuiApplication::primaryScreen();
    return screen ? own.united(screen->availableVirtualGeometry()) : own;
}
} // namespace

Drawer::Drawer(QWidget *parent) : QFrame(parent), _body(new QWidget(this)), _grip(new DrawerGrip(_body))
{
    // Shown beside its window without taking the keyboard from it, and kept with it by window managers.
    setAttribute(Qt::WA_ShowWithoutActivating);
    setAttribute(Qt::WA_X11NetWmWindowTypeUtility);
    setAttribute(Qt::WA_QuitOnClose, false);
    setStandsAlone(QGuiApplication::platformName().startsWith(QLatin1String("wayland")));
    _slide.setEasingCurve(QEasingCurve::InOutQuad);
    connect(&_slide, &QVariantAnimation::valueChanged, this, [this](const QVariant &value) {
        _shown = value.toReal();
        layOut();
        if (_state == Opening && _shown < 1 && looksOpen())
            finishSlide();
    });
    connect(&_slide, &QVariantAnimation::finished, this, &Drawer::slideEnded);
    connect(_grip, &DrawerGrip::grabbed, this, [this] { _widthWhenGrabbed = contentWidth(); });
    connect(_grip, &DrawerGrip::dragged, this, &Drawer::moveFreeEdge);
}

Drawer::~Drawer()
{
    _slide.disconnect(this);
    detach();
}

QString Drawer::className() const
{
    return QStringLiteral("Drawer");
}

// --- The window -----------------------------------------------------------------------------------------------------

const QList<Drawer *> &Drawer::drawersForWindow(const HostWindow *window)
{
    static const QList<Drawer *> none;
    const auto found = drawerTable().constFind(window);
    // A new window can stand where one was that went without a word; its drawers are not the new one's.
    if (found == drawerTable().constEnd() || found->constFirst()->_parentWindow.expired())
        return none;
    return *found;
}

void Drawer::setParentWindow(const std::shared_ptr<HostWindow> &window)
{
    if (window && window == parentWindow())
        return;
    if (!closeAtOnce())
        return;
    detach();
    if (window)
        attach(window);
    else
        setParent(nullptr, windowFlags());
}

std::shared_ptr<HostWindow> Drawer::parentWindow() const
{
    return _parentWindow.lock();
}

void Drawer::attach(const std::shared_ptr<HostWindow> &window)
{
    _parentWindow = window;
    _attachedTo = window.get();
    QList<Drawer *> &drawers = drawerTable()[_attachedTo];
    // What is left of a window that went without a word.
    drawers.removeIf([&window](const Drawer *drawer) { return drawer->parentWindow() != window; });
    drawers.append(this);
    setParent(window->widget() ? window->widget()->window() : nullptr, windowFlags());

    NotificationCenter &center = NotificationCenter::defaultCenter();
    center.addObserver(
        this, [this](const Notification &) { followParent(); }, PlatformNotifications::WindowFrameDidChangeNotification,
        _attachedTo);
    center.addObserver(
        this, [this](const Notification &) { parentWindowWillClose(); },
        PlatformNotifications::NSWindowWillCloseNotification, _attachedTo);
}

void Drawer::detach()
{
    NotificationCenter::defaultCenter().removeObserver(this);
    const auto found = drawerTable().find(_attachedTo);
    if (found != drawerTable().end()) {
        found->removeOne(this);
        if (found->isEmpty())
            drawerTable().erase(found);
    }
    _attachedTo = nullptr;
    _parentWindow.reset();
}

// Whoever else is told may still want to know how the drawer stands, so it only gets out of sight now.
void Drawer::parentWindowWillClose()
{
    NotificationCenter::defaultCenter().removeObserver(this);
    _slide.stop();
    hide();
    const auto letGo = [this, window = _attachedTo] {
        if (_attachedTo == window)
            setParentWindow(nullptr);
    };
    QMetaObject::invokeMethod(this, letGo, Qt::QueuedConnection);
}

void Drawer::followParent()
{
    const std::shared_ptr<HostWindow> window = parentWindow();
    if (_state == Closed || _isAboutToOpen || !window)
        return;
    layOut();
    showWith(*window);
}

void Drawer::showWith(const HostWindow &window)
{
    const bool visible = window.isVisible() && _isOnScreen;
    if (visible == isVisible())
        return;
    // A window manager may have minimised the drawer along with its window; shown like that, it would take the window
    // down again.
    setWindowState(windowState() & ~Qt::WindowMinimized);
    if (visible)
        TaskBar::leaveOut(*this);
    setVisible(visible);
    if (visible)
        TaskBar::leaveOut(*this);
}

void Drawer::setStandsAlone(bool standsAlone)
{
    _standsAlone = standsAlone;
    setWindowFlags(standsAlone ? Qt::Tool | Qt::CustomizeWindowHint | Qt::WindowTitleHint | Qt::WindowCloseButtonHint
                               : Qt::Tool | Qt::FramelessWindowHint);
}

// --- Opening and closing --------------------------------------------------------------------------------------------

void Drawer::open()
{
    const std::shared_ptr<HostWindow> window = parentWindow();
    if (_state == Opening || _state == Open || !window)
        return;
    const bool turnsRound = _state == Closing;
    _state = Opening;
    if (!turnsRound) {
        // Whoever is told now may move the window and choose the edge. Shown before that, the drawer would be hidden
        // again at once, and a window manager that is busy takes the one for the other.
        const QPointer<Drawer> alive(this);
        _isAboutToOpen = true;
        NotificationCenter::defaultCenter().postNotificationName(PlatformNotifications::NSDrawerWillOpenNotification,
                                                                 this);
        if (!alive)
            return;
        _isAboutToOpen = false;
        if (_state != Opening)
            return;
        _edge = _preferredEdge;
        _shown = 0;
    }
    layOut();
    showWith(*window);
    slideTo(1);
}

void Drawer::close()
{
    if (_state == Closed || _state == Closing)
        return;
    _state = Closing;
    const QPointer<Drawer> alive(this);
    NotificationCenter::defaultCenter().postNotificationName(PlatformNotifications::NSDrawerWillCloseNotification,
                                                             this);
    if (alive && _state == Closing)
        slideTo(0);
}

void Drawer::toggle()
{
    if (_state == Closed || _state == Closing)
        open();
    else
        close();
}

int Drawer::slideTime() const
{
    if (_standsAlone)
        return 0;
    if (_slideDuration >= 0)
        return _slideDuration;
    return style()->styleHint(QStyle::SH_Widget_Animation_Duration, nullptr, this) > 0 ? slideMilliseconds : 0;
}

// From wherever it is, at the same speed.
void Drawer::slideTo(qreal goal)
{
    _slide.stop();
    const int time = isVisible() ? int(slideTime() * qAbs(goal - _shown)) : 0;
    if (time == 0) {
        _shown = goal;
        layOut();
        slideEnded();
        return;
    }
    _slide.setStartValue(_shown);
    _slide.setEndValue(goal);
    _slide.setDuration(time);
    _slide.start();
}

bool Drawer::looksOpen() const
{
    const int whole = openWidth();
    return qRound(whole * _shown) == whole;
}

// A click on what looks open must find it open, so the slide does not go on for what no pixel shows.
void Drawer::finishSlide()
{
    _slide.stop();
    _shown = 1;
    slideEnded();
}

void Drawer::slideEnded()
{
    if (_state == Opening) {
        _state = Open;
        NotificationCenter::defaultCenter().postNotificationName(PlatformNotifications::NSDrawerDidOpenNotification,
                                                                 this);
    } else if (_state == Closing) {
        const std::shared_ptr<HostWindow> window = parentWindow();
        const bool hadKeyboard = isActiveWindow();
        hide();
        _state = Closed;
        if (hadKeyboard && window)
            window->makeKeyAndOrderFront();
        NotificationCenter::defaultCenter().postNotificationName(PlatformNotifications::NSDrawerDidCloseNotification,
                                                                 this);
    }
}

// False when somebody who was told has deleted the drawer.
bool Drawer::closeAtOnce()
{
    const QPointer<Drawer> alive(this);
    const int duration = std::exchange(_slideDuration, 0);
    if (_state == Closing)
        slideTo(0);
    else
        close();
    if (!alive)
        return false;
    _slideDuration = duration;
    return true;
}

// The window manager asks for it, on behalf of the user.
void Drawer::closeEvent(QCloseEvent *event)
{
    event->ignore();
    close();
}

// --- Geometry -------------------------------------------------------------------------------------------------------

QSizeF Drawer::contentSize() const
{
    const std::shared_ptr<HostWindow> window = parentWindow();
    if (!window || _state == Closed)
        return _contentSize;
    return {contentWidth(), qreal(openGeometry().height() - 2 * verticalMargin)};
}

void Drawer::setContentSize(const QSizeF &size)
{
    _contentSize = size.expandedTo(_minContentSize);
    layOut();
}

void Drawer::setMinContentSize(const QSizeF &size)
{
    _minContentSize = size;
    setContentSize(_contentSize);
}

void Drawer::setContentView(QWidget *view)
{
    if (_contentView != view)
        delete _contentView;
    _contentView = view;
    if (!view)
        return;
    view->setParent(_body);
    view->show();
    // What comes first gets the keyboard with the window, so the edge comes last: it is made a child anew, since
    // setTabOrder() does nothing behind the last widget of a window.
    _grip->setParent(nullptr);
    _grip->setParent(_body);
    _grip->show();
    layOut();
}

QWidget *Drawer::contentView() const
{
    return _contentView;
}

// The widest that its content may be. A width that was set on a wider screen is kept for when there is room again.
qreal Drawer::widestContent() const
{
    const std::shared_ptr<HostWindow> window = parentWindow();
    const qreal widest = window ? window->visibleScreenFrame().width() * mostOfTheScreen - frameWidth : 0;
    return std::max(_minContentSize.width(), widest);
}

qreal Drawer::contentWidth() const
{
    return std::min(_contentSize.width(), widestContent());
}

int Drawer::openWidth() const
{
    return qRound(contentWidth()) + frameWidth;
}

// Where it stands when it is all the way out. A window of its own is as high as its parent at first.
QRect Drawer::openGeometry() const
{
    const std::shared_ptr<HostWindow> window = parentWindow();
    if (!window)
        return geometry();
    if (_standsAlone && isVisible())
        return {x(), y(), openWidth(), height()};
    const QRect contents = contentsOf(*window);
    const int height = std::max(1, contents.height() - topInset - bottomInset);
    const int x = _edge == NSMinXEdge ? contents.left() - openWidth() : contents.left() + contents.width();
    return {x, contents.top() + topInset, openWidth(), height};
}

void Drawer::layOut()
{
    const std::shared_ptr<HostWindow> window = parentWindow();
    if (_state == Closed || !window)
        return;
    const QRect whole = openGeometry();
    if (_standsAlone) {
        _isOnScreen = true;
        resize(whole.size());
        _out = rect();
    } else {
        layOutBeside(*window, whole);
    }
    if (_isOnScreen)
        layOutBody(whole.size());
}

// A drawer that is partly out is a narrower window in which only the part farthest from the parent shows, so it comes
// out from behind the parent's edge though windows of this kind lie above their parents. Nor does the window reach
// beyond the screen: window managers would push it back, over its parent.
void Drawer::layOutBeside(const HostWindow &window, const QRect &whole)
{
    QRect out = whole;
    out.setWidth(std::max(1, qRound(whole.width() * _shown)));
    if (_edge == NSMinXEdge)
        out.moveRight(whole.right());
    const QRect seen = out & desktopOf(window);
    _isOnScreen = !seen.isEmpty();
    if (!_isOnScreen)
        return;

    _place = seen;
    _timesPutBack = 0;
    setGeometry(_place);
    _out = out.translated(-seen.topLeft());
}

void Drawer::layOutBody(const QSize &whole)
{
    const bool onLeft = _edge == NSMinXEdge;
    QRect body(QPoint(), whole);
    body.moveTopLeft(onLeft ? _out.topLeft() : QPoint(_out.right() + 1 - whole.width(), _out.top()));
    _body->setGeometry(body);
    _grip->setGeometry(onLeft ? 1 : whole.width() - gripWidth - 1, 1, gripWidth, whole.height() - 2);
    if (_contentView)
        _contentView->setGeometry(onLeft ? freeMargin : closeMargin, verticalMargin, whole.width() - frameWidth,
                                  std::max(0, whole.height() - 2 * verticalMargin));
    update();
}

void Drawer::moveEvent(QMoveEvent *event)
{
    QFrame::moveEvent(event);
    putBack();
}

void Drawer::resizeEvent(QResizeEvent *event)
{
    QFrame::resizeEvent(event);
    if (!_standsAlone)
        putBack();
    else if (isVisible() && width() != openWidth())
        setContentSize(QSizeF(width() - frameWidth, _contentSize.height()));
    else if (isVisible())
        layOut();
}

// Somebody else says that it stands elsewhere: the user moved it by the window manager's own means, or the window
// manager told a place that it has passed through. A window manager that insists is let have its way.
void Drawer::putBack()
{
    const auto isInPlace = [this] { return _standsAlone || !isVisible() || geometry() == _place; };
    if (isInPlace() || _timesPutBack >= mostTimesPutBack)
        return;
    ++_timesPutBack;
    const auto put = [this, isInPlace] {
        if (!isInPlace())
            setGeometry(_place);
    };
    QMetaObject::invokeMethod(this, put, Qt::QueuedConnection);
}

// From where it stood when the grip was taken. At the widest that there is room for, a chosen width that waits for more
// room is left alone.
void Drawer::moveFreeEdge(int distance)
{
    const qreal wanted = _widthWhenGrabbed + (_edge == NSMinXEdge ? -distance : distance);
    const qreal width = std::clamp(wanted, _minContentSize.width(), widestContent());
    if (width != contentWidth())
        setContentSize(QSizeF(width, _contentSize.height()));
}

// The palette's own grounds; beside a window with a line around the three free sides, and its shadow on the fourth.
void Drawer::paintEvent(QPaintEvent * /*event*/)
{
    QPainter painter(this);
    const QColor ground = palette().color(QPalette::Window);
    painter.fillRect(rect(), ground);
    if (_standsAlone)
        return;

    const bool onLeft = _edge == NSMinXEdge;
    const qreal parentSide = onLeft ? _out.right() + 1 : _out.left();
    const qreal shadowEnd = onLeft ? parentSide - shadowWidth : parentSide + shadowWidth;
    QLinearGradient shadow(parentSide, 0, shadowEnd, 0);
    shadow.setColorAt(0, QColor(0, 0, 0, 56));
    shadow.setColorAt(1, QColor(0, 0, 0, 0));
    painter.fillRect(QRectF(std::min(parentSide, shadowEnd), 0, shadowWidth, height()), shadow);

    // Filled, since a pen does not stay within its pixel where there are several to the point.
    const QColor line = blended(ground, palette().color(QPalette::WindowText), 0.3F);
    painter.fillRect(_out.left(), _out.top(), _out.width(), 1, line);
    painter.fillRect(_out.left(), _out.bottom(), _out.width(), 1, line);
    painter.fillRect(onLeft ? _out.left() : _out.right(), _out.top(), 1, _out.height(), line);
}
