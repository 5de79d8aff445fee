#pragma once

#include <QString>

// Copies a file beside itself as `<name>.kept-<yyyyMMdd>-<HHmmss>` (local time; "-2", "-3" ... behind it when that name
// is taken) and says so in the log. The copy is on the disk when this returns. The new path, or null, with the reason
// in the log, when the copy could not be made.
QString keepCopyOfFile(const QString &path);
