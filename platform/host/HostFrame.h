#pragma once

#include "platform/base/Url.h"

#include <memory>

class HostWebView;

// What a frame shows, or is about to show: the request that led to it.
struct HostDataSource
{
    Url requestUrl; // none when the page has no address
};

// One frame of a page: the main frame, which lives as long as its web view and keeps its identity from page to
// page, or a sub-frame. A frame can outlive its web view; it then answers none to everything.
class HostFrame
{
public:
    virtual ~HostFrame() = default;

    virtual std::shared_ptr<HostWebView> webView() const = 0;
    // The committed page; null when nothing has been committed yet. Valid until control returns to the host.
    virtual const HostDataSource *dataSource() const = 0;
    // The page that is being fetched; null when none is. Valid until control returns to the host.
    virtual const HostDataSource *provisionalDataSource() const = 0;
    // Asks for the page at the address to be loaded into this frame; never waits for it.
    virtual void loadRequest(const Url &url) = 0;
};
