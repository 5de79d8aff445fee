#pragma once

#include <QByteArray>
#include <QString>
#include <QVariant>
#include <QVariantMap>
#include <functional>
#include <memory>
#include <vector>

class KeyedArchiver;
class KeyedUnarchiver;

// Something that can travel as a keyed archive.
class KeyedCoding
{
public:
    virtual ~KeyedCoding() = default;
    // The name under which the class is found again, see KeyedUnarchiver::registerClass.
    virtual QString classNameForCoder() const = 0;
    virtual void encodeWithCoder(KeyedArchiver &coder) const = 0;
    // (Re)initialises this object from the archive; keys that are missing or of another type count as none.
    virtual void initWithCoder(const KeyedUnarchiver &coder) = 0;
};

// Writes one object, and the objects that it holds, under keys. The archive is a property list.
class KeyedArchiver
{
public:
    static QByteArray archivedDataWithRootObject(const KeyedCoding &object);

    // A property-list value; an invalid variant or a null string writes nothing.
    void encodeValueForKey(const QVariant &value, const QString &key);
    // None writes nothing.
    void encodeObjectForKey(const std::shared_ptr<KeyedCoding> &object, const QString &key);
    void encodeObjectsForKey(const std::vector<std::shared_ptr<KeyedCoding>> &objects, const QString &key);

private:
    static QVariantMap encode(const KeyedCoding &object);

    QVariantMap _values;
};

// Reads what KeyedArchiver wrote.
class KeyedUnarchiver
{
public:
    using Maker = std::function<std::shared_ptr<KeyedCoding>()>;

    // Makes the class known by that name; done once at start-up by each class that can be archived.
    static void registerClass(const QString &name, Maker maker);
    // None when the data is no archive, is damaged, or names a class that nobody registered.
    static std::shared_ptr<KeyedCoding> unarchiveObjectWithData(const QByteArray &data);

    QVariant decodeValueForKey(const QString &key) const;
    // Null when missing or not a string.
    QString decodeStringForKey(const QString &key) const;
    std::shared_ptr<KeyedCoding> decodeObjectForKey(const QString &key) const;
    // Entries of unknown classes are left out.
    std::vector<std::shared_ptr<KeyedCoding>> decodeObjectsForKey(const QString &key) const;

private:
    explicit KeyedUnarchiver(QVariantMap values);
    static std::shared_ptr<KeyedCoding> decode(const QVariant &value);

    QVariantMap _values;
};
