#pragma once

#include <memory>

class HostWindow;

// What a host tells the plug-in, as it happens and on the main thread.
class HostObserver
{
public:
    virtual ~HostObserver() = default;

    virtual void windowDidBecomeKey(const std::shared_ptr<HostWindow> &window) = 0;
    // The window is about to go; it can still be asked anything.
    virtual void windowWillClose(const std::shared_ptr<HostWindow> &window) = 0;
    // The window was moved, resized, minimised, restored, shown or hidden.
    virtual void windowFrameDidChange(const std::shared_ptr<HostWindow> &window) = 0;
    virtual void applicationWillTerminate() = 0;
};
