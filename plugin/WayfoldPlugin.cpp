#include "plugin/WayfoldPlugin.h"

#include "core/KDRDrawerBundle.h"
#include "drawer/DrawerRoom.h"
#include "model/ItemClasses.h"
#include "model/WayfoldBookmarkFolder.h"
#include "platform/host/CurrentHost.h"

HostObserver *WayfoldPlugin::load(HostApplication *host)
{
    setCurrentHost(host);
    registerItemClasses();
    installDrawerRoom();
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
