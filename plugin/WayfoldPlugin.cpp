#include "plugin/WayfoldPlugin.h"

#include "core/KDRDrawerBundle.h"
#include "drawer/DrawerRoom.h"
#include "model/ItemClasses.h"
#include "platform/host/CurrentHost.h"

HostObserver *WayfoldPlugin::load(HostApplication *host)
{
    setCurrentHost(host);
    registerItemClasses();
    installDrawerRoom();
    KDRDrawerBundle::load();
    return &_events;
}
