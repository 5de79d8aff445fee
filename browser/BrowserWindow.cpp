#include "browser/BrowserWindow.h"

#include "browser/AddBookmarkDialog.h"
#include "browser/Address.h"
#include "browser/AddressField.h"
#include "browser/BookmarkFile.h"
#include "browser/BrowserHostSettings.h"
#include "browser/BrowserServices.h"
#include "browser/DownloadBar.h"
#include "browser/FindBar.h"
#include "browser/HistoryFile.h"
#include "browser/HoverLabel.h"
#include "browser/StartPage.h"
#include "browser/SymbolIcon.h"
#include "browser/TabBar.h"
#include "browser/WebView.h"

#include <QCloseEvent>
#include <QFileDialog>
#include <QHBoxLayout>
#include <QMenuBar>
#include <QMessageBox>
#include <QScreen>
#include <QShortcut>
#include <QStackedWidget>
#include <QToolBar>
#include <QToolButton>
#include <QVBoxLayout>
#include <QWebEngineHistory>
#include <QWebEngineNewWindowRequest>

namespace
{
constexpr QSize defaultSize(1000, 720);
const QList<qreal> zoomSteps{0.3, 0.5, 0.67, 0.8, 0.9, 1.0, 1.1, 1.2, 1.33, 1.5, 1.7, 2.0, 2.4, 3.0, 4.0, 5.0};

// Pages that are no places to come back to.
bool belongsIntoHistory(const QUrl &url)
{
    static const QStringList schemes{QStringLiteral("http"), QStringLiteral("https"), QStringLiteral("file"),
                                     QStringLiteral("ftp")};
    return schemes.contains(url.scheme());
}
} // namespace

BrowserWindow::BrowserWindow(BrowserServices &services, Kind kind) : _services(services), _kind(kind)
{
    setObjectName(QStringLiteral("browserWindow"));
    setAttribute(Qt::WA_DeleteOnClose);
    setContextMenuPolicy(Qt::NoContextMenu);
    buildToolBar();
    buildPages();
    const QSize size = services.settings->windowSize();
    resize(size.isValid() && !size.isEmpty() ? size : defaultSize);
    if (kind == PopUpWindow) {
        menuBar()->hide();
        _toolBar->hide();
        _tabRow->hide();
    }
    connect(this, &BrowserWindow::stateChanged, this, &BrowserWindow::updateControls);
}

BrowserWindow::~BrowserWindow()
{
    _isClosing = true;
    // The pages go first, while the window can still be asked for everything.
    qDeleteAll(std::exchange(_views, {}));
}

int BrowserWindow::tabCount() const
{
    return static_cast<int>(_views.size());
}

WebView *BrowserWindow::webViewAt(int index) const
{
    return _views.value(index);
}

int BrowserWindow::indexOf(const WebView *view) const
{
    for (int i = 0; i < tabCount(); ++i) {
        if (_views.at(i) == view)
            return i;
    }
    return -1;
}

WebView *BrowserWindow::currentWebView() const
{
    return webViewAt(currentTab());
}

int BrowserWindow::currentTab() const
{
    return _tabBar->currentIndex();
}

void BrowserWindow::setCurrentTab(int index)
{
    _tabBar->setCurrentIndex(index);
}

WebView *BrowserWindow::openTab(const QUrl &url, TabPlace place)
{
    if (!_services.settings->tabbedBrowsing() && !_views.isEmpty())
        return _services.openWindow(url)->currentWebView();
    WebView *view = insertTab(tabCount(), place);
    view->goTo(url.isEmpty() ? StartPage::address() : url);
    if (place == InFront && !url.isEmpty())
        view->setFocus();
    return view;
}

WebView *BrowserWindow::openEmptyTab(TabPlace place)
{
    return insertTab(currentTab() + 1, place);
}

void BrowserWindow::closeTab(int index)
{
    WebView *view = webViewAt(index);
    if (!view)
        return;
    if (tabCount() == 1) {
        close();
        return;
    }
    _views.removeAt(index);
    view->setHostWindow(nullptr);
    disconnect(view, nullptr, this, nullptr);
    _tabBar->removeTab(index);
    _pages->removeWidget(view);
    view->hide();
    view->deleteLater();
    currentTabChanged();
}

void BrowserWindow::goTo(const QUrl &url)
{
    showMessage(QString());
    if (WebView *view = currentWebView()) {
        view->goTo(url);
        view->setFocus();
    }
}

void BrowserWindow::showMessage(const QString &text)
{
    _hoverLabel->showMessage(text);
}

void BrowserWindow::showDownload(QWebEngineDownloadRequest *download)
{
    _downloadBar->add(download);
}

void BrowserWindow::showPageAt(const QRect &geometry)
{
    // Before it is shown, nothing has been laid out, and a pop-up window is all page.
    const QSize around = isVisible() ? size() - _pages->size() : QSize(0, 0);
    const QRect screen = this->screen()->availableGeometry();
    if (geometry.width() > 0 && geometry.height() > 0)
        resize((geometry.size() + around).boundedTo(screen.size()));
    if (geometry.topLeft().isNull())
        return;
    // No page may hide its window beyond the edge of the screen.
    const QSize room = (screen.size() - frameGeometry().size()).expandedTo(QSize(0, 0));
    const QPoint place = geometry.topLeft() - screen.topLeft();
    move(screen.topLeft() + QPoint(qBound(0, place.x(), room.width()), qBound(0, place.y(), room.height())));
}

void BrowserWindow::newTab()
{
    openTab(QUrl());
    focusAddressField();
}

void BrowserWindow::closeCurrentTab()
{
    closeTab(currentTab());
}

void BrowserWindow::showNextTab()
{
    setCurrentTab((currentTab() + 1) % tabCount());
}

void BrowserWindow::showPreviousTab()
{
    setCurrentTab((currentTab() + tabCount() - 1) % tabCount());
}

void BrowserWindow::focusAddressField()
{
    activateWindow();
    _addressField->setFocus(Qt::ShortcutFocusReason);
    _addressField->selectAll();
}

void BrowserWindow::showFindBar()
{
    _findBar->open();
}

void BrowserWindow::goBack()
{
    if (WebView *view = currentWebView())
        view->back();
}

void BrowserWindow::goForward()
{
    if (WebView *view = currentWebView())
        view->forward();
}

void BrowserWindow::goToStartPage()
{
    goTo(StartPage::address());
}

void BrowserWindow::reload()
{
    if (WebView *view = currentWebView())
        view->reload();
}

void BrowserWindow::stopLoading()
{
    if (WebView *view = currentWebView())
        view->stop();
}

void BrowserWindow::reloadOrStop()
{
    const WebView *view = currentWebView();
    if (view && view->isLoading())
        stopLoading();
    else
        reload();
}

void BrowserWindow::zoomIn()
{
    const WebView *view = currentWebView();
    if (!view)
        return;
    const auto next = std::find_if(zoomSteps.cbegin(), zoomSteps.cend(),
                                   [&](qreal step) { return step > view->zoomFactor() + 0.01; });
    setZoom(next == zoomSteps.cend() ? zoomSteps.last() : *next);
}

void BrowserWindow::zoomOut()
{
    const WebView *view = currentWebView();
    if (!view)
        return;
    const auto next = std::find_if(zoomSteps.crbegin(), zoomSteps.crend(),
                                   [&](qreal step) { return step < view->zoomFactor() - 0.01; });
    setZoom(next == zoomSteps.crend() ? zoomSteps.first() : *next);
}

void BrowserWindow::resetZoom()
{
    setZoom(1.0);
}

void BrowserWindow::addBookmark()
{
    const WebView *view = currentWebView();
    if (!view || Address::displayText(view->url()).isEmpty())
        return;
    const QString address = QString::fromLatin1(view->url().toEncoded());
    auto *dialog = new AddBookmarkDialog(view->shownTitle(), _services.bookmarks->folders(), this);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    connect(dialog, &QDialog::accepted, this, [this, dialog, address] {
        if (_services.bookmarks->addBookmark(dialog->title(), address, dialog->folder()))
            showMessage(tr("Added a bookmark for this page."));
        else
            QMessageBox::warning(this, tr("Add Bookmark"), tr("The bookmark could not be saved."));
    });
    dialog->open();
}

void BrowserWindow::openFile()
{
    const QUrl url = QFileDialog::getOpenFileUrl(this, tr("Open File"));
    if (!url.isEmpty())
        goTo(url);
}

void BrowserWindow::savePage()
{
    if (WebView *view = currentWebView())
        view->triggerPageAction(QWebEnginePage::SavePage);
}

void BrowserWindow::viewSource()
{
    if (WebView *view = currentWebView())
        view->triggerPageAction(QWebEnginePage::ViewSource);
}

void BrowserWindow::toggleFullScreen()
{
    if (_pageIsFullScreen)
        leavePageFullScreen();
    else
        setWindowState(windowState() ^ Qt::WindowFullScreen);
}

bool BrowserWindow::event(QEvent *event)
{
    const bool result = QMainWindow::event(event);
    switch (event->type()) {
    case QEvent::WindowActivate:
        Q_EMIT becameKey();
        break;
    case QEvent::Move:
    case QEvent::Resize:
    case QEvent::Show:
    case QEvent::Hide:
    case QEvent::WindowStateChange:
        Q_EMIT frameChanged();
        break;
    default:
        break;
    }
    return result;
}

void BrowserWindow::closeEvent(QCloseEvent *event)
{
    if (_isClosing)
        return;
    if (!_services.mayClose(*this)) {
        event->ignore();
        return;
    }
    _isClosing = true;
    Q_EMIT willClose();
    if (_kind == FullWindow) {
        const bool isSpecial = isMaximized() || isFullScreen();
        _services.settings->setWindowSize(isSpecial ? normalGeometry().size() : size());
    }
    event->accept();
}

void BrowserWindow::keyPressEvent(QKeyEvent *event)
{
    // What the page leaves over. Plus without Shift, as some keyboards have it, is no shortcut: it would be taken for
    // the same key with Shift.
    if (event->key() == Qt::Key_Escape)
        stopLoading();
    else if (event->key() == Qt::Key_Plus && (event->modifiers() & ~Qt::KeypadModifier) == Qt::ControlModifier)
        zoomIn();
    else
        QMainWindow::keyPressEvent(event);
}

void BrowserWindow::buildToolBar()
{
    _toolBar = addToolBar(tr("Navigation"));
    _toolBar->setObjectName(QStringLiteral("toolBar"));
    _toolBar->setMovable(false);
    _toolBar->setIconSize(QSize(18, 18));
    _backAction = addToolBarAction(QStringLiteral("backButton"),
                                   SymbolIcon::themed(QStringLiteral("go-previous"), QStringLiteral("back")),
                                   tr("Back"), tr("Go back to the previous page (Alt+Left)"));
    connect(_backAction, &QAction::triggered, this, &BrowserWindow::goBack);
    _forwardAction = addToolBarAction(QStringLiteral("forwardButton"),
                                      SymbolIcon::themed(QStringLiteral("go-next"), QStringLiteral("forward")),
                                      tr("Forward"), tr("Go forward to the next page (Alt+Right)"));
    connect(_forwardAction, &QAction::triggered, this, &BrowserWindow::goForward);
    _reloadAction = addToolBarAction(QStringLiteral("reloadButton"), QIcon(), QString(), QString());
    connect(_reloadAction, &QAction::triggered, this, &BrowserWindow::reloadOrStop);
    _addressField = new AddressField;
    _toolBar->addWidget(_addressField);
    QAction *bookmark = addToolBarAction(QStringLiteral("addBookmarkButton"),
                                         SymbolIcon::themed(QStringLiteral("bookmark-new"), QStringLiteral("bookmark")),
                                         tr("Add bookmark"), tr("Add a bookmark for this page (Ctrl+D)"));
    connect(bookmark, &QAction::triggered, this, &BrowserWindow::addBookmark);

    connect(_addressField, &AddressField::addressEntered, this, &BrowserWindow::goTo);
    connect(_addressField, &AddressField::nonsenseEntered, this,
            [this](const QString &text) { showMessage(tr("“%1” is not an address.").arg(text)); });
    connect(_addressField, &AddressField::editingGivenUp, this, [this] {
        if (WebView *view = currentWebView())
            view->setFocus();
    });
}

void BrowserWindow::buildPages()
{
    _tabBar = new TabBar;
    auto *newTabButton = new QToolButton;
    newTabButton->setObjectName(QStringLiteral("newTabButton"));
    newTabButton->setIcon(SymbolIcon::themed(QStringLiteral("tab-new"), QStringLiteral("add")));
    newTabButton->setAutoRaise(true);
    newTabButton->setFocusPolicy(Qt::TabFocus);
    newTabButton->setAccessibleName(tr("New tab"));
    newTabButton->setToolTip(tr("Open a new tab (Ctrl+T)"));
    connect(newTabButton, &QToolButton::clicked, this, &BrowserWindow::newTab);
    _tabRow = new QWidget;
    auto *tabLayout = new QHBoxLayout(_tabRow);
    tabLayout->setContentsMargins(0, 0, 0, 0);
    tabLayout->setSpacing(0);
    tabLayout->addWidget(_tabBar, 1);
    tabLayout->addWidget(newTabButton);

    _pages = new QStackedWidget;
    _findBar = new FindBar;
    _downloadBar = new DownloadBar;
    _hoverLabel = new HoverLabel(_pages);
    auto *content = new QWidget;
    auto *layout = new QVBoxLayout(content);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(_tabRow);
    layout->addWidget(_pages, 1);
    _bars = new QWidget;
    auto *barLayout = new QVBoxLayout(_bars);
    barLayout->setContentsMargins(0, 0, 0, 0);
    barLayout->setSpacing(0);
    barLayout->addWidget(_findBar);
    barLayout->addWidget(_downloadBar);
    layout->addWidget(_bars);
    setCentralWidget(content);

    // While a page fills the screen, Escape is not the page's.
    _leaveFullScreenShortcut = new QShortcut(QKeySequence(Qt::Key_Escape), this);
    _leaveFullScreenShortcut->setEnabled(false);
    connect(_leaveFullScreenShortcut, &QShortcut::activated, this, &BrowserWindow::leavePageFullScreen);

    connect(_tabBar, &QTabBar::currentChanged, this, &BrowserWindow::currentTabChanged);
    connect(_tabBar, &QTabBar::tabCloseRequested, this, &BrowserWindow::closeTab);
    connect(_tabBar, &QTabBar::tabMoved, this, [this](int from, int to) { _views.move(from, to); });
    connect(_tabBar, &TabBar::newTabWanted, this, &BrowserWindow::newTab);
    connect(_tabBar, &TabBar::duplicateWanted, this, &BrowserWindow::duplicateTab);
    connect(_tabBar, &TabBar::reloadWanted, this, [this](int index) { _views.at(index)->reload(); });
    connect(_tabBar, &TabBar::linkDropped, this, [this](const QUrl &url) { openTab(url); });
}

QAction *BrowserWindow::addToolBarAction(const QString &name, const QIcon &icon, const QString &text,
                                         const QString &toolTip)
{
    QAction *action = _toolBar->addAction(icon, text);
    action->setToolTip(toolTip);
    QWidget *button = _toolBar->widgetForAction(action);
    button->setObjectName(name);
    button->setAccessibleName(text);
    button->setFocusPolicy(Qt::TabFocus);
    return action;
}

WebView *BrowserWindow::insertTab(int index, TabPlace place)
{
    auto *view = new WebView(_services);
    view->setHostWindow(_hostWindow);
    _views.insert(index, view);
    _pages->addWidget(view);
    watchView(view);
    // Inserting the first tab makes it the current one at once, so the list has to be complete by now.
    _tabBar->insertTab(index, view->shownTitle());
    viewChanged(view);
    if (place == InFront)
        setCurrentTab(index);
    currentTabChanged();
    return view;
}

void BrowserWindow::watchView(WebView *view)
{
    connect(view, &WebView::changed, this, [this, view] { viewChanged(view); });
    connect(view, &WebView::pageFinished, this, &BrowserWindow::noteFinishedPage);
    connect(view, &WebView::pageRetitled, this, [this](const QUrl &url, const QString &title) {
        _services.history->setTitle(QString::fromLatin1(url.toEncoded()), title);
    });
    connect(view, &WebView::newViewWanted, this, &BrowserWindow::showNewView);
    connect(view, &WebView::closeWanted, this, [this, view] { closeTab(indexOf(view)); });
    connect(view, &WebView::geometryWanted, this, [this](const QRect &geometry) {
        if (_kind == PopUpWindow)
            showPageAt(geometry);
    });
    connect(view, &WebView::linkPointedAt, this, [this](const QString &url) { _hoverLabel->showText(url); });
    connect(view, &WebView::failed, this, &BrowserWindow::showMessage);
    connect(view, &WebView::fullScreenWanted, this, [this, view](bool fullScreen) {
        if (view == currentWebView())
            setPageFullScreen(fullScreen);
    });
}

void BrowserWindow::showNewView(QWebEngineNewWindowRequest &request)
{
    if (!request.isUserInitiated()) {
        showMessage(
            tr("Blocked a window that this page wanted to open: %1").arg(Address::displayText(request.requestedUrl())));
        return;
    }
    const auto destination = request.destination();
    const bool asPopUp = destination == QWebEngineNewWindowRequest::InNewDialog;
    const bool asTab = _kind == FullWindow && _services.settings->tabbedBrowsing() &&
                       (destination == QWebEngineNewWindowRequest::InNewTab ||
                        destination == QWebEngineNewWindowRequest::InNewBackgroundTab);
    if (asTab) {
        const bool inFront = destination == QWebEngineNewWindowRequest::InNewTab;
        request.openIn(openEmptyTab(inFront ? InFront : InBackground)->page());
        return;
    }
    BrowserWindow *window = _services.makeWindow(asPopUp);
    request.openIn(window->openEmptyTab(InFront)->page());
    if (asPopUp)
        window->showPageAt(request.requestedGeometry());
    window->show();
}

void BrowserWindow::duplicateTab(int index)
{
    if (const WebView *view = webViewAt(index))
        openTab(view->shownAddress());
}

void BrowserWindow::noteFinishedPage(const QUrl &url, const QString &title)
{
    if (belongsIntoHistory(url))
        _services.history->addVisit(QString::fromLatin1(url.toEncoded()), title);
}

void BrowserWindow::currentTabChanged()
{
    WebView *view = currentWebView();
    if (!view || _isClosing)
        return;
    if (view != _viewInFront) {
        const bool pageHadKeyboard = _viewInFront && _viewInFront->isAncestorOf(focusWidget());
        _viewInFront = view;
        _pages->setCurrentWidget(view);
        _findBar->setView(view);
        _hoverLabel->showText(QString());
        _addressField->showOtherPage(view->shownAddress(), view->shownTitle(), view->shownIcon());
        if (pageHadKeyboard)
            view->setFocus();
        view->announceDrawing();
    }
    Q_EMIT stateChanged();
}

void BrowserWindow::viewChanged(WebView *view)
{
    const int index = indexOf(view);
    if (index < 0)
        return;
    _tabBar->setTab(index, view->shownTitle(), view->shownIcon());
    if (view == currentWebView())
        Q_EMIT stateChanged();
}

void BrowserWindow::updateControls()
{
    const WebView *view = currentWebView();
    if (!view)
        return;
    setWindowTitle(view->shownTitle());
    _addressField->showPage(view->shownAddress(), view->shownTitle(), view->shownIcon());
    _addressField->setProgress(view->isLoading() ? view->progress() : 100);
    _backAction->setEnabled(view->history()->canGoBack());
    _forwardAction->setEnabled(view->history()->canGoForward());
    const bool isLoading = view->isLoading();
    if (isLoading == _reloadAction->data().toBool() && !_reloadAction->text().isEmpty())
        return;
    _reloadAction->setData(isLoading);
    _reloadAction->setIcon(isLoading ? SymbolIcon::themed(QStringLiteral("process-stop"), QStringLiteral("stop"))
                                     : SymbolIcon::themed(QStringLiteral("view-refresh"), QStringLiteral("reload")));
    _reloadAction->setText(isLoading ? tr("Stop") : tr("Reload"));
    _reloadAction->setToolTip(isLoading ? tr("Stop loading this page (Esc)") : tr("Load this page again (Ctrl+R)"));
    _toolBar->widgetForAction(_reloadAction)->setAccessibleName(_reloadAction->text());
}

void BrowserWindow::setPageFullScreen(bool fullScreen)
{
    if (fullScreen == _pageIsFullScreen)
        return;
    _pageIsFullScreen = fullScreen;
    if (fullScreen)
        _statesBeforeFullScreen = windowState();
    const bool showsControls = _kind == FullWindow && !fullScreen;
    menuBar()->setVisible(showsControls);
    _toolBar->setVisible(showsControls);
    _tabRow->setVisible(showsControls);
    _bars->setVisible(!fullScreen);
    _leaveFullScreenShortcut->setEnabled(fullScreen);
    showMessage(fullScreen ? tr("Press Esc to leave full screen.") : QString());
    setWindowState(fullScreen ? windowState() | Qt::WindowFullScreen : _statesBeforeFullScreen);
}

void BrowserWindow::leavePageFullScreen()
{
    if (WebView *view = currentWebView())
        view->triggerPageAction(QWebEnginePage::ExitFullScreen);
}

void BrowserWindow::setZoom(qreal factor)
{
    WebView *view = currentWebView();
    if (!view)
        return;
    view->setZoomFactor(factor);
    showMessage(tr("Zoom: %1 %").arg(qRound(factor * 100)));
}
