#include "browser/BrowserHostWindow.h"

#include "browser/BrowserWindow.h"
#include "browser/UrlConversion.h"
#include "browser/WebView.h"

#include <QScreen>
#include <QStyle>

namespace
{
constexpr int longestTransition = 250; // milliseconds
constexpr int settleInterval = 100;    // milliseconds
constexpr int mostSettleAttempts = 5;
} // namespace

BrowserHostWindow::BrowserHostWindow(BrowserWindow *window) : _window(window)
{
    _settleTimer.setInterval(settleInterval);
    QObject::connect(&_settleTimer, &QTimer::timeout, &_settleTimer, [this] { settle(); });
}

BrowserHostWindow::~BrowserHostWindow()
{
    delete _animation;
}

QString BrowserHostWindow::className() const
{
    return QStringLiteral("BrowserWindow");
}

QString BrowserHostWindow::title() const
{
    return _window ? _window->windowTitle() : QString();
}

QRectF BrowserHostWindow::frame() const
{
    if (!_window)
        return {};
    // A frame between two pixels was rounded when it was set; whoever set it shall find it again as it was.
    if (_animation || _settleTimer.isActive() || _requestedFrame.toRect() == _window->frameGeometry())
        return _requestedFrame;
    return _window->frameGeometry();
}

void BrowserHostWindow::setFrame(const QRectF &frame, bool animate)
{
    if (!_window)
        return;
    delete _animation;
    _settleTimer.stop();
    _requestedFrame = QRectF(frame.topLeft(), frame.size().expandedTo(leastFrameSize()));
    const QRect target = _requestedFrame.toRect();
    if (target == _window->frameGeometry() || restoreLeftState(target))
        return;
    const bool wasSpecial = _window->isMaximized() || _window->isFullScreen();
    if (wasSpecial)
        leaveSpecialState();
    if (animate && !wasSpecial && isVisible())
        animateTo(target);
    else
        place(target);
    if (!wasSpecial)
        return;
    _settleAttempts = 0;
    _settleTimer.start();
}

QRectF BrowserHostWindow::visibleScreenFrame() const
{
    return _window && _window->screen() ? QRectF(_window->screen()->availableGeometry()) : QRectF();
}

bool BrowserHostWindow::isVisible() const
{
    return _window && _window->isVisible() && !_window->isMinimized();
}

void BrowserHostWindow::makeKeyAndOrderFront()
{
    if (!_window)
        return;
    if (_window->isMinimized())
        _window->setWindowState(_window->windowState() & ~Qt::WindowMinimized);
    _window->show();
    _window->raise();
    _window->activateWindow();
}

QWidget *BrowserHostWindow::widget() const
{
    return _window;
}

std::shared_ptr<HostWebView> BrowserHostWindow::currentWebView() const
{
    const WebView *view = _window ? _window->currentWebView() : nullptr;
    return view ? view->hostWebView() : nullptr;
}

void BrowserHostWindow::openURLInNewTab(const Url &url)
{
    if (_window && !url.isNull())
        _window->openTab(UrlConversion::toQUrl(url));
}

void BrowserHostWindow::windowShouldGoToURL(const Url &url)
{
    if (_window && !url.isNull())
        _window->goTo(UrlConversion::toQUrl(url));
}

QSizeF BrowserHostWindow::leastFrameSize() const
{
    const QSize decorations = _window->frameGeometry().size() - _window->geometry().size();
    return _window->minimumSize() + decorations;
}

bool BrowserHostWindow::restoreLeftState(const QRect &frame)
{
    if (!_leftStates || frame != _leftFrame)
        return false;
    // What the user gets back by un-maximising the window is the size that it had before all this.
    if (_leftNormalGeometry.isValid())
        _window->setGeometry(_leftNormalGeometry);
    _window->setWindowState(_window->windowState() | _leftStates);
    _leftStates = Qt::WindowNoState;
    return true;
}

void BrowserHostWindow::leaveSpecialState()
{
    constexpr Qt::WindowStates special = Qt::WindowMaximized | Qt::WindowFullScreen;
    _leftFrame = _window->frameGeometry();
    _leftNormalGeometry = _window->normalGeometry();
    _leftStates = _window->windowState() & special;
    _window->setWindowState(_window->windowState() & ~special);
}

void BrowserHostWindow::place(const QRect &frame) const
{
    const QSize decorations = _window->frameGeometry().size() - _window->geometry().size();
    _window->resize(frame.size() - decorations);
    _window->move(frame.topLeft());
}

// A window manager takes its time to give a window that was maximised its borders back, and the frame with them.
void BrowserHostWindow::settle()
{
    const QRect target = _requestedFrame.toRect();
    if (!_window || ++_settleAttempts >= mostSettleAttempts)
        _settleTimer.stop();
    else if (_window->frameGeometry() != target)
        place(target);
}

void BrowserHostWindow::animateTo(const QRect &frame)
{
    const int duration = _window->style()->styleHint(QStyle::SH_Widget_Animation_Duration, nullptr, _window);
    if (duration <= 0) {
        place(frame);
        return;
    }
    _animation = new QVariantAnimation;
    _animation->setDuration(qMin(duration, longestTransition));
    _animation->setEasingCurve(QEasingCurve::InOutQuad);
    _animation->setStartValue(_window->frameGeometry());
    _animation->setEndValue(frame);
    QObject::connect(_animation, &QVariantAnimation::valueChanged, _window,
                     [this](const QVariant &value) { place(value.toRect()); });
    _animation->start(QAbstractAnimation::DeleteWhenStopped);
}
