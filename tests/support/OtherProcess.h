#pragma once

#include "platform/files/UserDefaults.h"

// What another process does to the settings, as seen from here.
namespace OtherProcess
{
// An invalid value takes the setting away.
inline void changeSetting(const QString &key, const QVariant &value,
                          const QString &domainName = QStringLiteral("org.wayfold.Wayfold"))
{
    UserDefaults own;
    QVariantMap domain = own.persistentDomainForName(domainName);
    if (value.isValid())
        domain.insert(key, value);
    else
        domain.remove(key);
    own.setPersistentDomainForName(domain, domainName);
    if (!own.synchronize())
        qFatal("cannot write the settings");
}
} // namespace OtherProcess
