#pragma once

#include <QByteArray>
#include <QString>
#include <functional>

// Copies of a file beside itself, `<name>.kept-<yyyyMMdd>-<HHmmss>` (local time; "-2", "-3" ... behind it when that
// name is taken), made before something in it would be lost. The newest twenty of a file stay, and the last of each day
// for a month; the others go when one is made. Those from the time to come, of a clock that was wrong, are counted
// apart.

// A copy of the file as it is. It is on the disk when this returns, and the log says so. The new path, or null, with
// the reason in the log, when the copy could not be made.
QString keepCopyOfFile(const QString &path);
// The same for what could not be written into the file.
QString keepBesideFile(const QString &path, const QByteArray &contents);

// Who is told of each copy that was made, right then: the path of the file, and of the copy. `observer` names the
// registration for removal, and is never looked into.
using KeptCopyHandler = std::function<void(const QString &path, const QString &copy)>;
void addKeptCopyObserver(const void *observer, KeptCopyHandler handler);
void removeKeptCopyObserver(const void *observer);
