#include "platform/files/DictionaryMerge.h"

namespace
{
bool isDictionary(const QVariant &value)
{
    return value.typeId() == QMetaType::QVariantMap;
}

// What a property list does not tell apart.
int kindOf(const QVariant &value)
{
    switch (value.typeId()) {
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::ULongLong:
        return QMetaType::LongLong;
    case QMetaType::Float:
        return QMetaType::Double;
    default:
        return value.typeId();
    }
}

// A missing value equals a missing one. A number is not the text of it, and none that is on or off.
bool isSame(const QVariant &a, const QVariant &b)
{
    return kindOf(a) == kindOf(b) && a == b;
}

// Invalid where there is none, here and below.
QVariant mergedValue(const QVariant &base, const QVariant &ours, const QVariant &theirs)
{
    if (isSame(ours, base))
        return theirs;
    if (isDictionary(ours) && isDictionary(theirs))
        return mergedDictionary(base.toMap(), ours.toMap(), theirs.toMap());
    return ours;
}
} // namespace

QVariantMap mergedDictionary(const QVariantMap &base, const QVariantMap &ours, const QVariantMap &theirs)
{
    QVariantMap merged = theirs;
    QVariantMap known = base;
    known.insert(ours); // every key that we may have changed
    for (auto entry = known.cbegin(); entry != known.cend(); ++entry) {
        const QVariant value = mergedValue(base.value(entry.key()), ours.value(entry.key()), theirs.value(entry.key()));
        if (value.isValid())
            merged.insert(entry.key(), value);
        else
            merged.remove(entry.key());
    }
    return merged;
}
