#include "browser/BrowserHostSettings.h"

#include "platform/files/UserDefaults.h"

namespace
{
const QString domainName = QStringLiteral("org.wayfold.Browser");
const QString tabbedBrowsingKey = QStringLiteral("TabbedBrowsing");
const QString windowSizeKey = QStringLiteral("WindowSize");
} // namespace

BrowserHostSettings::BrowserHostSettings()
{
    if (!BrowserHostSettings::objectForKey(tabbedBrowsingKey).isValid())
        BrowserHostSettings::setObjectForKey(true, tabbedBrowsingKey);
}

QVariant BrowserHostSettings::objectForKey(const QString &key) const
{
    return UserDefaults::standardUserDefaults().persistentDomainForName(domainName).value(key);
}

void BrowserHostSettings::setObjectForKey(const QVariant &value, const QString &key)
{
    QVariantMap domain = UserDefaults::standardUserDefaults().persistentDomainForName(domainName);
    if (value.isValid())
        domain.insert(key, value);
    else
        domain.remove(key);
    UserDefaults::standardUserDefaults().setPersistentDomainForName(domain, domainName);
}

bool BrowserHostSettings::tabbedBrowsing() const
{
    return objectForKey(tabbedBrowsingKey).toBool();
}

QSize BrowserHostSettings::windowSize() const
{
    const QVariantMap size = objectForKey(windowSizeKey).toMap();
    return QSize(size.value(QStringLiteral("width"), -1).toInt(), size.value(QStringLiteral("height"), -1).toInt());
}

void BrowserHostSettings::setWindowSize(const QSize &size)
{
    const QVariantMap stored{{QStringLiteral("width"), qlonglong(size.width())},
                             {QStringLiteral("height"), qlonglong(size.height())}};
    setObjectForKey(stored, windowSizeKey);
}
