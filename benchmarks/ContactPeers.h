#pragma once

#include <QByteArray>
#include <QString>

// What others take for the same contacts, in milliseconds.
namespace ContactPeers
{
// Python's vobject, which programs for folders of cards are built on, reading every file, once. 0 when it did not.
double vobjectLoadMilliseconds(const QString &folder);
// Looking through the files for a text without keeping anything: the median of seven runs, after one that does not
// count.
double scanMilliseconds(const QString &folder, const QByteArray &text);
} // namespace ContactPeers
