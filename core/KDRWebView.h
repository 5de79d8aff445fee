#pragma once

#include "platform/host/HostWebViewDrawing.h"

#include <memory>

// Stands in for the host's "WebView": tells the store of every drawing, before it. This is how a switch between tabs
// is noticed, which loads nothing.
class KDRWebView : public HostWebViewDrawing
{
public:
    explicit KDRWebView(std::unique_ptr<HostWebViewDrawing> base);

    void lockFocus(HostWebView &view) override;

private:
    std::unique_ptr<HostWebViewDrawing> _base;
};
