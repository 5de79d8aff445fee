#include "core/HostEvents.h"

#include "platform/base/NotificationCenter.h"
#include "platform/base/PlatformNotifications.h"
#include "platform/host/HostWindow.h"

namespace
{
void post(const QString &name, const std::shared_ptr<HostWindow> &window)
{
    // Held until everyone has been told, whoever lets go of it meanwhile.
    if (window)
        NotificationCenter::defaultCenter().postNotificationName(name, window->shared_from_this().get());
}
} // namespace

void HostEvents::windowDidBecomeKey(const std::shared_ptr<HostWindow> &window)
{
    post(PlatformNotifications::NSWindowDidBecomeKeyNotification, window);
}

void HostEvents::windowWillClose(const std::shared_ptr<HostWindow> &window)
{
    post(PlatformNotifications::NSWindowWillCloseNotification, window);
}

void HostEvents::windowFrameDidChange(const std::shared_ptr<HostWindow> &window)
{
    post(PlatformNotifications::WindowFrameDidChangeNotification, window);
}

void HostEvents::applicationWillTerminate()
{
    NotificationCenter::defaultCenter().postNotificationName(
        PlatformNotifications::NSApplicationWillTerminateNotification, nullptr);
}
