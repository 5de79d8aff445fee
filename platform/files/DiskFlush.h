#pragma once

#include <QString>

// Waits until the file or directory at `path` is on the disk; for a directory this is the names in it, so that a file
// made or renamed there is found after a loss of power. Null when that worked, else the reason.
QString flushToDisk(const QString &path);
