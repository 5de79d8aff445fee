#pragma once

#include "platform/base/NotificationCenter.h"

#include <QAbstractEventDispatcher>
#include <QObject>
#include <QPointer>
#include <vector>

// Posts notifications later, to the default centre. A notification of the same name and object is pending only once; of
// two posting styles, the sooner counts. Nothing is delivered while an application-modal dialog runs, the mouse is held
// down or something is dragged (see Pause); it stays pending until that is over.
class NotificationQueue : public QObject
{
    Q_OBJECT

public:
    enum PostingStyle {
        NSPostWhenIdle = 1, // when the event loop has been through a whole pass without handling an event
        NSPostASAP = 2,     // at the end of the current pass of the event loop, after all events that are waiting
    };

    // Holds all deliveries of the default queue back for as long as it lives. For an event loop in which the user does
    // something that must not be disturbed, such as a drag, during which the state of the mouse may not be known.
    class Pause
    {
    public:
        Pause();
        ~Pause();
        Pause(const Pause &) = delete;
        Pause &operator=(const Pause &) = delete;
    };

    static NotificationQueue &defaultQueue();

    void enqueueNotification(const Notification &notification, PostingStyle style);
    // Takes pending notifications about an object back, for the object that goes.
    void dequeueNotificationsForObject(const void *object);

protected:
    bool event(QEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    struct Pending
    {
        Notification notification;
        PostingStyle style;
        quint64 serial; // in the order of enqueueing
    };

    bool isHeldBack() const;
    bool hasPending(PostingStyle style) const;
    void postDeliveryEvent();
    void deliver(PostingStyle style);
    void watchEventLoop();
    void passedLandmark();

    std::vector<Pending> _pending;
    quint64 _lastSerial = 0;
    int _pauses = 0;
    QPointer<QAbstractEventDispatcher> _dispatcher;
    bool _isDeliveryEventPosted = false;
    bool _hasHandledEvent = false;
    int _quietStretches = 0;
};
