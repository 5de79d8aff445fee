#pragma once

#include <QStringList>
#include <QtPlugin>

class HostApplication;
class HostObserver;

// The plug-in's entry, found by the host through QPluginLoader.
class HostPlugin
{
public:
    virtual ~HostPlugin() = default;
    // Starts the plug-in. The host outlives it; the observer belongs to the plug-in and is told what happens from now
    // on. Called once.
    virtual HostObserver *load(HostApplication *host) = 0;
    // The sites that the user keeps a list for, for a host's start page: the titles of the lists, in the user's order.
    // A title is mostly a host name, but the user's to change: it may be any text.
    virtual QStringList sitesWithList() const = 0;
};

#define WAYFOLD_HOST_PLUGIN_IID "org.wayfold.HostPlugin/2"
Q_DECLARE_INTERFACE(HostPlugin, WAYFOLD_HOST_PLUGIN_IID)
