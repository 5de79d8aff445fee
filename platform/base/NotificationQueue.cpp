#include "platform/base/NotificationQueue.h"

#include <QCoreApplication>
#include <QEvent>
#include <QGuiApplication>
#include <QWindow>
#include <algorithm>

namespace
{
const QEvent::Type deliveryEvent = static_cast<QEvent::Type>(QEvent::registerEventType());

bool isApplicationModalDialogRunning()
{
    if (!qobject_cast<QGuiApplication *>(QCoreApplication::instance()) || !QGuiApplication::modalWindow())
        return false;
    // A sheet may have been opened on top of the application-modal dialog, so the topmost is not the only one to ask.
    const QWindowList windows = QGuiApplication::topLevelWindows();
    return std::any_of(windows.begin(), windows.end(), [](const QWindow *window) {
        return window->isVisible() && window->modality() == Qt::ApplicationModal;
    });
}
// A list that is loaded anew between press and release forgets what was pressed, and a drag becomes a selection.
bool isMouseHeldDown()
{
    return QGuiApplication::mouseButtons().testFlag(Qt::LeftButton);
}
} // namespace

NotificationQueue &NotificationQueue::defaultQueue()
{
    static NotificationQueue queue;
    return queue;
}

NotificationQueue::Pause::Pause()
{
    ++defaultQueue()._pauses;
}

NotificationQueue::Pause::~Pause()
{
    NotificationQueue &queue = defaultQueue();
    if (--queue._pauses == 0 && queue._dispatcher)
        queue._dispatcher->wakeUp(); // or the next pass might be long in coming
}

bool NotificationQueue::isHeldBack() const
{
    return _pauses > 0 || isMouseHeldDown() || isApplicationModalDialogRunning();
}

void NotificationQueue::enqueueNotification(const Notification &notification, PostingStyle style)
{
    const auto same = std::find_if(_pending.begin(), _pending.end(), [&](const Pending &pending) {
        return pending.notification.name == notification.name && pending.notification.object == notification.object;
    });
    if (same != _pending.end()) {
        if (same->style == NSPostASAP || style == NSPostWhenIdle)
            return;
        _pending.erase(same); // it was to come when idle, and comes sooner now
    }
    if (style == NSPostWhenIdle && !hasPending(NSPostWhenIdle)) {
        // What is being handled right now counts as an event of this pass.
        _hasHandledEvent = true;
        _quietStretches = 0;
    }
    _pending.push_back({notification, style, ++_lastSerial});
    watchEventLoop();
    if (style == NSPostASAP)
        postDeliveryEvent();
    else if (_dispatcher)
        _dispatcher->wakeUp();
}

void NotificationQueue::dequeueNotificationsForObject(const void *object)
{
    const auto isAbout = [object](const Pending &pending) { return pending.notification.object == object; };
    _pending.erase(std::remove_if(_pending.begin(), _pending.end(), isAbout), _pending.end());
    watchEventLoop();
}

bool NotificationQueue::hasPending(PostingStyle style) const
{
    return std::any_of(_pending.begin(), _pending.end(), [style](const Pending &p) { return p.style == style; });
}

// Lowest in priority, so that it comes after all events that are posted already.
void NotificationQueue::postDeliveryEvent()
{
    if (_isDeliveryEventPosted)
        return;
    _isDeliveryEventPosted = true;
    QCoreApplication::postEvent(this, new QEvent(deliveryEvent), Qt::LowEventPriority);
}

bool NotificationQueue::event(QEvent *event)
{
    if (event->type() != deliveryEvent)
        return QObject::event(event);
    _isDeliveryEventPosted = false;
    deliver(NSPostASAP);
    return true;
}

bool NotificationQueue::eventFilter(QObject *, QEvent *)
{
    _hasHandledEvent = true;
    return false;
}

// Delivers what is pending now, but not what the observers enqueue meanwhile. An observer may take notifications back,
// open a dialog, or run an event loop of its own that delivers the others, so each is looked up afresh.
void NotificationQueue::deliver(PostingStyle style)
{
    const quint64 last = _lastSerial;
    while (!isHeldBack()) {
        const auto next = std::find_if(_pending.begin(), _pending.end(),
                                       [&](const Pending &p) { return p.style == style && p.serial <= last; });
        if (next == _pending.end())
            break;
        const Notification notification = next->notification;
        _pending.erase(next);
        NotificationCenter::defaultCenter().postNotification(notification);
    }
    watchEventLoop();
}

// The event loop is watched only while something is pending, and events are counted only while it waits for an idle
// moment.
void NotificationQueue::watchEventLoop()
{
    QCoreApplication *application = QCoreApplication::instance();
    QAbstractEventDispatcher *wanted = _pending.empty() ? nullptr : QAbstractEventDispatcher::instance();
    if (_dispatcher != wanted) {
        if (_dispatcher)
            disconnect(_dispatcher, nullptr, this, nullptr);
        _dispatcher = wanted;
        if (_dispatcher) {
            connect(_dispatcher, &QAbstractEventDispatcher::aboutToBlock, this, &NotificationQueue::passedLandmark);
            connect(_dispatcher, &QAbstractEventDispatcher::awake, this, &NotificationQueue::passedLandmark);
        }
    }
    if (!application)
        return;
    application->removeEventFilter(this);
    if (hasPending(NSPostWhenIdle))
        application->installEventFilter(this);
}

// Dispatchers differ in where in a pass they say that they are about to block or awake, and some say the former with
// events still waiting. But each pass says at least one of them, and at most both: two stretches in a row between such
// landmarks without an event hold at least one whole pass.
void NotificationQueue::passedLandmark()
{
    if (isHeldBack())
        return;
    if (hasPending(NSPostASAP))
        postDeliveryEvent();
    if (!hasPending(NSPostWhenIdle))
        return;
    _quietStretches = _hasHandledEvent ? 0 : _quietStretches + 1;
    _hasHandledEvent = false;
    if (_quietStretches < 2) {
        _dispatcher->wakeUp();
        return;
    }
    _quietStretches = 0;
    deliver(NSPostWhenIdle);
}
