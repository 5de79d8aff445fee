#pragma once

#include "platform/host/HostSettings.h"

#include <QSize>

// The browser's own settings: the persistent domain "org.wayfold.Browser".
class BrowserHostSettings : public HostSettings
{
public:
    // Stores the defaults of the settings that have no value yet.
    BrowserHostSettings();

    QVariant objectForKey(const QString &key) const override;
    void setObjectForKey(const QVariant &value, const QString &key) override;

    // Whether new pages open in tabs; in windows of their own otherwise. Setting "TabbedBrowsing".
    bool tabbedBrowsing() const;
    // The size of the window that was closed last; invalid when none was. Setting "WindowSize".
    QSize windowSize() const;
    void setWindowSize(const QSize &size);
};
