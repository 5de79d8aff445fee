#pragma once

#include "platform/base/Url.h"

#include <QRectF>
#include <QString>
#include <memory>

class HostWebView;
class QWidget;

// One window of the host, with what its browser controller offers. Held weakly by the plug-in; it can vanish at any
// time, and says so first through HostObserver::windowWillClose. Notifications carry the bare window; whoever wants to
// keep it asks it for its shared pointer.
class HostWindow : public std::enable_shared_from_this<HostWindow>
{
public:
    virtual ~HostWindow() = default;

    // The kind of window; browser windows answer "BrowserWindow".
    virtual QString className() const = 0;
    // The title as shown: for a browser window the title of its current page.
    virtual QString title() const = 0;

    // The frame (decorations included) in device-independent pixels, y growing downwards.
    virtual QRectF frame() const = 0;
    // Sets the frame; `animate` asks for a smooth transition. A window may stay larger than it is asked to be; `frame`
    // answers at once what it comes to.
    virtual void setFrame(const QRectF &frame, bool animate) = 0;
    // The part of the window's screen that panels and docks leave free.
    virtual QRectF visibleScreenFrame() const = 0;
    // Whether the window can be seen at all: shown, and neither minimised nor hidden.
    virtual bool isVisible() const = 0;
    // Brings the window to the front and gives it the keyboard.
    virtual void makeKeyAndOrderFront() = 0;

    // The window as a widget of this process, to attach drawers and sheets to; null when it belongs to another one.
    virtual QWidget *widget() const = 0;

    // The browser controller's part. The web view of the tab in front; none for windows without tabs.
    virtual std::shared_ptr<HostWebView> currentWebView() const = 0;
    virtual void openURLInNewTab(const Url &url) = 0;
    // Loads the address into the current tab.
    virtual void windowShouldGoToURL(const Url &url) = 0;
};
