#pragma once

#include <QFrame>
#include <QList>
#include <QPointer>
#include <QSizeF>
#include <QVariantAnimation>
#include <memory>

class DrawerGrip;
class HostWindow;

// A window of its own that is attached to an edge of a host window, slides out beside it and follows it: moved with it,
// as high as it, hidden while it is minimised, gone when it closes, on the same workspace. Never taller than the
// window, never over it. Posts NSDrawerWillOpenNotification, NSDrawerDidOpenNotification, NSDrawerWillCloseNotification
// and NSDrawerDidCloseNotification with itself as the object.
//
// It will open is posted before anything of it shows, so that an observer can still choose the edge and move the
// window; it did close is posted once it is out of sight. A drawer that is opened again while it closes turns round and
// posts only that it did open.
//
// A drawer whose host window has a widget is a child of that widget and goes with it, if nobody has deleted it before:
// hold it by a QPointer.
class Drawer : public QFrame
{
    Q_OBJECT

public:
    enum State { Closed = 0, Opening = 1, Open = 2, Closing = 3 };
    enum Edge { NSMinXEdge = 0, NSMaxXEdge = 2 };

    // How much wider a drawer is than its content.
    static constexpr int frameWidth = 20;

    explicit Drawer(QWidget *parent = nullptr);
    ~Drawer() override;

    // The drawers attached to a window, oldest first. Allocates nothing.
    static const QList<Drawer *> &drawersForWindow(const HostWindow *window);

    // The kind of drawer; what a window's drawers are told apart by.
    virtual QString className() const;

    // None detaches (and closes at once). Held weakly.
    void setParentWindow(const std::shared_ptr<HostWindow> &window);
    std::shared_ptr<HostWindow> parentWindow() const;
    // The widget that fills the drawer; taken over, and the former one deleted.
    void setContentView(QWidget *view);
    QWidget *contentView() const;

    State state() const { return _state; }
    // Slides out at the preferred edge, unless it is open or opening, or has no parent window.
    void open();
    // Slides in, unless it is closed or closing.
    void close();
    // Opens a drawer that is closed or closing, closes any other.
    void toggle();

    // In device-independent pixels. The height follows the parent window; the width is the user's to change by the grip
    // on the free edge. An open drawer is between the minimum and three quarters of the screen wide, whatever was set.
    QSizeF contentSize() const;
    // The width that was set or that the user chose last; an open drawer is narrower where the screen has less room.
    qreal chosenContentWidth() const { return _contentSize.width(); }
    // A width below the minimum is raised to it.
    void setContentSize(const QSizeF &size);
    QSizeF minContentSize() const { return _minContentSize; }
    void setMinContentSize(const QSizeF &size);
    Edge preferredEdge() const { return _preferredEdge; }
    // Takes effect the next time the drawer opens.
    void setPreferredEdge(Edge edge) { _preferredEdge = edge; }
    // The edge that it is open on.
    Edge edge() const { return _edge; }

    // Whether it is a window of its own, with a frame of the desktop's that the user moves and sizes it by, in place of
    // one beside its parent. So it is at first where no program may place a window (Wayland). Set while it is closed.
    bool standsAlone() const { return _standsAlone; }
    void setStandsAlone(bool standsAlone);

    // Time of one slide in milliseconds, 0 for none; the default follows the desktop's wish for animations.
    void setSlideDuration(int milliseconds) { _slideDuration = milliseconds; }

protected:
    void closeEvent(QCloseEvent *event) override;
    void moveEvent(QMoveEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    void attach(const std::shared_ptr<HostWindow> &window);
    void detach();
    void parentWindowWillClose();
    void followParent();
    void showWith(const HostWindow &window);

    void slideTo(qreal goal);
    bool looksOpen() const;
    void finishSlide();
    void slideEnded();
    bool closeAtOnce();
    int slideTime() const;

    QRect openGeometry() const;
    qreal widestContent() const;
    qreal contentWidth() const;
    int openWidth() const;
    void layOut();
    void layOutBeside(const HostWindow &window, const QRect &whole);
    void layOutBody(const QSize &whole);
    void putBack();
    void moveFreeEdge(int distance);

    std::weak_ptr<HostWindow> _parentWindow;
    const HostWindow *_attachedTo = nullptr; // only compared: the window may be gone
    QWidget *_body = nullptr;                // as large as the open drawer, behind the opening while it slides
    DrawerGrip *_grip = nullptr;
    QPointer<QWidget> _contentView;

    bool _standsAlone = false;
    State _state = Closed;
    Edge _preferredEdge = NSMaxXEdge;
    Edge _edge = NSMaxXEdge;
    QSizeF _contentSize;
    QSizeF _minContentSize;
    qreal _widthWhenGrabbed = 0;

    QVariantAnimation _slide;
    int _slideDuration = -1; // negative: the desktop's
    qreal _shown = 0;        // how far it is out, 0 to 1
    QRect _out;              // the part that is out, in this window, which is cut off at the screen's edges
    bool _isOnScreen = false;
    bool _isAboutToOpen = false; // and everybody is being told
    QRect _place;                // where it was last put
    int _timesPutBack = 0;       // since then
};
