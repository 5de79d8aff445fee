#include "core/KDRLocationMonitor.h"

#include "core/KDRDrawerBundle.h"

KDRLocationMonitor::KDRLocationMonitor(std::unique_ptr<HostLocationChangeHandler> base) : _base(std::move(base)) {}

void KDRLocationMonitor::webViewDidFinishLoadForFrame(HostWebView &view, const std::shared_ptr<HostFrame> &frame)
{
    _base->webViewDidFinishLoadForFrame(view, frame);
    KDRDrawerBundle::sharedInstance().updateDrawerForFrame(frame);
}
