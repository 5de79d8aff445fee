#include "browser/WebView.h"

#include "browser/Address.h"
#include "browser/BrowserHostFrame.h"
#include "browser/BrowserHostWebView.h"
#include "browser/BrowserServices.h"
#include "browser/SiteIcons.h"
#include "browser/SymbolIcon.h"
#include "browser/UrlConversion.h"
#include "browser/WebPage.h"

#include <QChildEvent>
#include <QContextMenuEvent>
#include <QMenu>
#include <QWebEngineFullScreenRequest>
#include <QWebEngineLoadingInfo>
#include <QWebEngineNewWindowRequest>

namespace
{
// The browser's own part of a page's arrival.
class PageArrival : public HostLocationChangeHandler
{
public:
    using Handler = std::function<void(const std::shared_ptr<HostFrame> &)>;

    explicit PageArrival(Handler handler) : _handler(std::move(handler)) {}
    void webViewDidFinishLoadForFrame(HostWebView &, const std::shared_ptr<HostFrame> &frame) override
    {
        _handler(frame);
    }

private:
    Handler _handler;
};

// The browser itself has nothing to do before a drawing.
class PlainDrawing : public HostWebViewDrawing
{
public:
    void lockFocus(HostWebView &) override {}
};
} // namespace

WebView::WebView(BrowserServices &services, QWidget *parent)
    : QWebEngineView(parent)
    , _services(services)
    , _hostWebView(std::make_shared<BrowserHostWebView>())
{
    setObjectName(QStringLiteral("webView"));
    setPage(new WebPage(services.profile, this));
    const auto load = [this](const Url &url) { goTo(UrlConversion::toQUrl(url)); };
    _mainFrame = std::make_shared<BrowserHostFrame>(_hostWebView, load);
    _hostWebView->setMainFrame(_mainFrame);
    _locationChangeHandler = services.locationChangeHandlerClass.make(
        std::make_unique<PageArrival>([this](const std::shared_ptr<HostFrame> &frame) {
            if (frame == _mainFrame) {
                _pageHasFinished = true;
                Q_EMIT pageFinished(url(), title());
                Q_EMIT changed();
            }
        }));
    _drawing = services.webViewClass.make(std::make_unique<PlainDrawing>());
    connectPage();
    for (QObject *child : children())
        watchChild(child);
}

WebView::~WebView()
{
    forgetSubFrames();
    _hostWebView->setMainFrame(nullptr);
    _hostWebView->setHostWindow({});
    _mainFrame->detach();
    // The page must not tell anything any more while it is taken down with the rest of the view.
    disconnect(page(), nullptr, this, nullptr);
}

std::shared_ptr<HostWebView> WebView::hostWebView() const
{
    return _hostWebView;
}

void WebView::setHostWindow(const std::shared_ptr<HostWindow> &window)
{
    _hostWebView->setHostWindow(window);
}

QUrl WebView::shownAddress() const
{
    return _askedFor.isEmpty() ? url() : _askedFor;
}

QString WebView::shownTitle() const
{
    if (!title().isEmpty() && title() != QLatin1String("about:blank"))
        return title();
    const QString address = Address::displayText(shownAddress());
    return address.isEmpty() ? tr("New Tab") : address;
}

QIcon WebView::shownIcon() const
{
    QIcon own = _askedFor.isEmpty() ? icon() : QIcon();
    if (!own.isNull())
        return own;
    const QIcon seen = _services.siteIcons->iconForHost(shownAddress().host());
    return seen.isNull() ? SymbolIcon::named(QStringLiteral("page")) : seen;
}

bool WebView::isLoading() const
{
    return page()->isLoading();
}

bool WebView::isBlank() const
{
    return url().isEmpty();
}

void WebView::goTo(const QUrl &url)
{
    if (!url.isValid())
        return;
    // A script runs in the page that is there, and the page stays.
    if (url.scheme() != QLatin1String("javascript")) {
        _askedFor = url;
        _askedForHasStarted = false;
    }
    load(url);
    Q_EMIT changed();
}

void WebView::announceDrawing()
{
    _drawing->lockFocus(*_hostWebView);
}

bool WebView::event(QEvent *event)
{
    // The child that shows the page comes late, and another one can take its place.
    if (event->type() == QEvent::ChildAdded)
        watchChild(static_cast<QChildEvent *>(event)->child());
    else if (event->type() == QEvent::UpdateRequest || event->type() == QEvent::Show)
        announceDrawing();
    return QWebEngineView::event(event);
}

bool WebView::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::Paint || event->type() == QEvent::UpdateRequest)
        announceDrawing();
    else if (event->type() == QEvent::Hide || event->type() == QEvent::Show)
        keepKeyboard(static_cast<QWidget *>(watched));
    return QWebEngineView::eventFilter(watched, event);
}

void WebView::contextMenuEvent(QContextMenuEvent *event)
{
    QMenu *menu = createStandardContextMenu();
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menu->popup(event->globalPos());
}

void WebView::connectPage()
{
    auto *webPage = static_cast<WebPage *>(page());
    connect(webPage, &QWebEnginePage::loadingChanged, this, &WebView::loadingChanged);
    connect(webPage, &QWebEnginePage::urlChanged, this, &WebView::urlChanged);
    connect(webPage, &QWebEnginePage::titleChanged, this, &WebView::titleChanged);
    connect(webPage, &WebPage::subFrameFinished, this, &WebView::subFrameFinished);
    connect(webPage, &QWebEnginePage::loadProgress, this, [this](int progress) {
        _progress = progress;
        Q_EMIT changed();
    });
    connect(webPage, &QWebEnginePage::iconChanged, this, [this](const QIcon &icon) {
        _services.siteIcons->add(url(), icon);
        Q_EMIT changed();
    });
    connect(webPage, &QWebEnginePage::newWindowRequested, this, &WebView::newViewWanted);
    connect(webPage, &QWebEnginePage::windowCloseRequested, this, &WebView::closeWanted);
    connect(webPage, &QWebEnginePage::geometryChangeRequested, this, &WebView::geometryWanted);
    connect(webPage, &QWebEnginePage::linkHovered, this, &WebView::linkPointedAt);
    connect(webPage, &QWebEnginePage::fullScreenRequested, this, &WebView::acceptFullScreen);
    connect(webPage, &QWebEnginePage::renderProcessTerminated, this,
            [this](QWebEnginePage::RenderProcessTerminationStatus status) {
                if (status != QWebEnginePage::NormalTerminationStatus)
                    Q_EMIT failed(tr("This page has stopped working. Reload it to go on."));
            });
}

void WebView::watchChild(QObject *child)
{
    if (child->isWidgetType())
        child->installEventFilter(this);
}

// A page from another site comes with another child, and the keyboard would go astray: to the next button of the window
// or, as if by Tab, to the first link of the page.
void WebView::keepKeyboard(QWidget *child)
{
    if (child->isHidden() && child->hasFocus()) {
        _formerChildHadKeyboard = true;
        child->clearFocus();
    } else if (!child->isHidden() && _formerChildHadKeyboard) {
        _formerChildHadKeyboard = false;
        child->setFocus(Qt::OtherFocusReason);
    }
}

void WebView::loadingChanged(const QWebEngineLoadingInfo &info)
{
    if (info.status() == QWebEngineLoadingInfo::LoadStartedStatus) {
        _pageHasFinished = false;
        _askedForHasStarted = true;
        _mainFrame->startProvisionalLoad(UrlConversion::fromQUrl(info.url()));
        Q_EMIT changed();
        return;
    }
    // The end of a load that another one has taken the place of says nothing about that one.
    if (_askedForHasStarted)
        _askedFor.clear();
    const bool wasStopped = info.status() == QWebEngineLoadingInfo::LoadStoppedStatus;
    if (wasStopped)
        _mainFrame->stopProvisionalLoad();
    else
        _mainFrame->commit(UrlConversion::fromQUrl(url()));
    Q_EMIT changed();
    // A server's own page about an error is a page like any other; the engine's page about a failure is none.
    const bool hasFailed = info.status() == QWebEngineLoadingInfo::LoadFailedStatus && info.isErrorPage();
    if (!wasStopped && !hasFailed)
        didFinishLoadForFrame(_mainFrame);
}

// Sent when the page has come, and when it changes its own address.
void WebView::urlChanged(const QUrl &url)
{
    if (_mainFrame->provisionalDataSource())
        forgetSubFrames();
    _mainFrame->commit(UrlConversion::fromQUrl(url));
    _askedFor.clear();
    Q_EMIT changed();
}

void WebView::titleChanged(const QString &title)
{
    if (_pageHasFinished)
        Q_EMIT pageRetitled(url(), title);
    Q_EMIT changed();
}

void WebView::subFrameFinished(const QUrl &url, const QList<int> &path)
{
    const auto frame = subFrameAt(path);
    frame->commit(UrlConversion::fromQUrl(url));
    didFinishLoadForFrame(frame);
}

void WebView::didFinishLoadForFrame(const std::shared_ptr<HostFrame> &frame)
{
    _locationChangeHandler->webViewDidFinishLoadForFrame(*_hostWebView, frame);
}

void WebView::acceptFullScreen(QWebEngineFullScreenRequest request)
{
    request.accept();
    Q_EMIT fullScreenWanted(request.toggleOn());
}

std::shared_ptr<BrowserHostFrame> WebView::subFrameAt(const QList<int> &path)
{
    std::shared_ptr<BrowserHostFrame> &frame = _subFrames[path];
    if (!frame)
        frame = std::make_shared<BrowserHostFrame>(_hostWebView, [this, path](const Url &url) {
            page()->runJavaScript(SubFrameReports::loadingScript(path, UrlConversion::toQUrl(url)),
                                  SubFrameReports::world);
        });
    return frame;
}

void WebView::forgetSubFrames()
{
    for (const auto &frame : std::as_const(_subFrames))
        frame->detach();
    _subFrames.clear();
}
