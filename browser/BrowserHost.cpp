#include "browser/BrowserHost.h"

#include "browser/BookmarkFile.h"
#include "browser/BrowserHostSettings.h"
#include "browser/BrowserServices.h"
#include "browser/HistoryFile.h"
#include "browser/SiteIcons.h"
#include "browser/SymbolIcon.h"

BrowserHost::BrowserHost(BrowserServices &services, KeyWindow keyWindow)
    : _services(services)
    , _keyWindow(std::move(keyWindow))
{
    _classes.add(QStringLiteral("LocationChangeHandler"), &services.locationChangeHandlerClass);
    _classes.add(QStringLiteral("WebView"), &services.webViewClass);
}

std::shared_ptr<HostWindow> BrowserHost::keyWindow() const
{
    return _keyWindow();
}

HostClasses &BrowserHost::classes()
{
    return _classes;
}

BrowserHostMenuBar &BrowserHost::mainMenu()
{
    return _menuBar;
}

HostSettings &BrowserHost::settings()
{
    return *_services.settings;
}

QString BrowserHost::bookmarkFilePath() const
{
    return BookmarkFile::defaultPath();
}

QString BrowserHost::historyFilePath() const
{
    return HistoryFile::defaultPath();
}

QImage BrowserHost::imageNamed(const QString &name, const QSize &size) const
{
    return name == QLatin1String("BookmarkPreferences") ? SymbolIcon::image(QStringLiteral("link"), size) : QImage();
}

QImage BrowserHost::siteIconForAddress(const QString &address, const QSize &size) const
{
    return _services.siteIcons->iconForAddress(address, size);
}
