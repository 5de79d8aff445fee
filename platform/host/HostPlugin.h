#pragma once

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
};

#define WAYFOLD_HOST_PLUGIN_IID "org.wayfold.HostPlugin/1"
Q_DECLARE_INTERFACE(HostPlugin, WAYFOLD_HOST_PLUGIN_IID)
