#pragma once

#include "platform/host/HostLocationChangeHandler.h"

// Stands in for the host's "LocationChangeHandler": tells the store of every frame that has finished loading, after
// the host's own handling.
class KDRLocationMonitor : public HostLocationChangeHandler
{
public:
    explicit KDRLocationMonitor(std::unique_ptr<HostLocationChangeHandler> base);

    void webViewDidFinishLoadForFrame(HostWebView &view, const std::shared_ptr<HostFrame> &frame) override;

private:
    std::unique_ptr<HostLocationChangeHandler> _base;
};
