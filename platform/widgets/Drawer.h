#pragma once

#include <QFrame>
#include <QList>
#include <QPointer>
#include <QSizeF>
#include <memory>

class HostWindow;
class QVariantAnimation;

// A window of its own that is attached to an edge of a host window, slides out beside it and follows it: moved with it,
// as high as it, hidden while it is minimised, gone when it closes, on the same workspace. Never taller than the
// window, never over it. Posts NSDrawerWillOpenNotification, NSDrawerDidOpenNotification, NSDrawerWillCloseNotification
// and NSDrawerDidCloseNotification with itself as the object.
class Drawer : public QFrame
{
    Q_OBJECT

public:
    enum State { Closed = 0, Opening = 1, Open = 2, Closing = 3 };
    enum Edge { NSMinXEdge = 0, NSMaxXEdge = 2 };

    explicit Drawer(QWidget *parent = nullptr);
    ~Drawer() override;

    // The drawers attached to a window, oldest first. Allocates nothing.
    static const QList<Drawer *> &drawersForWindow(const HostWindow *window);

    // The kind of drawer; what a window's drawers are told apart by.
    virtual QString className() const;

    // None detaches (and closes at once). Held weakly.
    void setParentWindow(const std::shared_ptr<HostWindow> &window);
    std::shared_ptr<HostWindow> parentWindow() const;
    // The widget that fills the drawer; taken over.
    void setContentView(QWidget *view);
    QWidget *contentView() const;

    State state() const;
    // Slides out at the preferred edge, unless it is open or opening.
    void open();
    // Slides in, unless it is closed or closing.
    void close();
    // Opens a drawer that is closed or closing, closes any other.
    void toggle();

    // Both in device-independent pixels. The height follows the parent window; the width is the user's to change by
    // dragging the free edge, between the minimum and three quarters of the screen.
    QSizeF contentSize() const;
    void setContentSize(const QSizeF &size);
    QSizeF minContentSize() const;
    void setMinContentSize(const QSizeF &size);
    Edge preferredEdge() const;
    // Takes effect the next time the drawer opens.
    void setPreferredEdge(Edge edge);
    // The edge that it is open on.
    Edge edge() const;

    // Time of one slide in milliseconds, 0 for none; the default follows the desktop's wish for animations.
    void setSlideDuration(int milliseconds);
};
