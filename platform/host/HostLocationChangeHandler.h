#pragma once

#include <memory>

class HostFrame;
class HostWebView;

// The host's class "LocationChangeHandler": one instance a web view, told of everything that finishes loading.
class HostLocationChangeHandler
{
public:
    virtual ~HostLocationChangeHandler() = default;
    // A frame, main or sub, has finished loading.
    virtual void webViewDidFinishLoadForFrame(HostWebView &view, const std::shared_ptr<HostFrame> &frame) = 0;
};
