#include "core/KDRWebView.h"

#include "core/KDRDrawerBundle.h"
#include "platform/host/HostWebView.h"

KDRWebView::KDRWebView(std::unique_ptr<HostWebViewDrawing> base) : _base(std::move(base)) {}

void KDRWebView::lockFocus(HostWebView &view)
{
    KDRDrawerBundle::sharedInstance().updateDrawerForFrame(view.mainFrame());
    _base->lockFocus(view);
}
