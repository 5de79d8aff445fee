#include "browser/Browser.h"

#include "browser/AddressField.h"
#include "browser/BrowserHostSettings.h"
#include "browser/BrowserServices.h"
#include "browser/BrowserWindow.h"
#include "browser/HistoryFile.h"
#include "browser/SiteIcons.h"
#include "browser/StartPage.h"
#include "browser/SymbolIcon.h"
#include "browser/TabBar.h"
#include "browser/WebView.h"
#include "platform/files/UserDefaults.h"
#include "platform/host/HostApplication.h"
#include "platform/host/HostFrame.h"
#include "platform/host/HostMenuBar.h"
#include "platform/host/HostObserver.h"
#include "platform/host/HostSettings.h"
#include "platform/host/HostWebView.h"
#include "platform/host/HostWindow.h"
#include "tests/support/TemporaryHome.h"

#include <QApplication>
#include <QDialog>
#include <QEventLoop>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTest>
#include <QTimer>
#include <QToolBar>
#include <QToolButton>
#include <QWebEnginePage>

// Waits as QTRY_VERIFY does, but lets the event loop sleep on its own: the web engine hands its work from thread to
// thread in hundreds of small steps, and QTest looks at the events only every ten milliseconds.
static bool becomesTrue(const std::function<bool()> &condition)
{
    QEventLoop loop;
    QTimer poll;
    QTimer::singleShot(60000, &loop, &QEventLoop::quit); // on a busy machine a renderer may take that long to start
    QObject::connect(&poll, &QTimer::timeout, &loop, [&] {
        if (condition())
            loop.quit();
    });
    poll.start(5);
    if (!condition())
        loop.exec();
    return condition();
}

#define TRY_VERIFY(expression) QVERIFY(becomesTrue([&] { return static_cast<bool>(expression); }))
#define TRY_COMPARE(actual, expected)                                                                                  \
    do {                                                                                                               \
        becomesTrue([&] { return (actual) == (expected); });                                                           \
        QCOMPARE(actual, expected);                                                                                    \
    } while (false)

// Answers every address with a small page; those below /slow/ only when `release` is called.
class Pages : public QTcpServer
{
    Q_OBJECT

public:
    Pages()
    {
        connect(this, &QTcpServer::newConnection, this, [this] {
            QTcpSocket *socket = nextPendingConnection();
            connect(socket, &QTcpSocket::readyRead, this, [this, socket] { answer(socket); });
            connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
        });
        listen(QHostAddress::LocalHost);
    }
    QUrl url(const QString &path, const QString &host = QStringLiteral("www.site.localhost")) const
    {
        return QUrl(QStringLiteral("http://%1:%2/%3").arg(host).arg(serverPort()).arg(path));
    }
    void release()
    {
        for (const auto &[socket, path] : std::exchange(_held, {})) {
            if (socket)
                send(socket, path);
        }
    }

private:
    void answer(QTcpSocket *socket)
    {
        const QString path = QString::fromLatin1(socket->readAll().split(' ').value(1));
        if (path.startsWith(QLatin1String("/slow/")))
            _held.append({socket, path});
        else
            send(socket, path);
    }
    // A link over the upper half and a button over the lower, wherever one clicks.
    static constexpr char linksPage[] =
        "<title>links</title><style>* { margin: 0 } a, button { display: block; height: 100px; width: 300px }</style>"
        "<a href='/target'>link</a><a href='/target' target='_blank'>new</a><a href='/file'>file</a>"
        "<button onclick=\"window.open('/target', 'small', 'width=300,height=150')\">open</button>"
        "<script>window.open('/unwanted')</script>";

    static void send(QTcpSocket *socket, const QString &path)
    {
        QByteArray status = "200 OK";
        QByteArray body = "<title>" + path.mid(1).toUtf8() + "</title><p>page</p>";
        if (path.startsWith(QLatin1String("/missing")))
            status = "404 Not Found";
        if (path.startsWith(QLatin1String("/frames")))
            body += "<iframe src='/inner'></iframe>";
        if (path.startsWith(QLatin1String("/links")))
            body = linksPage;
        if (path.startsWith(QLatin1String("/file")))
            status += "\r\nContent-Disposition: attachment; filename=\"note.txt\"";
        socket->write("HTTP/1.1 " + status + "\r\nContent-Type: text/html\r\nConnection: close\r\nContent-Length: " +
                      QByteArray::number(body.size()) + "\r\n\r\n" + body);
        socket->disconnectFromHost();
    }

    QList<std::pair<QPointer<QTcpSocket>, QString>> _held;
};

// What a plug-in is told, in the order in which it is told.
class Witness : public HostObserver
{
public:
    QStringList events;

    void windowDidBecomeKey(const std::shared_ptr<HostWindow> &window) override { note("key", window); }
    void windowWillClose(const std::shared_ptr<HostWindow> &window) override { note("close", window); }
    void windowFrameDidChange(const std::shared_ptr<HostWindow> &window) override { note("frame", window); }
    void applicationWillTerminate() override { events << "terminate"; }

private:
    void note(const QString &event, const std::shared_ptr<HostWindow> &window)
    {
        events << event + (window->widget() && window->className() == "BrowserWindow" ? "" : "?");
    }
};

// What the replaced classes are called with.
struct Calls
{
    struct Finished
    {
        bool isMainFrame;
        QString address;
        int historyCount; // at that moment
    };
    QList<Finished> finished;
    QList<const HostWebView *> drawn;
};

class SpyingHandler : public HostLocationChangeHandler
{
public:
    SpyingHandler(std::unique_ptr<HostLocationChangeHandler> base, Calls &calls, HistoryFile &history)
        : _base(std::move(base))
        , _calls(calls)
        , _history(history)
    {}
    void webViewDidFinishLoadForFrame(HostWebView &view, const std::shared_ptr<HostFrame> &frame) override
    {
        _base->webViewDidFinishLoadForFrame(view, frame);
        _calls.finished.append(
            {frame == view.mainFrame(), frame->dataSource()->requestUrl.absoluteString(), _history.count()});
    }

private:
    std::unique_ptr<HostLocationChangeHandler> _base;
    Calls &_calls;
    HistoryFile &_history;
};

class SpyingDrawing : public HostWebViewDrawing
{
public:
    SpyingDrawing(std::unique_ptr<HostWebViewDrawing> base, Calls &calls) : _base(std::move(base)), _calls(calls) {}
    void lockFocus(HostWebView &view) override
    {
        _calls.drawn.append(&view);
        _base->lockFocus(view);
    }

private:
    std::unique_ptr<HostWebViewDrawing> _base;
    Calls &_calls;
};

// The browser with its web engine, as the plug-in sees it.
class BrowserTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void cleanupTestCase();
    void init();
    void cleanup();
    void startPageHasNoHost();
    void finishedPage();
    void provisionalAndCommitted();
    void failedPageIsNotFinished();
    void serversErrorPageIsFinished();
    void mainFrameKeepsItsIdentity();
    void subFrames();
    void drawing();
    void tabSwitchIsDrawn();
    void loadRequest();
    void scriptRunsInThePageInFront();
    void scriptSparesThePageThatComesNext();
    void newTabs();
    void withoutTabs();
    void closingTabs();
    void movingTabs();
    void addressField();
    void keyWindow();
    void windowEvents();
    void frameOfAWindow();
    void frameThatIsTooSmall_data();
    void frameThatIsTooSmall();
    void objectsThatOutliveTheirWindow();
    void history();
    void menus();
    void images();
    void siteIcons();
    void everyControlHasAName();
    void links_data();
    void links();
    void popUpWindow();
    void unwantedWindow();
    void download();

private:
    void click(BrowserWindow *window, int y, Qt::MouseButton button, Qt::KeyboardModifiers modifiers = {}) const;
    BrowserWindow *open(const QString &path);
    static bool hasLoaded(const WebView *view, const QUrl &url)
    {
        return view && view->url() == url && !view->isLoading();
    }
    std::unique_ptr<TemporaryHome> _home;
    std::unique_ptr<Pages> _pages;
    std::unique_ptr<Browser> _browser;
    std::unique_ptr<QMenu> _menu;
    Witness _witness;
    Calls _calls;
};

void BrowserTest::initTestCase()
{
    QApplication::setQuitOnLastWindowClosed(false);
    _home = std::make_unique<TemporaryHome>();
    UserDefaults::standardUserDefaults().reset();
    _pages = std::make_unique<Pages>();
    _browser = std::make_unique<Browser>();
    _browser->setObserver(&_witness);
    HostClasses &classes = _browser->host().classes();
    classes.classNamed<HostLocationChangeHandler>("LocationChangeHandler")
        ->replace([this](std::unique_ptr<HostLocationChangeHandler> base) {
            return std::make_unique<SpyingHandler>(std::move(base), _calls, *_browser->services().history);
        });
    classes.classNamed<HostWebViewDrawing>("WebView")->replace([this](std::unique_ptr<HostWebViewDrawing> base) {
        return std::make_unique<SpyingDrawing>(std::move(base), _calls);
    });
    _menu = std::make_unique<QMenu>("Drawer");
    _browser->host().mainMenu().appendMenu(_menu.get());
}

void BrowserTest::cleanupTestCase()
{
    _witness.events.clear();
    QVERIFY(_browser->openAddresses({}));
    QCOMPARE(_browser->windows().size(), 1);
    _browser->quitAtOnce();
    QVERIFY(!_browser->openAddresses({}));
    QVERIFY(_browser->windows().isEmpty());
    _witness.events.clear();
    _browser.reset();
    QCOMPARE(_witness.events, QStringList("terminate"));
    _home.reset();
}

void BrowserTest::init()
{
    _calls = {};
    _witness.events.clear();
    _browser->services().history->clear();
}

void BrowserTest::cleanup()
{
    for (BrowserWindow *window : _browser->windows())
        window->close();
    QVERIFY(_browser->windows().isEmpty());
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

BrowserWindow *BrowserTest::open(const QString &path)
{
    BrowserWindow *window = _browser->newWindow(_pages->url(path));
    window->resize(900, 700);
    if (!becomesTrue([&] { return hasLoaded(window->currentWebView(), _pages->url(path)); }))
        qWarning() << "Could not load" << path;
    return window;
}

void BrowserTest::startPageHasNoHost()
{
    BrowserWindow *window = _browser->newWindow();
    const auto frame = window->currentWebView()->hostWebView()->mainFrame();
    TRY_VERIFY(frame->dataSource());
    QCOMPARE(frame->dataSource()->requestUrl.host(), QString());
    TRY_COMPARE(_calls.finished.size(), 1);
    QCOMPARE(window->addressField()->text(), QString());
    QCOMPARE(_browser->services().history->count(), 0);
}

// The plug-in's part comes after the browser's own: the page is in the history by then.
void BrowserTest::finishedPage()
{
    open("a");
    TRY_COMPARE(_calls.finished.size(), 1);
    QVERIFY(_calls.finished.first().isMainFrame);
    QCOMPARE(_calls.finished.first().address, _pages->url("a").toString());
    QCOMPARE(_calls.finished.first().historyCount, 1);
}

void BrowserTest::provisionalAndCommitted()
{
    BrowserWindow *window = open("a");
    const auto frame = window->currentWebView()->hostWebView()->mainFrame();
    window->goTo(_pages->url("slow/b"));
    TRY_VERIFY(frame->provisionalDataSource());
    QCOMPARE(frame->provisionalDataSource()->requestUrl.absoluteString(), _pages->url("slow/b").toString());
    QCOMPARE(frame->dataSource()->requestUrl.absoluteString(), _pages->url("a").toString());
    QCOMPARE(window->addressField()->text(), _pages->url("slow/b").toString());
    QCOMPARE(_calls.finished.size(), 1);
    TRY_VERIFY((_pages->release(), _calls.finished.size() == 2));
    QVERIFY(!frame->provisionalDataSource());
    QCOMPARE(frame->dataSource()->requestUrl.absoluteString(), _pages->url("slow/b").toString());
}

void BrowserTest::failedPageIsNotFinished()
{
    BrowserWindow *window = open("a");
    QTcpServer closed;
    QVERIFY(closed.listen(QHostAddress::LocalHost));
    const QUrl url(QStringLiteral("http://localhost:%1/").arg(closed.serverPort()));
    closed.close();
    window->goTo(url);
    TRY_VERIFY(hasLoaded(window->currentWebView(), url));
    QCOMPARE(_calls.finished.size(), 1);
    QCOMPARE(_browser->services().history->count(), 1);
}

void BrowserTest::serversErrorPageIsFinished()
{
    open("missing");
    TRY_COMPARE(_calls.finished.size(), 1);
}

void BrowserTest::mainFrameKeepsItsIdentity()
{
    BrowserWindow *window = open("a");
    WebView *view = window->currentWebView();
    const auto frame = view->hostWebView()->mainFrame();
    view->goTo(_pages->url("b", "other.localhost"));
    TRY_COMPARE(_calls.finished.size(), 2);
    QCOMPARE(view->hostWebView()->mainFrame(), frame);
    QCOMPARE(frame->webView(), view->hostWebView());
    QCOMPARE(frame->dataSource()->requestUrl.host(), QString("other.localhost"));
}

void BrowserTest::subFrames()
{
    open("frames");
    TRY_COMPARE(_calls.finished.size(), 2);
    QCOMPARE(_calls.finished.at(0).isMainFrame, false);
    QCOMPARE(_calls.finished.at(0).address, _pages->url("inner").toString());
    QCOMPARE(_calls.finished.at(1).isMainFrame, true);
    QCOMPARE(_browser->services().history->count(), 1);
}

void BrowserTest::drawing()
{
    BrowserWindow *window = open("a");
    const HostWebView *view = window->currentWebView()->hostWebView().get();
    TRY_VERIFY(_calls.drawn.contains(view));
    // Every drawing, those that no page load has led to as well; with the child of the moment.
    window->goTo(_pages->url("b", "other.localhost"));
    TRY_COMPARE(_calls.finished.size(), 2);
    _calls.drawn.clear();
    window->resize(window->size() + QSize(40, 30));
    TRY_VERIFY(_calls.drawn.contains(view));
}

void BrowserTest::tabSwitchIsDrawn()
{
    BrowserWindow *window = open("a");
    WebView *other = window->openTab(_pages->url("b"), BrowserWindow::InBackground);
    TRY_COMPARE(_calls.finished.size(), 2);
    QVERIFY(!_calls.drawn.contains(other->hostWebView().get()));
    QVERIFY(window->hostWindow()->currentWebView() != other->hostWebView());
    _calls.drawn.clear();
    window->setCurrentTab(1);
    QVERIFY(_calls.drawn.contains(other->hostWebView().get()));
    QCOMPARE(window->hostWindow()->currentWebView(), other->hostWebView());
    QCOMPARE(_calls.finished.size(), 2);
}

void BrowserTest::loadRequest()
{
    BrowserWindow *window = open("a");
    const auto host = window->hostWindow();
    host->currentWebView()->mainFrame()->loadRequest(Url::URLWithString(_pages->url("b").toString()));
    TRY_VERIFY(hasLoaded(window->currentWebView(), _pages->url("b")));
    host->windowShouldGoToURL(Url::URLWithString(_pages->url("c").toString()));
    TRY_VERIFY(hasLoaded(window->currentWebView(), _pages->url("c")));
    host->windowShouldGoToURL(Url());
    QCOMPARE(window->tabCount(), 1);
}

// A link that holds a script, opened from a list.
void BrowserTest::scriptRunsInThePageInFront()
{
    BrowserWindow *window = open("a");
    const auto frame = window->hostWindow()->currentWebView()->mainFrame();
    const int visits = _browser->services().history->count();
    frame->loadRequest(Url::URLWithString("javascript:void(document.title='a,%20run')"));
    TRY_COMPARE(window->windowTitle(), QString("a, run"));
    TRY_VERIFY(hasLoaded(window->currentWebView(), _pages->url("a")));
    QCOMPARE(frame->dataSource()->requestUrl.absoluteString(), _pages->url("a").toString());
    QVERIFY(!frame->provisionalDataSource());
    QCOMPARE(window->currentWebView()->shownAddress(), _pages->url("a"));
    window->goTo(_pages->url("b"));
    TRY_VERIFY(hasLoaded(window->currentWebView(), _pages->url("b")));
    TRY_COMPARE(window->windowTitle(), QString("b"));
    TRY_COMPARE(_browser->services().history->count(), visits + 1);
}

void BrowserTest::scriptSparesThePageThatComesNext()
{
    BrowserWindow *window = open("a");
    WebView *view = window->currentWebView();
    const auto frame = window->hostWindow()->currentWebView()->mainFrame();
    window->goTo(_pages->url("slow/b"));
    TRY_VERIFY(frame->provisionalDataSource());
    frame->loadRequest(Url::URLWithString("javascript:void(document.title='a,%20run')"));
    TRY_COMPARE(view->title(), QString("a, run"));
    _pages->release();
    TRY_VERIFY(hasLoaded(view, _pages->url("slow/b")));
    TRY_COMPARE(view->title(), QString("slow/b"));
    QCOMPARE(view->shownAddress(), _pages->url("slow/b"));
}

void BrowserTest::newTabs()
{
    BrowserWindow *window = open("a");
    window->hostWindow()->openURLInNewTab(Url::URLWithString(_pages->url("b").toString()));
    QCOMPARE(window->tabCount(), 2);
    QCOMPARE(window->currentTab(), 1);
    TRY_VERIFY(hasLoaded(window->currentWebView(), _pages->url("b")));
    TRY_COMPARE(window->hostWindow()->title(), QString("b"));
    QCOMPARE(window->currentWebView()->hostWebView()->hostWindow(), window->hostWindow());
    window->newTab();
    QCOMPARE(window->currentTab(), 2);
    TRY_COMPARE(window->currentWebView()->url(), StartPage::address());
}

void BrowserTest::withoutTabs()
{
    BrowserWindow *window = open("a");
    QCOMPARE(_browser->host().settings().objectForKey("TabbedBrowsing"), QVariant(true));
    _browser->host().settings().setObjectForKey(false, "TabbedBrowsing");
    window->openTab(_pages->url("b"));
    QCOMPARE(window->tabCount(), 1);
    QCOMPARE(_browser->windows().size(), 2);
    _browser->host().settings().setObjectForKey(true, "TabbedBrowsing");
}

void BrowserTest::closingTabs()
{
    BrowserWindow *window = open("a");
    WebView *second = window->openTab(_pages->url("b"));
    const auto hostView = second->hostWebView();
    const auto frame = hostView->mainFrame();
    TRY_VERIFY(frame->dataSource());
    window->closeTab(1);
    QVERIFY(!hostView->hostWindow());
    QCOMPARE(window->tabCount(), 1);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QVERIFY(!hostView->mainFrame());
    QVERIFY(!frame->dataSource());
    QVERIFY(!frame->webView());
    frame->loadRequest(Url::URLWithString("http://a.example/"));
    window->closeTab(0);
    QVERIFY(_browser->windows().isEmpty());
}

void BrowserTest::movingTabs()
{
    BrowserWindow *window = open("a");
    const WebView *first = window->currentWebView();
    const WebView *second = window->openTab(_pages->url("b"), BrowserWindow::InBackground);
    window->tabBar()->moveTab(0, 1);
    QCOMPARE(window->webViewAt(0), second);
    QCOMPARE(window->webViewAt(1), first);
    QCOMPARE(window->currentWebView(), first);
    TRY_COMPARE(window->tabBar()->tabText(0), QString("b"));
    QCOMPARE(window->tabBar()->tabText(1), QString("a"));
}

void BrowserTest::addressField()
{
    BrowserWindow *window = open("a");
    QCOMPARE(window->addressField()->text(), _pages->url("a").toString());
    window->focusAddressField();
    QCOMPARE(window->addressField()->selectedText(), _pages->url("a").toString());
    QTest::keyClicks(window->addressField(), QStringLiteral("localhost:%1/b").arg(_pages->serverPort()));
    // What is being typed is not taken away by the page.
    window->currentWebView()->page()->runJavaScript("document.title = 'other'");
    TRY_COMPARE(window->windowTitle(), QString("other"));
    QCOMPARE(window->addressField()->text(), QStringLiteral("localhost:%1/b").arg(_pages->serverPort()));
    QTest::keyClick(window->addressField(), Qt::Key_Return);
    TRY_VERIFY(hasLoaded(window->currentWebView(), _pages->url("b", "localhost")));
    QCOMPARE(window->addressField()->text(), _pages->url("b", "localhost").toString());
    window->focusAddressField();
    QTest::keyClicks(window->addressField(), "two words");
    QTest::keyClick(window->addressField(), Qt::Key_Return);
    QCOMPARE(window->addressField()->text(), QString("two words"));
    QTest::keyClick(window->addressField(), Qt::Key_Escape);
    QCOMPARE(window->addressField()->text(), _pages->url("b", "localhost").toString());
}

void BrowserTest::keyWindow()
{
    QVERIFY(!_browser->host().keyWindow());
    BrowserWindow *one = open("a");
    BrowserWindow *other = open("b");
    TRY_COMPARE(_browser->host().keyWindow(), other->hostWindow());
    one->activateWindow();
    TRY_COMPARE(_browser->host().keyWindow(), one->hostWindow());

    QWidget tool(one, Qt::Tool);
    tool.show();
    tool.activateWindow();
    TRY_COMPARE(QApplication::activeWindow(), &tool);
    QCOMPARE(_browser->host().keyWindow(), one->hostWindow());
    QDialog dialog(&tool);
    dialog.show();
    dialog.activateWindow();
    TRY_COMPARE(QApplication::activeWindow(), &dialog);
    QCOMPARE(_browser->host().keyWindow(), one->hostWindow());

    QWidget stranger;
    stranger.show();
    stranger.activateWindow();
    TRY_COMPARE(QApplication::activeWindow(), &stranger);
    QVERIFY(!_browser->host().keyWindow());
    QCOMPARE(_browser->lastKeyWindow(), one);
}

void BrowserTest::windowEvents()
{
    BrowserWindow *window = open("a");
    TRY_VERIFY(_witness.events.contains("key"));
    QVERIFY(_witness.events.contains("frame"));
    _witness.events.clear();
    window->move(window->pos() + QPoint(10, 0));
    TRY_VERIFY(_witness.events.contains("frame"));
    _witness.events.clear();
    window->showMinimized();
    TRY_VERIFY(_witness.events.contains("frame"));
    QVERIFY(!window->hostWindow()->isVisible());
    window->hostWindow()->makeKeyAndOrderFront();
    TRY_VERIFY(window->hostWindow()->isVisible());
    QCOMPARE(_witness.events.count("close"), 0);
    const auto host = window->hostWindow();
    window->close();
    QCOMPARE(_witness.events.count("close"), 1);
    QCOMPARE(_witness.events.filter("?"), QStringList());
}

void BrowserTest::frameOfAWindow()
{
    BrowserWindow *window = open("a");
    const auto host = window->hostWindow();
    QCOMPARE(host->frame(), QRectF(window->frameGeometry()));
    host->setFrame(QRectF(20, 30, 500, 400), false);
    TRY_COMPARE(window->frameGeometry(), QRect(20, 30, 500, 400));
    // Between two pixels: whoever has set it finds it again.
    const QRectF odd(20.5, 30, 480.25, 400);
    host->setFrame(odd, false);
    TRY_COMPARE(window->frameGeometry(), odd.toRect());
    QCOMPARE(host->frame(), odd);
    window->move(60, 60);
    TRY_COMPARE(host->frame().topLeft(), QPointF(60, 60));
    // Smoothly: the frame that it leads to counts at once.
    const QRectF target(100, 100, 600, 300);
    host->setFrame(target, true);
    QCOMPARE(host->frame(), target);
    TRY_COMPARE(window->frameGeometry(), target.toRect());
    QCOMPARE(host->frame(), target);
    QVERIFY(host->visibleScreenFrame().isValid());
}

void BrowserTest::frameThatIsTooSmall_data()
{
    QTest::addColumn<bool>("animate");
    QTest::newRow("at once") << false;
    QTest::newRow("smoothly") << true;
}

void BrowserTest::frameThatIsTooSmall()
{
    QFETCH(bool, animate);
    BrowserWindow *window = open("a");
    window->setMinimumSize(450, 300);
    const auto host = window->hostWindow();
    host->setFrame(QRectF(20.5, 30, 100, 500), animate);
    const int borders = window->frameGeometry().width() - window->width();
    const QRectF frame(20.5, 30, 450 + borders, 500);
    QCOMPARE(host->frame(), frame);
    TRY_COMPARE(window->frameGeometry(), frame.toRect());
    QCOMPARE(host->frame(), frame);
}

void BrowserTest::objectsThatOutliveTheirWindow()
{
    BrowserWindow *window = open("a");
    const auto host = window->hostWindow();
    const auto view = host->currentWebView();
    const auto frame = view->mainFrame();
    window->close();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QVERIFY(!host->widget());
    QVERIFY(!host->currentWebView());
    QVERIFY(!host->isVisible());
    QVERIFY(host->title().isNull());
    QCOMPARE(host->className(), QString("BrowserWindow"));
    host->setFrame(QRectF(0, 0, 100, 100), true);
    host->makeKeyAndOrderFront();
    host->openURLInNewTab(Url::URLWithString("http://a.example/"));
    QVERIFY(!view->mainFrame());
    QVERIFY(!view->hostWindow());
    QVERIFY(!frame->webView());
    QVERIFY(!frame->dataSource());
    QVERIFY(!frame->provisionalDataSource());
}

void BrowserTest::history()
{
    BrowserWindow *window = open("a");
    window->goTo(_pages->url("b"));
    TRY_COMPARE(_calls.finished.size(), 2);
    window->goTo(_pages->url("a"));
    TRY_COMPARE(_calls.finished.size(), 3);
    HistoryFile &file = *_browser->services().history;
    TRY_COMPARE(file.latest(1).first().title, QString("a"));
    QCOMPARE(file.count(), 2);
    QCOMPARE(file.latest(1).first().address, _pages->url("a").toString());
    QCOMPARE(file.latest(1).first().visitCount, 2);
    window->currentWebView()->page()->runJavaScript("document.title = 'later'");
    TRY_COMPARE(file.latest(1).first().title, QString("later"));
    QCOMPARE(_browser->host().historyFilePath(), _home->path("Library/Safari/History.plist"));
    QCOMPARE(_browser->host().bookmarkFilePath(), _home->path("Library/Safari/Bookmarks.plist"));
    QVERIFY(QFile::exists(_browser->host().bookmarkFilePath()));
}

void BrowserTest::menus()
{
    const BrowserWindow *window = open("a");
    const QList<QAction *> menus = window->menuBar()->actions();
    QCOMPARE(menus.last()->menu(), _menu.get());
    // Shortcuts that are the plug-in's, and one that two commands have, which would work for neither.
    QStringList taken{"Ctrl+0",       "Ctrl+Shift+O", "Ctrl+Shift+E", "Ctrl+Shift+J", "Ctrl+Shift+K", "Ctrl+Shift+L",
                      "Ctrl+Shift+*", "Ctrl+Shift+-", "Ctrl+Shift++", "Ctrl++",       "Ctrl+*"};
    for (const QAction *menu : menus) {
        for (const QAction *action : menu->menu()->actions()) {
            QVERIFY2(action->isSeparator() || !action->text().isEmpty(), qPrintable(menu->text()));
            for (const QKeySequence &shortcut : action->shortcuts()) {
                QVERIFY2(!taken.contains(shortcut.toString()), qPrintable(action->text()));
                taken.append(shortcut.toString());
            }
        }
    }
}

void BrowserTest::images()
{
    const QImage image = _browser->host().imageNamed("BookmarkPreferences", QSize(24, 24));
    QCOMPARE(image.size(), QSize(24, 24));
    const QImage natural = _browser->host().imageNamed("BookmarkPreferences", QSize());
    QCOMPARE(natural.deviceIndependentSize(), QSizeF(32, 32));
    QVERIFY(_browser->host().imageNamed("Nothing", QSize(24, 24)).isNull());
    QVERIFY(_browser->host().imageNamed("Nothing", QSize()).isNull());
}

// A site that was never seen has a drawing, in the colour of the text that it stands beside.
void BrowserTest::siteIcons()
{
    const HostApplication &host = _browser->host();
    const auto neutral = [&](int size) { return host.siteIconForAddress("http://never.example/", QSize(size, size)); };
    const QPalette palette = QApplication::palette();
    for (const QColor &color : {QColor(Qt::black), QColor(Qt::white)}) {
        QPalette other = palette;
        other.setColor(QPalette::Text, color);
        QApplication::setPalette(other);
        for (const int size : {16, 32}) {
            QCOMPARE(neutral(size).size(), QSize(size, size));
            QCOMPARE(neutral(size), SymbolIcon::image("site", QSize(size, size)));
            QCOMPARE(host.siteIconForAddress("", QSize(size, size)), neutral(size));
        }
    }
    QApplication::setPalette(palette);

    QPixmap own(16, 16);
    own.fill(Qt::red);
    _browser->services().siteIcons->add(QUrl("http://seen.example/"), QIcon(own));
    const QImage seen = host.siteIconForAddress("http://seen.example/page", QSize(16, 16));
    QCOMPARE(seen.pixelColor(8, 8), QColor(Qt::red));
    QVERIFY(seen != neutral(16));
}

void BrowserTest::everyControlHasAName()
{
    BrowserWindow *window = open("a");
    window->showFindBar();
    QWidgetList controls;
    for (QAbstractButton *button : window->findChildren<QAbstractButton *>())
        controls.append(button);
    for (QLineEdit *field : window->findChildren<QLineEdit *>())
        controls.append(field);
    int seen = 0;
    for (const QWidget *control : std::as_const(controls)) {
        const bool isScrollButton = control->parent() == window->tabBar() && control->objectName().startsWith("Scroll");
        const bool isClearButton = qobject_cast<QLineEdit *>(control->parent()) && control->objectName().isEmpty();
        const bool isMenuExtension = control->objectName().startsWith("qt_");
        if (isScrollButton || isClearButton || isMenuExtension)
            continue; // the toolkit's own
        const auto *button = qobject_cast<const QAbstractButton *>(control);
        const bool hasName = !control->accessibleName().isEmpty() || (button && !button->text().isEmpty());
        QVERIFY2(hasName, qPrintable(control->objectName()));
        QVERIFY2(!control->toolTip().isEmpty(), qPrintable(control->objectName()));
        QVERIFY2(!control->objectName().isEmpty(), qPrintable(control->accessibleName()));
        ++seen;
    }
    QVERIFY(seen >= 10);
}

void BrowserTest::click(BrowserWindow *window, int y, Qt::MouseButton button, Qt::KeyboardModifiers modifiers) const
{
    QWidget *page = window->currentWebView()->focusProxy();
    QVERIFY(page);
    QTest::mouseClick(page, button, modifiers, QPoint(30, y));
}

void BrowserTest::links_data()
{
    QTest::addColumn<int>("y");
    QTest::addColumn<Qt::MouseButton>("button");
    QTest::addColumn<Qt::KeyboardModifiers>("modifiers");
    QTest::addColumn<int>("tabs");
    QTest::addColumn<int>("tabInFront");

    const auto none = Qt::KeyboardModifiers();
    QTest::newRow("click") << 50 << Qt::LeftButton << none << 1 << 0;
    QTest::newRow("middle click") << 50 << Qt::MiddleButton << none << 2 << 0;
    QTest::newRow("click with Ctrl") << 50 << Qt::LeftButton << Qt::KeyboardModifiers(Qt::ControlModifier) << 2 << 0;
    QTest::newRow("link to a new tab") << 150 << Qt::LeftButton << none << 2 << 1;
}

void BrowserTest::links()
{
    QFETCH(int, y);
    QFETCH(Qt::MouseButton, button);
    QFETCH(Qt::KeyboardModifiers, modifiers);
    QFETCH(int, tabs);
    QFETCH(int, tabInFront);
    BrowserWindow *window = open("links");
    TRY_VERIFY(_calls.drawn.size() > 1);
    click(window, y, button, modifiers);
    TRY_VERIFY(hasLoaded(window->webViewAt(tabs - 1), _pages->url("target")));
    QCOMPARE(window->tabCount(), tabs);
    QCOMPARE(window->currentTab(), tabInFront);
    QCOMPARE(window->webViewAt(tabs - 1)->hostWebView()->hostWindow(), window->hostWindow());
}

void BrowserTest::popUpWindow()
{
    BrowserWindow *window = open("links");
    TRY_VERIFY(_calls.drawn.size() > 1);
    click(window, 350, Qt::LeftButton);
    TRY_COMPARE(_browser->windows().size(), 2);
    BrowserWindow *popUp = _browser->windows().last();
    QCOMPARE(popUp->kind(), BrowserWindow::PopUpWindow);
    TRY_VERIFY(popUp->isVisible());
    QCOMPARE(popUp->hostWindow()->className(), QString("BrowserWindow"));
    TRY_COMPARE(popUp->size(), QSize(300, 150));
    QVERIFY(popUp->hostWindow()->frame().height() < 200);
    QVERIFY(!popUp->toolBar()->isVisible());
    TRY_VERIFY(hasLoaded(popUp->currentWebView(), _pages->url("target")));
    // The page that has opened it may close it.
    popUp->currentWebView()->page()->runJavaScript("window.close()");
    TRY_COMPARE(_browser->windows().size(), 1);
}

void BrowserTest::unwantedWindow()
{
    BrowserWindow *window = open("links");
    const auto *remark = window->findChild<QLabel *>("hoverLabel");
    TRY_VERIFY(remark->text().startsWith("Blocked"));
    QCOMPARE(_browser->windows().size(), 1);
    QCOMPARE(window->tabCount(), 1);
}

void BrowserTest::download()
{
    _home->write("Downloads/note.txt", "mine");
    BrowserWindow *window = open("links");
    TRY_VERIFY(_calls.drawn.size() > 1);
    click(window, 250, Qt::LeftButton);
    TRY_VERIFY(_home->read("Downloads/note (2).txt").contains("page"));
    QCOMPARE(_home->read("Downloads/note.txt"), QByteArray("mine"));
    QVERIFY(window->findChild<QWidget *>("downloadBar")->isVisible());
    TRY_VERIFY(window->findChild<QLabel *>("downloadState")->text().startsWith("Finished"));
    QCOMPARE(window->currentWebView()->url(), _pages->url("links"));
    TRY_COMPARE(window->addressField()->text(), _pages->url("links").toString());
    window->findChild<QToolButton *>("downloadButton")->click();
    TRY_VERIFY(!window->findChild<QWidget *>("downloadBar")->isVisible());
}

int main(int argc, char **argv)
{
    // Or a click that comes before the page has been drawn is thrown away.
    qputenv("QTWEBENGINE_CHROMIUM_FLAGS", "--allow-pre-commit-input");
    Browser::prepareProcess();
    QApplication application(argc, argv);
    BrowserTest test;
    return QTest::qExec(&test, argc, argv);
}
#include "BrowserTest.moc"
