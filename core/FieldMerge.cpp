#include "core/FieldMerge.h"

#include "core/EntryValues.h"
#include "model/ItemDictionary.h"

namespace
{
bool isSameOrNone(const QVariant *a, const QVariant *b)
{
    return a && b ? EntryValues::isSame(*a, *b) : a == b;
}

const QVariant *valueIn(const QVariantMap &dictionary, const QString &key)
{
    const auto found = dictionary.constFind(key);
    return found == dictionary.cend() ? nullptr : &*found;
}

QVariant valueOrNone(const QVariant *value)
{
    return value ? *value : QVariant();
}
} // namespace

QVariant FieldMerge::merged(const QVariant *base, const QVariant *ours, const QVariant *theirs)
{
    if (isSameOrNone(ours, theirs) || isSameOrNone(theirs, base))
        return valueOrNone(ours);
    if (isSameOrNone(ours, base))
        return valueOrNone(theirs);
    if (!ours || !theirs)
        return ours ? *ours : *theirs;
    if (ours->typeId() == QMetaType::QVariantMap && theirs->typeId() == QMetaType::QVariantMap)
        return mergedDictionary(base, ours->toMap(), theirs->toMap());
    _hasConflict = true;
    return _preferred == Ours ? *ours : *theirs;
}

QVariant FieldMerge::mergedDictionary(const QVariant *base, const QVariantMap &ours, const QVariantMap &theirs)
{
    const QVariantMap known = base ? base->toMap() : QVariantMap();
    QVariantMap result = ours;
    for (const QVariantMap *const side : {&ours, &theirs}) {
        for (const auto &[key, unused] : side->asKeyValueRange()) {
            const bool hadConflict = _hasConflict;
            const QVariant value = merged(valueIn(known, key), valueIn(ours, key), valueIn(theirs, key));
            if (key == ItemDictionary::uuidKey)
                _hasConflict = hadConflict;
            if (value.isValid())
                result.insert(key, value);
            else
                result.remove(key);
        }
    }
    return result;
}
