#pragma once

#include "platform/host/HostObserver.h"

// Passes on what the host tells as notifications of the default centre (see PlatformNotifications.h); the window of a
// notification is a `const HostWindow *`.
class HostEvents : public HostObserver
{
public:
    void windowDidBecomeKey(const std::shared_ptr<HostWindow> &window) override;
    void windowWillClose(const std::shared_ptr<HostWindow> &window) override;
    void windowFrameDidChange(const std::shared_ptr<HostWindow> &window) override;
    void applicationWillTerminate() override;
};
