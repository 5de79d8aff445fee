#include "browser/BrowserHostWebView.h"

#include "platform/host/HostFrame.h"
#include "platform/host/HostWindow.h"

std::shared_ptr<HostFrame> BrowserHostWebView::mainFrame() const
{
    return _mainFrame;
}

std::shared_ptr<HostWindow> BrowserHostWebView::hostWindow() const
{
    return _hostWindow.lock();
}

void BrowserHostWebView::setMainFrame(const std::shared_ptr<HostFrame> &frame)
{
    _mainFrame = frame;
}

void BrowserHostWebView::setHostWindow(const std::weak_ptr<HostWindow> &window)
{
    _hostWindow = window;
}
