#pragma once

#include "browser/BrowserHostMenuBar.h"
#include "platform/host/HostApplication.h"
#include "platform/host/HostClasses.h"

#include <QColor>
#include <functional>

struct BrowserServices;

// The browser as the plug-in sees it.
class BrowserHost : public HostApplication
{
public:
    using KeyWindow = std::function<std::shared_ptr<HostWindow>()>;

    BrowserHost(BrowserServices &services, KeyWindow keyWindow);

    std::shared_ptr<HostWindow> keyWindow() const override;
    HostClasses &classes() override;
    BrowserHostMenuBar &mainMenu() override;
    HostSettings &settings() override;
    QString bookmarkFilePath() const override;
    QString historyFilePath() const override;
    QImage imageNamed(const QString &name, const QSize &size) const override;
    QImage siteIconForAddress(const QString &address, const QSize &size) const override;

private:
    const QImage &neutralSiteIcon(const QSize &size) const;

    BrowserServices &_services;
    KeyWindow _keyWindow;
    HostClasses _classes;
    BrowserHostMenuBar _menuBar;
    mutable QImage _neutralSiteIcon; // as it was drawn last
    mutable QColor _neutralColor;
};
