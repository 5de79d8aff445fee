#pragma once

#include <QMainWindow>
#include <QPointer>
#include <QUrl>
#include <memory>

class AddressField;
class Browser;
class BrowserHostWindow;
class BrowserMenus;
class DownloadBar;
class FindBar;
class HostWindow;
class QProgressBar;
class QStackedWidget;
class QToolBar;
class TabBar;
class WebView;

// One browser window: tool bar, tabs and pages. Deletes itself when it is closed.
class BrowserWindow : public QMainWindow
{
    Q_OBJECT

public:
    enum Kind { FullWindow, PopUpWindow };
    enum TabPlace { InFront, InBackground };

    BrowserWindow(Browser *browser, Kind kind);
    ~BrowserWindow() override;

    Browser *browser() const { return _browser; }
    Kind kind() const { return _kind; }
    // The window as the plug-in knows it; can outlive this.
    std::shared_ptr<HostWindow> hostWindow() const;

    int tabCount() const;
    // Null for an index that there is not.
    WebView *webViewAt(int index) const;
    int indexOf(const WebView *view) const; // -1 when it is not in this window
    WebView *currentWebView() const;
    int currentTab() const;
    void setCurrentTab(int index);

    // Behind the current tab when a page asks for it or in the background, else at the end. An empty address shows
    // the start page.
    WebView *openTab(const QUrl &url, TabPlace place = InFront);
    // A tab whose page is still to come.
    WebView *openEmptyTab(TabPlace place);
    // The last tab takes the window along.
    void closeTab(int index);
    // Loads the address into the current tab.
    void goTo(const QUrl &url);

    AddressField *addressField() const { return _addressField; }
    FindBar *findBar() const { return _findBar; }
    TabBar *tabBar() const { return _tabBar; }

    // Appends a menu at the right-hand end of the menu bar.
    void appendMenu(QMenu *menu);
    // A passing remark at the lower edge.
    void showMessage(const QString &text);

public Q_SLOTS:
    void newTab();
    void closeCurrentTab();
    void focusAddressField();
    void showFindBar();
    void goBack();
    void goForward();
    void reloadOrStop();
    void reload();
    void stopLoading();
    void zoomIn();
    void zoomOut();
    void resetZoom();
    void addBookmark();
    void toggleFullScreen();

protected:
    bool event(QEvent *event) override;
    void closeEvent(QCloseEvent *event) override;
    void moveEvent(QMoveEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void showEvent(QShowEvent *event) override;
    void hideEvent(QHideEvent *event) override;
    void changeEvent(QEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    void buildToolBar();
    void buildPages();
    QAction *addToolBarAction(const QString &name, const QString &icon, const QString &text, const QString &toolTip);
    WebView *insertTab(int index, TabPlace place);
    void watchView(WebView *view);
    void removeView(WebView *view);
    void goToTypedAddress();
    void currentTabChanged();
    void updateTab(WebView *view);
    void updateControls();
    void updateTitle();
    void setPageFullScreen(bool fullScreen);
    void setZoom(qreal factor);

    Browser *_browser;
    Kind _kind;
    bool _closing = false;
    bool _pageIsFullScreen = false;
    Qt::WindowStates _statesBeforeFullScreen = Qt::WindowNoState;
    std::shared_ptr<BrowserHostWindow> _hostWindow;
    QList<WebView *> _views; // in the order of the tabs
    QPointer<WebView> _shownView;

    QToolBar *_toolBar = nullptr;
    QAction *_backAction = nullptr;
    QAction *_forwardAction = nullptr;
    QAction *_reloadAction = nullptr;
    AddressField *_addressField = nullptr;
    TabBar *_tabBar = nullptr;
    QProgressBar *_progress = nullptr;
    QStackedWidget *_pages = nullptr;
    FindBar *_findBar = nullptr;
    DownloadBar *_downloadBar = nullptr;
    BrowserMenus *_menus = nullptr;
};
