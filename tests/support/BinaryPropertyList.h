#pragma once

#include <QByteArray>
#include <QVariant>

// The binary form of a value (dictionaries, arrays, strings, integers, reals, booleans, data), as other programs write
// it: text that is not ASCII in UTF-16, each value written once more every time that it occurs.
QByteArray binaryPropertyList(const QVariant &value);
