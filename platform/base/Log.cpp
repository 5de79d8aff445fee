#include "platform/base/Log.h"

Q_LOGGING_CATEGORY(logFiles, "wayfold.files")
Q_LOGGING_CATEGORY(logWayfold, "wayfold")
