#include "platform/files/PlainPropertyList.h"

#include "platform/base/StringRules.h"

#include <QVariantList>
#include <QVariantMap>

using Tag = PlainXml::Tag;

QVariant PlainPropertyList::read()
{
    if (!_xml.readProlog())
        return {};
    const QVariant value = readValue(_xml.readTag(), 0);
    return value.isValid() && _xml.readEpilog() ? value : QVariant();
}

QVariant PlainPropertyList::readValue(Tag tag, int depth)
{
    if (depth > PlainXml::greatestDepth)
        return {};
    switch (tag) {
    case Tag::String:
    case Tag::EmptyString:
        return readString(tag);
    case Tag::Dictionary:
        return readDictionary(depth);
    case Tag::EmptyDictionary:
        return QVariantMap();
    case Tag::Array:
        return readArray(depth);
    case Tag::EmptyArray:
        return QVariantList();
    case Tag::True:
        return true;
    case Tag::False:
        return false;
    case Tag::Integer:
    case Tag::Real:
    case Tag::Date:
    case Tag::Data:
        return _xml.readScalar(tag);
    default:
        return {};
    }
}

QVariant PlainPropertyList::readDictionary(int depth)
{
    QVariantMap dictionary;
    for (Tag tag = _xml.readTag(); tag != Tag::EndDictionary; tag = _xml.readTag()) {
        if (tag != Tag::Key && tag != Tag::EmptyKey)
            return {};
        const QString key = readString(tag);
        const QVariant value = readValue(_xml.readTag(), depth + 1);
        // A key that is there twice is for the general way to judge.
        if (!value.isValid() || dictionary.contains(key))
            return {};
        dictionary.insert(key, value);
    }
    return dictionary;
}

QVariant PlainPropertyList::readArray(int depth)
{
    QVariantList array;
    for (Tag tag = _xml.readTag(); tag != Tag::EndArray; tag = _xml.readTag()) {
        QVariant value = readValue(tag, depth + 1);
        if (!value.isValid())
            return {};
        array.append(std::move(value));
    }
    return array;
}

// Empty but never null; what follows fails when this did.
QString PlainPropertyList::readString(Tag tag)
{
    const QByteArrayView text = _xml.readText(tag);
    return text.isEmpty() ? QString(QLatin1String("")) : StringRules::fromUtf8(text);
}
