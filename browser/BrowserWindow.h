#pragma once

#include <QMainWindow>
#include <QPointer>
#include <QUrl>
#include <memory>

struct BrowserServices;
class AddressField;
class DownloadBar;
class FindBar;
class HostWindow;
class HoverLabel;
class QShortcut;
class QStackedWidget;
class QToolBar;
class QToolButton;
class QWebEngineDownloadRequest;
class QWebEngineNewWindowRequest;
class TabBar;
class WebView;

// One browser window: tool bar, tabs and pages. Deletes itself when it is closed.
class BrowserWindow : public QMainWindow
{
    Q_OBJECT

public:
    enum Kind { FullWindow, PopUpWindow };
    enum TabPlace { InFront, InBackground };

    BrowserWindow(BrowserServices &services, Kind kind);
    ~BrowserWindow() override;

    Kind kind() const { return _kind; }
    // The window as the plug-in knows it; can outlive this. Set once, before the first tab.
    std::shared_ptr<HostWindow> hostWindow() const { return _hostWindow; }
    void setHostWindow(const std::shared_ptr<HostWindow> &hostWindow) { _hostWindow = hostWindow; }

    int tabCount() const;
    // Null for an index that there is not.
    WebView *webViewAt(int index) const;
    int indexOf(const WebView *view) const; // -1 when it is not in this window
    WebView *currentWebView() const;
    int currentTab() const;
    void setCurrentTab(int index);

    // A tab at the right-hand end. An empty address shows the start page. Where tabs are switched off, a window of its
    // own instead.
    WebView *openTab(const QUrl &url, TabPlace place = InFront);
    // A tab beside the one in front, whose page is still to come.
    WebView *openEmptyTab(TabPlace place);
    // The last tab takes the window along.
    void closeTab(int index);
    // Loads the address into the current tab.
    void goTo(const QUrl &url);

    AddressField *addressField() const { return _addressField; }
    FindBar *findBar() const { return _findBar; }
    TabBar *tabBar() const { return _tabBar; }
    QToolBar *toolBar() const { return _toolBar; }

    // A passing remark at the lower edge.
    void showMessage(const QString &text);
    void showDownload(QWebEngineDownloadRequest *download);
    // Resizes the window so that its page has this size, and moves it when the place is given (not 0, 0).
    void showPageAt(const QRect &geometry);

public Q_SLOTS:
    void newTab();
    void closeCurrentTab();
    void showNextTab();
    void showPreviousTab();
    void focusAddressField();
    void showFindBar();
    void goBack();
    void goForward();
    void goToStartPage();
    void reload();
    void stopLoading();
    void reloadOrStop();
    void zoomIn();
    void zoomOut();
    void resetZoom();
    void addBookmark();
    void openFile();
    void savePage();
    void viewSource();
    void toggleFullScreen();

Q_SIGNALS:
    void becameKey();
    // Moved, resized, minimised, restored, shown or hidden.
    void frameChanged();
    // On the way out; everything can still be asked.
    void willClose();
    // Something that the menus and buttons show has changed.
    void stateChanged();

protected:
    bool event(QEvent *event) override;
    void closeEvent(QCloseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    void buildToolBar();
    void buildPages();
    QAction *addToolBarAction(const QString &name, const QIcon &icon, const QString &text, const QString &toolTip);
    WebView *insertTab(int index, TabPlace place);
    void watchView(WebView *view);
    void showNewView(QWebEngineNewWindowRequest &request);
    void duplicateTab(int index);
    void noteFinishedPage(const QUrl &url, const QString &title);
    void currentTabChanged();
    void viewChanged(WebView *view);
    void updateControls();
    void setPageFullScreen(bool fullScreen);
    void leavePageFullScreen();
    void setZoom(qreal factor);

    BrowserServices &_services;
    Kind _kind;
    bool _isClosing = false;
    bool _pageIsFullScreen = false;
    Qt::WindowStates _statesBeforeFullScreen = Qt::WindowNoState;
    std::shared_ptr<HostWindow> _hostWindow;
    QList<WebView *> _views; // in the order of the tabs
    QPointer<WebView> _viewInFront;

    QToolBar *_toolBar = nullptr;
    QAction *_backAction = nullptr;
    QAction *_forwardAction = nullptr;
    QAction *_reloadAction = nullptr;
    AddressField *_addressField = nullptr;
    QWidget *_tabRow = nullptr;
    TabBar *_tabBar = nullptr;
    QStackedWidget *_pages = nullptr;
    QShortcut *_leaveFullScreenShortcut = nullptr;
    QWidget *_bars = nullptr; // below the page
    FindBar *_findBar = nullptr;
    DownloadBar *_downloadBar = nullptr;
    HoverLabel *_hoverLabel = nullptr;
};
