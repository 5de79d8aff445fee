#include "platform/contacts/GLibEvents.h"

#include <QAbstractEventDispatcher>
#include <QElapsedTimer>
#include <glib.h>

namespace
{
constexpr int betweenLooks = 40; // milliseconds
constexpr int atOneStretch = 4;  // milliseconds

void handleWhatIsWaiting()
{
    QElapsedTimer clock;
    clock.start();
    while (clock.elapsed() < atOneStretch && g_main_context_iteration(nullptr, FALSE)) {
    }
}
} // namespace

GLibEvents::GLibEvents()
{
    const QAbstractEventDispatcher *loop = QAbstractEventDispatcher::instance();
    if (loop && loop->inherits("QEventDispatcherGlib"))
        return;
    QObject::connect(&_timer, &QTimer::timeout, handleWhatIsWaiting);
    _timer.start(betweenLooks);
}
