#include "browser/Browser.h"

#include "browser/Address.h"
#include "browser/BookmarkFile.h"
#include "browser/BrowserHost.h"
#include "browser/BrowserHostSettings.h"
#include "browser/BrowserHostWindow.h"
#include "browser/BrowserMenus.h"
#include "browser/BrowserServices.h"
#include "browser/BrowserWindow.h"
#include "browser/DisplayPlatform.h"
#include "browser/Downloads.h"
#include "browser/HistoryFile.h"
#include "browser/PluginLoader.h"
#include "browser/SiteIcons.h"
#include "browser/StartPage.h"
#include "browser/SymbolIcon.h"
#include "browser/WebView.h"
#include "platform/base/Log.h"
#include "platform/host/HostObserver.h"
#include "platform/host/HostPlugin.h"

#include <QApplication>
#include <QDir>
#include <QMessageBox>
#include <QPushButton>
#include <QStandardPaths>
#include <QWebEngineDownloadRequest>
#include <QWebEngineProfile>
#include <QWebEngineSettings>
#include <QWindow>
#include <unistd.h>

namespace
{
bool isRoot()
{
    return geteuid() == 0;
}

QString dataFolder()
{
    return QStandardPaths::writableLocation(QStandardPaths::AppLocalDataLocation);
}

std::unique_ptr<QWebEngineProfile> makeProfile()
{
    auto profile = std::make_unique<QWebEngineProfile>(QStringLiteral("wayfold"));
    profile->setPersistentStoragePath(QDir(dataFolder()).filePath(QStringLiteral("Profile")));
    profile->setCachePath(QDir(dataFolder()).filePath(QStringLiteral("Cache")));
    QWebEngineSettings *settings = profile->settings();
    settings->setAttribute(QWebEngineSettings::FullScreenSupportEnabled, true);
    settings->setAttribute(QWebEngineSettings::PluginsEnabled, true); // its viewer for PDF files
    settings->setAttribute(QWebEngineSettings::ScrollAnimatorEnabled, true);
    return profile;
}

// The window that a dialog or a drawer belongs to.
QWidget *ownerOf(const QWidget *widget)
{
    if (widget->parentWidget())
        return widget->parentWidget()->window();
    const QWindow *transientParent = widget->windowHandle() ? widget->windowHandle()->transientParent() : nullptr;
    if (!transientParent)
        return nullptr;
    const QWidgetList all = QApplication::topLevelWidgets();
    const auto owner = std::find_if(all.cbegin(), all.cend(),
                                    [&](const QWidget *other) { return other->windowHandle() == transientParent; });
    return owner == all.cend() ? nullptr : *owner;
}
} // namespace

struct Browser::Parts
{
    Parts()
        : profile(makeProfile())
        , history(HistoryFile::defaultPath())
        , bookmarks(BookmarkFile::defaultPath())
        , siteIcons(QDir(dataFolder()).filePath(QStringLiteral("SiteIcons")))
        , startPage(&bookmarks, &siteIcons)
    {
        services.profile = profile.get();
        services.history = &history;
        services.bookmarks = &bookmarks;
        services.downloads = &downloads;
        services.siteIcons = &siteIcons;
        services.settings = &settings;
        profile->installUrlSchemeHandler(StartPage::scheme(), &startPage);
    }

    // What the start page tells about the drawer.
    std::optional<StartPage::Drawer> drawer() const
    {
        if (!plugin)
            return std::nullopt;
        const BrowserHostMenuBar &menu = host->mainMenu();
        return StartPage::Drawer{menu.shortcutOf(QStringLiteral("toggleDrawerItem")),
                                 menu.shortcutOf(QStringLiteral("focusOnSiteItem")),
                                 menu.shortcutOf(QStringLiteral("newNoteItem")), plugin->sitesWithList()};
    }

    BrowserHostSettings settings;
    std::unique_ptr<QWebEngineProfile> profile;
    HistoryFile history;
    BookmarkFile bookmarks;
    Downloads downloads;
    SiteIcons siteIcons;
    StartPage startPage;
    BrowserServices services;
    std::unique_ptr<BrowserHost> host;
    HostPlugin *plugin = nullptr;
    HostObserver *observer = nullptr;
    QList<BrowserWindow *> windows;    // oldest first
    QList<BrowserWindow *> byKeyboard; // the one that had the keyboard last comes last
    bool isQuitting = false;
    bool hasTerminated = false;
};

void Browser::prepareProcess()
{
    QCoreApplication::setApplicationName(QStringLiteral("wayfold-browser"));
    QCoreApplication::setApplicationVersion(QStringLiteral(WAYFOLD_VERSION));
    QGuiApplication::setApplicationDisplayName(QStringLiteral("Wayfold Browser"));
    QGuiApplication::setDesktopFileName(QStringLiteral("wayfold-browser"));
    QCoreApplication::setAttribute(Qt::AA_ShareOpenGLContexts);
    StartPage::registerScheme();
    if (isRoot())
        qputenv("QTWEBENGINE_DISABLE_SANDBOX", "1");
}

Browser::Browser(QObject *parent) : QObject(parent), _parts(std::make_unique<Parts>())
{
    QApplication::setWindowIcon(SymbolIcon::named(QStringLiteral("browser")));
    BrowserServices &services = _parts->services;
    services.openWindow = [this](const QUrl &url) { return newWindow(url); };
    services.makeWindow = [this](bool asPopUp) { return makeWindow(asPopUp); };
    services.mayClose = [this](const BrowserWindow &window) { return mayClose(window); };
    services.quit = [this] { quit(); };
    _parts->host = std::make_unique<BrowserHost>(services, [this]() -> std::shared_ptr<HostWindow> {
        const BrowserWindow *window = keyWindow();
        return window ? window->hostWindow() : nullptr;
    });
    _parts->startPage.setDrawerSource([this] { return _parts->drawer(); });
    _parts->bookmarks.ensureExists();
    connect(services.profile, &QWebEngineProfile::downloadRequested, &_parts->downloads, &Downloads::take);
    connect(&_parts->downloads, &Downloads::started, this, &Browser::showDownload);
    connect(qApp, &QGuiApplication::lastWindowClosed, this,
            [this] { _parts->isQuitting = _parts->isQuitting || QGuiApplication::quitOnLastWindowClosed(); });
    connect(qApp, &QCoreApplication::aboutToQuit, this, &Browser::terminate);
}

Browser::~Browser()
{
    _parts->isQuitting = true;
    const QList<BrowserWindow *> open = _parts->windows;
    for (BrowserWindow *window : open)
        window->close();
    terminate();
    // Closed windows and tabs would be deleted when control returns to the event loop; the pages must not outlive their
    // profile.
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

void Browser::start(const QStringList &arguments)
{
    if (isRoot())
        qCWarning(logWayfold) << "Running as root: pages are not kept in a sandbox";
    if (!DisplayPlatform::canPlaceWindows())
        qCWarning(logWayfold) << "Wayland puts windows where it likes: the drawer is a window of its own";
    QStringList addresses;
    for (const QString &argument : arguments) {
        if (!argument.startsWith(QLatin1String("--")))
            addresses.append(argument);
    }
    if (!arguments.contains(QLatin1String("--no-plugin")))
        loadPlugin();
    openAddresses(addresses);
}

bool Browser::openAddresses(const QStringList &addresses)
{
    if (_parts->isQuitting)
        return false;
    BrowserWindow *window = newWindow(Address::fromUserInput(addresses.value(0)));
    for (const QString &address : addresses.mid(1))
        window->openTab(Address::fromUserInput(address), BrowserWindow::InBackground);
    window->raise();
    window->activateWindow();
    return true;
}

bool Browser::loadPlugin()
{
    if (!_parts->observer) {
        const QStringList candidates = PluginLoader::candidates(QCoreApplication::applicationDirPath());
        const PluginLoader::Started started = PluginLoader::load(candidates, _parts->host.get());
        _parts->plugin = started.plugin;
        _parts->observer = started.observer;
    }
    return isPluginLoaded();
}

bool Browser::isPluginLoaded() const
{
    return _parts->observer;
}

void Browser::setObserver(HostObserver *observer)
{
    _parts->observer = observer;
}

BrowserWindow *Browser::newWindow(const QUrl &url)
{
    BrowserWindow *window = makeWindow(false);
    window->openTab(url);
    window->show();
    if (url.isEmpty())
        window->focusAddressField();
    return window;
}

QList<BrowserWindow *> Browser::windows() const
{
    return _parts->windows;
}

BrowserWindow *Browser::keyWindow() const
{
    for (QWidget *widget = QApplication::activeWindow(); widget; widget = ownerOf(widget)) {
        if (auto *window = qobject_cast<BrowserWindow *>(widget))
            return _parts->windows.contains(window) ? window : nullptr;
    }
    return nullptr;
}

BrowserWindow *Browser::lastKeyWindow() const
{
    return _parts->byKeyboard.isEmpty() ? nullptr : _parts->byKeyboard.last();
}

HostApplication &Browser::host()
{
    return *_parts->host;
}

BrowserServices &Browser::services()
{
    return _parts->services;
}

void Browser::quit()
{
    if (mayLoseDownloads(lastKeyWindow()))
        quitAtOnce();
}

void Browser::quitAtOnce()
{
    _parts->isQuitting = true;
    const QList<BrowserWindow *> open = _parts->windows;
    for (BrowserWindow *window : open)
        window->close();
    QCoreApplication::quit();
}

BrowserWindow *Browser::makeWindow(bool asPopUp)
{
    auto *window =
        new BrowserWindow(_parts->services, asPopUp ? BrowserWindow::PopUpWindow : BrowserWindow::FullWindow);
    window->setHostWindow(std::make_shared<BrowserHostWindow>(window));
    new BrowserMenus(window, _parts->services);
    _parts->host->mainMenu().addMenuBar(window->menuBar());
    _parts->windows.append(window);
    _parts->byKeyboard.prepend(window);
    watchWindow(window);
    return window;
}

void Browser::watchWindow(BrowserWindow *window)
{
    connect(window, &BrowserWindow::becameKey, this, [this, window] {
        if (_parts->byKeyboard.removeOne(window))
            _parts->byKeyboard.append(window);
        if (_parts->observer)
            _parts->observer->windowDidBecomeKey(window->hostWindow());
    });
    connect(window, &BrowserWindow::frameChanged, this, [this, window] {
        if (_parts->observer)
            _parts->observer->windowFrameDidChange(window->hostWindow());
    });
    connect(window, &BrowserWindow::willClose, this, [this, window] {
        if (_parts->observer)
            _parts->observer->windowWillClose(window->hostWindow());
        forgetWindow(window);
    });
    connect(window, &QObject::destroyed, this, [this, window] { forgetWindow(window); });
}

void Browser::forgetWindow(BrowserWindow *window)
{
    _parts->windows.removeOne(window);
    _parts->byKeyboard.removeOne(window);
}

bool Browser::mayClose(const BrowserWindow &window)
{
    const bool isLast = _parts->windows.size() == 1 && _parts->windows.contains(const_cast<BrowserWindow *>(&window));
    return _parts->isQuitting || !isLast || mayLoseDownloads(_parts->windows.first());
}

bool Browser::mayLoseDownloads(QWidget *parent)
{
    if (!_parts->downloads.anyUnderWay())
        return true;
    QMessageBox box(QMessageBox::Question, tr("Quit"), tr("Downloads are still under way. Quit and stop them?"),
                    QMessageBox::Cancel, parent);
    box.setObjectName(QStringLiteral("quitQuestion"));
    const QPushButton *quit = box.addButton(tr("Quit"), QMessageBox::DestructiveRole);
    box.setDefaultButton(QMessageBox::Cancel);
    box.exec();
    return box.clickedButton() == quit;
}

// In the window that it was started from. A tab or a pop-up window that was opened for nothing but the download goes.
void Browser::showDownload(QWebEngineDownloadRequest *download)
{
    BrowserWindow *shownIn = lastKeyWindow();
    for (BrowserWindow *window : windows()) {
        for (int i = 0; i < window->tabCount(); ++i) {
            const WebView *view = window->webViewAt(i);
            if (view->page() != download->page())
                continue;
            const bool isDisposable = view->isBlank() && windows().size() + window->tabCount() > 2;
            if (!isDisposable || window->tabCount() > 1)
                shownIn = window;
            if (isDisposable)
                window->closeTab(i);
            break;
        }
    }
    if (!shownIn || !windows().contains(shownIn))
        shownIn = lastKeyWindow();
    if (shownIn)
        shownIn->showDownload(download);
}

void Browser::terminate()
{
    if (_parts->hasTerminated)
        return;
    _parts->hasTerminated = true;
    _parts->isQuitting = true;
    _parts->history.flush();
    if (_parts->observer)
        _parts->observer->applicationWillTerminate();
}
