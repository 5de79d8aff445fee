#pragma once

#include "core/KDRDrawerBundle.h"
#include "core/SiteDrawer.h"
#include "core/SiteDrawerFactory.h"
#include "platform/host/HostFrame.h"

#include <QStringList>
#include <functional>
#include <memory>
#include <vector>

// A drawer whose lists are only counted.
class FakeSiteDrawer : public SiteDrawer
{
public:
    explicit FakeSiteDrawer(const QString &className = QStringLiteral("KDRDrawer")) : _className(className)
    {
        setSlideDuration(0);
    }

    int reloadCount = 0;

    QString className() const override { return _className; }
    void reloadBookmarks() override { ++reloadCount; }

private:
    QString _className;
};

// A controller made of plain fields, with a drawer on a window; it tracks the window as a real one does.
class FakeDrawerController : public SiteDrawerController
{
public:
    explicit FakeDrawerController(const std::shared_ptr<HostWindow> &window)
    {
        drawer.setParentWindow(window);
        drawer.setController(this);
        KDRDrawerBundle::sharedInstance().trackWindow(window);
    }

    // What the store asked for, oldest first, one text a call.
    QStringList calls;
    QString label; // null at first
    QString previousLabel;
    std::weak_ptr<HostFrame> frame;
    bool openedManually = false;
    QString currentTab = QStringLiteral("Scratchpad");
    bool listAnswer = true;             // to passValidateMenuItemToOutlineView
    std::function<void()> onFrameCheck; // at each setCurrentWebFrame
    FakeSiteDrawer drawer;

    QString currentScratchDrawerLabel() const override { return label; }
    QString previousScratchDrawerLabel() const override { return previousLabel; }
    void setScratchDrawerLabelUsingFrame(const QString &newLabel, const std::shared_ptr<HostFrame> &usingFrame) override
    {
        calls.append(QStringLiteral("label:") + (newLabel.isNull() ? QStringLiteral("null") : newLabel) +
                     (usingFrame == frame.lock() ? QString() : QStringLiteral(" of another frame")));
        label = newLabel;
    }
    std::shared_ptr<HostFrame> currentWebFrame() const override { return frame.lock(); }
    void setCurrentWebFrame(const std::shared_ptr<HostFrame> &newFrame) override
    {
        frame = newFrame;
        if (onFrameCheck)
            onFrameCheck();
    }

    bool drawerOpenedManually() const override { return openedManually; }
    void markDrawerAsOpenedManually(bool manually) override
    {
        calls.append(manually ? QStringLiteral("manually") : QStringLiteral("not manually"));
        openedManually = manually;
    }
    void selectInitialFirstResponder() override { calls.append(QStringLiteral("first responder")); }

    bool isScratchPadTabViewCurrent() const override { return currentTab == u"Scratchpad"; }
    bool isBookmarkTabViewCurrent() const override { return currentTab == u"Bookmarks"; }
    bool isHistoryTabViewCurrent() const override { return currentTab == u"History"; }
    void showScratchPadTabView() override { showTab(QStringLiteral("Scratchpad")); }
    void showBookmarkTabView() override { showTab(QStringLiteral("Bookmarks")); }
    void showHistoryTabView() override { showTab(QStringLiteral("History")); }

    bool passValidateMenuItemToOutlineView(QAction *item) override
    {
        calls.append(QStringLiteral("validate ") + MenuItem::action(item));
        return listAnswer;
    }
    void handleNewSubFolderRequest(QObject *sender) override { request("handleNewSubFolderRequest:", sender); }
    void handleNewNoteRequest(QObject *sender) override { request("handleNewNoteRequest:", sender); }
    void handleNewEmailRequest(QObject *sender) override { request("handleNewEmailRequest:", sender); }
    void handleNewPersonRequest(QObject *sender) override { request("handleNewPersonRequest:", sender); }
    void handleSaveCurrentURLRequest(QObject *sender) override { request("handleSaveCurrentURLRequest:", sender); }
    void handleSwitchbackRequest(QObject *sender) override { request("handleSwitchbackRequest:", sender); }

    QObject *lastSender = nullptr;

private:
    void showTab(const QString &tab)
    {
        calls.append(QStringLiteral("show ") + tab);
        currentTab = tab;
    }
    void request(const char *name, QObject *sender)
    {
        calls.append(QString::fromLatin1(name));
        lastSender = sender;
    }
};

// Installs a maker of fake controllers and keeps what it makes, until it goes.
class FakeDrawerRoom
{
public:
    FakeDrawerRoom()
    {
        SiteDrawerFactory::setMaker([this](const std::shared_ptr<HostWindow> &window) {
            controllers.push_back(std::make_shared<FakeDrawerController>(window));
            return controllers.back();
        });
    }
    ~FakeDrawerRoom() { SiteDrawerFactory::setMaker({}); }

    std::vector<std::shared_ptr<FakeDrawerController>> controllers;
};
