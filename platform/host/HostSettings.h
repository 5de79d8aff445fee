#pragma once

#include <QString>
#include <QVariant>

// The host application's own settings.
class HostSettings
{
public:
    virtual ~HostSettings() = default;
    // The stored value, an invalid variant when there is none.
    virtual QVariant objectForKey(const QString &key) const = 0;
    virtual void setObjectForKey(const QVariant &value, const QString &key) = 0;
};
