#pragma once

#include <QList>
#include <QObject>
#include <QStringList>
#include <QUrl>
#include <memory>

struct BrowserServices;
class BrowserWindow;
class HostApplication;
class HostObserver;
class QWebEngineDownloadRequest;

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
    // What the web engine and the desktop have to know before the QApplication is made: names, scheme of the start
    // page, sandbox (off for root alone, under whom it does not work).
    static void prepareProcess();

    // Needs a QApplication, and goes before it does. Reads and writes below `$HOME`.
    explicit Browser(QObject *parent = nullptr);
    // Closes what is open.
    ~Browser() override;

    // Loads the plug-in, unless "--no-plugin" is among the arguments (which do not have the program's name in front),
    // and opens the addresses among them, the first in a new window and the others in tabs of it; the start page when
    // there are none.
    void start(const QStringList &arguments);
    // Opens the addresses, or the start page for none, in a new window and brings it to the front. False, and nothing
    // opened, when the browser is about to end.
    bool openAddresses(const QStringList &addresses);
    // Loads the plug-in; part of `start`. False, with the reason in the log, when there is none that works.
    bool loadPlugin();
    bool isPluginLoaded() const;
    // For a plug-in that was started some other way; null for none.
    void setObserver(HostObserver *observer);

    // A window that shows the page, the start page for an empty address; already on the screen.
    BrowserWindow *newWindow(const QUrl &url = QUrl());
    // The open windows, oldest first.
    QList<BrowserWindow *> windows() const;
    // The browser window that has the keyboard itself or through a drawer or dialog of it; null when none has.
    BrowserWindow *keyWindow() const;
    // The window that had the keyboard last; null when no window is open.
    BrowserWindow *lastKeyWindow() const;

    // What the plug-in is given.
    HostApplication &host();
    // What windows and pages share.
    BrowserServices &services();

public Q_SLOTS:
    // Closes every window and ends the program; asks first when something would be lost.
    void quit();
    // The same without asking.
    void quitAtOnce();

private:
    struct Parts;

    BrowserWindow *makeWindow(bool asPopUp);
    void watchWindow(BrowserWindow *window);
    void forgetWindow(BrowserWindow *window);
    bool mayClose(const BrowserWindow &window);
    bool mayLoseDownloads(QWidget *parent);
    void showDownload(QWebEngineDownloadRequest *download);
    void terminate();

    std::unique_ptr<Parts> _parts;
};
