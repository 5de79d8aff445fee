#pragma once

#include <QByteArray>
#include <QString>

// Copies of a file beside itself, `<name>.kept-<yyyyMMdd>-<HHmmss>` (local time; "-2", "-3" ... behind it when that
// name is taken), made before something in it would be lost. The newest twenty of a file stay, and the last of each day
// for a month; the others go when one is made. Those from the time to come, of a clock that was wrong, are counted
// apart.

// A copy of the file as it is. It is on the disk when this returns, and the log says so. The new path, or null, with
// the reason in the log, when the copy could not be made.
QString keepCopyOfFile(const QString &path);
// The same for what could not be written into the file.
QString keepBesideFile(const QString &path, const QByteArray &contents);
