#pragma once

#include <QList>
#include <QObject>
#include <QStringList>
#include <QUrl>
#include <memory>

class BookmarkFile;
class BrowserHost;
class BrowserHostSettings;
class BrowserWindow;
class Downloads;
class HistoryFile;
class HostApplication;
class QWebEngineProfile;
class SiteIcons;
class WebView;

// The browser itself: its windows, its files, and the plug-in that it has loaded. One a process.
//
//     Browser::prepareProcess();
//     QApplication application(argc, argv);
//     Browser browser;
//     browser.start(application.arguments().mid(1));
//     return application.exec();
class Browser : public QObject
{
    Q_OBJECT

public:
    // What the web engine and the desktop have to know before the QApplication is made.
    static void prepareProcess();

    // Needs a QApplication. Goes before it does.
    explicit Browser(QObject *parent = nullptr);
    ~Browser() override;

    // Loads the plug-in, unless "--no-plugin" is among the arguments (the program's name is not), and opens the
    // addresses among them, each in a window of its own; the start page when there are none.
    void start(const QStringList &arguments);
    // Loads the plug-in; done by `start`. False, with the reason in the log, when there is none that works.
    bool loadPlugin();
    bool isPluginLoaded() const;

    // A window that shows the page, the start page for an empty address; already on the screen.
    BrowserWindow *newWindow(const QUrl &url = QUrl());
    // A window without tool bar for a page that asked for one; the frame may leave the place or the size open (0).
    // Not shown yet.
    BrowserWindow *newPopUpWindow(const QRect &geometry);
    // The open windows, oldest first.
    QList<BrowserWindow *> windows() const;
    // The browser window that has the keyboard itself or through a drawer or dialog of it; null when none has.
    BrowserWindow *keyWindow() const;
    // The window to work with when none has the keyboard: the one that had it last; null when no window is open.
    BrowserWindow *lastKeyWindow() const;

    // What the plug-in is given.
    HostApplication &host();
    BrowserHostSettings &settings();
    HistoryFile &history();
    BookmarkFile &bookmarks();
    Downloads &downloads();
    SiteIcons &siteIcons();
    QWebEngineProfile *profile();

    // The address of the built-in start page.
    static QUrl startPage();

public Q_SLOTS:
    // Closes every window, and with the last one the program.
    void quit();

private:
    friend class BrowserWindow;

    void windowWasActivated(BrowserWindow *window);
    void windowFrameChanged(BrowserWindow *window);
    void windowWillClose(BrowserWindow *window);
    void terminate();
    BrowserWindow *addWindow(BrowserWindow *window);

    struct Parts;
    std::unique_ptr<Parts> _parts;
};
