#pragma once

#include "platform/host/HostApplication.h"
#include "platform/host/HostClasses.h"
#include "platform/host/HostFrame.h"
#include "platform/host/HostMenuBar.h"
#include "platform/host/HostSettings.h"
#include "platform/host/HostWebView.h"
#include "platform/host/HostWindow.h"

#include <QHash>
#include <QList>
#include <QPointer>
#include <QVariantMap>
#include <QWidget>
#include <optional>
#include <vector>

// A host made of plain fields, for tests. Nothing here happens by itself: a test sets what the host would answer, and
// makes happen what a user or a page would.
//
//     FakeHostApplication host;                      // the current host while it lives
//     auto window = host.openWindow(QRectF(100, 100, 800, 600));
//     auto view = window->addTab("http://news.example.com/");
//     window->becomeKey();
//     host.finishLoad(*view, view->frame);           // runs the location hook
//     host.draw(*view);                              // runs the drawing hook

class FakeHostFrame : public HostFrame
{
public:
    std::weak_ptr<HostWebView> owner; // null: the web view has gone
    std::optional<HostDataSource> committed;
    std::optional<HostDataSource> provisional;
    std::vector<Url> loadRequests; // what was asked for, oldest first

    // A committed page at the address; a null address is a page without one.
    void commit(const QString &address);

    std::shared_ptr<HostWebView> webView() const override;
    const HostDataSource *dataSource() const override;
    const HostDataSource *provisionalDataSource() const override;
    void loadRequest(const Url &url) override;
};

class FakeHostWebView : public HostWebView
{
public:
    std::shared_ptr<FakeHostFrame> frame; // the main frame
    std::weak_ptr<HostWindow> window;

    static std::shared_ptr<FakeHostWebView> make();
    // Another frame of the same view.
    static std::shared_ptr<FakeHostFrame> makeSubFrame(const std::shared_ptr<FakeHostWebView> &view);

    std::shared_ptr<HostFrame> mainFrame() const override;
    std::shared_ptr<HostWindow> hostWindow() const override;
};

class FakeHostWindow : public HostWindow
{
public:
    QString kind = QStringLiteral("BrowserWindow");
    QString pageTitle;
    QRectF windowFrame; // not used while there is a widget
    QRectF screenFrame = QRectF(0, 0, 1920, 1080);
    bool visible = true; // not used while there is a widget
    qreal leastWidth = 0;
    std::shared_ptr<FakeHostWebView> frontWebView;

    // What was asked for, oldest first.
    struct FrameRequest
    {
        QRectF frame;
        bool animate;
    };
    std::vector<FrameRequest> frameRequests;
    std::vector<Url> newTabURLs;
    std::vector<Url> currentTabURLs;
    int orderFrontCount = 0;

    explicit FakeHostWindow(const QRectF &frame);
    ~FakeHostWindow() override;

    // Puts a real window of that frame behind this one; shown unless the test hides it.
    QWidget *makeWidget();
    // A new web view in this window, showing a page (none when `address` is null); the current one from now on.
    std::shared_ptr<FakeHostWebView> addTab(const QString &address = QString());

    // Each posts what a host's observer would: the notification of that name about this window.
    void becomeKey();
    void frameDidChange();
    void hide();
    void show();
    // Posts that it closes, then is not visible any more and has no widget.
    void close();

    QString className() const override { return kind; }
    QString title() const override { return pageTitle; }
    QRectF frame() const override;
    void setFrame(const QRectF &frame, bool animate) override;
    QRectF visibleScreenFrame() const override { return screenFrame; }
    bool isVisible() const override;
    void makeKeyAndOrderFront() override { ++orderFrontCount; }
    QWidget *widget() const override { return _widget; }
    std::shared_ptr<HostWebView> currentWebView() const override;
    void openURLInNewTab(const Url &url) override { newTabURLs.push_back(url); }
    void windowShouldGoToURL(const Url &url) override { currentTabURLs.push_back(url); }

private:
    QPointer<QWidget> _widget;
};

class FakeHostMenuBar : public HostMenuBar
{
public:
    QList<QMenu *> menus; // in the order in which they were appended

    void appendMenu(QMenu *menu) override { menus.append(menu); }
};

class FakeHostSettings : public HostSettings
{
public:
    QVariantMap values;

    QVariant objectForKey(const QString &key) const override { return values.value(key); }
    void setObjectForKey(const QVariant &value, const QString &key) override { values.insert(key, value); }
};

// Registers itself as the current host for as long as it lives.
class FakeHostApplication : public HostApplication
{
public:
    std::shared_ptr<FakeHostWindow> key;
    std::vector<std::shared_ptr<FakeHostWindow>> windows;
    FakeHostMenuBar menuBar;
    FakeHostSettings hostSettings;
    HostClasses hostClasses; // holds "LocationChangeHandler" and "WebView"
    HostClasses::LocationChangeHandlerClass locationChangeHandlerClass;
    HostClasses::WebViewClass webViewClass;
    QString bookmarkPath = QStringLiteral("~/Library/Safari/Bookmarks.plist");
    QString historyPath = QStringLiteral("~/Library/Safari/History.plist");
    QHash<QString, QImage> images;
    QHash<QString, QImage> siteIcons;

    // What the host's own handling was asked to do, beneath the hooks; with `order`, one letter a call: "L" location,
    // "D" drawing.
    int baseFinishLoadCount = 0;
    int baseDrawCount = 0;
    QString order;

    FakeHostApplication();
    ~FakeHostApplication() override;

    // A browser window, kept open by this application.
    std::shared_ptr<FakeHostWindow> openWindow(const QRectF &frame = QRectF(100, 100, 800, 600));

    // A new instance of each class, hooks included.
    std::unique_ptr<HostLocationChangeHandler> makeLocationChangeHandler();
    std::unique_ptr<HostWebViewDrawing> makeWebViewDrawing();
    // What the host does when a frame has finished loading, and when a view is about to draw.
    void finishLoad(HostWebView &view, const std::shared_ptr<HostFrame> &frame);
    void draw(HostWebView &view);

    std::shared_ptr<HostWindow> keyWindow() const override { return key; }
    HostClasses &classes() override { return hostClasses; }
    HostMenuBar &mainMenu() override { return menuBar; }
    HostSettings &settings() override { return hostSettings; }
    QString bookmarkFilePath() const override { return bookmarkPath; }
    QString historyFilePath() const override { return historyPath; }
    QImage imageNamed(const QString &name, const QSize &size) const override;
    QImage siteIconForAddress(const QString &address, const QSize &size) const override;
};
