#pragma once

#include "platform/host/HostWindow.h"

#include <QPointer>
#include <QRect>
#include <QTimer>
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
    // While the window is on its way to a frame that was set, that frame.
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
    QSizeF leastFrameSize() const;
    bool restoreLeftState(const QRect &frame);
    void leaveSpecialState();
    void place(const QRect &frame) const;
    void settle();
    void animateTo(const QRect &frame);

    QPointer<BrowserWindow> _window;
    QPointer<QVariantAnimation> _animation;
    QTimer _settleTimer; // runs until the window manager has let go of a state that the window has left
    int _settleAttempts = 0;
    QRectF _requestedFrame; // the last one that was set, as far as it could be; may lie between two pixels
    QRect _leftFrame;       // the frame that the window had while maximised
    QRect _leftNormalGeometry;
    Qt::WindowStates _leftStates = Qt::WindowNoState;
};
