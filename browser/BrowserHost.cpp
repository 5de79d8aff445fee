#include "browser/BrowserHost.h"

#include "browser/BookmarkFile.h"
#include "browser/BrowserHostSettings.h"
#include "browser/BrowserServices.h"
#include "browser/HistoryFile.h"
#include "browser/SiteIcons.h"
#include "browser/SymbolIcon.h"

#include <QGuiApplication>
#include <QPalette>

namespace
{
constexpr QSizeF naturalSize(32, 32); // of the drawings, in device-independent pixels
} // namespace

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
    if (name != QLatin1String("BookmarkPreferences"))
        return {};
    const QString symbol = QStringLiteral("link");
    if (!size.isEmpty())
        return SymbolIcon::image(symbol, size);
    const qreal density = qGuiApp->devicePixelRatio();
    QImage image = SymbolIcon::image(symbol, (naturalSize * density).toSize());
    image.setDevicePixelRatio(density);
    return image;
}

QImage BrowserHost::siteIconForAddress(const QString &address, const QSize &size) const
{
    const QImage icon = _services.siteIcons->iconForAddress(address, size);
    return icon.isNull() ? neutralSiteIcon(size) : icon;
}

// Asked for at every drawing of a row, and drawn only when it has to look different.
const QImage &BrowserHost::neutralSiteIcon(const QSize &size) const
{
    const QColor color = QGuiApplication::palette().color(QPalette::Text);
    if (_neutralSiteIcon.size() != size || _neutralColor != color)
        _neutralSiteIcon = SymbolIcon::image(QStringLiteral("site"), size);
    _neutralColor = color;
    return _neutralSiteIcon;
}
