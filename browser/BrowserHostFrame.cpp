#include "browser/BrowserHostFrame.h"

#include "platform/host/HostWebView.h"

BrowserHostFrame::BrowserHostFrame(const std::weak_ptr<HostWebView> &webView, Loader loader)
    : _webView(webView)
    , _loader(std::move(loader))
{}

std::shared_ptr<HostWebView> BrowserHostFrame::webView() const
{
    return _webView.lock();
}

const HostDataSource *BrowserHostFrame::dataSource() const
{
    return _dataSource ? &*_dataSource : nullptr;
}

const HostDataSource *BrowserHostFrame::provisionalDataSource() const
{
    return _provisionalDataSource ? &*_provisionalDataSource : nullptr;
}

void BrowserHostFrame::loadRequest(const Url &url)
{
    if (_loader && !url.isNull())
        _loader(url);
}

void BrowserHostFrame::startProvisionalLoad(const Url &url)
{
    _provisionalDataSource = HostDataSource{url};
}

void BrowserHostFrame::commit(const Url &url)
{
    _dataSource = HostDataSource{url};
    _provisionalDataSource.reset();
}

void BrowserHostFrame::stopProvisionalLoad()
{
    _provisionalDataSource.reset();
}

void BrowserHostFrame::detach()
{
    _webView.reset();
    _loader = nullptr;
    _dataSource.reset();
    _provisionalDataSource.reset();
}
