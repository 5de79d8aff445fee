#pragma once

#include "platform/host/HostWindow.h"

#include <QPointer>
#include <QRect>
#include <QVariantAnimation>

class BrowserWindow;

// A browser window as the plug-in sees it. Outlives the window, and then answers none.
class BrowserHostWindow : public HostWindow
{
public:
    explicit BrowserHostWindow(BrowserWindow *window);
    ~BrowserHostWindow() override;

    QString className() const override;
    QString title() const override;
    // While a smooth transition runs, the frame that it leads to.
    QRectF frame() const override;
    // A maximised window leaves that state, and takes it up again when it is given back the frame that it had in it.
    void setFrame(const QRectF &frame, bool animate) override;
    QRectF visibleScreenFrame() const override;
    bool isVisible() const override;
    void makeKeyAndOrderFront() override;
    QWidget *widget() const override;
    std::shared_ptr<HostWebView> currentWebView() const override;
    void openURLInNewTab(const Url &url) override;
    void windowShouldGoToURL(const Url &url) override;

private:
    bool restoreLeftState(const QRect &frame);
    void leaveSpecialState();
    void place(const QRect &frame) const;
    void animateTo(const QRect &frame);

    QPointer<BrowserWindow> _window;
    QPointer<QVariantAnimation> _animation;
    QRectF _requestedFrame; // the last one that was set; may lie between two pixels
    QRect _leftFrame;       // the frame that the window had while maximised
    Qt::WindowStates _leftStates = Qt::WindowNoState;
};
