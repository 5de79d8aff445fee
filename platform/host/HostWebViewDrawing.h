#pragma once

class HostWebView;

// The drawing half of the host's class "WebView": one instance a web view, called each time the view is about to draw.
class HostWebViewDrawing
{
public:
    virtual ~HostWebViewDrawing() = default;
    virtual void lockFocus(HostWebView &view) = 0;
};
