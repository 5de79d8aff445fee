#pragma once

#include <QImage>
#include <QSize>
#include <QString>
#include <memory>

class HostClasses;
class HostMenuBar;
class HostSettings;
class HostWindow;

// A browser as the plug-in sees it: everything that a host must offer, beside the objects that it leads to. All calls
// are made on the main thread, and none may wait for a page.
class HostApplication
{
public:
    virtual ~HostApplication() = default;

    // The window that has the keyboard; the browser window when a drawer or a sheet of it has the keyboard. None when
    // another application is in front.
    virtual std::shared_ptr<HostWindow> keyWindow() const = 0;
    virtual HostClasses &classes() = 0;
    virtual HostMenuBar &mainMenu() = 0;
    virtual HostSettings &settings() = 0;

    // Where the browser keeps its bookmarks and its history (property lists); "~" stands for the home directory.
    virtual QString bookmarkFilePath() const = 0;
    virtual QString historyFilePath() const = 0;

    // The image that the host knows by that name, in a resolution fit for `size` (pixels); an empty size: the image as
    // it is, in its natural one. Null when there is none.
    virtual QImage imageNamed(const QString &name, const QSize &size) const = 0;
    // The icon of the site that the address belongs to, from what the browser has seen already, for that size (pixels).
    // A neutral icon in the palette's text colour when it has none, so that no row of a list goes without.
    virtual QImage siteIconForAddress(const QString &address, const QSize &size) const = 0;
};
