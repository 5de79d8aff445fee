#pragma once

#include "platform/host/HostWebView.h"

// A web view as the plug-in sees it. Plain fields that the view keeps up to date, so that the answers cost nothing.
class BrowserHostWebView : public HostWebView
{
public:
    std::shared_ptr<HostFrame> mainFrame() const override;
    std::shared_ptr<HostWindow> hostWindow() const override;

    void setMainFrame(const std::shared_ptr<HostFrame> &frame);
    // None takes the view out of its window.
    void setHostWindow(const std::weak_ptr<HostWindow> &window);

private:
    std::shared_ptr<HostFrame> _mainFrame;
    std::weak_ptr<HostWindow> _hostWindow;
};
