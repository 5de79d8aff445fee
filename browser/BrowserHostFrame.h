#pragma once

#include "platform/host/HostFrame.h"

#include <functional>
#include <optional>

// A frame as the plug-in sees it: what its view told it last. Knows its view weakly and never asks the page.
class BrowserHostFrame : public HostFrame
{
public:
    using Loader = std::function<void(const Url &)>;

    BrowserHostFrame(const std::weak_ptr<HostWebView> &webView, Loader loader);

    std::shared_ptr<HostWebView> webView() const override;
    const HostDataSource *dataSource() const override;
    const HostDataSource *provisionalDataSource() const override;
    void loadRequest(const Url &url) override;

    // A page at that address is being fetched.
    void startProvisionalLoad(const Url &url);
    // The page at that address has taken the place of the one before it.
    void commit(const Url &url);
    // Nothing is being fetched any more.
    void stopProvisionalLoad();
    // The view goes; from now on this answers none.
    void detach();

private:
    std::weak_ptr<HostWebView> _webView;
    Loader _loader;
    std::optional<HostDataSource> _dataSource;
    std::optional<HostDataSource> _provisionalDataSource;
};
