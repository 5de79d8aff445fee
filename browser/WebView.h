#pragma once

#include <QMap>
#include <QPointer>
#include <QWebEngineView>
#include <memory>

struct BrowserServices;
class BrowserHostFrame;
class BrowserHostWebView;
class HostFrame;
class HostLocationChangeHandler;
class HostWebView;
class HostWebViewDrawing;
class HostWindow;
class QWebEngineFullScreenRequest;
class QWebEngineLoadingInfo;
class QWebEngineNewWindowRequest;
class Url;

// What a tab shows: a page, and what the plug-in knows of it. Tells the plug-in of everything that finishes loading
// and of every drawing.
class WebView : public QWebEngineView
{
    Q_OBJECT

public:
    explicit WebView(BrowserServices &services, QWidget *parent = nullptr);
    ~WebView() override;

    std::shared_ptr<HostWebView> hostWebView() const;
    // The window that the view lies in; none takes it out.
    void setHostWindow(const std::shared_ptr<HostWindow> &window);

    // The address to show: of the page that is being fetched when the user asked for it here, else of the page that
    // is there.
    QUrl shownAddress() const;
    // The title to show: the page's, its address when it has none.
    QString shownTitle() const;
    QIcon shownIcon() const;
    bool isLoading() const;
    int progress() const { return _progress; } // per cent
    // Whether no page has ever been shown.
    bool isBlank() const;
    void goTo(const QUrl &url);
    // Tells the plug-in that this view is about to be drawn.
    void announceDrawing();

Q_SIGNALS:
    // Title, address, icon, progress or the way back and forward have changed.
    void changed();
    // A page has arrived as a whole.
    void pageFinished(const QUrl &url, const QString &title);
    // A page that had arrived has got another title.
    void pageRetitled(const QUrl &url, const QString &title);
    void newViewWanted(QWebEngineNewWindowRequest &request);
    void fullScreenWanted(bool fullScreen);
    void linkPointedAt(const QString &url);
    void closeWanted();
    void geometryWanted(const QRect &geometry);
    void failed(const QString &reason);

protected:
    bool event(QEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;
    void contextMenuEvent(QContextMenuEvent *event) override;

private:
    void connectPage();
    void watchChild(QObject *child);
    void keepKeyboard(QWidget *child);
    void loadingChanged(const QWebEngineLoadingInfo &info);
    void urlChanged(const QUrl &url);
    void titleChanged(const QString &title);
    void subFrameFinished(const QUrl &url, const QList<int> &path);
    void didFinishLoadForFrame(const std::shared_ptr<HostFrame> &frame);
    void acceptFullScreen(QWebEngineFullScreenRequest request);
    std::shared_ptr<BrowserHostFrame> subFrameAt(const QList<int> &path);
    void forgetSubFrames();

    BrowserServices &_services;
    std::shared_ptr<BrowserHostWebView> _hostWebView;
    std::shared_ptr<BrowserHostFrame> _mainFrame;
    QMap<QList<int>, std::shared_ptr<BrowserHostFrame>> _subFrames; // of the page that is there, by their place in it
    std::unique_ptr<HostLocationChangeHandler> _locationChangeHandler;
    std::unique_ptr<HostWebViewDrawing> _drawing;
    QUrl _askedFor; // what the user has asked for here and what has not come yet
    bool _askedForHasStarted = false;
    bool _pageHasFinished = false;
    bool _formerChildHadKeyboard = false;
    int _progress = 100;
};
