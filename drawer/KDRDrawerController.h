#pragma once

#include "core/SiteDrawer.h"
#include "platform/base/NotificationCenter.h"

#include <QObject>
#include <QPointer>
#include <QRectF>
#include <QWidget>

class InterfaceFile;
class KDRDrawer;
class MessageBar;
class WayfoldBookmarkDataSource;
class WayfoldBookmarkOutlineView;
class WayfoldHistoryDataSource;
class WayfoldHistoryOutlineView;
class WayfoldOutlineView;
class WayfoldOutlineViewDataSource;
class WayfoldScratchDataSource;
class WayfoldScratchOutlineView;
class WayfoldTabView;

// Builds the drawer of one browser window and looks after it: its size and its edge, the room that it needs on the
// screen, its tabs, and its opening and closing when pages load. It owns itself until its window closes, and is gone at
// the end of the event in which nobody holds it any more.
class KDRDrawerController : public QObject, public SiteDrawerController
{
    Q_OBJECT

public:
    // A new controller; tracks the window with the store.
    static std::shared_ptr<KDRDrawerController> controllerForWindow(const std::shared_ptr<HostWindow> &window);
    ~KDRDrawerController() override;

    // Null when the interface file is missing.
    KDRDrawer *drawer() const;
    WayfoldTabView *tabView() const;
    MessageBar *messageBar() const;
    WayfoldScratchOutlineView *scratchOutlineView() const;
    WayfoldBookmarkOutlineView *bookmarkOutlineView() const;
    WayfoldHistoryOutlineView *historyOutlineView() const;
    WayfoldScratchDataSource *scratchDataSource() const { return _scratchDataSource.get(); }
    WayfoldBookmarkDataSource *bookmarkDataSource() const { return _bookmarkDataSource.get(); }
    WayfoldHistoryDataSource *historyDataSource() const { return _historyDataSource.get(); }

    bool drawerOpenedManually() const override { return _drawerOpenedManually; }
    void markDrawerAsOpenedManually(bool manually) override { _drawerOpenedManually = manually; }
    std::shared_ptr<HostFrame> currentWebFrame() const override { return _currentWebFrame.lock(); }
    void setCurrentWebFrame(const std::shared_ptr<HostFrame> &frame) override { _currentWebFrame = frame; }

    // The page of the current tab; null when there is none.
    QWidget *currentTabViewItem() const;
    // The label of the current tab, "Scratchpad", "Bookmarks" or "History"; null when there is none.
    QString currentTabViewLabel() const;
    bool isScratchPadTabViewCurrent() const override;
    bool isBookmarkTabViewCurrent() const override;
    bool isHistoryTabViewCurrent() const override;
    void showScratchPadTabView() override;
    void showBookmarkTabView() override;
    void showHistoryTabView() override;
    // Gives the keyboard to the current tab.
    void selectInitialFirstResponder() override;
    // Loads the data of the tab that comes to the front.
    void tabViewWillSelectTab(const QString &identifier);

    // Chooses the edge that the drawer opens on; narrows the window when there is room on neither side.
    void resizeParentWindowForDrawer();
    // Puts a narrowed window back, unless it has been moved or resized since.
    void undoParentWindowResize();

    // Observers of the default notification centre.
    void drawerShouldOpenForLocationChange(const Notification &notification);
    void drawerShouldCloseForLocationChange(const Notification &notification);
    void parentWindowWillClose(const Notification &notification);
    void drawerWillOpenNotification(const Notification &notification);
    void drawerDidCloseNotification(const Notification &notification);

    QString currentScratchDrawerLabel() const override;
    QString previousScratchDrawerLabel() const override;
    void setScratchDrawerLabelUsingFrame(const QString &label, const std::shared_ptr<HostFrame> &frame) override;
    bool isScratchDrawerShowingGlobalRoot() const;

    // What the current tab's list says; true when there is no such tab.
    bool passValidateMenuItemToOutlineView(QAction *item) override;
    void handleNewSubFolderRequest(QObject *sender) override;
    void handleNewNoteRequest(QObject *sender) override;
    void handleNewEmailRequest(QObject *sender) override;
    void handleNewPersonRequest(QObject *sender) override;
    void handleSaveCurrentURLRequest(QObject *sender) override;
    void handleSwitchbackRequest(QObject *sender) override;

private:
    KDRDrawerController();

    void initForWindow(const std::shared_ptr<HostWindow> &window);
    void loadInterface();
    void connectScratchpad(const InterfaceFile &interface);
    void connectBookmarks(const InterfaceFile &interface);
    void connectHistory(const InterfaceFile &interface);
    void connectList(WayfoldOutlineView *view, WayfoldOutlineViewDataSource *source);
    void sizeDrawer();
    void observe(const HostWindow *window);
    std::shared_ptr<HostWindow> parentWindow() const;
    void storeContentWidth() const;
    // The list of the current tab, null when there is no such tab.
    WayfoldOutlineView *currentOutlineView() const;
    WayfoldOutlineViewDataSource *currentDataSource() const;

    std::shared_ptr<KDRDrawerController> _self; // until the window closes
    QPointer<KDRDrawer> _drawer;
    QPointer<QWidget> _drawerView;
    QPointer<WayfoldScratchOutlineView> _scratchOutlineView;
    std::unique_ptr<WayfoldScratchDataSource> _scratchDataSource;
    QPointer<WayfoldBookmarkOutlineView> _bookmarkOutlineView;
    std::unique_ptr<WayfoldBookmarkDataSource> _bookmarkDataSource;
    QPointer<WayfoldHistoryOutlineView> _historyOutlineView;
    std::unique_ptr<WayfoldHistoryDataSource> _historyDataSource;
    QPointer<WayfoldTabView> _tabView;
    QPointer<MessageBar> _messageBar;
    std::weak_ptr<HostFrame> _currentWebFrame;
    QRectF _parentWindowOriginalFrame;
    QRectF _parentWindowNewFrame;
    bool _parentWindowWasResized = false;
    bool _shuttingDown = false;
    bool _drawerOpenedManually = false;
};
