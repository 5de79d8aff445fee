#pragma once

#include "platform/files/PlainXml.h"

#include <QVariant>

// Reads a property list in the plain XML form (see PlainXml) into variants, several times as fast as the general way,
// and as the same values. Gives up at anything unusual.
class PlainPropertyList
{
public:
    // The device stays the caller's, and is open.
    explicit PlainPropertyList(QIODevice &device) : _xml(device) {}

    // Invalid when it gave up.
    QVariant read();

private:
    QVariant readValue(PlainXml::Tag tag, int depth);
    QVariant readDictionary(int depth);
    QVariant readArray(int depth);
    QString readString(PlainXml::Tag tag);

    PlainXml _xml;
};
