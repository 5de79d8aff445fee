#pragma once

#include <QTimer>

// Has GLib's calls come back on the main thread. Where Qt's event loop is GLib's own, as it usually is on Linux, there
// is nothing to do; where it is not (QT_NO_GLIB), GLib's is looked after several times a second.
class GLibEvents
{
public:
    GLibEvents();

private:
    QTimer _timer;
};
