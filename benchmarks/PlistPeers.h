#pragma once

#include <QString>

// Other readers and writers of property lists, at the same work: the median of seven runs in milliseconds, after one
// that does not count.
namespace PlistPeers
{
// Python's plistlib, parsing or writing alone. 0 when Python did not do it.
double plistlibReadMilliseconds(const QString &path);
double plistlibWriteMilliseconds(const QString &path);
// The same, writing the whole file beside itself, down to the disk, and putting it in its place.
double plistlibSaveMilliseconds(const QString &path);
// libplist, parsing the XML form alone. 0 when it does not take the file.
double libplistReadMilliseconds(const QString &path);
} // namespace PlistPeers
