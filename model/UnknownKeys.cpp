#include "model/UnknownKeys.h"

#include <algorithm>

namespace
{
const QString foundKey = QStringLiteral("found");
const QString usedKey = QStringLiteral("used");

bool isDictionary(const QVariant &value)
{
    return value.typeId() == QMetaType::QVariantMap;
}

bool isList(const QVariant &value)
{
    return value.typeId() == QMetaType::QVariantList;
}

bool isNone(const QVariant &value)
{
    return !value.isValid() || (value.typeId() == QMetaType::QString && value.toString().isEmpty());
}

// Leaves of both what is different.
void reduceToDifference(QVariantMap &found, QVariantMap &used)
{
    QVariantMap keptFound;
    QVariantMap keptUsed;
    for (auto entry = found.cbegin(); entry != found.cend(); ++entry) {
        const auto place = used.constFind(entry.key());
        if (place == used.cend()) {
            keptFound.insert(entry.key(), entry.value());
        } else if (isDictionary(*entry) && isDictionary(*place)) {
            QVariantMap within = entry->toMap();
            QVariantMap usedWithin = place->toMap();
            reduceToDifference(within, usedWithin);
            if (within.isEmpty())
                continue;
            keptFound.insert(entry.key(), within);
            keptUsed.insert(entry.key(), usedWithin);
        } else if (!isNone(*entry) && *entry != *place) {
            keptFound.insert(entry.key(), *entry);
            keptUsed.insert(entry.key(), *place);
        }
    }
    found = keptFound;
    used = keptUsed;
}

void add(QVariantMap &written, const QVariantMap &found, const QVariantMap &used)
{
    for (auto entry = found.cbegin(); entry != found.cend(); ++entry) {
        const auto place = written.find(entry.key());
        const QVariant inItsPlace = used.value(entry.key());
        if (place == written.end()) {
            written.insert(entry.key(), entry.value());
        } else if (isDictionary(*entry) && isDictionary(*place) && isDictionary(inItsPlace)) {
            QVariantMap within = place->toMap();
            add(within, entry->toMap(), inItsPlace.toMap());
            *place = within;
        } else if (*place == inItsPlace) {
            *place = entry.value();
        }
    }
}
} // namespace

UnknownKeys::UnknownKeys(const QVariantMap &found, const QVariantMap &used)
{
    QVariantMap keptFound = found;
    QVariantMap keptUsed = used;
    reduceToDifference(keptFound, keptUsed);
    if (!keptFound.isEmpty())
        _kept = {{foundKey, keptFound}, {usedKey, keptUsed}};
}

void UnknownKeys::addTo(QVariantMap &written) const
{
    if (!_kept.isEmpty())
        add(written, _kept.value(foundKey).toMap(), _kept.value(usedKey).toMap());
}

int UnknownKeys::depth() const
{
    return _kept.isEmpty() ? 0 : depthOf(_kept.value(foundKey)) - 1;
}

QVariant UnknownKeys::archived() const
{
    return _kept.isEmpty() ? QVariant() : QVariant(_kept);
}

UnknownKeys UnknownKeys::fromArchive(const QVariant &archived)
{
    UnknownKeys keys;
    keys._kept = archived.toMap();
    return keys;
}

int UnknownKeys::depthOf(const QVariant &value)
{
    int within = 0;
    const QVariantMap dictionary = isDictionary(value) ? value.toMap() : QVariantMap();
    for (const QVariant &element : dictionary)
        within = std::max(within, depthOf(element));
    const QVariantList list = isList(value) ? value.toList() : QVariantList();
    for (const QVariant &element : list)
        within = std::max(within, depthOf(element));
    return isDictionary(value) || isList(value) ? within + 1 : 0;
}
