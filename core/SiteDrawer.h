#pragma once

#include "platform/widgets/Drawer.h"

#include <QString>
#include <memory>

class HostFrame;
class QAction;
class QObject;

// What the store asks of the controller behind a window's drawer; the drawer room fills it in.
class SiteDrawerController
{
public:
    virtual ~SiteDrawerController() = default;

    virtual QString currentScratchDrawerLabel() const = 0;
    virtual QString previousScratchDrawerLabel() const = 0;
    virtual void setScratchDrawerLabelUsingFrame(const QString &label, const std::shared_ptr<HostFrame> &frame) = 0;
    // Held weakly: none once the frame has gone. Neither call allocates.
    virtual std::shared_ptr<HostFrame> currentWebFrame() const = 0;
    virtual void setCurrentWebFrame(const std::shared_ptr<HostFrame> &frame) = 0;

    virtual bool drawerOpenedManually() const = 0;
    virtual void markDrawerAsOpenedManually(bool manually) = 0;
    virtual void selectInitialFirstResponder() = 0;

    virtual bool isScratchPadTabViewCurrent() const = 0;
    virtual bool isBookmarkTabViewCurrent() const = 0;
    virtual bool isHistoryTabViewCurrent() const = 0;
    virtual void showScratchPadTabView() = 0;
    virtual void showBookmarkTabView() = 0;
    virtual void showHistoryTabView() = 0;

    virtual bool passValidateMenuItemToOutlineView(QAction *item) = 0;
    virtual void handleNewSubFolderRequest(QObject *sender) = 0;
    virtual void handleNewNoteRequest(QObject *sender) = 0;
    virtual void handleNewEmailRequest(QObject *sender) = 0;
    virtual void handleNewPersonRequest(QObject *sender) = 0;
    virtual void handleSaveCurrentURLRequest(QObject *sender) = 0;
    virtual void handleSwitchbackRequest(QObject *sender) = 0;
};

// A drawer as the store knows it. The drawer room's KDRDrawer is the only one; the store recognises it by its exact
// class name, "KDRDrawer".
class SiteDrawer : public Drawer
{
    Q_OBJECT

public:
    using Drawer::Drawer;

    virtual void reloadBookmarks() = 0;
    // The drawer's delegate; null until the controller has set itself.
    SiteDrawerController *controller() const { return _controller; }
    void setController(SiteDrawerController *controller) { _controller = controller; }

private:
    SiteDrawerController *_controller = nullptr;
};
