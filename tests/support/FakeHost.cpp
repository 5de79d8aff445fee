#include "tests/support/FakeHost.h"

#include "platform/base/NotificationCenter.h"
#include "platform/base/PlatformNotifications.h"
#include "platform/host/CurrentHost.h"

namespace
{
class BaseLocationChangeHandler : public HostLocationChangeHandler
{
public:
    explicit BaseLocationChangeHandler(FakeHostApplication &host) : _host(host) {}
    void webViewDidFinishLoadForFrame(HostWebView & /*view*/, const std::shared_ptr<HostFrame> & /*frame*/) override
    {
        ++_host.baseFinishLoadCount;
        _host.order += QLatin1Char('L');
    }

private:
    FakeHostApplication &_host;
};

class BaseWebViewDrawing : public HostWebViewDrawing
{
public:
    explicit BaseWebViewDrawing(FakeHostApplication &host) : _host(host) {}
    void lockFocus(HostWebView & /*view*/) override
    {
        ++_host.baseDrawCount;
        _host.order += QLatin1Char('D');
    }

private:
    FakeHostApplication &_host;
};

// Frame and all, as window managers count.
void place(QWidget &widget, const QRectF &frame)
{
    const QRect wanted = frame.toAlignedRect();
    widget.move(wanted.topLeft());
    widget.resize(wanted.size() - (widget.frameGeometry().size() - widget.size()));
}

QImage scaled(const QImage &image, const QSize &size)
{
    if (image.isNull() || size.isEmpty())
        return image;
    return image.scaled(size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
}
} // namespace

void FakeHostFrame::commit(const QString &address)
{
    committed = HostDataSource{Url::URLWithString(address)};
    provisional.reset();
}

std::shared_ptr<HostWebView> FakeHostFrame::webView() const
{
    return owner.lock();
}

const HostDataSource *FakeHostFrame::dataSource() const
{
    return committed && !owner.expired() ? &*committed : nullptr;
}

const HostDataSource *FakeHostFrame::provisionalDataSource() const
{
    return provisional && !owner.expired() ? &*provisional : nullptr;
}

void FakeHostFrame::loadRequest(const Url &url)
{
    loadRequests.push_back(url);
}

std::shared_ptr<FakeHostWebView> FakeHostWebView::make()
{
    auto view = std::make_shared<FakeHostWebView>();
    view->frame = makeSubFrame(view);
    return view;
}

std::shared_ptr<FakeHostFrame> FakeHostWebView::makeSubFrame(const std::shared_ptr<FakeHostWebView> &view)
{
    auto frame = std::make_shared<FakeHostFrame>();
    frame->owner = view;
    return frame;
}

std::shared_ptr<HostFrame> FakeHostWebView::mainFrame() const
{
    return frame;
}

std::shared_ptr<HostWindow> FakeHostWebView::hostWindow() const
{
    return window.lock();
}

FakeHostWindow::FakeHostWindow(const QRectF &frame) : windowFrame(frame) {}

FakeHostWindow::~FakeHostWindow()
{
    delete _widget;
}

QWidget *FakeHostWindow::makeWidget()
{
    if (!_widget) {
        _widget = new QWidget;
        _widget->setWindowTitle(QStringLiteral("Browser"));
        _widget->show();
        place(*_widget, windowFrame);
    }
    return _widget;
}

std::shared_ptr<FakeHostWebView> FakeHostWindow::addTab(const QString &address)
{
    frontWebView = FakeHostWebView::make();
    frontWebView->window = weak_from_this();
    if (!address.isNull())
        frontWebView->frame->commit(address);
    return frontWebView;
}

void FakeHostWindow::becomeKey()
{
    NotificationCenter::defaultCenter().postNotificationName(PlatformNotifications::NSWindowDidBecomeKeyNotification,
                                                             this);
}

void FakeHostWindow::frameDidChange()
{
    NotificationCenter::defaultCenter().postNotificationName(PlatformNotifications::WindowFrameDidChangeNotification,
                                                             this);
}

void FakeHostWindow::hide()
{
    visible = false;
    if (_widget)
        _widget->hide();
    frameDidChange();
}

void FakeHostWindow::show()
{
    visible = true;
    if (_widget)
        _widget->show();
    frameDidChange();
}

void FakeHostWindow::close()
{
    NotificationCenter::defaultCenter().postNotificationName(PlatformNotifications::NSWindowWillCloseNotification,
                                                             this);
    visible = false;
    delete _widget;
}

QRectF FakeHostWindow::frame() const
{
    return _widget ? QRectF(_widget->frameGeometry()) : windowFrame;
}

void FakeHostWindow::setFrame(const QRectF &frame, bool animate)
{
    frameRequests.push_back({frame, animate});
    windowFrame = frame;
    windowFrame.setWidth(std::max(frame.width(), leastWidth));
    if (_widget)
        place(*_widget, frame);
    frameDidChange();
}

bool FakeHostWindow::isVisible() const
{
    return _widget ? _widget->isVisible() && !_widget->isMinimized() : visible;
}

std::shared_ptr<HostWebView> FakeHostWindow::currentWebView() const
{
    return frontWebView;
}

FakeHostApplication::FakeHostApplication()
{
    hostClasses.add(QStringLiteral("LocationChangeHandler"), &locationChangeHandlerClass);
    hostClasses.add(QStringLiteral("WebView"), &webViewClass);
    setCurrentHost(this);
}

FakeHostApplication::~FakeHostApplication()
{
    setCurrentHost(nullptr);
}

std::shared_ptr<FakeHostWindow> FakeHostApplication::openWindow(const QRectF &frame)
{
    auto window = std::make_shared<FakeHostWindow>(frame);
    windows.push_back(window);
    key = window;
    return window;
}

std::unique_ptr<HostLocationChangeHandler> FakeHostApplication::makeLocationChangeHandler()
{
    return locationChangeHandlerClass.make(std::make_unique<BaseLocationChangeHandler>(*this));
}

std::unique_ptr<HostWebViewDrawing> FakeHostApplication::makeWebViewDrawing()
{
    return webViewClass.make(std::make_unique<BaseWebViewDrawing>(*this));
}

void FakeHostApplication::finishLoad(HostWebView &view, const std::shared_ptr<HostFrame> &frame)
{
    makeLocationChangeHandler()->webViewDidFinishLoadForFrame(view, frame);
}

void FakeHostApplication::draw(HostWebView &view)
{
    makeWebViewDrawing()->lockFocus(view);
}

QImage FakeHostApplication::imageNamed(const QString &name, const QSize &size) const
{
    return scaled(images.value(name), size);
}

QImage FakeHostApplication::siteIconForAddress(const QString &address, const QSize &size) const
{
    return scaled(siteIcons.value(address), size);
}
