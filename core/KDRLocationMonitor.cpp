#include "core/KDRLocationMonitor.h"

#include "core/KDRDrawerBundle.h"

KDRLocationMonitor::KDRLocationMonitor(std::unique_ptr<HostLocationChangeHandler> base) : _base(std::move(base)) {}

void KDRLocationMonitor::webViewDidFinishLoadForFrame(HostWebView &view, const std::shared_ptr<HostFrame> &frame)
{
    // The host's own handling may let go of it. NOLINTNEXTLINE(performance-unnecessary-copy-initialization)
    const std::shared_ptr<HostFrame> held = frame;
    _base->webViewDidFinishLoadForFrame(view, held);
    KDRDrawerBundle::sharedInstance().updateDrawerForFrame(held);
}
