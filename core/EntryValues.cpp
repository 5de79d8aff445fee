#include "core/EntryValues.h"

#include "model/ItemDictionary.h"

#include <QDateTime>
#include <algorithm>
#include <bit>

using namespace ItemDictionary;

namespace
{
bool isDictionary(const QVariant &value)
{
    return value.typeId() == QMetaType::QVariantMap;
}

bool isList(const QVariant &value)
{
    return value.typeId() == QMetaType::QVariantList;
}

// Without a copy.
const QVariantMap &dictionaryIn(const QVariant &value)
{
    return *static_cast<const QVariantMap *>(value.constData());
}

const QVariantList &listIn(const QVariant &value)
{
    return *static_cast<const QVariantList *>(value.constData());
}

bool isFolderType(const QString &type)
{
    return type == listType || type == QLatin1String("BookmarksBar") || type == QLatin1String("BookmarksMenu");
}

bool isSameNumber(double a, double b)
{
    return std::bit_cast<quint64>(a) == std::bit_cast<quint64>(b);
}

bool isSameDictionary(const QVariantMap &a, const QVariantMap &b)
{
    if (a.isSharedWith(b))
        return true;
    return a.size() == b.size() && std::equal(a.keyValueBegin(), a.keyValueEnd(), b.keyValueBegin(), b.keyValueEnd(),
                                              [](const auto &one, const auto &other) {
                                                  return one.first == other.first &&
                                                         EntryValues::isSame(one.second, other.second);
                                              });
}

// In one walk over both, leaving out what is listed, and the identifier when asked to.
bool isSameEntry(const QVariantMap &a, const QVariantMap &b, bool withIdentifier)
{
    auto one = a.cbegin();
    auto other = b.cbegin();
    const auto skipIdentifier = [&](auto &entry, auto end) {
        if (!withIdentifier && entry != end && entry.key() == uuidKey)
            ++entry;
    };
    while (true) {
        skipIdentifier(one, a.cend());
        skipIdentifier(other, b.cend());
        if (one == a.cend() || other == b.cend())
            return one == a.cend() && other == b.cend();
        if (one.key() != other.key())
            return false;
        const bool areLists = isList(one.value()) && isList(other.value()) && one.key() == childrenKey;
        if (!areLists && !EntryValues::isSame(one.value(), other.value()))
            return false;
        ++one;
        ++other;
    }
}

bool isSamePiece(const QVariant &a, const QVariant &b)
{
    return isDictionary(a) && isDictionary(b) ? dictionaryIn(a).isSharedWith(dictionaryIn(b))
                                              : EntryValues::isSame(a, b);
}

// How far to look for what two lists have in common again.
constexpr qsizetype longestStep = 16;

// The place of the entry in the known list, not far behind `from`; where it should be when it is not there.
qsizetype knownPlace(const QVariantList &known, qsizetype from, const QVariant &entry)
{
    const QString identifier = EntryValues::identifier(entry);
    if (identifier.isEmpty())
        return from;
    for (qsizetype place = from; place < std::min(known.size(), from + longestStep); ++place) {
        if (EntryValues::identifier(known[place]) == identifier)
            return place;
    }
    return from;
}

QVariantList sharingList(const QVariantList &list, const QVariantList &known)
{
    QVariantList shared;
    shared.reserve(list.size());
    bool isKnown = list.size() == known.size();
    qsizetype next = 0;
    for (const QVariant &entry : list) {
        const bool isSameEntry = next < known.size() && EntryValues::isSameButChildren(entry, known[next]);
        if (!isSameEntry)
            next = knownPlace(known, next, entry);
        if (next >= known.size())
            shared.append(entry);
        else if (isSameEntry && !EntryValues::children(entry))
            shared.append(known[next]);
        else
            shared.append(EntryValues::sharing(entry, known[next]));
        isKnown = isKnown && isSamePiece(shared.last(), known[shared.size() - 1]);
        ++next;
    }
    return isKnown ? known : shared;
}
} // namespace

const QVariantList *EntryValues::children(const QVariant &entry)
{
    if (!isDictionary(entry))
        return nullptr;
    const QVariantMap &map = dictionaryIn(entry);
    const auto found = map.constFind(childrenKey);
    return found != map.cend() && isList(*found) ? &listIn(*found) : nullptr;
}

QString EntryValues::identifier(const QVariant &entry)
{
    return isDictionary(entry) ? textOrEmpty(string(dictionaryIn(entry), uuidKey)) : QStringLiteral("");
}

QString EntryValues::kind(const QVariant &entry)
{
    if (!isDictionary(entry))
        return {};
    const QString type = textOrEmpty(string(dictionaryIn(entry), typeKey));
    return isFolderType(type) || children(entry) ? folderKind : type;
}

QString EntryValues::title(const QVariant &entry)
{
    if (!isDictionary(entry))
        return QStringLiteral("");
    const QVariantMap &map = dictionaryIn(entry);
    const QString title = string(map, titleKey);
    return textOrEmpty(title.isEmpty() ? string(dictionary(map, uriDictionaryKey), uriTitleKey) : title);
}

void EntryValues::setTitle(QVariantMap &entry, const QString &title)
{
    QVariantMap uriDictionary = dictionary(entry, uriDictionaryKey);
    if (uriDictionary.contains(uriTitleKey)) {
        uriDictionary.insert(uriTitleKey, title);
        entry.insert(uriDictionaryKey, uriDictionary);
    } else if (entry.contains(titleKey)) {
        entry.insert(titleKey, title);
    }
}

QVariantMap EntryValues::withoutChildren(const QVariantMap &entry)
{
    if (!isList(entry.value(childrenKey)))
        return entry;
    QVariantMap fields = entry;
    fields.insert(childrenKey, QVariantList());
    return fields;
}

bool EntryValues::isSame(const QVariant &a, const QVariant &b)
{
    if (&a == &b)
        return true;
    if (a.typeId() != b.typeId())
        return false;
    if (isDictionary(a))
        return isSameDictionary(dictionaryIn(a), dictionaryIn(b));
    if (isList(a)) {
        const QVariantList &one = listIn(a);
        const QVariantList &other = listIn(b);
        return one.isSharedWith(other) || std::equal(one.begin(), one.end(), other.begin(), other.end(), isSame);
    }
    if (a.typeId() == QMetaType::Double)
        return isSameNumber(a.toDouble(), b.toDouble());
    return a == b;
}

bool EntryValues::isSameButChildren(const QVariant &a, const QVariant &b)
{
    if (&a == &b)
        return true;
    if (!isDictionary(a) || !isDictionary(b))
        return isSame(a, b);
    return dictionaryIn(a).isSharedWith(dictionaryIn(b)) || isSameEntry(dictionaryIn(a), dictionaryIn(b), true);
}

bool EntryValues::isSameButChildrenAndIdentifier(const QVariant &a, const QVariant &b)
{
    if (!isDictionary(a) || !isDictionary(b))
        return isSame(a, b);
    return isSameEntry(dictionaryIn(a), dictionaryIn(b), false);
}

std::size_t EntryValues::hashOf(const QVariant &value)
{
    const std::size_t type = std::size_t(value.typeId());
    switch (value.typeId()) {
    case QMetaType::QString:
        return qHashMulti(type, *static_cast<const QString *>(value.constData()));
    case QMetaType::QVariantMap: {
        std::size_t hash = type;
        for (const auto &[key, element] : dictionaryIn(value).asKeyValueRange())
            hash = qHashMulti(hash, key, hashOf(element));
        return hash;
    }
    case QMetaType::QVariantList: {
        std::size_t hash = type;
        for (const QVariant &element : listIn(value))
            hash = qHashMulti(hash, hashOf(element));
        return hash;
    }
    case QMetaType::QByteArray:
        return qHashMulti(type, value.toByteArray());
    case QMetaType::QDateTime:
        return qHashMulti(type, value.toDateTime().toMSecsSinceEpoch());
    case QMetaType::Double:
        return qHashMulti(type, std::bit_cast<quint64>(value.toDouble()));
    default:
        return qHashMulti(type, value.toULongLong());
    }
}

QVariant EntryValues::sharing(const QVariant &value, const QVariant &known)
{
    const QVariantList *const list = children(value);
    const QVariantList *const knownList = children(known);
    if (!list || !knownList)
        return isSame(value, known) ? known : value;
    const QVariantList shared = list->isSharedWith(*knownList) ? *knownList : sharingList(*list, *knownList);
    if (shared.isSharedWith(*knownList) && isSameButChildren(value, known))
        return known;
    QVariantMap folder = dictionaryIn(value);
    folder.insert(childrenKey, shared);
    return folder;
}

std::size_t EntryValues::hashWithoutChildrenAndIdentifier(const QVariant &entry)
{
    if (!isDictionary(entry))
        return hashOf(entry);
    std::size_t hash = 0;
    for (const auto &[key, value] : dictionaryIn(entry).asKeyValueRange()) {
        if (key == uuidKey)
            continue;
        const bool isListed = key == childrenKey && isList(value);
        hash = qHashMulti(hash, key, isListed ? std::size_t(1) : hashOf(value));
    }
    return hash;
}

const void *EntryValues::pieceOf(const QVariant &entry)
{
    if (!isDictionary(entry) || dictionaryIn(entry).isEmpty())
        return &entry;
    return &dictionaryIn(entry).constBegin().value();
}
