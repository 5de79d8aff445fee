#pragma once

#include <QObject>

struct BrowserServices;
class BrowserWindow;
class QAction;
class QKeySequence;
class QMenu;
class QWindow;

// The browser's own menus, File to Help, in the menu bar of a window. Belongs to the window.
class BrowserMenus : public QObject
{
    Q_OBJECT

public:
    BrowserMenus(BrowserWindow *window, BrowserServices &services);

private:
    QMenu *addMenu(const QString &name, const QString &title);
    template <class Slot>
    QAction *addAction(QMenu *menu, const QString &text, const QList<QKeySequence> &shortcuts, Slot slot);
    void buildFileMenu();
    void buildEditMenu();
    void buildViewMenu();
    void buildHistoryMenu();
    void buildBookmarksMenu();
    void buildWindowMenu();
    void fillHistoryMenu(QMenu *menu, int fixedItems);
    void fillBookmarksMenu(QMenu *menu, int fixedItems);
    void fillWindowMenu(QMenu *menu, int fixedItems);
    void clearHistory();
    // Lets the window with the keyboard do its own finding: a drawer has a search field of its own.
    void focusWindowChanged(const QWindow *focusWindow);
    void sendEdit(const char *slot, int pageAction);

    BrowserWindow *_window;
    BrowserServices &_services;
    QList<QAction *> _findActions;
};
