#include "browser/BrowserMenus.h"

#include "browser/BookmarkActions.h"
#include "browser/BookmarkFile.h"
#include "browser/BrowserServices.h"
#include "browser/BrowserWindow.h"
#include "browser/FindBar.h"
#include "browser/HistoryFile.h"
#include "browser/SiteIcons.h"
#include "browser/SymbolIcon.h"
#include "browser/WebView.h"

#include <QApplication>
#include <QMenuBar>
#include <QMessageBox>
#include <QPushButton>
#include <QWebEngineHistory>
#include <QWebEngineProfile>
#include <QWindow>

namespace
{
constexpr int shownVisits = 20;

void removeItemsFrom(QMenu *menu, int first)
{
    const QList<QAction *> actions = menu->actions();
    for (QAction *action : actions.mid(first)) {
        menu->removeAction(action);
        if (action->menu())
            action->menu()->deleteLater();
        else
            action->deleteLater();
    }
}
} // namespace

BrowserMenus::BrowserMenus(BrowserWindow *window, BrowserServices &services)
    : QObject(window)
    , _window(window)
    , _services(services)
{
    buildFileMenu();
    buildEditMenu();
    buildViewMenu();
    buildHistoryMenu();
    buildBookmarksMenu();
    buildWindowMenu();
    connect(qApp, &QGuiApplication::focusWindowChanged, this, &BrowserMenus::focusWindowChanged);
}

QMenu *BrowserMenus::addMenu(const QString &name, const QString &title)
{
    QMenu *menu = _window->menuBar()->addMenu(title);
    menu->setObjectName(name);
    return menu;
}

template <class Slot>
QAction *BrowserMenus::addAction(QMenu *menu, const QString &text, const QList<QKeySequence> &shortcuts, Slot slot)
{
    QAction *action = menu->addAction(text);
    action->setShortcuts(shortcuts);
    if constexpr (std::is_member_function_pointer_v<Slot>)
        connect(action, &QAction::triggered, _window, slot);
    else
        connect(action, &QAction::triggered, this, slot);
    // The shortcut works in a window whose menu bar is hidden, too.
    _window->QWidget::addAction(action);
    return action;
}

void BrowserMenus::buildFileMenu()
{
    QMenu *menu = addMenu(QStringLiteral("fileMenu"), tr("&File"));
    addAction(menu, tr("&New Window"), {QKeySequence(tr("Ctrl+N"))}, [this] { _services.openWindow(QUrl()); });
    addAction(menu, tr("New &Tab"), {QKeySequence(tr("Ctrl+T"))}, &BrowserWindow::newTab);
    addAction(menu, tr("Open &Address…"), {QKeySequence(tr("Ctrl+L"))}, &BrowserWindow::focusAddressField);
    addAction(menu, tr("&Open File…"), {QKeySequence(tr("Ctrl+O"))}, &BrowserWindow::openFile);
    menu->addSeparator();
    addAction(menu, tr("&Close Tab"), {QKeySequence(tr("Ctrl+W"))}, &BrowserWindow::closeCurrentTab);
    addAction(menu, tr("Close &Window"), {QKeySequence(tr("Ctrl+Shift+W"))}, [this] { _window->close(); });
    menu->addSeparator();
    addAction(menu, tr("&Save Page"), {QKeySequence(tr("Ctrl+S"))}, &BrowserWindow::savePage);
    menu->addSeparator();
    addAction(menu, tr("&Quit"), {QKeySequence(tr("Ctrl+Q"))}, [this] { _services.quit(); });
}

// The keys of these belong to the field or the page that has the keyboard; the menu only says what they are.
void BrowserMenus::buildEditMenu()
{
    QMenu *menu = addMenu(QStringLiteral("editMenu"), tr("&Edit"));
    const auto add = [&](const QString &text, const char *slot, QWebEnginePage::WebAction pageAction) {
        addAction(menu, text, {}, [this, slot, pageAction] { sendEdit(slot, pageAction); });
    };
    add(tr("&Undo\tCtrl+Z"), "undo", QWebEnginePage::Undo);
    add(tr("&Redo\tCtrl+Shift+Z"), "redo", QWebEnginePage::Redo);
    menu->addSeparator();
    add(tr("Cu&t\tCtrl+X"), "cut", QWebEnginePage::Cut);
    add(tr("&Copy\tCtrl+C"), "copy", QWebEnginePage::Copy);
    add(tr("&Paste\tCtrl+V"), "paste", QWebEnginePage::Paste);
    add(tr("Select &All\tCtrl+A"), "selectAll", QWebEnginePage::SelectAll);
    menu->addSeparator();
    _findActions = {
        addAction(menu, tr("&Find…"), {QKeySequence(tr("Ctrl+F"))}, &BrowserWindow::showFindBar),
        addAction(menu, tr("Find &Next"), {QKeySequence(tr("Ctrl+G"))}, [this] { _window->findBar()->findNext(); }),
        addAction(menu, tr("Find Pre&vious"), {QKeySequence(tr("Ctrl+Shift+G"))},
                  [this] { _window->findBar()->findPrevious(); }),
    };
}

void BrowserMenus::buildViewMenu()
{
    QMenu *menu = addMenu(QStringLiteral("viewMenu"), tr("&View"));
    addAction(menu, tr("&Reload"), {QKeySequence(tr("Ctrl+R")), QKeySequence(Qt::Key_F5)}, &BrowserWindow::reload);
    addAction(menu, tr("&Stop\tEsc"), {}, &BrowserWindow::stopLoading);
    menu->addSeparator();
    // The plug-in's commands have Ctrl+0 and the signs with Shift; a shortcut that two items have works for neither.
    addAction(menu, tr("Zoom &In"), {QKeySequence(tr("Ctrl+="))}, &BrowserWindow::zoomIn);
    addAction(menu, tr("Zoom &Out"), {QKeySequence(tr("Ctrl+-"))}, &BrowserWindow::zoomOut);
    addAction(menu, tr("&Actual Size"), {QKeySequence(tr("Ctrl+Alt+0"))}, &BrowserWindow::resetZoom);
    menu->addSeparator();
    addAction(menu, tr("View Sour&ce"), {QKeySequence(tr("Ctrl+U"))}, &BrowserWindow::viewSource);
    addAction(menu, tr("&Full Screen"), {QKeySequence(Qt::Key_F11)}, &BrowserWindow::toggleFullScreen);
}

void BrowserMenus::buildHistoryMenu()
{
    QMenu *menu = addMenu(QStringLiteral("historyMenu"), tr("Hi&story"));
    QAction *back = addAction(menu, tr("&Back"), {QKeySequence(tr("Alt+Left"))}, &BrowserWindow::goBack);
    QAction *forward = addAction(menu, tr("&Forward"), {QKeySequence(tr("Alt+Right"))}, &BrowserWindow::goForward);
    addAction(menu, tr("&Start Page"), {QKeySequence(tr("Alt+Home"))}, &BrowserWindow::goToStartPage);
    menu->addSeparator();
    addAction(menu, tr("&Clear History…"), {}, [this] { clearHistory(); });
    menu->addSeparator();
    const int fixedItems = static_cast<int>(menu->actions().size());
    connect(menu, &QMenu::aboutToShow, this, [this, menu, fixedItems] { fillHistoryMenu(menu, fixedItems); });
    connect(_window, &BrowserWindow::stateChanged, this, [this, back, forward] {
        const WebView *view = _window->currentWebView();
        back->setEnabled(view && view->history()->canGoBack());
        forward->setEnabled(view && view->history()->canGoForward());
    });
}

void BrowserMenus::buildBookmarksMenu()
{
    QMenu *menu = addMenu(QStringLiteral("bookmarksMenu"), tr("&Bookmarks"));
    addAction(menu, tr("&Add Bookmark…"), {QKeySequence(tr("Ctrl+D"))}, &BrowserWindow::addBookmark);
    menu->addSeparator();
    const int fixedItems = static_cast<int>(menu->actions().size());
    connect(menu, &QMenu::aboutToShow, this, [this, menu, fixedItems] { fillBookmarksMenu(menu, fixedItems); });
}

void BrowserMenus::buildWindowMenu()
{
    QMenu *menu = addMenu(QStringLiteral("windowMenu"), tr("&Window"));
    addAction(menu, tr("&Minimize"), {QKeySequence(tr("Ctrl+M"))}, [this] { _window->showMinimized(); });
    menu->addSeparator();
    addAction(menu, tr("&Next Tab"), {QKeySequence(tr("Ctrl+Tab")), QKeySequence(tr("Ctrl+PgDown"))},
              &BrowserWindow::showNextTab);
    addAction(menu, tr("&Previous Tab"), {QKeySequence(tr("Ctrl+Shift+Tab")), QKeySequence(tr("Ctrl+PgUp"))},
              &BrowserWindow::showPreviousTab);
    menu->addSeparator();
    const int fixedItems = static_cast<int>(menu->actions().size());
    connect(menu, &QMenu::aboutToShow, this, [this, menu, fixedItems] { fillWindowMenu(menu, fixedItems); });
}

void BrowserMenus::fillHistoryMenu(QMenu *menu, int fixedItems)
{
    removeItemsFrom(menu, fixedItems);
    for (const HistoryFile::Entry &entry : _services.history->latest(shownVisits)) {
        const QUrl url(entry.address);
        const QIcon icon = _services.siteIcons->iconForHost(url.host());
        QAction *action = menu->addAction(icon.isNull() ? SymbolIcon::named(QStringLiteral("page")) : icon,
                                          BookmarkActions::menuText(entry.title));
        connect(action, &QAction::triggered, _window, [this, url] { _window->goTo(url); });
    }
}

void BrowserMenus::fillBookmarksMenu(QMenu *menu, int fixedItems)
{
    removeItemsFrom(menu, fixedItems);
    const auto open = [this](const QUrl &url) { _window->goTo(url); };
    QMenu *bar = menu->addMenu(SymbolIcon::named(QStringLiteral("folder")), tr("Bookmarks Bar"));
    BookmarkActions::fillMenu(bar, _services.bookmarks->barNodes(), _services.siteIcons, open);
    bar->setEnabled(!bar->isEmpty());
    menu->addSeparator();
    BookmarkActions::fillMenu(menu, _services.bookmarks->menuNodes(), _services.siteIcons, open);
}

void BrowserMenus::fillWindowMenu(QMenu *menu, int fixedItems)
{
    removeItemsFrom(menu, fixedItems);
    for (QWidget *widget : QApplication::topLevelWidgets()) {
        auto *window = qobject_cast<BrowserWindow *>(widget);
        if (!window || window->isHidden())
            continue;
        QAction *action = menu->addAction(BookmarkActions::menuText(window->windowTitle()));
        action->setCheckable(true);
        action->setChecked(window == _window);
        connect(action, &QAction::triggered, window, [window] {
            window->setWindowState(window->windowState() & ~Qt::WindowMinimized);
            window->raise();
            window->activateWindow();
        });
    }
}

void BrowserMenus::clearHistory()
{
    auto *box = new QMessageBox(QMessageBox::Question, tr("Clear History"),
                                tr("Forget all %n visited page(s)?", nullptr, _services.history->count()),
                                QMessageBox::Cancel, _window);
    box->setObjectName(QStringLiteral("clearHistoryQuestion"));
    box->setInformativeText(tr("This cannot be undone."));
    box->setAttribute(Qt::WA_DeleteOnClose);
    QPushButton *clear = box->addButton(tr("Clear"), QMessageBox::DestructiveRole);
    box->setDefaultButton(QMessageBox::Cancel);
    connect(clear, &QPushButton::clicked, this, [this] {
        _services.history->clear();
        _services.profile->clearAllVisitedLinks(); // their colour tells as much
    });
    box->open();
}

void BrowserMenus::focusWindowChanged(const QWindow *focusWindow)
{
    const bool isElsewhere = focusWindow && focusWindow->type() != Qt::Popup && focusWindow != _window->windowHandle();
    for (QAction *action : std::as_const(_findActions))
        action->setEnabled(!isElsewhere);
}

void BrowserMenus::sendEdit(const char *slot, int pageAction)
{
    QWidget *focus = QApplication::focusWidget();
    WebView *view = _window->currentWebView();
    const bool pageHasKeyboard = view && (!focus || focus == view || view->isAncestorOf(focus));
    if (pageHasKeyboard)
        view->triggerPageAction(static_cast<QWebEnginePage::WebAction>(pageAction));
    else if (focus->metaObject()->indexOfMethod(QByteArray(slot) + "()") >= 0)
        QMetaObject::invokeMethod(focus, slot);
}
