#include "platform/files/KeyedArchiver.h"

#include "platform/files/PropertyList.h"

#include <QHash>

namespace
{
const QString classKey = QStringLiteral("$class");

QHash<QString, KeyedUnarchiver::Maker> &makers()
{
    static QHash<QString, KeyedUnarchiver::Maker> makers;
    return makers;
}

// How many objects stand around the one that is being written. Deeper than a property list may be is given up early:
// such an archive could not be read again.
int encodingDepth = 0;
} // namespace

QByteArray KeyedArchiver::archivedDataWithRootObject(const KeyedCoding &object)
{
    return PropertyList::toXml(encode(object));
}

QVariantMap KeyedArchiver::encode(const KeyedCoding &object)
{
    KeyedArchiver coder;
    coder._values.insert(classKey, object.classNameForCoder());
    if (encodingDepth > PropertyList::maximumDepth)
        return coder._values;
    encodingDepth++;
    object.encodeWithCoder(coder);
    encodingDepth--;
    return coder._values;
}

void KeyedArchiver::encodeValueForKey(const QVariant &value, const QString &key)
{
    const bool isNone = value.metaType().id() == QMetaType::QString && value.toString().isNull();
    if (value.isValid() && !isNone)
        _values.insert(key, value);
}

void KeyedArchiver::encodeObjectForKey(const std::shared_ptr<KeyedCoding> &object, const QString &key)
{
    if (object)
        _values.insert(key, encode(*object));
}

void KeyedArchiver::encodeObjectsForKey(const std::vector<std::shared_ptr<KeyedCoding>> &objects, const QString &key)
{
    QVariantList list;
    for (const auto &object : objects) {
        if (object)
            list.append(encode(*object));
    }
    _values.insert(key, list);
}

KeyedUnarchiver::KeyedUnarchiver(QVariantMap values) : _values(std::move(values)) {}

void KeyedUnarchiver::registerClass(const QString &name, Maker maker)
{
    makers()[name] = std::move(maker);
}

std::shared_ptr<KeyedCoding> KeyedUnarchiver::unarchiveObjectWithData(const QByteArray &data)
{
    return decode(PropertyList::fromData(data));
}

std::shared_ptr<KeyedCoding> KeyedUnarchiver::decode(const QVariant &value)
{
    const QVariantMap values = value.toMap();
    const Maker maker = makers().value(values.value(classKey).toString());
    if (!maker)
        return nullptr;
    std::shared_ptr<KeyedCoding> object = maker();
    if (object)
        object->initWithCoder(KeyedUnarchiver(values));
    return object;
}

QVariant KeyedUnarchiver::decodeValueForKey(const QString &key) const
{
    return _values.value(key);
}

QString KeyedUnarchiver::decodeStringForKey(const QString &key) const
{
    const QVariant value = _values.value(key);
    return value.metaType().id() == QMetaType::QString ? value.toString() : QString();
}

std::shared_ptr<KeyedCoding> KeyedUnarchiver::decodeObjectForKey(const QString &key) const
{
    return decode(_values.value(key));
}

std::vector<std::shared_ptr<KeyedCoding>> KeyedUnarchiver::decodeObjectsForKey(const QString &key) const
{
    std::vector<std::shared_ptr<KeyedCoding>> objects;
    const QVariantList list = _values.value(key).toList();
    for (const QVariant &value : list) {
        if (auto object = decode(value))
            objects.push_back(std::move(object));
    }
    return objects;
}
