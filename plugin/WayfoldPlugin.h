#pragma once

#include "core/ContactSource.h"
#include "core/HostEvents.h"
#include "platform/host/HostPlugin.h"

#include <QObject>
#include <memory>

// The plug-in's entry: wires the rooms to each other and to the host, and starts the store.
class WayfoldPlugin : public QObject, public HostPlugin
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID WAYFOLD_HOST_PLUGIN_IID)
    Q_INTERFACES(HostPlugin)

public:
    HostObserver *load(HostApplication *host) override;
    QStringList sitesWithList() const override;

private:
    HostEvents _events;
    std::unique_ptr<ContactSource> _contacts; // until the host quits
};
