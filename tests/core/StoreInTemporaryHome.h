#pragma once

#include "core/KDRDrawerBundle.h"
#include "core/settings/WayfoldDefaults.h"
#include "model/WayfoldBookmarkFolder.h"
#include "model/WayfoldBookmarkNote.h"
#include "platform/base/NotificationCenter.h"
#include "platform/base/NotificationQueue.h"
#include "platform/files/UserDefaults.h"
#include "tests/core/FakeSiteDrawer.h"
#include "tests/support/FakeHost.h"
#include "tests/support/InstalledKinds.h"
#include "tests/support/TemporaryHome.h"

#include <QtTest>

// The store of a user who starts for the first time, with a host and drawers made of plain fields. The store starts
// when `store()` is first called, so that a test can lay out files and settings before.
class StoreInTemporaryHome
{
public:
    StoreInTemporaryHome() { settings().loadDefaults(); }
    ~StoreInTemporaryHome()
    {
        KDRDrawerBundle::releaseSharedInstance();
        UserDefaults::standardUserDefaults().reset();
    }

    TemporaryHome home;
    FakeHostApplication host;
    FakeDrawerRoom room;

    static KDRDrawerBundle &store() { return KDRDrawerBundle::sharedInstance(); }
    static WayfoldDefaults &settings() { return WayfoldDefaults::sharedInstance(); }
    // As a user does who quits the browser and starts it again.
    void restart()
    {
        KDRDrawerBundle::releaseSharedInstance();
        room.controllers.clear();
        store();
    }

    // A browser window in front, with its drawer.
    std::shared_ptr<FakeHostWindow> openWindow(const QRectF &frame = QRectF(100, 100, 800, 600))
    {
        store();
        std::shared_ptr<FakeHostWindow> window = host.openWindow(frame);
        window->becomeKey();
        return window;
    }
    // The controller of the drawer that was made last.
    FakeDrawerController &controller() { return *room.controllers.back(); }

    static WayfoldBookmarkFolderPtr addFolder(const WayfoldBookmarkFolderPtr &parent, const QString &title)
    {
        WayfoldBookmarkFolderPtr folder = WayfoldBookmarkFolder::bookmarkWithTitle(title);
        parent->addChild(folder);
        return folder;
    }
    static KDRBookmarkPtr addNote(const WayfoldBookmarkFolderPtr &parent, const QString &title)
    {
        KDRBookmarkPtr note = WayfoldBookmarkNote::bookmarkWithTitleAndNote(title, QStringLiteral("text"));
        parent->addChild(note);
        return note;
    }
    static QStringList titles(const WayfoldBookmarkFolderPtr &folder)
    {
        QStringList titles;
        for (const KDRBookmarkPtr &child : folder->children())
            titles.append(child->title());
        return titles;
    }
};

// The notifications of some names, as they arrive.
class NotificationLog
{
public:
    explicit NotificationLog(const QStringList &names)
    {
        for (const QString &name : names)
            NotificationCenter::defaultCenter().addObserver(
                this, [this](const Notification &notification) { received.push_back(notification); }, name);
    }
    ~NotificationLog() { NotificationCenter::defaultCenter().removeObserver(this); }

    std::vector<Notification> received;

    QStringList names() const
    {
        QStringList names;
        for (const Notification &notification : received)
            names.append(notification.name);
        return names;
    }
    // Waits until everything that is pending now has been delivered, the idle notifications too.
    static void deliverPending()
    {
        const QString last = QStringLiteral("LastOfWhatIsPending");
        bool arrived = false;
        NotificationCenter::defaultCenter().addObserver(
            &arrived, [&arrived](const Notification &) { arrived = true; }, last);
        NotificationQueue::defaultQueue().enqueueNotification({last, &arrived}, NotificationQueue::NSPostASAP);
        QTRY_VERIFY(arrived);
        arrived = false;
        NotificationQueue::defaultQueue().enqueueNotification({last, &arrived}, NotificationQueue::NSPostWhenIdle);
        QTRY_VERIFY(arrived);
        NotificationCenter::defaultCenter().removeObserver(&arrived);
    }
};
