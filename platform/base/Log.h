#pragma once

#include <QLoggingCategory>

// "wayfold.files": what could not be read or written, and what was kept aside.
Q_DECLARE_LOGGING_CATEGORY(logFiles)
// "wayfold": everything else.
Q_DECLARE_LOGGING_CATEGORY(logWayfold)
