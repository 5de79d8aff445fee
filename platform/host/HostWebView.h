#pragma once

#include <memory>

class HostFrame;
class HostWindow;

// One web view: what a tab shows. Both answers allocate nothing: they are asked for at every drawing.
class HostWebView
{
public:
    virtual ~HostWebView() = default;

    // None once the view is being torn down.
    virtual std::shared_ptr<HostFrame> mainFrame() const = 0;
    // The window that holds the view, whether its tab is in front or not; none while it is being moved or closed.
    virtual std::shared_ptr<HostWindow> hostWindow() const = 0;
};
