#include "plugin/WayfoldPlugin.h"

#include "core/KDRDrawerBundle.h"
#include "drawer/DrawerRoom.h"
#include "model/ItemCodec.h"
#include "model/WayfoldBookmarkFolder.h"
#include "platform/base/NotificationCenter.h"
#include "platform/base/PlatformNotifications.h"
#include "platform/host/CurrentHost.h"

HostObserver *WayfoldPlugin::load(HostApplication *host)
{
    setCurrentHost(host);
    ItemCodec::install();
    installDrawerRoom();
    _contacts = std::make_unique<ContactSource>();
    NotificationCenter::defaultCenter().addObserver(
        this, [this](const Notification & /*notification*/) { _contacts.reset(); },
        PlatformNotifications::NSApplicationWillTerminateNotification);
    KDRDrawerBundle::load();
    return &_events;
}

QStringList WayfoldPlugin::sitesWithList() const
{
    QStringList titles;
    for (const auto &item : KDRDrawerBundle::sharedInstance().bookmarkRoot()->children()) {
        if (item->isFolder())
            titles.append(item->title());
    }
    return titles;
}
